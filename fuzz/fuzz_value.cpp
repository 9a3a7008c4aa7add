// Text parser of one value class, chosen by the build (ZT_FUZZ_VALUE).
#include "fuzz_support.h"

namespace formats {

// Named, not internal: only one class of each target uses its list.
// None and the empty format, plus those the class documents and a few odd ones.
template <class T>
struct Formats {
  static constexpr const char* List[] = {nullptr, ""};
};
template <>
struct Formats<ZTBool> {
  static constexpr const char* List[] = {nullptr, "",   "#",    "Ja|Nein|-", "T|F", ".true.",
                                         ".FALSE.", ".t.", ".W.", "|",        "a||", "x"};
};
template <>
struct Formats<ZTInteger> {
  static constexpr const char* List[] = {nullptr, "", "%d", "%05d", "%x"};
};
template <>
struct Formats<ZTReal> {
  static constexpr const char* List[] = {nullptr, "",     "0.00",   "#.##0,00", "#.##0",
                                         "0.0'0'", "0", "%.3f", "#"};
};

}  // namespace formats

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _Data, std::size_t _Size) {
  return zt_fuzz::FuzzValueText<ZT_FUZZ_VALUE>(_Data, _Size, formats::Formats<ZT_FUZZ_VALUE>::List);
}
