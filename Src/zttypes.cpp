// Scalar values: ZTBool, ZTInteger, ZTReal, ZTCharacter, the pointer holder,
// and the calendar values ZTDate, ZTTime and ZTTimestamp.
#include "zttypes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <strings.h>

#include "ztcurrency.h"
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
  } else if (const ZTCurrency* currency = ZTDynamicCastT<ZTCurrency>(&_Value)) {
    _Result = currency->GetDouble();
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
  CheckCopySource(_Src);
  Set(*static_cast<const ZTBool*>(_Src));
}

ZTCmpResult ZTBool::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
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
  CheckCopySource(_Src);
  Set(*static_cast<const ZTInteger*>(_Src));
}

ZTCmpResult ZTInteger::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
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
  } else if (const ZTCurrency* currency = ZTDynamicCastT<ZTCurrency>(&_Value)) {
    Set(currency->GetInt());
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
  if (const ZTCurrency* currency = ZTDynamicCastT<ZTCurrency>(&_Value))
    return ZTCurrency(*this).Cmp(*currency);
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
  CheckCopySource(_Src);
  Set(*static_cast<const ZTReal*>(_Src));
}

ZTCmpResult ZTReal::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
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
  CheckCopySource(_Src);
  Set(*static_cast<const ZTCharacter*>(_Src));
}

ZTCmpResult ZTCharacter::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
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

// ---------------------------------------------------------------------------
// Calendar values: day numbers, layouts and sub-values shared by ZTDate,
// ZTTime and ZTTimestamp.

namespace {

// The day number of a date in the proleptic Gregorian calendar, valid from
// 1 March of year 0 on. Computed wide, so that no year or day count given by
// a caller can overflow.
constexpr long long DayNumber(long long _Year, long long _Month, long long _Day) {
  if (_Month > 2) {
    _Month -= 3;
  } else {
    _Month += 9;
    --_Year;
  }
  const long long century = _Year / 100;
  const long long yearOfCentury = _Year - 100 * century;
  return 146097 * century / 4 + 1461 * yearOfCentury / 4 + (153 * _Month + 2) / 5 + _Day + 1721119;
}

struct CalendarDate {
  long long m_Year;
  unsigned m_Month;
  unsigned m_Day;
};

// The inverse of DayNumber.
constexpr CalendarDate FromDayNumber(long long _DayNum) {
  long long j = _DayNum - 1721119;
  long long y = (4 * j - 1) / 146097;
  j = 4 * j - 1 - 146097 * y;
  long long d = j / 4;
  j = (4 * d + 3) / 1461;
  d = 4 * d + 3 - 1461 * j;
  d = (d + 4) / 4;
  long long m = (5 * d - 3) / 153;
  d = 5 * d - 3 - 153 * m;
  d = (d + 5) / 5;
  y = 100 * y + j;
  if (m < 10) {
    m += 3;
  } else {
    m -= 9;
    ++y;
  }
  return {y, static_cast<unsigned>(m), static_cast<unsigned>(d)};
}

// Dates run from the first year of the Gregorian calendar in the English
// speaking world to the last year Set accepts; every date in between prints
// with four year digits and reads back as itself.
constexpr long long MinYear = 1752;
constexpr long long MaxYear = 2500;
constexpr long long MinJulDayNum = DayNumber(MinYear, 1, 1);
constexpr long long MaxJulDayNum = DayNumber(MaxYear, 12, 31);
// Timestamps take years below 1000 as 1000 more.
constexpr unsigned TimestampYearOffset = 1000;
constexpr unsigned SecondsPerDay = 86400;

static_assert(FromDayNumber(MaxJulDayNum).m_Year == MaxYear, "day numbers invert");

// The parts offered as sub-values, in the order of their names.
enum Part { PartYear, PartMonth, PartDay, PartHour, PartMinute, PartSecond, PartCount };
using PartValues = std::array<unsigned, PartCount>;

// Part names, layouts and the word "current" are ASCII; their comparison must
// not follow the user's locale.
bool EqualNoCaseAscii(std::string_view _A, std::string_view _B) {
  const auto lower = [](char _Ch) { return _Ch >= 'A' && _Ch <= 'Z' ? char(_Ch - 'A' + 'a') : _Ch; };
  if (_A.size() != _B.size()) return false;
  for (std::size_t i = 0; i < _A.size(); ++i)
    if (lower(_A[i]) != lower(_B[i])) return false;
  return true;
}

bool IsCurrentText(std::string_view _Text) { return EqualNoCaseAscii(_Text, "current"); }

// The part of that name among _First to _Last, -1 when none.
int FindPart(std::string_view _Name, Part _First, Part _Last) {
  static const char* const names[PartCount] = {ZTDate::sm_Year,   ZTDate::sm_Month,
                                                ZTDate::sm_Day,    ZTTime::sm_Hour,
                                                ZTTime::sm_Minute, ZTTime::sm_Second};
  for (int part = _First; part <= _Last; ++part)
    if (EqualNoCaseAscii(_Name, names[part])) return part;
  return -1;
}

// Sub-values handed out by GetValue: one integer per owner and part, made on
// the first request and kept up to date with every store of its owner until
// the owner goes. Values are single-threaded, the table is library-wide.
class PartRegistry {
 public:
  using Slots = std::array<ZTInteger*, PartCount>;

  static PartRegistry& Instance() {
    // Values may outlive static destruction: never torn down.
    static PartRegistry* registry = new PartRegistry;
    return *registry;
  }

