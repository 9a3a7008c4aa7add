// Exceptions, checked preconditions and warnings of the zt library.
#pragma once

#include <cstdarg>
#include <cstddef>

class ZTPArray;
class ZTClassType;
class ZTReportExcept;

// Root of every exception the library throws. Exceptions are thrown by value
// through ThrowIt(); callers catch ZTExcept&.
class ZTExcept {
 public:
  ZTExcept() = default;
  ZTExcept(const ZTExcept& _Other);
  ZTExcept& operator=(const ZTExcept& _Other);
  virtual ~ZTExcept();

  virtual void Delete();
  virtual void SetContext(const char* _Method, const char* _File, int _Line);
  virtual void PushMsg(const char* _Format, ...) __attribute__((format(printf, 2, 3)));
  virtual int GetMsgCount() const;
  virtual const char* GetMsg(int _Index) const;
  [[noreturn]] virtual void ThrowIt() const;
  virtual bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const;
  virtual void Report() const;

  const char* GetMethod() const { return m_Method; }
  const char* GetFile() const { return m_File; }
  int GetLineNo() const { return m_Line; }
  int GetErrorCode() const { return m_ErrorCode; }
  void SetMethod(const char* _Method) { m_Method = _Method; }
  void SetFile(const char* _File) { m_File = _File; }
  void SetLineNo(int _Line) { m_Line = _Line; }
  void SetErrorCode(int _Code) { m_ErrorCode = _Code; }

  void VPushMsg(const char* _Format, va_list _Args);

  // Replaces the reporter; returns the previous one. Null switches reporting off.
  static ZTReportExcept* SetReporter(ZTReportExcept* _Reporter);
  static ZTReportExcept* m_ExceptionReporter;

 protected:
  // Formats the report line into the buffer (cut, always terminated).
  static bool FormatLine(char* _Buffer, int _Size, const char* _Format, ...)
      __attribute__((format(printf, 3, 4)));

  const char* m_Method = nullptr;
  const char* m_File = nullptr;
  int m_Line = 0;
  int m_ErrorCode = 0;
  ZTPArray* m_Messages = nullptr;  // shared between copies by reference count
};

class ZTNamedExcept : public ZTExcept {
 public:
  explicit ZTNamedExcept(const char* _Name = nullptr) : m_Name(_Name) {}
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
  const char* GetName() const { return m_Name; }
  void SetName(const char* _Name) { m_Name = _Name; }

 protected:
  const char* m_Name;
};

class ZTExceptParameter : public ZTNamedExcept {
 public:
  explicit ZTExceptParameter(const char* _Name = nullptr) : ZTNamedExcept(_Name) {}
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
};

class ZTExceptAttribute : public ZTNamedExcept {
 public:
  explicit ZTExceptAttribute(const char* _Name = nullptr);
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
};

class ZTExceptCondition : public ZTNamedExcept {
 public:
  explicit ZTExceptCondition(const char* _Name = nullptr) : ZTNamedExcept(_Name) {}
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
};

class ZTExceptIndex : public ZTExceptCondition {
 public:
  ZTExceptIndex(const char* _Name = nullptr, int _Index = 0)
      : ZTExceptCondition(_Name), m_Index(_Index) {}
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
  int GetIndex() const { return m_Index; }
  void SetIndex(int _Index) { m_Index = _Index; }

 protected:
  int m_Index;
};

class ZTExceptFile : public ZTExcept {
 public:
  ZTExceptFile(int _SysError = 0, const char* _FileName = nullptr)
      : m_SysError(_SysError), m_FileName(_FileName) {}
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
  int GetSysError() const { return m_SysError; }
  const char* GetFileName() const { return m_FileName; }

 protected:
  int m_SysError;
  const char* m_FileName;
};

// Kind of memory a memory-manager category hands out.
enum ZTMemInfo { ZTMemUnknown = 0, ZTMemBinary = 1, ZTMemString = 2, ZTMemObject = 3 };

// Error kinds of ZTExceptMemory, kept in the exception's error code.
enum ZTMemErrorCode {
  ZTMemErrOutOfMemory = 0,
  ZTMemErrInvalidBlock = 1,
  ZTMemErrInconsistentTypes = 2,
  ZTMemErrAccessInvalidBlock = 3,
  ZTMemErrAccessInvalidPage = 4,
  ZTMemErrFreeInvalidBlock = 5,
  ZTMemErrFreeInvalidPointer = 6
};

// Name of a memory type ("Unknown", "Binary", "String", "Object").
const char* ZTMemInfoName(ZTMemInfo _Type);

class ZTExceptMemory : public ZTExcept {
 public:
  ZTExceptMemory(ZTMemErrorCode _Code = ZTMemErrOutOfMemory, int _Block = 0,
                 ZTMemInfo _Type = ZTMemUnknown, const void* _Pointer = nullptr);
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
  int GetBlock() const { return m_Block; }
  ZTMemInfo GetMemType() const { return m_MemType; }
  const void* GetPointer() const { return m_Pointer; }

 protected:
  int m_Block;
  ZTMemInfo m_MemType;
  const void* m_Pointer;
};

class ZTExceptCreator : public ZTExcept {
 public:
  explicit ZTExceptCreator(const char* _ClassName);
  ZTExceptCreator(const char* _ClassName, const ZTClassType* _Base);
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
  const char* GetClassName() const { return m_ClassName; }
  const char* GetExpectedBaseClassName() const { return m_ExpectedBase; }

