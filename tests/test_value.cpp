#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

namespace {

// A minimal integer value: enough of the protocol to convert and compare.
class ZTTestInt : public ZTValue {
  ZT_DECLARE_CLASS(ZTTestInt, ZTValueCreator)

 public:
  ZTTestInt() = default;
  explicit ZTTestInt(int _Val) { Set(_Val); }
  ZTTestInt(const ZTTestInt& _Src) : ZTValue(_Src), m_Val(_Src.m_Val) {}

  void Set(int _Val) {
    if (!IsNull() && m_Val == _Val) return;
    SetDirty();
    m_Val = _Val;
    ClearFlag(FlagNull);
  }
  int Number() const { return m_Val; }

  const char* GetTypeName() const override { return "testint"; }
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int, const char*) override {
    if (!_Str) SetNull();
    else Set(std::atoi(_Str));
    return _Str;
  }
  const char* CopyIntoString(ZTString& _Str, const char*) const override {
    if (IsNull()) _Str = "";
    else _Str.Format("%d", m_Val);
    return _Str;
  }
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override {
    if (_Value.IsNull()) SetNull();
    else SetString(_Value.GetString());
    return this;
  }

 private:
  int m_Val = 0;
};
ZT_IMPLEMENT_CLASS(ZTTestInt, ZTValue, ZTValueCreator, "testint")

// A value that cannot be cloned.
class NoCloneInt : public ZTTestInt {
  ZT_DECLARE_ABSTRACT(NoCloneInt)

 public:
  explicit NoCloneInt(int _Val) : ZTTestInt(_Val) {}
  ZTObject* Clone() const override { return nullptr; }
};
ZT_IMPLEMENT_ABSTRACT(NoCloneInt, ZTTestInt)

// A handler of its own: keeps one original per value, counts its calls.
class TestHandler : public ZTDirtyHandler {
 public:
  ~TestHandler() override {
    for (auto& entry : m_Orgs) entry.second->Detach();
    ++s_Destroyed;
  }
  void ItsMe(ZTValue* _Value) override { m_ItsMe = _Value; }
  using ZTDirtyHandler::SetDirty;
  void SetDirty(ZTValue* _Value) override {
    ++m_SetDirtyCalls;
    ZTValue* org = ZTDynamicCastT<ZTValue>(_Value->Clone());
    org->Attach();
    m_Orgs[_Value] = org;
  }
  bool IsDirty(const ZTValue* _Value) const override { return m_Orgs.count(_Value) != 0; }
  ZTValue* GetOrgValue(const ZTValue* _Value) const override {
    const auto it = m_Orgs.find(_Value);
    return it == m_Orgs.end() ? nullptr : it->second;
  }
  void Apply(ZTValue* _Value) override {
    ++m_ApplyCalls;
    Drop(_Value);
  }
  void Restore(ZTValue* _Value) override {
    ++m_RestoreCalls;
    if (ZTValue* org = GetOrgValue(_Value)) _Value->SetValue(*org);
    Drop(_Value);
  }

  int m_SetDirtyCalls = 0;
  int m_ApplyCalls = 0;
  int m_RestoreCalls = 0;
  ZTValue* m_ItsMe = nullptr;
  static inline int s_Destroyed = 0;

 private:
  void Drop(const ZTValue* _Value) {
    const auto it = m_Orgs.find(_Value);
    if (it == m_Orgs.end()) return;
    it->second->Detach();
    m_Orgs.erase(it);
  }
  std::map<const ZTValue*, ZTValue*> m_Orgs;
};

int KeeperCount() { return ZTValuesDirtyHandler::GetKeeper().GetItemCount(); }

std::string Texts(const ZTValueContainer& _Container) {
  std::string out;
  for (int i = 0; i < _Container.GetCount(); ++i) out += "[" + std::string(_Container.Get(i)->String()) + "]";
  return out;
}

}  // namespace

