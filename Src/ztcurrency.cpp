// ZTCurrency: money amounts as exact 64-bit counts of ten-thousandths.
#include "ztcurrency.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "ztintl.h"
#include "zttypes_internal.h"

using namespace zt_types;

namespace {

// Magnitudes are unsigned so that the one of INT64_MIN (2^63) is representable
// and no intermediate step can overflow a signed type.
using Magnitude = std::uint64_t;

constexpr Magnitude Unit = 10000;  // ten-thousandths in 1.0
constexpr Magnitude MaxPositive = std::numeric_limits<std::int64_t>::max();
constexpr Magnitude MaxNegative = MaxPositive + 1;
constexpr Magnitude Saturated = std::numeric_limits<Magnitude>::max();

Magnitude MagnitudeOf(std::int64_t _Amount) {
  const auto bits = static_cast<Magnitude>(_Amount);
  return _Amount < 0 ? Magnitude{0} - bits : bits;
}

// The signed amount of a magnitude; false when it is out of the 64-bit range.
bool ApplySign(Magnitude _Magnitude, bool _Negative, std::int64_t& _Amount) {
  if (_Magnitude > (_Negative ? MaxNegative : MaxPositive)) return false;
  const auto bits = _Negative ? Magnitude{0} - _Magnitude : _Magnitude;
  _Amount = static_cast<std::int64_t>(bits);  // two's complement, as on every target we build for
  return true;
}

// floor(_A * _B / 10000) of two magnitudes, exactly: with a = ah*10^4 + al and
// b = bh*10^4 + bl the product divided by 10^4 is ah*bh*10^4 + ah*bl + al*bh +
// floor(al*bl / 10^4), since all other terms are multiples of 10^4. A result
// beyond 64 bits saturates; callers only compare it with amounts.
Magnitude MulTrunc(Magnitude _A, Magnitude _B) {
  const Magnitude ah = _A / Unit, al = _A % Unit, bh = _B / Unit, bl = _B % Unit;
  Magnitude result, term;
  if (__builtin_mul_overflow(ah, bh, &result) || __builtin_mul_overflow(result, Unit, &result) ||
      __builtin_mul_overflow(ah, bl, &term) || __builtin_add_overflow(result, term, &result) ||
      __builtin_mul_overflow(al, bh, &term) || __builtin_add_overflow(result, term, &result) ||
      __builtin_add_overflow(result, al * bl / Unit, &result))
    return Saturated;
  return result;
}

// The magnitude plus half a unit of the last kept decimal, cut down to a
// multiple of that unit: rounding half away from zero once the sign is put
// back. Cannot overflow: magnitudes are at most 2^63.
Magnitude RoundMagnitude(Magnitude _Magnitude, int _Decimals) {
  Magnitude unit = 1;
  for (int i = _Decimals; i < 4; ++i) unit *= 10;
  return (_Magnitude + unit / 2) / unit * unit;
}

// The quotient of two non-zero magnitudes by a decimal search: every product
// r * b is truncated at the fourth decimal (as Mul truncates), and the search
// stops at the first r whose product equals the dividend. So 0.0001 / 0.0003
// gives 0.4, whose product truncates to 0.0001. Each step is a power of ten
// that is tried at most ten times (a hundred times for the step 0.1, since
// the steps go from 10 straight to 0.1), so the search ends quickly. False
// when the quotient exceeds 64 bits.
bool SearchQuotient(Magnitude _A, Magnitude _B, Magnitude& _R) {
  const auto product = [_B](Magnitude _X) { return MulTrunc(_X, _B); };
  // Adds the step while the product is below the dividend; takes it back once
  // when the product then exceeds it.
  const auto fill = [&](Magnitude& _Rest, Magnitude _Step) {
    while (product(_Rest) < _A)
      if (__builtin_add_overflow(_Rest, _Step, &_Rest)) return false;
    if (product(_Rest) > _A) _Rest -= _Step;
    return true;
  };
  Magnitude step = Unit;
  while (product(step) < _A) {
    // The quotient is at least this step, which already exceeds any amount.
    if (step > Saturated / 10) return false;
    step *= 10;
  }
  if (product(step) > _A) step /= 10;
  _R = 0;
  for (; product(_R) < _A && step > Unit; step /= 10)
    if (!fill(_R, step)) return false;
  for (step = Unit / 10; product(_R) != _A && step != 0; step /= 10)
    if (!fill(_R, step)) return false;
  return true;
}

// The amount of a double. Up to 4294967295 the four decimals are the
// truncation of the fraction times 10000 plus 0.5; larger magnitudes keep the
// whole units of floor(a + 0.00005). False for NaN and out-of-range numbers.
bool AmountOfDouble(double _Val, std::int64_t& _Amount) {
  if (std::isnan(_Val)) return false;
  if (_Val == 0.0) {
    _Amount = 0;
    return true;
  }
  const double a = std::fabs(_Val);
  Magnitude magnitude;
  if (a <= 4294967295.0) {
    const double whole = std::trunc(a);
    magnitude =
        static_cast<Magnitude>(whole) * Unit + static_cast<Magnitude>((a - whole) * 10000.0 + 0.5);
  } else {
    // An integral double below 2^63 converts exactly (the infinity does not pass).
    const double whole = std::floor(a + 0.00005);
    if (!(whole < 9223372036854775808.0) ||
        __builtin_mul_overflow(static_cast<Magnitude>(whole), Unit, &magnitude))
      return false;
  }
  return ApplySign(magnitude, _Val < 0, _Amount);
}

bool IsDigit(char _Ch) { return _Ch >= '0' && _Ch <= '9'; }

// The white space the C library skips before a number, in any locale.
bool IsSpace(char _Ch) { return _Ch == ' ' || (_Ch >= '\t' && _Ch <= '\r'); }

// Reads a decimal number at the start of the text as the C library's
// text-to-double conversion finds it (blanks, sign, digits, point, digits,
// exponent; the rest of the text is ignored), but exactly and without the
// locale: the amount in ten-thousandths with the fifth decimal rounded half
// away from zero. A text without a number reads as 0. Hexadecimal, infinity
// and NaN forms are no amounts and read as 0 too. False when the amount is out
// of the 64-bit range.
bool ParseAmount(std::string_view _Text, std::int64_t& _Amount) {
  std::size_t i = 0;
  while (i < _Text.size() && IsSpace(_Text[i])) ++i;
  const bool negative = i < _Text.size() && _Text[i] == '-';
  if (i < _Text.size() && (_Text[i] == '-' || _Text[i] == '+')) ++i;
  // The number of digits without leading zeros, the first 20 of them (no
  // more can be kept in range, and the next one only rounds), and the power of
  // ten they are scaled by.
  constexpr std::int64_t MaxDigits = 20;
  char digits[MaxDigits];
  std::int64_t count = 0;
  bool anyDigit = false;
  std::int64_t scale = 4;  // ten-thousandths
  const auto readDigits = [&](bool _Fraction) {
    for (; i < _Text.size() && IsDigit(_Text[i]); ++i) {
      anyDigit = true;
      if (_Fraction) --scale;
      if (count == 0 && _Text[i] == '0') continue;
      if (count < MaxDigits) digits[count] = _Text[i];
      ++count;
    }
  };
  readDigits(false);
  if (i < _Text.size() && _Text[i] == '.') {
    ++i;
    readDigits(true);
  }
  if (anyDigit && i < _Text.size() && (_Text[i] == 'e' || _Text[i] == 'E')) {
    std::size_t j = i + 1;
    const bool negativeExp = j < _Text.size() && _Text[j] == '-';
    if (j < _Text.size() && (_Text[j] == '-' || _Text[j] == '+')) ++j;
    // Exponents are bounded so that the scale cannot overflow; any exponent
    // beyond the bound is out of range (or rounds to 0) all the same.
    constexpr std::int64_t MaxExponent = 1000000000;
    std::int64_t exponent = 0;
    bool anyExpDigit = false;
    for (; j < _Text.size() && IsDigit(_Text[j]); ++j) {
      anyExpDigit = true;
      exponent = std::min(exponent * 10 + (_Text[j] - '0'), MaxExponent);
    }
    if (anyExpDigit) scale += negativeExp ? -exponent : exponent;
  }
  if (count == 0) {
    _Amount = 0;
    return true;
  }
  // The digits kept in whole ten-thousandths; the first one dropped rounds.
  const std::int64_t kept = count + scale;
  // Without leading zeros, 20 digits are at least 10^19 > 2^63.
  if (kept >= MaxDigits) return false;
  Magnitude magnitude = 0;
  for (std::int64_t k = 0; k < kept; ++k)
    magnitude = magnitude * 10 + (k < count ? digits[k] - '0' : 0);
  if (kept >= 0 && kept < count && digits[kept] >= '5') ++magnitude;
  return ApplySign(magnitude, negative, _Amount);
}

// The formats the text forms know: their number of decimals, whether the
// digits are grouped with the monetary separators, and whether a "0" follows
// the one printed decimal. Compared without case.
struct CurrencyFormat {
  const char* m_Name;
  int m_Decimals;
  bool m_Grouped;
  bool m_AppendZero;
};

constexpr CurrencyFormat s_Formats[] = {
    {"#.##0,00", 2, true, false},
    {"0,00", 2, true, false},
    {"0.00", 2, false, false},
    {"#.##0,0", 1, true, false},
    {"0.0", 1, false, false},
    {"#.##0,0'0'", 1, true, true},
    {"#.##0,0\"0\"", 1, true, true},
    {"0.0'0'", 1, false, true},
    {"0.0\"0\"", 1, false, true},
    {"#.##0", 0, true, false},
    {"0", 0, false, false},
    {"#.##0,000", 3, true, false},
    {"0,000", 3, true, false},
    {"0.000", 3, false, false},
    // Grouped with four decimals; "0,0" names no decimal count, so it prints four.
    {"#.##0,0000", 4, true, false},
    {"0,0000", 4, true, false},
    {"0,0", 4, true, false},
};

// Null and the empty text are no format.
bool HasFormat(const char* _Format) { return _Format && *_Format; }

const CurrencyFormat* FindFormat(const char* _Format) {
  if (!HasFormat(_Format)) return nullptr;
  for (const CurrencyFormat& format : s_Formats)
    if (::strcasecmp(format.m_Name, _Format) == 0) return &format;
  return nullptr;
}

// "-", the whole units (at least "0"), then "." and the decimals when there
// are any, from the amount rounded to that many decimals.
std::string AmountText(std::int64_t _Amount, int _Decimals) {
  const Magnitude magnitude = RoundMagnitude(MagnitudeOf(_Amount), _Decimals);
  char buffer[32];
  char* end = buffer;
  if (_Amount < 0) *end++ = '-';
  end = std::to_chars(end, buffer + sizeof buffer, magnitude / Unit).ptr;
  if (_Decimals > 0) {
    Magnitude fraction = magnitude % Unit;
    char decimals[4];
    for (int k = 3; k >= 0; --k, fraction /= 10)
      decimals[k] = static_cast<char>('0' + fraction % 10);
    *end++ = '.';
    end = std::copy(decimals, decimals + _Decimals, end);
  }
  return std::string(buffer, end);
}

// The "." becomes the monetary decimal separator and the monetary thousands
// separator goes between every three digits of the whole units (never after
// the sign, which is no digit).
void GroupText(std::string& _Text) {
  ZTIntlFormat& intl = ZTIntlFormat::IntlFormat();
  std::size_t end = _Text.find('.');
  if (end == std::string::npos)
    end = _Text.size();
  else
    _Text[end] = intl.GetCurrDecimalSep();
  const std::size_t begin = _Text[0] == '-' ? 1 : 0;
  const char sep = intl.GetCurrThousandSep();
  for (std::size_t pos = end; pos > begin + 3;) {
    pos -= 3;
    _Text.insert(pos, 1, sep);
  }
}

// The reverse of GroupText: the monetary thousands separators go, the
// monetary decimal separator becomes the point.
std::string UngroupText(std::string_view _Text) {
  ZTIntlFormat& intl = ZTIntlFormat::IntlFormat();
  const char thousands = intl.GetCurrThousandSep(), decimal = intl.GetCurrDecimalSep();
  std::string plain;
  plain.reserve(_Text.size());
  for (const char ch : _Text)
    if (ch == decimal)
      plain += '.';
    else if (ch != thousands)
      plain += ch;
  return plain;
}

template <class T>
ZTCmpResult CmpOrder(T _A, T _B) {
  return _A < _B ? CmpLess : (_B < _A ? CmpGreater : CmpEqual);
}

}  // namespace

