#include <climits>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;
using zt_test::WarningCapture;

namespace {

using zt_test::Text;

using zt_test::Watched;

std::string IntMessage(const char* _Text) {
  ZTInteger i;
  return Catch([&] { i.SetString(_Text); }).GetMsg(0);
}

}  // namespace

// ---------------------------------------------------------------------------
// Creation by type name

TEST(ZTScalarValues, CreatedByClassAndTypeName) {
  const struct {
    const char* m_Name;
    const ZTClassType* m_Type;
  } names[] = {{"bool", ZTBool::ClassGetType()},           {"ZTBool", ZTBool::ClassGetType()},
               {"int", ZTInteger::ClassGetType()},         {"Int", ZTInteger::ClassGetType()},
               {"ZTInteger", ZTInteger::ClassGetType()},   {"real", ZTReal::ClassGetType()},
               {"character", ZTCharacter::ClassGetType()}, {"binary", ZTBinary::ClassGetType()},
               {"ZTBinary", ZTBinary::ClassGetType()}};
  for (const auto& n : names) {
    ZTValue* value = ZTValueCreator::CreateObject(n.m_Name);
    ASSERT_NE(value, nullptr) << n.m_Name;
    EXPECT_EQ(value->GetClassType(), n.m_Type) << n.m_Name;
    EXPECT_TRUE(value->IsNull()) << n.m_Name;
    value->Attach();
    value->Detach();
  }
  EXPECT_STREQ(ZTInteger().GetTypeName(), "int");
  EXPECT_STREQ(ZTBinary().GetTypeName(), "binary");
  EXPECT_STREQ(ZTCharacter().GetTypeName(), "character");
}

TEST(ZTScalarValues, NullStateAndNativeSizes) {
  ZTBool b;
  ZTInteger i;
  ZTReal r;
  ZTCharacter c;
  ZTBinary bin;
  for (const ZTValue* v : std::vector<const ZTValue*>{&b, &i, &r, &c, &bin}) {
    EXPECT_TRUE(v->IsNull());
    EXPECT_EQ(v->Get(nullptr, 0), 0u) << "a null value reports no bytes";
    EXPECT_EQ(Text(*v), "");
  }
  b = true;
  i = 7;
  r = 2.5;
  c = 'x';
  EXPECT_EQ(b.Get(nullptr, 0), 1u);
  EXPECT_EQ(i.Get(nullptr, 0), 4u);
  EXPECT_EQ(r.Get(nullptr, 0), 8u);
  EXPECT_EQ(c.Get(nullptr, 0), 1u);
  char small[2] = {'?', '?'};
  EXPECT_EQ(i.Get(small, 2), 4u) << "a short buffer gets nothing but the size";
  EXPECT_EQ(small[0], '?');
  int native = 0;
  EXPECT_EQ(i.Get(&native, sizeof native), 4u);
  EXPECT_EQ(native, 7);
  double d = 0;
  r.Get(&d, sizeof d);
  EXPECT_EQ(d, 2.5);

  // SetNull puts the stored value back to zero.
  i.SetNull();
  r.SetNull();
  b.SetNull();
  c.SetNull();
  EXPECT_EQ(int(i), 0);
  EXPECT_EQ(double(r), 0.0);
  EXPECT_FALSE(b.GetBool());
  EXPECT_TRUE(b.IsFalse());
  EXPECT_EQ(c.GetChar(), '\0');
  EXPECT_FALSE(ZTBool::True().IsNull());
  EXPECT_TRUE(ZTBool::True().IsTrue());
  EXPECT_FALSE(ZTBool::False().IsNull());
  EXPECT_TRUE(ZTBool::False().IsFalse());
}

// ---------------------------------------------------------------------------
// Change tracking of stores

TEST(ZTScalarValues, StoresAreTrackedInOrder) {
  Watched<ZTInteger> i;
  i.Set(1);
  EXPECT_EQ(i.m_Log, "dirty()changed(1)") << "SetDirty before the change, Changed after it";
  i.m_Log.clear();
  i.Set(1);
  EXPECT_EQ(i.m_Log, "") << "the same value is no change";
  i += 0;
  ++i;
  EXPECT_EQ(i.m_Log, "dirty(1)changed(2)");

  Watched<ZTReal> r;
  r.SetString("1,5");
  r.SetString("1.5");
  EXPECT_EQ(r.m_Log, "dirty()changed(1.5)");

  Watched<ZTBool> b;
  b.SetString("yes");
  b.SetString("Y");
  b.SetString("x", -1, "#");
  EXPECT_EQ(b.m_Log, "dirty()changed(true)dirty(true)");

  Watched<ZTCharacter> c;
  c.SetString("");
  EXPECT_EQ(c.m_Log, "dirty()changed()") << "the zero character is a value";
  EXPECT_FALSE(c.IsNull());

  // Binary stores always count, except the same block again.
  Watched<ZTBinary> bin;
  bin.SetString("00");
  bin.SetString("00");
  bin.Set(bin.GetData(), bin.GetLength());
  EXPECT_EQ(bin.m_Log, "dirty()changed(00)dirty(00)changed(00)");
}

