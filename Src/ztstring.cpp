// The library's string: shared copy-on-write representations from the
// memory manager's string category.
#include "ztstring.h"

#include "zttypes.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <string>
#include <strings.h>

namespace {

const char s_Blanks[] = " \t\r\n";

bool IsBlank(char _Ch) { return _Ch && std::strchr(s_Blanks, _Ch) != nullptr; }

void CopyChars(char* _Dst, const char* _Src, std::size_t _Len) {
  if (_Len) std::memcpy(_Dst, _Src, _Len);
}

int Sign(int _Val) { return (_Val > 0) - (_Val < 0); }

ZTCmpResult ToCmpResult(int _Val) {
  return _Val < 0 ? CmpLess : _Val > 0 ? CmpGreater : CmpEqual;
}

// Wide text (UTF-16 units) to narrow text of the current locale; characters
// the locale cannot represent become '?'.
std::string WideToNarrow(const unsigned short* _Str, unsigned int _Len) {
  std::string out;
  std::mbstate_t state{};
  char buffer[MB_LEN_MAX];
  for (unsigned int i = 0; i < _Len && _Str[i]; ++i) {
    char32_t code = _Str[i];
    if (code >= 0xD800 && code < 0xDC00 && i + 1 < _Len && _Str[i + 1] >= 0xDC00 &&
        _Str[i + 1] < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (_Str[i + 1] - 0xDC00);
      ++i;
    }
    const std::size_t n = std::wcrtomb(buffer, static_cast<wchar_t>(code), &state);
    if (n == static_cast<std::size_t>(-1)) {
      out += '?';
      state = std::mbstate_t{};
    } else {
      out.append(buffer, n);
    }
  }
  return out;
}

// An index exception that names the operation and the string's text in a
// second message.
[[noreturn]] void ThrowStringIndex(const char* _Func, const char* _File, int _Line,
                                   const char* _Cond, const char* _Name, int _Index,
                                   const char* _Operation, const char* _Text) {
  ZTExceptIndex ex(_Name, _Index);
  ex.SetContext(ZTSignature(_Func), _File, _Line);
  ex.PushMsg("Index check failed(%s)", _Cond);
  ex.PushMsg("Context:%s, %s", _Operation, _Text ? _Text : "");
  ex.ThrowIt();
}

}  // namespace

