#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

namespace {

using zt_test::Text;

std::string Ymd(const ZTDate& _Date) { return Text(_Date, "yyyy-MM-dd"); }

std::string Stamp(const ZTTimestamp& _Stamp) { return Text(_Stamp, "yyyy-MM-dd HH:mm:ss"); }

using zt_test::Watched;

// All messages of an exception, the latest first.
std::string Messages(const ZTExcept& _Ex) {
  std::string text = _Ex.GetMsg(0);
  for (int i = 1; i < _Ex.GetMsgCount(); ++i) text += std::string(" ") + _Ex.GetMsg(i);
  return text;
}

std::tm LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  return tm;
}

// Every day from the first to the last valid date, with its fields counted
// independently of the library's day-number formula.
template <class F>
void ForEachDay(F&& _Fn) {
  const unsigned lengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  for (unsigned year = 1752; year <= 2500; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    for (unsigned month = 1; month <= 12; ++month) {
      const unsigned len = month == 2 && leap ? 29 : lengths[month - 1];
      for (unsigned day = 1; day <= len; ++day) _Fn(year, month, day, len);
    }
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTDate

TEST(ZTDate, CreationNullStateAndNativeForm) {
  for (const char* name : {"date", "ZTDate", "Date"}) {
    ZTValue* value = ZTValueCreator::CreateObject(name);
    ASSERT_NE(value, nullptr) << name;
    EXPECT_EQ(value->GetClassType(), ZTDate::ClassGetType());
    EXPECT_TRUE(value->IsNull());
    value->Attach();
    value->Detach();
  }
  EXPECT_STREQ(ZTDate().GetTypeName(), "date");
  EXPECT_STREQ(ZTDate::sm_Month, "Month");

  ZTDate date;
  EXPECT_EQ(date.Get(nullptr, 0), 0u);
  EXPECT_EQ(Text(date), "");
  EXPECT_TRUE(ZTDate(0, 0, 0).IsNull());
  date.Set(2024, 1, 1);
  std::uint32_t native = 0;
  EXPECT_EQ(date.Get(nullptr, 0), 4u);
  EXPECT_EQ(date.Get(&native, sizeof native), 4u);
  EXPECT_EQ(native, 2460311u) << "the Julian day number of 1 January 2024";
  EXPECT_EQ(date.GetDayOfWeek(), ZTDate::Monday);
  EXPECT_EQ(ZTDate(1970, 1, 1).GetJulDayNum(), 2440588u);
}

TEST(ZTDate, CalendarOfEveryValidDay) {
  unsigned expected = ZTDate::GetJulDayNum(1752, 1, 1);
  EXPECT_EQ(ZTDate(1752, 1, 1).GetDayOfWeek(), ZTDate::Saturday);
  unsigned dayOfYear = 0;
  ForEachDay([&](unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Len) {
    dayOfYear = _Month == 1 && _Day == 1 ? 1 : dayOfYear + 1;
    const unsigned dayNum = ZTDate::GetJulDayNum(_Year, _Month, _Day);
    ASSERT_EQ(dayNum, expected) << _Year << "-" << _Month << "-" << _Day;
    ++expected;
    if (_Day != 1 && _Day != _Len && _Day != 15) return;  // the rest only on a sample
    const ZTDate date(_Year, _Month, _Day);
    unsigned y, m, d;
    date.GetYearMonthDay(y, m, d);
    ASSERT_TRUE(y == _Year && m == _Month && d == _Day) << Ymd(date);
    EXPECT_EQ(date.GetDayOfYear(), dayOfYear);
    EXPECT_EQ(date.GetDaysInMonth(), _Len);
    EXPECT_EQ(static_cast<unsigned>(date.GetDayOfWeek()), (dayNum + 1) % 7);
    EXPECT_FALSE(ZTDate::IsValidDate(_Year, _Month, _Len + 1));
  });
  EXPECT_EQ(expected - 1, ZTDate(2500, 12, 31).GetJulDayNum());

  for (unsigned year : {1900u, 2100u, 2023u}) EXPECT_FALSE(ZTDate::IsLeapYear(year)) << year;
  for (unsigned year : {2000u, 2024u, 1752u}) EXPECT_TRUE(ZTDate::IsLeapYear(year)) << year;
  EXPECT_EQ(ZTDate::GetDaysInMonth(1900, 2), 28u);
  EXPECT_EQ(ZTDate::GetDaysInMonth(2000, 2), 29u);
  EXPECT_EQ(ZTDate::GetDaysInMonth(2000, 13), 0u);
  EXPECT_EQ(ZTDate::GetJulDayNum(99, 12, 31), ZTDate::GetJulDayNum(1999, 12, 31));
  EXPECT_EQ(ZTDate::GetJulDayNum(1751, 12, 31), 0u) << "before the calendar";
  EXPECT_EQ(ZTDate::GetJulDayNum(UINT_MAX, 1, 1), 0u) << "no 32-bit day number";
  EXPECT_FALSE(ZTDate::IsDayWithinMonth(2023, 2, 29));
  EXPECT_FALSE(ZTDate::IsDayWithinMonth(2023, 0, 1));
}

TEST(ZTDate, SetCapsChecksAndNullsInvalidDates) {
  ZTDate date(3000, 6, 1);
  EXPECT_EQ(Ymd(date), "2500-06-01");
  date.Set(5, 2, 1);
  EXPECT_EQ(Ymd(date), "1905-02-01");
  date.Set(2023, 2, 30);
  EXPECT_TRUE(date.IsNull()) << "30 February";
  date.Set(1700, 1, 1);
  EXPECT_TRUE(date.IsNull());

  ZTExceptCondition ex = Catch<ZTExceptCondition>([&] { date.Set(2024, 13, 1); });
  EXPECT_EQ(Messages(ex), "\"Invalid number for month\" Condition check failed(0 <= _Month && _Month <= 12)");
  ex = Catch<ZTExceptCondition>([&] { date.Set(2024, 1, 32); });
  EXPECT_EQ(Messages(ex), "\"Invalid number for day\" Condition check failed(0 <= _Day && _Day <= 31)");
}

TEST(ZTDate, TextInput) {
  ASSERT_STREQ(ZTIntlFormat::IntlFormat().ShortDateFormat(), "dd.MM.yyyy")
      << "the texts without layout here are written in the default layouts";
  ASSERT_STREQ(ZTIntlFormat::IntlFormat().ShortTimeFormat(), "HH:mm:ss");
  ZTDate date("05.03.2024");
  EXPECT_EQ(Ymd(date), "2024-03-05");
  EXPECT_FALSE(date.IsDirty());
  date = "29.02.2023";
  EXPECT_TRUE(date.IsNull());
  date = "29.02.2024";
  EXPECT_EQ(Ymd(date), "2024-02-29");
  date.SetString("01.02.05", -1, "dd.MM.yy");
  EXPECT_EQ(Ymd(date), "1905-02-01");
  date.SetString("2024-12-31", -1, "yyyy-mm-dd");
  EXPECT_EQ(Ymd(date), "2024-12-31");
  date.SetString("7/4/2024", -1, "M/d/yyyy");
  EXPECT_EQ(Ymd(date), "2024-07-04");
  date.SetString("31.12.2024 and more", 10, nullptr);
  EXPECT_EQ(Ymd(date), "2024-12-31");
  date = "05.03";
  EXPECT_TRUE(date.IsNull()) << "fewer than 6 characters";
  date = "05.03.2024";
  date.SetString("05.03.2024", 0, nullptr);
  EXPECT_TRUE(date.IsNull());
  date.SetString(nullptr);
  EXPECT_TRUE(date.IsNull());
  date = "05.03.  24";
  EXPECT_EQ(Ymd(date), "1924-03-05") << "blanks and two digits of a year field";

  const std::tm now = LocalTime();
  date = "CURRENT";
  const ZTDate today = ZTDate::Current();
  EXPECT_TRUE(today.Diff(date) == 0 || today.Diff(date) == 1) << "midnight may pass between the reads";
  EXPECT_LE(std::abs(static_cast<int>(today.GetYear()) - (now.tm_year + 1900)), 1);
  EXPECT_LE(std::abs(ZTDate::CurrentJulDayNum() -
                     static_cast<long>(ZTDate::GetJulDayNum(now.tm_year + 1900, now.tm_mon + 1,
                                                            now.tm_mday))),
            1);

  EXPECT_EQ(Catch([&] { date = "05.13.2024"; }).GetMsg(0), std::string("\"Invalid number for month\""));

  WarningCapture capture;
  date = "05.03.2024";
  date.SetString("05.03.2024", -1, "");
  EXPECT_TRUE(date.IsNull());
  EXPECT_TRUE(capture.Contains("\"ZTDate::SetString: Empty format\""));
}

TEST(ZTDate, TextOutput) {
  const ZTDate date(2024, 3, 5);
  EXPECT_EQ(Text(date), "05.03.2024");
  EXPECT_EQ(Text(date, "yyyy-MM-dd"), "2024-03-05");
  EXPECT_EQ(Text(date, "DD/mm/JJJJ"), "05/03/2024");
  EXPECT_EQ(Text(date, "dd.MM.yy"), "05.03.24");
  EXPECT_EQ(Text(date, "d.M.yyyy"), "5.3.2024");
  EXPECT_EQ(Text(ZTDate(2024, 12, 15), "d.M.yyyy"), "15.12.2024") << "one-letter fields grow";
  EXPECT_EQ(Text(date, "Date: dd.MM.yyyy!"), "Date: 05.03.2024!");
  EXPECT_EQ(Text(ZTDate()), "");
  char buffer[6];
  EXPECT_STREQ(date.GetStringVal(buffer, sizeof buffer), "05.03");

  WarningCapture capture;
  EXPECT_EQ(Text(date, ""), "");
  EXPECT_TRUE(capture.Contains("\"ZTDate::CopyIntoString: Empty format\""));
}

TEST(ZTDate, EveryPrintedDateReadsBack) {
  const char* const layouts[] = {nullptr, "yyyy-MM-dd", "MM/dd/yyyy", "yyyyMMdd", "dd.mm.yyyy",
                                 "DD-MM-JJJJ x"};
  ZTDate date, back;
  ForEachDay([&](unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Len) {
    const bool sample = _Day == _Len || (_Year * 31 + _Month * 7 + _Day) % 29 == 0;
    if (!sample) return;
    date.Set(_Year, _Month, _Day);
    for (const char* layout : layouts) {
      back.SetString(date.GetString(layout), -1, layout);
      ASSERT_EQ(back.GetJulDayNum(), date.GetJulDayNum())
          << Ymd(date) << " as " << Text(date, layout) << " in " << (layout ? layout : "default");
    }
    if (_Year >= 1900 && _Year <= 1999) {
      back.SetString(date.GetString("dd.MM.yy"), -1, "dd.MM.yy");
      ASSERT_EQ(back.GetJulDayNum(), date.GetJulDayNum()) << Ymd(date);
    }
  });
  for (unsigned year : {1900u, 2000u, 2024u, 2100u}) {
    date.Set(year, 2, ZTDate::GetDaysInMonth(year, 2));
    back = static_cast<const char*>(date.GetString());
    EXPECT_EQ(back.Diff(date), 0) << Ymd(date);
  }
}

TEST(ZTDate, HostileText) {
  WarningCapture capture;
  ZTDate date;
  // Not zero-terminated: only the given length may be read.
  const std::vector<char> unterminated = {'0', '5', '.', '0', '3', '.', '2', '0', '2', '4'};
  date.SetString(unterminated.data(), static_cast<int>(unterminated.size()), nullptr);
  EXPECT_EQ(Ymd(date), "2024-03-05");
  const std::vector<char> stub = {'0', '5', '.', '0', '3', '.'};
  date.SetString(stub.data(), static_cast<int>(stub.size()), nullptr);
  EXPECT_EQ(Ymd(date), "1900-03-05") << "the year field lies beyond the text";
  const char withZero[] = "05.0\0003.2024";
  date.SetString(withZero, sizeof withZero - 1, nullptr);
  EXPECT_TRUE(date.IsNull()) << "the text ends at the zero";

  EXPECT_THROW(date.SetString("99.99.9999", -1, nullptr), ZTExceptCondition);
  EXPECT_TRUE(date.IsNull()) << "refused, not stored";
  date = "01.01.9999";
  EXPECT_EQ(Ymd(date), "2500-01-01");
  date = "01.01.0x7D";
  EXPECT_TRUE(date.IsNull()) << "a hexadecimal year 125 is before the calendar";
  date = "01.01.-001";
  EXPECT_EQ(Ymd(date), "2500-01-01") << "a negative year is a huge unsigned year, capped";
  EXPECT_THROW(date = "-1.01.2024", ZTExceptCondition);
  date = "ab.cd.efgh";
  EXPECT_TRUE(date.IsNull());
  date.SetString(("12.12.2012" + std::string(100000, '7')).c_str(), -1, nullptr);
  EXPECT_EQ(Ymd(date), "2012-12-12") << "fields read their own width only";
}

TEST(ZTDate, AssignmentLists) {
  WarningCapture capture;
  ZTDate date(2023, 1, 25);
  date = "<Day=Day+40>";
  EXPECT_EQ(Ymd(date), "2023-03-06");
  date = "<Month=Month+11; Day=1>";
  EXPECT_EQ(Ymd(date), "2024-02-01");
  date = "< year = 2030 ;day=Month+28>";
  EXPECT_EQ(Ymd(date), "2030-03-02") << "29 and 30 February carry on";
  date = "<Day=Day-40>";
  EXPECT_TRUE(date.IsNull()) << "a day below 1 gives no date";
  EXPECT_FALSE(capture.Contains("Invalid"));

  date.Set(2024, 5, 15);
  date = "<Day=99999999999999999999>";
  EXPECT_EQ(date.GetYear(), 2500u) << "a huge day carries into a year beyond the last, capped";
  date.Set(2024, 5, 15);
  date = "<Hour=1;Day=Dya+1;Month;Day=1+2+3;Day=16>";
  EXPECT_EQ(Ymd(date), "2024-05-16") << "bad items are skipped";
  EXPECT_TRUE(capture.Contains("\"ZTDate::SetValue: Unable to set part value 'Hour'\""));
  EXPECT_TRUE(capture.Contains("Invalid assignment 'Day=Dya+1'"));
  EXPECT_TRUE(capture.Contains("Invalid assignment 'Month'"));
  EXPECT_TRUE(capture.Contains("Invalid assignment 'Day=1+2+3'"));
}

TEST(ZTDate, PartsAsSubValues) {
  WarningCapture capture;
  ZTDate date(2024, 3, 5);
  const ZTValue* month = date.GetValue("Month");
  ASSERT_NE(month, nullptr);
  EXPECT_EQ(month, date.GetValue("MONTH")) << "one part object per owner and part";
  EXPECT_EQ(Text(*month), "3");
  EXPECT_TRUE(date.IsFlagSet(ZTValue::FlagHasValueParts));
  date.AddMonths(2);
  EXPECT_EQ(Text(*month), "5") << "kept up to date with its owner";
  EXPECT_EQ(Text(date.Value("Year")), "2024");
  date.SetNull();
  EXPECT_TRUE(month->IsNull());

  EXPECT_EQ(date.GetValue("Hour"), nullptr);
  EXPECT_TRUE(capture.Contains("\"ZTDate: Unknown part 'Hour'\""));
  EXPECT_THROW(date.GetValue(nullptr), ZTExceptParameter);

  date.Set(2024, 11, 30);
  date.SetValue("Month", ZTInteger(14));
  EXPECT_EQ(Ymd(date), "2025-03-02") << "14 is February of the next year; 30 February carries";
  date.SetValue("day", ZTString("32"));
  EXPECT_EQ(Ymd(date), "2025-04-01");
  date.SetValue("Year", ZTInteger(24));
  EXPECT_EQ(Ymd(date), "1924-04-01");
  date.SetValue("Day", ZTInteger());
  EXPECT_TRUE(date.IsNull()) << "a null part counts as 0";
  date.SetValue("Day", ZTInteger(5));
  EXPECT_EQ(Ymd(date), "1900-01-05") << "from a null date: year 0, January";

  // The parts go with their owner.
  const int before = ZTMemMgr::GetUsageCount(ZTMemCatValue);
  {
    ZTDate owner(2024, 1, 1);
    owner.GetValue("Day");
    owner.GetValue("Year");
    ZTDate copy(owner);
    EXPECT_FALSE(copy.IsFlagSet(ZTValue::FlagHasValueParts));
  }
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatValue), before);
}

