// File-backed registry store (see ztregistry.h for the format and locking).
#include "platform/ztregistry.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/ztplatform.h"
#include "ztexcept.h"

namespace zt_registry {
namespace {

// ---------------------------------------------------------------------------
// Tree

// Names compare without regard to ASCII case, as registry names always did.
struct NoCaseLess {
  static unsigned char Fold(char _C) {
    const auto c = static_cast<unsigned char>(_C);
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
  }
  bool operator()(const std::string& _A, const std::string& _B) const {
    const std::size_t n = std::min(_A.size(), _B.size());
    for (std::size_t i = 0; i < n; ++i) {
      const unsigned char a = Fold(_A[i]), b = Fold(_B[i]);
      if (a != b) return a < b;
    }
    return _A.size() < _B.size();
  }
};

struct Node {
  // The map keeps the name as first written; later writes in other case find it.
  std::map<std::string, std::unique_ptr<Node>, NoCaseLess> m_Keys;
  std::map<std::string, Value, NoCaseLess> m_Values;
  bool IsEmpty() const { return m_Keys.empty() && m_Values.empty(); }
};

Node* Find(Node& _Root, const KeyPath& _Key, std::size_t _Count) {
  Node* node = &_Root;
  for (std::size_t i = 0; i < _Count; ++i) {
    const auto it = node->m_Keys.find(_Key[i]);
    if (it == node->m_Keys.end()) return nullptr;
    node = it->second.get();
  }
  return node;
}

Node& Make(Node& _Root, const KeyPath& _Key, std::size_t _Count, bool& _Created) {
  Node* node = &_Root;
  for (std::size_t i = 0; i < _Count; ++i) {
    auto& slot = node->m_Keys[_Key[i]];
    if (!slot) {
      slot = std::make_unique<Node>();
      _Created = true;
    }
    node = slot.get();
  }
  return *node;
}

// ESTALE when the open part of the path is gone, ENOENT when the rest is.
int Locate(Node& _Root, const KeyPath& _Key, std::size_t _Known, Node*& _Node) {
  if (!Find(_Root, _Key, _Known)) return ESTALE;
  _Node = Find(_Root, _Key, _Key.size());
  return _Node ? 0 : ENOENT;
}

bool IsValidKeyName(const std::string& _Name) {
  return !_Name.empty() && _Name.size() <= MaxNameLength &&
         _Name.find_first_of(std::string("\\\0", 2)) == std::string::npos;
}

// ---------------------------------------------------------------------------
// Failures

[[noreturn]] void FailFile(int _Error, const char* _What, const std::string& _Path) {
  char text[256];
  zt_platform::SystemErrorText(_Error, text, sizeof text);
  ZTExcept ex;
  ex.PushMsg("%s registry file '%s': %s", _What, _Path.c_str(), text);
  ex.SetErrorCode(_Error);
  ZT_RAISE(ex);
}

// ---------------------------------------------------------------------------
// Text form

constexpr char Hex[] = "0123456789abcdef";

struct TypeName {
  std::uint32_t m_Type;
  const char* m_Name;
};
constexpr TypeName TypeNames[] = {{TypeText, "text"},     {TypeExpandText, "expand"},
                                  {TypeMultiText, "multi"}, {TypeNumber, "number"},
                                  {TypeBinary, "binary"}};

bool IsQuotedType(std::uint32_t _Type) {
  return _Type == TypeText || _Type == TypeExpandText || _Type == TypeMultiText;
}

void AppendHexByte(std::string& _Out, unsigned char _C) {
  _Out += Hex[_C >> 4];
  _Out += Hex[_C & 0xF];
}

void AppendQuoted(std::string& _Out, const std::string& _Text) {
  _Out += '"';
  for (const char ch : _Text) {
    const auto c = static_cast<unsigned char>(ch);
    switch (c) {
      case '\\': _Out += "\\\\"; break;
      case '"': _Out += "\\\""; break;
      case '\n': _Out += "\\n"; break;
      case '\r': _Out += "\\r"; break;
      case '\t': _Out += "\\t"; break;
      default:
        if (c < 0x20 || c == 0x7F) {
          _Out += "\\x";
          AppendHexByte(_Out, c);
        } else {
          _Out += ch;
        }
    }
  }
  _Out += '"';
}

void AppendKeyName(std::string& _Out, const std::string& _Name) {
  for (const char ch : _Name) {
    const auto c = static_cast<unsigned char>(ch);
    if (c < 0x20 || c == 0x7F || c == '%' || c == '[' || c == ']' || c == '\\') {
      _Out += '%';
      AppendHexByte(_Out, c);
    } else {
      _Out += ch;
    }
  }
}

void AppendValue(std::string& _Out, const std::string& _Name, const Value& _Value) {
  AppendQuoted(_Out, _Name);
  _Out += '=';
  for (const TypeName& t : TypeNames)
    if (t.m_Type == _Value.m_Type) _Out += t.m_Name;
  _Out += ':';
  if (IsQuotedType(_Value.m_Type)) {
    AppendQuoted(_Out, _Value.m_Data);
  } else if (_Value.m_Type == TypeNumber) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 4 && i < _Value.m_Data.size(); ++i)
      bits |= std::uint32_t{static_cast<unsigned char>(_Value.m_Data[i])} << (8 * i);
    _Out += std::to_string(static_cast<std::int32_t>(bits));
  } else {
    for (const char ch : _Value.m_Data) AppendHexByte(_Out, static_cast<unsigned char>(ch));
  }
  _Out += '\n';
}

