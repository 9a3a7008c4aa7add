// Scalar values: ZTBool, ZTInteger, ZTReal, ZTCharacter, and the pointer holder.
#include "zttypes.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <strings.h>

#include "ztintl.h"
#include "zttypes_internal.h"

namespace zt_types {

std::size_t TextLength(const char* _Str, int _Len) {
  if (_Len < 0) return std::strlen(_Str);
  return strnlen(_Str, static_cast<std::size_t>(_Len));
}

const char* AssignText(ZTString& _Target, const char* _Text, std::size_t _Len) {
  _Target.SetString(_Text, static_cast<int>(_Len));
  // An empty text leaves a null target null; callers expect characters back.
  if (!static_cast<const char*>(_Target)) ZTString::SetStringFast(_Target, "", 0);
  return _Target;
}

ZTCmpResult CmpNulls(const ZTValue& _This, const ZTValue& _Other, bool& _Decided) {
  _Decided = _This.IsNull() || _Other.IsNull();
  if (!_Decided) return CmpEqual;
  if (_This.IsNull()) return _Other.IsNull() ? CmpEqual : CmpLess;
  return CmpGreater;
}

ZTCmpResult CmpAsValue(const ZTValue& _This, const ZTObject* _Obj) {
  // A base that is no value (ZTObject itself) has nothing to compare with.
  if (const ZTValue* value = ZTDynamicCastT<ZTValue>(_Obj)) return _This.Cmp(*value);
  return _This.ZTObject::Cmp(_Obj);
}

}  // namespace zt_types

using namespace zt_types;

namespace {

// Blank characters removed by trimming (as ZTString::Trim does).
bool IsBlank(char _Ch) { return _Ch == ' ' || _Ch == '\t' || _Ch == '\r' || _Ch == '\n'; }

bool IsDigit(char _Ch) { return _Ch >= '0' && _Ch <= '9'; }

unsigned int CopyNative(const ZTValue& _Value, const void* _Native, unsigned int _NativeSize,
                        void* _Buffer, unsigned int _Size) {
  if (_Value.IsNull()) return 0;
  if (_Buffer && _Size >= _NativeSize) std::memcpy(_Buffer, _Native, _NativeSize);
  return _NativeSize;
}

std::string_view Trimmed(std::string_view _Text) {
  while (!_Text.empty() && IsBlank(_Text.front())) _Text.remove_prefix(1);
  while (!_Text.empty() && IsBlank(_Text.back())) _Text.remove_suffix(1);
  return _Text;
}

bool EqualNoCase(std::string_view _A, std::string_view _B) {
  return _A.size() == _B.size() && ::strncasecmp(_A.data(), _B.data(), _A.size()) == 0;
}

template <class T>
int Compare3(T _A, T _B) {
  return _A < _B ? -1 : (_B < _A ? 1 : 0);
}

ZTCmpResult ToCmpResult(int _Order) {
  return _Order < 0 ? CmpLess : (_Order > 0 ? CmpGreater : CmpEqual);
}

// Exact comparison of doubles; NaN has no order and equals nothing.
ZTCmpResult CmpDouble(double _A, double _B) {
  if (_A < _B) return CmpLess;
  if (_A > _B) return CmpGreater;
  if (_A == _B) return CmpEqual;
  return CmpNotEqual;
}

// 32-bit two's complement result of a wider computation, as the machine's
// 32-bit arithmetic gives it (signed overflow is never evaluated in int).
int Wrap(std::int64_t _Val) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(_Val)));
}

// Conversions a user-supplied C format may use with the one argument we pass.
enum class FormatArg { Int, Double };

// Reads a width or precision; false when it is written with '*' (it would read
// an argument we do not pass) or is larger than any sensible field.
bool ReadFieldSize(const char*& _P) {
  constexpr int MaxFieldSize = 4096;
  int size = 0;
  for (; IsDigit(*_P); ++_P) {
    size = size * 10 + (*_P - '0');
    if (size > MaxFieldSize) return false;
  }
  return *_P != '*';
}