TEST(ZTDate, Arithmetic) {
  ZTDate date(2024, 2, 28);
  date += 2;
  EXPECT_EQ(Ymd(date), "2024-03-01");
  date -= 1;
  EXPECT_EQ(Ymd(date), "2024-02-29");
  EXPECT_EQ(Ymd(date + 366), "2025-03-01");
  EXPECT_EQ(Ymd(366 + date), "2025-03-01");
  EXPECT_EQ(Ymd(date - 60), "2023-12-31");
  EXPECT_EQ(Ymd(60 - date), "2023-12-31");
  EXPECT_EQ((date + 10).Diff(date), 10);
  EXPECT_EQ(date.Diff(date + 10), -10);

  const struct {
    unsigned m_Y, m_M, m_D;
    void (ZTDate::*m_Op)(unsigned);
    unsigned m_N;
    const char* m_Result;
  } cases[] = {
      {2023, 11, 30, &ZTDate::AddMonths, 1, "2023-12-30"},
      {2023, 1, 31, &ZTDate::AddMonths, 1, "2023-02-28"},
      {2024, 1, 31, &ZTDate::AddMonths, 1, "2024-02-29"},
      {2023, 5, 15, &ZTDate::AddMonths, 13, "2024-06-15"},
      {2023, 5, 15, &ZTDate::AddMonths, 12 * 1000, "2500-05-15"},
      {2024, 3, 31, &ZTDate::SubMonths, 1, "2024-02-29"},
      {2024, 3, 15, &ZTDate::SubMonths, 3, "2023-12-15"},
      {2024, 3, 15, &ZTDate::SubMonths, 27, "2021-12-15"},
      {2024, 2, 29, &ZTDate::AddYears, 1, "2025-02-28"},
      {2024, 2, 29, &ZTDate::SubYears, 4, "2020-02-29"},
      {2024, 2, 29, &ZTDate::AddYears, UINT_MAX, "2500-02-28"},
      {2024, 2, 29, &ZTDate::SubYears, 300, "<null>"},
      {2024, 2, 29, &ZTDate::SubYears, UINT_MAX, "<null>"},
      {2024, 2, 29, &ZTDate::SubMonths, UINT_MAX, "<null>"},
  };
  for (const auto& c : cases) {
    ZTDate d(c.m_Y, c.m_M, c.m_D);
    (d.*c.m_Op)(c.m_N);
    EXPECT_EQ(d.IsNull() ? "<null>" : Ymd(d), c.m_Result) << c.m_Y << "-" << c.m_M << "-" << c.m_D << " by " << c.m_N;
  }

  ZTDate last(2500, 12, 31);
  EXPECT_EQ(Messages(Catch<ZTExceptCondition>([&] { last.AddDays(1); })),
            "\"Date out of range\" Condition check failed(_Days <= MaxJulDayNum - m_JulDayNum)");
  EXPECT_THROW(ZTDate(1752, 1, 1).SubDays(1), ZTExceptCondition);
  EXPECT_THROW(date.AddDays(UINT_MAX), ZTExceptCondition);
  EXPECT_EQ(Ymd(last), "2500-12-31") << "a refused move changes nothing";

  ZTDate null;
  null.AddDays(5);
  null.AddMonths(5);
  null.SubYears(5);
  null.SkipToNextWeekday(ZTDate::Friday);
  EXPECT_TRUE(null.IsNull());

  ZTDate monday(2024, 1, 1);
  monday.SkipToNextWeekday(ZTDate::Monday);
  EXPECT_EQ(Ymd(monday), "2024-01-08") << "never the day itself";
  monday.SkipToNextWeekday(ZTDate::Sunday);
  EXPECT_EQ(Ymd(monday), "2024-01-14");
  monday.SkipToPreviousWeekday(ZTDate::Saturday);
  EXPECT_EQ(Ymd(monday), "2024-01-13");
  monday.SkipToPreviousWeekday(ZTDate::Saturday);
  EXPECT_EQ(Ymd(monday), "2024-01-06");
  EXPECT_THROW(monday.SkipToNextWeekday(static_cast<ZTDate::Weekday>(7)), ZTExceptCondition);
}