// Depth-first, parents first; _Path is the encoded path of _Node.
void AppendKey(std::string& _Out, std::string& _Path, const Node& _Node) {
  _Out += '[';
  _Out += _Path;
  _Out += "]\n";
  for (const auto& [name, value] : _Node.m_Values) AppendValue(_Out, name, value);
  for (const auto& [name, child] : _Node.m_Keys) {
    const std::size_t mark = _Path.size();
    _Path += '\\';
    AppendKeyName(_Path, name);
    AppendKey(_Out, _Path, *child);
    _Path.resize(mark);
  }
}

std::string Serialise(const Node& _Root) {
  std::string out = "# zt registry: [key path] lines, then \"name\"=type:data lines\n";
  std::string path;
  for (const auto& [name, top] : _Root.m_Keys) {
    if (top->IsEmpty()) continue;  // top-level keys exist anyway
    path.clear();
    AppendKeyName(path, name);
    AppendKey(out, path, *top);
  }
  return out;
}

int HexDigit(char _C) {
  if (_C >= '0' && _C <= '9') return _C - '0';
  if (_C >= 'a' && _C <= 'f') return _C - 'a' + 10;
  if (_C >= 'A' && _C <= 'F') return _C - 'A' + 10;
  return -1;
}

bool IsBlank(char _C) { return _C == ' ' || _C == '\t'; }

// Reads the store text into a tree; any flaw raises ZTExcept naming the file
// and line. Nothing here recurses, and key depth is bounded, so hostile text
// can neither exhaust the stack nor loop.
class Parser {
 public:
  Parser(const std::string& _Text, const std::string& _File) : m_Text(_Text), m_File(_File) {}

  std::unique_ptr<Node> Parse() {
    auto root = std::make_unique<Node>();
    const char* p = m_Text.data();
    const char* const end = p + m_Text.size();
    if (const void* zero = std::memchr(p, 0, m_Text.size())) {
      m_Line = 1 + static_cast<int>(std::count(p, static_cast<const char*>(zero), '\n'));
      Fail("zero byte in the text");
    }
    Node* key = nullptr;
    while (p < end) {
      ++m_Line;
      const char* eol = static_cast<const char*>(std::memchr(p, '\n', end - p));
      ParseLine(p, eol ? eol : end, *root, key);
      p = eol ? eol + 1 : end;
    }
    return root;
  }

 private:
  [[noreturn]] void Fail(const char* _Why) const {
    ZTExcept ex;
    ex.PushMsg("Malformed registry file '%s', line %d: %s", m_File.c_str(), m_Line, _Why);
    ex.SetErrorCode(EINVAL);
    ZT_RAISE(ex);
  }

  void ParseLine(const char* _P, const char* _End, Node& _Root, Node*& _Key) const {
    while (_P < _End && IsBlank(*_P)) ++_P;
    while (_End > _P && (IsBlank(_End[-1]) || _End[-1] == '\r')) --_End;
    if (_P == _End || *_P == '#' || *_P == ';') return;
    if (*_P == '[') {
      if (_End[-1] != ']' || _End - _P < 2) Fail("key line without closing ']'");
      _Key = &ParseKeyPath(_P + 1, _End - 1, _Root);
    } else if (*_P == '"') {
      if (!_Key) Fail("value before the first key");
      ParseValue(_P, _End, *_Key);
    } else {
      Fail("unexpected text (expected a [key], a \"value\" or a comment)");
    }
  }

