// The value protocol, value creation by type name and the value container.
#include "ztvalue.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "ztValDirtyHandler.h"
#include "ztstring.h"

// A general exception whose printf-style format is given as a string literal:
// the text keeps its quotation marks, the arguments are filled in.

namespace {

// Releases a reference-counted object when it goes out of scope.
struct DetachRef {
  void operator()(const ZTObject* _Obj) const {
    if (_Obj) _Obj->Detach();
  }
};
template <class T>
using HeldRef = std::unique_ptr<T, DetachRef>;

// Takes one reference on a fresh object for the scope.
template <class T>
HeldRef<T> Hold(T* _Obj) {
  if (_Obj) _Obj->Attach();
  return HeldRef<T>(_Obj);
}

ZTValue* CloneValue(const ZTValue& _Value) {
  return ZTDynamicCastT<ZTValue>(_Value.Clone());
}

// The registry of own dirty handlers. Values outlive static destruction
// order, so it is never torn down. Sized for many tracked values, since every
// store into a value with a handler looks its handler up here.
struct HandlerRegistry {
  static constexpr int Buckets = 1031;
  std::mutex m_Lock;
  ZTValueDirtyHandlerTable m_Handlers{Buckets};
};

HandlerRegistry& Registry() {
  static HandlerRegistry* registry = new HandlerRegistry;
  return *registry;
}

ZTDirtyHandler* RegisteredHandler(const ZTValue* _Value) {
  HandlerRegistry& registry = Registry();
  std::lock_guard<std::mutex> lock(registry.m_Lock);
  return registry.m_Handlers.LookUp(const_cast<ZTValue*>(_Value));
}

// Registers _Handler for the value (null unregisters). The handler it replaces
// is released outside the lock, since its destruction may release others.
void RegisterHandler(const ZTValue* _Value, ZTDirtyHandler* _Handler) {
  ZTValue* const key = const_cast<ZTValue*>(_Value);
  HandlerRegistry& registry = Registry();
  HeldRef<ZTDirtyHandler> old;
  std::lock_guard<std::mutex> lock(registry.m_Lock);
  old = Hold(registry.m_Handlers.LookUp(key));
  if (old.get() == _Handler) return;
  if (old) registry.m_Handlers.Remove(key);
  if (_Handler) ZT_COND_CHECK(registry.m_Handlers.Insert(_Handler, key));
}

// Keeps an original for the value in the library-wide keeper; an original
// recorded earlier wins.
void RecordOriginal(ZTDirtyItem* _Item) { ZTValuesDirtyHandler::GetKeeper().Record(_Item); }

void DropOriginal(const ZTValue* _Value) {
  ZTValuesDirtyHandler& keeper = ZTValuesDirtyHandler::GetKeeper();
  if (keeper.GetItemCount() > 0) keeper.Remove(_Value);
}

const char* TextOrEmpty(const char* _Text) { return _Text ? _Text : ""; }

}  // namespace

// ---------------------------------------------------------------------------
// ZTValue

const char ZTValue::m_ZTType[] = "value";
ZT_IMPLEMENT_CLASS(ZTValue, ZTObject, ZTValueCreator, ZTValue::m_ZTType)

ZTValue::ZTValue() { SetFlag(FlagNull | FlagUsed); }

// A copy is a new value: no tracking, no value parts and no handler of its own.
// The handler bit is cleared too, since no handler is registered for the copy.
ZTValue::ZTValue(const ZTValue& _Src) : ZTObject(_Src) {
  ClearFlag(FlagDirty | FlagUseDirtyFunction | FlagHasValueParts | FlagHasDirtyHandler);
}

ZTValue::~ZTValue() {
  bool dirty = IsFlagSet(FlagDirty);
  if (IsFlagSet(FlagHasDirtyHandler)) {
    if (ZTDirtyHandler* handler = RegisteredHandler(this)) dirty = dirty || handler->IsDirty(this);
    RegisterHandler(this, nullptr);
  }
  if (m_ValueState) m_ValueState->Detach();
  if (dirty) DropOriginal(this);
  ClearFlag(FlagDirty | FlagHasDirtyHandler);
}

void ZTValue::Clear() { SetNull(); }

ZTCmpResult ZTValue::Cmp(const ZTObject* _Obj) const {
  if (_Obj == this) return CmpEqual;
  if (const ZTValue* value = ZTDynamicCastT<ZTValue>(_Obj)) return Cmp(*value);
  return ZTObject::Cmp(_Obj);
}

