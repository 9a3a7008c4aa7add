// Dirty items, the dirty handler base, the library-wide keeper of originals
// and value states.
#include "ztValDirtyHandler.h"

#include <algorithm>
#include <cstdio>
#include <functional>

#include "platform/ztplatform.h"

namespace {

// Stops re-entry of an operation from the same thread while it runs.
class BusyGuard {
 public:
  explicit BusyGuard(bool& _Busy) : m_Busy(_Busy), m_Entered(!_Busy) { m_Busy = true; }
  ~BusyGuard() {
    if (m_Entered) m_Busy = false;
  }
  BusyGuard(const BusyGuard&) = delete;
  BusyGuard& operator=(const BusyGuard&) = delete;
  bool Entered() const { return m_Entered; }

 private:
  bool& m_Busy;
  bool m_Entered;
};

// The keeper is shared by all threads, so its busy mark is per thread.
thread_local bool t_KeeperBusy = false;

}  // namespace

// ---------------------------------------------------------------------------
// ZTDirtyItem

ZT_IMPLEMENT_ABSTRACT(ZTDirtyItem, ZTObject)

ZTDirtyItem::ZTDirtyItem(ZTValue* _Value) : m_Value(_Value), m_OrgValue(nullptr), m_Flag(false) {
  ZT_COND_CHECK_MSG(m_Value != NULL, "Invalid value.");
  m_OrgValue = ZTDynamicCastT<ZTValue>(m_Value->Clone());
  ZT_COND_CHECK_MSG(m_OrgValue != NULL, "Unable to clone value.");
  m_OrgValue->Attach();
}

ZTDirtyItem::ZTDirtyItem(ZTValue* _Value, ZTValue* _OrgValue, bool _Flag)
    : m_Value(_Value), m_OrgValue(_OrgValue), m_Flag(_Flag) {
  ZT_COND_CHECK_MSG(m_Value != NULL, "Invalid value.");
  ZT_COND_CHECK_MSG(m_OrgValue != NULL, "Invalid original value.");
  m_OrgValue->Attach();
}

ZTDirtyItem::ZTDirtyItem(const ZTDirtyItem& _Src)
    : ZTObject(_Src), m_Value(_Src.m_Value), m_OrgValue(_Src.m_OrgValue), m_Flag(_Src.m_Flag) {
  if (m_OrgValue) m_OrgValue->Attach();
}

ZTDirtyItem& ZTDirtyItem::operator=(const ZTDirtyItem& _Src) {
  if (_Src.m_OrgValue) _Src.m_OrgValue->Attach();
  if (m_OrgValue) m_OrgValue->Detach();
  m_Value = _Src.m_Value;
  m_OrgValue = _Src.m_OrgValue;
  m_Flag = _Src.m_Flag;
  return *this;
}

ZTDirtyItem::~ZTDirtyItem() {
  if (m_OrgValue) m_OrgValue->Detach();
}

// ---------------------------------------------------------------------------
// ZTDirtyHandler

ZT_IMPLEMENT_ABSTRACT(ZTDirtyHandler, ZTObject)

ZTDirtyHandler::ZTDirtyHandler(const ZTDirtyHandler& _Src) : ZTObject(_Src) {
  SetPrevHandler(_Src.m_PrevHandler);
}

ZTDirtyHandler& ZTDirtyHandler::operator=(const ZTDirtyHandler& _Src) {
  SetPrevHandler(_Src.m_PrevHandler);
  return *this;
}

ZTDirtyHandler::~ZTDirtyHandler() {
  if (m_PrevHandler && m_HoldsPrev) m_PrevHandler->Detach();
}

void ZTDirtyHandler::ItsMe(ZTValue*) {}

void ZTDirtyHandler::SetPrevHandler(ZTDirtyHandler* _Handler) {
  if (_Handler == m_PrevHandler) return;
  // An automatic handler lives on its owner's stack: it is referred to, not held.
  const bool hold = _Handler && !_Handler->IsAutoDelete();
  if (hold) _Handler->Attach();
  if (m_PrevHandler && m_HoldsPrev) m_PrevHandler->Detach();
  m_PrevHandler = _Handler;
  m_HoldsPrev = hold;
}

