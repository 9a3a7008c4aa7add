#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

constexpr std::int64_t MaxAmount = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t MinAmount = std::numeric_limits<std::int64_t>::min();

ZTCurrency Amount(std::int64_t _Amount) { return ZTCurrency(tagCY::FromInt64(_Amount)); }
std::int64_t AmountOf(const ZTCurrency& _Val) { return _Val.GetCY().ToInt64(); }

std::string Text(const ZTValue& _Value, const char* _Format = nullptr) {
  return static_cast<const char*>(_Value.GetString(_Format));
}

const char* Name(const char* _Format) { return _Format ? _Format : "(none)"; }

template <class F>
std::string Refusal(F&& _Fn) {
  return Catch(_Fn).GetMsg(0);
}

// Exact references for the arithmetic.
using Wide = __int128;
bool InRange(Wide _V) { return _V >= MinAmount && _V <= MaxAmount; }
Wide Abs(Wide _V) { return _V < 0 ? -_V : _V; }

// Amounts of every size, the limits and their neighbours included.
std::vector<std::int64_t> SampleAmounts(unsigned _Seed, int _Count) {
  std::mt19937_64 rng(_Seed);
  std::vector<std::int64_t> amounts = {0,      1,         -1,        9999,          10000,
                                       -10000, MaxAmount, MinAmount, MaxAmount - 1, MinAmount + 1};
  for (int i = 0; i < _Count; ++i) {
    const auto magnitude = static_cast<std::int64_t>(rng() >> (rng() % 63 + 1));
    amounts.push_back(rng() & 1 ? -magnitude : magnitude);
  }
  return amounts;
}

// Every format the text forms know, with the decimals each prints, and one
// they do not know.
const struct {
  const char* m_Format;
  int m_Decimals;
} s_Formats[] = {
    {nullptr, 4},    {"", 4},           {"0.00", 2},       {"#.##0,00", 2},  {"0,00", 2},
    {"#.##0,0", 1},  {"0.0", 1},        {"#.##0,0'0'", 1}, {"0.0'0'", 1},    {"#.##0,0\"0\"", 1},
    {"0.0\"0\"", 1}, {"#.##0", 0},      {"0", 0},          {"#.##0,000", 3}, {"0,000", 3},
    {"0.000", 3},    {"#.##0,0000", 4}, {"0,0000", 4},     {"0,0", 4},       {"%d", 4}};

}  // namespace

TEST(ZTCurrency, CreationAndNativeLayout) {
  for (const char* name : {"currency", "ZTCurrency", "Currency"}) {
    ZTValue* value = ZTValueCreator::CreateObject(name);
    ASSERT_NE(value, nullptr) << name;
    EXPECT_EQ(value->GetClassType(), ZTCurrency::ClassGetType());
    EXPECT_TRUE(value->IsNull());
    value->Attach();
    value->Detach();
  }
  ZTCurrency c;
  EXPECT_STREQ(c.GetTypeName(), "currency");
  EXPECT_EQ(c.Get(nullptr, 0), 0u);
  c = -1;
  EXPECT_EQ(c.GetCY().Hi, -1);
  EXPECT_EQ(c.GetCY().Lo, 0xFFFFD8F0u);
  EXPECT_TRUE(c.IsNegative());
  unsigned char bytes[8] = {};
  EXPECT_EQ(c.Get(bytes, 4), 8u);
  EXPECT_EQ(bytes[0], 0) << "a buffer too small gets nothing";
  EXPECT_EQ(c.Get(bytes, sizeof bytes), 8u);
  EXPECT_EQ(bytes[0], 0xF0);
  EXPECT_EQ(bytes[7], 0xFF);
  EXPECT_EQ(AmountOf(ZTCurrency::Zero), 0);
  EXPECT_EQ(AmountOf(ZTCurrency::One), 10000);
  EXPECT_EQ(AmountOf(ZTCurrency::Ten), 100000);
}

