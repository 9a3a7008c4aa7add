#include <algorithm>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

// A list element with a key; equal keys compare equal. Counts live instances.
class ListTestItem : public ZTObject {
  ZT_DECLARE_CLASS(ListTestItem, ZTObjectCreator)
 public:
  explicit ListTestItem(int _Key = 0) : m_Key(_Key) { ++s_Live; }
  ListTestItem(const ListTestItem& _Src) : ZTObject(_Src), m_Key(_Src.m_Key) { ++s_Live; }
  ~ListTestItem() override { --s_Live; }
  ZTCmpResult Cmp(const ZTObject* _Obj) const override {
    const int other = static_cast<const ListTestItem*>(_Obj)->m_Key;
    return m_Key < other ? CmpLess : m_Key > other ? CmpGreater : CmpEqual;
  }
  int m_Key;
  static inline int s_Live = 0;
};
ZT_IMPLEMENT_CLASS(ListTestItem, ZTObject, ZTObjectCreator, nullptr)

namespace {

ListTestItem* Item(int _Key) { return new ListTestItem(_Key); }

// The keys from head to tail, checked against the walk from tail to head.
std::vector<int> Keys(const ZTList& _List) {
  std::vector<int> keys, backwards;
  for (void* pos = _List.GetHeadPosition(); pos;)
    keys.push_back(static_cast<ListTestItem*>(_List.GetNext(pos))->m_Key);
  for (void* pos = _List.GetTailPosition(); pos;)
    backwards.insert(backwards.begin(), static_cast<ListTestItem*>(_List.GetPrev(pos))->m_Key);
  EXPECT_EQ(keys, backwards) << "links disagree";
  EXPECT_EQ(keys.size(), _List.GetCount());
  return keys;
}

using Ints = std::vector<int>;

}  // namespace

