// Root object, class types, creators and class factories.
#include "ztobject.h"

#include "zt.h"  // ZTParameter and the values it holds

#include "platform/ztplatform.h"
#include "ztlist.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstring>
#include <string>

namespace {

// Addresses handed out by the library's operator new whose constructors have
// not yet asked for them. The count is atomic so that the constructor of an
// automatic object can skip the lock when nothing is pending.
struct AllocationStack {
  static constexpr int Slots = 8;
  zt_platform::CriticalSection m_Lock;
  const void* m_Entries[Slots] = {};
  std::atomic<int> m_Count{0};
};
AllocationStack s_AllocStack;

// Process-wide table of the factories of all creator families.
ZTClassFactory** s_Factories = nullptr;

// Notification registry. A bucket list is made on first use and freed when it
// becomes empty, so nothing of it outlives the last registered owner and
// objects destroyed at exit never meet an already destroyed registry.
constexpr int RegistryBuckets = 0x10;
ZTTList<ZTNotifyHandlerList>* s_Registry[RegistryBuckets] = {};

ZTTList<ZTNotifyHandlerList>*& RegistryBucket(const ZTObject* _Owner) {
  const int idxOwner = static_cast<int>((reinterpret_cast<std::uintptr_t>(_Owner) >> 2) & 15);
  ZT_COND_CHECK_MSG(0 <= idxOwner && idxOwner < 0x10, "Invalid hash value");
  return s_Registry[idxOwner];
}

// Position of the first list of _Owner in a bucket, or null.
void* FindOwnerList(const ZTTList<ZTNotifyHandlerList>* _Bucket, const ZTObject* _Owner) {
  for (void* pos = _Bucket ? _Bucket->GetHeadPosition() : nullptr; pos;) {
    void* current = pos;
    const ZTNotifyHandlerList* list = _Bucket->GetNext(pos);
    if (list && list->GetOwner() == _Owner) return current;
  }
  return nullptr;
}

}  // namespace

// ---------------------------------------------------------------------------
// ZTClassType

bool ZTClassType::IsKindOf(const ZTClassType* _ClassType) const {
  ZT_COND_CHECK(_ClassType != NULL);
  for (const ZTClassType* type = this; type; type = type->m_BaseType)
    if (type == _ClassType) return true;
  return false;
}

// ---------------------------------------------------------------------------
// ZTObject: statics and heap detection

const char ZTObject::ClassZTObject[] = "ZTObject";
ZTClassType ZTObject::ClassTypeZTObject(ZTObject::ClassZTObject, nullptr, sizeof(ZTObject));

ZTClassType* ZTObject::ClassGetType() { return &ClassTypeZTObject; }

void* ZTObject::AllocObject(int _Category, std::size_t _Size) {
  void* p = ZTMemMgr::Alloc(_Category, static_cast<unsigned>(_Size));
  SetLastAllocated(p);
  return p;
}

void ZTObject::SetLastAllocated(const void* _Address) {
  const zt_platform::CriticalSection::Scope lock(s_AllocStack.m_Lock);
  if (!_Address) {
    ZT_WARNING("ZTObject::SetLastAllocated: nothing allocated");
    return;
  }
  const int count = s_AllocStack.m_Count.load(std::memory_order_relaxed);
  if (count >= AllocationStack::Slots) {
    ZT_WARNING("ZTObject::SetLastAllocated: AllocationStack overflow");
    s_AllocStack.m_Count.store(0, std::memory_order_relaxed);
    return;
  }
  s_AllocStack.m_Entries[count] = _Address;
  s_AllocStack.m_Count.store(count + 1, std::memory_order_relaxed);
}

bool ZTObject::IsLastAllocated(const void* _Address) {
  if (!_Address) {
    const zt_platform::CriticalSection::Scope lock(s_AllocStack.m_Lock);
    ZT_WARNING("ZTObject::IsLastAllocated: nothing to release");
    return false;
  }
  // An address pushed by this thread is always seen here; one pushed by another
  // thread belongs to memory this object cannot occupy. So an empty stack
  // answers without the lock, which keeps automatic objects cheap.
  if (s_AllocStack.m_Count.load(std::memory_order_relaxed) == 0) return false;
  const zt_platform::CriticalSection::Scope lock(s_AllocStack.m_Lock);
  const int count = s_AllocStack.m_Count.load(std::memory_order_relaxed);
  for (int i = count - 1; i >= 0; --i) {
    if (s_AllocStack.m_Entries[i] == _Address) {
      std::copy(s_AllocStack.m_Entries + i + 1, s_AllocStack.m_Entries + count,
                s_AllocStack.m_Entries + i);
      s_AllocStack.m_Count.store(count - 1, std::memory_order_relaxed);
      return true;
    }
  }
  return false;
}

