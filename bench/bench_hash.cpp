// ZTTStringHashTable lookups against std::unordered_map<std::string, ...>.
// Argument 0 is the number of keys, argument 1 the table's bucket count (the
// default 47, or a prime above the key count). Keys look like member names;
// every lookup hits, then a second set of runs looks up keys that are absent.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "zt.h"

namespace {

std::vector<std::string> Keys(int _Count, const char* _Prefix) {
  std::vector<std::string> keys;
  for (int i = 0; i < _Count; ++i) keys.push_back(_Prefix + std::to_string(i));
  return keys;
}

// The table and the element every key maps to; the table holds the references.
class ZTFixture {
 public:
  ZTFixture(int _Count, int _Buckets) : m_Table(_Buckets) {
    for (const std::string& key : Keys(_Count, "Member")) {
      m_Table.Insert(new ZTInteger(1), ZTString(key.c_str()));
    }
  }
  const ZTTStringHashTable<ZTInteger>& Table() const { return m_Table; }

 private:
  ZTTStringHashTable<ZTInteger> m_Table;
};

std::vector<ZTString> ZTKeys(int _Count, const char* _Prefix) {
  std::vector<ZTString> keys;
  for (const std::string& key : Keys(_Count, _Prefix)) keys.emplace_back(key.c_str());
  return keys;
}

void RunZT(benchmark::State& _State, const char* _Prefix) {
  const int count = static_cast<int>(_State.range(0));
  const ZTFixture fixture(count, static_cast<int>(_State.range(1)));
  const std::vector<ZTString> keys = ZTKeys(count, _Prefix);
  std::size_t i = 0;
  for (auto _ : _State) {
    const ZTInteger* found = fixture.Table().LookUp(keys[i]);
    benchmark::DoNotOptimize(found);
    if (++i == keys.size()) i = 0;
  }
}

void RunStd(benchmark::State& _State, const char* _Prefix) {
  const int count = static_cast<int>(_State.range(0));
  ZTInteger element(1);
  std::unordered_map<std::string, ZTInteger*> map;
  for (const std::string& key : Keys(count, "Member")) map.emplace(key, &element);
  const std::vector<std::string> keys = Keys(count, _Prefix);
  std::size_t i = 0;
  for (auto _ : _State) {
    auto found = map.find(keys[i]);
    benchmark::DoNotOptimize(found);
    if (++i == keys.size()) i = 0;
  }
}

void BM_ZTStringHashTableHit(benchmark::State& _State) { RunZT(_State, "Member"); }
void BM_ZTStringHashTableMiss(benchmark::State& _State) { RunZT(_State, "Absent"); }
void BM_UnorderedMapHit(benchmark::State& _State) { RunStd(_State, "Member"); }
void BM_UnorderedMapMiss(benchmark::State& _State) { RunStd(_State, "Absent"); }

// Typical member counts of a class with the default buckets, then a large table
// with the default and with enough buckets.
void Sizes(benchmark::internal::Benchmark* _Bench) {
  _Bench->Args({16, 47})->Args({64, 47})->Args({1000, 47})->Args({1000, 1009});
}

}  // namespace

BENCHMARK(BM_ZTStringHashTableHit)->Apply(Sizes);
BENCHMARK(BM_UnorderedMapHit)->Apply(Sizes);
BENCHMARK(BM_ZTStringHashTableMiss)->Apply(Sizes);
BENCHMARK(BM_UnorderedMapMiss)->Apply(Sizes);

BENCHMARK_MAIN();