// A user format may be handed to the printf family only when it consumes at
// most one argument, of the type we pass, and uses only flags and length
// modifiers the C library defines for that conversion: anything else reads
// arguments that do not exist (or writes through %n) or is undefined.
bool IsSafeFormat(const char* _Format, FormatArg _Arg) {
  int count = 0;
  for (const char* p = _Format; *p; ++p) {
    if (*p != '%') continue;
    if (*++p == '%') continue;
    bool alternate = false, zeroPad = false;
    for (; *p && std::strchr("-+ #0", *p); ++p) {
      alternate = alternate || *p == '#';
      zeroPad = zeroPad || *p == '0';
    }
    if (!ReadFieldSize(p)) return false;
    const bool precision = *p == '.';
    if (precision && !ReadFieldSize(++p)) return false;
    int length = 0;  // "h"/"hh" still take an int, "l" a double
    for (; *p == (_Arg == FormatArg::Int ? 'h' : 'l'); ++p) ++length;
    const char conversion = *p;
    if (!conversion || ++count > 1) return false;
    if (_Arg == FormatArg::Double) {
      if (!std::strchr("fFeEgGaA", conversion) || length > 1) return false;
    } else if (conversion == 'c') {
      if (alternate || zeroPad || precision || length) return false;
    } else if (!std::strchr("diouxX", conversion) || length > 2 ||
               (alternate && std::strchr("diu", conversion))) {
      return false;
    }
  }
  return true;
}

template <class T>
std::string FormatNumber(const char* _Format, T _Val) {
  char buffer[64];
  const int len = std::snprintf(buffer, sizeof buffer, _Format, _Val);
  if (len < 0) return std::string();
  if (static_cast<std::size_t>(len) < sizeof buffer) return std::string(buffer);
  std::string text(static_cast<std::size_t>(len) + 1, '\0');
  std::snprintf(&text[0], text.size(), _Format, _Val);
  text.resize(std::strlen(text.c_str()));
  return text;
}

// Removes trailing zeros of a fractional part, and the point when nothing is
// left after it. Only a point followed by digits alone is a fractional part:
// zeros of an integer text ("%.0f" of 100) or of an exponent are digits of the
// number and must stay.
void StripZeros(std::string& _Text) {
  const std::size_t point = _Text.rfind('.');
  if (point == std::string::npos) return;
  for (std::size_t i = point + 1; i < _Text.size(); ++i)
    if (!IsDigit(_Text[i])) return;
  std::size_t end = _Text.size();
  while (end > point + 1 && _Text[end - 1] == '0') --end;
  if (end == point + 1) --end;
  _Text.erase(end);
}

// Replaces the "." by the monetary decimal separator and groups the integer
// digits before it (or the last digits of the text when there is no point)
// by threes with the monetary thousands separator. A sign is not a digit, so
// no separator follows it.
void GroupDigits(std::string& _Text) {
  ZTIntlFormat& intl = ZTIntlFormat::IntlFormat();
  std::size_t end = _Text.find('.');
  if (end != std::string::npos) {
    _Text[end] = intl.GetCurrDecimalSep();
  } else {
    end = _Text.size();
    while (end > 0 && !IsDigit(_Text[end - 1])) --end;
  }
  std::size_t begin = end;
  while (begin > 0 && IsDigit(_Text[begin - 1])) --begin;
  const char sep = intl.GetCurrThousandSep();
  for (std::size_t pos = end; pos > begin + 3;) {
    pos -= 3;
    _Text.insert(pos, 1, sep);
  }
}

// The double of a value that converts numerically: reals, integers and strings.
bool NumericValue(const ZTValue& _Value, double& _Result) {
  if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value)) {
    _Result = real->GetDouble();
  } else if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value)) {
    _Result = integer->GetDouble();
  } else if (const ZTString* str = ZTDynamicCastT<ZTString>(&_Value)) {
    _Result = str->GetDouble();
  } else {
    return false;
  }
  return true;
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTBool

