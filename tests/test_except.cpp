#include <cstring>
#include <regex>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

struct Holder {
  int GetCount() const { return 3; }
};

// Functions whose checks fail, as library code would write them.
static void NeedsKey(const char* _Key) { ZT_PARAM_CHECK(_Key); }
static void NeedsTable(const void* m_HashTable) { ZT_COND_CHECK_MSG(m_HashTable != NULL, "Invalid hash table"); }
static void NeedsCondition(int m_Size) { ZT_COND_CHECK(m_Size > 0); }
static void NeedsIndex(int _Idx, int m_Size) { ZT_INDEX_CHECK(_Idx >= 0 && _Idx < m_Size, _Idx); }
static void NeedsArrayIndex(const Holder* m_Messages, int _I) { ZT_ARRAY_INDEX_CHECK(m_Messages, _I); }

namespace {

std::string Line(const ZTExcept& _Ex, int _Index, bool _Ctx) {
  char buffer[512];
  EXPECT_TRUE(_Ex.GetErrorMessage(buffer, sizeof buffer, _Index, _Ctx));
  return buffer;
}

}  // namespace

TEST(ZTExcept, CheckingMacrosBuildTheDocumentedTexts) {
  auto param = Catch<ZTExceptParameter>([] { NeedsKey(nullptr); });
  EXPECT_STREQ(param.GetMsg(0), "Required parameter _Key is null.");
  EXPECT_STREQ(param.GetName(), "_Key");
  EXPECT_STREQ(param.GetMethod(), "NeedsKey(const char*)");
  EXPECT_STREQ(param.GetFile(), "tests/test_except.cpp");
  EXPECT_GT(param.GetLineNo(), 0);
  EXPECT_EQ(Line(param, 0, false),
            "Exception Parameter: Required parameter _Key is null.: _Key {tests/test_except.cpp(" +
                std::to_string(param.GetLineNo()) + "):NeedsKey(const char*)}");

  // A literal message keeps its quotation marks and goes in front.
  auto cond = Catch<ZTExceptCondition>([] { NeedsTable(nullptr); });
  ASSERT_EQ(cond.GetMsgCount(), 2);
  EXPECT_STREQ(cond.GetMsg(0), "\"Invalid hash table\"");
  EXPECT_STREQ(cond.GetMsg(1), "Condition check failed(m_HashTable != NULL)");
  EXPECT_STREQ(cond.GetName(), "\"Invalid hash table\"");

  auto plain = Catch<ZTExceptCondition>([] { NeedsCondition(0); });
  EXPECT_STREQ(plain.GetMsg(0), "Condition check failed(m_Size > 0)");
  EXPECT_STREQ(plain.GetName(), "m_Size > 0");

  auto index = Catch<ZTExceptIndex>([] { NeedsIndex(7, 3); });
  EXPECT_STREQ(index.GetMsg(0), "Index check failed(_Idx >= 0 && _Idx < m_Size)");
  EXPECT_STREQ(index.GetName(), "_Idx");
  EXPECT_EQ(index.GetIndex(), 7);
  EXPECT_EQ(Line(index, 0, true), "Exception: 'Index check failed(_Idx >= 0 && _Idx < m_Size)' _Idx=7 {"
                                   "tests/test_except.cpp(" + std::to_string(index.GetLineNo()) +
                                   "):NeedsIndex(int, int)}");

  Holder holder;
  auto array = Catch<ZTExceptIndex>([&] { NeedsArrayIndex(&holder, 3); });
  EXPECT_STREQ(array.GetMsg(0), "Index check of array 'm_Messages'failed");
  EXPECT_STREQ(array.GetName(), "m_Messages");
  EXPECT_EQ(array.GetIndex(), 3);
  EXPECT_NO_THROW(NeedsArrayIndex(&holder, 2));
  EXPECT_THROW(NeedsArrayIndex(&holder, -1), ZTExceptIndex);
  EXPECT_THROW(NeedsArrayIndex(nullptr, 0), ZTExceptIndex);
}

TEST(ZTExcept, MessagesStackNewestFirstAndAreSharedByCopies) {
  ZTExcept* copy = nullptr;
  {
    ZTExcept ex;
    EXPECT_EQ(ex.GetMsgCount(), 0);
    EXPECT_EQ(ex.GetMsg(0), nullptr);
    ex.PushMsg("a");
    ex.PushMsg("%s-%d", "b", 2);
    ASSERT_EQ(ex.GetMsgCount(), 2);
    EXPECT_STREQ(ex.GetMsg(0), "b-2");
    EXPECT_STREQ(ex.GetMsg(1), "a");
    EXPECT_EQ(ex.GetMsg(2), nullptr);
    EXPECT_EQ(ex.GetMsg(-1), nullptr);
    copy = new ZTExcept(ex);
    ex.PushMsg("c");  // shared: the copy sees it too
  }
  // The copy outlives the exception it was copied from.
  ASSERT_EQ(copy->GetMsgCount(), 3);
  EXPECT_STREQ(copy->GetMsg(0), "c");
  ZTExcept assigned;
  assigned.PushMsg("old");
  assigned = *copy;
  copy->Delete();
  EXPECT_STREQ(assigned.GetMsg(2), "a");
}