#define ZT_STRING_INDEX_CHECK(X, I, OP)                                                 \
  do {                                                                                  \
    if (!(X)) ThrowStringIndex(ZT_FUNC, __FILE__, __LINE__, #X, #I, (int)(I), OP, m_Val); \
  } while (0)

// Reading a character needs a string with characters.
#define ZT_STRING_CHECK_READABLE()                                        \
  do {                                                                    \
    ZT_COND_CHECK_MSG(!IsNull(), "String is null, no data to return."); \
    ZT_COND_CHECK(m_Val != NULL);                                         \
  } while (0)

// The static representations and the strings around them.
struct ZTStringStatics {
  struct StaticRep {
    ZTString::Rep m_Header;
    char m_Text[16];
  };
  static StaticRep s_EmptyRep;
  static StaticRep s_SpaceRep;

  static ZTString Wrap(StaticRep& _Rep) {
    ZTString str;
    str.m_Val = _Rep.m_Header.Text();
    str.ClearFlag(ZTValue::FlagNull);
    return str;
  }
};

ZTStringStatics::StaticRep ZTStringStatics::s_EmptyRep = {{ZTString::StaticRefCount, 1, {0, 0, 0}, 0, 16}, {}};
ZTStringStatics::StaticRep ZTStringStatics::s_SpaceRep = {{ZTString::StaticRefCount, 1, {0, 0, 0}, 1, 16}, {' '}};

const char ZTString::m_ZTType[] = "string";
ZT_IMPLEMENT_CLASS(ZTString, ZTValue, ZTValueCreator, ZTString::m_ZTType)

// ---------------------------------------------------------------------------
// Representations

// A block for _Len bytes of characters and terminator, rounded up to 16.
ZTString::Rep* ZTString::AllocRep(std::uint64_t _Len) {
  ZT_COND_CHECK(_Len > 0 && _Len < INT_MAX);
  const std::uint32_t capacity = static_cast<std::uint32_t>((_Len + 15) & ~std::uint64_t{15});
  Rep* rep = static_cast<Rep*>(ZTMemMgr::Alloc(ZTMemCatString, sizeof(Rep) + capacity));
  ZT_COND_CHECK(rep != NULL);
  std::memset(rep, 0, sizeof(Rep) + capacity);
  rep->m_RefCount = 1;
  rep->m_Shareable = 1;
  rep->m_Capacity = capacity;
  return rep;
}

void ZTString::FreeRep(Rep* _Rep) { ZTMemMgr::Free(ZTMemCatString, _Rep); }

void ZTString::CopyFrom(const ZTString& _Src) {
  const Rep* rep = _Src.GetRep();
  Rep* own = AllocRep(std::uint64_t{rep->m_DataLength} + 1);
  CopyChars(own->Text(), _Src.m_Val, rep->m_DataLength);
  own->m_DataLength = rep->m_DataLength;
  m_Val = own->Text();
}

void ZTString::MakeOwn() {
  Rep* rep = GetRep();
  if (!rep) return;
  if (rep->m_RefCount > 1) {
    Rep* own = AllocRep(std::uint64_t{rep->m_DataLength} + 1);
    CopyChars(own->Text(), m_Val, rep->m_DataLength);
    own->m_DataLength = rep->m_DataLength;
    ReleaseRep(rep);
    m_Val = own->Text();
    rep = own;
  }
  ZT_COND_CHECK_MSG(rep->m_RefCount == 1, "Invalid refcount");
}

// Replaces _Count characters at _Pos with _Len characters of _Str (which may
// point into this string's own text) in an own block.
void ZTString::Splice(unsigned int _Pos, unsigned int _Count, const char* _Str, unsigned int _Len) {
  Rep* rep = GetRep();
  const unsigned int len = rep ? rep->m_DataLength : 0;
  _Pos = std::min(_Pos, len);
  _Count = std::min(_Count, len - _Pos);
  const unsigned int tail = len - _Pos - _Count;
  const std::uint64_t newLen = std::uint64_t{len} - _Count + _Len;
  const auto addr = [](const char* _P) { return reinterpret_cast<std::uintptr_t>(_P); };
  const bool aliased =
      m_Val && _Len && addr(_Str) >= addr(m_Val) && addr(_Str) <= addr(m_Val) + len;
  if (rep && rep->m_RefCount == 1 && rep->m_Capacity > newLen && !aliased) {
    if (tail && _Count != _Len) std::memmove(m_Val + _Pos + _Len, m_Val + _Pos + _Count, tail);
    CopyChars(m_Val + _Pos, _Str, _Len);
  } else {
    Rep* own = AllocRep(newLen + 1);
    CopyChars(own->Text(), m_Val, _Pos);
    CopyChars(own->Text() + _Pos, _Str, _Len);
    CopyChars(own->Text() + _Pos + _Len, m_Val + _Pos + _Count, tail);
    ReleaseRep(rep);
    m_Val = own->Text();
    rep = own;
  }
  rep->m_DataLength = static_cast<std::uint32_t>(newLen);
  m_Val[newLen] = '\0';
  ClearFlag(FlagNull);
}

// Stores the first _Len characters of _Str (possibly this string's own text)
// without change tracking.
void ZTString::Store(const char* _Str, unsigned int _Len) {
  Rep* rep = GetRep();
  if (rep && rep->m_RefCount > 1) {
    // Given up before the copy: another holder keeps the text alive.
    Release();
    rep = nullptr;
  }
  if (rep && rep->m_Capacity > _Len) {
    std::memmove(m_Val, _Str, _Len);
  } else {
    Rep* own = AllocRep(std::uint64_t{_Len} + 1);
    CopyChars(own->Text(), _Str, _Len);
    ReleaseRep(rep);
    m_Val = own->Text();
    rep = own;
  }
  rep->m_DataLength = _Len;
  m_Val[_Len] = '\0';
}

// ---------------------------------------------------------------------------
// Construction and assignment

ZTString::ZTString(const char* _Str, unsigned int _Len, unsigned int _Limit) : m_TextLimit(_Limit) {
  if (!_Str) return;
  const std::size_t len = _Len == NoLimit ? std::strlen(_Str) : ::strnlen(_Str, _Len);
  Store(_Str, static_cast<unsigned int>(std::min<std::size_t>(len, _Limit)));
  ClearFlag(FlagNull);
}

ZTString::ZTString(const unsigned short* _Str, unsigned int _Len, unsigned int _Limit)
    : m_TextLimit(_Limit) {
  if (!_Str) return;
  const std::string narrow = WideToNarrow(_Str, _Len);
  Store(narrow.c_str(), static_cast<unsigned int>(std::min<std::size_t>(narrow.size(), _Limit)));
  ClearFlag(FlagNull);
}

ZTString::ZTString(char _Ch, int _Count) {
  const unsigned int len = _Ch && _Count > 0 ? static_cast<unsigned int>(_Count) : 0;
  Rep* rep = AllocRep(std::uint64_t{len} + 1);
  std::memset(rep->Text(), _Ch, len);
  rep->m_DataLength = len;
  m_Val = rep->Text();
  ClearFlag(FlagNull);
}

ZTString::ZTString(ZTString&& _Src) noexcept
    : ZTValue(_Src), m_Val(_Src.m_Val), m_TextLimit(_Src.m_TextLimit) {
  _Src.m_Val = nullptr;
  _Src.SetFlag(FlagNull);
}

ZTString& ZTString::operator=(const ZTString& _Src) {
  SetString(_Src, nullptr);
  return *this;
}

ZTString& ZTString::operator=(const char* _Str) {
  SetString(_Str, -1, nullptr);
  return *this;
}

ZTString& ZTString::operator=(char _Ch) {
  const char text[2] = {_Ch, '\0'};
  SetString(text, -1, nullptr);
  return *this;
}

ZTString& ZTString::operator=(const unsigned short* _Str) {
  SetString(_Str, -1, nullptr);
  return *this;
}

ZTString& ZTString::operator=(const ZTValue& _Value) {
  SetValue(_Value);
  return *this;
}

ZTString& ZTString::Set(char _Ch, unsigned int _Count) {
  SetString(ZTString(_Ch, static_cast<int>(std::min<unsigned int>(_Count, INT_MAX))), nullptr);
  return *this;
}

void ZTString::SetStringFast(ZTString& _Str, const char* _Text, unsigned int _Len) {
  if (!_Text) {
    _Str.Release();
    _Str.SetFlag(FlagNull);
    return;
  }
  const std::size_t len = _Len == NoLimit ? std::strlen(_Text) : ::strnlen(_Text, _Len);
  _Str.Store(_Text, static_cast<unsigned int>(len));
  _Str.ClearFlag(FlagNull);
}

// ---------------------------------------------------------------------------
// Value protocol

void ZTString::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  SetString(*static_cast<const ZTString*>(_Src), nullptr);
}