ZTDirtyHandler* ZTDirtyHandler::GetPrevHandler() const { return m_PrevHandler; }

void ZTDirtyHandler::SetDirty(ZTValue* _Value, ZTValue* _OrgValue, bool) {
  ZT_PARAM_CHECK(_Value);
  ZT_PARAM_CHECK(_OrgValue);
  ZT_THROW("'SetDirty' has to be implemented in all derived classes.");
}

void ZTDirtyHandler::SetDirty(ZTValue* _Value, ZTValue* _OrgValue) {
  ZT_PARAM_CHECK(_Value);
  ZT_PARAM_CHECK(_OrgValue);
  ZT_THROW("'SetDirty' has to be implemented in all derived classes.");
}

void ZTDirtyHandler::SetDirty(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'SetDirty' has to be implemented in all derived classes");
}

void ZTDirtyHandler::Clean(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'Clean' has to be implemented in all derived classes.");
}

bool ZTDirtyHandler::IsDirty(const ZTValue* _Value) const {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'IsDirty' has to be implemented in all derived classes");
}

ZTValue* ZTDirtyHandler::GetOrgValue(const ZTValue* _Value) const {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'GetOrgValue' has to be implemented in all derived classes");
}

void ZTDirtyHandler::Apply(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'Apply' has to be implemented in all derived classes");
}

void ZTDirtyHandler::Restore(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_THROW("'Restore' has to be implemented in all derived classes");
}

// ---------------------------------------------------------------------------
// ZTValuesDirtyHandler

ZT_IMPLEMENT_ABSTRACT(ZTValuesDirtyHandler, ZTDirtyHandler)

ZTValuesDirtyHandler& ZTValuesDirtyHandler::GetKeeper() {
  // Never destroyed: values in static storage may still be cleaned at exit.
  static ZTValuesDirtyHandler* keeper = [] {
    auto* created = new ZTValuesDirtyHandler;
    created->Attach();
    return created;
  }();
  return *keeper;
}

void ZTValuesDirtyHandler::GlobalSetDirty(ZTValue* _Value, ZTValue* _OrgValue) {
  GetKeeper().SetDirty(_Value, _OrgValue);
}

std::vector<ZTDirtyItem*>::const_iterator ZTValuesDirtyHandler::Position(
    const ZTValue* _Value) const {
  return std::lower_bound(m_Items.begin(), m_Items.end(), _Value,
                          [](const ZTDirtyItem* _Item, const ZTValue* _Key) {
                            return std::less<const ZTValue*>()(_Item->GetValue(), _Key);
                          });
}

ZTDirtyItem* ZTValuesDirtyHandler::Find(const ZTValue* _Value) const {
  const auto it = Position(_Value);
  return it != m_Items.end() && (*it)->GetValue() == _Value ? *it : nullptr;
}

int ZTValuesDirtyHandler::AddItem(ZTDirtyItem* _Item) {
  ZT_PARAM_CHECK(_Item);
  std::lock_guard<std::mutex> lock(m_Lock);
  const auto it = Position(_Item->GetValue());
  const int index = static_cast<int>(it - m_Items.begin());
  if (it != m_Items.end() && (*it)->GetValue() == _Item->GetValue()) return index;
  _Item->Attach();
  m_Items.insert(it, _Item);
  ++m_Count;
  return index;
}

void ZTValuesDirtyHandler::Record(ZTDirtyItem* _Item) {
  ZT_PARAM_CHECK(_Item);
  _Item->Attach();  // released below unless the keeper took it as well
  try {
    AddItem(_Item);
  } catch (...) {
    _Item->Detach();
    throw;
  }
  _Item->Detach();
}

int ZTValuesDirtyHandler::GetItemCount() const { return m_Count.load(std::memory_order_relaxed); }

ZTDirtyItem* ZTValuesDirtyHandler::GetItem(const ZTValue* _Value) {
  std::lock_guard<std::mutex> lock(m_Lock);
  return Find(_Value);
}

const ZTDirtyItem* ZTValuesDirtyHandler::GetItem(const ZTValue* _Value) const {
  std::lock_guard<std::mutex> lock(m_Lock);
  return Find(_Value);
}

