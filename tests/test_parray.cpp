#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

// Element with a value that compares by value and counts its destructions.
class ArrItem : public ZTObject {
  ZT_DECLARE_ABSTRACT(ArrItem)
 public:
  explicit ArrItem(int _Value = 0) : m_Value(_Value) {}
  ArrItem(const ArrItem& _Src) : ZTObject(_Src), m_Value(_Src.m_Value) {}
  ~ArrItem() override { ++s_Destroyed; }
  ZTObject* Clone() const override {
    auto* copy = new ArrItem(*this);
    copy->Init();
    return copy;
  }
  ZTCmpResult Cmp(const ZTObject* _Obj) const override {
    const auto* item = ZTDynamicCastT<ArrItem>(_Obj);
    if (!item) return ZTObject::Cmp(_Obj);
    return m_Value < item->m_Value ? CmpLess : m_Value > item->m_Value ? CmpGreater : CmpEqual;
  }
  int m_Value;
  static inline int s_Destroyed = 0;
};
ZT_IMPLEMENT_ABSTRACT(ArrItem, ZTObject)

class OtherItem : public ZTObject {
  ZT_DECLARE_ABSTRACT(OtherItem)
};
ZT_IMPLEMENT_ABSTRACT(OtherItem, ZTObject)

int ValueAt(const ZTPArray& _Array, int _Idx) {
  const ZTObject* obj = _Array.Get(_Idx);
  return obj ? static_cast<const ArrItem*>(obj)->m_Value : -1;
}

// Slot contents from 0 to _Slots-1: the value, or -1 for an empty slot.
std::vector<int> Slots(const ZTPArray& _Array, int _Slots) {
  std::vector<int> values;
  for (int i = 0; i < _Slots; ++i) values.push_back(ValueAt(_Array, i));
  return values;
}

// Fills a fresh array with heap items of the given values.
void Fill(ZTPArray& _Array, std::initializer_list<int> _Values) {
  for (int v : _Values) _Array.Add(new ArrItem(v));
}

template <class Ex>
void ExpectText(const Ex& _Ex, const char* _Text) {
  ASSERT_GE(_Ex.GetMsgCount(), 1);
  EXPECT_STREQ(_Ex.GetMsg(0), _Text);
}

}  // namespace

TEST(ZTPArray, GrowsLinearlyByTheGrowStepFromCategoryZero) {
  const int slotBlocks = ZTMemMgr::GetUsageCount(ZTMemCatBinary);
  {
    ZTPArray array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetGrowStep(), ZTPArray::DefaultSize);
    EXPECT_EQ(array.Add(new ArrItem(0)), 0);
    EXPECT_EQ(array.GetSize(), 32);
    EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), slotBlocks + 1);
    for (int i = 1; i < 32; ++i) EXPECT_EQ(array.Add(new ArrItem(i)), i);
    EXPECT_EQ(array.GetSize(), 32);
    EXPECT_EQ(array.Add(new ArrItem(32)), 32);
    EXPECT_EQ(array.GetSize(), 64);  // linear, not doubled
    EXPECT_EQ(array.GetCount(), 33);
    EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), slotBlocks + 1);  // old block freed
    for (int i = 0; i < 33; ++i) EXPECT_EQ(ValueAt(array, i), i);
    for (int i = 33; i < 64; ++i) EXPECT_EQ(array.Get(i), nullptr);  // zero-filled

    ZTPArray small(5);
    for (int i = 0; i < 11; ++i) small.Add(new ArrItem(i));
    EXPECT_EQ(small.GetSize(), 15);
  }
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatBinary), slotBlocks);
  auto ex = Catch<ZTExceptCondition>([] { ZTPArray bad(0); });
  ExpectText(ex, "Condition check failed(_GrowStep > 0)");
}

