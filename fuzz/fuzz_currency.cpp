// ZTCurrency: the text parser under each format, prints that must read back,
// and the arithmetic at the 64-bit limits against exact 128-bit references.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "fuzz_support.h"

namespace {

const char* const s_Formats[] = {
    nullptr, "",  "0.00",      "#.##0,00", "0,00",  "#.##0,0",    "0.0",    "#.##0,0'0'", "0.0'0'",
    "#.##0", "0", "#.##0,000", "0,000",    "0.000", "#.##0,0000", "0,0000", "0,0",        "%d"};

using Wide = __int128;
constexpr std::int64_t MaxAmount = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t MinAmount = std::numeric_limits<std::int64_t>::min();

std::int64_t AmountOf(const ZTCurrency& _Val) { return _Val.GetCY().ToInt64(); }
ZTCurrency Amount(std::int64_t _Amount) { return ZTCurrency(tagCY::FromInt64(_Amount)); }
bool InRange(Wide _V) { return _V >= MinAmount && _V <= MaxAmount; }
Wide Abs(Wide _V) { return _V < 0 ? -_V : _V; }
std::string Show(Wide _V) { return std::to_string(static_cast<long long>(_V)); }

std::string Print(const ZTCurrency& _Val, const char* _Format) {
  const ZTString text = _Val.GetString(_Format);
  return static_cast<const char*>(text);
}

// Every format's print reads back under that format, and the amount read
// prints and reads back to itself; the print without format (all four
// decimals) reads back to the very amount.
void CheckPrints(const ZTCurrency& _Val) {
  for (const char* format : s_Formats) {
    const std::string text = Print(_Val, format);
    ZTCurrency back;
    try {
      back.SetString(text.c_str(), -1, format);
    } catch (const ZTExcept&) {
      // Rounding to fewer decimals may print an amount beyond the range.
      if (Abs(AmountOf(_Val)) < MaxAmount - 5000) zt_fuzz::Fail("print does not read back", text);
      continue;
    }
    // A print rounded to fewer decimals reads back to an amount that reads
    // back to itself ("-0.00" of -0.004 reads as 0, which prints "0.00").
    ZTCurrency again;
    again.SetString(Print(back, format).c_str(), -1, format);
    if (AmountOf(again) != AmountOf(back)) zt_fuzz::Fail("print changes when read back", text);
    if (!format && AmountOf(back) != AmountOf(_Val)) zt_fuzz::Fail("amount lost in print", text);
  }
}

// Add, Sub and Mul are exact (or refused); Div gives the truncated quotient or
// one whose truncated product is the dividend; a refused result changes nothing.
void CheckArithmetic(std::int64_t _A, std::int64_t _B) {
  const auto expect = [&](const char* _Op, Wide _Expected, auto _Apply) {
    ZTCurrency x = Amount(_A);
    try {
      _Apply(x);
    } catch (const ZTExcept&) {
      if (InRange(_Expected) || AmountOf(x) != _A) zt_fuzz::Fail(_Op, Show(_A) + " " + Show(_B));
      return;
    }
    if (!InRange(_Expected) || AmountOf(x) != _Expected)
      zt_fuzz::Fail(_Op, Show(_A) + " " + Show(_B));
  };
  expect("add", Wide{_A} + _B, [&](ZTCurrency& _X) { _X.Add(Amount(_B)); });
  expect("sub", Wide{_A} - _B, [&](ZTCurrency& _X) { _X.Sub(Amount(_B)); });
  expect("mul", Wide{_A} * _B / 10000, [&](ZTCurrency& _X) { _X.Mul(Amount(_B)); });
  if (_B == 0) return;
  ZTCurrency x = Amount(_A);
  const Wide exact = Abs(_A) * 10000 / Abs(_B);
  try {
    x.Div(Amount(_B));
  } catch (const ZTExcept&) {
    if (exact + 10000 <= MaxAmount || AmountOf(x) != _A)
      zt_fuzz::Fail("div", Show(_A) + " " + Show(_B));
    return;
  }
  const Wide r = Abs(AmountOf(x));
  if (r != exact && r * Abs(_B) / 10000 != Abs(_A)) zt_fuzz::Fail("div", Show(_A) + " " + Show(_B));
}

}  // namespace

// The text is parsed as an amount; its first 8 bytes also give a raw second
// amount for the arithmetic.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _Data, std::size_t _Size) {
  const zt_fuzz::Input input(_Data, _Size);
  const char* const format = input.Pick(s_Formats);
  zt_fuzz::Run([&] {
    ZTCurrency value;
    value.SetString(input.Text(), input.Length(), format);
    if (value.IsNull()) return;
    CheckPrints(value);
    std::int64_t raw = 0;
    std::memcpy(&raw, input.Text(), std::min<std::size_t>(sizeof raw, std::strlen(input.Text())));
    CheckArithmetic(AmountOf(value), raw);
    CheckArithmetic(raw, AmountOf(value));
    ZTCurrency rounded(value);
    rounded.Round(input.Flag(0) + 2 * input.Flag(1));
  });
  return 0;
}
