// ZTRegistryKey: typed values under keys of the registry store.
#include "ztregkey.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "platform/ztplatform.h"
#include "platform/ztregistry.h"
#include "ztstring.h"
#include "zttypes.h"

// An open key: its path below a root, and what it was opened for. Paths, not
// tree nodes, so a key deleted by another handle or process is noticed
// (ESTALE) instead of being touched after its removal.
struct ZTRegKeyHandle {
  const char* m_Root;
  std::vector<std::string> m_Names;
  unsigned long m_Access;

  zt_registry::KeyPath Path() const {
    zt_registry::KeyPath path;
    path.reserve(m_Names.size() + 1);
    path.emplace_back(m_Root);
    path.insert(path.end(), m_Names.begin(), m_Names.end());
    return path;
  }
};

namespace {

constexpr bool SameType(int _Public, std::uint32_t _Store) {
  return static_cast<std::uint32_t>(_Public) == _Store;
}
static_assert(SameType(ZTRegistryKey::TypeText, zt_registry::TypeText) &&
                  SameType(ZTRegistryKey::TypeExpandText, zt_registry::TypeExpandText) &&
                  SameType(ZTRegistryKey::TypeBinary, zt_registry::TypeBinary) &&
                  SameType(ZTRegistryKey::TypeNumber, zt_registry::TypeNumber) &&
                  SameType(ZTRegistryKey::TypeMultiText, zt_registry::TypeMultiText),
              "the public type numbers are the store's");

ZTRegKeyHandle s_Roots[] = {{"ClassesRoot", {}, ZTRegistryKey::AccessAll},
                            {"CurrentUser", {}, ZTRegistryKey::AccessAll},
                            {"LocalMachine", {}, ZTRegistryKey::AccessAll},
                            {"Users", {}, ZTRegistryKey::AccessAll},
                            {"CurrentConfig", {}, ZTRegistryKey::AccessAll}};

// Texts are read through a buffer of this size, terminating zero included.
constexpr std::size_t TextBufferSize = 256;
// Marks a value of another type than the query asked for.
constexpr int WrongType = -1;

struct ErrorText {
  explicit ErrorText(int _Error) { zt_platform::SystemErrorText(_Error, m_Text, sizeof m_Text); }
  char m_Text[256];
};

const char* NameText(const char* _Name) { return _Name ? _Name : ""; }

int Allowed(const ZTRegKeyHandle& _Key, unsigned long _Need) {
  return (_Key.m_Access & _Need) == _Need ? 0 : EACCES;
}

// A handle below _Parent's root (whose name is a literal that outlives it).
std::unique_ptr<ZTRegKeyHandle> MakeHandle(const ZTRegKeyHandle& _Parent,
                                           const zt_registry::KeyPath& _Path,
                                           unsigned long _Access) {
  return std::make_unique<ZTRegKeyHandle>(ZTRegKeyHandle{
      _Parent.m_Root, {_Path.begin() + 1, _Path.end()}, _Access & ZTRegistryKey::AccessAll});
}

bool IsTextType(std::uint32_t _Type) {
  return _Type == zt_registry::TypeText || _Type == zt_registry::TypeExpandText ||
         _Type == zt_registry::TypeMultiText;
}

// The value of the given type: 0, ENOENT when missing, WrongType, or an errno.
int Fetch(const ZTRegKeyHandle& _Key, const char* _Name, std::uint32_t _Type,
          zt_registry::Value& _Value) {
  if (const int error = Allowed(_Key, ZTRegistryKey::AccessQueryValue)) return error;
  if (const int error = zt_registry::QueryValue(_Key.Path(), _Name, _Value)) return error;
  const bool match = _Type == zt_registry::TypeText ? IsTextType(_Value.m_Type) : _Value.m_Type == _Type;
  return match ? 0 : WrongType;
}

int Store(const ZTRegKeyHandle& _Key, const char* _Name, std::uint32_t _Type, std::string _Data) {
  if (const int error = Allowed(_Key, ZTRegistryKey::AccessSetValue)) return error;
  return zt_registry::SetValue(_Key.Path(), NameText(_Name), {_Type, std::move(_Data)});
}

}  // namespace

