// Operators, condition blocks and selection values.
#include "ztoperator.h"

#include <memory>

namespace {

// The texts of the operator codes: the text an operator stores, and the text
// statements print. They differ for the negated orderings, which an operator
// stores as the reverse ordering.
struct OpTexts {
  std::uint32_t m_Op;
  const char* m_Stored;
  const char* m_Printed;
};

constexpr OpTexts s_OpTexts[] = {
    {ZTOperator::OpEqual, "=", "="},
    {ZTOperator::OpLess, "<", "<"},
    {ZTOperator::OpGreater, ">", ">"},
    {ZTOperator::OpLessEqual, "<=", "<="},
    {ZTOperator::OpGreaterEqual, ">=", ">="},
    {ZTOperator::OpIn, " in ", " in "},
    {ZTOperator::OpMatches, " matches ", " matches "},
    {ZTOperator::OpLike, " like ", " like "},
    {ZTOperator::OpBetween, " between ", " between "},
    {ZTOperator::OpNot | ZTOperator::OpEqual, "<>", "<>"},
    {ZTOperator::OpNot | ZTOperator::OpLess, ">=", " not <"},
    {ZTOperator::OpNot | ZTOperator::OpGreater, "<=", " not >"},
    {ZTOperator::OpNot | ZTOperator::OpLessEqual, ">", " not <="},
    {ZTOperator::OpNot | ZTOperator::OpGreaterEqual, "<", " not >="},
    {ZTOperator::OpNot | ZTOperator::OpIn, " not in ", " not in "},
    {ZTOperator::OpNot | ZTOperator::OpMatches, " not matches ", " not matches "},
    {ZTOperator::OpNot | ZTOperator::OpLike, " not like ", " not like "},
    {ZTOperator::OpNot | ZTOperator::OpBetween, " not between ", " not between "},
    {ZTOperator::OpIsNull, " is null ", " is null "},
    {ZTOperator::OpNot | ZTOperator::OpIsNull, " is not null ", " is not null "},
    {ZTOperator::OpAnd, " and ", " and "},
    {ZTOperator::OpOr, " or ", " or "},
    {ZTOperator::OpDistinct, " distinct ", nullptr},
    {ZTOperator::OpUnique, " unique ", nullptr},
};

// The entry of a code, null when it has none. The condition mark only marks
// an operator and has no bearing on its text.
const OpTexts* FindOpTexts(unsigned long _Op) {
  const auto op =
      static_cast<std::uint32_t>(_Op & ~static_cast<unsigned long>(ZTOperator::OpCondition));
  for (const OpTexts& texts : s_OpTexts)
    if (texts.m_Op == op) return &texts;
  return nullptr;
}

const char* TextOf(const ZTString& _Str) {
  const char* text = _Str;
  return text ? text : "";
}

bool SameName(const ZTString& _Own, const char* _Name) {
  return ZTString::CmpNoCase(TextOf(_Own), _Name ? _Name : "") == CmpEqual;
}

// Holds a new object until an array takes it; destroys it if none does.
struct DeleteUnowned {
  void operator()(const ZTObject* _Obj) const { _Obj->Delete(); }
};
template <class T>
using Unowned = std::unique_ptr<T, DeleteUnowned>;

}  // namespace

// ---------------------------------------------------------------------------
// ZTOperator

ZT_IMPLEMENT_CLASS(ZTOperator, ZTObject, ZTObjectCreator, nullptr)

ZTOperator::ZTOperator(int _Idx, const char* _Name)
    : m_Name(_Name ? _Name : ""), m_Index(_Idx), m_Text("") {}

ZTOperator::ZTOperator(int _Idx, const char* _Name, const char* _Val) : ZTOperator(_Idx, _Name) {
  Set(_Val);
}

ZTOperator::ZTOperator(int _Idx, unsigned long _Op) : ZTOperator(_Idx, nullptr, _Op) {}

ZTOperator::ZTOperator(int _Idx, const char* _Name, unsigned long _Op) : ZTOperator(_Idx, _Name) {
  Set(_Op);
}

void ZTOperator::Set(unsigned long _Op) {
  const auto op = static_cast<std::uint32_t>(_Op);
  if (op == m_Op) return;
  m_Op = op;
  const OpTexts* texts = FindOpTexts(op);
  m_Text = texts ? texts->m_Stored : "";
}

void ZTOperator::Set(const char* _Val) {
  ZT_PARAM_CHECK(_Val);
  m_Text = _Val;
}

