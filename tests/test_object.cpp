#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

// A creatable class of the object family, counting its destructions.
class TestThing : public ZTObject {
  ZT_DECLARE_CLASS(TestThing, ZTObjectCreator)
 public:
  TestThing() = default;
  TestThing(const TestThing& _Src) : ZTObject(_Src), m_Value(_Src.m_Value) {}
  ~TestThing() override { ++s_Destroyed; }
  int m_Value = 0;
  static int s_Destroyed;
};
int TestThing::s_Destroyed = 0;
ZT_IMPLEMENT_CLASS(TestThing, ZTObject, ZTObjectCreator, "thing")

class TestDerivedThing : public TestThing {
  ZT_DECLARE_CLASS(TestDerivedThing, ZTObjectCreator)
};
ZT_IMPLEMENT_CLASS(TestDerivedThing, TestThing, ZTObjectCreator, "TestDerivedThing")

class TestAbstract : public ZTObject {
  ZT_DECLARE_ABSTRACT(TestAbstract)
};
ZT_IMPLEMENT_ABSTRACT(TestAbstract, ZTObject)

namespace {

// A singleton class made through its own creator (not registered anywhere).
class TestSingle : public ZTObject {};
ZTObject* MakeSingle() { return new TestSingle; }

struct Probe : public ZTObject {
  void Deinit() override {
    ZTObject::Deinit();
    ++s_Deinits;
  }
  static inline int s_Deinits = 0;
};

}  // namespace

TEST(ZTObject, HeapObjectsAreCountedAndFreedAtZero) {
  TestThing::s_Destroyed = 0;
  auto* obj = new TestThing;
  EXPECT_FALSE(obj->IsAutoDelete());
  EXPECT_EQ(obj->GetRefCount(), 0);
  EXPECT_FALSE(obj->IsInitialized());
  EXPECT_EQ(obj->Attach(), 1);
  EXPECT_TRUE(obj->IsInitialized());  // the first Attach initialises
  EXPECT_EQ(obj->Attach(), 2);
  EXPECT_EQ(obj->Detach(), 1);
  EXPECT_EQ(obj->DetachNoDelete(), 0);  // kept at zero
  EXPECT_EQ(TestThing::s_Destroyed, 0);
  EXPECT_EQ(obj->Attach(), 1);
  EXPECT_EQ(obj->Detach(1ul), 0);  // keep bit
  EXPECT_EQ(TestThing::s_Destroyed, 0);
  EXPECT_EQ(obj->Attach(), 1);
  EXPECT_EQ(obj->Detach(0ul), 0);
  EXPECT_EQ(TestThing::s_Destroyed, 1);
}

TEST(ZTObject, AutomaticObjectsSurviveDetach) {
  WarningCapture capture;
  TestThing::s_Destroyed = 0;
  {
    TestThing local;
    EXPECT_TRUE(local.IsAutoDelete());
    EXPECT_EQ(local.GetRefCount(), 1);
    local.Attach();
    EXPECT_EQ(local.GetRefCount(), 1);
    local.Detach();
    EXPECT_EQ(local.Detach(), 0);
    local.Delete();  // never frees an automatic object
    EXPECT_EQ(TestThing::s_Destroyed, 0);
    local.Deinit();
  }
  EXPECT_EQ(TestThing::s_Destroyed, 1);
  EXPECT_EQ(capture.Text(), "");
}

TEST(ZTObject, DeleteDeinitialisesAndDetachOfDieingObjectDoesNothing) {
  WarningCapture capture;
  auto* probe = new Probe;
  probe->Attach();
  probe->Detach();
  EXPECT_EQ(Probe::s_Deinits, 1);
  EXPECT_EQ(capture.Text(), "");  // no warnings on the normal path

  auto* dieing = new Probe;
  dieing->Attach();
  dieing->SetFlag(ZTObject::FlagDieing);
  EXPECT_EQ(dieing->Detach(), 1);  // count unchanged, nothing deleted
  dieing->ClearFlag(ZTObject::FlagDieing);
  dieing->Detach();
  EXPECT_EQ(Probe::s_Deinits, 2);
}

