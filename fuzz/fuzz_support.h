// Shared by the fuzz targets: how the fuzzer's bytes become a parser's input,
// and the checks every run makes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "zt.h"

namespace zt_fuzz {

// The first byte chooses among a target's options, the rest is the text. The
// text is kept zero-terminated, so that a length of -1 stays within it.
class Input {
 public:
  Input(const std::uint8_t* _Data, std::size_t _Size);

  const char* Text() const { return m_Text.c_str(); }
  // Low four bits of the first byte: an index into a target's choices.
  template <class T, std::size_t N>
  T Pick(T const (&_Choices)[N]) const {
    return _Choices[(m_Options & 0x0F) % N];
  }
  // -1, the whole text (zero bytes included) or half of it, by bits 4 and 5.
  int Length() const;
  // Bits 6 and 7, for a target's own switches.
  bool Flag(int _Bit) const { return (m_Options >> (6 + _Bit)) & 1; }

 private:
  std::uint8_t m_Options = 0;
  std::string m_Text;
};

// Stops the run with a message: an invariant does not hold.
[[noreturn]] void Fail(const char* _What, const std::string& _Detail);

// Live allocations of the library, over all memory categories.
int LiveAllocations();

// Runs one parse. A parser may refuse text with the library's exceptions; any
// other exception escapes and ends the run. A run that leaves allocations
// behind is repeated: once-only set-up (library-wide constants) allocates the
// first time only, a leak every time.
template <class F>
void Run(F&& _Parse) {
  auto once = [&] {
    try {
      _Parse();
    } catch (const ZTExcept&) {
    }
  };
  const int before = LiveAllocations();
  once();
  if (LiveAllocations() == before) return;
  const int again = LiveAllocations();
  once();
  if (LiveAllocations() != again) Fail("leak", std::to_string(LiveAllocations() - again));
}

// Parses the text into a value of class T under one of the formats, prints it
// with and without the format, reads the print back and compares and clones.
template <class T, std::size_t N>
int FuzzValueText(const std::uint8_t* _Data, std::size_t _Size, const char* const (&_Formats)[N]) {
  const Input input(_Data, _Size);
  const char* const format = input.Pick(_Formats);
  Run([&] {
    T value;
    value.SetString(input.Text(), input.Length(), format);
    ZTString text;
    value.CopyIntoString(text, format);
    value.CopyIntoString(text, nullptr);
    T again;
    again.SetString(text.IsNull() ? nullptr : static_cast<const char*>(text), -1, nullptr);
    static_cast<void>(value.Cmp(again));
    const ZTObject* copy = value.Clone();
    copy->Attach();
    copy->Detach();
  });
  return 0;
}

}  // namespace zt_fuzz
