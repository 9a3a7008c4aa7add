// Tests of ZTRegistryKey and the file store behind it. Each test points
// ZT_REGISTRY at a file in a private temporary directory; the store looks the
// location up on every operation, so switching it is all the reset needed.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <thread>

#include "test_support.h"

namespace {

using zt_test::Catch;
namespace fs = std::filesystem;
ZTRegKeyHandle* const CU = ZTRegistryKey::CurrentUser;

class ZTRegistryKeyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"ZT_REGISTRY", "XDG_CONFIG_HOME", "HOME"}) {
      const char* value = std::getenv(name);
      m_Saved[name] = value ? std::optional<std::string>(value) : std::nullopt;
    }
    char dir[] = "/tmp/ztRegistryXXXXXX";
    ASSERT_NE(::mkdtemp(dir), nullptr);
    m_Dir = dir;
    m_File = m_Dir + "/registry";
    ::setenv("ZT_REGISTRY", m_File.c_str(), 1);
  }
  void TearDown() override {
    for (const auto& [name, value] : m_Saved)
      value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    fs::remove_all(m_Dir);
  }

  // Replaces a file as an editor would (a new file renamed over the old one).
  void WriteFile(const std::string& _Path, const std::string& _Text) {
    const std::string temp = _Path + ".edit";
    { std::ofstream(temp, std::ios::binary) << _Text; }
    ASSERT_EQ(::rename(temp.c_str(), _Path.c_str()), 0);
  }
  static std::string ReadFile(const std::string& _Path) {
    std::ifstream in(_Path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  // Points the store at a copy of its file: what follows is parsed from text.
  void Reparse() {
    const std::string copy = m_Dir + "/copy" + std::to_string(++m_Copies);
    fs::copy_file(m_File, copy);
    m_File = copy;
    ::setenv("ZT_REGISTRY", m_File.c_str(), 1);
  }

  std::map<std::string, std::optional<std::string>> m_Saved;
  std::string m_Dir, m_File;
  int m_Copies = 0;
};

std::string Message(const ZTExcept& _Ex) { return _Ex.GetMsg(0) ? _Ex.GetMsg(0) : ""; }

template <class F>
std::string Failure(F&& _Fn) {
  return Message(Catch(std::forward<F>(_Fn)));
}

TEST_F(ZTRegistryKeyTest, MissingStoreReadsAsEmptyAndCreatesNothing) {
  EXPECT_FALSE(ZTRegistryKey::IsValidKey(CU, "Control Panel\\International"));
  EXPECT_TRUE(ZTRegistryKey::IsValidKey(CU, nullptr));
  EXPECT_FALSE(ZTRegistryKey::IsValidKey(CU, "bad\\\\path"));

  ZTRegistryKey key;
  key.Open(CU, "", ZTRegistryKey::AccessRead);
  ZTString text("old");
  ZTInteger number(7);
  ZTBinary binary("ab", 2);
  EXPECT_EQ(key.QueryValue("sDecimal", text), ZTRegistryKey::ValueNotFound);
  EXPECT_EQ(key.QueryValue("iDigits", number), 40);
  EXPECT_EQ(key.QueryValue("Blob", binary), 40);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(number.GetInt(), 0);
  EXPECT_EQ(binary.GetLength(), 0u);
  char name[16];
  EXPECT_FALSE(key.EnumKey(name, sizeof name));

  ZTRegKeyHandle* const before = key.GetKey();
  EXPECT_EQ(Failure([&] { key.Open(CU, "Software\\Missing"); }),
            "\"No such file or directory(keyname 'Software\\Missing')\"");
  EXPECT_EQ(key.GetKey(), before);  // a failed open keeps the current key
  EXPECT_FALSE(fs::exists(m_File));
}

TEST_F(ZTRegistryKeyTest, TypedValuesRoundTripAndTypeChecks) {
  long disposition = 0;
  ZTRegistryKey key, again;
  key.Create(CU, "Software\\Zt Test", nullptr, &disposition);
  EXPECT_EQ(disposition, ZTRegistryKey::CreatedNewKey);
  again.Create(CU, "software\\ZT TEST", nullptr, &disposition);
  EXPECT_EQ(disposition, ZTRegistryKey::OpenedExistingKey);

  ZTInteger nullNumber;
  nullNumber.SetNull();
  key.SetValue("Name", ZTString("Hello"));
  key.SetValue("Count", ZTInteger(-5));
  key.SetValue("Blob", ZTBinary("\0\1\n", 3));
  key.SetValue("Empty", ZTString(""));
  key.SetValue("Zero", nullNumber);
  key.SetValue(nullptr, ZTString("default"));
  key.SetValue("Long", ZTString(std::string(255, 'x').c_str()));
  key.SetValue("Longer", ZTString(std::string(256, 'y').c_str()));
  key.SetValue("name", ZTString("Hello again"));  // the same value: names ignore case
  Reparse();

  ZTString s("junk");
  ZTInteger i(9);
  ZTBinary b;
  EXPECT_EQ(again.QueryValue("NAME", s), 0);
  EXPECT_STREQ(s, "Hello again");
  EXPECT_EQ(again.QueryValue("Count", i), 0);
  EXPECT_EQ(i.GetInt(), -5);
  EXPECT_EQ(again.QueryValue("Blob", b), 0);
  ASSERT_EQ(b.GetLength(), 3u);
  EXPECT_EQ(std::memcmp(b.GetData(), "\0\1\n", 3), 0);
  EXPECT_EQ(again.QueryValue("Empty", s), 0);
  EXPECT_TRUE(s.IsEmpty());
  EXPECT_EQ(again.QueryValue("Zero", i), 0);
  EXPECT_EQ(i.GetInt(), 0);
  EXPECT_EQ(again.QueryValue("", s), 0);
  EXPECT_STREQ(s, "default");
  // 255 characters and the zero fill the 256-byte read buffer; more raise.
  EXPECT_EQ(again.QueryValue("Long", s), 0);
  EXPECT_EQ(s.Len(), 255u);
  EXPECT_EQ(Failure([&] { again.QueryValue("Longer", s); }),
            "\"Value too large for defined data type(value 'Longer')\"");

  EXPECT_EQ(Failure([&] { again.QueryValue("Count", s); }), "\"Invalid type (4) (value 'Count')\"");
  EXPECT_EQ(Failure([&] { again.QueryValue("Name", i); }), "\"Invalid type (1) (value 'Name')\"");
  EXPECT_EQ(Failure([&] { again.QueryValue("Name", b); }), "\"Invalid type (1) (value 'Name')\"");
  EXPECT_EQ(Failure([&] { again.QueryValue("Blob", s); }), "\"Invalid type (3) (value 'Blob')\"");

  again.DeleteValue("NAME");
  EXPECT_EQ(key.QueryValue("Name", s), 40);
  EXPECT_EQ(Failure([&] { key.DeleteValue("Name"); }), "\"No such file or directory(value 'Name')\"");
  EXPECT_NE(ReadFile(m_File).find("\"Blob\"=binary:00010a\n"), std::string::npos);
}

TEST_F(ZTRegistryKeyTest, ChecksNameTheirConditions) {
  ZTRegistryKey key;
  ZTString s;
  char buffer[8];
  const char* nullKey = "Required parameter _Key != NULL is null.";
  EXPECT_EQ(Message(Catch<ZTExceptParameter>([&] { key.Open(nullptr, "x"); })), nullKey);
  EXPECT_EQ(Message(Catch<ZTExceptParameter>([&] { key.Create(nullptr, "x"); })), nullKey);
  EXPECT_EQ(Message(Catch<ZTExceptParameter>([&] { ZTRegistryKey::IsValidKey(nullptr, "x"); })),
            nullKey);
  EXPECT_EQ(Message(Catch<ZTExceptCondition>([&] { key.QueryValue("a", s); })),
            "Condition check failed(m_Key != NULL && _ValueName != NULL)");
  EXPECT_EQ(Message(Catch<ZTExceptCondition>([&] { key.SetValue("a", s); })),
            "Condition check failed(m_Key != NULL)");
  EXPECT_EQ(Message(Catch<ZTExceptCondition>([&] { key.EnumKey(buffer, 8); })),
            "Condition check failed(m_Key != NULL)");
  EXPECT_EQ(Message(Catch<ZTExceptCondition>([&] { key.SetKeyValue("k", "v", s); })),
            "Condition check failed(m_Key != NULL && _KeyName != NULL)");

  key.Open(CU, nullptr);
  EXPECT_EQ(Message(Catch<ZTExceptCondition>([&] { key.DeleteValue(nullptr); })),
            "Condition check failed(m_Key != NULL && _ValueName != NULL)");
  EXPECT_EQ(Message(Catch<ZTExceptParameter>([&] { key.EnumKey(nullptr, 8); })),
            "Required parameter _SubKeyName != NULL && size > 0 is null.");
  EXPECT_EQ(Message(Catch<ZTExceptParameter>([&] { key.EnumKey(buffer, 0); })),
            "Required parameter _SubKeyName != NULL && size > 0 is null.");

  EXPECT_EQ(Failure([&] { key.Create(CU, "a\\\\b"); }), "\"Invalid argument(keyname 'a\\\\b')\"");
  const std::string longName(256, 'k');
  EXPECT_EQ(Failure([&] { key.Create(CU, longName.c_str()); }),
            "\"File name too long(keyname '" + longName + "')\"");
  std::string deep = "a";
  for (int i = 0; i < 511; ++i) deep += "\\a";  // 512 names below the root
  EXPECT_EQ(Failure([&] { key.Create(CU, deep.c_str()); }).substr(0, 18), "\"Invalid argument(");

  // An empty name must not empty the key itself before failing.
  key.SetKeyValue("Keep", "v", ZTInteger(1));
  EXPECT_EQ(Failure([&] { key.RecurseDeleteKey(""); }), "\"Invalid argument(keyname '')\"");
  EXPECT_TRUE(ZTRegistryKey::IsValidKey(CU, "Keep"));
}

TEST_F(ZTRegistryKeyTest, EnumeratesAndDeletesSubKeys) {
  ZTRegistryKey app;
  app.Create(CU, "Software\\App");
  app.SetKeyValue("beta", "v", ZTInteger(1));
  app.SetKeyValue("Alpha\\Deep\\Deeper", "x", ZTString("y"));
  app.SetKeyValue("ALPHA\\deep", "x", ZTString("z"));  // existing keys keep their case

  char name[32];
  ASSERT_TRUE(app.EnumKey(name, sizeof name));
  EXPECT_STREQ(name, "Alpha");
  ASSERT_TRUE(app.EnumKey(name, sizeof name));
  EXPECT_STREQ(name, "beta");
  EXPECT_FALSE(app.EnumKey(name, sizeof name));
  char tiny[5];  // "beta" and its zero would fit, "Alpha" does not
  EXPECT_FALSE(app.EnumKey(tiny, sizeof tiny));
  ASSERT_TRUE(app.EnumKey(name, sizeof name));  // starts again
  EXPECT_STREQ(name, "Alpha");

  EXPECT_EQ(Failure([&] { app.DeleteSubKey("alpha"); }),
            "\"Directory not empty(keyname 'alpha')\"");
  ZTRegistryKey deep;
  deep.Open(app, "Alpha\\Deep");
  ZTString s;
  EXPECT_EQ(deep.QueryValue("x", s), 0);
  EXPECT_STREQ(s, "z");
  app.RecurseDeleteKey("ALPHA");
  EXPECT_FALSE(ZTRegistryKey::IsValidKey(app, "Alpha"));
  EXPECT_TRUE(ZTRegistryKey::IsValidKey(app, "BETA"));
  // The handle of a deleted key fails rather than reaching a removed key.
  EXPECT_EQ(Failure([&] { deep.QueryValue("x", s); }), "\"Stale file handle(value 'x')\"");

  app.DeleteSubKey("beta");
  EXPECT_EQ(Failure([&] { app.DeleteSubKey("beta"); }),
            "\"No such file or directory(keyname 'beta')\"");
  EXPECT_EQ(ReadFile(m_File),
            "# zt registry: [key path] lines, then \"name\"=type:data lines\n"
            "[CurrentUser]\n[CurrentUser\\Software]\n[CurrentUser\\Software\\App]\n");
}

TEST_F(ZTRegistryKeyTest, AccessMaskAndCopies) {
  ZTRegistryKey writer;
  writer.Create(CU, "Software\\Ro");
  writer.SetValue("v", ZTInteger(3));
  writer.SetKeyValue("child", "c", ZTInteger(1));

  ZTRegistryKey reader;
  reader.Open(CU, "Software\\Ro", ZTRegistryKey::AccessRead);
  ZTInteger i;
  EXPECT_EQ(reader.QueryValue("v", i), 0);
  EXPECT_EQ(Failure([&] { reader.SetValue("v", i); }), "\"Permission denied(value 'v')\"");
  EXPECT_EQ(Failure([&] { reader.DeleteSubKey("child"); }), "\"Permission denied(keyname 'child')\"");
  ZTRegistryKey sub;
  EXPECT_EQ(Failure([&] { sub.Create(reader, "x"); }), "\"Permission denied(keyname 'x')\"");
  ZTRegistryKey query;
  query.Open(CU, "Software\\Ro", ZTRegistryKey::AccessQueryValue);
  char name[16];
  EXPECT_FALSE(query.EnumKey(name, sizeof name));

  // A copy opens the key once more, with all access, and lives on its own.
  ZTRegistryKey copy(reader);
  ASSERT_NE(copy.GetKey(), nullptr);
  EXPECT_NE(copy.GetKey(), reader.GetKey());
  reader.Close();
  copy.SetValue("v", ZTInteger(4));
  ZTRegistryKey assigned;
  assigned = copy;
  copy.Close();
  EXPECT_EQ(assigned.QueryValue("v", i), 0);
  EXPECT_EQ(i.GetInt(), 4);
  auto* clone = static_cast<ZTRegistryKey*>(assigned.Clone());
  clone->Attach();
  EXPECT_EQ(clone->QueryValue("v", i), 0);
  clone->Detach();
  assigned = copy;  // a closed key makes a closed copy
  EXPECT_EQ(assigned.GetKey(), nullptr);
}

// Random names and bytes, special characters of the text form included, are
// written, read back from a reparsed copy of the file and compared.
TEST_F(ZTRegistryKeyTest, AnyNamesAndBytesRoundTripThroughTheText) {
  std::mt19937 rng(20240611);
  const std::string specials = std::string("\n\r\t=[]\"\\%#; \x7f\x80\xff\x01") + '\0';
  auto text = [&](std::size_t _Max, bool _KeyName, bool _Zeros) {
    std::string out;
    const std::size_t length = std::uniform_int_distribution<std::size_t>(_KeyName, _Max)(rng);
    while (out.size() < length) {
      char c = (rng() % 2) ? specials[rng() % specials.size()] : static_cast<char>(rng() % 256);
      if ((c == '\0' && !_Zeros) || (c == '\\' && _KeyName)) c = 'k';
      out += c;
    }
    return out;
  };
  struct Entry {
    std::string m_Key, m_Name, m_Data;
    int m_Kind;
  };
  std::map<std::string, Entry> entries;  // by lower-case key and value name
  ZTRegistryKey root;
  root.Open(CU, "");
  for (int n = 0; n < 40; ++n) {
    Entry e{text(12, true, false), text(12, false, false), "", static_cast<int>(rng() % 3)};
    e.m_Data = text(e.m_Kind == 2 ? 40 : 30, false, e.m_Kind == 2);
    std::string id = e.m_Key + '\0' + e.m_Name;
    for (char& c : id) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (!entries.emplace(id, e).second) continue;
    if (e.m_Kind == 0)
      root.SetKeyValue(e.m_Key.c_str(), e.m_Name.c_str(), ZTString(e.m_Data.c_str()));
    else if (e.m_Kind == 1)
      root.SetKeyValue(e.m_Key.c_str(), e.m_Name.c_str(), ZTInteger(static_cast<int>(e.m_Data.size()) - 15));
    else
      root.SetKeyValue(e.m_Key.c_str(), e.m_Name.c_str(),
                       ZTBinary(e.m_Data.data(), static_cast<unsigned>(e.m_Data.size())));
  }
  Reparse();
  for (const auto& [id, e] : entries) {
    SCOPED_TRACE(::testing::PrintToString(id));
    ZTRegistryKey key;
    key.Open(CU, e.m_Key.c_str(), ZTRegistryKey::AccessRead);
    ZTString s;
    ZTInteger i;
    ZTBinary b;
    if (e.m_Kind == 0) {
      ASSERT_EQ(key.QueryValue(e.m_Name.c_str(), s), 0);
      EXPECT_EQ(std::string(s, s.Len()), e.m_Data);
    } else if (e.m_Kind == 1) {
      ASSERT_EQ(key.QueryValue(e.m_Name.c_str(), i), 0);
      EXPECT_EQ(i.GetInt(), static_cast<int>(e.m_Data.size()) - 15);
    } else {
      ASSERT_EQ(key.QueryValue(e.m_Name.c_str(), b), 0);
      EXPECT_EQ(std::string(static_cast<const char*>(b.GetData()), b.GetLength()), e.m_Data);
    }
  }
  // Key names come back in the case first written.
  std::multiset<std::string> written, listed;
  for (const auto& [id, e] : entries) written.insert(e.m_Key);
  char name[256];
  while (root.EnumKey(name, sizeof name)) listed.insert(name);
  EXPECT_FALSE(listed.empty());
  for (const auto& key : listed) EXPECT_TRUE(written.count(key)) << key;
}

TEST_F(ZTRegistryKeyTest, ReadsHandWrittenTextAsTheIntlSettingsDo) {
  WriteFile(m_File,
            "# settings\r\n\r\n  [CurrentUser\\Control Panel\\International]  \r\n"
            "\"sDecimal\" = text:\".\"\r\n; note\n\"sList\"=multi:\"a\\x00b\\x00\\x00\"\n"
            "\"sPath\"=expand:\"%HOME%\\\\x\"\n\"iCountry\"=number:4294967295\n"
            "\"Blob\"=binary:DEADbeef\n[CurrentUser\\Empty%5d]\n");
  // The international settings open the key for reading when it exists.
  ASSERT_TRUE(ZTRegistryKey::IsValidKey(CU, ZTIntlFormat::sm_RegKeyName));
  ZTRegistryKey intl;
  intl.Open(CU, ZTIntlFormat::sm_RegKeyName, ZTRegistryKey::AccessRead);
  ZTString s;
  ZTInteger i;
  ZTBinary b;
  EXPECT_EQ(intl.QueryValue("sdecimal", s), 0);
  EXPECT_STREQ(s, ".");
  EXPECT_EQ(intl.QueryValue("sList", s), 0);
  EXPECT_STREQ(s, "a");
  EXPECT_EQ(intl.QueryValue("sPath", s), 0);
  EXPECT_STREQ(s, "%HOME%\\x");
  EXPECT_EQ(intl.QueryValue("iCountry", i), 0);
  EXPECT_EQ(i.GetInt(), -1);
  EXPECT_EQ(intl.QueryValue("Blob", b), 0);
  EXPECT_EQ(b.GetLength(), 4u);
  EXPECT_TRUE(ZTRegistryKey::IsValidKey(CU, "empty]"));

  ZTRegistryKey writer;
  writer.Open(CU, "Control Panel\\International");
  writer.SetValue("sThousand", ZTString("'"));
  EXPECT_EQ(ReadFile(m_File),
            "# zt registry: [key path] lines, then \"name\"=type:data lines\n"
            "[CurrentUser]\n[CurrentUser\\Control Panel]\n"
            "[CurrentUser\\Control Panel\\International]\n"
            "\"Blob\"=binary:deadbeef\n\"iCountry\"=number:-1\n\"sDecimal\"=text:\".\"\n"
            "\"sList\"=multi:\"a\\x00b\\x00\\x00\"\n\"sPath\"=expand:\"%HOME%\\\\x\"\n"
            "\"sThousand\"=text:\"'\"\n[CurrentUser\\Empty%5d]\n");
}

TEST_F(ZTRegistryKeyTest, MalformedFilesRaiseNamingFileAndLineAndStayUntouched) {
  std::string garbage(4096, '\0');
  std::mt19937 rng(7);
  for (char& c : garbage) c = static_cast<char>(rng());
  std::string deep = "[CurrentUser";
  for (int i = 0; i < 600; ++i) deep += "\\a";
  const std::pair<std::string, std::string> cases[] = {
      {"[CurrentUser\\A]\n\"v\"=text:\"abc", "line 2: unterminated quoted text"},
      {"[CurrentUser]\n\"v=text:\"x\"\n", "line 2: missing '=' after the value name"},
      {"[CurrentUser\n", "line 1: key line without closing ']'"},
      {"[CurrentUser]\n" + garbage, "line " + std::to_string(2 + std::count(garbage.begin(),
           garbage.begin() + garbage.find('\0'), '\n')) + ": zero byte in the text"},
      {"\x01\x02\xff\xfe", "line 1: unexpected text"},
      {"[CurrentUser]\n" + std::string(1 << 20, 'x'), "line 2: unexpected text"},
      {"[CurrentUser\\" + std::string(300, 'k') + "]", "line 1: empty, overlong or invalid key name"},
      {"[CurrentUser\\a%5cb]", "line 1: empty, overlong or invalid key name"},
      {"[Current%zzUser]", "line 1: '%' in a key name without two hex digits"},
      {deep + "]", "line 1: keys nested too deeply"},
      {"[CurrentUser]\n\"n\"=number:99999999999999999999999", "line 2: number out of the 32-bit range"},
      {"[CurrentUser]\n\"n\"=number:4294967296", "line 2: number out of the 32-bit range"},
      {"[CurrentUser]\n\"n\"=binary:abc", "line 2: binary data must be pairs of hex digits"},
      {"[CurrentUser]\n\"n\"=text:\"\\q\"", "line 2: unknown escape in a quoted text"},
      {"[CurrentUser]\n\"n\"=text:\"\\x4\"", "line 2: '\\x' without two hex digits"},
      {"[CurrentUser]\n\"n\"=dword:1", "line 2: unknown value type"},
      {"[CurrentUser]\n\"n\"=text:\"a\" x", "line 2: unexpected text after the value"},
      {"\"v\"=text:\"x\"", "line 1: value before the first key"},
      {"[CurrentUser]\n\"A\"=number:1\n\n\"a\"=number:2\n", "line 4: value name given twice"},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(expected);
    WriteFile(m_File, text);
    const std::string message = Failure([] { ZTRegistryKey::IsValidKey(CU, "A"); });
    EXPECT_NE(message.find("Malformed registry file '" + m_File + "', " + expected), std::string::npos)
        << message;
    ZTRegistryKey key;
    EXPECT_NE(Failure([&] { key.Create(CU, "B"); }).find(m_File), std::string::npos);
    EXPECT_EQ(ReadFile(m_File), text);
  }

  // Unreadable stores: too large (sparse, so nothing is really read), a
  // directory and a FIFO (which must not block).
  ASSERT_EQ(::truncate(m_File.c_str(), 65 << 20), 0);
  EXPECT_EQ(Failure([] { ZTRegistryKey::IsValidKey(CU, "A"); }),
            "Unable to read registry file '" + m_File + "': File too large");
  fs::remove(m_File);
  fs::create_directory(m_File);
  EXPECT_EQ(Failure([] { ZTRegistryKey::IsValidKey(CU, "A"); }),
            "Unable to read registry file '" + m_File + "': Is a directory");
  fs::remove(m_File);
  ASSERT_EQ(::mkfifo(m_File.c_str(), 0600), 0);
  EXPECT_EQ(Failure([] { ZTRegistryKey::IsValidKey(CU, "A"); }),
            "Unable to read registry file '" + m_File + "': Invalid argument");
}

TEST_F(ZTRegistryKeyTest, ConcurrentWritersAllLandInTheFile) {
  constexpr int PerWriter = 6;
  const auto writer = [](const std::string& _Prefix) {
    ZTRegistryKey key;
    key.Create(CU, "Software\\Shared");
    for (int n = 0; n < PerWriter; ++n) key.SetValue((_Prefix + std::to_string(n)).c_str(), ZTInteger(n));
  };
  // Processes first: forking while own threads run could copy a held lock.
  pid_t children[2];
  for (int c = 0; c < 2; ++c) {
    children[c] = ::fork();
    ASSERT_GE(children[c], 0);
    if (children[c] == 0) {
      try {
        writer("process" + std::to_string(c) + "_");
      } catch (...) {
        ::_exit(1);
      }
      ::_exit(0);
    }
  }
  std::thread first(writer, "thread0_"), second(writer, "thread1_");
  first.join();
  second.join();
  for (pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  Reparse();
  ZTRegistryKey shared;
  shared.Open(CU, "Software\\Shared", ZTRegistryKey::AccessRead);
  for (const char* prefix : {"process0_", "process1_", "thread0_", "thread1_"})
    for (int n = 0; n < PerWriter; ++n) {
      ZTInteger value;
      EXPECT_EQ(shared.QueryValue((prefix + std::to_string(n)).c_str(), value), 0) << prefix << n;
      EXPECT_EQ(value.GetInt(), n);
    }
  // Only the store and its lock file remain: no temporary file is left over.
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(m_Dir)) names.insert(entry.path().filename());
  EXPECT_EQ(names, (std::set<std::string>{"registry", "registry.lock", "copy1"}));
}

TEST_F(ZTRegistryKeyTest, LocationFollowsTheEnvironmentAndKeepsTheMode) {
  ::unsetenv("ZT_REGISTRY");
  ::setenv("XDG_CONFIG_HOME", (m_Dir + "/xdg").c_str(), 1);
  ZTRegistryKey key;
  key.Create(CU, "Software");
  key.SetValue("where", ZTString("xdg"));
  const std::string xdgFile = m_Dir + "/xdg/zt/registry";
  EXPECT_NE(ReadFile(xdgFile).find("\"where\"=text:\"xdg\""), std::string::npos);

  ::setenv("XDG_CONFIG_HOME", "relative/is/ignored", 1);
  ::setenv("HOME", (m_Dir + "/home").c_str(), 1);
  ZTRegistryKey home;
  home.Create(CU, "Software");
  ZTString s;
  EXPECT_EQ(key.QueryValue("where", s), 40);  // another store now
  home.SetValue("where", ZTString("home"));
  const std::string homeFile = m_Dir + "/home/.config/zt/registry";
  EXPECT_NE(ReadFile(homeFile).find("\"where\"=text:\"home\""), std::string::npos);

  ASSERT_EQ(::chmod(homeFile.c_str(), 0640), 0);
  home.SetValue("where", ZTString("again"));
  struct stat st;
  ASSERT_EQ(::stat(homeFile.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
}

}  // namespace