TEST(ZTPArray, SetAddsWholeGrowStepsAndReplaces) {
  ArrItem::s_Destroyed = 0;
  ZTPArray array;
  EXPECT_EQ(array.Set(100, new ArrItem(100)), 100);
  EXPECT_EQ(array.GetSize(), 128);
  EXPECT_EQ(array.GetCount(), 1);
  EXPECT_EQ(array.Add(new ArrItem(1)), 1);  // first empty slot at or after count
  EXPECT_EQ(array.GetCount(), 2);

  // Replacing releases the old element; the count stays.
  array.Set(100, new ArrItem(7));
  EXPECT_EQ(ArrItem::s_Destroyed, 1);
  EXPECT_EQ(array.GetCount(), 2);
  EXPECT_EQ(ValueAt(array, 100), 7);

  // Storing the element a slot already holds must not delete it.
  ZTObject* same = array.Get(100);
  array.Set(100, same);
  EXPECT_EQ(ArrItem::s_Destroyed, 1);
  EXPECT_EQ(same->GetRefCount(), 1);

  auto neg = Catch<ZTExceptIndex>([&] { array.Set(-1, same); });
  ExpectText(neg, "Index check failed(_Idx >= 0)");
  EXPECT_STREQ(neg.GetName(), "_Idx");
  EXPECT_EQ(neg.GetIndex(), -1);
  auto null = Catch<ZTExceptParameter>([&] { array.Set(3, nullptr); });
  ExpectText(null, "Required parameter _Object != NULL is null.");
  EXPECT_STREQ(null.GetName(), "_Object != NULL");
}

TEST(ZTPArray, AddNeverReusesHolesBelowCountAndCountsNull) {
  ZTPArray array(4);
  Fill(array, {0, 1, 2});
  array.Remove(0, false);
  EXPECT_EQ(array.GetCount(), 2);
  EXPECT_EQ(array.Add(new ArrItem(3)), 3);  // slot 0 stays empty
  EXPECT_EQ(array.Get(0), nullptr);
  EXPECT_EQ(array.Add(new ArrItem(4)), 4);  // the array was full above count: grows
  EXPECT_EQ(array.GetSize(), 8);

  ZTPArray nulls(2);
  EXPECT_EQ(nulls.Add(nullptr), 0);
  EXPECT_EQ(nulls.GetCount(), 1);
  EXPECT_EQ(nulls.Get(0), nullptr);
  EXPECT_EQ(nulls.GetFirstIndex(), -1);
  // Counted null entries plus Set can lift the count beyond the slots; Add
  // must still land inside the array.
  nulls.Add(nullptr);
  nulls.Set(0, new ArrItem(0));
  nulls.Set(1, new ArrItem(1));
  EXPECT_EQ(nulls.GetCount(), 4);
  EXPECT_EQ(nulls.GetSize(), 2);
  const int pos = nulls.Add(new ArrItem(9));
  EXPECT_LT(pos, nulls.GetSize());
  EXPECT_EQ(ValueAt(nulls, pos), 9);
}

