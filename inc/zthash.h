// Hash tables of reference-counted objects and the shared string pool.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "ztmemmgr.h"
#include "ztobject.h"
#include "ztstring.h"

namespace zt_detail {

// Storage shared by the hash-table templates: a fixed number of buckets made
// on first use, each an entry array that grows by two entries, and one
// iteration cursor per table. Holds one reference on every element.
template <class K, class T>
class ZTHashTableCore : public ZTObject {
 public:
  static constexpr unsigned DefaultHashTableSize = 47;

  unsigned GetCount() const { return m_Count; }
  unsigned GetHashTableSize() const { return m_HashTableSize; }
  bool IsEmpty() const { return m_Count == 0; }

  // Drops the contents and makes _Size empty buckets. A failed allocation
  // leaves the table without buckets.
  void InitHashTable(unsigned _Size);

  // One walk per table at a time: the position is a token for the table's
  // own cursor.
  void* GetFirstPosition() const;
  // The element under the cursor; the cursor moves on, _Pos becomes null at the end.
  T* GetNext(void*& _Pos) const;
  // The element under the cursor, without moving.
  T* Get(void* _Pos) const;
  // Removes the element under the cursor and moves on as GetNext does.
  bool Remove(void*& _Pos);

 protected:
  struct Entry {
    std::int32_t m_Bucket;
    K m_Key;
    T* m_Element;
  };
  struct Bucket {
    Entry* m_Entries;
    unsigned m_Capacity;
    unsigned m_Used;
  };

  explicit ZTHashTableCore(unsigned _Size) : m_HashTableSize(_Size) { ZT_COND_CHECK(_Size > 0); }
  // The copy starts empty with the source's bucket count; derived classes fill it.
  ZTHashTableCore(const ZTHashTableCore& _Src)
      : ZTObject(_Src), m_HashTableSize(_Src.m_HashTableSize) {}
  ZTHashTableCore& operator=(const ZTHashTableCore&) = delete;
  ~ZTHashTableCore() override { FreeAll(); }

  // Appends an entry to a bucket; false for a bucket out of range or when
  // memory runs out.
  bool InsertItem(unsigned _Bucket, const T* _Object, const K& _Key);
  // Index of the newest entry of a bucket whose key satisfies _Match, else -1.
  template <class Match>
  int FindEntry(unsigned _Bucket, Match _Match) const;
  // Releases the entry's element; later entries close up in order.
  void RemoveEntry(unsigned _Bucket, unsigned _Index);
  // Releases every element and frees all storage.
  void FreeAll();
  // Inserts the source's entries (bucket by bucket, oldest first), sharing or
  // cloning the elements; _BucketOf maps a key to a bucket of this table.
  template <class BucketOf>
  void CopyEntries(const ZTHashTableCore& _Src, bool _Deep, BucketOf _BucketOf);

  Bucket** m_HashTable = nullptr;
  unsigned m_HashTableSize;
  unsigned m_Count = 0;
  mutable std::int32_t m_CursorBucket = -1;
  mutable std::int32_t m_CursorEntry = -1;