TEST(ZTObject, LifeCycleWarnings) {
  WarningCapture capture;
  TestThing obj;
  EXPECT_TRUE(obj.Init());
  EXPECT_TRUE(obj.Init());
  EXPECT_TRUE(capture.Contains("\"ZTObject::Init: Called more than once.\"\n"));
  obj.Deinit();
  EXPECT_FALSE(obj.IsInitialized());
  capture.Clear();
  const unsigned long flags = obj.GetFlags();
  obj.Deinit();
  EXPECT_TRUE(capture.Contains(
      "\"ZTObject::Deinit: 'Deinit' called more than once or without previous call of 'Init'.\""));
  EXPECT_EQ(obj.GetFlags(), flags);
  capture.Clear();
  EXPECT_TRUE(obj.Initialize());
  EXPECT_TRUE(obj.Initialize());
  EXPECT_TRUE(capture.Contains("\"ZTObject::Initialize: Called more than once.\""));
  obj.Finalize();
  obj.Finalize();
  EXPECT_TRUE(capture.Contains(
      "\"ZTObject::Finalize: Called more than once or without previous call of 'Initialize'.\""));

  // Destroying a heap object that is still referenced and initialised.
  capture.Clear();
  auto* heap = new TestThing;
  heap->Attach();
  delete heap;
  EXPECT_TRUE(capture.Contains("\"Object destroyed explicitly.\""));
  EXPECT_TRUE(capture.Contains("\"'Deinit' or 'Finalize' has not been called.\""));
}

TEST(ZTObject, CopyConstructionKeepsFlagsButNotLifeState) {
  WarningCapture capture;
  TestThing src;
  src.m_Value = 7;
  src.Init();
  src.SetFlag(0x10000);
  TestThing copy(src);
  EXPECT_EQ(copy.m_Value, 7);
  EXPECT_TRUE(copy.IsFlagSet(0x10000 | ZTObject::FlagAutomatic));
  EXPECT_FALSE(copy.IsInitialized());
  EXPECT_EQ(copy.GetRefCount(), 1);

  auto* heapCopy = new TestThing(src);
  EXPECT_FALSE(heapCopy->IsAutoDelete());
  EXPECT_EQ(heapCopy->GetRefCount(), 0);
  delete heapCopy;

  src.SetFlag(ZTObject::FlagDieing);
  TestThing fromDieing(src);
  EXPECT_TRUE(capture.Contains("\"Copy constructor of dieing object called.\""));
  src.ClearFlag(ZTObject::FlagDieing);
  src.Deinit();

  TestThing* clone = static_cast<TestThing*>(src.Clone());
  EXPECT_EQ(clone->m_Value, 7);
  EXPECT_TRUE(clone->IsInitialized());
  EXPECT_FALSE(clone->IsAutoDelete());
  clone->Attach();
  clone->Detach();
}

TEST(ZTObject, FlagHelpersWorkOnTheWholeWord) {
  TestThing obj;
  EXPECT_EQ(obj.SetFlags(0x30), 0x30ul);
  EXPECT_EQ(obj.SetFlag(0x5), 0x35ul);
  EXPECT_TRUE(obj.IsFlagSet(0x11));
  EXPECT_FALSE(obj.IsFlagSet(0x3));
  EXPECT_EQ(obj.ClearFlag(0x10), 0x25ul);
  EXPECT_EQ(obj.GetFlags(), 0x25ul);
  obj.SetFlags(ZTObject::FlagAutomatic);
}

TEST(ZTObject, BaseOperationsThrowWhereTheyMustBeOverridden) {
  ZTObject plain;
  auto clone = Catch([&] { plain.Clone(); });
  EXPECT_STREQ(clone.GetMsg(0), "\"ZTObject::Clone called\"");
  TestThing thing;
  auto copy = Catch([&] { thing.Copy(&plain); });
  EXPECT_STREQ(copy.GetMsg(0), "void TestThing::Copy(ZTObject* _Src) must be implemented!");

  // Address order, equality only with itself.
  ZTObject a, b;
  EXPECT_EQ(a.Cmp(&a), CmpEqual);
  EXPECT_EQ(a.Cmp(&b), &a < &b ? CmpLess : CmpGreater);
  EXPECT_EQ(b.Cmp(&a), &b < &a ? CmpLess : CmpGreater);
}

