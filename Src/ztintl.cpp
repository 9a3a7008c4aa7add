// ZTIntlFormat: the user's international settings.
#include "ztintl.h"

#include <cstdio>
#include <mutex>

namespace {

// Guards the program key name and the filling of the layout texts, which
// (unlike the scalar caches) cannot be written by two threads at once.
std::mutex& IntlLock() {
  static std::mutex lock;
  return lock;
}

ZTString& ProgramRegKeyName() {
  static ZTString name;
  return name;
}

}  // namespace

ZT_IMPLEMENT_CLASS(ZTIntlFormat, ZTObject, ZTObjectCreator, nullptr)

const char ZTIntlFormat::sm_RegKeyName[] = "Control Panel\\International";

ZTIntlFormat::ZTIntlFormat(const ZTIntlFormat& _Src) : ZTObject(_Src) { *this = _Src; }

ZTIntlFormat& ZTIntlFormat::operator=(const ZTIntlFormat& _Src) {
  if (&_Src == this) return *this;
  const auto copy = [](auto& _To, const auto& _From) {
    _To.store(_From.load(std::memory_order_relaxed), std::memory_order_relaxed);
  };
  copy(m_Digits, _Src.m_Digits);
  copy(m_CurrDigits, _Src.m_CurrDigits);
  copy(m_Grouping, _Src.m_Grouping);
  copy(m_CurrGrouping, _Src.m_CurrGrouping);
  copy(m_Decimal, _Src.m_Decimal);
  copy(m_Thousand, _Src.m_Thousand);
  copy(m_Date, _Src.m_Date);
  copy(m_Time, _Src.m_Time);
  copy(m_CurrThousandSep, _Src.m_CurrThousandSep);
  copy(m_CurrDecimalSep, _Src.m_CurrDecimalSep);
  copy(m_Country, _Src.m_Country);
  std::lock_guard<std::mutex> lock(IntlLock());
  m_ShortDateFormat = _Src.m_ShortDateFormat;
  m_ShortTimeFormat = _Src.m_ShortTimeFormat;
  copy(m_ShortDateFilled, _Src.m_ShortDateFilled);
  copy(m_ShortTimeFilled, _Src.m_ShortTimeFilled);
  return *this;
}

ZTIntlFormat& ZTIntlFormat::IntlFormat() {
  static ZTIntlFormat s_IntlFormat;
  return s_IntlFormat;
}

void ZTIntlFormat::SetProgramRegKeyName(const char* _Name) {
  std::lock_guard<std::mutex> lock(IntlLock());
  ProgramRegKeyName() = _Name;
}

ZTString ZTIntlFormat::GetProgramRegKeyName() {
  std::lock_guard<std::mutex> lock(IntlLock());
  return ZTString(static_cast<const char*>(ProgramRegKeyName()));
}

int ZTIntlFormat::FillInt(IntCache& _Cache, std::int32_t _Default) {
  std::int32_t value = _Cache.load(std::memory_order_relaxed);
  if (value == -1) {
    value = _Default;
    _Cache.store(value, std::memory_order_relaxed);
  }
  return value;
}

char ZTIntlFormat::FillChar(CharCache& _Cache, char _Default) {
  char value = _Cache.load(std::memory_order_relaxed);
  if (value == 0) {
    value = _Default;
    _Cache.store(value, std::memory_order_relaxed);
  }
  return value;
}

const ZTString& ZTIntlFormat::FillLayout(ZTString& _Cache, std::atomic<bool>& _Filled,
                                         const char* _Pattern, char _Sep) {
  if (!_Filled.load(std::memory_order_acquire)) {
    std::lock_guard<std::mutex> lock(IntlLock());
    if (!_Filled.load(std::memory_order_relaxed)) {
      char layout[16];
      std::snprintf(layout, sizeof layout, _Pattern, _Sep, _Sep);
      _Cache = layout;
      _Filled.store(true, std::memory_order_release);
    }
  }
  return _Cache;
}

char ZTIntlFormat::GetDecimal() { return FillChar(m_Decimal, ','); }

char ZTIntlFormat::GetThousand() { return FillChar(m_Thousand, '.'); }

char ZTIntlFormat::GetDate() { return FillChar(m_Date, '.'); }

char ZTIntlFormat::GetTime() { return FillChar(m_Time, ':'); }

char ZTIntlFormat::GetCurrThousandSep() { return FillChar(m_CurrThousandSep, GetThousand()); }

char ZTIntlFormat::GetCurrDecimalSep() { return FillChar(m_CurrDecimalSep, GetDecimal()); }

int ZTIntlFormat::GetDigits() { return FillInt(m_Digits, 2); }

int ZTIntlFormat::GetCurrDigits() { return FillInt(m_CurrDigits, 2); }

int ZTIntlFormat::GetGrouping() { return FillInt(m_Grouping, 3); }

int ZTIntlFormat::GetCurrGrouping() { return FillInt(m_CurrGrouping, 3); }

int ZTIntlFormat::GetCountry() { return FillInt(m_Country, 0); }

const ZTString& ZTIntlFormat::ShortDateFormat() {
  return FillLayout(m_ShortDateFormat, m_ShortDateFilled, "dd%cMM%cyyyy", GetDate());
}

const ZTString& ZTIntlFormat::ShortTimeFormat() {
  return FillLayout(m_ShortTimeFormat, m_ShortTimeFilled, "HH%cmm%css", GetTime());
}
