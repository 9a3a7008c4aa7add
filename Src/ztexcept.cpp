// Exceptions, checked preconditions, warnings and the protocol file.
#include "ztexcept.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "platform/ztplatform.h"
#include "ztcont.h"
#include "ztobject.h"
#include "ztstring.h"

namespace {

constexpr int MessageBufferSize = 4096;

ZTReportExcept s_DefaultReporter;

const char* NullText(const char* _Text) { return _Text ? _Text : "(null)"; }

// Appends "[dd.mm.yyyy hh:mm:ss] : text" to the protocol file and sends the
// stamp, the text and a line end to the debugger output.
void WriteProtocolText(const char* _Text, const char* _ProtocolName) {
  if (!_Text) return;
  const std::tm now = zt_platform::LocalTime();
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, "[%2i.%02i.%4i %02i:%02i:%02i] : ", now.tm_mday,
                now.tm_mon + 1, now.tm_year + 1900, now.tm_hour, now.tm_min, now.tm_sec);
  if (_ProtocolName && *_ProtocolName) {
    // Plain buffers only: warnings are given while the allocator's and the
    // allocation stack's locks are held. One write keeps concurrent lines whole.
    char line[MessageBufferSize + sizeof stamp + 1];
    const int len = std::snprintf(line, sizeof line, "%s%s\n", stamp, _Text);
    if (len > 0)
      zt_platform::AppendToFile(_ProtocolName, line,
                                std::min(static_cast<std::size_t>(len), sizeof line - 1));
  }
  zt_platform::DebugOutput(stamp);
  zt_platform::DebugOutput(_Text);
  zt_platform::DebugOutput("\n");
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTExcept

ZTReportExcept* ZTExcept::m_ExceptionReporter = &s_DefaultReporter;

ZTExcept::ZTExcept(const ZTExcept& _Other)
    : m_Method(_Other.m_Method),
      m_File(_Other.m_File),
      m_Line(_Other.m_Line),
      m_ErrorCode(_Other.m_ErrorCode),
      m_Messages(_Other.m_Messages) {
  if (m_Messages) m_Messages->Attach();
}

ZTExcept& ZTExcept::operator=(const ZTExcept& _Other) {
  if (this != &_Other) {
    if (_Other.m_Messages) _Other.m_Messages->Attach();
    if (m_Messages) m_Messages->Detach();
    m_Method = _Other.m_Method;
    m_File = _Other.m_File;
    m_Line = _Other.m_Line;
    m_ErrorCode = _Other.m_ErrorCode;
    m_Messages = _Other.m_Messages;
  }
  return *this;
}

ZTExcept::~ZTExcept() {
  if (m_Messages) m_Messages->Detach();
}

void ZTExcept::Delete() { delete this; }

void ZTExcept::SetContext(const char* _Method, const char* _File, int _Line) {
  m_Method = _Method;
  m_File = _File;
  m_Line = _Line;
}

void ZTExcept::PushMsg(const char* _Format, ...) {
  va_list args;
  va_start(args, _Format);
  VPushMsg(_Format, args);
  va_end(args);
}

void ZTExcept::VPushMsg(const char* _Format, va_list _Args) {
  if (!m_Messages) {
    m_Messages = new ZTPArray;
    m_Messages->Attach();
  }
  if (!_Format) return;
  char buffer[MessageBufferSize];
  std::vsnprintf(buffer, sizeof buffer, _Format, _Args);
  m_Messages->Insert(new ZTString(buffer), 0);  // newest message first
}

int ZTExcept::GetMsgCount() const { return m_Messages ? m_Messages->GetCount() : 0; }

const char* ZTExcept::GetMsg(int _Index) const {
  if (!m_Messages || _Index < 0 || _Index >= m_Messages->GetCount()) return nullptr;
  const auto* msg = static_cast<const ZTString*>(m_Messages->Get(_Index));
  return msg ? static_cast<const char*>(*msg) : nullptr;
}

void ZTExcept::ThrowIt() const { throw *this; }

bool ZTExcept::FormatLine(char* _Buffer, int _Size, const char* _Format, ...) {
  va_list args;
  va_start(args, _Format);
  std::vsnprintf(_Buffer, static_cast<std::size_t>(_Size), _Format, args);
  va_end(args);
  return true;
}

// Shared start of every GetErrorMessage: the buffer is checked and emptied;
// the message is null when the index names none.
#define ZT_BEGIN_ERROR_MESSAGE()                        \
  if (!_Buffer || _Size <= 0) return false;             \
  *_Buffer = '\0';                                      \
  const char* m = GetMsg(_Index);                       \
  if (!m) return true

bool ZTExcept::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const {
  ZT_BEGIN_ERROR_MESSAGE();
  if (_WithContext)
    return FormatLine(_Buffer, _Size, "General exception: %s {%s(%ld):%s}", m, NullText(m_File),
                      static_cast<long>(m_Line), NullText(m_Method));
  return FormatLine(_Buffer, _Size, "General exception: %s", m);
}

void ZTExcept::Report() const {
  if (m_ExceptionReporter) m_ExceptionReporter->Report(this);
}

ZTReportExcept* ZTExcept::SetReporter(ZTReportExcept* _Reporter) {
  ZTReportExcept* previous = m_ExceptionReporter;
  m_ExceptionReporter = _Reporter;
  return previous;
}

// ---------------------------------------------------------------------------
// Subclasses

void ZTNamedExcept::ThrowIt() const { throw *this; }

bool ZTNamedExcept::GetErrorMessage(char* _Buffer, int _Size, int _Index,
                                    bool _WithContext) const {
  ZT_BEGIN_ERROR_MESSAGE();
  if (_WithContext)
    return FormatLine(_Buffer, _Size, "Named Exception: %s: %s {%s(%ld):%s}", m,
                      NullText(m_Name), NullText(m_File), static_cast<long>(m_Line),
                      NullText(m_Method));
  return FormatLine(_Buffer, _Size, "Named Exception: %s: %s", m, NullText(m_Name));
}

void ZTExceptParameter::ThrowIt() const { throw *this; }

bool ZTExceptParameter::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  ZT_BEGIN_ERROR_MESSAGE();
  return FormatLine(_Buffer, _Size, "Exception Parameter: %s: %s {%s(%ld):%s}", m,
                    NullText(m_Name), NullText(m_File), static_cast<long>(m_Line),
                    NullText(m_Method));
}