TEST(ZTExcept, GetErrorMessageBufferRules) {
  ZTExcept ex;
  ex.PushMsg("boom");
  char buffer[64] = "junk";
  EXPECT_FALSE(ex.GetErrorMessage(nullptr, 10, 0, false));
  EXPECT_FALSE(ex.GetErrorMessage(buffer, 0, 0, false));
  EXPECT_TRUE(ex.GetErrorMessage(buffer, 1, 0, false));
  EXPECT_STREQ(buffer, "");
  std::strcpy(buffer, "junk");
  EXPECT_TRUE(ex.GetErrorMessage(buffer, sizeof buffer, 5, false));
  EXPECT_STREQ(buffer, "");
  EXPECT_TRUE(ex.GetErrorMessage(buffer, 12, 0, false));
  EXPECT_STREQ(buffer, "General exc");  // cut to size - 1
  EXPECT_EQ(Line(ex, 0, false), "General exception: boom");
  EXPECT_EQ(Line(ex, 0, true), "General exception: boom {(null)(0):(null)}");
  ex.SetContext("f()", "Src/x", 12);
  EXPECT_EQ(Line(ex, 0, true), "General exception: boom {Src/x(12):f()}");
}

TEST(ZTExcept, ReportLinesOfEachClass) {
  ZTNamedExcept named("nm");
  named.PushMsg("m");
  named.SetContext("g()", "F", 3);
  EXPECT_EQ(Line(named, 0, true), "Named Exception: m: nm {F(3):g()}");
  EXPECT_EQ(Line(named, 0, false), "Named Exception: m: nm");

  ZTExceptAttribute attr("Colour");
  attr.SetContext("h()", "F", 4);
  EXPECT_EQ(Line(attr, 0, false), "Exception Attribute: Unknown Attribute 'Colour' {F(4):h()}");

  // Without a method the condition line has no method part; null file shows "(null)".
  ZTExceptCondition cond("x > 0");
  cond.PushMsg("m");
  EXPECT_EQ(Line(cond, 0, true), "Exception: 'm' x > 0 {(null)(0)}");
  cond.SetContext("", "F", 5);
  EXPECT_EQ(Line(cond, 0, true), "Exception: 'm' x > 0 {F(5)}");
  cond.SetContext("k()", "F", 5);
  EXPECT_EQ(Line(cond, 0, false), "Exception: 'm' x > 0 {F(5):k()}");

  ZTExceptFile file(ENOENT, "/no/such");
  file.SetContext("open()", "F", 6);
  EXPECT_EQ(Line(file, 0, false), "/no/such: No such file or directory");
  EXPECT_EQ(Line(file, 3, true), "/no/such: No such file or directory {F(6):open()}");
  EXPECT_EQ(Line(ZTExceptFile(EACCES), 0, false), "Permission denied");

  EXPECT_EQ(Line(ZTExceptMemory(ZTMemErrOutOfMemory, 2, ZTMemObject), 0, false),
            "Alloc:  Out of memory (block 2, type Object)");
  EXPECT_EQ(Line(ZTExceptMemory(ZTMemErrInvalidBlock, 8, ZTMemUnknown), 9, true),
            "Alloc:  Invalid memory block (block 8, type Unknown)");
  EXPECT_EQ(Line(ZTExceptMemory(ZTMemErrAccessInvalidPage, 1, ZTMemString), 0, false),
            "Access: Invalid page (block 1, type String)");
  EXPECT_EQ(Line(ZTExceptMemory(ZTMemErrFreeInvalidBlock, 9, ZTMemBinary,
                                reinterpret_cast<void*>(0x1234)), 0, false),
            "Free:   Invalid memory block (pointer 0x00001234, block 9, type Binary)");
  EXPECT_EQ(Line(ZTExceptMemory(static_cast<ZTMemErrorCode>(42)), 0, false), "General memory exception");
  EXPECT_EQ(ZTExceptMemory(ZTMemErrFreeInvalidPointer).GetErrorCode(), 6);

  ZTExceptCreator creator(std::string(100, 'x').c_str());
  EXPECT_EQ(std::strlen(creator.GetClassName()), 63u);
  EXPECT_EQ(Line(ZTExceptCreator("Foo"), 0, true), "Create object: invalid class name 'Foo'");
  EXPECT_EQ(Line(ZTExceptFactory(nullptr), 0, true), "Object factory: '\?\?\?'");
  EXPECT_EQ(Line(ZTExceptFactory("out of factories"), 0, false), "Object factory: 'out of factories'");
}

