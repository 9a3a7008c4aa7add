// Category allocator of the library: pooled 64 KiB pages per category, live
// allocation counts and a leak dump.
#pragma once

#include "ztexcept.h"

class ZTObject;
class ZTMemBlock;
class ZTMemPage;
struct ZTMemBlockHeader;

// What GetPageInfo reports about one page of a category.
class ZTMemPageInfo {
 public:
  const void* GetAddress() const { return m_Address; }
  ZTMemInfo GetType() const { return m_Type; }
  unsigned GetSize() const { return m_Size; }
  unsigned GetRemaining() const { return m_Remaining; }

 private:
  friend class ZTMemMgr;
  const void* m_Address = nullptr;
  ZTMemInfo m_Type = ZTMemUnknown;
  unsigned m_Size = 0;
  unsigned m_Remaining = 0;
};

// One block (free or in use) of a page, as the entry walks report it.
class ZTMemEntryInfo {
 public:
  ZTMemBlock* GetBlock() const { return m_Block; }
  ZTMemPage* GetPage() const { return m_Page; }
  ZTMemBlockHeader* GetHeader() const { return m_Header; }

  // Data bytes of the block; 0 without a block.
  unsigned GetSize() const;
  bool IsInUse() const;
  // The data address handed out by Alloc (null without a block).
  void* GetBuffer() const;
  // Distance of the block header from the page start.
  unsigned GetOffset() const;
  ZTMemInfo GetType() const;
  // The object in a used block of an "Object" category, else null.
  ZTObject* GetObject() const;
  // The text of a string representation in a used block of the "String"
  // category, else null (also when the block holds no terminated text).
  const char* GetString() const;

 private:
  friend class ZTMemMgr;
  ZTMemBlock* m_Block = nullptr;
  ZTMemPage* m_Page = nullptr;
  ZTMemBlockHeader* m_Header = nullptr;
};

// Every library object, string representation and slot block is allocated
// through one of eight categories: 0 "Binary" (slot arrays, hash buckets),
// 1 "String" (string representations), 2 to 7 "Object" (objects only: Dump
// names them by class; 5 to 7 are left to applications). Alloc and Free are
// thread-safe; the walks and Dump read the pages without the lock and are
// meant for a quiet moment.
class ZTMemMgr {
 public:
  static constexpr int MaxBlockCount = 8;
  static int GetMaxBlockCount() { return MaxBlockCount; }

  // Throws ZTExceptMemory for a category outside 0..7 or when out of memory.
  // The result is aligned to 16 bytes.
  static void* Alloc(int _Category, unsigned _Size);
  // Returns memory from Alloc of the same category; null is ignored. A
  // pointer that does not belong to the category is left alone (warning).
  static void Free(int _Category, void* _Pointer);

  // Categories in use (made by a first allocation).
  static int GetBlockCount();
  // The calls below throw ZTExceptMemory code 3 for a category outside 0..7
  // and, where they take a page, code 4 for a page number that names no page.
  // Type of the memory a category hands out ("Binary", "String", "Object").
  static ZTMemInfo GetBlockType(int _Category);
  static const char* GetBlockTypeString(int _Category);
  static int GetPageCount(int _Category);
  // Live allocations of a category, pooled and large.
  static int GetUsageCount(int _Category);

  // Page walks: false when the page has no (further) block of the kind asked.
  static bool GetPageInfo(int _Category, int _Page, ZTMemPageInfo& _Info);
  static bool GetFirstEntry(int _Category, int _Page, ZTMemEntryInfo& _Info);
  static bool GetNextEntry(int _Category, int _Page, ZTMemEntryInfo& _Info);
  static bool GetFirstUsedEntry(int _Category, int _Page, ZTMemEntryInfo& _Info);
  static bool GetNextUsedEntry(int _Category, int _Page, ZTMemEntryInfo& _Info);

  // Lists every live allocation through ZTWarning.
  static void Dump();
};