void ZTObject::DetectHeap() {
  if (IsLastAllocated(this)) {
    m_RefCount.store(0, std::memory_order_relaxed);
    m_Flags &= ~FlagAutomatic;
  } else {
    m_RefCount.store(1, std::memory_order_relaxed);
  }
}

// ---------------------------------------------------------------------------
// ZTObject: life cycle

ZTObject::ZTObject() { DetectHeap(); }

ZTObject::ZTObject(const ZTObject& _Src) : m_Flags(_Src.m_Flags | FlagAutomatic) {
  if (_Src.IsDieing()) ZT_WARNING("Copy constructor of dieing object called.");
  m_Flags &= ~(FlagInitialized | FlagNotify);
  DetectHeap();
}

ZTObject::~ZTObject() {
  if (IsFlagSet(FlagNotify)) RemoveNotificationHandler(this);
  if (IsAutoDelete()) return;
  if (m_RefCount.load(std::memory_order_relaxed) > 0) ZT_WARNING("Object destroyed explicitly.");
  if (IsInitialized()) ZT_WARNING("'Deinit' or 'Finalize' has not been called.");
}

void ZTObject::Copy(const ZTObject*) {
  ZT_THROW_FMT("void %s::Copy(ZTObject* _Src) must be implemented!", GetClassName());
}

ZTObject* ZTObject::Clone() const { ZT_THROW("ZTObject::Clone called"); }

const char* ZTObject::GetClassName() const { return ClassZTObject; }

ZTClassType* ZTObject::GetClassType() const { return &ClassTypeZTObject; }

void ZTObject::Delete() const {
  if (IsAutoDelete()) return;
  if (IsInitialized()) const_cast<ZTObject*>(this)->Deinit();
  SetFlag(FlagDieing);
  if (IsFlagSet(FlagNotify)) SendNotification(2, nullptr);
  delete this;
}

int ZTObject::Attach() const {
  const int count = m_RefCount.fetch_add(1, std::memory_order_relaxed) + 1;
  if (!IsInitialized()) const_cast<ZTObject*>(this)->Init();
  if (IsFlagSet(FlagNotify)) SendNotification(4, nullptr);
  return count;
}

int ZTObject::DoDetach(bool _Keep) const {
  if (IsDieing()) return m_RefCount.load(std::memory_order_relaxed);
  if (IsFlagSet(FlagNotify)) {
    ZTParameter params(1);
    params.Push("Detail", _Keep ? "NoDelete" : "Delete");
    SendNotification(8, &params);
  }
  // Release ordering so that the deleting thread sees every other owner's writes.
  const int count = m_RefCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
  if (count > 0) return count;
  if (!_Keep) Delete();
  return 0;
}

int ZTObject::Detach(unsigned long _Options) const { return DoDetach((_Options & 0x1) != 0); }

int ZTObject::Detach() const { return DoDetach(false); }

int ZTObject::DetachNoDelete() const { return DoDetach(true); }

bool ZTObject::Init() {
  if (IsInitialized())
    ZT_WARNING("ZTObject::Init: Called more than once.");
  else
    SetFlag(FlagInitialized);
  return true;
}

bool ZTObject::Initialize() {
  if (IsInitialized())
    ZT_WARNING("ZTObject::Initialize: Called more than once.");
  else
    SetFlag(FlagInitialized);
  return true;
}

void ZTObject::Deinit() {
  if (!IsInitialized()) {
    ZT_WARNING("ZTObject::Deinit: 'Deinit' called more than once or without previous call of 'Init'.");
    return;
  }
  ClearFlag(FlagInitialized);
}

void ZTObject::Finalize() {
  if (!IsInitialized()) {
    ZT_WARNING("ZTObject::Finalize: Called more than once or without previous call of 'Initialize'.");
    return;
  }
  ClearFlag(FlagInitialized);
}

