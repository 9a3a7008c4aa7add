// The user's international settings: separators, digit counts and the date
// and time layouts used by the text forms of values.
#pragma once

#include <atomic>
#include <cstdint>

#include "ztobject.h"
#include "ztstring.h"

// One library-wide instance serves all callers. Each setting is a cache filled
// on its getter's first call and kept afterwards. Without a value of its own
// a setting takes its default: decimal comma, thousands point, three-digit
// groups, two digits, day-month-year.
class ZTIntlFormat : public ZTObject {
  ZT_DECLARE_CLASS(ZTIntlFormat, ZTObjectCreator)

 public:
  static const char sm_RegKeyName[];  // "Control Panel\International"

  ZTIntlFormat() = default;
  ZTIntlFormat(const ZTIntlFormat& _Src);
  ZTIntlFormat& operator=(const ZTIntlFormat& _Src);

  static ZTIntlFormat& IntlFormat();
  // Names a second key consulted for settings the first key lacks; affects
  // only settings not read yet.
  static void SetProgramRegKeyName(const char* _Name);
  static ZTString GetProgramRegKeyName();

  char GetDecimal();
  char GetThousand();
  char GetDate();
  char GetTime();
  char GetCurrThousandSep();
  char GetCurrDecimalSep();

  int GetDigits();
  int GetCurrDigits();
  int GetGrouping();
  int GetCurrGrouping();
  int GetCountry();

  const ZTString& ShortDateFormat();
  const ZTString& ShortTimeFormat();
  const char* GetShortDateFormat() { return ShortDateFormat(); }
  const char* GetShortTimeFormat() { return ShortTimeFormat(); }

 protected:
  // Reads a setting as text from "Control Panel\International" under the
  // current user, else from the program key; false when neither has it.
  bool QueryValue(const char* _Name, ZTString& _Result);

 private:
  // Caches may be filled by two threads at once; both store the same result,
  // so relaxed atomics are enough for the scalar ones.
  using IntCache = std::atomic<std::int32_t>;
  using CharCache = std::atomic<char>;
  // The setting's text, or _Default when it is missing or empty.
  ZTString QueryText(const char* _Name, const char* _Default);
  int FillInt(IntCache& _Cache, const char* _Name, const char* _Default, bool _FirstCharOnly);
  char FillChar(CharCache& _Cache, const char* _Name, char _Default);
  const ZTString& FillLayout(ZTString& _Cache, std::atomic<bool>& _Filled, const char* _Name,
                             unsigned _Length, const char* _Pattern, char _Sep);

  IntCache m_Digits{-1};
  IntCache m_CurrDigits{-1};
  IntCache m_Grouping{-1};
  IntCache m_CurrGrouping{-1};
  CharCache m_Decimal{0};
  CharCache m_Thousand{0};
  CharCache m_Date{0};
  CharCache m_Time{0};
  CharCache m_CurrThousandSep{0};
  CharCache m_CurrDecimalSep{0};
  IntCache m_Country{-1};
  ZTString m_ShortDateFormat;
  ZTString m_ShortTimeFormat;
  std::atomic<bool> m_ShortDateFilled{false};
  std::atomic<bool> m_ShortTimeFilled{false};
};
