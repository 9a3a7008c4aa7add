// The variant value, and the variant access of every value.
#include "ztVariant.h"

#include <memory>

#include "zttypes_internal.h"

namespace {

// Releases one reference when it goes out of scope, so that a value made for
// the variant is freed when holding it fails.
struct DetachRef {
  void operator()(const ZTValue* _Value) const { _Value->Detach(); }
};
using ValueRef = std::unique_ptr<ZTValue, DetachRef>;

ValueRef Attached(ZTValue* _Value) {
  if (_Value) _Value->Attach();
  return ValueRef(_Value);
}

ZTValue* CloneOf(const ZTValue& _Value) {
  ZTValue* clone = ZTDynamicCastT<ZTValue>(_Value.Clone());
  ZT_COND_CHECK_MSG(clone != NULL, "Unable to clone value.");
  return clone;
}

const char* TextOrEmpty(const char* _Text) { return _Text ? _Text : ""; }

}  // namespace

const char ZTVariant::m_ZTType[] = "variant";
ZT_IMPLEMENT_CLASS(ZTVariant, ZTValue, ZTValueCreator, ZTVariant::m_ZTType)

ZTVariant::ZTVariant(ZTValue* _Value) { Hold(_Value); }

ZTVariant::ZTVariant(const ZTValue* _Value) {
  if (_Value) HoldCopyOf(*_Value);
}

ZTVariant::ZTVariant(const ZTValue& _Value) { HoldCopyOf(_Value); }

ZTVariant::ZTVariant(const ZTVariant& _Src) : ZTValue(_Src) { Hold(_Src.m_Value, _Src.m_Type); }

ZTVariant::~ZTVariant() {
  if (m_Value) m_Value->Detach();
}

// ---------------------------------------------------------------------------
// Holding

bool ZTVariant::IsHeldBy(const ZTValue* _Value) const {
  while (_Value) {
    if (_Value == this) return true;
    const ZTVariant* variant = ZTDynamicCastT<ZTVariant>(_Value);
    _Value = variant ? variant->m_Value : nullptr;
  }
  return false;
}

void ZTVariant::Hold(ZTValue* _Value, const ZTClassType* _Type) {
  if (_Value != m_Value) {
    // Taken first: a fresh value is freed again if anything below throws.
    ValueRef held = Attached(_Value);
    // A variant that holds itself would recurse without end when asked
    // whether it is null or for its text, and would never be freed.
    ZT_COND_CHECK_MSG(!IsHeldBy(_Value), "A variant cannot hold itself.");
    SetDirty();
    ZTValue* const old = m_Value;
    m_Value = held.release();
    held.reset(old);  // released last: the new value may belong to the old one
    _Value ? ClearFlag(FlagNull) : SetFlag(FlagNull);
  }
  m_Type = _Type;
}

void ZTVariant::Hold(ZTValue* _Value) { Hold(_Value, _Value ? _Value->GetClassType() : nullptr); }

void ZTVariant::HoldCopyOf(const ZTValue& _Value) {
  // A clone of a variant shares its held value: share it without nesting.
  if (const ZTVariant* variant = ZTDynamicCastT<ZTVariant>(&_Value))
    Hold(variant->m_Value, variant->m_Type);
  else
    Hold(CloneOf(_Value));
}

ZTValue* ZTVariant::SetValue(ZTValue& _Value) {
  // An automatic value may end before the variant does: hold a copy of it.
  if (&_Value != m_Value && _Value.IsAutoDelete())
    HoldCopyOf(_Value);
  else
    Hold(&_Value);
  return this;
}

ZTValue* ZTVariant::SetValue(ZTValue* _Value) {
  Hold(_Value);
  return this;
}

ZTValue* ZTVariant::SetValue(const ZTValue* _Value) {
  if (_Value)
    HoldCopyOf(*_Value);
  else
    Hold(nullptr);
  return this;
}

ZTValue* ZTVariant::SetValue(const ZTValue& _Value) {
  HoldCopyOf(_Value);
  return this;
}

const ZTValue* ZTVariant::GetValue() const { return m_Value; }

ZTValue* ZTVariant::GetValue() { return m_Value; }

const ZTValue& ZTVariant::Value() const {
  ZT_COND_CHECK(m_Value != NULL);
  return *m_Value;
}

ZTValue& ZTVariant::Value() {
  ZT_COND_CHECK(m_Value != NULL);
  return *m_Value;
}