ZTCmpResult ZTObject::Cmp(const ZTObject* _Obj) const {
  if (this == _Obj) return CmpEqual;
  return std::less<const ZTObject*>()(this, _Obj) ? CmpLess : CmpGreater;
}

// ---------------------------------------------------------------------------
// ZTObject: notifications

const ZTNotifyHandlerList* ZTObject::GetNotifyHandlers() const { return GetNotificationHandler(this); }

ZTNotifyHandlerList* ZTObject::GetNotifyHandlers() {
  ZTNotifyHandlerList* list = GetNotificationHandler(this);
  return list ? list : AddNotificationHandler(this, nullptr);
}

void ZTObject::AddNotifyHandler(ZTObject* _Handler, unsigned long _Codes) {
  if (!_Handler || !_Codes) return;
  GetNotifyHandlers()->AddHandler(_Handler, _Codes);
}

void ZTObject::RemoveNotifyHandler(ZTObject* _Handler) {
  ZTNotifyHandlerList* list = GetNotificationHandler(this);
  if (!list) return;
  list->RemoveHandler(_Handler);
  if (list->IsEmpty()) RemoveNotificationHandler(this);
}

void ZTObject::Notify(ZTObject*, unsigned long, ZTParameter*) {}

bool ZTObject::SendNotification(unsigned long _Code, ZTParameter* _Params) const {
  ZTNotifyHandlerList* list = GetNotificationHandler(this);
  if (list) list->DoIt(const_cast<ZTObject*>(this), _Code, _Params);
  return list != nullptr;
}

ZTNotifyHandlerList* ZTObject::AddNotificationHandler(const ZTObject* _Owner,
                                                      ZTNotifyHandlerList* _List) {
  if (!_Owner) return _List;
  auto*& bucket = RegistryBucket(_Owner);
  if (!_List) _List = new ZTNotifyHandlerList(const_cast<ZTObject*>(_Owner));
  ZT_COND_CHECK_MSG(_List->GetOwner() == _Owner, "Invalid owner relation of notify handler");
  if (!bucket) {
    bucket = new ZTTList<ZTNotifyHandlerList>;
    bucket->Attach();
  }
  bucket->AddHead(_List);
  _Owner->SetFlag(FlagNotify);
  return _List;
}

ZTNotifyHandlerList* ZTObject::GetNotificationHandler(const ZTObject* _Owner) {
  if (!_Owner) return nullptr;
  const ZTTList<ZTNotifyHandlerList>* bucket = RegistryBucket(_Owner);
  void* pos = FindOwnerList(bucket, _Owner);
  return pos ? bucket->Get(pos) : nullptr;
}

void ZTObject::RemoveNotificationHandler(const ZTObject* _Owner) {
  if (!_Owner) return;
  _Owner->ClearFlag(FlagNotify);
  auto*& bucket = RegistryBucket(_Owner);  // the registry slot itself
  while (void* pos = FindOwnerList(bucket, _Owner)) {
    // Releasing a list releases its handlers, which may run destructors that
    // use the registry again: each list is held until the registry is
    // consistent, then let go.
    ZTNotifyHandlerList* list = bucket->Get(pos);
    list->Attach();
    bucket->Remove(pos);
    if (bucket->IsEmpty()) {
      bucket->Detach();
      bucket = nullptr;
    }
    list->Detach();
  }
}

int ZTObject::GetRefCount() const {
  return IsAutoDelete() ? 1 : m_RefCount.load(std::memory_order_relaxed);
}

bool ZTObject::IsKindOf(const ZTClassType* _Type) const {
  const ZTClassType* type = GetClassType();
  return type && type->IsKindOf(_Type);
}

bool ZTObject::IsKindOf(const ZTObject* _Obj) const {
  ZT_PARAM_CHECK(_Obj);
  return IsKindOf(_Obj->GetClassType());
}

const ZTObject* ZTDynamicCast(const ZTClassType* _Type, const ZTObject* _Obj) {
  if (!_Obj) return nullptr;
  const ZTClassType* type = _Obj->GetClassType();
  return type && type->IsKindOf(_Type) ? _Obj : nullptr;
}

ZTObject* ZTDynamicCast(const ZTClassType* _Type, ZTObject* _Obj) {
  return const_cast<ZTObject*>(ZTDynamicCast(_Type, static_cast<const ZTObject*>(_Obj)));
}

// ---------------------------------------------------------------------------
// Creators

