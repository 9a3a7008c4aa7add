#include <functional>
#include <string>

#include "test_support.h"

using zt_test::Catch;

namespace {

std::string Text(const ZTString& _Str) {
  const char* text = _Str;
  return text ? text : "<null>";
}

std::string Printed(unsigned long _Op) {
  const char* text = ZTOperator::OpToString(_Op);
  return text ? text : "<null>";
}

std::string Stored(unsigned long _Op) { return Text(ZTOperator(0, _Op).GetText()); }

std::string ParamMessage(const std::function<void()>& _Fn) {
  return Catch<ZTExceptParameter>(_Fn).GetMsg(0);
}

}  // namespace

// ---------------------------------------------------------------------------
// Operators

TEST(ZTOperator, TextsOfEveryCode) {
  const struct {
    unsigned long m_Op;
    const char* m_Stored;
    const char* m_Printed;
  } codes[] = {
      {1, "=", "="},
      {2, "<", "<"},
      {3, ">", ">"},
      {4, "<=", "<="},
      {5, ">=", ">="},
      {6, " in ", " in "},
      {16, " matches ", " matches "},
      {32, " like ", " like "},
      {128, " between ", " between "},
      {0x1001, "<>", "<>"},
      {0x1002, ">=", " not <"},
      {0x1003, "<=", " not >"},
      {0x1004, ">", " not <="},
      {0x1005, "<", " not >="},
      {0x1006, " not in ", " not in "},
      {0x1010, " not matches ", " not matches "},
      {0x1020, " not like ", " not like "},
      {0x1080, " not between ", " not between "},
      {0x2000, " is null ", " is null "},
      {0x3000, " is not null ", " is not null "},
      {0x4000, " and ", " and "},
      {0x8000, " or ", " or "},
      {0x10000000, " distinct ", "<null>"},
      {0x20000000, " unique ", "<null>"},
      // Unknown codes: comparison bytes outside the table, bare or mixed modifiers.
      {0, "", ""},
      {7, "", "<null>"},
      {129, "", "<null>"},
      {255, "", "<null>"},
      {0x1000, "", "<null>"},
      {0x1007, "", "<null>"},
      {0x4001, "", "<null>"},
      {0x6000, "", "<null>"},
      {0x30000000, "", "<null>"},
      {0xFFFFFFFF, "", "<null>"},
  };
  for (const auto& code : codes) {
    EXPECT_EQ(Stored(code.m_Op), code.m_Stored) << std::hex << code.m_Op;
    EXPECT_EQ(Printed(code.m_Op), code.m_Printed) << std::hex << code.m_Op;
  }
  // The condition mark only marks: the code keeps its text.
  EXPECT_EQ(Stored(0x80001), "=");
  EXPECT_EQ(Printed(0x81002), " not <");
  EXPECT_EQ(Stored(0x80000), "");
  EXPECT_EQ(Printed(0x80000), "");
}

TEST(ZTOperator, CodeTests) {
  const ZTOperator notBetween(3, "Price", 0x1080ul);
  EXPECT_TRUE(notBetween.IsBetween() && notBetween.IsNot() && notBetween.IsOperatorOrNull());
  EXPECT_FALSE(notBetween.IsNull() || notBetween.IsCondition());
  EXPECT_TRUE(notBetween.IsOP(0x1080) && notBetween.IsOP(0x80));
  EXPECT_FALSE(notBetween.IsOP(0x1081)) << "all bits of the mask";
  EXPECT_FALSE(notBetween.IsOP(0)) << "an empty mask never matches";

  const ZTOperator isNull(1, 0x2000ul);
  EXPECT_TRUE(isNull.IsNull() && isNull.IsOperatorOrNull());
  EXPECT_FALSE(ZTOperator(1, 0x4000ul).IsOperatorOrNull()) << "and joins, it does not compare";
  EXPECT_TRUE(ZTOperator(1, 0x80003ul).IsCondition());
  const ZTOperator fresh(1, "x");
  EXPECT_TRUE(fresh.Get() == 0 && !fresh.IsOperatorOrNull() && Text(fresh.GetText()).empty());
}