ZTExceptAttribute::ZTExceptAttribute(const char* _Name) : ZTNamedExcept(_Name) {
  PushMsg("Unknown Attribute");
}

void ZTExceptAttribute::ThrowIt() const { throw *this; }

bool ZTExceptAttribute::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  ZT_BEGIN_ERROR_MESSAGE();
  return FormatLine(_Buffer, _Size, "Exception Attribute: %s '%s' {%s(%ld):%s}", m,
                    NullText(m_Name), NullText(m_File), static_cast<long>(m_Line),
                    NullText(m_Method));
}

void ZTExceptCondition::ThrowIt() const { throw *this; }

bool ZTExceptCondition::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  ZT_BEGIN_ERROR_MESSAGE();
  if (m_Method && *m_Method)
    return FormatLine(_Buffer, _Size, "Exception: '%s' %s {%s(%ld):%s}", m, NullText(m_Name),
                      NullText(m_File), static_cast<long>(m_Line), m_Method);
  return FormatLine(_Buffer, _Size, "Exception: '%s' %s {%s(%ld)}", m, NullText(m_Name),
                    NullText(m_File), static_cast<long>(m_Line));
}

void ZTExceptIndex::ThrowIt() const { throw *this; }

bool ZTExceptIndex::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  ZT_BEGIN_ERROR_MESSAGE();
  return FormatLine(_Buffer, _Size, "Exception: '%s' %s=%ld {%s(%ld):%s}", m, NullText(m_Name),
                    static_cast<long>(m_Index), NullText(m_File), static_cast<long>(m_Line),
                    NullText(m_Method));
}

#undef ZT_BEGIN_ERROR_MESSAGE

void ZTExceptFile::ThrowIt() const { throw *this; }

// The line names the system error; pushed messages are not part of it, so
// every index gives the same line.
bool ZTExceptFile::GetErrorMessage(char* _Buffer, int _Size, int, bool _WithContext) const {
  if (!_Buffer || _Size <= 0) return false;
  char text[512];
  zt_platform::SystemErrorText(m_SysError, text, sizeof text);
  const long line = m_Line;
  if (m_FileName) {
    if (_WithContext)
      return FormatLine(_Buffer, _Size, "%s: %s {%s(%ld):%s}", m_FileName, text,
                        NullText(m_File), line, NullText(m_Method));
    return FormatLine(_Buffer, _Size, "%s: %s", m_FileName, text);
  }
  if (_WithContext)
    return FormatLine(_Buffer, _Size, "%s {%s(%ld):%s}", text, NullText(m_File), line,
                      NullText(m_Method));
  return FormatLine(_Buffer, _Size, "%s", text);
}

