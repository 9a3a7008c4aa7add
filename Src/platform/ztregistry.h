// Internal registry store: a hierarchical tree of keys with typed values, kept
// in one human-readable text file. Not installed, never included by public
// headers; ZTRegistryKey is its only client.
//
// Location: $ZT_REGISTRY when set and not empty, else
// $XDG_CONFIG_HOME/zt/registry (an absolute XDG_CONFIG_HOME only), else
// ~/.config/zt/registry. The location is looked up again on every operation,
// so pointing ZT_REGISTRY elsewhere switches stores at once (the tests rely on
// this instead of a reset hook). A missing file is an empty store.
//
// File format (UTF-8 or any bytes; one item per line):
//   # comment            ('#' or ';' first; blank lines are ignored too)
//   [Root\Key\Sub Key]   a key, by its path from a top-level key. Names are
//                        percent-encoded where they hold '%', '[', ']', '\',
//                        control bytes or 0x7F ("%5D" is ']').
//   "name"=type:data     a value of the key above; the empty name "" is the
//                        key's default value. Types and their data:
//                          text:"..."  expand:"..."  multi:"..."  (quoted)
//                          number:-12  (decimal, signed or unsigned 32 bits)
//                          binary:00ff (two hex digits per byte, may be empty)
//                        Quoted texts escape \\ \" \n \r \t and \xHH (any
//                        other control byte and 0x7F); other bytes are raw.
// Every key is written, parents before children, children and values in the
// case-insensitive order of their names.
//
// Writing: under a process-wide mutex (threads) and an fcntl write lock on
// "<file>.lock" (processes) the file is read again, changed, written to a
// temporary file beside it (mkstemp), flushed with fsync and renamed over the
// old one, so readers see either the old or the new file, never a torn one.
//
// Failures of the file itself (unreadable, malformed, too large) raise
// ZTExcept naming the file (and the line for malformed text); logical
// outcomes are answered as errno codes (0 for success).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zt_registry {

// Type numbers of values; the numbers are those the registry always had, so
// "Invalid type (%i)" messages keep their meaning.
enum ValueType : std::uint32_t {
  TypeText = 1,
  TypeExpandText = 2,
  TypeBinary = 3,
  TypeNumber = 4,  // 32 bits, little-endian in m_Data
  TypeMultiText = 7
};

struct Value {
  std::uint32_t m_Type = TypeBinary;
  std::string m_Data;  // raw bytes; texts without terminating zero
  bool operator==(const Value& _Other) const {
    return m_Type == _Other.m_Type && m_Data == _Other.m_Data;
  }
};

// Names of a key from its top-level key down. Top-level keys always exist.
using KeyPath = std::vector<std::string>;

constexpr std::size_t MaxNameLength = 255;        // bytes of one key name
constexpr std::size_t MaxDepth = 512;             // names in a key path
constexpr std::size_t MaxFileSize = 64u << 20;    // bytes of the store file

// Appends the names of a sub-key path ("a\b\c"; null or empty adds nothing).
// EINVAL for an empty name or a path deeper than MaxDepth, ENAMETOOLONG for a
// name longer than MaxNameLength.
int AppendPath(KeyPath& _Key, const char* _SubKey);

// In the operations below, _Known is the number of leading names of _Key that
// belong to a key already open: when those are gone the answer is ESTALE.

// 0 when the key exists, ENOENT when not.
int OpenKey(const KeyPath& _Key, std::size_t _Known);
// Creates the missing keys of the path; _Created tells whether any was made.
int CreateKey(const KeyPath& _Key, std::size_t _Known, bool& _Created);
// The name of sub key _Index (in name order); ENOENT past the last one.
int SubKeyName(const KeyPath& _Key, std::size_t _Index, std::string& _Name);
// Deletes the last key of the path; ENOENT when missing, ENOTEMPTY when it has
// sub keys.
int DeleteKey(const KeyPath& _Key, std::size_t _Known);

// Value operations on an open key (_Known is the whole path). ENOENT when the
// value does not exist; EFBIG when the store would outgrow MaxFileSize.
int QueryValue(const KeyPath& _Key, const std::string& _Name, Value& _Value);
int SetValue(const KeyPath& _Key, const std::string& _Name, const Value& _Value);
int DeleteValue(const KeyPath& _Key, const std::string& _Name);

}  // namespace zt_registry
