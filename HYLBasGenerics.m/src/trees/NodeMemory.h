/// \file
/// What the trees' allocator policies do differently.
#pragma once

#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "TARNHYLBasAlloc.h"

namespace hylbas_detail {

/// The policies that release single nodes. They hold no data.
template <class A>
struct NodeMemory {
  static constexpr bool releasesNodes = true;

  static A Make() { return A(); }
  static void Exchange(A&, A&) {}
};

/// Each tree has a pool of its own, which goes where the tree's nodes go.
template <>
struct NodeMemory<HYLBasMemTruePool> {
  static constexpr bool releasesNodes = false;

  static HYLBasMemTruePool Make() {
    return HYLBasMemTruePool(101, "HYLBasMemRegionAllocator", nullptr);
  }
  static void Exchange(HYLBasMemTruePool& a, HYLBasMemTruePool& b) { a.Swap(b); }
};

} // namespace hylbas_detail
