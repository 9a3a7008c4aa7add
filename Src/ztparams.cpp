// Parameter bags, their one-line text grammar, and the typed value arrays.
#include "ztparams.h"

#include <strings.h>

#include <cstring>
#include <string>

#include "ztcurrency.h"
#include "ztstring.h"
#include "zttypes.h"
#include "ztvalue.h"

// A general exception whose printf-style format is given as a string literal:
// the text keeps its quotation marks, the arguments are filled in.

namespace {

ZTValue* CloneValue(const ZTValue& _Value) { return ZTDynamicCastT<ZTValue>(_Value.Clone()); }

// Decimal text of an index, for messages that name an entry.
std::string IndexText(int _Idx) { return std::to_string(_Idx); }

// The name the parameter makes up for an entry without one.
std::string MadeUpName(int _Idx) { return "p" + std::to_string(_Idx); }

// Characters of a text that may be null.
const char* TextOf(const char* _Text) { return _Text ? _Text : ""; }

bool IsBlank(char _Ch) { return _Ch == ' ' || _Ch == '\t' || _Ch == '\r' || _Ch == '\n'; }

std::string Trimmed(const char* _Begin, const char* _End) {
  while (_Begin < _End && IsBlank(*_Begin)) ++_Begin;
  while (_End > _Begin && IsBlank(_End[-1])) --_End;
  return std::string(_Begin, _End);
}

// Reads the entries of one parameter line. Every path through Next advances
// the position, and no read goes past the end, whatever the bytes.
class LineReader {
 public:
  LineReader(const char* _Begin, const char* _End, char _NameSep, char _ValueSep)
      : m_Pos(_Begin), m_End(_End), m_NameSep(_NameSep), m_ValueSep(_ValueSep) {}

  // The next entry; false at the end of the text. _Name stays empty for an
  // entry without a name.
  bool Next(std::string& _Name, std::string& _Value) {
    if (m_Pos >= m_End) return false;
    _Name.clear();
    const char* const start = m_Pos;
    const char* valueStart = m_Pos;
    for (; m_Pos < m_End; ++m_Pos) {
      const char ch = *m_Pos;
      if (IsNameSep(ch)) {
        _Name = Trimmed(start, m_Pos);
        valueStart = m_Pos + 1;
      } else if (IsValueSep(ch)) {
        _Value = Trimmed(valueStart, m_Pos++);
        return true;
      } else if (ch == '"' || ch == '\'') {
        ReadQuoted(_Value);
        SkipRest();
        return true;
      } else if (ch == '<') {
        ReadBracketed(_Value);
        SkipRest();
        return true;
      }
    }
    _Value = Trimmed(valueStart, m_End);
    return true;
  }

 private:
  bool IsNameSep(char _Ch) const { return m_NameSep ? _Ch == m_NameSep : _Ch == ':' || _Ch == '='; }
  bool IsValueSep(char _Ch) const {
    return m_ValueSep ? _Ch == m_ValueSep : _Ch == ',' || _Ch == ';';
  }

  // Up to the matching quote (or the end); a doubled quote stands for one.
  void ReadQuoted(std::string& _Value) {
    const char quote = *m_Pos++;
    _Value.clear();
    while (m_Pos < m_End) {
      const char ch = *m_Pos++;
      if (ch != quote) {
        _Value += ch;
      } else if (m_Pos < m_End && *m_Pos == quote) {
        _Value += quote;
        ++m_Pos;
      } else {
        return;
      }
    }
  }

  // "<" and everything up to and including the next ">" (or to the end).
  void ReadBracketed(std::string& _Value) {
    const char* close = static_cast<const char*>(std::memchr(m_Pos, '>', m_End - m_Pos));
    const char* const stop = close ? close + 1 : m_End;
    _Value.assign(m_Pos, stop);
    m_Pos = stop;
  }

  // After a quoted or bracketed value the entry ends at the next "," or ";",
  // whatever the separators in use.
  void SkipRest() {
    while (m_Pos < m_End && *m_Pos != ',' && *m_Pos != ';') ++m_Pos;
    if (m_Pos < m_End) ++m_Pos;
  }

