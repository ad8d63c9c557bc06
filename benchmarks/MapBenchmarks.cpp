// The typed map's operations beside its peers': the same body for all of them. Every run starts
// from a heap in which no freed blocks of earlier runs lie about.
#include <memory>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "MapSupport.h"

namespace {

using benchmark::State;
using maps::Ascending;
using maps::InsertAll;
using maps::Keys;
using maps::Orders;
using maps::TidyHeap;

constexpr unsigned int mostLookups = 100000;

// By key and value apart, the form that most callers write.
template <class M>
void EmplaceAll(M& map, Keys const& keys) {
  for (int const key : keys)
    map.emplace(key, static_cast<typename M::mapped_type>(key));
}

template <class V>
void EmplaceAll(HYLBasMap<int, V>& map, Keys const& keys) {
  for (int const key : keys)
    map.Insert(key, static_cast<V>(key));
}

template <class M>
void IndexAll(M& map, Keys const& keys) {
  for (int const key : keys)
    map[key] = 1;
}

// Fills an empty map again and again; emptying it is not measured.
template <class M, class NextKeys, class Fill>
void FillRepeatedly(State& state, NextKeys nextKeys, Fill fill) {
  TidyHeap();
  M map;
  for (auto _ : state) {
    fill(map, nextKeys());
    state.PauseTiming();
    map.clear();
    state.ResumeTiming();
  }
}

template <class M>
void InsertRandom(State& state, unsigned int n) {
  Orders orders(n);
  FillRepeatedly<M>(
      state, [&]() -> Keys const& { return orders.Next(); }, InsertAll<M>);
}

template <class M>
void EmplaceRandom(State& state, unsigned int n) {
  Orders orders(n);
  FillRepeatedly<M>(
      state, [&]() -> Keys const& { return orders.Next(); },
      [](M& map, Keys const& keys) { EmplaceAll(map, keys); });
}

template <class M>
void InsertAscending(State& state, unsigned int n) {
  Keys const keys = Ascending(n);
  FillRepeatedly<M>(
      state, [&]() -> Keys const& { return keys; }, InsertAll<M>);
}

template <class M>
void IndexNew(State& state, unsigned int n) {
  Orders orders(n);
  FillRepeatedly<M>(
      state, [&]() -> Keys const& { return orders.Next(); }, IndexAll<M>);
}

// Looks keys of the map up, `offset` beyond them; others at every iteration.
template <class M, class Operation>
void Lookups(State& state, unsigned int n, int offset, Operation operation) {
  TidyHeap();
  M map;
  InsertAll(map, Orders(n).Next());
  compare::Random random = compare::FreshRandom();
  Keys keys(mostLookups);
  for (auto _ : state) {
    state.PauseTiming();
    for (int& key : keys)
      key = 2 * static_cast<int>(random() % n) + offset;
    state.ResumeTiming();
    for (int const key : keys)
      benchmark::DoNotOptimize(operation(map, key));
  }
  compare::CountOperations(state, keys.size());
}

template <class M>
auto ValueOf(M& map, int key) {
  return map.find(key)->second;
}

template <class M>
void FindHit(State& state, unsigned int n) {
  Lookups<M>(state, n, 0, ValueOf<M>);
}

// The same few keys in the same order, again and again.
template <class M>
void FindRepeatedly(State& state, unsigned int n) {
  M map;
  InsertAll(map, Ascending(n));
  Keys const keys = Orders(n).Next();
  for (auto _ : state)
    for (int const key : keys)
      benchmark::DoNotOptimize(ValueOf(map, key));
}

template <class M>
void FindMiss(State& state, unsigned int n) {
  Lookups<M>(state, n, 1, [](M& map, int key) { return map.find(key) == map.end(); });
}

template <class M>
void IndexPresent(State& state, unsigned int n) {
  Lookups<M>(state, n, 0, [](M& map, int key) { return map[key] += 1; });
}

template <class M>
void Erase(State& state, unsigned int n) {
  TidyHeap();
  Orders inserted(n), erased(n);
  M map;
  for (auto _ : state) {
    state.PauseTiming();
    InsertAll(map, inserted.Next());
    Keys const& keys = erased.Next();
    state.ResumeTiming();
    for (int const key : keys)
      map.erase(key);
  }
}

template <class M>
void Iterate(State& state, unsigned int n) {
  TidyHeap();
  M map;
  InsertAll(map, Orders(n).Next());
  for (auto _ : state) {
    typename M::mapped_type sum = 0;
    for (auto const& element : map)
      sum += element.second;
    benchmark::DoNotOptimize(sum);
  }
}

template <class M>
void Copy(State& state, unsigned int n) {
  TidyHeap();
  M map;
  InsertAll(map, Orders(n).Next());
  for (auto _ : state) {
    auto copy = std::make_unique<M>(map);
    state.PauseTiming();
    copy.reset();
    state.ResumeTiming();
  }
}

template <class M>
void Clear(State& state, unsigned int n) {
  TidyHeap();
  Orders orders(n);
  M map;
  for (auto _ : state) {
    state.PauseTiming();
    InsertAll(map, orders.Next());
    state.ResumeTiming();
    map.clear();
  }
}

// Bytes of the heap for each element, beyond the map itself. Of so many maps that what the heap
// keeps for itself does not count.
template <class M>
void Memory([[maybe_unused]] State& state, [[maybe_unused]] unsigned int n) {
#if defined(__GLIBC__)
  auto const used = [] {
    auto const heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
  };
  Orders orders(n);
  for (auto _ : state) {
    std::vector<M> maps(1 + 100000 / n);
    double const before = used();
    for (M& map : maps)
      InsertAll(map, orders.Next());
    state.counters["bytes for each"] = (used() - before) / static_cast<double>(maps.size() * n);
  }
#endif
}

template <class M>
void RegisterMap(std::string const& type, char const* who) {
  auto const all = [&](char const* name, auto run) {
    for (unsigned int const size : compare::Sizes({1000, 100000, 1000000}))
      compare::Register(std::string("map/") + name + '/' + type, size, who, run);
  };
  all("insert random", InsertRandom<M>);
  all("emplace random", EmplaceRandom<M>);
  all("insert ascending", InsertAscending<M>);
  all("find hit", FindHit<M>);
  for (unsigned int const size : {100u, 1000u})
    compare::Register("map/find repeatedly/" + type, size, who, FindRepeatedly<M>);
  all("find miss", FindMiss<M>);
  all("index present", IndexPresent<M>);
  all("index new", IndexNew<M>);
  all("erase by key", Erase<M>);
  all("iterate", Iterate<M>);
  all("copy", Copy<M>);
  all("clear", Clear<M>);
  for (unsigned int const size : compare::Sizes({1000, 100000}))
    compare::Register("memory/map/" + type, size, who, Memory<M>);
}

template <class V>
void RegisterMaps(char const* type) {
  RegisterMap<HYLBasMap<int, V>>(type, "ours");
  RegisterMap<std::map<int, V>>(type, "std");
  RegisterMap<boost::container::map<int, V>>(type, "boost");
  RegisterMap<absl::btree_map<int, V>>(type, "absl-btree");
}

[[maybe_unused]] bool const registered = [] {
  RegisterMaps<double>("int-double");
  RegisterMaps<int>("int-int");
  return true;
}();

} // namespace
