// The value protocol shared by every typed value, creation of values by type
// name, and the value container.
#pragma once

#include "ztcont.h"
#include "ztobject.h"
#include "ztparams.h"  // ZTValueArray, the list of the value container

class ZTString;
class ZTValue;
class ZTDirtyHandler;
class ZTValueState;
class ZTVariant;

// Creators of the value family: registered under class name and type name.
class ZTValueCreator : public ZTFamilyCreator<ZTValue> {
 public:
  using ZTFamilyCreator::ZTFamilyCreator;
};

// Base of every typed value: null state, text conversion, four-way comparison,
// raw access and the hooks of change tracking.
class ZTValue : public ZTObject {
  ZT_DECLARE_CLASS(ZTValue, ZTValueCreator)
  ZT_DECLARE_ALLOCATOR(ZTMemCatValue)

 public:
  // Bits of the flag word owned by the value protocol.
  enum : unsigned long {
    FlagNull = 0x0100,
    FlagDirty = 0x0200,              // only for values without a dirty handler
    FlagUseDirtyFunction = 0x0400,
    FlagOriginDataSource = 0x0800,
    FlagUsed = 0x1000,
    FlagHasValueParts = 0x2000,
    FlagHasDirtyHandler = 0x4000
  };
  // Options of Reset.
  enum : unsigned long {
    ResetSetNull = 0x2,
    ResetUseDirtyFunction = 0x4,
    ResetOriginDataSource = 0x100
  };

  static const char m_ZTType[];

  ZTValue();
  ZTValue(const ZTValue& _Src);
  ~ZTValue() override;

  ZTCmpResult Cmp(const ZTObject* _Obj) const override;

  virtual const char* GetTypeName() const;
  virtual bool IsNative() const;
  virtual bool IsOriginDataSource() const;
  virtual bool IsUsed() const;
  virtual void Reset(unsigned long _Options);
  virtual void SetUseDirtyFunction(bool _Use);
  virtual bool UseDirtyFunction() const;
  virtual void SetDirtyHandler(ZTDirtyHandler* _Handler);
  virtual ZTDirtyHandler* GetDirtyHandler() const;
  virtual void SetValueState(ZTValueState* _State);
  virtual ZTValueState* GetValueState();
  virtual const ZTValueState* GetValueState() const;
  virtual void SetDirty();
  virtual bool IsDirty() const;
  virtual void Clean();
  virtual void Changed();
  virtual void SetOrgValue(ZTValue* _OrgValue);
  virtual ZTValue* GetOrgValue() const;
  virtual void RestoreToOrgValue();
  virtual void SetNull();
  virtual bool IsNull() const;
  virtual bool IsValid() const;
  virtual void SetEmpty();
  virtual bool IsEmpty() const;
  virtual ZTValue* SetValue(const char* _Name, const ZTValue& _Value);
  virtual ZTValue* SetValue(const ZTValue& _Value);
  virtual ZTValue* GetValue(int _Idx, const char* _Name);
  virtual const ZTValue* GetValue(int _Idx, const char* _Name) const;
  virtual ZTValue* GetValue(const char* _Name);
  virtual const ZTValue* GetValue(const char* _Name) const;
  virtual ZTValue* GetValueByName(const char* _Name, int _Idx = 0);
  virtual const ZTValue* GetValueByName(const char* _Name, int _Idx = 0) const;
  // The sub-value that GetValue yields, held by a variant (empty and a
  // warning when there is none): the const forms hold a copy of it.
  virtual ZTVariant Variant(int _Idx, const char* _Name) const;
  virtual ZTVariant Variant(int _Idx, const char* _Name);
  virtual ZTVariant Variant(const char* _Name) const;
  virtual ZTVariant Variant(const char* _Name);
  virtual const ZTString& SetString(const ZTString& _Str, const char* _Format = nullptr);
  virtual const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr);
  virtual ZTString GetString(const char* _Format = nullptr) const;
  virtual ZTString GetStringByName(const char* _Name, const char* _Format = nullptr) const;
  virtual ZTString GetStringByIndexAndName(int _Idx, const char* _Name,
                                           const char* _Format = nullptr) const;
  virtual const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const;
  virtual char* GetStringVal(char* _Buffer, unsigned int _Len) const;
  virtual unsigned int Get(void* _Buffer, unsigned int _Size) const;
  virtual ZTCmpResult Cmp(const ZTValue& _Value) const;

  ZTString String(const char* _Format = nullptr) const;
  ZTValue& Value(const char* _Name);
  const ZTValue& Value(const char* _Name) const;
  ZTValue& Value(int _Idx, const char* _Name);
  const ZTValue& Value(int _Idx, const char* _Name) const;

  ZTValue& operator=(const ZTValue& _Value) {
    SetValue(_Value);
    return *this;
  }
  ZTValue& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }

  bool operator==(const ZTValue& _Value) const { return ZTCompare::Equal(Cmp(_Value)); }
  bool operator!=(const ZTValue& _Value) const { return ZTCompare::NotEqual(Cmp(_Value)); }
  bool operator<(const ZTValue& _Value) const { return ZTCompare::Less(Cmp(_Value)); }
  bool operator<=(const ZTValue& _Value) const { return ZTCompare::LessEqual(Cmp(_Value)); }
  bool operator>(const ZTValue& _Value) const { return ZTCompare::Greater(Cmp(_Value)); }
  bool operator>=(const ZTValue& _Value) const { return ZTCompare::GreaterEqual(Cmp(_Value)); }

  // A library-wide constant null value.
  static const ZTValue& NullValue();

 protected:
  // A null value does what SetNull does.
  void Clear() override;
  // Called by every store before the stored value changes.
  bool IsTracked() const { return (GetFlags() & (FlagHasDirtyHandler | FlagUseDirtyFunction)) != 0; }
  // Precondition of Copy: the source is of exactly this class.
  void CheckCopySource(const ZTObject* _Src) const;
  // Cmp(const ZTObject*) of the value classes: the object must be of this
  // class or a base; values compare through Cmp(const ZTValue&).
  ZTCmpResult CmpKindOf(const ZTObject* _Obj) const;

 private:
  void NotifyState();
  // Notification 16 with the entry "Action"; false when the value claims
  // handlers that cannot be found.
  bool NotifyAction(const char* _Action);
  ZTValueState* m_ValueState = nullptr;
};