TEST(ZTPArray, InsertAndRemoveShift) {
  ArrItem::s_Destroyed = 0;
  ZTPArray array;
  Fill(array, {1, 2});
  auto* obj = new ArrItem(0);
  EXPECT_EQ(array.Insert(obj, 0), 0);
  EXPECT_EQ(array.GetCount(), 3);
  EXPECT_EQ(Slots(array, 4), (std::vector<int>{0, 1, 2, -1}));
  EXPECT_TRUE(array.Remove(0, true));
  EXPECT_EQ(Slots(array, 3), (std::vector<int>{1, 2, -1}));
  EXPECT_EQ(array.GetCount(), 2);
  EXPECT_EQ(ArrItem::s_Destroyed, 1);

  // Insert into a fresh array, into the middle, and into a full one.
  ZTPArray fresh(3);
  EXPECT_EQ(fresh.Insert(new ArrItem(5), 0), 0);
  EXPECT_EQ(fresh.GetSize(), 3);
  fresh.Add(new ArrItem(7));
  fresh.Insert(new ArrItem(6), 1);
  EXPECT_EQ(Slots(fresh, 3), (std::vector<int>{5, 6, 7}));
  fresh.Insert(new ArrItem(4), 0);
  EXPECT_EQ(fresh.GetSize(), 6);
  EXPECT_EQ(Slots(fresh, 5), (std::vector<int>{4, 5, 6, 7, -1}));
  ArrItem spare(0);
  auto ex = Catch<ZTExceptIndex>([&] { fresh.Insert(&spare, 6); });
  ExpectText(ex, "Index check failed(_Idx >= 0 && _Idx < m_Size)");
  EXPECT_EQ(ex.GetIndex(), 6);

  // Removing the last slot with shift, an empty slot, an object.
  EXPECT_TRUE(fresh.Remove(3, true));
  EXPECT_FALSE(fresh.Remove(3, true));
  EXPECT_TRUE(fresh.Remove(fresh.Get(1)));
  EXPECT_EQ(Slots(fresh, 4), (std::vector<int>{4, 6, -1, -1}));
  ArrItem probe(4);
  EXPECT_TRUE(fresh.Remove(&probe, false));  // found by comparison
  EXPECT_EQ(Slots(fresh, 2), (std::vector<int>{-1, 6}));
  auto bad = Catch<ZTExceptIndex>([&] { fresh.Remove(6, true); });
  ExpectText(bad, "Index check failed(0 <= _Idx && _Idx < m_Size)");
  EXPECT_STREQ(bad.GetName(), "_Idx");
}

TEST(ZTPArray, HolesAndIteration) {
  ZTPArray array;
  Fill(array, {0, 1, 2, 3});
  EXPECT_TRUE(array.Remove(1, false));
  EXPECT_EQ(array.GetCount(), 3);
  EXPECT_EQ(array.GetSize(), 32);
  std::vector<int> forward;
  for (int pos = array.GetFirstIndex(); pos >= 0;)
    forward.push_back(static_cast<ArrItem*>(array.GetNext(pos))->m_Value);
  EXPECT_EQ(forward, (std::vector<int>{0, 2, 3}));
  std::vector<int> backward;
  for (int pos = array.GetLastIndex(); pos >= 0;)
    backward.push_back(static_cast<ArrItem*>(array.GetPrev(pos))->m_Value);
  EXPECT_EQ(backward, (std::vector<int>{3, 2, 0}));
  EXPECT_EQ(static_cast<ArrItem*>(array.GetFirst())->m_Value, 0);
  EXPECT_EQ(static_cast<ArrItem*>(array.GetLast())->m_Value, 3);
  int neg = -1;
  EXPECT_EQ(array.GetNext(neg), nullptr);

  auto item = Catch<ZTExceptCondition>([&] { array.Item(1); });
  ExpectText(item, "Condition check failed(obj != NULL)");
  EXPECT_EQ(array.Item(2), array[2]);
  int far = 32;
  auto next = Catch<ZTExceptIndex>([&] { array.GetNext(far); });
  ExpectText(next, "Index check failed(index < m_Size)");
  EXPECT_STREQ(next.GetName(), "index");
  EXPECT_EQ(next.GetIndex(), 32);

  ZTPArray empty;
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_EQ(empty.GetFirstIndex(), -1);
  EXPECT_EQ(empty.GetLastIndex(), -1);
  EXPECT_EQ(empty.GetFirst(), nullptr);
  auto get = Catch<ZTExceptIndex>([&] { empty.Get(0); });
  ExpectText(get, "Index check failed(_Idx >= 0 && _Idx < m_Size)");
  EXPECT_STREQ(get.GetName(), "_Idx");
}

TEST(ZTPArray, FindComparesIndexIsIdentity) {
  ZTPArray array;
  Fill(array, {10, 20, 30, 20});
  ArrItem equal(20);
  EXPECT_EQ(array.Find(&equal), 1);
  EXPECT_TRUE(array.Contains(&equal));
  EXPECT_EQ(array.Index(&equal), -1);
  ZTObject* last = array.Get(3);
  EXPECT_EQ(array.Index(last), 3);
  EXPECT_EQ(array.Find(last), 1);  // the equal one comes first
  EXPECT_EQ(array.Index(array.Get(1), 2), -1);
  EXPECT_EQ(array.Index(array.Get(1), -1), 1);
  ArrItem missing(99);
  EXPECT_EQ(array.Find(&missing), -1);
  EXPECT_FALSE(array.Remove(&missing));
  ZTPArray empty;
  EXPECT_EQ(empty.Index(nullptr), -1);
}