 private:
  void* Token() const { return const_cast<std::int32_t*>(&m_CursorBucket); }
  const Entry* CursorEntry() const;
  // Moves the cursor to the next entry; false (cursor reset) at the end.
  bool Advance() const;
  static void Relocate(Entry* _To, Entry* _From) {
    new (_To) Entry(std::move(*_From));
    _From->~Entry();
  }
};

template <class K, class T>
void ZTHashTableCore<K, T>::InitHashTable(unsigned _Size) {
  ZT_COND_CHECK(_Size > 0);
  FreeAll();
  m_HashTableSize = _Size;
  const std::size_t bytes = std::size_t{_Size} * sizeof(Bucket*);
  if (bytes > std::numeric_limits<unsigned>::max()) return;  // beyond any block
  try {
    auto** table =
        static_cast<Bucket**>(ZTMemMgr::Alloc(ZTMemCatBinary, static_cast<unsigned>(bytes)));
    std::memset(table, 0, bytes);
    m_HashTable = table;
  } catch (const ZTExceptMemory&) {
    m_HashTable = nullptr;
  }
}

template <class K, class T>
bool ZTHashTableCore<K, T>::InsertItem(unsigned _Bucket, const T* _Object, const K& _Key) {
  if (!m_HashTable || _Bucket >= m_HashTableSize) return false;
  try {
    Bucket*& bucket = m_HashTable[_Bucket];
    if (!bucket) {
      bucket = static_cast<Bucket*>(ZTMemMgr::Alloc(ZTMemCatBinary, sizeof(Bucket)));
      *bucket = Bucket{nullptr, 0, 0};
    }
    if (bucket->m_Used == bucket->m_Capacity) {
      const unsigned capacity = bucket->m_Capacity + 2;
      auto* entries =
          static_cast<Entry*>(ZTMemMgr::Alloc(ZTMemCatBinary, capacity * sizeof(Entry)));
      for (unsigned i = 0; i < bucket->m_Used; ++i) Relocate(entries + i, bucket->m_Entries + i);
      ZTMemMgr::Free(ZTMemCatBinary, bucket->m_Entries);
      bucket->m_Entries = entries;
      bucket->m_Capacity = capacity;
    }
    new (bucket->m_Entries + bucket->m_Used)
        Entry{static_cast<std::int32_t>(_Bucket), _Key, const_cast<T*>(_Object)};
  } catch (const ZTExceptMemory&) {
    return false;
  }
  ++m_HashTable[_Bucket]->m_Used;
  _Object->Attach();
  ++m_Count;
  return true;
}

template <class K, class T>
template <class Match>
int ZTHashTableCore<K, T>::FindEntry(unsigned _Bucket, Match _Match) const {
  const Bucket* bucket = m_HashTable ? m_HashTable[_Bucket] : nullptr;
  if (!bucket) return -1;
  for (int i = static_cast<int>(bucket->m_Used) - 1; i >= 0; --i)
    if (_Match(bucket->m_Entries[i].m_Key)) return i;
  return -1;
}

template <class K, class T>
void ZTHashTableCore<K, T>::RemoveEntry(unsigned _Bucket, unsigned _Index) {
  Bucket* bucket = m_HashTable[_Bucket];
  T* element = bucket->m_Entries[_Index].m_Element;
  bucket->m_Entries[_Index].~Entry();
  for (unsigned i = _Index + 1; i < bucket->m_Used; ++i)
    Relocate(bucket->m_Entries + i - 1, bucket->m_Entries + i);
  --bucket->m_Used;
  --m_Count;
  // Released last: the element's destructor may look at this table.
  element->Detach();
}

template <class K, class T>
void ZTHashTableCore<K, T>::FreeAll() {
  Bucket** table = std::exchange(m_HashTable, nullptr);
  m_Count = 0;
  m_CursorBucket = m_CursorEntry = -1;
  if (!table) return;
  for (unsigned b = 0; b < m_HashTableSize; ++b) {
    Bucket* bucket = table[b];
    if (!bucket) continue;
    for (unsigned i = 0; i < bucket->m_Used; ++i) {
      T* element = bucket->m_Entries[i].m_Element;
      bucket->m_Entries[i].~Entry();
      element->Detach();
    }
    ZTMemMgr::Free(ZTMemCatBinary, bucket->m_Entries);
    ZTMemMgr::Free(ZTMemCatBinary, bucket);
  }
  ZTMemMgr::Free(ZTMemCatBinary, table);
}

template <class K, class T>
template <class BucketOf>
void ZTHashTableCore<K, T>::CopyEntries(const ZTHashTableCore& _Src, bool _Deep,
                                        BucketOf _BucketOf) {
  if (!_Src.m_HashTable || _Src.m_Count == 0) return;
  if (!m_HashTable) InitHashTable(m_HashTableSize);
  for (unsigned b = 0; b < _Src.m_HashTableSize; ++b) {
    const Bucket* bucket = _Src.m_HashTable[b];
    for (unsigned i = 0; bucket && i < bucket->m_Used; ++i) {
      const Entry& entry = bucket->m_Entries[i];
      const T* element = _Deep ? static_cast<const T*>(entry.m_Element->Clone()) : entry.m_Element;
      if (!InsertItem(_BucketOf(entry.m_Key), element, entry.m_Key) && _Deep) element->Delete();
    }
  }
}

template <class K, class T>
const typename ZTHashTableCore<K, T>::Entry* ZTHashTableCore<K, T>::CursorEntry() const {
  if (!m_HashTable || m_CursorBucket < 0 ||
      static_cast<unsigned>(m_CursorBucket) >= m_HashTableSize)
    return nullptr;
  const Bucket* bucket = m_HashTable[m_CursorBucket];
  if (!bucket || m_CursorEntry < 0 || static_cast<unsigned>(m_CursorEntry) >= bucket->m_Used)
    return nullptr;
  return bucket->m_Entries + m_CursorEntry;
}

template <class K, class T>
bool ZTHashTableCore<K, T>::Advance() const {
  const Bucket* bucket = m_HashTable[m_CursorBucket];
  if (static_cast<unsigned>(m_CursorEntry) + 1 < bucket->m_Used) {
    ++m_CursorEntry;
    return true;
  }
  for (unsigned b = static_cast<unsigned>(m_CursorBucket) + 1; b < m_HashTableSize; ++b) {
    if (m_HashTable[b] && m_HashTable[b]->m_Used > 0) {
      m_CursorBucket = static_cast<std::int32_t>(b);
      m_CursorEntry = 0;
      return true;
    }
  }
  m_CursorBucket = m_CursorEntry = -1;
  return false;
}

template <class K, class T>
void* ZTHashTableCore<K, T>::GetFirstPosition() const {
  if (!m_HashTable || m_Count == 0) return nullptr;
  for (unsigned b = 0; b < m_HashTableSize; ++b) {
    if (m_HashTable[b] && m_HashTable[b]->m_Used > 0) {
      m_CursorBucket = static_cast<std::int32_t>(b);
      m_CursorEntry = 0;
      return Token();
    }
  }
  return nullptr;
}

template <class K, class T>
T* ZTHashTableCore<K, T>::Get(void* _Pos) const {
  if (_Pos != Token()) return nullptr;
  const Entry* entry = CursorEntry();
  return entry ? entry->m_Element : nullptr;
}

template <class K, class T>
T* ZTHashTableCore<K, T>::GetNext(void*& _Pos) const {
  if (_Pos != Token()) return nullptr;
  const Entry* entry = CursorEntry();
  if (!entry) {  // the walk was ended by a change of the table
    _Pos = nullptr;
    return nullptr;
  }
  T* element = entry->m_Element;
  if (!Advance()) _Pos = nullptr;
  return element;
}

template <class K, class T>
bool ZTHashTableCore<K, T>::Remove(void*& _Pos) {
  if (_Pos != Token()) return false;
  if (!CursorEntry()) {
    _Pos = nullptr;
    return false;
  }
  const unsigned bucket = static_cast<unsigned>(m_CursorBucket);
  const unsigned index = static_cast<unsigned>(m_CursorEntry);
  if (!Advance())
    _Pos = nullptr;
  else if (static_cast<unsigned>(m_CursorBucket) == bucket)
    --m_CursorEntry;  // the later entries close up
  RemoveEntry(bucket, index);
  return true;
}

}  // namespace zt_detail

