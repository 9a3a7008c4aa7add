#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

using zt_test::Text;

// Memory of values and string texts is back where it was.
struct Usage {
  int m_Values = ZTMemMgr::GetUsageCount(ZTMemCatValue);
  int m_Strings = ZTMemMgr::GetUsageCount(ZTMemCatString);
  bool Unchanged() const {
    return m_Values == ZTMemMgr::GetUsageCount(ZTMemCatValue) &&
           m_Strings == ZTMemMgr::GetUsageCount(ZTMemCatString);
  }
};

// The classes of the typed accessors: the non-const one converts, the const
// one only reads.
enum Kind { Bool, Integer, Real, Currency, String, Date, Time, Timestamp };
struct Accessor {
  const ZTClassType* m_Type;
  const char* m_Failure;
  ZTValue& (*m_Convert)(ZTVariant&);
  const ZTValue& (*m_Read)(const ZTVariant&);
};
#define ACCESSOR(Class, Convert, Read, Name)                                     \
  {Class::ClassGetType(), "\"Unable to return value as '" Name "'.\"",          \
   [](ZTVariant& v) -> ZTValue& { return v.Convert(); },                        \
   [](const ZTVariant& v) -> const ZTValue& { return v.Read(); }}
const Accessor s_Accessors[] = {
    ACCESSOR(ZTBool, Boolean, GetBoolean, "Bool"),
    ACCESSOR(ZTInteger, Integer, GetInteger, "Integer"),
    ACCESSOR(ZTReal, Real, GetReal, "Float"),
    ACCESSOR(ZTCurrency, Currency, GetCurrency, "Currency"),
    ACCESSOR(ZTString, String, GetString, "String"),
    ACCESSOR(ZTDate, Date, GetDate, "Date"),
    ACCESSOR(ZTTime, Time, GetTime, "Time"),
    ACCESSOR(ZTTimestamp, Timestamp, GetTimestamp, "Timestamp"),
};
#undef ACCESSOR

}  // namespace

TEST(ZTVariant, EmptyVariantIsNullPrintsEmptyAndRefusesStringAccess) {
  const ZTVariant empty;
  EXPECT_TRUE(empty.IsNull());
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_EQ(empty.GetType(), nullptr);
  EXPECT_STREQ(empty.TypeName(), "");
  EXPECT_EQ(Text(empty), "");  // empty, not null
  EXPECT_EQ(empty.Get(nullptr, 0), 0u);
  EXPECT_STREQ(Catch([&] { empty.String(); }).GetMsg(0), s_Accessors[String].m_Failure);
  for (const Accessor& a : s_Accessors)
    EXPECT_STREQ(Catch([&] { a.m_Read(empty); }).GetMsg(0), a.m_Failure);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { empty.Value(); }).GetMsg(0),
               "Condition check failed(m_Value != NULL)");
  EXPECT_FALSE(empty.GetBool());
  EXPECT_EQ(empty.GetInt(), 0);
  EXPECT_EQ(empty.GetDouble(), 0.0);

  for (const char* name : {"variant", "ZTVariant", "Variant"}) {
    ZTValue* made = ZTValueCreator::CreateObject(name);
    ASSERT_NE(made, nullptr) << name;
    EXPECT_STREQ(made->GetTypeName(), "variant");
    made->Attach();
    made->Detach();
  }

  // The non-const string access holds an empty string of its own: the
  // library-wide one stays empty.
  ZTVariant var;
  EXPECT_FALSE(var.GetString().IsNull());
  var.String() += "changed";
  EXPECT_EQ(Text(var), "changed");
  EXPECT_STREQ(static_cast<const char*>(ZTString::Empty()), "");
}