TEST(ZTClassType, KindOfFollowsTheBaseChainByIdentity) {
  TestDerivedThing derived;
  TestThing thing;
  EXPECT_TRUE(derived.IsKindOf(TestThing::ClassGetType()));
  EXPECT_TRUE(derived.IsKindOf(ZTObject::ClassGetType()));
  EXPECT_FALSE(thing.IsKindOf(TestDerivedThing::ClassGetType()));
  EXPECT_TRUE(derived.IsKindOf(&thing));
  EXPECT_FALSE(thing.IsKindOf(&derived));
  EXPECT_TRUE(derived.IsA(TestDerivedThing::ClassGetType()));
  EXPECT_FALSE(derived.IsA(TestThing::ClassGetType()));
  EXPECT_EQ(derived.GetObjectType(), derived.GetClassType());
  EXPECT_STREQ(derived.GetClassName(), "TestDerivedThing");
  EXPECT_EQ(TestThing::ClassTypeTestThing.GetBaseType(), ZTObject::ClassGetType());
  EXPECT_EQ(TestThing::ClassTypeTestThing.GetObjectSize(), sizeof(TestThing));
  EXPECT_EQ(ZTObject::ClassTypeZTObject.GetBaseType(), nullptr);
  EXPECT_STREQ(ZTObject::ClassTypeZTObject.GetClassName(), "ZTObject");
  EXPECT_STREQ(TestAbstract::ClassTypeTestAbstract.GetClassName(), "TestAbstract");

  // A type record with the same name is still another type.
  ZTClassType lookalike("TestThing", ZTObject::ClassGetType(), 1);
  EXPECT_FALSE(thing.IsKindOf(&lookalike));

  auto ex = Catch<ZTExceptCondition>([&] { thing.GetClassType()->IsKindOf(nullptr); });
  EXPECT_STREQ(ex.GetMsg(0), "Condition check failed(_ClassType != NULL)");

  EXPECT_EQ(ZTDynamicCast(TestThing::ClassGetType(), static_cast<ZTObject*>(&derived)), &derived);
  EXPECT_EQ(ZTDynamicCast(TestDerivedThing::ClassGetType(), static_cast<ZTObject*>(&thing)), nullptr);
  EXPECT_EQ(ZTDynamicCast(TestThing::ClassGetType(), static_cast<ZTObject*>(nullptr)), nullptr);
  const ZTObject* constThing = &thing;
  EXPECT_EQ(ZTDynamicCastT<TestThing>(constThing), &thing);
}

TEST(ZTCreator, CreationByNameWithinTheFamily) {
  TestThing::s_Destroyed = 0;
  ZTObject* byClass = ZTObjectCreator::CreateObject("TestThing");
  ASSERT_NE(byClass, nullptr);
  EXPECT_TRUE(byClass->IsA(TestThing::ClassGetType()));
  EXPECT_FALSE(byClass->IsAutoDelete());
  ZTObject* byType = ZTObjectCreator::CreateObject("thing");
  ASSERT_NE(byType, nullptr);
  ZTObject* byUpper = ZTObjectCreator::CreateObject("THING");  // lower-case retry
  ASSERT_NE(byUpper, nullptr);
  ZTObject* byRecord = ZTObjectCreator::CreateObject(TestDerivedThing::ClassGetType());
  ASSERT_NE(byRecord, nullptr);
  EXPECT_TRUE(byRecord->IsA(TestDerivedThing::ClassGetType()));
  EXPECT_EQ(ZTObjectCreator::CreateObject("NoSuchThing"), nullptr);
  EXPECT_TRUE(ZTObjectCreator::IsValidClassName("thing"));
  EXPECT_FALSE(ZTObjectCreator::IsValidClassName("THING"));  // exact only
  for (ZTObject* obj : {byClass, byType, byUpper, byRecord}) {
    obj->Attach();
    obj->Detach();
  }
  EXPECT_EQ(TestThing::s_Destroyed, 4);
  EXPECT_EQ(TestThing::ClassTypeTestThing.GetTypeName(), std::string("thing"));
  TestThing t;
  EXPECT_EQ(t.GetCreator(), &TestThing::ClassTypeTestThing);
}

