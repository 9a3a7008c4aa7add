#include <random>
#include <string>
#include <utility>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

// An integer value that counts its live instances, to see what a parameter
// keeps alive and what it releases.
class CountedInt : public ZTInteger {
  ZT_DECLARE_CLASS(CountedInt, ZTValueCreator)

 public:
  CountedInt() { ++s_Live; }
  explicit CountedInt(int _Val) : CountedInt() { Set(_Val); }
  CountedInt(const CountedInt& _Src) : ZTInteger(_Src) { ++s_Live; }
  ~CountedInt() override { --s_Live; }
  static inline int s_Live = 0;
};
ZT_IMPLEMENT_CLASS(CountedInt, ZTInteger, ZTValueCreator, nullptr)

// "name=text" of every entry, names as stored, texts of values, or the class
// name of other objects.
std::string Entries(const ZTParameter& _Param) {
  std::string out;
  for (int i = 0; i < _Param.GetCount(); ++i) {
    out += "[" + std::string(_Param.GetName(i)) + "=";
    const ZTObject* obj = _Param.Get(i);
    const ZTValue* value = ZTDynamicCastT<ZTValue>(obj);
    out += value ? std::string(static_cast<const char*>(value->GetString())) : obj ? obj->GetClassName() : "null";
    out += "]";
  }
  return out;
}

std::string Text(const ZTString& _Str) { return _Str.IsNull() ? "<null>" : std::string(_Str); }

std::string Parsed(const char* _Line, char _NameSep = 0, char _ValueSep = 0) {
  ZTParameter param;
  param.SetFromString(_Line, -1, _NameSep, _ValueSep, true);
  return Entries(param);
}

}  // namespace

TEST(ZTParameter, ParsesTheLineGrammar) {
  EXPECT_EQ(Parsed("a=1, b = two ;c:3"), "[a=1][b=two][c=3]");
  EXPECT_EQ(Parsed("'x;y', 5"), "[p0=x;y][p1=5]");
  EXPECT_EQ(Parsed("a='it''s'"), "[a=it's]");
  EXPECT_EQ(Parsed("a=\"say \"\"hi\"\"\""), "[a=say \"hi\"]");
  EXPECT_EQ(Parsed("a=<b;c>, d=1"), "[a=<b;c>][d=1]");
  EXPECT_EQ(Parsed("k#v=1|w#2", '#', '|'), "[k=v=1][w=2]");
  // After a quote the entry runs to the next "," or ";", whatever the separators.
  EXPECT_EQ(Parsed("k#'v'|w#2", '#', '|'), "[k=v]");
  EXPECT_EQ(Parsed("a='x' junk, b=1"), "[a=x][b=1]");
  EXPECT_EQ(Parsed("a=x'y'z;b=2"), "[a=y][b=2]") << "text before a quote is dropped";
  // Quoted values keep their blanks; unquoted ones are trimmed.
  EXPECT_EQ(Parsed("a=' x ', b=\t y \n"), "[a= x ][b=y]");
  // Empty values, empty entries, a trailing separator.
  EXPECT_EQ(Parsed("a=, b='';;c"), "[a=][b=][p2=][p3=c]");
  EXPECT_EQ(Parsed("a=1;"), "[a=1]");
  EXPECT_EQ(Parsed(""), "");
  // Names: the text before the last name separator; an empty name is made up.
  EXPECT_EQ(Parsed("a=b=c; x:y:z"), "[a=b=c][x:y=z]");
  EXPECT_EQ(Parsed(" = 5; =6"), "[p0=5][p1=6]");
  // Unterminated quotes and brackets take the rest of the text.
  EXPECT_EQ(Parsed("a='abc, d=1"), "[a=abc, d=1]");
  EXPECT_EQ(Parsed("a=<x, d=1"), "[a=<x, d=1]");
  // Names are unique without case; the later value wins.
  EXPECT_EQ(Parsed("A=1, a=2"), "[A=2]");

  ZTParameter param("Result=7, n=1");
  EXPECT_EQ(Entries(param), "[n=1]");
  ASSERT_NE(param.GetResult(), nullptr);
  EXPECT_TRUE(param.GetResult()->IsKindOf(ZTString::ClassGetType()));
  EXPECT_EQ(Text(param.GetResult()->GetString()), "7");
  EXPECT_EQ(param.GetValue("RESULT"), param.GetResult());

  // Explicit lengths stop there and never read past a terminating zero.
  param.SetFromString("a=1,b=2", 3);
  EXPECT_EQ(Entries(param), "[a=1]");
  param.AddFromString("b=2\0c=3", 100);
  EXPECT_EQ(Entries(param), "[a=1][b=2]");
  param.SetFromString("x=1", 0);
  EXPECT_EQ(Entries(param), "") << "reset happens before a length of 0 ends the parse";
  param.AddFromString(nullptr);
  EXPECT_EQ(param.GetCount(), 0);
  // No shared buffer limits explicit lengths.
  const std::string longLine = "long='" + std::string(2000, 'x') + "', tail=1";
  param.SetFromString(longLine.c_str(), static_cast<int>(longLine.size()));
  EXPECT_EQ(param.GetString("long").GetLength(), 2000u);
  EXPECT_EQ(param.GetInt("tail"), 1);
}

