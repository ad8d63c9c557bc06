// What a host's own code does first: includes everything, fills a vector and a map, sends a
// type-erased one through policies of the library, and hands back to the system what it took.
#include <cstdio>
#include <string_view>

#include "HYLBasGenerics.h"
#include "LUXCORE.h"
#include "TARNHYLBasAlloc.h"

int main() {
  HYLBasVector<int> squares;
  HYLBasMap<int, double> map;
  for (int i = 0; i != 100; ++i) {
    squares.push_back(i * i);
    map[i] = map.Insert(-i, i)->second + 1;
  }
  squares.erase(squares.begin());
  bool isRight = squares.size() == 99 && squares.front() == 1 && squares[98] == 9801;

  map.InsertOver(7, 0.5);
  isRight &= map.find(7)->second == 0.5 && map.count(8) == 1 && map.erase(8) == 1;
  isRight &= map.size() == 198 && map.lower_bound(8) == map.upper_bound(7);
  double sum = 0;
  for (auto const& element : map)
    sum += element.second;
  isRight &= sum > 9000;

  double const half = 0.5;
  HYLBasVectorGeneric halves(HYLBasGetReplicator<double>(), 3, &half);
  isRight &= halves.Size() == 3 && static_cast<double const*>(halves.Begin())[2] == half;

  void* const block = mem_Malloc(100);
  isRight &= block != nullptr;
  mem_Free(block);
#if defined(PACKAGE_VERSION)
  isRight &= std::string_view(HYLBAS_VERSION_TEXT) == PACKAGE_VERSION;
#endif
  std::puts(isRight ? "consumer: all well" : "consumer: the library does not do what it should");
  return isRight ? 0 : 1;
}
