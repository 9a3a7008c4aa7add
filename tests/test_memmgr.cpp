#include <cinttypes>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

#if defined(__SANITIZE_ADDRESS__)
#define ZT_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZT_TEST_ASAN 1
#endif
#endif

// An object of the object category with some payload.
class ZTMemTestObject : public ZTObject {
  ZT_DECLARE_CLASS(ZTMemTestObject, ZTObjectCreator)
 public:
  char m_Payload[40] = {};
};
ZT_IMPLEMENT_CLASS(ZTMemTestObject, ZTObject, ZTObjectCreator, nullptr)

namespace {

// Page accounting on x86-64: 16-byte page header and block headers, data sizes
// in steps of 16 (the pointers must be 16-byte aligned).
constexpr unsigned PageSize = 65536;
constexpr unsigned HeaderSize = 16;
constexpr unsigned EmptyPageFree = 65504;
constexpr unsigned MaxPooled = EmptyPageFree;

// Categories left to applications, so the exact page layout is ours alone.
constexpr int CatA = 5;
constexpr int CatB = 6;
constexpr int CatC = 7;

std::uintptr_t Address(const void* _P) { return reinterpret_cast<std::uintptr_t>(_P); }

std::string Hex(const void* _P) {
  char text[32];
  std::snprintf(text, sizeof text, "0x%.8" PRIxPTR, Address(_P));
  return text;
}

std::string Message(const ZTExcept& _Ex) {
  char text[256] = {};
  _Ex.GetErrorMessage(text, sizeof text, 0, false);
  return text;
}

// The entry of a pointer handed out by Alloc, found by walking the category.
bool FindEntry(int _Category, const void* _Data, ZTMemEntryInfo& _Info, int* _Page = nullptr) {
  for (int page = 0; page < ZTMemMgr::GetPageCount(_Category); ++page)
    for (bool ok = ZTMemMgr::GetFirstEntry(_Category, page, _Info); ok;
         ok = ZTMemMgr::GetNextEntry(_Category, page, _Info))
      if (_Info.GetBuffer() == _Data) {
        if (_Page) *_Page = page;
        return true;
      }
  return false;
}

// (size, in use) of every block of a page, in page order.
std::vector<std::pair<unsigned, bool>> Layout(int _Category, int _Page) {
  std::vector<std::pair<unsigned, bool>> blocks;
  ZTMemEntryInfo info;
  for (bool ok = ZTMemMgr::GetFirstEntry(_Category, _Page, info); ok;
       ok = ZTMemMgr::GetNextEntry(_Category, _Page, info))
    blocks.emplace_back(info.GetSize(), info.IsInUse());
  return blocks;
}

unsigned Remaining(int _Category, int _Page) {
  ZTMemPageInfo info;
  ZTMemMgr::GetPageInfo(_Category, _Page, info);
  return info.GetRemaining();
}

// Usage counts of the library's own categories.
std::vector<int> LibraryUsage() {
  std::vector<int> counts;
  for (int category = ZTMemCatBinary; category <= ZTMemCatContainer; ++category)
    counts.push_back(ZTMemMgr::GetUsageCount(category));
  return counts;
}

std::string DumpText() {
  WarningCapture capture;
  ZTMemMgr::Dump();
  return capture.Text();
}

// The dump's lines without their time stamps.
std::vector<std::string> DumpLines() {
  std::vector<std::string> lines;
  std::istringstream text(DumpText());
  for (std::string line; std::getline(text, line);)
    lines.push_back(line.substr(line.find("] : ") + 4));
  return lines;
}

void ExpectEmpty(int _Category) {
  EXPECT_EQ(ZTMemMgr::GetUsageCount(_Category), 0);
  EXPECT_EQ(ZTMemMgr::GetPageCount(_Category), 0);
}

// Released during static destruction, after every test.
// Made during static construction, so that the leak check at the end of the
// tests counts it as present from the start.
struct ReleasedAtExit {
  ZTObject* m_Object = new ZTMemTestObject;
  ReleasedAtExit() { m_Object->Attach(); }
  ~ReleasedAtExit() {
    if (m_Object) m_Object->Detach();
  }
} s_ReleasedAtExit;

}  // namespace