TEST(ZTDate, ChangeTracking) {
  Watched<ZTDate> date;
  date.Set(2024, 3, 5);
  EXPECT_EQ(date.m_Log, "dirty()changed(05.03.2024)");
  date.m_Log.clear();
  date.Set(2024, 3, 5);
  date = "05.03.2024";
  date.AddDays(0);
  EXPECT_EQ(date.m_Log, "") << "storing the same date is no change";
  date.AddDays(1);
  EXPECT_EQ(date.m_Log, "dirty(05.03.2024)changed(06.03.2024)");

  ZTDate tracked(2024, 3, 5);
  tracked.SetUseDirtyFunction(true);
  tracked.Set(2024, 3, 5);
  EXPECT_FALSE(tracked.IsDirty());
  tracked.AddMonths(1);
  tracked.AddMonths(1);
  ASSERT_TRUE(tracked.IsDirty());
  ASSERT_NE(tracked.GetOrgValue(), nullptr);
  EXPECT_EQ(Text(*tracked.GetOrgValue()), "05.03.2024");
  tracked.RestoreToOrgValue();
  EXPECT_EQ(Ymd(tracked), "2024-03-05");
  EXPECT_FALSE(tracked.IsDirty());
  tracked.SetNull();
  EXPECT_TRUE(tracked.IsDirty());
  tracked.RestoreToOrgValue();
  EXPECT_EQ(Ymd(tracked), "2024-03-05");
}

