#include "HYLBasArray2D.h"

template class HYLBasArray2D<int, 0>;
template class HYLBasArray2D<int, 1>;
template class HYLBasArray2D<double, 0>;
template class HYLBasArray2D<double, 1>;
template class HYLBasArray2D<int, 0>::SpecializedParenthesis<int, 0>;
template class HYLBasArray2D<int, 1>::SpecializedParenthesis<int, 1>;
template class HYLBasArray2D<double, 0>::SpecializedParenthesis<double, 0>;
template class HYLBasArray2D<double, 1>::SpecializedParenthesis<double, 1>;

template HYLBASGENERICS_EXPORT double ColumnNorm<double, 1>(HYLBasArray2D<double, 1>, int,
                                                            HYLBasArray2D<double, 1>::NormType);
template HYLBASGENERICS_EXPORT double RowNorm<double, 0>(HYLBasArray2D<double, 0>, int,
                                                         HYLBasArray2D<double, 0>::NormType);
