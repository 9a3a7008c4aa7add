// Pooled category allocator: 64 KiB pages carved next-fit, large requests from
// the general heap, live counts, page walks and the leak dump.
#include "ztmemmgr.h"

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <map>
#include <new>
#include <utility>
#include <vector>

#include "platform/ztplatform.h"
#include "ztobject.h"

#if defined(__SANITIZE_ADDRESS__)
#define ZT_MEM_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZT_MEM_ASAN 1
#endif
#endif

#ifdef ZT_MEM_ASAN
#include <sanitizer/asan_interface.h>
// Pages hide their blocks from AddressSanitizer, so the allocator keeps every
// byte that is not the data of a live block poisoned (page header, block
// headers, free space, the slack behind a request). The code that works on
// headers is exempt from the checks; everything else, including the library's
// own classes, is caught when it strays out of its block.
#define ZT_MEM_INTERNAL __attribute__((no_sanitize_address))
#else
#define ZT_MEM_INTERNAL
#define ASAN_POISON_MEMORY_REGION(_Addr, _Size) ((void)(_Addr), (void)(_Size))
#define ASAN_UNPOISON_MEMORY_REGION(_Addr, _Size) ((void)(_Addr), (void)(_Size))
#endif

// The page classes are internal: hidden, so that the compiler may inline and
// call them directly instead of through the shared library's symbol table.
#define ZT_MEM_HIDDEN [[gnu::visibility("hidden")]]

namespace {

// Page layout. The 32-bit layout had an 8-byte page header and 10-byte block
// headers, so data came out only 2-byte aligned. Here every data pointer must be
// 16-byte aligned (operator new of objects), so the page header (its next-fit
// pointer is 8 bytes) and every block header take a 16-byte slot, and data sizes
// are multiples of 16. The block header keeps its ten bytes of fields; the rest
// of the slot is padding. Everything else follows from these numbers:
//   empty page: 65536 - 16 - 16 = 65504 free bytes (was 65518), which is also
//   the largest pooled request; a 1-byte request uses 16 data bytes and lowers
//   the free bytes by 32 (was 26); minimum request and split rest stay 16.
constexpr unsigned Granule = 16;
constexpr unsigned PageSize = 65536;
constexpr unsigned PageHeaderSize = 16;
constexpr unsigned HeaderSize = 16;
constexpr unsigned MinSize = 16;
constexpr unsigned EmptyFree = PageSize - PageHeaderSize - HeaderSize;
constexpr unsigned MaxPooled = EmptyFree;

constexpr unsigned RoundUp(unsigned _Size) { return (_Size + Granule - 1) & ~(Granule - 1); }

constexpr int TableStep = 64;     // page table capacity: starts here, grows by it
constexpr int MaxPages = 0x7FFF;  // the page index is 16-bit signed

constexpr std::uint8_t LiveMarker = 1;

ZTMemInfo CategoryType(int _Category) {
  switch (_Category) {
    case 0: return ZTMemBinary;
    case 1: return ZTMemString;
    default: return ZTMemObject;
  }
}

bool IsCategory(int _Category) { return _Category >= 0 && _Category < ZTMemMgr::MaxBlockCount; }

void Poison(const void* _Addr, std::size_t _Size) { ASAN_POISON_MEMORY_REGION(_Addr, _Size); }
void Unpoison(const void* _Addr, std::size_t _Size) { ASAN_UNPOISON_MEMORY_REGION(_Addr, _Size); }

}  // namespace

// Header in front of every block's data; offset 0 marks a large allocation.
struct ZT_MEM_HIDDEN alignas(Granule) ZTMemBlockHeader {
  std::uint16_t m_Offset;    // from the page start
  std::uint8_t m_Marker;     // LiveMarker while the header heads a block
  std::uint8_t m_Reserved1;
  std::uint16_t m_PrevSize;  // data size of the previous block, 0 for the first
  std::uint8_t m_InUse;
  std::uint8_t m_Reserved2;
  std::uint16_t m_Size;      // data bytes