TEST(ZTList, InsertRemoveAndOwnership) {
  ListTestItem::s_Live = 0;
  {
    ZTList list;
    EXPECT_EQ(list.GetHead(), nullptr);
    void* two = list.AddTail(Item(2));
    list.AddHead(Item(1));
    void* four = list.AddTail(Item(4));
    list.InsertBefore(four, Item(3));
    list.InsertBehind(four, Item(5));
    list.InsertBefore(nullptr, Item(0));  // null position: head
    list.InsertBehind(nullptr, Item(6));  // null position: tail
    EXPECT_EQ(Keys(list), (Ints{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(list.Get(two)->GetRefCount(), 1);

    ListTestItem* kept = Item(7);
    kept->Attach();  // the test's own reference
    list.Set(four, kept);
    list.Set(four, kept);  // storing the same element again keeps it alive
    EXPECT_EQ(kept->GetRefCount(), 2);
    list.Remove(two);  // inner, head and tail nodes
    list.RemoveHead();
    list.RemoveTail();
    EXPECT_EQ(Keys(list), (Ints{1, 3, 7, 5}));
    EXPECT_EQ(ListTestItem::s_Live, 4);  // removed and replaced elements are gone

    // Removal by object is by identity: an equal but different object stays.
    ListTestItem equal(7);
    list.Remove(&equal);
    EXPECT_FALSE(list.Contains(&equal));
    list.Remove(kept);
    EXPECT_EQ(Keys(list), (Ints{1, 3, 5}));
    EXPECT_EQ(kept->GetRefCount(), 1);
    kept->Detach();
  }
  EXPECT_EQ(ListTestItem::s_Live, 0);  // the destructor released the rest
}

TEST(ZTList, FailureTexts) {
  ListTestItem item(1);  // outlives the lists that hold it
  ZTList list, other;
  const auto param = [](auto _Fn) { return std::string(Catch<ZTExceptParameter>(_Fn).GetMsg(0)); };
  const auto cond = [](auto _Fn) { return std::string(Catch<ZTExceptCondition>(_Fn).GetMsg(0)); };
  EXPECT_EQ(param([&] { list.AddHead(nullptr); }), "Required parameter _NewElement is null.");
  EXPECT_EQ(param([&] { list.AddTail(nullptr); }), "Required parameter _NewElement is null.");
  EXPECT_EQ(param([&] { list.InsertBefore(nullptr, nullptr); }),
            "Required parameter _NewElement != NULL is null.");
  EXPECT_EQ(param([&] { list.Set(nullptr, nullptr); }), "Required parameter _NewElement != NULL is null.");
  EXPECT_EQ(param([&] { list.Remove(static_cast<const ZTObject*>(nullptr)); }),
            "Required parameter _Element is null.");
  EXPECT_EQ(cond([&] { list.Set(nullptr, &item); }), "Condition check failed(node != NULL)");
  EXPECT_EQ(cond([&] { list.Remove(static_cast<void*>(nullptr)); }), "Condition check failed(node != NULL)");
  EXPECT_EQ(cond([&] { list.RemoveHead(); }), "Condition check failed(m_NodeHead != NULL)");
  EXPECT_EQ(cond([&] { list.RemoveTail(); }), "Condition check failed(m_NodeTail != NULL)");

  // Positions of another list have broken links as seen from this one.
  void* foreignHead = other.AddTail(&item);
  void* foreignTail = other.AddTail(&item);
  list.AddTail(&item);
  EXPECT_EQ(cond([&] { list.InsertBefore(foreignHead, &item); }), "Condition check failed(oldNode == m_NodeHead)");
  EXPECT_EQ(cond([&] { list.InsertBehind(foreignTail, &item); }), "Condition check failed(oldNode == m_NodeTail)");
  EXPECT_EQ(cond([&] { list.Remove(foreignHead); }), "Condition check failed(node->m_Prev != NULL)");
  EXPECT_EQ(cond([&] { list.Remove(foreignTail); }), "Condition check failed(node->m_Next != NULL)");
  EXPECT_EQ(list.GetCount() + other.GetCount(), 3u);
}

TEST(ZTList, CopiesShareOrCloneAndCreationByName) {
  ListTestItem::s_Live = 0;
  {
    ZTList source;
    for (int key : {1, 2, 3}) source.AddTail(Item(key));
    ZTList shared(source);
    EXPECT_EQ(shared.GetHead(), source.GetHead());
    ZTList cloned;
    cloned.AddTail(Item(9));
    cloned = source;  // clears, then clones
    EXPECT_EQ(Keys(cloned), (Ints{1, 2, 3}));
    EXPECT_NE(cloned.GetHead(), source.GetHead());
    cloned.Copy(cloned);  // onto itself: unchanged
    EXPECT_EQ(ListTestItem::s_Live, 6);
    cloned.Copy(source);  // clears, then shares
    EXPECT_EQ(source.GetHead()->GetRefCount(), 3);
    EXPECT_EQ(ListTestItem::s_Live, 3);
  }
  EXPECT_EQ(ListTestItem::s_Live, 0);

  const int containers = ZTMemMgr::GetUsageCount(ZTMemCatContainer);
  ZTObject* made = ZTObjectCreator::CreateObject("ZTList");
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(made->IsA(ZTList::ClassGetType()));
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatContainer), containers + 1);
  made->Attach();
  made->Detach();
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatContainer), containers);

  ZTTList<ListTestItem> typed;
  ZTObject plain;
  typed.AddTail(&plain);
  EXPECT_EQ(typed.GetHead(), nullptr);  // element of another class
  typed.RemoveAll();
}

TEST(ZTSortedList, OrderEqualsAndRemoval) {
  ListTestItem::s_Live = 0;
  {
    ZTSortedList list;
    for (int key : {3, 1, 2}) list.Add(Item(key));
    EXPECT_EQ(Keys(list), (Ints{1, 2, 3}));
    ListTestItem probe(2);
    ZTObject* firstTwo = list.Get(list.Find(&probe));
    void* pos = list.Add(Item(2));
    list.GetNext(pos);
    EXPECT_EQ(list.Get(pos), firstTwo);  // the new 2 went in front of it
    list.Add(Item(0));
    list.Add(Item(9));
    for (int key : {9, 0, 3, 5}) {  // tail, head, inner, absent
      probe.m_Key = key;
      list.Remove(&probe);
    }
    EXPECT_EQ(Keys(list), (Ints{1, 2, 2}));
    EXPECT_EQ(ListTestItem::s_Live, 4);
    EXPECT_STREQ(Catch<ZTExceptParameter>([&] { list.Remove(static_cast<const ZTObject*>(nullptr)); })
                     .GetMsg(0),
                 "Required parameter _Element != NULL is null.");
  }
  EXPECT_EQ(ListTestItem::s_Live, 0);
}

