// The shared string pool.
#include "zthash.h"

ZT_IMPLEMENT_CLASS(ZTStringPool, ZTTStringHashTable<ZTString>, ZTObjectCreator, nullptr)

namespace {
// The one lookup key of all pool calls (pools are single-threaded).
ZTString& PoolKey(const char* _Text) {
  static ZTString key;
  key = _Text;
  return key;
}
}  // namespace

bool ZTStringPool::UseString(const char* _Text, ZTString*& _Str) {
  _Str = nullptr;
  if (!_Text || !*_Text) return false;
  const ZTString& key = PoolKey(_Text);
  if (ZTString* pooled = LookUp(key)) {
    pooled->Attach();
    _Str = pooled;
    return true;
  }
  auto* str = new ZTString(_Text);
  if (!Insert(str, key)) {
    str->Delete();
    return false;
  }
  _Str = str;  // the pool's reference is the only one
  return true;
}

bool ZTStringPool::UseString(const char* _Text, ZTString& _Str) {
  ZTString* pooled = nullptr;
  if (!UseString(_Text, pooled)) {
    _Str.SetEmpty();
    return false;
  }
  _Str = *pooled;
  return true;
}

void ZTStringPool::ReleaseString(ZTString*& _Str) {
  if (!_Str) return;
  // The key is a copy: removing the pooled string frees *_Str.
  const ZTString& key = PoolKey(*_Str);
  if (LookUp(key) == _Str && _Str->GetRefCount() < 2)
    Remove(key);
  else
    _Str->Detach();
  _Str = nullptr;
}

void ZTStringPool::ReleaseString(ZTString& _Str) {
  if (_Str.IsEmpty()) return;
  const ZTString& key = PoolKey(_Str);
  ZTString* pooled = LookUp(key);
  if (!pooled) return;
  if (pooled->GetRefCount() < 2)
    Remove(key);
  else
    pooled->Detach();
}
