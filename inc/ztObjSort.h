// Ordering of pointer arrays by the elements' own comparison.
#pragma once

#include "ztcont.h"

// Turns an element comparison into a yes/no answer through a predicate over
// the comparison result. Eval(a, b) true means: a belongs before b.
class ZTObjectCompare : public ZTObject {
  ZT_DECLARE_ABSTRACT(ZTObjectCompare)

 public:
  using CmpProc = bool (*)(ZTCmpResult);

  explicit ZTObjectCompare(CmpProc _CmpProc);

  // Filter hook for subclasses: the base accepts nothing.
  virtual bool Eval(const ZTObject* _Obj) const;
  // The predicate applied to _Obj1->Cmp(_Obj2).
  virtual bool Eval(const ZTObject* _Obj1, const ZTObject* _Obj2) const;
  virtual bool IsEqual(const ZTObject* _Obj1, const ZTObject* _Obj2) const;

  bool operator()(const ZTObject* _Obj) const { return Eval(_Obj); }
  bool operator()(const ZTObject* _Obj1, const ZTObject* _Obj2) const { return Eval(_Obj1, _Obj2); }
  CmpProc GetCompareProc() const { return m_CmpProc; }
  void SetCompareProc(CmpProc _CmpProc);

 protected:
  CmpProc m_CmpProc;
};

// Base of the sort algorithms. The array is known only while a sort runs.
// None of the sorts is stable.
class ZTArraySort {
 public:
  explicit ZTArraySort(ZTObjectCompare& _Compare) : m_Compare(_Compare) {}
  virtual ~ZTArraySort() = default;
  ZTArraySort(const ZTArraySort&) = delete;
  ZTArraySort& operator=(const ZTArraySort&) = delete;

 protected:
  // Swaps two slots of the array being sorted; nothing when there is none.
  virtual void Swap(int _I1, int _I2);

 public:
  virtual void Sort(ZTPArray* _Array);

  ZTPArray* GetToSort() const { return m_ToSort; }
  void SetToSort(ZTPArray* _Array) { m_ToSort = _Array; }
  ZTObjectCompare& Compare() const { return m_Compare; }

 protected:
  // Remembers the array for the lifetime of the scope, also when a
  // comparison throws.
  class SortScope {
   public:
    SortScope(ZTArraySort& _Sort, ZTPArray* _Array) : m_Sort(_Sort) { m_Sort.m_ToSort = _Array; }
    ~SortScope() { m_Sort.m_ToSort = nullptr; }
    SortScope(const SortScope&) = delete;
    SortScope& operator=(const SortScope&) = delete;

   private:
    ZTArraySort& m_Sort;
  };

  // True when the element in slot _I1 belongs before the one in slot _I2.
  bool Before(int _I1, int _I2) const {
    return m_Compare.Eval(m_ToSort->Get(_I1), m_ToSort->Get(_I2));
  }
  // Selection sort of the slots _IdxLeft to _IdxRight.
  void SelectionSort(int _IdxLeft, int _IdxRight);

  ZTPArray* m_ToSort = nullptr;
  ZTObjectCompare& m_Compare;
};

// Selection sort: the largest remaining element goes to the end.
class ZTArrayBubbleSort : public ZTArraySort {
 public:
  using ZTArraySort::ZTArraySort;
  void Sort(ZTPArray* _Array) override;
  virtual void Sort(int _IdxLeft, int _IdxRight);
};

// Shell sort with the gaps 1, 4, 13, 40, 121 ...
class ZTArrayShellSort : public ZTArraySort {
 public:
  using ZTArraySort::ZTArraySort;
  void Sort(ZTPArray* _Array) override;
};

// Quick sort with a median-of-three pivot; ranges below ten slots are
// finished by selection sort.
class ZTArrayQuickSort : public ZTArraySort {
 public:
  using ZTArraySort::ZTArraySort;
  void Sort(ZTPArray* _Array) override;

 protected:
  // Puts the median of the range's first, middle and last element first.
  virtual void SetCenter(int _IdxLeft, int _IdxRight);
  // Partitions around the first element; _IdxPivot receives its final place.
  virtual void Partition(int _IdxLeft, int _IdxRight, int& _IdxPivot);
  virtual void BSort(int _IdxLeft, int _IdxRight);

 public:
  virtual void Sort(int _IdxLeft, int _IdxRight);

 private:
  friend class ZTPArray;
  // Sorts a range of _Array already checked by the caller.
  void SortRange(ZTPArray* _Array, int _IdxLeft, int _IdxRight);
  void QuickSort(int _IdxLeft, int _IdxRight);
};
