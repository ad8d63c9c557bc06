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
#include "LUXCORE.h"
#include "WholeArraySort.h"

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
  std::ptrdiff_t const arraySize = arrayEnd - arrayBegin;
  if (arraySize != arraySecondEnd - arraySecondBegin) {
    QELFatalError("AssertionFailed:arraySize == arraySecondEnd - arraySecondBegin", nullptr,
                  nullptr, nullptr, "HYLBasGenerics.m/src/HYLBasAlgoGeneric", 867);
    if (arraySecondEnd - arraySecondBegin < arraySize) std::abort();
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
  // By the distance, because an address before the array is none to compare with.
  for (; static_cast<char const*>(end) - element > elementSize; element += elementSize)
    if (comesBefore(element + elementSize, element)) return false;
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