  ZTInteger* Get(const ZTValue& _Owner, int _Part) {
    std::lock_guard<std::mutex> lock(m_Lock);
    ZTInteger*& slot = m_Parts[&_Owner][_Part];
    if (!slot) {
      slot = new ZTInteger;
      slot->Attach();
      _Owner.SetFlag(ZTValue::FlagHasValueParts);
    }
    return slot;
  }

  Slots Find(const ZTValue& _Owner) {
    std::lock_guard<std::mutex> lock(m_Lock);
    const auto it = m_Parts.find(&_Owner);
    return it == m_Parts.end() ? Slots{} : it->second;
  }

  // Released outside the lock: a part's destruction takes other locks.
  void Drop(const ZTValue& _Owner) {
    Slots slots{};
    {
      std::lock_guard<std::mutex> lock(m_Lock);
      const auto it = m_Parts.find(&_Owner);
      if (it == m_Parts.end()) return;
      slots = it->second;
      m_Parts.erase(it);
    }
    for (ZTInteger* part : slots)
      if (part) part->Detach();
  }

 private:
  std::mutex m_Lock;
  std::unordered_map<const ZTValue*, Slots> m_Parts;
};

// A part of 0 (a null owner included) is a null integer.
void AssignPart(ZTInteger& _Part, unsigned _Value) {
  if (_Value == 0)
    _Part.SetNull();
  else
    _Part.Set(static_cast<int>(_Value));
}

PartValues PartsOf(const ZTDate& _Date) {
  PartValues parts{};
  _Date.GetYearMonthDay(parts[PartYear], parts[PartMonth], parts[PartDay]);
  return parts;
}

PartValues PartsOf(const ZTTime& _Time) {
  PartValues parts{};
  _Time.GetHourMinuteSecond(parts[PartHour], parts[PartMinute], parts[PartSecond]);
  return parts;
}

PartValues PartsOf(const ZTTimestamp& _Stamp) {
  return {_Stamp.GetYear(), _Stamp.GetMonth(),  _Stamp.GetDay(),
          _Stamp.GetHour(), _Stamp.GetMinute(), _Stamp.GetSecond()};
}

template <class T>
const ZTValue* PartValue(const T& _Owner, int _Part) {
  ZTInteger* part = PartRegistry::Instance().Get(_Owner, _Part);
  AssignPart(*part, PartsOf(_Owner)[_Part]);
  return part;
}

// Called by every store, before the change is announced.
template <class T>
void UpdateParts(const T& _Owner) {
  if (!_Owner.IsFlagSet(ZTValue::FlagHasValueParts)) return;
  const PartValues values = PartsOf(_Owner);
  const PartRegistry::Slots slots = PartRegistry::Instance().Find(_Owner);
  for (int part = 0; part < PartCount; ++part)
    if (slots[part]) AssignPart(*slots[part], values[part]);
}

void DropParts(const ZTValue& _Owner) {
  if (!_Owner.IsFlagSet(ZTValue::FlagHasValueParts)) return;
  PartRegistry::Instance().Drop(_Owner);
  _Owner.ClearFlag(ZTValue::FlagHasValueParts);
}

// The integer a part is set to (null counts as 0).
int IntegerOf(const ZTValue& _Value) {
  ZTInteger number;
  number.SetValue(_Value);
  return number.GetInt();
}

// Layout letters of one field, tried in order.
using Letters = std::initializer_list<const char*>;

// Where the first of the letter groups that occurs stands in the layout;
// npos when none does.
std::size_t FindField(std::string_view _Layout, Letters _Groups, std::size_t& _GroupLen) {
  for (const char* group : _Groups) {
    const std::size_t pos = _Layout.find(group);
    if (pos != std::string_view::npos) {
      _GroupLen = std::strlen(group);
      return pos;
    }
  }
  return std::string_view::npos;
}

// The number in the characters of the text at the place of the field: the
// long groups take _LongWidth characters, else the short groups _ShortWidth.
// A field missing from the layout or beyond the text reads as 0.
int ReadField(std::string_view _Text, std::string_view _Layout, Letters _LongGroups,
              std::size_t _LongWidth, Letters _ShortGroups = {}, std::size_t _ShortWidth = 0) {
  std::size_t groupLen;
  std::size_t width = _LongWidth;
  std::size_t pos = FindField(_Layout, _LongGroups, groupLen);
  if (pos == std::string_view::npos) {
    pos = FindField(_Layout, _ShortGroups, groupLen);
    width = _ShortWidth;
  }
  if (pos >= _Text.size()) return 0;
  const std::string_view digits = _Text.substr(pos, width);
  return ZTString(digits.data(), static_cast<unsigned>(digits.size())).GetInt();
}

// Overwrites the first field of the groups found in the text with the number
// in the C format; false when the text has none of them. A number longer than
// its letters (a one-letter field of 10 or more) is written in full.
bool WriteField(std::string& _Text, Letters _Groups, const char* _Format, unsigned _Value) {
  std::size_t groupLen;
  const std::size_t pos = FindField(_Text, _Groups, groupLen);
  if (pos == std::string::npos) return false;
  char digits[16];
  const int len = std::snprintf(digits, sizeof digits, _Format, static_cast<int>(_Value));
  _Text.replace(pos, groupLen, digits, static_cast<std::size_t>(len));
  return true;
}

const Letters YearLetters = {"yyyy", "YYYY", "jjjj", "JJJJ"};
const Letters ShortYearLetters = {"yy", "YY", "jj", "JJ"};
const Letters DayLetters = {"dd", "DD"};
const Letters ShortDayLetters = {"d", "D"};
const Letters SecondLetters = {"ss", "SS"};

void WriteYear(std::string& _Text, const char* _Format, unsigned _Year) {
  if (!WriteField(_Text, YearLetters, _Format, _Year))
    WriteField(_Text, ShortYearLetters, "%02d", _Year % 100);
}

void WriteDay(std::string& _Text, unsigned _Day) {
  if (!WriteField(_Text, DayLetters, "%02d", _Day)) WriteField(_Text, ShortDayLetters, "%d", _Day);
}

void WriteTime(std::string& _Text, Letters _HourLetters, unsigned _Hour, unsigned _Minute,
               unsigned _Second) {
  if (!WriteField(_Text, _HourLetters, "%02d", _Hour)) WriteField(_Text, {"h", "H"}, "%d", _Hour);
  if (!WriteField(_Text, {"mm", "mi", "nn"}, "%02d", _Minute)) WriteField(_Text, {"m"}, "%d", _Minute);
  if (!WriteField(_Text, SecondLetters, "%02d", _Second)) WriteField(_Text, {"s", "S"}, "%d", _Second);
}

// The layouts: the format argument, else the user's short layouts.
std::string Layout(const char* _Format, const char* _Default) {
  const char* layout = _Format ? _Format : _Default;
  return layout ? layout : "";
}

std::string DateLayout(const char* _Format) {
  return Layout(_Format, ZTIntlFormat::IntlFormat().GetShortDateFormat());
}

std::string TimeLayout(const char* _Format) {
  return Layout(_Format, ZTIntlFormat::IntlFormat().GetShortTimeFormat());
}

std::string TimestampLayout(const char* _Format) {
  if (_Format) return _Format;
  std::string layout = DateLayout(nullptr);
  if (!layout.empty()) layout += ' ';
  return layout + TimeLayout(nullptr);
}

// Local time of now, null when the C library cannot tell it.
const std::tm* LocalNow(std::tm& _Buffer) {
  const std::time_t now = std::time(nullptr);
  return localtime_r(&now, &_Buffer);
}

// A leap second is not a time of day a value can hold.
unsigned SecondOf(const std::tm& _Now) { return static_cast<unsigned>(std::min(_Now.tm_sec, 59)); }

}  // namespace

