// Inline members change no bit of what they move, whatever the flags of the program. Signalling
// NaNs show it: registers of the x87 unit change them.
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "HYLBasArray2D.h"
#include "HYLBasMap.h"
#include "HYLBasMicroList.h"
#include "HYLBasPair.h"
#include "HYLBasSwap.h"
#include "HYLBasVector.h"

namespace {

template <class T>
class SignallingNaN : public testing::Test {
protected:
  SignallingNaN() {
    std::uint32_t const narrow = 0x7fa12345;
    std::uint64_t const wide = 0x7ff4000012345678;
    std::memcpy(&m_nan, sizeof m_nan == 4 ? static_cast<void const*>(&narrow) : &wide,
                sizeof m_nan);
  }
  void Expect(T const* first, T const* last) {
    EXPECT_NE(first, last);
    for (; first != last; ++first)
      EXPECT_EQ(std::memcmp(first, &m_nan, sizeof m_nan), 0);
  }

  // The values that constructors and `Resize` take are the program's own to pass.
  template <class Array>
  void CheckArray() {
    Array a(6, 5, T(1)), nans(6, 5, T(1)), chosen(0, 0, T());
    T *const first = a.GetPointerToMemory(), places[6] = {};
    HYLBasVector<T> line;
    nans.SetValue(m_nan);
    for (int i = 0; i != 6; ++i) {
      nans.GetRowCopy(i, line);
      a.SetRow(i, line);
      nans.GetRowCopy(i, 6, places);
      Expect(places, places + 5);
    }
    Expect(first, first + 30);
    a.SetValue(T(1));
    for (int j = 0; j != 5; ++j) {
      nans.GetColumnCopy(j, line);
      a.SetColumn(j, line.begin(), 6);
    }
    a.GetRowCopy(1, 5, first + 3); // over itself, element by element
    Array const copy(a);
    int const ids[] = {3, 1};
    copy.ExtractRows(ids, 2, chosen);
    Expect(chosen.GetPointerToMemory(), chosen.GetPointerToMemory() + 10);
    copy.ExtractColumns(ids, 2, chosen);
    Expect(chosen.GetPointerToMemory(), chosen.GetPointerToMemory() + 12);
    Expect(first, first + 30);
  }

  T m_nan;
};
using Numbers = testing::Types<float, double>;
TYPED_TEST_SUITE(SignallingNaN, Numbers, );

TYPED_TEST(SignallingNaN, StaysOneInVectorsAndArrays) {
  auto const& nan = this->m_nan;
  HYLBasVector<TypeParam> v, assigned;
  for (int i = 0; i != 20; ++i)
    v.push_back(nan);
  v.resize(v.capacity(), nan);
  v.resize(v.capacity() + 1, nan);
  v.insert(v.begin(), nan);
  v.erase(v.begin());
  assigned.assign(5, nan);
  HYLBasVector<TypeParam> const copy(v), filled(3, nan);
  for (auto const* each : {&copy, &filled, &std::as_const(assigned)})
    this->Expect(each->begin(), each->end());
  this->template CheckArray<HYLBasArray2D<TypeParam, 0>>();
  this->template CheckArray<HYLBasArray2D<TypeParam, 1>>();
}

TYPED_TEST(SignallingNaN, StaysOneInMapsPairsAndLists) {
  auto& nan = this->m_nan;
  HYLBasMap<int, TypeParam> map;
  map.Insert(1, nan);
  map.InsertOver(2, nan);
  map.InsertOver(3, 1);
  map.InsertOver(3, nan);
  map.insert({4, nan});
  map.insert(map.end(), {5, nan});
  map.insert(map.begin(), map.end());
  EXPECT_EQ(map.size(), 5u);
  for (auto const& element : HYLBasMap<int, TypeParam>(map.begin(), map.end()))
    this->Expect(&element.second, &element.second + 1);
  HYLBasPair<TypeParam, TypeParam> const both(nan, nan);
  HYLBasMicroList<TypeParam> list(1);
  TypeParam other = 1;
  std::memcpy(&list[0], &nan, sizeof nan);
  HYLBasMicroList<TypeParam> copy(list);
  HYLBasSwap(nan, other);
  HYLBasSwap(nan, other);
  TypeParam const* const results[] = {&both.first, &both.second, &copy[0], &nan};
  for (auto const* each : results)
    this->Expect(each, each + 1);
}

} // namespace