TEST(ZTScalarValues, OriginalIsTheValueBeforeTheFirstChange) {
  ZTInteger i(5);
  i.SetUseDirtyFunction(true);
  i = 5;
  EXPECT_FALSE(i.IsDirty()) << "setting the value it holds does not mark it dirty";
  i = 6;
  i = 7;
  ASSERT_TRUE(i.IsDirty());
  ASSERT_NE(i.GetOrgValue(), nullptr);
  EXPECT_EQ(Text(*i.GetOrgValue()), "5");
  i.RestoreToOrgValue();
  EXPECT_EQ(int(i), 5);
  EXPECT_FALSE(i.IsDirty());

  ZTBinary bin(nullptr, 3);
  bin.SetUseDirtyFunction(true);
  bin.SetString("ABCD");
  ASSERT_NE(bin.GetOrgValue(), nullptr);
  EXPECT_EQ(Text(*bin.GetOrgValue()), "000000");
  bin.RestoreToOrgValue();
  EXPECT_EQ(Text(bin), "000000");

  ZTReal r;
  r.SetUseDirtyFunction(true);
  r = 1.25;
  r.SetNull();
  r.RestoreToOrgValue();
  EXPECT_TRUE(r.IsNull()) << "the original of a value first set from null is null";
}

// ---------------------------------------------------------------------------
// ZTBool

TEST(ZTBool, PrintsEveryFormat) {
  const struct {
    const char* m_Format;
    const char* m_True;
    const char* m_False;
    const char* m_Null;
  } cases[] = {
      {nullptr, "true", "false", ""},   {"", "true", "false", ""},
      {".TRUE.", "true", "false", ".TRUE."}, {".false.", "true", "false", ".false."},
      {"Ja|Nein|-", "Ja", "Nein", "-"}, {"on|off", "on", "off", "on|off"},
      {"a||", "a", "", ""},             {"|x", "?", "?", "|x"},
      {".t.", "y", "n", ".t."},         {".f.", "y", "n", ".f."},
      {".T.", "Y", "N", ".T."},         {".F.", "Y", "N", ".F."},
      {".w.", "j", "n", ".w."},         {".u.", "j", "n", ".u."},
      {".W.", "J", "N", ".W."},         {".U.", "J", "N", ".U."},
      {"#", "1", "0", "#"},             {"%s%n", "?", "?", "%s%n"},
  };
  for (const auto& c : cases) {
    const char* f = c.m_Format ? c.m_Format : "(null)";
    EXPECT_EQ(Text(ZTBool(true), c.m_Format), c.m_True) << f;
    EXPECT_EQ(Text(ZTBool(false), c.m_Format), c.m_False) << f;
    EXPECT_EQ(Text(ZTBool(), c.m_Format), c.m_Null) << f;
  }
}

TEST(ZTBool, ReadsOwnWords) {
  ZTBool b;
  b.SetString("ja", -1, "Ja|Nein|-");
  EXPECT_TRUE(b.IsTrue());
  b.SetString("NEIN", -1, "Ja|Nein|-");
  EXPECT_TRUE(b.IsFalse());
  EXPECT_FALSE(b.IsNull());
  b.SetString("-", -1, "Ja|Nein|-");
  EXPECT_TRUE(b.IsNull());

  b = true;
  WarningCapture warnings;
  b.SetString("vielleicht", -1, "Ja|Nein|-");
  EXPECT_TRUE(warnings.Contains(
      "\"ZTBool::SetString: Invalid value 'vielleicht' for formatting information 'Ja|Nein|-'.\""))
      << warnings.Text();
  EXPECT_TRUE(b.IsTrue()) << "an unknown word keeps the value";
  warnings.Clear();
  b.SetString("-", -1, "Ja|Nein");
  EXPECT_TRUE(warnings.Contains("Invalid value '-' for formatting information 'Ja|Nein'."));
  warnings.Clear();
  b.SetString("y", -1, ".t.");
  EXPECT_TRUE(warnings.Contains("Invalid value 'y' for formatting information '.t.'."))
      << "a format without a bar cannot be read";
  EXPECT_TRUE(b.IsTrue());
}

TEST(ZTBool, ReadsWithoutFormatAndWithHash) {
  const struct {
    const char* m_Text;
    int m_Expected;  // 1 true, 0 false, -1 null
  } plain[] = {{"yes", 1},  {"Yes", 1},  {"no", 0},    {"", -1},   {"-1", 1},  {"2", -1},
               {"TRUE", 1}, {"False", 0}, {"Nein", 0}, {"J", 1},   {"0.5", 0}, {"10", 1},
               {"t", -1},   {"-", -1},    {" yes", -1}, {"truex", -1}};
  for (const auto& c : plain) {
    ZTBool b(true);
    b.SetString(c.m_Text);
    EXPECT_EQ(b.IsNull() ? -1 : int(b.GetBool()), c.m_Expected) << "'" << c.m_Text << "'";
  }
  const struct {
    const char* m_Text;
    int m_Expected;
  } hash[] = {{"1", 1}, {"17", 1}, {"0", 0}, {"01", 0}, {"-1", 1}, {"-10", -1}, {"y", -1}, {"", -1}};
  for (const auto& c : hash) {
    ZTBool b(true);
    b.SetString(c.m_Text, -1, "#");
    EXPECT_EQ(b.IsNull() ? -1 : int(b.GetBool()), c.m_Expected) << "'" << c.m_Text << "'";
  }
  ZTBool b(true);
  b.SetString(nullptr);
  EXPECT_TRUE(b.IsNull());
}

TEST(ZTBool, RoundTripsThroughItsFormats) {
  for (const char* format : {(const char*)nullptr, "", "#", "Ja|Nein|-", "on|off", "X|Y|?"}) {
    for (int state : {-1, 0, 1}) {
      ZTBool b;
      if (state >= 0) b = state == 1;
      if (state < 0 && format && !std::strchr(format, '|') && *format) continue;  // "#": null prints "#"
      if (state < 0 && format && std::strcmp(format, "on|off") == 0) continue;    // no null word
      ZTBool back(true);
      back.SetString(b.GetString(format), format);
      EXPECT_EQ(back.IsNull(), b.IsNull()) << (format ? format : "(null)") << " " << state;
      EXPECT_EQ(back.GetBool(), b.GetBool()) << (format ? format : "(null)") << " " << state;
    }
  }
}