// The range checks of the parts keep their conditions as the messages show
// them; the lower bounds are always true for unsigned parts (which the
// compiler would note).
// Macros, so that a failed check names the public operation that made it.
#define ZT_CHECK_MONTH_DAY()                                                  \
  _Pragma("GCC diagnostic push");                                             \
  _Pragma("GCC diagnostic ignored \"-Wtype-limits\"");                        \
  ZT_COND_CHECK_MSG(0 <= _Month && _Month <= 12, "Invalid number for month"); \
  ZT_COND_CHECK_MSG(0 <= _Day && _Day <= 31, "Invalid number for day");       \
  _Pragma("GCC diagnostic pop")

#define ZT_CHECK_TIME_PARTS()                                                    \
  _Pragma("GCC diagnostic push");                                                \
  _Pragma("GCC diagnostic ignored \"-Wtype-limits\"");                           \
  ZT_COND_CHECK_MSG(0 <= _Hour && _Hour <= 24, "Invalid number for hour");       \
  ZT_COND_CHECK_MSG(0 <= _Minute && _Minute <= 59, "Invalid number for minute"); \
  ZT_COND_CHECK_MSG(0 <= _Second && _Second <= 59, "Invalid number for second"); \
  _Pragma("GCC diagnostic pop")

// ---------------------------------------------------------------------------
// ZTDate

const char ZTDate::m_ZTType[] = "date";
const char ZTDate::sm_Year[] = "Year";
const char ZTDate::sm_Month[] = "Month";
const char ZTDate::sm_Day[] = "Day";
ZT_IMPLEMENT_CLASS(ZTDate, ZTValue, ZTValueCreator, ZTDate::m_ZTType)

ZTDate::ZTDate(unsigned _Year, unsigned _Month, unsigned _Day) { Set(_Year, _Month, _Day); }

ZTDate::ZTDate(const char* _Str) {
  SetString(_Str, -1, nullptr);
  Clean();
}

ZTDate::~ZTDate() { DropParts(*this); }

void ZTDate::Set(unsigned _Year, unsigned _Month, unsigned _Day) {
  if (_Year > MaxYear) _Year = MaxYear;
  ZT_CHECK_MONTH_DAY();
  Store(GetJulDayNum(_Year, _Month, _Day));
}

void ZTDate::Set(const ZTDate& _Date) { Store(_Date.m_JulDayNum); }

void ZTDate::Store(unsigned _JulDayNum) {
  if (_JulDayNum == 0) {
    SetNull();
    return;
  }
  if (!IsNull() && m_JulDayNum == _JulDayNum) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_JulDayNum = _JulDayNum;
  UpdateParts(*this);
  Changed();
}

// Computed years are full years: below the first valid year the date is
// invalid (never a two-digit year), above the last it is capped as Set caps
// it, and the day is kept within the month.
void ZTDate::SetClamped(long long _Year, unsigned _Month, unsigned _Day) {
  if (_Year < MinYear) {
    SetNull();
    return;
  }
  const unsigned year = static_cast<unsigned>(std::min(_Year, MaxYear));
  Set(year, _Month, std::min(_Day, GetDaysInMonth(year, _Month)));
}

unsigned ZTDate::GetYear() const {
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  return year;
}

unsigned ZTDate::GetMonth() const {
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  return month;
}

unsigned ZTDate::GetDay() const {
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  return day;
}

void ZTDate::GetYearMonthDay(unsigned& _Year, unsigned& _Month, unsigned& _Day) const {
  if (IsNull()) {
    _Year = _Month = _Day = 0;
    return;
  }
  const CalendarDate date = FromDayNumber(m_JulDayNum);
  _Year = static_cast<unsigned>(date.m_Year);
  _Month = date.m_Month;
  _Day = date.m_Day;
}