TEST(ZTPArray, MoveReleasesOverwrittenSlotsOnly) {
  ArrItem::s_Destroyed = 0;
  ZTPArray down;
  Fill(down, {0, 1, 2, 3});
  EXPECT_TRUE(down.Move(2, 2, -1));  // slot 1 is overwritten and released
  EXPECT_EQ(Slots(down, 4), (std::vector<int>{0, 2, 3, -1}));
  EXPECT_EQ(down.GetCount(), 3);
  EXPECT_EQ(ArrItem::s_Destroyed, 1);
  EXPECT_TRUE(down.Move(2, 1, -5));  // clamped to slot 0
  EXPECT_EQ(Slots(down, 4), (std::vector<int>{3, 2, -1, -1}));
  EXPECT_EQ(ArrItem::s_Destroyed, 2);

  ZTPArray up;
  Fill(up, {0, 1, 2, 3});
  EXPECT_TRUE(up.Move(0, 2, 2));  // 2 and 3 are overwritten
  EXPECT_EQ(Slots(up, 5), (std::vector<int>{-1, -1, 0, 1, -1}));
  EXPECT_EQ(up.GetCount(), 2);
  EXPECT_EQ(ArrItem::s_Destroyed, 4);
  EXPECT_TRUE(up.Move(0, 5, 0));  // nothing
  EXPECT_EQ(Slots(up, 5), (std::vector<int>{-1, -1, 0, 1, -1}));

  // A block that ends before the last slot keeps every element it moves.
  ZTPArray block;
  Fill(block, {0, 1, 2});
  EXPECT_TRUE(block.Move(0, 3, 1));
  EXPECT_EQ(Slots(block, 5), (std::vector<int>{-1, 0, 1, 2, -1}));
  EXPECT_EQ(block.GetCount(), 3);
  EXPECT_EQ(ArrItem::s_Destroyed, 4);

  // Moving a full array up grows it to fit, trailing empties do not.
  ZTPArray full(4);
  Fill(full, {0, 1, 2, 3});
  EXPECT_TRUE(full.Move(1, 3, 1));
  EXPECT_EQ(full.GetSize(), 5);
  EXPECT_EQ(Slots(full, 5), (std::vector<int>{0, -1, 1, 2, 3}));
  ZTPArray sparse(4);
  Fill(sparse, {0});
  EXPECT_TRUE(sparse.Move(0, 4, 2));
  EXPECT_EQ(sparse.GetSize(), 4);
  EXPECT_EQ(Slots(sparse, 4), (std::vector<int>{-1, -1, 0, -1}));

  auto ex = Catch<ZTExceptIndex>([&] { full.Move(5, 1, 1); });
  ExpectText(ex, "Index check failed(_StartIndex >= 0 && _StartIndex < m_Size)");
  EXPECT_STREQ(ex.GetName(), "_StartIndex");
  EXPECT_EQ(ex.GetIndex(), 5);
}