// A value that holds an ordered list of values. Its text form joins the
// texts of the values with ";".
class ZTValueContainer : public ZTValue {
  ZT_DECLARE_CLASS(ZTValueContainer, ZTValueCreator)

 public:
  static const char m_ZTType[];

  explicit ZTValueContainer(int _Grow = ZTPArray::DefaultSize);
  ZTValueContainer(const ZTValueContainer& _Src);
  ~ZTValueContainer() override;

  const char* GetTypeName() const override;
  void SetNull() override;
  bool IsNull() const override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  using ZTValue::Get;

  virtual int Add(const ZTValue& _Value);
  virtual int Add(const ZTValue* _Value);
  virtual int Add(const ZTValueContainer& _Other);
  virtual ZTValueArray& GetObjects();
  virtual const ZTValueArray& GetObjects() const;
  using ZTValue::Reset;
  virtual void Reset();
  virtual int GetCount() const;
  virtual int Append(const ZTValue& _Value);
  virtual int Append(const ZTValue* _Value);
  virtual int Insert(int _Idx, const ZTValue& _Value);
  virtual int Insert(int _Idx, const ZTValue* _Value);
  virtual int Set(int _Idx, const ZTValue& _Value);
  virtual int Set(int _Idx, const ZTValue* _Value);
  virtual const ZTValue* Get(int _Idx) const;
  virtual ZTValue* Get(int _Idx);
  virtual void Remove(int _Idx);
  virtual int Index(const ZTValue& _Value) const;
  virtual int Index(const ZTValue* _Value) const;

  ZTValueContainer& operator=(const ZTValue& _Value) {
    SetValue(_Value);
    return *this;
  }
  ZTValueContainer& operator=(const ZTValueContainer& _Value) {
    SetValue(_Value);
    return *this;
  }

 private:
  ZTValueArray m_Values;
};