void ZTString::Clear() { SetNull(); }

const char* ZTString::GetTypeName() const { return m_ZTType; }

bool ZTString::SameText(const char* _Str, int _Len) const {
  const bool noCase = IsCaseInsensitive();
  if (_Len < 0) return (noCase ? ::strcasecmp(m_Val, _Str) : std::strcmp(m_Val, _Str)) == 0;
  if (static_cast<unsigned int>(_Len) != Len()) return false;
  return (noCase ? ::strncasecmp(m_Val, _Str, _Len) : std::strncmp(m_Val, _Str, _Len)) == 0;
}

const char* ZTString::SetString(const char* _Str, int _Len, const char*) {
  if (_Str && _Str == m_Val && (_Len < 0 || static_cast<unsigned int>(_Len) == Len())) return m_Val;
  if (!_Str) {
    // A null text makes the value null.
    SetNull();
    return nullptr;
  }
  if ((!*_Str || _Len == 0) && IsNull()) return m_Val;
  if (IsTracked() && !IsNull() && m_Val) {
    if (SameText(_Str, _Len)) return m_Val;
    SetDirty();
  }
  // Never read beyond the text's terminator, whatever length is given.
  const unsigned int take = (_Len < 0 || static_cast<unsigned int>(_Len) > m_TextLimit)
                                ? m_TextLimit
                                : static_cast<unsigned int>(_Len);
  Store(_Str, static_cast<unsigned int>(::strnlen(_Str, take)));
  ClearFlag(FlagNull);
  return m_Val;
}

const ZTString& ZTString::SetString(const ZTString& _Str, const char*) {
  if (&_Str == this) return _Str;
  if (_Str.IsNull()) {
    SetNull();
    return _Str;
  }
  if (_Str.m_Val == m_Val && !IsNull()) return _Str;  // one representation already
  if (IsTracked() && !IsNull() && m_Val && _Str.m_Val) {
    if (SameText(_Str.m_Val, -1)) return _Str;
    SetDirty();
  }
  if (_Str.Len() > m_TextLimit) {
    Store(_Str.m_Val, m_TextLimit);
  } else {
    Release();
    ShareFrom(_Str);
  }
  ClearFlag(FlagNull);
  return _Str;
}

const char* ZTString::SetString(const unsigned short* _Str, int _Len, const char* _Format) {
  if (!_Str) return SetString(static_cast<const char*>(nullptr), -1, _Format);
  const std::string narrow = WideToNarrow(_Str, _Len < 0 ? NoLimit : static_cast<unsigned int>(_Len));
  return SetString(narrow.c_str(), static_cast<int>(narrow.size()), _Format);
}