TEST(ZTMemMgr, BlocksAreAlignedAndRoundedToSixteen) {
  for (unsigned size : {0u, 1u, 15u, 16u, 17u, 24u, 31u, 32u, 33u, 100u, 1000u, 65000u, MaxPooled}) {
    void* p = ZTMemMgr::Alloc(CatA, size);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(Address(p) % 16, 0u) << size;
    std::memset(p, 0xA5, size);  // every requested byte is usable
    ZTMemEntryInfo info;
    ASSERT_TRUE(FindEntry(CatA, p, info)) << size;
    const unsigned expected = size < 16 ? 16 : (size + 15) / 16 * 16;
    EXPECT_EQ(info.GetSize(), expected) << size;
    EXPECT_EQ(static_cast<char*>(info.GetBuffer()) - reinterpret_cast<char*>(info.GetPage()),
              static_cast<std::ptrdiff_t>(info.GetOffset() + HeaderSize));
    ZTMemMgr::Free(CatA, p);
  }
  ExpectEmpty(CatA);
  // The same in the library's object category, whatever else lives there.
  void* p = ZTMemMgr::Alloc(ZTMemCatObject, 1);
  ZTMemEntryInfo info;
  ASSERT_TRUE(FindEntry(ZTMemCatObject, p, info));
  EXPECT_EQ(info.GetSize(), 16u);
  ZTMemMgr::Free(ZTMemCatObject, p);
}

TEST(ZTMemMgr, PageAccountingOfOneSmallBlock) {
  ExpectEmpty(CatC);
  void* p = ZTMemMgr::Alloc(CatC, 1);
  EXPECT_EQ(ZTMemMgr::GetUsageCount(CatC), 1);
  ASSERT_EQ(ZTMemMgr::GetPageCount(CatC), 1);

  ZTMemPageInfo page;
  EXPECT_TRUE(ZTMemMgr::GetPageInfo(CatC, 0, page));
  EXPECT_EQ(page.GetSize(), PageSize);
  EXPECT_EQ(page.GetType(), ZTMemObject);
  EXPECT_EQ(page.GetRemaining(), EmptyPageFree - 32);  // 16 data bytes and one header

  ZTMemEntryInfo info;
  ASSERT_TRUE(ZTMemMgr::GetFirstEntry(CatC, 0, info));
  EXPECT_EQ(info.GetBuffer(), p);
  EXPECT_EQ(info.GetOffset(), 16u);
  EXPECT_EQ(info.GetSize(), 16u);
  EXPECT_EQ(info.GetPage(), page.GetAddress());
  ASSERT_TRUE(ZTMemMgr::GetNextEntry(CatC, 0, info));
  EXPECT_FALSE(info.IsInUse());
  EXPECT_EQ(info.GetSize(), EmptyPageFree - 32);
  EXPECT_EQ(info.GetOffset(), 48u);
  EXPECT_FALSE(ZTMemMgr::GetNextEntry(CatC, 0, info));

  ZTMemMgr::Free(CatC, p);
  ExpectEmpty(CatC);  // the page went back at once
  EXPECT_EQ(Catch<ZTExceptMemory>([&] { ZTMemMgr::GetPageInfo(CatC, 0, page); }).GetErrorCode(),
            ZTMemErrAccessInvalidPage);
}