TEST(ZTPArray, ResizeResetRemoveAllAndSwap) {
  ArrItem::s_Destroyed = 0;
  ZTPArray array(4);
  Fill(array, {0, 1, 2, 3, 4, 5});
  array.Resize(10);
  EXPECT_EQ(array.GetSize(), 10);
  EXPECT_EQ(Slots(array, 7), (std::vector<int>{0, 1, 2, 3, 4, 5, -1}));
  // Shrinking releases what is cut off.
  array.Resize(3);
  EXPECT_EQ(array.GetSize(), 3);
  EXPECT_EQ(array.GetCount(), 3);
  EXPECT_EQ(ArrItem::s_Destroyed, 3);
  EXPECT_EQ(array.Add(new ArrItem(6)), 3);

  array.Swap(0, 2);
  EXPECT_EQ(Slots(array, 4), (std::vector<int>{2, 1, 0, 6}));
  auto swap = Catch<ZTExceptCondition>([&] { array.Swap(0, 7); });
  ExpectText(swap,
             "Condition check failed(m_Data != NULL && _I1 >= 0 && _I1 < m_Size && _I2 >= 0 && "
             "_I2 < m_Size)");
  auto neg = Catch<ZTExceptCondition>([&] { array.Resize(-1); });
  ExpectText(neg, "Condition check failed(_Size > 0)");

  array.Reset();
  EXPECT_EQ(array.GetSize(), 4);
  EXPECT_EQ(array.GetCount(), 0);
  EXPECT_EQ(ArrItem::s_Destroyed, 7);
  array.Add(new ArrItem(8));
  array.Resize(0);
  EXPECT_EQ(array.GetSize(), 0);
  EXPECT_EQ(ArrItem::s_Destroyed, 8);
  array.RemoveAll();  // again: harmless
  EXPECT_EQ(array.GetCount(), 0);
}

TEST(ZTPArray, CopySharesDeepCopyClones) {
  ArrItem::s_Destroyed = 0;
  {
    ZTPArray source(8);
    Fill(source, {1, 2, 3});
    source.Remove(1, false);

    ZTPArray shared(source);
    EXPECT_EQ(shared.GetGrowStep(), 8);
    EXPECT_EQ(shared.GetSize(), 8);
    EXPECT_EQ(shared.GetCount(), 2);
    EXPECT_EQ(shared.Get(0), source.Get(0));
    EXPECT_EQ(shared.Get(1), nullptr);
    EXPECT_EQ(source.Get(0)->GetRefCount(), 2);

    ZTPArray deep;
    Fill(deep, {9});
    deep = source;
    EXPECT_EQ(ArrItem::s_Destroyed, 2);  // 2 (removed) and 9 (cleared)
    EXPECT_EQ(deep.GetGrowStep(), 8);
    EXPECT_NE(deep.Get(0), source.Get(0));
    EXPECT_EQ(Slots(deep, 3), (std::vector<int>{1, -1, 3}));
    EXPECT_EQ(deep.Get(2)->GetRefCount(), 1);
    EXPECT_TRUE(deep.Get(2)->IsInitialized());

    ZTPArray copied;
    copied.Copy(source);
    EXPECT_EQ(copied.Get(2), source.Get(2));
    copied.DeepCopy(source);
    EXPECT_NE(copied.Get(2), source.Get(2));
    EXPECT_EQ(Slots(copied, 3), (std::vector<int>{1, -1, 3}));

    copied.Assign(copied, false);  // self: unchanged
    EXPECT_EQ(copied.GetCount(), 2);
    ZTPArray none(3);
    copied.Assign(none, true);  // an empty source leaves the cleared target
    EXPECT_EQ(copied.GetSize(), 0);
    EXPECT_EQ(copied.GetCount(), 0);
    EXPECT_EQ(copied.GetGrowStep(), 8);
  }
  EXPECT_EQ(ArrItem::s_Destroyed, 2 + 2 + 2 + 2);  // source, deep, two deep copies
}

