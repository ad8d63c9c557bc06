// What a host's own code does first: includes everything, fills a vector and a map, sends a
// type-erased one through policies of the library, and hands back to the system what it took.
#include <cstdio>
#include <string_view>

#include "HYLBasGenerics.h"
#include "LUXCORE.h"
#include "TARNHYLBasAlloc.h"

namespace {

bool Check(bool holds, char const* what) {
  if (!holds) std::fprintf(stderr, "consumer: %s\n", what);
  return holds;
}

bool FillsATypedVector() {
  HYLBasVector<int> squares;
  for (int i = 0; i != 100; ++i)
    squares.push_back(i * i);
  squares.erase(squares.begin());
  return Check(squares.size() == 99 && squares.front() == 1 && squares[98] == 9801,
               "a typed vector lost its elements");
}

bool KeepsATypedMap() {
  HYLBasMap<int, double> map;
  for (int i = 0; i != 100; ++i)
    map[i] = map.Insert(-i, i)->second + 1;
  map.InsertOver(7, 0.5);
  bool const found = map.find(7)->second == 0.5 && map.count(8) == 1 && map.erase(8) == 1;
  double sum = 0;
  for (auto const& element : map)
    sum += element.second;
  return Check(found && map.size() == 198 && map.lower_bound(8) == map.upper_bound(7) && sum > 9000,
               "a typed map lost its elements");
}

bool DrivesTheCoreWithAPolicy() {
  double const half = 0.5;
  HYLBasVectorGeneric halves(HYLBasGetReplicator<double>(), 3, &half);
  return Check(halves.Size() == 3 && static_cast<double const*>(halves.Begin())[2] == half,
               "a type-erased vector lost its elements");
}

bool CallsTheHostsMemoryLibrary() {
  void* const block = mem_Malloc(100);
  mem_Free(block);
  return Check(block != nullptr, "the memory library refused 100 bytes");
}

bool IsOfItsPackagesVersion() {
#if defined(PACKAGE_VERSION)
  return Check(std::string_view(HYLBAS_VERSION_TEXT) == PACKAGE_VERSION,
               "the header and the package disagree on the version");
#else
  return true;
#endif
}

} // namespace

int main() {
  if (!IsOfItsPackagesVersion() || !FillsATypedVector() || !KeepsATypedMap() ||
      !DrivesTheCoreWithAPolicy() || !CallsTheHostsMemoryLibrary())
    return 1;
  std::puts("consumer: all well");
  return 0;
}
