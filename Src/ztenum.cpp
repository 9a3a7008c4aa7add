// Enumerations and flag values.
#include "ztenum.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>

#include "ztMDE.h"
#include "zttypes_internal.h"

using zt_types::AssignText;
using zt_types::TextLength;

namespace {

// Appends the flag names of _Flags to _Text (see ZTFlags::ToString).
void AppendFlagNames(std::string& _Text, ztFlags _Flags, const _FlagStringEntry* _FlagStrings,
                     char _CatChar) {
  if (!_FlagStrings) return;
  const std::size_t start = _Text.size();
  const char* zeroName = nullptr;
  for (const _FlagStringEntry* entry = _FlagStrings; entry->Name; ++entry) {
    if (entry->Flag == 0) {
      if (!zeroName) zeroName = entry->Name;
      continue;
    }
    if (!_Flags.IsSet(entry->Flag)) continue;
    if (_Text.size() > start) {
      if (_CatChar) {
        _Text += ' ';
        _Text += _CatChar;
        _Text += ' ';
      } else {
        _Text += " | ";
      }
    }
    _Text += entry->Name;
  }
  if (_Text.size() == start && zeroName) _Text += zeroName;
}

const char* TextOf(const ZTString& _Str) {
  const char* text = _Str;
  return text ? text : "";
}

bool IsBlank(char _Ch) { return _Ch == ' ' || _Ch == '\t'; }

std::string_view Trimmed(std::string_view _Text) {
  while (!_Text.empty() && IsBlank(_Text.front())) _Text.remove_prefix(1);
  while (!_Text.empty() && IsBlank(_Text.back())) _Text.remove_suffix(1);
  return _Text;
}

int HexDigit(char _Ch) {
  if (_Ch >= '0' && _Ch <= '9') return _Ch - '0';
  if (_Ch >= 'a' && _Ch <= 'f') return _Ch - 'a' + 10;
  if (_Ch >= 'A' && _Ch <= 'F') return _Ch - 'A' + 10;
  return -1;
}

// Reads the leading digits of a text that starts with a decimal digit, as
// atoi does. atoi's result is undefined beyond the int range, so the number
// saturates at INT_MAX instead. A "0x" text reads as the hexadecimal bit word
// that CopyIntoString prints for bits without a label (saturating at 32 bits).
int ReadNumber(const char* _Text) {
  if (_Text[0] == '0' && (_Text[1] == 'x' || _Text[1] == 'X')) {
    std::uint64_t bits = 0;
    for (const char* p = _Text + 2; HexDigit(*p) >= 0; ++p)
      bits = std::min<std::uint64_t>(bits * 16 + HexDigit(*p), UINT32_MAX);
    return static_cast<int>(static_cast<std::uint32_t>(bits));
  }
  std::int64_t value = 0;
  for (const char* p = _Text; *p >= '0' && *p <= '9'; ++p)
    value = std::min<std::int64_t>(value * 10 + (*p - '0'), INT_MAX);
  return static_cast<int>(value);
}

// The library-wide table of enum types and the count of lists using it.
// Lists may be static objects of any library or application, constructed and
// destroyed in an order nobody controls: so this state is constant-initialised
// (ready before the first constructor runs) and never destroyed (still there
// after the last destructor). The table itself goes with the last list.
struct TypeTableState {
  std::mutex m_Lock;
  ZTEnumTypeTable* m_Table = nullptr;
  int m_Users = 0;
};

union TypeTableInstance {
  constexpr TypeTableInstance() : m_State() {}
  ~TypeTableInstance() {}
  TypeTableState m_State;
};

TypeTableInstance s_TypeTable;

TypeTableState& TableState() { return s_TypeTable.m_State; }

// Gives back a reference when it goes out of scope.
class HeldRef {
 public:
  explicit HeldRef(const ZTObject* _Obj) : m_Obj(_Obj) { m_Obj->Attach(); }
  ~HeldRef() { m_Obj->Detach(); }
  HeldRef(const HeldRef&) = delete;
  HeldRef& operator=(const HeldRef&) = delete;

 private:
  const ZTObject* m_Obj;
};

const _FlagStringEntry s_MemberFlagStrings[] = {
    {MDF_ATTRIB, "MDF_ATTRIB"},   {MDF_DOMINANT, "MDF_DOMINANT"},
    {MDF_PRIMARY, "MDF_PRIMARY"}, {MDF_ID, "MDF_ID"},
    {MDF_FOREIGN, "MDF_FOREIGN"}, {MDF_REQUIRED, "MDF_REQUIRED"},
    {MDF_UNIQUE, "MDF_UNIQUE"},   {0, nullptr}};

constexpr char MemberFlagSeparator = '|';

}  // namespace