bool ZTOperator::IsItMe(int _Idx, const char* _Name) const {
  return m_Index == _Idx && SameName(m_Name, _Name);
}

// No code, or the condition mark alone, has the empty text.
const char* ZTOperator::OpToString(unsigned long _Op) {
  if ((_Op & ~static_cast<unsigned long>(OpCondition)) == 0) return "";
  const OpTexts* texts = FindOpTexts(_Op);
  return texts ? texts->m_Printed : nullptr;
}

// ---------------------------------------------------------------------------
// ZTOpConditionBlock

ZT_IMPLEMENT_CLASS(ZTOpConditionBlock, ZTOperator, ZTObjectCreator, nullptr)

ZTOpConditionBlock::ZTOpConditionBlock(int _Start, int _End, unsigned long _Op, unsigned long _Op2,
                                       unsigned long _Op3, unsigned long _OpInnerLoop)
    : ZTOperator(_Start, _Op),
      m_End(_End),
      m_Op2(static_cast<std::uint32_t>(_Op2)),
      m_Op3(static_cast<std::uint32_t>(_Op3)),
      m_OpInnerLoop(static_cast<std::uint32_t>(_OpInnerLoop)) {}

void ZTOpConditionBlock::SetRange(int _Start, int _End) {
  SetIndex(_Start);
  m_End = _End;
}

// ---------------------------------------------------------------------------
// ZTSelectionValue

const char ZTSelectionValue::m_ZTType[] = "selectionValue";
ZT_IMPLEMENT_CLASS(ZTSelectionValue, ZTValue, ZTValueCreator, ZTSelectionValue::m_ZTType)

ZTSelectionValue::ZTSelectionValue(int _Idx, const ZTString& _Name, const ZTValue* _Value)
    : m_Index(_Idx), m_Name(_Name) {
  Set(_Value);
}

ZTSelectionValue::ZTSelectionValue(const ZTSelectionValue& _Src)
    : ZTValue(_Src), m_Index(_Src.m_Index), m_Name(_Src.m_Name) {
  Set(_Src.m_Value);
}

ZTSelectionValue& ZTSelectionValue::operator=(const ZTSelectionValue& _Src) {
  m_Index = _Src.m_Index;
  m_Name = _Src.m_Name;
  Set(_Src.m_Value);
  return *this;
}

ZTSelectionValue::~ZTSelectionValue() {
  if (m_Value) m_Value->Detach();
}

// The null bit follows the held value; selection values are not tracked.
void ZTSelectionValue::Set(const ZTValue* _Value) {
  ZTValue* held = nullptr;
  if (_Value)
    held = _Value->IsAutoDelete() ? static_cast<ZTValue*>(_Value->Clone())
                                  : const_cast<ZTValue*>(_Value);
  if (held) held->Attach();  // before the old one goes: it may be the same value
  if (m_Value) m_Value->Detach();
  m_Value = held;
  held ? ClearFlag(FlagNull) : SetFlag(FlagNull);
}

bool ZTSelectionValue::IsItMe(int _Idx, const ZTString& _Name) const {
  return m_Index == _Idx && SameName(m_Name, _Name);
}

void ZTSelectionValue::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  *this = *static_cast<const ZTSelectionValue*>(_Src);
}

const char* ZTSelectionValue::GetTypeName() const { return m_ZTType; }

void ZTSelectionValue::SetNull() { Set(nullptr); }

ZTCmpResult ZTSelectionValue::Cmp(const ZTValue& _Value) const {
  const ZTSelectionValue* other = ZTDynamicCastT<ZTSelectionValue>(&_Value);
  if (!other || !IsItMe(other->m_Index, other->m_Name)) return CmpNotEqual;
  return CmpEqual;
}

// ---------------------------------------------------------------------------
// ZTOperatorArray

ZT_IMPLEMENT_CLASS(ZTOperatorArray, ZTPArray, ZTObjectCreator, nullptr)

int ZTOperatorArray::IndexOf(int _Idx, const char* _Name) const {
  for (int pos = GetFirstIndex(); pos >= 0;) {
    const int at = pos;
    const ZTOperator* op = GetNext(pos);
    if (op && op->IsItMe(_Idx, _Name)) return at;
  }
  return InvalidIndex;
}