TEST(ZTValue, FlagsAndDefaults) {
  ZTValue v;
  EXPECT_EQ(v.GetFlags() & 0xFF00, 0x1100u);
  EXPECT_TRUE(v.IsNull());
  EXPECT_TRUE(v.IsEmpty());
  EXPECT_FALSE(v.IsValid());
  EXPECT_TRUE(v.IsUsed());
  EXPECT_TRUE(v.IsNative());
  EXPECT_STREQ(v.GetTypeName(), "value");
  EXPECT_EQ(v.GetDirtyHandler(), nullptr);

  v.SetFlag(ZTValue::FlagDirty | ZTValue::FlagUseDirtyFunction | ZTValue::FlagHasValueParts |
            ZTValue::FlagOriginDataSource);
  ZTValue copy(v);
  EXPECT_EQ(copy.GetFlags() & 0xFF00, 0x1900u) << "the copy keeps null, used and origin";
  EXPECT_EQ(copy.GetValueState(), nullptr);
  v.ClearFlag(ZTValue::FlagDirty | ZTValue::FlagHasValueParts);

  ZTTestInt n(3);
  n.Reset(ZTValue::ResetUseDirtyFunction);
  EXPECT_TRUE(n.UseDirtyFunction());
  n.SetFlag(ZTValue::FlagOriginDataSource);
  EXPECT_TRUE(n.IsOriginDataSource());
  n.Reset(ZTValue::ResetOriginDataSource);
  EXPECT_FALSE(n.IsOriginDataSource());
  EXPECT_FALSE(n.UseDirtyFunction());
  n.Reset(ZTValue::ResetSetNull);
  EXPECT_TRUE(n.IsNull());
  EXPECT_FALSE(n.IsDirty()) << "untracked: no original recorded";

  EXPECT_TRUE(ZTValue::NullValue().IsNull());
  EXPECT_EQ(&ZTValue::NullValue(), &ZTValue::NullValue());
}

TEST(ZTValue, DefaultProtocolWarnsAndThrows) {
  WarningCapture warnings;
  ZTValue v;
  ZTTestInt other(1);
  EXPECT_EQ(v.SetValue(other), &v);
  EXPECT_TRUE(warnings.Contains("\"ZTValue::SetValue (type = value) called: This is not intented.\""));
  EXPECT_EQ(v.SetValue("Name", other), &v);
  EXPECT_TRUE(warnings.Contains("\"ZTValue::SetValue(Name) (type = value) called: This is not intented.\""));
  EXPECT_EQ(v.GetValue(2, "Sub"), nullptr);
  EXPECT_TRUE(warnings.Contains("\"ZTValue::GetValue(2, Sub) (type = value) called: This is not intented.\""));
  EXPECT_EQ(static_cast<const ZTValue&>(v).GetValue("Sub"), nullptr);
  EXPECT_TRUE(warnings.Contains("\"ZTValue::GetValue(Sub) (type = value) called: This is not intented.\""));
  EXPECT_EQ(v.GetValueByName("Sub", 0), nullptr);
  EXPECT_TRUE(warnings.Contains("\"ZTValue::GetValueByName(Sub) (type = value) called: This is not intented.\""));
  EXPECT_TRUE(warnings.Protocol().find("GetValueByName(Sub)") != std::string::npos);

  auto setString = Catch([&] { v.SetString("x", -1, nullptr); });
  EXPECT_STREQ(setString.GetMsg(0),
               "\"'SetString' of ZTValue has to be implemented by\" \" derived class 'ZTValue'.\"");
  auto copyInto = Catch([&] { v.GetString(); });
  EXPECT_STREQ(copyInto.GetMsg(0),
               "\"'CopyIntoString' of ZTValue has to be implemented by\" \" derived class 'ZTValue'.\"");
  auto byName = Catch([&] { other.GetStringByName("x"); });
  EXPECT_STREQ(byName.GetMsg(0),
               "\"'GetStringByName' of ZTValue has to be implemented by\" \" derived class 'ZTTestInt'.\"");
  auto byIndex = Catch([&] { other.GetStringByIndexAndName(0, "x"); });
  EXPECT_STREQ(byIndex.GetMsg(0),
               "\"'GetStringByIndexAndName' of ZTValue has to be implemented by\" \" derived class 'ZTTestInt'.\"");
  auto get = Catch([&] { v.Get(nullptr, 0); });
  EXPECT_STREQ(get.GetMsg(0), "\"Get of ZTValue has to be implemented by all derived values\"");
  EXPECT_THROW(v.Value("missing"), ZTExceptCondition);

  // The ZTString form of SetString forwards to the text form.
  ZTTestInt target;
  EXPECT_STREQ(target.SetString(ZTString("17")), "17");
  EXPECT_EQ(target.Number(), 17);
}

