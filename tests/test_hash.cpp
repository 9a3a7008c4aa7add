#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

class HashItem : public ZTObject {
 public:
  explicit HashItem(int _Value) : m_Value(_Value) {}
  HashItem(const HashItem& _Src) : ZTObject(_Src), m_Value(_Src.m_Value) {}
  ~HashItem() override { ++s_Destroyed; }
  ZTObject* Clone() const override {
    auto* copy = new HashItem(*this);
    copy->Init();
    return copy;
  }
  int m_Value;
  static inline int s_Destroyed = 0;
};

using StringTable = ZTTStringHashTable<HashItem>;
using PointerTable = ZTTHashTable<HashItem, const void*>;

// Exposes the raw insertion, which does not refuse a present key.
class RawStringTable : public StringTable {
 public:
  using StringTable::InsertItem;
  using StringTable::StringTable;
  unsigned Bucket(const char* _Key) const { return ZTHashText(_Key) % GetHashTableSize(); }
};

// Keys whose bucket in a table of the given size is _Bucket.
std::vector<std::string> KeysInBucket(unsigned _Bucket, unsigned _Size, int _Count) {
  std::vector<std::string> keys;
  for (int i = 0; static_cast<int>(keys.size()) < _Count; ++i) {
    const std::string key = "key" + std::to_string(i);
    if (ZTHashText(key.c_str()) % _Size == _Bucket) keys.push_back(key);
  }
  return keys;
}

template <class Table>
std::vector<int> Walk(const Table& _Table) {
  std::vector<int> values;
  for (void* pos = _Table.GetFirstPosition(); pos;) values.push_back(_Table.GetNext(pos)->m_Value);
  return values;
}

// A pointer key that lands in the given bucket of a 47-bucket table.
const void* KeyFor(unsigned _Bucket, unsigned _Round = 0) {
  return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(_Bucket + 47u * _Round) << 4);
}

}  // namespace

TEST(ZTTStringHashTable, InsertLookUpAndRefusals) {
  HashItem::s_Destroyed = 0;
  {
    StringTable table;
    EXPECT_EQ(table.GetHashTableSize(), 47u);
    EXPECT_TRUE(table.IsEmpty());
    EXPECT_EQ(table.LookUp("a"), nullptr);
    EXPECT_EQ(table.GetFirstPosition(), nullptr);
    auto* first = new HashItem(1);
    EXPECT_TRUE(table.Insert(first, "a"));
    EXPECT_EQ(first->GetRefCount(), 1);
    auto* second = new HashItem(2);
    second->Attach();
    EXPECT_FALSE(table.Insert(second, "a"));  // no replacement
    EXPECT_EQ(table.LookUp("a"), first);
    EXPECT_EQ(table.GetCount(), 1u);
    EXPECT_EQ(second->GetRefCount(), 1);
    second->Detach();
    EXPECT_EQ(HashItem::s_Destroyed, 1);

    EXPECT_TRUE(table.Insert(new HashItem(3), ZTString("b")));
    const StringTable& constant = table;
    EXPECT_EQ(constant.LookUp("b")->m_Value, 3);
    EXPECT_EQ(table["b"]->m_Value, 3);
    auto missing = Catch<ZTExceptCondition>([&] { table["zz"]; });
    EXPECT_STREQ(missing.GetMsg(0), "Condition check failed(obj != NULL)");
    auto null =
        Catch<ZTExceptParameter>([&] { table.Insert(static_cast<HashItem*>(nullptr), "c"); });
    EXPECT_STREQ(null.GetMsg(0), "Required parameter _Object != NULL is null.");

    EXPECT_TRUE(table.Remove("a"));
    EXPECT_FALSE(table.Remove("a"));
    EXPECT_EQ(HashItem::s_Destroyed, 2);
    EXPECT_EQ(table.GetCount(), 1u);
  }
  EXPECT_EQ(HashItem::s_Destroyed, 3);  // the destructor releases the rest

  StringTable fresh(5);
  EXPECT_EQ(fresh.GetHashTableSize(), 5u);
  auto noTable = Catch<ZTExceptCondition>([&] { fresh.Remove("x"); });
  EXPECT_STREQ(noTable.GetMsg(0), "Condition check failed(m_HashTable != NULL)");
}

