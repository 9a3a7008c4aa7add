#include <cstring>
#include <string>
#include <vector>

#include "test_support.h"

using zt_test::Catch;

namespace {

std::vector<std::string> Pieces(const ZTStringArray& _Array) {
  std::vector<std::string> out;
  for (int i = 0; i < _Array.GetSize(); ++i) {
    const ZTString* s = _Array.Get(i);
    if (s) out.push_back(s->IsNull() ? "<null>" : static_cast<const char*>(*s));
  }
  return out;
}

int StringBlocks() { return ZTMemMgr::GetUsageCount(ZTMemCatString); }

}  // namespace

TEST(ZTString, NullAndEmpty) {
  ZTString null;
  EXPECT_TRUE(null.IsNull());
  EXPECT_TRUE(null.IsEmpty());
  EXPECT_EQ(static_cast<const char*>(null), nullptr);
  EXPECT_EQ(null.GetLength(), 0u);
  EXPECT_TRUE(ZTString(static_cast<const char*>(nullptr)).IsNull());

  ZTString empty("");
  EXPECT_FALSE(empty.IsNull());
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_STREQ(empty, "");

  null.SetString("");
  EXPECT_TRUE(null.IsNull()) << "storing the empty text keeps a null string null";
  ZTString text("x");
  text.SetString("");
  EXPECT_FALSE(text.IsNull());
  EXPECT_TRUE(text.IsEmpty());

  // A null text makes the string null; SetNull keeps an own block at length 0.
  text = "abc";
  text = static_cast<const char*>(nullptr);
  EXPECT_TRUE(text.IsNull());
  ZTString own("abc");
  own.SetNull();
  EXPECT_TRUE(own.IsNull());
  EXPECT_STREQ(own, "");

  // SetEmpty: an own block becomes empty (not null), a shared one is given up.
  ZTString solo("abc");
  solo.SetEmpty();
  EXPECT_FALSE(solo.IsNull());
  EXPECT_STREQ(solo, "");
  ZTString shared("abc");
  ZTString other(shared);
  shared.SetEmpty();
  EXPECT_TRUE(shared.IsNull());
  EXPECT_STREQ(other, "abc");

  EXPECT_FALSE(ZTString::Empty().IsNull());
  EXPECT_STREQ(ZTString::Empty(), "");
  EXPECT_STREQ(ZTString::Space(), " ");
  EXPECT_EQ(&ZTString::EmptyString(), &ZTString::GetEmptyString());
  EXPECT_STREQ(ZTString().GetTypeName(), "string");
}

TEST(ZTString, ConstructionForms) {
  EXPECT_STREQ(ZTString("abcdef", 3), "abc");
  EXPECT_STREQ(ZTString("ab", 10), "ab") << "a length beyond the text stops at its end";
  EXPECT_STREQ(ZTString('x', 3), "xxx");
  EXPECT_STREQ(ZTString('x', 0), "");
  const unsigned short wide[] = {'W', 'i', 'd', 'e', 0};
  EXPECT_STREQ(ZTString(wide), "Wide");
  EXPECT_STREQ(ZTString(wide, 2), "Wi");
  ZTString w;
  w = wide;
  w += wide;
  EXPECT_STREQ(w, "WideWide");
  ZTString rep;
  rep.Set('-', 4);
  EXPECT_STREQ(rep, "----");
  rep = 'q';
  EXPECT_STREQ(rep, "q");

  ZTString source("src");
  ZTString target(std::move(source));
  EXPECT_STREQ(target, "src");
  EXPECT_TRUE(source.IsNull());

  ZTString fast("old text that is long enough");
  const char* block = fast;
  ZTString::SetStringFast(fast, "new", 0xFFFFFFFF);
  EXPECT_STREQ(fast, "new");
  EXPECT_EQ(static_cast<const char*>(fast), block) << "an own, large block is reused";
  ZTString::SetStringFast(fast, "abcdef", 2);
  EXPECT_STREQ(fast, "ab");
}