TEST(ZTParameter, WritesListAndTemplateForms) {
  ZTParameter param;
  param.Push("abc");
  param.Push("n", 5);
  ZTString text;
  EXPECT_STREQ(param.CopyIntoString(text), "'abc';n=5");
  EXPECT_EQ(Text(param.GetString()), "'abc';n=5");
  EXPECT_STREQ(param.CopyIntoString(text, nullptr), "p0='abc';n=5");

  param.Push("q", "it's");
  param.Push("both", "a'b\"c");
  param.Append("nul", nullptr);  // a missing object
  param.Push("nv", ZTString());
  param.Push("arr", new ZTPArray);
  param.Push("P7", "five");  // the made-up name of its index: left out
  EXPECT_EQ(Text(param.GetString()),
            "'abc';n=5;q=\"it's\";both=\"a'b\"\"c\";nul=<null>;nv=<null>;arr=<binary>;'five'");
  // The named form always uses single quotes, doubled inside.
  EXPECT_EQ(std::string(param.CopyIntoString(text, nullptr)),
            "p0='abc';n=5;q='it''s';both='a''b\"c';nul=<null>;nv=<null>;arr=<binary>;P7='five'");

  // Templates: placeholders name entries, "fmt" gives the format.
  ZTParameter letter("name=Ann");
  letter.Push("count", 7);
  letter.Push("flag", true);
  letter.SetResult(ZTString("done"));
  EXPECT_STREQ(letter.CopyIntoString(text, "Dear <name>, <count fmt:%03d> items <flag fmt:Ja|Nein>."),
               "Dear Ann, 007 items Ja.");
  EXPECT_STREQ(letter.CopyIntoString(text, "<missing>|<Result>|<count >"), "|done|7");
  EXPECT_STREQ(letter.CopyIntoString(text, "no placeholder"), "no placeholder");
  EXPECT_STREQ(letter.CopyIntoString(text, "a < b <name"), "a < b <name");
  EXPECT_STREQ(letter.CopyIntoString(text, ""), "");
}