int ZTOperatorArray::Add(ZTOperator* _Op) {
  ZT_PARAM_CHECK(_Op);
  const char* name = TextOf(_Op->GetName());
  for (int at; (at = IndexOf(_Op->GetIndex(), name)) != InvalidIndex;) {
    if (ZTPArray::Get(at) == _Op) return at;  // already here: removing it would release it
    ZTPArray::Remove(at);
  }
  return ZTPArray::Add(_Op);
}

ZTOperator* ZTOperatorArray::Replace(ZTOperator* _Op) {
  Unowned<ZTOperator> op(_Op);
  const int at = IndexOf(op->GetIndex(), TextOf(op->GetName()));
  if (at == InvalidIndex)
    ZTPArray::Add(op.get());
  else
    ZTPArray::Set(at, op.get());
  return op.release();
}

ZTOperator* ZTOperatorArray::Set(int _Idx, const char* _Name, const char* _Op) {
  ZT_PARAM_CHECK(_Name);
  ZT_PARAM_CHECK(_Op);
  return Replace(new ZTOperator(_Idx, _Name, _Op));
}

ZTOperator* ZTOperatorArray::Set(int _Idx, const char* _Name, unsigned long _Op) {
  ZT_PARAM_CHECK(_Name);
  return Replace(new ZTOperator(_Idx, _Name, _Op));
}

ZTOperator* ZTOperatorArray::Set(int _Idx, const char* _Op) {
  ZT_PARAM_CHECK(_Op);
  return Replace(new ZTOperator(_Idx, nullptr, _Op));
}

ZTOperator* ZTOperatorArray::Set(int _Idx, unsigned long _Op) {
  return Replace(new ZTOperator(_Idx, nullptr, _Op));
}

ZTOperator* ZTOperatorArray::Set(const char* _Name, const char* _Op) {
  ZT_PARAM_CHECK(_Name);
  ZT_PARAM_CHECK(_Op);
  return Replace(new ZTOperator(-1, _Name, _Op));
}

ZTOperator* ZTOperatorArray::Set(const char* _Name, unsigned long _Op) {
  ZT_PARAM_CHECK(_Name);
  return Replace(new ZTOperator(-1, _Name, _Op));
}

ZTOperator* ZTOperatorArray::Get(int _Idx, const char* _Name) {
  const int at = IndexOf(_Idx, _Name);
  return at == InvalidIndex ? nullptr : Get(at);
}

const ZTOperator* ZTOperatorArray::Get(int _Idx, const char* _Name) const {
  const int at = IndexOf(_Idx, _Name);
  return at == InvalidIndex ? nullptr : Get(at);
}

const ZTString& ZTOperatorArray::GetString(const char* _Name) const {
  const ZTOperator* op = Get(-1, _Name);
  return op ? op->GetText() : ZTString::Empty();
}

// ---------------------------------------------------------------------------
// ZTSelectionValueArray

ZT_IMPLEMENT_CLASS(ZTSelectionValueArray, ZTPArray, ZTObjectCreator, nullptr)

ZTSelectionValue* ZTSelectionValueArray::Set(int _Idx, const ZTString& _Name,
                                             const ZTValue* _Value) {
  // Made before the old entry goes: the value may be held by that entry only.
  Unowned<ZTSelectionValue> entry(_Value ? new ZTSelectionValue(_Idx, _Name, _Value) : nullptr);
  while (const ZTSelectionValue* old = Get(_Idx, _Name)) ZTPArray::Remove(old);
  if (entry) ZTPArray::Add(entry.get());
  return entry.release();
}

ZTSelectionValue* ZTSelectionValueArray::Get(int _Idx, const ZTString& _Name) {
  return const_cast<ZTSelectionValue*>(
      static_cast<const ZTSelectionValueArray*>(this)->Get(_Idx, _Name));
}

const ZTSelectionValue* ZTSelectionValueArray::Get(int _Idx, const ZTString& _Name) const {
  for (int pos = GetFirstIndex(); pos >= 0;) {
    const ZTSelectionValue* entry = GetNext(pos);
    if (entry && entry->IsItMe(_Idx, _Name)) return entry;
  }
  return nullptr;
}

ZTValue* ZTSelectionValueArray::GetValue(int _Idx, const ZTString& _Name) {
  ZTSelectionValue* entry = Get(_Idx, _Name);
  return entry ? entry->Get() : nullptr;
}

const ZTValue* ZTSelectionValueArray::GetValue(int _Idx, const ZTString& _Name) const {
  const ZTSelectionValue* entry = Get(_Idx, _Name);
  return entry ? entry->Get() : nullptr;
}