const char* ZTMemInfoName(ZTMemInfo _Type) {
  switch (_Type) {
    case ZTMemBinary: return "Binary";
    case ZTMemString: return "String";
    case ZTMemObject: return "Object";
    default: return "Unknown";
  }
}

ZTExceptMemory::ZTExceptMemory(ZTMemErrorCode _Code, int _Block, ZTMemInfo _Type,
                               const void* _Pointer)
    : m_Block(_Block), m_MemType(_Type), m_Pointer(_Pointer) {
  m_ErrorCode = _Code;
}

void ZTExceptMemory::ThrowIt() const { throw *this; }

// The line depends on the error code only; index and context are not used.
bool ZTExceptMemory::GetErrorMessage(char* _Buffer, int _Size, int, bool) const {
  if (!_Buffer || _Size <= 0) return false;
  static constexpr const char* BlockTexts[] = {
      "Alloc:  Out of memory (block %i, type %s)",
      "Alloc:  Invalid memory block (block %i, type %s)",
      "Alloc:  Inconsistent types (block %i, type %s)",
      "Access: Invalid block (block %i, type %s)",
      "Access: Invalid page (block %i, type %s)"};
  static constexpr const char* PointerTexts[] = {
      "Free:   Invalid memory block (pointer 0x%.8" PRIxPTR ", block %i, type %s)",
      "Free:   Invalid pointer (pointer 0x%.8" PRIxPTR ", block %i, type %s)"};
  const char* type = ZTMemInfoName(m_MemType);
  if (m_ErrorCode >= ZTMemErrOutOfMemory && m_ErrorCode <= ZTMemErrAccessInvalidPage)
    return FormatLine(_Buffer, _Size, BlockTexts[m_ErrorCode], m_Block, type);
  if (m_ErrorCode == ZTMemErrFreeInvalidBlock || m_ErrorCode == ZTMemErrFreeInvalidPointer)
    return FormatLine(_Buffer, _Size, PointerTexts[m_ErrorCode - ZTMemErrFreeInvalidBlock],
                      reinterpret_cast<std::uintptr_t>(m_Pointer), m_Block, type);
  return FormatLine(_Buffer, _Size, "%s", "General memory exception");
}

namespace {
// Keeps at most 63 characters of a class name.
void CopyClassName(char (&_Target)[64], const char* _Name) {
  std::snprintf(_Target, sizeof _Target, "%s", NullText(_Name));
}

// The report line of creator and factory exceptions is the message itself.
bool MessageLine(const ZTExcept& _Ex, char* _Buffer, int _Size, int _Index) {
  if (!_Buffer || _Size <= 0) return false;
  *_Buffer = '\0';
  if (const char* m = _Ex.GetMsg(_Index))
    std::snprintf(_Buffer, static_cast<std::size_t>(_Size), "%s", m);
  return true;
}
}  // namespace

ZTExceptCreator::ZTExceptCreator(const char* _ClassName) {
  CopyClassName(m_ClassName, _ClassName);
  PushMsg("Create object: invalid class name '%s'", NullText(_ClassName));
}

ZTExceptCreator::ZTExceptCreator(const char* _ClassName, const ZTClassType* _Base) {
  CopyClassName(m_ClassName, _ClassName);
  const char* base = _Base ? _Base->GetClassName() : nullptr;
  CopyClassName(m_ExpectedBase, base);
  PushMsg("Create object: class '%s' is not derived from '%s'", NullText(_ClassName),
          NullText(base));
}

void ZTExceptCreator::ThrowIt() const { throw *this; }

bool ZTExceptCreator::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  return MessageLine(*this, _Buffer, _Size, _Index);
}

ZTExceptFactory::ZTExceptFactory(const char* _What) {
  PushMsg("Object factory: '%s'", _What ? _What : "???");
}

void ZTExceptFactory::ThrowIt() const { throw *this; }

bool ZTExceptFactory::GetErrorMessage(char* _Buffer, int _Size, int _Index, bool) const {
  return MessageLine(*this, _Buffer, _Size, _Index);
}