 protected:
  char m_ClassName[64] = {};
  char m_ExpectedBase[64] = {};
};

class ZTExceptFactory : public ZTExcept {
 public:
  explicit ZTExceptFactory(const char* _What);
  [[noreturn]] void ThrowIt() const override;
  bool GetErrorMessage(char* _Buffer, int _Size, int _Index, bool _WithContext) const override;
};

// Shows caught exceptions: every message line goes to the protocol file and,
// in place of a message box, to standard error.
class ZTReportExcept {
 protected:
  virtual void WriteProtocolMessage(const char* _Msg);
  virtual void WriteProtocol(const ZTExcept* _Ex);

 public:
  constexpr ZTReportExcept() = default;
  virtual ~ZTReportExcept() = default;
  virtual bool Report(const ZTExcept* _Ex);

  static void SetProtocolName(const char* _Name);
  static const char* GetProtocolName();

 protected:
  static char sm_ProtocolName[256];
};

// Appends a time-stamped line to the protocol file and sends it to the
// debugger output. Never throws.
void ZTWarning(const char* _Format, ...) __attribute__((format(printf, 1, 2)));

// Replaces the debugger-output sink (null restores the default, which writes to
// standard error only when ZT_DEBUG_OUTPUT is set). Returns the previous sink.
using ZTDebugSink = void (*)(const char* _Text);
ZTDebugSink ZTSetDebugSink(ZTDebugSink _Sink);

// Throw helpers behind the checking macros; _Func is __PRETTY_FUNCTION__, from
// which the return type is stripped to give the signature text.
[[noreturn]] void ZTThrowParameter(const char* _Func, const char* _File, int _Line,
                                   const char* _Param);
[[noreturn]] void ZTThrowCondition(const char* _Func, const char* _File, int _Line,
                                   const char* _Cond, const char* _Msg);
[[noreturn]] void ZTThrowIndex(const char* _Func, const char* _File, int _Line,
                               const char* _Cond, const char* _Name, int _Index);
[[noreturn]] void ZTThrowArrayIndex(const char* _Func, const char* _File, int _Line,
                                    const char* _Array, int _Index);
[[noreturn]] void ZTThrowGeneral(const char* _Func, const char* _File, int _Line,
                                 const char* _Format, ...) __attribute__((format(printf, 4, 5)));
// Signature text of a function: __PRETTY_FUNCTION__ without its return type.
const char* ZTSignature(const char* _PrettyFunction);

namespace zt_detail {
template <class A>
int ArrayCount(A* _Array) {
  return _Array ? _Array->GetCount() : 0;
}
template <class A>
int ArrayCount(const A& _Array) {
  return _Array.GetCount();
}
}  // namespace zt_detail

#define ZT_FUNC __PRETTY_FUNCTION__

// Checking macros: the checked expression's source text goes into the message;
// a string-literal message keeps its quotation marks (quoted form).
#define ZT_PARAM_CHECK(P)                                          \
  do {                                                             \
    if (!(P)) ZTThrowParameter(ZT_FUNC, __FILE__, __LINE__, #P);   \
  } while (0)

#define ZT_COND_CHECK(X)                                                   \
  do {                                                                     \
    if (!(X)) ZTThrowCondition(ZT_FUNC, __FILE__, __LINE__, #X, nullptr);  \
  } while (0)

#define ZT_COND_CHECK_MSG(X, M)                                         \
  do {                                                                  \
    if (!(X)) ZTThrowCondition(ZT_FUNC, __FILE__, __LINE__, #X, #M);    \
  } while (0)

#define ZT_INDEX_CHECK(X, I)                                                  \
  do {                                                                        \
    if (!(X)) ZTThrowIndex(ZT_FUNC, __FILE__, __LINE__, #X, #I, (int)(I));    \
  } while (0)

#define ZT_ARRAY_INDEX_CHECK(A, I)                                            \
  do {                                                                        \
    const int zt_idx_ = (int)(I);                                             \
    if (zt_idx_ < 0 || zt_idx_ >= ::zt_detail::ArrayCount(A))                 \
      ZTThrowArrayIndex(ZT_FUNC, __FILE__, __LINE__, #A, zt_idx_);            \
  } while (0)

// Sets the raising function's context on an exception object and throws it.
#define ZT_RAISE(Ex)                                                  \
  do {                                                                \
    auto zt_ex_ = (Ex);                                               \
    zt_ex_.SetContext(ZTSignature(ZT_FUNC), __FILE__, __LINE__);      \
    throw zt_ex_; /* the exact type: same as ThrowIt(), visibly noreturn */ \
  } while (0)

// A general exception whose message is given as a string literal (quoted form).
#define ZT_THROW(M) ZTThrowGeneral(ZT_FUNC, __FILE__, __LINE__, "%s", #M)
// A general exception whose printf-style format is a string literal: the text
// keeps its quotation marks.
#define ZT_THROW_QUOTED(F, ...) ZTThrowGeneral(ZT_FUNC, __FILE__, __LINE__, #F, __VA_ARGS__)
// A general exception with a printf-style message, taken as written.
#define ZT_THROW_FMT(...) ZTThrowGeneral(ZT_FUNC, __FILE__, __LINE__, __VA_ARGS__)
// A warning whose format is a string literal: the text keeps its quotation marks.
#define ZT_WARNING(F, ...) ZTWarning(#F, ##__VA_ARGS__)