unsigned ZTDate::GetDayOfYear() const {
  if (IsNull()) return 0;
  return static_cast<unsigned>(m_JulDayNum - DayNumber(GetYear(), 1, 1) + 1);
}

ZTDate::Weekday ZTDate::GetDayOfWeek() const { return static_cast<Weekday>((m_JulDayNum + 1) % 7); }

unsigned ZTDate::GetDaysInMonth() const {
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  return GetDaysInMonth(year, month);
}

bool ZTDate::IsLeapYear() const { return !IsNull() && IsLeapYear(GetYear()); }

void ZTDate::AddDays(unsigned _Days) {
  if (IsNull() || _Days == 0) return;
  ZT_COND_CHECK_MSG(_Days <= MaxJulDayNum - m_JulDayNum, "Date out of range");
  Store(m_JulDayNum + _Days);
}

void ZTDate::SubDays(unsigned _Days) {
  if (IsNull() || _Days == 0) return;
  ZT_COND_CHECK_MSG(_Days <= m_JulDayNum - MinJulDayNum, "Date out of range");
  Store(m_JulDayNum - _Days);
}

void ZTDate::AddMonths(unsigned _Months) {
  if (IsNull() || _Months == 0) return;
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  const unsigned long long months = month - 1ULL + _Months;
  SetClamped(year + static_cast<long long>(months / 12), static_cast<unsigned>(months % 12 + 1),
             day);
}

void ZTDate::SubMonths(unsigned _Months) {
  if (IsNull() || _Months == 0) return;
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  long long newYear = year - static_cast<long long>(_Months / 12);
  const unsigned rest = _Months % 12;
  if (rest >= month) {
    month = month + 12 - rest;
    --newYear;
  } else {
    month -= rest;
  }
  SetClamped(newYear, month, day);
}

void ZTDate::AddYears(unsigned _Years) {
  if (IsNull() || _Years == 0) return;
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  SetClamped(year + static_cast<long long>(_Years), month, day);
}

void ZTDate::SubYears(unsigned _Years) {
  if (IsNull() || _Years == 0) return;
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  SetClamped(year - static_cast<long long>(_Years), month, day);
}

ZTDate ZTDate::operator+(unsigned _Days) const {
  ZTDate date(*this);
  date.AddDays(_Days);
  return date;
}

ZTDate ZTDate::operator-(unsigned _Days) const {
  ZTDate date(*this);
  date.SubDays(_Days);
  return date;
}

ZTDate operator+(unsigned _Days, const ZTDate& _Date) { return _Date + _Days; }

ZTDate operator-(unsigned _Days, const ZTDate& _Date) { return _Date - _Days; }

int ZTDate::Diff(const ZTDate& _Date) const {
  return static_cast<int>(static_cast<long long>(m_JulDayNum) - _Date.m_JulDayNum);
}

void ZTDate::SkipToNextWeekday(Weekday _Weekday) {
  ZT_COND_CHECK(Sunday <= _Weekday && _Weekday <= Saturday);
  if (IsNull()) return;
  const unsigned ahead = (_Weekday - GetDayOfWeek() + 7) % 7;
  AddDays(ahead ? ahead : 7);
}

void ZTDate::SkipToPreviousWeekday(Weekday _Weekday) {
  ZT_COND_CHECK(Sunday <= _Weekday && _Weekday <= Saturday);
  if (IsNull()) return;
  const unsigned back = (GetDayOfWeek() - _Weekday + 7) % 7;
  SubDays(back ? back : 7);
}

ZTDate ZTDate::Current() {
  std::tm now;
  const std::tm* l_tm = LocalNow(now);
  ZT_COND_CHECK(l_tm != NULL);
  ZTDate date;
  date.Set(l_tm->tm_year + 1900, l_tm->tm_mon + 1, l_tm->tm_mday);
  return date;
}

unsigned ZTDate::CurrentJulDayNum() { return Current().m_JulDayNum; }

unsigned ZTDate::GetJulDayNum(unsigned _Year, unsigned _Month, unsigned _Day) {
  if (_Year <= 99) _Year += 1900;
  if (_Year < MinYear || !IsDayWithinMonth(_Year, _Month, _Day)) return 0;
  // Years far beyond any date a value holds have no 32-bit day number.
  const long long dayNum = DayNumber(_Year, _Month, _Day);
  return dayNum <= UINT32_MAX ? static_cast<unsigned>(dayNum) : 0;
}

bool ZTDate::IsValidDate(unsigned _Year, unsigned _Month, unsigned _Day) {
  return GetJulDayNum(_Year, _Month, _Day) != 0;
}

bool ZTDate::IsDayWithinMonth(unsigned _Year, unsigned _Month, unsigned _Day) {
  return _Day >= 1 && _Day <= GetDaysInMonth(_Year, _Month);
}

unsigned ZTDate::GetDaysInMonth(unsigned _Year, unsigned _Month) {
  static constexpr unsigned lengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (_Month < 1 || _Month > 12) return 0;
  return _Month == 2 && IsLeapYear(_Year) ? 29 : lengths[_Month - 1];
}

bool ZTDate::IsLeapYear(unsigned _Year) {
  return (_Year % 4 == 0 && _Year % 100 != 0) || _Year % 400 == 0;
}

void ZTDate::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  Set(*static_cast<const ZTDate*>(_Src));
}

ZTCmpResult ZTDate::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

const char* ZTDate::GetTypeName() const { return m_ZTType; }

