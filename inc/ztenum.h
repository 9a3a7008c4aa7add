// Enumerations (integer values read and printed by label) and flag values.
#pragma once

#include <cstdint>

#include "ztcont.h"
#include "zthash.h"
#include "ztstring.h"
#include "zttypes.h"
#include "ztvalue.h"

// ---------------------------------------------------------------------------
// Flags

// A plain 32-bit bit-set word.
class ztFlags {
 public:
  constexpr ztFlags(unsigned long _Flags = 0) : m_Flags(static_cast<std::uint32_t>(_Flags)) {}

  constexpr unsigned long GetFlags() const { return m_Flags; }
  constexpr unsigned long Flags() const { return m_Flags; }
  constexpr operator unsigned long() const { return m_Flags; }
  // True when every bit of the mask is set (so always for an empty mask).
  constexpr bool IsSet(unsigned long _Mask) const { return (m_Flags & _Mask) == _Mask; }
  constexpr bool IsAnySet(unsigned long _Mask) const { return (m_Flags & _Mask) != 0; }
  // word = (word AND NOT clear) OR set.
  constexpr void SetFlags(unsigned long _Set, unsigned long _Clear) {
    m_Flags = static_cast<std::uint32_t>((m_Flags & ~_Clear) | _Set);
  }

 private:
  std::uint32_t m_Flags;
};

// One entry of a flag-name table; a table ends with an entry whose name is null.
struct _FlagStringEntry {
  std::uint32_t Flag;
  const char* Name;
};

// A bit-set value printed through a table of flag names. A flags value made
// without a word is null; storing a word makes it non-null.
class ZTFlags : public ZTValue {
  ZT_DECLARE_CLASS(ZTFlags, ZTValueCreator)

 public:
  static const char m_ZTType[];  // "Flags"

  ZTFlags() = default;
  explicit ZTFlags(unsigned long _Flags, const _FlagStringEntry* _FlagStrings = nullptr,
                   char _CatChar = 0);
  ZTFlags(const ZTFlags& _Src) = default;

  void Set(const ztFlags& _Flags) { Set(_Flags.GetFlags()); }
  void Set(unsigned long _Flags);
  ZTFlags& operator=(unsigned long _Flags) {
    Set(_Flags);
    return *this;
  }
  ZTFlags& operator=(const ZTFlags& _Src) {
    SetValue(_Src);
    return *this;
  }
  using ZTValue::operator=;

  // The word (this hides ZTObject::GetFlags, the object's own flag word).
  unsigned long GetFlags() const { return m_Flags.GetFlags(); }
  const ztFlags& Flags() const { return m_Flags; }
  operator unsigned long() const { return m_Flags.GetFlags(); }
  bool IsSet(unsigned long _Mask) const { return m_Flags.IsSet(_Mask); }
  bool IsAnySet(unsigned long _Mask) const { return m_Flags.IsAnySet(_Mask); }

  // Separator of the names in the text form; zero prints " | ".
  void SetCatChar(char _CatChar) { m_CatChar = _CatChar; }
  char GetCatChar() const { return m_CatChar; }
  const _FlagStringEntry* GetFlagStrings() const { return m_FlagStrings; }

  // The names of the table's non-zero entries whose bits are all set, in
  // table order; when none is set, the name of the first zero entry.
  static ZTString ToString(ztFlags _Flags, const _FlagStringEntry* _FlagStrings, char _CatChar);

  // Value protocol. Text is write-only: SetString stores nothing.
  void Copy(const ZTObject* _Src) override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  bool IsEmpty() const override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  using ZTValue::Cmp;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 protected:
  ZTFlags(const _FlagStringEntry* _FlagStrings, char _CatChar)
      : m_CatChar(_CatChar), m_FlagStrings(_FlagStrings) {}

 private:
  ztFlags m_Flags;
  char m_CatChar = 0;
  const _FlagStringEntry* m_FlagStrings = nullptr;
};

// The member flags of map records (MDF_* in ztMDE.h), printed by name with "|".
class ZTMDEFlags : public ZTFlags {
  ZT_DECLARE_CLASS(ZTMDEFlags, ZTValueCreator)

 public:
  static const char m_ZTType[];  // "MDEFlags"

  ZTMDEFlags();
  explicit ZTMDEFlags(unsigned long _Flags);
  ZTMDEFlags(const ZTMDEFlags& _Src) = default;

  ZTMDEFlags& operator=(unsigned long _Flags) {
    Set(_Flags);
    return *this;
  }
  ZTMDEFlags& operator=(const ZTMDEFlags& _Src) {
    SetValue(_Src);
    return *this;
  }
  using ZTValue::operator=;

  const char* GetTypeName() const override;
};

// Appends " | " (when the text is not empty) and the name when every bit of
// _Flag is set in _Flags; returns the text.
ZTString& AddVDFlagToString(ZTString& _Text, unsigned long _Flags, unsigned long _Flag,
                            const char* _Name);