// ---------------------------------------------------------------------------
// ZTFlags

const char ZTFlags::m_ZTType[] = "Flags";
ZT_IMPLEMENT_CLASS(ZTFlags, ZTValue, ZTValueCreator, ZTFlags::m_ZTType)

ZTFlags::ZTFlags(unsigned long _Flags, const _FlagStringEntry* _FlagStrings, char _CatChar)
    : m_CatChar(_CatChar), m_FlagStrings(_FlagStrings) {
  Set(_Flags);
}

// Storing a word also clears the null bit, so that flags with different words
// never compare as two equal nulls.
void ZTFlags::Set(unsigned long _Flags) {
  const ztFlags flags(_Flags);
  if (!IsNull() && flags.GetFlags() == m_Flags.GetFlags()) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Flags = flags;
}

ZTString ZTFlags::ToString(ztFlags _Flags, const _FlagStringEntry* _FlagStrings, char _CatChar) {
  std::string text;
  AppendFlagNames(text, _Flags, _FlagStrings, _CatChar);
  return ZTString(text.c_str(), static_cast<unsigned int>(text.size()));
}

void ZTFlags::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  SetValue(*static_cast<const ZTFlags*>(_Src));
}

const char* ZTFlags::GetTypeName() const { return m_ZTType; }

void ZTFlags::SetNull() {
  ZTValue::SetNull();
  m_Flags = 0;
}

void ZTFlags::SetEmpty() {
  if (IsNull() || m_Flags.GetFlags() == 0) return;
  SetDirty();
  m_Flags = 0;
}

bool ZTFlags::IsEmpty() const { return IsNull() || m_Flags.GetFlags() == 0; }

ZTValue* ZTFlags::SetValue(const ZTValue& _Value) {
  const ZTFlags* flags = ZTDynamicCastT<ZTFlags>(&_Value);
  if (!flags) return ZTValue::SetValue(_Value);
  if (flags == this) return this;
  if (flags->IsNull())
    SetNull();
  else
    Set(flags->GetFlags());
  return this;
}

const char* ZTFlags::SetString(const char* _Str, int, const char*) { return _Str; }

