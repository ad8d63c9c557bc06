// The arithmetic that this tree is compiled for: IEEE double at every step.
#include <cfloat>
#include <limits>

static_assert(FLT_EVAL_METHOD == 0, "intermediate results are wider than their type");
static_assert(std::numeric_limits<double>::is_iec559, "double is not IEEE, or -ffast-math is on");
#if defined(__FAST_MATH__)
#error "-ffast-math changes results"
#endif