TEST(ZTBool, ConvertsAndCompares) {
  ZTBool b;
  b.SetValue(ZTString("Yes"));
  EXPECT_TRUE(b.IsTrue());
  b.SetValue(ZTInteger(0));
  EXPECT_TRUE(b.IsFalse());
  EXPECT_FALSE(b.IsNull());
  b.SetValue(ZTInteger(2));
  EXPECT_TRUE(b.IsNull()) << "the text 2 is no boolean";
  b.SetValue(ZTBool(true));
  EXPECT_TRUE(b.IsTrue());
  b.SetValue(ZTString());
  EXPECT_TRUE(b.IsNull());

  EXPECT_EQ(ZTBool(false).Cmp(ZTBool(true)), CmpLess);
  EXPECT_EQ(ZTBool(true).Cmp(ZTBool(false)), CmpGreater);
  EXPECT_EQ(ZTBool(true).Cmp(ZTString("ja")), CmpEqual);
  EXPECT_EQ(ZTBool(true).Cmp(ZTInteger(0)), CmpGreater);
  EXPECT_EQ(ZTBool().Cmp(ZTBool(false)), CmpLess);
  EXPECT_EQ(ZTBool(false).Cmp(ZTBool()), CmpGreater);
  EXPECT_EQ(ZTBool().Cmp(ZTInteger()), CmpEqual);
  EXPECT_EQ(ZTBool(false).Cmp(ZTString("maybe")), CmpGreater) << "text that reads as null";
  EXPECT_TRUE(ZTBool(true) == ZTBool::True());
}

// ---------------------------------------------------------------------------
// ZTInteger

TEST(ZTInteger, ParsesTrimmedDecimalText) {
  ZTInteger i;
  i.SetString(" 42 ");
  EXPECT_EQ(int(i), 42);
  i.SetString("\t-17\r\n");
  EXPECT_EQ(int(i), -17);
  i.SetString("12abc");
  EXPECT_EQ(int(i), 12);
  i.SetString("+8");
  EXPECT_EQ(int(i), 8);
  i.SetString("");
  EXPECT_TRUE(i.IsNull());
  i = 3;
  i.SetString(nullptr);
  EXPECT_TRUE(i.IsNull());

  EXPECT_EQ(IntMessage("x1"), "The string 'x1' is not an integer");
  EXPECT_EQ(IntMessage("   "), "The string '   ' is not an integer") << "blanks only";
  EXPECT_EQ(IntMessage(" x"), "The string ' x' is not an integer") << "the text as passed in";
  i = 9;
  EXPECT_THROW(i.SetString("abc"), ZTExcept);
  EXPECT_EQ(int(i), 9) << "a refused text leaves the value";
}

TEST(ZTInteger, SurvivesHostileText) {
  ZTInteger i;
  i.SetString("2147483647");
  EXPECT_EQ(int(i), INT_MAX);
  i.SetString("-2147483648");
  EXPECT_EQ(int(i), INT_MIN);
  i.SetString("-000000000000000000000000000000000000012");
  EXPECT_EQ(int(i), -12) << "leading zeros never overflow";
  EXPECT_EQ(IntMessage("2147483648"), "The string '2147483648' is out of the integer range");
  EXPECT_EQ(IntMessage("-2147483649"), "The string '-2147483649' is out of the integer range");
  const std::string digits(100000, '9');
  EXPECT_EQ(IntMessage(digits.c_str()).rfind("The string '9999", 0), 0u) << "refused, not wrapped";

  for (const char* zero : {"+", "-", "0x", "0x1F", "-+5", "+ 5", "0", "-0"}) {
    i = 5;
    i.SetString(zero);
    EXPECT_EQ(int(i), 0) << zero;
    EXPECT_FALSE(i.IsNull()) << zero;
  }
  // The length bounds the text: an embedded zero ends it, a buffer without
  // terminator is never read beyond its length.
  const char embedded[] = {'1', '2', '\0', '3', '4'};
  i.SetString(embedded, sizeof embedded);
  EXPECT_EQ(int(i), 12);
  const char unterminated[3] = {'7', '8', '9'};
  i.SetString(unterminated, 2);
  EXPECT_EQ(int(i), 78);
  i.SetString(unterminated, 0);
  EXPECT_TRUE(i.IsNull());
  const char binary[] = {'\x80', '\xff', '1'};
  EXPECT_THROW(i.SetString(binary, sizeof binary), ZTExcept);
}

TEST(ZTInteger, PrintsWithCFormats) {
  const ZTInteger v(255);
  EXPECT_EQ(Text(v), "255");
  EXPECT_EQ(Text(v, "%05d"), "00255");
  EXPECT_EQ(Text(v, "%x"), "ff");
  EXPECT_EQ(Text(v, "%#X"), "0XFF");
  EXPECT_EQ(Text(v, "%o"), "377");
  EXPECT_EQ(Text(v, "%+d"), "+255");
  EXPECT_EQ(Text(v, "%-6d|"), "255   |");
  EXPECT_EQ(Text(v, "%.5i"), "00255");
  EXPECT_EQ(Text(v, "No. %d (100%%)"), "No. 255 (100%)");
  EXPECT_EQ(Text(v, "%hhd"), "-1");
  EXPECT_EQ(Text(ZTInteger(65), "%c"), "A");
  EXPECT_EQ(Text(v, "fixed"), "fixed") << "a format without conversion";
  EXPECT_EQ(Text(v, ""), "") << "the empty format";
  EXPECT_EQ(Text(ZTInteger(), "%05d"), "") << "null";
  EXPECT_EQ(Text(ZTInteger(INT_MIN)), "-2147483648");
}