TEST(ZTString, TextLimit) {
  ZTString limited;
  limited.SetTextLimit(3);
  limited.SetString("abcdef", -1);
  EXPECT_STREQ(limited, "abc");
  limited.SetString("wxyz", 10);
  EXPECT_STREQ(limited, "wxy");
  limited = ZTString("123456");
  EXPECT_STREQ(limited, "123") << "an assigned string is cut to the limit too";
  EXPECT_STREQ(ZTString("abcdef", 0xFFFFFFFF, 2), "ab");
  ZTString copy(limited);
  copy = "long text";
  EXPECT_STREQ(copy, "lon") << "a copy takes the limit";
}

TEST(ZTString, CopiesShareUntilChanged) {
  ZTString a("shared text");
  const int blocks = StringBlocks();
  ZTString b(a);
  ZTString c;
  c = a;
  EXPECT_EQ(StringBlocks(), blocks) << "copies must not allocate";
  EXPECT_EQ(static_cast<const char*>(b), static_cast<const char*>(a));
  EXPECT_EQ(static_cast<const char*>(c), static_cast<const char*>(a));

  b.SetAt(0, 'S');
  EXPECT_STREQ(a, "shared text");
  EXPECT_STREQ(b, "Shared text");
  EXPECT_STREQ(c, "shared text");

  c[1] = 'H';
  EXPECT_STREQ(a, "shared text");
  EXPECT_STREQ(c, "sHared text");

  c += "!";
  c.MakeUpper();
  EXPECT_STREQ(a, "shared text");
  EXPECT_STREQ(c, "SHARED TEXT!");

  // A reference from operator[] stays writable: later copies must not see writes.
  ZTString d("abc");
  char& first = d[0];
  ZTString e(d);
  first = 'X';
  EXPECT_STREQ(d, "Xbc");
  EXPECT_STREQ(e, "abc");

  // A buffer taken for direct writing is never shared.
  ZTString f("buffer");
  char* buffer = f.SetBufferLength(32, false, false);
  ZTString g(f);
  std::strcpy(buffer, "written");
  f.SetBufferLength(7, false, true);
  EXPECT_STREQ(f, "written");
  EXPECT_STREQ(g, "buffer");
  EXPECT_NE(static_cast<const char*>(g), static_cast<const char*>(f));

  // A shareable buffer is shared again by copies; changes still unshare.
  ZTString h("xy");
  h.SetBufferLength(64, true, false);
  ZTString i(h);
  EXPECT_EQ(static_cast<const char*>(i), static_cast<const char*>(h));
  i.SetBufferLength(2, true, true);
  i.SetAt(0, 'Q');
  EXPECT_STREQ(h, "xy");
  EXPECT_STREQ(i, "Qy");

  // Every change form on a copy leaves the source alone.
  const ZTString src("  Mixed Case  ");
  for (int form = 0; form < 8; ++form) {
    ZTString t(src);
    switch (form) {
      case 0: t.Trim(); break;
      case 1: t.MakeLower(); break;
      case 2: t.MakeReverse(); break;
      case 3: t.Replace(2, 5, ZTString("x")); break;
      case 4: t.Insert("ins", 3); break;
      case 5: t.Prepend('>'); break;
      case 6: t.SetNull(); break;
      case 7: t.Format("%d", 42); break;
    }
    EXPECT_STREQ(src, "  Mixed Case  ") << "form " << form;
  }
  EXPECT_EQ(ZTString::Empty().GetLength(), 0u);
}

TEST(ZTString, SelfReferencingChanges) {
  ZTString s("abc");
  s += s;
  EXPECT_STREQ(s, "abcabc");
  s.SetString(static_cast<const char*>(s) + 2, -1);
  EXPECT_STREQ(s, "cabc");
  s.Insert(static_cast<const char*>(s), 1);
  EXPECT_STREQ(s, "ccabcabc");
  s.Format("%s-%s", static_cast<const char*>(s), "x");
  EXPECT_STREQ(s, "ccabcabc-x");
  s = s;
  EXPECT_STREQ(s, "ccabcabc-x");
}

