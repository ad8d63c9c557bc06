// The type-erased vectors beside a model that follows contents, capacity and every call.
#include <csignal>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

#include "HYLBasVector.h"
#include "HYLBasVectorGeneric.h"
#include "HYLBasVectorStruct.h"
#include "support/PlainVector.h"
#include "support/RecordingMemory.h"

namespace {

using recording::Place;

int elementSize; // of the vectors under test, for the recording functions

void RecordingCopy(void const* source, void* destination, unsigned int count) {
  recording::Events().push_back(
      {'C', recording::Locate(source), recording::Locate(destination), count});
  for (unsigned int i = 0; i != count; ++i)
    std::memmove(static_cast<char*>(destination) + std::size_t{i} * elementSize,
                 static_cast<char const*>(source) + std::size_t{i} * elementSize, elementSize);
}

void RecordingDestroy(void const* first, unsigned int count) {
  recording::Events().push_back({'D', recording::Locate(first), {-1, 0}, count});
}

struct Kind {
  char const* name;
  HYLBasReplicatorGeneric replicator;
  bool copiesRecorded;
};

Kind const kinds[] = {
    {"1 byte", {1, RecordingCopy, nullptr}, true},
    {"4 bytes", {4, RecordingCopy, nullptr}, true},
    {"7 bytes, destroyed", {7, RecordingCopy, RecordingDestroy}, true},
    {"8 bytes, destroyed", {8, RecordingCopy, RecordingDestroy}, true},
    {"12 bytes", {12, RecordingCopy, nullptr}, true},
    {"12 bytes, destroyed", {12, RecordingCopy, RecordingDestroy}, true},
    {"int", HYLBasGetReplicator<int>(), false},
    {"double", HYLBasGetReplicator<double>(), false},
    {"double, destroyed", {8, HYLBasPODCopy<double>, RecordingDestroy}, false},
    {"two ints copied as one", {8, HYLBasPODCopy<unsigned long long>, nullptr}, false},
};

// The vectors that carry out the same algorithms, and their policies.
using ByFunction = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
using Bytewise = HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;
template <class V>
constexpr bool isRecordVector = !std::is_same_v<V, HYLBasVectorGeneric>;
template <class V>
constexpr bool callsCopyFunction = !std::is_same_v<V, Bytewise>;

template <class V>
auto Policy(HYLBasReplicatorGeneric const& replicator) {
  if constexpr (callsCopyFunction<V>) {
    return replicator;
  } else {
    HYLAspStructReplicator bytewise(replicator.m_size);
    bytewise.m_destroy = replicator.m_destroy;
    return bytewise;
  }
}

// Two vectors and their models, driven through the same operations.
template <class V>
class VectorAndModel {
public:
  VectorAndModel(Kind const& kind, unsigned int seed) : m_kind(kind), m_random(seed) {
    elementSize = kind.replicator.m_size;
    for (std::size_t i = 0; i != sizeof m_own; ++i)
      m_own[i] = static_cast<unsigned char>(i < sizeof m_own / 2 ? m_random() : m_random() % 2);
    recording::Reset(m_own, sizeof m_own);
    m_memory.blocks[0].assign(m_own, m_own + sizeof m_own);
    auto const s = static_cast<unsigned int>(elementSize);
    for (int i = 0; i != 2; ++i) {
      m_models.emplace_back(m_memory, s, kind.replicator.m_destroy != nullptr);
      auto [value, place] = Value();
      unsigned int const n = Below(4);
      m_vectors.push_back(new V(Policy<V>(kind.replicator), n, value));
      m_models[i].InitCopies(n, place);
    }
  }

  ~VectorAndModel() {
    for (int i : {0, 1}) {
      delete m_vectors[i];
      m_models[i].Release();
    }
    CompareCalls("destruction");
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }

  void Step() {
    int const i = static_cast<int>(Below(2));
    V& v = *m_vectors[i];
    model::PlainVector& m = m_models[i];
    auto const s = static_cast<std::ptrdiff_t>(elementSize);
    char* const first = static_cast<char*>(v.Begin());
    unsigned int const k = Below(m.size + 1), n = Below(2) ? Below(6) : Below(40);
    auto const [value, place] = Below(4) && m.size ? ValueOf(i) : Value();
    unsigned int const action = Below(isRecordVector<V> ? 19 : 17);
    switch (action) {
    case 0:
    case 1:
      v.PushBack(value), m.PushBack(place);
      break;
    case 2:
      if (m.size) v.PopBack(), m.PopBack();
      break;
    case 3:
    case 4: {
      char* const inserted = v.Insert(first + k * s, value);
      m.Insert(k, place);
      EXPECT_EQ(inserted, static_cast<char*>(v.Begin()) + k * s);
      break;
    }
    case 5: // at the end of storage, over a gap that is zeroed
      v.Insert(first + m.capacity * s, value), m.Insert(m.capacity, place);
      break;
    case 6:
    case 7:
      v.Insert(first + k * s, n, value), m.InsertCopies(k, n, place);
      break;
    case 8: // a range of the test's own memory
      v.Insert(first + k * s, m_own, m_own + std::min(n, 20u) * s);
      m.InsertRange(k, {0, 0}, std::min(n, 20u));
      break;
    case 9: { // a range of the vector itself, before the position
      unsigned int const from = Below(k + 1), count = Below(k - from + 1);
      Place const source = m.At(from);
      v.Insert(first + k * s, first + from * s, first + (from + count) * s);
      m.InsertRange(k, source, count);
      break;
    }
    case 10:
      if (k < m.size) {
        EXPECT_EQ(v.Erase(first + k * s), first + k * s);
        m.Erase(k);
      }
      break;
    case 11: {
      unsigned int const to = k + Below(m.size - k + 1);
      EXPECT_EQ(v.Erase(first + k * s, first + to * s), first + k * s);
      m.Erase(k, to);
      break;
    }
    case 12:
      v.Assign(n, value), m.Assign(n, place);
      break;
    case 13:
      v.Resize(n, value), m.Resize(n, place);
      break;
    case 14:
      v.Reserve(n), m.Reserve(n);
      break;
    case 15: {
      V& source = *m_vectors[Below(2)];
      model::PlainVector const sourceModel = m_models[&source == m_vectors[1]];
      EXPECT_EQ(&(v = source), &v);
      m.AssignFrom(sourceModel);
      break;
    }
    case 16: {
      int const other = static_cast<int>(Below(2));
      v.swap(*m_vectors[other]);
      if (other != i) {
        std::swap(m_models[0].block, m_models[1].block);
        std::swap(m_models[0].size, m_models[1].size);
        std::swap(m_models[0].capacity, m_models[1].capacity);
      }
      if (Below(8) == 0) {
        v.Clear();
        m.Erase(0, m.size);
      }
      break;
    }
    }
    if constexpr (isRecordVector<V>) {
      if (action >= 17) {
        action == 17 ? v.Resize(n) : v.resize(n);
        m.ResizeWithZeros(n);
      }
    }
    CompareCalls(std::to_string(action).c_str());
    for (int j : {0, 1})
      CompareContents(*m_vectors[j], m_models[j]);
  }

private:
  unsigned int Below(unsigned int n) { return static_cast<unsigned int>(m_random() % n); }

  // An element of the test's own memory; half of it holds few distinct bytes, so that values of
  // equal bytes are common.
  std::pair<void const*, Place> Value() {
    unsigned int const offset =
        (Below(2) * static_cast<unsigned int>(sizeof m_own / 2) + Below(100)) / 8 * 8;
    return {m_own + offset, Place{0, static_cast<std::ptrdiff_t>(offset)}};
  }
  std::pair<void const*, Place> ValueOf(int i) {
    unsigned int const k = Below(m_models[i].size);
    return {static_cast<char*>(m_vectors[i]->Begin()) + std::size_t{k} * elementSize,
            m_models[i].At(k)};
  }

  void CompareCalls(char const* what) {
    auto expected = m_memory.events;
    if (!m_kind.copiesRecorded || !callsCopyFunction<V>)
      std::erase_if(expected, [](auto& e) { return e.kind == 'C'; });
    ASSERT_TRUE(recording::Events() == expected) << m_kind.name << " after action " << what;
    recording::Events().clear();
    m_memory.events.clear();
  }