  char* Data() { return reinterpret_cast<char*>(this + 1); }
};
static_assert(sizeof(ZTMemBlockHeader) == HeaderSize, "block header must fill one slot");

// One 64 KiB page: this header, then a chain of blocks up to the page end.
class ZT_MEM_HIDDEN alignas(Granule) ZTMemPage {
 public:
  ZT_MEM_INTERNAL static ZTMemPage* Make(void* _Memory, int _Index);

  ZT_MEM_INTERNAL int GetIndex() const { return m_Index; }
  ZT_MEM_INTERNAL void SetIndex(int _Index) { m_Index = static_cast<std::int16_t>(_Index); }
  ZT_MEM_INTERNAL unsigned GetRemaining() const { return m_Remaining; }
  ZT_MEM_INTERNAL bool IsEmpty() const { return m_Remaining == EmptyFree; }

  // Next fit. The rover itself is tried first: it is the block behind the last
  // allocation, or a released block merged with it, so it serves most requests.
  ZT_MEM_INTERNAL void* Alloc(unsigned _Size) {
    if (_Size > m_Remaining) return nullptr;
    ZTMemBlockHeader* block = m_NextFit;
    if (!block || block->m_InUse || block->m_Size < _Size) {
      block = Find(_Size);
      if (!block) return nullptr;
    }
    return Take(block, _Size);
  }
  ZT_MEM_INTERNAL void Free(ZTMemBlockHeader* _Header);

  ZTMemBlockHeader* First() {
    return reinterpret_cast<ZTMemBlockHeader*>(reinterpret_cast<char*>(this) + PageHeaderSize);
  }
  ZT_MEM_INTERNAL ZTMemBlockHeader* Next(ZTMemBlockHeader* _Header) {
    char* next = _Header->Data() + _Header->m_Size;
    return next < reinterpret_cast<char*>(this) + PageSize ? reinterpret_cast<ZTMemBlockHeader*>(next)
                                                            : nullptr;
  }
  ZT_MEM_INTERNAL ZTMemBlockHeader* Prev(ZTMemBlockHeader* _Header) {
    if (_Header->m_Offset == PageHeaderSize) return nullptr;
    return reinterpret_cast<ZTMemBlockHeader*>(reinterpret_cast<char*>(_Header) - HeaderSize -
                                               _Header->m_PrevSize);
  }
  // The page a header claims to lie in.
  ZT_MEM_INTERNAL static ZTMemPage* Of(ZTMemBlockHeader* _Header) {
    return reinterpret_cast<ZTMemPage*>(reinterpret_cast<char*>(_Header) - _Header->m_Offset);
  }
  // True when the header reads like that of a block in use of some page. It is
  // checked before the page it names is read, so released heap memory (a
  // double release) or a foreign pointer never corrupts a page's accounting.
  ZT_MEM_INTERNAL static bool LooksUsed(const ZTMemBlockHeader* _Header) {
    const unsigned offset = _Header->m_Offset;
    return offset >= PageHeaderSize && offset % Granule == 0 && _Header->m_Marker == LiveMarker &&
           _Header->m_InUse && offset + HeaderSize + _Header->m_Size <= PageSize;
  }

 private:
  ZTMemPage() = default;
  ZT_MEM_INTERNAL ZTMemBlockHeader* Find(unsigned _Size);
  ZT_MEM_INTERNAL void* Take(ZTMemBlockHeader* _Block, unsigned _Size);
  ZT_MEM_INTERNAL void Absorb(ZTMemBlockHeader* _Into, ZTMemBlockHeader* _Gone);
  ZT_MEM_INTERNAL ZTMemBlockHeader* MakeHeader(char* _At, unsigned _PrevSize, unsigned _Size);