TEST(ZTVariant, ConstAccessorsGiveOnlyTheirClassNonConstOnesConvert) {
  ZTVariant var{ZTInteger(5)};
  const ZTVariant& constVar = var;
  EXPECT_EQ(constVar.GetInteger().GetInt(), 5);
  EXPECT_STREQ(Catch([&] { constVar.GetReal(); }).GetMsg(0), "\"Unable to return value as 'Float'.\"");
  EXPECT_EQ(var.GetType(), ZTInteger::ClassGetType());

  ZTReal& real = var.Real();
  EXPECT_EQ(var.GetType(), ZTReal::ClassGetType());
  EXPECT_EQ(real.GetDouble(), 5.0);
  EXPECT_EQ(&constVar.Real(), &real);
  EXPECT_STREQ(Catch([&] { constVar.Integer(); }).GetMsg(0), "\"Unable to return value as 'Integer'.\"");
  real = 6.5;  // the reference is the held value
  EXPECT_EQ(Text(var), "6.5");

  // A class none of the accessors serve; String() still gives its text.
  const ZTVariant character{ZTCharacter('x')};
  for (const Accessor& a : s_Accessors)
    EXPECT_STREQ(Catch([&] { a.m_Read(character); }).GetMsg(0), a.m_Failure);
  EXPECT_EQ(std::string(character.String()), "x");

  // A derived class counts as its base, both ways.
  ZTVariant enumVar{ZTEnumValue(7, nullptr)};
  const ZTValue* held = enumVar.GetValue();
  EXPECT_EQ(static_cast<const ZTVariant&>(enumVar).GetInteger().GetInt(), 7);
  EXPECT_EQ(&enumVar.Integer(), held);
  EXPECT_STREQ(enumVar.TypeName(), "ZTEnumValue");
  EXPECT_TRUE(enumVar.IsType(ZTInteger::ClassGetType()));
  EXPECT_FALSE(enumVar.IsType(ZTReal::ClassGetType()));
  EXPECT_FALSE(enumVar.IsType(nullptr));
}

TEST(ZTVariant, ReadingAsBoolIntOrDoubleLeavesTheHeldValueAlone) {
  ZTVariant var;
  var.SetString("yes");
  const ZTValue* held = var.GetValue();
  EXPECT_TRUE(var.GetBool());
  EXPECT_EQ(var.GetValue(), held);
  EXPECT_EQ(Text(var), "yes");
  var.SetString(" 42 ");
  EXPECT_EQ(var.GetInt(), 42);
  var.SetString("2.5");
  EXPECT_EQ(var.GetDouble(), 2.5);
  var.SetDouble(-2.9);
  EXPECT_EQ(var.GetInt(), -2);
  EXPECT_FALSE(var.GetBool());  // "-2.9" is no boolean text: null
  var.SetValue(ZTInteger());
  EXPECT_EQ(var.GetInt(), 0);

  var.SetString("x1");
  held = var.GetValue();
  EXPECT_STREQ(Catch([&] { var.GetInt(); }).GetMsg(0), "The string 'x1' is not an integer");
  EXPECT_EQ(var.GetValue(), held);
}