// ---------------------------------------------------------------------------
// Construction and stores

const char ZTCurrency::m_ZTType[] = "currency";
ZT_IMPLEMENT_CLASS(ZTCurrency, ZTValue, ZTValueCreator, ZTCurrency::m_ZTType)

const ZTCurrency ZTCurrency::Zero(0);
const ZTCurrency ZTCurrency::One(1);
const ZTCurrency ZTCurrency::Ten(10);

ZTCurrency::ZTCurrency(int _Val) { Set(_Val); }

ZTCurrency::ZTCurrency(double _Val) { Set(_Val); }

ZTCurrency::ZTCurrency(const char* _Str) { SetString(_Str, -1, nullptr); }

ZTCurrency::ZTCurrency(const tagCY& _Val) { Set(_Val); }

ZTCurrency::ZTCurrency(const ZTInteger& _Val) { SetValue(_Val); }

ZTCurrency::ZTCurrency(const ZTReal& _Val) { SetValue(_Val); }

ZTCurrency::ZTCurrency(std::int32_t _Hi, std::uint32_t _Lo) { Set(_Hi, _Lo); }

void ZTCurrency::Store(std::int64_t _Amount) {
  if (!IsNull() && m_Amount == _Amount) return;
  SetDirty();
  ClearFlag(FlagNull);
  m_Amount = _Amount;
  Changed();
}