// Raises ZTExcept with the error code; the format is a literal that keeps its
// quotation marks, as the library's literal texts do.
#define ZT_REG_FAIL(Code, F, ...)          \
  do {                                     \
    ZTExcept zt_reg_ex_;                   \
    zt_reg_ex_.PushMsg(#F, __VA_ARGS__);   \
    zt_reg_ex_.SetErrorCode(Code);         \
    ZT_RAISE(zt_reg_ex_);                  \
  } while (0)

#define ZT_REG_FAIL_KEY(Error, Name) \
  ZT_REG_FAIL(Error, "%s(keyname '%s')", ErrorText(Error).m_Text, NameText(Name))
#define ZT_REG_FAIL_VALUE(Error, Name) \
  ZT_REG_FAIL(Error, "%s(value '%s')", ErrorText(Error).m_Text, NameText(Name))

// Outcome of Fetch in a query: missing answers ValueNotFound, the rest raise
// in the query's own context.
#define ZT_REG_QUERY_RESULT(Error, Value, Name)                                             \
  do {                                                                                      \
    if ((Error) == ENOENT) return ValueNotFound;                                            \
    if ((Error) == WrongType)                                                               \
      ZT_REG_FAIL(0, "Invalid type (%i) (value '%s')", static_cast<int>((Value).m_Type), Name); \
    if (Error) ZT_REG_FAIL_VALUE(Error, Name);                                              \
  } while (0)

ZT_IMPLEMENT_CLASS(ZTRegistryKey, ZTObject, ZTObjectCreator, nullptr)

ZTRegKeyHandle* const ZTRegistryKey::ClassesRoot = &s_Roots[0];
ZTRegKeyHandle* const ZTRegistryKey::CurrentUser = &s_Roots[1];
ZTRegKeyHandle* const ZTRegistryKey::LocalMachine = &s_Roots[2];
ZTRegKeyHandle* const ZTRegistryKey::Users = &s_Roots[3];
ZTRegKeyHandle* const ZTRegistryKey::CurrentConfig = &s_Roots[4];

ZTRegistryKey::ZTRegistryKey(const ZTRegistryKey& _Src) : ZTObject(_Src) {
  if (_Src.m_Key) Open(_Src.m_Key, nullptr, AccessAll);
}

ZTRegistryKey& ZTRegistryKey::operator=(const ZTRegistryKey& _Src) {
  if (&_Src == this) return *this;
  if (_Src.m_Key)
    Open(_Src.m_Key, nullptr, AccessAll);
  else
    Close();
  return *this;
}

ZTRegistryKey::~ZTRegistryKey() { Close(); }

void ZTRegistryKey::Open(ZTRegKeyHandle* _Key, const char* _SubKeyName, unsigned long _Access) {
  ZT_PARAM_CHECK(_Key != NULL);
  zt_registry::KeyPath path = _Key->Path();
  const std::size_t known = path.size();
  int error = zt_registry::AppendPath(path, _SubKeyName);
  if (!error) error = zt_registry::OpenKey(path, known);
  if (error) ZT_REG_FAIL_KEY(error, _SubKeyName);
  auto handle = MakeHandle(*_Key, path, _Access);  // before Close: _Key may be m_Key
  Close();
  m_Key = handle.release();
}

void ZTRegistryKey::Create(ZTRegKeyHandle* _Key, const char* _SubKeyName, const char*,
                           long* _Disposition) {
  ZT_PARAM_CHECK(_Key != NULL);
  ZT_PARAM_CHECK(_SubKeyName);
  zt_registry::KeyPath path = _Key->Path();
  const std::size_t known = path.size();
  bool created = false;
  int error = Allowed(*_Key, AccessCreateSubKey);
  if (!error) error = zt_registry::AppendPath(path, _SubKeyName);
  if (!error) error = zt_registry::CreateKey(path, known, created);
  if (error) ZT_REG_FAIL_KEY(error, _SubKeyName);
  if (_Disposition) *_Disposition = created ? CreatedNewKey : OpenedExistingKey;
  auto handle = MakeHandle(*_Key, path, AccessAll);
  Close();
  m_Key = handle.release();
}

void ZTRegistryKey::Close() {
  delete m_Key;  // never a root: roots are only ever parents
  m_Key = nullptr;
  m_Index = 0;
}

bool ZTRegistryKey::IsValidKey(ZTRegKeyHandle* _Key, const char* _SubKeyName, unsigned long) {
  ZT_PARAM_CHECK(_Key != NULL);
  zt_registry::KeyPath path = _Key->Path();
  const std::size_t known = path.size();
  return zt_registry::AppendPath(path, _SubKeyName) == 0 &&
         zt_registry::OpenKey(path, known) == 0;
}

bool ZTRegistryKey::SubKeyAt(int _Index, char* _Buffer, int _Size) const {
  std::string name;
  if (Allowed(*m_Key, AccessEnumerateSubKeys) ||
      zt_registry::SubKeyName(m_Key->Path(), static_cast<std::size_t>(_Index), name) ||
      name.size() >= static_cast<std::size_t>(_Size))
    return false;
  std::memcpy(_Buffer, name.c_str(), name.size() + 1);
  return true;
}

bool ZTRegistryKey::EnumKey(char* _SubKeyName, int size) {
  ZT_COND_CHECK(m_Key != NULL);
  ZT_PARAM_CHECK(_SubKeyName != NULL && size > 0);
  if (SubKeyAt(m_Index, _SubKeyName, size)) {
    ++m_Index;
    return true;
  }
  m_Index = 0;
  return false;
}

void ZTRegistryKey::DeleteSubKey(const char* _KeyName) {
  ZT_COND_CHECK(m_Key != NULL);
  ZT_PARAM_CHECK(_KeyName);
  zt_registry::KeyPath path = m_Key->Path();
  const std::size_t known = path.size();
  int error = Allowed(*m_Key, AccessCreateSubKey);
  if (!error) error = zt_registry::AppendPath(path, _KeyName);
  if (!error && path.size() == known) error = EINVAL;  // a key never deletes itself
  if (!error) error = zt_registry::DeleteKey(path, known);
  if (error) ZT_REG_FAIL_KEY(error, _KeyName);
}

void ZTRegistryKey::RecurseDeleteKey(const char* _KeyName) {
  ZT_COND_CHECK(m_Key != NULL);
  ZT_PARAM_CHECK(_KeyName);
  // An empty name would open this key itself and empty it before the final
  // deletion refuses: refuse first, so nothing is lost.
  if (!*_KeyName) ZT_REG_FAIL_KEY(EINVAL, _KeyName);
  {
    ZTRegistryKey key;  // its destructor closes it, also when a deletion throws
    key.Open(m_Key, _KeyName, AccessAll);
    char child[TextBufferSize];
    while (key.SubKeyAt(0, child, sizeof child)) key.RecurseDeleteKey(child);
  }
  DeleteSubKey(_KeyName);
}

long ZTRegistryKey::QueryValue(const char* _ValueName, ZTString& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _ValueName != NULL);
  _Value.SetEmpty();
  zt_registry::Value value;
  const int error = Fetch(*m_Key, _ValueName, zt_registry::TypeText, value);
  ZT_REG_QUERY_RESULT(error, value, _ValueName);
  const std::size_t length = std::min(value.m_Data.find('\0'), value.m_Data.size());
  if (length >= TextBufferSize) ZT_REG_FAIL_VALUE(EOVERFLOW, _ValueName);
  _Value.SetString(value.m_Data.data(), static_cast<int>(length));
  return 0;
}