const char ZTBool::m_ZTType[] = "bool";
const char ZTBool::s_True[] = "true";
const char ZTBool::s_False[] = "false";
ZT_IMPLEMENT_CLASS(ZTBool, ZTValue, ZTValueCreator, ZTBool::m_ZTType)

namespace {

// The words of a "T|F" or "T|F|N" formatting information.
struct BoolWords {
  std::string_view m_True, m_False, m_Null;
  bool m_HasNull = false;
};

bool SplitBoolFormat(const char* _Format, BoolWords& _Words) {
  const std::string_view format(_Format);
  const std::size_t bar = format.find('|');
  if (bar == std::string_view::npos) return false;
  _Words.m_True = format.substr(0, bar);
  const std::string_view rest = format.substr(bar + 1);
  const std::size_t bar2 = rest.find('|');
  _Words.m_HasNull = bar2 != std::string_view::npos;
  _Words.m_False = rest.substr(0, bar2);
  if (_Words.m_HasNull) _Words.m_Null = rest.substr(bar2 + 1);
  return true;
}

}  // namespace

ZTBool::ZTBool(bool _Val) { Set(_Val); }

void ZTBool::Set(bool _Val) {
  if (!IsNull() && m_Val == _Val) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Val = _Val;
  Changed();
}

void ZTBool::Set(const ZTBool& _Val) {
  if (_Val.IsNull())
    SetNull();
  else
    Set(_Val.m_Val);
}

void ZTBool::Copy(const ZTObject* _Src) {
  ZT_COND_CHECK(_Src && GetClassType() == _Src->GetClassType());
  Set(*static_cast<const ZTBool*>(_Src));
}

ZTCmpResult ZTBool::Cmp(const ZTObject* _Obj) const {
  ZT_COND_CHECK(_Obj != NULL);
  ZT_COND_CHECK(IsKindOf(_Obj));
  return CmpAsValue(*this, _Obj);
}

const char* ZTBool::GetTypeName() const { return m_ZTType; }

void ZTBool::SetNull() {
  ZTValue::SetNull();
  m_Val = false;
}

void ZTBool::SetEmpty() { SetNull(); }

ZTValue* ZTBool::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull()) {
    SetNull();
  } else if (const ZTBool* other = ZTDynamicCastT<ZTBool>(&_Value)) {
    Set(other->m_Val);
  } else if (const ZTString* str = ZTDynamicCastT<ZTString>(&_Value)) {
    SetString(static_cast<const char*>(*str), -1, nullptr);
  } else {
    SetString(_Value.GetString(), -1, nullptr);
  }
  return this;
}

const char* ZTBool::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str) {
    SetNull();
    return _Str;
  }
  const std::string text(_Str, TextLength(_Str, _Len));
  if (_Format && std::strcmp(_Format, "#") == 0) {
    if (text[0] == '1' || text == "-1")
      Set(true);
    else if (text[0] == '0')
      Set(false);
    else
      SetNull();
  } else if (_Format && *_Format) {
    BoolWords words;
    const bool hasBar = SplitBoolFormat(_Format, words);
    if (hasBar && EqualNoCase(text, words.m_True))
      Set(true);
    else if (hasBar && EqualNoCase(text, words.m_False))
      Set(false);
    else if (hasBar && words.m_HasNull && EqualNoCase(text, words.m_Null))
      SetNull();
    else
      ZT_WARNING("ZTBool::SetString: Invalid value '%s' for formatting information '%s'.",
                 text.c_str(), _Format);
  } else if (text[0] && std::strchr("0Nn", text[0])) {
    Set(false);
  } else if (text[0] && std::strchr("1JYjy", text[0])) {
    Set(true);
  } else if (EqualNoCase(text, s_True) || text == "-1") {
    Set(true);
  } else if (EqualNoCase(text, s_False)) {
    Set(false);
  } else {
    SetNull();
  }
  return _Str;
}

