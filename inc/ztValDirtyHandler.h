// Dirty handlers keep the originals of changed values; value states carry the
// presentation state of a value.
#pragma once

#include <atomic>
#include <mutex>
#include <vector>

#include "zthash.h"
#include "ztvalue.h"

// One changed value and its original (held with one reference).
class ZTDirtyItem : public ZTObject {
  ZT_DECLARE_ABSTRACT(ZTDirtyItem)

 public:
  // Keeps a clone of the value as it is now.
  explicit ZTDirtyItem(ZTValue* _Value);
  // Keeps the given original.
  ZTDirtyItem(ZTValue* _Value, ZTValue* _OrgValue, bool _Flag);
  ZTDirtyItem(const ZTDirtyItem& _Src);
  ZTDirtyItem& operator=(const ZTDirtyItem& _Src);
  ~ZTDirtyItem() override;

  ZTValue* GetValue() const { return m_Value; }
  ZTValue* GetOrgValue() const { return m_OrgValue; }
  bool GetFlag() const { return m_Flag; }

 private:
  ZTValue* m_Value;     // not owned
  ZTValue* m_OrgValue;  // one reference
  bool m_Flag;
};

// Base of the handlers that keep originals of values. It implements none of
// the tracking operations: each throws.
class ZTDirtyHandler : public ZTObject {
  ZT_DECLARE_ABSTRACT(ZTDirtyHandler)

 public:
  ZTDirtyHandler() = default;
  ZTDirtyHandler(const ZTDirtyHandler& _Src);
  ZTDirtyHandler& operator=(const ZTDirtyHandler& _Src);
  ~ZTDirtyHandler() override;

  // Told when the handler is registered for a value.
  virtual void ItsMe(ZTValue* _Value);
  virtual void SetPrevHandler(ZTDirtyHandler* _Handler);
  virtual ZTDirtyHandler* GetPrevHandler() const;
  virtual void SetDirty(ZTValue* _Value, ZTValue* _OrgValue, bool _Flag);
  virtual void SetDirty(ZTValue* _Value, ZTValue* _OrgValue);
  virtual void SetDirty(ZTValue* _Value);
  virtual void Clean(ZTValue* _Value);
  virtual bool IsDirty(const ZTValue* _Value) const;
  virtual ZTValue* GetOrgValue(const ZTValue* _Value) const;
  virtual void Apply(ZTValue* _Value);
  virtual void Restore(ZTValue* _Value);

 protected:
  ZTDirtyHandler* m_PrevHandler = nullptr;
  bool m_HoldsPrev = true;
  bool m_Busy = false;
};

// The library-wide keeper of originals for values without an own handler.
// Items are sorted by value address; one lock guards every operation.
class ZTValuesDirtyHandler : public ZTDirtyHandler {
  ZT_DECLARE_ABSTRACT(ZTValuesDirtyHandler)

 public:
  // The keeper; it lives for the whole process.
  static ZTValuesDirtyHandler& GetKeeper();
  static void GlobalSetDirty(ZTValue* _Value, ZTValue* _OrgValue);

  void SetDirty(ZTValue* _Value, ZTValue* _OrgValue) override;
  void SetDirty(ZTValue* _Value) override;
  using ZTDirtyHandler::SetDirty;
  void Clean(ZTValue* _Value) override;
  bool IsDirty(const ZTValue* _Value) const override;
  ZTValue* GetOrgValue(const ZTValue* _Value) const override;
  void Apply(ZTValue* _Value) override;
  void Restore(ZTValue* _Value) override;

  // Inserts the item at its sorted place (attaching it); when the value has an
  // item already, nothing is inserted. Returns the item's position.
  virtual int AddItem(ZTDirtyItem* _Item);
  virtual int GetItemCount() const;
  virtual ZTDirtyItem* GetItem(const ZTValue* _Value);
  virtual const ZTDirtyItem* GetItem(const ZTValue* _Value) const;
  // Removes and releases the value's item; false when there is none.
  virtual bool Remove(const ZTValue* _Value);
  // Writes every item to the debugger output.
  virtual void DumpItems() const;

  // Takes the value's item out; the caller receives the keeper's reference
  // (null when there is none).
  ZTDirtyItem* TakeItem(const ZTValue* _Value);
  // Records a fresh item (refcount 0); an item recorded earlier for the same
  // value wins and the fresh one is released.
  void Record(ZTDirtyItem* _Item);

 private:
  ZTValuesDirtyHandler() = default;
  // Position of the value's item, or of its insertion point; under the lock.
  std::vector<ZTDirtyItem*>::const_iterator Position(const ZTValue* _Value) const;
  ZTDirtyItem* Find(const ZTValue* _Value) const;

  mutable std::mutex m_Lock;
  std::vector<ZTDirtyItem*> m_Items;
  std::atomic<int> m_Count{0};  // readable without the lock
};

// Library-wide table from a value to its own dirty handler; it holds one
// reference on every handler.
class ZTValueDirtyHandlerTable : public ZTTHashTable<ZTDirtyHandler, ZTValue*> {
 public:
  using ZTTHashTable::ZTTHashTable;
};

// Presentation state of a value: flags in the low 16 bits of the state word,
// a change stamp in the high 16 bits.
class ZTValueState : public ZTObject {
  ZT_DECLARE_ABSTRACT(ZTValueState)

 public:
  enum : unsigned long { StateHidden = 0x1, StateRequired = 0x2, StateDisabled = 0x4 };

  ZTValueState() = default;
  ZTValueState(bool _Required, bool _Enabled, bool _Hidden);

  void ModifyState(unsigned long _Set, unsigned long _Clear);
  void SetState(unsigned long _Mask) { ModifyState(_Mask, 0); }
  void ClearState(unsigned long _Mask) { ModifyState(0, _Mask); }
  bool IsStateSet(unsigned long _Mask) const { return (m_State & _Mask & 0xFFFF) != 0; }
  unsigned long GetState() const { return m_State; }

  bool IsRequired() const { return IsStateSet(StateRequired); }
  bool Required() const { return IsRequired(); }
  void SetRequired(bool _On) { _On ? SetState(StateRequired) : ClearState(StateRequired); }
  bool IsEnabled() const { return !IsStateSet(StateDisabled); }
  bool Enabled() const { return IsEnabled(); }
  bool IsDisabled() const { return !IsEnabled(); }
  void Enable(bool _On = true) { _On ? ClearState(StateDisabled) : SetState(StateDisabled); }
  void Disable() { Enable(false); }
  bool IsHidden() const { return IsStateSet(StateHidden); }
  bool Hidden() const { return IsHidden(); }
  bool IsVisible() const { return !IsHidden(); }
  void Show(bool _On = true) { _On ? ClearState(StateHidden) : SetState(StateHidden); }
  void Hide() { Show(false); }

  // Counts a change of the value in the upper 16 bits.
  virtual void Changed() { m_State = (m_State + 0x10000) & 0xFFFFFFFFul; }
  unsigned long GetChangeStamp() const { return (m_State >> 16) & 0xFFFF; }

  void SetRef(const ZTValue* _Value) { m_RefValue = _Value; }
  const ZTValue* GetRef() const { return m_RefValue; }

 private:
  unsigned long m_State = 0;
  const ZTValue* m_RefValue = nullptr;
};