TEST(ZTExcept, ThrowItThrowsTheMostDerivedType) {
  ZTExceptIndex index("i", 4);
  index.PushMsg("m");
  const ZTExcept& base = index;
  try {
    base.ThrowIt();
  } catch (const ZTExceptIndex& ex) {
    EXPECT_EQ(ex.GetIndex(), 4);
    EXPECT_STREQ(ex.GetMsg(0), "m");
  }
  EXPECT_THROW(static_cast<const ZTExcept&>(ZTExceptFile(1)).ThrowIt(), ZTExceptFile);
  EXPECT_THROW(static_cast<const ZTExcept&>(ZTExceptMemory()).ThrowIt(), ZTExceptMemory);
  EXPECT_THROW(static_cast<const ZTExcept&>(ZTExceptFactory("f")).ThrowIt(), ZTExceptFactory);
  EXPECT_THROW(static_cast<const ZTExcept&>(ZTExceptAttribute("a")).ThrowIt(), ZTExceptAttribute);
  EXPECT_THROW(static_cast<const ZTExcept&>(ZTExceptParameter("p")).ThrowIt(), ZTExceptParameter);
}

TEST(ZTExcept, SignatureDropsTheReturnType) {
  EXPECT_STREQ(ZTSignature("bool ZTClassFactory::AddCreator(const char*, ZTCreator*)"),
               "ZTClassFactory::AddCreator(const char*, ZTCreator*)");
  EXPECT_STREQ(ZTSignature("ZTObject::ZTObject()"), "ZTObject::ZTObject()");
  EXPECT_STREQ(ZTSignature("const char* ZTString::operator const char*() const"),
               "ZTString::operator const char*() const");
  EXPECT_STREQ(ZTSignature("static ZTObject* ZTClassFactory::CreateObject(const char*, const ZTClassType*)"),
               "ZTClassFactory::CreateObject(const char*, const ZTClassType*)");
  EXPECT_EQ(ZTSignature(nullptr), nullptr);
}

TEST(ZTWarning, WritesStampedLinesToProtocolAndDebugOutput) {
  WarningCapture capture;
  ZTWarning(nullptr);
  EXPECT_EQ(capture.Text(), "");
  ZTWarning("value %d", 42);
  ZT_WARNING("quoted %s", "text");
  const std::regex line(R"(\[[ 0-9]{2}\.[0-9]{2}\.[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}\] : )");
  const std::string protocol = capture.Protocol();
  EXPECT_TRUE(std::regex_search(protocol, std::regex(R"(\] : value 42\n)")));
  EXPECT_NE(protocol.find(" : \"quoted text\"\n"), std::string::npos);
  EXPECT_EQ(std::distance(std::sregex_iterator(protocol.begin(), protocol.end(), line),
                          std::sregex_iterator()), 2);
  EXPECT_NE(capture.Text().find(" : value 42\n"), std::string::npos);

  // Long texts are cut at 4095 characters.
  capture.Clear();
  ZTWarning("%s", std::string(5000, 'y').c_str());
  EXPECT_NE(capture.Text().find(std::string(4095, 'y') + "\n"), std::string::npos);
  EXPECT_EQ(capture.Text().find(std::string(4096, 'y')), std::string::npos);

  // No protocol name: the file stays untouched, debugger output goes on.
  const std::string before = capture.Protocol();
  ZTReportExcept::SetProtocolName(nullptr);
  EXPECT_STREQ(ZTReportExcept::GetProtocolName(), "");
  capture.Clear();
  ZTWarning("silent");
  EXPECT_TRUE(capture.Contains("silent"));
  ZTReportExcept::SetProtocolName(capture.ProtocolPath().c_str());
  EXPECT_EQ(capture.Protocol(), before);

  // An unwritable protocol file is ignored.
  ZTReportExcept::SetProtocolName("/nonexistent-dir/zt.log");
  EXPECT_NO_THROW(ZTWarning("nowhere"));
  ZTReportExcept::SetProtocolName(std::string(300, 'p').c_str());
  EXPECT_EQ(std::strlen(ZTReportExcept::GetProtocolName()), 255u);
}

namespace {
class CountingReporter : public ZTReportExcept {
 public:
  bool Report(const ZTExcept* _Ex) override {
    ++m_Calls;
    m_Last = _Ex ? _Ex->GetMsg(0) : "";
    return true;
  }
  int m_Calls = 0;
  std::string m_Last;
};
}  // namespace

TEST(ZTReportExcept, ReporterCanBeReplacedAndSwitchedOff) {
  WarningCapture capture;
  CountingReporter counting;
  ZTReportExcept* previous = ZTExcept::SetReporter(&counting);
  ASSERT_NE(previous, nullptr);
  ZTExcept ex;
  ex.PushMsg("first");
  ex.Report();
  EXPECT_EQ(counting.m_Calls, 1);
  EXPECT_EQ(counting.m_Last, "first");
  EXPECT_EQ(ZTExcept::SetReporter(nullptr), &counting);
  ex.Report();  // no reporter: nothing happens
  EXPECT_EQ(counting.m_Calls, 1);
  ZTExcept::SetReporter(previous);

  // The default reporter writes each line with context to the protocol.
  testing::internal::CaptureStderr();
  ex.PushMsg("second");
  ex.SetContext("r()", "F", 9);
  ex.Report();
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err, "General exception: second {F(9):r()}\nGeneral exception: first {F(9):r()}\n");
  EXPECT_NE(capture.Protocol().find(" : General exception: second {F(9):r()}\n"), std::string::npos);
}
