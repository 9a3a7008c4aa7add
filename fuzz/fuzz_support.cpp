#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>

namespace zt_fuzz {

Input::Input(const std::uint8_t* _Data, std::size_t _Size) {
  if (_Size == 0) return;
  m_Options = _Data[0];
  m_Text.assign(reinterpret_cast<const char*>(_Data + 1), _Size - 1);
}

int Input::Length() const {
  switch ((m_Options >> 4) & 3) {
    case 2:
      return static_cast<int>(m_Text.size());
    case 3:
      return static_cast<int>(m_Text.size() / 2);
    default:
      return -1;
  }
}

void Fail(const char* _What, const std::string& _Detail) {
  std::fprintf(stderr, "zt fuzz: %s: %s\n", _What, _Detail.c_str());
  std::abort();
}

int LiveAllocations() {
  int live = 0;
  for (int category = 0; category < ZTMemMgr::MaxBlockCount; ++category)
    live += ZTMemMgr::GetUsageCount(category);
  return live;
}

}  // namespace zt_fuzz

// No protocol file and a settings store that does not exist, so that every
// run sees the documented defaults and writes nothing.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  ZTReportExcept::SetProtocolName(nullptr);
  setenv("ZT_REGISTRY", "/nonexistent/zt-fuzz/registry", 1);
  return 0;
}