TEST(ZTDate, ConversionAndComparison) {
  ZTDate date;
  date.SetValue(ZTInteger(2460311));
  EXPECT_EQ(Ymd(date), "2024-01-01");
  date.SetValue(ZTReal(2460312.99));
  EXPECT_EQ(Ymd(date), "2024-01-02") << "truncated";
  date.SetValue(ZTInteger(5));
  EXPECT_TRUE(date.IsNull()) << "no valid date";
  date.SetValue(ZTInteger(-1));
  EXPECT_TRUE(date.IsNull());
  date.SetValue(ZTReal(1e300));
  EXPECT_TRUE(date.IsNull());
  date.SetValue(ZTTimestamp(2024, 7, 4, 10, 0, 0));
  EXPECT_EQ(Ymd(date), "2024-07-04");
  date.SetValue(ZTTimestamp(2024, 2, 31, 10, 0, 0));
  EXPECT_TRUE(date.IsNull()) << "the timestamp's fields form no date";
  date.SetValue(ZTString("24.12.2024"));
  EXPECT_EQ(Ymd(date), "2024-12-24");
  date.SetValue(ZTBool(true));
  EXPECT_TRUE(date.IsNull());
  date.SetValue(ZTDate(2024, 1, 1));
  date.SetValue(ZTString());
  EXPECT_TRUE(date.IsNull());

  ZTDate copy(2024, 1, 1);
  date.Copy(&copy);
  EXPECT_EQ(date.Diff(copy), 0);
  EXPECT_THROW(date.Copy(&ZTValue::NullValue()), ZTExceptCondition);
  ZTObject* clone = copy.Clone();
  EXPECT_EQ(static_cast<ZTDate*>(clone)->GetJulDayNum(), copy.GetJulDayNum());
  clone->Attach();
  clone->Detach();

  const ZTDate early(2024, 1, 1), late(2024, 1, 2), none;
  EXPECT_EQ(early.Cmp(late), CmpLess);
  EXPECT_EQ(late.Cmp(early), CmpGreater);
  EXPECT_EQ(early.Cmp(ZTDate(2024, 1, 1)), CmpEqual);
  EXPECT_EQ(none.Cmp(early), CmpLess);
  EXPECT_EQ(early.Cmp(none), CmpGreater);
  EXPECT_EQ(none.Cmp(ZTDate()), CmpEqual);
  EXPECT_TRUE(early < late && late >= early && early != late);
  EXPECT_EQ(early.Cmp(ZTString("01.01.2024")), CmpEqual) << "the text read as a date";
  EXPECT_EQ(early.Cmp(ZTTimestamp(2024, 1, 1, 12, 0, 0)), CmpEqual) << "its date part";
  EXPECT_EQ(early.Cmp(static_cast<const ZTObject*>(&late)), CmpLess);
  EXPECT_THROW(early.Cmp(static_cast<const ZTObject*>(nullptr)), ZTExceptCondition);
}