  std::int16_t m_Index = 0;
  std::uint16_t m_Remaining = EmptyFree;
  ZTMemBlockHeader* m_NextFit = nullptr;  // where the next search starts
};
static_assert(sizeof(ZTMemPage) == PageHeaderSize, "page header must fill one slot");

// The pages of one category, with its counts and its large allocations.
class ZT_MEM_HIDDEN ZTMemBlock {
 public:
  // Takes a page table of TableStep empty entries.
  ZTMemBlock(ZTMemInfo _Type, ZTMemPage** _Pages)
      : m_Pages(_Pages), m_Capacity(TableStep), m_Type(_Type) {}
  ~ZTMemBlock() = delete;  // blocks live as long as the process
  ZTMemBlock(const ZTMemBlock&) = delete;
  ZTMemBlock& operator=(const ZTMemBlock&) = delete;

  ZTMemInfo GetType() const { return m_Type; }
  int GetPageCount() const { return m_PageCount.load(std::memory_order_relaxed); }
  int GetUsageCount() const { return m_UsageCount.load(std::memory_order_relaxed); }
  ZTMemPage* GetPage(int _Page) const {
    return _Page >= 0 && _Page < GetPageCount() ? m_Pages[_Page] : nullptr;
  }

  // Under the manager's lock. Null when no memory could be had.
  void* Alloc(unsigned _Size) {
    void* data;
    if (_Size <= MaxPooled) {
      const unsigned size = RoundUp(_Size);
      data = m_CurrentPage ? m_CurrentPage->Alloc(size) : nullptr;
      if (!data) data = AllocElsewhere(size);
      if (data) Unpoison(data, _Size);  // the rounding slack stays poisoned
    } else {
      data = AllocLarge(_Size);
    }
    if (data) AddUsage(1);
    return data;
  }
  // Under the manager's lock. False when the pointer is not memory of this block.
  ZT_MEM_INTERNAL bool Free(void* _Pointer);

  // Under the manager's lock: the large allocations (data, size).
  std::vector<std::pair<void*, std::size_t>> GetLargeAllocations() const {
    return {m_Large.begin(), m_Large.end()};
  }

 private:
  void* AllocElsewhere(unsigned _Size);
  void* AllocLarge(std::size_t _Size);
  ZT_MEM_INTERNAL bool FreeLarge(void* _Pointer);
  ZTMemPage* AddPage();
  void RemovePage(int _Index);
  void AddUsage(int _Delta) {
    m_UsageCount.store(GetUsageCount() + _Delta, std::memory_order_relaxed);
  }
  void SetPageCount(int _Count) { m_PageCount.store(_Count, std::memory_order_relaxed); }

  ZTMemPage** m_Pages;
  int m_Capacity;
  std::atomic<int> m_PageCount{0};   // written under the lock, read by the walks
  std::atomic<int> m_UsageCount{0};
  ZTMemPage* m_CurrentPage = nullptr;  // tried first
  // The memory of the last page released, kept for the next page: a category
  // whose only block comes and goes would otherwise take a page from the heap
  // and give it back on every allocation. It is no page: counts and walks do
  // not see it.
  void* m_SparePage = nullptr;
  ZTMemInfo m_Type;
  std::map<void*, std::size_t> m_Large;  // data address -> requested size
};