TEST(ZTValue, ComparisonAcrossClasses) {
  EXPECT_EQ(ZTTestInt().Cmp(ZTString()), CmpEqual) << "two nulls of different classes";
  EXPECT_EQ(ZTTestInt(5).Cmp(ZTTestInt()), CmpGreater);
  EXPECT_EQ(ZTTestInt(5).Cmp(ZTString("5")), CmpEqual) << "the string is converted first";
  EXPECT_EQ(ZTTestInt(5).Cmp(ZTString("6")), CmpLess);
  EXPECT_EQ(ZTString("5").Cmp(ZTTestInt(5)), CmpEqual);
  EXPECT_EQ(ZTString("7").Cmp(ZTTestInt(5)), CmpGreater);
  EXPECT_TRUE(ZTTestInt(2) < ZTTestInt(3));
  const ZTObject& asObject = ZTTestInt(4);
  EXPECT_EQ(ZTTestInt(4).Cmp(&asObject), CmpEqual);

  const NoCloneInt unclonable(1);
  EXPECT_EQ(unclonable.GetClassType(), NoCloneInt::ClassGetType());
  const ZTString text("1");
  EXPECT_EQ(unclonable.Cmp(text), CmpNotEqual);
  EXPECT_FALSE(unclonable < text);
  EXPECT_FALSE(unclonable <= text);
  EXPECT_FALSE(unclonable > text);
  EXPECT_FALSE(unclonable >= text);
  EXPECT_FALSE(unclonable == text);
  EXPECT_TRUE(unclonable != text);
}

TEST(ZTValue, CreationByTypeName) {
  for (const char* name : {"string", "ZTString", "String"}) {
    ZTValue* value = ZTValueCreator::CreateObject(name);
    ASSERT_NE(value, nullptr) << name;
    EXPECT_STREQ(value->GetClassName(), "ZTString") << name;
    EXPECT_TRUE(value->IsNull());
    value->Attach();
    value->Detach();
  }
  ZTValue* lower = ZTValueCreator::CreateObject("TestInt");
  ASSERT_NE(lower, nullptr) << "found through the lower-case retry";
  EXPECT_STREQ(lower->GetTypeName(), "testint");
  lower->Attach();
  lower->Detach();
  EXPECT_EQ(ZTValueCreator::CreateObject("NoSuchValue"), nullptr);
  EXPECT_TRUE(ZTValueCreator::IsValidClassName("valuecontainer"));
  EXPECT_TRUE(ZTValueCreator::IsValidClassName("value"));
  EXPECT_FALSE(ZTValueCreator::IsValidClassName("Value"));
  ZTValue* byType = ZTValueCreator::CreateObject(ZTString::ClassGetType());
  ASSERT_NE(byType, nullptr);
  byType->Attach();
  byType->Detach();
}

TEST(ZTValue, GetStringVal) {
  char buffer[4] = "xyz";
  EXPECT_STREQ(ZTString("12345").GetStringVal(buffer, sizeof(buffer)), "123");
  std::strcpy(buffer, "xyz");
  EXPECT_STREQ(ZTString().GetStringVal(buffer, sizeof(buffer)), "") << "a null value empties the buffer";
  EXPECT_EQ(ZTString("1").GetStringVal(nullptr, 4), nullptr);
  char big[16];
  EXPECT_STREQ(ZTTestInt(-42).GetStringVal(big, sizeof(big)), "-42");
}