void ZTCurrency::Set(int _Val) { Store(std::int64_t{_Val} * static_cast<std::int64_t>(Unit)); }

void ZTCurrency::Set(double _Val) {
  std::int64_t amount;
  if (!AmountOfDouble(_Val, amount)) ZT_THROW("The number is out of the currency range");
  Store(amount);
}

void ZTCurrency::Set(const tagCY& _Val) { Store(_Val.ToInt64()); }

void ZTCurrency::Set(const ZTCurrency& _Val) {
  if (_Val.IsNull())
    SetNull();
  else
    Store(_Val.m_Amount);
}

void ZTCurrency::Set(std::int32_t _Hi, std::uint32_t _Lo) { Set(tagCY{_Lo, _Hi}); }

// ---------------------------------------------------------------------------
// Reading the amount

int ZTCurrency::GetInt() const {
  const std::int64_t units = m_Amount / static_cast<std::int64_t>(Unit);
  if (units < std::numeric_limits<int>::min() || units > std::numeric_limits<int>::max())
    ZT_THROW("The currency amount is out of the integer range");
  return static_cast<int>(units);
}

double ZTCurrency::GetDouble() const { return static_cast<double>(m_Amount) / 10000.0; }

ZTCurrency ZTCurrency::IntPart() const {
  if (IsNull()) return *this;
  return ZTCurrency(tagCY::FromInt64(m_Amount - m_Amount % static_cast<std::int64_t>(Unit)));
}