// Hash table from ZTString keys (copied into the table) to elements. Keys
// compare by the key's own Cmp; lookups run from the newest entry of a bucket.
template <class T>
class ZTTStringHashTable : public zt_detail::ZTHashTableCore<ZTString, T> {
  using Core = zt_detail::ZTHashTableCore<ZTString, T>;

 public:
  ZTTStringHashTable() : Core(Core::DefaultHashTableSize) {}
  explicit ZTTStringHashTable(int _Size) : Core(static_cast<unsigned>(_Size)) {}
  // Shares the source's elements.
  ZTTStringHashTable(const ZTTStringHashTable& _Src) : Core(_Src) { CopyElements(_Src); }
  // Shares the source's elements after clearing.
  ZTTStringHashTable& operator=(const ZTTStringHashTable& _Src) {
    Assign(_Src, false);
    return *this;
  }

 protected:
  virtual unsigned GetHashValue(const ZTString& _Key) const { return _Key.GetHashValue(); }
  // True when the keys are equal.
  virtual bool CompareElements(const ZTString& _Key1, const ZTString& _Key2) const {
    return _Key1.Cmp(_Key2) == CmpEqual;
  }
  void Clear() override { RemoveAll(); }

 public:
  virtual void Assign(const ZTTStringHashTable& _Src, bool _Deep) {
    if (&_Src == this) return;
    Clear();
    _Deep ? DeepCopyElements(_Src) : CopyElements(_Src);
  }
  // False (nothing changes) when the key is already present.
  virtual bool Insert(const T* _Object, const ZTString& _Key) {
    ZT_PARAM_CHECK(_Object != NULL);
    if (!m_HashTable) {
      Core::InitHashTable(m_HashTableSize);
      ZT_COND_CHECK(m_HashTable != NULL);
    }
    if (LookUp(_Key)) return false;
    return Core::InsertItem(BucketOf(_Key), _Object, _Key);
  }
  virtual bool Insert(T* _Object, const ZTString& _Key) {
    return Insert(static_cast<const T*>(_Object), _Key);
  }
  virtual const T* LookUp(const ZTString& _Key) const {
    if (!m_HashTable) return nullptr;
    const unsigned bucket = BucketOf(_Key);
    const int idx = Core::FindEntry(bucket, KeyMatch(_Key));
    return idx < 0 ? nullptr : m_HashTable[bucket]->m_Entries[idx].m_Element;
  }
  virtual T* LookUp(const ZTString& _Key) {
    return const_cast<T*>(static_cast<const ZTTStringHashTable*>(this)->LookUp(_Key));
  }
  virtual bool Remove(const ZTString& _Key) {
    ZT_COND_CHECK(m_HashTable != NULL);
    const unsigned bucket = BucketOf(_Key);
    const int idx = Core::FindEntry(bucket, KeyMatch(_Key));
    if (idx < 0) return false;
    Core::RemoveEntry(bucket, static_cast<unsigned>(idx));
    return true;
  }
  virtual void RemoveAll() { Core::FreeAll(); }

