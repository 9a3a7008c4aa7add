// ZTBinary: a value holding a block of bytes.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "zttypes.h"
#include "zttypes_internal.h"

using namespace zt_types;

namespace {

struct FreeBlock {
  void operator()(unsigned char* _Data) const { std::free(_Data); }
};
using Block = std::unique_ptr<unsigned char, FreeBlock>;

// A block of _Len bytes, or null when it cannot be had (warned).
Block AllocBlock(std::size_t _Len) {
  Block block(_Len <= UINT_MAX ? static_cast<unsigned char*>(std::malloc(_Len)) : nullptr);
  if (!block) ZT_WARNING("Unable to allocate memory");
  return block;
}

int HexDigit(char _Ch) {
  if (_Ch >= '0' && _Ch <= '9') return _Ch - '0';
  if (_Ch >= 'a' && _Ch <= 'f') return _Ch - 'a' + 10;
  if (_Ch >= 'A' && _Ch <= 'F') return _Ch - 'A' + 10;
  return -1;
}

}  // namespace

const char ZTBinary::m_ZTType[] = "binary";
ZT_IMPLEMENT_CLASS(ZTBinary, ZTValue, ZTValueCreator, ZTBinary::m_ZTType)

ZTBinary::ZTBinary(const void* _Data, unsigned int _Len) { Set(_Data, _Len); }

ZTBinary::ZTBinary(const ZTBinary& _Src) : ZTValue(_Src) {
  if (!_Src.m_Len) return;
  Block block = AllocBlock(_Src.m_Len);
  if (!block) {
    SetFlag(FlagNull);  // no bytes to hold: the copy is null
    return;
  }
  std::memcpy(block.get(), _Src.m_Data, _Src.m_Len);
  m_Data = block.release();
  m_Len = _Src.m_Len;
}

ZTBinary::~ZTBinary() { std::free(m_Data); }

void ZTBinary::Adopt(unsigned char* _Data, unsigned int _Len) {
  Block block(_Data);
  SetDirty();
  ClearFlag(FlagNull);
  std::free(m_Data);
  m_Data = block.release();
  m_Len = _Len;
  Changed();
}

void ZTBinary::Set(const void* _Data, unsigned int _Len) {
  if (!IsNull() && _Data == m_Data && _Len == m_Len) return;
  Block block;
  if (_Len) {
    block = AllocBlock(_Len);
    if (!block) return;
    if (_Data)
      std::memcpy(block.get(), _Data, _Len);
    else
      std::memset(block.get(), 0, _Len);
  }
  Adopt(block.release(), _Len);
}

void ZTBinary::Set(const ZTBinary& _Src) {
  if (_Src.IsNull())
    SetNull();
  else
    Set(_Src.m_Data, _Src.m_Len);
}

void ZTBinary::AppendData(void* _Data, unsigned int _Len) {
  const std::size_t total = std::size_t{m_Len} + _Len;
  Block block;
  if (total) {
    block = AllocBlock(total);
    if (!block) return;
    if (m_Len) std::memcpy(block.get(), m_Data, m_Len);
    if (_Data)
      std::memcpy(block.get() + m_Len, _Data, _Len);
    else
      std::memset(block.get() + m_Len, 0, _Len);
  }
  Adopt(block.release(), static_cast<unsigned int>(total));
}

void ZTBinary::Copy(const ZTObject* _Src) {
  CheckCopySource(_Src);
  Set(*static_cast<const ZTBinary*>(_Src));
}

ZTCmpResult ZTBinary::Cmp(const ZTObject* _Obj) const {
  return CmpKindOf(_Obj);
}

const char* ZTBinary::GetTypeName() const { return m_ZTType; }

// A null binary holds no bytes.
void ZTBinary::SetNull() {
  ZTValue::SetNull();
  std::free(m_Data);
  m_Data = nullptr;
  m_Len = 0;
}

void ZTBinary::SetEmpty() { SetNull(); }

ZTValue* ZTBinary::SetValue(const ZTValue& _Value) {
  if (&_Value == this) return this;
  if (_Value.IsNull())
    SetNull();
  else if (IsKindOf(&_Value))
    Set(static_cast<const ZTBinary&>(_Value));
  else
    SetString(_Value.GetString(), -1, nullptr);
  return this;
}

// Two hexadecimal digits per byte; an odd last character is ignored. A text
// with any other character is refused before the value changes.
const char* ZTBinary::SetString(const char* _Str, int _Len, const char*) {
  if (!_Str) {
    SetNull();
    return _Str;
  }
  const std::size_t len = TextLength(_Str, _Len);
  if (len < 2) {
    SetNull();
    return _Str;
  }
  const std::size_t count = len / 2;
  for (std::size_t i = 0; i < count * 2; ++i)
    if (HexDigit(_Str[i]) < 0)
      ZT_THROW_FMT("The string '%s' is not a hexadecimal text", std::string(_Str, len).c_str());
  Block block = AllocBlock(count);
  if (!block) return _Str;
  for (std::size_t i = 0; i < count; ++i)
    block.get()[i] = static_cast<unsigned char>(HexDigit(_Str[2 * i]) * 16 + HexDigit(_Str[2 * i + 1]));
  Adopt(block.release(), static_cast<unsigned int>(count));
  return _Str;
}

const char* ZTBinary::CopyIntoString(ZTString& _Str, const char*) const {
  static constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  if (!IsNull()) {
    text.resize(std::size_t{m_Len} * 2);
    for (unsigned int i = 0; i < m_Len; ++i) {
      text[2 * i] = digits[m_Data[i] >> 4];
      text[2 * i + 1] = digits[m_Data[i] & 0x0F];
    }
  }
  return AssignText(_Str, text.data(), text.size());
}

unsigned int ZTBinary::Get(void* _Buffer, unsigned int _Size) const {
  if (IsNull()) return 0;
  if (_Buffer && m_Len) std::memcpy(_Buffer, m_Data, _Size < m_Len ? _Size : m_Len);
  return m_Len;
}

// Byte order over the common length; when that agrees the shorter orders first.
ZTCmpResult ZTBinary::Cmp(const ZTValue& _Value) const {
  bool decided;
  const ZTCmpResult nulls = CmpNulls(*this, _Value, decided);
  if (decided) return nulls;
  const ZTBinary* other = ZTDynamicCastT<ZTBinary>(&_Value);
  if (!other) return ZTValue::Cmp(_Value);
  const unsigned int common = m_Len < other->m_Len ? m_Len : other->m_Len;
  int order = common ? std::memcmp(m_Data, other->m_Data, common) : 0;
  if (!order) order = m_Len < other->m_Len ? -1 : (m_Len > other->m_Len ? 1 : 0);
  return order < 0 ? CmpLess : (order > 0 ? CmpGreater : CmpEqual);
}
