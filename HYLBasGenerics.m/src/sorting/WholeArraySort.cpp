#include "WholeArraySort.h"

#include "SortEngine.h"
#include "VectorSort.h"

namespace {

using namespace hylbas_detail;

// Until the library's own variables are initialised, the way that any processor has.
enum class Choice { scalar = 0, avx2, avx512 };

[[maybe_unused]] Choice const choice = [] {
#ifdef HYLBAS_SORTS_VECTORS
  if (avx512::IsSupported()) return Choice::avx512;
  if (avx2::IsSupported()) return Choice::avx2;
#endif
  return Choice::scalar;
}();

template <class Element>
void SortInChosenWay(Element* first, Element* last) {
  if (last < first) return;
#ifdef HYLBAS_SORTS_VECTORS
  if (choice == Choice::avx512) return SortEngine<Element, avx512::Ways>::Sort(first, last);
  if (choice == Choice::avx2) return SortEngine<Element, avx2::Ways>::Sort(first, last);
#endif
  SortEngine<Element, ScalarWays>::Sort(first, last);
}

} // namespace

namespace hylbas_detail {

void SortWholeArray(int* first, int* last) { SortInChosenWay(first, last); }
void SortWholeArray(long long* first, long long* last) { SortInChosenWay(first, last); }
void SortWholeArray(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last) {
  SortInChosenWay(first, last);
}

} // namespace hylbas_detail