const char* ZTValue::GetTypeName() const { return m_ZTType; }

bool ZTValue::IsNative() const { return true; }

bool ZTValue::IsOriginDataSource() const { return IsFlagSet(FlagOriginDataSource); }

bool ZTValue::IsUsed() const { return IsFlagSet(FlagUsed); }

void ZTValue::Reset(unsigned long _Options) {
  SetUseDirtyFunction((_Options & ResetUseDirtyFunction) != 0);
  if (_Options & ResetSetNull) SetNull();
  if (_Options & ResetOriginDataSource) ClearFlag(FlagOriginDataSource);
}

void ZTValue::SetUseDirtyFunction(bool _Use) {
  _Use ? SetFlag(FlagUseDirtyFunction) : ClearFlag(FlagUseDirtyFunction);
}

bool ZTValue::UseDirtyFunction() const { return IsFlagSet(FlagUseDirtyFunction); }

void ZTValue::SetDirtyHandler(ZTDirtyHandler* _Handler) {
  ZTDirtyHandler* orgHandler = GetDirtyHandler();
  if (_Handler == orgHandler) return;
  if (!_Handler) {
    ZTDirtyHandler* prev = orgHandler->GetPrevHandler();
    RegisterHandler(this, prev);
    if (!prev) ClearFlag(FlagHasDirtyHandler);
    return;
  }
  ZTDirtyHandler* prevHandler = _Handler->GetPrevHandler();
  if (!prevHandler) {
    if (orgHandler) {
      bool inChain = false;
      for (ZTDirtyHandler* h = orgHandler->GetPrevHandler(); h && !inChain; h = h->GetPrevHandler())
        inChain = h == _Handler;
      if (!inChain) _Handler->SetPrevHandler(orgHandler);
    }
  } else {
    ZT_COND_CHECK_MSG(prevHandler == NULL || prevHandler == orgHandler,
                      "Invalid dirty handler hierarchy.");
  }
  _Handler->ItsMe(this);
  RegisterHandler(this, _Handler);  // replaces (and releases) the current handler
  SetFlag(FlagHasDirtyHandler);
}

ZTDirtyHandler* ZTValue::GetDirtyHandler() const {
  return IsFlagSet(FlagHasDirtyHandler) ? RegisteredHandler(this) : nullptr;
}

void ZTValue::SetValueState(ZTValueState* _State) {
  if (_State == m_ValueState) return;
  if (_State) _State->Attach();
  if (m_ValueState) m_ValueState->Detach();
  m_ValueState = _State;
}

ZTValueState* ZTValue::GetValueState() { return m_ValueState; }

const ZTValueState* ZTValue::GetValueState() const { return m_ValueState; }

void ZTValue::NotifyState() {
  if (m_ValueState) m_ValueState->Changed();
}

// Notifications to the value's handlers ("Action" = "SetDirty", "Clean",
// "RestoreToOrg", "Changed") are sent once the parameter bag exists.
void ZTValue::SetDirty() {
  if (ZTDirtyHandler* handler = GetDirtyHandler()) {
    if (handler->IsDirty(this)) {
      NotifyState();
      return;
    }
    handler->SetDirty(this);
  } else {
    if (!UseDirtyFunction() || IsFlagSet(FlagDirty)) {
      NotifyState();
      return;
    }
    SetFlag(FlagDirty);
    if (IsDieing()) {
      NotifyState();
      return;
    }
    RecordOriginal(new ZTDirtyItem(this));
  }
  if (!NotifyAction("SetDirty")) ZT_WARNING("Inconsistent state of notification handling");
  NotifyState();
}

bool ZTValue::IsDirty() const {
  if (ZTDirtyHandler* handler = GetDirtyHandler()) return handler->IsDirty(this);
  return IsFlagSet(FlagDirty);
}

void ZTValue::Clean() {
  if (ZTDirtyHandler* handler = GetDirtyHandler()) {
    handler->Apply(this);
    return;
  }
  if (IsFlagSet(FlagDirty)) {
    DropOriginal(this);
    ClearFlag(FlagDirty);
  }
  NotifyAction("Clean");
}

void ZTValue::Changed() {
  if (!NotifyAction("Changed")) ZT_WARNING("Inconsistent state of notify handling");
}