TEST(ZTInteger, RefusesFormatsThatReadMissingArguments) {
  const ZTInteger v(42);
  for (const char* bad : {"%s", "%n", "%d%d", "%*d", "%.*d", "%ld", "%lld", "%f", "%p", "abc%",
                          "%5", "%99999d", "%.5000d", "%-", "%Lf", "%'d", "%1$d", "%hc", "%#d", "%05c",
                          "%.2c", "%hhhd", "%lc", "%o|%%|%c"}) {
    WarningCapture warnings;
    EXPECT_EQ(Text(v, bad), "42") << bad;
    EXPECT_TRUE(warnings.Contains("\"ZTInteger::CopyIntoString: Invalid format '" +
                                  std::string(bad) + "', '%d' used instead.\""))
        << bad << ": " << warnings.Text();
  }
  EXPECT_EQ(Text(v, "%4096d").size(), 4096u) << "the largest field accepted";
  EXPECT_EQ(Text(v, "%#o"), "052");
  EXPECT_EQ(Text(ZTInteger(65), "%-3c|"), "A  |");
}

TEST(ZTInteger, RoundTripsOverManyValuesAndFormats) {
  std::vector<int> values = {0, 1, -1, 7, 10, 99, -100, 65535, INT_MAX, INT_MIN, INT_MIN + 1};
  for (int v = -1000000007; v < 1000000000; v += 123456789) values.push_back(v);
  for (int v : values) {
    for (const char* format : {(const char*)nullptr, "%d", "%i", "%+d", "%012d", "  %d  ", "%-15d"}) {
      const ZTInteger out(v);
      ZTInteger back;
      back.SetString(out.GetString(format));
      EXPECT_EQ(int(back), v) << (format ? format : "(null)");
      EXPECT_EQ(out.Cmp(back), CmpEqual);
    }
  }
}

TEST(ZTInteger, ArithmeticWrapsAndRefusesDivisionByZero) {
  ZTInteger i(INT_MAX);
  ++i;
  EXPECT_EQ(int(i), INT_MIN);
  --i;
  EXPECT_EQ(int(i), INT_MAX);
  const ZTInteger post = i++;
  EXPECT_EQ(int(post), INT_MIN) << "postfix gives the value plus one";
  EXPECT_EQ(int(i), INT_MAX) << "and leaves the value";
  EXPECT_EQ(int(i--), INT_MAX - 1);

  i = INT_MIN;
  -i;
  EXPECT_EQ(int(i), INT_MIN);
  i = 6;
  -i;
  EXPECT_EQ(int(i), -6);
  ~i;
  EXPECT_EQ(int(i), 5);
  !i;
  EXPECT_EQ(int(i), 0);
  !i;
  EXPECT_EQ(int(i), 1);
  ZTInteger n;
  +n;
  EXPECT_FALSE(n.IsNull()) << "unary plus stores the result";
  ZTInteger inc;
  ++inc;
  EXPECT_EQ(int(inc), 1);

  i = 7;
  i *= 6;
  EXPECT_EQ(int(i), 42);
  i /= ZTInteger(5);
  EXPECT_EQ(int(i), 8);
  i %= 3;
  EXPECT_EQ(int(i), 2);
  i += 40;
  i -= ZTInteger(2);
  EXPECT_EQ(int(i), 40);
  i <<= 2;
  EXPECT_EQ(int(i), 160);
  i >>= 3;
  EXPECT_EQ(int(i), 20);
  i &= 0x14;
  i |= 0x3;
  i ^= 0x1;
  EXPECT_EQ(int(i), 0x16);
  i = INT_MIN;
  i /= -1;
  EXPECT_EQ(int(i), INT_MIN);
  i %= -1;
  EXPECT_EQ(int(i), 0);
  i = 1;
  i <<= 33;
  EXPECT_EQ(int(i), 2) << "shift counts modulo 32";
  i = -8;
  i <<= 1;
  EXPECT_EQ(int(i), -16);
  i = INT_MAX;
  i *= 2;
  EXPECT_EQ(int(i), -2);

  i = 9;
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { i /= 0; }).GetMsg(0), "Condition check failed(_Val != 0)");
  EXPECT_THROW(i %= ZTInteger(0), ZTExceptCondition);
  EXPECT_EQ(int(i), 9);
}

TEST(ZTInteger, ConvertsFromOtherValues) {
  ZTInteger i;
  i.SetValue(ZTReal(-3.99));
  EXPECT_EQ(int(i), -3);
  i.SetValue(ZTReal(1e20));
  EXPECT_EQ(int(i), INT_MAX) << "saturates";
  i.SetValue(ZTBool(true));
  EXPECT_EQ(int(i), 1);
  i.SetValue(ZTBool(false));
  EXPECT_EQ(int(i), 0);
  EXPECT_FALSE(i.IsNull());
  i.SetValue(ZTString(" 31 "));
  EXPECT_EQ(int(i), 31);
  i.SetValue(ZTCharacter('7'));
  EXPECT_EQ(int(i), 7);
  i.SetValue(ZTReal());
  EXPECT_TRUE(i.IsNull());
  i = 4;
  i.SetValue(i);
  EXPECT_EQ(int(i), 4);
  EXPECT_THROW(i.SetValue(ZTString("four")), ZTExcept);

  ZTInteger copy;
  copy.Copy(&i);
  EXPECT_EQ(int(copy), 4);
  ZTReal r(1.0);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { copy.Copy(&r); }).GetMsg(0),
               "Condition check failed(_Src && GetClassType() == _Src->GetClassType())");
  ZTValue* clone = static_cast<ZTValue*>(i.Clone());
  EXPECT_EQ(clone->GetClassType(), ZTInteger::ClassGetType());
  EXPECT_EQ(clone->Cmp(i), CmpEqual);
  clone->Attach();
  clone->Detach();
}