TEST(ZTMemMgr, NextFitSplitsAndMergesNeighbours) {
  ExpectEmpty(CatA);
  char* a = static_cast<char*>(ZTMemMgr::Alloc(CatA, 32));
  char* b = static_cast<char*>(ZTMemMgr::Alloc(CatA, 32));
  char* c = static_cast<char*>(ZTMemMgr::Alloc(CatA, 32));
  EXPECT_EQ(b, a + 32 + HeaderSize);  // consecutive requests are neighbours
  EXPECT_EQ(c, b + 32 + HeaderSize);
  const unsigned tail = EmptyPageFree - 3 * (32 + HeaderSize);
  EXPECT_EQ(Remaining(CatA, 0), tail);

  ZTMemMgr::Free(CatA, b);
  using L = std::vector<std::pair<unsigned, bool>>;
  EXPECT_EQ(Layout(CatA, 0), (L{{32, true}, {32, false}, {32, true}, {tail, false}}));
  EXPECT_EQ(Remaining(CatA, 0), tail + 32);

  // Next fit goes on behind the last allocation instead of refilling the hole.
  char* d = static_cast<char*>(ZTMemMgr::Alloc(CatA, 32));
  EXPECT_EQ(d, c + 32 + HeaderSize);

  // Freeing a merges it with the hole behind it.
  ZTMemMgr::Free(CatA, a);
  EXPECT_EQ(Layout(CatA, 0),
            (L{{32 + HeaderSize + 32, false}, {32, true}, {32, true}, {tail - 48, false}}));

  // Exact fits take the whole block. Filling the tail moves the rover to the
  // page end, so the next search starts at the first block again, and a
  // request rounded up to 80 takes the merged hole.
  char* rest = static_cast<char*>(ZTMemMgr::Alloc(CatA, tail - 48));
  EXPECT_EQ(rest, d + 32 + HeaderSize);
  EXPECT_EQ(Remaining(CatA, 0), 80u);
  char* e = static_cast<char*>(ZTMemMgr::Alloc(CatA, 70));
  EXPECT_EQ(e, a);
  EXPECT_EQ(Layout(CatA, 0), (L{{80, true}, {32, true}, {32, true}, {tail - 48, true}}));
  EXPECT_EQ(Remaining(CatA, 0), 0u);

  // The page is full: the next request opens a second page.
  void* f = ZTMemMgr::Alloc(CatA, 16);
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatA), 2);
  ZTMemEntryInfo info;
  int page = -1;
  ASSERT_TRUE(FindEntry(CatA, f, info, &page));
  EXPECT_EQ(page, 1);
  ZTMemMgr::Free(CatA, f);
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatA), 1);

  // Released in any order, everything merges back and the page goes.
  for (char* p : {c, e, rest, d}) ZTMemMgr::Free(CatA, p);
  ExpectEmpty(CatA);
}

TEST(ZTMemMgr, NextFitSearchesBackwardFromTheRover) {
  ExpectEmpty(CatA);
  std::vector<void*> blocks;
  for (int i = 0; i < 4; ++i) blocks.push_back(ZTMemMgr::Alloc(CatA, 64));
  // Consume the tail so that the rover sits right behind the fourth block...
  void* tail = ZTMemMgr::Alloc(CatA, EmptyPageFree - 4 * (64 + HeaderSize) - HeaderSize - 32);
  ZTMemMgr::Free(CatA, blocks[0]);  // a 64-byte hole at the start
  // ...where a 32-byte free block is left: too small for 64 bytes, so the
  // search turns back from it and finds the hole at the start.
  EXPECT_EQ(ZTMemMgr::Alloc(CatA, 64), blocks[0]);
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatA), 1);
  for (void* p : blocks) ZTMemMgr::Free(CatA, p);
  ZTMemMgr::Free(CatA, tail);
  ExpectEmpty(CatA);
}

TEST(ZTMemMgr, LargeRequestsComeFromTheHeap) {
  ExpectEmpty(CatB);
  const int blocks = ZTMemMgr::GetBlockCount();
  for (unsigned size : {MaxPooled + 1, 65518u, 65519u, 1u << 20}) {
    char* p = static_cast<char*>(ZTMemMgr::Alloc(CatB, size));
    EXPECT_EQ(Address(p) % 16, 0u);
    p[0] = 1;
    p[size - 1] = 2;
    EXPECT_EQ(ZTMemMgr::GetUsageCount(CatB), 1);
    EXPECT_EQ(ZTMemMgr::GetPageCount(CatB), 0) << size;
    ZTMemMgr::Free(CatB, p);
    ExpectEmpty(CatB);
  }
  // The largest pooled request fills a page of its own.
  void* full = ZTMemMgr::Alloc(CatB, MaxPooled);
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatB), 1);
  EXPECT_EQ(Remaining(CatB, 0), 0u);
  ZTMemMgr::Free(CatB, full);
  ExpectEmpty(CatB);
  EXPECT_GE(ZTMemMgr::GetBlockCount(), blocks);
}

