// The sorts of whole arrays and the tests for order.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <numeric>

#include "HYLBasIntrosort.h"
#include "HYLBasIsSortedGeneric.h"
#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"
#include "HYLBasVector.h"
#include "IntrosortSteps.h"
#include "LUXCORE.h"
#include "WholeArraySort.h"

using hylbas_detail::Distance;
using hylbas_detail::SortWholeArray;
using Pair = HYLBasPair<int, int>;

void HYLBasSortSpecial(int* begin, int* end) { SortWholeArray(begin, end); }

void sortInt64_1(long long* first, long long* last) { SortWholeArray(first, last); }

void HYLBasSortSpecial(long long* begin, long long* end) { sortInt64_1(begin, end); }

template <>
void SGIsort<Pair*>(Pair* first, Pair* last) {
  SortWholeArray(first, last);
}

void HYLBasSortSpecial(Pair* begin, Pair* end) { SGIsort<Pair*>(begin, end); }

void HYLBasSort2Special(int* arrayBegin, int* arrayEnd, int* arraySecondBegin,
                        int* arraySecondEnd) {
  std::ptrdiff_t const arraySize = Distance(arrayBegin, arrayEnd);
  std::ptrdiff_t const secondSize = Distance(arraySecondBegin, arraySecondEnd);
  if (arraySize != secondSize) {
    QELFatalError("AssertionFailed:arraySize == arraySecondEnd - arraySecondBegin", nullptr,
                  nullptr, nullptr, "HYLBasGenerics.m/src/HYLBasAlgoGeneric", 867);
    if (secondSize < arraySize) std::abort();
  }

  if (arraySize < 0) std::abort();
  // A length that the vector cannot count must not become a shorter one: for the longest that it
  // can count it asks for more memory than there ever is.
  constexpr std::size_t longest = std::numeric_limits<unsigned int>::max();
  std::size_t const count = std::min(static_cast<std::size_t>(arraySize), longest);
  HYLBasVector<Pair> pairs(static_cast<unsigned int>(count));
  std::transform(arrayBegin, arrayEnd, arraySecondBegin, pairs.begin(),
                 [](int first, int second) { return Pair(first, second); });
  SGIsort<Pair*>(pairs.begin(), pairs.end());
  for (Pair const& pair : pairs) {
    *arrayBegin++ = pair.first;
    *arraySecondBegin++ = pair.second;
  }
}

void HYLBasSortGenericIx(void* /*data*/, unsigned int count, HYLBasVector<unsigned int>& indices,
                         HYLBasIxComparitor const& comparitor) {
  indices.resize(count);
  std::iota(indices.begin(), indices.end(), 0u);
  if (!indices.empty())
    SGIsort<unsigned int*, HYLBasIxComparitor>(indices.begin(), indices.end(), comparitor);
}

namespace {

template <class ComesBefore>
bool IsSorted(void const* begin, void const* end, int elementSize, ComesBefore const& comesBefore) {
  auto const* element = static_cast<char const*>(begin);
  auto const* const last = static_cast<char const*>(end);
  // By the bytes that are left, because an address before the array is none to compare with, and
  // unsigned, because on 32 bits they can be more than half of all addresses.
  auto const size = static_cast<std::size_t>(elementSize);
  for (; element<last&& static_cast<std::size_t>(last - element)> size; element += size)
    if (comesBefore(element + size, element)) return false;
  return true;
}

} // namespace

bool HYLBasIsSortedGeneric1(void const* begin, void const* end, HYLBasReplicatorGeneric replicator,
                            HYLBasComparitorGeneric comparitor) {
  return IsSorted(begin, end, replicator.m_size, comparitor.m_compare);
}

bool HYLBasIsSortedGeneric2(void const* begin, void const* end, HYLBasReplicatorGeneric replicator,
                            HYLBasBinaryPredicateGeneric const& predicate) {
  return IsSorted(begin, end, replicator.m_size, predicate);
}