// ---------------------------------------------------------------------------
// ZTTime

TEST(ZTTime, CreationSetAndRanges) {
  ZTValue* value = ZTValueCreator::CreateObject("Time");
  ASSERT_NE(value, nullptr);
  EXPECT_STREQ(value->GetTypeName(), "time");
  value->Attach();
  value->Detach();

  EXPECT_TRUE(ZTTime(0, 0, 0).IsNull());
  ZTTime time;
  time.Set(0, 0, 0);
  EXPECT_FALSE(time.IsNull()) << "midnight is a time";
  EXPECT_EQ(Text(time), "00:00:00");
  time.Set(24, 0, 0);
  EXPECT_EQ(time.GetSecondsSinceMidnight(), 86400u);
  std::uint32_t native = 0;
  EXPECT_EQ(time.Get(&native, sizeof native), 4u);
  EXPECT_EQ(native, 86400u);
  EXPECT_EQ(Messages(Catch<ZTExceptCondition>([&] { time.Set(25, 0, 0); })),
            "\"Invalid number for hour\" Condition check failed(0 <= _Hour && _Hour <= 24)");
  EXPECT_EQ(Catch([&] { time.Set(1, 60, 0); }).GetMsg(0), std::string("\"Invalid number for minute\""));
  EXPECT_EQ(Catch([&] { time.Set(1, 0, 60); }).GetMsg(0), std::string("\"Invalid number for second\""));
  EXPECT_EQ(time.GetSecondsSinceMidnight(), 86400u) << "refused parts change nothing";
  EXPECT_EQ(ZTTime::GetSecondsSinceMidnight(12, 30, 0), 45000u);

  time.Set(7, 8, 9);
  unsigned h, m, s;
  time.GetHourMinuteSecond(h, m, s);
  EXPECT_TRUE(h == 7 && m == 8 && s == 9);
  EXPECT_EQ(ZTTime::Diff(time, ZTTime(7, 0, 0)), 489);
  EXPECT_EQ(ZTTime::Diff(ZTTime(7, 0, 0), time), -489);
}

TEST(ZTTime, TextBothWays) {
  ZTTime time("12:30:00");
  EXPECT_EQ(time.GetSecondsSinceMidnight(), 45000u);
  time = "12:30:00";
  EXPECT_EQ(time.GetSecondsSinceMidnight(), 45000u);
  time = "1:5";
  EXPECT_TRUE(time.IsNull()) << "fewer than 4 characters";
  time = "12:30:00";
  time.SetString("12:30:00", 3, nullptr);
  EXPECT_TRUE(time.IsNull()) << "a length of 1 to 3";
  time.SetString("12:3", 10, nullptr);
  EXPECT_EQ(Text(time), "12:03:00") << "reads up to the zero";
  time.SetString("07.08", -1, "HH.MM");
  EXPECT_EQ(Text(time), "07:08:00");
  time.SetString("0708 09", -1, "hhmm ss");
  EXPECT_EQ(Text(time, "HH:mm"), "07:08");
  EXPECT_EQ(Text(time, "H:m:s"), "7:8:9");
  EXPECT_EQ(Text(ZTTime(13, 45, 0), "h.mi"), "13.45");
  EXPECT_EQ(Text(time, "hh-nn-SS"), "07-08-09");
  EXPECT_EQ(Text(ZTTime()), "");
  EXPECT_THROW(time = "99:00:00", ZTExceptCondition);
  time = "ab:cd:ef";
  EXPECT_EQ(Text(time), "00:00:00") << "non-numeric fields read as 0";

  const std::tm before = LocalTime();
  time = "current";
  const std::tm after = LocalTime();
  const int low = before.tm_hour * 3600 + before.tm_min * 60 + std::min(before.tm_sec, 59);
  const int high = after.tm_hour * 3600 + after.tm_min * 60 + std::min(after.tm_sec, 59);
  const int got = static_cast<int>(time.GetSecondsSinceMidnight());
  EXPECT_TRUE(low <= high ? (got >= low && got <= high) : (got >= low || got <= high)) << got;
  EXPECT_LE(std::abs(ZTTime::Diff(ZTTime::Current(), time)), 2);

  WarningCapture capture;
  time.SetString("12:00:00", -1, "");
  EXPECT_TRUE(time.IsNull());
  EXPECT_TRUE(capture.Contains("\"ZTTime::SetString: Empty format\""));
  time.Set(1, 2, 3);
  EXPECT_EQ(Text(time, ""), "");
  EXPECT_TRUE(capture.Contains("\"ZTTime::CopyIntoString: Empty format\""));
}