const char* ZTBool::CopyIntoString(ZTString& _Str, const char* _Format) const {
  BoolWords words;
  std::string_view yes = "?", no = "?", null = _Format ? _Format : "";
  const auto is = [_Format](const char* _A, const char* _B) {
    return std::strcmp(_Format, _A) == 0 || std::strcmp(_Format, _B) == 0;
  };
  if (!_Format || !*_Format || ::strcasecmp(_Format, ".true.") == 0 ||
      ::strcasecmp(_Format, ".false.") == 0) {
    yes = s_True;
    no = s_False;
  } else if (_Format[0] != '|' && SplitBoolFormat(_Format, words)) {
    yes = words.m_True;
    no = words.m_False;
    if (words.m_HasNull) null = words.m_Null;
  } else if (is(".t.", ".f.")) {
    yes = "y";
    no = "n";
  } else if (is(".T.", ".F.")) {
    yes = "Y";
    no = "N";
  } else if (is(".w.", ".u.")) {
    yes = "j";
    no = "n";
  } else if (is(".W.", ".U.")) {
    yes = "J";
    no = "N";
  } else if (std::strcmp(_Format, "#") == 0) {
    yes = "1";
    no = "0";
  }
  const std::string_view text = IsNull() ? null : (m_Val ? yes : no);
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTBool::Get(void* _Buffer, unsigned int _Size) const {
  const unsigned char byte = m_Val ? 1 : 0;
  return CopyNative(*this, &byte, sizeof byte, _Buffer, _Size);
}

ZTCmpResult ZTBool::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  bool other;
  if (const ZTBool* b = ZTDynamicCastT<ZTBool>(&_Value)) {
    other = b->m_Val;
  } else {
    ZTBool converted;
    converted.SetValue(_Value);
    if (converted.IsNull()) return CmpGreater;
    other = converted.m_Val;
  }
  return ToCmpResult(Compare3(m_Val, other));
}

// ---------------------------------------------------------------------------
// ZTInteger

const char ZTInteger::m_ZTType[] = "int";
ZT_IMPLEMENT_CLASS(ZTInteger, ZTValue, ZTValueCreator, ZTInteger::m_ZTType)

ZTInteger::ZTInteger(int _Val) { Set(_Val); }

void ZTInteger::Set(int _Val) {
  if (!IsNull() && m_Val == _Val) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Val = _Val;
  Changed();
}

void ZTInteger::Set(const ZTInteger& _Val) {
  if (_Val.IsNull())
    SetNull();
  else
    Set(_Val.m_Val);
}

ZTInteger& ZTInteger::operator++() {
  Set(Wrap(std::int64_t{m_Val} + 1));
  return *this;
}

ZTInteger& ZTInteger::operator--() {
  Set(Wrap(std::int64_t{m_Val} - 1));
  return *this;
}

ZTInteger ZTInteger::operator++(int) const { return ZTInteger(Wrap(std::int64_t{m_Val} + 1)); }

ZTInteger ZTInteger::operator--(int) const { return ZTInteger(Wrap(std::int64_t{m_Val} - 1)); }

ZTInteger& ZTInteger::operator~() {
  Set(~m_Val);
  return *this;
}

ZTInteger& ZTInteger::operator!() {
  Set(!m_Val);
  return *this;
}

ZTInteger& ZTInteger::operator-() {
  Set(Wrap(-std::int64_t{m_Val}));
  return *this;
}

ZTInteger& ZTInteger::operator+() {
  Set(m_Val);
  return *this;
}

ZTInteger& ZTInteger::operator*=(int _Val) {
  Set(Wrap(std::int64_t{m_Val} * _Val));
  return *this;
}

// Division by zero has no result; INT_MIN / -1 wraps like the machine's.
ZTInteger& ZTInteger::operator/=(int _Val) {
  ZT_COND_CHECK(_Val != 0);
  Set(Wrap(std::int64_t{m_Val} / _Val));
  return *this;
}

ZTInteger& ZTInteger::operator%=(int _Val) {
  ZT_COND_CHECK(_Val != 0);
  Set(static_cast<int>(std::int64_t{m_Val} % _Val));
  return *this;
}

