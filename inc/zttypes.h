// Scalar values (boolean, integer, real, character, binary), the object
// pointer holder, and the calendar values (date, time, timestamp).
#pragma once

#include <cstddef>

#include "ztstring.h"
#include "ztvalue.h"

// ---------------------------------------------------------------------------
// ZTBool

// A boolean value. Its text forms are chosen by a "formatting information"
// text: "true"/"false" by default, "T|F" or "T|F|N" for own words, ".t." and
// friends for single letters, "#" for 1/0.
class ZTBool : public ZTValue {
  ZT_DECLARE_CLASS(ZTBool, ZTValueCreator)

 public:
  static const char m_ZTType[];
  static const char s_True[];   // "true"
  static const char s_False[];  // "false"

  ZTBool() = default;
  explicit ZTBool(bool _Val);
  ZTBool(const ZTBool& _Src) = default;

  void Set(bool _Val);
  void Set(const ZTBool& _Val);
  ZTBool& operator=(bool _Val) {
    Set(_Val);
    return *this;
  }
  ZTBool& operator=(const ZTBool& _Val) {
    Set(_Val);
    return *this;
  }
  ZTBool& operator=(const ZTValue& _Val) {
    SetValue(_Val);
    return *this;
  }
  using ZTValue::operator=;

  bool GetBool() const { return m_Val; }
  bool IsTrue() const { return m_Val; }
  // True when null or false.
  bool IsFalse() const { return !m_Val; }
  operator bool() const { return m_Val; }

  // Non-null constants.
  static ZTBool True() { return ZTBool(true); }
  static ZTBool False() { return ZTBool(false); }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  bool m_Val = false;
};

// ---------------------------------------------------------------------------
// ZTInteger

