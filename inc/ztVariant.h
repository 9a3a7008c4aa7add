// A value that holds another value of any value class.
#pragma once

#include "ztcurrency.h"
#include "ztstring.h"
#include "zttypes.h"
#include "ztvalue.h"

// Holds one value of any value class, shared by reference count, together with
// that value's class type. The variant prints, compares and is null like the
// value it holds; a variant holding nothing is empty (and null).
//
// Typed access comes in two kinds: the const accessors hand out the held value
// only when it already is of the requested class (or derived) and throw
// otherwise; the non-const ones convert the held value in place into a new
// value of that class first. A conversion that fails leaves the variant as it
// was.
//
// Copies share the held value. A copy of a variant made to be held (the
// constructors and setters that take a clone) shares the other variant's held
// value instead of nesting one variant inside another. A variant never holds
// itself, directly or through other variants: that is refused.
class ZTVariant : public ZTValue {
  ZT_DECLARE_CLASS(ZTVariant, ZTValueCreator)

 public:
  static const char m_ZTType[];

  ZTVariant() = default;
  // Holds _Value itself (nothing for null).
  explicit ZTVariant(ZTValue* _Value);
  // Hold a clone of _Value (nothing for null).
  explicit ZTVariant(const ZTValue* _Value);
  explicit ZTVariant(const ZTValue& _Value);
  // Shares the other's held value.
  ZTVariant(const ZTVariant& _Src);
  ~ZTVariant() override;

  ZTVariant& operator=(const ZTVariant& _Src) {
    SetValue(static_cast<const ZTValue&>(_Src));
    return *this;
  }
  ZTVariant& operator=(const ZTValue& _Value) {
    SetValue(_Value);
    return *this;
  }
  ZTVariant& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }

  // Holding. Each returns this and sets the type to the held value's class
  // type; setting the value already held does nothing. A null pointer leaves
  // the variant holding nothing, without a type.
  // Holds a clone when _Value is an automatic object, else _Value itself.
  virtual ZTValue* SetValue(ZTValue& _Value);
  // Holds _Value itself.
  virtual ZTValue* SetValue(ZTValue* _Value);
  // Holds a clone.
  virtual ZTValue* SetValue(const ZTValue* _Value);
  // The held value (null when none).
  virtual const ZTValue* GetValue() const;
  virtual ZTValue* GetValue();
  using ZTValue::GetValue;
  // The held value; there must be one.
  const ZTValue& Value() const;
  ZTValue& Value();
  using ZTValue::Value;

  // The class type of the held value. SetType converts the held value into a
  // new value of another class (a null one when nothing is held); the class
  // type already set changes nothing.
  void SetType(const ZTClassType* _VarType);
  const ZTClassType* GetType() const { return m_Type; }
  // True when the type is _VarType or derived from it.
  bool IsType(const ZTClassType* _VarType) const;
  // The class name of the type, empty without type.
  const char* TypeName() const;
  // A copy converted to _VarType; this variant is left as it is.
  ZTVariant Variant(const ZTClassType* _VarType) const;
  using ZTValue::Variant;

  // Each holds a new non-null value of its class.
  void SetBool(bool _Val);
  void SetInt(int _Val);
  void SetDouble(double _Val);

  // The held value converted into a temporary ZTBool, ZTInteger or ZTReal;
  // false, 0 or 0.0 when that is null. The held value is not changed.
  bool GetBool() const;
  int GetInt() const;
  double GetDouble() const;

  // The held value when it is of the class; else a ZTExcept
  // "Unable to return value as '...'.".
  const ZTBool& GetBoolean() const;
  const ZTInteger& GetInteger() const;
  const ZTReal& GetReal() const;
  const ZTCurrency& GetCurrency() const;
  const ZTDate& GetDate() const;
  const ZTTime& GetTime() const;
  const ZTTimestamp& GetTimestamp() const;
  const ZTString& GetString() const;
  const ZTBool& Boolean() const { return GetBoolean(); }
  const ZTInteger& Integer() const { return GetInteger(); }
  const ZTReal& Real() const { return GetReal(); }
  const ZTCurrency& Currency() const { return GetCurrency(); }
  const ZTDate& Date() const { return GetDate(); }
  const ZTTime& Time() const { return GetTime(); }
  const ZTTimestamp& Timestamp() const { return GetTimestamp(); }
  // The held value's text under the format; throws when nothing is held.
  ZTString String(const char* _Format = nullptr) const;

  // The held value, made a value of the class first when it is not one.
  ZTBool& GetBoolean();
  ZTInteger& GetInteger();
  ZTReal& GetReal();
  ZTCurrency& GetCurrency();
  ZTDate& GetDate();
  ZTTime& GetTime();
  ZTTimestamp& GetTimestamp();
  // With nothing held, an empty string is held first.
  ZTString& GetString();
  ZTBool& Boolean() { return GetBoolean(); }
  ZTInteger& Integer() { return GetInteger(); }
  ZTReal& Real() { return GetReal(); }
  ZTCurrency& Currency() { return GetCurrency(); }
  ZTDate& Date() { return GetDate(); }
  ZTTime& Time() { return GetTime(); }
  ZTTimestamp& Timestamp() { return GetTimestamp(); }
  ZTString& String() { return GetString(); }

  // Value protocol. Null: nothing held or the held value is null. Empty:
  // nothing held (SetEmpty releases the held value and keeps the type).

  // Takes over the held value of another variant (which _Src must be).
  void Copy(const ZTObject* _Src) override;
  const char* GetTypeName() const override;
  // Nulls the held value, which copies of the variant share. A tracked
  // variant nulls a copy of it instead: its recorded original shares it too.
  void SetNull() override;
  bool IsNull() const override;
  void SetEmpty() override;
  bool IsEmpty() const override;
  using ZTValue::SetValue;
  // Takes over the held value of another variant, else holds a clone.
  ZTValue* SetValue(const ZTValue& _Value) override;
  // Both hold a new ZTString with the text (the format is not used).
  const ZTString& SetString(const ZTString& _Str, const char* _Format = nullptr) override;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  // The held value's text (GetString() without argument is the held string).
  ZTString GetString(const char* _Format) const override;
  // The held value's text; the empty text when nothing is held.
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  // The held value's native bytes; 0 when nothing is held.
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;

 private:
  // Every change of the held value and type goes through here.
  void Hold(ZTValue* _Value, const ZTClassType* _Type);
  void Hold(ZTValue* _Value);
  // Holds what a clone of _Value would hold.
  void HoldCopyOf(const ZTValue& _Value);
  // Holds a new value of _VarType made from the held value.
  void Convert(const ZTClassType* _VarType);
  // True when _Value is this variant or holds it, directly or through others.
  bool IsHeldBy(const ZTValue* _Value) const;
  template <class T>
  const T* HeldAs() const;
  template <class T>
  T& ConvertedTo();

  const ZTClassType* m_Type = nullptr;
  ZTValue* m_Value = nullptr;
};