ZTCurrency ZTCurrency::FracPart() const {
  if (IsNull()) return *this;
  return ZTCurrency(tagCY::FromInt64(m_Amount % static_cast<std::int64_t>(Unit)));
}

// ---------------------------------------------------------------------------
// Arithmetic

ZTCurrency& ZTCurrency::Add(const ZTCurrency& _Val) {
  if (_Val.IsNull() || _Val.m_Amount == 0) return *this;
  std::int64_t sum;
  if (__builtin_add_overflow(m_Amount, _Val.m_Amount, &sum))
    ZT_THROW("The sum is out of the currency range");
  Store(sum);
  return *this;
}

ZTCurrency& ZTCurrency::Sub(const ZTCurrency& _Val) {
  if (_Val.IsNull() || _Val.m_Amount == 0) return *this;
  std::int64_t difference;
  if (__builtin_sub_overflow(m_Amount, _Val.m_Amount, &difference))
    ZT_THROW("The difference is out of the currency range");
  Store(difference);
  return *this;
}

ZTCurrency& ZTCurrency::Mul(const ZTCurrency& _Val) {
  if (IsNull() || _Val.IsNull()) return *this;
  std::int64_t product;
  if (!ApplySign(MulTrunc(MagnitudeOf(m_Amount), MagnitudeOf(_Val.m_Amount)),
                 (m_Amount < 0) != (_Val.m_Amount < 0), product))
    ZT_THROW("The product is out of the currency range");
  Store(product);
  return *this;
}