long ZTRegistryKey::QueryValue(const char* _ValueName, ZTInteger& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _ValueName != NULL);
  _Value.SetEmpty();
  zt_registry::Value value;
  const int error = Fetch(*m_Key, _ValueName, zt_registry::TypeNumber, value);
  ZT_REG_QUERY_RESULT(error, value, _ValueName);
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < 4 && i < value.m_Data.size(); ++i)
    bits |= std::uint32_t{static_cast<unsigned char>(value.m_Data[i])} << (8 * i);
  _Value.Set(static_cast<int>(bits));
  return 0;
}

long ZTRegistryKey::QueryValue(const char* _ValueName, ZTBinary& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _ValueName != NULL);
  _Value.SetEmpty();
  zt_registry::Value value;
  const int error = Fetch(*m_Key, _ValueName, zt_registry::TypeBinary, value);
  ZT_REG_QUERY_RESULT(error, value, _ValueName);
  if (!value.m_Data.empty())
    _Value.Set(value.m_Data.data(), static_cast<unsigned int>(value.m_Data.size()));
  return 0;
}

void ZTRegistryKey::SetValue(const char* _ValueName, const ZTString& _Value) {
  ZT_COND_CHECK(m_Key != NULL);
  const char* text = _Value;
  const std::string data = (text && !_Value.IsNull()) ? std::string(text, _Value.Len()) : std::string();
  if (const int error = Store(*m_Key, _ValueName, zt_registry::TypeText, data))
    ZT_REG_FAIL_VALUE(error, _ValueName);
}