ZTObject* ZTCreator::CreateObject() const {
  ZT_COND_CHECK_MSG(m_CreateProc != NULL, "Invalid function pointer");
  return m_CreateProc();
}

bool ZTCreator::RegisterCreator(ZTClassFactory*& _Factory, ZTCreator* _Creator) {
  if (!_Factory) _Factory = new ZTClassFactory;
  ZT_COND_CHECK(_Factory != NULL && _Creator != NULL);
  return _Factory->AddCreator(_Creator);
}

void ZTCreator::RemoveCreator(ZTClassFactory*& _Factory, ZTCreator* _Creator) {
  if (!_Factory || !_Creator) return;
  try {
    // A key is removed only when it maps to this creator: a creator whose
    // registration was refused as a duplicate must not take the first one's
    // entry with it.
    const auto removeOwnKey = [&](const char* _Key) {
      if (_Key && _Factory->FindCreator(_Key) == _Creator) _Factory->RemoveCreator(_Key);
    };
    removeOwnKey(_Creator->GetClassName());
    const char* typeName = _Creator->GetTypeName();
    if (typeName && (!_Creator->GetClassName() || std::strcmp(typeName, _Creator->GetClassName())))
      removeOwnKey(typeName);
    if (_Factory->GetCount() == 0) {
      delete _Factory;
      _Factory = nullptr;
    }
  } catch (const ZTExcept& ex) {
    ex.Report();
  }
}

bool ZTCreator::IsValidClassName(ZTClassFactory* _Factory, const char* _Name) {
  ZT_COND_CHECK_MSG(_Factory != NULL, "Invalid factory");
  return _Factory->FindCreator(_Name) != nullptr;
}

ZTObject* ZTCreator::CreateObject(ZTClassFactory* _Factory, const char* _Name) {
  ZT_PARAM_CHECK(_Factory);
  const ZTCreator* creator = _Factory->FindCreator(_Name);
  if (!creator) {
    std::string lower(_Name);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    creator = _Factory->FindCreator(lower.c_str());
  }
  return creator ? creator->CreateObject() : nullptr;
}

ZTObject* ZTCreator::CreateObject(ZTClassFactory* _Factory, const ZTClassType* _ClassType) {
  ZT_PARAM_CHECK(_Factory);
  ZT_PARAM_CHECK(_ClassType);
  return CreateObject(_Factory, _ClassType->GetClassName());
}

ZTObject* ZTSingletonCreator::CreateObject() const {
  if (!m_Singleton) {
    ZT_COND_CHECK_MSG(m_CreateProc != NULL, "Invalid function pointer.");
    m_Singleton = m_CreateProc();
  }
  return m_Singleton;
}

void ZTSingletonCreator::ObjectDeleted(ZTObject* _Obj) {
  if (_Obj == m_Singleton) m_Singleton = nullptr;
}

// ---------------------------------------------------------------------------
// ZTClassFactory

ZTClassFactory::ZTClassFactory() : m_HashTable(nullptr), m_HashTableSize(BucketCount), m_Count(0) {
  if (!s_Factories) s_Factories = new ZTClassFactory* [MaxFactories] {};
  ZTClassFactory** slot = std::find(s_Factories, s_Factories + MaxFactories, nullptr);
  if (slot == s_Factories + MaxFactories) ZT_RAISE(ZTExceptFactory("out of factories"));
  m_HashTable = new Entry* [BucketCount] {};
  *slot = this;
}

ZTClassFactory::~ZTClassFactory() {
  for (unsigned i = 0; m_HashTable && i < m_HashTableSize; ++i) {
    for (Entry* e = m_HashTable[i]; e;) {
      Entry* next = e->m_Next;
      delete e;
      e = next;
    }
  }
  delete[] m_HashTable;
  if (!s_Factories) return;
  std::replace(s_Factories, s_Factories + MaxFactories, this, static_cast<ZTClassFactory*>(nullptr));
  if (std::all_of(s_Factories, s_Factories + MaxFactories, [](auto* f) { return f == nullptr; })) {
    delete[] s_Factories;
    s_Factories = nullptr;
  }
}

std::uint32_t ZTClassFactory::GetHashValue(const char* _Key) const { return ZTHashText(_Key); }