TEST(ZTCurrency, NumbersInAndOut) {
  EXPECT_EQ(AmountOf(ZTCurrency(1.23456)), 12346);
  EXPECT_EQ(AmountOf(ZTCurrency(-1.23456)), -12346);
  EXPECT_EQ(AmountOf(ZTCurrency(5000000000.75)), 50000000000000) << "whole units only";
  EXPECT_EQ(AmountOf(ZTCurrency(-922337203685477.0)), -9223372036854770000);
  EXPECT_EQ(AmountOf(ZTCurrency(INT_MIN)), std::int64_t{INT_MIN} * 10000);
  ZTCurrency c(7);
  for (double bad : {922337203685478.0, -1e300, HUGE_VAL, std::nan("")}) {
    EXPECT_EQ(Refusal([&] { c.Set(bad); }), "\"The number is out of the currency range\"");
    EXPECT_EQ(AmountOf(c), 70000) << "a refused store changes nothing";
  }

  c = -2.5;
  EXPECT_EQ(c.GetInt(), -2);
  EXPECT_EQ(AmountOf(c.IntPart()), -20000);
  EXPECT_EQ(AmountOf(c.FracPart()), -5000);
  EXPECT_EQ(AmountOf(Amount(MinAmount).FracPart()), -5808);
  EXPECT_EQ(ZTCurrency(1.2345).GetDouble(), 1.2345);
  EXPECT_TRUE(ZTCurrency().IntPart().IsNull());
  EXPECT_TRUE(ZTCurrency().FracPart().IsNull());
  EXPECT_EQ(ZTCurrency().GetInt(), 0);
  EXPECT_EQ(Amount(std::int64_t{INT_MIN} * 10000 - 9999).GetInt(), INT_MIN);
  EXPECT_EQ(Refusal([] { static_cast<void>(static_cast<int>(ZTCurrency(3000000000.0))); }),
            "\"The currency amount is out of the integer range\"");
}

// Add, Sub and Mul are exact (Mul truncated toward zero at the fourth
// decimal) or refused, and a refused result leaves the target unchanged.
TEST(ZTCurrency, ArithmeticAtTheLimits) {
  ZTCurrency c;
  c.Add(ZTCurrency()).Add(ZTCurrency::Zero).Sub(ZTCurrency::Zero).Mul(ZTCurrency::Ten);
  EXPECT_TRUE(c.IsNull()) << "null and zero operands change nothing";
  c += 1.5;
  c -= 2;
  EXPECT_EQ(AmountOf(c), -5000);
  EXPECT_EQ(AmountOf(ZTCurrency(1.5) *= 1.5), 22500);
  EXPECT_EQ(AmountOf(ZTCurrency(0.0001) *= 0.5), 0);
  EXPECT_EQ(AmountOf(ZTCurrency(-0.0003) *= 0.5), -1);
  EXPECT_EQ(AmountOf(ZTCurrency(3).Mul(ZTCurrency())), 30000);
  ZTCurrency max = Amount(MaxAmount), min = Amount(MinAmount);
  EXPECT_EQ(Refusal([&] { max += Amount(1); }), "\"The sum is out of the currency range\"");
  EXPECT_EQ(Refusal([&] { min -= Amount(1); }), "\"The difference is out of the currency range\"");
  EXPECT_EQ(Refusal([&] { min *= -1; }), "\"The product is out of the currency range\"");

  const std::vector<std::int64_t> amounts = SampleAmounts(17, 60);
  for (std::int64_t a : amounts)
    for (std::int64_t b : amounts) {
      const Wide expected[] = {Wide{a} + b, Wide{a} - b, Wide{a} * b / 10000};
      for (int op = 0; op < 3; ++op) {
        ZTCurrency x = Amount(a);
        const auto apply = [&] {
          op == 0 ? x.Add(Amount(b)) : op == 1 ? x.Sub(Amount(b)) : x.Mul(Amount(b));
        };
        if (InRange(expected[op])) {
          apply();
          EXPECT_EQ(AmountOf(x), static_cast<std::int64_t>(expected[op]))
              << a << " op" << op << " " << b;
        } else {
          EXPECT_THROW(apply(), ZTExcept) << a << " op" << op << " " << b;
          EXPECT_EQ(AmountOf(x), a);
        }
      }
    }
}