TEST(ZTOperator, IsItMe) {
  const ZTOperator named(2, "Kunde", 1ul);
  EXPECT_TRUE(named.IsItMe(2, "KUNDE"));
  EXPECT_FALSE(named.IsItMe(3, "Kunde") || named.IsItMe(2, "Kund"));
  EXPECT_FALSE(named.IsItMe(2, nullptr)) << "without a name only an unnamed operator";
  const ZTOperator unnamed(2, 1ul);
  EXPECT_TRUE(unnamed.IsItMe(2, nullptr) && unnamed.IsItMe(2, ""));
  EXPECT_FALSE(unnamed.IsItMe(2, "Kunde"));
}

TEST(ZTOperator, SetKeepsTextOfUnchangedCode) {
  ZTOperator op(0, "Name", 0x1002ul);
  EXPECT_EQ(Text(op.GetText()), ">=");
  EXPECT_EQ(Printed(0x1002), " not <");
  op.Set(" ~ ");
  EXPECT_EQ(Text(op.GetText()), " ~ ");
  EXPECT_EQ(op.Get(), 0x1002ul) << "a text given directly keeps the code";
  op.Set(0x1002ul);
  EXPECT_EQ(Text(op.GetText()), " ~ ") << "the same code changes nothing";
  op.Set(0x20ul);
  EXPECT_EQ(Text(op.GetText()), " like ");
  op.Set(0x99ul);
  EXPECT_EQ(Text(op.GetText()), "");
  EXPECT_EQ(op.Get(), 0x99ul);

  EXPECT_EQ(ParamMessage([&] { op.Set(static_cast<const char*>(nullptr)); }),
            "Required parameter _Val is null.");
  EXPECT_EQ(Text(ZTOperator(2, "Name", " like ").GetText()), " like ");
}

TEST(ZTOpConditionBlock, RangeAndCodes) {
  ZTOpConditionBlock block(2, 5, 0x4000, 0x1, 0x2, 0x8000);
  EXPECT_EQ(block.GetIndex(), 2);
  EXPECT_EQ(block.GetEnd(), 5);
  EXPECT_EQ(Text(block.GetText()), " and ");
  EXPECT_TRUE(block.GetOp2() == 0x1 && block.GetOp3() == 0x2 && block.GetOpInnerLoop() == 0x8000);
  block.SetRange(7, 9);
  EXPECT_EQ(block.GetStart(), 7);
  EXPECT_EQ(block.GetEnd(), 9);
  EXPECT_TRUE(block.IsItMe(7, nullptr)) << "found by its start";
  block.SetOpInnerLoop(0x4000);

  ZTObject* clone = block.Clone();
  clone->Attach();
  const ZTOpConditionBlock* copy = ZTDynamicCastT<ZTOpConditionBlock>(clone);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->GetEnd(), 9);
  EXPECT_EQ(copy->GetOpInnerLoop(), 0x4000ul);
  clone->Detach();
}

// ---------------------------------------------------------------------------
// Operator arrays

