// The library's string: a value with a shared, copy-on-write representation.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "ztvalue.h"

// Narrow text in a reference-counted block that copies share until one of them
// changes it. A string is also a value: it can be null (distinct from empty)
// and takes part in change tracking. Strings that share a representation must
// be used from one thread.
class ZTString : public ZTValue {
  ZT_DECLARE_CLASS(ZTString, ZTValueCreator)

 public:
  static const char m_ZTType[];
  static constexpr unsigned int NoLimit = 0xFFFFFFFF;
  // Kept apart from the dirty-handler bit so that a tracked string does not
  // start comparing without case.
  enum : unsigned long { FlagCaseInsensitive = 0x8000 };

  ZTString() = default;
  ZTString(const char* _Str, unsigned int _Len = 0xFFFFFFFF, unsigned int _Limit = 0xFFFFFFFF);
  ZTString(const unsigned short* _Str, unsigned int _Len = 0xFFFFFFFF,
           unsigned int _Limit = 0xFFFFFFFF);
  ZTString(char _Ch, int _Count);
  // A copy shares the source's text and is clean: the value copy drops the
  // tracking state.
  ZTString(const ZTString& _Src) : ZTValue(_Src), m_TextLimit(_Src.m_TextLimit) { ShareFrom(_Src); }
  ZTString(ZTString&& _Src) noexcept;
  ~ZTString() override { Release(); }

  ZTString& operator=(const ZTString& _Src);
  ZTString& operator=(const char* _Str);
  ZTString& operator=(char _Ch);
  ZTString& operator=(const unsigned short* _Str);
  ZTString& operator=(const ZTValue& _Value);
  ZTString& Set(char _Ch, unsigned int _Count);
  // Bulk fill without change tracking or text limit (-1: the whole text).
  static void SetStringFast(ZTString& _Str, const char* _Text, unsigned int _Len = 0xFFFFFFFF);

  void SetTextLimit(unsigned int _Limit) { m_TextLimit = _Limit; }
  unsigned int GetTextLimit() const { return m_TextLimit; }
  void SetCaseInsensitive(bool _On = true) const {
    _On ? SetFlag(FlagCaseInsensitive) : ClearFlag(FlagCaseInsensitive);
  }
  bool IsCaseInsensitive() const { return IsFlagSet(FlagCaseInsensitive); }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  bool IsEmpty() const override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  const ZTString& SetString(const ZTString& _Str, const char* _Format = nullptr) override;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  ZTString GetString(const char* _Format = nullptr) const override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

  virtual void ConvertToString(ZTString& _Str) const;
  virtual const char* SetString(const unsigned short* _Str, int _Len = -1,
                                const char* _Format = nullptr);
  virtual ZTCmpResult Cmp(const char* _Str) const;
  virtual ZTCmpResult CmpNoCase(const char* _Str) const;
  virtual ZTCmpResult CmpNoCase(const ZTValue& _Value) const;
  virtual bool Contains(const ZTValue& _Value) const;
  virtual bool Contains(char _Ch) const;
  virtual bool Contains(const char* _Str) const;
  virtual void Trim();
  virtual void LTrim();
  virtual void RTrim();
  virtual ZTString Left(unsigned int _Count) const;
  virtual ZTString Right(unsigned int _Count) const;
  virtual ZTString Mid(unsigned int _Index, unsigned int _Count = 0xFFFFFFFF) const;

  // Makes the string own a block of at least _Len bytes and returns it. With
  // _Shareable false copies get their own block (the owner writes directly).
  char* SetBufferLength(unsigned int _Len, bool _Shareable = true, bool _SetLength = false);

  // Access.
  unsigned int Len() const { return m_Val ? GetRep()->m_DataLength : 0; }
  unsigned int GetLength() const { return Len(); }
  operator const char*() const { return m_Val; }
  char GetAt(unsigned int _Index) const;
  void SetAt(unsigned int _Index, char _Ch);
  char& operator[](int _Index);
  char operator[](int _Index) const;

