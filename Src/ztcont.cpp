// Pointer arrays: slots, ownership, iteration and copying.
#include "ztcont.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <utility>

#include "ztObjSort.h"
#include "ztstring.h"

namespace {
// Largest slot count whose byte size still fits the int of AllocArray.
constexpr int MaxSlots = INT_MAX / static_cast<int>(sizeof(ZTObject*));
}  // namespace

// ---------------------------------------------------------------------------
// ZTPArray: construction and memory

ZT_IMPLEMENT_CLASS(ZTPArray, ZTObject, ZTObjectCreator, nullptr)

ZTPArray::ZTPArray(int _GrowStep) : m_GrowStep(_GrowStep) { ZT_COND_CHECK(_GrowStep > 0); }

ZTPArray::ZTPArray(const ZTPArray& _Src) : ZTObject(_Src), m_GrowStep(_Src.m_GrowStep) {
  CopyElements(_Src);
}

ZTPArray& ZTPArray::operator=(const ZTPArray& _Src) {
  DeepCopy(_Src);
  return *this;
}

ZTPArray::~ZTPArray() { RemoveAll(); }

void ZTPArray::Clear() { RemoveAll(); }

void* ZTPArray::AllocArray(int _Bytes) {
  return ZTMemMgr::Alloc(ZTMemCatBinary, static_cast<unsigned>(_Bytes));
}

void ZTPArray::FreeArray(void* _Data) { ZTMemMgr::Free(ZTMemCatBinary, _Data); }

void ZTPArray::Release(const ZTObject* _Object) const {
  _Object->Detach(IsFlagSet(FlagNoDeleteElements) ? 1 : 0);
}

// The slot is emptied before the release, so that an element's destructor
// sees the array in a consistent state.
void ZTPArray::ReleaseSlot(int _Idx) {
  const ZTObject* obj = m_Data[_Idx];
  m_Data[_Idx] = nullptr;
  --m_Count;
  Release(obj);
}

void ZTPArray::Store(int _Idx, const ZTObject* _Object) {
  if (_Object) _Object->Attach();
  m_Data[_Idx] = const_cast<ZTObject*>(_Object);
  ++m_Count;
}

// Slots needed to hold index _Idx: whole grow steps. Sizes beyond the limit
// are passed on as MaxSlots + 1 so that Resize refuses them.
int ZTPArray::SlotsFor(int _Idx) const {
  const long long slots = (static_cast<long long>(_Idx) / m_GrowStep + 1) * m_GrowStep;
  return static_cast<int>(std::min<long long>(slots, static_cast<long long>(MaxSlots) + 1));
}

void ZTPArray::Resize(int _Size) {
  if (_Size == 0) {
    RemoveAll();
    return;
  }
  ZT_COND_CHECK(_Size > 0);
  ZT_COND_CHECK(_Size <= MaxSlots);
  if (_Size == m_Size) return;
  auto** dataField =
      static_cast<ZTObject**>(AllocArray(_Size * static_cast<int>(sizeof(ZTObject*))));
  ZT_COND_CHECK(dataField != NULL);
  std::fill_n(dataField, _Size, nullptr);
  // Elements cut off by shrinking are released: dropping them silently would
  // leak them and leave the count above the occupied slots, which later lets
  // Add compute a position beyond the slots.
  for (int i = _Size; i < m_Size; ++i)
    if (m_Data[i]) ReleaseSlot(i);
  if (m_Data) std::copy_n(m_Data, std::min(m_Size, _Size), dataField);
  FreeArray(m_Data);
  m_Data = dataField;
  m_Size = _Size;
}

void ZTPArray::RemoveAll() {
  if (!m_Data) return;
  // Detach the slots first: an element's destructor may look at this array.
  ZTObject** data = std::exchange(m_Data, nullptr);
  const int size = std::exchange(m_Size, 0);
  m_Count = 0;
  for (int i = 0; i < size; ++i)
    if (data[i]) Release(data[i]);
  FreeArray(data);
}

void ZTPArray::Reset() {
  Clear();
  Resize(m_GrowStep);
}

// ---------------------------------------------------------------------------
// ZTPArray: storing and removing

int ZTPArray::Set(int _Idx, const ZTObject* _Object) {
  ZT_INDEX_CHECK(_Idx >= 0, _Idx);
  ZT_PARAM_CHECK(_Object != NULL);
  if (!m_Data || _Idx >= m_Size) Resize(SlotsFor(_Idx));
  const ZTObject* old = m_Data[_Idx];
  // The new element is attached before the old one is released, so that
  // storing the element a slot already holds cannot delete it.
  _Object->Attach();
  m_Data[_Idx] = const_cast<ZTObject*>(_Object);
  if (old)
    Release(old);
  else
    ++m_Count;
  return _Idx;
}