void ZTRegistryKey::SetValue(const char* _ValueName, const ZTInteger& _Value) {
  ZT_COND_CHECK(m_Key != NULL);
  const auto bits = static_cast<std::uint32_t>(_Value.IsNull() ? 0 : _Value.GetInt());
  std::string data(4, '\0');
  for (int i = 0; i < 4; ++i) data[i] = static_cast<char>((bits >> (8 * i)) & 0xFF);
  if (const int error = Store(*m_Key, _ValueName, zt_registry::TypeNumber, std::move(data)))
    ZT_REG_FAIL_VALUE(error, _ValueName);
}

void ZTRegistryKey::SetValue(const char* _ValueName, const ZTBinary& _Value) {
  ZT_COND_CHECK(m_Key != NULL);
  const auto* bytes = static_cast<const char*>(_Value.GetData());
  const std::string data = bytes ? std::string(bytes, _Value.GetLength()) : std::string();
  if (const int error = Store(*m_Key, _ValueName, zt_registry::TypeBinary, data))
    ZT_REG_FAIL_VALUE(error, _ValueName);
}

template <class V>
void ZTRegistryKey::SetKeyValueOf(const char* _KeyName, const char* _ValueName, const V& _Value) {
  ZTRegistryKey key;  // closed by its destructor
  key.Create(m_Key, _KeyName);
  key.SetValue(_ValueName, _Value);
}

void ZTRegistryKey::SetKeyValue(const char* _KeyName, const char* _ValueName,
                                const ZTString& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _KeyName != NULL);
  SetKeyValueOf(_KeyName, _ValueName, _Value);
}

void ZTRegistryKey::SetKeyValue(const char* _KeyName, const char* _ValueName,
                                const ZTInteger& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _KeyName != NULL);
  SetKeyValueOf(_KeyName, _ValueName, _Value);
}

void ZTRegistryKey::SetKeyValue(const char* _KeyName, const char* _ValueName,
                                const ZTBinary& _Value) {
  ZT_COND_CHECK(m_Key != NULL && _KeyName != NULL);
  SetKeyValueOf(_KeyName, _ValueName, _Value);
}

void ZTRegistryKey::DeleteValue(const char* _ValueName) {
  ZT_COND_CHECK(m_Key != NULL && _ValueName != NULL);
  int error = Allowed(*m_Key, AccessSetValue);
  if (!error) error = zt_registry::DeleteValue(m_Key->Path(), _ValueName);
  if (error) ZT_REG_FAIL_VALUE(error, _ValueName);
}