void ZTDate::SetNull() {
  ZTValue::SetNull();
  m_JulDayNum = 0;
  UpdateParts(*this);
}

void ZTDate::SetEmpty() { SetNull(); }

// The named part is replaced; a day beyond its month and a month beyond the
// year carry on into the following months and years. A part below 1 gives
// no date.
ZTValue* ZTDate::SetValue(const char* _Name, const ZTValue& _Value) {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartYear, PartDay);
  if (part < 0) {
    ZT_WARNING("ZTDate::SetValue: Unable to set part value '%s'", _Name);
    return this;
  }
  const PartValues current = PartsOf(*this);
  long long parts[3] = {current[PartYear], std::max(current[PartMonth], 1U),
                        std::max(current[PartDay], 1U)};
  parts[part] = IntegerOf(_Value);
  long long year = parts[PartYear];
  const long long month = parts[PartMonth], day = parts[PartDay];
  if (year < 0 || month < 0 || day < 0) {
    SetNull();
  } else if (month == 0 || day == 0) {
    Set(static_cast<unsigned>(year), static_cast<unsigned>(month), static_cast<unsigned>(day));
  } else {
    // Carried in closed form: counting a huge day down month by month
    // would take as long as the number is large.
    if (year <= 99) year += 1900;
    const CalendarDate date =
        FromDayNumber(DayNumber(year + (month - 1) / 12, (month - 1) % 12 + 1, 1) + day - 1);
    SetClamped(date.m_Year, date.m_Month, date.m_Day);
  }
  return this;
}

ZTValue* ZTDate::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  const auto setDayNum = [this](long long _DayNum) {
    // A number outside the valid dates is no date, as an invalid calendar date is none.
    Store(_DayNum >= MinJulDayNum && _DayNum <= MaxJulDayNum ? static_cast<unsigned>(_DayNum) : 0);
  };
  if (_Value.IsNull())
    SetNull();
  else if (const ZTDate* date = ZTDynamicCastT<ZTDate>(&_Value))
    Set(*date);
  else if (const ZTTimestamp* stamp = ZTDynamicCastT<ZTTimestamp>(&_Value))
    Set(stamp->Date());
  else if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value))
    setDayNum(integer->GetInt());
  else if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value))
    setDayNum(real->GetInt());
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

const ZTValue* ZTDate::GetValue(const char* _Name) const {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartYear, PartDay);
  if (part < 0) {
    ZT_WARNING("ZTDate: Unknown part '%s'", _Name);
    return nullptr;
  }
  return PartValue(*this, part);
}

namespace {

// An operand of an assignment: a decimal number (saturated at the integer
// range) or the current value of a part.
bool ReadOperand(const ZTDate& _Date, std::string_view _Text, long long& _Value) {
  _Text = Trimmed(_Text);
  if (_Text.empty()) return false;
  if (std::all_of(_Text.begin(), _Text.end(), IsDigit)) {
    _Value = 0;
    for (const char digit : _Text) _Value = std::min<long long>(_Value * 10 + (digit - '0'), INT_MAX);
    return true;
  }
  const int part = FindPart(_Text, PartYear, PartDay);
  if (part < 0) return false;
  _Value = PartsOf(_Date)[part];
  return true;
}

// operand [("+" | "-") operand]
bool EvaluateAssignment(const ZTDate& _Date, std::string_view _Expr, long long& _Value) {
  const std::size_t op = _Expr.find_first_of("+-");
  if (!ReadOperand(_Date, _Expr.substr(0, op), _Value)) return false;
  if (op == std::string_view::npos) return true;
  long long operand;
  if (!ReadOperand(_Date, _Expr.substr(op + 1), operand)) return false;
  _Value = std::clamp<long long>(_Expr[op] == '+' ? _Value + operand : _Value - operand, INT_MIN,
                                 INT_MAX);
  return true;
}

}  // namespace

// part "=" expression {";" ...} up to ">"; each assignment is one SetValue.
void ZTDate::ApplyAssignments(const char* _List, std::size_t _Len) {
  std::string_view list(_List, _Len);
  list = list.substr(0, list.find('>'));
  while (!list.empty()) {
    const std::size_t semicolon = list.find(';');
    const std::string_view item = Trimmed(list.substr(0, semicolon));
    list = semicolon == std::string_view::npos ? std::string_view() : list.substr(semicolon + 1);
    if (item.empty()) continue;
    const std::size_t equals = item.find('=');
    long long value;
    if (equals == std::string_view::npos || !EvaluateAssignment(*this, item.substr(equals + 1), value)) {
      ZT_WARNING("ZTDate::SetString: Invalid assignment '%s'", std::string(item).c_str());
      continue;
    }
    SetValue(std::string(Trimmed(item.substr(0, equals))).c_str(),
             ZTInteger(static_cast<int>(value)));
  }
}

const char* ZTDate::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str || _Len == 0) {
    SetNull();
    return _Str;
  }
  const std::string_view text(_Str, TextLength(_Str, _Len));
  if (IsCurrentText(text)) {
    Set(Current());
  } else if (text.size() < 6) {
    SetNull();
  } else if (text[0] == '<') {
    ApplyAssignments(text.data() + 1, text.size() - 1);
  } else {
    const std::string layout = DateLayout(_Format);
    if (layout.empty()) {
      ZT_WARNING("ZTDate::SetString: Empty format");
      SetNull();
      return _Str;
    }
    // Negative numbers become huge parts, which Set caps or refuses.
    const int year = ReadField(text, layout, YearLetters, 4, ShortYearLetters, 2);
    const int month = ReadField(text, layout, {"MM", "mm"}, 2, {"M", "m"}, 1);
    const int day = ReadField(text, layout, DayLetters, 2, ShortDayLetters, 1);
    Set(static_cast<unsigned>(year), static_cast<unsigned>(month), static_cast<unsigned>(day));
  }
  return _Str;
}