TEST(ZTClassFactory, CreationAcrossFamiliesChecksTheRequiredBase) {
  TestThing::s_Destroyed = 0;
  ZTObject* obj = ZTClassFactory::CreateObject("TestDerivedThing", TestThing::ClassGetType());
  ASSERT_NE(obj, nullptr);
  obj->Attach();
  obj->Detach();
  EXPECT_EQ(TestThing::s_Destroyed, 1);

  // No lower-case retry across families.
  auto invalid = Catch<ZTExceptCreator>([] { ZTClassFactory::CreateObject("THING", nullptr); });
  EXPECT_STREQ(invalid.GetMsg(0), "Create object: invalid class name 'THING'");
  EXPECT_STREQ(invalid.GetClassName(), "THING");

  // Not derived: the object is freed, then the exception is thrown.
  auto wrong = Catch<ZTExceptCreator>(
      [] { ZTClassFactory::CreateObject("thing", TestDerivedThing::ClassGetType()); });
  EXPECT_STREQ(wrong.GetMsg(0), "Create object: class 'thing' is not derived from 'TestDerivedThing'");
  EXPECT_STREQ(wrong.GetExpectedBaseClassName(), "TestDerivedThing");
  EXPECT_EQ(TestThing::s_Destroyed, 2);

  auto nullName = Catch<ZTExceptCondition>([] { ZTClassFactory::CreateObject(nullptr, nullptr); });
  EXPECT_STREQ(nullName.GetMsg(0), "Condition check failed(_ClassName != NULL)");
}

namespace {
// A key whose hash falls into the given bucket.
std::string KeyInBucket(unsigned _Bucket) {
  for (int i = 0;; ++i) {
    std::string key = "k" + std::to_string(i);
    if (ZTHashText(key.c_str()) % ZTClassFactory::BucketCount == _Bucket) return key;
  }
}
}  // namespace

TEST(ZTClassFactory, RegistrationLookupAndIteration) {
  WarningCapture capture;
  ZTCreator a("AlphaClass", "alpha", ZTObject::ClassGetType(), 8, nullptr);
  ZTCreator same("SameName", "SameName", ZTObject::ClassGetType(), 8, nullptr);
  ZTClassFactory factory;
  EXPECT_EQ(factory.GetFirstPosition(), nullptr);
  EXPECT_TRUE(factory.AddCreator(&a));
  EXPECT_EQ(factory.GetCount(), 2);  // class name and type name
  EXPECT_EQ(factory.FindCreator("alpha"), &a);
  EXPECT_EQ(factory["AlphaClass"], &a);
  EXPECT_EQ(factory.FindCreator("ALPHA"), nullptr);
  EXPECT_TRUE(factory.AddCreator(&same));
  EXPECT_EQ(factory.GetCount(), 3);  // equal names are entered once

  // A second creator under a known key is refused; the first stays.
  ZTCreator b("alpha", nullptr, ZTObject::ClassGetType(), 8, nullptr);
  EXPECT_FALSE(factory.AddCreator(&b));
  EXPECT_TRUE(capture.Contains("\"Attempt to register different creator with same key 'alpha' ignored.\""));
  EXPECT_EQ(factory.FindCreator("alpha"), &a);

  capture.Clear();
  EXPECT_FALSE(factory.AddCreator(nullptr));
  EXPECT_TRUE(capture.Contains("] : Attempt to add NULL creator ignored.\n"));
  ZTCreator nameless(nullptr, nullptr, nullptr, 0, nullptr);
  auto noName = Catch<ZTExceptParameter>([&] { factory.AddCreator(&nameless); });
  EXPECT_TRUE(capture.Contains("Missing class name."));
  EXPECT_STREQ(noName.GetMsg(0), "Required parameter _Key is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { factory.AddCreator(nullptr, nullptr); }).GetMsg(0),
               "Required parameter _Creator != NULL || _Key != NULL is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { factory.FindCreator(nullptr); }).GetMsg(0),
               "Required parameter _Key is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { factory.RemoveCreator(nullptr); }).GetMsg(0),
               "Required parameter _Key != NULL is null.");

  // Iteration visits every entry once, in bucket order.
  int seen = 0;
  for (void* pos = factory.GetFirstPosition(); pos;) {
    EXPECT_NE(factory.GetClassType(pos), nullptr);
    factory.GetNextClassType(pos);
    ++seen;
  }
  EXPECT_EQ(seen, 3);

  EXPECT_EQ(factory.RemoveCreator("SameName"), &same);
  EXPECT_EQ(factory.RemoveCreator("SameName"), nullptr);
  EXPECT_EQ(factory.GetCount(), 2);

  // The only entry in the last bucket is found, then the end.
  ZTClassFactory last;
  const std::string key = KeyInBucket(210);
  EXPECT_TRUE(last.AddCreator(key.c_str(), &a));
  void* pos = last.GetFirstPosition();
  ASSERT_NE(pos, nullptr);
  EXPECT_EQ(last.GetNextClassType(pos), &a);
  EXPECT_EQ(pos, nullptr);
  EXPECT_EQ(last.GetNextPosition(last.GetFirstPosition()), nullptr);
}

