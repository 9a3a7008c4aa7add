// ZTString against std::string: copy, append, compare and find on a short
// (under 16 characters) and a long (1 KiB) text. Argument 0 is short, 1 long.
#include <benchmark/benchmark.h>

#include <string>

#include "zt.h"

namespace {

std::string Text(int _Long) {
  if (!_Long) return "short text";
  std::string text;
  while (text.size() < 1024) text += "the quick brown fox jumps over the lazy dog ";
  text.resize(1024 - 7);
  return text + "needle!";
}

void BM_ZTStringCopy(benchmark::State& _State) {
  const ZTString source(Text(static_cast<int>(_State.range(0))).c_str());
  for (auto _ : _State) {
    ZTString copy(source);
    benchmark::DoNotOptimize(copy);
  }
}

void BM_StdStringCopy(benchmark::State& _State) {
  const std::string source = Text(static_cast<int>(_State.range(0)));
  for (auto _ : _State) {
    std::string copy(source);
    benchmark::DoNotOptimize(copy);
  }
}

// A copy that is then changed: the append pays for the private block.
void BM_ZTStringAppend(benchmark::State& _State) {
  const ZTString source(Text(static_cast<int>(_State.range(0))).c_str());
  for (auto _ : _State) {
    ZTString text(source);
    text += "+tail";
    benchmark::DoNotOptimize(text);
  }
}

void BM_StdStringAppend(benchmark::State& _State) {
  const std::string source = Text(static_cast<int>(_State.range(0)));
  for (auto _ : _State) {
    std::string text(source);
    text += "+tail";
    benchmark::DoNotOptimize(text);
  }
}

// Equal texts in different blocks: the whole text is compared.
void BM_ZTStringCompare(benchmark::State& _State) {
  const std::string text = Text(static_cast<int>(_State.range(0)));
  const ZTString a(text.c_str());
  const ZTString b(text.c_str());
  for (auto _ : _State) {
    bool equal = a == b;
    benchmark::DoNotOptimize(equal);
  }
}

void BM_StdStringCompare(benchmark::State& _State) {
  const std::string a = Text(static_cast<int>(_State.range(0)));
  const std::string b = a;
  for (auto _ : _State) {
    bool equal = a == b;
    benchmark::DoNotOptimize(equal);
  }
}

// The searched text sits at the end.
void BM_ZTStringFind(benchmark::State& _State) {
  const ZTString text(Text(static_cast<int>(_State.range(0))).c_str());
  const char* needle = _State.range(0) ? "needle" : "text";
  for (auto _ : _State) {
    int pos = text.Find(needle);
    benchmark::DoNotOptimize(pos);
  }
}

void BM_StdStringFind(benchmark::State& _State) {
  const std::string text = Text(static_cast<int>(_State.range(0)));
  const char* needle = _State.range(0) ? "needle" : "text";
  for (auto _ : _State) {
    std::size_t pos = text.find(needle);
    benchmark::DoNotOptimize(pos);
  }
}

// Hashing must not copy: the same work as the bare text hash.
void BM_ZTStringHash(benchmark::State& _State) {
  const ZTString text(Text(static_cast<int>(_State.range(0))).c_str());
  for (auto _ : _State) {
    unsigned int hash = text.GetHashValue();
    benchmark::DoNotOptimize(hash);
  }
}

}  // namespace

BENCHMARK(BM_ZTStringCopy)->Arg(0)->Arg(1);
BENCHMARK(BM_StdStringCopy)->Arg(0)->Arg(1);
BENCHMARK(BM_ZTStringAppend)->Arg(0)->Arg(1);
BENCHMARK(BM_StdStringAppend)->Arg(0)->Arg(1);
BENCHMARK(BM_ZTStringCompare)->Arg(0)->Arg(1);
BENCHMARK(BM_StdStringCompare)->Arg(0)->Arg(1);
BENCHMARK(BM_ZTStringFind)->Arg(0)->Arg(1);
BENCHMARK(BM_StdStringFind)->Arg(0)->Arg(1);
BENCHMARK(BM_ZTStringHash)->Arg(0)->Arg(1);

BENCHMARK_MAIN();