TEST(ZTParameter, RoundTripsParsedAndGeneratedLines) {
  // Both list forms read back as the same entries and print the same again.
  auto expectRoundTrip = [](const ZTParameter& _Param, const std::string& _Context) {
    for (const bool named : {false, true}) {
      ZTString printed;
      named ? _Param.CopyIntoString(printed, nullptr) : _Param.CopyIntoString(printed);
      ZTParameter again(static_cast<const char*>(printed));
      ASSERT_EQ(again.GetCount(), _Param.GetCount()) << _Context << " -> " << Text(printed);
      for (int i = 0; i < _Param.GetCount(); ++i) {
        EXPECT_EQ(again.Name(i).CmpNoCase(_Param.GetName(i)), CmpEqual) << _Context;
        EXPECT_EQ(Text(again.GetString(i)), Text(_Param.GetString(i))) << _Context;
      }
      ZTString reprinted;
      named ? again.CopyIntoString(reprinted, nullptr) : again.CopyIntoString(reprinted);
      EXPECT_EQ(Text(reprinted), Text(printed)) << _Context;
    }
  };

  for (const char* line :
       {"a=1, b = two ;c:3", "'x;y', 5", "a='it''s'", "a=<b;c>, d=1", "a=, b='';;c", "P0=x",
        "p1=a, b", "x=1, p0=2", "a=b=c", "a:b='v'", "q=\"a'b\"\"c\"", " = 5", "é=ü; \t=\x01"}) {
    ZTParameter param(line);
    expectRoundTrip(param, line);
  }

  // Generated entries: names and texts drawn from characters the grammar treats specially.
  std::mt19937 rng(20261123);
  const std::string nameChars = "abXY09_-.:=# \t";
  const std::string textChars = "ab ;,:='\"<>|#\t\\\xE9";
  auto draw = [&](const std::string& _From, int _MaxLen) {
    std::string s(std::uniform_int_distribution<int>(0, _MaxLen)(rng), ' ');
    for (char& ch : s) ch = _From[std::uniform_int_distribution<std::size_t>(0, _From.size() - 1)(rng)];
    return s;
  };
  for (int round = 0; round < 300; ++round) {
    ZTParameter param;
    const int entries = std::uniform_int_distribution<int>(1, 6)(rng);
    for (int e = 0; e < entries; ++e) {
      std::string name = draw(nameChars, 6);
      // Names the grammar can express: no blanks at the ends, not empty, not the result.
      while (!name.empty() && (name.front() == ' ' || name.front() == '\t')) name.erase(0, 1);
      while (!name.empty() && (name.back() == ' ' || name.back() == '\t')) name.pop_back();
      if (name.empty() || name == ":" || ZTParameter::IsResultName(name.c_str())) name = "n" + name;
      if (name.front() == ':' || name.front() == '=') name.insert(0, "k");
      const std::string text = draw(textChars, 8);
      if (e % 3 == 2)
        param.Push(ZTString(text.c_str()));
      else
        param.Push(name.c_str(), ZTString(text.c_str()));
    }
    expectRoundTrip(param, "round " + std::to_string(round) + ": " + Text(param.GetString()));
  }
}

TEST(ZTParameter, PushForms) {
  ZTParameter param;
  EXPECT_STREQ(param.Push("k=v"), "k=v");
  param.Push("'k=v'");
  param.Push("a:b=c");
  param.Push("plain");
  param.Push(ZTString("x=1"));  // a string object is never parsed
  EXPECT_EQ(Entries(param), "[k=v][p1='k=v'][a=b=c][p3=plain][p4=x=1]");

  ZTValue* number = param.Push(3);
  ZTValue* flag = param.Push(false);
  EXPECT_TRUE(number->IsA(ZTInteger::ClassGetType()));
  EXPECT_FALSE(number->IsNull());
  EXPECT_TRUE(flag->IsA(ZTBool::ClassGetType()));
  EXPECT_FALSE(flag->IsNull());
  EXPECT_EQ(param.GetName(5), std::string("p5"));

  // Pointers are stored themselves, references as clones; a name keeps its place.
  ZTInteger* own = new ZTInteger(1);
  EXPECT_EQ(param.Push("K", own), own);
  EXPECT_EQ(param.Get(0), own);
  ZTInteger local(2);
  ZTValue* clone = param.Push("k", local);
  EXPECT_NE(clone, &local);
  EXPECT_EQ(param.Get(0), clone);
  EXPECT_EQ(param.GetName(0), std::string("k"));
  ZTObject* array = param.Push(ZTPArray());
  EXPECT_TRUE(array->IsA(ZTPArray::ClassGetType()));
  EXPECT_EQ(param.GetValue(param.GetCount() - 1), nullptr);

  // "Result" in any case is the result, also for unnamed texts.
  param.Push("RESULT", 9);
  param.Push("result:5");
  EXPECT_FALSE(param.HasItem("Result"));
  EXPECT_EQ(Text(param.GetResult()->GetString()), "5");
  param.Push("Result", static_cast<ZTValue*>(nullptr));
  EXPECT_EQ(param.GetResult(), nullptr);
  EXPECT_TRUE(param.HasValue("result"));

  // A null pointer removes the entry: null entries are not stored.
  const int count = param.GetCount();
  param.Push("k", static_cast<ZTValue*>(nullptr));
  param.Push("none", static_cast<ZTObject*>(nullptr));
  EXPECT_EQ(param.GetCount(), count - 1);
  EXPECT_FALSE(param.HasValue("k"));
  EXPECT_NO_THROW(Entries(param)) << "every entry up to the count has its name";

  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { param.Push(nullptr, 1); }).GetMsg(0),
               "Required parameter _Name is null.");

  // A notification parameter: one "Action" entry holding a string.
  ZTParameter action(1);
  action.Push("Action", "SetDirty");
  EXPECT_TRUE(action.GetValue("Action")->IsA(ZTString::ClassGetType()));
  EXPECT_EQ(Text(action.GetString("action")), "SetDirty");
}