const char* ZTDate::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (IsNull()) return AssignText(_Str, "", 0);
  std::string text = DateLayout(_Format);
  if (text.empty()) {
    ZT_WARNING("ZTDate::CopyIntoString: Empty format");
    return AssignText(_Str, "", 0);
  }
  unsigned year, month, day;
  GetYearMonthDay(year, month, day);
  WriteYear(text, "%4d", year);
  if (!WriteField(text, {"MM", "mm"}, "%02d", month)) WriteField(text, {"M", "m"}, "%d", month);
  WriteDay(text, day);
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTDate::Get(void* _Buffer, unsigned int _Size) const {
  const std::uint32_t native = m_JulDayNum;
  return CopyNative(*this, &native, sizeof native, _Buffer, _Size);
}

ZTCmpResult ZTDate::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  if (const ZTDate* date = ZTDynamicCastT<ZTDate>(&_Value))
    return ToCmpResult(Compare3(m_JulDayNum, date->m_JulDayNum));
  return ZTValue::Cmp(_Value);
}

// ---------------------------------------------------------------------------
// ZTTime

const char ZTTime::m_ZTType[] = "time";
const char ZTTime::sm_Hour[] = "Hour";
const char ZTTime::sm_Minute[] = "Minute";
const char ZTTime::sm_Second[] = "Second";
ZT_IMPLEMENT_CLASS(ZTTime, ZTValue, ZTValueCreator, ZTTime::m_ZTType)

ZTTime::ZTTime(unsigned _Hour, unsigned _Minute, unsigned _Second) {
  if (_Hour || _Minute || _Second) Set(_Hour, _Minute, _Second);
}

ZTTime::ZTTime(const char* _Str) {
  SetString(_Str, -1, nullptr);
  Clean();
}

ZTTime::~ZTTime() { DropParts(*this); }

void ZTTime::Set(unsigned _Hour, unsigned _Minute, unsigned _Second) {
  ZT_CHECK_TIME_PARTS();
  Store(GetSecondsSinceMidnight(_Hour, _Minute, _Second));
}

void ZTTime::Set(const ZTTime& _Time) {
  if (_Time.IsNull())
    SetNull();
  else
    Store(_Time.m_Secs);
}

void ZTTime::Store(unsigned _Secs) {
  if (!IsNull() && m_Secs == _Secs) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Secs = _Secs;
  UpdateParts(*this);
  Changed();
}

void ZTTime::GetHourMinuteSecond(unsigned& _Hour, unsigned& _Minute, unsigned& _Second) const {
  _Hour = GetHour();
  _Minute = GetMinute();
  _Second = GetSecond();
}

// A time of day has no room beyond midnight: the result wraps around it, as
// the time part of a timestamp does.
void ZTTime::Move(long long _Seconds) {
  if (IsNull() || _Seconds == 0) return;
  const long long secs = (m_Secs + _Seconds % SecondsPerDay) % SecondsPerDay;
  Store(static_cast<unsigned>(secs < 0 ? secs + SecondsPerDay : secs));
}

void ZTTime::AddSeconds(unsigned _Seconds) { Move(_Seconds); }

void ZTTime::SubSeconds(unsigned _Seconds) { Move(-static_cast<long long>(_Seconds)); }

void ZTTime::AddMinutes(unsigned _Minutes) { Move(_Minutes * 60LL); }

void ZTTime::SubMinutes(unsigned _Minutes) { Move(-(_Minutes * 60LL)); }

void ZTTime::AddHours(unsigned _Hours) { Move(_Hours * 3600LL); }

void ZTTime::SubHours(unsigned _Hours) { Move(-(_Hours * 3600LL)); }

ZTTime ZTTime::Current() {
  std::tm now;
  const std::tm* l_tm = LocalNow(now);
  ZT_COND_CHECK(l_tm != NULL);
  ZTTime time;
  time.Set(l_tm->tm_hour, l_tm->tm_min, SecondOf(*l_tm));
  return time;
}

unsigned ZTTime::GetSecondsSinceMidnight(unsigned _Hour, unsigned _Minute, unsigned _Second) {
  return (_Hour * 60 + _Minute) * 60 + _Second;
}

int ZTTime::Diff(const ZTTime& _Time1, const ZTTime& _Time2) {
  return static_cast<int>(static_cast<long long>(_Time1.m_Secs) - _Time2.m_Secs);
}

void ZTTime::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  Set(*static_cast<const ZTTime*>(_Src));
}

ZTCmpResult ZTTime::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

const char* ZTTime::GetTypeName() const { return m_ZTType; }

void ZTTime::SetNull() {
  ZTValue::SetNull();
  m_Secs = 0;
  UpdateParts(*this);
}

void ZTTime::SetEmpty() { SetNull(); }

// The named part is replaced without carrying; Set refuses a part out of range.
ZTValue* ZTTime::SetValue(const char* _Name, const ZTValue& _Value) {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartHour, PartSecond);
  if (part < 0) {
    ZT_WARNING("ZTTime::SetValue: Unable to set value '%s'", _Name);
    return this;
  }
  PartValues parts = PartsOf(*this);
  parts[part] = static_cast<unsigned>(IntegerOf(_Value));
  Set(parts[PartHour], parts[PartMinute], parts[PartSecond]);
  return this;
}