TEST(ZTTStringHashTable, CollisionsKeepOrderAndLookUpNewestFirst) {
  HashItem::s_Destroyed = 0;
  StringTable table(1);  // every key collides
  table.Insert(new HashItem(1), "one");
  table.Insert(new HashItem(2), "two");
  table.Insert(new HashItem(3), "three");
  EXPECT_TRUE(table.Remove("two"));
  EXPECT_EQ(table.GetCount(), 2u);
  EXPECT_EQ(Walk(table), (std::vector<int>{1, 3}));
  EXPECT_EQ(table.LookUp("three")->m_Value, 3);
  for (int i = 4; i < 9; ++i) table.Insert(new HashItem(i), ZTString('k', i));
  EXPECT_EQ(Walk(table), (std::vector<int>{1, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(HashItem::s_Destroyed, 1);

  RawStringTable raw;
  raw.Insert(new HashItem(1), "dup");
  EXPECT_TRUE(raw.InsertItem(raw.Bucket("dup"), new HashItem(2), "dup"));
  HashItem spare(9);
  EXPECT_FALSE(raw.InsertItem(47, &spare, "x"));  // no such bucket
  EXPECT_EQ(raw.LookUp("dup")->m_Value, 2);       // the newest entry wins
  raw.Remove("dup");
  EXPECT_EQ(raw.LookUp("dup")->m_Value, 1);
}

TEST(ZTTStringHashTable, IterationWithTheTablesOwnCursor) {
  HashItem::s_Destroyed = 0;
  StringTable table;
  const std::vector<std::string> last = KeysInBucket(46, 47, 2);
  table.Insert(new HashItem(1), last[0].c_str());
  table.Insert(new HashItem(2), last[1].c_str());
  void* pos = table.GetFirstPosition();
  ASSERT_NE(pos, nullptr);
  EXPECT_EQ(table.Get(pos)->m_Value, 1);  // Get does not move
  EXPECT_EQ(table.GetNext(pos)->m_Value, 1);
  EXPECT_NE(pos, nullptr);
  EXPECT_EQ(table.GetNext(pos)->m_Value, 2);
  EXPECT_EQ(pos, nullptr);

  StringTable other;
  other.Insert(new HashItem(7), "seven");
  void* foreign = other.GetFirstPosition();
  EXPECT_EQ(table.Get(foreign), nullptr);
  EXPECT_EQ(table.GetNext(foreign), nullptr);
  EXPECT_NE(foreign, nullptr);

  // Many buckets: every element once; removal through the cursor.
  for (int i = 3; i <= 60; ++i) table.Insert(new HashItem(i), ZTString(std::to_string(i).c_str()));
  std::vector<int> seen = Walk(table);
  std::sort(seen.begin(), seen.end());
  ASSERT_EQ(seen.size(), 60u);
  for (int i = 0; i < 60; ++i) EXPECT_EQ(seen[static_cast<std::size_t>(i)], i + 1);
  int removed = 0;
  for (void* p = table.GetFirstPosition(); p;) {
    const bool odd = table.Get(p)->m_Value % 2 == 1;
    if (odd) {
      EXPECT_TRUE(table.Remove(p));
      ++removed;
    } else {
      table.GetNext(p);
    }
  }
  EXPECT_EQ(removed, 30);
  EXPECT_EQ(table.GetCount(), 30u);
  for (int v : Walk(table)) EXPECT_EQ(v % 2, 0);
  EXPECT_EQ(HashItem::s_Destroyed, 30);
  // A walk ended by clearing the table answers null.
  void* stale = table.GetFirstPosition();
  table.RemoveAll();
  EXPECT_EQ(table.GetNext(stale), nullptr);
  EXPECT_EQ(stale, nullptr);
}

TEST(ZTTStringHashTable, CopiesShareOrCloneAndMemoryComesBack) {
  HashItem::s_Destroyed = 0;
  const int binary = ZTMemMgr::GetUsageCount(ZTMemCatBinary);
  {
    StringTable source;
    source.Insert(new HashItem(1), "one");
    source.Insert(new HashItem(2), "two");
    const int filled = ZTMemMgr::GetUsageCount(ZTMemCatBinary);
    EXPECT_GT(filled, binary);

    StringTable shared(source);
    EXPECT_EQ(shared.LookUp("one"), source.LookUp("one"));
    EXPECT_EQ(source.LookUp("one")->GetRefCount(), 2);

    StringTable deep(5);
    deep.Insert(new HashItem(9), "nine");
    deep.Assign(source, true);
    EXPECT_EQ(HashItem::s_Destroyed, 1);
    EXPECT_EQ(deep.GetHashTableSize(), 5u);
    EXPECT_EQ(deep.GetCount(), 2u);
    EXPECT_EQ(deep.LookUp("nine"), nullptr);
    EXPECT_NE(deep.LookUp("two"), source.LookUp("two"));
    EXPECT_EQ(deep.LookUp("two")->m_Value, 2);
    EXPECT_EQ(deep.LookUp("two")->GetRefCount(), 1);

    StringTable assigned;
    assigned = source;
    EXPECT_EQ(assigned.LookUp("two"), source.LookUp("two"));
    assigned.Copy(deep);
    EXPECT_EQ(assigned.LookUp("two"), deep.LookUp("two"));
    assigned.InitHashTable(3);
    EXPECT_EQ(assigned.GetCount(), 0u);
    EXPECT_EQ(assigned.GetHashTableSize(), 3u);
    EXPECT_TRUE(assigned.Insert(new HashItem(4), "four"));
  }
  EXPECT_EQ(HashItem::s_Destroyed, 1 + 2 + 2 + 1);
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), binary);

  // One bucket: the bucket array, the bucket and its entries, whatever the
  // number of entries.
  StringTable one(1);
  for (int i = 0; i < 7; ++i) {
    one.Insert(new HashItem(i), ZTString('x', i + 1));
    EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), binary + 3);
  }
  one.RemoveAll();
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), binary);
}