// ---------------------------------------------------------------------------
// Type

void ZTVariant::Convert(const ZTClassType* _VarType) {
  ValueRef val = Attached(ZTValueCreator::CreateObject(_VarType));
  if (!val) {
    ZTExceptCondition ex("val != NULL");
    ex.PushMsg("Condition check failed(%s)", "val != NULL");
    ex.PushMsg("\"Unable to create new value of type '%s'.\"", _VarType->GetClassName());
    ZT_RAISE(ex);
  }
  if (m_Value)
    val->SetValue(*m_Value);
  else
    val->SetNull();
  Hold(val.get());
}

void ZTVariant::SetType(const ZTClassType* _VarType) {
  ZT_COND_CHECK_MSG(_VarType != NULL, "Missing class type for variant.");
  if (_VarType != m_Type) Convert(_VarType);
}

bool ZTVariant::IsType(const ZTClassType* _VarType) const {
  return m_Type && _VarType && m_Type->IsKindOf(_VarType);
}

const char* ZTVariant::TypeName() const { return m_Type ? m_Type->GetClassName() : ""; }

ZTVariant ZTVariant::Variant(const ZTClassType* _VarType) const {
  ZTVariant copy(*this);
  copy.SetType(_VarType);
  return copy;
}

// ---------------------------------------------------------------------------
// Setters and readers

void ZTVariant::SetBool(bool _Val) { Hold(new ZTBool(_Val)); }

void ZTVariant::SetInt(int _Val) { Hold(new ZTInteger(_Val)); }

void ZTVariant::SetDouble(double _Val) { Hold(new ZTReal(_Val)); }

const char* ZTVariant::SetString(const char* _Str, int _Len, const char*) {
  Hold(new ZTString(_Str, _Len < 0 ? ZTString::NoLimit : static_cast<unsigned int>(_Len)));
  return _Str;
}

const ZTString& ZTVariant::SetString(const ZTString& _Str, const char*) {
  Hold(new ZTString(_Str));
  return _Str;
}

bool ZTVariant::GetBool() const {
  ZTBool val;
  if (m_Value) val.SetValue(*m_Value);
  return val.GetBool();
}

int ZTVariant::GetInt() const {
  ZTInteger val;
  if (m_Value) val.SetValue(*m_Value);
  return val.GetInt();
}

double ZTVariant::GetDouble() const {
  ZTReal val;
  if (m_Value) val.SetValue(*m_Value);
  return val.GetDouble();
}

// ---------------------------------------------------------------------------
// Typed access

template <class T>
const T* ZTVariant::HeldAs() const {
  return ZTDynamicCastT<T>(static_cast<const ZTObject*>(m_Value));
}

template <class T>
T& ZTVariant::ConvertedTo() {
  if (T* held = ZTDynamicCastT<T>(static_cast<ZTObject*>(m_Value))) return *held;
  Convert(T::ClassGetType());
  return static_cast<T&>(*m_Value);
}

const ZTBool& ZTVariant::GetBoolean() const {
  if (const ZTBool* held = HeldAs<ZTBool>()) return *held;
  ZT_THROW("Unable to return value as 'Bool'.");
}

const ZTInteger& ZTVariant::GetInteger() const {
  if (const ZTInteger* held = HeldAs<ZTInteger>()) return *held;
  ZT_THROW("Unable to return value as 'Integer'.");
}

const ZTReal& ZTVariant::GetReal() const {
  if (const ZTReal* held = HeldAs<ZTReal>()) return *held;
  ZT_THROW("Unable to return value as 'Float'.");
}

const ZTCurrency& ZTVariant::GetCurrency() const {
  if (const ZTCurrency* held = HeldAs<ZTCurrency>()) return *held;
  ZT_THROW("Unable to return value as 'Currency'.");
}

const ZTDate& ZTVariant::GetDate() const {
  if (const ZTDate* held = HeldAs<ZTDate>()) return *held;
  ZT_THROW("Unable to return value as 'Date'.");
}

const ZTTime& ZTVariant::GetTime() const {
  if (const ZTTime* held = HeldAs<ZTTime>()) return *held;
  ZT_THROW("Unable to return value as 'Time'.");
}

const ZTTimestamp& ZTVariant::GetTimestamp() const {
  if (const ZTTimestamp* held = HeldAs<ZTTimestamp>()) return *held;
  ZT_THROW("Unable to return value as 'Timestamp'.");
}

