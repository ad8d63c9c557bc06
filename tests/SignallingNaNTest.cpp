// Inline members change no bit of what they move, whatever the flags of the program. Signalling
// NaNs show it: registers of the x87 unit change them.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

#include "HYLBasArray2D.h"
#include "HYLBasMap.h"
#include "HYLBasMicroList.h"
#include "HYLBasPair.h"
#include "HYLBasSwap.h"
#include "HYLBasVector.h"

namespace {

template <class T>
using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
template <class T>
Bits<T> const pattern = static_cast<Bits<T>>(sizeof(T) == 4 ? 0x7fa12345 : 0x7ff4000012345678);

template <class T>
void MakeNaN(T& x) {
  std::memcpy(&x, &pattern<T>, sizeof x);
}

template <class T>
void ExpectNaNs(T const* first, T const* last) {
  EXPECT_NE(first, last);
  for (; first != last; ++first)
    EXPECT_EQ(std::memcmp(first, &pattern<T>, sizeof(T)), 0);
}

template <class T>
class SignallingNaN : public testing::Test {};
using Numbers = testing::Types<float, double>;
TYPED_TEST_SUITE(SignallingNaN, Numbers, );

TYPED_TEST(SignallingNaN, StaysOneInVectors) {
  TypeParam nan;
  MakeNaN(nan);
  HYLBasVector<TypeParam> v;
  for (int i = 0; i != 20; ++i)
    v.push_back(nan);
  v.resize(v.capacity(), nan);
  v.resize(v.capacity() + 1, nan);
  v.insert(v.begin(), nan);
  v.erase(v.begin());
  HYLBasVector<TypeParam> const copy(v), filled(3, nan);
  ExpectNaNs(copy.begin(), copy.end());
  ExpectNaNs(filled.begin(), filled.end());
  v.assign(5, nan);
  ExpectNaNs(v.begin(), v.end());
}

// The values that constructors and `Resize` take are the program's own to pass.
template <class Array, class T>
void CheckArray(T const& nan) {
  Array a(6, 5, T(1)), chosen(0, 0, T());
  T* const first = a.GetPointerToMemory();
  a.SetValue(nan);
  ExpectNaNs(first, first + 30);
  Array const nans(a);
  HYLBasVector<T> line;
  T places[6];
  a.SetValue(T(1));
  for (int i = 0; i != 6; ++i) {
    nans.GetRowCopy(i, line);
    a.SetRow(i, line);
    nans.GetRowCopy(i, 6, places);
    ExpectNaNs(places, places + 5);
  }
  ExpectNaNs(first, first + 30);
  a.SetValue(T(1));
  for (int j = 0; j != 5; ++j) {
    nans.GetColumnCopy(j, line);
    a.SetColumn(j, line.begin(), 6);
  }
  a.GetRowCopy(1, 5, first + 3); // over itself, element by element
  ExpectNaNs(first, first + 30);
  int const ids[] = {3, 1};
  a.ExtractRows(ids, 2, chosen);
  ExpectNaNs(chosen.GetPointerToMemory(), chosen.GetPointerToMemory() + 10);
  a.ExtractColumns(ids, 2, chosen);
  ExpectNaNs(chosen.GetPointerToMemory(), chosen.GetPointerToMemory() + 12);
}

TYPED_TEST(SignallingNaN, StaysOneInArrays) {
  TypeParam nan;
  MakeNaN(nan);
  CheckArray<HYLBasArray2D<TypeParam, 0>>(nan);
  CheckArray<HYLBasArray2D<TypeParam, 1>>(nan);
}

TYPED_TEST(SignallingNaN, StaysOneInMaps) {
  TypeParam nan;
  MakeNaN(nan);
  HYLBasMap<int, TypeParam> map;
  map.Insert(1, nan);
  map.InsertOver(2, nan);
  map.InsertOver(3, 1);
  map.InsertOver(3, nan);
  map.insert({4, nan});
  map.insert(map.end(), {5, nan});
  map.insert(map.begin(), map.end());
  for (auto const& element : HYLBasMap<int, TypeParam>(map.begin(), map.end()))
    ExpectNaNs(&element.second, &element.second + 1);
  EXPECT_EQ(map.size(), 5u);
}

TYPED_TEST(SignallingNaN, StaysOneInPairsAndLists) {
  TypeParam nan, other = 1;
  MakeNaN(nan);
  HYLBasPair<int const, TypeParam> const pair(1, nan), copy(pair);
  ExpectNaNs(&pair.second, &pair.second + 1);
  ExpectNaNs(&copy.second, &copy.second + 1);
  HYLBasPair<TypeParam, TypeParam> const both(nan, nan);
  ExpectNaNs(&both.first, &both.first + 1);
  ExpectNaNs(&both.second, &both.second + 1);
  HYLBasMicroList<TypeParam> list(1);
  MakeNaN(list[0]);
  HYLBasMicroList<TypeParam> listCopy(list);
  ExpectNaNs(&listCopy[0], &listCopy[0] + 1);
  HYLBasSwap(nan, other);
  ExpectNaNs(&other, &other + 1);
  HYLBasSwap(nan, other);
  ExpectNaNs(&nan, &nan + 1);
}

} // namespace