const char* ZTFlags::CopyIntoString(ZTString& _Str, const char*) const {
  std::string text;
  AppendFlagNames(text, m_Flags, m_FlagStrings, m_CatChar);
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTFlags::Get(void* _Buffer, unsigned int _Size) const {
  if (IsNull()) return 0;
  const std::uint32_t word = static_cast<std::uint32_t>(m_Flags.GetFlags());
  if (_Buffer && _Size >= sizeof word) std::memcpy(_Buffer, &word, sizeof word);
  return sizeof word;
}

ZTCmpResult ZTFlags::Cmp(const ZTValue& _Value) const {
  if (IsNull() && _Value.IsNull()) return CmpEqual;
  const ZTFlags* flags = ZTDynamicCastT<ZTFlags>(&_Value);
  if (!flags) return ZTValue::Cmp(_Value);
  const unsigned long mine = GetFlags();
  const unsigned long other = flags->GetFlags();
  return mine < other ? CmpLess : mine > other ? CmpGreater : CmpEqual;
}

// ---------------------------------------------------------------------------
// ZTMDEFlags

const char ZTMDEFlags::m_ZTType[] = "MDEFlags";
ZT_IMPLEMENT_CLASS(ZTMDEFlags, ZTFlags, ZTValueCreator, ZTMDEFlags::m_ZTType)

ZTMDEFlags::ZTMDEFlags() : ZTFlags(s_MemberFlagStrings, MemberFlagSeparator) {}

ZTMDEFlags::ZTMDEFlags(unsigned long _Flags)
    : ZTFlags(_Flags, s_MemberFlagStrings, MemberFlagSeparator) {}

const char* ZTMDEFlags::GetTypeName() const { return m_ZTType; }

ZTString& AddVDFlagToString(ZTString& _Text, unsigned long _Flags, unsigned long _Flag,
                            const char* _Name) {
  ZT_PARAM_CHECK(_Name);
  if ((_Flags & _Flag) != _Flag) return _Text;
  if (_Text.Len() > 0) _Text += " | ";
  _Text += _Name;
  return _Text;
}

ZTString GetVDFlagsAsString(unsigned long _Flags) {
  return ZTFlags::ToString(_Flags, s_MemberFlagStrings, MemberFlagSeparator);
}

// ---------------------------------------------------------------------------
// ZTEnumType

ZT_IMPLEMENT_CLASS(ZTEnumType, ZTInteger, ZTValueCreator, nullptr)

ZTEnumType::ZTEnumType(int _Val, const char* _Label) : ZTInteger(_Val), m_Label(_Label) {}

void ZTEnumType::Copy(const ZTObject* _Src) {
  ZTInteger::Copy(_Src);
  m_Label = static_cast<const ZTEnumType*>(_Src)->m_Label;
}

// ---------------------------------------------------------------------------
// ZTEnumTypeTable

ZT_IMPLEMENT_CLASS(ZTEnumTypeTable, ZTObject, ZTObjectCreator, nullptr)

ZTEnumType* ZTEnumTypeTable::Find(const char* _Label, int _Value) const {
  if (!_Label || !m_HashTable) return nullptr;
  const ZTString key(_Label);
  const auto* bucket = m_HashTable[GetHashValue(key) % m_HashTableSize];
  for (unsigned i = 0; bucket && i < bucket->m_Used; ++i) {
    const auto& entry = bucket->m_Entries[i];
    if (entry.m_Element->GetInt() == _Value && CompareElements(entry.m_Key, key))
      return entry.m_Element;
  }
  return nullptr;
}

bool ZTEnumTypeTable::Add(const ZTEnumType* _Type) {
  ZT_PARAM_CHECK(_Type);
  if (!m_HashTable) {
    InitHashTable(m_HashTableSize);
    ZT_COND_CHECK(m_HashTable != NULL);
  }
  // A key of its own: the type's label may be shared by copies on other threads.
  const ZTString key(TextOf(_Type->GetLabel()));
  return InsertItem(GetHashValue(key) % m_HashTableSize, _Type, key);
}

// ---------------------------------------------------------------------------
// ZTEnumList

ZT_IMPLEMENT_CLASS(ZTEnumList, ZTPArray, ZTObjectCreator, nullptr)

ZTEnumList::ZTEnumList(bool _CompoundValue, bool _Expansible)
    : ZTTPArray<ZTEnumType>(GrowStep), m_CompoundValue(_CompoundValue), m_Expansible(_Expansible) {
  UseTypeTable(true);
}

ZTEnumList::ZTEnumList(const ZTEnumList& _Src)
    : ZTTPArray<ZTEnumType>(_Src),
      m_CompoundValue(_Src.m_CompoundValue),
      m_Expansible(_Src.m_Expansible) {
  UseTypeTable(true);
}

// The types are shared, never cloned: a clone would be a type outside the table.
ZTEnumList& ZTEnumList::operator=(const ZTEnumList& _Src) {
  if (&_Src == this) return *this;
  Assign(_Src, false);
  m_CompoundValue = _Src.m_CompoundValue;
  m_Expansible = _Src.m_Expansible;
  return *this;
}

ZTEnumList::~ZTEnumList() { UseTypeTable(false); }

ZTEnumTypeTable* ZTEnumList::UseTypeTable(bool _Use) {
  TypeTableState& state = TableState();
  std::lock_guard<std::mutex> lock(state.m_Lock);
  if (_Use) {
    if (state.m_Users == 0) {
      state.m_Table = new ZTEnumTypeTable;
      state.m_Table->Attach();
    }
    ++state.m_Users;
  } else if (state.m_Users > 0 && --state.m_Users == 0) {
    state.m_Table->Detach();
    state.m_Table = nullptr;
  }
  return state.m_Table;
}

ZTEnumTypeTable* ZTEnumList::GetTypeTable() {
  TypeTableState& state = TableState();
  std::lock_guard<std::mutex> lock(state.m_Lock);
  return state.m_Table;
}

void ZTEnumList::AddItems(const ZTTEnumItem* _Items) {
  ZT_PARAM_CHECK(_Items);
  TypeTableState& state = TableState();
  std::lock_guard<std::mutex> lock(state.m_Lock);
  // This list counts as a user, so the table exists.
  ZTEnumTypeTable* table = state.m_Table;
  for (; _Items->Label; ++_Items) {
    ZTEnumType* type = table->Find(_Items->Label, _Items->Value);
    if (type) {
      Add(type);
      continue;
    }
    type = new ZTEnumType(_Items->Value, _Items->Label);
    const HeldRef held(type);
    table->Add(type);
    Add(type);
  }
}

bool ZTEnumList::GetSingleValue(const char* _Text, int& _Value) const {
  _Value = -1;
  if (!_Text) return false;
  if (_Text[0] >= '0' && _Text[0] <= '9') {
    _Value = ReadNumber(_Text);
    return true;
  }
  for (int pos = GetFirstIndex(); pos >= 0;) {
    const ZTEnumType* type = GetNext(pos);
    const char* label = type ? static_cast<const char*>(type->GetLabel()) : nullptr;
    if (label && std::strcmp(label, _Text) == 0) {
      _Value = type->IsNull() ? 0 : type->GetInt();
      return true;
    }
  }
  return false;
}

// The parts of a compound text are trimmed of blanks, so that the text this
// list prints (labels joined by " | ") reads back.
bool ZTEnumList::GetValue(const char* _Text, int& _Value) const {
  if (!_Text || !*_Text) {
    _Value = -1;
    return false;
  }
  if (!m_CompoundValue) return GetSingleValue(_Text, _Value);
  std::uint32_t bits = 0;
  std::string part;
  std::string_view rest(_Text);
  for (;;) {
    const std::size_t bar = rest.find('|');
    part.assign(Trimmed(rest.substr(0, bar)));
    int value;
    if (!GetSingleValue(part.c_str(), value)) {
      _Value = -1;
      return false;
    }
    bits |= static_cast<std::uint32_t>(value);
    if (bar == std::string_view::npos) break;
    rest.remove_prefix(bar + 1);
  }
  _Value = static_cast<int>(bits);
  return true;
}

ZTString ZTEnumList::GetString(int _Value, const char* _Sep) const {
  ZTString text;
  CopyIntoString(_Value, text, _Sep);
  return text;
}

const char* ZTEnumList::CopyIntoString(int _Value, ZTString& _Str, const char* _Sep) const {
  std::string text;
  if (!m_CompoundValue) {
    for (int pos = GetFirstIndex(); pos >= 0;) {
      const ZTEnumType* type = GetNext(pos);
      if (type && !type->IsNull() && type->GetInt() == _Value) {
        text = TextOf(type->GetLabel());
        break;
      }
    }
    return AssignText(_Str, text.data(), text.size());
  }
  std::uint32_t remaining = static_cast<std::uint32_t>(_Value);
  for (int pos = GetFirstIndex(); pos >= 0;) {
    const ZTEnumType* type = GetNext(pos);
    if (!type || type->IsNull()) continue;
    const auto bits = static_cast<std::uint32_t>(type->GetInt());
    if (bits == 0 || (bits & ~remaining) != 0) continue;
    if (!text.empty()) text += _Sep ? _Sep : " | ";
    text += TextOf(type->GetLabel());
    remaining &= ~bits;
  }
  if (m_Expansible && remaining) {
    char hex[16];
    std::snprintf(hex, sizeof hex, "0x%.8x", static_cast<unsigned>(remaining));
    text = text.empty() ? hex : text + " | " + hex;
  }
  if (text.empty()) text = "0";
  return AssignText(_Str, text.data(), text.size());
}

bool ZTEnumList::IsValidValue(int _Value) const {
  std::uint32_t known = 0;
  for (int pos = GetFirstIndex(); pos >= 0;) {
    const ZTEnumType* type = GetNext(pos);
    if (!type || type->IsNull()) continue;
    if (!m_CompoundValue && type->GetInt() == _Value) return true;
    known |= static_cast<std::uint32_t>(type->GetInt());
  }
  return m_CompoundValue && (static_cast<std::uint32_t>(_Value) & ~known) == 0;
}

// ---------------------------------------------------------------------------
// ZTEnumValue

ZT_IMPLEMENT_CLASS(ZTEnumValue, ZTInteger, ZTValueCreator, nullptr)

ZTEnumValue::ZTEnumValue(int _Val, ZTEnumList* _EnumList)
    : ZTInteger(_Val), m_EnumList(_EnumList) {}

bool ZTEnumValue::IsValidValue(int _Value) const {
  return !m_EnumList || m_EnumList->IsValidValue(_Value);
}

void ZTEnumValue::Set(int _Val) { ZTInteger::Set(_Val); }

void ZTEnumValue::Copy(const ZTObject* _Src) {
  ZTInteger::Copy(_Src);
  m_EnumList = static_cast<const ZTEnumValue*>(_Src)->m_EnumList;
}

// A text starting with a letter is a label text of the list; anything else
// is an integer. With a list, a "0x" text goes to the list too: it is how the
// list prints bits without a label, which an integer would read as 0.
const char* ZTEnumValue::SetString(const char* _Str, int _Len, const char* _Format) {
  const bool listText =
      _Str && _Len != 0 &&
      (std::isalpha(static_cast<unsigned char>(_Str[0])) ||
       (m_EnumList && _Str[0] == '0' && _Len != 1 && (_Str[1] == 'x' || _Str[1] == 'X')));
  if (!listText) return ZTInteger::SetString(_Str, _Len, _Format);
  const std::string text(_Str, TextLength(_Str, _Len));
  int value;
  if (m_EnumList && m_EnumList->GetValue(text.c_str(), value)) {
    Set(value);
    return _Str;
  }
  SetEmpty();
  return nullptr;
}

const char* ZTEnumValue::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (!IsEmpty() && m_EnumList) return m_EnumList->CopyIntoString(GetInt(), _Str, _Format);
  return ZTInteger::CopyIntoString(_Str, _Format);
}
