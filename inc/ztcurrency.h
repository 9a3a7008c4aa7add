// Money amounts: exact fixed-point numbers with four decimal places.
#pragma once

#include <cstdint>

#include "ztstring.h"
#include "zttypes.h"
#include "ztvalue.h"

// The amount of a currency in ten-thousandths as two 32-bit words, the low
// word first (the layout of the OLE currency type). Built and read as one
// 64-bit number through the two helpers, never through type punning.
struct tagCY {
  std::uint32_t Lo;
  std::int32_t Hi;

  constexpr std::int64_t ToInt64() const {
    return static_cast<std::int64_t>(
        (static_cast<std::uint64_t>(static_cast<std::uint32_t>(Hi)) << 32) | Lo);
  }
  static constexpr tagCY FromInt64(std::int64_t _Amount) {
    const auto bits = static_cast<std::uint64_t>(_Amount);
    return tagCY{static_cast<std::uint32_t>(bits),
                 static_cast<std::int32_t>(static_cast<std::uint32_t>(bits >> 32))};
  }
};
using CY = tagCY;

// A money amount held exactly as a signed 64-bit count of ten-thousandths
// (1.5 is 15000). Arithmetic keeps that precision: products and quotients are
// truncated at the fourth decimal, Round rounds half away from zero. A result
// beyond the 64-bit range is never wrapped: the operation throws a ZTExcept
// and leaves the value as it was. Text is read and written without the C
// library's locale; grouping formats ("#.##0,00" and friends) use the
// monetary separators of ZTIntlFormat both ways, so every printed amount
// reads back under the same format.
class ZTCurrency : public ZTValue {
  ZT_DECLARE_CLASS(ZTCurrency, ZTValueCreator)

 public:
  static const char m_ZTType[];
  // Library-wide constants 0, 1.0 and 10.0.
  static const ZTCurrency Zero;
  static const ZTCurrency One;
  static const ZTCurrency Ten;

  ZTCurrency() = default;
  explicit ZTCurrency(int _Val);
  explicit ZTCurrency(double _Val);
  explicit ZTCurrency(const char* _Str);
  explicit ZTCurrency(const tagCY& _Val);
  // A null integer or real gives a null currency.
  explicit ZTCurrency(const ZTInteger& _Val);
  explicit ZTCurrency(const ZTReal& _Val);
  ZTCurrency(const ZTCurrency& _Src) = default;

  void Set(int _Val);
  // Up to 4294967295 the fifth decimal rounds half up (on the magnitude);
  // larger magnitudes keep only whole units. NaN and magnitudes beyond the
  // range throw.
  void Set(double _Val);
  void Set(const tagCY& _Val);
  void Set(const ZTCurrency& _Val);
  ZTCurrency& operator=(int _Val) {
    Set(_Val);
    return *this;
  }
  ZTCurrency& operator=(double _Val) {
    Set(_Val);
    return *this;
  }
  ZTCurrency& operator=(const char* _Str) {
    SetString(_Str, -1, nullptr);
    return *this;
  }
  ZTCurrency& operator=(const ZTCurrency& _Val) {
    Set(_Val);
    return *this;
  }
  ZTCurrency& operator=(const ZTInteger& _Val) {
    SetValue(_Val);
    return *this;
  }
  ZTCurrency& operator=(const ZTReal& _Val) {
    SetValue(_Val);
    return *this;
  }
  using ZTValue::operator=;

  tagCY GetCY() const { return tagCY::FromInt64(m_Amount); }
  // Whole units, truncated toward zero (0 when null); an amount beyond the
  // int range throws.
  int GetInt() const;
  operator int() const { return GetInt(); }
  double GetDouble() const;
  operator double() const { return GetDouble(); }
  bool IsNegative() const { return GetCY().Hi < 0; }
  // The amount truncated toward zero to whole units, and the rest; null for a
  // null value.
  ZTCurrency IntPart() const;
  ZTCurrency FracPart() const;

  // Each returns this. Add and Sub ignore a null or zero operand (a null
  // target counts as 0); Mul does nothing when either side is null; Div does
  // nothing on a null target and refuses a null or zero divisor.
  virtual ZTCurrency& Add(const ZTCurrency& _Val);
  virtual ZTCurrency& Sub(const ZTCurrency& _Val);
  virtual ZTCurrency& Mul(const ZTCurrency& _Val);
  virtual ZTCurrency& Div(const ZTCurrency& _Val);
  // Rounds half away from zero to 0 to 3 decimals; 4 and more change nothing.
  virtual ZTCurrency& Round(int _Precision);
  ZTCurrency& Chs();

  ZTCurrency& operator+=(const ZTCurrency& _Val) { return Add(_Val); }
  ZTCurrency& operator-=(const ZTCurrency& _Val) { return Sub(_Val); }
  ZTCurrency& operator*=(const ZTCurrency& _Val) { return Mul(_Val); }
  ZTCurrency& operator/=(const ZTCurrency& _Val) { return Div(_Val); }
  ZTCurrency& operator+=(double _Val) { return Add(ZTCurrency(_Val)); }
  ZTCurrency& operator-=(double _Val) { return Sub(ZTCurrency(_Val)); }
  ZTCurrency& operator*=(double _Val) { return Mul(ZTCurrency(_Val)); }
  ZTCurrency& operator/=(double _Val) { return Div(ZTCurrency(_Val)); }
  ZTCurrency& operator+=(int _Val) { return Add(ZTCurrency(_Val)); }
  ZTCurrency& operator-=(int _Val) { return Sub(ZTCurrency(_Val)); }
  ZTCurrency& operator*=(int _Val) { return Mul(ZTCurrency(_Val)); }
  ZTCurrency& operator/=(int _Val) { return Div(ZTCurrency(_Val)); }

  // Over an array and its count. Sum adds every element to 0 (null elements
  // add nothing); Avg is 0 for no elements, else Sum divided by the count;
  // Max and Min give the element that compares greatest or smallest (a null
  // currency for no elements).
  static ZTCurrency Sum(const ZTCurrency* const _Array, int _Count);
  static ZTCurrency Avg(const ZTCurrency* const _Array, int _Count);
  static ZTCurrency Max(const ZTCurrency* const _Array, int _Count);
  static ZTCurrency Min(const ZTCurrency* const _Array, int _Count);

  // Value protocol. Get copies the 8 bytes of the amount (low word first).
  void Copy(const ZTObject* _Src) override;
  ZTCmpResult Cmp(const ZTObject* _Obj) const override;
  const char* GetTypeName() const override;
  void SetNull() override;
  using ZTValue::SetValue;
  ZTValue* SetValue(const ZTValue& _Value) override;
  using ZTValue::SetString;
  const char* SetString(const char* _Str, int _Len = -1, const char* _Format = nullptr) override;
  const char* CopyIntoString(ZTString& _Str, const char* _Format = nullptr) const override;
  unsigned int Get(void* _Buffer, unsigned int _Size) const override;
  ZTCmpResult Cmp(const ZTValue& _Value) const override;

 protected:
  // From the two words of the amount.
  ZTCurrency(std::int32_t _Hi, std::uint32_t _Lo);
  void Set(std::int32_t _Hi, std::uint32_t _Lo);

 private:
  // Stores an amount by the rule of every value store (no change when equal;
  // else SetDirty, store, clear null, Changed).
  void Store(std::int64_t _Amount);

  // 0 while null.
  std::int64_t m_Amount = 0;
};