TEST(ZTClassFactory, TheFactoryTableHoldsThirtyTwoFactories) {
  std::vector<std::unique_ptr<ZTClassFactory>> factories;
  try {
    for (int i = 0; i < ZTClassFactory::MaxFactories + 1; ++i)
      factories.push_back(std::make_unique<ZTClassFactory>());
    ADD_FAILURE() << "the table never filled";
  } catch (const ZTExceptFactory& ex) {
    EXPECT_STREQ(ex.GetMsg(0), "Object factory: 'out of factories'");
    EXPECT_LT(factories.size(), static_cast<std::size_t>(ZTClassFactory::MaxFactories));
  }
  factories.clear();
  // Slots are free again: the families still work.
  ZTObject* obj = ZTObjectCreator::CreateObject("thing");
  ASSERT_NE(obj, nullptr);
  obj->Attach();
  obj->Detach();
}

TEST(ZTCreator, SingletonAndProcedureChecks) {
  ZTSingletonCreator single("TestSingle", nullptr, ZTObject::ClassGetType(), sizeof(TestSingle),
                            &MakeSingle);
  EXPECT_FALSE(single.IsAllocated());
  ZTObject* first = single.CreateObject();
  EXPECT_EQ(single.CreateObject(), first);
  EXPECT_TRUE(single.IsAllocated());
  single.ObjectDeleted(first);
  EXPECT_FALSE(single.IsAllocated());
  first->Attach();
  first->Detach();

  ZTSingletonCreator noProcS("X", nullptr, nullptr, 0, nullptr);
  auto ex = Catch<ZTExceptCondition>([&] { noProcS.CreateObject(); });
  EXPECT_STREQ(ex.GetMsg(0), "\"Invalid function pointer.\"");
  EXPECT_STREQ(ex.GetMsg(1), "Condition check failed(m_CreateProc != NULL)");
  ZTCreator noProc("X", nullptr, nullptr, 0, nullptr);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { noProc.CreateObject(); }).GetMsg(0),
               "\"Invalid function pointer\"");
}

TEST(ZTObject, AllocationStackOverflowTurnsLostAddressesIntoAutomaticObjects) {
  WarningCapture capture;
  constexpr int Nested = 9;
  void* memory[Nested];
  for (void*& p : memory) p = TestThing::operator new(sizeof(TestThing));
  EXPECT_TRUE(capture.Contains("\"ZTObject::SetLastAllocated: AllocationStack overflow\""));
  std::vector<TestThing*> objects;
  for (void* p : memory) objects.push_back(::new (p) TestThing);
  // The ninth address was never recorded and the first eight were dropped.
  for (TestThing* obj : objects) EXPECT_TRUE(obj->IsAutoDelete());
  for (TestThing* obj : objects) {
    obj->~TestThing();
    TestThing::operator delete(obj);
  }
}

TEST(ZTObject, HeapAndAutomaticObjectsAreToldApartOnEveryThread) {
  // The first objects are made while the process has one thread, the rest by
  // two threads at once, so both ways through the allocation paths are taken.
  std::atomic<int> wrong{0};
  auto work = [&wrong](int _Rounds) {
    for (int i = 0; i < _Rounds; ++i) {
      auto* heap = new ZTPArray;
      const ZTPArray automatic;
      if (heap->IsAutoDelete() || !automatic.IsAutoDelete()) ++wrong;
      heap->Attach();
      heap->Add(new ZTString("element"));
      heap->Detach();
    }
  };
  work(100);
  std::thread first(work, 20000), second(work, 20000);
  first.join();
  second.join();
  work(100);
  EXPECT_EQ(wrong.load(), 0);
}

TEST(ZTObject, InitAndExitAreHarmless) {
  EXPECT_TRUE(InitZT());
  ExitZT();
  ZTObject* obj = ZTObjectCreator::CreateObject("thing");
  ASSERT_NE(obj, nullptr);
  delete obj;
}
