// The typed vector beside std::vector: the same body for both.
#include <initializer_list>
#include <iterator>
#include <string>
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
void InsertAtTheFront(State& state, unsigned int n) {
  V v = Filled<V>(n);
  v.reserve(n + 1);
  for (auto _ : state) {
    v.insert(v.begin(), 7);
    v.pop_back();
    benchmark::ClobberMemory();
  }
  compare::CountOperations(state, 1);
}

// Ranges of three until there are `n` elements or more.
template <class V>
void AppendRanges(State& state, unsigned int n) {
  typename V::value_type const range[] = {1, 2, 3};
  auto const* end = std::end(range);
  benchmark::DoNotOptimize(end); // how many they are is not to be known
  V v;
  v.reserve(n + 3);
  for (auto _ : state) {
    while (v.size() < n)
      v.insert(v.end(), std::begin(range), end);
    benchmark::ClobberMemory();
    v.clear();
  }
  compare::CountOperations(state, (n + 2) / 3);
}

template <class V>
void Swap(State& state, unsigned int n) {
  V a = Filled<V>(n), b = Filled<V>(n + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(&a);
    benchmark::DoNotOptimize(&b);
    benchmark::ClobberMemory();
    a.swap(b);
  }
  compare::CountOperations(state, 1);
}

// Short-lived short vectors, as they come into being in a loop.
template <class V>
void ShortLived(State& state, unsigned int n) {
  for (auto _ : state) {
    V v(n, 1);
    v.push_back(2);
    benchmark::DoNotOptimize(v.begin());
    benchmark::ClobberMemory();
  }
  compare::CountOperations(state, 1);
}

template <class V>
void Assign(State& state, unsigned int n) {
  V const v = Filled<V>(n);
  V target = Filled<V>(n);
  for (auto _ : state) {
    target = v;
    benchmark::ClobberMemory();
  }
}

// Bytes of the blocks of vectors that grew by appending.
template <class V>
void Memory(State& state, unsigned int n) {
  for (auto _ : state) {
    V v;
    for (unsigned int i = 0; i != n; ++i)
      v.push_back(1);
    state.counters["bytes for each"] =
        static_cast<double>(v.capacity()) * sizeof(typename V::value_type) / n;
  }
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
  auto const both = [&](char const* name, auto ours, auto peer,
                        std::initializer_list<unsigned int> sizes) {
    for (unsigned int const size : compare::Sizes(sizes)) {
      compare::Register(std::string(name) + '/' + type, size, "ours", ours);
      compare::Register(std::string(name) + '/' + type, size, "std", peer);
    }
  };
  both("vector/push_back", PushBack<Ours>, PushBack<Std>, {16, 1000, 1000000, 20000000});
  both("vector/indexed loop", IndexedLoop<Ours>, IndexedLoop<Std>, {16, 1000, 1000000});
  both("vector/begin-end loop", IteratorLoop<Ours>, IteratorLoop<Std>, {16, 1000, 1000000});
  both("vector/at loop", AtLoop<Ours>, AtLoop<Std>, {16, 1000, 1000000});
  both("vector/insert 1", InsertOneInTheMiddle<Ours>, InsertOneInTheMiddle<Std>, {100, 10000});
  both("vector/insert 64", Insert64InTheMiddle<Ours>, Insert64InTheMiddle<Std>, {100, 10000});
  both("vector/insert at the front", InsertAtTheFront<Ours>, InsertAtTheFront<Std>, {4, 16, 100});
  both("vector/append ranges of 3", AppendRanges<Ours>, AppendRanges<Std>, {16, 1000});
  both("vector/erase", EraseInTheMiddle<Ours>, EraseInTheMiddle<Std>, {100, 10000});
  both("vector/resize", ResizeWithValue<Ours>, ResizeWithValue<Std>, {16, 1000, 100000});
  both("vector/copy", Copy<Ours>, Copy<Std>, {16, 1000, 100000});
  both("vector/assign", Assign<Ours>, Assign<Std>, {16, 1000, 100000});
  both("vector/swap", Swap<Ours>, Swap<Std>, {16});
  both("vector/short-lived", ShortLived<Ours>, ShortLived<Std>, {4, 16});
  both("memory/vector", Memory<Ours>, Memory<Std>, {1000, 100000});
}

[[maybe_unused]] bool const registered = [] {
  RegisterAll<int>("int");
  RegisterAll<double>("double");
  return true;
}();

} // namespace