ZTCurrency& ZTCurrency::Div(const ZTCurrency& _Val) {
  if (IsNull()) return *this;
  ZT_COND_CHECK_MSG(!_Val.IsNull() && _Val != ZTCurrency::Zero, "Division by zero");
  std::int64_t quotient;
  if (m_Amount == _Val.m_Amount) {
    quotient = One.m_Amount;
  } else if (m_Amount == 0) {
    quotient = 0;
  } else if (_Val.m_Amount == Ten.m_Amount) {
    quotient = m_Amount / 10;
  } else {
    Magnitude magnitude;
    if (!SearchQuotient(MagnitudeOf(m_Amount), MagnitudeOf(_Val.m_Amount), magnitude) ||
        !ApplySign(magnitude, (m_Amount < 0) != (_Val.m_Amount < 0), quotient))
      ZT_THROW("The quotient is out of the currency range");
  }
  Store(quotient);
  return *this;
}

ZTCurrency& ZTCurrency::Round(int _Precision) {
  ZT_COND_CHECK_MSG(_Precision >= 0, "Precision must be positive");
  if (IsNull() || _Precision >= 4) return *this;
  std::int64_t rounded;
  if (!ApplySign(RoundMagnitude(MagnitudeOf(m_Amount), _Precision), m_Amount < 0, rounded))
    ZT_THROW("The rounded amount is out of the currency range");
  Store(rounded);
  return *this;
}

ZTCurrency& ZTCurrency::Chs() {
  ZT_COND_CHECK_MSG(!IsNull(), "Change sign on null value not defined");
  // The most negative amount has no positive counterpart.
  if (m_Amount == std::numeric_limits<std::int64_t>::min())
    ZT_THROW("The negated amount is out of the currency range");
  Store(-m_Amount);
  return *this;
}

ZTCurrency ZTCurrency::Sum(const ZTCurrency* const _Array, int _Count) {
  ZT_PARAM_CHECK(_Array || _Count < 1);
  ZTCurrency sum(Zero);
  for (int i = 0; i < _Count; ++i) sum.Add(_Array[i]);
  return sum;
}

ZTCurrency ZTCurrency::Avg(const ZTCurrency* const _Array, int _Count) {
  if (_Count < 1) return Zero;
  ZTCurrency avg = Sum(_Array, _Count);
  avg.Div(ZTCurrency(_Count));
  return avg;
}

ZTCurrency ZTCurrency::Max(const ZTCurrency* const _Array, int _Count) {
  ZT_PARAM_CHECK(_Array || _Count < 1);
  const ZTCurrency* best = nullptr;
  for (int i = 0; i < _Count; ++i)
    if (!best || _Array[i] > *best) best = &_Array[i];
  return best ? *best : ZTCurrency();
}

ZTCurrency ZTCurrency::Min(const ZTCurrency* const _Array, int _Count) {
  ZT_PARAM_CHECK(_Array || _Count < 1);
  const ZTCurrency* best = nullptr;
  for (int i = 0; i < _Count; ++i)
    if (!best || _Array[i] < *best) best = &_Array[i];
  return best ? *best : ZTCurrency();
}

// ---------------------------------------------------------------------------
// Value protocol