TEST(ZTValue, TrackingWithoutHandler) {
  const int items = KeeperCount();
  ZTTestInt n(1);
  n.Set(2);
  EXPECT_FALSE(n.IsDirty()) << "no tracking until the dirty function is on";

  n.SetUseDirtyFunction(true);
  n.Set(3);
  EXPECT_TRUE(n.IsDirty());
  EXPECT_TRUE(n.IsFlagSet(ZTValue::FlagDirty));
  EXPECT_EQ(KeeperCount(), items + 1);
  n.Set(4);
  ASSERT_NE(n.GetOrgValue(), nullptr);
  EXPECT_EQ(static_cast<ZTTestInt*>(n.GetOrgValue())->Number(), 2) << "the original before the first change";
  n.RestoreToOrgValue();
  EXPECT_EQ(n.Number(), 2);
  EXPECT_FALSE(n.IsDirty());
  EXPECT_EQ(KeeperCount(), items);

  n.Set(5);
  n.Clean();
  EXPECT_FALSE(n.IsDirty());
  EXPECT_EQ(n.GetOrgValue(), nullptr);
  EXPECT_EQ(n.Number(), 5);
  EXPECT_EQ(KeeperCount(), items);

  // SetNull on a null value changes nothing; on a value it records first.
  ZTTestInt empty;
  empty.SetUseDirtyFunction(true);
  empty.SetNull();
  EXPECT_FALSE(empty.IsDirty());
  n.SetNull();
  EXPECT_TRUE(n.IsDirty());
  n.RestoreToOrgValue();
  EXPECT_EQ(n.Number(), 5);
  EXPECT_FALSE(n.IsNull());

  // A dirty value without recorded original restores to null.
  n.SetFlag(ZTValue::FlagDirty);
  n.RestoreToOrgValue();
  EXPECT_TRUE(n.IsNull());
  EXPECT_FALSE(n.IsDirty());

  // SetOrgValue records the given original; null drops it again.
  ZTTestInt* given = new ZTTestInt(9);
  n.Set(1);
  n.Clean();
  n.SetOrgValue(given);
  EXPECT_TRUE(n.IsDirty());
  EXPECT_EQ(n.GetOrgValue(), given);
  n.SetOrgValue(new ZTTestInt(10));  // already dirty: ignored, and released
  EXPECT_EQ(n.GetOrgValue(), given);
  n.SetOrgValue(nullptr);
  EXPECT_FALSE(n.IsDirty());
  EXPECT_EQ(KeeperCount(), items);

  // A dirty value takes its record with it.
  {
    ZTTestInt temp(1);
    temp.SetUseDirtyFunction(true);
    temp.Set(2);
    EXPECT_EQ(KeeperCount(), items + 1);
  }
  EXPECT_EQ(KeeperCount(), items);
}

TEST(ZTValue, TrackingWithHandler) {
  TestHandler::s_Destroyed = 0;
  const int items = KeeperCount();
  {
    ZTTestInt n(1);
    auto* handler = new TestHandler;
    n.SetDirtyHandler(handler);
    EXPECT_EQ(n.GetDirtyHandler(), handler);
    EXPECT_EQ(handler->m_ItsMe, &n);
    EXPECT_TRUE(n.IsFlagSet(ZTValue::FlagHasDirtyHandler));

    n.Set(2);
    n.Set(3);
    EXPECT_EQ(handler->m_SetDirtyCalls, 1) << "a dirty value is not recorded twice";
    EXPECT_TRUE(n.IsDirty());
    EXPECT_FALSE(n.IsFlagSet(ZTValue::FlagDirty)) << "the handler keeps the state";
    EXPECT_EQ(static_cast<ZTTestInt*>(n.GetOrgValue())->Number(), 1);
    EXPECT_EQ(KeeperCount(), items);

    n.RestoreToOrgValue();
    EXPECT_EQ(handler->m_RestoreCalls, 1);
    EXPECT_EQ(n.Number(), 1);
    EXPECT_FALSE(n.IsDirty());

    n.Set(7);
    n.Clean();
    EXPECT_EQ(handler->m_ApplyCalls, 1);
    EXPECT_FALSE(n.IsDirty());

    // SetOrgValue does not look at the handler.
    n.SetOrgValue(new ZTTestInt(0));
    EXPECT_TRUE(n.IsFlagSet(ZTValue::FlagDirty));
    n.SetOrgValue(nullptr);

    // A handler does not make a string compare without case: the marks are apart.
    ZTString s("abc");
    s.SetDirtyHandler(handler);
    EXPECT_FALSE(s.IsCaseInsensitive());
    EXPECT_EQ(s.Cmp("ABC"), CmpGreater);
    s = "def";
    EXPECT_TRUE(s.IsDirty());
    EXPECT_STREQ(s.GetOrgValue()->String(), "abc");
    EXPECT_EQ(TestHandler::s_Destroyed, 0);
  }
  EXPECT_EQ(TestHandler::s_Destroyed, 1) << "the registry released the handler with its values";
}

