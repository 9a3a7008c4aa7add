#include "ztmemmgr.h"
#include <atomic>
#include <cstdlib>
#include "ztexcept.h"
namespace { std::atomic<int> s_Usage[ZTMemMgr::MaxBlockCount]; }
void* ZTMemMgr::Alloc(int _Category, unsigned _Size) {
  void* p = std::malloc(_Size < 16 ? 16 : _Size);
  ++s_Usage[_Category];
  return p;
}
void ZTMemMgr::Free(int _Category, void* _Pointer) {
  if (!_Pointer) return;
  --s_Usage[_Category];
  std::free(_Pointer);
}
int ZTMemMgr::GetUsageCount(int _Category) { return s_Usage[_Category].load(); }