ZTValue* ZTTime::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull())
    SetNull();
  else if (const ZTTime* time = ZTDynamicCastT<ZTTime>(&_Value))
    Set(*time);
  else if (const ZTTimestamp* stamp = ZTDynamicCastT<ZTTimestamp>(&_Value))
    Set(stamp->Time());
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

const ZTValue* ZTTime::GetValue(const char* _Name) const {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartHour, PartSecond);
  if (part < 0) {
    ZT_WARNING("ZTTime: Unknown part '%s'", _Name);
    return nullptr;
  }
  return PartValue(*this, part);
}

// Texts of fewer than 4 characters (up to the length or an earlier zero) are
// no time.
const char* ZTTime::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str || _Len == 0) {
    SetNull();
    return _Str;
  }
  const std::string_view text(_Str, TextLength(_Str, _Len));
  if (text.size() < 4) {
    SetNull();
  } else if (IsCurrentText(text)) {
    Set(Current());
  } else {
    const std::string layout = TimeLayout(_Format);
    if (layout.empty()) {
      ZT_WARNING("ZTTime::SetString: Empty format");
      SetNull();
      return _Str;
    }
    const int hour = ReadField(text, layout, {"HH", "hh"}, 2);
    const int minute = ReadField(text, layout, {"mm", "MM"}, 2);
    const int second = ReadField(text, layout, SecondLetters, 2);
    Set(static_cast<unsigned>(hour), static_cast<unsigned>(minute), static_cast<unsigned>(second));
  }
  return _Str;
}

const char* ZTTime::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (IsNull()) return AssignText(_Str, "", 0);
  std::string text = TimeLayout(_Format);
  if (text.empty()) {
    ZT_WARNING("ZTTime::CopyIntoString: Empty format");
    return AssignText(_Str, "", 0);
  }
  WriteTime(text, {"HH", "hh"}, GetHour(), GetMinute(), GetSecond());
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTTime::Get(void* _Buffer, unsigned int _Size) const {
  const std::uint32_t native = m_Secs;
  return CopyNative(*this, &native, sizeof native, _Buffer, _Size);
}

ZTCmpResult ZTTime::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  if (const ZTTime* time = ZTDynamicCastT<ZTTime>(&_Value))
    return ToCmpResult(Compare3(m_Secs, time->m_Secs));
  return ZTValue::Cmp(_Value);
}

// ---------------------------------------------------------------------------
// ZTTimestamp

const char ZTTimestamp::m_ZTType[] = "timestamp";
ZT_IMPLEMENT_CLASS(ZTTimestamp, ZTValue, ZTValueCreator, ZTTimestamp::m_ZTType)

ZTTimestamp::ZTTimestamp(unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Hour,
                         unsigned _Minute, unsigned _Second) {
  Set(_Year, _Month, _Day, _Hour, _Minute, _Second);
}

ZTTimestamp::ZTTimestamp(const char* _Str) {
  SetString(_Str, -1, nullptr);
  Clean();
}

ZTTimestamp::ZTTimestamp(const ZTDate& _Date) { Set(_Date); }

ZTTimestamp::ZTTimestamp(const ZTTime& _Time) { Set(_Time); }

ZTTimestamp::~ZTTimestamp() { DropParts(*this); }

// The fields are compared after the year is adjusted, so that storing the
// value held already is no change.
void ZTTimestamp::Set(unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Hour,
                      unsigned _Minute, unsigned _Second) {
  if (_Year > MaxYear) _Year = MaxYear;
  ZT_CHECK_MONTH_DAY();
  ZT_CHECK_TIME_PARTS();
  if (!(_Year || _Month || _Day || _Hour || _Minute || _Second)) {
    SetNull();
    return;
  }
  if (_Year < TimestampYearOffset) _Year += TimestampYearOffset;
  if (!IsNull() && m_Year == _Year && m_Month == _Month && m_Day == _Day && m_Hour == _Hour &&
      m_Minute == _Minute && m_Second == _Second)
    return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Year = _Year;
  m_Month = _Month;
  m_Day = _Day;
  m_Hour = _Hour;
  m_Minute = _Minute;
  m_Second = _Second;
  UpdateParts(*this);
  Changed();
}

#undef ZT_CHECK_MONTH_DAY
#undef ZT_CHECK_TIME_PARTS

void ZTTimestamp::Set(const ZTTimestamp& _Timestamp) {
  Set(_Timestamp.m_Year, _Timestamp.m_Month, _Timestamp.m_Day, _Timestamp.m_Hour,
      _Timestamp.m_Minute, _Timestamp.m_Second);
}

void ZTTimestamp::Set(const ZTDate& _Date, const ZTTime& _Time) {
  unsigned year, month, day, hour, minute, second;
  _Date.GetYearMonthDay(year, month, day);
  _Time.GetHourMinuteSecond(hour, minute, second);
  Set(year, month, day, hour, minute, second);
}

void ZTTimestamp::Set(const ZTDate& _Date) { Set(_Date, ZTTime()); }

void ZTTimestamp::Set(const ZTTime& _Time) {
  Set(m_Year, m_Month, m_Day, _Time.GetHour(), _Time.GetMinute(), _Time.GetSecond());
}

ZTDate ZTTimestamp::Date() const {
  ZTDate date;
  if (!IsNull()) date.Set(m_Year, m_Month, m_Day);
  return date;
}

ZTTime ZTTimestamp::Time() const {
  ZTTime time;
  if (!IsNull()) time.Set(m_Hour, m_Minute, m_Second);
  return time;
}