TEST(ZTValue, HandlerChain) {
  ZTTestInt n(1);
  TestHandler outer;
  TestHandler inner;
  n.SetDirtyHandler(&outer);
  n.SetDirtyHandler(&inner);
  EXPECT_EQ(n.GetDirtyHandler(), &inner);
  EXPECT_EQ(inner.GetPrevHandler(), &outer);
  n.SetDirtyHandler(&outer);  // already in the chain: no cycle is made
  EXPECT_EQ(n.GetDirtyHandler(), &outer);
  EXPECT_EQ(outer.GetPrevHandler(), nullptr);

  n.SetDirtyHandler(&inner);
  n.SetDirtyHandler(nullptr);
  EXPECT_EQ(n.GetDirtyHandler(), &outer) << "the previous handler takes its place";
  n.SetDirtyHandler(nullptr);
  EXPECT_EQ(n.GetDirtyHandler(), nullptr);
  EXPECT_FALSE(n.IsFlagSet(ZTValue::FlagHasDirtyHandler));

  TestHandler foreign;
  TestHandler stranger;
  stranger.SetPrevHandler(&foreign);
  n.SetDirtyHandler(&outer);
  auto ex = Catch<ZTExceptCondition>([&] { n.SetDirtyHandler(&stranger); });
  ASSERT_EQ(ex.GetMsgCount(), 2);
  EXPECT_STREQ(ex.GetMsg(0), "\"Invalid dirty handler hierarchy.\"");
  EXPECT_STREQ(ex.GetMsg(1), "Condition check failed(prevHandler == NULL || prevHandler == orgHandler)");
  EXPECT_EQ(n.GetDirtyHandler(), &outer);
  n.SetDirtyHandler(nullptr);
  inner.SetPrevHandler(nullptr);
  stranger.SetPrevHandler(nullptr);
}

TEST(ZTValue, ValueStateIsToldOfChanges) {
  ZTValueState* state = new ZTValueState(true, false, false);
  EXPECT_TRUE(state->IsRequired());
  EXPECT_TRUE(state->IsDisabled());
  EXPECT_TRUE(state->IsVisible());
  const unsigned long before = state->GetState();
  state->ModifyState(0, 0);
  EXPECT_EQ(state->GetState(), before);
  {
    ZTTestInt n(1);
    n.SetValueState(state);
    EXPECT_EQ(state->GetRefCount(), 1);
    n.Set(2);
    n.Set(3);
    n.SetNull();
    EXPECT_EQ(state->GetChangeStamp(), 3u);
    EXPECT_EQ(state->GetState() & 0xFFFF, before & 0xFFFF) << "flags untouched by the stamp";
    state->Attach();
  }
  EXPECT_EQ(state->GetRefCount(), 1) << "the value released its state";
  state->Hide();
  state->Enable();
  EXPECT_TRUE(state->IsHidden());
  EXPECT_TRUE(state->IsEnabled());
  state->Detach();
}

TEST(ZTDirtyHandler, BaseOperationsThrow) {
  ZTDirtyHandler base;
  ZTTestInt v(1);
  const std::pair<std::function<void()>, const char*> cases[] = {
      {[&] { base.SetDirty(&v); }, "\"'SetDirty' has to be implemented in all derived classes\""},
      {[&] { base.SetDirty(&v, &v); }, "\"'SetDirty' has to be implemented in all derived classes.\""},
      {[&] { base.SetDirty(&v, &v, true); }, "\"'SetDirty' has to be implemented in all derived classes.\""},
      {[&] { base.Clean(&v); }, "\"'Clean' has to be implemented in all derived classes.\""},
      {[&] { base.IsDirty(&v); }, "\"'IsDirty' has to be implemented in all derived classes\""},
      {[&] { base.GetOrgValue(&v); }, "\"'GetOrgValue' has to be implemented in all derived classes\""},
      {[&] { base.Apply(&v); }, "\"'Apply' has to be implemented in all derived classes\""},
      {[&] { base.Restore(&v); }, "\"'Restore' has to be implemented in all derived classes\""},
  };
  for (const auto& c : cases) EXPECT_STREQ(Catch(c.first).GetMsg(0), c.second);
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { base.SetDirty(nullptr); }).GetMsg(0),
               "Required parameter _Value is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { base.SetDirty(&v, nullptr); }).GetMsg(0),
               "Required parameter _OrgValue is null.");

  // A heap previous handler is held; an automatic one is only referred to.
  auto* held = new TestHandler;
  base.SetPrevHandler(held);
  EXPECT_EQ(held->GetRefCount(), 1);
  TestHandler automatic;
  TestHandler::s_Destroyed = 0;
  base.SetPrevHandler(&automatic);
  EXPECT_EQ(TestHandler::s_Destroyed, 1) << "the held handler was released";
  base.SetPrevHandler(nullptr);
}