TEST(ZTParameter, LookupAndFailureTexts) {
  ZTParameter param("a=1, b=x");
  param.Push("obj", new ZTPArray);
  EXPECT_TRUE(param.HasValue("A"));
  EXPECT_TRUE(param.HasValue("Result"));
  EXPECT_FALSE(param.HasValue("c"));
  EXPECT_EQ(param.GetValue("c"), nullptr);
  EXPECT_EQ(param.GetValue("obj"), nullptr);
  EXPECT_EQ(param.GetValue("Result"), nullptr);
  EXPECT_EQ(param.GetValue(-1), nullptr);
  EXPECT_EQ(param.GetValue(3), nullptr);
  EXPECT_EQ(&param.Value(1), param.GetValue("b"));
  EXPECT_EQ(&param["a"], param.GetValue(0));
  EXPECT_EQ(Text(param.String("b")), "x");
  EXPECT_EQ(Text(param.GetString("c", nullptr, "dflt")), "dflt");
  EXPECT_EQ(Text(param.GetString(9, nullptr, "")), "");

  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { param.GetValue(static_cast<const char*>(nullptr)); }).GetMsg(0),
               "Required parameter _Name is null.");
  EXPECT_STREQ(Catch([&] { param.Value("c"); }).GetMsg(0),
               "\"ZTParameter::Value: Parameter 'c' not found.\"");
  EXPECT_STREQ(Catch([&] { param.Value("obj"); }).GetMsg(0),
               "\"ZTParameter::Value: Parameter 'obj' is not a value.\"");
  EXPECT_STREQ(Catch([&] { param[7]; }).GetMsg(0), "\"ZTParameter::Value: Parameter '7' not found.\"");
  EXPECT_STREQ(Catch([&] { param.Value(2); }).GetMsg(0),
               "\"ZTParameter::Value: Parameter '2' is not a value.\"");
  EXPECT_STREQ(Catch([&] { param.GetString("c"); }).GetMsg(0),
               "\"ZTParameter::GetString: Parameter 'c' not found or no value.\"");
  EXPECT_STREQ(Catch([&] { param.GetString(5); }).GetMsg(0),
               "\"ZTParameter::GetString: Parameter '5' not found or no value.\"");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { param.GetInt(""); }).GetMsg(0),
               "Required parameter _Name != NULL && *_Name != '\\0' is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { param.GetBool(static_cast<const char*>(nullptr)); }).GetMsg(0),
               "Required parameter _Name != NULL && *_Name != '\\0' is null.");
}