TEST(ZTPArray, ElementsDieWithTheirLastSlot) {
  ArrItem::s_Destroyed = 0;
  auto* a = new ArrItem(1);
  {
    ZTPArray first;
    first.Add(a);
    {
      ZTPArray second;
      second.Add(a);
      EXPECT_EQ(a->GetRefCount(), 2);
    }
    EXPECT_EQ(ArrItem::s_Destroyed, 0);
    EXPECT_EQ(a->GetRefCount(), 1);
  }
  EXPECT_EQ(ArrItem::s_Destroyed, 1);

  // With flag 0x10000 the array releases but never deletes.
  auto* kept = new ArrItem(2);
  {
    ZTPArray keeper;
    keeper.SetFlag(ZTPArray::FlagNoDeleteElements);
    EXPECT_EQ(ZTPArray::FlagNoDeleteElements, 0x10000ul);
    keeper.Add(kept);
  }
  EXPECT_EQ(ArrItem::s_Destroyed, 1);
  EXPECT_EQ(kept->GetRefCount(), 0);
  kept->Delete();
  EXPECT_EQ(ArrItem::s_Destroyed, 2);

  // Automatic objects survive every array.
  {
    ArrItem local(3);
    ZTPArray holder;
    holder.Add(&local);
    holder.RemoveAll();
    EXPECT_EQ(ArrItem::s_Destroyed, 2);
  }
  EXPECT_EQ(ArrItem::s_Destroyed, 3);
}

TEST(ZTPArray, CreatableByNameInContainerCategory) {
  const int containers = ZTMemMgr::GetUsageCount(ZTMemCatContainer);
  ZTObject* made = ZTObjectCreator::CreateObject("ZTPArray");
  ASSERT_NE(made, nullptr);
  EXPECT_STREQ(made->GetClassName(), "ZTPArray");
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatContainer), containers + 1);
  auto* array = ZTDynamicCastT<ZTPArray>(made);
  ASSERT_NE(array, nullptr);
  array->Attach();
  array->Add(new ArrItem(1));
  ZTObject* clone = array->Clone();
  EXPECT_STREQ(clone->GetClassName(), "ZTPArray");
  EXPECT_EQ(static_cast<ZTPArray*>(clone)->Get(0), array->Get(0));
  clone->Attach();
  clone->Detach();
  array->Detach();
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatContainer), containers);
  ZTObject* named = ZTObjectCreator::CreateObject("ZTNamedObjectArray");
  ASSERT_NE(named, nullptr);
  named->Attach();
  EXPECT_EQ(named->GetClassType(), ZTNamedObjectArray::ClassGetType());
  named->Detach();
}

TEST(ZTTPArray, TypedAccessCastsAtRunTime) {
  ZTTPArray<ArrItem> array;
  auto* item = new ArrItem(4);
  array.Add(item);
  array.Add(new OtherItem);
  EXPECT_EQ(array.Get(0), item);
  EXPECT_EQ(array[0]->m_Value, 4);
  EXPECT_EQ(array.Get(1), nullptr);  // another class
  EXPECT_NE(ZTDynamicCastT<OtherItem>(array.ZTPArray::Get(1)), nullptr);
  EXPECT_EQ(array.GetFirst(), item);
  EXPECT_EQ(array.GetLast(), nullptr);
  int pos = 0;
  EXPECT_EQ(array.GetNext(pos), item);
  EXPECT_EQ(pos, 1);
  EXPECT_EQ(array.Insert(new ArrItem(3), 0), 0);
  EXPECT_EQ(array.Item(0)->m_Value, 3);
  EXPECT_EQ(array.Set(5, new ArrItem(5)), 5);
  EXPECT_TRUE(array.Remove(item));
  EXPECT_EQ(array.GetCount(), 3);
  const ZTTPArray<ArrItem>& constant = array;
  EXPECT_EQ(constant.Get(0)->m_Value, 3);
}