  const char* m_Pos;
  const char* const m_End;
  const char m_NameSep;
  const char m_ValueSep;
};

// Encloses a text in quotes. Occurrences of the quote character inside are
// doubled, as the parser reads them: left single, they would end the value
// early and the rest of the text would be lost on reading it back.
void AppendQuoted(std::string& _Out, const char* _Text, char _Quote) {
  _Out += _Quote;
  for (const char* p = _Text; p && *p; ++p) {
    _Out += *p;
    if (*p == _Quote) _Out += _Quote;
  }
  _Out += _Quote;
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTValueArray

ZT_IMPLEMENT_CLASS(ZTValueArray, ZTPArray, ZTObjectCreator, nullptr)

ZTValueArray::ZTValueArray(int _Grow) : ZTTPArray<ZTValue>(_Grow) {}

int ZTValueArray::Add(const ZTValue* _Val) {
  ZT_PARAM_CHECK(_Val);
  return ZTPArray::Add(_Val);
}

int ZTValueArray::Add(const ZTValue& _Val) { return Add(CloneValue(_Val)); }

int ZTValueArray::Add(const ZTValueArray& _Other) {
  int added = InvalidIndex;
  const int last = _Other.GetLastIndex();  // taken first: the other may be this array
  for (int i = 0; i <= last; ++i)
    if (const ZTValue* value = _Other.Get(i)) added = Add(value);
  return added;
}

int ZTValueArray::Insert(int _Idx, const ZTValue* _Val) {
  ZT_PARAM_CHECK(_Val);
  return ZTPArray::Insert(_Val, _Idx);
}

int ZTValueArray::Insert(int _Idx, const ZTValue& _Val) { return Insert(_Idx, CloneValue(_Val)); }

int ZTValueArray::Set(int _Idx, const ZTValue* _Val) {
  ZT_PARAM_CHECK(_Val);
  return ZTPArray::Set(_Idx, _Val);
}

int ZTValueArray::Set(int _Idx, const ZTValue& _Val) { return Set(_Idx, CloneValue(_Val)); }

ZTValue* ZTValueArray::Get(int _Idx) { return ZTTPArray<ZTValue>::Get(_Idx); }

const ZTValue* ZTValueArray::Get(int _Idx) const { return ZTTPArray<ZTValue>::Get(_Idx); }

// Through the virtual Remove, so that derived arrays keep their own data in step.
bool ZTValueArray::Remove(int _Idx) { return static_cast<ZTPArray*>(this)->Remove(_Idx, true); }

// A null pointer is no value: it must not find an empty slot.
int ZTValueArray::Index(const ZTValue* _Val) const {
  return _Val ? ZTPArray::Index(_Val) : InvalidIndex;
}

int ZTValueArray::Index(const ZTValue& _Val) const {
  for (int i = 0; i < GetSize(); ++i) {
    const ZTValue* value = Get(i);
    if (value && value->Cmp(_Val) == CmpEqual) return i;
  }
  return InvalidIndex;
}

// ---------------------------------------------------------------------------
// ZTNamedValueArray

ZT_IMPLEMENT_CLASS(ZTNamedValueArray, ZTValueArray, ZTObjectCreator, nullptr)

ZTNamedValueArray::ZTNamedValueArray(int _Grow) : ZTValueArray(_Grow), m_Names(_Grow) {}

ZTNamedValueArray& ZTNamedValueArray::operator=(const ZTNamedValueArray& _Src) {
  Assign(_Src, true);
  return *this;
}

void ZTNamedValueArray::Assign(const ZTPArray& _Src, bool _Deep) {
  if (&_Src == this) return;
  ZTValueArray::Assign(_Src, _Deep);  // clears the names through RemoveAll
  if (const auto* named = ZTDynamicCastT<ZTNamedValueArray>(&_Src))
    m_Names.Assign(named->m_Names, _Deep);
}

bool ZTNamedValueArray::Remove(int _Idx, bool _Shift) {
  const bool removed = ZTPArray::Remove(_Idx, _Shift);
  if (removed && _Idx < m_Names.GetSize()) m_Names.Remove(_Idx, _Shift);
  return removed;
}

void ZTNamedValueArray::RemoveAll() {
  ZTValueArray::RemoveAll();
  m_Names.RemoveAll();
}

// The name goes into the value's slot, so the two arrays stay parallel.
void ZTNamedValueArray::StoreName(int _Idx, const char* _Name) {
  if (_Idx >= 0) m_Names.Set(_Idx, new ZTString(_Name));
}

int ZTNamedValueArray::Add(const char* _Name, const ZTValue* _Val) {
  ZT_PARAM_CHECK(_Name);
  const int pos = ZTValueArray::Add(_Val);
  StoreName(pos, _Name);
  return pos;
}

int ZTNamedValueArray::Add(const char* _Name, const ZTValue& _Val) {
  ZT_PARAM_CHECK(_Name);
  return Add(_Name, CloneValue(_Val));
}

int ZTNamedValueArray::Add(const ZTNamedValueArray& _Other) {
  int added = InvalidIndex;
  const int last = _Other.GetLastIndex();  // taken first: the other may be this array
  for (int i = 0; i <= last; ++i) {
    const ZTValue* value = _Other.Get(i);
    if (!value) continue;
    const ZTString* name = i < _Other.m_Names.GetSize() ? _Other.m_Names.Get(i) : nullptr;
    added = ZTValueArray::Add(value);
    if (name) StoreName(added, *name);
  }
  return added;
}

int ZTNamedValueArray::Insert(int _Idx, const char* _Name, const ZTValue* _Val) {
  ZT_PARAM_CHECK(_Name);
  const int pos = ZTValueArray::Insert(_Idx, _Val);
  if (pos < 0) return pos;
  // Both arrays shift the same occupied slots; beyond the names' slots there
  // is nothing to shift.
  if (pos < m_Names.GetSize())
    m_Names.Insert(new ZTString(_Name), pos);
  else
    StoreName(pos, _Name);
  return pos;
}

int ZTNamedValueArray::Insert(int _Idx, const char* _Name, const ZTValue& _Val) {
  ZT_PARAM_CHECK(_Name);
  return Insert(_Idx, _Name, CloneValue(_Val));
}

int ZTNamedValueArray::Set(int _Idx, const ZTValue* _Val) {
  ZT_INDEX_CHECK(_Idx >= 0 && _Idx < GetCount(), _Idx);
  if (Get(_Idx) == _Val) return _Idx;
  return ZTValueArray::Set(_Idx, _Val);
}

const ZTString& ZTNamedValueArray::Name(int _Idx) const {
  ZT_INDEX_CHECK(0 <= _Idx && _Idx < GetCount(), _Idx);
  const ZTString* name = _Idx < m_Names.GetSize() ? m_Names.Get(_Idx) : nullptr;
  ZT_INDEX_CHECK(name != NULL, _Idx);
  return *name;
}

const char* ZTNamedValueArray::GetName(int _Idx) const { return Name(_Idx); }

int ZTNamedValueArray::Index(const char* _Name) const {
  // The check text is the library's own; as C++ it would compare a pointer
  // with a character, so the exception is raised directly. It refuses a null
  // name only.
  if (!_Name) ZTThrowParameter(ZT_FUNC, __FILE__, __LINE__, "_Name != NULL && _Name != '\\0'");
  for (int i = 0; i < m_Names.GetSize(); ++i) {
    const ZTString* name = m_Names.Get(i);
    if (name && name->CmpNoCase(_Name) == CmpEqual) return i;
  }
  return InvalidIndex;
}

ZTValue* ZTNamedValueArray::Get(const char* _Name) {
  const int idx = Index(_Name);
  return idx < 0 || idx >= GetSize() ? nullptr : Get(idx);
}

const ZTValue* ZTNamedValueArray::Get(const char* _Name) const {
  const int idx = Index(_Name);
  return idx < 0 || idx >= GetSize() ? nullptr : Get(idx);
}

ZTValue* ZTNamedValueArray::Item(const char* _Name) {
  ZTValue* obj = Get(_Name);
  ZT_COND_CHECK(obj != NULL);
  return obj;
}

const ZTValue* ZTNamedValueArray::Item(const char* _Name) const {
  const ZTValue* obj = Get(_Name);
  ZT_COND_CHECK(obj != NULL);
  return obj;
}

// ---------------------------------------------------------------------------
// ZTParameter: construction and result

const char ZTParameter::ResultName[] = "Result";

ZT_IMPLEMENT_CLASS(ZTParameter, ZTNamedObjectArray, ZTObjectCreator, nullptr)

ZTParameter::ZTParameter() : ZTNamedObjectArray(DefaultSize) {}

ZTParameter::ZTParameter(int _GrowStep) : ZTNamedObjectArray(_GrowStep) {}

ZTParameter::ZTParameter(const char* _Text) : ZTNamedObjectArray(DefaultSize) {
  if (!_Text || !*_Text) return;
  try {
    SetFromString(_Text, -1, 0, 0, true);
  } catch (...) {
    SetResult(nullptr);  // the destructor does not run for a failed constructor
    throw;
  }
}

ZTParameter::ZTParameter(const ZTParameter& _Src) : ZTNamedObjectArray(_Src) {
  SetResult(_Src.m_Result);
}

ZTParameter& ZTParameter::operator=(const ZTParameter& _Src) {
  if (&_Src != this) {
    ZTNamedObjectArray::operator=(_Src);
    SetResult(_Src.m_Result);
  }
  return *this;
}

ZTParameter::~ZTParameter() { SetResult(nullptr); }

bool ZTParameter::IsResultName(const char* _Name) {
  return _Name && ::strcasecmp(_Name, ResultName) == 0;
}

void ZTParameter::SetResult(ZTValue* _Result) {
  if (_Result == m_Result) return;
  if (_Result) _Result->Attach();
  ZTValue* old = m_Result;
  m_Result = _Result;
  if (old) old->Detach();
}

void ZTParameter::SetResult(const ZTValue& _Result) { SetResult(CloneValue(_Result)); }

const ZTValue* ZTParameter::GetResult() const {
  return m_Result ? m_Result : ZTDynamicCastT<ZTValue>(GetItem(ResultName));
}

ZTValue* ZTParameter::GetResult() {
  return const_cast<ZTValue*>(static_cast<const ZTParameter*>(this)->GetResult());
}

// ---------------------------------------------------------------------------
// ZTParameter: text

void ZTParameter::SetFromString(const char* _Text, int _Len, char _NameSep, char _ValueSep,
                                bool _Reset) {
  if (_Reset) RemoveAll();
  if (!_Text || _Len == 0) return;
  // Parsed in place within the given length (never past a terminating zero),
  // so no shared buffer limits the length or the threads.
  const char* const end = _Text + (_Len < 0 ? std::strlen(_Text) : ::strnlen(_Text, _Len));
  LineReader reader(_Text, end, _NameSep, _ValueSep);
  std::string name;
  std::string value;
  for (int entry = 0; reader.Next(name, value); ++entry) {
    if (name.empty()) name = MadeUpName(entry);
    Push(name.c_str(), ZTString(value.data(), static_cast<unsigned int>(value.size())));
  }
}

void ZTParameter::AddFromString(const char* _Text, int _Len, char _NameSep, char _ValueSep) {
  SetFromString(_Text, _Len, _NameSep, _ValueSep, false);
}

void ZTParameter::AppendList(ZTString& _Str, bool _Named) const {
  std::string text;
  for (int i = 0; i < GetCount(); ++i) {
    if (i > 0) text += ';';
    const ZTString& name = Name(i);
    if (_Named || name.CmpNoCase(MadeUpName(i).c_str()) != CmpEqual) {
      text += TextOf(name);
      text += '=';
    }
    const ZTObject* obj = Get(i);
    const ZTValue* value = ZTDynamicCastT<ZTValue>(obj);
    if (!obj || (value && value->IsNull())) {
      text += "<null>";
    } else if (const ZTString* str = ZTDynamicCastT<ZTString>(obj)) {
      AppendQuoted(text, *str, _Named || !str->Contains('\'') ? '\'' : '"');
    } else if (value) {
      text += TextOf(value->GetString());
    } else {
      text += "<binary>";
    }
  }
  _Str = text.c_str();
}

// Placeholders are path entries: a name, then blank-separated key:value
// attributes, of which "fmt" gives the format.
void ZTParameter::FillTemplate(ZTString& _Str, const char* _Template) const {
  std::string text;
  const char* pos = _Template;
  while (*pos) {
    const char* open = std::strchr(pos, '<');
    const char* close = open ? std::strchr(open + 1, '>') : nullptr;
    if (!close) {  // no placeholder left; an unclosed "<" is plain text
      text += pos;
      break;
    }
    text.append(pos, open);
    const std::string entry(open + 1, close);
    const std::size_t blank = entry.find(' ');
    const std::string name = entry.substr(0, blank);
    ZTParameter attributes(1);
    if (blank != std::string::npos && entry.find(':', blank) != std::string::npos) {
      for (std::size_t at = blank + 1; at < entry.size();) {
        std::size_t stop = entry.find(' ', at);
        if (stop == std::string::npos) stop = entry.size();
        if (stop > at) attributes.Push(entry.substr(at, stop - at).c_str());
        at = stop + 1;
      }
    }
    const ZTValue* formatValue = attributes.GetValue("fmt");
    const ZTString formatText = formatValue ? formatValue->GetString() : ZTString();
    const char* format = formatText.IsNull() ? nullptr : static_cast<const char*>(formatText);
    text += TextOf(GetString(name.c_str(), format, ""));
    pos = close + 1;
  }
  _Str = text.c_str();
}

const char* ZTParameter::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (_Format)
    FillTemplate(_Str, _Format);
  else
    AppendList(_Str, true);
  return _Str;
}

const char* ZTParameter::CopyIntoString(ZTString& _Str) const {
  AppendList(_Str, false);
  return _Str;
}

ZTString ZTParameter::GetString(const char* _Name, const char* _Format, const char* _Default) const {
  if (const ZTValue* value = GetValue(_Name)) return value->GetString(_Format);
  if (!_Default)
    ZT_THROW_QUOTED("ZTParameter::GetString: Parameter '%s' not found or no value.", _Name);
  return ZTString(_Default);
}

ZTString ZTParameter::GetString(int _Idx, const char* _Format, const char* _Default) const {
  if (const ZTValue* value = GetValue(_Idx)) return value->GetString(_Format);
  if (!_Default)
    ZT_THROW_QUOTED("ZTParameter::GetString: Parameter '%s' not found or no value.",
                    IndexText(_Idx).c_str());
  return ZTString(_Default);
}

ZTString ZTParameter::GetString() const {
  ZTString text;
  CopyIntoString(text);
  return text;
}

ZTString ZTParameter::String(const char* _Name, const char* _Format, const char* _Default) const {
  return GetString(_Name, _Format, _Default);
}

ZTString ZTParameter::String(int _Idx, const char* _Format, const char* _Default) const {
  return GetString(_Idx, _Format, _Default);
}

// ---------------------------------------------------------------------------
// ZTParameter: pushing

// A null pointer removes the entry of that name instead of being stored: the
// slot array counts a null entry without holding it, and replacing or removing
// such an entry later leaves its count one too high.
ZTObject* ZTParameter::Store(const char* _Name, ZTObject* _Obj) {
  if (IsResultName(_Name) && (!_Obj || ZTDynamicCastT<ZTValue>(_Obj))) {
    SetResult(ZTDynamicCastT<ZTValue>(_Obj));
    return _Obj;
  }
  if (_Obj)
    Append(_Name, _Obj);
  else
    Remove(_Name);
  return _Obj;
}

ZTString ZTParameter::NextName() const { return ZTString(MadeUpName(GetCount()).c_str()); }

ZTValue* ZTParameter::Push(bool _Val) { return Push(NextName(), _Val); }

ZTValue* ZTParameter::Push(int _Val) { return Push(NextName(), _Val); }

const char* ZTParameter::Push(const char* _Text) {
  const std::size_t len = _Text ? std::strlen(_Text) : 0;
  const bool quoted = len > 0 && _Text[0] == '\'' && _Text[len - 1] == '\'';
  if (len > 0 && !quoted) {
    if (std::strchr(_Text, ':')) {
      AddFromString(_Text, -1, ':', 0);
      return _Text;
    }
    if (std::strchr(_Text, '=')) {
      AddFromString(_Text, -1, '=', 0);
      return _Text;
    }
  }
  return Push(NextName(), _Text);
}

ZTValue* ZTParameter::Push(const ZTString& _Str) { return Push(NextName(), _Str); }

ZTValue* ZTParameter::Push(ZTValue* _Val) { return Push(NextName(), _Val); }

ZTValue* ZTParameter::Push(const ZTValue& _Val) { return Push(NextName(), _Val); }

ZTObject* ZTParameter::Push(ZTObject* _Obj) { return Push(NextName(), _Obj); }

ZTObject* ZTParameter::Push(const ZTObject& _Obj) { return Push(NextName(), _Obj); }

// The named forms check the name before they make anything, so that a
// refused push leaves no object behind.
ZTValue* ZTParameter::Push(const char* _Name, bool _Val) {
  ZT_PARAM_CHECK(_Name);
  ZTValue* value = new ZTBool(_Val);
  Store(_Name, value);
  return value;
}

ZTValue* ZTParameter::Push(const char* _Name, int _Val) {
  ZT_PARAM_CHECK(_Name);
  ZTValue* value = new ZTInteger(_Val);
  Store(_Name, value);
  return value;
}

const char* ZTParameter::Push(const char* _Name, const char* _Text) {
  ZT_PARAM_CHECK(_Name);
  Store(_Name, new ZTString(_Text));
  return _Text;
}

ZTValue* ZTParameter::Push(const char* _Name, const ZTString& _Str) {
  return Push(_Name, static_cast<const ZTValue&>(_Str));
}

ZTValue* ZTParameter::Push(const char* _Name, ZTValue* _Val) {
  ZT_PARAM_CHECK(_Name);
  Store(_Name, _Val);
  return _Val;
}

ZTValue* ZTParameter::Push(const char* _Name, const ZTValue& _Val) {
  ZT_PARAM_CHECK(_Name);
  ZTValue* value = CloneValue(_Val);
  Store(_Name, value);
  return value;
}

ZTObject* ZTParameter::Push(const char* _Name, ZTObject* _Obj) {
  ZT_PARAM_CHECK(_Name);
  return Store(_Name, _Obj);
}

ZTObject* ZTParameter::Push(const char* _Name, const ZTObject& _Obj) {
  ZT_PARAM_CHECK(_Name);
  return Store(_Name, _Obj.Clone());
}

// ---------------------------------------------------------------------------
// ZTParameter: lookup

bool ZTParameter::HasValue(const char* _Name) const { return HasItem(_Name) || IsResultName(_Name); }

const ZTValue* ZTParameter::GetValue(const char* _Name) const {
  ZT_PARAM_CHECK(_Name);
  if (const ZTValue* value = ZTDynamicCastT<ZTValue>(GetItem(_Name))) return value;
  return IsResultName(_Name) ? m_Result : nullptr;
}

ZTValue* ZTParameter::GetValue(const char* _Name) {
  return const_cast<ZTValue*>(static_cast<const ZTParameter*>(this)->GetValue(_Name));
}

const ZTValue* ZTParameter::GetValue(int _Idx) const {
  return _Idx < 0 || _Idx >= GetCount() ? nullptr : ZTDynamicCastT<ZTValue>(Get(_Idx));
}

ZTValue* ZTParameter::GetValue(int _Idx) {
  return const_cast<ZTValue*>(static_cast<const ZTParameter*>(this)->GetValue(_Idx));
}

const ZTValue& ZTParameter::Value(const char* _Name) const {
  if (const ZTValue* value = GetValue(_Name)) return *value;
  if (HasItem(_Name)) ZT_THROW_QUOTED("ZTParameter::Value: Parameter '%s' is not a value.", _Name);
  ZT_THROW_QUOTED("ZTParameter::Value: Parameter '%s' not found.", _Name);
}

ZTValue& ZTParameter::Value(const char* _Name) {
  return const_cast<ZTValue&>(static_cast<const ZTParameter*>(this)->Value(_Name));
}

const ZTValue& ZTParameter::Value(int _Idx) const {
  if (const ZTValue* value = GetValue(_Idx)) return *value;
  if (_Idx >= 0 && _Idx < GetCount())
    ZT_THROW_QUOTED("ZTParameter::Value: Parameter '%s' is not a value.", IndexText(_Idx).c_str());
  ZT_THROW_QUOTED("ZTParameter::Value: Parameter '%s' not found.", IndexText(_Idx).c_str());
}

ZTValue& ZTParameter::Value(int _Idx) {
  return const_cast<ZTValue&>(static_cast<const ZTParameter*>(this)->Value(_Idx));
}

// ---------------------------------------------------------------------------
// ZTParameter: typed getters

namespace {

int IntOf(const ZTValue* _Value, int _Default) {
  if (!_Value) return _Default;
  if (const auto* integer = ZTDynamicCastT<ZTInteger>(_Value))
    return integer->IsNull() ? 0 : integer->GetInt();
  if (const auto* real = ZTDynamicCastT<ZTReal>(_Value)) return real->IsNull() ? 0 : real->GetInt();
  if (const auto* currency = ZTDynamicCastT<ZTCurrency>(_Value)) return currency->GetInt();
  return _Value->GetString().GetInt();
}

double DoubleOf(const ZTValue* _Value, double _Default) {
  if (!_Value) return _Default;
  if (const auto* integer = ZTDynamicCastT<ZTInteger>(_Value))
    return integer->IsNull() ? 0.0 : integer->GetDouble();
  if (const auto* real = ZTDynamicCastT<ZTReal>(_Value))
    return real->IsNull() ? 0.0 : real->GetDouble();
  if (const auto* currency = ZTDynamicCastT<ZTCurrency>(_Value)) return currency->GetDouble();
  return _Value->GetString().GetDouble();
}

bool BoolOf(const ZTValue* _Value, bool _Default) {
  if (const auto* boolean = ZTDynamicCastT<ZTBool>(_Value))
    return !boolean->IsNull() && boolean->GetBool();
  if (const auto* str = ZTDynamicCastT<ZTString>(_Value)) {
    ZTBool converted;
    converted.SetString(str->IsNull() ? nullptr : static_cast<const char*>(*str));
    return !converted.IsNull() && converted.GetBool();
  }
  return _Default;
}

}  // namespace

int ZTParameter::GetInt(const char* _Name, int _Default) const {
  ZT_PARAM_CHECK(_Name != NULL && *_Name != '\0');
  return IntOf(GetValue(_Name), _Default);
}

int ZTParameter::GetInt(int _Idx, int _Default) const { return IntOf(GetValue(_Idx), _Default); }

double ZTParameter::GetDouble(const char* _Name, double _Default) const {
  ZT_PARAM_CHECK(_Name != NULL && *_Name != '\0');
  return DoubleOf(GetValue(_Name), _Default);
}

double ZTParameter::GetDouble(int _Idx, double _Default) const {
  return DoubleOf(GetValue(_Idx), _Default);
}

bool ZTParameter::GetBool(const char* _Name, bool _Default) const {
  ZT_PARAM_CHECK(_Name != NULL && *_Name != '\0');
  return BoolOf(GetValue(_Name), _Default);
}

bool ZTParameter::GetBool(int _Idx, bool _Default) const { return BoolOf(GetValue(_Idx), _Default); }