ZTValue* ZTString::SetValue(const ZTValue& _Value) {
  if (_Value.IsNull()) {
    SetNull();
    return this;
  }
  _Value.CopyIntoString(*this, nullptr);
  ClearFlag(FlagNull);
  return this;
}

void ZTString::SetNull() {
  if (IsNull() && !m_Val) return;
  if (IsTracked())
    ZTValue::SetNull();
  else
    SetFlag(FlagNull);
  Rep* rep = GetRep();
  if (!rep) return;
  if (rep->m_RefCount > 1) {
    Release();
  } else {
    rep->m_DataLength = 0;
    m_Val[0] = '\0';
  }
}

void ZTString::SetEmpty() {
  Rep* rep = GetRep();
  if (!rep) return;
  SetDirty();
  if (rep->m_RefCount > 1) {
    Release();
    SetFlag(FlagNull);
  } else {
    rep->m_DataLength = 0;
    m_Val[0] = '\0';
    ClearFlag(FlagNull);
  }
}

bool ZTString::IsEmpty() const { return !HasText(); }

ZTString ZTString::GetString(const char*) const { return *this; }

const char* ZTString::CopyIntoString(ZTString& _Str, const char*) const {
  _Str = *this;
  return _Str.IsNull() ? nullptr : _Str.m_Val;
}

void ZTString::ConvertToString(ZTString& _Str) const { _Str = *this; }

unsigned int ZTString::Get(void* _Buffer, unsigned int _Size) const {
  if (IsNull() || !_Buffer || !_Size) return 0;
  const unsigned int len = std::min(Len(), _Size - 1);
  char* target = static_cast<char*>(_Buffer);
  CopyChars(target, m_Val, len);
  target[len] = '\0';
  return len;
}

// ---------------------------------------------------------------------------
// Comparison

ZTCmpResult ZTString::Cmp(const ZTValue& _Value) const {
  // Two plain strings, the common case, need neither conversion nor lookups.
  if (_Value.GetClassType() == &ClassTypeZTString) {
    const ZTString& other = static_cast<const ZTString&>(_Value);
    if (!HasText()) return other.HasText() ? CmpLess : CmpEqual;
    if (!other.HasText()) return CmpGreater;
    if (m_Val == other.m_Val) return CmpEqual;
    const bool noCase = IsCaseInsensitive() || other.IsCaseInsensitive();
    return ToCmpResult(noCase ? ::strcasecmp(m_Val, other.m_Val) : std::strcmp(m_Val, other.m_Val));
  }
  if (IsEmpty()) return _Value.IsEmpty() ? CmpEqual : CmpLess;
  if (_Value.IsEmpty()) return CmpGreater;
  if (!IsKindOf(&_Value)) return ZTValue::Cmp(_Value);
  const ZTString* other = ZTDynamicCastT<ZTString>(&_Value);
  if (!other) return Cmp(static_cast<const char*>(_Value.GetString()));
  return !IsCaseInsensitive() && !other->IsCaseInsensitive() ? Cmp(other->m_Val)
                                                             : CmpNoCase(other->m_Val);
}

ZTCmpResult ZTString::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

int ZTString::Compare(const char* _Str) const {
  if (!_Str) return m_Val ? 1 : 0;
  if (!m_Val) return -1;
  return Sign(IsCaseInsensitive() ? ::strcasecmp(m_Val, _Str) : std::strcmp(m_Val, _Str));
}

int ZTString::Compare(const char* _Str, int _Len) const {
  if (!_Str) return m_Val ? 1 : 0;
  if (!m_Val) return -1;
  if (_Len < 0) return Compare(_Str);
  return Sign(IsCaseInsensitive() ? ::strncasecmp(m_Val, _Str, _Len)
                                  : std::strncmp(m_Val, _Str, _Len));
}

int ZTString::CompareNoCase(const char* _Str) const {
  if (!_Str) return m_Val ? 1 : 0;
  if (!m_Val) return -1;
  return Sign(::strcasecmp(m_Val, _Str));
}

int ZTString::CompareNoCase(const char* _Str, int _Len) const {
  if (!_Str) return m_Val ? 1 : 0;
  if (!m_Val) return -1;
  if (_Len < 0) return CompareNoCase(_Str);
  return Sign(::strncasecmp(m_Val, _Str, _Len));
}

ZTCmpResult ZTString::Cmp(const char* _Str) const {
  if (IsNull() && !_Str) return CmpEqual;
  return ToCmpResult(Compare(_Str));
}

ZTCmpResult ZTString::CmpNoCase(const char* _Str) const {
  if (IsNull() && !_Str) return CmpEqual;
  if (!_Str) return m_Val ? CmpGreater : CmpEqual;
  if (!m_Val) return CmpLess;
  return ToCmpResult(::strcasecmp(m_Val, _Str));
}