ZTDirtyItem* ZTValuesDirtyHandler::TakeItem(const ZTValue* _Value) {
  std::lock_guard<std::mutex> lock(m_Lock);
  const auto it = Position(_Value);
  if (it == m_Items.end() || (*it)->GetValue() != _Value) return nullptr;
  ZTDirtyItem* item = *it;
  m_Items.erase(it);
  --m_Count;
  return item;
}

bool ZTValuesDirtyHandler::Remove(const ZTValue* _Value) {
  // Released outside the lock: the original's destruction may come back here.
  ZTDirtyItem* item = TakeItem(_Value);
  if (item) item->Detach();
  return item != nullptr;
}

void ZTValuesDirtyHandler::DumpItems() const {
  std::lock_guard<std::mutex> lock(m_Lock);
  char line[160];
  for (const ZTDirtyItem* item : m_Items) {
    std::snprintf(line, sizeof(line), "ZTValuesDirtyHandler: value %p (%s), original %p\n",
                  static_cast<const void*>(item->GetValue()), item->GetValue()->GetClassName(),
                  static_cast<const void*>(item->GetOrgValue()));
    zt_platform::DebugOutput(line);
  }
}

void ZTValuesDirtyHandler::SetDirty(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  if (_Value->IsFlagSet(ZTValue::FlagDirty) || GetItem(_Value)) return;
  Record(new ZTDirtyItem(_Value));
  _Value->SetFlag(ZTValue::FlagDirty);
}

void ZTValuesDirtyHandler::SetDirty(ZTValue* _Value, ZTValue* _OrgValue) {
  ZT_PARAM_CHECK(_Value);
  ZT_PARAM_CHECK(_OrgValue);
  if (_Value->IsFlagSet(ZTValue::FlagDirty) || GetItem(_Value)) return;
  Record(new ZTDirtyItem(_Value, _OrgValue, false));
  _Value->SetFlag(ZTValue::FlagDirty);
}

void ZTValuesDirtyHandler::Clean(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  Remove(_Value);
  _Value->ClearFlag(ZTValue::FlagDirty);
}

bool ZTValuesDirtyHandler::IsDirty(const ZTValue* _Value) const { return GetItem(_Value) != nullptr; }

ZTValue* ZTValuesDirtyHandler::GetOrgValue(const ZTValue* _Value) const {
  std::lock_guard<std::mutex> lock(m_Lock);
  const ZTDirtyItem* item = Find(_Value);
  return item ? item->GetOrgValue() : nullptr;
}

void ZTValuesDirtyHandler::Apply(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_COND_CHECK_MSG(m_PrevHandler == NULL, "Previous handler has to be null");
  const BusyGuard busy(t_KeeperBusy);
  if (!busy.Entered()) return;
  Remove(_Value);
  _Value->ClearFlag(ZTValue::FlagDirty);
}

void ZTValuesDirtyHandler::Restore(ZTValue* _Value) {
  ZT_PARAM_CHECK(_Value);
  ZT_COND_CHECK_MSG(m_PrevHandler == NULL, "Previous handler has to be null");
  const BusyGuard busy(t_KeeperBusy);
  if (!busy.Entered()) return;
  ZTDirtyItem* item = TakeItem(_Value);
  try {
    if (item)
      _Value->SetValue(*item->GetOrgValue());
    else
      _Value->SetNull();
  } catch (...) {
    if (item) item->Detach();
    throw;
  }
  if (item) item->Detach();
  _Value->ClearFlag(ZTValue::FlagDirty);
}

// ---------------------------------------------------------------------------
// ZTValueState

ZT_IMPLEMENT_ABSTRACT(ZTValueState, ZTObject)

ZTValueState::ZTValueState(bool _Required, bool _Enabled, bool _Hidden) {
  if (_Required) m_State |= StateRequired;
  if (!_Enabled) m_State |= StateDisabled;
  if (_Hidden) m_State |= StateHidden;
}

void ZTValueState::ModifyState(unsigned long _Set, unsigned long _Clear) {
  if (!_Set && !_Clear) return;
  m_State = (m_State & ~(_Clear & 0xFFFFul)) | (_Set & 0xFFFFul);
}
