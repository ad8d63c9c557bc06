/// \file
/// How a case is named: `family/case/type/size/who`, where `who` is "ours" or the peer. The table
/// script puts the cases that differ in `who` alone beside each other.
#pragma once

#include <string>

#include <benchmark/benchmark.h>

namespace compare {

template <class Function>
void Register(std::string const& caseName, unsigned int size, char const* who, Function run) {
  benchmark::RegisterBenchmark((caseName + '/' + std::to_string(size) + '/' + who).c_str(),
                               [=](benchmark::State& state) { run(state, size); });
}

} // namespace compare