ZTCmpResult ZTString::CmpNoCase(const ZTValue& _Value) const {
  if (IsNull()) return _Value.IsNull() ? CmpEqual : CmpLess;
  if (_Value.IsNull()) return CmpGreater;
  if (const ZTString* other = ZTDynamicCastT<ZTString>(&_Value)) return CmpNoCase(other->m_Val);
  return CmpNoCase(static_cast<const char*>(_Value.GetString()));
}

// A null first text orders after every other; so a null second one orders
// after a first that is not null.
ZTCmpResult ZTString::Cmp(const char* _S1, const char* _S2) {
  if (_S1 == _S2) return CmpEqual;
  if (!_S1) return CmpGreater;
  if (!_S2) return CmpLess;
  return ToCmpResult(std::strcmp(_S1, _S2));
}

ZTCmpResult ZTString::CmpNoCase(const char* _S1, const char* _S2) {
  if (_S1 == _S2) return CmpEqual;
  if (!_S1) return CmpGreater;
  if (!_S2) return CmpLess;
  return ToCmpResult(::strcasecmp(_S1, _S2));
}

// ---------------------------------------------------------------------------
// Access

char ZTString::GetAt(unsigned int _Idx) const {
  ZT_STRING_CHECK_READABLE();
  const Rep* rep = GetRep();
  const std::int64_t _Index = _Idx;
  ZT_STRING_INDEX_CHECK(_Index >= 0 && _Index <= rep->m_DataLength, _Index, "ZTString::GetAt");
  return m_Val[_Index];
}

void ZTString::SetAt(unsigned int _Idx, char _Ch) {
  ZT_STRING_CHECK_READABLE();
  const Rep* rep = GetRep();
  const std::int64_t _Index = _Idx;
  ZT_STRING_INDEX_CHECK(_Index >= 0 && _Index < rep->m_DataLength, _Index, "ZTString::SetAt");
  if (m_Val[_Index] == _Ch) return;
  SetDirty();
  MakeOwn();
  m_Val[_Index] = _Ch;
}

char& ZTString::operator[](int _Idx) {
  ZT_STRING_CHECK_READABLE();
  const Rep* rep = GetRep();
  const std::int64_t _Index = _Idx;
  ZT_STRING_INDEX_CHECK(_Index >= 0 && _Index < rep->m_DataLength, _Index, "operator[]");
  MakeOwn();
  // The caller may write through the reference at any later time, so this
  // block must not be shared by later copies.
  GetRep()->m_Shareable = 0;
  return m_Val[_Index];
}

char ZTString::operator[](int _Idx) const {
  ZT_STRING_CHECK_READABLE();
  const Rep* rep = GetRep();
  const std::int64_t _Index = _Idx;
  ZT_STRING_INDEX_CHECK(_Index >= 0 && _Index <= rep->m_DataLength, _Index, "operator[]");
  return m_Val[_Index];
}

char* ZTString::SetBufferLength(unsigned int _Len, bool _Shareable, bool _SetLength) {
  // Room for _Len characters and the terminator, so that _SetLength never
  // puts the terminator outside the block.
  const std::uint64_t needed = std::uint64_t{_Len} + 1;
  Rep* rep = GetRep();
  if (!rep || rep->m_RefCount != 1 || rep->m_Capacity < needed) {
    Rep* own = AllocRep(std::max<std::uint64_t>(needed, rep ? rep->m_DataLength + 1 : 1));
    if (rep) {
      own->m_DataLength = std::min<std::uint32_t>(rep->m_DataLength, _Len);
      CopyChars(own->Text(), m_Val, own->m_DataLength);
    }
    ReleaseRep(rep);
    m_Val = own->Text();
    rep = own;
  }
  ZT_COND_CHECK_MSG(rep->m_Capacity >= needed, "Unable to resize representation.");
  rep->m_Shareable = _Shareable ? 1 : 0;
  if (_SetLength) {
    rep->m_DataLength = _Len;
    m_Val[_Len] = '\0';
  }
  ClearFlag(FlagNull);
  return m_Val;
}

// ---------------------------------------------------------------------------
// Changes

void ZTString::InsertText(unsigned int _Pos, const char* _Str, unsigned int _Len) {
  if (!_Len) return;
  SetDirty();
  Splice(_Pos, 0, _Str, _Len);
}

ZTString& ZTString::operator+=(const ZTString& _Str) {
  InsertText(Len(), _Str.m_Val, _Str.Len());
  return *this;
}

ZTString& ZTString::operator+=(char _Ch) {
  if (_Ch) InsertText(Len(), &_Ch, 1);
  return *this;
}