TEST(ZTTHashTable, PointerKeysByIdentity) {
  HashItem::s_Destroyed = 0;
  PointerTable table;
  EXPECT_FALSE(table.Remove(KeyFor(1)));  // no buckets yet: nothing
  EXPECT_EQ(table.LookUp(KeyFor(1)), nullptr);
  EXPECT_TRUE(table.Insert(new HashItem(1), KeyFor(46)));
  EXPECT_TRUE(table.Insert(new HashItem(2), KeyFor(46, 1)));
  EXPECT_TRUE(table.Insert(new HashItem(3), KeyFor(46, 2)));
  auto* refused = new HashItem(4);
  refused->Attach();
  EXPECT_FALSE(table.Insert(refused, KeyFor(46, 1)));
  refused->Detach();
  EXPECT_EQ(table.LookUp(KeyFor(46, 1))->m_Value, 2);
  EXPECT_EQ(table[KeyFor(46, 2)]->m_Value, 3);
  auto missing = Catch<ZTExceptCondition>([&] { table[KeyFor(5)]; });
  EXPECT_STREQ(missing.GetMsg(0), "Condition check failed(obj != NULL)");
  auto null = Catch<ZTExceptParameter>([&] { table.Insert(nullptr, KeyFor(3)); });
  EXPECT_STREQ(null.GetMsg(0), "Required parameter _Object != NULL is null.");

  // Only the last bucket is used: the walk yields its entries, then null.
  void* pos = table.GetFirstPosition();
  EXPECT_EQ(table.GetNext(pos)->m_Value, 1);
  EXPECT_EQ(table.GetNext(pos)->m_Value, 2);
  EXPECT_EQ(table.GetNext(pos)->m_Value, 3);
  EXPECT_EQ(pos, nullptr);

  EXPECT_TRUE(table.Remove(KeyFor(46, 1)));
  EXPECT_EQ(table.GetCount(), 2u);
  EXPECT_EQ(Walk(table), (std::vector<int>{1, 3}));
  EXPECT_EQ(HashItem::s_Destroyed, 2);

  PointerTable shared(table);
  EXPECT_EQ(shared.LookUp(KeyFor(46)), table.LookUp(KeyFor(46)));
  PointerTable deep;
  deep.Assign(table, true);
  EXPECT_NE(deep.LookUp(KeyFor(46)), table.LookUp(KeyFor(46)));
  EXPECT_EQ(deep.LookUp(KeyFor(46, 2))->m_Value, 3);
  deep.RemoveAll();
  EXPECT_TRUE(deep.IsEmpty());
  EXPECT_EQ(HashItem::s_Destroyed, 4);
  void* first = table.GetFirstPosition();
  table.Remove(first);
  EXPECT_EQ(Walk(table), (std::vector<int>{3}));
  EXPECT_EQ(table.LookUp(KeyFor(46)), nullptr);
  EXPECT_NE(shared.LookUp(KeyFor(46)), nullptr);
}

