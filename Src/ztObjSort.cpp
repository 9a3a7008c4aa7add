// Ordering of pointer arrays: the compare object and the sort algorithms.
#include "ztObjSort.h"

namespace {

// Keeps one reference on an element while a sort holds it outside its slot.
class HeldElement {
 public:
  explicit HeldElement(const ZTObject* _Obj) : m_Obj(_Obj) {
    if (m_Obj) m_Obj->Attach();
  }
  ~HeldElement() {
    if (m_Obj) m_Obj->DetachNoDelete();
  }
  HeldElement(const HeldElement&) = delete;
  HeldElement& operator=(const HeldElement&) = delete;

 private:
  const ZTObject* m_Obj;
};

}  // namespace

// ---------------------------------------------------------------------------
// ZTObjectCompare

ZT_IMPLEMENT_ABSTRACT(ZTObjectCompare, ZTObject)

ZTObjectCompare::ZTObjectCompare(CmpProc _CmpProc) : m_CmpProc(_CmpProc) {
  ZT_COND_CHECK_MSG(m_CmpProc != NULL, "missing compare proc");
}

void ZTObjectCompare::SetCompareProc(CmpProc _CmpProc) {
  ZT_PARAM_CHECK(_CmpProc);
  m_CmpProc = _CmpProc;
}

bool ZTObjectCompare::Eval(const ZTObject* _Obj) const {
  ZT_PARAM_CHECK(_Obj);
  return false;
}

bool ZTObjectCompare::Eval(const ZTObject* _Obj1, const ZTObject* _Obj2) const {
  ZT_PARAM_CHECK(_Obj1);
  ZT_PARAM_CHECK(_Obj2);
  return m_CmpProc(_Obj1->Cmp(_Obj2));
}

bool ZTObjectCompare::IsEqual(const ZTObject* _Obj1, const ZTObject* _Obj2) const {
  ZT_PARAM_CHECK(_Obj1);
  ZT_PARAM_CHECK(_Obj2);
  return _Obj1->Cmp(_Obj2) == CmpEqual;
}

// ---------------------------------------------------------------------------
// ZTArraySort

void ZTArraySort::Swap(int _I1, int _I2) {
  if (m_ToSort) m_ToSort->Swap(_I1, _I2);
}

void ZTArraySort::Sort(ZTPArray*) {}

void ZTArraySort::SelectionSort(int _IdxLeft, int _IdxRight) {
  for (int i = _IdxRight; i > _IdxLeft; --i) {
    int m = _IdxLeft;
    for (int j = _IdxLeft + 1; j <= i; ++j)
      if (Before(m, j)) m = j;
    if (m != i) Swap(m, i);
  }
}

// ---------------------------------------------------------------------------
// ZTArrayBubbleSort

void ZTArrayBubbleSort::Sort(ZTPArray* _Array) {
  ZT_PARAM_CHECK(_Array);
  SortScope scope(*this, _Array);
  SelectionSort(0, _Array->GetCount() - 1);
}

void ZTArrayBubbleSort::Sort(int _IdxLeft, int _IdxRight) {
  ZT_COND_CHECK(m_ToSort != NULL);
  SelectionSort(_IdxLeft, _IdxRight);
}

// ---------------------------------------------------------------------------
// ZTArrayShellSort

void ZTArrayShellSort::Sort(ZTPArray* _Array) {
  ZT_PARAM_CHECK(_Array);
  SortScope scope(*this, _Array);
  const int n = _Array->GetCount();
  int h = 1;
  if (n / 9 >= 1)
    while (h <= n / 9) h = 3 * h + 1;
  for (; h > 0; h /= 3) {
    for (int i = h; i < n; ++i) {
      const ZTObject* v = _Array->Get(i);
      HeldElement hold(v);
      int j = i;
      while (j >= h && m_Compare.Eval(v, _Array->Get(j - h))) {
        Swap(j, j - h);
        j -= h;
      }
      if (j != i) _Array->Set(j, v);
    }
  }
}

// ---------------------------------------------------------------------------
// ZTArrayQuickSort

void ZTArrayQuickSort::Sort(ZTPArray* _Array) {
  ZT_PARAM_CHECK(_Array);
  SortScope scope(*this, _Array);
  int last = _Array->GetCount() - 1;
  while (last > 0 && !_Array->Get(last)) --last;
  if (last > 0) QuickSort(0, last);
}

void ZTArrayQuickSort::Sort(int _IdxLeft, int _IdxRight) {
  ZT_COND_CHECK(m_ToSort != NULL);
  ZT_INDEX_CHECK(_IdxLeft >= 0 && _IdxRight < m_ToSort->GetCount(), _IdxLeft);
  QuickSort(_IdxLeft, _IdxRight);
}

void ZTArrayQuickSort::SortRange(ZTPArray* _Array, int _IdxLeft, int _IdxRight) {
  SortScope scope(*this, _Array);
  QuickSort(_IdxLeft, _IdxRight);
}

// The smaller part is sorted by recursion and the larger one by the loop: the
// result is the same as sorting both parts recursively, but the stack depth
// stays logarithmic when partitions are lopsided (many equal elements).
void ZTArrayQuickSort::QuickSort(int _IdxLeft, int _IdxRight) {
  while (_IdxLeft < _IdxRight) {
    if (_IdxRight - _IdxLeft < 9) {
      BSort(_IdxLeft, _IdxRight);
      return;
    }
    SetCenter(_IdxLeft, _IdxRight);
    int p = _IdxLeft;
    Partition(_IdxLeft, _IdxRight, p);
    if (p - _IdxLeft < _IdxRight - p) {
      QuickSort(_IdxLeft, p - 1);
      _IdxLeft = p + 1;
    } else {
      QuickSort(p + 1, _IdxRight);
      _IdxRight = p - 1;
    }
  }
}

void ZTArrayQuickSort::SetCenter(int _IdxLeft, int _IdxRight) {
  const int mid = (_IdxLeft + _IdxRight) / 2;
  if (Before(_IdxRight, mid)) Swap(_IdxRight, mid);
  if (Before(_IdxLeft, mid)) Swap(_IdxLeft, mid);
  if (Before(_IdxRight, _IdxLeft)) Swap(_IdxRight, _IdxLeft);
}

// After a swap the element that left the pivot's slot has just been judged to
// belong on the other side, so the opposite scan steps over it (++i, --j)
// instead of comparing it once more. When the predicate orders every pair one
// way or the other that comparison would have passed it anyway; when neither
// order holds (two elements equal under a strict predicate such as
// ZTCompare::Less) it would stop on it and swap it straight back, forever.
void ZTArrayQuickSort::Partition(int _IdxLeft, int _IdxRight, int& _IdxPivot) {
  int i = _IdxLeft;
  int j = _IdxRight;
  int& p = _IdxPivot;
  p = _IdxLeft;
  while (j > i) {
    if (p < j) {
      while (p < j && Before(p, j)) --j;
      if (p < j) {
        Swap(p, j);
        p = j;
        ++i;
      }
    }
    if (i < p) {
      while (i < p && Before(i, p)) ++i;
      if (i < p) {
        Swap(i, p);
        p = i;
        --j;
      }
    }
  }
}

void ZTArrayQuickSort::BSort(int _IdxLeft, int _IdxRight) { SelectionSort(_IdxLeft, _IdxRight); }