int ZTPArray::Add(const ZTObject* _Object) {
  if (!m_Data) Resize(m_GrowStep);
  int pos = NextEmpty(m_Count);
  if (pos < 0) {
    // Counted null entries can lift the count past the size; grow (by whole
    // steps) until the position lies within the slots.
    pos = std::max(m_Count, m_Size);
    do Resize(m_Size + m_GrowStep);
    while (pos >= m_Size);
  }
  Store(pos, _Object);
  return pos;
}

int ZTPArray::Insert(const ZTObject* _Object, int _Idx) {
  if (!m_Data)
    Resize(m_GrowStep);
  else if (m_Count == m_Size)
    Resize(m_Size + m_GrowStep);
  ZT_INDEX_CHECK(_Idx >= 0 && _Idx < m_Size, _Idx);
  if (!Move(_Idx, m_Size - _Idx, 1)) return InvalidIndex;
  Store(_Idx, _Object);
  return _Idx;
}

bool ZTPArray::Move(int _StartIndex, int _Count, int _Delta) {
  ZT_INDEX_CHECK(_StartIndex >= 0 && _StartIndex < m_Size, _StartIndex);
  ZT_COND_CHECK(m_Data != NULL);
  int len = std::min(_Count, m_Size - _StartIndex);
  if (_Delta < 0) {
    const int dest = std::max(_StartIndex + _Delta, 0);
    for (int i = dest, end = std::min(dest + len, _StartIndex); i < end; ++i)
      if (m_Data[i]) ReleaseSlot(i);
    if (len >= 1) {
      std::memmove(m_Data + dest, m_Data + _StartIndex, len * sizeof(ZTObject*));
      std::fill_n(m_Data + std::max(_StartIndex, dest + len), std::min(len, _StartIndex - dest),
                  nullptr);
    }
  } else if (_Delta > 0) {
    const int target = _StartIndex + _Delta;
    for (int i = std::max(_StartIndex + len, target), end = std::min(target + len, m_Size); i < end;
         ++i)
      if (m_Data[i]) ReleaseSlot(i);
    // Trailing empty slots of the moved block need not move. The block's own
    // last slot is examined: examining the target range's last slot instead
    // (which differs when the block ends before the last slot) can skip an
    // occupied slot of the block that the copy then overwrites unreleased.
    for (int last = _StartIndex + len - 1; last >= target && !m_Data[last]; --last) --len;
    if (target + len > m_Size) Resize(target + len);
    if (len >= 1) {
      std::memmove(m_Data + target, m_Data + _StartIndex, len * sizeof(ZTObject*));
      std::fill_n(m_Data + _StartIndex, std::min(len, _Delta), nullptr);
    }
  }
  return true;
}

bool ZTPArray::Remove(int _Idx, bool _Shift) {
  ZT_INDEX_CHECK(0 <= _Idx && _Idx < m_Size, _Idx);
  if (!m_Data[_Idx]) return false;
  if (_Shift && _Idx < m_Size - 1)
    Move(_Idx + 1, m_Size - _Idx, -1);
  else
    ReleaseSlot(_Idx);
  return true;
}

bool ZTPArray::Remove(const ZTObject* _Object, bool _Shift) {
  const int idx = Find(_Object);
  return idx != InvalidIndex && Remove(idx, _Shift);
}

// ---------------------------------------------------------------------------
// ZTPArray: access and iteration

const ZTObject* ZTPArray::Get(int _Idx) const {
  ZT_INDEX_CHECK(_Idx >= 0 && _Idx < m_Size, _Idx);
  ZT_COND_CHECK(m_Data != NULL);
  return m_Data[_Idx];
}

ZTObject* ZTPArray::Get(int _Idx) {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->Get(_Idx));
}

const ZTObject* ZTPArray::Item(int _Idx) const {
  const ZTObject* obj = Get(_Idx);
  ZT_COND_CHECK(obj != NULL);
  return obj;
}

ZTObject* ZTPArray::Item(int _Idx) {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->Item(_Idx));
}

void ZTPArray::Swap(int _I1, int _I2) {
  ZT_COND_CHECK(m_Data != NULL && _I1 >= 0 && _I1 < m_Size && _I2 >= 0 && _I2 < m_Size);
  std::swap(m_Data[_I1], m_Data[_I2]);
}

