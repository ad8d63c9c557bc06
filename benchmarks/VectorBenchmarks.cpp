// The typed vector beside std::vector: the same body for both.
#include <vector>

#include "Compare.h"
#include "HYLBasVector.h"

namespace {

using benchmark::State;

template <class V>
V Filled(unsigned int n) {
  V v;
  v.reserve(n);
  for (unsigned int i = 0; i != n; ++i)
    v.push_back(static_cast<typename V::value_type>(i % 1000));
  return v;
}

template <class V>
void PushBack(State& state, unsigned int n) {
  for (auto _ : state) {
    V v;
    for (unsigned int i = 0; i != n; ++i)
      v.push_back(static_cast<typename V::value_type>(i));
    benchmark::DoNotOptimize(v.begin());
  }
}

template <class V>
void IndexedLoop(State& state, unsigned int n) {
  V v = Filled<V>(n);
  for (auto _ : state) {
    typename V::value_type sum = 0;
    benchmark::DoNotOptimize(&v);
    benchmark::ClobberMemory();
    for (decltype(v.size()) i = 0; i < v.size(); ++i)
      sum += v[i];
    benchmark::DoNotOptimize(sum);
  }
}

template <class V>
void IteratorLoop(State& state, unsigned int n) {
  V v = Filled<V>(n);
  for (auto _ : state) {
    typename V::value_type sum = 0;
    benchmark::DoNotOptimize(&v);
    benchmark::ClobberMemory();
    for (auto x : v)
      sum += x;
    benchmark::DoNotOptimize(sum);
  }
}

template <class V>
void AtLoop(State& state, unsigned int n) {
  V v = Filled<V>(n);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&v);
    benchmark::ClobberMemory();
    for (decltype(v.size()) i = 0; i < v.size(); ++i)
      v.at(i) += 1;
  }
}

// The vectors keep their size: what a step adds it also removes.
template <class V>
void InsertOneInTheMiddle(State& state, unsigned int n) {
  V v = Filled<V>(n);
  v.reserve(2 * n);
  for (auto _ : state) {
    v.insert(v.begin() + n / 2, 7);
    v.pop_back();
  }
  compare::CountOperations(state, 1);
}

template <class V>
void Insert64InTheMiddle(State& state, unsigned int n) {
  V v = Filled<V>(n);
  v.reserve(2 * n + 64);
  for (auto _ : state) {
    v.insert(v.begin() + n / 2, 64u, 7);
    v.resize(n);
  }
  compare::CountOperations(state, 1);
}

template <class V>
void EraseInTheMiddle(State& state, unsigned int n) {
  V v = Filled<V>(n);
  for (auto _ : state) {
    v.erase(v.begin() + n / 2);
    v.push_back(7);
  }
  compare::CountOperations(state, 1);
}

template <class V>
void ResizeWithValue(State& state, unsigned int n) {
  V v;
  v.reserve(n);
  for (auto _ : state) {
    v.resize(n, 7);
    benchmark::DoNotOptimize(v.begin());
    benchmark::ClobberMemory();
    v.clear();
  }
}

template <class V>
void Copy(State& state, unsigned int n) {
  V const v = Filled<V>(n);
  for (auto _ : state) {
    V copy(v);
    benchmark::DoNotOptimize(copy.begin());
    benchmark::ClobberMemory();
  }
}

template <class T>
void RegisterAll(char const* type) {
  using Ours = HYLBasVector<T>;
  using Std = std::vector<T>;
  auto const both = [&](char const* name, auto ours, auto peer, auto const&... sizes) {
    std::string const caseName = std::string("vector/") + name + '/' + type;
    ((compare::Register(caseName, sizes, "ours", ours),
      compare::Register(caseName, sizes, "std", peer)),
     ...);
  };
  both("push_back", PushBack<Ours>, PushBack<Std>, 16u, 1000u, 1000000u, 20000000u);
  both("indexed loop", IndexedLoop<Ours>, IndexedLoop<Std>, 16u, 1000u, 1000000u);
  both("begin-end loop", IteratorLoop<Ours>, IteratorLoop<Std>, 16u, 1000u, 1000000u);
  both("at loop", AtLoop<Ours>, AtLoop<Std>, 16u, 1000u, 1000000u);
  both("insert 1", InsertOneInTheMiddle<Ours>, InsertOneInTheMiddle<Std>, 100u, 10000u);
  both("insert 64", Insert64InTheMiddle<Ours>, Insert64InTheMiddle<Std>, 100u, 10000u);
  both("erase", EraseInTheMiddle<Ours>, EraseInTheMiddle<Std>, 100u, 10000u);
  both("resize", ResizeWithValue<Ours>, ResizeWithValue<Std>, 16u, 1000u, 100000u);
  both("copy", Copy<Ours>, Copy<Std>, 16u, 1000u, 100000u);
}

[[maybe_unused]] bool const registered = [] {
  RegisterAll<int>("int");
  RegisterAll<double>("double");
  return true;
}();

} // namespace