// ---------------------------------------------------------------------------
// Reporter and warnings

char ZTReportExcept::sm_ProtocolName[256] = "ztErrors.log";

void ZTReportExcept::WriteProtocolMessage(const char* _Msg) {
  WriteProtocolText(_Msg, sm_ProtocolName);
}

void ZTReportExcept::WriteProtocol(const ZTExcept* _Ex) {
  if (!_Ex) return;
  char line[MessageBufferSize];
  for (int i = 0; i < _Ex->GetMsgCount(); ++i)
    if (_Ex->GetErrorMessage(line, sizeof line, i, true)) WriteProtocolMessage(line);
}

bool ZTReportExcept::Report(const ZTExcept* _Ex) {
  if (!_Ex) return true;
  char line[MessageBufferSize];
  for (int i = 0; i < _Ex->GetMsgCount(); ++i) {
    if (_Ex->GetErrorMessage(line, sizeof line, i, true)) {
      WriteProtocolMessage(line);
      zt_platform::ShowErrorLine(line);
    }
  }
  return true;
}

void ZTReportExcept::SetProtocolName(const char* _Name) {
  std::snprintf(sm_ProtocolName, sizeof sm_ProtocolName, "%s", _Name ? _Name : "");
}

const char* ZTReportExcept::GetProtocolName() { return sm_ProtocolName; }

void ZTWarning(const char* _Format, ...) {
  if (!_Format) return;
  // Per thread, so that warnings from several threads never mix their texts.
  thread_local char buffer[MessageBufferSize];
  va_list args;
  va_start(args, _Format);
  std::vsnprintf(buffer, sizeof buffer, _Format, args);
  va_end(args);
  WriteProtocolText(buffer, ZTReportExcept::GetProtocolName());
}

// ---------------------------------------------------------------------------
// Checking operations

const char* ZTSignature(const char* _PrettyFunction) {
  if (!_PrettyFunction) return nullptr;
  // The name ends where its parameter list starts; an operator's name may
  // itself contain blanks and parentheses, so it starts at "operator".
  const char* end = std::strchr(_PrettyFunction, '(');
  if (!end) return _PrettyFunction;
  const char* op = std::strstr(_PrettyFunction, "operator");
  if (op && op < end) end = op;
  for (const char* p = end; p > _PrettyFunction; --p)
    if (p[-1] == ' ') return p;
  return _PrettyFunction;
}

namespace {
template <class Ex>
[[noreturn]] void Raise(Ex& _Ex, const char* _Func, const char* _File, int _Line) {
  _Ex.SetContext(ZTSignature(_Func), _File, _Line);
  throw _Ex;  // the static type is the most derived one: same as ThrowIt()
}
}  // namespace

void ZTThrowParameter(const char* _Func, const char* _File, int _Line, const char* _Param) {
  ZTExceptParameter ex(_Param);
  ex.PushMsg("Required parameter %s is null.", _Param);
  Raise(ex, _Func, _File, _Line);
}

void ZTThrowCondition(const char* _Func, const char* _File, int _Line, const char* _Cond,
                      const char* _Msg) {
  ZTExceptCondition ex(_Msg ? _Msg : _Cond);
  ex.PushMsg("Condition check failed(%s)", _Cond);
  if (_Msg) ex.PushMsg("%s", _Msg);
  Raise(ex, _Func, _File, _Line);
}

void ZTThrowIndex(const char* _Func, const char* _File, int _Line, const char* _Cond,
                  const char* _Name, int _Index) {
  ZTExceptIndex ex(_Name, _Index);
  ex.PushMsg("Index check failed(%s)", _Cond);
  Raise(ex, _Func, _File, _Line);
}

void ZTThrowArrayIndex(const char* _Func, const char* _File, int _Line, const char* _Array,
                       int _Index) {
  ZTExceptIndex ex(_Array, _Index);
  ex.PushMsg("Index check of array '%s'failed", _Array);
  Raise(ex, _Func, _File, _Line);
}

void ZTThrowGeneral(const char* _Func, const char* _File, int _Line, const char* _Format, ...) {
  ZTExcept ex;
  va_list args;
  va_start(args, _Format);
  ex.VPushMsg(_Format, args);
  va_end(args);
  Raise(ex, _Func, _File, _Line);
}
