// Root object, run-time class types, creators and class factories.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "ztexcept.h"
#include "ztmemmgr.h"

class ZTObject;
class ZTCreator;
class ZTClassFactory;
class ZTParameter;
class ZTNotifyHandlerList;

// Result of every comparison of the library.
enum ZTCmpResult { CmpLess = -1, CmpEqual = 0, CmpGreater = 1, CmpNotEqual = 2 };

// Predicates over a comparison result.
struct ZTCompare {
  static bool Equal(ZTCmpResult _R) { return _R == CmpEqual; }
  static bool NotEqual(ZTCmpResult _R) { return _R != CmpEqual; }
  static bool Less(ZTCmpResult _R) { return _R == CmpLess; }
  static bool LessEqual(ZTCmpResult _R) { return _R == CmpLess || _R == CmpEqual; }
  static bool Greater(ZTCmpResult _R) { return _R == CmpGreater; }
  static bool GreaterEqual(ZTCmpResult _R) { return _R == CmpGreater || _R == CmpEqual; }
};

// The library's text hash: bytes taken as signed 8-bit values, shifted in four
// bits at a time with the top nibble folded back. Null and empty hash to 0.
inline std::uint32_t ZTHashText(const char* _Text) {
  std::uint32_t h = 0;
  if (!_Text) return 0;
  for (; *_Text; ++_Text) {
    h = (h << 4) + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(*_Text)));
    const std::uint32_t g = h & 0xF0000000u;
    if (g) h = h ^ (g >> 24) ^ g;
  }
  return h;
}

// Run-time class record: name, base and object size.
class ZTClassType {
 public:
  constexpr ZTClassType(const char* _Name, ZTClassType* _Base, unsigned _Size)
      : m_ClassName(_Name), m_BaseType(_Base), m_ObjectSize(_Size) {}

  const char* GetClassName() const { return m_ClassName; }
  ZTClassType* GetBaseType() const { return m_BaseType; }
  unsigned GetObjectSize() const { return m_ObjectSize; }
  // True when this type or one of its bases is _ClassType (identity, never names).
  bool IsKindOf(const ZTClassType* _ClassType) const;

 protected:
  const char* m_ClassName;
  ZTClassType* m_BaseType;
  unsigned m_ObjectSize;
};

// Boilerplate every library class declares in its body. Abstract classes have
// a plain type record; creatable classes a creator of their family.
#define ZT_DECLARE_TYPE_(Class)                      \
 public:                                             \
  static const char ClassName##Class[];              \
  static ZTClassType* ClassGetType();                \
  const char* GetClassName() const override;         \
  ZTClassType* GetClassType() const override;

#define ZT_DECLARE_ABSTRACT(Class) \
  ZT_DECLARE_TYPE_(Class)          \
  static ZTClassType ClassType##Class;

#define ZT_DECLARE_CLASS(Class, Creator)      \
  ZT_DECLARE_TYPE_(Class)                     \
  static Creator ClassType##Class;            \
  static ZTObject* CreateObject##Class();     \
  ZTCreator* GetCreator() const override;     \
  ZTObject* Clone() const override;