TEST(ZTNamedObjectArray, NamesAreUniqueWithoutCase) {
  ArrItem::s_Destroyed = 0;
  ZTNamedObjectArray array;
  auto* a = new ArrItem(1);
  auto* b = new ArrItem(2);
  EXPECT_EQ(array.Append("Name", a), 0);
  EXPECT_EQ(array.Append("NAME", b), 0);
  EXPECT_EQ(array.GetCount(), 1);
  EXPECT_EQ(array.GetItem("name"), b);
  EXPECT_EQ(ArrItem::s_Destroyed, 1);
  EXPECT_STREQ(array.GetName(0), "Name");  // the first spelling stays

  array.Append("Other", new ArrItem(3));
  array.Append("Third", new ArrItem(4));
  EXPECT_EQ(array.Index("OTHER"), 1);
  EXPECT_EQ(array.Index("missing"), -1);
  EXPECT_TRUE(array.HasItem("third"));
  EXPECT_FALSE(array.HasItem("fourth"));
  EXPECT_EQ(array.Get("Third"), array.Get(2));
  EXPECT_EQ(array["third"], array[2]);
  EXPECT_EQ(array.GetItem("nothing"), nullptr);
  EXPECT_EQ(array.GetItem(1), array.Item(1));
  EXPECT_STREQ(static_cast<const char*>(array.Name(1)), "Other");

  // Removal keeps names and elements parallel.
  EXPECT_TRUE(array.Remove("other"));
  EXPECT_FALSE(array.Remove("other"));
  EXPECT_STREQ(array.GetName(1), "Third");
  EXPECT_EQ(static_cast<ArrItem*>(array.Get(1))->m_Value, 4);
  EXPECT_TRUE(array.Remove(0));
  EXPECT_STREQ(array.GetName(0), "Third");
  EXPECT_EQ(array.GetCount(), 1);
  EXPECT_EQ(ArrItem::s_Destroyed, 3);
}

TEST(ZTNamedObjectArray, FailuresCopiesAndReset) {
  ArrItem::s_Destroyed = 0;
  ZTNamedObjectArray array;
  array.Append("One", new ArrItem(1));
  array.Append("Two", new ArrItem(2));

  auto index = Catch<ZTExceptParameter>([&] { array.Index(nullptr); });
  ExpectText(index, "Required parameter _Name != NULL && _Name != '\\0' is null.");
  auto remove = Catch<ZTExceptParameter>([&] { array.Remove(static_cast<const char*>(nullptr)); });
  ExpectText(remove, "Required parameter _Name is null.");
  EXPECT_STREQ(remove.GetName(), "_Name");
  auto name = Catch<ZTExceptIndex>([&] { array.Name(2); });
  ExpectText(name, "Index check of array 'this'failed");
  EXPECT_STREQ(name.GetName(), "this");
  EXPECT_EQ(name.GetIndex(), 2);
  auto removeAt = Catch<ZTExceptIndex>([&] { array.Remove(-1); });
  ExpectText(removeAt, "Index check of array 'this'failed");
  // An element stored through the untyped interface has no name.
  static_cast<ZTPArray&>(array).Add(new ArrItem(3));
  auto unnamed = Catch<ZTExceptIndex>([&] { array.Name(2); });
  ExpectText(unnamed, "Index check failed(name != NULL)");

  ZTNamedObjectArray shared(array);
  EXPECT_EQ(shared.Get("two"), array.Get("two"));
  ZTNamedObjectArray deep;
  deep = array;
  EXPECT_NE(deep.Get("two"), array.Get("two"));
  EXPECT_EQ(static_cast<ArrItem*>(deep.Get("two"))->m_Value, 2);
  EXPECT_STREQ(deep.GetName(1), "Two");

  ZTNamedObjectArray merged;
  merged.Append("two", new ArrItem(20));
  merged.Append("Zero", new ArrItem(0));
  merged.Append(array, false);
  EXPECT_EQ(merged.GetCount(), 3);
  EXPECT_EQ(merged.Get("TWO"), array.Get("Two"));  // replaced under the old name
  EXPECT_STREQ(merged.GetName(0), "two");
  EXPECT_STREQ(merged.GetName(2), "One");

  ZTObject* cloned = array.Clone();
  cloned->Attach();
  EXPECT_STREQ(cloned->GetClassName(), "ZTNamedObjectArray");
  EXPECT_EQ(static_cast<ZTNamedObjectArray*>(cloned)->Get("one"), array.Get("one"));
  cloned->Detach();

  deep.Reset();
  EXPECT_EQ(deep.GetCount(), 0);
  EXPECT_FALSE(deep.HasItem("two"));
  deep.Append("New", new ArrItem(5));
  EXPECT_EQ(deep.Index("new"), 0);
}