TEST(ZTMemMgr, EmptyPagesAreReleasedAndLaterPagesRenumbered) {
  ExpectEmpty(CatB);
  void* p[3];
  const void* pages[3];
  for (int i = 0; i < 3; ++i) {
    p[i] = ZTMemMgr::Alloc(CatB, 40000);  // one to a page
    ZTMemPageInfo info;
    ZTMemMgr::GetPageInfo(CatB, i, info);
    pages[i] = info.GetAddress();
  }
  ASSERT_EQ(ZTMemMgr::GetPageCount(CatB), 3);

  ZTMemMgr::Free(CatB, p[1]);
  ASSERT_EQ(ZTMemMgr::GetPageCount(CatB), 2);
  EXPECT_EQ(ZTMemMgr::GetUsageCount(CatB), 2);
  ZTMemPageInfo info;
  ZTMemMgr::GetPageInfo(CatB, 1, info);
  EXPECT_EQ(info.GetAddress(), pages[2]);
  ZTMemEntryInfo entry;
  ASSERT_TRUE(ZTMemMgr::GetFirstUsedEntry(CatB, 1, entry));
  EXPECT_EQ(entry.GetBuffer(), p[2]);
  // The last page was the current one and still is, under its new number.
  void* small = ZTMemMgr::Alloc(CatB, 100);
  int page = -1;
  ASSERT_TRUE(FindEntry(CatB, small, entry, &page));
  EXPECT_EQ(page, 1);
  ZTMemMgr::Free(CatB, small);
  // The renumbered page still releases its block.
  ZTMemMgr::Free(CatB, p[2]);
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatB), 1);
  ZTMemMgr::Free(CatB, p[0]);
  ExpectEmpty(CatB);
}

TEST(ZTMemMgr, PagesAreTriedCurrentBeforeAfterThenFromTheFirst) {
  ExpectEmpty(CatB);
  std::vector<void*> blocks;
  auto pageOf = [&](unsigned _Size) {
    blocks.push_back(ZTMemMgr::Alloc(CatB, _Size));
    ZTMemEntryInfo info;
    int page = -1;
    EXPECT_TRUE(FindEntry(CatB, blocks.back(), info, &page));
    return page;
  };
  // Free bytes per page after each step in the comments.
  EXPECT_EQ(pageOf(40000), 0);  // 25488
  EXPECT_EQ(pageOf(65000), 1);  // 25488 480
  EXPECT_EQ(pageOf(40000), 2);  // 25488 480 25488
  EXPECT_EQ(pageOf(40000), 3);  // 25488 480 25488 25488, the current page
  EXPECT_EQ(pageOf(25472), 3);  // the current page while it has room: ... 0
  void* fill = blocks.back();
  EXPECT_EQ(pageOf(25472), 2);  // the page before, not page 0: 25488 480 0 0
  ZTMemMgr::Free(CatB, fill);   // 25488 480 0 25488, page 2 current
  blocks.erase(blocks.begin() + 4);
  EXPECT_EQ(pageOf(20000), 3);  // the page after, not page 0: 25488 480 0 5472
  EXPECT_EQ(pageOf(20000), 0);  // none near: every page from the first
  for (void* p : blocks) ZTMemMgr::Free(CatB, p);
  ExpectEmpty(CatB);
}

TEST(ZTMemMgr, PageTableGrowsBeyondSixtyFourPages) {
  ExpectEmpty(CatB);
  std::vector<void*> blocks;
  for (int i = 0; i < 70; ++i) blocks.push_back(ZTMemMgr::Alloc(CatB, 40000));
  EXPECT_EQ(ZTMemMgr::GetPageCount(CatB), 70);
  // Each page has room for a small block: the current page (the last) serves.
  void* small = ZTMemMgr::Alloc(CatB, 100);
  ZTMemEntryInfo info;
  int page = -1;
  ASSERT_TRUE(FindEntry(CatB, small, info, &page));
  EXPECT_EQ(page, 69);
  ZTMemMgr::Free(CatB, small);
  for (void* p : blocks) ZTMemMgr::Free(CatB, p);
  ExpectEmpty(CatB);
}