TEST(ZTCurrency, DivSearchesTheQuotient) {
  const auto quotient = [](double _A, const ZTCurrency& _B) {
    return AmountOf(ZTCurrency(_A).Div(_B));
  };
  EXPECT_EQ(quotient(10, ZTCurrency(3)), 33333);
  EXPECT_EQ(quotient(-2, ZTCurrency(3)), -6666);
  EXPECT_EQ(quotient(7, ZTCurrency(2)), 35000);
  EXPECT_EQ(quotient(-1, ZTCurrency::Ten), -1000);
  EXPECT_EQ(quotient(-5, ZTCurrency(-5)), 10000);
  EXPECT_EQ(quotient(0.0001, ZTCurrency(0.0003)), 4000) << "0.4 * 0.0003 truncates to 0.0001";
  EXPECT_TRUE(ZTCurrency().Div(ZTCurrency::Zero).IsNull());
  for (const ZTCurrency& bad : {ZTCurrency::Zero, ZTCurrency()}) {
    ZTCurrency c(1);
    const auto ex = Catch<ZTExceptCondition>([&] { c /= bad; });
    ASSERT_EQ(ex.GetMsgCount(), 2);
    EXPECT_STREQ(ex.GetMsg(0), "\"Division by zero\"");
    EXPECT_STREQ(ex.GetMsg(1),
                 "Condition check failed(!_Val.IsNull() && _Val != ZTCurrency::Zero)");
  }
  ZTCurrency min = Amount(MinAmount);
  EXPECT_EQ(Refusal([&] { min /= -1; }), "\"The quotient is out of the currency range\"");
  EXPECT_EQ(AmountOf(min), MinAmount);

  // The truncated quotient, or the first quotient the search meets whose
  // truncated product is the dividend (for divisors below 1 that one may lie
  // above the truncated quotient, as 0.4 above).
  const std::vector<std::int64_t> amounts = SampleAmounts(29, 50);
  for (std::int64_t a : amounts)
    for (std::int64_t b : amounts) {
      if (b == 0) continue;
      const Wide exact = Abs(a) * 10000 / Abs(b);
      ZTCurrency x = Amount(a);
      try {
        x.Div(Amount(b));
      } catch (const ZTExcept&) {
        EXPECT_GT(exact + 10000, Wide{MaxAmount}) << a << " / " << b;
        EXPECT_EQ(AmountOf(x), a);
        continue;
      }
      const Wide r = AmountOf(x);
      EXPECT_TRUE(r == 0 || (r < 0) == ((a < 0) != (b < 0) && a != b)) << a << " / " << b;
      EXPECT_TRUE(Abs(r) == exact || Abs(r) * Abs(b) / 10000 == Abs(a)) << a << " / " << b;
    }
}

TEST(ZTCurrency, ChsAndRound) {
  ZTCurrency null;
  const auto chs = Catch<ZTExceptCondition>([&] { null.Chs(); });
  EXPECT_STREQ(chs.GetMsg(0), "\"Change sign on null value not defined\"");
  EXPECT_STREQ(chs.GetMsg(1), "Condition check failed(!IsNull())");
  EXPECT_EQ(AmountOf(Amount(MaxAmount).Chs()), -MaxAmount);
  EXPECT_THROW(Amount(MinAmount).Chs(), ZTExcept);

  EXPECT_EQ(AmountOf(ZTCurrency(2.345).Round(2)), 23500);
  EXPECT_EQ(AmountOf(ZTCurrency(-2.345).Round(2)), -23500);
  EXPECT_EQ(AmountOf(ZTCurrency(-2.5).Round(0)), -30000);
  EXPECT_EQ(AmountOf(ZTCurrency(1.2344).Round(3)), 12340);
  EXPECT_EQ(AmountOf(ZTCurrency(1.2345).Round(4)), 12345);
  EXPECT_TRUE(null.Round(1).IsNull());
  const auto round = Catch<ZTExceptCondition>([] { ZTCurrency(1).Round(-1); });
  EXPECT_STREQ(round.GetMsg(0), "\"Precision must be positive\"");
  EXPECT_STREQ(round.GetMsg(1), "Condition check failed(_Precision >= 0)");
  EXPECT_EQ(AmountOf(Amount(MinAmount).Round(2)), -9223372036854775800);
  ZTCurrency max = Amount(MaxAmount);
  EXPECT_EQ(Refusal([&] { max.Round(0); }), "\"The rounded amount is out of the currency range\"");
  EXPECT_EQ(AmountOf(max), MaxAmount);
}