// A 32-bit signed integer value. Arithmetic wraps around like the machine's
// 32-bit arithmetic; division by zero is refused.
class ZTInteger : public ZTValue {
  ZT_DECLARE_CLASS(ZTInteger, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTInteger() = default;
  explicit ZTInteger(int _Val);
  ZTInteger(const ZTInteger& _Src) = default;

  void Set(int _Val);
  void Set(const ZTInteger& _Val);
  ZTInteger& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTInteger& operator=(const ZTInteger& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  int GetInt() const { return m_Val; }
  operator int() const { return m_Val; }
  double GetDouble() const { return m_Val; }

  // Prefix forms change the value; postfix forms return a copy holding the
  // value plus or minus one and leave this value as it is.
  ZTInteger& operator++();
  ZTInteger& operator--();
  ZTInteger operator++(int) const;
  ZTInteger operator--(int) const;
  // Each replaces the stored value by the result.
  ZTInteger& operator~();
  ZTInteger& operator!();
  ZTInteger& operator-();
  ZTInteger& operator+();

  ZTInteger& operator*=(int _Val);
  ZTInteger& operator/=(int _Val);
  ZTInteger& operator%=(int _Val);
  ZTInteger& operator+=(int _Val);
  ZTInteger& operator-=(int _Val);
  ZTInteger& operator<<=(int _Val);
  ZTInteger& operator>>=(int _Val);
  ZTInteger& operator&=(int _Val);
  ZTInteger& operator|=(int _Val);
  ZTInteger& operator^=(int _Val);
  ZTInteger& operator*=(const ZTInteger& _Val) { return *this *= _Val.m_Val; }
  ZTInteger& operator/=(const ZTInteger& _Val) { return *this /= _Val.m_Val; }
  ZTInteger& operator%=(const ZTInteger& _Val) { return *this %= _Val.m_Val; }
  ZTInteger& operator+=(const ZTInteger& _Val) { return *this += _Val.m_Val; }
  ZTInteger& operator-=(const ZTInteger& _Val) { return *this -= _Val.m_Val; }
  ZTInteger& operator<<=(const ZTInteger& _Val) { return *this <<= _Val.m_Val; }
  ZTInteger& operator>>=(const ZTInteger& _Val) { return *this >>= _Val.m_Val; }
  ZTInteger& operator&=(const ZTInteger& _Val) { return *this &= _Val.m_Val; }
  ZTInteger& operator|=(const ZTInteger& _Val) { return *this |= _Val.m_Val; }
  ZTInteger& operator^=(const ZTInteger& _Val) { return *this ^= _Val.m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  int m_Val = 0;
};

// ---------------------------------------------------------------------------
// ZTReal

// A double value. Text without a format accepts the decimal comma; "#"
// formats group the digits with the user's monetary separators.
class ZTReal : public ZTValue {
  ZT_DECLARE_CLASS(ZTReal, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTReal() = default;
  explicit ZTReal(double _Val);
  ZTReal(const ZTReal& _Src) = default;

  void Set(double _Val);
  void Set(const ZTReal& _Val);
  ZTReal& operator=(double _Val) {
    Set(_Val);
    return *this;
  }
  ZTReal& operator=(const ZTReal& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  operator double() const { return m_Val; }
  double GetDouble() const { return m_Val; }
  // Truncated toward zero; values beyond the integer range saturate, NaN gives 0.
  int GetInt() const;

  ZTReal& operator++();
  ZTReal& operator--();
  ZTReal operator++(int) const;
  ZTReal operator--(int) const;
  // 1.0 when the value is 0.0, else 0.0; replaces the stored value.
  ZTReal& operator!();
  ZTReal& operator-();
  ZTReal& operator+();

  ZTReal& operator*=(double _Val);
  ZTReal& operator/=(double _Val);
  ZTReal& operator+=(double _Val);
  ZTReal& operator-=(double _Val);
  ZTReal& operator*=(const ZTReal& _Val) { return *this *= _Val.m_Val; }
  ZTReal& operator/=(const ZTReal& _Val) { return *this /= _Val.m_Val; }
  ZTReal& operator+=(const ZTReal& _Val) { return *this += _Val.m_Val; }
  ZTReal& operator-=(const ZTReal& _Val) { return *this -= _Val.m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  double m_Val = 0.0;
};

// ---------------------------------------------------------------------------
// ZTCharacter

// One 8-bit signed character.
class ZTCharacter : public ZTValue {
  ZT_DECLARE_CLASS(ZTCharacter, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTCharacter() = default;
  explicit ZTCharacter(char _Val);
  explicit ZTCharacter(int _Val);
  ZTCharacter(const ZTCharacter& _Src) = default;

  // Keeps the low 8 bits.
  void Set(int _Val);
  void Set(const ZTCharacter& _Val);
  ZTCharacter& operator=(char _Val) {
    Set(_Val);
    return *this;
  }
  ZTCharacter& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTCharacter& operator=(const ZTCharacter& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  char GetChar() const { return m_Val; }
  int GetInt() const { return m_Val; }
  operator char() const { return m_Val; }
  operator int() const { return m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  char m_Val = 0;
};

// ---------------------------------------------------------------------------
// ZTBinary

// A block of bytes; its text form is two hexadecimal digits per byte. Two
// binaries order byte by byte, a shorter one before a longer one it starts.
class ZTBinary : public ZTValue {
  ZT_DECLARE_CLASS(ZTBinary, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTBinary() = default;
  ZTBinary(const void* _Data, unsigned int _Len);
  ZTBinary(const ZTBinary& _Src);
  ~ZTBinary() override;

  // Copies _Len bytes (zeros when _Data is null); 0 leaves no data.
  void Set(const void* _Data, unsigned int _Len);
  void Set(const ZTBinary& _Src);
  ZTBinary& operator=(const ZTBinary& _Src) {
    Set(_Src);
    return *this;
  }
  using ZTValue::operator=;
  // Appends _Len bytes (zeros when _Data is null).
  void AppendData(void* _Data, unsigned int _Len);

  // The bytes (null without data) and their count.
  const void* GetData() const { return m_Data; }
  void* GetData() { return m_Data; }
  unsigned int GetLength() const { return m_Len; }

  // Value protocol. Get copies at most _Size bytes and returns the length.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  // Replaces the bytes by a block the value now owns (tracked as a store).
  void Adopt(unsigned char* _Data, unsigned int _Len);

  unsigned char* m_Data = nullptr;
  unsigned int m_Len = 0;
};

// ---------------------------------------------------------------------------
// ZTPointer

// Holds an object pointer and, unless the object is automatic, a reference on
// it. Holders compare equal only when they hold the same object.
class ZTPointer {
 public:
  explicit ZTPointer(ZTObject* _Obj = nullptr);
  ZTPointer(const ZTPointer& _Src);
  ~ZTPointer();

  void SetObject(ZTObject* _Obj);
  ZTPointer& operator=(ZTObject* _Obj) {
    SetObject(_Obj);
    return *this;
  }
  ZTPointer& operator=(const ZTPointer& _Src) {
    SetObject(_Src.m_Object);
    return *this;
  }

  ZTObject* GetObject() { return m_Object; }
  const ZTObject* GetObject() const { return m_Object; }
  operator ZTObject*() const { return m_Object; }
  // Both require an object.
  ZTObject* operator->() const;
  ZTObject& operator*() const;
  // True when the holder keeps a reference on its object.
  bool IsCounted() const { return m_Counted; }

  ZTCmpResult Cmp(const ZTPointer& _Ptr) const;
  ZTCmpResult Cmp(const ZTObject* _Obj) const;
  bool operator==(const ZTPointer& _Ptr) const { return ZTCompare::Equal(Cmp(_Ptr)); }
  bool operator!=(const ZTPointer& _Ptr) const { return ZTCompare::NotEqual(Cmp(_Ptr)); }
  bool operator<(const ZTPointer& _Ptr) const { return ZTCompare::Less(Cmp(_Ptr)); }
  bool operator<=(const ZTPointer& _Ptr) const { return ZTCompare::LessEqual(Cmp(_Ptr)); }
  bool operator>(const ZTPointer& _Ptr) const { return ZTCompare::Greater(Cmp(_Ptr)); }
  bool operator>=(const ZTPointer& _Ptr) const { return ZTCompare::GreaterEqual(Cmp(_Ptr)); }

 private:
  void Release();

  ZTObject* m_Object = nullptr;
  bool m_Counted = true;
};

// ---------------------------------------------------------------------------
// ZTDate

// A calendar date kept as a Julian day number (0 only when null). Valid dates
// run from 1 January 1752 to 31 December 2500. Text goes through a layout of
// letter fields (dd, MM, yyyy, ...), by default the user's short date layout;
// "current" reads as today and "<Day=Day+1;...>" changes parts of the date.
class ZTDate : public ZTValue {
  ZT_DECLARE_CLASS(ZTDate, ZTValueCreator)

 public:
  static const char m_ZTType[];
  static const char sm_Year[];   // "Year"
  static const char sm_Month[];  // "Month"
  static const char sm_Day[];    // "Day"

  enum Weekday { Sunday = 0, Monday, Tuesday, Wednesday, Thursday, Friday, Saturday };

  ZTDate() = default;
  // All three parts 0 leave the date null.
  ZTDate(unsigned _Year, unsigned _Month, unsigned _Day);
  // The text under the default layout; the new date is clean.
  explicit ZTDate(const char* _Str);
  ZTDate(const ZTDate& _Src) = default;
  ~ZTDate() override;

  // A year above 2500 is taken as 2500, a year up to 99 as 19xx; a month
  // above 12 or a day above 31 is refused; an invalid date makes it null.
  void Set(unsigned _Year, unsigned _Month, unsigned _Day);
  void Set(const ZTDate& _Date);
  ZTDate& operator=(const ZTDate& _Date) {
    Set(_Date);
    return *this;
  }
  ZTDate& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }
  using ZTValue::operator=;

  unsigned GetJulDayNum() const { return m_JulDayNum; }
  unsigned GetYear() const;
  unsigned GetMonth() const;
  unsigned GetDay() const;
  // 0, 0, 0 for a null date.
  void GetYearMonthDay(unsigned& _Year, unsigned& _Month, unsigned& _Day) const;
  unsigned GetDayOfYear() const;
  Weekday GetDayOfWeek() const;
  unsigned GetDaysInMonth() const;
  bool IsLeapYear() const;

  // Calendar arithmetic; a null date stays null. Moving by days beyond the
  // valid range is refused. Months and years go through Set (so the year is
  // capped at 2500 and below 1752 the date becomes null); a day beyond the
  // new month's length is reduced to it.
  void AddDays(unsigned _Days);
  void SubDays(unsigned _Days);
  void AddMonths(unsigned _Months);
  void SubMonths(unsigned _Months);
  void AddYears(unsigned _Years);
  void SubYears(unsigned _Years);
  ZTDate& operator+=(unsigned _Days) {
    AddDays(_Days);
    return *this;
  }
  ZTDate& operator-=(unsigned _Days) {
    SubDays(_Days);
    return *this;
  }
  // Copies moved by that many days.
  ZTDate operator+(unsigned _Days) const;
  ZTDate operator-(unsigned _Days) const;
  // This day number minus the other's.
  int Diff(const ZTDate& _Date) const;
  // The nearest following (preceding) day with that weekday, never this day.
  void SkipToNextWeekday(Weekday _Weekday);
  void SkipToPreviousWeekday(Weekday _Weekday);

  // Today in local time.
  static ZTDate Current();
  static unsigned CurrentJulDayNum();
  // 0 for an invalid date; a year up to 99 is taken as 19xx, a year below
  // 1752 is invalid.
  static unsigned GetJulDayNum(unsigned _Year, unsigned _Month, unsigned _Day);
  static bool IsValidDate(unsigned _Year, unsigned _Month, unsigned _Day);
  static bool IsDayWithinMonth(unsigned _Year, unsigned _Month, unsigned _Day);
  // 0 for a month outside 1 to 12.
  static unsigned GetDaysInMonth(unsigned _Year, unsigned _Month);
  static bool IsLeapYear(unsigned _Year);

  // Value protocol. The parts "Year", "Month" and "Day" are sub-values.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const char* _Name, const ZTValue& _Value) override;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::GetValue;
  const ZTValue* GetValue(const char* _Name) const override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  // Every change of the day number goes through here (0 makes it null).
  void Store(unsigned _JulDayNum);
  // Set with a year that may lie outside the unsigned range of Set.
  void SetClamped(long long _Year, unsigned _Month, unsigned _Day);
  void ApplyAssignments(const char* _List, std::size_t _Len);

  unsigned int m_JulDayNum = 0;
};

// Copies moved by that many days (back for the minus forms).
ZTDate operator+(unsigned _Days, const ZTDate& _Date);
ZTDate operator-(unsigned _Days, const ZTDate& _Date);

// ---------------------------------------------------------------------------
// ZTTime

// A time of day in seconds since midnight, 0 to 86400 (24:00:00 allowed).
// Text goes through a layout of letter fields (HH, mm, ss), by default the
// user's short time layout.
class ZTTime : public ZTValue {
  ZT_DECLARE_CLASS(ZTTime, ZTValueCreator)

 public:
  static const char m_ZTType[];
  static const char sm_Hour[];    // "Hour"
  static const char sm_Minute[];  // "Minute"
  static const char sm_Second[];  // "Second"

  ZTTime() = default;
  // All three parts 0 leave the time null (Set(0, 0, 0) stores midnight).
  ZTTime(unsigned _Hour, unsigned _Minute, unsigned _Second);
  // The text under the default layout; the new time is clean.
  explicit ZTTime(const char* _Str);
  ZTTime(const ZTTime& _Src) = default;
  ~ZTTime() override;

  // An hour above 24, a minute or second above 59 is refused.
  void Set(unsigned _Hour, unsigned _Minute, unsigned _Second);
  void Set(const ZTTime& _Time);
  ZTTime& operator=(const ZTTime& _Time) {
    Set(_Time);
    return *this;
  }
  ZTTime& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }
  using ZTValue::operator=;

  unsigned GetSecondsSinceMidnight() const { return m_Secs; }
  unsigned GetHour() const { return m_Secs / 3600; }
  unsigned GetMinute() const { return m_Secs / 60 % 60; }
  unsigned GetSecond() const { return m_Secs % 60; }
  void GetHourMinuteSecond(unsigned& _Hour, unsigned& _Minute, unsigned& _Second) const;

  // Arithmetic on the time of day: results wrap around midnight; a null
  // time stays null.
  void AddSeconds(unsigned _Seconds);
  void SubSeconds(unsigned _Seconds);
  void AddMinutes(unsigned _Minutes);
  void SubMinutes(unsigned _Minutes);
  void AddHours(unsigned _Hours);
  void SubHours(unsigned _Hours);

  // Now in local time.
  static ZTTime Current();
  static unsigned GetSecondsSinceMidnight(unsigned _Hour, unsigned _Minute, unsigned _Second);
  // The first time's seconds minus the second's.
  static int Diff(const ZTTime& _Time1, const ZTTime& _Time2);

  // Value protocol. The parts "Hour", "Minute" and "Second" are sub-values.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const char* _Name, const ZTValue& _Value) override;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::GetValue;
  const ZTValue* GetValue(const char* _Name) const override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  void Store(unsigned _Secs);
  // Moves the time of day by a signed number of seconds.
  void Move(long long _Seconds);

  unsigned int m_Secs = 0;
};

// ---------------------------------------------------------------------------
// ZTTimestamp

// A date and a time of day as six separate fields. Years run from 1000 (a
// year below 1000 gets 1000 added) to 2500; the day is not checked against
// its month. Text goes through the short date and time layouts joined by a
// blank unless a layout is given.
class ZTTimestamp : public ZTValue {
  ZT_DECLARE_CLASS(ZTTimestamp, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTTimestamp() = default;
  // All six parts 0 leave the timestamp null.
  ZTTimestamp(unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Hour, unsigned _Minute,
              unsigned _Second);
  // The text under the default layout; the new timestamp is clean.
  explicit ZTTimestamp(const char* _Str);
  explicit ZTTimestamp(const ZTDate& _Date);
  explicit ZTTimestamp(const ZTTime& _Time);
  ZTTimestamp(const ZTTimestamp& _Src) = default;
  ~ZTTimestamp() override;

  // Month, day, hour, minute and second are checked as dates and times check
  // them; the year is capped at 2500. All six 0 make the timestamp null.
  void Set(unsigned _Year, unsigned _Month, unsigned _Day, unsigned _Hour, unsigned _Minute,
           unsigned _Second);
  void Set(const ZTTimestamp& _Timestamp);
  // Null parts count as 0.
  void Set(const ZTDate& _Date, const ZTTime& _Time);
  // The date at 00:00:00.
  void Set(const ZTDate& _Date);
  // The time on the date part held so far.
  void Set(const ZTTime& _Time);
  ZTTimestamp& operator=(const ZTTimestamp& _Timestamp) {
    Set(_Timestamp);
    return *this;
  }
  ZTTimestamp& operator=(const ZTDate& _Date) {
    Set(_Date);
    return *this;
  }
  ZTTimestamp& operator=(const ZTTime& _Time) {
    Set(_Time);
    return *this;
  }
  ZTTimestamp& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }
  using ZTValue::operator=;

  unsigned GetYear() const { return m_Year; }
  unsigned GetMonth() const { return m_Month; }
  unsigned GetDay() const { return m_Day; }
  unsigned GetHour() const { return m_Hour; }
  unsigned GetMinute() const { return m_Minute; }
  unsigned GetSecond() const { return m_Second; }
  // The parts as new values (null for a null timestamp; the date is null
  // when the fields form no valid date).
  ZTDate Date() const;
  ZTTime Time() const;

  // Moves forward; the date advances past midnight. A null timestamp stays
  // null; a result after 2500 is refused.
  void AddSeconds(unsigned long _Seconds);

  // Now in local time.
  static ZTTimestamp Current();

  // Value protocol. The six parts "Year" to "Second" are sub-values.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const char* _Name, const ZTValue& _Value) override;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::GetValue;
  const ZTValue* GetValue(const char* _Name) const override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  unsigned int m_Year = 0;
  unsigned int m_Month = 0;
  unsigned int m_Day = 0;
  unsigned int m_Hour = 0;
  unsigned int m_Minute = 0;
  unsigned int m_Second = 0;
};