  using Core::Remove;
  // The element of a key that must be present.
  T* operator[](const ZTString& _Key) const {
    T* obj = const_cast<T*>(LookUp(_Key));
    ZT_COND_CHECK(obj != NULL);
    return obj;
  }
  // Shares the source's elements after clearing.
  void Copy(const ZTTStringHashTable& _Src) { Assign(_Src, false); }

 protected:
  using Core::m_HashTable;
  using Core::m_HashTableSize;

  void CopyElements(const ZTTStringHashTable& _Src) {
    Core::CopyEntries(_Src, false, [this](const ZTString& _Key) { return BucketOf(_Key); });
  }
  void DeepCopyElements(const ZTTStringHashTable& _Src) {
    Core::CopyEntries(_Src, true, [this](const ZTString& _Key) { return BucketOf(_Key); });
  }
  bool InsertItem(unsigned _Bucket, const T* _Object, const ZTString& _Key) {
    return Core::InsertItem(_Bucket, _Object, _Key);
  }

 private:
  unsigned BucketOf(const ZTString& _Key) const { return GetHashValue(_Key) % m_HashTableSize; }
  auto KeyMatch(const ZTString& _Key) const {
    return [this, &_Key](const ZTString& _Stored) { return CompareElements(_Stored, _Key); };
  }
};

// Hash table from pointer keys to elements; keys match by identity.
template <class T, class K>
class ZTTHashTable : public zt_detail::ZTHashTableCore<K, T> {
  using Core = zt_detail::ZTHashTableCore<K, T>;