ZTInteger& ZTInteger::operator+=(int _Val) {
  Set(Wrap(std::int64_t{m_Val} + _Val));
  return *this;
}

ZTInteger& ZTInteger::operator-=(int _Val) {
  Set(Wrap(std::int64_t{m_Val} - _Val));
  return *this;
}

// Shift counts are taken modulo 32, as the processor takes them.
ZTInteger& ZTInteger::operator<<=(int _Val) {
  Set(Wrap(std::int64_t{static_cast<std::uint32_t>(m_Val) << (_Val & 31)}));
  return *this;
}

ZTInteger& ZTInteger::operator>>=(int _Val) {
  Set(m_Val >> (_Val & 31));
  return *this;
}

ZTInteger& ZTInteger::operator&=(int _Val) {
  Set(m_Val & _Val);
  return *this;
}

ZTInteger& ZTInteger::operator|=(int _Val) {
  Set(m_Val | _Val);
  return *this;
}

ZTInteger& ZTInteger::operator^=(int _Val) {
  Set(m_Val ^ _Val);
  return *this;
}

void ZTInteger::Copy(const ZTObject* _Src) {
  ZT_COND_CHECK(_Src && GetClassType() == _Src->GetClassType());
  Set(*static_cast<const ZTInteger*>(_Src));
}

ZTCmpResult ZTInteger::Cmp(const ZTObject* _Obj) const {
  ZT_COND_CHECK(_Obj != NULL);
  ZT_COND_CHECK(IsKindOf(_Obj));
  return CmpAsValue(*this, _Obj);
}

const char* ZTInteger::GetTypeName() const { return m_ZTType; }

void ZTInteger::SetNull() {
  ZTValue::SetNull();
  m_Val = 0;
}

void ZTInteger::SetEmpty() { SetNull(); }

ZTValue* ZTInteger::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull()) {
    SetNull();
  } else if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value)) {
    Set(integer->m_Val);
  } else if (const ZTString* str = ZTDynamicCastT<ZTString>(&_Value)) {
    SetString(static_cast<const char*>(*str), -1, nullptr);
  } else if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value)) {
    Set(real->GetInt());
  } else if (const ZTBool* b = ZTDynamicCastT<ZTBool>(&_Value)) {
    Set(b->GetBool() ? 1 : 0);
  } else {
    SetString(_Value.GetString(), -1, nullptr);
  }
  return this;
}

// Decimal digits after an optional sign, up to the first other character, as
// atoi reads them; a number beyond the 32-bit range is refused, since atoi's
// answer for it is undefined.
const char* ZTInteger::SetString(const char* _Str, int _Len, const char*) {
  if (!_Str) {
    SetNull();
    return _Str;
  }
  const std::string text(_Str, TextLength(_Str, _Len));
  if (text.empty()) {
    SetNull();
    return _Str;
  }
  const std::string_view trimmed = Trimmed(text);
  if (trimmed.empty() || !(trimmed[0] == '+' || trimmed[0] == '-' || IsDigit(trimmed[0])))
    ZT_THROW_FMT("The string '%s' is not an integer", text.c_str());
  const bool negative = trimmed[0] == '-';
  std::size_t i = IsDigit(trimmed[0]) ? 0 : 1;
  std::int64_t value = 0;
  const std::int64_t limit = negative ? -std::int64_t{INT_MIN} : INT_MAX;
  for (; i < trimmed.size() && IsDigit(trimmed[i]); ++i) {
    value = value * 10 + (trimmed[i] - '0');
    if (value > limit) ZT_THROW_FMT("The string '%s' is out of the integer range", text.c_str());
  }
  Set(static_cast<int>(negative ? -value : value));
  return _Str;
}

const char* ZTInteger::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (IsNull()) return AssignText(_Str, "", 0);
  const char* format = _Format ? _Format : "%d";
  if (!IsSafeFormat(format, FormatArg::Int)) {
    ZT_WARNING("ZTInteger::CopyIntoString: Invalid format '%s', '%%d' used instead.", format);
    format = "%d";
  }
  const std::string text = FormatNumber(format, m_Val);
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTInteger::Get(void* _Buffer, unsigned int _Size) const {
  const std::int32_t native = m_Val;
  return CopyNative(*this, &native, sizeof native, _Buffer, _Size);
}

