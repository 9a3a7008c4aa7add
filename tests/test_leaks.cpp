// Every test program run ends with a leak check: once the tests' objects are
// released, the library's own memory categories hold what they held before.
#include <string>

#include "test_support.h"

namespace {

// Strings, objects, values and containers. Raw slot and bucket memory (category
// 0) is left out: the library-wide hash tables keep a bucket once it was used,
// and what belongs to a leaked array already shows as its container.
constexpr int FirstCategory = ZTMemCatString;
constexpr int LastCategory = ZTMemCatContainer;

class LeakCheck : public ::testing::Environment {
 public:
  void SetUp() override {
    WarmUp();
    for (int c = FirstCategory; c <= LastCategory; ++c) m_Before[c] = ZTMemMgr::GetUsageCount(c);
  }

  void TearDown() override {
    bool leaked = false;
    for (int c = FirstCategory; c <= LastCategory; ++c)
      leaked |= ZTMemMgr::GetUsageCount(c) != m_Before[c];
    if (!leaked) return;
    zt_test::WarningCapture capture;
    ZTMemMgr::Dump();
    std::string counts;
    for (int c = FirstCategory; c <= LastCategory; ++c)
      counts += " " + std::to_string(m_Before[c]) + "->" + std::to_string(ZTMemMgr::GetUsageCount(c));
    ADD_FAILURE() << "library memory still allocated after the tests (category counts" << counts
                  << "):\n" << capture.Text();
  }

 private:
  // Library-wide objects made on first use and kept until unload are not leaks:
  // make them before the first count.
  static void WarmUp() {
    (void)ZTString::Empty();
    (void)ZTString::Space();
    (void)ZTValue::NullValue();
    ZTIntlFormat& intl = ZTIntlFormat::IntlFormat();
    (void)intl.ShortDateFormat();
    (void)intl.ShortTimeFormat();
    ZTIntlFormat::SetProgramRegKeyName("warm");  // the setting keeps its block
    ZTIntlFormat::SetProgramRegKeyName(nullptr);
    ZTStringPool pool;  // its lookup key is shared by all pools
    ZTString* pooled = nullptr;
    pool.UseString("warm", pooled);
    pool.ReleaseString(pooled);
    ZTString text("warm");
    text.SetUseDirtyFunction(true);
    text = "up";  // creates the keeper of original values
    text.Clean();
  }

  int m_Before[LastCategory + 1] = {};
};

[[maybe_unused]] ::testing::Environment* const s_LeakCheck =
    ::testing::AddGlobalTestEnvironment(new LeakCheck);

}  // namespace

TEST(ZTMemMgrLeakCheck, DumpListsALiveObjectAndForgetsItWhenReleased) {
  zt_test::WarningCapture capture;
  const int before = ZTMemMgr::GetUsageCount(ZTMemCatValue);
  auto* text = new ZTString("leaky");
  text->Attach();
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatValue), before + 1);
  ZTMemMgr::Dump();
  EXPECT_TRUE(capture.Contains("class <ZTString>, refcount <1>"));
  text->Detach();
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatValue), before);
}