TEST(ZTDirtyItem, Checks) {
  auto noValue = Catch<ZTExceptCondition>([] { ZTDirtyItem item(nullptr); });
  ASSERT_EQ(noValue.GetMsgCount(), 2);
  EXPECT_STREQ(noValue.GetMsg(0), "\"Invalid value.\"");
  EXPECT_STREQ(noValue.GetMsg(1), "Condition check failed(m_Value != NULL)");
  ZTTestInt v(1);
  auto noOrg = Catch<ZTExceptCondition>([&] { ZTDirtyItem item(&v, nullptr, false); });
  EXPECT_STREQ(noOrg.GetMsg(0), "\"Invalid original value.\"");
  NoCloneInt unclonable(2);
  auto noClone = Catch<ZTExceptCondition>([&] { ZTDirtyItem item(&unclonable); });
  EXPECT_STREQ(noClone.GetMsg(0), "\"Unable to clone value.\"");

  ZTDirtyItem item(&v);
  v.Set(5);
  EXPECT_EQ(static_cast<ZTTestInt*>(item.GetOrgValue())->Number(), 1);
  ZTDirtyItem copy(item);
  EXPECT_EQ(copy.GetOrgValue(), item.GetOrgValue());
  EXPECT_EQ(item.GetOrgValue()->GetRefCount(), 2);
}

TEST(ZTValuesDirtyHandler, KeeperOperations) {
  ZTValuesDirtyHandler& keeper = ZTValuesDirtyHandler::GetKeeper();
  const int items = keeper.GetItemCount();
  std::vector<ZTTestInt> values(5);
  for (int i = 4; i >= 0; --i) keeper.SetDirty(&values[i]);
  EXPECT_EQ(keeper.GetItemCount(), items + 5);
  for (ZTTestInt& v : values) {
    EXPECT_TRUE(v.IsFlagSet(ZTValue::FlagDirty));
    ASSERT_NE(keeper.GetItem(&v), nullptr);
    EXPECT_EQ(keeper.GetItem(&v)->GetValue(), &v);
  }
  // Items are ordered by value address.
  const int first = keeper.AddItem(keeper.GetItem(&values[0]));
  const int last = keeper.AddItem(keeper.GetItem(&values[4]));
  EXPECT_EQ(last - first, 4);
  EXPECT_EQ(keeper.GetItemCount(), items + 5) << "an existing item is not added twice";

  values[1].Set(8);
  keeper.Restore(&values[1]);
  EXPECT_TRUE(values[1].IsNull()) << "restored to its original, null";
  EXPECT_FALSE(values[1].IsFlagSet(ZTValue::FlagDirty));
  keeper.Apply(&values[2]);
  EXPECT_EQ(keeper.GetItem(&values[2]), nullptr);
  EXPECT_TRUE(keeper.Remove(&values[3]));
  EXPECT_FALSE(keeper.Remove(&values[3]));
  values[3].ClearFlag(ZTValue::FlagDirty);

  ZTTestInt org(6);
  values[3].Set(1);
  ZTValuesDirtyHandler::GlobalSetDirty(&values[3], &org);
  EXPECT_EQ(keeper.GetOrgValue(&values[3]), &org);
  keeper.Restore(&values[3]);
  EXPECT_EQ(values[3].Number(), 6);
  ZTTestInt noItem(3);
  noItem.SetFlag(ZTValue::FlagDirty);
  keeper.Restore(&noItem);
  EXPECT_TRUE(noItem.IsNull()) << "without an item the value becomes null";
  values[0].Clean();
  values[4].Clean();
  EXPECT_EQ(keeper.GetItemCount(), items);

  TestHandler prev;
  keeper.SetPrevHandler(&prev);
  auto ex = Catch<ZTExceptCondition>([&] { keeper.Apply(&values[0]); });
  EXPECT_STREQ(ex.GetMsg(0), "\"Previous handler has to be null\"");
  EXPECT_STREQ(ex.GetMsg(1), "Condition check failed(m_PrevHandler == NULL)");
  keeper.SetPrevHandler(nullptr);
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { keeper.Restore(nullptr); }).GetMsg(0),
               "Required parameter _Value is null.");
}