TEST(ZTCurrency, PrintsUnderFormats) {
  const struct {
    double m_Val;
    const char* m_Format;
    const char* m_Text;
  } cases[] = {
      // clang-format off
      {2.345, "0.00", "2.35"}, {-2.345, "0.00", "-2.35"},
      {1234.5, "#.##0,00", "1.234,50"}, {1234.5, "0.00", "1234.50"},
      {1234.5, nullptr, "1234.5000"}, {1234.5, "%d", "1234.5000"},
      {1234.5, "#.##0", "1.235"}, {1234.5, "0", "1235"},
      {1234.5, "#.##0,0'0'", "1.234,50"}, {1234.5, "0.0\"0\"", "1234.50"},
      {1234.5, "0,000", "1.234,500"}, {1234.5, "0,0", "1.234,5000"},
      {-1234567.891, "#.##0,00", "-1.234.567,89"}, {-100000, "#.##0", "-100.000"},
      {-0.004, "0.00", "-0.00"}, {0, nullptr, "0.00"},
      {0, "", "0.00"}, {0, "0.000", "0.000"},
      // clang-format on
  };
  for (const auto& c : cases)
    EXPECT_EQ(Text(ZTCurrency(c.m_Val), c.m_Format), c.m_Text) << Name(c.m_Format);

  const ZTCurrency null;
  EXPECT_EQ(Text(null), "0.00");
  EXPECT_EQ(Text(null, "#.##0,00"), "0,00") << "the zero of the format";
  EXPECT_EQ(Text(null, "0.0'0'"), "0.00");
  EXPECT_EQ(Text(null, "abc"), "abc");
  EXPECT_EQ(Text(Amount(MinAmount)), "-922337203685477.5808");
  EXPECT_EQ(Text(Amount(MaxAmount), "#.##0,00"), "922.337.203.685.477,58");
  EXPECT_EQ(Text(Amount(MinAmount), "0"), "-922337203685478") << "rounded beyond the range";
}

TEST(ZTCurrency, ReadsText) {
  const struct {
    const char* m_Text;
    int m_Len;
    const char* m_Format;
    std::int64_t m_Amount;
  } cases[] = {
      // clang-format off
      {"12,50", -1, nullptr, 125000}, {"1,234,56", -1, "", 12340},
      {"1.234,56", -1, nullptr, 12340}, {"12,50", -1, "0.00", 120000},
      {"-1.234.567,89", -1, "#.##0", -12345678900}, {"1234.5", -1, "#.##0,00", 123450000},
      {"abc", -1, nullptr, 0}, {" \t-1.5xyz", -1, nullptr, -15000},
      {"12345", 3, nullptr, 1230000}, {"1.5E-2", -1, nullptr, 150},
      {"1e+", -1, nullptr, 10000}, {"0.00015", -1, nullptr, 2},
      {"0.000149999", -1, nullptr, 1}, {"-0.00005", -1, nullptr, -1},
      {"0x10", -1, nullptr, 0}, {"nan", -1, nullptr, 0},
      {"0e99999999999999999999", -1, nullptr, 0}, {"1e-99999999999999999999", -1, nullptr, 0},
      {"5000000000.75", -1, nullptr, 50000000007500},
      {"-922337203685477.5808", -1, nullptr, MinAmount},
      {"922337203685477.58074999", -1, nullptr, MaxAmount},
      {"9223372036854775807e-4", -1, nullptr, MaxAmount},
      // clang-format on
  };
  for (const auto& c : cases) {
    ZTCurrency value;
    value.SetString(c.m_Text, c.m_Len, c.m_Format);
    EXPECT_EQ(AmountOf(value), c.m_Amount) << c.m_Text;
    EXPECT_FALSE(value.IsNull()) << c.m_Text;
  }
  EXPECT_EQ(AmountOf(ZTCurrency((std::string(1000, '0') + "1.5").c_str())), 15000);

  ZTCurrency c(3);
  for (const auto& [text, len] :
       std::vector<std::pair<const char*, int>>{{nullptr, -1}, {"", -1}, {"5", 0}, {"5", -2}}) {
    c = 3;
    c.SetString(text, len);
    EXPECT_TRUE(c.IsNull());
  }
  for (const std::string& text :
       {std::string("922337203685477.5808"), std::string("-922337203685477.58085"),
        std::string("1e15"), std::string(1000, '9'), std::string("0.1e99999999999999999999")}) {
    c = 3;
    EXPECT_EQ(Refusal([&] { c.SetString(text.c_str()); }),
              "The string '" + text + "' is out of the currency range");
    EXPECT_EQ(AmountOf(c), 30000);
  }
}