TEST(ZTStringPool, SharesOneStringPerText) {
  ZTStringPool pool;
  ZTString* p = nullptr;
  ZTString* q = nullptr;
  EXPECT_TRUE(pool.UseString("abc", p));
  EXPECT_TRUE(pool.UseString("abc", q));
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p, q);
  EXPECT_STREQ(static_cast<const char*>(*p), "abc");
  EXPECT_EQ(p->GetRefCount(), 2);
  EXPECT_EQ(pool.GetCount(), 1u);
  pool.ReleaseString(p);
  EXPECT_EQ(p, nullptr);
  EXPECT_EQ(pool.LookUp("abc"), q);
  pool.ReleaseString(q);
  EXPECT_EQ(pool.LookUp("abc"), nullptr);
  EXPECT_EQ(pool.GetCount(), 0u);
  pool.ReleaseString(q);  // null: nothing

  EXPECT_FALSE(pool.UseString("", p));
  EXPECT_EQ(p, nullptr);
  EXPECT_FALSE(pool.UseString(static_cast<const char*>(nullptr), p));

  // The copying form: the reference stays counted until released by text.
  ZTString copy("old");
  EXPECT_TRUE(pool.UseString("text", copy));
  EXPECT_STREQ(static_cast<const char*>(copy), "text");
  EXPECT_TRUE(pool.UseString("text", copy));
  EXPECT_EQ(pool.LookUp("text")->GetRefCount(), 2);
  pool.ReleaseString(copy);
  EXPECT_EQ(pool.LookUp("text")->GetRefCount(), 1);
  pool.ReleaseString(copy);
  EXPECT_EQ(pool.LookUp("text"), nullptr);
  EXPECT_FALSE(pool.UseString("", copy));
  EXPECT_TRUE(copy.IsEmpty());
  pool.ReleaseString(copy);  // empty: nothing

  // A string that is not the pooled one is only detached.
  ZTString* pooled = nullptr;
  pool.UseString("same", pooled);
  auto* stranger = new ZTString("same");
  stranger->Attach();
  stranger->Attach();
  ZTString* handle = stranger;
  pool.ReleaseString(handle);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(stranger->GetRefCount(), 1);
  EXPECT_EQ(pool.LookUp("same"), pooled);
  stranger->Detach();
}

TEST(ZTStringPool, CreatableByName) {
  ZTObject* made = ZTObjectCreator::CreateObject("ZTStringPool");
  ASSERT_NE(made, nullptr);
  made->Attach();
  auto* pool = ZTDynamicCastT<ZTStringPool>(made);
  ASSERT_NE(pool, nullptr);
  ZTString* s = nullptr;
  EXPECT_TRUE(pool->UseString("kept", s));
  ZTObject* clone = pool->Clone();  // shares the pooled strings
  clone->Attach();
  EXPECT_EQ(static_cast<ZTStringPool*>(clone)->LookUp("kept"), s);
  EXPECT_EQ(s->GetRefCount(), 2);
  clone->Detach();
  made->Detach();
}