  // Changes.
  ZTString& operator+=(const ZTString& _Str);
  ZTString& operator+=(char _Ch);
  ZTString& operator+=(const char* _Str);
  ZTString& operator+=(const unsigned short* _Str);
  ZTString& operator+=(int _Val);
  ZTString& operator+=(double _Val);
  ZTString& Append(char _Ch, int _Count = 1);
  ZTString& Append(const char* _Str);
  ZTString& Prepend(const char* _Str);
  ZTString& Prepend(char _Ch);
  ZTString& Insert(const char* _Str, int _Pos);
  ZTString& Insert(char _Ch, int _Pos);
  ZTString& Replace(int _Pos, unsigned int _Count, char _Ch);
  ZTString& Replace(int _Pos, unsigned int _Count, const ZTString& _Str);
  ZTString& MakeUpper(int _Idx = -1);
  ZTString& MakeLower(int _Idx = -1);
  ZTString& MakeReverse();

  // Parts: the number of entries in the array is returned.
  int Split(char _Sep, ZTTPArray<ZTString>& _Array) const;
  int Split(const char* _Seps, ZTTPArray<ZTString>& _Array) const;

  // Search; -1 when not found.
  int Find(char _Ch, int _Start = 0) const;
  int Find(const char* _Str, int _Start = 0) const;
  int ReverseFind(char _Ch) const;
  int FindOneOf(const char* _Set, int _Start = 0) const;
  static int Find(const char* _S, char _Ch, int _idxStart);
  static int Find(const char* _S, const char* _Str, int _idxStart);
  static int FindOneOf(const char* _S, const char* _Set, int _idxStart);
  static int ReverseFind(const char* _S, char _Ch);

  // Comparison: C-style results, then ZTCmpResult ones.
  int Compare(const char* _Str) const;
  int Compare(const char* _Str, int _Len) const;
  int CompareNoCase(const char* _Str) const;
  int CompareNoCase(const char* _Str, int _Len) const;
  static ZTCmpResult Cmp(const char* _S1, const char* _S2);
  static ZTCmpResult CmpNoCase(const char* _S1, const char* _S2);

  using ZTValue::operator==;
  using ZTValue::operator!=;
  using ZTValue::operator<;
  using ZTValue::operator<=;
  using ZTValue::operator>;
  using ZTValue::operator>=;
  // Exact forms for two strings, which the text forms below would make ambiguous.
  bool operator==(const ZTString& _Str) const { return Cmp(static_cast<const ZTValue&>(_Str)) == CmpEqual; }
  bool operator!=(const ZTString& _Str) const { return Cmp(static_cast<const ZTValue&>(_Str)) != CmpEqual; }
  bool operator==(const char* _Str) const { return Cmp(_Str) == CmpEqual; }
  bool operator!=(const char* _Str) const { return Cmp(_Str) != CmpEqual; }
  bool operator<(const char* _Str) const { return Cmp(_Str) == CmpLess; }
  bool operator<=(const char* _Str) const { return ZTCompare::LessEqual(Cmp(_Str)); }
  bool operator>(const char* _Str) const { return Cmp(_Str) == CmpGreater; }
  bool operator>=(const char* _Str) const { return ZTCompare::GreaterEqual(Cmp(_Str)); }

  // Conversion (the format is not used).
  int GetInt(const char* _Format = nullptr) const;
  int ConvertIntoInt(const char* _Format = nullptr) const { return GetInt(_Format); }
  // The text read as a boolean under the ZTBool format; false when null.
  bool GetBool(const char* _Format = nullptr) const;
  bool ConvertToBool(const char* _Format = nullptr) const { return GetBool(_Format); }
  double GetDouble(const char* _Format = nullptr) const;
  double GetReal(const char* _Format = nullptr) const { return GetDouble(_Format); }
  double ConvertIntoDouble(const char* _Format = nullptr) const { return GetDouble(_Format); }
  double ConvertIntoReal(const char* _Format = nullptr) const { return GetDouble(_Format); }
  unsigned int GetHashValue() const { return HasText() ? ZTHashText(m_Val) : 0; }