ZTCmpResult ZTInteger::Cmp(const ZTValue& _Value) const {
  if (const ZTString* str = ZTDynamicCastT<ZTString>(&_Value)) {
    ZTInteger other;
    other.SetString(static_cast<const char*>(*str), -1, nullptr);
    // The one exception to the null rules: a text that reads as no number or
    // as zero equals a null integer.
    if (IsNull()) return other.IsNull() || other.m_Val == 0 ? CmpEqual : CmpLess;
    return other.IsNull() ? CmpGreater : ToCmpResult(Compare3(m_Val, other.m_Val));
  }
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value))
    return ToCmpResult(Compare3(m_Val, integer->m_Val));
  if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value))
    return CmpDouble(GetDouble(), real->GetDouble());
  return ZTValue::Cmp(_Value);
}

// ---------------------------------------------------------------------------
// ZTReal

const char ZTReal::m_ZTType[] = "real";
ZT_IMPLEMENT_CLASS(ZTReal, ZTValue, ZTValueCreator, ZTReal::m_ZTType)

namespace {

// The named formats of reals: each is printed with its own C format, and a
// null value prints the format's zero text.
struct NamedRealFormat {
  const char* m_Name;
  const char* m_CFormat;
  const char* m_NullText;
};

constexpr NamedRealFormat s_RealFormats[] = {
    {"#.##0,00", "%0.02f", "0.00"},       {"0.00", "%0.02f", "0.00"},
    {"#.##0,000", "%0.03f", "0.000"},     {"0.000", "%0.03f", "0.000"},
    {"#.##0,0000", "%0.04f", "0.0000"},   {"0.0000", "%0.04f", "0.0000"},
    {"#.##0,0", "%0.01f", "0.0"},         {"0.0", "%0.01f", "0.0"},
    {"#.##0,0\"0\"", "%0.01f0", "0.00"},  {"#.##0,0'0'", "%0.01f0", "0.00"},
    {"0.0\"0\"", "%0.01f0", "0.00"},      {"0.0'0'", "%0.01f0", "0.00"},
    {"#.##0", "%.0f", "0"},               {"0", "%.0f", "0"},
};

const NamedRealFormat* FindRealFormat(const char* _Format) {
  for (const NamedRealFormat& named : s_RealFormats)
    if (::strcasecmp(named.m_Name, _Format) == 0) return &named;
  return nullptr;
}

}  // namespace

ZTReal::ZTReal(double _Val) { Set(_Val); }

// Same value means the same bits: -0.0 differs from 0.0 in its text, and a
// NaN stored over the same NaN is no change.
void ZTReal::Set(double _Val) {
  if (!IsNull() && std::memcmp(&m_Val, &_Val, sizeof _Val) == 0) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Val = _Val;
  Changed();
}

void ZTReal::Set(const ZTReal& _Val) {
  if (_Val.IsNull())
    SetNull();
  else
    Set(_Val.m_Val);
}

int ZTReal::GetInt() const {
  if (std::isnan(m_Val)) return 0;
  if (m_Val <= INT_MIN) return INT_MIN;
  if (m_Val >= INT_MAX) return INT_MAX;
  return static_cast<int>(m_Val);
}

ZTReal& ZTReal::operator++() {
  Set(m_Val + 1.0);
  return *this;
}

ZTReal& ZTReal::operator--() {
  Set(m_Val - 1.0);
  return *this;
}

ZTReal ZTReal::operator++(int) const { return ZTReal(m_Val + 1.0); }

ZTReal ZTReal::operator--(int) const { return ZTReal(m_Val - 1.0); }

ZTReal& ZTReal::operator!() {
  Set(m_Val == 0.0 ? 1.0 : 0.0);
  return *this;
}