TEST(ZTInteger, ComparesWithTheNullRulesAndTheStringException) {
  EXPECT_EQ(ZTInteger().Cmp(ZTInteger()), CmpEqual);
  EXPECT_EQ(ZTInteger().Cmp(ZTInteger(0)), CmpLess);
  EXPECT_EQ(ZTInteger(0).Cmp(ZTInteger()), CmpGreater);
  EXPECT_EQ(ZTInteger(-5).Cmp(ZTInteger(3)), CmpLess);
  EXPECT_EQ(ZTInteger(3).Cmp(ZTInteger(3)), CmpEqual);

  // A null integer equals a text that reads as null or zero.
  EXPECT_EQ(ZTInteger().Cmp(ZTString("0")), CmpEqual);
  EXPECT_EQ(ZTInteger().Cmp(ZTString("")), CmpEqual);
  EXPECT_EQ(ZTInteger().Cmp(ZTString()), CmpEqual);
  EXPECT_EQ(ZTInteger().Cmp(ZTString("4")), CmpLess);
  EXPECT_EQ(ZTInteger(0).Cmp(ZTString()), CmpGreater);
  EXPECT_EQ(ZTInteger(12).Cmp(ZTString("12abc")), CmpEqual);
  EXPECT_EQ(ZTInteger(12).Cmp(ZTString(" 13")), CmpLess);
  EXPECT_THROW(ZTInteger(1).Cmp(ZTString("one")), ZTExcept);

  EXPECT_EQ(ZTInteger(2).Cmp(ZTReal(2.5)), CmpLess);
  EXPECT_EQ(ZTInteger(2).Cmp(ZTReal(2.0)), CmpEqual);
  EXPECT_EQ(ZTInteger(1).Cmp(ZTBool(true)), CmpEqual) << "general rule: converted into an integer";
  EXPECT_TRUE(ZTInteger(5) > ZTInteger(4));
  EXPECT_TRUE(ZTInteger(5) == 5);

  ZTInteger i(1);
  EXPECT_EQ(i.Cmp(static_cast<const ZTObject*>(&i)), CmpEqual);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { i.Cmp(static_cast<const ZTObject*>(nullptr)); }).GetMsg(0),
               "Condition check failed(_Obj != NULL)");
  ZTReal foreign(1.0);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { i.Cmp(static_cast<const ZTObject*>(&foreign)); }).GetMsg(0),
               "Condition check failed(IsKindOf(_Obj))");
}

// ---------------------------------------------------------------------------
// ZTReal

TEST(ZTReal, ParsesDecimalCommaAndPoint) {
  const struct {
    const char* m_Text;
    const char* m_Format;
    double m_Expected;
  } cases[] = {
      {"1.234,5", nullptr, 1234.5}, {"1234.5", nullptr, 1234.5}, {"-0,25", nullptr, -0.25},
      {"1.234.567,89", "", 1234567.89}, {"1,5,7", nullptr, 1.5},  {"1.234,5", "0.00", 1.234},
      {"abc", nullptr, 0.0},          {"  2.5x", nullptr, 2.5},   {"1e3", nullptr, 1000.0},
      {"+", nullptr, 0.0},            {"-", nullptr, 0.0},        {",", nullptr, 0.0},
      {"1e-400", nullptr, 0.0},
  };
  for (const auto& c : cases) {
    ZTReal r;
    r.SetString(c.m_Text, -1, c.m_Format);
    EXPECT_FALSE(r.IsNull()) << c.m_Text;
    EXPECT_DOUBLE_EQ(double(r), c.m_Expected) << c.m_Text;
  }
  ZTReal r(1.0);
  r.SetString("");
  EXPECT_TRUE(r.IsNull()) << "the empty text";
  r = 1.0;
  r.SetString("5", 0);
  EXPECT_TRUE(r.IsNull()) << "a length of 0";
  r = 1.0;
  r.SetString(nullptr);
  EXPECT_TRUE(r.IsNull());
  r.SetString("12.75", 3);
  EXPECT_EQ(double(r), 12.0) << "the first _Len characters";
  const char unterminated[] = {'3', ',', '5'};
  r.SetString(unterminated, sizeof unterminated);
  EXPECT_EQ(double(r), 3.5);
}

TEST(ZTReal, RefusesOverflowAndSurvivesHostileText) {
  ZTReal r(1.0);
  EXPECT_STREQ(Catch([&] { r.SetString("1e999"); }).GetMsg(0),
               "The string '1e999' is out of the range of a real");
  EXPECT_THROW(r.SetString("-1e400"), ZTExcept);
  const std::string huge = "1" + std::string(400, '0');
  EXPECT_THROW(r.SetString(huge.c_str()), ZTExcept);
  EXPECT_EQ(double(r), 1.0) << "a refused text leaves the value";
  const std::string longFraction = "0." + std::string(100000, '3');
  r.SetString(longFraction.c_str());
  EXPECT_NEAR(double(r), 1.0 / 3, 1e-15);
  std::string junk;
  for (int c = 1; c < 256; ++c) junk += static_cast<char>(c);
  r.SetString(junk.c_str());
  EXPECT_EQ(double(r), 0.0);
  r.SetString("   ");
  EXPECT_EQ(double(r), 0.0);
  EXPECT_FALSE(r.IsNull());
}

