#include <cstdio>
#include <cstdlib>
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

namespace {
// Points the settings store at a private file for the life of the object.
class PrivateRegistry {
 public:
  PrivateRegistry() {
    char dir[] = "/tmp/ztIntlXXXXXX";
    m_Dir = mkdtemp(dir);
    const char* old = std::getenv("ZT_REGISTRY");
    m_HadOld = old != nullptr;
    if (old) m_Old = old;
    m_File = m_Dir + "/registry";
    setenv("ZT_REGISTRY", m_File.c_str(), 1);
  }
  ~PrivateRegistry() {
    if (m_HadOld) setenv("ZT_REGISTRY", m_Old.c_str(), 1); else unsetenv("ZT_REGISTRY");
    std::remove(m_File.c_str());
    std::remove((m_File + ".lock").c_str());
    rmdir(m_Dir.c_str());
  }
  void Set(const char* _Key, const char* _Name, const char* _Value) {
    ZTRegistryKey key;
    key.Create(ZTRegistryKey::CurrentUser, _Key);
    key.SetValue(_Name, ZTString(_Value));
  }
  const std::string& File() const { return m_File; }

 private:
  std::string m_Dir, m_File, m_Old;
  bool m_HadOld = false;
};
constexpr const char* International = "Control Panel\\International";
}  // namespace

TEST(ZTIntlFormat, ReadsTheUserSettingsWithTheirRules) {
  PrivateRegistry registry;
  {
    ZTIntlFormat none;  // no values at all: the defaults
    EXPECT_EQ(none.GetDecimal(), ',');
    EXPECT_EQ(none.GetThousand(), '.');
    EXPECT_EQ(none.GetDigits(), 2);
    EXPECT_EQ(none.GetGrouping(), 3);
    EXPECT_EQ(none.GetCountry(), 0);
    EXPECT_STREQ(none.ShortDateFormat(), "dd.MM.yyyy");
    EXPECT_STREQ(none.ShortTimeFormat(), "HH:mm:ss");
  }
  registry.Set(International, "sDecimal", ".");
  registry.Set(International, "sThousand", ",x");  // only the first character counts
  registry.Set(International, "sDate", "/");
  registry.Set(International, "sShortDate", "M/d/yyyy");  // not 10 characters: replaced
  registry.Set(International, "sTimeFormat", "HH.mm.ss");
  registry.Set(International, "sMonDecimalSep", "");  // empty: the decimal separator
  registry.Set(International, "sGrouping", "3;2;0");
  registry.Set(International, "sMonGrouping", "");
  registry.Set(International, "iDigits", "4");
  registry.Set(International, "iCountry", "49");
  ZTIntlFormat intl;
  EXPECT_EQ(intl.GetDecimal(), '.');
  EXPECT_EQ(intl.GetThousand(), ',');
  EXPECT_STREQ(intl.ShortDateFormat(), "dd/MM/yyyy");
  EXPECT_STREQ(intl.ShortTimeFormat(), "HH.mm.ss");
  EXPECT_EQ(intl.GetCurrDecimalSep(), '.');
  EXPECT_EQ(intl.GetCurrThousandSep(), ',');
  EXPECT_EQ(intl.GetGrouping(), 3);
  EXPECT_EQ(intl.GetCurrGrouping(), 3);
  EXPECT_EQ(intl.GetDigits(), 4);
  EXPECT_EQ(intl.GetCurrDigits(), 2);
  EXPECT_EQ(intl.GetCountry(), 49);

  // Settings are read once: later changes are not seen by the same object.
  registry.Set(International, "sDecimal", ";");
  EXPECT_EQ(intl.GetDecimal(), '.');
  registry.Set(International, "sShortDate", "yyyy-MM-dd");  // 10 characters: kept
  EXPECT_STREQ(ZTIntlFormat().ShortDateFormat(), "yyyy-MM-dd");
}

TEST(ZTIntlFormat, FallsBackToTheProgramKeyAndReportsBrokenStores) {
  PrivateRegistry registry;
  registry.Set("Software\\Demo", "sDecimal", "!");
  registry.Set(International, "sThousand", "'");
  ZTIntlFormat::SetProgramRegKeyName("Software\\Demo");
  ZTIntlFormat intl;
  EXPECT_EQ(intl.GetDecimal(), '!');   // only in the program key
  EXPECT_EQ(intl.GetThousand(), '\'');  // the user's key comes first
  ZTIntlFormat::SetProgramRegKeyName(nullptr);

  {
    std::ofstream broken(registry.File(), std::ios::trunc);
    broken << "[CurrentUser\\Control Panel\\International]\n\"sDecimal\"=nonsense\n";
  }
  try {
    ZTIntlFormat().GetDecimal();
    ADD_FAILURE() << "a broken store must be reported";
  } catch (const ZTExcept& ex) {
    EXPECT_STREQ(ex.GetMsg(0), "Unable to query value 'sDecimal'");
    ASSERT_GE(ex.GetMsgCount(), 2);
    EXPECT_NE(std::string(ex.GetMsg(1)).find(registry.File()), std::string::npos);
  }
}