 public:
  ZTTHashTable() : Core(Core::DefaultHashTableSize) {}
  explicit ZTTHashTable(int _Size) : Core(static_cast<unsigned>(_Size)) {}
  // Shares the source's elements.
  ZTTHashTable(const ZTTHashTable& _Src) : Core(_Src) { CopyElements(_Src); }
  // Shares the source's elements after clearing.
  ZTTHashTable& operator=(const ZTTHashTable& _Src) {
    Assign(_Src, false);
    return *this;
  }

  virtual void Assign(const ZTTHashTable& _Src, bool _Deep) {
    if (&_Src == this) return;
    RemoveAll();
    _Deep ? DeepCopyElements(_Src) : CopyElements(_Src);
  }
  // False (nothing changes) when the key is already present.
  virtual bool Insert(const T* _Object, const K& _Key) {
    ZT_PARAM_CHECK(_Object != NULL);
    if (!m_HashTable) {
      Core::InitHashTable(m_HashTableSize);
      ZT_COND_CHECK(m_HashTable != NULL);
    }
    if (LookUp(_Key)) return false;
    return Core::InsertItem(BucketOf(_Key), _Object, _Key);
  }
  virtual const T* LookUp(const K& _Key) const {
    if (!m_HashTable) return nullptr;
    const unsigned bucket = BucketOf(_Key);
    const int idx = Core::FindEntry(bucket, [&_Key](const K& _Stored) { return _Stored == _Key; });
    return idx < 0 ? nullptr : m_HashTable[bucket]->m_Entries[idx].m_Element;
  }
  virtual T* LookUp(const K& _Key) {
    return const_cast<T*>(static_cast<const ZTTHashTable*>(this)->LookUp(_Key));
  }
  virtual bool Remove(const K& _Key) {
    if (!m_HashTable) return false;
    const unsigned bucket = BucketOf(_Key);
    const int idx = Core::FindEntry(bucket, [&_Key](const K& _Stored) { return _Stored == _Key; });
    if (idx < 0) return false;
    Core::RemoveEntry(bucket, static_cast<unsigned>(idx));
    return true;
  }
  virtual void RemoveAll() { Core::FreeAll(); }

  using Core::Remove;
  // The element of a key that must be present.
  T* operator[](const K& _Key) const {
    T* obj = const_cast<T*>(LookUp(_Key));
    ZT_COND_CHECK(obj != NULL);
    return obj;
  }
  // Shares the source's elements after clearing.
  void Copy(const ZTTHashTable& _Src) { Assign(_Src, false); }

 protected:
  using Core::m_HashTable;
  using Core::m_HashTableSize;

  void CopyElements(const ZTTHashTable& _Src) {
    Core::CopyEntries(_Src, false, [this](const K& _Key) { return BucketOf(_Key); });
  }
  void DeepCopyElements(const ZTTHashTable& _Src) {
    Core::CopyEntries(_Src, true, [this](const K& _Key) { return BucketOf(_Key); });
  }
  bool InsertItem(unsigned _Bucket, const T* _Object, const K& _Key) {
    return Core::InsertItem(_Bucket, _Object, _Key);
  }

 private:
  unsigned BucketOf(const K& _Key) const {
    return static_cast<unsigned>((reinterpret_cast<std::uintptr_t>(_Key) >> 4) % m_HashTableSize);
  }
};

// Shares one string object among all users of the same text. Calls share one
// lookup key and must come from one thread.
class ZTStringPool : public ZTTStringHashTable<ZTString> {
  ZT_DECLARE_CLASS(ZTStringPool, ZTObjectCreator)

 public:
  ZTStringPool() = default;
  explicit ZTStringPool(int _Size) : ZTTStringHashTable<ZTString>(_Size) {}
  ZTStringPool(const ZTStringPool& _Src) = default;

  // The pooled string of _Text, made on first use and attached on every
  // further one; false (and null) for a null or empty text.
  virtual bool UseString(const char* _Text, ZTString*& _Str);
  // As above; _Str receives a copy of the pooled text, the reference taken
  // stays counted until ReleaseString.
  virtual bool UseString(const char* _Text, ZTString& _Str);
  // Gives back a reference; the last one removes the string from the pool.
  virtual void ReleaseString(ZTString*& _Str);
  virtual void ReleaseString(ZTString& _Str);
};