TEST(ZTString, Changes) {
  ZTString s("mid");
  s.Prepend("pre-").Append("-post").Append('!', 3);
  EXPECT_STREQ(s, "pre-mid-post!!!");
  s.Replace(0, 3, 'P');
  EXPECT_STREQ(s, "P-mid-post!!!");
  s.Replace(2, 3, ZTString("MIDDLE"));
  EXPECT_STREQ(s, "P-MIDDLE-post!!!");
  s.Insert('_', 1);
  EXPECT_STREQ(s, "P_-MIDDLE-post!!!");
  s.Insert("end", 1000);
  EXPECT_STREQ(s, "P_-MIDDLE-post!!!end");
  s.MakeLower(0);
  EXPECT_STREQ(s, "p_-MIDDLE-post!!!end");
  s.MakeUpper(-1);
  EXPECT_STREQ(s, "P_-MIDDLE-POST!!!END");
  ZTString r("abc");
  r.MakeReverse();
  EXPECT_STREQ(r, "cba");

  ZTString num("n=");
  num += 42;
  num += ';';
  num += 1.5;
  EXPECT_STREQ(num, "n=42;1.500000");

  ZTString base("ab");
  EXPECT_STREQ(base + ZTString("cd"), "abcd");
  EXPECT_STREQ(base + 'c', "abc");
  EXPECT_STREQ(base + "cd", "abcd");
  EXPECT_STREQ("xy" + base, "xyab");
  EXPECT_STREQ('x' + base, "xab");
  EXPECT_STREQ(base, "ab");

  ZTString grow;
  for (int i = 0; i < 100; ++i) grow += 'z';
  EXPECT_EQ(grow.GetLength(), 100u);
  ZTString null;
  null += "";
  EXPECT_TRUE(null.IsNull()) << "appending nothing keeps a null string null";
  null += "a";
  EXPECT_STREQ(null, "a");
}

TEST(ZTString, AccessAndIndexFailures) {
  ZTString s("abc");
  EXPECT_EQ(s.GetAt(0), 'a');
  EXPECT_EQ(s.GetAt(3), '\0') << "the terminator may be read";
  const ZTString& cs = s;
  EXPECT_EQ(cs[3], '\0');

  auto setAt = Catch<ZTExceptIndex>([&] { s.SetAt(3, 'x'); });
  EXPECT_STREQ(setAt.GetName(), "_Index");
  EXPECT_EQ(setAt.GetIndex(), 3);
  ASSERT_EQ(setAt.GetMsgCount(), 2);
  EXPECT_STREQ(setAt.GetMsg(1), "Index check failed(_Index >= 0 && _Index < rep->m_DataLength)");
  EXPECT_STREQ(setAt.GetMsg(0), "Context:ZTString::SetAt, abc");

  auto getAt = Catch<ZTExceptIndex>([&] { s.GetAt(4); });
  EXPECT_STREQ(getAt.GetMsg(1), "Index check failed(_Index >= 0 && _Index <= rep->m_DataLength)");
  EXPECT_STREQ(getAt.GetMsg(0), "Context:ZTString::GetAt, abc");

  auto sub = Catch<ZTExceptIndex>([&] { s[-1]; });
  EXPECT_STREQ(sub.GetMsg(0), "Context:operator[], abc");

  ZTString null;
  auto nullRead = Catch<ZTExceptCondition>([&] { null.GetAt(0); });
  ASSERT_EQ(nullRead.GetMsgCount(), 2);
  EXPECT_STREQ(nullRead.GetMsg(0), "\"String is null, no data to return.\"");
  EXPECT_STREQ(nullRead.GetMsg(1), "Condition check failed(!IsNull())");

  auto insert = Catch<ZTExceptParameter>([&] { s.Insert("", 0); });
  EXPECT_STREQ(insert.GetMsg(0), "Required parameter _Str != NULL && *_Str != '\\0' is null.");
  auto insertCh = Catch<ZTExceptParameter>([&] { s.Insert('\0', 0); });
  EXPECT_STREQ(insertCh.GetMsg(0), "Required parameter _Ch != '\\0' is null.");

  ZTString huge;
  auto tooBig = Catch<ZTExceptCondition>([&] { huge.SetBufferLength(0x7FFFFFFF); });
  EXPECT_STREQ(tooBig.GetMsg(0), "Condition check failed(_Len > 0 && _Len < INT_MAX)");
  EXPECT_TRUE(huge.IsNull());

  auto upper = Catch<ZTExceptIndex>([&] { s.MakeUpper(3); });
  EXPECT_STREQ(upper.GetMsg(0), "Index check failed(_Idx < len)");
  EXPECT_STREQ(s, "abc");
}