TEST(ZTSortedList, BinarySearchMatchesTheOrderWithDuplicates) {
  ZTSortedList list;
  std::vector<int> expected;
  unsigned seed = 12345;
  for (int i = 0; i < 60; ++i) {
    seed = seed * 1103515245u + 12345u;
    const int key = static_cast<int>((seed >> 16) % 40);
    list.Add(Item(key));
    expected.insert(std::upper_bound(expected.begin(), expected.end(), key), key);
    ASSERT_EQ(Keys(list), expected) << "after adding " << key;
  }
  for (int key = -1; key <= 40; ++key) {
    ListTestItem probe(key);
    void* found = list.Find(&probe);
    EXPECT_EQ(found != nullptr, std::binary_search(expected.begin(), expected.end(), key)) << key;
    if (found) {
      EXPECT_EQ(list.Get(found)->Cmp(&probe), CmpEqual);
    }
  }
}

TEST(ZTSortedList, CompareIsHeldAndReplaceable) {
  auto* descending = new ZTObjectCompare(&ZTCompare::Greater);
  descending->Attach();  // handed over to the list
  {
    ZTSortedList list(descending);
    for (int key : {1, 3, 2}) list.Add(Item(key));
    EXPECT_EQ(Keys(list), (Ints{3, 2, 1}));
    ZTSortedList copy(list);
    EXPECT_EQ(descending->GetRefCount(), 2);
    copy.SetObjectCompare(nullptr);  // linear search: an equal one goes first, others last
    copy.Add(Item(2));
    copy.Add(Item(5));
    EXPECT_EQ(Keys(copy), (Ints{3, 2, 2, 1, 5}));
    EXPECT_EQ(descending->GetRefCount(), 1);
  }  // freed with the list: a sanitizer build reports a leak or a double free
}

TEST(ZTNotifyHandlerList, WideningAndDispatchByCodeBits) {
  struct Recorder : public ZTObject {
    void Notify(ZTObject*, unsigned long _Code, ZTParameter*) override { m_Codes.push_back(_Code); }
    std::vector<unsigned long> m_Codes;
  } r, wantsTwo, dieing;
  ZTNotifyHandlerList list;
  ZTNotifyHandler* four = list.AddHandler(&r, 4);
  ZTNotifyHandler* eight = list.AddHandler(&r, 8);  // no handler of r matches 8: appended
  EXPECT_NE(four, eight);
  EXPECT_EQ(list.AddHandler(&r, 6), four);  // matches 4: widened to 6
  EXPECT_EQ(four->GetNotifyCodes(), 6ul);
  EXPECT_EQ(list.GetCount(), 2u);
  EXPECT_EQ(list.GetHandler(&r, 0), nullptr);
  list.AddHandler(&wantsTwo, 2);
  list.AddHandler(&dieing, 2);
  list.AddHandler(new ZTNotifyHandler(nullptr, 2));  // without receiver: skipped
  dieing.SetFlag(ZTObject::FlagDieing);
  list.DoIt(&r, 2, nullptr);
  list.DoIt(&r, 8, nullptr);
  EXPECT_EQ(r.m_Codes, (std::vector<unsigned long>{2, 8}));
  EXPECT_EQ(wantsTwo.m_Codes, (std::vector<unsigned long>{2}));
  EXPECT_TRUE(dieing.m_Codes.empty());
  dieing.ClearFlag(ZTObject::FlagDieing);

  EXPECT_TRUE(list.RemoveHandler(&r));  // the first of r, whatever its codes
  EXPECT_EQ(list.GetHead(), eight);
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { list.AddHandler(static_cast<ZTNotifyHandler*>(nullptr)); })
                   .GetMsg(0),
               "Required parameter _Handler is null.");
}
