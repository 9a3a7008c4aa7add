// ZTDate, ZTTime and ZTTimestamp, chosen by the build (ZT_FUZZ_DATETIME): the
// text parser under each layout (assignment lists for dates), prints that
// must read back, the parts as sub-values, and the arithmetic, whose results
// must be exact or refused without change.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>

#include "fuzz_support.h"

// Named, not internal: each target uses the parts of one class only.
namespace datetime {

// Layouts whose prints read back to the very value.
template <class T>
struct Layouts;
template <>
struct Layouts<ZTDate> {
  static constexpr const char* Exact[] = {nullptr, "dd.MM.yyyy", "yyyy-MM-dd", "MM/dd/yyyy",
                                          "yyyyMMdd", "dd.mm.yyyy"};
};
template <>
struct Layouts<ZTTime> {
  static constexpr const char* Exact[] = {nullptr, "HH:mm:ss", "hh.mm.ss", "HHmmss", "ss mm HH"};
};
template <>
struct Layouts<ZTTimestamp> {
  static constexpr const char* Exact[] = {nullptr, "dd.MM.yyyy HH:mm:ss", "yyyy-MM-ddThh:mm:ss",
                                          "ddMMyyyyHHmmss"};
};

// Layouts read with besides the exact ones: the empty one and odd ones.
const char* const s_OddLayouts[] = {"",         "d.M.yy",       "x",
                                    "yy",       "MMMMMMMM",     "jjjj.DD.mm hh:MM:SS",
                                    "H:m:s",    "dd.MM.yy HH:mm"};

template <class T>
const char* PickLayout(const zt_fuzz::Input& _Input) {
  constexpr std::size_t exact = std::size(Layouts<T>::Exact);
  const char* all[exact + std::size(s_OddLayouts)];
  std::copy(std::begin(Layouts<T>::Exact), std::end(Layouts<T>::Exact), all);
  std::copy(std::begin(s_OddLayouts), std::end(s_OddLayouts), all + exact);
  return _Input.Pick(all);
}

std::string Print(const ZTValue& _Value, const char* _Layout) {
  const ZTString text = _Value.GetString(_Layout);
  return static_cast<const char*>(text) ? static_cast<const char*>(text) : "";
}

// The printed value, every field shown, for the failure text.
std::string Show(const ZTValue& _Value) { return Print(_Value, "yyyy-MM-dd HH:mm:ss"); }

template <class T>
bool PrintsReadBack(const T&) {
  return true;
}

// Month and day 0 of a timestamp print as 1.
template <>
bool PrintsReadBack(const ZTTimestamp& _Value) {
  return _Value.GetMonth() != 0 && _Value.GetDay() != 0;
}

template <class T>
void CheckPrints(const T& _Value) {
  if (!PrintsReadBack(_Value)) return;
  for (const char* layout : Layouts<T>::Exact) {
    const std::string text = Print(_Value, layout);
    T back;
    back.SetString(text.c_str(), -1, layout);
    if (back.Cmp(_Value) != CmpEqual) zt_fuzz::Fail("print does not read back", text);
  }
}

// Every part offered reads as the value's own field (0 as null).
void CheckPart(const ZTValue& _Value, const char* _Name, unsigned _Field) {
  const ZTValue* part = _Value.GetValue(_Name);
  const ZTInteger* number = ZTDynamicCastT<ZTInteger>(part);
  if (!number || (_Field == 0) != number->IsNull() ||
      static_cast<unsigned>(number->GetInt()) != _Field)
    zt_fuzz::Fail("part", std::string(_Name) + " of " + Show(_Value));
}

void CheckValue(const ZTDate& _Date, std::uint32_t _Raw) {
  CheckPart(_Date, "Year", _Date.GetYear());
  CheckPart(_Date, "month", _Date.GetMonth());
  CheckPart(_Date, "DAY", _Date.GetDay());
  ZTDate moved(_Date);
  try {
    moved.AddDays(_Raw);
    if (static_cast<std::uint32_t>(moved.Diff(_Date)) != _Raw) zt_fuzz::Fail("add days", Show(_Date));
  } catch (const ZTExcept&) {
    if (moved.Diff(_Date) != 0) zt_fuzz::Fail("refused add changed the date", Show(_Date));
  }
  ZTDate back(_Date);
  try {
    back.SubDays(_Raw);
    if (static_cast<std::uint32_t>(_Date.Diff(back)) != _Raw) zt_fuzz::Fail("sub days", Show(_Date));
  } catch (const ZTExcept&) {
    if (back.Diff(_Date) != 0) zt_fuzz::Fail("refused sub changed the date", Show(_Date));
  }
  const auto weekday = static_cast<ZTDate::Weekday>(_Raw % 7);
  ZTDate skipped(_Date);
  try {
    skipped.SkipToNextWeekday(weekday);
    if (skipped.GetDayOfWeek() != weekday || skipped.Diff(_Date) < 1 || skipped.Diff(_Date) > 7)
      zt_fuzz::Fail("skip", Show(_Date));
  } catch (const ZTExcept&) {
  }
  // Months and years go through Set: a valid date, the day within its month, or null.
  for (void (ZTDate::*op)(unsigned) :
       {&ZTDate::AddMonths, &ZTDate::SubMonths, &ZTDate::AddYears, &ZTDate::SubYears}) {
    ZTDate date(_Date);
    (date.*op)(_Raw);
    if (!date.IsNull() && !ZTDate::IsValidDate(date.GetYear(), date.GetMonth(), date.GetDay()))
      zt_fuzz::Fail("month or year arithmetic", Show(_Date));
  }
  ZTDate part(_Date);
  part.SetValue(_Raw % 2 ? "Day" : "Month", ZTInteger(static_cast<int>(_Raw)));
}

void CheckValue(const ZTTime& _Time, std::uint32_t _Raw) {
  CheckPart(_Time, "Hour", _Time.GetHour());
  CheckPart(_Time, "minute", _Time.GetMinute());
  CheckPart(_Time, "SECOND", _Time.GetSecond());
  ZTTime moved(_Time);
  moved.AddSeconds(_Raw);
  if (moved.GetSecondsSinceMidnight() >= 86400) zt_fuzz::Fail("beyond the day", Show(_Time));
  moved.SubSeconds(_Raw);
  if (_Time.GetSecondsSinceMidnight() < 86400 && ZTTime::Diff(moved, _Time) != 0)
    zt_fuzz::Fail("add and sub", Show(_Time));
  moved.AddHours(_Raw);
  moved.SubMinutes(_Raw);
}

void CheckValue(const ZTTimestamp& _Stamp, std::uint32_t _Raw) {
  CheckPart(_Stamp, "Year", _Stamp.GetYear());
  CheckPart(_Stamp, "Month", _Stamp.GetMonth());
  CheckPart(_Stamp, "Day", _Stamp.GetDay());
  CheckPart(_Stamp, "Hour", _Stamp.GetHour());
  CheckPart(_Stamp, "Minute", _Stamp.GetMinute());
  CheckPart(_Stamp, "Second", _Stamp.GetSecond());
  ZTTimestamp moved(_Stamp);
  try {
    moved.AddSeconds(_Raw * 1000UL);
    if (_Raw && moved.Cmp(_Stamp) != CmpGreater) zt_fuzz::Fail("add seconds", Show(_Stamp));
  } catch (const ZTExcept&) {
    if (moved.Cmp(_Stamp) != CmpEqual) zt_fuzz::Fail("refused add changed it", Show(_Stamp));
  }
  static_cast<void>(_Stamp.Date());
  static_cast<void>(_Stamp.Time());
}

}  // namespace datetime

// The text is read under a layout the first byte picks; its first 4 bytes are
// also the count of the arithmetic.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _Data, std::size_t _Size) {
  using namespace datetime;
  using T = ZT_FUZZ_DATETIME;
  const zt_fuzz::Input input(_Data, _Size);
  const char* const layout = PickLayout<T>(input);
  zt_fuzz::Run([&] {
    T value;
    value.SetString(input.Text(), input.Length(), layout);
    if (value.IsNull()) return;
    CheckPrints(value);
    std::uint32_t raw = 0;
    std::memcpy(&raw, input.Text(), std::min<std::size_t>(sizeof raw, std::strlen(input.Text())));
    CheckValue(value, raw);
    T clone;
    clone.SetValue(value);
    if (clone.Cmp(value) != CmpEqual) zt_fuzz::Fail("copy", Show(value));
  });
  return 0;
}