TEST(ZTString, Parts) {
  const ZTString abc("abc");
  EXPECT_STREQ(abc.Mid(1, 100), "bc");
  EXPECT_STREQ(abc.Mid(1), "bc");
  EXPECT_STREQ(abc.Mid(0, 2), "ab");
  const ZTString none = abc.Mid(1, 0);
  EXPECT_FALSE(none.IsNull());
  EXPECT_STREQ(none, "");
  auto mid = Catch<ZTExceptIndex>([&] { abc.Mid(3, 1); });
  EXPECT_STREQ(mid.GetMsg(0), "Context:ZTString::Mid, abc");
  EXPECT_EQ(mid.GetIndex(), 3);

  EXPECT_STREQ(abc.Left(2), "ab");
  EXPECT_STREQ(abc.Left(10), "abc");
  EXPECT_STREQ(abc.Right(2), "bc");
  EXPECT_STREQ(abc.Right(10), "abc");
  EXPECT_STREQ(abc.Left(0), "");
  EXPECT_TRUE(ZTString().Left(3).IsNull());

  ZTStringArray parts;
  EXPECT_EQ(ZTString("a,,b,").Split(',', parts), 4);
  EXPECT_EQ(Pieces(parts), (std::vector<std::string>{"a", "", "b", "<null>"}));
  EXPECT_EQ(ZTString("a,b").Split(',', parts), 2);
  EXPECT_EQ(Pieces(parts), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(ZTString("").Split(',', parts), 1);
  EXPECT_EQ(Pieces(parts), (std::vector<std::string>{"<null>"}));
  EXPECT_EQ(ZTString("k=v;x").Split("=;", parts), 3);
  EXPECT_EQ(Pieces(parts), (std::vector<std::string>{"k", "v", "x"}));
  ZTStringArray copy(parts);
  EXPECT_EQ(copy.GetCount(), 3);
  EXPECT_STREQ(copy.GetClassName(), "ZTStringArray");
}

TEST(ZTString, Trimming) {
  ZTString blanks("   ");
  blanks.RTrim();
  EXPECT_FALSE(blanks.IsNull());
  EXPECT_STREQ(blanks, "");
  ZTString mixed(" a b ");
  mixed.Trim();
  EXPECT_STREQ(mixed, "a b");
  ZTString ws("\t\r\n x \n");
  ws.LTrim();
  EXPECT_STREQ(ws, "x \n");
  ws.RTrim();
  EXPECT_STREQ(ws, "x");
  ZTString null;
  null.Trim();
  EXPECT_TRUE(null.IsNull());
}

TEST(ZTString, Search) {
  const ZTString s("hello world");
  EXPECT_EQ(s.Find('o'), 4);
  EXPECT_EQ(s.Find('o', 5), 7);
  EXPECT_EQ(s.Find('o', -3), 4);
  EXPECT_EQ(s.Find('o', 11), -1);
  EXPECT_EQ(s.Find('\0'), -1);
  EXPECT_EQ(s.Find("wor"), 6);
  EXPECT_EQ(s.Find("wor", 7), -1);
  EXPECT_EQ(s.ReverseFind('o'), 7);
  EXPECT_EQ(s.ReverseFind('z'), -1);
  EXPECT_EQ(s.FindOneOf("wr"), 6);
  EXPECT_EQ(s.FindOneOf("xyz"), -1);
  EXPECT_TRUE(s.Contains('w'));
  EXPECT_FALSE(ZTString("").Contains('w'));
  EXPECT_TRUE(s.Contains("lo w"));
  EXPECT_TRUE(s.Contains(ZTString("world")));
  EXPECT_FALSE(s.Contains(ZTString()));
  EXPECT_EQ(ZTString().Find("a"), -1);
  auto nullArg = Catch<ZTExceptParameter>([&] { s.Find(static_cast<const char*>(nullptr)); });
  EXPECT_STREQ(nullArg.GetMsg(0), "Required parameter _Str != NULL is null.");

  EXPECT_EQ(ZTString::Find("abc", 'c', 1), 2);
  EXPECT_EQ(ZTString::Find("", 'c', 0), -1);
  EXPECT_EQ(ZTString::Find(nullptr, 'c', 0), -1);
  auto outside = Catch<ZTExceptIndex>([] { ZTString::Find("abc", 'c', 3); });
  EXPECT_STREQ(outside.GetMsg(0), "Index check failed(0 <= _idxStart && _idxStart < (int)::strlen(_S))");
  EXPECT_EQ(ZTString::Find("abcabc", "ca", 0), 2);
  EXPECT_EQ(ZTString::FindOneOf("abc", "xc", 0), 2);
  EXPECT_EQ(ZTString::ReverseFind("abca", 'a'), 3);
}

TEST(ZTString, Comparison) {
  ZTString abc("abc");
  EXPECT_EQ(abc.Cmp("ABD"), CmpGreater) << "lower case orders after upper case";
  abc.SetCaseInsensitive();
  EXPECT_TRUE(abc.IsCaseInsensitive());
  EXPECT_EQ(abc.Cmp("ABD"), CmpLess);
  EXPECT_EQ(abc.Cmp("ABC"), CmpEqual);
  EXPECT_EQ(abc.Cmp(ZTString("ABD")), CmpLess);
  abc.SetCaseInsensitive(false);
  EXPECT_EQ(abc.Cmp(ZTString("ABD")), CmpGreater);
  EXPECT_EQ(abc.CmpNoCase("ABD"), CmpLess);
  EXPECT_EQ(abc.CmpNoCase(ZTString("ABC")), CmpEqual);

  // Null rules of the text forms.
  ZTString null;
  EXPECT_EQ(null.Cmp(static_cast<const char*>(nullptr)), CmpEqual);
  EXPECT_EQ(null.Cmp(""), CmpLess);
  EXPECT_EQ(abc.Cmp(static_cast<const char*>(nullptr)), CmpGreater);
  EXPECT_EQ(null.Compare(nullptr), 0);
  EXPECT_EQ(abc.Compare(nullptr), 1);
  EXPECT_EQ(null.Compare("a"), -1);
  EXPECT_EQ(abc.Compare("abd"), -1);
  EXPECT_EQ(abc.Compare("abd", 2), 0);
  EXPECT_EQ(abc.CompareNoCase("ABC"), 0);
  EXPECT_EQ(abc.CompareNoCase("ABX", 2), 0);
  EXPECT_EQ(abc.Compare("\xe4"), -1) << "bytes compare unsigned";
  EXPECT_EQ(null.CmpNoCase(static_cast<const char*>(nullptr)), CmpEqual);
  EXPECT_EQ(null.CmpNoCase("a"), CmpLess);
  EXPECT_EQ(abc.CmpNoCase(static_cast<const char*>(nullptr)), CmpGreater);
  EXPECT_EQ(null.CmpNoCase(ZTString("a")), CmpLess);
  EXPECT_EQ(abc.CmpNoCase(ZTString()), CmpGreater);

  const char* text = "same";
  EXPECT_EQ(ZTString::Cmp(text, text), CmpEqual);
  EXPECT_EQ(ZTString::Cmp(nullptr, "a"), CmpGreater);
  EXPECT_EQ(ZTString::Cmp("a", nullptr), CmpLess);
  EXPECT_EQ(ZTString::Cmp("a", "b"), CmpLess);
  EXPECT_EQ(ZTString::CmpNoCase("B", "a"), CmpGreater);

  // As values null and empty are alike.
  EXPECT_EQ(null.Cmp(ZTString("")), CmpEqual);
  EXPECT_EQ(null.Cmp(abc), CmpLess);
  EXPECT_EQ(abc.Cmp(null), CmpGreater);
  EXPECT_TRUE(ZTString("a") < ZTString("b"));
  EXPECT_TRUE(ZTString("a") == "a");
  EXPECT_TRUE("a" == ZTString("a"));
  EXPECT_TRUE(ZTString("a") != "b");
  EXPECT_TRUE(ZTString("b") >= "a");

  const ZTObject* other = new ZTObject;
  auto notValue = Catch<ZTExceptCondition>([&] { ZTString("x").Cmp(static_cast<const ZTObject*>(nullptr)); });
  EXPECT_STREQ(notValue.GetMsg(0), "Condition check failed(_Obj != NULL)");
  EXPECT_NE(ZTString("x").Cmp(other), CmpEqual);
  other->Detach();
}

TEST(ZTString, Conversions) {
  EXPECT_EQ(ZTString("010").GetInt(), 10);
  EXPECT_EQ(ZTString("0010").GetInt(), 10);
  EXPECT_EQ(ZTString("0x1F").GetInt(), 31);
  EXPECT_EQ(ZTString("abc").GetInt(), 0);
  EXPECT_EQ(ZTString("-007").GetInt(), -7);
  EXPECT_EQ(ZTString(" 42 apples").GetInt(), 42);
  EXPECT_EQ(ZTString("0").GetInt(), 0);
  EXPECT_EQ(ZTString().GetInt(), 0);
  EXPECT_EQ(ZTString("99").ConvertIntoInt(), 99);
  EXPECT_DOUBLE_EQ(ZTString("2.5").GetDouble(), 2.5);
  EXPECT_DOUBLE_EQ(ZTString("1e3").ConvertIntoReal(), 1000.0);
  EXPECT_DOUBLE_EQ(ZTString().GetReal(), 0.0);

  // Booleans read through ZTBool under the given format.
  EXPECT_FALSE(ZTString().GetBool());
  EXPECT_TRUE(ZTString("true").GetBool());
  EXPECT_TRUE(ZTString("1").ConvertToBool());
  EXPECT_FALSE(ZTString("0").GetBool());
  EXPECT_TRUE(ZTString("Ja").GetBool("Ja|Nein"));
  EXPECT_FALSE(ZTString("Nein").GetBool("Ja|Nein"));

  EXPECT_EQ(ZTString().GetHashValue(), 0u);
  EXPECT_EQ(ZTString("").GetHashValue(), 0u);
  EXPECT_EQ(ZTString("abc").GetHashValue(), 26499u);  // (97*16 + 98)*16 + 99
  EXPECT_EQ(ZTString("a much longer key text").GetHashValue(), ZTHashText("a much longer key text"));

  char buffer[4];
  EXPECT_EQ(ZTString("12345").Get(buffer, sizeof(buffer)), 3u);
  EXPECT_STREQ(buffer, "123");
  EXPECT_EQ(ZTString().Get(buffer, sizeof(buffer)), 0u);
  EXPECT_EQ(ZTString("x").Get(nullptr, 4), 0u);

  ZTString target("old");
  EXPECT_STREQ(ZTString("new").CopyIntoString(target), "new");
  EXPECT_EQ(ZTString().CopyIntoString(target), nullptr);
  EXPECT_TRUE(target.IsNull());
}

TEST(ZTString, Format) {
  ZTString s;
  EXPECT_EQ(s.Format("%s=%d", "n", 5), 3);
  EXPECT_STREQ(s, "n=5");
  const std::string longText(5000, 'y');
  EXPECT_EQ(s.Format("<%s>", longText.c_str()), 5002);
  EXPECT_EQ(s.GetLength(), 5002u);
  EXPECT_EQ(std::string(s), "<" + longText + ">");

  auto param = Catch<ZTExceptParameter>([&] { s.Format(nullptr); });
  EXPECT_STREQ(param.GetMsg(0), "Required parameter _FormatStr is null.");
  auto cond = Catch<ZTExceptCondition>([&] {
    va_list none{};
    s.VFormat(nullptr, none);
  });
  EXPECT_STREQ(cond.GetMsg(0), "Condition check failed(_FormatStr != NULL)");
}

TEST(ZTString, TrackedStores) {
  ZTString s("abc");
  s.SetUseDirtyFunction(true);
  s = "abc";
  EXPECT_FALSE(s.IsDirty()) << "storing the same text changes nothing";
  s.SetCaseInsensitive();
  s = "ABC";
  EXPECT_FALSE(s.IsDirty());
  EXPECT_STREQ(s, "abc") << "equal without case: the tracked store keeps the text";
  s.SetCaseInsensitive(false);
  s = "xyz";
  EXPECT_TRUE(s.IsDirty());
  ASSERT_NE(s.GetOrgValue(), nullptr);
  EXPECT_STREQ(s.GetOrgValue()->String(), "abc");
  s += "!";
  EXPECT_STREQ(s.GetOrgValue()->String(), "abc") << "the first original is kept";
  s.RestoreToOrgValue();
  EXPECT_STREQ(s, "abc");
  EXPECT_FALSE(s.IsDirty());

  s.SetAt(0, 'A');
  EXPECT_TRUE(s.IsDirty());
  s.Clean();
  EXPECT_FALSE(s.IsDirty());
  EXPECT_EQ(s.GetOrgValue(), nullptr);

  s.SetNull();
  EXPECT_TRUE(s.IsDirty());
  s.RestoreToOrgValue();
  EXPECT_STREQ(s, "Abc");

  // Copies are clean and untracked.
  s = "changed";
  ZTString copy(s);
  EXPECT_FALSE(copy.IsDirty());
  EXPECT_FALSE(copy.UseDirtyFunction());
  s.Clean();
}

TEST(ZTString, ValueProtocol) {
  ZTString s;
  s.SetValue(ZTString("from value"));
  EXPECT_STREQ(s, "from value");
  s.SetValue(ZTString());
  EXPECT_TRUE(s.IsNull());
  ZTValue& asValue = s;
  asValue = "via base";
  EXPECT_STREQ(s, "via base");
  EXPECT_STREQ(asValue.GetString(), "via base");
  EXPECT_STREQ(asValue.GetTypeName(), "string");

  ZTString copied;
  copied.Copy(&s);
  EXPECT_STREQ(copied, "via base");
  ZTValueContainer container;
  auto wrongClass = Catch<ZTExceptCondition>([&] { copied.Copy(&container); });
  EXPECT_STREQ(wrongClass.GetMsg(0), "Condition check failed(_Src && GetClassType() == _Src->GetClassType())");

  ZTObject* clone = s.Clone();
  ASSERT_NE(ZTDynamicCastT<ZTString>(clone), nullptr);
  EXPECT_STREQ(*static_cast<ZTString*>(clone), "via base");
  clone->Attach();
  clone->Detach();

  ZTString converted;
  s.ConvertToString(converted);
  EXPECT_STREQ(converted, "via base");
}

TEST(ZTString, NoBlockOutlivesItsStrings) {
  const int strings = StringBlocks();
  const int values = ZTMemMgr::GetUsageCount(ZTMemCatValue);
  {
    ZTStringArray parts;
    ZTString("a,b,,c,").Split(',', parts);
    ZTString s("start");
    s.SetUseDirtyFunction(true);
    s = "changed";
    s += s;
    s.RestoreToOrgValue();
    s.Format("%0300d", 1);
    ZTString t = s.Mid(3, 10) + "tail" + s.Right(2);
    t.SetBufferLength(100, false, false);
    ZTString u(t);
    u[0] = 'x';
    ZTValue* heap = ZTValueCreator::CreateObject("string");
    heap->SetString("heap");
    heap->Attach();
    heap->Detach();
  }
  EXPECT_EQ(StringBlocks(), strings);
  EXPECT_EQ(ZTMemMgr::GetUsageCount(ZTMemCatValue), values);
}
