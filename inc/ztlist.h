// Doubly linked lists of reference-counted objects, the sorted list, and the
// notify handlers objects deliver their notifications through.
#pragma once

#include "ztObjSort.h"
#include "ztobject.h"

// A doubly linked list of ZTObject elements. A position (void*) is a node of
// the list. The list takes a reference on every element it stores and gives it
// back when the node is removed or its element replaced.
class ZTList : public ZTObject {
  ZT_DECLARE_CLASS(ZTList, ZTObjectCreator)
  ZT_DECLARE_ALLOCATOR(ZTMemCatContainer)

 public:
  ZTList() = default;
  // Shares the elements of the source.
  ZTList(const ZTList& _Src);
  // Clones the elements of the source.
  ZTList& operator=(const ZTList& _Src);
  ~ZTList() override;

 protected:
  void Clear() override { RemoveAll(); }

 public:
  // Clears, then shares (_Deep false) or clones (_Deep true) the source's elements.
  virtual void Assign(const ZTList& _Src, bool _Deep);
  // Removes the first node holding _Element itself; nothing when absent.
  virtual void Remove(const ZTObject* _Element);
  virtual void* AddHead(const ZTObject* _NewElement);
  virtual void* AddTail(const ZTObject* _NewElement);
  // The first node holding _Element itself, or null.
  virtual void* Find(const ZTObject* _Element) const;
  virtual bool Contains(const ZTObject* _Element) const;
  // Replaces the element of a node.
  virtual void Set(void* _Pos, const ZTObject* _NewElement);
  // A null position inserts at the head (before) or the tail (behind).
  virtual void* InsertBefore(void* _Pos, const ZTObject* _NewElement);
  virtual void* InsertBehind(void* _Pos, const ZTObject* _NewElement);

  unsigned GetCount() const { return m_Count; }
  bool IsEmpty() const { return m_Count == 0; }
  ZTObject* GetHead() const { return m_NodeHead ? m_NodeHead->m_Element : nullptr; }
  ZTObject* GetTail() const { return m_NodeTail ? m_NodeTail->m_Element : nullptr; }
  void* GetHeadPosition() const { return m_NodeHead; }
  void* GetTailPosition() const { return m_NodeTail; }
  // The element at _Pos; _Pos moves to the next (previous) node, null at the end.
  ZTObject* GetNext(void*& _Pos) const;
  ZTObject* GetPrev(void*& _Pos) const;
  ZTObject* Get(void* _Pos) const;

  void Remove(void* _Pos);
  void RemoveHead();
  void RemoveTail();
  void RemoveAll();

  // Shares the source's elements after clearing.
  void Copy(const ZTList& _Src) { Assign(_Src, false); }
  // Append the source's elements, shared or as clones.
  void CopyElements(const ZTList& _Src);
  void DeepCopyElements(const ZTList& _Src);

 protected:
  struct Node {
    Node* m_Next;
    Node* m_Prev;
    ZTObject* m_Element;
  };
  static Node* AsNode(void* _Pos) { return static_cast<Node*>(_Pos); }

  unsigned m_Count = 0;
  Node* m_NodeHead = nullptr;
  Node* m_NodeTail = nullptr;

 private:
  // A new node holding the attached element, not yet linked.
  static Node* MakeNode(const ZTObject* _NewElement, Node* _Prev, Node* _Next);
  // Links a made node between its neighbours.
  void* Link(Node* _Node);
};

// Typed face of ZTList: elements are down-cast to T at run time (null when an
// element is of another class).
template <class T>
class ZTTList : public ZTList {
 public:
  using ZTList::ZTList;

  T* GetHead() const { return ZTDynamicCastT<T>(ZTList::GetHead()); }
  T* GetTail() const { return ZTDynamicCastT<T>(ZTList::GetTail()); }
  T* GetNext(void*& _Pos) const { return ZTDynamicCastT<T>(ZTList::GetNext(_Pos)); }
  T* GetPrev(void*& _Pos) const { return ZTDynamicCastT<T>(ZTList::GetPrev(_Pos)); }
  T* Get(void* _Pos) const { return ZTDynamicCastT<T>(ZTList::Get(_Pos)); }
};

// A list kept in the order of its compare: true Eval(a, b) puts a before b.
// Elements are found by a binary search over the linked nodes.
class ZTSortedList : public ZTList {
  ZT_DECLARE_CLASS(ZTSortedList, ZTObjectCreator)

