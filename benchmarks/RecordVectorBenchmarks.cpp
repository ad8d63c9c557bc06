// The record vectors beside the vector core, whose algorithms they share: the same body for all.
#include <array>
#include <string>

#include "Compare.h"
#include "HYLBasVectorGeneric.h"
#include "HYLBasVectorStruct.h"

namespace {

using benchmark::State;

using Core = HYLBasVectorGeneric;
using ByFunction = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
using Bytewise = HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;

template <class Record>
void CopyRecords(void const* source, void* destination, unsigned int count) {
  std::memmove(destination, source, count * sizeof(Record));
}

// The library's own copy function for numbers, a host's for records.
template <class Record>
HYLBasReplicatorGeneric Replicator() {
  if constexpr (std::is_arithmetic_v<Record>) {
    return HYLBasGetReplicator<Record>();
  } else {
    return {sizeof(Record), CopyRecords<Record>, nullptr};
  }
}

template <class V, class Record>
V Empty() {
  if constexpr (std::is_same_v<V, Bytewise>) {
    return V(HYLAspStructReplicator(sizeof(Record)), 0, nullptr);
  } else {
    return V(Replicator<Record>(), 0, nullptr);
  }
}

template <class V, class Record>
void RegisterFor(std::string const& type, char const* who) {
  Record value{};
  *reinterpret_cast<char*>(&value) = 1; // so that its bytes are not all equal
  auto const add = [&](char const* name, auto run) {
    for (unsigned int n : {16u, 1000u, 100000u})
      compare::Register("record vector/" + std::string(name) + '/' + type, n, who, run);
  };
  add("push back", [=](State& state, unsigned int n) {
    for (auto _ : state) {
      V v = Empty<V, Record>();
      for (unsigned int i = 0; i != n; ++i)
        v.PushBack(&value);
      benchmark::DoNotOptimize(v.Begin());
    }
  });
  add("insert and erase in the middle", [=](State& state, unsigned int n) {
    V v = Empty<V, Record>();
    v.Reserve(n + 1);
    v.Assign(n, &value);
    for (auto _ : state) {
      char* const middle = static_cast<char*>(v.Begin()) + n / 2 * sizeof(Record);
      v.Erase(v.Insert(middle, &value));
    }
    compare::CountOperations(state, 1);
  });
  add("fill", [=](State& state, unsigned int n) {
    V v = Empty<V, Record>();
    v.Reserve(n);
    for (auto _ : state) {
      v.Assign(n, &value);
      benchmark::DoNotOptimize(v.Begin());
      benchmark::ClobberMemory();
    }
  });
}

template <class Record>
void RegisterAll(std::string const& type) {
  RegisterFor<Bytewise, Record>("bytewise, " + type, "ours");
  RegisterFor<Core, Record>("bytewise, " + type, "core");
  RegisterFor<ByFunction, Record>("by function, " + type, "ours");
  RegisterFor<Core, Record>("by function, " + type, "core");
}

[[maybe_unused]] bool const registered = [] {
  RegisterAll<int>("int");
  RegisterAll<double>("double");
  RegisterAll<std::array<char, 12>>("12 bytes");
  RegisterAll<std::array<char, 40>>("40 bytes");
  return true;
}();

} // namespace