TEST(ZTParameter, TypedGetters) {
  ZTParameter param("s=42, d= 2.5 , yes=Yes, no=0, junk=abc");
  param.Push("i", 7);
  param.Push("r", ZTReal(-3.9));
  param.Push("ni", ZTInteger());
  param.Push("nr", ZTReal());
  param.Push("t", true);
  param.Push("nb", ZTBool());
  param.Push("obj", new ZTPArray);
  param.Push("cy", ZTCurrency(-12.75));

  EXPECT_EQ(param.GetInt("unknown", 9), 9);
  EXPECT_EQ(param.GetInt("cy"), -12);
  EXPECT_DOUBLE_EQ(param.GetDouble("cy"), -12.75);
  EXPECT_EQ(param.GetInt("obj", 9), 9);
  EXPECT_EQ(param.GetInt("i"), 7);
  EXPECT_EQ(param.GetInt("r"), -3);
  EXPECT_EQ(param.GetInt("ni", 9), 0);
  EXPECT_EQ(param.GetInt("nr", 9), 0);
  EXPECT_EQ(param.GetInt("s"), 42);
  EXPECT_EQ(param.GetInt("junk", 9), 0);
  EXPECT_EQ(param.GetInt(0), 42);
  EXPECT_EQ(param.GetInt(99, 4), 4);

  EXPECT_DOUBLE_EQ(param.GetDouble("d"), 2.5);
  EXPECT_DOUBLE_EQ(param.GetReal("i"), 7.0);
  EXPECT_DOUBLE_EQ(param.GetDouble("r"), -3.9);
  EXPECT_DOUBLE_EQ(param.GetDouble("nr", 1.5), 0.0);
  EXPECT_DOUBLE_EQ(param.GetDouble("none", 1.5), 1.5);

  EXPECT_TRUE(param.GetBool("t"));
  EXPECT_FALSE(param.GetBool("nb", true));
  EXPECT_TRUE(param.GetBool("yes"));
  EXPECT_FALSE(param.GetBool("no", true));
  EXPECT_FALSE(param.GetBool("junk", true)) << "text that is no boolean gives false";
  EXPECT_TRUE(param.GetBool("i", true)) << "other values give the default";
  EXPECT_FALSE(param.GetBool("i", false));
  EXPECT_TRUE(param.GetBool("missing", true));
  EXPECT_TRUE(param.GetBool(2));

  param.SetResult(ZTInteger(11));
  EXPECT_EQ(param.GetInt("result"), 11);
}

TEST(ZTParameter, OwnsEntriesAndResult) {
  ASSERT_EQ(CountedInt::s_Live, 0);
  {
    ZTParameter param;
    CountedInt* kept = new CountedInt(1);
    param.Push("kept", kept);
    EXPECT_EQ(kept->GetRefCount(), 1);
    EXPECT_TRUE(param.Push("clone", CountedInt(2))->IsA(CountedInt::ClassGetType()));
    EXPECT_EQ(CountedInt::s_Live, 2) << "the temporary is gone, its clone is held";
    param.Push("kept", CountedInt(3));
    EXPECT_EQ(CountedInt::s_Live, 2) << "a replaced entry is released";

    CountedInt* result = new CountedInt(4);
    param.SetResult(result);
    param.SetResult(result);
    EXPECT_EQ(result->GetRefCount(), 1);
    {
      ZTParameter shared(param);
      EXPECT_EQ(result->GetRefCount(), 2);
      EXPECT_EQ(shared.Get(0), param.Get(0)) << "a copy shares the entries";
      ZTParameter assigned;
      assigned = param;
      EXPECT_NE(assigned.Get(0), param.Get(0)) << "assignment clones the entries";
      EXPECT_EQ(assigned.GetResult(), result) << "and shares the result";
      ZTObject* cloned = param.Clone();
      EXPECT_EQ(static_cast<ZTParameter*>(cloned)->GetResult(), result);
      cloned->Delete();
    }
    EXPECT_EQ(result->GetRefCount(), 1);
    EXPECT_EQ(CountedInt::s_Live, 3);
    param.SetResult(CountedInt(5));
    EXPECT_EQ(CountedInt::s_Live, 3) << "the old result is released";
    param.SetFromString("x=1");
    EXPECT_EQ(CountedInt::s_Live, 1) << "reset releases the entries, the result stays";

    // A parameter on the heap, held by a value array.
    ZTParameter* heap = new ZTParameter("a=1");
    heap->Push("c", new CountedInt(6));
    heap->Attach();
    heap->Detach();
  }
  EXPECT_EQ(CountedInt::s_Live, 0);
}