  // Formatting; returns the number of characters.
  int Format(const char* _FormatStr, ...) __attribute__((format(printf, 2, 3)));
  int VFormat(const char* _FormatStr, va_list _Args);

  // Library-wide constants: an empty (not null) string and a single blank.
  static const ZTString& Empty();
  static const ZTString& EmptyString() { return Empty(); }
  static const ZTString& GetEmptyString() { return Empty(); }
  static const ZTString& Space();

 protected:
  void Clear() override;

 private:
  // Header of a representation; the characters follow it in the same block.
  struct Rep {
    std::int32_t m_RefCount;
    std::uint8_t m_Shareable;
    std::uint8_t m_Reserved[3];
    std::uint32_t m_DataLength;
    std::uint32_t m_Capacity;
    char* Text() { return reinterpret_cast<char*>(this + 1); }
  };
  static_assert(sizeof(Rep) == 16, "representation header must be 16 bytes");

  Rep* GetRep() const { return m_Val ? reinterpret_cast<Rep*>(m_Val) - 1 : nullptr; }
  bool HasText() const { return m_Val && !IsFlagSet(FlagNull) && GetRep()->m_DataLength; }
  static Rep* AllocRep(std::uint64_t _Len);
  // Representations of the library-wide constants live in static storage with
  // this count: they are never counted, so copies on any thread may share them,
  // and every change of a string takes a private copy first.
  static constexpr std::int32_t StaticRefCount = 0x40000000;
  static void AttachRep(Rep* _Rep) {
    if (_Rep->m_RefCount < StaticRefCount) ++_Rep->m_RefCount;
  }
  static void ReleaseRep(Rep* _Rep) {
    if (_Rep && _Rep->m_RefCount < StaticRefCount && --_Rep->m_RefCount < 1) FreeRep(_Rep);
  }
  static void FreeRep(Rep* _Rep);
  void Release() {
    ReleaseRep(GetRep());
    m_Val = nullptr;
  }
  // Expects a string without representation.
  void ShareFrom(const ZTString& _Src) {
    Rep* rep = _Src.GetRep();
    if (rep && rep->m_Shareable) {
      AttachRep(rep);
      m_Val = _Src.m_Val;
    } else if (rep) {
      CopyFrom(_Src);
    }
  }
  void CopyFrom(const ZTString& _Src);
  void MakeOwn();
  void Store(const char* _Str, unsigned int _Len);
  void Splice(unsigned int _Pos, unsigned int _Count, const char* _Str, unsigned int _Len);
  void InsertText(unsigned int _Pos, const char* _Str, unsigned int _Len);
  bool SameText(const char* _Str, int _Len) const;
  void ChangeCase(int _Idx, int (*_Convert)(int));
  void TrimTo(unsigned int _Start, unsigned int _End);
  int SplitAt(ZTTPArray<ZTString>& _Array, const char* _Seps) const;
  friend struct ZTStringStatics;

  char* m_Val = nullptr;
  unsigned int m_TextLimit = NoLimit;
};

// Concatenation: a copy of the left operand with the right one appended.
ZTString operator+(const ZTString& _S1, const ZTString& _S2);
ZTString operator+(const ZTString& _S1, char _Ch);
ZTString operator+(const ZTString& _S1, const char* _S2);
ZTString operator+(const char* _S1, const ZTString& _S2);
ZTString operator+(char _Ch, const ZTString& _S2);

inline bool operator==(const char* _S1, const ZTString& _S2) { return _S2 == _S1; }
inline bool operator!=(const char* _S1, const ZTString& _S2) { return _S2 != _S1; }

// A pointer array of strings with its own class type.
class ZTStringArray : public ZTTPArray<ZTString> {
  ZT_DECLARE_CLASS(ZTStringArray, ZTObjectCreator)

 public:
  explicit ZTStringArray(int _Grow = DefaultSize) : ZTTPArray<ZTString>(_Grow) {}
  ZTStringArray(const ZTStringArray& _Src) = default;
};
