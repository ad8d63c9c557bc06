#include "RecordingMemory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <new>

#include "TARNHYLBasAlloc.h"

namespace recording {
namespace {

constexpr std::size_t guard = 16;
constexpr unsigned char guardByte = 0xA5;
constexpr std::size_t largestBlock = 1u << 20;

struct Block {
  int number;
  std::size_t bytes;
};

struct State {
  std::vector<Event> events;
  std::map<char const*, Block> live;
  char const* own = nullptr;
  std::size_t ownBytes = 0;
  int nextNumber = 1;
  unsigned int failIn = 0;
  std::function<void(void const*)> atRelease;
};

State& state() {
  static State* const theState = new State; // never destroyed: containers may outlive statics
  return *theState;
}

[[noreturn]] void Fail(char const* message) {
  std::fprintf(stderr, "recording memory: %s\n", message);
  std::abort();
}

} // namespace

std::vector<Event>& Events() { return state().events; }

void Reset(void const* own, std::size_t ownBytes) {
  if (!state().live.empty()) Fail("blocks are still live");
  state().events.clear();
  state().own = static_cast<char const*>(own);
  state().ownBytes = ownBytes;
  state().nextNumber = 1;
}

Place Locate(void const* address) {
  if (address == nullptr) return {-1, 0};
  auto const* const p = static_cast<char const*>(address);
  auto const next = state().live.upper_bound(p);
  if (next != state().live.begin()) {
    auto const& [base, block] = *std::prev(next);
    if (p <= base + block.bytes) return {block.number, p - base};
  }
  if (p < state().own || p > state().own + state().ownBytes) Fail("an address from nowhere");
  return {0, p - state().own};
}

std::size_t LiveBlocks() { return state().live.size(); }

std::function<void(void const*)>& AtRelease() { return state().atRelease; }

void FailRequest(unsigned int k) { state().failIn = k; }
bool FailurePending() { return state().failIn != 0; }

static void* Allocate(unsigned int size) {
  if (state().failIn != 0 && --state().failIn == 0) throw std::bad_alloc();
  if (size == 4294967295u) Fail("4294967295 bytes, which are never to be had, were requested");
  std::size_t const bytes = std::min<std::size_t>(size, largestBlock);
  auto* const raw = static_cast<char*>(std::malloc(bytes + 2 * guard));
  std::memset(raw, guardByte, bytes + 2 * guard);
  state().live[raw + guard] = {state().nextNumber++, bytes};
  state().events.push_back({'A', {-1, 0}, {-1, 0}, size});
  return raw + guard;
}

static void Free(void* block) {
  if (state().atRelease) state().atRelease(block);
  if (block == nullptr) {
    state().events.push_back({'F', {-1, 0}, {-1, 0}, 0});
    return;
  }
  auto const found = state().live.find(static_cast<char*>(block));
  if (found == state().live.end()) Fail("release of a block that is not live");
  char* const raw = static_cast<char*>(block) - guard;
  for (std::size_t i = 0; i != guard; ++i)
    if (static_cast<unsigned char>(raw[i]) != guardByte ||
        static_cast<unsigned char>(raw[guard + found->second.bytes + i]) != guardByte)
      Fail("a block was overrun");
  state().events.push_back({'F', {found->second.number, 0}, {-1, 0}, 0});
  state().live.erase(found);
  std::free(raw);
}

} // namespace recording

void* mem_Malloc_Handled(unsigned int size) { return recording::Allocate(size); }
void* mem_OperatorNewThrow(unsigned int size) { return recording::Allocate(size); }
void* mem_OperatorNewThrowBuiltin(unsigned int size) { return recording::Allocate(size); }

void* mem_Malloc(unsigned int size) try {
  return recording::Allocate(size);
} catch (std::bad_alloc const&) {
  return nullptr;
}

void mem_Free(void* block) { recording::Free(block); }
