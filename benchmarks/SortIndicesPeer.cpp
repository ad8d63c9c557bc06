#include "SortIndicesPeer.h"

void peer::SortIndicesInLibrary(unsigned int n, HYLBasVector<unsigned int>& indices,
                                HYLBasIxComparitor const& comparitor) {
  SortIndices(n, indices, comparitor);
}