namespace {

void* NewPageMemory() { return ::operator new(PageSize, std::align_val_t(Granule), std::nothrow); }

void DeletePageMemory(void* _Memory) {
  Unpoison(_Memory, PageSize);
  ::operator delete(_Memory, std::align_val_t(Granule));
}

// The manager's state. Creators register, and may allocate, while any
// translation unit or library is statically constructed, and objects are
// released during static destruction, in an order nobody controls. So the state
// is constant-initialised (ready before the first constructor runs) and never
// destroyed (still there after the last destructor); the system takes the
// pages back at exit.
struct MemMgrState {
  zt_platform::CriticalSection m_Lock;
  std::atomic<ZTMemBlock*> m_Blocks[ZTMemMgr::MaxBlockCount] = {};
};

union MemMgrInstance {
  constexpr MemMgrInstance() : m_State() {}
  ~MemMgrInstance() {}
  MemMgrState m_State;
};

MemMgrInstance s_MemMgr;

MemMgrState& State() { return s_MemMgr.m_State; }

ZTMemBlock* BlockOf(int _Category) {
  return State().m_Blocks[_Category].load(std::memory_order_acquire);
}

// Under the lock: the category's block, made on first use (null when it cannot be).
ZTMemBlock* MakeBlock(int _Category) {
  ZTMemBlock* block = State().m_Blocks[_Category].load(std::memory_order_relaxed);
  if (block) return block;
  ZTMemPage** table = new (std::nothrow) ZTMemPage*[TableStep]();
  if (!table) return nullptr;
  block = new (std::nothrow) ZTMemBlock(CategoryType(_Category), table);
  if (!block) {
    delete[] table;
    return nullptr;
  }
  State().m_Blocks[_Category].store(block, std::memory_order_release);
  return block;
}

// Failures are rare: kept out of line, off the allocation paths.
[[noreturn, gnu::cold, gnu::noinline]] void Raise(const char* _Func, int _Line,
                                                  ZTMemErrorCode _Code, int _Category,
                                                  ZTMemInfo _Type, const void* _Pointer = nullptr) {
  ZTExceptMemory ex(_Code, _Category, _Type, _Pointer);
  ex.SetContext(ZTSignature(_Func), __FILE__, _Line);
  ex.ThrowIt();
}

// A pointer that is not memory of its category is neither put into a page nor
// handed to the heap; the wrong call is reported.
[[gnu::cold, gnu::noinline]] void ReportForeign(int _Category, const void* _Pointer) {
  char text[160];
  const ZTExceptMemory ex(ZTMemErrFreeInvalidPointer, _Category, CategoryType(_Category), _Pointer);
  if (ex.GetErrorMessage(text, sizeof text, 0, false)) ZTWarning("ZTMemMgr: %s", text);
}

// The text of a string representation ({refcount, shareable, pad, length,
// capacity} then the characters) in a data block of _Size bytes, or null when
// the block holds no terminated text of that length.
ZT_MEM_INTERNAL const char* RepresentationText(const void* _Data, std::size_t _Size) {
  constexpr std::size_t RepHeader = 16, LengthAt = 8;
  if (!_Data || _Size <= RepHeader) return nullptr;
  const char* data = static_cast<const char*>(_Data);
  const std::uint32_t length = *reinterpret_cast<const std::uint32_t*>(data + LengthAt);
  if (length >= _Size - RepHeader || data[RepHeader + length] != '\0') return nullptr;
  return data + RepHeader;
}

// The block of a category named to a walk (null while the category is unused);
// _Func is the walk's own signature, for the exception's context.
ZTMemBlock* CheckedBlock(int _Category, const char* _Func) {
  if (!IsCategory(_Category))
    Raise(_Func, __LINE__, ZTMemErrAccessInvalidBlock, _Category, ZTMemUnknown);
  return BlockOf(_Category);
}

ZTMemPage* CheckedPage(int _Category, int _Page, const char* _Func) {
  ZTMemBlock* block = CheckedBlock(_Category, _Func);
  ZTMemPage* page = block ? block->GetPage(_Page) : nullptr;
  if (!page) Raise(_Func, __LINE__, ZTMemErrAccessInvalidPage, _Category, CategoryType(_Category));
  return page;
}

// One line of the dump; the caption comes before the first.
void DumpLine(int& _Listed, ZTMemInfo _Type, void* _Data, std::size_t _Size) {
  if (_Listed++ == 0) ZT_WARNING("ZTMemMgr: allocated objects:");
  const char* type = ZTMemInfoName(_Type);
  const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(_Data);
  if (_Type == ZTMemString) {
    const char* text = RepresentationText(_Data, _Size);
    ZTWarning("  Type <%s>, Address <0x%.8" PRIxPTR ">, '%s'", type, address,
              text ? text : "(null)");
  } else if (_Type == ZTMemObject) {
    const ZTObject* object = static_cast<const ZTObject*>(_Data);
    ZTWarning("  Type <%s>, Address <0x%.8" PRIxPTR ">, class <%s>, refcount <%ld>", type, address,
              object->GetClassName(), static_cast<long>(object->GetRefCount()));
  } else {
    ZTWarning("  Type <%s>, Address <0x%.8" PRIxPTR ">", type, address);
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTMemPage

ZTMemPage* ZTMemPage::Make(void* _Memory, int _Index) {
  Unpoison(_Memory, PageHeaderSize);  // reused page memory arrives poisoned
  ZTMemPage* page = new (_Memory) ZTMemPage;
  page->SetIndex(_Index);
  page->m_NextFit = page->MakeHeader(reinterpret_cast<char*>(page->First()), 0, EmptyFree);
  Poison(_Memory, PageSize);  // nothing of a new page is in use
  return page;
}

ZTMemBlockHeader* ZTMemPage::MakeHeader(char* _At, unsigned _PrevSize, unsigned _Size) {
  const auto offset = static_cast<std::uint16_t>(_At - reinterpret_cast<char*>(this));
  return new (_At) ZTMemBlockHeader{offset, LiveMarker, 0, static_cast<std::uint16_t>(_PrevSize), 0,
                                    0, static_cast<std::uint16_t>(_Size)};
}

// Next fit: forward from the rover to the page end, then back from it.
ZTMemBlockHeader* ZTMemPage::Find(unsigned _Size) {
  for (ZTMemBlockHeader* h = m_NextFit ? m_NextFit : First(); h; h = Next(h))
    if (!h->m_InUse && h->m_Size >= _Size) return h;
  if (m_NextFit)
    for (ZTMemBlockHeader* h = Prev(m_NextFit); h; h = Prev(h))
      if (!h->m_InUse && h->m_Size >= _Size) return h;
  return nullptr;
}

// Marks the block used and splits off the rest when it can hold a block.
inline void* ZTMemPage::Take(ZTMemBlockHeader* _Block, unsigned _Size) {
  _Block->m_InUse = 1;
  const unsigned rest = _Block->m_Size - _Size;
  if (rest >= HeaderSize + MinSize) {
    _Block->m_Size = static_cast<std::uint16_t>(_Size);
    ZTMemBlockHeader* split = MakeHeader(_Block->Data() + _Size, _Size, rest - HeaderSize);
    if (ZTMemBlockHeader* after = Next(split)) after->m_PrevSize = split->m_Size;
    m_Remaining = static_cast<std::uint16_t>(m_Remaining - _Size - HeaderSize);
  } else {
    m_Remaining = static_cast<std::uint16_t>(m_Remaining - _Block->m_Size);
  }
  m_NextFit = Next(_Block);
  return _Block->Data();
}

inline void ZTMemPage::Absorb(ZTMemBlockHeader* _Into, ZTMemBlockHeader* _Gone) {
  if (m_NextFit == _Gone) m_NextFit = _Into;
  _Into->m_Size = static_cast<std::uint16_t>(_Into->m_Size + HeaderSize + _Gone->m_Size);
  _Gone->m_Marker = 0;  // a stale pointer to it is no longer taken for a block
  m_Remaining = static_cast<std::uint16_t>(m_Remaining + HeaderSize);
  if (ZTMemBlockHeader* after = Next(_Into)) after->m_PrevSize = _Into->m_Size;
}

inline void ZTMemPage::Free(ZTMemBlockHeader* _Header) {
  Poison(_Header->Data(), _Header->m_Size);
  _Header->m_InUse = 0;
  m_Remaining = static_cast<std::uint16_t>(m_Remaining + _Header->m_Size);
  ZTMemBlockHeader* next = Next(_Header);
  if (next && !next->m_InUse) Absorb(_Header, next);
  ZTMemBlockHeader* prev = Prev(_Header);
  if (prev && !prev->m_InUse) {
    Absorb(prev, _Header);
    _Header = prev;
  }
  if (!m_NextFit) m_NextFit = _Header;
  // Clears what was a vtable pointer or reference count, so that a dangling
  // use fails early.
  if (_Header->m_Size > 3) *reinterpret_cast<std::uint32_t*>(_Header->Data()) = 0;
}

// ---------------------------------------------------------------------------
// ZTMemBlock

// The current page could not serve: its neighbours are tried, then every page
// from the first (each becomes current on success), then a new page is made;
// without one the request goes to the heap.
void* ZTMemBlock::AllocElsewhere(unsigned _Size) {
  const int count = GetPageCount();
  const int current = m_CurrentPage ? m_CurrentPage->GetIndex() : -1;
  auto tryPage = [this, _Size](int _Page) -> void* {
    void* data = m_Pages[_Page]->Alloc(_Size);
    if (data) m_CurrentPage = m_Pages[_Page];
    return data;
  };
  for (const int neighbour : {current - 1, current + 1})
    if (neighbour >= 0 && neighbour < count)
      if (void* data = tryPage(neighbour)) return data;
  for (int page = 0; page < count; ++page)
    if (page != current)
      if (void* data = tryPage(page)) return data;
  if (ZTMemPage* page = AddPage()) {
    m_CurrentPage = page;
    return page->Alloc(_Size);
  }
  return AllocLarge(_Size);
}

ZTMemPage* ZTMemBlock::AddPage() {
  const int count = GetPageCount();
  if (count >= MaxPages) return nullptr;
  if (count == m_Capacity) {
    ZTMemPage** table = new (std::nothrow) ZTMemPage*[m_Capacity + TableStep]();
    if (!table) return nullptr;
    std::copy(m_Pages, m_Pages + count, table);
    delete[] m_Pages;
    m_Pages = table;
    m_Capacity += TableStep;
  }
  void* memory = m_SparePage ? std::exchange(m_SparePage, nullptr) : NewPageMemory();
  if (!memory) return nullptr;
  ZTMemPage* page = ZTMemPage::Make(memory, count);
  m_Pages[count] = page;
  SetPageCount(count + 1);
  return page;
}

void ZTMemBlock::RemovePage(int _Index) {
  ZTMemPage* page = m_Pages[_Index];
  const int count = GetPageCount() - 1;
  for (int i = _Index; i < count; ++i) {
    m_Pages[i] = m_Pages[i + 1];
    m_Pages[i]->SetIndex(i);
  }
  m_Pages[count] = nullptr;
  SetPageCount(count);
  // A current page that goes is replaced by the page taking its place, or by
  // its predecessor when it was the last.
  if (m_CurrentPage == page) m_CurrentPage = count > 0 ? m_Pages[std::min(_Index, count - 1)] : nullptr;
  if (m_SparePage) DeletePageMemory(m_SparePage);
  m_SparePage = page;  // stays poisoned
}

void* ZTMemBlock::AllocLarge(std::size_t _Size) {
  void* memory = ::operator new(HeaderSize + _Size, std::align_val_t(Granule), std::nothrow);
  if (!memory) return nullptr;
  auto* header = new (memory) ZTMemBlockHeader{0, LiveMarker, 0, 0, 1, 0, 0};
  try {
    m_Large.emplace(header->Data(), _Size);
  } catch (...) {
    ::operator delete(memory, std::align_val_t(Granule));
    return nullptr;
  }
  Poison(header, HeaderSize);
  return header->Data();
}

bool ZTMemBlock::FreeLarge(void* _Pointer) {
  // Only what this block took from the heap goes back there.
  const auto found = m_Large.find(_Pointer);
  if (found == m_Large.end()) return false;
  m_Large.erase(found);
  void* memory = static_cast<ZTMemBlockHeader*>(_Pointer) - 1;
  Unpoison(memory, HeaderSize);
  ::operator delete(memory, std::align_val_t(Granule));
  return true;
}

inline bool ZTMemBlock::Free(void* _Pointer) {
  // Nothing is read through a pointer that cannot be a block: UBSan would
  // rightly object to a misaligned header.
  if (reinterpret_cast<std::uintptr_t>(_Pointer) % Granule != 0) return false;
  auto* header = static_cast<ZTMemBlockHeader*>(_Pointer) - 1;
  if (header->m_Offset == 0) {
    if (!FreeLarge(_Pointer)) return false;
  } else {
    if (!ZTMemPage::LooksUsed(header)) return false;
    ZTMemPage* page = ZTMemPage::Of(header);
    const int index = page->GetIndex();
    if (GetPage(index) != page) return false;
    page->Free(header);
    if (page->IsEmpty()) RemovePage(index);
  }
  AddUsage(-1);
  return true;
}

// ---------------------------------------------------------------------------
// ZTMemEntryInfo

ZT_MEM_INTERNAL unsigned ZTMemEntryInfo::GetSize() const { return m_Header ? m_Header->m_Size : 0; }

ZT_MEM_INTERNAL bool ZTMemEntryInfo::IsInUse() const { return m_Header && m_Header->m_InUse; }

void* ZTMemEntryInfo::GetBuffer() const { return m_Header ? m_Header->Data() : nullptr; }

ZT_MEM_INTERNAL unsigned ZTMemEntryInfo::GetOffset() const {
  return m_Header ? m_Header->m_Offset : 0;
}

ZTMemInfo ZTMemEntryInfo::GetType() const { return m_Block ? m_Block->GetType() : ZTMemUnknown; }

ZTObject* ZTMemEntryInfo::GetObject() const {
  return GetType() == ZTMemObject && IsInUse() ? static_cast<ZTObject*>(GetBuffer()) : nullptr;
}

const char* ZTMemEntryInfo::GetString() const {
  return GetType() == ZTMemString && IsInUse() ? RepresentationText(GetBuffer(), GetSize())
                                               : nullptr;
}

// ---------------------------------------------------------------------------
// ZTMemMgr

void* ZTMemMgr::Alloc(int _Category, unsigned _Size) {
  if (!IsCategory(_Category)) Raise(ZT_FUNC, __LINE__, ZTMemErrInvalidBlock, _Category, ZTMemUnknown);
  ZTMemBlock* block = nullptr;
  void* data = nullptr;
  {
    const zt_platform::CriticalSection::Scope lock(State().m_Lock);
    try {
      block = MakeBlock(_Category);
      if (block) data = block->Alloc(_Size < MinSize ? MinSize : _Size);
    } catch (...) {
      // Nothing may leave the lock held; the failure is reported below.
    }
  }
  if (data) return data;
  if (!block) Raise(ZT_FUNC, __LINE__, ZTMemErrOutOfMemory, _Category, CategoryType(_Category));
  Raise(ZT_FUNC, __LINE__, ZTMemErrInvalidBlock, _Category, ZTMemUnknown);
}

void ZTMemMgr::Free(int _Category, void* _Pointer) {
  if (!IsCategory(_Category))
    Raise(ZT_FUNC, __LINE__, ZTMemErrFreeInvalidBlock, _Category, ZTMemUnknown, _Pointer);
  if (!_Pointer) return;
  bool foreign = false;
  {
    const zt_platform::CriticalSection::Scope lock(State().m_Lock);
    try {
      ZTMemBlock* block = BlockOf(_Category);
      foreign = !block || !block->Free(_Pointer);
    } catch (...) {
      // Nothing may leave the lock held.
    }
  }
  if (foreign) ReportForeign(_Category, _Pointer);  // outside the lock
}

int ZTMemMgr::GetBlockCount() {
  int count = 0;
  for (int category = 0; category < MaxBlockCount; ++category)
    if (BlockOf(category)) ++count;
  return count;
}

ZTMemInfo ZTMemMgr::GetBlockType(int _Category) {
  CheckedBlock(_Category, ZT_FUNC);
  return CategoryType(_Category);
}

const char* ZTMemMgr::GetBlockTypeString(int _Category) {
  return ZTMemInfoName(GetBlockType(_Category));
}

int ZTMemMgr::GetPageCount(int _Category) {
  const ZTMemBlock* block = CheckedBlock(_Category, ZT_FUNC);
  return block ? block->GetPageCount() : 0;
}

int ZTMemMgr::GetUsageCount(int _Category) {
  const ZTMemBlock* block = CheckedBlock(_Category, ZT_FUNC);
  return block ? block->GetUsageCount() : 0;
}

bool ZTMemMgr::GetPageInfo(int _Category, int _Page, ZTMemPageInfo& _Info) {
  const ZTMemPage* page = CheckedPage(_Category, _Page, ZT_FUNC);
  _Info.m_Address = page;
  _Info.m_Type = CategoryType(_Category);
  _Info.m_Size = PageSize;
  _Info.m_Remaining = page->GetRemaining();
  return true;
}

bool ZTMemMgr::GetFirstEntry(int _Category, int _Page, ZTMemEntryInfo& _Info) {
  ZTMemPage* page = CheckedPage(_Category, _Page, ZT_FUNC);
  _Info.m_Block = BlockOf(_Category);
  _Info.m_Page = page;
  _Info.m_Header = page->First();
  return true;
}

bool ZTMemMgr::GetNextEntry(int _Category, int _Page, ZTMemEntryInfo& _Info) {
  ZTMemPage* page = CheckedPage(_Category, _Page, ZT_FUNC);
  if (_Info.m_Page != page || !_Info.m_Header) return false;
  ZTMemBlockHeader* next = page->Next(_Info.m_Header);
  if (!next) return false;
  _Info.m_Header = next;
  return true;
}

bool ZTMemMgr::GetFirstUsedEntry(int _Category, int _Page, ZTMemEntryInfo& _Info) {
  GetFirstEntry(_Category, _Page, _Info);
  return _Info.IsInUse() || GetNextUsedEntry(_Category, _Page, _Info);
}

bool ZTMemMgr::GetNextUsedEntry(int _Category, int _Page, ZTMemEntryInfo& _Info) {
  ZTMemEntryInfo next = _Info;
  while (GetNextEntry(_Category, _Page, next)) {
    if (next.IsInUse()) {
      _Info = next;
      return true;
    }
  }
  return false;
}

void ZTMemMgr::Dump() {
  int listed = 0;
  for (int category = 0; category < MaxBlockCount; ++category) {
    ZTMemBlock* block = BlockOf(category);
    if (!block || block->GetUsageCount() <= 0) continue;
    for (int page = 0; page < block->GetPageCount(); ++page) {
      ZTMemEntryInfo entry;
      for (bool found = GetFirstUsedEntry(category, page, entry); found;
           found = GetNextUsedEntry(category, page, entry))
        DumpLine(listed, entry.GetType(), entry.GetBuffer(), entry.GetSize());
    }
    // Large allocations are live allocations too; a leak of one must show.
    std::vector<std::pair<void*, std::size_t>> large;
    {
      const zt_platform::CriticalSection::Scope lock(State().m_Lock);
      large = block->GetLargeAllocations();
    }
    for (const auto& [data, size] : large) DumpLine(listed, block->GetType(), data, size);
  }
  if (listed) ZT_WARNING("ZTMemMgr: %i objects allocated", listed);
}