void ZTCurrency::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  Set(*static_cast<const ZTCurrency*>(_Src));
}

ZTCmpResult ZTCurrency::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

const char* ZTCurrency::GetTypeName() const { return m_ZTType; }

void ZTCurrency::SetNull() {
  ZTValue::SetNull();
  m_Amount = 0;
}

ZTValue* ZTCurrency::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull())
    SetNull();
  else if (const ZTCurrency* currency = ZTDynamicCastT<ZTCurrency>(&_Value))
    Store(currency->m_Amount);
  else if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value))
    Set(integer->GetInt());
  else if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value))
    Set(real->GetDouble());
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

// Text is read exactly, not through a double: a double loses the decimals of
// large amounts (beyond 4294967295 only whole units would survive) and its
// conversion depends on the C locale. The fifth decimal rounds as in
// Set(double), so every printed amount reads back unchanged. Under a grouping
// format the monetary separators are read as they are printed.
const char* ZTCurrency::SetString(const char* _Str, int _Len, const char* _Format) {
  if (!_Str || !*_Str || (_Len < 1 && _Len != -1)) {
    SetNull();
    return _Str;
  }
  std::string text(_Str, TextLength(_Str, _Len));
  const CurrencyFormat* format = FindFormat(_Format);
  if (!HasFormat(_Format)) {
    // The decimal comma, as long as there is no point.
    if (text.find('.') == std::string::npos)
      for (char& ch : text)
        if (ch == ',') ch = '.';
  } else if (format && format->m_Grouped) {
    text = UngroupText(text);
  }
  std::int64_t amount;
  if (!ParseAmount(text, amount))
    ZT_THROW_FMT("The string '%s' is out of the currency range",
                 std::string(_Str, TextLength(_Str, _Len)).c_str());
  Store(amount);
  return _Str;
}

const char* ZTCurrency::CopyIntoString(ZTString& _Str, const char* _Format) const {
  const CurrencyFormat* format = FindFormat(_Format);
  std::string text;
  if (!HasFormat(_Format) && (IsNull() || m_Amount == 0)) {
    text = "0.00";
  } else if (IsNull() && !format) {
    text = _Format;
  } else {
    // A null amount under a known format prints as that format's zero.
    text = AmountText(m_Amount, format ? format->m_Decimals : 4);
    if (format && format->m_Grouped) GroupText(text);
    if (format && format->m_AppendZero) text += '0';
  }
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTCurrency::Get(void* _Buffer, unsigned int _Size) const {
  if (IsNull()) return 0;
  const tagCY native = GetCY();
  if (_Buffer && _Size >= sizeof native) std::memcpy(_Buffer, &native, sizeof native);
  return sizeof native;
}

ZTCmpResult ZTCurrency::Cmp(const ZTValue& _Value) const {
  if (IsNull()) {
    if (_Value.IsNull()) return CmpEqual;
    // A text that reads as no amount or as 0 equals a null currency.
    if (ZTDynamicCastT<ZTString>(&_Value)) {
      ZTCurrency other;
      other.SetValue(_Value);
      return other.m_Amount == 0 ? CmpEqual : CmpLess;
    }
    return CmpLess;
  }
  if (_Value.IsNull()) return CmpGreater;
  if (const ZTCurrency* currency = ZTDynamicCastT<ZTCurrency>(&_Value))
    return CmpOrder(m_Amount, currency->m_Amount);
  if (const ZTInteger* integer = ZTDynamicCastT<ZTInteger>(&_Value))
    return CmpOrder(m_Amount, ZTCurrency(*integer).m_Amount);
  if (const ZTReal* real = ZTDynamicCastT<ZTReal>(&_Value)) {
    // A real beyond the currency range still has an order; NaN has none.
    std::int64_t amount;
    if (AmountOfDouble(real->GetDouble(), amount)) return CmpOrder(m_Amount, amount);
    if (std::isnan(real->GetDouble())) return CmpNotEqual;
    return real->GetDouble() > 0 ? CmpLess : CmpGreater;
  }
  return ZTValue::Cmp(_Value);
}