bool ZTValue::NotifyAction(const char* _Action) {
  if (!IsFlagSet(FlagNotify)) return true;
  ZTParameter params(1);
  params.Push("Action", _Action);
  return SendNotification(16, &params);
}

void ZTValue::SetOrgValue(ZTValue* _OrgValue) {
  if (_OrgValue) {
    if (IsFlagSet(FlagDirty)) {
      // Ignored: an original nobody holds yet would otherwise be lost.
      _OrgValue->Attach();
      _OrgValue->Detach();
      return;
    }
    SetFlag(FlagDirty);
    RecordOriginal(new ZTDirtyItem(this, _OrgValue, false));
  } else {
    ClearFlag(FlagDirty);
    DropOriginal(this);
  }
}

ZTValue* ZTValue::GetOrgValue() const {
  if (ZTDirtyHandler* handler = GetDirtyHandler()) return handler->GetOrgValue(this);
  return ZTValuesDirtyHandler::GetKeeper().GetOrgValue(this);
}

void ZTValue::RestoreToOrgValue() {
  if (ZTDirtyHandler* handler = GetDirtyHandler()) {
    handler->Restore(this);
    return;
  }
  if (IsFlagSet(FlagDirty)) {
    // The record leaves the keeper before the store, which runs outside its lock.
    HeldRef<ZTDirtyItem> item(ZTValuesDirtyHandler::GetKeeper().TakeItem(this));
    if (item)
      SetValue(*item->GetOrgValue());
    else
      SetNull();
    ClearFlag(FlagDirty);
  }
  NotifyAction("RestoreToOrg");
}

void ZTValue::SetNull() {
  if (IsNull()) return;
  SetDirty();
  SetFlag(FlagNull);
}

bool ZTValue::IsNull() const { return IsFlagSet(FlagNull); }

bool ZTValue::IsValid() const { return !IsNull(); }

void ZTValue::SetEmpty() { SetNull(); }

bool ZTValue::IsEmpty() const { return IsNull(); }

ZTValue* ZTValue::SetValue(const char* _Name, const ZTValue&) {
  ZT_WARNING("ZTValue::SetValue(%s) (type = %s) called: This is not intented.", TextOrEmpty(_Name),
             GetTypeName());
  return this;
}

ZTValue* ZTValue::SetValue(const ZTValue&) {
  ZT_WARNING("ZTValue::SetValue (type = %s) called: This is not intented.", GetTypeName());
  return this;
}

const ZTValue* ZTValue::GetValue(int _Idx, const char* _Name) const {
  ZT_WARNING("ZTValue::GetValue(%d, %s) (type = %s) called: This is not intented.", _Idx,
             TextOrEmpty(_Name), GetTypeName());
  return nullptr;
}

ZTValue* ZTValue::GetValue(int _Idx, const char* _Name) {
  return const_cast<ZTValue*>(static_cast<const ZTValue*>(this)->GetValue(_Idx, _Name));
}

const ZTValue* ZTValue::GetValue(const char* _Name) const {
  ZT_WARNING("ZTValue::GetValue(%s) (type = %s) called: This is not intented.", TextOrEmpty(_Name),
             GetTypeName());
  return nullptr;
}

ZTValue* ZTValue::GetValue(const char* _Name) {
  return const_cast<ZTValue*>(static_cast<const ZTValue*>(this)->GetValue(_Name));
}

const ZTValue* ZTValue::GetValueByName(const char* _Name, int) const {
  ZT_WARNING("ZTValue::GetValueByName(%s) (type = %s) called: This is not intented.",
             TextOrEmpty(_Name), GetTypeName());
  return nullptr;
}

ZTValue* ZTValue::GetValueByName(const char* _Name, int _Idx) {
  return const_cast<ZTValue*>(static_cast<const ZTValue*>(this)->GetValueByName(_Name, _Idx));
}

const ZTString& ZTValue::SetString(const ZTString& _Str, const char* _Format) {
  SetString(static_cast<const char*>(_Str), -1, _Format);
  return _Str;
}

const char* ZTValue::SetString(const char*, int, const char*) {
  ZT_THROW_QUOTED("'SetString' of ZTValue has to be implemented by" " derived class '%s'.",
                  GetClassName());
}

ZTString ZTValue::GetString(const char* _Format) const {
  ZTString text;
  CopyIntoString(text, _Format);
  return text;
}

ZTString ZTValue::GetStringByName(const char*, const char*) const {
  ZT_THROW_QUOTED("'GetStringByName' of ZTValue has to be implemented by" " derived class '%s'.",
                  GetClassName());
}