ZTReal& ZTReal::operator-() {
  Set(-m_Val);
  return *this;
}

ZTReal& ZTReal::operator+() {
  Set(m_Val);
  return *this;
}

ZTReal& ZTReal::operator*=(double _Val) {
  Set(m_Val * _Val);
  return *this;
}

// Refused like the integer division, so that no infinity enters a value.
ZTReal& ZTReal::operator/=(double _Val) {
  ZT_COND_CHECK(_Val != 0.0);
  Set(m_Val / _Val);
  return *this;
}

ZTReal& ZTReal::operator+=(double _Val) {
  Set(m_Val + _Val);
  return *this;
}

ZTReal& ZTReal::operator-=(double _Val) {
  Set(m_Val - _Val);
  return *this;
}

void ZTReal::Copy(const ZTObject* _Src) {
  ZT_COND_CHECK(_Src && GetClassType() == _Src->GetClassType());
  Set(*static_cast<const ZTReal*>(_Src));
}

ZTCmpResult ZTReal::Cmp(const ZTObject* _Obj) const {
  ZT_COND_CHECK(_Obj != NULL);
  ZT_COND_CHECK(IsKindOf(_Obj));
  return CmpAsValue(*this, _Obj);
}

const char* ZTReal::GetTypeName() const { return m_ZTType; }

void ZTReal::SetNull() {
  ZTValue::SetNull();
  m_Val = 0.0;
}

void ZTReal::SetEmpty() { SetNull(); }

ZTValue* ZTReal::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  double value;
  if (_Value.IsNull())
    SetNull();
  else if (NumericValue(_Value, value))
    Set(value);
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

// An empty text is taken as no text, like a length of 0. A number too large
// for a double is refused rather than stored as an infinity.
const char* ZTReal::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str || _Len == 0) {
    SetNull();
    return _Str;
  }
  const std::string text(_Str, TextLength(_Str, _Len));
  if (text.empty()) {
    SetNull();
    return _Str;
  }
  // Without a format the decimal comma is accepted: points are then
  // thousands separators and the first comma is the decimal point.
  std::string number;
  const std::size_t comma = text.find(',');
  if ((!_Format || !*_Format) && comma != std::string::npos) {
    for (std::size_t i = 0; i < text.size(); ++i)
      if (i == comma)
        number += '.';
      else if (text[i] != '.')
        number += text[i];
  } else {
    number = text;
  }
  errno = 0;
  const double value = std::strtod(number.c_str(), nullptr);
  if (errno == ERANGE && std::isinf(value))
    ZT_THROW_FMT("The string '%s' is out of the range of a real", text.c_str());
  Set(value);
  return _Str;
}

const char* ZTReal::CopyIntoString(ZTString& _Str, const char* _Format) const {
  std::string text;
  if (!_Format) {
    if (!IsNull()) {
      text = FormatNumber("%f", m_Val);
      StripZeros(text);
    }
  } else if (*_Format) {
    if (const NamedRealFormat* named = FindRealFormat(_Format)) {
      text = IsNull() ? named->m_NullText : FormatNumber(named->m_CFormat, m_Val);
    } else {
      const char* format = _Format;
      if (!IsSafeFormat(format, FormatArg::Double)) {
        ZT_WARNING("ZTReal::CopyIntoString: Invalid format '%s', '%%f' used instead.", format);
        format = "%f";
      }
      text = FormatNumber(format, IsNull() ? 0.0 : m_Val);
      StripZeros(text);
    }
    if (_Format[0] == '#') GroupDigits(text);
  }
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTReal::Get(void* _Buffer, unsigned int _Size) const {
  return CopyNative(*this, &m_Val, sizeof m_Val, _Buffer, _Size);
}

ZTCmpResult ZTReal::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  double other;
  if (NumericValue(_Value, other)) return CmpDouble(m_Val, other);
  return ZTValue::Cmp(_Value);
}

// ---------------------------------------------------------------------------
// ZTCharacter