ZTString& ZTString::operator+=(const char* _Str) { return Append(_Str); }

ZTString& ZTString::operator+=(const unsigned short* _Str) {
  if (!_Str) return *this;
  const std::string narrow = WideToNarrow(_Str, NoLimit);
  InsertText(Len(), narrow.data(), static_cast<unsigned int>(narrow.size()));
  return *this;
}

ZTString& ZTString::operator+=(int _Val) {
  char text[16];
  const int len = std::snprintf(text, sizeof(text), "%i", _Val);
  InsertText(Len(), text, static_cast<unsigned int>(len));
  return *this;
}

ZTString& ZTString::operator+=(double _Val) {
  char text[512];  // "%f" of the largest double has 316 characters
  const int len = std::snprintf(text, sizeof(text), "%f", _Val);
  InsertText(Len(), text, static_cast<unsigned int>(std::min<int>(len, sizeof(text) - 1)));
  return *this;
}

ZTString& ZTString::Append(char _Ch, int _Count) {
  if (!_Ch || _Count <= 0) return *this;
  const ZTString repeated(_Ch, _Count);
  return *this += repeated;
}

ZTString& ZTString::Append(const char* _Str) {
  if (_Str) InsertText(Len(), _Str, static_cast<unsigned int>(std::strlen(_Str)));
  return *this;
}

ZTString& ZTString::Prepend(const char* _Str) {
  if (_Str) InsertText(0, _Str, static_cast<unsigned int>(std::strlen(_Str)));
  return *this;
}

ZTString& ZTString::Prepend(char _Ch) {
  if (_Ch) InsertText(0, &_Ch, 1);
  return *this;
}

ZTString& ZTString::Insert(const char* _Str, int _Pos) {
  ZT_PARAM_CHECK(_Str != NULL && *_Str != '\0');
  InsertText(static_cast<unsigned int>(std::max(_Pos, 0)), _Str,
         static_cast<unsigned int>(std::strlen(_Str)));
  return *this;
}

ZTString& ZTString::Insert(char _Ch, int _Pos) {
  ZT_PARAM_CHECK(_Ch != '\0');
  InsertText(static_cast<unsigned int>(std::max(_Pos, 0)), &_Ch, 1);
  return *this;
}

ZTString& ZTString::Replace(int _Pos, unsigned int _Count, char _Ch) {
  SetDirty();
  Splice(static_cast<unsigned int>(std::max(_Pos, 0)), _Count, &_Ch, _Ch ? 1 : 0);
  return *this;
}

ZTString& ZTString::Replace(int _Pos, unsigned int _Count, const ZTString& _Str) {
  SetDirty();
  Splice(static_cast<unsigned int>(std::max(_Pos, 0)), _Count, _Str.m_Val, _Str.Len());
  return *this;
}

void ZTString::ChangeCase(int _Idx, int (*_Convert)(int)) {
  const int len = static_cast<int>(Len());
  ZT_INDEX_CHECK(_Idx < len, _Idx);
  if (!len) return;
  SetDirty();
  MakeOwn();
  const auto convert = [_Convert](char _Ch) {
    return static_cast<char>(_Convert(static_cast<unsigned char>(_Ch)));
  };
  if (_Idx < 0)
    std::transform(m_Val, m_Val + len, m_Val, convert);
  else
    m_Val[_Idx] = convert(m_Val[_Idx]);
}

ZTString& ZTString::MakeUpper(int _Idx) {
  ChangeCase(_Idx, &::toupper);
  return *this;
}

ZTString& ZTString::MakeLower(int _Idx) {
  ChangeCase(_Idx, &::tolower);
  return *this;
}

ZTString& ZTString::MakeReverse() {
  if (Len() < 2) return *this;
  SetDirty();
  MakeOwn();
  std::reverse(m_Val, m_Val + Len());
  return *this;
}

void ZTString::TrimTo(unsigned int _Start, unsigned int _End) {
  if (_Start == 0 && _End == Len()) return;
  SetString(m_Val + _Start, static_cast<int>(_End - _Start), nullptr);
}

void ZTString::Trim() {
  LTrim();
  RTrim();
}

void ZTString::LTrim() {
  const unsigned int len = Len();
  unsigned int start = 0;
  while (start < len && IsBlank(m_Val[start])) ++start;
  TrimTo(start, len);
}

void ZTString::RTrim() {
  unsigned int end = Len();
  while (end > 0 && IsBlank(m_Val[end - 1])) --end;
  TrimTo(0, end);
}

// ---------------------------------------------------------------------------
// Parts