TEST(ZTVariant, NullIsNotEmptyAndSetEmptyReleasesOnlyTheVariantsReference) {
  const Usage before;
  {
    auto* number = new ZTInteger;
    number->Attach();
    ZTVariant var(number);
    EXPECT_TRUE(var.IsNull());
    EXPECT_FALSE(var.IsEmpty());
    EXPECT_EQ(number->GetRefCount(), 2);
    var.SetEmpty();
    EXPECT_TRUE(var.IsEmpty());
    EXPECT_EQ(var.GetType(), ZTInteger::ClassGetType());
    EXPECT_EQ(number->GetRefCount(), 1);
    EXPECT_TRUE(number->IsNull());
    var.SetType(ZTInteger::ClassGetType());  // the type already set: still empty
    EXPECT_TRUE(var.IsEmpty());

    // SetNull reaches the held value, which the variant shares.
    number->Set(3);
    var.SetValue(number);
    var.SetNull();
    EXPECT_TRUE(number->IsNull());
    EXPECT_FALSE(var.IsEmpty());
    number->Detach();
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTVariant, SetTypeConvertsOrFailsWithTheDocumentedTexts) {
  ZTVariant var{ZTInteger(5)};
  ZTValue* held = var.GetValue();
  auto missing = Catch<ZTExceptCondition>([&] { var.SetType(nullptr); });
  EXPECT_STREQ(missing.GetMsg(0), "\"Missing class type for variant.\"");
  EXPECT_STREQ(missing.GetMsg(1), "Condition check failed(_VarType != NULL)");
  var.SetType(ZTInteger::ClassGetType());
  EXPECT_EQ(var.GetValue(), held);

  held->Attach();
  var.SetType(ZTReal::ClassGetType());
  EXPECT_STREQ(var.TypeName(), "ZTReal");
  EXPECT_EQ(var.GetReal().GetDouble(), 5.0);
  EXPECT_EQ(Text(*held), "5");  // the old value is not touched, only released
  EXPECT_EQ(held->GetRefCount(), 1);
  held->Detach();

  auto unknown = Catch<ZTExceptCondition>([&] { var.SetType(ZTObject::ClassGetType()); });
  EXPECT_STREQ(unknown.GetMsg(0), "\"Unable to create new value of type 'ZTObject'.\"");
  EXPECT_STREQ(unknown.GetMsg(1), "Condition check failed(val != NULL)");
  EXPECT_EQ(var.GetType(), ZTReal::ClassGetType());

  ZTVariant empty;
  empty.SetType(ZTDate::ClassGetType());  // nothing held: a null date
  EXPECT_TRUE(empty.IsNull());
  EXPECT_FALSE(empty.IsEmpty());

  const ZTVariant asText = var.Variant(ZTString::ClassGetType());
  EXPECT_EQ(Text(asText), "5");
  EXPECT_EQ(var.GetType(), ZTReal::ClassGetType());
  EXPECT_EQ(var.Variant(ZTReal::ClassGetType()).GetValue(), var.GetValue());
}

TEST(ZTVariant, SettersHoldNewNonNullValues) {
  ZTVariant var;
  var.SetBool(false);
  EXPECT_EQ(var.GetType(), ZTBool::ClassGetType());
  EXPECT_EQ(Text(var), "false");
  const ZTValue* previous = var.GetValue();
  var.SetBool(false);
  EXPECT_NE(var.GetValue(), previous);
  var.SetInt(7);
  std::int32_t native = 0;
  EXPECT_EQ(var.Get(&native, sizeof native), 4u);
  EXPECT_EQ(native, 7);
  var.SetDouble(0.0);
  EXPECT_EQ(var.GetType(), ZTReal::ClassGetType());
  EXPECT_EQ(Text(var), "0");

  const char* text = "abcdef";
  EXPECT_EQ(var.SetString(text, 3, "ignored"), text);
  EXPECT_EQ(Text(var), "abc");
  var = "whole";
  EXPECT_EQ(Text(var), "whole");
  const ZTString source("from string");
  EXPECT_EQ(&var.SetString(source, nullptr), &source);
  EXPECT_NE(var.GetValue(), &source);
  EXPECT_EQ(Text(var), "from string");
  var.SetString(nullptr);  // a null string: null but not empty
  EXPECT_TRUE(var.IsNull());
  EXPECT_FALSE(var.IsEmpty());
  EXPECT_EQ(var.GetType(), ZTString::ClassGetType());
}

TEST(ZTVariant, PrintsLikeItsValueAndReadsTheTextBack) {
  struct Case {
    std::function<void(ZTVariant&)> m_Fill;
    Kind m_Kind;
    const char* m_Format;
    const char* m_Text;
    const char* m_FormattedText;
  };
  const std::vector<Case> cases = {
      {[](ZTVariant& v) { v.SetBool(true); }, Bool, "Ja|Nein|-", "true", "Ja"},
      {[](ZTVariant& v) { v.SetInt(-17); }, Integer, "%05d", "-17", "-0017"},
      {[](ZTVariant& v) { v.SetDouble(1234.5); }, Real, "0.00", "1234.5", "1234.50"},
      {[](ZTVariant& v) { v.SetValue(ZTCurrency(2.345)); }, Currency, "0.00", "2.3450", "2.35"},
      {[](ZTVariant& v) { v.SetString("text"); }, String, "unused", "text", "text"},
      {[](ZTVariant& v) { v.SetValue(ZTDate(2024, 3, 5)); }, Date, "yyyy-MM-dd", "05.03.2024",
       "2024-03-05"},
      {[](ZTVariant& v) { v.SetValue(ZTTime(7, 8, 9)); }, Time, "HH:mm", "07:08:09", "07:08"},
      {[](ZTVariant& v) { v.SetValue(ZTTimestamp(2024, 3, 5, 7, 8, 9)); }, Timestamp,
       "yyyy-MM-dd HH.mm.ss", "05.03.2024 07:08:09", "2024-03-05 07.08.09"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.m_Text);
    ZTVariant var;
    c.m_Fill(var);
    EXPECT_EQ(var.GetType(), s_Accessors[c.m_Kind].m_Type);
    EXPECT_EQ(Text(var), c.m_Text);
    EXPECT_EQ(Text(var, c.m_Format), c.m_FormattedText);
    EXPECT_EQ(std::string(static_cast<const ZTVariant&>(var).String(c.m_Format)), c.m_FormattedText);
    char buffer[6];
    EXPECT_EQ(std::string(var.GetStringVal(buffer, sizeof buffer)), std::string(c.m_Text).substr(0, 5));

    // The text comes back as a string; converted, it equals the original.
    ZTVariant back;
    back = Text(var).c_str();
    EXPECT_EQ(back.GetType(), ZTString::ClassGetType());
    EXPECT_EQ(s_Accessors[c.m_Kind].m_Convert(back).Cmp(*var.GetValue()), CmpEqual);
    EXPECT_EQ(back.Cmp(var), CmpEqual);
  }
}

TEST(ZTVariant, ConvertsBetweenEveryPairOfHeldClasses) {
  using Fill = std::function<void(ZTVariant&)>;
  const auto boolean = [](bool _Val) { return Fill([=](ZTVariant& v) { v.SetBool(_Val); }); };
  const auto number = [](int _Val) { return Fill([=](ZTVariant& v) { v.SetInt(_Val); }); };
  const auto real = [](double _Val) { return Fill([=](ZTVariant& v) { v.SetDouble(_Val); }); };
  const auto money = [](double _Val) { return Fill([=](ZTVariant& v) { v.SetValue(ZTCurrency(_Val)); }); };
  const auto text = [](const char* _Text) { return Fill([=](ZTVariant& v) { v.SetString(_Text); }); };
  const Fill date = [](ZTVariant& v) { v.SetValue(ZTDate(2024, 3, 5)); };
  const Fill time = [](ZTVariant& v) { v.SetValue(ZTTime(7, 8, 9)); };
  const Fill stamp = [](ZTVariant& v) { v.SetValue(ZTTimestamp(2024, 3, 5, 7, 8, 9)); };

  // Each target takes the native value where its class does, else the
  // source's text under the default layouts dd.MM.yyyy and HH:mm:ss
  // (2460375 is the day number of 5 March 2024). Null: a null result;
  // "!": the conversion throws (a month of 50, a day of 42).
  struct Case {
    Fill m_Fill;
    Kind m_Target;
    const char* m_Text;
  };
  const std::vector<Case> cases = {
      {boolean(true), Bool, "true"},      {number(1), Bool, "true"},
      {real(0.0), Bool, "false"},         {money(1.0), Bool, "true"},
      {text("yes"), Bool, "true"},        {date, Bool, "false"},
      {time, Bool, "false"},              {stamp, Bool, "false"},
      {boolean(true), Integer, "1"},      {number(42), Integer, "42"},
      {real(-2.75), Integer, "-2"},       {money(-2.5), Integer, "-2"},
      {text(" 42 "), Integer, "42"},      {date, Integer, "5"},
      {time, Integer, "7"},               {stamp, Integer, "5"},
      {boolean(true), Real, "0"},         {number(42), Real, "42"},
      {real(-2.75), Real, "-2.75"},       {money(12.5), Real, "12.5"},
      {text("2.5"), Real, "2.5"},         {date, Real, "5.03"},
      {time, Real, "7"},                  {stamp, Real, "5.03"},
      {boolean(true), Currency, "0.00"},  {number(42), Currency, "42.0000"},
      {real(-2.75), Currency, "-2.7500"}, {money(12.5), Currency, "12.5000"},
      {text("12,50"), Currency, "12.5000"}, {date, Currency, "5.0300"},
      {time, Currency, "7.0000"},         {stamp, Currency, "5.0300"},
      {boolean(true), String, "true"},    {number(42), String, "42"},
      {real(-2.75), String, "-2.75"},     {money(12.5), String, "12.5000"},
      {text("abc"), String, "abc"},       {date, String, "05.03.2024"},
      {time, String, "07:08:09"},         {stamp, String, "05.03.2024 07:08:09"},
      {boolean(true), Date, nullptr},     {number(2460375), Date, "05.03.2024"},
      {real(2460375.9), Date, "05.03.2024"}, {money(12.5), Date, "!"},
      {text("05.03.2024"), Date, "05.03.2024"}, {date, Date, "05.03.2024"},
      {time, Date, "07.08.1909"},         {stamp, Date, "05.03.2024"},
      {boolean(true), Time, "00:00:00"},  {number(42), Time, nullptr},
      {real(2.75), Time, "02:05:00"},     {money(12.5), Time, "12:50:00"},
      {text("07:08:09"), Time, "07:08:09"}, {date, Time, "05:03:20"},
      {time, Time, "07:08:09"},           {stamp, Time, "07:08:09"},
      {boolean(true), Timestamp, nullptr}, {number(42), Timestamp, "!"},
      {real(2.75), Timestamp, "02.05.1000 00:00:00"}, {money(12.5), Timestamp, "!"},
      {text("05.03.2024 07:08:09"), Timestamp, "05.03.2024 07:08:09"},
      {date, Timestamp, "05.03.2024 00:00:00"},
      {time, Timestamp, "07.08.1009 00:00:00"},
      {stamp, Timestamp, "05.03.2024 07:08:09"},
  };
  ASSERT_EQ(cases.size(), 64u);
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Case& c = cases[i];
    const Accessor& target = s_Accessors[c.m_Target];
    ZTVariant var;
    c.m_Fill(var);
    SCOPED_TRACE(std::to_string(i) + ": " + var.TypeName() + " as " + target.m_Type->GetClassName());
    const ZTValue* source = var.GetValue();
    const ZTClassType* sourceType = var.GetType();
    source->Attach();
    const std::string sourceText = Text(*source);

    if (c.m_Text && std::string(c.m_Text) == "!") {
      Catch([&] { target.m_Convert(var); });
      EXPECT_EQ(var.GetValue(), source);  // a failed conversion changes nothing
      EXPECT_EQ(var.GetType(), sourceType);
    } else {
      const ZTValue& converted = target.m_Convert(var);
      EXPECT_EQ(&converted, var.GetValue());
      EXPECT_EQ(&target.m_Read(var), &converted);
      EXPECT_EQ(var.GetType(), target.m_Type);
      EXPECT_EQ(&converted == source, source->IsKindOf(target.m_Type));
      EXPECT_EQ(var.IsNull() ? "null" : Text(var), c.m_Text ? c.m_Text : "null");
      EXPECT_FALSE(var.IsEmpty());
    }
    EXPECT_EQ(Text(*source), sourceText);  // the value held before is never changed
    EXPECT_EQ(source->GetRefCount(), var.GetValue() == source ? 2 : 1);
    source->Detach();
  }
}