ZTClassFactory::Entry* ZTClassFactory::Find(const char* _Key) const {
  ZT_PARAM_CHECK(_Key);
  ZT_COND_CHECK_MSG(m_HashTable != NULL, "Invalid hash table");
  const std::uint32_t hash = GetHashValue(_Key);
  for (Entry* e = m_HashTable[hash % m_HashTableSize]; e; e = e->m_Next)
    if (e->m_Hash == hash && std::strcmp(e->m_Key, _Key) == 0) return e;
  return nullptr;
}

ZTCreator* ZTClassFactory::FindCreator(const char* _Key) const {
  const Entry* e = Find(_Key);
  return e ? e->m_Creator : nullptr;
}

bool ZTClassFactory::AddCreator(const char* _Key, ZTCreator* _Creator) {
  ZT_PARAM_CHECK(_Creator != NULL || _Key != NULL);
  ZT_COND_CHECK_MSG(m_HashTable != NULL, "Invalid hash table");
  if (Find(_Key)) {
    ZT_WARNING("Attempt to register different creator with same key '%s' ignored.", _Key);
    return false;
  }
  const std::uint32_t hash = GetHashValue(_Key);
  Entry*& head = m_HashTable[hash % m_HashTableSize];
  head = new Entry{head, hash, _Key, _Creator};
  ++m_Count;
  return true;
}

bool ZTClassFactory::AddCreator(ZTCreator* _Creator) {
  if (!_Creator) {
    ZTWarning("Attempt to add NULL creator ignored.");
    return false;
  }
  const char* className = _Creator->GetClassName();
  if (!className) ZTWarning("Missing class name.");
  if (!AddCreator(className, _Creator)) return false;
  const char* typeName = _Creator->GetTypeName();
  if (typeName && std::strcmp(typeName, className) != 0) return AddCreator(typeName, _Creator);
  return true;
}

ZTCreator* ZTClassFactory::RemoveCreator(const char* _Key) {
  ZT_PARAM_CHECK(_Key != NULL);
  ZT_COND_CHECK_MSG(m_HashTable != NULL, "Invalid hash table");
  const std::uint32_t hash = GetHashValue(_Key);
  for (Entry** link = &m_HashTable[hash % m_HashTableSize]; *link; link = &(*link)->m_Next) {
    Entry* e = *link;
    if (e->m_Hash == hash && std::strcmp(e->m_Key, _Key) == 0) {
      *link = e->m_Next;
      ZTCreator* creator = e->m_Creator;
      delete e;
      --m_Count;
      return creator;
    }
  }
  return nullptr;
}

ZTClassFactory::Entry* ZTClassFactory::FirstFrom(unsigned _Bucket) const {
  for (unsigned i = _Bucket; m_HashTable && i < m_HashTableSize; ++i)
    if (m_HashTable[i]) return m_HashTable[i];
  return nullptr;
}

void* ZTClassFactory::GetFirstPosition() const { return m_Count ? FirstFrom(0) : nullptr; }

void* ZTClassFactory::GetNextPosition(void* _Pos) const {
  const Entry* e = static_cast<const Entry*>(_Pos);
  if (!e) return nullptr;
  return e->m_Next ? e->m_Next : FirstFrom(e->m_Hash % m_HashTableSize + 1);
}

ZTClassType* ZTClassFactory::GetClassType(void* _Pos) const {
  const Entry* e = static_cast<const Entry*>(_Pos);
  return e ? e->m_Creator : nullptr;
}

ZTClassType* ZTClassFactory::GetNextClassType(void*& _Pos) const {
  ZTClassType* type = GetClassType(_Pos);
  _Pos = GetNextPosition(_Pos);
  return type;
}

ZTObject* ZTClassFactory::CreateObject(const char* _ClassName, const ZTClassType* _RequiredBase) {
  ZT_COND_CHECK(_ClassName != NULL);
  const ZTCreator* creator = nullptr;
  for (int i = 0; s_Factories && i < MaxFactories && !creator; ++i)
    if (s_Factories[i]) creator = s_Factories[i]->FindCreator(_ClassName);
  if (!creator) ZT_RAISE(ZTExceptCreator(_ClassName));
  ZTObject* obj = creator->CreateObject();
  if (!obj || !_RequiredBase) return obj;
  if (!obj->IsKindOf(_RequiredBase)) {
    obj->Detach();  // frees a fresh heap object
    ZT_RAISE(ZTExceptCreator(_ClassName, _RequiredBase));
  }
  return obj;
}

bool InitZT() { return true; }

void ExitZT() {}
