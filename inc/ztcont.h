// Pointer arrays: the library's general container of reference-counted objects.
#pragma once

#include "ztobject.h"

class ZTString;
class ZTObjectCompare;

// A growable array of slots, each holding a ZTObject or nothing. The array takes
// a reference on every object it stores and gives it back when the slot is
// cleared. Size is the number of slots, count the number of occupied ones.
class ZTPArray : public ZTObject {
  ZT_DECLARE_CLASS(ZTPArray, ZTObjectCreator)
  ZT_DECLARE_ALLOCATOR(ZTMemCatContainer)

 public:
  static constexpr int InvalidIndex = -1;
  static constexpr int DefaultSize = 32;
  // Flag word bit: elements leaving the array are released but never deleted by it.
  static constexpr unsigned long FlagNoDeleteElements = 0x10000;

  ZTPArray() : ZTPArray(DefaultSize) {}
  explicit ZTPArray(int _GrowStep);
  // Shares the elements of the source.
  ZTPArray(const ZTPArray& _Src);
  // Clones the elements of the source.
  ZTPArray& operator=(const ZTPArray& _Src);
  ~ZTPArray() override;

 protected:
  void Clear() override;
  // Slot memory, from the memory manager's general category.
  virtual void* AllocArray(int _Bytes);
  virtual void FreeArray(void* _Data);

 public:
  // Clears, then shares (_Deep false) or clones (_Deep true) the source's elements.
  virtual void Assign(const ZTPArray& _Src, bool _Deep);
  // Empties the array and gives it one grow step of slots.
  virtual void Reset();
  virtual int Set(int _Idx, const ZTObject* _Object);
  virtual int Add(const ZTObject* _Object);
  virtual int Insert(const ZTObject* _Object, int _Idx);
  virtual bool Move(int _StartIndex, int _Count, int _Delta);
  virtual bool Remove(const ZTObject* _Object, bool _Shift = true);
  virtual bool Remove(int _Idx, bool _Shift = true);
  virtual void RemoveAll();
  virtual void Resize(int _Size);

  int GetCount() const { return m_Count; }
  int GetSize() const { return m_Size; }
  int GetGrowStep() const { return m_GrowStep; }
  bool IsEmpty() const { return m_Count == 0; }

  // The element in a slot; null for an empty slot.
  ZTObject* Get(int _Idx);
  const ZTObject* Get(int _Idx) const;
  // The element in a slot; an empty slot throws.
  ZTObject* Item(int _Idx);
  const ZTObject* Item(int _Idx) const;
  // Same as Get.
  ZTObject* operator[](int _Idx) { return Get(_Idx); }
  const ZTObject* operator[](int _Idx) const { return Get(_Idx); }

  // Exchanges two slots; references are untouched.
  void Swap(int _I1, int _I2);

  // Iteration over occupied slots by index positions (-1 when there is none).
  int GetFirstIndex() const;
  int GetLastIndex() const;
  // The element at _Pos; _Pos moves to the next (previous) occupied slot or -1.
  ZTObject* GetNext(int& _Pos);
  const ZTObject* GetNext(int& _Pos) const;
  ZTObject* GetPrev(int& _Pos);
  const ZTObject* GetPrev(int& _Pos) const;
  ZTObject* GetFirst();
  const ZTObject* GetFirst() const;
  ZTObject* GetLast();
  const ZTObject* GetLast() const;

  // First index holding _Object itself or an element comparing equal to it.
  int Find(const ZTObject* _Object) const;
  bool Contains(const ZTObject* _Object) const { return Find(_Object) != InvalidIndex; }
  // First index from _Start (-1 means 0) holding _Object itself.
  int Index(const ZTObject* _Object, int _Start = InvalidIndex) const;

  // Shares the source's elements after clearing.
  void Copy(const ZTPArray& _Src) { Assign(_Src, false); }
  // Clones the source's elements after clearing.
  void DeepCopy(const ZTPArray& _Src) { Assign(_Src, true); }

  // Quick sort in place; _Compare's true Eval(a, b) puts a before b.
  void Sort(ZTObjectCompare& _Compare);
  void Sort(int _LIndex, int _RIndex, ZTObjectCompare& _Compare);

 protected:
  // Both expect an array without elements (freshly made or cleared).
  void CopyElements(const ZTPArray& _Src);
  void DeepCopyElements(const ZTPArray& _Src);

 private:
  void CopySlots(const ZTPArray& _Src, bool _Deep);
  void Release(const ZTObject* _Object) const;
  void Store(int _Idx, const ZTObject* _Object);
  int SlotsFor(int _Idx) const;
  void ReleaseSlot(int _Idx);
  int NextOccupied(int _From) const;
  int PrevOccupied(int _From) const;
  int NextEmpty(int _From) const;

