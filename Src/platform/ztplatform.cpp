#include "platform/ztplatform.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ztexcept.h"

namespace {

void DefaultDebugSink(const char* _Text) {
  // Debugger output is silent unless asked for, so tests and programs stay quiet.
  static const bool enabled = std::getenv("ZT_DEBUG_OUTPUT") != nullptr;
  if (enabled) std::fputs(_Text, stderr);
}

std::atomic<ZTDebugSink> s_DebugSink{&DefaultDebugSink};

bool WriteAll(int _Fd, const char* _Data, std::size_t _Len) {
  while (_Len > 0) {
    const ssize_t n = ::write(_Fd, _Data, _Len);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    _Data += n;
    _Len -= static_cast<std::size_t>(n);
  }
  return true;
}

}  // namespace

ZTDebugSink ZTSetDebugSink(ZTDebugSink _Sink) {
  return s_DebugSink.exchange(_Sink ? _Sink : &DefaultDebugSink);
}

namespace zt_platform {

void DebugOutput(const char* _Text) {
  if (_Text) s_DebugSink.load()(_Text);
}

bool AppendToFile(const char* _Path, const char* _Data, std::size_t _Len) {
  const int fd = ::open(_Path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  const bool ok = WriteAll(fd, _Data, _Len);
  ::close(fd);
  return ok;
}

void SystemErrorText(int _Error, char* _Buffer, std::size_t _Size) {
  if (!_Buffer || _Size == 0) return;
  // GNU strerror_r may return a static text instead of filling the buffer.
  const char* text = strerror_r(_Error, _Buffer, _Size);
  if (text != _Buffer) std::snprintf(_Buffer, _Size, "%s", text);
}

std::tm LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm result{};
  localtime_r(&now, &result);
  return result;
}

int CurrentThreadId() {
  thread_local const int id = static_cast<int>(::syscall(SYS_gettid));
  return id;
}

void ShowErrorLine(const char* _Text) {
  std::fprintf(stderr, "%s\n", _Text ? _Text : "");
}

}  // namespace zt_platform