  Node& ParseKeyPath(const char* _P, const char* _End, Node& _Root) const {
    Node* node = &_Root;
    std::size_t depth = 0;
    for (;;) {
      const char* sep = std::find(_P, _End, '\\');
      std::string name;
      for (; _P < sep; ++_P) {
        if (*_P != '%') {
          name += *_P;
          continue;
        }
        const int hi = sep - _P > 2 ? HexDigit(_P[1]) : -1;
        const int lo = hi >= 0 ? HexDigit(_P[2]) : -1;
        if (lo < 0) Fail("'%' in a key name without two hex digits");
        name += static_cast<char>(hi * 16 + lo);
        _P += 2;
      }
      if (!IsValidKeyName(name)) Fail("empty, overlong or invalid key name");
      if (++depth > MaxDepth) Fail("keys nested too deeply");
      auto& slot = node->m_Keys[name];
      if (!slot) slot = std::make_unique<Node>();
      node = slot.get();
      if (sep == _End) return *node;
      _P = sep + 1;
    }
  }

  void ParseValue(const char* _P, const char* _End, Node& _Key) const {
    std::string name = ParseQuoted(_P, _End);
    while (_P < _End && IsBlank(*_P)) ++_P;
    if (_P == _End || *_P != '=') Fail("missing '=' after the value name");
    ++_P;
    while (_P < _End && IsBlank(*_P)) ++_P;
    const char* colon = std::find(_P, _End, ':');
    const std::string typeName(_P, colon);
    Value value;
    value.m_Type = 0;
    for (const TypeName& t : TypeNames)
      if (typeName == t.m_Name) value.m_Type = t.m_Type;
    if (colon == _End || !value.m_Type) Fail("unknown value type (text, expand, multi, number, binary)");
    _P = colon + 1;
    if (IsQuotedType(value.m_Type))
      value.m_Data = ParseQuoted(_P, _End);
    else if (value.m_Type == TypeNumber)
      value.m_Data = ParseNumber(_P, _End);
    else
      value.m_Data = ParseHex(_P, _End);
    while (_P < _End && IsBlank(*_P)) ++_P;
    if (_P != _End) Fail("unexpected text after the value");
    if (!_Key.m_Values.emplace(std::move(name), std::move(value)).second)
      Fail("value name given twice in one key");
  }

  std::string ParseQuoted(const char*& _P, const char* _End) const {
    if (_P == _End || *_P != '"') Fail("expected a quoted text");
    std::string text;
    for (++_P; _P < _End; ++_P) {
      if (*_P == '"') {
        ++_P;
        return text;
      }
      if (*_P != '\\') {
        text += *_P;
        continue;
      }
      if (++_P == _End) break;
      switch (*_P) {
        case '\\': text += '\\'; break;
        case '"': text += '"'; break;
        case 'n': text += '\n'; break;
        case 'r': text += '\r'; break;
        case 't': text += '\t'; break;
        case 'x': {
          const int hi = _End - _P > 2 ? HexDigit(_P[1]) : -1;
          const int lo = hi >= 0 ? HexDigit(_P[2]) : -1;
          if (lo < 0) Fail("'\\x' without two hex digits");
          text += static_cast<char>(hi * 16 + lo);
          _P += 2;
          break;
        }
        default: Fail("unknown escape in a quoted text");
      }
    }
    Fail("unterminated quoted text");
  }

  std::string ParseNumber(const char*& _P, const char* _End) const {
    const bool negative = _P < _End && *_P == '-';
    if (negative) ++_P;
    std::uint64_t magnitude = 0;
    int digits = 0;
    for (; _P < _End && *_P >= '0' && *_P <= '9'; ++_P, ++digits) {
      if (digits == 10) Fail("number out of the 32-bit range");
      magnitude = magnitude * 10 + static_cast<unsigned>(*_P - '0');
    }
    if (!digits) Fail("number without digits");
    if (magnitude > (negative ? 0x80000000ull : 0xFFFFFFFFull)) Fail("number out of the 32-bit range");
    const auto bits = static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude);
    std::string data(4, '\0');
    for (int i = 0; i < 4; ++i) data[i] = static_cast<char>((bits >> (8 * i)) & 0xFF);
    return data;
  }

  std::string ParseHex(const char*& _P, const char* _End) const {
    std::string data;
    while (_P < _End && !IsBlank(*_P)) {
      const int hi = HexDigit(*_P);
      const int lo = (hi >= 0 && _End - _P > 1) ? HexDigit(_P[1]) : -1;
      if (lo < 0) Fail("binary data must be pairs of hex digits");
      data += static_cast<char>(hi * 16 + lo);
      _P += 2;
    }
    return data;
  }

  const std::string& m_Text;
  const std::string& m_File;
  int m_Line = 0;
};

