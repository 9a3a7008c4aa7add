// The one-line parameter grammar: parse (once or twice), write both list
// forms, read them back (same entries, same text), fill the text as a
// template, push it.
#include <cctype>

#include "fuzz_support.h"

namespace {

struct Separators {
  char m_Name;
  char m_Value;
};

// Entry names (without case) and texts, in order.
std::string Entries(const ZTParameter& _Param) {
  std::string out;
  for (int i = 0; i < _Param.GetCount(); ++i) {
    for (const char* p = _Param.GetName(i); *p; ++p)
      out += static_cast<char>(std::tolower(static_cast<unsigned char>(*p)));
    const ZTValue* value = _Param.GetValue(i);
    out += value ? "='" + std::string(static_cast<const char*>(value->GetString())) + "'\n" : "=?\n";
  }
  return out;
}

void ExpectReadBack(const ZTParameter& _Param, const ZTString& _Printed, bool _Named) {
  ZTParameter again;
  again.SetFromString(_Printed);
  if (Entries(again) != Entries(_Param))
    zt_fuzz::Fail("entries differ after reading the printed line back",
                  std::string(_Printed) + "\n" + Entries(_Param) + "--\n" + Entries(again));
  ZTString reprinted;
  if (_Named)
    again.CopyIntoString(reprinted, nullptr);
  else
    again.CopyIntoString(reprinted);
  if (reprinted.Compare(_Printed) != 0)
    zt_fuzz::Fail("printed line changed", std::string(_Printed) + "\n" + std::string(reprinted));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _Data, std::size_t _Size) {
  static constexpr Separators Choices[] = {{0, 0},    {'#', '|'}, {'=', ';'}, {':', 0},
                                           {0, '|'},  {',', ','}, {'\'', '<'}, {' ', '"'}};
  const zt_fuzz::Input input(_Data, _Size);
  const Separators separators = input.Pick(Choices);
  zt_fuzz::Run([&] {
    ZTParameter param;
    param.SetFromString(input.Text(), input.Length(), separators.m_Name, separators.m_Value);
    if (input.Flag(0))  // again on top: every entry is replaced in place
      param.AddFromString(input.Text(), input.Length(), separators.m_Name, separators.m_Value);
    ZTString list;
    param.CopyIntoString(list);
    ZTString named;
    param.CopyIntoString(named, nullptr);
    if (separators.m_Name == 0 && separators.m_Value == 0) {
      ExpectReadBack(param, list, false);
      ExpectReadBack(param, named, true);
    }
    ZTString filled;
    param.CopyIntoString(filled, input.Text());
    if (input.Flag(1)) param.Push(input.Text());
  });
  return 0;
}