TEST(ZTValueArray, StoresCountedValues) {
  ZTValueArray array(4);
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { array.Add(static_cast<const ZTValue*>(nullptr)); }).GetMsg(0),
               "Required parameter _Val is null.");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { array.Insert(0, static_cast<const ZTValue*>(nullptr)); }).GetMsg(0),
               "Required parameter _Val is null.");
  CountedInt* a = new CountedInt(1);
  array.Add(a);
  array.Append(CountedInt(2));
  array.Insert(0, CountedInt(1));
  array.Set(5, new CountedInt(5));
  EXPECT_EQ(CountedInt::s_Live, 4);
  EXPECT_EQ(array.Index(a), 1);
  EXPECT_EQ(array.Index(CountedInt(1)), 0) << "equality finds the first equal value";
  EXPECT_EQ(array.Index(static_cast<const ZTValue*>(nullptr)), -1);
  EXPECT_EQ(array.Index(ZTInteger(8)), -1);

  ZTValueArray other;
  other.Add(array);
  EXPECT_EQ(other.Get(1), a);
  EXPECT_EQ(a->GetRefCount(), 2);
  other.Add(other);
  EXPECT_EQ(other.GetCount(), 8);
  other.Reset();
  EXPECT_EQ(other.GetCount(), 0);
  EXPECT_EQ(a->GetRefCount(), 1);

  EXPECT_TRUE(array.Remove(1));
  EXPECT_EQ(*array[1], ZTInteger(2));
  array.Reset();
  EXPECT_EQ(CountedInt::s_Live, 0);
}

TEST(ZTNamedValueArray, KeepsNamesInStep) {
  ZTNamedValueArray array(2);
  array.Add("one", ZTInteger(1));
  array.Append("two", new ZTInteger(2));
  array.Insert(0, "zero", ZTInteger(0));
  array.Insert(1, "half", new ZTString("0.5"));
  array.Add("One", ZTInteger(11));
  auto names = [&] {
    std::string s;
    for (int i = 0; i < array.GetCount(); ++i)
      s += std::string(array.GetName(i)) + "=" + static_cast<const char*>(array.Get(i)->GetString()) + " ";
    return s;
  };
  EXPECT_EQ(names(), "zero=0 half=0.5 one=1 two=2 One=11 ");
  EXPECT_EQ(array.Index("ONE"), 2) << "the first match without case";
  EXPECT_EQ(array.Index("none"), -1);
  EXPECT_EQ(array.Get("TWO"), array.Get(3));
  EXPECT_EQ(array["half"], array.Get(1));
  EXPECT_EQ(array.Get("none"), nullptr);

  array.Remove(1);
  EXPECT_EQ(names(), "zero=0 one=1 two=2 One=11 ");
  static_cast<ZTPArray&>(array).Remove(0, true);
  EXPECT_EQ(names(), "one=1 two=2 One=11 ");

  ZTValue* two = array.Get(1);
  EXPECT_EQ(array.Set(1, two), 1);
  EXPECT_EQ(two->GetRefCount(), 1) << "setting the same value changes nothing";
  array.Set(1, new ZTInteger(22));
  EXPECT_EQ(names(), "one=1 two=22 One=11 ");

  ZTNamedValueArray copy;
  copy = array;
  EXPECT_NE(copy.Get(0), array.Get(0));
  EXPECT_STREQ(copy.GetName(2), "One");
  copy.Add(array);
  EXPECT_EQ(copy.GetCount(), 6);
  EXPECT_STREQ(copy.GetName(5), "One");
  copy.Reset();
  EXPECT_EQ(copy.GetCount(), 0);
  EXPECT_EQ(copy.Index("one"), -1) << "reset empties the names too";

  ZTInteger three(3);
  EXPECT_STREQ(Catch<ZTExceptIndex>([&] { array.Set(3, &three); }).GetMsg(0),
               "Index check failed(_Idx >= 0 && _Idx < GetCount())");
  EXPECT_STREQ(Catch<ZTExceptIndex>([&] { array.Name(-1); }).GetMsg(0),
               "Index check failed(0 <= _Idx && _Idx < GetCount())");
  EXPECT_STREQ(Catch<ZTExceptParameter>([&] { array.Index(static_cast<const char*>(nullptr)); }).GetMsg(0),
               "Required parameter _Name != NULL && _Name != '\\0' is null.");
  EXPECT_STREQ(Catch<ZTExceptCondition>([&] { array.Item("none"); }).GetMsg(0),
               "Condition check failed(obj != NULL)");
  static_cast<ZTValueArray&>(array).Add(ZTInteger(4));  // a value without a name
  EXPECT_STREQ(Catch<ZTExceptIndex>([&] { array.Name(3); }).GetMsg(0), "Index check failed(name != NULL)");
}