ZTString ZTValue::GetStringByIndexAndName(int, const char*, const char*) const {
  ZT_THROW_QUOTED("'GetStringByIndexAndName' of ZTValue has to be implemented by" " derived class '%s'.",
                  GetClassName());
}

const char* ZTValue::CopyIntoString(ZTString&, const char*) const {
  ZT_THROW_QUOTED("'CopyIntoString' of ZTValue has to be implemented by" " derived class '%s'.",
                  GetClassName());
}

char* ZTValue::GetStringVal(char* _Buffer, unsigned int _Len) const {
  if (_Buffer && _Len) *_Buffer = '\0';
  if (IsNull() || !_Buffer || !_Len) return _Buffer;
  ZTString text;
  CopyIntoString(text, nullptr);
  text.Get(_Buffer, _Len);
  return _Buffer;
}

unsigned int ZTValue::Get(void*, unsigned int) const {
  ZT_THROW("Get of ZTValue has to be implemented by all derived values");
}

ZTCmpResult ZTValue::Cmp(const ZTValue& _Value) const {
  if (IsNull() && _Value.IsNull()) return CmpEqual;
  if (IsKindOf(&_Value)) return GetString().Cmp(_Value.GetString());
  HeldRef<ZTValue> clone = Hold(CloneValue(*this));
  if (!clone) return CmpNotEqual;
  clone->SetValue(_Value);
  return Cmp(*clone);
}

ZTString ZTValue::String(const char* _Format) const { return GetString(_Format); }

// A plain value has no sub-values: asking for one is a caller's error.
const ZTValue& ZTValue::Value(const char* _Name) const {
  const ZTValue* value = GetValue(_Name);
  ZT_COND_CHECK(value != NULL);
  return *value;
}

ZTValue& ZTValue::Value(const char* _Name) {
  return const_cast<ZTValue&>(static_cast<const ZTValue*>(this)->Value(_Name));
}

const ZTValue& ZTValue::Value(int _Idx, const char* _Name) const {
  const ZTValue* value = GetValue(_Idx, _Name);
  ZT_COND_CHECK(value != NULL);
  return *value;
}

ZTValue& ZTValue::Value(int _Idx, const char* _Name) {
  return const_cast<ZTValue&>(static_cast<const ZTValue*>(this)->Value(_Idx, _Name));
}

const ZTValue& ZTValue::NullValue() {
  static const ZTValue s_NullValue;
  return s_NullValue;
}

void ZTValue::CheckCopySource(const ZTObject* _Src) const {
  ZT_COND_CHECK(_Src && GetClassType() == _Src->GetClassType());
}

ZTCmpResult ZTValue::CmpKindOf(const ZTObject* _Obj) const {
  ZT_COND_CHECK(_Obj != NULL);
  ZT_COND_CHECK(IsKindOf(_Obj));
  // A base that is no value (ZTObject itself) has nothing to compare with.
  if (const ZTValue* value = ZTDynamicCastT<ZTValue>(_Obj)) return Cmp(*value);
  return ZTObject::Cmp(_Obj);
}

// ---------------------------------------------------------------------------
// ZTValueContainer

const char ZTValueContainer::m_ZTType[] = "valuecontainer";
ZT_IMPLEMENT_CLASS(ZTValueContainer, ZTValue, ZTValueCreator, ZTValueContainer::m_ZTType)

ZTValueContainer::ZTValueContainer(int _Grow) : m_Values(_Grow) {}

// Values are cloned so that a copy (an original kept for change tracking, for
// instance) does not change with the source's values.
ZTValueContainer::ZTValueContainer(const ZTValueContainer& _Src)
    : ZTValue(_Src), m_Values(_Src.m_Values.GetGrowStep()) {
  m_Values.DeepCopy(_Src.m_Values);
}

ZTValueContainer::~ZTValueContainer() = default;

const char* ZTValueContainer::GetTypeName() const { return m_ZTType; }

void ZTValueContainer::SetNull() {
  ZTValue::SetNull();
  SetFlag(FlagNull);
  m_Values.RemoveAll();
}

bool ZTValueContainer::IsNull() const { return IsFlagSet(FlagNull) && m_Values.IsEmpty(); }