int ZTPArray::NextOccupied(int _From) const {
  for (int i = _From; i < m_Size; ++i)
    if (m_Data[i]) return i;
  return InvalidIndex;
}

int ZTPArray::PrevOccupied(int _From) const {
  for (int i = _From; i >= 0; --i)
    if (m_Data[i]) return i;
  return InvalidIndex;
}

int ZTPArray::NextEmpty(int _From) const {
  for (int i = _From; i < m_Size; ++i)
    if (!m_Data[i]) return i;
  return InvalidIndex;
}

int ZTPArray::GetFirstIndex() const { return m_Count ? NextOccupied(0) : InvalidIndex; }

int ZTPArray::GetLastIndex() const { return m_Count ? PrevOccupied(m_Size - 1) : InvalidIndex; }

const ZTObject* ZTPArray::GetNext(int& _Pos) const {
  if (_Pos < 0) return nullptr;
  const int index = _Pos;
  ZT_INDEX_CHECK(index < m_Size, index);
  _Pos = NextOccupied(index + 1);
  return m_Data[index];
}

ZTObject* ZTPArray::GetNext(int& _Pos) {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->GetNext(_Pos));
}

const ZTObject* ZTPArray::GetPrev(int& _Pos) const {
  if (_Pos < 0) return nullptr;
  const int index = _Pos;
  ZT_INDEX_CHECK(index < m_Size, index);
  _Pos = PrevOccupied(index - 1);
  return m_Data[index];
}

ZTObject* ZTPArray::GetPrev(int& _Pos) {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->GetPrev(_Pos));
}

const ZTObject* ZTPArray::GetFirst() const {
  const int idx = GetFirstIndex();
  return idx < 0 ? nullptr : m_Data[idx];
}

ZTObject* ZTPArray::GetFirst() {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->GetFirst());
}

const ZTObject* ZTPArray::GetLast() const {
  const int idx = GetLastIndex();
  return idx < 0 ? nullptr : m_Data[idx];
}

ZTObject* ZTPArray::GetLast() {
  return const_cast<ZTObject*>(static_cast<const ZTPArray*>(this)->GetLast());
}

int ZTPArray::Find(const ZTObject* _Object) const {
  if (!_Object) return InvalidIndex;  // an empty slot is never a match
  for (int i = 0, seen = 0; i < m_Size && seen < m_Count; ++i) {
    const ZTObject* obj = m_Data[i];
    if (!obj) continue;
    if (obj == _Object || obj->Cmp(_Object) == CmpEqual) return i;
    ++seen;
  }
  return InvalidIndex;
}

int ZTPArray::Index(const ZTObject* _Object, int _Start) const {
  if (m_Count == 0) return InvalidIndex;
  for (int i = std::max(_Start, 0); i < m_Size; ++i)
    if (m_Data[i] == _Object) return i;
  return InvalidIndex;
}

// ---------------------------------------------------------------------------
// ZTPArray: copying and sorting

void ZTPArray::Assign(const ZTPArray& _Src, bool _Deep) {
  if (&_Src == this) return;  // clearing first would lose the source
  Clear();
  CopySlots(_Src, _Deep);
}

void ZTPArray::CopyElements(const ZTPArray& _Src) { CopySlots(_Src, false); }

void ZTPArray::DeepCopyElements(const ZTPArray& _Src) { CopySlots(_Src, true); }

void ZTPArray::CopySlots(const ZTPArray& _Src, bool _Deep) {
  if (_Src.m_Size == 0) return;
  m_GrowStep = _Src.m_GrowStep;
  if (m_Size < _Src.m_Size) Resize(_Src.m_Size);
  for (int i = 0; i < _Src.m_Size; ++i) {
    const ZTObject* obj = _Src.m_Data[i];
    if (!obj) continue;
    if (_Deep) obj = obj->Clone();
    obj->Attach();
    m_Data[i] = const_cast<ZTObject*>(obj);
    ++m_Count;  // keeps the count right should a clone throw
  }
  m_Count = _Src.m_Count;  // includes counted null entries
}

void ZTPArray::Sort(ZTObjectCompare& _Compare) {
  if (!m_Data || m_Count < 2) return;
  int last = m_Size - 1;
  while (last > 0 && !m_Data[last]) --last;
  ZTArrayQuickSort(_Compare).SortRange(this, 0, last);
}

void ZTPArray::Sort(int _LIndex, int _RIndex, ZTObjectCompare& _Compare) {
  ZT_INDEX_CHECK(_LIndex >= 0 && _RIndex < m_Size, _LIndex);
  ZTArrayQuickSort(_Compare).SortRange(this, _LIndex, _RIndex);
}