// Every amount printed under a format reads back under that format, as long
// as the format shows all its decimals; without a format it reads back too.
TEST(ZTCurrency, PrintedAmountsReadBack) {
  for (const auto& f : s_Formats)
    for (std::int64_t amount : SampleAmounts(31, 300)) {
      ZTCurrency value = Amount(amount);
      try {
        value.Round(f.m_Decimals);
      } catch (const ZTExcept&) {
        continue;  // a limit that this format cannot show
      }
      const ZTString text = value.GetString(f.m_Format);
      ZTCurrency back;
      back.SetString(text, f.m_Format);
      EXPECT_EQ(AmountOf(back), AmountOf(value)) << text << " " << Name(f.m_Format);
      EXPECT_EQ(AmountOf(ZTCurrency(Text(value).c_str())), AmountOf(value));
    }
}

namespace {

// Gives the library-wide settings the monetary separators of a private
// settings store for the life of the object, and the previous ones back.
class MonetarySeparators {
 public:
  MonetarySeparators(const char* _Thousands, const char* _Decimal) {
    ZTIntlFormat& intl = ZTIntlFormat::IntlFormat();
    intl.GetCurrThousandSep();
    intl.GetCurrDecimalSep();
    m_Saved = intl;
    char dir[] = "/tmp/ztCurrencyXXXXXX";
    m_Dir = mkdtemp(dir);
    const char* old = std::getenv("ZT_REGISTRY");
    if (old) m_Old = old;
    setenv("ZT_REGISTRY", (m_Dir + "/registry").c_str(), 1);
    ZTRegistryKey key;
    key.Create(ZTRegistryKey::CurrentUser, "Control Panel\\International");
    key.SetValue("sMonThousandSep", ZTString(_Thousands));
    key.SetValue("sMonDecimalSep", ZTString(_Decimal));
    ZTIntlFormat fresh;
    fresh.GetCurrThousandSep();
    fresh.GetCurrDecimalSep();
    intl = fresh;
  }
  ~MonetarySeparators() {
    ZTIntlFormat::IntlFormat() = m_Saved;
    m_Old.empty() ? unsetenv("ZT_REGISTRY") : setenv("ZT_REGISTRY", m_Old.c_str(), 1);
    for (const char* file : {"/registry", "/registry.lock"}) std::remove((m_Dir + file).c_str());
    rmdir(m_Dir.c_str());
  }

 private:
  ZTIntlFormat m_Saved;
  std::string m_Dir, m_Old;
};

}  // namespace

TEST(ZTCurrency, GroupedTextUnderOtherSeparators) {
  const struct {
    const char* m_Thousands;
    const char* m_Decimal;
    const char* m_Text;
  } styles[] = {
      {",", ".", "-1,234,567.89"}, {"'", ".", "-1'234'567.89"}, {" ", ",", "-1 234 567,89"}};
  for (const auto& style : styles) {
    const MonetarySeparators separators(style.m_Thousands, style.m_Decimal);
    EXPECT_EQ(Text(ZTCurrency(-1234567.891), "#.##0,00"), style.m_Text);
    for (std::int64_t amount : SampleAmounts(41, 100)) {
      ZTCurrency value = Amount(amount);
      const ZTString text = value.GetString("#.##0,0000");
      ZTCurrency back;
      back.SetString(text, "#.##0,0000");
      EXPECT_EQ(AmountOf(back), amount) << text;
    }
  }
  EXPECT_EQ(Text(ZTCurrency(1234.5), "#.##0,00"), "1.234,50") << "the settings are back";
}

