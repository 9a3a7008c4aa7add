// ZTIntlFormat: the user's international settings.
#include "ztintl.h"

#include <cstdio>
#include <mutex>

#include "ztregkey.h"

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

namespace {
// Reads a text value of a key under the current user; false when the key or
// the value is missing.
bool ReadSetting(const char* _Key, const char* _Name, ZTString& _Result) {
  if (!ZTRegistryKey::IsValidKey(ZTRegistryKey::CurrentUser, _Key)) return false;
  ZTRegistryKey key;
  key.Open(ZTRegistryKey::CurrentUser, _Key, ZTRegistryKey::AccessRead);
  return key.QueryValue(_Name, _Result) == 0;
}
}  // namespace

bool ZTIntlFormat::QueryValue(const char* _Name, ZTString& _Result) {
  _Result.SetEmpty();
  if (!_Name) return false;
  try {
    if (ReadSetting(sm_RegKeyName, _Name, _Result)) return true;
    const ZTString program = GetProgramRegKeyName();
    return !program.IsEmpty() && ReadSetting(program, _Name, _Result);
  } catch (ZTExcept& ex) {
    ex.PushMsg("Unable to query value '%s'", _Name);
    throw;
  }
}

ZTString ZTIntlFormat::QueryText(const char* _Name, const char* _Default) {
  ZTString text;
  if (!QueryValue(_Name, text) || text.IsEmpty()) text = _Default;
  return text;
}

int ZTIntlFormat::FillInt(IntCache& _Cache, const char* _Name, const char* _Default,
                          bool _FirstCharOnly) {
  std::int32_t value = _Cache.load(std::memory_order_relaxed);
  if (value == -1) {
    ZTString text = QueryText(_Name, _Default);
    if (_FirstCharOnly) text = text.Left(1);  // a grouping of "3;2;0" counts as 3
    value = text.GetInt();
    _Cache.store(value, std::memory_order_relaxed);
  }
  return value;
}

char ZTIntlFormat::FillChar(CharCache& _Cache, const char* _Name, char _Default) {
  char value = _Cache.load(std::memory_order_relaxed);
  if (value == 0) {
    ZTString text;
    value = QueryValue(_Name, text) && !text.IsEmpty() ? static_cast<const char*>(text)[0] : _Default;
    _Cache.store(value, std::memory_order_relaxed);
  }
  return value;
}

const ZTString& ZTIntlFormat::FillLayout(ZTString& _Cache, std::atomic<bool>& _Filled,
                                         const char* _Name, unsigned _Length,
                                         const char* _Pattern, char _Sep) {
  if (!_Filled.load(std::memory_order_acquire)) {
    // Read outside the lock: the query takes it for the program key name.
    ZTString layout;
    if (!QueryValue(_Name, layout) || layout.GetLength() != _Length) {
      char text[16];
      std::snprintf(text, sizeof text, _Pattern, _Sep, _Sep);
      layout = text;
    }
    std::lock_guard<std::mutex> lock(IntlLock());
    if (!_Filled.load(std::memory_order_relaxed)) {
      _Cache = layout;
      _Filled.store(true, std::memory_order_release);
    }
  }
  return _Cache;
}

char ZTIntlFormat::GetDecimal() { return FillChar(m_Decimal, "sDecimal", ','); }

char ZTIntlFormat::GetThousand() { return FillChar(m_Thousand, "sThousand", '.'); }

char ZTIntlFormat::GetDate() { return FillChar(m_Date, "sDate", '.'); }

char ZTIntlFormat::GetTime() { return FillChar(m_Time, "sTime", ':'); }

char ZTIntlFormat::GetCurrThousandSep() {
  return FillChar(m_CurrThousandSep, "sMonThousandSep", GetThousand());
}

char ZTIntlFormat::GetCurrDecimalSep() {
  return FillChar(m_CurrDecimalSep, "sMonDecimalSep", GetDecimal());
}

int ZTIntlFormat::GetDigits() { return FillInt(m_Digits, "iDigits", "2", false); }

int ZTIntlFormat::GetCurrDigits() { return FillInt(m_CurrDigits, "iCurrDigits", "2", false); }

int ZTIntlFormat::GetGrouping() { return FillInt(m_Grouping, "sGrouping", "3", true); }

int ZTIntlFormat::GetCurrGrouping() { return FillInt(m_CurrGrouping, "sMonGrouping", "3", true); }

int ZTIntlFormat::GetCountry() { return FillInt(m_Country, "iCountry", "0", false); }

const ZTString& ZTIntlFormat::ShortDateFormat() {
  return FillLayout(m_ShortDateFormat, m_ShortDateFilled, "sShortDate", 10, "dd%cMM%cyyyy",
                    GetDate());
}

const ZTString& ZTIntlFormat::ShortTimeFormat() {
  return FillLayout(m_ShortTimeFormat, m_ShortTimeFilled, "sTimeFormat", 8, "HH%cmm%css",
                    GetTime());
}