TEST(ZTValuesDirtyHandler, ThreadsShareTheKeeper) {
  const int items = KeeperCount();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([] {
      for (int round = 0; round < 200; ++round) {
        ZTString s("start");
        s.SetUseDirtyFunction(true);
        s = "changed";
        if (round % 2) s.RestoreToOrgValue();
        else s.Clean();
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(KeeperCount(), items);
}

TEST(ZTValueContainer, TextForm) {
  ZTValueContainer c;
  EXPECT_TRUE(c.IsNull());
  EXPECT_STREQ(c.GetTypeName(), "valuecontainer");
  c.SetString("a; b ;'c d ';");
  ASSERT_EQ(c.GetCount(), 3);
  EXPECT_EQ(Texts(c), "[a][b][c d ]");
  EXPECT_STREQ(c.GetString(), "a;b;c d ");
  EXPECT_FALSE(c.IsNull());

  c.SetString("x;;y;");
  EXPECT_EQ(Texts(c), "[x][][y]") << "inner empty items count, a last empty one does not";
  c.SetString("'quoted' ignored;'open");
  EXPECT_EQ(Texts(c), "[quoted][open]");
  c.SetString("a;b", 1);
  EXPECT_EQ(Texts(c), "[a]");
  c.SetString(nullptr);
  EXPECT_TRUE(c.IsNull());
  EXPECT_EQ(c.GetCount(), 0);
  ZTString text("left");
  c.CopyIntoString(text);
  EXPECT_FALSE(text.IsNull());
  EXPECT_STREQ(text, "");
}

TEST(ZTValueContainer, ListOperations) {
  ZTValueContainer c(4);
  ZTString* own = new ZTString("own");
  c.Add(own);
  EXPECT_EQ(c.Get(0), own) << "a pointer is stored itself";
  EXPECT_FALSE(c.IsNull());
  ZTString byRef("ref");
  c.Add(byRef);
  EXPECT_NE(c.Get(1), &byRef) << "a reference is cloned";
  c.Insert(0, ZTTestInt(7));
  c.Set(1, ZTString("replaced"));
  EXPECT_EQ(Texts(c), "[7][replaced][ref]");
  EXPECT_EQ(c.Index(ZTString("ref")), 2);
  EXPECT_EQ(c.Index(c.Get(1)), 1);
  EXPECT_EQ(c.Index(ZTString("none")), -1);
  c.Add(c);
  EXPECT_EQ(Texts(c), "[7][replaced][ref][7][replaced][ref]");
  c.Remove(0);
  EXPECT_EQ(c.GetCount(), 5);
  EXPECT_EQ(c.GetObjects().GetCount(), 5);
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { c.GetObjects().Add(static_cast<const ZTValue*>(nullptr)); })
                   .GetMsg(0),
               "Required parameter _Val is null.");

  ZTValueContainer copy(c);
  EXPECT_EQ(Texts(copy), Texts(c));
  EXPECT_NE(copy.Get(0), c.Get(0)) << "a copy owns its values";

  ZTValueContainer assigned;
  assigned = c;
  EXPECT_EQ(Texts(assigned), Texts(c));
  assigned.SetValue(assigned);
  EXPECT_EQ(assigned.GetCount(), 5);
  assigned.SetValue(ZTValueContainer());
  EXPECT_TRUE(assigned.IsNull());

  WarningCapture warnings;
  c.SetValue(ZTString("no container"));
  EXPECT_TRUE(warnings.Contains("\"ZTValue::SetValue (type = valuecontainer) called: This is not intented.\""));
  EXPECT_EQ(c.GetCount(), 5);
  c.Reset();
  EXPECT_TRUE(c.IsNull());
  EXPECT_EQ(c.GetCount(), 0);

  // Tracking: the original is a full copy of the list.
  ZTValueContainer tracked;
  tracked.SetString("a;b");
  tracked.SetUseDirtyFunction(true);
  tracked.SetString("c");
  tracked.RestoreToOrgValue();
  EXPECT_EQ(Texts(tracked), "[a][b]");
}