// Any bytes are read within the given length (the block has no terminator,
// so a read beyond it is caught by the address sanitizer) and give an amount
// or a refusal.
TEST(ZTCurrency, SurvivesHostileText) {
  const char interesting[] = "0123456789+-.,eE \t'\"#%\xff\x80";
  std::mt19937 rng(37);
  for (int round = 0; round < 4000; ++round) {
    std::vector<char> bytes(rng() % 48 + 1);
    for (char& b : bytes)
      b = rng() % 4 ? interesting[rng() % (sizeof interesting - 1)] : static_cast<char>(rng());
    const char* format = s_Formats[rng() % std::size(s_Formats)].m_Format;
    ZTCurrency value;
    try {
      value.SetString(bytes.data(), static_cast<int>(bytes.size() - rng() % 2), format);
    } catch (const ZTExcept& ex) {
      EXPECT_NE(std::string(ex.GetMsg(0)).find("out of the currency range"), std::string::npos);
      continue;
    }
    if (!value.IsNull()) {
      EXPECT_EQ(AmountOf(ZTCurrency(Text(value).c_str())), AmountOf(value));
    }
  }
}

TEST(ZTCurrency, ComparesWithOtherValues) {
  const ZTCurrency null;
  EXPECT_EQ(null.Cmp(ZTCurrency()), CmpEqual);
  for (const ZTString& zero : {ZTString("0"), ZTString(""), ZTString(), ZTString("abc")})
    EXPECT_EQ(null.Cmp(zero), CmpEqual) << "a text that reads as 0";
  EXPECT_EQ(null.Cmp(ZTString("5")), CmpLess);
  EXPECT_EQ(null.Cmp(ZTCurrency::Zero), CmpLess);
  EXPECT_EQ(ZTCurrency::Zero.Cmp(ZTInteger()), CmpGreater);

  EXPECT_TRUE(Amount(MinAmount) < Amount(MaxAmount));
  EXPECT_TRUE(ZTCurrency(2.5) == ZTCurrency("2,5"));
  EXPECT_EQ(ZTCurrency(2.5).Cmp(ZTInteger(2)), CmpGreater) << "the integer becomes a currency";
  EXPECT_EQ(ZTCurrency(1.2346).Cmp(ZTReal(1.23456)), CmpEqual) << "the real becomes a currency";
  EXPECT_EQ(ZTCurrency(1).Cmp(ZTReal(1e300)), CmpLess);
  EXPECT_EQ(ZTCurrency(1).Cmp(ZTReal(-1e300)), CmpGreater);
  EXPECT_EQ(ZTCurrency(1).Cmp(ZTReal(std::nan(""))), CmpNotEqual);
  EXPECT_EQ(ZTCurrency(2.5).Cmp(ZTString("2.50")), CmpEqual);

  const ZTCurrency one(1);
  const ZTInteger foreign(1);
  EXPECT_STREQ(
      Catch<ZTExceptCondition>([&] { one.Cmp(static_cast<const ZTObject*>(nullptr)); }).GetMsg(0),
      "Condition check failed(_Obj != NULL)");
  EXPECT_STREQ(
      Catch<ZTExceptCondition>([&] { one.Cmp(static_cast<const ZTObject*>(&foreign)); }).GetMsg(0),
      "Condition check failed(IsKindOf(_Obj))");
}

