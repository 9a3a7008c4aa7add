// The pieces of a selection: operators with their SQL texts and the values
// a selection compares with.
#pragma once

#include <cstdint>

#include "ztcont.h"
#include "ztstring.h"
#include "ztvalue.h"

// How a value is compared (equal, less, like, between, is null, in ...) or how
// conditions are joined (and, or). The low byte of a code is the comparison,
// the higher bits are modifiers.
class ZTOperator : public ZTObject {
  ZT_DECLARE_CLASS(ZTOperator, ZTObjectCreator)

 public:
  enum : unsigned long {
    OpEqual = 1,
    OpLess = 2,
    OpGreater = 3,
    OpLessEqual = 4,
    OpGreaterEqual = 5,
    OpIn = 6,
    OpMatches = 16,
    OpLike = 32,
    OpBetween = 128,
    OpComparison = 0xFF,  // mask of the comparison byte
    OpNot = 0x1000,
    OpIsNull = 0x2000,
    OpAnd = 0x4000,
    OpOr = 0x8000,
    OpCondition = 0x80000,  // marks a condition; no text of its own
    OpDistinct = 0x10000000,
    OpUnique = 0x20000000
  };

  // Index -1 is an operator that belongs to a name only.
  ZTOperator() : ZTOperator(-1, nullptr) {}
  ZTOperator(int _Idx, const char* _Name);
  ZTOperator(int _Idx, const char* _Name, const char* _Val);
  ZTOperator(int _Idx, unsigned long _Op);
  ZTOperator(int _Idx, const char* _Name, unsigned long _Op);
  ZTOperator(const ZTOperator& _Src) = default;

  // Stores the code and the SQL text it stands for (empty for an unknown code).
  void Set(unsigned long _Op);
  // Stores a text given directly; the code stays.
  void Set(const char* _Val);

  unsigned long Get() const { return m_Op; }
  const ZTString& GetName() const { return m_Name; }
  int GetIndex() const { return m_Index; }
  const ZTString& GetText() const { return m_Text; }

  // Mask not 0 and all its bits in the code.
  bool IsOP(unsigned long _Mask) const { return _Mask && (m_Op & _Mask) == _Mask; }
  bool IsNull() const { return (m_Op & OpIsNull) != 0; }
  bool IsNot() const { return (m_Op & OpNot) != 0; }
  bool IsCondition() const { return (m_Op & OpCondition) != 0; }
  bool IsBetween() const { return (m_Op & OpBetween) != 0; }
  bool IsOperatorOrNull() const { return (m_Op & (OpComparison | OpIsNull)) != 0; }
  // Same index and, with a name, the same name without case; without a name,
  // an empty own name.
  bool IsItMe(int _Idx, const char* _Name) const;

  // The SQL text of a code as statements print it; null for an unknown code
  // and for the codes that have a text only when stored (distinct, unique).
  static const char* OpToString(unsigned long _Op);

 protected:
  void SetIndex(int _Idx) { m_Index = _Idx; }

 private:
  ZTString m_Name;
  std::int32_t m_Index;
  ZTString m_Text;
  std::uint32_t m_Op = 0;
};

// An operator over a range of selection entries: the start is the operator's
// index; the inner-loop operator joins the entries inside the block.
class ZTOpConditionBlock : public ZTOperator {
  ZT_DECLARE_CLASS(ZTOpConditionBlock, ZTObjectCreator)

 public:
  ZTOpConditionBlock() : ZTOpConditionBlock(-1, -1, 0, 0, 0, 0) {}
  ZTOpConditionBlock(int _Start, int _End, unsigned long _Op, unsigned long _Op2,
                     unsigned long _Op3, unsigned long _OpInnerLoop);
  ZTOpConditionBlock(const ZTOpConditionBlock& _Src) = default;

  void SetRange(int _Start, int _End);
  void SetOpInnerLoop(unsigned long _Op) { m_OpInnerLoop = static_cast<std::uint32_t>(_Op); }

  int GetStart() const { return GetIndex(); }
  int GetEnd() const { return m_End; }
  unsigned long GetOp2() const { return m_Op2; }
  unsigned long GetOp3() const { return m_Op3; }
  unsigned long GetOpInnerLoop() const { return m_OpInnerLoop; }

 private:
  std::int32_t m_End;
  std::uint32_t m_Op2;
  std::uint32_t m_Op3;
  std::uint32_t m_OpInnerLoop;
};