  ZTObject** m_Data = nullptr;
  int m_Count = 0;
  int m_Size = 0;
  int m_GrowStep;
};

// Typed face of ZTPArray: results are down-cast to T at run time (null when an
// element is of another class).
template <class T>
class ZTTPArray : public ZTPArray {
 public:
  using ZTPArray::ZTPArray;

  T* Get(int _Idx) { return Cast(ZTPArray::Get(_Idx)); }
  const T* Get(int _Idx) const { return Cast(ZTPArray::Get(_Idx)); }
  T* Item(int _Idx) { return Cast(ZTPArray::Item(_Idx)); }
  const T* Item(int _Idx) const { return Cast(ZTPArray::Item(_Idx)); }
  T* operator[](int _Idx) { return Get(_Idx); }
  const T* operator[](int _Idx) const { return Get(_Idx); }
  T* GetFirst() { return Cast(ZTPArray::GetFirst()); }
  const T* GetFirst() const { return Cast(ZTPArray::GetFirst()); }
  T* GetLast() { return Cast(ZTPArray::GetLast()); }
  const T* GetLast() const { return Cast(ZTPArray::GetLast()); }
  T* GetNext(int& _Pos) { return Cast(ZTPArray::GetNext(_Pos)); }
  const T* GetNext(int& _Pos) const { return Cast(ZTPArray::GetNext(_Pos)); }
  T* GetPrev(int& _Pos) { return Cast(ZTPArray::GetPrev(_Pos)); }
  const T* GetPrev(int& _Pos) const { return Cast(ZTPArray::GetPrev(_Pos)); }

  int Set(int _Idx, const T* _Object) { return ZTPArray::Set(_Idx, _Object); }
  int Insert(const T* _Object, int _Idx) { return ZTPArray::Insert(_Object, _Idx); }
  bool Remove(const T* _Object, bool _Shift = true) { return ZTPArray::Remove(_Object, _Shift); }
  bool Remove(int _Idx, bool _Shift = true) { return ZTPArray::Remove(_Idx, _Shift); }

 private:
  static T* Cast(ZTObject* _Obj) { return ZTDynamicCastT<T>(_Obj); }
  static const T* Cast(const ZTObject* _Obj) { return ZTDynamicCastT<T>(_Obj); }
};

// Pointer array whose every element has a name, unique without regard to case.
class ZTNamedObjectArray : public ZTPArray {
  ZT_DECLARE_CLASS(ZTNamedObjectArray, ZTObjectCreator)

 public:
  ZTNamedObjectArray() = default;
  explicit ZTNamedObjectArray(int _GrowStep) : ZTPArray(_GrowStep), m_Names(_GrowStep) {}
  // Shares elements and names of the source.
  ZTNamedObjectArray(const ZTNamedObjectArray& _Src) = default;
  // Clones elements and names of the source.
  ZTNamedObjectArray& operator=(const ZTNamedObjectArray& _Src);

  using ZTPArray::Assign;
  void Reset() override;
  void RemoveAll() override;

  virtual void Assign(const ZTNamedObjectArray& _Src, bool _Deep);
  // Replaces the element of an existing name, else adds element and name.
  virtual int Append(const char* _Name, const ZTObject* _Object);
  // Appends every entry of the source (clones when _Deep).
  virtual void Append(const ZTNamedObjectArray& _Src, bool _Deep);
  virtual bool Remove(const char* _Name);
  virtual bool Remove(int _Idx);
  virtual const ZTString& Name(int _Idx) const;
  virtual int Index(const char* _Name) const;
  virtual bool HasItem(const char* _Name) const;
  virtual const ZTObject* GetItem(const char* _Name) const;
  virtual ZTObject* GetItem(const char* _Name);
  virtual const ZTObject* GetItem(int _Idx) const;
  virtual ZTObject* GetItem(int _Idx);

  const char* GetName(int _Idx) const;
  ZTObject* Get(int _Idx) { return ZTPArray::Get(_Idx); }
  const ZTObject* Get(int _Idx) const { return ZTPArray::Get(_Idx); }
  ZTObject* Get(const char* _Name) { return GetItem(_Name); }
  const ZTObject* Get(const char* _Name) const { return GetItem(_Name); }
  ZTObject* Item(int _Idx) { return ZTPArray::Item(_Idx); }
  const ZTObject* Item(int _Idx) const { return ZTPArray::Item(_Idx); }
  ZTObject* operator[](int _Idx) { return Get(_Idx); }
  const ZTObject* operator[](int _Idx) const { return Get(_Idx); }
  ZTObject* operator[](const char* _Name) { return GetItem(_Name); }
  const ZTObject* operator[](const char* _Name) const { return GetItem(_Name); }

 private:
  const ZTString* NameAt(int _Idx) const;
  bool RemoveAt(int _Idx);

  ZTTPArray<ZTString> m_Names;
};