  void CompareContents(V const& v, model::PlainVector const& m) {
    ASSERT_EQ(v.Size(), m.size);
    ASSERT_EQ(v.Capacity(), m.capacity);
    ASSERT_EQ(recording::Locate(v.Begin()), m.At(0));
    ASSERT_EQ(recording::Locate(v.End()), m.At(m.size));
    if (m.size != 0) {
      ASSERT_EQ(std::memcmp(v.Begin(), m.Bytes(), std::size_t{m.size} * elementSize), 0);
      v.RangeCheck(m.size - 1);
    }
  }

  Kind const& m_kind;
  std::mt19937 m_random;
  alignas(16) unsigned char m_own[512];
  model::Memory m_memory;
  std::vector<model::PlainVector> m_models;
  std::vector<V*> m_vectors;
};

template <class V>
class ErasedVector : public testing::Test {};
using ErasedVectors = testing::Types<HYLBasVectorGeneric, ByFunction, Bytewise>;
TYPED_TEST_SUITE(ErasedVector, ErasedVectors, );
template <class V>
class ErasedVectorDeathTest : public testing::Test {};
TYPED_TEST_SUITE(ErasedVectorDeathTest, ErasedVectors, );

TYPED_TEST(ErasedVector, FollowsTheModelInContentsCapacityAndEveryCall) {
  for (Kind const& kind : kinds)
    for (unsigned int seed = 1; seed != 31; ++seed) {
      SCOPED_TRACE(std::string(kind.name) + ", seed " + std::to_string(seed));
      VectorAndModel<TypeParam> pair(kind, seed);
      for (int step = 0; step != 200 && !testing::Test::HasFailure(); ++step)
        pair.Step();
      if (testing::Test::HasFailure()) return;
    }
}

TYPED_TEST(ErasedVector, FailedRequestLeavesTheVectorUnchangedAndLosesNothing) {
  int const values[] = {1, 2, 3, 4};
  using Operation = void (*)(TypeParam&, int const* values);
  Operation const operations[] = {
      [](auto& v, int const* x) { v.PushBack(x); },
      [](auto& v, int const* x) { v.Insert(v.Begin(), x); },
      [](auto& v, int const* x) { v.Insert(v.Begin(), 3, x); },
      [](auto& v, int const* x) { v.Insert(v.Begin(), x, x + 4); },
      [](auto& v, int const* x) { v.Assign(9, x); },
      [](auto& v, int const*) { v.Reserve(9); },
      [](auto& v, int const* x) {
        TypeParam const source(Policy<TypeParam>(HYLBasGetReplicator<int>()), 2, x);
        v = source;
      },
  };
  recording::Reset(values, sizeof values);
  for (Operation const operation : operations) {
    TypeParam v(Policy<TypeParam>(HYLBasGetReplicator<int>()), 0, nullptr);
    v.Insert(v.End(), values, values + 4);
    unsigned int failures = 0;
    for (unsigned int k = 1;; ++k) {
      recording::FailRequest(k);
      try {
        operation(v, values);
        break;
      } catch (std::bad_alloc const&) {
        ++failures;
        ASSERT_EQ(v.Size(), 4u);
        ASSERT_EQ(v.Capacity(), 4u);
        ASSERT_EQ(std::memcmp(v.Begin(), values, sizeof values), 0);
        ASSERT_EQ(recording::LiveBlocks(), 1u);
      }
    }
    EXPECT_TRUE(recording::FailurePending());
    recording::FailRequest(0);
    EXPECT_GE(failures, 1u);
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

// The private operations, reached through the one door that access control leaves open.
template <class V, auto member, int door>
struct Opened {
  friend auto Open(V*, std::integral_constant<int, door>) { return member; }
};
#define OPEN(V, door, ...)                                                                         \
  auto Open(V*, std::integral_constant<int, door>);                                                \
  template struct Opened < V, static_cast<__VA_ARGS__, door>;
#define OPEN_ALL(V)                                                                                \
  OPEN(V, 1, void (V::*)(unsigned int) > (&V::GrowCapacity))                                       \
  OPEN(V, 2,                                                                                       \
       unsigned int const& (V::*)(unsigned int const&, unsigned int const&) > (&V::LargerOf))      \
  OPEN(V, 3, unsigned int (V::*)(void const*, void const*) > (&V::distance))                       \
  OPEN(V, 4, bool (V::*)(void const*) > (&V::sameBytes))                                           \
  OPEN(V, 5, void (V::*)(void*, unsigned int) > (&V::Destroy))                                     \
  OPEN(V, 6, void (V::*)(void*) > (&V::Destroy))                                                   \
  OPEN(V, 7, char* (V::*)(unsigned int) > (&V::Allocate))                                          \
  OPEN(V, 8, void (V::*)(void*, unsigned int) > (&V::Deallocate))                                  \
  OPEN(V, 9, char* (V::*)(char*, unsigned int, void const*) > (&V::fill_n))                        \
  OPEN(V, 10, void (V::*)(char*, char*, void const*) > (&V::fill))                                 \
  OPEN(V, 11, char* (V::*)(void const*, void const*, void*) > (&V::copy_over))                     \
  OPEN(V, 12, char* (V::*)(void*, char*, char*) > (&V::copy_backward))                             \
  OPEN(V, 13, void (V::*)(void*, void const*) > (&V::InsertAux))
OPEN_ALL(HYLBasVectorGeneric)
OPEN_ALL(ByFunction)
OPEN_ALL(Bytewise)
#undef OPEN_ALL
#undef OPEN
template <class V, int door>
auto Private() {
  return Open(static_cast<V*>(nullptr), std::integral_constant<int, door>());
}

// Each violation ends the process, with exactly the text that belongs to it.
TYPED_TEST(ErasedVectorDeathTest, ViolationsEndTheProcess) {
  int const values[] = {1, 2, 3, 4, 5};
  recording::Reset(values, sizeof values);
  TypeParam v(Policy<TypeParam>(HYLBasGetReplicator<int>()), 0, nullptr);
  v.Reserve(4);
  v.Insert(v.End(), values, values + 2);
  char* const first = static_cast<char*>(v.Begin());
  auto const dies = testing::KilledBySignal(SIGABRT);
  for (char* const bad : {first - 4, first + 20}) {
    EXPECT_EXIT(v.Insert(bad, values), dies, "^$");
    for (unsigned int n : {0u, 1u})
      EXPECT_EXIT(v.Insert(bad, n, values), dies, "^$");
    EXPECT_EXIT(v.Insert(bad, values, values + 1), dies, "^$");
    EXPECT_EXIT(v.Erase(bad), dies, "^$");
  }
  // Between the end of the elements and the end of storage nothing can be inserted or erased.
  EXPECT_EXIT(v.Insert(first + 12, values), dies, "^$");
  EXPECT_EXIT(v.Insert(first + 12, 1, values), dies, "^$");
  EXPECT_EXIT(v.Insert(first + 16, values, values + 5), dies, "^$");
  EXPECT_EXIT(v.Erase(first + 8), dies, "^$");
  EXPECT_EXIT(v.Erase(first - 4, first), dies, "^$");
  EXPECT_EXIT(v.Erase(first, first + 12), dies, "^$");
  char const* const text =
      isRecordVector<TypeParam> ? "^$" : "^Error: out-of-bounds violation in HYLBasVector.\n$";
  EXPECT_EXIT(v.RangeCheck(2), dies, text);
  EXPECT_EXIT(v.RangeCheck(4294967295u), dies, text);
  // A request too large for 32 bits asks for the one size that is always refused.
  char const* const refused = "4294967295 bytes";
  EXPECT_EXIT(v.Reserve(1073741824u), dies, refused);
  EXPECT_EXIT(v.Insert(v.End(), 4294967295u, values), dies, refused);
  EXPECT_EXIT(v.Assign(4294967295u, values), dies, refused);
  EXPECT_EXIT(v.Resize(4294967295u, values), dies, refused);
  EXPECT_EXIT((v.*Private<TypeParam, 1>())(4294967295u), dies, refused);
  EXPECT_EXIT(TypeParam(Policy<TypeParam>(HYLBasGetReplicator<double>()), 4294967295u, values),
              dies, refused);
  EXPECT_EXIT(v.Insert(v.End(), values + 1, values), dies, refused);
  if constexpr (sizeof(void*) > 4) {
    void const* const farEnd = reinterpret_cast<void const*>(
        reinterpret_cast<std::uintptr_t>(values) + (std::uint64_t{4294967297u} << 2));
    EXPECT_EXIT(v.Insert(v.Begin(), values, farEnd), dies, refused);
    EXPECT_EXIT(v.Init(values, farEnd), dies, refused);
  }
}

TYPED_TEST(ErasedVector, PrivateOperations) {
  unsigned char const bytes[16] = {7, 7, 7, 7, 7, 7, 7, 8};
  elementSize = 7;
  recording::Reset(bytes, sizeof bytes);
  TypeParam v(Policy<TypeParam>({7, RecordingCopy, RecordingDestroy}), 2, bytes);
  (v.*Private<TypeParam, 1>())(1);
  EXPECT_EQ(v.Capacity(), 4u);
  (v.*Private<TypeParam, 1>())(7);
  EXPECT_EQ(v.Capacity(), 9u);

  unsigned int const a = 3, b = 3, c = 4;
  EXPECT_EQ(&(v.*Private<TypeParam, 2>())(a, b), &a);
  EXPECT_EQ(&(v.*Private<TypeParam, 2>())(a, c), &c);
  EXPECT_EQ((v.*Private<TypeParam, 3>())(v.End(), v.Begin()), 2u);
  EXPECT_EQ((v.*Private<TypeParam, 3>())(v.Begin(), v.End()), 4294967294u);
  EXPECT_TRUE((v.*Private<TypeParam, 4>())(bytes));
  EXPECT_FALSE((v.*Private<TypeParam, 4>())(bytes + 1));
  TypeParam single(Policy<TypeParam>({1, RecordingCopy, nullptr}), 0, nullptr);
  EXPECT_TRUE((single.*Private<TypeParam, 4>())(bytes + 7));

  // Each vector keeps its own replicator.
  TypeParam plain(Policy<TypeParam>({7, RecordingCopy, nullptr}), 1, bytes);
  plain.swap(v);
  plain.swap(v);
  plain = v;
  recording::Events().clear();
  plain.Clear();
  for (auto const& event : recording::Events())
    EXPECT_EQ(event.kind, 'C');

  char* const slots = static_cast<char*>(v.Begin());
  EXPECT_EQ((v.*Private<TypeParam, 9>())(slots, 2, bytes + 1), slots + 14);
  EXPECT_EQ(std::memcmp(slots + 7, bytes + 1, 7), 0);
  (v.*Private<TypeParam, 10>())(slots, slots + 7, bytes);
  EXPECT_EQ((v.*Private<TypeParam, 11>())(bytes, bytes + 7, slots + 7), slots + 14);
  EXPECT_EQ((v.*Private<TypeParam, 12>())(slots, slots + 7, slots + 14), slots + 7);
  EXPECT_EQ(std::memcmp(slots + 7, bytes, 7), 0);
  (v.*Private<TypeParam, 13>())(slots, bytes + 1);
  EXPECT_EQ(v.Size(), 3u);
  EXPECT_EQ(std::memcmp(slots, bytes + 1, 7), 0);
  v.PopBack();

  recording::Events().clear();
  (v.*Private<TypeParam, 5>())(v.Begin(), 2);
  (v.*Private<TypeParam, 6>())(v.Begin());
  (single.*Private<TypeParam, 6>())(v.Begin()); // has no destroy function
  char* const block = (v.*Private<TypeParam, 7>())(3);
  EXPECT_EQ((v.*Private<TypeParam, 7>())(0), nullptr);
  Place const first = recording::Locate(v.Begin()), allocated = recording::Locate(block);
  (v.*Private<TypeParam, 8>())(block, 3);
  (v.*Private<TypeParam, 8>())(nullptr, 3);
  std::vector<recording::Event> const expected = {{'D', first, {-1, 0}, 2},
                                                  {'D', first, {-1, 0}, 1},
                                                  {'A', {-1, 0}, {-1, 0}, 21},
                                                  {'F', allocated, {-1, 0}, 0}};
  EXPECT_TRUE(recording::Events() == expected);
}

} // namespace