TEST(ZTOperatorArray, SetReplacesByIndexAndName) {
  ZTOperatorArray ops;
  ops.Set(2, "Name", 1ul);
  ops.Set(2, "Name", 1ul);
  EXPECT_EQ(ops.GetCount(), 1) << "one operator for index 2 and name Name";
  ops.Set(2, "NAME", 0x20ul);
  ASSERT_EQ(ops.GetCount(), 1) << "names without case";
  EXPECT_EQ(Text(ops.Get(2, "name")->GetText()), " like ");

  ops.Set(3, "Name", 1ul);
  ops.Set(2, 1ul);
  ops.Set(2, " = ");
  ops.Set("Name", 0x8000ul);
  ops.Set("Order", " desc ");
  EXPECT_EQ(ops.GetCount(), 5);
  EXPECT_EQ(Text(ops.Get(2, nullptr)->GetText()), " = ") << "an unnamed operator of index 2";
  EXPECT_EQ(ops.Get(2, "")->Get(), 0ul) << "the text replaced the coded operator";
  EXPECT_EQ(ops.Get(3, "Name")->GetIndex(), 3);
  EXPECT_EQ(ops.Get("name")->Get(), 0x8000ul) << "by name: index -1";
  EXPECT_EQ(Text(ops.GetString("ORDER")), " desc ");
  EXPECT_EQ(Text(ops.GetString("Name")), " or ");
  EXPECT_EQ(Text(ops.GetString("Missing")), "");
  EXPECT_EQ(ops.Get(4, "Name"), nullptr);
  EXPECT_EQ(ops.Get("Price"), nullptr);
  EXPECT_EQ(ops.Get(0)->GetIndex(), 2) << "slots stay reachable by position";

  // A replacement keeps the slot of the operator it replaces.
  ops.Set(3, "Name", " <> ");
  EXPECT_EQ(Text(ops.Get(1)->GetText()), " <> ");

  const char* none = nullptr;
  const std::string nameMsg = "Required parameter _Name is null.";
  const std::string opMsg = "Required parameter _Op is null.";
  EXPECT_EQ(ParamMessage([&] { ops.Set(1, none, 1ul); }), nameMsg);
  EXPECT_EQ(ParamMessage([&] { ops.Set(1, none, "="); }), nameMsg);
  EXPECT_EQ(ParamMessage([&] { ops.Set(none, 1ul); }), nameMsg);
  EXPECT_EQ(ParamMessage([&] { ops.Set(1, "Name", none); }), opMsg);
  EXPECT_EQ(ParamMessage([&] { ops.Set(1, none); }), opMsg);
  EXPECT_EQ(ParamMessage([&] { ops.Set("Name", none); }), opMsg);
  EXPECT_EQ(ops.GetCount(), 5) << "refused calls change nothing";
}

TEST(ZTOperatorArray, AddOwnsAndReplaces) {
  ZTOperatorArray ops;
  ZTOperator* first = new ZTOperator(1, "Kunde", 1ul);
  first->Attach();  // kept by the test to watch its count
  EXPECT_EQ(ops.Add(first), 0);
  EXPECT_EQ(first->GetRefCount(), 2);
  EXPECT_EQ(ops.Add(first), 0) << "adding it again keeps it";
  EXPECT_EQ(first->GetRefCount(), 2);
  ops.Add(new ZTOperator(2, "Kunde", 2ul));
  EXPECT_EQ(ops.Add(new ZTOperator(1, "KUNDE", 3ul)), 1) << "removed first, then appended";
  EXPECT_EQ(ops.GetCount(), 2);
  EXPECT_EQ(first->GetRefCount(), 1) << "the array released the replaced operator";
  EXPECT_EQ(ops.Get(1, "kunde")->Get(), 3ul);
  first->Detach();

  ops.Add(new ZTOpConditionBlock(0, 3, 0x8000, 0, 0, 0x4000));
  EXPECT_NE(ZTDynamicCastT<ZTOpConditionBlock>(ops.Get(0, nullptr)), nullptr);
  EXPECT_EQ(ParamMessage([&] { ops.Add(nullptr); }), "Required parameter _Op is null.");

  ZTOperatorArray copy(ops);
  EXPECT_EQ(copy.GetCount(), 3);
  EXPECT_EQ(copy.Get(0), ops.Get(0)) << "copies share operators";
}

// ---------------------------------------------------------------------------
// Selection values

TEST(ZTSelectionValue, CompareByIndexAndName) {
  const ZTInteger one(1);
  const ZTSelectionValue kunde(1, "Kunde", &one);
  const ZTSelectionValue upper(1, "KUNDE", nullptr);
  EXPECT_EQ(kunde.Cmp(upper), CmpEqual);
  EXPECT_TRUE(kunde == upper);
  EXPECT_EQ(kunde.Cmp(ZTSelectionValue(2, "Kunde", &one)), CmpNotEqual);
  EXPECT_EQ(kunde.Cmp(ZTSelectionValue(1, "Kunden", &one)), CmpNotEqual);
  EXPECT_EQ(kunde.Cmp(one), CmpNotEqual) << "not a selection value";
  EXPECT_FALSE(kunde > ZTSelectionValue(2, "Kunde", nullptr));
  EXPECT_TRUE(kunde.IsItMe(1, "kunde") && !kunde.IsItMe(0, "Kunde"));
  EXPECT_EQ(kunde.Cmp(&upper), CmpEqual) << "as objects too";

  EXPECT_STREQ(kunde.GetTypeName(), "selectionValue");
  ZTValue* made = ZTValueCreator::CreateObject("selectionValue");
  ASSERT_NE(made, nullptr);
  made->Attach();
  EXPECT_EQ(made->GetClassType(), ZTSelectionValue::ClassGetType());
  EXPECT_TRUE(made->IsNull()) << "no value held";
  made->Detach();
}