TEST(ZTTime, EveryPrintedTimeReadsBack) {
  const char* const layouts[] = {nullptr, "HH:mm:ss", "hh.mm.ss", "HHmmss", "ss/mm/HH"};
  ZTTime time, back;
  for (unsigned secs = 0; secs <= 86400; secs += 13) {
    time.Set(secs / 3600, secs / 60 % 60, secs % 60);
    for (const char* layout : layouts) {
      back.SetString(time.GetString(layout), -1, layout);
      ASSERT_EQ(back.GetSecondsSinceMidnight(), secs) << Text(time) << " in " << (layout ? layout : "default");
    }
  }
}

TEST(ZTTime, ArithmeticWrapsAroundMidnight) {
  ZTTime time(23, 0, 0);
  time.AddHours(2);
  EXPECT_EQ(Text(time), "01:00:00");
  time.SubMinutes(61);
  EXPECT_EQ(Text(time), "23:59:00");
  time.AddSeconds(61);
  EXPECT_EQ(Text(time), "00:00:01");
  time.SubSeconds(UINT_MAX);
  EXPECT_EQ(time.GetSecondsSinceMidnight(), (1 + 86400 - UINT_MAX % 86400) % 86400);
  time.AddHours(UINT_MAX);
  time.SubHours(UINT_MAX);
  time.AddMinutes(UINT_MAX);
  time.SubMinutes(UINT_MAX);
  EXPECT_EQ(time.GetSecondsSinceMidnight(), (1 + 86400 - UINT_MAX % 86400) % 86400);
  ZTTime null;
  null.AddHours(1);
  EXPECT_TRUE(null.IsNull());
}

TEST(ZTTime, PartsConversionsAndTracking) {
  WarningCapture capture;
  ZTTime time(7, 8, 9);
  const ZTValue* minute = time.GetValue("minute");
  ASSERT_NE(minute, nullptr);
  EXPECT_EQ(Text(*minute), "8");
  time.SetValue("Minute", ZTInteger(30));
  EXPECT_EQ(Text(*minute), "30");
  EXPECT_EQ(Text(time), "07:30:09");
  EXPECT_THROW(time.SetValue("Second", ZTInteger(75)), ZTExceptCondition) << "no carrying";
  EXPECT_THROW(time.SetValue("Hour", ZTInteger(-1)), ZTExceptCondition);
  time.SetValue("Day", ZTInteger(1));
  EXPECT_TRUE(capture.Contains("Unable to set value 'Day'"));
  EXPECT_EQ(time.GetValue("Year"), nullptr);
  EXPECT_TRUE(capture.Contains("Unknown part 'Year'"));
  time.Set(0, 30, 0);
  EXPECT_TRUE(time.GetValue("Hour")->IsNull()) << "a part of 0 is null";

  time.SetValue(ZTTimestamp(2024, 1, 1, 10, 11, 12));
  EXPECT_EQ(Text(time), "10:11:12");
  time.SetValue(ZTString("08:00:00"));
  EXPECT_EQ(Text(time), "08:00:00");
  time.SetValue(ZTTimestamp());
  EXPECT_TRUE(time.IsNull());

  EXPECT_EQ(ZTTime(8, 0, 0).Cmp(ZTTime(9, 0, 0)), CmpLess);
  EXPECT_EQ(ZTTime(8, 0, 0).Cmp(ZTString("08:00:00")), CmpEqual);
  EXPECT_EQ(ZTTime().Cmp(ZTTime(9, 0, 0)), CmpLess);

  Watched<ZTTime> watched;
  watched.Set(1, 2, 3);
  watched.Set(1, 2, 3);
  watched.AddSeconds(0);
  watched.AddSeconds(86400);
  EXPECT_EQ(watched.m_Log, "dirty()changed(01:02:03)");
}

// ---------------------------------------------------------------------------
// ZTTimestamp

TEST(ZTTimestamp, SetAndNativeForm) {
  ZTValue* value = ZTValueCreator::CreateObject("timestamp");
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(value->GetClassType(), ZTTimestamp::ClassGetType());
  value->Attach();
  value->Detach();

  EXPECT_TRUE(ZTTimestamp(0, 0, 0, 0, 0, 0).IsNull());
  ZTTimestamp stamp(2024, 3, 5, 7, 8, 9);
  std::uint32_t native[6] = {};
  EXPECT_EQ(stamp.Get(nullptr, 0), 24u);
  EXPECT_EQ(stamp.Get(native, sizeof native), 24u);
  EXPECT_EQ(std::vector<std::uint32_t>(native, native + 6),
            (std::vector<std::uint32_t>{2024, 3, 5, 7, 8, 9}));

  stamp.Set(3000, 2, 31, 24, 59, 59);
  EXPECT_EQ(Stamp(stamp), "2500-02-31 24:59:59") << "capped year, day not checked against its month";
  stamp.Set(24, 1, 2, 3, 4, 5);
  EXPECT_EQ(stamp.GetYear(), 1024u);
  stamp.Set(0, 0, 0, 0, 0, 0);
  EXPECT_TRUE(stamp.IsNull());
  stamp.Set(0, 0, 0, 10, 0, 0);
  EXPECT_EQ(Text(stamp), "01.01.1000 10:00:00") << "month and day 0 print as 1";

  // The checks in the order month, day, hour, minute, second.
  EXPECT_EQ(Catch([&] { stamp.Set(2024, 13, 32, 25, 60, 60); }).GetMsg(0),
            std::string("\"Invalid number for month\""));
  EXPECT_EQ(Catch([&] { stamp.Set(2024, 12, 32, 25, 60, 60); }).GetMsg(0),
            std::string("\"Invalid number for day\""));
  EXPECT_EQ(Catch([&] { stamp.Set(2024, 12, 31, 25, 60, 60); }).GetMsg(0),
            std::string("\"Invalid number for hour\""));
  EXPECT_EQ(Catch([&] { stamp.Set(2024, 12, 31, 24, 60, 60); }).GetMsg(0),
            std::string("\"Invalid number for minute\""));
  EXPECT_EQ(Catch([&] { stamp.Set(2024, 12, 31, 24, 59, 60); }).GetMsg(0),
            std::string("\"Invalid number for second\""));

  Watched<ZTTimestamp> watched;
  watched.Set(24, 1, 2, 3, 4, 5);
  watched.Set(24, 1, 2, 3, 4, 5);
  watched.Set(1024, 1, 2, 3, 4, 5);
  EXPECT_EQ(watched.m_Log, "dirty()changed(02.01.1024 03:04:05)") << "the same value twice is no change";
}

