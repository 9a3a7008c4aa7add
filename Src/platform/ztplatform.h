// Internal platform layer: the few operating-system services the library uses.
// Not installed and never included by public headers.
#pragma once

#include <cstddef>
#include <ctime>
#include <mutex>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define ZT_HAVE_SINGLE_THREADED 1
#endif

namespace zt_platform {

// Writes a text to the debugger-output sink (see ZTSetDebugSink).
void DebugOutput(const char* _Text);

// Appends the bytes to the file (created when missing) in one write; false when
// the file cannot be opened or written.
bool AppendToFile(const char* _Path, const char* _Data, std::size_t _Len);

// The system's text for an errno value.
void SystemErrorText(int _Error, char* _Buffer, std::size_t _Size);

// The current local time, broken down.
std::tm LocalTime();

// A stable per-thread integer id.
int CurrentThreadId();

// Writes one line to standard error (the reporter's stand-in for a message box).
void ShowErrorLine(const char* _Text);

// True while the process has never had a second thread.
inline bool SingleThreaded() noexcept {
#ifdef ZT_HAVE_SINGLE_THREADED
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

// A process-wide critical section on the allocation paths. While the process has
// a single thread nobody can contend for it, so it is not taken then: an
// uncontended mutex costs more than a whole malloc/free pair, and the C
// library's allocator skips its own locks the same way. Only a running thread
// can start another, and none does so inside a critical section, so the answer
// holds from entering to leaving; the scope still remembers what it did.
class CriticalSection {
 public:
  constexpr CriticalSection() noexcept = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  class Scope {
   public:
    explicit Scope(CriticalSection& _Section)
        : m_Mutex(SingleThreaded() ? nullptr : &_Section.m_Mutex) {
      if (m_Mutex) m_Mutex->lock();
    }
    ~Scope() {
      if (m_Mutex) m_Mutex->unlock();
    }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    std::mutex* m_Mutex;
  };

 private:
  std::mutex m_Mutex;
};

}  // namespace zt_platform