// ---------------------------------------------------------------------------
// ZTNamedObjectArray

ZT_IMPLEMENT_CLASS(ZTNamedObjectArray, ZTPArray, ZTObjectCreator, nullptr)

ZTNamedObjectArray& ZTNamedObjectArray::operator=(const ZTNamedObjectArray& _Src) {
  Assign(_Src, true);
  return *this;
}

void ZTNamedObjectArray::Reset() {
  ZTPArray::Reset();
  m_Names.Reset();
}

void ZTNamedObjectArray::RemoveAll() {
  ZTPArray::RemoveAll();
  m_Names.RemoveAll();
}

void ZTNamedObjectArray::Assign(const ZTNamedObjectArray& _Src, bool _Deep) {
  if (&_Src == this) return;
  ZTPArray::Assign(_Src, _Deep);
  m_Names.Assign(_Src.m_Names, _Deep);
}

const ZTString* ZTNamedObjectArray::NameAt(int _Idx) const {
  return static_cast<const ZTString*>(m_Names.ZTPArray::Get(_Idx));
}

int ZTNamedObjectArray::Index(const char* _Name) const {
  // The check text is the library's own; as C++ it would compare a pointer
  // with a character, so the exception is raised directly. Like the original
  // expression it refuses a null name only.
  if (!_Name) ZTThrowParameter(ZT_FUNC, __FILE__, __LINE__, "_Name != NULL && _Name != '\\0'");
  for (int i = 0; i < m_Names.GetSize(); ++i) {
    const ZTString* name = NameAt(i);
    if (name && name->CmpNoCase(_Name) == CmpEqual) return i;
  }
  return InvalidIndex;
}

bool ZTNamedObjectArray::HasItem(const char* _Name) const { return Index(_Name) >= 0; }

const ZTObject* ZTNamedObjectArray::GetItem(const char* _Name) const {
  const int idx = Index(_Name);
  return idx < 0 ? nullptr : ZTPArray::Get(idx);
}

ZTObject* ZTNamedObjectArray::GetItem(const char* _Name) {
  return const_cast<ZTObject*>(static_cast<const ZTNamedObjectArray*>(this)->GetItem(_Name));
}

const ZTObject* ZTNamedObjectArray::GetItem(int _Idx) const { return ZTPArray::Get(_Idx); }

ZTObject* ZTNamedObjectArray::GetItem(int _Idx) { return ZTPArray::Get(_Idx); }

int ZTNamedObjectArray::Append(const char* _Name, const ZTObject* _Object) {
  const int idx = Index(_Name);
  if (idx >= 0) return Set(idx, _Object);
  const int pos = Add(_Object);
  // The name goes into the same slot, so the two arrays stay parallel even
  // when slots were changed through the untyped interface.
  m_Names.Set(pos, new ZTString(_Name));
  return pos;
}

void ZTNamedObjectArray::Append(const ZTNamedObjectArray& _Src, bool _Deep) {
  const int size = std::min(_Src.GetSize(), _Src.m_Names.GetSize());
  for (int i = 0; i < size; ++i) {
    const ZTString* name = _Src.NameAt(i);
    if (!name) continue;
    const ZTObject* obj = _Src.ZTPArray::Get(i);
    Append(*name, _Deep && obj ? obj->Clone() : obj);
  }
}

bool ZTNamedObjectArray::RemoveAt(int _Idx) {
  bool removed = ZTPArray::Remove(_Idx, true);
  // A name stored with a null element: the element slots close up all the
  // same, so that names and elements stay slot for slot parallel.
  if (!removed && _Idx < GetSize() - 1) Move(_Idx + 1, GetSize() - _Idx, -1);
  if (_Idx < m_Names.GetSize()) removed = m_Names.Remove(_Idx, true) || removed;
  return removed;
}

bool ZTNamedObjectArray::Remove(int _Idx) {
  ZT_ARRAY_INDEX_CHECK(this, _Idx);
  return RemoveAt(_Idx);
}

bool ZTNamedObjectArray::Remove(const char* _Name) {
  ZT_PARAM_CHECK(_Name);
  const int idx = Index(_Name);
  return idx >= 0 && RemoveAt(idx);
}

const ZTString& ZTNamedObjectArray::Name(int _Idx) const {
  ZT_ARRAY_INDEX_CHECK(this, _Idx);
  const ZTString* name = NameAt(_Idx);
  ZT_INDEX_CHECK(name != NULL, _Idx);
  return *name;
}

const char* ZTNamedObjectArray::GetName(int _Idx) const { return Name(_Idx); }