const char ZTCharacter::m_ZTType[] = "character";
ZT_IMPLEMENT_CLASS(ZTCharacter, ZTValue, ZTValueCreator, ZTCharacter::m_ZTType)

ZTCharacter::ZTCharacter(char _Val) { Set(_Val); }

ZTCharacter::ZTCharacter(int _Val) { Set(_Val); }

void ZTCharacter::Set(int _Val) {
  const char ch = static_cast<char>(_Val);
  if (!IsNull() && m_Val == ch) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Val = ch;
  Changed();
}

void ZTCharacter::Set(const ZTCharacter& _Val) {
  if (_Val.IsNull())
    SetNull();
  else
    Set(_Val.m_Val);
}

void ZTCharacter::Copy(const ZTObject* _Src) {
  ZT_COND_CHECK(_Src && GetClassType() == _Src->GetClassType());
  Set(*static_cast<const ZTCharacter*>(_Src));
}

ZTCmpResult ZTCharacter::Cmp(const ZTObject* _Obj) const {
  ZT_COND_CHECK(_Obj != NULL);
  ZT_COND_CHECK(IsKindOf(_Obj));
  return CmpAsValue(*this, _Obj);
}

const char* ZTCharacter::GetTypeName() const { return m_ZTType; }

void ZTCharacter::SetNull() {
  ZTValue::SetNull();
  m_Val = 0;
}

void ZTCharacter::SetEmpty() { SetNull(); }

ZTValue* ZTCharacter::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull())
    SetNull();
  else if (const ZTCharacter* ch = ZTDynamicCastT<ZTCharacter>(&_Value))
    Set(ch->m_Val);
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

const char* ZTCharacter::SetString(const char* _Str, int _Len, const char*) {
  if (!_Str)
    SetNull();
  else
    Set(TextLength(_Str, _Len) ? _Str[0] : '\0');
  return _Str;
}

const char* ZTCharacter::CopyIntoString(ZTString& _Str, const char*) const {
  return AssignText(_Str, &m_Val, IsNull() || !m_Val ? 0 : 1);
}

unsigned int ZTCharacter::Get(void* _Buffer, unsigned int _Size) const {
  return CopyNative(*this, &m_Val, sizeof m_Val, _Buffer, _Size);
}

ZTCmpResult ZTCharacter::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  if (const ZTCharacter* ch = ZTDynamicCastT<ZTCharacter>(&_Value))
    return ToCmpResult(Compare3<signed char>(m_Val, ch->m_Val));
  return ZTValue::Cmp(_Value);
}

// ---------------------------------------------------------------------------
// ZTPointer

// Automatic objects are not reference counted: the holder only points at them.
ZTPointer::ZTPointer(ZTObject* _Obj) { SetObject(_Obj); }

ZTPointer::ZTPointer(const ZTPointer& _Src) { SetObject(_Src.m_Object); }

ZTPointer::~ZTPointer() { Release(); }

void ZTPointer::Release() {
  if (m_Object && m_Counted) m_Object->Detach();
  m_Object = nullptr;
  m_Counted = true;
}

void ZTPointer::SetObject(ZTObject* _Obj) {
  if (_Obj == m_Object) return;
  const bool counted = _Obj && !_Obj->IsAutoDelete();
  if (counted) _Obj->Attach();
  Release();
  m_Object = _Obj;
  m_Counted = counted || !_Obj;
}

ZTObject* ZTPointer::operator->() const {
  ZT_COND_CHECK(m_Object != NULL);
  return m_Object;
}

ZTObject& ZTPointer::operator*() const {
  ZT_COND_CHECK(m_Object != NULL);
  return *m_Object;
}

ZTCmpResult ZTPointer::Cmp(const ZTPointer& _Ptr) const {
  return &_Ptr == this || _Ptr.m_Object == m_Object ? CmpEqual : CmpNotEqual;
}

ZTCmpResult ZTPointer::Cmp(const ZTObject* _Obj) const {
  if (m_Object == _Obj) return CmpEqual;
  if (!m_Object) return CmpNotEqual;
  return m_Object->Cmp(_Obj);
}