TEST(ZTMemMgr, ErrorsCarryCodeBlockAndType) {
  auto alloc = Catch<ZTExceptMemory>([] { ZTMemMgr::Alloc(8, 10); });
  EXPECT_EQ(alloc.GetErrorCode(), ZTMemErrInvalidBlock);
  EXPECT_EQ(alloc.GetBlock(), 8);
  EXPECT_EQ(alloc.GetMemType(), ZTMemUnknown);
  EXPECT_EQ(Message(alloc), "Alloc:  Invalid memory block (block 8, type Unknown)");
  EXPECT_NE(std::string(alloc.GetMethod()).find("ZTMemMgr::Alloc"), std::string::npos);
  EXPECT_EQ(Catch<ZTExceptMemory>([] { ZTMemMgr::Alloc(-1, 10); }).GetBlock(), -1);

  int local = 0;
  auto release = Catch<ZTExceptMemory>([&] { ZTMemMgr::Free(8, &local); });
  EXPECT_EQ(release.GetErrorCode(), ZTMemErrFreeInvalidBlock);
  EXPECT_EQ(release.GetPointer(), &local);
  EXPECT_EQ(Message(release),
            "Free:   Invalid memory block (pointer " + Hex(&local) + ", block 8, type Unknown)");

  auto access = Catch<ZTExceptMemory>([] { ZTMemMgr::GetPageCount(8); });
  EXPECT_EQ(Message(access), "Access: Invalid block (block 8, type Unknown)");
  EXPECT_NE(std::string(access.GetMethod()).find("ZTMemMgr::GetPageCount"), std::string::npos);
  EXPECT_EQ(Catch<ZTExceptMemory>([] { ZTMemMgr::GetUsageCount(-1); }).GetErrorCode(),
            ZTMemErrAccessInvalidBlock);

  void* p = ZTMemMgr::Alloc(CatA, 10);
  ZTMemPageInfo page;
  ZTMemEntryInfo entry;
  for (int bad : {-1, 1})
    EXPECT_EQ(Message(Catch<ZTExceptMemory>([&] { ZTMemMgr::GetPageInfo(CatA, bad, page); })),
              "Access: Invalid page (block 5, type Object)");
  EXPECT_EQ(Catch<ZTExceptMemory>([&] { ZTMemMgr::GetFirstEntry(CatA, 1, entry); }).GetErrorCode(),
            ZTMemErrAccessInvalidPage);
  // None of this left the lock held.
  ZTMemMgr::Free(CatA, p);
  ExpectEmpty(CatA);
}

TEST(ZTMemMgr, ForeignPointersAreLeftAlone) {
  WarningCapture capture;
  void* own = ZTMemMgr::Alloc(CatA, 48);
  void* other = ZTMemMgr::Alloc(CatB, 48);
  void* large = ZTMemMgr::Alloc(CatB, MaxPooled + 100);
  void* heap = std::malloc(64);
  ASSERT_NE(heap, nullptr);

  ZTMemMgr::Free(CatA, heap);                          // from the general heap
  ZTMemMgr::Free(CatA, other);                         // from another category
  ZTMemMgr::Free(CatA, large);                         // large, of another category
  std::memset(own, 0, 48);
  ZTMemMgr::Free(CatA, static_cast<char*>(own) + 16);  // inside a block
  ZTMemMgr::Free(CatA, static_cast<char*>(own) + 1);   // misaligned
  ZTMemMgr::Free(CatA, nullptr);                       // ignored silently
  EXPECT_EQ(ZTMemMgr::GetUsageCount(CatA), 1);
  EXPECT_EQ(ZTMemMgr::GetUsageCount(CatB), 2);
  EXPECT_TRUE(capture.Contains("ZTMemMgr: Free:   Invalid pointer (pointer " + Hex(heap) +
                               ", block 5, type Object)"));
  EXPECT_TRUE(capture.Contains("Invalid pointer (pointer " + Hex(large)));

  // A second release of the same block changes nothing, whether the block
  // was merged into a free neighbour or not.
  void* keep = ZTMemMgr::Alloc(CatA, 48);  // keeps the page
  void* last = ZTMemMgr::Alloc(CatA, 48);
  ZTMemMgr::Free(CatA, own);
  ZTMemMgr::Free(CatA, last);
  const auto layout = Layout(CatA, 0);
  const unsigned remaining = Remaining(CatA, 0);
  capture.Clear();
  ZTMemMgr::Free(CatA, own);
  EXPECT_TRUE(capture.Contains("Invalid pointer (pointer " + Hex(own)));
  ZTMemMgr::Free(CatA, last);
  EXPECT_TRUE(capture.Contains("Invalid pointer (pointer " + Hex(last)));
  EXPECT_EQ(ZTMemMgr::GetUsageCount(CatA), 1);
  EXPECT_EQ(Layout(CatA, 0), layout);
  EXPECT_EQ(Remaining(CatA, 0), remaining);
  ZTMemMgr::Free(CatA, keep);
  ZTMemMgr::Free(CatB, other);
  ZTMemMgr::Free(CatB, large);
  capture.Clear();
  ZTMemMgr::Free(CatB, large);
  EXPECT_TRUE(capture.Contains("Invalid pointer"));

  std::free(heap);  // still ours: the manager did not hand it to the heap
  ExpectEmpty(CatA);
  ExpectEmpty(CatB);
}