TEST(ZTTimestamp, TextBothWays) {
  ZTTimestamp stamp("05.03.2024 07:08:09");
  EXPECT_EQ(Stamp(stamp), "2024-03-05 07:08:09");
  EXPECT_EQ(Text(stamp), "05.03.2024 07:08:09");
  stamp.SetString("01.02.24 10:00:00", -1, "dd.MM.yy HH:mm:ss");
  EXPECT_EQ(Stamp(stamp), "1024-02-01 10:00:00");
  EXPECT_EQ(Text(stamp, "dd.MM.yy hh:mm"), "01.02.24 10:00");
  EXPECT_EQ(Text(ZTTimestamp(2024, 12, 25, 9, 5, 7), "d.M.yyyy h:m:s"), "25.12.2024 9:5:7");
  stamp.SetString("2024-12-31T23:59:58", -1, "yyyy-MM-ddTHH:mm:ss");
  EXPECT_EQ(Stamp(stamp), "2024-12-31 23:59:58");
  stamp.SetString("31.12.2024", -1, nullptr);
  EXPECT_EQ(Stamp(stamp), "2024-12-31 00:00:00") << "missing time fields read as 0";
  stamp.SetString(nullptr, -1, nullptr);
  EXPECT_TRUE(stamp.IsNull());
  EXPECT_EQ(Text(stamp), "");
  EXPECT_THROW(stamp = "05.13.2024 00:00:00", ZTExceptCondition);

  const ZTTimestamp now = ZTTimestamp::Current();
  stamp = "Current";
  const ZTTimestamp later = ZTTimestamp::Current();
  EXPECT_TRUE(now <= stamp && stamp <= later);
  const std::tm tm = LocalTime();
  EXPECT_LE(std::abs(static_cast<int>(later.GetYear()) - (tm.tm_year + 1900)), 1);

  WarningCapture capture;
  stamp.SetString("05.03.2024 07:08:09", -1, "");
  EXPECT_TRUE(stamp.IsNull());
  EXPECT_TRUE(capture.Contains("\"ZTTimestamp::SetString: Empty format\""));
  EXPECT_EQ(Text(now, ""), "");
  EXPECT_TRUE(capture.Contains("\"ZTTimestamp::CopyIntoString: Empty format\""));
}

TEST(ZTTimestamp, EveryPrintedTimestampReadsBack) {
  const char* const layouts[] = {nullptr, "yyyy-MM-dd HH:mm:ss", "ddMMyyyyhhmmss",
                                 "HH:mm:ss dd.MM.yyyy"};
  std::mt19937 random(20240229);
  ZTTimestamp stamp, back;
  ForEachDay([&](unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Len) {
    if (_Day != _Len && random() % 61 != 0) return;
    const unsigned secs = random() % 86401;
    stamp.Set(_Year, _Month, _Day, secs / 3600, secs / 60 % 60, secs % 60);
    for (const char* layout : layouts) {
      back.SetString(stamp.GetString(layout), -1, layout);
      ASSERT_EQ(back.Cmp(stamp), CmpEqual) << Stamp(stamp) << " in " << (layout ? layout : "default");
    }
  });
}

TEST(ZTTimestamp, ArithmeticAndParts) {
  ZTTimestamp stamp(2024, 2, 28, 23, 0, 0);
  stamp.AddSeconds(7200);
  EXPECT_EQ(Stamp(stamp), "2024-02-29 01:00:00");
  stamp.AddSeconds(86400UL * 366 + 59);
  EXPECT_EQ(Stamp(stamp), "2025-03-01 01:00:59");
  stamp.Set(2024, 12, 31, 24, 0, 0);
  stamp.AddSeconds(1);
  EXPECT_EQ(Stamp(stamp), "2025-01-01 00:00:01") << "24:00:00 is the next midnight";
  stamp.Set(2023, 2, 31, 12, 0, 0);
  stamp.AddSeconds(1);
  EXPECT_EQ(Stamp(stamp), "2023-03-03 12:00:01") << "a day beyond its month counts on";
  stamp.Set(2500, 12, 31, 23, 59, 59);
  EXPECT_EQ(Catch([&] { stamp.AddSeconds(1); }).GetMsg(0), std::string("\"Date out of range\""));
  EXPECT_THROW(stamp.AddSeconds(ULONG_MAX), ZTExceptCondition);
  EXPECT_EQ(Stamp(stamp), "2500-12-31 23:59:59");
  ZTTimestamp null;
  null.AddSeconds(5);
  EXPECT_TRUE(null.IsNull());

  WarningCapture capture;
  stamp.Set(2024, 3, 5, 7, 8, 9);
  const ZTValue* second = stamp.GetValue("Second");
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second, stamp.GetValue("second"));
  stamp.SetValue("Second", ZTInteger(10));
  EXPECT_EQ(Text(*second), "10");
  stamp.SetValue("Year", ZTInteger(24));
  EXPECT_EQ(stamp.GetYear(), 1024u);
  EXPECT_THROW(stamp.SetValue("Minute", ZTInteger(60)), ZTExceptCondition);
  stamp.SetValue("Week", ZTInteger(1));
  EXPECT_TRUE(capture.Contains("\"ZTTimestamp::SetValue: Unable to set value 'Week'\""));
  EXPECT_EQ(stamp.GetValue("Week"), nullptr);
  EXPECT_TRUE(capture.Contains("\"ZTTimestamp: Unknown part 'Week'\""));
}

