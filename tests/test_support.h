// Helpers shared by the test files.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "zt.h"

namespace zt_test {

// Collects what the library sends to the debugger output and points the
// protocol file at a private temporary file while it lives.
class WarningCapture {
 public:
  WarningCapture() {
    s_Text().clear();
    m_PreviousSink = ZTSetDebugSink(&Collect);
    m_PreviousName = ZTReportExcept::GetProtocolName();
    char path[] = "/tmp/ztTestProtocolXXXXXX";
    const int fd = mkstemp(path);
    if (fd >= 0) close(fd);
    m_Path = path;
    ZTReportExcept::SetProtocolName(m_Path.c_str());
  }
  ~WarningCapture() {
    ZTSetDebugSink(m_PreviousSink);
    ZTReportExcept::SetProtocolName(m_PreviousName.c_str());
    std::remove(m_Path.c_str());
  }
  WarningCapture(const WarningCapture&) = delete;
  WarningCapture& operator=(const WarningCapture&) = delete;

  // Everything sent to the debugger output so far.
  const std::string& Text() const { return s_Text(); }
  bool Contains(const std::string& _Part) const { return Text().find(_Part) != std::string::npos; }
  void Clear() { s_Text().clear(); }
  // The protocol file's content.
  std::string Protocol() const {
    std::ifstream in(m_Path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
  }
  const std::string& ProtocolPath() const { return m_Path; }

 private:
  static std::string& s_Text() {
    static std::string text;
    return text;
  }
  static void Collect(const char* _Text) { s_Text() += _Text; }

  ZTDebugSink m_PreviousSink;
  std::string m_PreviousName;
  std::string m_Path;
};

// A value's text under a format, "<null>" when the text is null.
inline std::string Text(const ZTValue& _Value, const char* _Format = nullptr) {
  const ZTString text = _Value.GetString(_Format);
  return static_cast<const char*>(text) ? static_cast<const char*>(text) : "<null>";
}

// Records the order of the change-tracking calls a store makes and the value
// seen at each of them.
template <class Base>
class Watched : public Base {
 public:
  using Base::operator=;
  void SetDirty() override {
    m_Log += "dirty(" + Text(*this) + ")";
    Base::SetDirty();
  }
  void Changed() override {
    m_Log += "changed(" + Text(*this) + ")";
    Base::Changed();
  }
  std::string m_Log;
};

// Runs the callable and returns the ZTExcept it throws; fails when it throws none.
template <class Ex = ZTExcept, class F>
Ex Catch(F&& _Fn) {
  try {
    _Fn();
  } catch (const Ex& ex) {
    return ex;
  }
  throw std::runtime_error("expected a ZTExcept, none was thrown");
}

}  // namespace zt_test