 public:
  // Ascending by the elements' Cmp.
  ZTSortedList();
  // Takes over the caller's reference to _Compare (it is not attached again).
  explicit ZTSortedList(ZTObjectCompare* _Compare) : m_Compare(_Compare) {}
  // Shares elements and compare of the source.
  ZTSortedList(const ZTSortedList& _Src);
  // Clones the source's elements and shares its compare.
  ZTSortedList& operator=(const ZTSortedList& _Src);
  ~ZTSortedList() override;

  // Inserts in order; an element equal to one present goes before the equal
  // one the search finds.
  virtual void* Add(const ZTObject* _Element);
  // The node of an element equal by the compare, or null.
  void* Find(const ZTObject* _Element) const override;
  // Removes the node Find returns; nothing when absent.
  void Remove(const ZTObject* _Element) override;
  using ZTList::Remove;

  ZTObjectCompare* GetObjectCompare() const { return m_Compare; }
  // Releases the old compare and holds the new one (null: linear search).
  void SetObjectCompare(ZTObjectCompare* _Compare);

 protected:
  // Ordering is the list's business: the positional insertions are inside use only.
  using ZTList::AddHead;
  using ZTList::AddTail;
  using ZTList::InsertBefore;
  using ZTList::InsertBehind;
  using ZTList::Set;

  // Returns the node of an element equal to _Element (or null) and sets _Pos to
  // the node behind which _Element belongs (null: at the head).
  virtual void* Search(const ZTObject* _Element, void*& _Pos) const;
  virtual void* LSearch(const ZTObject* _Element, void*& _Pos) const;

 private:
  ZTObjectCompare* m_Compare = nullptr;
};

// One receiver of notifications and the codes it wants. The receiver is not
// kept alive by the handler.
class ZTNotifyHandler : public ZTObject {
  ZT_DECLARE_CLASS(ZTNotifyHandler, ZTObjectCreator)

 public:
  ZTNotifyHandler() = default;
  ZTNotifyHandler(ZTObject* _Receiver, unsigned long _NotifyCodes)
      : m_Receiver(_Receiver), m_NotifyCodes(static_cast<std::uint32_t>(_NotifyCodes)) {}
  ZTNotifyHandler(const ZTNotifyHandler& _Src) = default;

  // True when the handler's codes and _Codes share a bit.
  virtual bool Matches(unsigned long _Codes) const { return (m_NotifyCodes & _Codes) != 0; }
  // Calls the receiver's Notify unless there is none or it is dieing; true when called.
  virtual bool DoIt(ZTObject* _Sender, unsigned long _Code, ZTParameter* _Params);

  ZTObject* GetReceiver() const { return m_Receiver; }
  void SetReceiver(ZTObject* _Receiver) { m_Receiver = _Receiver; }
  unsigned long GetNotifyCodes() const { return m_NotifyCodes; }
  void SetNotifyCodes(unsigned long _Codes) { m_NotifyCodes = static_cast<std::uint32_t>(_Codes); }

 private:
  ZTObject* m_Receiver = nullptr;
  std::uint32_t m_NotifyCodes = 0;
};

// The handlers of one object, its owner, in the order they were added.
class ZTNotifyHandlerList : public ZTTList<ZTNotifyHandler> {
  ZT_DECLARE_CLASS(ZTNotifyHandlerList, ZTObjectCreator)

 public:
  ZTNotifyHandlerList() = default;
  explicit ZTNotifyHandlerList(ZTObject* _Owner) : m_Owner(_Owner) {}
  ZTNotifyHandlerList(const ZTNotifyHandlerList& _Src) = default;

  ZTObject* GetOwner() const { return m_Owner; }

  // The first handler of _Receiver that matches _Codes, or null.
  virtual ZTNotifyHandler* GetHandler(ZTObject* _Receiver, unsigned long _Codes) const;
  // Appends a handler at the tail.
  virtual void* AddHandler(ZTNotifyHandler* _Handler);
  // Widens the codes of a matching handler of _Receiver, else appends a new
  // handler. Returns the handler that carries the codes.
  virtual ZTNotifyHandler* AddHandler(ZTObject* _Receiver, unsigned long _Codes);
  // Removes the first handler of _Receiver whatever its codes; true when one went.
  virtual bool RemoveHandler(ZTObject* _Receiver);
  // Delivers a notification to every handler, head to tail, that matches _Code.
  virtual void DoIt(ZTObject* _Sender, unsigned long _Code, ZTParameter* _Params);

 private:
  ZTObject* m_Owner = nullptr;
};
