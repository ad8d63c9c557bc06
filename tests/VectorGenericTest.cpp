// The type-erased vectors beside a model that follows contents, capacity and every call.
#include <csignal>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <tuple>

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
    unsigned int const i = Below(2), other = Below(2);
    V& v = *m_vectors[i];
    model::PlainVector& m = m_models[i];
    auto const s = static_cast<std::ptrdiff_t>(elementSize);
    char* const first = static_cast<char*>(v.Begin());
    unsigned int const k = Below(m.size + 1), n = Below(2) ? Below(6) : Below(40);
    auto const [value, place] = Below(4) && m.size ? ValueOf(i) : Value();
    unsigned int const action = Below(isRecordVector<V> ? 19 : 17);
    if (action < 2) v.PushBack(value), m.PushBack(place);
    if (action == 2 && m.size) v.PopBack(), m.PopBack();
    if (action == 3 || action == 4) {
      char* const inserted = v.Insert(first + k * s, value);
      m.Insert(k, place);
      EXPECT_EQ(inserted, static_cast<char*>(v.Begin()) + k * s);
    }
    if (action == 5) // at the end of storage, over a gap that is zeroed
      v.Insert(first + m.capacity * s, value), m.Insert(m.capacity, place);
    if (action == 6 || action == 7) v.Insert(first + k * s, n, value), m.InsertCopies(k, n, place);
    if (action == 8) { // a range of the test's own memory
      v.Insert(first + k * s, m_own, m_own + std::min(n, 20u) * s);
      m.InsertRange(k, {0, 0}, std::min(n, 20u));
    }
    if (action == 9) { // a range of the vector itself
      unsigned int const from = Below(m.size + 1), count = Below(m.size - from + 1);
      Place const source = m.At(from);
      v.Insert(first + k * s, first + from * s, first + (from + count) * s);
      m.InsertRange(k, source, count);
    }
    if (action == 10 && k < m.size) {
      EXPECT_EQ(v.Erase(first + k * s), first + k * s);
      m.Erase(k);
    }
    if (action == 11) {
      unsigned int const to = k + Below(m.size - k + 1);
      EXPECT_EQ(v.Erase(first + k * s, first + to * s), first + k * s);
      m.Erase(k, to);
    }
    if (action == 12) v.Assign(n, value), m.Assign(n, place);
    if (action == 13) v.Resize(n, value), m.Resize(n, place);
    if (action == 14) v.Reserve(n), m.Reserve(n);
    if (action == 15) {
      EXPECT_EQ(&(v = *m_vectors[other]), &v);
      m.AssignFrom(m_models[other]);
    }
    if (action == 16) v.swap(*m_vectors[other]), std::swap(m, m_models[other]);
    if (action == 16 && n == 0) v.Clear(), m.Erase(0, m.size);
    if constexpr (isRecordVector<V>) {
      if (action == 17) v.Resize(n);
      if (action == 18) v.resize(n);
      if (action >= 17) m.ResizeWithZeros(n);
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
  std::pair<void const*, Place> ValueOf(unsigned int i) {
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
  int const x[] = {1, 2, 3, 4};
  recording::Reset(x, sizeof x);
  {
    TypeParam v(Policy<TypeParam>(HYLBasGetReplicator<int>()), 0, nullptr), source(v);
    v.Insert(v.End(), x, x + 4);
    source.PushBack(x);
    std::function<void()> const operations[] = {
        [&] { v.PushBack(x); },
        [&] { v.Insert(v.Begin(), x); },
        [&] { v.Insert(v.Begin(), 3, x); },
        [&] { v.Insert(v.Begin(), x, x + 4); },
        [&] { v.Assign(9, x); },
        [&] { v.Reserve(9); },
        [&] { v = source; },
    };
    for (auto const& operation : operations) {
      recording::FailRequest(1);
      EXPECT_THROW(operation(), std::bad_alloc);
      ASSERT_TRUE(v.Size() == 4 && v.Capacity() == 4);
      ASSERT_EQ(std::memcmp(v.Begin(), x, sizeof x), 0);
      ASSERT_EQ(recording::LiveBlocks(), 2u);
    }
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

// Short texts, which own nothing and still must not be made from themselves.
TYPED_TEST(ErasedVector, ElementsAsTheirOwnSourceKeepTheirValue) {
  if constexpr (callsCopyFunction<TypeParam>) {
    using Texts = std::vector<std::string>;
    auto const text = [](TypeParam& v) { return static_cast<std::string*>(v.Begin()); };
    auto const after = [&](auto operation) {
      std::string const letters[] = {"a", "b", "c", "d", "e"};
      recording::Reset(letters, sizeof letters);
      TypeParam v(HYLBasGetReplicator<std::string>(), 0, nullptr);
      v.Reserve(20);
      v.Insert(v.End(), letters, letters + 5);
      operation(v);
      return Texts(text(v), text(v) + v.Size());
    };
    EXPECT_EQ(after([&](auto& v) { v.Assign(2, v.Begin()); }), (Texts{"a", "a"}));
    EXPECT_EQ(after([&](auto& v) { v.Assign(6, text(v) + 1); }), Texts(6, "b"));
    EXPECT_EQ(after([&](auto& v) { v.Insert(v.Begin(), v.Begin()); }),
              (Texts{"a", "a", "b", "c", "d", "e"}));
    EXPECT_EQ(after([&](auto& v) { v.Insert(v.Begin(), 2, text(v) + 1); }),
              (Texts{"b", "b", "a", "b", "c", "d", "e"}));
    EXPECT_EQ(after([&](auto& v) { v.Insert(text(v) + 2, text(v) + 1, text(v) + 3); }),
              (Texts{"a", "b", "b", "c", "c", "d", "e"}));
    EXPECT_EQ(after([&](auto& v) { v.Insert(text(v) + 3, text(v) + 1, text(v) + 5); }),
              (Texts{"a", "b", "c", "b", "c", "d", "e", "d", "e"}));
    EXPECT_EQ(after([&](auto& v) { v.Insert(v.Begin(), v.Begin(), v.End()); }),
              (Texts{"a", "b", "c", "d", "e", "a", "b", "c", "d", "e"}));
    EXPECT_EQ(after([&](auto& v) { v.Erase(v.Begin(), v.Begin()); }),
              (Texts{"a", "b", "c", "d", "e"}));
  }
}

// The private operations, reached through the one door that access control leaves open.
template <class V, auto... members>
struct Opened {
  friend auto Open(V*) { return std::make_tuple(members...); }
};
#define OPEN(V)                                                                                    \
  auto Open(V*);                                                                                   \
  template struct Opened<V, &V::GrowCapacity, &V::LargerOf, &V::distance, &V::sameBytes,           \
                         static_cast<void (V::*)(void*, unsigned int)>(&V::Destroy),               \
                         static_cast<void (V::*)(void*)>(&V::Destroy), &V::Allocate,               \
                         &V::Deallocate, &V::fill_n, &V::fill, &V::copy_over, &V::copy_backward,   \
                         &V::InsertAux>;
OPEN(HYLBasVectorGeneric)
OPEN(ByFunction)
OPEN(Bytewise)
#undef OPEN

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
  EXPECT_EXIT((v.*std::get<0>(Open(&v)))(4294967295u), dies, refused);
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
  auto const [growCapacity, largerOf, distance, sameBytes, destroyRun, destroyOne, allocate,
              deallocate, fill_n, fill, copyOver, copyBackward, insertAux] = Open(&v);
  (v.*growCapacity)(1);
  EXPECT_EQ(v.Capacity(), 4u);
  (v.*growCapacity)(7);
  EXPECT_EQ(v.Capacity(), 9u);

  unsigned int const a = 3, b = 3, c = 4;
  EXPECT_EQ(&(v.*largerOf)(a, b), &a);
  EXPECT_EQ(&(v.*largerOf)(a, c), &c);
  EXPECT_EQ((v.*distance)(v.End(), v.Begin()), 2u);
  EXPECT_EQ((v.*distance)(v.Begin(), v.End()), 4294967294u);
  EXPECT_TRUE((v.*sameBytes)(bytes));
  EXPECT_FALSE((v.*sameBytes)(bytes + 1));
  TypeParam single(Policy<TypeParam>({1, RecordingCopy, nullptr}), 0, nullptr);
  EXPECT_TRUE((single.*sameBytes)(bytes + 7));

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
  EXPECT_EQ((v.*fill_n)(slots, 2, bytes + 1), slots + 14);
  EXPECT_EQ(std::memcmp(slots + 7, bytes + 1, 7), 0);
  (v.*fill)(slots, slots + 7, bytes);
  EXPECT_EQ((v.*copyOver)(bytes, bytes + 7, slots + 7), slots + 14);
  EXPECT_EQ((v.*copyBackward)(slots, slots + 7, slots + 14), slots + 7);
  EXPECT_EQ(std::memcmp(slots + 7, bytes, 7), 0);
  (v.*insertAux)(slots, bytes + 1);
  EXPECT_EQ(v.Size(), 3u);
  EXPECT_EQ(std::memcmp(slots, bytes + 1, 7), 0);
  v.PopBack();

  recording::Events().clear();
  (v.*destroyRun)(v.Begin(), 2);
  (v.*destroyOne)(v.Begin());
  (single.*destroyOne)(v.Begin()); // has no destroy function
  char* const block = (v.*allocate)(3);
  EXPECT_EQ((v.*allocate)(0), nullptr);
  Place const first = recording::Locate(v.Begin()), allocated = recording::Locate(block);
  (v.*deallocate)(block, 3);
  (v.*deallocate)(nullptr, 3);
  std::vector<recording::Event> const expected = {{'D', first, {-1, 0}, 2},
                                                  {'D', first, {-1, 0}, 1},
                                                  {'A', {-1, 0}, {-1, 0}, 21},
                                                  {'F', allocated, {-1, 0}, 0}};
  EXPECT_TRUE(recording::Events() == expected);
}

} // namespace
