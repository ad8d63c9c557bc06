/// \file
/// Links of a tree's nodes, chosen without a jump where the choice cannot be predicted.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "HYLBasTreeNodeGeneric.h"

namespace hylbas_detail {

/// The left or the right link of `x`, by its address.
inline HYLBasTreeNodeGeneric*& Child(HYLBasTreeNodeGeneric* x, bool isRight) {
  using Node = HYLBasTreeNodeGeneric;
  static_assert(offsetof(Node, m_right) == offsetof(Node, m_left) + sizeof(Node*));
  char* const left = reinterpret_cast<char*>(x) + offsetof(Node, m_left);
  return *reinterpret_cast<Node**>(left + isRight * sizeof(Node*));
}

/// `condition ? a : b`, in a way that compilers do not turn into a jump.
inline HYLBasTreeNodeGeneric* Choose(bool condition, HYLBasTreeNodeGeneric* a,
                                     HYLBasTreeNodeGeneric* b) {
  auto const x = std::bit_cast<std::uintptr_t>(a), y = std::bit_cast<std::uintptr_t>(b);
  return std::bit_cast<HYLBasTreeNodeGeneric*>(y ^ ((x ^ y) & (0 - std::uintptr_t{condition})));
}

} // namespace hylbas_detail
