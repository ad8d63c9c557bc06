/// \file
/// A walk does what a run of choices says to a real object and to a plain model, and compares the
/// two after each step. Its choices are bytes: drawn from a seed by the suite, kept in a file of
/// the corpus, or found by a fuzzer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/RecordingMemory.h"

class Choices {
public:
  explicit Choices(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

  /// Whether to take another step: choices are left, and nothing has failed.
  bool More() const { return m_next < m_bytes.size() && !testing::Test::HasFailure(); }

  /// From 0 to `n` - 1; 0 when no choices are left. Takes a byte for each 8 bits of `n` - 1.
  unsigned int Below(unsigned int n) {
    unsigned int drawn = 0;
    for (unsigned int most = n - 1; most != 0; most >>= 8)
      drawn = drawn << 8 | Byte();
    return drawn % n;
  }
  bool OneIn(unsigned int n) { return Below(n) == n - 1; }
  template <class List>
  auto& Of(List& list) {
    return list[Below(static_cast<unsigned int>(std::size(list)))];
  }
  /// All that is left, as text.
  std::string Rest() {
    auto const first = std::exchange(m_next, m_bytes.size());
    return {m_bytes.begin() + static_cast<std::ptrdiff_t>(first), m_bytes.end()};
  }

  /// Which of the next requests for memory is to fail: mostly none, which is 0.
  unsigned int FailingRequest() { return OneIn(8) ? 1 + Below(4) : 0; }

private:
  unsigned int Byte() { return m_next == m_bytes.size() ? 0 : m_bytes[m_next++]; }

  std::vector<std::uint8_t> m_bytes;
  std::size_t m_next = 0;
};

/// Carries out `operation`, in which that request for memory fails, and tells whether it was
/// completed.
template <class Operation>
bool Completes(unsigned int failingRequest, Operation operation) {
  recording::FailRequest(failingRequest);
  try {
    operation();
  } catch (std::bad_alloc const&) {
    return false;
  }
  recording::FailRequest(0);
  return true;
}

/// The kinds of the calls since the last time.
inline std::string TakeCalls() {
  std::string kinds;
  for (recording::Event const& event : std::exchange(recording::Events(), {}))
    kinds += event.kind;
  return kinds;
}

/// What an operation that a model has too returns; true where it returns nothing.
template <class Operation, class... Operands>
auto ResultOf(Operation operation, Operands&... operands) {
  if constexpr (std::is_void_v<decltype(operation(operands...))>) {
    operation(operands...);
    return true;
  } else {
    return operation(operands...);
  }
}

/// The one walk of a program, which `hylbas_add_walk` makes a test of so many runs of so many
/// choices each, a test of its corpus and a fuzzer. The first choice of run number r is r.
#define WALK(runs, choicesOfEach)                                                                  \
  WalkPlan const walkPlan = {runs, choicesOfEach, HYLBAS_CORPUS};                                  \
  void Walk(Choices& choices)
struct WalkPlan {
  unsigned int runs, choices;
  char const* corpus;
};
extern WalkPlan const walkPlan;
void Walk(Choices& choices);
