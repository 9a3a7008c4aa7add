#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

TEST(ZTIntlFormat, DefaultsWithoutRegionalValues) {
  ZTIntlFormat intl;
  EXPECT_EQ(intl.GetDecimal(), ',');
  EXPECT_EQ(intl.GetThousand(), '.');
  EXPECT_EQ(intl.GetDate(), '.');
  EXPECT_EQ(intl.GetTime(), ':');
  EXPECT_EQ(intl.GetCurrDecimalSep(), ',') << "the decimal separator";
  EXPECT_EQ(intl.GetCurrThousandSep(), '.') << "the thousands separator";
  EXPECT_EQ(intl.GetDigits(), 2);
  EXPECT_EQ(intl.GetCurrDigits(), 2);
  EXPECT_EQ(intl.GetGrouping(), 3);
  EXPECT_EQ(intl.GetCurrGrouping(), 3);
  EXPECT_EQ(intl.GetCountry(), 0);
  EXPECT_STREQ(intl.ShortDateFormat(), "dd.MM.yyyy");
  EXPECT_STREQ(intl.ShortTimeFormat(), "HH:mm:ss");
  EXPECT_EQ(intl.GetShortDateFormat(), static_cast<const char*>(intl.ShortDateFormat()));
  EXPECT_STREQ(intl.GetShortTimeFormat(), "HH:mm:ss");
  EXPECT_STREQ(ZTIntlFormat::sm_RegKeyName, "Control Panel\\International");
  EXPECT_STREQ(intl.GetClassName(), "ZTIntlFormat");
}

TEST(ZTIntlFormat, OneInstanceAndCopies) {
  ZTIntlFormat& shared = ZTIntlFormat::IntlFormat();
  EXPECT_EQ(&shared, &ZTIntlFormat::IntlFormat());
  EXPECT_STREQ(shared.ShortDateFormat(), "dd.MM.yyyy");

  ZTIntlFormat copy(shared);
  EXPECT_STREQ(copy.ShortDateFormat(), "dd.MM.yyyy");
  EXPECT_EQ(copy.GetCurrDecimalSep(), shared.GetCurrDecimalSep());
  ZTIntlFormat assigned;
  assigned = copy;
  EXPECT_STREQ(assigned.ShortTimeFormat(), "HH:mm:ss");

  ZTIntlFormat::SetProgramRegKeyName("Software\\zt\\International");
  EXPECT_STREQ(ZTIntlFormat::GetProgramRegKeyName(), "Software\\zt\\International");
  ZTIntlFormat::SetProgramRegKeyName(nullptr);
  EXPECT_TRUE(ZTIntlFormat::GetProgramRegKeyName().IsEmpty());
}

TEST(ZTIntlFormat, FirstReadsFromSeveralThreadsAgree) {
  ZTIntlFormat intl;
  std::vector<std::string> results(4);
  std::vector<std::thread> threads;
  for (std::string& result : results)
    threads.emplace_back([&intl, &result] {
      result = std::string(intl.GetShortDateFormat()) + intl.GetShortTimeFormat() +
               intl.GetCurrThousandSep() + std::to_string(intl.GetGrouping());
    });
  for (std::thread& t : threads) t.join();
  for (const std::string& result : results) EXPECT_EQ(result, "dd.MM.yyyyHH:mm:ss.3");
}
