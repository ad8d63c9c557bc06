// Ways of using a map over a while, beside the peers: the same body for all of them.
#include <cmath>
#include <memory>

#include <boost/container/flat_map.hpp>

#include "MapSupport.h"

namespace {

using benchmark::State;
using compare::Random;
using maps::Keys;

// One that moves all elements behind a new one.
template <class M>
constexpr bool isFlat = false;
template <class K, class V>
constexpr bool isFlat<boost::container::flat_map<K, V>> = true;

// A map of `n` keys, inserted in random order where that takes no more than another.
template <class M>
M Filled(unsigned int n) {
  maps::TidyHeap();
  M map;
  Keys keys = maps::Orders(n).Next();
  if constexpr (isFlat<M>) std::sort(keys.begin(), keys.end());
  maps::InsertAll(map, keys);
  return map;
}

// Draws keys that are in the map, a few of them very often: the rank's share of all falls as
// 1/rank.
class Skewed {
public:
  explicit Skewed(unsigned int n) : m_n(n), m_random(compare::FreshRandom()) {}
  int Next() {
    auto const rank = static_cast<unsigned long long>(std::pow(m_n, compare::Share(m_random)));
    return 2 * static_cast<int>(rank * 2654435761u % m_n); // spread over the keys
  }
  void Fill(Keys& keys) {
    for (int& key : keys)
      key = Next();
  }

private:
  unsigned int m_n;
  Random m_random;
};

// Fills an empty map with the same keys again and again; emptying it is not measured.
template <class M, class Insert>
void FillWith(State& state, Keys const& keys, Insert insert) {
  maps::TidyHeap();
  M map;
  for (auto _ : state) {
    for (int const key : keys)
      insert(map, typename M::value_type(key, 1));
    state.PauseTiming();
    map.clear();
    state.ResumeTiming();
  }
}

template <class M>
void InsertDescending(State& state, unsigned int n) {
  Keys keys = maps::Ascending(n);
  std::reverse(keys.begin(), keys.end());
  FillWith<M>(state, keys, [](M& map, auto const& element) { map.insert(element); });
}

template <class M>
void InsertAtEnd(State& state, unsigned int n) {
  FillWith<M>(state, maps::Ascending(n),
              [](M& map, auto const& element) { map.insert(map.end(), element); });
}

// Short ascending runs that start anywhere.
template <class M>
void InsertInRuns(State& state, unsigned int n) {
  constexpr unsigned int run = 32;
  maps::Orders starts(n / run + 1);
  Keys keys;
  for (int const start : starts.Next())
    for (unsigned int i = 0; i != run; ++i)
      keys.push_back(start * static_cast<int>(run) + static_cast<int>(i));
  keys.resize(n);
  FillWith<M>(state, keys, [](M& map, auto const& element) { map.insert(element); });
}

template <class M>
void InsertPresent(State& state, unsigned int n) {
  M map = Filled<M>(n);
  maps::Orders orders(n);
  for (auto _ : state)
    maps::InsertAll(map, orders.Next());
}

// The elements of another map, half of whose keys are there.
template <class M>
void InsertRange(State& state, unsigned int n) {
  M const half = Filled<M>(n / 2), whole = Filled<M>(n);
  for (auto _ : state) {
    state.PauseTiming();
    auto map = std::make_unique<M>(half);
    state.ResumeTiming();
    map->insert(whole.begin(), whole.end());
    state.PauseTiming();
    map.reset();
    state.ResumeTiming();
  }
}

template <class M>
void Assign(State& state, unsigned int n) {
  M const map = Filled<M>(n);
  M target = Filled<M>(n);
  for (auto _ : state) {
    target = map;
    benchmark::DoNotOptimize(target);
  }
}

// The newest `n` of ever growing keys.
template <class M>
void SlidingWindow(State& state, unsigned int n) {
  maps::TidyHeap();
  M map;
  maps::InsertAll(map, maps::Ascending(n));
  int next = 2 * static_cast<int>(n);
  for (auto _ : state)
    for (unsigned int i = 0; i != n; ++i, next += 2) {
      map.insert(typename M::value_type(next, 1));
      map.erase(map.begin());
    }
}

// Takes the least key and puts a later one back, as a simulation does with its events.
template <class M>
void QueueByKey(State& state, unsigned int n) {
  M map = Filled<M>(n);
  Random random = compare::FreshRandom();
  for (auto _ : state)
    for (unsigned int i = 0; i != n; ++i) {
      int key = (*map.begin()).first;
      map.erase(map.begin());
      key += 1 + static_cast<int>(random() % (4ul * n));
      while (!map.insert(typename M::value_type(key, 1)).second)
        ++key;
    }
}

template <class M>
void TakeFromFront(State& state, unsigned int n) {
  maps::TidyHeap();
  maps::Orders orders(n);
  M map;
  for (auto _ : state) {
    state.PauseTiming();
    maps::InsertAll(map, orders.Next());
    state.ResumeTiming();
    while (!map.empty())
      map.erase(map.begin());
  }
}

// Counts how often keys come, of which some come often.
template <class M>
void Counters(State& state, unsigned int n) {
  maps::TidyHeap();
  Skewed skewed(n);
  Keys keys(n);
  M map;
  for (auto _ : state) {
    state.PauseTiming();
    map.clear();
    skewed.Fill(keys);
    state.ResumeTiming();
    for (int const key : keys)
      map[key] += 1;
  }
}

// Removes one key in ten and inserts the same again.
template <class M>
void RefilledGaps(State& state, unsigned int n) {
  M map = Filled<M>(n);
  maps::Orders orders(n);
  for (auto _ : state) {
    state.PauseTiming();
    Keys const& all = orders.Next();
    Keys const keys(all.begin(), all.begin() + n / 10);
    state.ResumeTiming();
    for (int const key : keys)
      map.erase(key);
    for (std::size_t i = keys.size(); i-- != 0;)
      map.insert(typename M::value_type(keys[i], 1));
  }
  compare::CountOperations(state, std::size_t{n / 10} * 2);
}

// Maps of eight elements: made, filled, looked into and gone.
template <class M>
void TinyMaps(State& state, unsigned int n) {
  maps::TidyHeap();
  Random random = compare::FreshRandom();
  Keys keys(std::size_t{n / 8} * 8);
  for (auto _ : state) {
    state.PauseTiming();
    for (int& key : keys)
      key = static_cast<int>(random());
    state.ResumeTiming();
    std::vector<M> tiny(n / 8);
    for (std::size_t i = 0; i != keys.size(); ++i)
      tiny[i / 8].insert(typename M::value_type(keys[i], 1));
    for (std::size_t i = 0; i != keys.size(); ++i)
      benchmark::DoNotOptimize((*tiny[i / 8].find(keys[i])).second);
  }
}

template <class M>
void FindSkewed(State& state, unsigned int n) {
  M map = Filled<M>(n);
  Skewed skewed(n);
  Keys keys(100000);
  for (auto _ : state) {
    state.PauseTiming();
    skewed.Fill(keys);
    state.ResumeTiming();
    for (int const key : keys)
      benchmark::DoNotOptimize((*map.find(key)).second);
  }
  compare::CountOperations(state, keys.size());
}

// The same 64 keys in the same order, again and again.
template <class M>
void Find64Hot(State& state, unsigned int n) {
  M map = Filled<M>(n);
  Keys keys = maps::Orders(n).Next();
  keys.resize(64);
  for (auto _ : state)
    for (int const key : keys)
      benchmark::DoNotOptimize((*map.find(key)).second);
  compare::CountOperations(state, keys.size());
}

template <class M>
void FindAscending(State& state, unsigned int n) {
  M map = Filled<M>(n);
  Keys const keys = maps::Ascending(n);
  for (auto _ : state)
    for (int const key : keys)
      benchmark::DoNotOptimize((*map.find(key)).second);
}

// Ten elements in a row from a key that may be absent.
template <class M>
void ShortRanges(State& state, unsigned int n) {
  M const map = Filled<M>(n);
  Random random = compare::FreshRandom();
  Keys starts(10000);
  for (auto _ : state) {
    state.PauseTiming();
    for (int& start : starts)
      start = static_cast<int>(random() % (2ul * n));
    state.ResumeTiming();
    for (int const start : starts) {
      auto position = map.lower_bound(start);
      typename M::mapped_type sum = 0;
      for (int k = 0; k != 10 && position != map.end(); ++k, ++position)
        sum += (*position).second;
      benchmark::DoNotOptimize(sum);
    }
  }
  compare::CountOperations(state, starts.size());
}

template <class M>
void RegisterUses(char const* who) {
  auto const add = [&](char const* name, void (*run)(State&, unsigned int), bool growsAnywhere) {
    for (unsigned int const n : compare::Sizes({1000, 100000, 1000000}))
      if (!isFlat<M> || !growsAnywhere)
        compare::Register("map/" + std::string(name) + "/int-double", n, who, run);
  };
  add("insert descending", InsertDescending<M>, true);
  add("insert at the end", InsertAtEnd<M>, false);
  add("insert in runs", InsertInRuns<M>, true);
  add("insert present", InsertPresent<M>, true);
  add("insert range", InsertRange<M>, false);
  add("assign", Assign<M>, false);
  add("sliding window", SlidingWindow<M>, true);
  add("queue by key", QueueByKey<M>, true);
  add("take from the front", TakeFromFront<M>, true);
  add("counters", Counters<M>, true);
  add("refilled gaps", RefilledGaps<M>, true);
  add("tiny maps", TinyMaps<M>, false);
  add("find skewed", FindSkewed<M>, false);
  add("find 64 hot", Find64Hot<M>, false);
  add("find ascending", FindAscending<M>, false);
  add("short ranges", ShortRanges<M>, false);
}

[[maybe_unused]] bool const registered = [] {
  RegisterUses<HYLBasMap<int, double>>("ours");
  RegisterUses<std::map<int, double>>("std");
  RegisterUses<boost::container::map<int, double>>("boost");
  RegisterUses<absl::btree_map<int, double>>("absl-btree");
  RegisterUses<boost::container::flat_map<int, double>>("boost-flat");
  return true;
}();

} // namespace