const ZTString& ZTVariant::GetString() const {
  if (const ZTString* held = HeldAs<ZTString>()) return *held;
  ZT_THROW("Unable to return value as 'String'.");
}

ZTString ZTVariant::String(const char* _Format) const {
  if (!m_Value) ZT_THROW("Unable to return value as 'String'.");
  return m_Value->GetString(_Format);
}

ZTBool& ZTVariant::GetBoolean() { return ConvertedTo<ZTBool>(); }

ZTInteger& ZTVariant::GetInteger() { return ConvertedTo<ZTInteger>(); }

ZTReal& ZTVariant::GetReal() { return ConvertedTo<ZTReal>(); }

ZTCurrency& ZTVariant::GetCurrency() { return ConvertedTo<ZTCurrency>(); }

ZTDate& ZTVariant::GetDate() { return ConvertedTo<ZTDate>(); }

ZTTime& ZTVariant::GetTime() { return ConvertedTo<ZTTime>(); }

ZTTimestamp& ZTVariant::GetTimestamp() { return ConvertedTo<ZTTimestamp>(); }

ZTString& ZTVariant::GetString() {
  // A copy of the library-wide empty string: holding the constant itself
  // would let callers change it through the reference returned.
  if (!m_Value) HoldCopyOf(ZTString::Empty());
  return ConvertedTo<ZTString>();
}

// ---------------------------------------------------------------------------
// Value protocol

void ZTVariant::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  SetValue(*static_cast<const ZTVariant*>(_Src));
}

const char* ZTVariant::GetTypeName() const { return m_ZTType; }

void ZTVariant::SetNull() {
  if (IsNull()) return;
  // The original a tracked variant records shares the held value: null a
  // copy instead, so that the original keeps what it held.
  if (IsTracked()) Hold(CloneOf(*m_Value));
  ZTValue::SetNull();
  m_Value->SetNull();
}

bool ZTVariant::IsNull() const { return !m_Value || m_Value->IsNull(); }

void ZTVariant::SetEmpty() { Hold(nullptr, m_Type); }

bool ZTVariant::IsEmpty() const { return !m_Value; }

ZTString ZTVariant::GetString(const char* _Format) const { return ZTValue::GetString(_Format); }

unsigned int ZTVariant::Get(void* _Buffer, unsigned int _Size) const {
  return m_Value ? m_Value->Get(_Buffer, _Size) : 0;
}

const char* ZTVariant::CopyIntoString(ZTString& _Str, const char* _Format) const {
  if (!m_Value) return zt_types::AssignText(_Str, "", 0);
  return m_Value->CopyIntoString(_Str, _Format);
}

// ---------------------------------------------------------------------------
// Variant access of every value (declared with the value protocol)

namespace {

void WarnNotFound(const ZTValue& _Owner, const char* _Name) {
  ZT_WARNING("ZTValue::Variant: Value '%s:%s' not found.", _Owner.GetClassName(),
             TextOrEmpty(_Name));
}

// The sub-value itself, so that changes through the variant reach it; a
// variant sub-value is shared as its copy would share it.
ZTVariant VariantOf(const ZTValue& _Owner, ZTValue* _Value, const char* _Name) {
  if (!_Value) {
    WarnNotFound(_Owner, _Name);
    return ZTVariant();
  }
  if (const ZTVariant* variant = ZTDynamicCastT<ZTVariant>(static_cast<ZTObject*>(_Value)))
    return *variant;
  ZTVariant result;
  result.SetValue(*_Value);
  return result;
}

// A copy of the sub-value, which the variant may change freely.
ZTVariant VariantOf(const ZTValue& _Owner, const ZTValue* _Value, const char* _Name) {
  if (!_Value) {
    WarnNotFound(_Owner, _Name);
    return ZTVariant();
  }
  return ZTVariant(_Value);
}

}  // namespace

ZTVariant ZTValue::Variant(int _Idx, const char* _Name) const {
  return VariantOf(*this, GetValue(_Idx, _Name), _Name);
}

ZTVariant ZTValue::Variant(int _Idx, const char* _Name) {
  return VariantOf(*this, GetValue(_Idx, _Name), _Name);
}

ZTVariant ZTValue::Variant(const char* _Name) const {
  return VariantOf(*this, GetValue(_Name), _Name);
}

ZTVariant ZTValue::Variant(const char* _Name) { return VariantOf(*this, GetValue(_Name), _Name); }