TEST(ZTMemMgr, CategoryTypesAndWalks) {
  EXPECT_EQ(ZTMemMgr::GetBlockType(ZTMemCatString), ZTMemString);
  const char* expected[] = {"Binary", "String", "Object", "Object", "Object", "Object", "Object", "Object"};
  for (int category = 0; category < ZTMemMgr::GetMaxBlockCount(); ++category)
    EXPECT_STREQ(ZTMemMgr::GetBlockTypeString(category), expected[category]);

  void* a = ZTMemMgr::Alloc(CatA, 16);
  void* b = ZTMemMgr::Alloc(CatA, 16);
  void* c = ZTMemMgr::Alloc(CatA, 16);
  ZTMemMgr::Free(CatA, b);
  std::vector<void*> used;
  ZTMemEntryInfo info;
  for (bool ok = ZTMemMgr::GetFirstUsedEntry(CatA, 0, info); ok;
       ok = ZTMemMgr::GetNextUsedEntry(CatA, 0, info))
    used.push_back(info.GetBuffer());
  EXPECT_EQ(used, (std::vector<void*>{a, c}));
  EXPECT_EQ(info.GetBuffer(), c);  // left on the last one found

  ZTMemMgr::Free(CatA, a);
  ASSERT_TRUE(ZTMemMgr::GetFirstUsedEntry(CatA, 0, info));  // skips the free start
  EXPECT_EQ(info.GetBuffer(), c);
  EXPECT_EQ(static_cast<void*>(info.GetObject()), c);  // an "Object" category
  ZTMemEntryInfo blank;
  EXPECT_FALSE(ZTMemMgr::GetNextEntry(CatA, 0, blank));  // no position to go on from
  ZTMemMgr::Free(CatA, c);
  ExpectEmpty(CatA);
}

TEST(ZTMemMgr, DumpNamesObjectsStringsAndBinaryBlocks) {
  auto* object = new ZTMemTestObject;
  object->Attach();
  auto* text = new ZTString("leak me");
  void* binary = ZTMemMgr::Alloc(ZTMemCatBinary, 24);
  void* large = ZTMemMgr::Alloc(ZTMemCatBinary, MaxPooled + 1);

  ZTMemEntryInfo info;
  ASSERT_TRUE(FindEntry(ZTMemCatObject, object, info));
  EXPECT_EQ(info.GetObject(), object);
  EXPECT_EQ(info.GetString(), nullptr);

  const std::string dump = DumpText();
  EXPECT_NE(dump.find("\"ZTMemMgr: allocated objects:\""), std::string::npos);
  EXPECT_NE(dump.find("  Type <Object>, Address <" + Hex(object) +
                      ">, class <ZTMemTestObject>, refcount <1>"),
            std::string::npos)
      << dump;
  EXPECT_NE(dump.find("  Type <Object>, Address <" + Hex(text) + ">, class <ZTString>, refcount <"),
            std::string::npos);
  EXPECT_NE(dump.find(">, 'leak me'"), std::string::npos);
  EXPECT_NE(dump.find("  Type <Binary>, Address <" + Hex(binary) + ">\n"), std::string::npos);
  EXPECT_NE(dump.find("  Type <Binary>, Address <" + Hex(large) + ">\n"), std::string::npos);
  // The closing count equals the number of listed lines.
  std::size_t lines = 0;
  for (std::size_t at = dump.find("  Type <"); at != std::string::npos;
       at = dump.find("  Type <", at + 1))
    ++lines;
  EXPECT_NE(dump.find("\"ZTMemMgr: " + std::to_string(lines) + " objects allocated\""),
            std::string::npos);

  // String blocks whose content is no terminated representation print "(null)".
  char* raw = static_cast<char*>(ZTMemMgr::Alloc(ZTMemCatString, 32));
  std::memset(raw, 'x', 32);
  EXPECT_NE(DumpText().find("  Type <String>, Address <" + Hex(raw) + ">, '(null)'"),
            std::string::npos);
  ZTMemMgr::Free(ZTMemCatString, raw);

  object->Detach();
  delete text;
  ZTMemMgr::Free(ZTMemCatBinary, binary);
  ZTMemMgr::Free(ZTMemCatBinary, large);
  const std::string after = DumpText();
  for (const void* p : {static_cast<void*>(object), static_cast<void*>(text), binary, large})
    EXPECT_EQ(after.find(Hex(p)), std::string::npos);
}