TEST(ZTVariant, HoldsHeapValuesThemselvesAndCopiesOfAutomaticOrConstOnes) {
  const Usage before;
  {
    ZTInteger automatic(1);
    auto* heap = new ZTInteger(2);
    heap->Attach();

    ZTVariant var;
    var.SetValue(automatic);  // it may end before the variant: a copy
    EXPECT_NE(var.GetValue(), &automatic);
    automatic.Set(10);
    EXPECT_EQ(Text(var), "1");

    var.SetValue(*heap);  // itself, shared
    EXPECT_EQ(var.GetValue(), heap);
    var.Integer() = 21;
    EXPECT_EQ(heap->GetInt(), 21);
    var.SetValue(*heap);  // already held: nothing happens
    EXPECT_EQ(heap->GetRefCount(), 2);

    var.SetValue(static_cast<const ZTValue*>(heap));  // const: clones
    EXPECT_NE(var.GetValue(), heap);
    var.SetValue(static_cast<const ZTValue&>(*heap));
    EXPECT_NE(var.GetValue(), heap);
    const ZTVariant fromConstPtr(static_cast<const ZTValue*>(heap));
    EXPECT_NE(fromConstPtr.GetValue(), heap);
    EXPECT_EQ(heap->GetRefCount(), 1);

    ZTVariant fromPtr(&automatic);  // by pointer: itself, even automatic
    EXPECT_EQ(fromPtr.GetValue(), &automatic);
    fromPtr.SetValue(heap);
    EXPECT_EQ(heap->GetRefCount(), 2);
    fromPtr.SetValue(static_cast<ZTValue*>(nullptr));
    EXPECT_TRUE(fromPtr.IsEmpty());
    EXPECT_EQ(fromPtr.GetType(), nullptr);
    EXPECT_EQ(heap->GetRefCount(), 1);

    ZTVariant owner(new ZTString("owned"));  // freed with the variant
    auto* heapVar = new ZTVariant(new ZTInteger(3));
    heapVar->Attach();
    heapVar->Detach();
    heap->Detach();
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTVariant, CopiesShareTheHeldValueAndAssignmentTakesItOver) {
  const Usage before;
  {
    ZTVariant first;
    first.SetInt(1);
    ZTValue* held = first.GetValue();

    ZTVariant copy(first);
    EXPECT_EQ(copy.GetValue(), held);
    copy.Integer() = 2;  // same class: the shared value changes
    EXPECT_EQ(Text(first), "2");
    copy.Real();  // another class: only the copy holds the new value
    EXPECT_EQ(first.GetValue(), held);
    EXPECT_EQ(held->GetRefCount(), 1);

    ZTVariant assigned;
    assigned = first;
    assigned = assigned;
    EXPECT_EQ(assigned.GetValue(), held);
    EXPECT_EQ(held->GetRefCount(), 2);
    assigned = ZTVariant();
    EXPECT_TRUE(assigned.IsEmpty());
    ZTValue& asValue = assigned;
    asValue = first;
    EXPECT_EQ(assigned.GetValue(), held);
    asValue = ZTReal(1.5);
    EXPECT_EQ(Text(assigned), "1.5");

    ZTObject* clone = first.Clone();
    clone->Attach();
    EXPECT_EQ(static_cast<ZTVariant*>(clone)->GetValue(), held);
    clone->Detach();
    ZTVariant copied;
    copied.Copy(&first);
    EXPECT_EQ(copied.GetValue(), held);
    const ZTInteger plain(1);
    EXPECT_STREQ(Catch<ZTExceptCondition>([&] { copied.Copy(&plain); }).GetMsg(0),
                 "Condition check failed(_Src && GetClassType() == _Src->GetClassType())");

    // A copy made to be held shares instead of nesting a variant.
    const ZTVariant outer{static_cast<const ZTValue&>(first)};
    EXPECT_EQ(outer.GetValue(), held);
    EXPECT_EQ(outer.GetInteger().GetInt(), 2);
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTVariant, RefusesToHoldItselfDirectlyOrThroughOtherVariants) {
  const Usage before;
  {
    auto* self = new ZTVariant;
    self->Attach();
    self->SetInt(1);
    const char* const refusal = "\"A variant cannot hold itself.\"";
    EXPECT_STREQ(Catch<ZTExceptCondition>([&] { self->SetValue(self); }).GetMsg(0), refusal);
    EXPECT_STREQ(Catch<ZTExceptCondition>([&] { self->SetValue(*self); }).GetMsg(0), refusal);
    auto* other = new ZTVariant(self);
    other->Attach();
    EXPECT_EQ(Text(*other), "1");
    EXPECT_STREQ(Catch<ZTExceptCondition>([&] { self->SetValue(other); }).GetMsg(0), refusal);
    EXPECT_STREQ(Catch<ZTExceptCondition>([&] { *self = *other; }).GetMsg(0), refusal);
    EXPECT_EQ(Text(*self), "1");
    other->Detach();
    self->Detach();
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTVariant, TracksReplacementsAndNullingOfItsValue) {
  const Usage before;
  {
    ZTVariant var;
    var.SetInt(1);
    var.SetUseDirtyFunction(true);
    var.SetInt(2);
    EXPECT_TRUE(var.IsDirty());
    EXPECT_EQ(Text(*var.GetOrgValue()), "1");
    var.RestoreToOrgValue();
    EXPECT_FALSE(var.IsDirty());
    EXPECT_EQ(Text(var), "1");

    // Nulling changes the held value in place: the original must keep it.
    const ZTVariant sharing(var);
    var.SetNull();
    EXPECT_TRUE(var.IsNull());
    EXPECT_EQ(Text(*var.GetOrgValue()), "1");
    EXPECT_EQ(Text(sharing), "1");
    var.RestoreToOrgValue();
    EXPECT_EQ(Text(var), "1");
    var.SetUseDirtyFunction(false);
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTVariant, ComparesLikeTheValueItHolds) {
  ZTVariant five;
  five.SetInt(5);
  ZTVariant alsoFive;
  alsoFive.SetString("5");
  ZTVariant seven;
  seven.SetInt(7);
  EXPECT_TRUE(five == alsoFive);
  EXPECT_TRUE(five < seven);
  EXPECT_TRUE(five == ZTInteger(5));
  EXPECT_TRUE(ZTInteger(7) > five);
  EXPECT_TRUE(ZTVariant() == ZTInteger());  // both null
  EXPECT_FALSE(ZTVariant() == five);
}

// ---------------------------------------------------------------------------
// ZTValue::Variant

namespace {

// A composite value: a sub-value on the heap (also at index 1), an automatic
// one and a variant.
class Record : public ZTValue {
 public:
  Record() : m_Count(new ZTInteger(3)) {
    m_Count->Attach();
    m_Label = "label";
    m_Any.SetInt(9);
  }
  Record(const Record&) = delete;
  ~Record() override { m_Count->Detach(); }

  const char* GetClassName() const override { return "Record"; }
  using ZTValue::GetValue;
  const ZTValue* GetValue(const char* _Name) const override {
    const std::string name = _Name ? _Name : "";
    if (name == "Count") return m_Count;
    if (name == "Label") return &m_Label;
    return name == "Any" ? &m_Any : nullptr;
  }
  const ZTValue* GetValue(int _Idx, const char* _Name) const override {
    return _Idx == 1 ? GetValue(_Name) : nullptr;
  }

  ZTInteger* m_Count;
  ZTString m_Label;
  ZTVariant m_Any;
};

}  // namespace

TEST(ZTValueVariant, HoldsTheSubValueOrACopyOfIt) {
  const Usage before;
  {
    Record record;
    ZTVariant count = record.Variant("Count");  // itself: changes reach the record
    EXPECT_EQ(count.GetValue(), record.m_Count);
    count.Integer() = 4;
    EXPECT_EQ(record.m_Count->GetInt(), 4);
    EXPECT_EQ(record.Variant(1, "Count").GetValue(), record.m_Count);

    const Record& constRecord = record;
    ZTVariant copy = constRecord.Variant("Count");  // a copy
    EXPECT_NE(copy.GetValue(), record.m_Count);
    EXPECT_EQ(Text(constRecord.Variant(1, "Count")), "4");

    ZTVariant label = record.Variant("Label");  // automatic: a copy
    EXPECT_NE(label.GetValue(), &record.m_Label);
    EXPECT_EQ(Text(label), "label");

    ZTVariant any = record.Variant("Any");  // the held value, not a nested variant
    EXPECT_EQ(any.GetValue(), record.m_Any.GetValue());
    EXPECT_EQ(constRecord.Variant("Any").GetInteger().GetInt(), 9);
  }
  EXPECT_TRUE(before.Unchanged());
}

TEST(ZTValueVariant, MissingSubValueWarnsAndGivesAnEmptyVariant) {
  zt_test::WarningCapture capture;
  Record record;
  EXPECT_TRUE(record.Variant("Missing").IsEmpty());
  EXPECT_TRUE(capture.Contains("\"ZTValue::Variant: Value 'Record:Missing' not found.\""));
  EXPECT_TRUE(static_cast<const Record&>(record).Variant(2, "Count").IsEmpty());
  EXPECT_TRUE(capture.Contains("\"ZTValue::Variant: Value 'Record:Count' not found.\""));

  ZTInteger plain(1);  // no sub-values: its own warning, then the variant's
  EXPECT_TRUE(plain.Variant("Any").IsEmpty());
  EXPECT_TRUE(capture.Contains("ZTValue::GetValue(Any) (type = int) called"));
  EXPECT_TRUE(capture.Contains("\"ZTValue::Variant: Value 'ZTInteger:Any' not found.\""));

  const ZTDate date(2024, 3, 5);
  EXPECT_EQ(date.Variant("Year").GetInteger().GetInt(), 2024);
}