TEST(ZTReal, PrintsWithoutFormatStrippingZeros) {
  EXPECT_EQ(Text(ZTReal(1.5)), "1.5");
  EXPECT_EQ(Text(ZTReal(2.0)), "2");
  EXPECT_EQ(Text(ZTReal(100.0)), "100");
  EXPECT_EQ(Text(ZTReal(-0.125)), "-0.125");
  EXPECT_EQ(Text(ZTReal(0.0)), "0");
  EXPECT_EQ(Text(ZTReal(1e-7)), "0") << "six decimals";
  EXPECT_EQ(Text(ZTReal(1234567.891)), "1234567.891");
  EXPECT_EQ(Text(ZTReal(1e20)), "100000000000000000000");
  EXPECT_EQ(Text(ZTReal(1.5), ""), "") << "the empty format";
  EXPECT_EQ(Text(ZTReal(), ""), "");
  EXPECT_EQ(Text(ZTReal()), "");
}

TEST(ZTReal, PrintsTheNamedFormats) {
  const struct {
    const char* m_Format;
    const char* m_Value;  // 1234567.891
    const char* m_Null;
  } cases[] = {
      {"#.##0,00", "1.234.567,89", "0,00"},      {"0.00", "1234567.89", "0.00"},
      {"#.##0,000", "1.234.567,891", "0,000"},   {"0.000", "1234567.891", "0.000"},
      {"#.##0,0000", "1.234.567,8910", "0,0000"}, {"0.0000", "1234567.8910", "0.0000"},
      {"#.##0,0", "1.234.567,9", "0,0"},         {"0.0", "1234567.9", "0.0"},
      {"#.##0,0\"0\"", "1.234.567,90", "0,00"},  {"#.##0,0'0'", "1.234.567,90", "0,00"},
      {"0.0\"0\"", "1234567.90", "0.00"},        {"0.0'0'", "1234567.90", "0.00"},
      {"#.##0", "1.234.568", "0"},               {"0", "1234568", "0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Text(ZTReal(1234567.891), c.m_Format), c.m_Value) << c.m_Format;
    EXPECT_EQ(Text(ZTReal(), c.m_Format), c.m_Null) << c.m_Format;
  }
  EXPECT_EQ(Text(ZTReal(100.0), "0"), "100") << "named formats keep their zeros";
  EXPECT_EQ(Text(ZTReal(2.5), "0.00"), "2.50");
}

TEST(ZTReal, GroupsByTheMonetarySeparators) {
  const struct {
    double m_Value;
    const char* m_Format;
    const char* m_Expected;
  } cases[] = {
      {-1234567.891, "#.##0,00", "-1.234.567,89"}, {123.0, "#.##0,00", "123,00"},
      {-123.0, "#.##0", "-123"},                   {1000.0, "#.##0", "1.000"},
      {-100000.0, "#.##0", "-100.000"},            {999999.5, "#.##0,0", "999.999,5"},
      {12345.678, "#%.1f", "#12.345,7"},           {1234.0, "#%.0f EUR", "#1.234 EUR"},
      {+5.0, "#%+.2f", "#+5"},                     {1234.5, "#%+.2f", "#+1.234,5"},
      {1234.5, "#.##0,00", "1.234,50"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(Text(ZTReal(c.m_Value), c.m_Format), c.m_Expected) << c.m_Format;
}

TEST(ZTReal, PrintsUserFormatsAndRefusesUnsafeOnes) {
  EXPECT_EQ(Text(ZTReal(2.5), "%.3f"), "2.5") << "zeros stripped";
  EXPECT_EQ(Text(ZTReal(2.0), "%.3f"), "2");
  EXPECT_EQ(Text(ZTReal(100.0), "%.0f"), "100") << "zeros of an integer text stay";
  EXPECT_EQ(Text(ZTReal(1500.0), "%e"), "1.500000e+03") << "an exponent is no fraction";
  EXPECT_EQ(Text(ZTReal(0.5), "%.1f%%"), "0.5%");
  EXPECT_EQ(Text(ZTReal(2.5), "%lf"), "2.5");
  EXPECT_EQ(Text(ZTReal(2.5), "%8.2f"), "    2.5");
  EXPECT_EQ(Text(ZTReal(), "%.2f"), "0") << "a null value prints the format's zero";
  EXPECT_EQ(Text(ZTReal(3.0), "x"), "x");

  for (const char* bad : {"%d", "%s", "%n", "%f%f", "%*f", "%Lf", "%.9999f", "%", "100%", "%llf",
                          "%hf"}) {
    WarningCapture warnings;
    EXPECT_EQ(Text(ZTReal(2.5), bad), "2.5") << bad;
    EXPECT_TRUE(warnings.Contains("\"ZTReal::CopyIntoString: Invalid format '" + std::string(bad) +
                                  "', '%f' used instead.\""))
        << bad;
  }
}

TEST(ZTReal, RoundTripsOverManyValuesAndFormats) {
  std::vector<double> values = {0.0, 1.0, -1.0, 0.5, -0.125, 1234.5, 1234567.25, -987654.75, 1e9,
                                123456789012.5, 0.0001};
  for (int k = -50; k <= 50; ++k) values.push_back(k * 1037.0625);
  for (double v : values) {
    const ZTReal out(v);
    for (const char* format : {(const char*)nullptr, "%.6f", "%f", "%.4f", "%12.6f"}) {
      ZTReal back;
      back.SetString(out.GetString(format), format);
      EXPECT_EQ(double(back), v) << (format ? format : "(null)") << " " << v;
    }
    // The grouped form reads back without a format (decimal comma).
    ZTReal grouped;
    grouped.SetString(out.GetString("#.##0,0000"));
    EXPECT_EQ(double(grouped), std::round(v * 10000) / 10000) << v;
  }
}

TEST(ZTReal, OperatorsConversionsAndComparison) {
  ZTReal r(2.5);
  EXPECT_EQ(r.GetInt(), 2);
  EXPECT_EQ(ZTReal(-2.9).GetInt(), -2);
  EXPECT_EQ(ZTReal(1e300).GetInt(), INT_MAX);
  EXPECT_EQ(ZTReal(-1e300).GetInt(), INT_MIN);
  EXPECT_EQ(ZTReal(NAN).GetInt(), 0);
  ++r;
  EXPECT_EQ(double(r), 3.5);
  EXPECT_EQ(double(r++), 4.5);
  EXPECT_EQ(double(r), 3.5);
  --r;
  r *= 4.0;
  r /= ZTReal(2.0);
  r += 1.0;
  r -= ZTReal(0.5);
  EXPECT_EQ(double(r), 5.5);
  -r;
  EXPECT_EQ(double(r), -5.5);
  !r;
  EXPECT_EQ(double(r), 0.0);
  !r;
  EXPECT_EQ(double(r), 1.0);
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { r /= 0.0; }).GetMsg(0),
               "Condition check failed(_Val != 0.0)");

  ZTReal c;
  c.SetValue(ZTInteger(7));
  EXPECT_EQ(double(c), 7.0);
  c.SetValue(ZTString("2.25"));
  EXPECT_EQ(double(c), 2.25);
  c.SetValue(ZTString("1,5"));
  EXPECT_EQ(double(c), 1.0) << "a string converts through its own double conversion";
  c.SetValue(ZTBool(true));
  EXPECT_EQ(double(c), 0.0) << "other values by their text";
  c.SetValue(ZTCharacter('8'));
  EXPECT_EQ(double(c), 8.0);
  c.SetValue(ZTInteger());
  EXPECT_TRUE(c.IsNull());

  EXPECT_EQ(ZTReal(1.5).Cmp(ZTReal(2.5)), CmpLess);
  EXPECT_EQ(ZTReal(3.0).Cmp(ZTInteger(3)), CmpEqual);
  EXPECT_EQ(ZTReal(3.5).Cmp(ZTInteger(3)), CmpGreater);
  EXPECT_EQ(ZTReal(0.5).Cmp(ZTString("0.5")), CmpEqual);
  EXPECT_EQ(ZTReal().Cmp(ZTString("0.5")), CmpLess);
  EXPECT_EQ(ZTReal(0.0).Cmp(ZTReal()), CmpGreater);
  EXPECT_EQ(ZTReal(NAN).Cmp(ZTReal(NAN)), CmpNotEqual);
  EXPECT_FALSE(ZTReal(NAN) <= ZTReal(1.0));
  EXPECT_TRUE(ZTReal(NAN) != ZTReal(1.0));
}

// ---------------------------------------------------------------------------
// ZTCharacter

TEST(ZTCharacter, TextFormsConversionAndOrder) {
  ZTCharacter c;
  c.SetString("");
  EXPECT_FALSE(c.IsNull());
  EXPECT_EQ(c.GetChar(), '\0');
  EXPECT_EQ(Text(c), "");
  c.SetString("xyz");
  EXPECT_EQ(Text(c), "x");
  c.SetString("abc", 0);
  EXPECT_EQ(c.GetChar(), '\0') << "a length of 0 is the empty text";
  c.SetString(nullptr);
  EXPECT_TRUE(c.IsNull());
  c = 0x141;
  EXPECT_EQ(c.GetChar(), 'A') << "the low eight bits";
  c.SetValue(ZTInteger(42));
  EXPECT_EQ(c.GetChar(), '4');
  c.SetValue(ZTCharacter('q'));
  EXPECT_EQ(c.GetInt(), 'q');

  EXPECT_EQ(ZTCharacter('\x80').Cmp(ZTCharacter('a')), CmpLess) << "signed codes";
  EXPECT_EQ(ZTCharacter('b').Cmp(ZTCharacter('a')), CmpGreater);
  EXPECT_EQ(ZTCharacter().Cmp(ZTCharacter('a')), CmpLess);
  EXPECT_EQ(ZTCharacter('5').Cmp(ZTString("5")), CmpEqual) << "general rule";
  EXPECT_EQ(ZTCharacter(-1).GetInt(), -1);
}

// ---------------------------------------------------------------------------
// ZTBinary

TEST(ZTBinary, HexadecimalTextForms) {
  ZTBinary b;
  b.SetString("0aFF");
  ASSERT_EQ(b.GetLength(), 2u);
  EXPECT_EQ(static_cast<const unsigned char*>(b.GetData())[0], 0x0A);
  EXPECT_EQ(static_cast<const unsigned char*>(b.GetData())[1], 0xFF);
  EXPECT_EQ(Text(b), "0AFF");
  b.SetString("A");
  EXPECT_TRUE(b.IsNull());
  b.SetString("12345");
  EXPECT_EQ(Text(b), "1234") << "an odd last character is ignored";
  b.SetString("abcdef", 4);
  EXPECT_EQ(Text(b), "ABCD");
  const char embedded[] = {'1', '2', '\0', '3', '4'};
  b.SetString(embedded, sizeof embedded);
  EXPECT_EQ(Text(b), "12") << "the text ends at its terminator";
  b.SetString(nullptr);
  EXPECT_TRUE(b.IsNull());

  b.SetString("0102");
  EXPECT_STREQ(Catch([&] { b.SetString("0g"); }).GetMsg(0), "The string '0g' is not a hexadecimal text");
  EXPECT_THROW(b.SetString(" 0102"), ZTExcept);
  EXPECT_EQ(Text(b), "0102") << "a refused text leaves the value";

  std::string all;
  for (int i = 0; i < 256; ++i) {
    const char hex[3] = {"0123456789ABCDEF"[i >> 4], "0123456789abcdef"[i & 15], 0};
    all += hex;
  }
  b.SetString(all.c_str());
  ASSERT_EQ(b.GetLength(), 256u);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(static_cast<const unsigned char*>(b.GetData())[i], i);
  ZTBinary back;
  back.SetString(b.GetString());
  EXPECT_EQ(back.Cmp(b), CmpEqual);

  ZTBinary empty(nullptr, 0);
  EXPECT_FALSE(empty.IsNull());
  EXPECT_EQ(empty.GetData(), nullptr);
  EXPECT_EQ(Text(empty), "");
}

TEST(ZTBinary, SetAppendGetAndCopy) {
  const unsigned char bytes[] = {1, 2, 3, 4};
  ZTBinary b(bytes, 4);
  b.AppendData(nullptr, 2);
  EXPECT_EQ(Text(b), "010203040000");
  unsigned char more[] = {0xAB};
  b.AppendData(more, 1);
  EXPECT_EQ(Text(b), "010203040000AB");
  b.Set(static_cast<unsigned char*>(b.GetData()) + 1, 2);
  EXPECT_EQ(Text(b), "0203") << "a source inside the own block";
  unsigned char buffer[8] = {};
  EXPECT_EQ(b.Get(buffer, 1), 2u) << "copies at most the buffer, returns the length";
  EXPECT_EQ(buffer[0], 2);
  EXPECT_EQ(buffer[1], 0);
  EXPECT_EQ(b.Get(nullptr, 0), 2u);

  ZTBinary copy(b);
  EXPECT_NE(copy.GetData(), b.GetData());
  EXPECT_EQ(copy.Cmp(b), CmpEqual);
  ZTBinary assigned;
  assigned = b;
  EXPECT_EQ(Text(assigned), "0203");
  assigned.Set(nullptr, 0);
  EXPECT_FALSE(assigned.IsNull());
  EXPECT_EQ(assigned.GetLength(), 0u);
  assigned.SetValue(ZTString("FF"));
  EXPECT_EQ(Text(assigned), "FF");
  assigned.SetValue(ZTInteger(5));
  EXPECT_TRUE(assigned.IsNull()) << "a one-character text";
  assigned.Copy(&b);
  EXPECT_EQ(Text(assigned), "0203");
  ZTValue* clone = static_cast<ZTValue*>(b.Clone());
  EXPECT_EQ(clone->Cmp(b), CmpEqual);
  clone->Attach();
  clone->Detach();
}

TEST(ZTBinary, OrdersByBytesThenLength) {
  auto bin = [](const char* _Hex) {
    ZTBinary b;
    b.SetString(_Hex);
    return b;
  };
  EXPECT_EQ(bin("01").Cmp(bin("02")), CmpLess);
  EXPECT_EQ(bin("02").Cmp(bin("01")), CmpGreater);
  EXPECT_EQ(bin("0102").Cmp(bin("01")), CmpGreater);
  EXPECT_EQ(bin("01").Cmp(bin("0102")), CmpLess);
  EXPECT_EQ(bin("80").Cmp(bin("7F")), CmpGreater) << "bytes are unsigned";
  EXPECT_EQ(bin("0102").Cmp(bin("0102")), CmpEqual);
  EXPECT_EQ(ZTBinary().Cmp(bin("00")), CmpLess);
  EXPECT_EQ(ZTBinary(nullptr, 0).Cmp(bin("00")), CmpLess);
  EXPECT_EQ(bin("0A").Cmp(ZTString("0a")), CmpEqual) << "other values by their hexadecimal text";
}

// ---------------------------------------------------------------------------
// ZTPointer

TEST(ZTPointer, HoldsAReferenceOnHeapObjectsOnly) {
  ZTInteger* heap = new ZTInteger(1);
  heap->Attach();
  {
    ZTPointer p(heap);
    EXPECT_TRUE(p.IsCounted());
    EXPECT_EQ(heap->GetRefCount(), 2);
    ZTPointer q(p);
    EXPECT_EQ(heap->GetRefCount(), 3);
    EXPECT_TRUE(p == q);
    EXPECT_TRUE(p <= q);
    q = nullptr;
    EXPECT_EQ(heap->GetRefCount(), 2);
    EXPECT_FALSE(p == q);
    EXPECT_FALSE(p < q);
    EXPECT_FALSE(p >= q);
    q = p;
    q = p;
    EXPECT_EQ(heap->GetRefCount(), 3);
    EXPECT_EQ(static_cast<ZTObject*>(p), heap);
    EXPECT_EQ(p->GetClassType(), ZTInteger::ClassGetType());
  }
  EXPECT_EQ(heap->GetRefCount(), 1);
  heap->Detach();

  ZTInteger automatic(5);
  const int count = automatic.GetRefCount();
  ZTPointer a(&automatic);
  EXPECT_FALSE(a.IsCounted());
  EXPECT_EQ(automatic.GetRefCount(), count) << "an automatic object is not attached";
  EXPECT_EQ(a.Cmp(&automatic), CmpEqual);
  ZTInteger five(5), six(6);
  EXPECT_EQ(a.Cmp(&five), CmpEqual) << "the held object compares";
  EXPECT_EQ(a.Cmp(&six), CmpLess);
  a.SetObject(nullptr);
  EXPECT_TRUE(a.IsCounted());
  EXPECT_EQ(a.Cmp(&five), CmpNotEqual);
  EXPECT_EQ(a.Cmp(static_cast<const ZTObject*>(nullptr)), CmpEqual);
  EXPECT_TRUE(a == ZTPointer());
  EXPECT_THROW(*a, ZTExceptCondition);
}
