// Internal platform layer: the few operating-system services the library uses.
// Not installed and never included by public headers.
#pragma once

#include <cstddef>
#include <ctime>

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

}  // namespace zt_platform