// The member flags by name ("MDF_DOMINANT | MDF_ID"); "MDF_ATTRIB" when none has a name.
ZTString GetVDFlagsAsString(unsigned long _Flags);

// ---------------------------------------------------------------------------
// Enumerations

// A named integer: one entry of an enumeration.
class ZTEnumType : public ZTInteger {
  ZT_DECLARE_CLASS(ZTEnumType, ZTValueCreator)

 public:
  ZTEnumType() = default;
  ZTEnumType(int _Val, const char* _Label);
  ZTEnumType(const ZTEnumType& _Src) = default;
  using ZTInteger::operator=;

  const ZTString& GetLabel() const { return m_Label; }
  void SetLabel(const char* _Label) { m_Label = _Label; }

  void Copy(const ZTObject* _Src) override;

 private:
  ZTString m_Label;
};

// Static record an application writes to define an enumeration; an array of
// them ends with a record whose label is null.
struct ZTTEnumItem {
  const char* Label;
  int Value;
};

// Every enum type made by any list, keyed by label. Labels need not be unique
// across lists: a label may stand here once for each value it carries.
class ZTEnumTypeTable : public ZTTStringHashTable<ZTEnumType> {
  ZT_DECLARE_CLASS(ZTEnumTypeTable, ZTObjectCreator)

 public:
  static constexpr int BucketCount = 251;

  ZTEnumTypeTable() : ZTTStringHashTable<ZTEnumType>(BucketCount) {}
  ZTEnumTypeTable(const ZTEnumTypeTable& _Src) = default;

  // The type with this label (compared with case) and value, or null.
  ZTEnumType* Find(const char* _Label, int _Value) const;
  // Enters a type under its label, beside types of the same label.
  bool Add(const ZTEnumType* _Type);
};

// A list of named integer values. Compound lists combine values by bits;
// expansible compound lists also print bits that have no label.
//
// The types of all lists live in one library-wide table while any list
// exists; it is made with the first list and released with the last.
class ZTEnumList : public ZTTPArray<ZTEnumType> {
  ZT_DECLARE_CLASS(ZTEnumList, ZTObjectCreator)

 public:
  static constexpr int GrowStep = 32;

  ZTEnumList() : ZTEnumList(false, false) {}
  ZTEnumList(bool _CompoundValue, bool _Expansible);
  // Shares the types of the source.
  ZTEnumList(const ZTEnumList& _Src);
  ZTEnumList& operator=(const ZTEnumList& _Src);
  ~ZTEnumList() override;

  void SetCompoundValue(bool _Compound) { m_CompoundValue = _Compound; }
  bool GetCompoundValue() const { return m_CompoundValue; }
  void SetExpansible(bool _Expansible) { m_Expansible = _Expansible; }
  bool GetExpansible() const { return m_Expansible; }

  // Appends one type per record up to the ending one, sharing a type of the
  // same label and value from the library-wide table or entering a new one.
  void AddItems(const ZTTEnumItem* _Items);

  // One label or decimal number; -1 and false when it is neither.
  virtual bool GetSingleValue(const char* _Text, int& _Value) const;
  // A compound list reads labels joined by "|" (blanks around them allowed).
  virtual bool GetValue(const char* _Text, int& _Value) const;
  virtual ZTString GetString(int _Value, const char* _Sep = nullptr) const;
  // The labels of the value; _Sep joins labels of a compound value (null: " | ").
  virtual const char* CopyIntoString(int _Value, ZTString& _Str, const char* _Sep = nullptr) const;
  virtual bool IsValidValue(int _Value) const;

  // The library-wide table; null when no list exists. Valid while the caller
  // keeps a list alive.
  static ZTEnumTypeTable* GetTypeTable();

 protected:
  // Counts the users of the library-wide table; returns it (null after the last).
  static ZTEnumTypeTable* UseTypeTable(bool _Use);

 private:
  bool m_CompoundValue;
  bool m_Expansible;
};

// An integer value bound to an enumeration list (not owned), read and printed
// by label.
class ZTEnumValue : public ZTInteger {
  ZT_DECLARE_CLASS(ZTEnumValue, ZTValueCreator)

 public:
  ZTEnumValue() = default;
  ZTEnumValue(int _Val, ZTEnumList* _EnumList);
  ZTEnumValue(const ZTEnumValue& _Src) = default;

  virtual void SetEnumList(ZTEnumList* _EnumList) { m_EnumList = _EnumList; }
  // Without a list every value is valid.
  virtual bool IsValidValue(int _Value) const;
  virtual void Set(int _Val);
  using ZTInteger::Set;

  ZTEnumList* GetEnumList() const { return m_EnumList; }
  ZTEnumValue& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTEnumValue& operator=(const ZTEnumValue& _Src) {
    SetValue(_Src);
    return *this;
  }
  using ZTValue::operator=;

  void Copy(const ZTObject* _Src) override;
  using ZTInteger::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;

 private:
  ZTEnumList* m_EnumList = nullptr;
};
