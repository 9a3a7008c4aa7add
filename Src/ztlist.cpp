// Linked lists, the sorted list and notify handlers.
#include "ztlist.h"

#include <memory>
#include <new>
#include <vector>

ZT_IMPLEMENT_CLASS(ZTList, ZTObject, ZTObjectCreator, nullptr)
ZT_IMPLEMENT_CLASS(ZTSortedList, ZTList, ZTObjectCreator, nullptr)
ZT_IMPLEMENT_CLASS(ZTNotifyHandler, ZTObject, ZTObjectCreator, nullptr)
ZT_IMPLEMENT_CLASS(ZTNotifyHandlerList, ZTTList<ZTNotifyHandler>, ZTObjectCreator, nullptr)

// ---------------------------------------------------------------------------
// ZTList

ZTList::ZTList(const ZTList& _Src) : ZTObject(_Src) { CopyElements(_Src); }

ZTList& ZTList::operator=(const ZTList& _Src) {
  Assign(_Src, true);
  return *this;
}

ZTList::~ZTList() { RemoveAll(); }

void ZTList::Assign(const ZTList& _Src, bool _Deep) {
  if (&_Src == this) return;  // clearing first would lose the elements
  Clear();
  if (_Deep)
    DeepCopyElements(_Src);
  else
    CopyElements(_Src);
}

void ZTList::CopyElements(const ZTList& _Src) {
  for (const Node* n = _Src.m_NodeHead; n; n = n->m_Next) AddTail(n->m_Element);
}

void ZTList::DeepCopyElements(const ZTList& _Src) {
  for (const Node* n = _Src.m_NodeHead; n; n = n->m_Next) {
    // A class may refuse cloning with a null clone: there is nothing to store.
    if (ZTObject* clone = n->m_Element->Clone()) AddTail(clone);
  }
}

ZTList::Node* ZTList::MakeNode(const ZTObject* _NewElement, Node* _Prev, Node* _Next) {
  Node* newNode = new (std::nothrow) Node{_Next, _Prev, const_cast<ZTObject*>(_NewElement)};
  ZT_COND_CHECK(newNode != NULL);
  _NewElement->Attach();
  return newNode;
}

void* ZTList::Link(Node* _Node) {
  (_Node->m_Prev ? _Node->m_Prev->m_Next : m_NodeHead) = _Node;
  (_Node->m_Next ? _Node->m_Next->m_Prev : m_NodeTail) = _Node;
  ++m_Count;
  return _Node;
}

void* ZTList::AddHead(const ZTObject* _NewElement) {
  ZT_PARAM_CHECK(_NewElement);
  return Link(MakeNode(_NewElement, nullptr, m_NodeHead));
}

void* ZTList::AddTail(const ZTObject* _NewElement) {
  ZT_PARAM_CHECK(_NewElement);
  return Link(MakeNode(_NewElement, m_NodeTail, nullptr));
}

void* ZTList::InsertBefore(void* _Pos, const ZTObject* _NewElement) {
  ZT_PARAM_CHECK(_NewElement != NULL);
  if (!_Pos) return AddHead(_NewElement);
  Node* oldNode = AsNode(_Pos);
  if (!oldNode->m_Prev) ZT_COND_CHECK(oldNode == m_NodeHead);
  return Link(MakeNode(_NewElement, oldNode->m_Prev, oldNode));
}

void* ZTList::InsertBehind(void* _Pos, const ZTObject* _NewElement) {
  ZT_PARAM_CHECK(_NewElement != NULL);
  if (!_Pos) return AddTail(_NewElement);
  Node* oldNode = AsNode(_Pos);
  if (!oldNode->m_Next) ZT_COND_CHECK(oldNode == m_NodeTail);
  return Link(MakeNode(_NewElement, oldNode, oldNode->m_Next));
}

void ZTList::Set(void* _Pos, const ZTObject* _NewElement) {
  ZT_PARAM_CHECK(_NewElement != NULL);
  Node* node = AsNode(_Pos);
  ZT_COND_CHECK(node != NULL);
  const ZTObject* old = node->m_Element;
  _NewElement->Attach();  // first, so that storing the same element keeps it alive
  node->m_Element = const_cast<ZTObject*>(_NewElement);
  old->Detach();
}

ZTObject* ZTList::GetNext(void*& _Pos) const {
  const Node* node = AsNode(_Pos);
  if (!node) return nullptr;
  _Pos = node->m_Next;
  return node->m_Element;
}