TEST(ZTTimestamp, DatesTimesConversionsAndComparison) {
  const ZTDate date(2024, 3, 5);
  const ZTTime time(7, 8, 9);
  ZTTimestamp stamp(date);
  EXPECT_EQ(Stamp(stamp), "2024-03-05 00:00:00");
  stamp = time;
  EXPECT_EQ(Stamp(stamp), "2024-03-05 07:08:09") << "the date part stays";
  stamp.Set(ZTDate(2024, 3, 6), ZTTime());
  EXPECT_EQ(Stamp(stamp), "2024-03-06 00:00:00");
  stamp = ZTDate();
  EXPECT_TRUE(stamp.IsNull());
  EXPECT_TRUE(stamp.Date().IsNull());
  EXPECT_TRUE(stamp.Time().IsNull());
  stamp.Set(date, time);
  EXPECT_EQ(stamp.Date().Diff(date), 0);
  EXPECT_EQ(ZTTime::Diff(stamp.Time(), time), 0);
  const ZTTimestamp timeOnly(time);
  EXPECT_EQ(timeOnly.GetYear(), 1000u) << "no date part: year 0 read as 1000";
  EXPECT_EQ(timeOnly.GetMonth(), 0u);

  ZTTimestamp other;
  other.SetValue(stamp);
  EXPECT_EQ(other.Cmp(stamp), CmpEqual);
  other.SetValue(date);
  EXPECT_EQ(Stamp(other), "2024-03-05 00:00:00");
  other.SetValue(ZTString("06.03.2024 01:02:03"));
  EXPECT_EQ(Stamp(other), "2024-03-06 01:02:03");
  other.SetValue(ZTInteger());
  EXPECT_TRUE(other.IsNull());

  const ZTTimestamp a(2024, 3, 5, 7, 8, 9);
  EXPECT_EQ(a.Cmp(ZTTimestamp(2024, 3, 5, 7, 8, 10)), CmpLess);
  EXPECT_EQ(a.Cmp(ZTTimestamp(2023, 12, 31, 23, 59, 59)), CmpGreater);
  EXPECT_EQ(a.Cmp(ZTTimestamp(2024, 3, 5, 7, 8, 9)), CmpEqual);
  EXPECT_EQ(a.Cmp(ZTTimestamp()), CmpGreater);
  EXPECT_EQ(a.Cmp(ZTString("05.03.2024 07:08:09")), CmpEqual);
  EXPECT_EQ(a.Cmp(date), CmpGreater) << "the date read as midnight";
}

// Arbitrary bytes for every parser and layout: each read gives a value or a
// library exception, and what was read prints and compares with its copy.
TEST(ZTDateTimeParsers, SurviveArbitraryBytes) {
  WarningCapture capture;
  const char* const layouts[] = {nullptr, "", "dd.MM.yyyy", "d.M.yy", "yyyy-mm-dd HH:mm:ss",
                                 "HH:mm", "hhmmss", "x", "MMMMMMMM", "jjjj.DD.mm"};
  const std::string alphabet = "0123456789.:-+ <>=;xXyYdDmMhHsSDayMonthYear\x7f\x80\xff";
  std::mt19937 random(4711);
  std::string text;
  int read = 0;
  for (int round = 0; round < 10000; ++round) {
    text.clear();
    const unsigned len = random() % 24;
    for (unsigned i = 0; i < len; ++i)
      text += round % 3 ? alphabet[random() % alphabet.size()] : static_cast<char>(random());
    const char* layout = layouts[random() % (sizeof layouts / sizeof *layouts)];
    const int length = random() % 2 ? -1 : static_cast<int>(text.size());
    ZTDate date;
    ZTTime time;
    ZTTimestamp stamp;
    for (ZTValue* value : std::vector<ZTValue*>{&date, &time, &stamp}) {
      try {
        value->SetString(text.data(), length, layout);
      } catch (const ZTExcept&) {
        continue;
      }
      read += !value->IsNull();
      const ZTString printed = value->GetString(layout);
      ZTValue* copy = static_cast<ZTValue*>(value->Clone());
      copy->Attach();
      EXPECT_EQ(copy->Cmp(*value), CmpEqual) << text;
      EXPECT_EQ(Text(*copy, layout), Text(*value, layout));
      copy->Detach();
    }
  }
  EXPECT_GT(read, 500) << "the inputs reach the fields, not only the refusals";
}

// The locale the environment names (when the process takes it up) changes
// nothing: layouts, part names and "current" are ASCII. Run once with, for
// example, LC_ALL=tr_TR.ISO-8859-9, where "I" is not the capital of "i".
TEST(ZTDateTimeParsers, IndependentOfTheLocale) {
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "");
  ZTTime time(7, 8, 9);
  const ZTValue* minute = time.GetValue("MINUTE");
  ZTDate date(2024, 1, 31);
  date.SetString("<DAY=DAY+1>", -1, nullptr);
  const std::string dateText = Text(ZTDate("01.02.2024"), "dd.MM.yyyy");
  ZTTimestamp stamp;
  stamp.SetString("CURRENT", -1, nullptr);
  std::setlocale(LC_ALL, saved.c_str());
  ASSERT_NE(minute, nullptr);
  EXPECT_EQ(Text(*minute), "8");
  EXPECT_EQ(Ymd(date), "2024-02-01");
  EXPECT_EQ(dateText, "01.02.2024");
  EXPECT_FALSE(stamp.IsNull());
}