// ---------------------------------------------------------------------------
// Files

class UniqueFd {
 public:
  explicit UniqueFd(int _Fd = -1) : m_Fd(_Fd) {}
  ~UniqueFd() {
    if (m_Fd >= 0) ::close(m_Fd);
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  int Get() const { return m_Fd; }
  int Release() { return std::exchange(m_Fd, -1); }
  explicit operator bool() const { return m_Fd >= 0; }

 private:
  int m_Fd;
};

std::string Location() {
  if (const char* path = std::getenv("ZT_REGISTRY"); path && *path) return path;
  if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg == '/')
    return std::string(xdg) + "/zt/registry";
  std::string home;
  if (const char* env = std::getenv("HOME"); env && *env) {
    home = env;
  } else {
    struct passwd pw;
    struct passwd* found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::getuid(), &pw, buffer, sizeof buffer, &found) == 0 && found &&
        found->pw_dir)
      home = found->pw_dir;
  }
  return home.empty() ? std::string() : home + "/.config/zt/registry";
}

std::string ReadAll(int _Fd, const std::string& _Path, off_t _SizeHint) {
  if (_SizeHint > static_cast<off_t>(MaxFileSize)) FailFile(EFBIG, "Unable to read", _Path);
  std::string text;
  text.reserve(static_cast<std::size_t>(_SizeHint));
  char buffer[65536];
  for (;;) {
    const ssize_t n = ::read(_Fd, buffer, sizeof buffer);
    if (n == 0) return text;
    if (n < 0) {
      if (errno == EINTR) continue;
      FailFile(errno, "Unable to read", _Path);
    }
    if (text.size() + static_cast<std::size_t>(n) > MaxFileSize)
      FailFile(EFBIG, "Unable to read", _Path);
    text.append(buffer, static_cast<std::size_t>(n));
  }
}