TEST(ZTCurrency, ConvertsFromOtherValues) {
  ZTCurrency c;
  c = ZTInteger(7);
  EXPECT_EQ(AmountOf(c), 70000);
  c = ZTReal(2.5);
  EXPECT_EQ(AmountOf(c), 25000);
  c.SetValue(ZTString("3,25"));
  EXPECT_EQ(AmountOf(c), 32500);
  c = ZTInteger();
  EXPECT_TRUE(c.IsNull());
  EXPECT_TRUE(ZTCurrency(ZTReal()).IsNull());

  c = "12,5";
  ZTValue* clone = static_cast<ZTValue*>(c.Clone());
  clone->Attach();
  EXPECT_EQ(clone->Cmp(c), CmpEqual);
  clone->Detach();
  const ZTInteger other(1);
  EXPECT_THROW(c.Copy(&other), ZTExceptCondition);
}

TEST(ZTCurrency, ArrayStatistics) {
  const ZTCurrency values[] = {ZTCurrency(1.5), ZTCurrency(), ZTCurrency(-0.5), ZTCurrency(2)};
  EXPECT_EQ(AmountOf(ZTCurrency::Sum(values, 4)), 30000);
  EXPECT_EQ(AmountOf(ZTCurrency::Avg(values, 4)), 7500) << "nulls count";
  EXPECT_EQ(AmountOf(ZTCurrency::Max(values, 4)), 20000);
  EXPECT_TRUE(ZTCurrency::Min(values, 4).IsNull()) << "null orders first";
  EXPECT_EQ(AmountOf(ZTCurrency::Min(values + 2, 2)), -5000);
  EXPECT_EQ(Text(ZTCurrency::Avg(nullptr, 0)), "0.00");
  EXPECT_TRUE(ZTCurrency::Max(values, 0).IsNull());
  EXPECT_THROW(ZTCurrency::Sum(nullptr, 2), ZTExceptParameter);
  const ZTCurrency large[] = {Amount(MaxAmount), Amount(1)};
  EXPECT_THROW(ZTCurrency::Avg(large, 2), ZTExcept);
}

TEST(ZTCurrency, StoresAreTracked) {
  ZTCurrency c(2);
  c.SetUseDirtyFunction(true);
  c = 2;
  c.Add(ZTCurrency::Zero);
  EXPECT_FALSE(c.IsDirty()) << "storing the value it holds is no change";
  EXPECT_THROW(c.Mul(Amount(MaxAmount)), ZTExcept);
  EXPECT_FALSE(c.IsDirty()) << "a refused result is no change";
  c.Add(ZTCurrency::One);
  ASSERT_TRUE(c.IsDirty());
  EXPECT_EQ(Text(*c.GetOrgValue()), "2.0000");
  c.RestoreToOrgValue();
  EXPECT_EQ(AmountOf(c), 20000);
}

// The C library's number conversions follow LC_NUMERIC; the currency's text
// forms must not. Runs when a German locale is installed.
TEST(ZTCurrency, IndependentOfTheLocale) {
  const std::string previous = std::setlocale(LC_ALL, nullptr);
  if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE"))
    GTEST_SKIP() << "no German locale installed";
  EXPECT_EQ(AmountOf(ZTCurrency("1234.5678")), 12345678);
  EXPECT_EQ(Text(ZTCurrency(1234.5)), "1234.5000");
  EXPECT_EQ(Text(ZTCurrency(1234.5), "#.##0,00"), "1.234,50");
  std::setlocale(LC_ALL, previous.c_str());
}

TEST(ZTCurrency, ScalarsConvertAndCompareWithCurrency) {
  ZTInteger i;
  i.SetValue(ZTCurrency(-2.5));
  EXPECT_EQ(i.GetInt(), -2);
  EXPECT_THROW(i.SetValue(ZTCurrency(3000000000.0)), ZTExcept);
  ZTReal r;
  r.SetValue(ZTCurrency(1.2345));
  EXPECT_EQ(r.GetDouble(), 1.2345);
  EXPECT_EQ(ZTInteger(2).Cmp(ZTCurrency(2.5)), CmpLess);
  EXPECT_EQ(ZTInteger(2).Cmp(ZTCurrency(2)), CmpEqual);
  EXPECT_EQ(ZTReal(1.23456).Cmp(ZTCurrency(1.2346)), CmpLess);
  EXPECT_EQ(ZTReal(1e300).Cmp(Amount(MaxAmount)), CmpGreater);
}