ZTValue* ZTValueContainer::SetValue(const ZTValue& _Value) {
  const ZTValueContainer* other = ZTDynamicCastT<ZTValueContainer>(&_Value);
  if (!other) {
    ZT_WARNING("ZTValue::SetValue (type = %s) called: This is not intented.", GetTypeName());
    return this;
  }
  if (other->IsNull()) {
    SetNull();
    return this;
  }
  if (other != this) {
    SetDirty();
    m_Values.RemoveAll();
    m_Values.DeepCopy(other->m_Values);
  }
  ClearFlag(FlagNull);
  return this;
}

namespace {

bool IsBlank(char _Ch) { return _Ch == ' ' || _Ch == '\t' || _Ch == '\r' || _Ch == '\n'; }

}  // namespace

const char* ZTValueContainer::SetString(const char* _Str, int _Len, const char*) {
  if (!_Str) {
    SetNull();
    return nullptr;
  }
  SetDirty();
  m_Values.RemoveAll();
  const char* const end = _Str + (_Len < 0 ? std::strlen(_Str) : ::strnlen(_Str, _Len));
  for (const char* pos = _Str; pos < end;) {
    const char* itemEnd = std::find(pos, end, ';');
    const char* first = pos;
    while (first < itemEnd && IsBlank(*first)) ++first;
    const char* last = itemEnd;
    if (first < end && *first == '\'') {
      // Verbatim between the quotes; the rest up to the next ";" is not used.
      ++first;
      last = std::find(first, end, '\'');
      itemEnd = last == end ? end : std::find(last, end, ';');
    } else {
      while (last > first && IsBlank(last[-1])) --last;
    }
    const bool lastItem = itemEnd == end;
    if (!(lastItem && first == last))
      Add(new ZTString(first, static_cast<unsigned int>(last - first)));
    pos = lastItem ? end : itemEnd + 1;
  }
  return _Str;
}

const char* ZTValueContainer::CopyIntoString(ZTString& _Str, const char*) const {
  ZTString text("");
  const int last = m_Values.GetLastIndex();
  for (int i = 0; i <= last; ++i) {
    if (i > 0) text += ';';
    if (const ZTValue* value = m_Values.Get(i)) text += value->GetString();
  }
  _Str = text;
  return _Str;
}

int ZTValueContainer::Add(const ZTValue& _Value) { return Add(CloneValue(_Value)); }

int ZTValueContainer::Add(const ZTValue* _Value) {
  ClearFlag(FlagNull);
  return m_Values.Add(_Value);
}

int ZTValueContainer::Add(const ZTValueContainer& _Other) {
  int added = ZTPArray::InvalidIndex;
  const int last = _Other.m_Values.GetLastIndex();  // taken first: the other may be this container
  for (int i = 0; i <= last; ++i)
    if (const ZTValue* value = _Other.m_Values.Get(i)) added = Add(value);
  return added;
}

ZTValueArray& ZTValueContainer::GetObjects() { return m_Values; }

const ZTValueArray& ZTValueContainer::GetObjects() const { return m_Values; }

void ZTValueContainer::Reset() { SetNull(); }

int ZTValueContainer::GetCount() const { return m_Values.GetCount(); }

int ZTValueContainer::Append(const ZTValue& _Value) { return Add(_Value); }

int ZTValueContainer::Append(const ZTValue* _Value) { return Add(_Value); }

int ZTValueContainer::Insert(int _Idx, const ZTValue& _Value) {
  return Insert(_Idx, CloneValue(_Value));
}

int ZTValueContainer::Insert(int _Idx, const ZTValue* _Value) {
  ClearFlag(FlagNull);
  return m_Values.Insert(_Idx, _Value);
}

int ZTValueContainer::Set(int _Idx, const ZTValue& _Value) { return Set(_Idx, CloneValue(_Value)); }

int ZTValueContainer::Set(int _Idx, const ZTValue* _Value) {
  ClearFlag(FlagNull);
  return m_Values.Set(_Idx, _Value);
}

const ZTValue* ZTValueContainer::Get(int _Idx) const { return m_Values.Get(_Idx); }

ZTValue* ZTValueContainer::Get(int _Idx) { return m_Values.Get(_Idx); }

void ZTValueContainer::Remove(int _Idx) { m_Values.Remove(_Idx); }

int ZTValueContainer::Index(const ZTValue& _Value) const { return m_Values.Index(_Value); }

int ZTValueContainer::Index(const ZTValue* _Value) const { return m_Values.Index(_Value); }