// A day beyond its month (the fields are not checked against each other)
// counts on into the following month.
void ZTTimestamp::AddSeconds(unsigned long _Seconds) {
  if (IsNull() || _Seconds == 0) return;
  const unsigned long long timeOfDay =
      (m_Hour * 60ULL + m_Minute) * 60 + m_Second + _Seconds % SecondsPerDay;
  const unsigned long long days = _Seconds / SecondsPerDay + timeOfDay / SecondsPerDay;
  const unsigned secs = static_cast<unsigned>(timeOfDay % SecondsPerDay);
  const long long dayNum = DayNumber(m_Year, std::max(m_Month, 1U), 1) + std::max(m_Day, 1U) - 1;
  const unsigned long long room = static_cast<unsigned long long>(MaxJulDayNum - dayNum);
  ZT_COND_CHECK_MSG(days <= room, "Date out of range");
  const CalendarDate date = FromDayNumber(dayNum + static_cast<long long>(days));
  Set(static_cast<unsigned>(date.m_Year), date.m_Month, date.m_Day, secs / 3600, secs / 60 % 60,
      secs % 60);
}

ZTTimestamp ZTTimestamp::Current() {
  std::tm now;
  const std::tm* l_tm = LocalNow(now);
  ZT_COND_CHECK(l_tm != NULL);
  ZTTimestamp stamp;
  stamp.Set(l_tm->tm_year + 1900, l_tm->tm_mon + 1, l_tm->tm_mday, l_tm->tm_hour, l_tm->tm_min,
            SecondOf(*l_tm));
  return stamp;
}

void ZTTimestamp::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  Set(*static_cast<const ZTTimestamp*>(_Src));
}

ZTCmpResult ZTTimestamp::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

const char* ZTTimestamp::GetTypeName() const { return m_ZTType; }

void ZTTimestamp::SetNull() {
  ZTValue::SetNull();
  m_Year = m_Month = m_Day = m_Hour = m_Minute = m_Second = 0;
  UpdateParts(*this);
}

void ZTTimestamp::SetEmpty() { SetNull(); }

// The named part is replaced without carrying; Set refuses a part out of range.
ZTValue* ZTTimestamp::SetValue(const char* _Name, const ZTValue& _Value) {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartYear, PartSecond);
  if (part < 0) {
    ZT_WARNING("ZTTimestamp::SetValue: Unable to set value '%s'", _Name);
    return this;
  }
  PartValues parts = PartsOf(*this);
  parts[part] = static_cast<unsigned>(IntegerOf(_Value));
  Set(parts[PartYear], parts[PartMonth], parts[PartDay], parts[PartHour], parts[PartMinute],
      parts[PartSecond]);
  return this;
}

ZTValue* ZTTimestamp::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull())
    SetNull();
  else if (const ZTTimestamp* stamp = ZTDynamicCastT<ZTTimestamp>(&_Value))
    Set(*stamp);
  else if (const ZTDate* date = ZTDynamicCastT<ZTDate>(&_Value))
    Set(*date);
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

const ZTValue* ZTTimestamp::GetValue(const char* _Name) const {
  ZT_PARAM_CHECK(_Name);
  const int part = FindPart(_Name, PartYear, PartSecond);
  if (part < 0) {
    ZT_WARNING("ZTTimestamp: Unknown part '%s'", _Name);
    return nullptr;
  }
  return PartValue(*this, part);
}

const char* ZTTimestamp::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str || _Len == 0) {
    SetNull();
    return _Str;
  }
  const std::string_view text(_Str, TextLength(_Str, _Len));
  if (IsCurrentText(text)) {
    Set(Current());
    return _Str;
  }
  const std::string layout = TimestampLayout(_Format);
  if (layout.empty()) {
    ZT_WARNING("ZTTimestamp::SetString: Empty format");
    SetNull();
    return _Str;
  }
  const int year = ReadField(text, layout, YearLetters, 4, ShortYearLetters, 2);
  const int month = ReadField(text, layout, {"MM"}, 2);
  const int day = ReadField(text, layout, DayLetters, 2);
  const int hour = ReadField(text, layout, {"HH", "hh"}, 2);
  const int minute = ReadField(text, layout, {"mm"}, 2);
  const int second = ReadField(text, layout, SecondLetters, 2);
  Set(static_cast<unsigned>(year), static_cast<unsigned>(month), static_cast<unsigned>(day),
      static_cast<unsigned>(hour), static_cast<unsigned>(minute), static_cast<unsigned>(second));
  return _Str;
}

// A month or day of 0 is written as 1.
const char* ZTTimestamp::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (IsNull()) return AssignText(_Str, "", 0);
  std::string text = TimestampLayout(_Format);
  if (text.empty()) {
    ZT_WARNING("ZTTimestamp::CopyIntoString: Empty format");
    return AssignText(_Str, "", 0);
  }
  const unsigned month = std::max(m_Month, 1U);
  WriteYear(text, "%04d", m_Year);
  if (!WriteField(text, {"MM"}, "%02d", month)) WriteField(text, {"M"}, "%d", month);
  WriteDay(text, std::max(m_Day, 1U));
  WriteTime(text, {"hh", "HH"}, m_Hour, m_Minute, m_Second);
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTTimestamp::Get(void* _Buffer, unsigned int _Size) const {
  const std::uint32_t native[6] = {m_Year, m_Month, m_Day, m_Hour, m_Minute, m_Second};
  return CopyNative(*this, native, sizeof native, _Buffer, _Size);
}

ZTCmpResult ZTTimestamp::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  if (const ZTTimestamp* stamp = ZTDynamicCastT<ZTTimestamp>(&_Value)) {
    const PartValues mine = PartsOf(*this), other = PartsOf(*stamp);
    return ToCmpResult(Compare3(mine, other));
  }
  return ZTValue::Cmp(_Value);
}