ZTString ZTString::Left(unsigned int _Count) const {
  if (_Count >= Len()) return *this;
  return _Count ? ZTString(m_Val, _Count) : ZTString(Empty());
}

ZTString ZTString::Right(unsigned int _Count) const {
  const unsigned int len = Len();
  if (_Count >= len) return *this;
  return _Count ? ZTString(m_Val + len - _Count, _Count) : ZTString(Empty());
}

ZTString ZTString::Mid(unsigned int _Idx, unsigned int _Count) const {
  ZT_STRING_CHECK_READABLE();
  const Rep* rep = GetRep();
  const std::int64_t _Index = _Idx;
  ZT_STRING_INDEX_CHECK(_Index >= 0 && _Index < rep->m_DataLength, _Index, "ZTString::Mid");
  const unsigned int count = std::min(_Count, rep->m_DataLength - _Idx);
  if (_Idx == 0 && count == rep->m_DataLength) return *this;
  return count ? ZTString(m_Val + _Idx, count) : ZTString(Empty());
}

int ZTString::SplitAt(ZTTPArray<ZTString>& _Array, const char* _Seps) const {
  _Array.RemoveAll();
  const unsigned int len = Len();
  unsigned int start = 0;
  for (int sep; start < len && (sep = FindOneOf(_Seps, static_cast<int>(start))) >= 0;
       start = static_cast<unsigned int>(sep) + 1)
    _Array.Add(new ZTString(m_Val + start, static_cast<unsigned int>(sep) - start));
  // Nothing after the last separator (or no characters at all): a null piece.
  _Array.Add(start < len ? new ZTString(m_Val + start) : new ZTString);
  return _Array.GetCount();
}

int ZTString::Split(char _Sep, ZTTPArray<ZTString>& _Array) const {
  const char seps[2] = {_Sep, '\0'};
  return SplitAt(_Array, seps);
}

int ZTString::Split(const char* _Seps, ZTTPArray<ZTString>& _Array) const {
  ZT_PARAM_CHECK(_Seps);
  return SplitAt(_Array, _Seps);
}

// ---------------------------------------------------------------------------
// Search

int ZTString::Find(const char* _Str, int _Start) const {
  ZT_PARAM_CHECK(_Str != NULL);
  const int len = static_cast<int>(Len());
  _Start = std::max(_Start, 0);
  if (!m_Val || _Start >= len) return -1;
  const char* found = std::strstr(m_Val + _Start, _Str);
  return found ? static_cast<int>(found - m_Val) : -1;
}

int ZTString::Find(char _Ch, int _Start) const {
  const int len = static_cast<int>(Len());
  _Start = std::max(_Start, 0);
  if (!m_Val || _Start >= len) return -1;
  const void* found = std::memchr(m_Val + _Start, _Ch, len - _Start);
  return found ? static_cast<int>(static_cast<const char*>(found) - m_Val) : -1;
}

int ZTString::ReverseFind(char _Ch) const {
  for (int i = static_cast<int>(Len()) - 1; i >= 0; --i)
    if (m_Val[i] == _Ch) return i;
  return -1;
}

int ZTString::FindOneOf(const char* _Set, int _Start) const {
  ZT_PARAM_CHECK(_Set != NULL);
  const int len = static_cast<int>(Len());
  _Start = std::max(_Start, 0);
  if (!m_Val || _Start >= len) return -1;
  const char* found = std::strpbrk(m_Val + _Start, _Set);
  return found ? static_cast<int>(found - m_Val) : -1;
}

int ZTString::Find(const char* _S, char _Ch, int _idxStart) {
  if (!_S || !*_S) return -1;
  ZT_INDEX_CHECK(0 <= _idxStart && _idxStart < (int)::strlen(_S), _idxStart);
  const char* found = std::strchr(_S + _idxStart, _Ch);
  return found && _Ch ? static_cast<int>(found - _S) : -1;
}

int ZTString::Find(const char* _S, const char* _Str, int _idxStart) {
  ZT_PARAM_CHECK(_Str != NULL);
  if (!_S || !*_S) return -1;
  ZT_INDEX_CHECK(0 <= _idxStart && _idxStart < (int)::strlen(_S), _idxStart);
  const char* found = std::strstr(_S + _idxStart, _Str);
  return found ? static_cast<int>(found - _S) : -1;
}

int ZTString::FindOneOf(const char* _S, const char* _Set, int _idxStart) {
  ZT_PARAM_CHECK(_Set != NULL);
  if (!_S || !*_S) return -1;
  ZT_INDEX_CHECK(0 <= _idxStart && _idxStart < (int)::strlen(_S), _idxStart);
  const char* found = std::strpbrk(_S + _idxStart, _Set);
  return found ? static_cast<int>(found - _S) : -1;
}

