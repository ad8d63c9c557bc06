/// \file
/// How a case is named: `family/case/type/size/who`, where `who` is "ours" or the peer. tools/bench
/// puts the cases that differ in `who` alone beside each other, and starts a process for every
/// single measurement, with a seed and, for pictures, sizes of its own.
#pragma once

#include <cstdlib>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace compare {

using Random = std::mt19937;

/// For random contents: others at every call and, through `HYLBAS_BENCH_SEED`, in every process.
inline Random FreshRandom() {
  static unsigned int seed = [] {
    char const* const text = std::getenv("HYLBAS_BENCH_SEED");
    return text == nullptr ? 0 : static_cast<unsigned int>(std::atoi(text)) * 1000;
  }();
  return Random(++seed);
}

/// At random from 0 to 1, 1 excluded.
inline double Share(Random& random) { return static_cast<double>(random()) / 4294967296.0; }

/// The sizes of a case: those of `HYLBAS_BENCH_SIZES` where that is set, separated by blanks.
inline std::vector<unsigned int> Sizes(std::initializer_list<unsigned int> usual) {
  char const* text = std::getenv("HYLBAS_BENCH_SIZES");
  if (text == nullptr) return usual;
  std::vector<unsigned int> sizes;
  for (char* end; unsigned long const size = std::strtoul(text, &end, 10); text = end)
    sizes.push_back(static_cast<unsigned int>(size));
  return sizes;
}

/// Times are given for one operation. An iteration does `size` of them unless its case says how
/// many.
inline void CountOperations(benchmark::State& state, std::size_t perIteration) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(perIteration));
}

template <class Function>
void Register(std::string const& caseName, unsigned int size, char const* who, Function run) {
  benchmark::RegisterBenchmark((caseName + '/' + std::to_string(size) + '/' + who).c_str(),
                               [=](benchmark::State& state) {
                                 run(state, size);
                                 if (state.items_processed() == 0) CountOperations(state, size);
                               });
}

} // namespace compare