TEST(ZTSelectionValue, HoldsOrClonesTheValue) {
  ZTInteger automatic(7);
  ZTSelectionValue sel(0, "Count", &automatic);
  ASSERT_NE(sel.Get(), nullptr);
  EXPECT_NE(sel.Get(), &automatic) << "an automatic value is cloned";
  EXPECT_EQ(sel.Get()->GetString(), "7");
  EXPECT_FALSE(sel.IsNull());
  automatic = 8;
  EXPECT_EQ(sel.Get()->GetString(), "7") << "the clone is independent";

  ZTInteger* heap = new ZTInteger(9);
  heap->Attach();
  sel.Set(heap);
  EXPECT_EQ(sel.Get(), heap) << "a heap value is held itself";
  EXPECT_EQ(heap->GetRefCount(), 2);
  {
    ZTSelectionValue copy(sel);
    EXPECT_EQ(copy.Get(), heap) << "copies share the held value";
    EXPECT_EQ(heap->GetRefCount(), 3);
    ZTSelectionValue assigned;
    assigned = copy;
    EXPECT_EQ(assigned.GetIndex(), 0);
    EXPECT_EQ(Text(assigned.GetName()), "Count");
    EXPECT_EQ(heap->GetRefCount(), 4);
  }
  EXPECT_EQ(heap->GetRefCount(), 2);
  sel.Set(sel.Get());
  EXPECT_EQ(heap->GetRefCount(), 2) << "setting the held value again keeps it";
  sel.Set(nullptr);
  EXPECT_TRUE(sel.IsNull());
  EXPECT_EQ(heap->GetRefCount(), 1);
  sel.Set(heap);
  sel.SetNull();
  EXPECT_EQ(sel.Get(), nullptr);
  EXPECT_EQ(heap->GetRefCount(), 1);
  heap->Detach();
}

TEST(ZTSelectionValueArray, SetGetAndRemove) {
  ZTSelectionValueArray values;
  const ZTString name("Kunde");
  const ZTInteger one(1);
  ZTSelectionValue* first = values.Set(1, name, &one);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(values.GetCount(), 1);
  EXPECT_EQ(values.Get(1, ZTString("KUNDE")), first);
  EXPECT_EQ(values.GetValue(1, name)->GetString(), "1");

  const ZTString text("abc");
  values.Set(1, ZTString("kunde"), &text);
  EXPECT_EQ(values.GetCount(), 1) << "the entry of index and name is replaced";
  EXPECT_EQ(values.GetValue(1, name)->GetString(), "abc");
  values.Set(2, name, &one);
  values.Set(1, ZTString("Other"), &one);
  EXPECT_EQ(values.GetCount(), 3);
  EXPECT_EQ(values.Get(3, name), nullptr);
  EXPECT_EQ(values.GetValue(3, name), nullptr);

  // Re-setting the value an entry holds alone must not lose it.
  ZTValue* held = values.GetValue(2, name);
  EXPECT_EQ(values.Set(2, name, held)->Get(), held);
  EXPECT_EQ(values.GetValue(2, name)->GetString(), "1");

  EXPECT_EQ(values.Set(1, name, nullptr), nullptr);
  EXPECT_EQ(values.GetCount(), 2) << "without a value the entry is only removed";
  EXPECT_EQ(values.Get(1, name), nullptr);
  EXPECT_NE(values.Get(0), nullptr) << "slots stay reachable by position";

  const ZTSelectionValueArray& constValues = values;
  EXPECT_EQ(constValues.GetValue(2, name)->GetString(), "1");
}