ZTObject* ZTList::GetPrev(void*& _Pos) const {
  const Node* node = AsNode(_Pos);
  if (!node) return nullptr;
  _Pos = node->m_Prev;
  return node->m_Element;
}

ZTObject* ZTList::Get(void* _Pos) const {
  const Node* node = AsNode(_Pos);
  ZT_COND_CHECK(node != NULL);
  return node->m_Element;
}

void* ZTList::Find(const ZTObject* _Element) const {
  for (Node* n = m_NodeHead; n; n = n->m_Next)
    if (n->m_Element == _Element) return n;
  return nullptr;
}

bool ZTList::Contains(const ZTObject* _Element) const { return Find(_Element) != nullptr; }

void ZTList::Remove(void* _Pos) {
  Node* node = AsNode(_Pos);
  ZT_COND_CHECK(node != NULL);
  if (node != m_NodeHead) ZT_COND_CHECK(node->m_Prev != NULL);
  if (node != m_NodeTail) ZT_COND_CHECK(node->m_Next != NULL);
  (node->m_Prev ? node->m_Prev->m_Next : m_NodeHead) = node->m_Next;
  (node->m_Next ? node->m_Next->m_Prev : m_NodeTail) = node->m_Prev;
  --m_Count;
  const ZTObject* element = node->m_Element;
  delete node;
  // Last, with the list consistent: the element's destructor may use the list.
  element->Detach();
}

void ZTList::Remove(const ZTObject* _Element) {
  ZT_PARAM_CHECK(_Element);
  if (void* pos = Find(_Element)) Remove(pos);
}

void ZTList::RemoveHead() {
  ZT_COND_CHECK(m_NodeHead != NULL);
  Remove(m_NodeHead);
}

void ZTList::RemoveTail() {
  ZT_COND_CHECK(m_NodeTail != NULL);
  Remove(m_NodeTail);
}

void ZTList::RemoveAll() {
  // The chain is taken off the list before any element is released, so that
  // destructors run by the releases see an empty, consistent list.
  Node* n = m_NodeHead;
  m_NodeHead = m_NodeTail = nullptr;
  m_Count = 0;
  while (n) {
    Node* next = n->m_Next;
    const ZTObject* element = n->m_Element;
    delete n;
    element->Detach();
    n = next;
  }
}

// ---------------------------------------------------------------------------
// ZTSortedList

ZTSortedList::ZTSortedList() : m_Compare(new ZTObjectCompare(&ZTCompare::Less)) {
  m_Compare->Attach();
}

ZTSortedList::ZTSortedList(const ZTSortedList& _Src) : ZTList(_Src), m_Compare(_Src.m_Compare) {
  if (m_Compare) m_Compare->Attach();
}

ZTSortedList& ZTSortedList::operator=(const ZTSortedList& _Src) {
  SetObjectCompare(_Src.m_Compare);
  ZTList::operator=(_Src);
  return *this;
}

ZTSortedList::~ZTSortedList() {
  if (m_Compare) m_Compare->Detach();
}

void ZTSortedList::SetObjectCompare(ZTObjectCompare* _Compare) {
  if (_Compare) _Compare->Attach();  // first: the new compare may be the old one
  if (m_Compare) m_Compare->Detach();
  m_Compare = _Compare;
}

void* ZTSortedList::Add(const ZTObject* _Element) {
  if (IsEmpty()) return AddTail(_Element);
  void* pos = nullptr;
  Search(_Element, pos);
  return pos ? InsertBehind(pos, _Element) : AddHead(_Element);
}

void* ZTSortedList::Find(const ZTObject* _Element) const {
  void* pos = nullptr;
  return Search(_Element, pos);
}

void ZTSortedList::Remove(const ZTObject* _Element) {
  ZT_PARAM_CHECK(_Element != NULL);
  if (void* node = Find(_Element)) ZTList::Remove(node);
}