void WriteAll(int _Fd, const std::string& _Text, const std::string& _Path) {
  const char* p = _Text.data();
  std::size_t left = _Text.size();
  while (left > 0) {
    const ssize_t n = ::write(_Fd, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      FailFile(errno, "Unable to write", _Path);
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
}

std::string DirectoryOf(const std::string& _Path) {
  const std::size_t slash = _Path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : _Path.substr(0, slash);
}

void MakeDirectories(const std::string& _Path) {
  for (std::size_t slash = _Path.find('/', 1); slash != std::string::npos;
       slash = _Path.find('/', slash + 1)) {
    const std::string dir = _Path.substr(0, slash);
    if (::mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST)
      FailFile(errno, "Unable to create the directory of", _Path);
  }
}

// Replaces the file by the text in one step: readers of the path see the old
// or the new content, never a mix, whatever happens to this process.
void WriteAtomically(const std::string& _Path, const std::string& _Text) {
  std::string temp = _Path + ".ZTXXXXXX";
  UniqueFd fd(::mkstemp(temp.data()));
  if (!fd) FailFile(errno, "Unable to create a temporary file for", _Path);
  try {
    ::fcntl(fd.Get(), F_SETFD, FD_CLOEXEC);
    struct stat old;
    if (::stat(_Path.c_str(), &old) == 0) ::fchmod(fd.Get(), old.st_mode & 07777);
    WriteAll(fd.Get(), _Text, _Path);
    if (::fsync(fd.Get()) != 0) FailFile(errno, "Unable to write", _Path);
    if (::close(fd.Release()) != 0) FailFile(errno, "Unable to write", _Path);
    if (::rename(temp.c_str(), _Path.c_str()) != 0) FailFile(errno, "Unable to replace", _Path);
  } catch (...) {
    ::unlink(temp.c_str());
    throw;
  }
  // Makes the rename itself durable; a failure here loses nothing already visible.
  UniqueFd dir(::open(DirectoryOf(_Path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (dir) ::fsync(dir.Get());
}

// Holds an fcntl write lock on "<store>.lock" while it lives. fcntl locks are
// per process, so the caller also holds the store mutex against own threads;
// the lock file is opened only here, so closing it drops no other lock.
class FileLock {
 public:
  explicit FileLock(const std::string& _Path)
      : m_Fd(::open((_Path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (!m_Fd) FailFile(errno, "Unable to open the lock file of", _Path);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    while (::fcntl(m_Fd.Get(), F_SETLKW, &lock) != 0)
      if (errno != EINTR) FailFile(errno, "Unable to lock", _Path);
  }

 private:
  UniqueFd m_Fd;
};

// ---------------------------------------------------------------------------
// The process-wide store: the tree of the file last read and what identified
// that file, so unchanged files are not parsed again.

struct Stamp {
  bool m_Exists = false;
  dev_t m_Dev = 0;
  ino_t m_Ino = 0;
  off_t m_Size = 0;
  timespec m_MTime = {};
  timespec m_CTime = {};

  static Stamp Of(const struct stat& _St) {
    return {true, _St.st_dev, _St.st_ino, _St.st_size, _St.st_mtim, _St.st_ctim};
  }
  bool operator==(const Stamp& _O) const {
    return m_Exists == _O.m_Exists && m_Dev == _O.m_Dev && m_Ino == _O.m_Ino &&
           m_Size == _O.m_Size && m_MTime.tv_sec == _O.m_MTime.tv_sec &&
           m_MTime.tv_nsec == _O.m_MTime.tv_nsec && m_CTime.tv_sec == _O.m_CTime.tv_sec &&
           m_CTime.tv_nsec == _O.m_CTime.tv_nsec;
  }
};

struct Store {
  std::mutex m_Mutex;
  std::string m_Path;
  bool m_Valid = false;
  Stamp m_Stamp;
  std::unique_ptr<Node> m_Root = std::make_unique<Node>();

  // The tree of the file at _Path, read again when the file changed (always
  // when _Force). A failed read leaves the tree marked invalid, so the next
  // call reads again and fails the same way instead of using stale data.
  Node& Load(const std::string& _Path, bool _Force) {
    Stamp stamp;
    // O_NONBLOCK: a FIFO put at the location must not block the open.
    UniqueFd fd(_Path.empty() ? -1 : ::open(_Path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!fd && !_Path.empty() && errno != ENOENT) FailFile(errno, "Unable to open", _Path);
    if (fd) {
      struct stat st;
      if (::fstat(fd.Get(), &st) != 0) FailFile(errno, "Unable to read", _Path);
      if (!S_ISREG(st.st_mode)) FailFile(S_ISDIR(st.st_mode) ? EISDIR : EINVAL, "Unable to read", _Path);
      stamp = Stamp::Of(st);
    }
    if (!_Force && m_Valid && m_Path == _Path && m_Stamp == stamp) return *m_Root;
    m_Valid = false;
    m_Root = fd ? Parser(ReadAll(fd.Get(), _Path, stamp.m_Size), _Path).Parse()
                : std::make_unique<Node>();
    m_Path = _Path;
    m_Stamp = stamp;
    m_Valid = true;
    return *m_Root;
  }

  // Runs _Look over the current tree; top-level keys always exist.
  template <class F>
  int Inspect(const KeyPath& _Key, F&& _Look) {
    std::lock_guard<std::mutex> guard(m_Mutex);
    Node& root = Load(Location(), false);
    bool unused = false;
    Make(root, _Key, 1, unused);
    return _Look(root);
  }

  // Read-modify-write under both locks; _Change answers 0 and sets its flag
  // when the tree changed, which is then written. On any failure the tree is
  // marked stale, so it is read again from the untouched file.
  template <class F>
  int Mutate(const KeyPath& _Key, F&& _Change) {
    std::lock_guard<std::mutex> guard(m_Mutex);
    const std::string path = Location();
    if (path.empty()) ZT_THROW_FMT("No location for the registry file: set ZT_REGISTRY or HOME");
    MakeDirectories(path);
    FileLock lock(path);
    // Always read again: another process may have written since.
    Node& root = Load(path, true);
    try {
      bool changed = false;
      Make(root, _Key, 1, changed);
      changed = false;  // an implied top-level key alone is no change
      const int result = _Change(root, changed);
      if (result != 0 || !changed) return result;
      const std::string text = Serialise(root);
      if (text.size() > MaxFileSize) {
        m_Valid = false;
        return EFBIG;
      }
      WriteAtomically(path, text);
      struct stat st;
      m_Valid = ::stat(path.c_str(), &st) == 0;
      if (m_Valid) m_Stamp = Stamp::Of(st);
      return 0;
    } catch (...) {
      m_Valid = false;
      throw;
    }
  }
};

Store& TheStore() {
  static Store store;
  return store;
}

}  // namespace

// ---------------------------------------------------------------------------

int AppendPath(KeyPath& _Key, const char* _SubKey) {
  if (!_SubKey || !*_SubKey) return 0;
  for (;;) {
    const char* sep = std::strchr(_SubKey, '\\');
    const std::size_t len = sep ? static_cast<std::size_t>(sep - _SubKey) : std::strlen(_SubKey);
    if (len == 0 || _Key.size() >= MaxDepth) return EINVAL;
    if (len > MaxNameLength) return ENAMETOOLONG;
    _Key.emplace_back(_SubKey, len);
    if (!sep) return 0;
    _SubKey = sep + 1;
  }
}

int OpenKey(const KeyPath& _Key, std::size_t _Known) {
  return TheStore().Inspect(_Key, [&](Node& _Root) {
    Node* node = nullptr;
    return Locate(_Root, _Key, _Known, node);
  });
}

int CreateKey(const KeyPath& _Key, std::size_t _Known, bool& _Created) {
  _Created = false;
  return TheStore().Mutate(_Key, [&](Node& _Root, bool& _Changed) {
    if (!Find(_Root, _Key, _Known)) return ESTALE;
    Make(_Root, _Key, _Key.size(), _Changed);
    _Created = _Changed;
    return 0;
  });
}

int SubKeyName(const KeyPath& _Key, std::size_t _Index, std::string& _Name) {
  return TheStore().Inspect(_Key, [&](Node& _Root) {
    const Node* node = Find(_Root, _Key, _Key.size());
    if (!node) return ESTALE;
    if (_Index >= node->m_Keys.size()) return ENOENT;
    _Name = std::next(node->m_Keys.begin(), static_cast<std::ptrdiff_t>(_Index))->first;
    return 0;
  });
}

int DeleteKey(const KeyPath& _Key, std::size_t _Known) {
  return TheStore().Mutate(_Key, [&](Node& _Root, bool& _Changed) {
    Node* parent = nullptr;
    const KeyPath parentPath(_Key.begin(), _Key.end() - 1);
    if (const int result = Locate(_Root, parentPath, std::min(_Known, parentPath.size()), parent))
      return result;
    const auto it = parent->m_Keys.find(_Key.back());
    if (it == parent->m_Keys.end()) return ENOENT;
    if (!it->second->m_Keys.empty()) return ENOTEMPTY;
    parent->m_Keys.erase(it);
    _Changed = true;
    return 0;
  });
}

int QueryValue(const KeyPath& _Key, const std::string& _Name, Value& _Value) {
  return TheStore().Inspect(_Key, [&](Node& _Root) {
    const Node* node = Find(_Root, _Key, _Key.size());
    if (!node) return ESTALE;
    const auto it = node->m_Values.find(_Name);
    if (it == node->m_Values.end()) return ENOENT;
    _Value = it->second;
    return 0;
  });
}

int SetValue(const KeyPath& _Key, const std::string& _Name, const Value& _Value) {
  return TheStore().Mutate(_Key, [&](Node& _Root, bool& _Changed) {
    Node* node = Find(_Root, _Key, _Key.size());
    if (!node) return ESTALE;
    const auto [it, added] = node->m_Values.try_emplace(_Name, _Value);
    _Changed = added || !(it->second == _Value);
    it->second = _Value;
    return 0;
  });
}

int DeleteValue(const KeyPath& _Key, const std::string& _Name) {
  return TheStore().Mutate(_Key, [&](Node& _Root, bool& _Changed) {
    Node* node = Find(_Root, _Key, _Key.size());
    if (!node) return ESTALE;
    _Changed = node->m_Values.erase(_Name) != 0;
    return _Changed ? 0 : ENOENT;
  });
}

}  // namespace zt_registry