TEST(ZTMemMgr, NothingLeftAfterTheObjectsAreReleased) {
  const std::vector<int> before = LibraryUsage();
  const std::vector<std::string> dumpBefore = DumpLines();
  {
    auto* object = new ZTMemTestObject;
    object->Attach();
    auto* array = new ZTPArray;  // container category, slots in the binary one
    array->Attach();
    array->Add(object);
    auto* text = new ZTString("abc");
    ZTString copy(*text);  // shares the representation
    copy += "def";         // now has its own
    array->Add(text);
    EXPECT_NE(LibraryUsage(), before);
    const std::string dump = DumpText();
    EXPECT_NE(dump.find("'abcdef'"), std::string::npos);
    EXPECT_NE(dump.find("class <ZTPArray>"), std::string::npos);
    object->Detach();
    array->Detach();
  }
  EXPECT_EQ(LibraryUsage(), before);
  EXPECT_EQ(DumpLines(), dumpBefore);
}

TEST(ZTMemMgr, TwoThreadsShareTheManager) {
  ExpectEmpty(CatA);
  auto worker = [](unsigned _Seed) {
    std::vector<void*> live;
    for (int i = 0; i < 20000; ++i) {
      _Seed = _Seed * 1103515245u + 12345u;
      if (live.size() < 64 && (_Seed >> 16) % 3 != 0) {
        const unsigned size = 16 + (_Seed >> 8) % 400;
        char* p = static_cast<char*>(ZTMemMgr::Alloc(CatA, size));
        p[0] = p[size - 1] = static_cast<char>(i);
        live.push_back(p);
      } else if (!live.empty()) {
        const std::size_t at = (_Seed >> 4) % live.size();
        ZTMemMgr::Free(CatA, live[at]);
        live[at] = live.back();
        live.pop_back();
      }
    }
    for (void* p : live) ZTMemMgr::Free(CatA, p);
  };
  std::thread first(worker, 1u), second(worker, 2u);
  first.join();
  second.join();
  ExpectEmpty(CatA);
}

TEST(ZTMemMgr, UsableDuringStaticDestruction) {
  // The destructor of s_ReleasedAtExit releases this object after main; a
  // crash or a hang there fails the test run.
  ASSERT_NE(s_ReleasedAtExit.m_Object, nullptr);
  EXPECT_EQ(s_ReleasedAtExit.m_Object->GetRefCount(), 1);
}

TEST(ZTMemMgrAsan, OverrunsAndStaleUsesOfPooledBlocksAreCaught) {
#ifndef ZT_TEST_ASAN
  GTEST_SKIP() << "needs the AddressSanitizer build";
#else
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  void* keep = ZTMemMgr::Alloc(CatA, 64);  // neighbours stay in use
  auto* p = static_cast<volatile char*>(ZTMemMgr::Alloc(CatA, 20));
  void* after = ZTMemMgr::Alloc(CatA, 64);
  p[19] = 1;
  EXPECT_DEATH(p[20] = 1, "use-after-poison");    // the rounding slack
  EXPECT_DEATH(p[32] = 1, "use-after-poison");    // the next block's header
  EXPECT_DEATH((void)p[-1], "use-after-poison");  // its own header
  auto* object = new ZTMemTestObject;
  object->Attach();
  volatile char* payload = object->m_Payload;
  EXPECT_DEATH(payload[sizeof object->m_Payload] = 1, "use-after-poison");  // behind the object
  object->Detach();
  ZTMemMgr::Free(CatA, const_cast<char*>(p));
  EXPECT_DEATH((void)p[0], "use-after-poison");  // a released block
  ZTMemMgr::Free(CatA, keep);
  ZTMemMgr::Free(CatA, after);
#endif
}