void* ZTSortedList::Search(const ZTObject* _Element, void*& _Pos) const {
  ZT_PARAM_CHECK(_Element != NULL);
  _Pos = nullptr;
  if (!m_NodeHead) return nullptr;
  if (!m_Compare || m_Count == 1) return LSearch(_Element, _Pos);

  unsigned lo = 0, hi = m_Count - 1, index = 0;
  Node* cur = m_NodeHead;
  while (lo < hi) {
    const unsigned mid = (lo + hi) / 2;
    for (; index < mid; ++index) cur = cur->m_Next;
    for (; index > mid; --index) cur = cur->m_Prev;
    if (m_Compare->Eval(cur->m_Element, _Element)) {
      cur = cur->m_Next;  // exists: mid < hi
      lo = index = mid + 1;
      if (lo == hi && cur->m_Element && m_Compare->IsEqual(cur->m_Element, _Element)) {
        _Pos = cur->m_Prev;
        return cur;
      }
    } else {
      hi = mid;
      if (m_Compare->IsEqual(cur->m_Element, _Element)) {
        _Pos = cur->m_Prev;
        return cur;
      }
    }
  }
  if (!cur) return nullptr;
  _Pos = m_Compare->Eval(cur->m_Element, _Element) ? cur : cur->m_Prev;
  return nullptr;
}

void* ZTSortedList::LSearch(const ZTObject* _Element, void*& _Pos) const {
  ZT_PARAM_CHECK(_Element != NULL);
  for (Node* n = m_NodeHead; n; n = n->m_Next) {
    if (!n->m_Element) continue;
    const bool equal = m_Compare ? m_Compare->IsEqual(n->m_Element, _Element)
                                 : n->m_Element->Cmp(_Element) == CmpEqual;
    if (equal || (m_Compare && !m_Compare->Eval(n->m_Element, _Element))) {
      _Pos = n->m_Prev;
      return equal ? n : nullptr;
    }
  }
  _Pos = m_NodeTail;
  return nullptr;
}

// ---------------------------------------------------------------------------
// Notify handlers

bool ZTNotifyHandler::DoIt(ZTObject* _Sender, unsigned long _Code, ZTParameter* _Params) {
  if (!m_Receiver || m_Receiver->IsDieing()) return false;
  m_Receiver->Notify(_Sender, _Code, _Params);
  return true;
}

ZTNotifyHandler* ZTNotifyHandlerList::GetHandler(ZTObject* _Receiver, unsigned long _Codes) const {
  for (void* pos = GetHeadPosition(); pos;) {
    ZTNotifyHandler* handler = GetNext(pos);
    if (handler && handler->GetReceiver() == _Receiver && handler->Matches(_Codes)) return handler;
  }
  return nullptr;
}

void* ZTNotifyHandlerList::AddHandler(ZTNotifyHandler* _Handler) {
  ZT_PARAM_CHECK(_Handler);
  return AddTail(_Handler);
}

ZTNotifyHandler* ZTNotifyHandlerList::AddHandler(ZTObject* _Receiver, unsigned long _Codes) {
  if (ZTNotifyHandler* handler = GetHandler(_Receiver, _Codes)) {
    handler->SetNotifyCodes(handler->GetNotifyCodes() | _Codes);
    return handler;
  }
  auto* handler = new ZTNotifyHandler(_Receiver, _Codes);
  AddHandler(handler);
  return handler;
}

bool ZTNotifyHandlerList::RemoveHandler(ZTObject* _Receiver) {
  ZTNotifyHandler* handler = GetHandler(_Receiver, 0xFFFFFFFF);
  if (!handler) return false;
  Remove(handler);
  return true;
}

namespace {

// A reference held until the holder goes out of scope.
struct Release {
  void operator()(const ZTObject* _Obj) const { _Obj->Detach(); }
};
template <class T>
using Held = std::unique_ptr<T, Release>;

template <class T>
Held<T> Hold(T* _Obj) {
  _Obj->Attach();
  return Held<T>(_Obj);
}

}  // namespace

void ZTNotifyHandlerList::DoIt(ZTObject* _Sender, unsigned long _Code, ZTParameter* _Params) {
  // A receiver may add or remove handlers while it is notified, or end the
  // owner and with it this list. So the list is held while the handlers run
  // (unless nobody holds it at all), the due handlers are collected and held
  // first, and one removed by an earlier receiver is not called any more.
  const Held<ZTNotifyHandlerList> self(GetRefCount() > 0 ? Hold(this) : nullptr);
  std::vector<Held<ZTNotifyHandler>> due;
  due.reserve(GetCount());
  for (void* pos = GetHeadPosition(); pos;) {
    ZTNotifyHandler* handler = GetNext(pos);
    if (handler && handler->Matches(_Code)) due.push_back(Hold(handler));
  }
  for (std::size_t i = 0; i < due.size(); ++i)
    if (i == 0 || Contains(due[i].get())) due[i]->DoIt(_Sender, _Code, _Params);
}
