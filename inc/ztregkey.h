// Registry keys: a hierarchical configuration store of keys holding typed
// values (text, 32-bit number, binary), kept per user in a text file.
//
// Where the store lives: $ZT_REGISTRY when set and not empty, else
// $XDG_CONFIG_HOME/zt/registry, else ~/.config/zt/registry. The location is
// looked up on every operation, so changing ZT_REGISTRY switches stores at
// once. Without a file every key but the roots and every value is missing.
// The file is plain text that may be edited by hand, for example
//   [CurrentUser\Control Panel\International]
//   "sDecimal"=text:","
//   "iDigits"=number:2
//   "Key"=binary:00ff
// Writes replace it atomically and are serialised between threads and
// processes. A file that cannot be read or is malformed raises ZTExcept with
// a message naming the file (and the line); nothing is written over it.
//
// Names of keys and values compare without regard to ASCII case and keep the
// case in which they were first written. Key names are 1 to 255 bytes without
// '\', which separates the names of a sub-key path ("Control Panel\Desktop");
// paths are at most 512 keys deep. Value names are any text; the empty name
// is the key's default value.
#pragma once

#include <cstdint>

#include "ztobject.h"

class ZTString;
class ZTInteger;
class ZTBinary;

// Opaque handle of an open key (the store's own type). The root keys below
// are handles that are always open and never closed.
struct ZTRegKeyHandle;

// Wraps one open key. Operations throw ZTExcept on failure: the message is
// the system's text for the error and, in double quotes, the key or value
// concerned, e.g. "No such file or directory(keyname 'Software\App')". Error
// texts used: "No such file or directory" (missing key or value), "Stale file
// handle" (the open key was deleted meanwhile), "Permission denied" (not
// opened for that access), "Directory not empty" (deleting a key with sub
// keys), "Invalid argument" and "File name too long" (bad key paths).
class ZTRegistryKey : public ZTObject {
  ZT_DECLARE_CLASS(ZTRegistryKey, ZTObjectCreator)

 public:
  // Root keys; each is a top-level key of the store file named as given.
  static ZTRegKeyHandle* const ClassesRoot;    // "ClassesRoot": file types, classes
  static ZTRegKeyHandle* const CurrentUser;    // "CurrentUser": the user's settings
  static ZTRegKeyHandle* const LocalMachine;   // "LocalMachine": machine-wide settings
  static ZTRegKeyHandle* const Users;          // "Users": settings of all users
  static ZTRegKeyHandle* const CurrentConfig;  // "CurrentConfig": current hardware profile

  // Access rights of an open key (a mask).
  enum : unsigned long {
    AccessQueryValue = 0x1,        // QueryValue
    AccessSetValue = 0x2,          // SetValue, DeleteValue
    AccessCreateSubKey = 0x4,      // Create below it, DeleteSubKey, RecurseDeleteKey
    AccessEnumerateSubKeys = 0x8,  // EnumKey
    AccessRead = AccessQueryValue | AccessEnumerateSubKeys,
    AccessWrite = AccessSetValue | AccessCreateSubKey,
    AccessAll = AccessRead | AccessWrite
  };

  // Dispositions reported by Create.
  enum : long { CreatedNewKey = 1, OpenedExistingKey = 2 };

  // Answer of the queries for a value that does not exist (0 when read).
  static constexpr long ValueNotFound = 40;

  // Type numbers that "Invalid type (%i) (value '%s')" reports.
  enum : int { TypeText = 1, TypeExpandText = 2, TypeBinary = 3, TypeNumber = 4, TypeMultiText = 7 };

  ZTRegistryKey() = default;
  // Opens the other object's key once more with all access.
  ZTRegistryKey(const ZTRegistryKey& _Src);
  ZTRegistryKey& operator=(const ZTRegistryKey& _Src);
  ~ZTRegistryKey() override;

  ZTRegKeyHandle* GetKey() const { return m_Key; }
  operator ZTRegKeyHandle*() const { return m_Key; }

  // Opens the sub key (null or empty: the key _Key itself) of _Key with the
  // access mask; on success the current key is closed and replaced.
  void Open(ZTRegKeyHandle* _Key, const char* _SubKeyName, unsigned long _Access = AccessAll);
  // Creates the missing keys of the sub-key path, or opens the existing key,
  // with all access; _Key needs AccessCreateSubKey. Key classes are not kept
  // (_KeyClass is accepted and ignored). _Disposition, when given, receives
  // CreatedNewKey or OpenedExistingKey.
  void Create(ZTRegKeyHandle* _Key, const char* _SubKeyName, const char* _KeyClass = nullptr,
              long* _Disposition = nullptr);
  // Closes an open key; the key and the enumeration index become null and 0.
  void Close();
  // True when the key can be opened with the access; never throws for a
  // missing key or a bad path (an unreadable store still raises).
  static bool IsValidKey(ZTRegKeyHandle* _Key, const char* _SubKeyName,
                         unsigned long _Access = AccessRead);

  // Writes the name of the sub key at the enumeration index into the buffer
  // (sub keys in case-insensitive name order) and advances the index; at the
  // end, or on any failure (the name does not fit, no access), the index goes
  // back to 0 and the answer is false.
  bool EnumKey(char* _SubKeyName, int size);
  // Deletes a sub key that has no sub keys.
  void DeleteSubKey(const char* _KeyName);
  // Deletes a sub key with everything below it.
  void RecurseDeleteKey(const char* _KeyName);

  // Queries empty the target first and answer 0 when the value was read,
  // ValueNotFound when it does not exist. A value of another type raises
  // "Invalid type (%i) (value '%s')". Texts (plain, expandable, multi: the
  // first string) are read up to their first zero through a 256-byte buffer,
  // so a text of more than 255 characters raises "Value too large for defined
  // data type(value '%s')".
  long QueryValue(const char* _ValueName, ZTString& _Value);
  long QueryValue(const char* _ValueName, ZTInteger& _Value);
  long QueryValue(const char* _ValueName, ZTBinary& _Value);

  // A null value name sets the key's default value (the name "").
  // A null or empty string writes an empty text; a null integer writes 0.
  void SetValue(const char* _ValueName, const ZTString& _Value);
  void SetValue(const char* _ValueName, const ZTInteger& _Value);
  void SetValue(const char* _ValueName, const ZTBinary& _Value);

  // Creates or opens the sub key, sets the value there and closes it again.
  void SetKeyValue(const char* _KeyName, const char* _ValueName, const ZTString& _Value);
  void SetKeyValue(const char* _KeyName, const char* _ValueName, const ZTInteger& _Value);
  void SetKeyValue(const char* _KeyName, const char* _ValueName, const ZTBinary& _Value);

  void DeleteValue(const char* _ValueName);

 private:
  // Name of sub key _Index into the buffer; false when there is none or it
  // does not fit.
  bool SubKeyAt(int _Index, char* _Buffer, int _Size) const;
  template <class V>
  void SetKeyValueOf(const char* _KeyName, const char* _ValueName, const V& _Value);

  ZTRegKeyHandle* m_Key = nullptr;
  std::int32_t m_Index = 0;
};
