#include <climits>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

namespace {

std::string Text(const ZTString& _Str) {
  const char* text = _Str;
  return text ? text : "<null>";
}

std::string Text(const ZTValue& _Value, const char* _Format = nullptr) {
  return Text(_Value.GetString(_Format));
}

const _FlagStringEntry s_AB[] = {{0x1, "A"}, {0x2, "B"}, {0, nullptr}};
const _FlagStringEntry s_WithNone[] = {{0x4, "C"}, {0, "None"}, {0, "Nothing"},
                                       {0x1, "A"}, {0x3, "AB"}, {0, nullptr}};

const ZTTEnumItem s_Access[] = {{"Read", 1}, {"Write", 2}, {nullptr, 0}};
const ZTTEnumItem s_Colors[] = {{"Red", 1}, {"Green", 2}, {"Blue", 3}, {nullptr, 0}};

ZTEnumList MakeAccess(bool _Compound = true, bool _Expansible = true) {
  ZTEnumList list(_Compound, _Expansible);
  list.AddItems(s_Access);
  return list;
}

int Read(const ZTEnumList& _List, const char* _Text, bool _Expected = true) {
  const char* shown = _Text ? _Text : "<null>";
  int value = 12345;
  EXPECT_EQ(_List.GetValue(_Text, value), _Expected) << shown;
  if (!_Expected) {
    EXPECT_EQ(value, -1) << shown;
  }
  return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// Flags

TEST(ZTFlags, WordOperations) {
  ztFlags flags(0x5);
  EXPECT_FALSE(flags.IsSet(0x3)) << "all bits of the mask";
  EXPECT_TRUE(flags.IsSet(0) && flags.IsSet(0x5) && flags.IsAnySet(0x3));
  EXPECT_FALSE(flags.IsAnySet(0x2));
  flags.SetFlags(0x2, 0x1);
  EXPECT_EQ(flags.GetFlags(), 0x6ul);
  flags.SetFlags(0x1, 0x1);  // clear first, then set
  EXPECT_EQ(static_cast<unsigned long>(flags), 0x7ul);
  EXPECT_EQ(ztFlags(0x1FFFFFFFFul).Flags(), 0xFFFFFFFFul) << "one 32-bit word";
}

TEST(ZTFlags, TextThroughTable) {
  EXPECT_EQ(Text(ZTFlags::ToString(3, s_AB, ',')), "A , B");
  EXPECT_EQ(Text(ZTFlags::ToString(3, s_AB, 0)), "A | B");
  EXPECT_EQ(Text(ZTFlags::ToString(2, s_AB, 0)), "B");
  EXPECT_EQ(Text(ZTFlags::ToString(0, s_AB, 0)), "") << "no zero entry: empty";
  EXPECT_EQ(Text(ZTFlags::ToString(8, s_AB, 0)), "") << "bits without a name";
  EXPECT_EQ(Text(ZTFlags::ToString(3, nullptr, 0)), "") << "no table";
  // Zero entries never print beside others; the first one stands for "none".
  EXPECT_EQ(Text(ZTFlags::ToString(0, s_WithNone, 0)), "None");
  EXPECT_EQ(Text(ZTFlags::ToString(8, s_WithNone, 0)), "None");
  // Entries of several bits print when all are set, beside their single bits.
  EXPECT_EQ(Text(ZTFlags::ToString(7, s_WithNone, '+')), "C + A + AB");
  EXPECT_EQ(Text(ZTFlags::ToString(2, s_WithNone, 0)), "None");

  ZTFlags flags(3, s_AB, ',');
  EXPECT_EQ(Text(flags, "%d"), "A , B") << "the format is not used";
  flags.SetCatChar(0);
  EXPECT_EQ(Text(flags), "A | B");
}

TEST(ZTFlags, StoresAndNullState) {
  ZTFlags flags;
  EXPECT_TRUE(flags.IsNull() && flags.IsEmpty());
  EXPECT_EQ(flags.Get(nullptr, 0), 0u) << "null: no bytes";

  flags.SetUseDirtyFunction(true);
  flags = 0x12ul;
  EXPECT_FALSE(flags.IsNull());
  EXPECT_TRUE(flags.IsSet(0x10) && flags.IsDirty());
  flags.Clean();
  flags.Set(ztFlags(0x12));
  EXPECT_FALSE(flags.IsDirty()) << "an unchanged word is no change";
  flags.Set(0x13);
  EXPECT_TRUE(flags.IsDirty());
  ASSERT_NE(flags.GetOrgValue(), nullptr);
  EXPECT_EQ(ZTDynamicCastT<ZTFlags>(flags.GetOrgValue())->GetFlags(), 0x12ul);
  flags.RestoreToOrgValue();
  EXPECT_EQ(flags.GetFlags(), 0x12ul);

  std::uint32_t native = 0;
  EXPECT_EQ(flags.Get(&native, 2), 4u) << "too small: size only";
  EXPECT_EQ(native, 0u);
  EXPECT_EQ(flags.Get(&native, sizeof native), 4u);
  EXPECT_EQ(native, 0x12u);

  // Text is never read: SetString stores nothing and returns its text.
  const char* text = "A | B";
  EXPECT_EQ(flags.SetString(text), text);
  EXPECT_EQ(flags.GetFlags(), 0x12ul);

  flags.SetEmpty();
  EXPECT_TRUE(!flags.IsNull() && flags.IsEmpty() && flags.GetFlags() == 0);
  flags = 0x4ul;
  flags.SetNull();
  EXPECT_TRUE(flags.IsNull() && flags.GetFlags() == 0);
}

TEST(ZTFlags, ValuesAndComparison) {
  ZTFlags a(0x80000000ul, s_AB);
  ZTFlags b(1, s_AB);
  EXPECT_EQ(a.Cmp(b), CmpGreater) << "by the unsigned word";
  EXPECT_EQ(b.Cmp(a), CmpLess);
  EXPECT_EQ(ZTFlags(3).Cmp(ZTFlags(3, s_AB, ',')), CmpEqual) << "tables do not matter";
  EXPECT_EQ(ZTFlags().Cmp(ZTMDEFlags()), CmpEqual) << "two nulls";
  EXPECT_EQ(ZTMDEFlags(0x100).Cmp(ZTFlags(0x2)), CmpGreater) << "derived flags compare by word";

  b.SetValue(a);
  EXPECT_EQ(b.GetFlags(), 0x80000000ul);
  b = ZTFlags();
  EXPECT_TRUE(b.IsNull()) << "a null source makes it null";
  ZTMDEFlags mde(0x2);
  b.SetValue(mde);
  EXPECT_EQ(b.GetFlags(), 0x2ul);
  EXPECT_EQ(Text(b), "B") << "its own table prints the word";

  WarningCapture warnings;
  ZTInteger other(5);
  b.SetValue(other);
  EXPECT_TRUE(
      warnings.Contains("\"ZTValue::SetValue (type = Flags) called: This is not intented.\""))
      << warnings.Text();
  EXPECT_EQ(b.GetFlags(), 0x2ul);

  ZTFlags target;
  target.Copy(&a);
  EXPECT_EQ(target.GetFlags(), 0x80000000ul);
  EXPECT_THROW(target.Copy(&mde), ZTExceptCondition) << "Copy needs the exact class";
}

TEST(ZTFlags, CreatedByTypeName) {
  for (const char* name : {"Flags", "MDEFlags"}) {
    ZTValue* value = ZTValueCreator::CreateObject(name);
    ASSERT_NE(value, nullptr) << name;
    value->Attach();
    EXPECT_STREQ(value->GetTypeName(), name);
    EXPECT_TRUE(value->IsNull()) << name;
    value->Detach();
  }
  ZTValue* mde = ZTValueCreator::CreateObject("ZTMDEFlags");
  mde->Attach();
  EXPECT_EQ(Text(*mde), "MDF_ATTRIB") << "a made member-flags value knows its table";
  mde->Detach();
}

TEST(ZTMDEFlags, MemberFlagNames) {
  EXPECT_EQ(Text(ZTMDEFlags(0x3)), "MDF_PRIMARY | MDF_ID");
  EXPECT_EQ(Text(ZTMDEFlags(0)), "MDF_ATTRIB");
  EXPECT_EQ(Text(ZTMDEFlags(0x108)), "MDF_DOMINANT | MDF_REQUIRED");
  EXPECT_EQ(Text(ZTMDEFlags(MDF_FOREIGN | MDF_UNIQUE | MDF_READONLY)), "MDF_FOREIGN | MDF_UNIQUE");
  EXPECT_EQ(Text(ZTMDEFlags(MDF_MAPREF | MDF_ASSOCIATION)), "MDF_ATTRIB") << "bits without a name";
  EXPECT_EQ(ZTMDEFlags(1).GetCatChar(), '|');

  EXPECT_EQ(Text(GetVDFlagsAsString(0)), "MDF_ATTRIB");
  EXPECT_EQ(Text(GetVDFlagsAsString(0x10B)), "MDF_DOMINANT | MDF_PRIMARY | MDF_ID | MDF_REQUIRED");
  EXPECT_EQ(Text(GetVDFlagsAsString(0x31B)),
            "MDF_DOMINANT | MDF_PRIMARY | MDF_ID | MDF_REQUIRED | MDF_UNIQUE");
  EXPECT_EQ(Text(GetVDFlagsAsString(0x10C)), "MDF_DOMINANT | MDF_FOREIGN | MDF_REQUIRED");
}

TEST(ZTMDEFlags, AddVDFlagToString) {
  ZTString text;
  AddVDFlagToString(text, 0x3, MDF_ID, "MDF_ID");
  EXPECT_EQ(Text(text), "MDF_ID");
  AddVDFlagToString(text, 0x3, MDF_FOREIGN, "MDF_FOREIGN");
  EXPECT_EQ(Text(text), "MDF_ID") << "flag not set: unchanged";
  EXPECT_EQ(Text(AddVDFlagToString(text, 0x3, 0x3, "both")), "MDF_ID | both");
  EXPECT_EQ(Text(AddVDFlagToString(text, 0x1, 0x3, "partial")), "MDF_ID | both")
      << "all bits of the flag must be set";
  EXPECT_EQ(Catch([&] { AddVDFlagToString(text, 1, 1, nullptr); }).GetMsg(0),
            std::string("Required parameter _Name is null."));
}

// ---------------------------------------------------------------------------
// Enumeration lists

TEST(ZTEnumList, CompoundExpansibleText) {
  const ZTEnumList list = MakeAccess();
  EXPECT_EQ(list.GetCount(), 2);
  EXPECT_TRUE(list.GetCompoundValue());
  EXPECT_TRUE(list.GetExpansible());
  EXPECT_EQ(Text(list.GetString(7)), "Read | Write | 0x00000004");
  EXPECT_EQ(Text(list.GetString(3)), "Read | Write");
  EXPECT_EQ(Text(list.GetString(3, ",")), "Read,Write") << "own separator between labels";
  EXPECT_EQ(Text(list.GetString(5, ",")), "Read | 0x00000004")
      << "unknown bits always after \" | \"";
  EXPECT_EQ(Text(list.GetString(0)), "0");
  EXPECT_EQ(Text(list.GetString(8)), "0x00000008");
  EXPECT_EQ(Text(list.GetString(-1)), "Read | Write | 0xfffffffc");
  EXPECT_EQ(Read(list, "Read|Write"), 3);
  EXPECT_EQ(Read(list, "4"), 4);
  EXPECT_EQ(Read(list, "Write|1"), 3) << "numbers and labels mix";

  ZTEnumList closed = MakeAccess(true, false);
  EXPECT_EQ(Text(closed.GetString(7)), "Read | Write") << "not expansible: unknown bits dropped";
  EXPECT_EQ(Text(closed.GetString(4)), "0");
  ZTString target("old");
  EXPECT_STREQ(list.CopyIntoString(1, target), "Read");
}

TEST(ZTEnumList, SingleValueText) {
  ZTEnumList list;
  list.AddItems(s_Colors);
  EXPECT_EQ(Text(list.GetString(2)), "Green");
  EXPECT_EQ(Text(list.GetString(5)), "") << "no type of value 5";
  list.SetExpansible(true);
  EXPECT_EQ(Text(list.GetString(5)), "") << "expansible only matters for compound values";
  EXPECT_EQ(Text(list.GetString(3)), "Blue") << "3 is a value of its own, not Red|Green";
  EXPECT_EQ(Read(list, "Blue"), 3);
  EXPECT_EQ(Read(list, "blue", false), -1) << "labels compare with case";
  EXPECT_EQ(Read(list, "Red|Green", false), -1) << "no splitting without compound";
  EXPECT_EQ(Read(list, "12abc"), 12) << "decimal conversion stops at the first non-digit";
  EXPECT_EQ(Read(list, "-1", false), -1) << "a sign is no digit and no label";

  int value = 0;
  EXPECT_FALSE(list.GetSingleValue(nullptr, value));
  EXPECT_EQ(value, -1);

  // The first type in list order wins, for labels and for values.
  const ZTTEnumItem again[] = {{"Crimson", 1}, {"Red", 9}, {nullptr, 0}};
  list.AddItems(again);
  EXPECT_EQ(Read(list, "Red"), 1);
  EXPECT_EQ(Text(list.GetString(1)), "Red");
  EXPECT_EQ(Text(list.GetString(9)), "Red");
}

TEST(ZTEnumList, MultiBitTypesAndZeroTypes) {
  const ZTTEnumItem items[] = {{"None", 0},  {"ReadWrite", 3}, {"Read", 1},
                               {"Write", 2}, {"Exec", 4},      {nullptr, 0}};
  ZTEnumList list(true, false);
  list.AddItems(items);
  EXPECT_EQ(Text(list.GetString(7)), "ReadWrite | Exec") << "the earlier type consumes its bits";
  EXPECT_EQ(Text(list.GetString(1)), "Read");
  EXPECT_EQ(Text(list.GetString(0)), "0") << "types of value 0 are skipped";
  EXPECT_EQ(Read(list, "None"), 0);
  EXPECT_EQ(Read(list, "None|Exec"), 4);

  EXPECT_TRUE(list.IsValidValue(7) && list.IsValidValue(0));
  EXPECT_FALSE(list.IsValidValue(8) || list.IsValidValue(-1));

  ZTEnumList single;
  single.AddItems(s_Colors);
  single.Add(new ZTEnumType);  // a null type stands for no value
  EXPECT_TRUE(single.IsValidValue(3));
  EXPECT_FALSE(single.IsValidValue(0));
  EXPECT_EQ(Text(single.GetString(0)), "");
}

TEST(ZTEnumList, RoundTrips) {
  const ZTTEnumItem bits[] = {{"A", 0x1}, {"B", 0x2}, {"C", 0x4}, {"High", INT_MIN}, {nullptr, 0}};
  for (const bool expansible : {false, true}) {
    ZTEnumList list(true, expansible);
    list.AddItems(bits);
    for (const std::uint32_t word :
         {0x0u, 0x1u, 0x2u, 0x4u, 0x3u, 0x5u, 0x7u, 0x80000001u, 0x80000007u}) {
      const int value = static_cast<int>(word);
      EXPECT_EQ(Read(list, list.GetString(value)), value);
      EXPECT_EQ(Read(list, list.GetString(value, "|")), value);
    }
  }
  // Unknown bits come back through the hexadecimal text of an expansible list.
  ZTEnumList open = MakeAccess();
  for (const int value : {4, 7, 0x7FFFFFFF, -1})
    EXPECT_EQ(Read(open, open.GetString(value)), value);
  ZTEnumList colors;
  colors.AddItems(s_Colors);
  for (int value = 1; value <= 3; ++value) EXPECT_EQ(Read(colors, colors.GetString(value)), value);
}

TEST(ZTEnumList, HostileText) {
  ZTEnumList list = MakeAccess();
  ZTEnumList single;
  single.AddItems(s_Colors);
  for (const ZTEnumList* l : {&list, &single}) {
    for (const char* bad : {"", "Unknown", "Read|Unknown", "Read||Write", "|", "|||", "Read|",
                            "|Read", " ", " | ", "\t", "\xff\xfe", "READ"}) {
      Read(*l, bad, false);
    }
    EXPECT_EQ(Read(*l, nullptr, false), -1);
  }
  // Numbers beyond the int range saturate instead of overflowing.
  EXPECT_EQ(Read(single, "99999999999999999999999"), INT_MAX);
  EXPECT_EQ(Read(list, "4294967296|1"), INT_MAX);
  EXPECT_EQ(Read(list, "0x"), 0);
  EXPECT_EQ(Read(list, "0x123456789abc"), -1) << "hexadecimal saturates at 32 bits";
  EXPECT_EQ(Read(list, "0X10"), 16);

  // Very long texts: many parts, one huge part, a long run of separators.
  std::string many;
  for (int i = 0; i < 20000; ++i) many += i % 2 ? "Write | " : "Read|";
  many += "0x00000100";
  EXPECT_EQ(Read(list, many.c_str()), 0x103);
  EXPECT_EQ(Read(list, std::string(100000, 'R').c_str(), false), -1);
  EXPECT_EQ(Read(list, std::string(100000, '|').c_str(), false), -1);
  EXPECT_EQ(Read(list, std::string(100000, '7').c_str()), INT_MAX);

  // Random bytes: never a crash; any answer is a value or -1 with false.
  std::mt19937 random(20240611);
  std::uniform_int_distribution<int> length(1, 48);
  std::uniform_int_distribution<int> byte(1, 255);
  const std::string alphabet = "RWead|rit 0x123456789|||";
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    const int n = length(random);
    for (int i = 0; i < n; ++i) {
      const int b = byte(random);
      text += round % 2 ? static_cast<char>(b) : alphabet[b % alphabet.size()];
    }
    for (const ZTEnumList* l : {&list, &single}) {
      int value = 0;
      if (!l->GetValue(text.c_str(), value)) {
        EXPECT_EQ(value, -1) << text;
      }
    }
    ZTEnumValue enumValue(1, &list);
    try {
      enumValue.SetString(text.c_str());
    } catch (const ZTExcept&) {  // neither a label nor an integer
    }
  }
}

TEST(ZTEnumList, SharedTypeTable) {
  const bool hadTable = ZTEnumList::GetTypeTable() != nullptr;
  ZTEnumType* read = nullptr;
  {
    ZTEnumList first;
    first.AddItems(s_Access);
    ZTEnumTypeTable* table = ZTEnumList::GetTypeTable();
    ASSERT_NE(table, nullptr);
    read = first.Get(0);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(Text(read->GetLabel()) + "=" + Text(*read), "Read=1");
    read->Attach();
    EXPECT_EQ(read->GetRefCount(), 3) << "table, list and this test";

    ZTEnumList second(true, true);
    second.AddItems(s_Access);
    EXPECT_EQ(ZTEnumList::GetTypeTable(), table) << "one table for all lists";
    EXPECT_EQ(second.Get(0), read) << "the same label and value share one type";
    EXPECT_EQ(read->GetRefCount(), 4);

    // The same label with another value is another type; both are found.
    const ZTTEnumItem other[] = {{"Read", 4}, {nullptr, 0}};
    ZTEnumList third;
    third.AddItems(other);
    EXPECT_NE(third.Get(0), read);
    EXPECT_EQ(table->Find("Read", 1), read);
    EXPECT_EQ(table->Find("Read", 4), third.Get(0));
    EXPECT_EQ(table->Find("Read", 2), nullptr);
    EXPECT_EQ(table->Find("read", 1), nullptr) << "labels with case";
    EXPECT_EQ(table->Find(nullptr, 1), nullptr);

    // Copies share types and keep the table alive.
    ZTEnumList copy(second);
    EXPECT_TRUE(copy.GetCompoundValue() && copy.Get(1) == second.Get(1));
    ZTEnumList assigned;
    assigned = third;
    EXPECT_EQ(assigned.Get(0), third.Get(0)) << "assignment shares, never clones";
    ZTEnumList* clone = static_cast<ZTEnumList*>(first.Clone());
    clone->Attach();
    EXPECT_EQ(clone->Get(1), first.Get(1));
    clone->Detach();
  }
  // With every list gone the table has released its types (unless a list
  // elsewhere in the process keeps it).
  EXPECT_EQ(read->GetRefCount(), hadTable ? 2 : 1);
  read->Detach();
  if (!hadTable) {
    EXPECT_EQ(ZTEnumList::GetTypeTable(), nullptr);
  }

  ZTEnumList list;
  EXPECT_EQ(Catch([&] { list.AddItems(nullptr); }).GetMsg(0),
            std::string("Required parameter _Items is null."));
}

// A list that lives until the end of the process: at static destruction the
// table must go with it, releasing its types, without touching freed state.
TEST(ZTEnumList, StaticListLivesUntilExit) {
  EXPECT_EXIT(
      {
        static const bool s_HadTable = ZTEnumList::GetTypeTable() != nullptr;
        static ZTEnumType* s_Read = nullptr;
        // Registered before the list is made, so it runs after the list is destroyed.
        std::atexit([] {
          const bool released =
              s_HadTable || (ZTEnumList::GetTypeTable() == nullptr && s_Read->GetRefCount() == 1);
          s_Read->Detach();
          if (!released) std::_Exit(3);
        });
        static ZTEnumList s_List(true, true);
        s_List.AddItems(s_Access);
        s_Read = s_List.Get(0);
        s_Read->Attach();
        static ZTEnumValue s_Value(3, &s_List);
        std::exit(Text(s_Value) == "Read | Write" ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

// ---------------------------------------------------------------------------
// Enumeration values

TEST(ZTEnumValue, ReadByLabel) {
  ZTEnumList colors;
  colors.AddItems(s_Colors);
  ZTEnumValue value(0, &colors);
  EXPECT_STREQ(value.GetTypeName(), "int");

  const char* red = "Red";
  EXPECT_EQ(value.SetString(red), red);
  EXPECT_EQ(value.GetInt(), 1);
  EXPECT_EQ(Text(value), "Red");

  EXPECT_EQ(value.SetString("Purple"), nullptr);
  EXPECT_TRUE(value.IsNull()) << "an unknown label empties the value";

  value.SetString("12");
  EXPECT_EQ(value.GetInt(), 12);
  EXPECT_EQ(Text(value), "") << "no label for 12";
  value.SetString("-3");
  EXPECT_EQ(value.GetInt(), -3);
  value.SetString(" 2 ");
  EXPECT_EQ(value.GetInt(), 2) << "integer text is trimmed as integers are";
  EXPECT_EQ(Text(value), "Green");

  value.SetString("Blue", 2);
  EXPECT_TRUE(value.IsNull()) << "only the given length is read: \"Bl\"";
  value.SetString("Bluex", 4);
  EXPECT_EQ(value.GetInt(), 3);

  EXPECT_EQ(Catch([&] { value.SetString("#Red"); }).GetMsg(0),
            std::string("The string '#Red' is not an integer"));
  EXPECT_THROW(value.SetString(" Red"), ZTExcept) << "a label must start the text";

  ZTString text("Blue");
  value.SetValue(text);
  EXPECT_EQ(value.GetInt(), 3) << "a string value is read by label";
  value = "Green";
  EXPECT_EQ(value.GetInt(), 2);
  value = 1;
  EXPECT_EQ(Text(value), "Red");

  ZTEnumValue loose;
  EXPECT_EQ(loose.SetString("Red"), nullptr) << "no list: no label is known";
  loose.SetString("7");
  EXPECT_EQ(Text(loose, "%03d"), "007") << "without a list the format is the integer's";
  EXPECT_TRUE(loose.IsValidValue(12345));
}

TEST(ZTEnumValue, CompoundValues) {
  ZTEnumList access = MakeAccess();
  ZTEnumValue value(0, &access);
  value.SetUseDirtyFunction(true);
  value.SetString("Read|Write");
  EXPECT_EQ(value.GetInt(), 3);
  EXPECT_TRUE(value.IsDirty());
  EXPECT_EQ(Text(value), "Read | Write");
  EXPECT_EQ(Text(value, "+"), "Read+Write") << "the format is the separator";
  value.SetString(Text(value).c_str());
  EXPECT_EQ(value.GetInt(), 3) << "its own text reads back";
  value.SetString("Write | 0x00000010");
  EXPECT_EQ(value.GetInt(), 0x12);
  value = 4;
  EXPECT_EQ(Text(value), "0x00000004");
  value.SetString(Text(value).c_str());
  EXPECT_EQ(value.GetInt(), 4) << "bits without a label read back";
  EXPECT_TRUE(value.IsValidValue(3));
  EXPECT_FALSE(value.IsValidValue(4));
  value.SetUseDirtyFunction(false);

  ZTEnumValue target;
  target.Copy(&value);
  EXPECT_EQ(target.GetEnumList(), &access);
  EXPECT_EQ(Text(target), "0x00000004");
  target.SetEnumList(nullptr);
  EXPECT_EQ(Text(target), "4");
  EXPECT_EQ(target.SetString("0x10"), std::string("0x10"));
  EXPECT_EQ(target.GetInt(), 0) << "without a list a 0x text is an integer text";

  ZTEnumType type(5, "Five");
  ZTEnumType other;
  other.Copy(&type);
  EXPECT_EQ(Text(other.GetLabel()) + "=" + Text(other), "Five=5");

  ZTValue* made = ZTValueCreator::CreateObject("ZTEnumValue");
  ASSERT_NE(made, nullptr);
  made->Attach();
  EXPECT_STREQ(made->GetTypeName(), "int");
  made->Detach();
  ZTValue* integer = ZTValueCreator::CreateObject("int");
  ASSERT_NE(integer, nullptr);
  integer->Attach();
  EXPECT_EQ(integer->GetClassType(), ZTInteger::ClassGetType()) << "\"int\" stays the integer's";
  integer->Detach();
}
