// Scalar values (boolean, integer, real, character, binary) and the object
// pointer holder.
#pragma once

#include "ztstring.h"
#include "ztvalue.h"

// ---------------------------------------------------------------------------
// ZTBool

// A boolean value. Its text forms are chosen by a "formatting information"
// text: "true"/"false" by default, "T|F" or "T|F|N" for own words, ".t." and
// friends for single letters, "#" for 1/0.
class ZTBool : public ZTValue {
  ZT_DECLARE_CLASS(ZTBool, ZTValueCreator)

 public:
  static const char m_ZTType[];
  static const char s_True[];   // "true"
  static const char s_False[];  // "false"

  ZTBool() = default;
  explicit ZTBool(bool _Val);
  ZTBool(const ZTBool& _Src) = default;

  void Set(bool _Val);
  void Set(const ZTBool& _Val);
  ZTBool& operator=(bool _Val) {
    Set(_Val);
    return *this;
  }
  ZTBool& operator=(const ZTBool& _Val) {
    Set(_Val);
    return *this;
  }
  ZTBool& operator=(const ZTValue& _Val) {
    SetValue(_Val);
    return *this;
  }
  using ZTValue::operator=;

  bool GetBool() const { return m_Val; }
  bool IsTrue() const { return m_Val; }
  // True when null or false.
  bool IsFalse() const { return !m_Val; }
  operator bool() const { return m_Val; }

  // Non-null constants.
  static ZTBool True() { return ZTBool(true); }
  static ZTBool False() { return ZTBool(false); }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  bool m_Val = false;
};

// ---------------------------------------------------------------------------
// ZTInteger