// A value of a selection: names a value by position and name and holds the
// value to compare with. An automatic value is cloned, any other is held
// itself. A selection value without a held value is null.
class ZTSelectionValue : public ZTValue {
  ZT_DECLARE_CLASS(ZTSelectionValue, ZTValueCreator)

 public:
  static const char m_ZTType[];  // "selectionValue"

  ZTSelectionValue() : ZTSelectionValue(-1, ZTString::Empty(), nullptr) {}
  ZTSelectionValue(int _Idx, const ZTString& _Name, const ZTValue* _Value);
  ZTSelectionValue(const ZTSelectionValue& _Src);
  ZTSelectionValue& operator=(const ZTSelectionValue& _Src);
  ~ZTSelectionValue() override;

  ZTValue* Get() { return m_Value; }
  const ZTValue* Get() const { return m_Value; }
  using ZTValue::Get;
  // Replaces the held value (null: none).
  void Set(const ZTValue* _Value);

  int GetIndex() const { return m_Index; }
  const ZTString& GetName() const { return m_Name; }
  // Same index and the same name without case.
  bool IsItMe(int _Idx, const ZTString& _Name) const;

  void Copy(const ZTObject* _Src) override;
  const char* GetTypeName() const override;
  void SetNull() override;
  using ZTValue::Cmp;
  // Equal only to a selection value of the same index and name (without case).
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 private:
  std::int32_t m_Index;
  ZTString m_Name;
  ZTValue* m_Value = nullptr;
};

// The operators of a selection; at most one per index and name.
class ZTOperatorArray : public ZTTPArray<ZTOperator> {
  ZT_DECLARE_CLASS(ZTOperatorArray, ZTObjectCreator)

 public:
  explicit ZTOperatorArray(int _Grow = DefaultSize) : ZTTPArray<ZTOperator>(_Grow) {}
  ZTOperatorArray(const ZTOperatorArray& _Src) = default;

  // Appends the operator after removing the one of the same index and name.
  int Add(ZTOperator* _Op);
  // Each replaces the operator of the same index and name, or appends one.
  ZTOperator* Set(int _Idx, const char* _Name, const char* _Op);
  ZTOperator* Set(int _Idx, const char* _Name, unsigned long _Op);
  ZTOperator* Set(int _Idx, const char* _Op);
  ZTOperator* Set(int _Idx, unsigned long _Op);
  // By name only (index -1).
  ZTOperator* Set(const char* _Name, const char* _Op);
  ZTOperator* Set(const char* _Name, unsigned long _Op);

  using ZTTPArray<ZTOperator>::Get;
  // The first operator of that index and name (a null name: an empty name).
  ZTOperator* Get(int _Idx, const char* _Name);
  const ZTOperator* Get(int _Idx, const char* _Name) const;
  ZTOperator* Get(const char* _Name) { return Get(-1, _Name); }
  const ZTOperator* Get(const char* _Name) const { return Get(-1, _Name); }
  // The text of the name's operator of index -1, or the empty text.
  const ZTString& GetString(const char* _Name) const;

 private:
  int IndexOf(int _Idx, const char* _Name) const;
  ZTOperator* Replace(ZTOperator* _Op);
};

// The selection values of a selection; at most one per index and name.
class ZTSelectionValueArray : public ZTTPArray<ZTSelectionValue> {
  ZT_DECLARE_CLASS(ZTSelectionValueArray, ZTObjectCreator)

 public:
  explicit ZTSelectionValueArray(int _Grow = DefaultSize) : ZTTPArray<ZTSelectionValue>(_Grow) {}
  ZTSelectionValueArray(const ZTSelectionValueArray& _Src) = default;

  // Removes the entry of that index and name, then appends a new one when a
  // value is given; returns the new entry (null without a value).
  ZTSelectionValue* Set(int _Idx, const ZTString& _Name, const ZTValue* _Value);

  using ZTTPArray<ZTSelectionValue>::Get;
  ZTSelectionValue* Get(int _Idx, const ZTString& _Name);
  const ZTSelectionValue* Get(int _Idx, const ZTString& _Name) const;
  // The value held by the entry of that index and name, or null.
  ZTValue* GetValue(int _Idx, const ZTString& _Name);
  const ZTValue* GetValue(int _Idx, const ZTString& _Name) const;
};