int ZTString::ReverseFind(const char* _S, char _Ch) {
  if (!_S || !_Ch) return -1;
  const char* found = std::strrchr(_S, _Ch);
  return found ? static_cast<int>(found - _S) : -1;
}

bool ZTString::Contains(const ZTValue& _Value) const {
  if (_Value.IsNull()) return false;
  if (const ZTString* other = ZTDynamicCastT<ZTString>(&_Value)) return Contains(other->m_Val);
  const ZTString text = _Value.GetString();
  return text.m_Val && Contains(text.m_Val);
}

bool ZTString::Contains(char _Ch) const { return !IsEmpty() && Find(_Ch, 0) >= 0; }

bool ZTString::Contains(const char* _Str) const { return Find(_Str, 0) >= 0; }

// ---------------------------------------------------------------------------
// Conversion and formatting

bool ZTString::GetBool(const char* _Format) const {
  if (IsNull()) return false;
  ZTBool value;
  value.SetString(m_Val, -1, _Format);
  return !value.IsNull() && value.GetBool();
}

int ZTString::GetInt(const char*) const {
  if (IsNull() || !m_Val) return 0;
  const char* p = m_Val;
  while (std::isspace(static_cast<unsigned char>(*p))) ++p;
  const bool negative = *p == '-';
  if (*p == '-' || *p == '+') ++p;
  if (!std::isdigit(static_cast<unsigned char>(*p))) return 0;
  // Leading zeros would make the number octal; "0x" keeps it hexadecimal.
  while (p[0] == '0' && std::isdigit(static_cast<unsigned char>(p[1]))) ++p;
  const long long value = std::strtoll(p, nullptr, 0);
  const long long clamped = std::clamp<long long>(value, INT_MIN, INT_MAX);
  return static_cast<int>(negative ? -clamped : clamped);
}

double ZTString::GetDouble(const char*) const {
  if (IsNull() || !m_Val) return 0.0;
  return std::strtod(m_Val, nullptr);
}

int ZTString::Format(const char* _FormatStr, ...) {
  ZT_PARAM_CHECK(_FormatStr);
  va_list args;
  va_start(args, _FormatStr);
  try {
    const int len = VFormat(_FormatStr, args);
    va_end(args);
    return len;
  } catch (...) {
    va_end(args);
    throw;
  }
}

// Formats into a buffer that grows to the text, so there is no length limit
// and no buffer shared between threads.
int ZTString::VFormat(const char* _FormatStr, va_list _Args) {
  ZT_COND_CHECK(_FormatStr != NULL);
  char local[256];
  va_list retry;
  va_copy(retry, _Args);
  const int len = std::vsnprintf(local, sizeof(local), _FormatStr, _Args);
  if (len < 0) va_end(retry);
  ZT_COND_CHECK(len >= 0);
  if (static_cast<std::size_t>(len) < sizeof(local)) {
    va_end(retry);
    SetString(local, len, nullptr);
    return len;
  }
  std::unique_ptr<char[]> buffer(new char[static_cast<std::size_t>(len) + 1]);
  std::vsnprintf(buffer.get(), static_cast<std::size_t>(len) + 1, _FormatStr, retry);
  va_end(retry);
  SetString(buffer.get(), len, nullptr);
  return len;
}

// ---------------------------------------------------------------------------
// Library-wide constants

const ZTString& ZTString::Empty() {
  static const ZTString s_Empty = ZTStringStatics::Wrap(ZTStringStatics::s_EmptyRep);
  return s_Empty;
}

const ZTString& ZTString::Space() {
  static const ZTString s_Space = ZTStringStatics::Wrap(ZTStringStatics::s_SpaceRep);
  return s_Space;
}

// ---------------------------------------------------------------------------
// Concatenation

ZTString operator+(const ZTString& _S1, const ZTString& _S2) {
  ZTString result(_S1);
  result += _S2;
  return result;
}

ZTString operator+(const ZTString& _S1, char _Ch) {
  ZTString result(_S1);
  result += _Ch;
  return result;
}

ZTString operator+(const ZTString& _S1, const char* _S2) {
  ZTString result(_S1);
  result += _S2;
  return result;
}

ZTString operator+(const char* _S1, const ZTString& _S2) {
  ZTString result(_S1);
  result += _S2;
  return result;
}

ZTString operator+(char _Ch, const ZTString& _S2) {
  ZTString result(_Ch, 1);
  result += _S2;
  return result;
}

// ---------------------------------------------------------------------------
// ZTStringArray

ZT_IMPLEMENT_CLASS(ZTStringArray, ZTPArray, ZTObjectCreator, nullptr)