// A 32-bit signed integer value. Arithmetic wraps around like the machine's
// 32-bit arithmetic; division by zero is refused.
class ZTInteger : public ZTValue {
  ZT_DECLARE_CLASS(ZTInteger, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTInteger() = default;
  explicit ZTInteger(int _Val);
  ZTInteger(const ZTInteger& _Src) = default;

  void Set(int _Val);
  void Set(const ZTInteger& _Val);
  ZTInteger& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTInteger& operator=(const ZTInteger& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  int GetInt() const { return m_Val; }
  operator int() const { return m_Val; }
  double GetDouble() const { return m_Val; }

  // Prefix forms change the value; postfix forms return a copy holding the
  // value plus or minus one and leave this value as it is.
  ZTInteger& operator++();
  ZTInteger& operator--();
  ZTInteger operator++(int) const;
  ZTInteger operator--(int) const;
  // Each replaces the stored value by the result.
  ZTInteger& operator~();
  ZTInteger& operator!();
  ZTInteger& operator-();
  ZTInteger& operator+();

  ZTInteger& operator*=(int _Val);
  ZTInteger& operator/=(int _Val);
  ZTInteger& operator%=(int _Val);
  ZTInteger& operator+=(int _Val);
  ZTInteger& operator-=(int _Val);
  ZTInteger& operator<<=(int _Val);
  ZTInteger& operator>>=(int _Val);
  ZTInteger& operator&=(int _Val);
  ZTInteger& operator|=(int _Val);
  ZTInteger& operator^=(int _Val);
  ZTInteger& operator*=(const ZTInteger& _Val) { return *this *= _Val.m_Val; }
  ZTInteger& operator/=(const ZTInteger& _Val) { return *this /= _Val.m_Val; }
  ZTInteger& operator%=(const ZTInteger& _Val) { return *this %= _Val.m_Val; }
  ZTInteger& operator+=(const ZTInteger& _Val) { return *this += _Val.m_Val; }
  ZTInteger& operator-=(const ZTInteger& _Val) { return *this -= _Val.m_Val; }
  ZTInteger& operator<<=(const ZTInteger& _Val) { return *this <<= _Val.m_Val; }
  ZTInteger& operator>>=(const ZTInteger& _Val) { return *this >>= _Val.m_Val; }
  ZTInteger& operator&=(const ZTInteger& _Val) { return *this &= _Val.m_Val; }
  ZTInteger& operator|=(const ZTInteger& _Val) { return *this |= _Val.m_Val; }
  ZTInteger& operator^=(const ZTInteger& _Val) { return *this ^= _Val.m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  int m_Val = 0;
};

// ---------------------------------------------------------------------------
// ZTReal

// A double value. Text without a format accepts the decimal comma; "#"
// formats group the digits with the user's monetary separators.
class ZTReal : public ZTValue {
  ZT_DECLARE_CLASS(ZTReal, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTReal() = default;
  explicit ZTReal(double _Val);
  ZTReal(const ZTReal& _Src) = default;

  void Set(double _Val);
  void Set(const ZTReal& _Val);
  ZTReal& operator=(double _Val) {
    Set(_Val);
    return *this;
  }
  ZTReal& operator=(const ZTReal& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  operator double() const { return m_Val; }
  double GetDouble() const { return m_Val; }
  // Truncated toward zero; values beyond the integer range saturate, NaN gives 0.
  int GetInt() const;

  ZTReal& operator++();
  ZTReal& operator--();
  ZTReal operator++(int) const;
  ZTReal operator--(int) const;
  // 1.0 when the value is 0.0, else 0.0; replaces the stored value.
  ZTReal& operator!();
  ZTReal& operator-();
  ZTReal& operator+();

  ZTReal& operator*=(double _Val);
  ZTReal& operator/=(double _Val);
  ZTReal& operator+=(double _Val);
  ZTReal& operator-=(double _Val);
  ZTReal& operator*=(const ZTReal& _Val) { return *this *= _Val.m_Val; }
  ZTReal& operator/=(const ZTReal& _Val) { return *this /= _Val.m_Val; }
  ZTReal& operator+=(const ZTReal& _Val) { return *this += _Val.m_Val; }
  ZTReal& operator-=(const ZTReal& _Val) { return *this -= _Val.m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  double m_Val = 0.0;
};

// ---------------------------------------------------------------------------
// ZTCharacter

// One 8-bit signed character.
class ZTCharacter : public ZTValue {
  ZT_DECLARE_CLASS(ZTCharacter, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTCharacter() = default;
  explicit ZTCharacter(char _Val);
  explicit ZTCharacter(int _Val);
  ZTCharacter(const ZTCharacter& _Src) = default;

  // Keeps the low 8 bits.
  void Set(int _Val);
  void Set(const ZTCharacter& _Val);
  ZTCharacter& operator=(char _Val) {
    Set(_Val);
    return *this;
  }
  ZTCharacter& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTCharacter& operator=(const ZTCharacter& _Val) {
    Set(_Val);
    return *this;
  }
  using ZTValue::operator=;

  char GetChar() const { return m_Val; }
  int GetInt() const { return m_Val; }
  operator char() const { return m_Val; }
  operator int() const { return m_Val; }

  // Value protocol.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  char m_Val = 0;
};

// ---------------------------------------------------------------------------
// ZTBinary

// A block of bytes; its text form is two hexadecimal digits per byte. Two
// binaries order byte by byte, a shorter one before a longer one it starts.
class ZTBinary : public ZTValue {
  ZT_DECLARE_CLASS(ZTBinary, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTBinary() = default;
  ZTBinary(const void* _Data, unsigned int _Len);
  ZTBinary(const ZTBinary& _Src);
  ~ZTBinary() override;

  // Copies _Len bytes (zeros when _Data is null); 0 leaves no data.
  void Set(const void* _Data, unsigned int _Len);
  void Set(const ZTBinary& _Src);
  ZTBinary& operator=(const ZTBinary& _Src) {
    Set(_Src);
    return *this;
  }
  using ZTValue::operator=;
  // Appends _Len bytes (zeros when _Data is null).
  void AppendData(void* _Data, unsigned int _Len);

  // The bytes (null without data) and their count.
  const void* GetData() const { return m_Data; }
  void* GetData() { return m_Data; }
  unsigned int GetLength() const { return m_Len; }

  // Value protocol. Get copies at most _Size bytes and returns the length.
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  void SetEmpty() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  // Replaces the bytes by a block the value now owns (tracked as a store).
  void Adopt(unsigned char* _Data, unsigned int _Len);

  unsigned char* m_Data = nullptr;
  unsigned int m_Len = 0;
};

// ---------------------------------------------------------------------------
// ZTPointer

// Holds an object pointer and, unless the object is automatic, a reference on
// it. Holders compare equal only when they hold the same object.
class ZTPointer {
 public:
  explicit ZTPointer(ZTObject* _Obj = nullptr);
  ZTPointer(const ZTPointer& _Src);
  ~ZTPointer();

  void SetObject(ZTObject* _Obj);
  ZTPointer& operator=(ZTObject* _Obj) {
    SetObject(_Obj);
    return *this;
  }
  ZTPointer& operator=(const ZTPointer& _Src) {
    SetObject(_Src.m_Object);
    return *this;
  }

  ZTObject* GetObject() { return m_Object; }
  const ZTObject* GetObject() const { return m_Object; }
  operator ZTObject*() const { return m_Object; }
  // Both require an object.
  ZTObject* operator->() const;
  ZTObject& operator*() const;
  // True when the holder keeps a reference on its object.
  bool IsCounted() const { return m_Counted; }

  ZTCmpResult Cmp(const ZTPointer& _Ptr) const;
  ZTCmpResult Cmp(const ZTObject* _Obj) const;
  bool operator==(const ZTPointer& _Ptr) const { return ZTCompare::Equal(Cmp(_Ptr)); }
  bool operator!=(const ZTPointer& _Ptr) const { return ZTCompare::NotEqual(Cmp(_Ptr)); }
  bool operator<(const ZTPointer& _Ptr) const { return ZTCompare::Less(Cmp(_Ptr)); }
  bool operator<=(const ZTPointer& _Ptr) const { return ZTCompare::LessEqual(Cmp(_Ptr)); }
  bool operator>(const ZTPointer& _Ptr) const { return ZTCompare::Greater(Cmp(_Ptr)); }
  bool operator>=(const ZTPointer& _Ptr) const { return ZTCompare::GreaterEqual(Cmp(_Ptr)); }

 private:
  void Release();

  ZTObject* m_Object = nullptr;
  bool m_Counted = true;
};
