// ZTMemMgr against malloc/free: single Alloc/Free pairs and bursts (a number of
// blocks allocated, then all released in allocation order) of 16 to 512 bytes,
// on one thread and on two threads at once. Argument 0 is the block size,
// argument 1 the burst length.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "zt.h"

namespace {

// An application category, so that the library's own blocks do not interfere.
constexpr int Category = 5;

// A long-lived block keeps the category's page, as the objects of a running
// program do; without it each pair would make and release a page.
class Resident {
 public:
  explicit Resident(bool _Keep) : m_Block(_Keep ? ZTMemMgr::Alloc(Category, 64) : nullptr) {}
  ~Resident() { ZTMemMgr::Free(Category, m_Block); }
  Resident(const Resident&) = delete;
  Resident& operator=(const Resident&) = delete;

 private:
  void* m_Block;
};

void BM_ZTMemMgrPair(benchmark::State& _State) {
  const auto size = static_cast<unsigned>(_State.range(0));
  const Resident resident(true);
  for (auto _ : _State) {
    void* p = ZTMemMgr::Alloc(Category, size);
    benchmark::DoNotOptimize(p);
    ZTMemMgr::Free(Category, p);
  }
}

// The same on a category with nothing else in it.
void BM_ZTMemMgrPairEmptyCategory(benchmark::State& _State) {
  const auto size = static_cast<unsigned>(_State.range(0));
  for (auto _ : _State) {
    void* p = ZTMemMgr::Alloc(Category + 1, size);
    benchmark::DoNotOptimize(p);
    ZTMemMgr::Free(Category + 1, p);
  }
}

void BM_MallocPair(benchmark::State& _State) {
  const auto size = static_cast<std::size_t>(_State.range(0));
  for (auto _ : _State) {
    void* p = std::malloc(size);
    benchmark::DoNotOptimize(p);
    std::free(p);
  }
}

void BM_ZTMemMgrBurst(benchmark::State& _State) {
  const auto size = static_cast<unsigned>(_State.range(0));
  std::vector<void*> blocks(static_cast<std::size_t>(_State.range(1)));
  const Resident resident(true);
  for (auto _ : _State) {
    for (void*& p : blocks) p = ZTMemMgr::Alloc(Category, size);
    benchmark::DoNotOptimize(blocks.data());
    for (void* p : blocks) ZTMemMgr::Free(Category, p);
  }
  _State.SetItemsProcessed(_State.iterations() * _State.range(1));
}

void BM_MallocBurst(benchmark::State& _State) {
  const auto size = static_cast<std::size_t>(_State.range(0));
  std::vector<void*> blocks(static_cast<std::size_t>(_State.range(1)));
  for (auto _ : _State) {
    for (void*& p : blocks) p = std::malloc(size);
    benchmark::DoNotOptimize(blocks.data());
    for (void* p : blocks) std::free(p);
  }
  _State.SetItemsProcessed(_State.iterations() * _State.range(1));
}

void PairSizes(benchmark::internal::Benchmark* _Bench) {
  for (int size : {16, 64, 256, 512}) _Bench->Arg(size);
}

void BurstSizes(benchmark::internal::Benchmark* _Bench) {
  for (int size : {16, 64, 256, 512}) _Bench->Args({size, 64});
  _Bench->Args({64, 1024});
}

}  // namespace

// One thread: CPU time, which other load on the machine disturbs least. Two
// threads: wall time, which includes waiting for the other thread.
BENCHMARK(BM_ZTMemMgrPair)->Apply(PairSizes);
BENCHMARK(BM_MallocPair)->Apply(PairSizes);
BENCHMARK(BM_ZTMemMgrPairEmptyCategory)->Arg(16)->Arg(512);
BENCHMARK(BM_ZTMemMgrBurst)->Apply(BurstSizes);
BENCHMARK(BM_MallocBurst)->Apply(BurstSizes);
BENCHMARK(BM_ZTMemMgrPair)->Apply(PairSizes)->Threads(2)->UseRealTime();
BENCHMARK(BM_MallocPair)->Apply(PairSizes)->Threads(2)->UseRealTime();
BENCHMARK(BM_ZTMemMgrBurst)->Apply(BurstSizes)->Threads(2)->UseRealTime();
BENCHMARK(BM_MallocBurst)->Apply(BurstSizes)->Threads(2)->UseRealTime();

BENCHMARK_MAIN();