#define ZT_IMPLEMENT_TYPE_(Class)                                                  \
  const char Class::ClassName##Class[] = #Class;                                   \
  ZTClassType* Class::ClassGetType() { return &ClassType##Class; }                 \
  const char* Class::GetClassName() const { return ClassName##Class; }             \
  ZTClassType* Class::GetClassType() const { return &ClassType##Class; }

#define ZT_IMPLEMENT_ABSTRACT(Class, Base) \
  ZT_IMPLEMENT_TYPE_(Class)                \
  ZTClassType Class::ClassType##Class(Class::ClassName##Class, Base::ClassGetType(), sizeof(Class));

// TypeName is the short name the creator registers besides the class name (or nullptr).
#define ZT_IMPLEMENT_CLASS(Class, Base, Creator, TypeName)                                   \
  ZT_IMPLEMENT_TYPE_(Class)                                                                  \
  Creator Class::ClassType##Class(Class::ClassName##Class, TypeName, Base::ClassGetType(),   \
                                  sizeof(Class), &Class::CreateObject##Class);               \
  ZTObject* Class::CreateObject##Class() { return new Class; }                               \
  ZTCreator* Class::GetCreator() const { return &ClassType##Class; }                         \
  ZTObject* Class::Clone() const {                                                           \
    Class* copy = new Class(*this);                                                          \
    copy->Init();                                                                            \
    return copy;                                                                             \
  }

// Class-specific allocation in one memory-manager category. Objects created
// through it are recorded as heap objects (see ZTObject's constructor).
#define ZT_DECLARE_ALLOCATOR(Category)                                                      \
 public:                                                                                    \
  static void* operator new(std::size_t _Size) { return ZTObject::AllocObject(Category, _Size); } \
  static void* operator new[](std::size_t _Size) { return ZTMemMgr::Alloc(Category, _Size); }    \
  static void* operator new(std::size_t, void* _Where) noexcept { return _Where; }           \
  static void operator delete(void* _P) { ZTMemMgr::Free(Category, _P); }                    \
  static void operator delete[](void* _P) { ZTMemMgr::Free(Category, _P); }                  \
  static void operator delete(void*, void*) noexcept {}

// Memory-manager categories used by the library's own classes.
enum ZTMemCategory {
  ZTMemCatBinary = 0,
  ZTMemCatString = 1,
  ZTMemCatObject = 2,
  ZTMemCatValue = 3,
  ZTMemCatContainer = 4
};

// Root of every library object: reference count, flag word, two-phase life and
// run-time class type.
class ZTObject {
 public:
  enum : unsigned long {
    FlagAutomatic = 0x1,    // not created through the library's operator new
    FlagDieing = 0x2,       // Delete has begun
    FlagInitialized = 0x4,  // Init or Initialize done
    FlagNotify = 0x8        // a handler list is in the notification registry
  };

  ZTObject();
  ZTObject(const ZTObject& _Src);

  virtual void Copy(const ZTObject* _Src);

 protected:
  virtual void Clear() {}

 public:
  virtual ~ZTObject();
  virtual ZTObject* Clone() const;
  virtual const char* GetClassName() const;
  virtual ZTClassType* GetClassType() const;
  virtual ZTCreator* GetCreator() const { return nullptr; }
  virtual void Delete() const;
  virtual int Attach() const;
  virtual int Detach(unsigned long _Options) const;
  virtual int Detach() const;
  virtual int DetachNoDelete() const;
  virtual bool Init();
  virtual bool Initialize();
  virtual void Deinit();
  virtual void Finalize();
  virtual ZTCmpResult Cmp(const ZTObject* _Obj) const;
  // The handler list of this object in the notification registry, or null.
  virtual const ZTNotifyHandlerList* GetNotifyHandlers() const;
  // The handler list of this object, made and registered when missing.
  virtual ZTNotifyHandlerList* GetNotifyHandlers();
  // Lets _Handler's Notify receive the notifications of this object whose code
  // shares a bit with _Codes. A null handler or no codes is ignored.
  virtual void AddNotifyHandler(ZTObject* _Handler, unsigned long _Codes);
  // Removes _Handler; the list leaves the registry when its last handler goes.
  virtual void RemoveNotifyHandler(ZTObject* _Handler);
  // Called for the notifications this object receives; nothing here.
  virtual void Notify(ZTObject* _Sender, unsigned long _Code, ZTParameter* _Params);

  ZT_DECLARE_ALLOCATOR(ZTMemCatObject)

  int GetRefCount() const;
  ZTClassType* GetObjectType() const { return GetClassType(); }
  bool IsA(const ZTClassType* _Type) const { return GetClassType() == _Type; }
  bool IsKindOf(const ZTClassType* _Type) const;
  bool IsKindOf(const ZTObject* _Obj) const;

  unsigned long GetFlags() const { return m_Flags; }
  unsigned long SetFlags(unsigned long _Flags) const { return m_Flags = _Flags; }
  unsigned long SetFlag(unsigned long _Mask) const { return m_Flags |= _Mask; }
  unsigned long ClearFlag(unsigned long _Mask) const { return m_Flags &= ~_Mask; }
  bool IsFlagSet(unsigned long _Mask) const { return (m_Flags & _Mask) == _Mask; }
  bool IsAutoDelete() const { return IsFlagSet(FlagAutomatic); }
  bool IsDieing() const { return IsFlagSet(FlagDieing); }
  bool IsInitialized() const { return IsFlagSet(FlagInitialized); }

  static ZTClassType* ClassGetType();
  static const char ClassZTObject[];
  static ZTClassType ClassTypeZTObject;

  // Allocates from a category and records the address as last allocated.
  static void* AllocObject(int _Category, std::size_t _Size);

  // Notification registry: the handler lists of all objects that have one, in
  // 16 buckets keyed by the owner's address. Unguarded: handlers are set up
  // before the objects are shared between threads.
  // Registers _List (a new list when null) for _Owner and sets FlagNotify.
  static ZTNotifyHandlerList* AddNotificationHandler(const ZTObject* _Owner,
                                                     ZTNotifyHandlerList* _List);
  static ZTNotifyHandlerList* GetNotificationHandler(const ZTObject* _Owner);
  // Takes every list of _Owner out of the registry and clears FlagNotify.
  static void RemoveNotificationHandler(const ZTObject* _Owner);

 protected:
  ZTObject& operator=(const ZTObject&) { return *this; }
  ZTObject& Copy(const ZTObject&) { return *this; }

  static void SetLastAllocated(const void* _Address);
  static bool IsLastAllocated(const void* _Address);

  // Sends a notification to this object's handlers; callers test FlagNotify
  // first. False when the object has no handler list.
  bool SendNotification(unsigned long _Code, ZTParameter* _Params) const;

 private:
  void DetectHeap();
  int DoDetach(bool _Keep) const;

  mutable std::atomic<std::int32_t> m_RefCount{0};
  mutable std::uint32_t m_Flags = FlagAutomatic;
};

// The object when its class is a kind of _Type, else null.
ZTObject* ZTDynamicCast(const ZTClassType* _Type, ZTObject* _Obj);
const ZTObject* ZTDynamicCast(const ZTClassType* _Type, const ZTObject* _Obj);

// Typed run-time down-cast by class type record.
template <class T>
T* ZTDynamicCastT(ZTObject* _Obj) {
  return static_cast<T*>(ZTDynamicCast(T::ClassGetType(), _Obj));
}
template <class T>
const T* ZTDynamicCastT(const ZTObject* _Obj) {
  return static_cast<const T*>(ZTDynamicCast(T::ClassGetType(), _Obj));
}

// A class type that can make instances of its class.
class ZTCreator : public ZTClassType {
 public:
  using CreateProc = ZTObject* (*)();

  ZTCreator(const char* _ClassName, const char* _TypeName, ZTClassType* _Base, unsigned _Size,
            CreateProc _Proc)
      : ZTClassType(_ClassName, _Base, _Size), m_CreateProc(_Proc), m_TypeName(_TypeName) {}
  virtual ~ZTCreator() = default;
  ZTCreator(const ZTCreator&) = delete;
  ZTCreator& operator=(const ZTCreator&) = delete;

  virtual ZTObject* CreateObject() const;
  const char* GetTypeName() const { return m_TypeName; }

 protected:
  static bool RegisterCreator(ZTClassFactory*& _Factory, ZTCreator* _Creator);
  static void RemoveCreator(ZTClassFactory*& _Factory, ZTCreator* _Creator);
  static bool IsValidClassName(ZTClassFactory* _Factory, const char* _Name);
  static ZTObject* CreateObject(ZTClassFactory* _Factory, const char* _Name);
  static ZTObject* CreateObject(ZTClassFactory* _Factory, const ZTClassType* _ClassType);

  CreateProc m_CreateProc;
  const char* m_TypeName;
};

// A creator that makes its object once and hands out that one object.
class ZTSingletonCreator : public ZTCreator {
 public:
  using ZTCreator::ZTCreator;
  ZTObject* CreateObject() const override;
  virtual void ObjectDeleted(ZTObject* _Obj);
  ZTObject* GetSingleton() const { return m_Singleton; }
  bool IsAllocated() const { return m_Singleton != nullptr; }

 protected:
  using ZTCreator::CreateObject;
  mutable ZTObject* m_Singleton = nullptr;
};

// A creator family: every creator of the family registers itself in the
// family's own factory at construction and leaves it at destruction. Result is
// the family's root class, to which objects made by name are down-cast.
template <class Result>
class ZTFamilyCreator : public ZTCreator {
 public:
  ZTFamilyCreator(const char* _ClassName, const char* _TypeName, ZTClassType* _Base,
                  unsigned _Size, CreateProc _Proc)
      : ZTCreator(_ClassName, _TypeName, _Base, _Size, _Proc) {
    RegisterCreator(sm_Factory, this);
  }
  ~ZTFamilyCreator() override { RemoveCreator(sm_Factory, this); }

  using ZTCreator::CreateObject;
  static ZTClassFactory* GetFactory() { return sm_Factory; }
  static bool IsValidClassName(const char* _Name) {
    return ZTCreator::IsValidClassName(sm_Factory, _Name);
  }
  static Result* CreateObject(const char* _Name) {
    return DownCast(ZTCreator::CreateObject(sm_Factory, _Name));
  }
  static Result* CreateObject(const ZTClassType* _ClassType) {
    return DownCast(ZTCreator::CreateObject(sm_Factory, _ClassType));
  }

 private:
  static Result* DownCast(ZTObject* _Obj) {
    Result* result = ZTDynamicCastT<Result>(_Obj);
    if (_Obj && !result) _Obj->Detach();  // not of this family: do not leak it
    return result;
  }
  static inline ZTClassFactory* sm_Factory = nullptr;
};

class ZTObjectCreator : public ZTFamilyCreator<ZTObject> {
 public:
  using ZTFamilyCreator::ZTFamilyCreator;
};

// Factory of one creator family: a fixed 211-bucket chained hash from class
// name (and type name) to creator. Keys are not copied.
class ZTClassFactory {
 public:
  static constexpr unsigned BucketCount = 211;
  static constexpr int MaxFactories = 32;

  ZTClassFactory();
  virtual ~ZTClassFactory();
  ZTClassFactory(const ZTClassFactory&) = delete;
  ZTClassFactory& operator=(const ZTClassFactory&) = delete;

  bool AddCreator(ZTCreator* _Creator);
  bool AddCreator(const char* _Key, ZTCreator* _Creator);
  ZTCreator* RemoveCreator(const char* _Key);
  ZTCreator* FindCreator(const char* _Key) const;
  ZTCreator* operator[](const char* _Key) const { return FindCreator(_Key); }
  int GetCount() const { return m_Count; }

  void* GetFirstPosition() const;
  void* GetNextPosition(void* _Pos) const;
  ZTClassType* GetNextClassType(void*& _Pos) const;
  ZTClassType* GetClassType(void* _Pos) const;

  // Creates an object by exact class or type name from any family; with a
  // required base the object must derive from it.
  static ZTObject* CreateObject(const char* _ClassName, const ZTClassType* _RequiredBase);

 protected:
  virtual std::uint32_t GetHashValue(const char* _Key) const;

 private:
  struct Entry {
    Entry* m_Next;
    std::uint32_t m_Hash;
    const char* m_Key;
    ZTCreator* m_Creator;
  };
  Entry* Find(const char* _Key) const;
  Entry* FirstFrom(unsigned _Bucket) const;

  Entry** m_HashTable;
  unsigned m_HashTableSize;
  int m_Count;
};

// Kept for applications: all set-up happens in static construction.
bool InitZT();
void ExitZT();
