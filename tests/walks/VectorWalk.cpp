// The type-erased and the typed vectors beside a model that follows contents, capacity and every
// call.
#include <cstdint>
#include <optional>
#include <tuple>

#include "HYLBasVector.h"
#include "HYLBasVectorGeneric.h"
#include "HYLBasVectorStruct.h"
#include "support/Aborted.h"
#include "walks/Choices.h"
#include "walks/PlainVector.h"

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

// Is lost when it is made from itself, which the library's own copy function must not do.
struct Fragile {
  unsigned char bytes[8];
  Fragile(Fragile const& other) {
    if (&other == this)
      std::memset(bytes, 0xEE, sizeof bytes);
    else
      std::memcpy(bytes, other.bytes, sizeof bytes);
  }
};

HYLBasReplicatorGeneric const kinds[] = {
    {1, RecordingCopy, nullptr},
    {4, RecordingCopy, nullptr},
    {7, RecordingCopy, RecordingDestroy},
    {8, RecordingCopy, RecordingDestroy},
    {12, RecordingCopy, nullptr},
    HYLBasGetReplicator<int>(),
    HYLBasGetReplicator<double>(),
    {8, HYLBasPODCopy<double>, RecordingDestroy},
    {8, HYLBasPODCopy<unsigned long long>, nullptr},
    HYLBasGetReplicator<Fragile>(),
    {12, nullptr, nullptr}, // of record vectors alone: bytes
};

// The vectors that carry out the same algorithms, and their policies.
using ByFunction = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
using Bytewise = HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;
template <class V>
constexpr bool isRecordVector = std::is_same_v<V, ByFunction> || std::is_same_v<V, Bytewise>;

template <class V>
constexpr bool isErased = isRecordVector<V> || std::is_same_v<V, HYLBasVectorGeneric>;

template <class V>
auto Policy(HYLBasReplicatorGeneric const& replicator) {
  if constexpr (std::is_same_v<V, Bytewise>) {
    HYLAspStructReplicator bytewise(replicator.m_size);
    bytewise.m_destroy = replicator.m_destroy;
    return bytewise;
  } else {
    return replicator;
  }
}

// A typed vector under the names of its core. The walk's own zeros are left out where they can be.
template <class T>
class Typed : public HYLBasVector<T> {
  using Base = HYLBasVector<T>;
  static T const* At(void const* p) { return static_cast<T const*>(p); }
  static T* At(void* p) { return static_cast<T*>(p); }
  static bool IsZero(void const* value) {
    T const zero = T();
    return recording::Locate(value).block == 0 && std::memcmp(value, &zero, sizeof zero) == 0;
  }

public:
  using Base::Base;
  Typed(HYLBasReplicatorGeneric const&, unsigned int n, void const* value) {
    if (n != 0) (IsZero(value) ? Base(n) : Base(n, *At(value))).swap(*this);
  }
  void Init(void const* first, void const* last) { Base(At(first), At(last)).swap(*this); }
  void* Begin() { return this->begin(); }
  void const* Begin() const { return this->begin(); }
  void const* End() const { return this->end(); }
  unsigned int Size() const { return this->size(); }
  unsigned int Capacity() const { return this->capacity(); }
  void PushBack(void const* value) {
    IsZero(value) ? this->push_back() : this->push_back(*At(value));
  }
  void PopBack() { this->pop_back(); }
  void* Insert(void* p, void const* value) {
    return IsZero(value) ? this->insert(At(p)) : this->insert(At(p), *At(value));
  }
  void Insert(void* p, unsigned int n, void const* value) { this->insert(At(p), n, *At(value)); }
  void Insert(void* p, void const* first, void const* last) {
    this->insert(At(p), At(first), At(last));
  }
  void* Erase(void* p) { return this->erase(At(p)); }
  void* Erase(void* first, void* last) { return this->erase(At(first), At(last)); }
  void Clear() { this->clear(); }
  void Assign(unsigned int n, void const* value) { this->assign(n, *At(value)); }
  void Resize(unsigned int n, void const* value) {
    IsZero(value) ? this->resize(n) : this->resize(n, *At(value));
  }
  void Reserve(unsigned int n) { this->reserve(n); }
  void RangeCheck(unsigned int i) const {
    Base& self = const_cast<Typed&>(*this);
    EXPECT_TRUE(!this->empty() && this->size() <= this->capacity());
    EXPECT_TRUE(&this->at(i) == this->begin() + i && &self.at(i) == &self[i]);
    EXPECT_TRUE(&this->front() == this->begin() && &this->back() == this->end() - 1);
    EXPECT_TRUE(&(*this)[i] == &self[i] && &self.front() == &*self.begin());
    EXPECT_EQ(&self.back(), self.end() - 1);
  }
};

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

// Two vectors and their models, driven through the same operations.
template <class V>
class VectorsAndModels {
public:
  VectorsAndModels(HYLBasReplicatorGeneric const& kind, Choices& choices)
      : m_choices(choices), m_replicators{kind, kind} {
    for (std::size_t k = 0; k != sizeof m_own; ++k) // also zeros, and values of equal bytes
      m_own[k] = static_cast<unsigned char>(k < 256 ? k * 7 : k < 352 ? 0 : k < 448 ? 5 : k % 2);
    recording::Reset(m_own, sizeof m_own);
    m_memory.blocks[0].assign(m_own, m_own + sizeof m_own);
    elementSize = kind.m_size;
    m_copiesAreSeen = kind.m_copy == RecordingCopy && !std::is_same_v<V, Bytewise>;
    for (int i : {0, 1}) {
      if (i == 1 && m_choices.OneIn(2)) m_replicators[i].m_destroy = nullptr;
      auto const s = static_cast<unsigned int>(elementSize);
      m_models.emplace_back(m_memory, s, m_replicators[i].m_destroy == RecordingDestroy);
    }
    for (int i : {0, 1})
      MakeAnew(i);
  }
  ~VectorsAndModels() {
    for (int i : {0, 1}) {
      m_vectors[i].reset();
      m_models[i].Release();
    }
    CompareCalls();
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }

  void Step() {
    unsigned int const i = Below(2), other = Below(2);
    V &v = *m_vectors[i], &source = *m_vectors[other];
    model::PlainVector &m = m_models[i], &from = m_models[other];
    auto const s = static_cast<std::ptrdiff_t>(elementSize);
    char* const first = static_cast<char*>(v.Begin());
    unsigned int const k = Below(m.size + 1), n = Below(2) ? Below(6) : Below(40);
    void const* value = nullptr;
    Place place = {};
    std::tie(value, place) = m_choices.OneIn(4) || m.size == 0 ? Value() : ValueOf(i);
    unsigned int const action = Below(isRecordVector<V> ? 19 : isErased<V> ? 17 : 16);
    SCOPED_TRACE("action " + std::to_string(action));
    if (action < 2) Do([&] { v.PushBack(value); }, [&] { m.PushBack(place); });
    if (action == 2 && m.size) v.PopBack(), m.PopBack();
    if (action == 3) {
      void* inserted = nullptr;
      Do([&] { inserted = v.Insert(first + k * s, value); },
         [&] {
           m.Insert(k, place);
           EXPECT_EQ(inserted, static_cast<char*>(v.Begin()) + k * s);
         });
    }
    if (action == 4) // at the end of storage, over a gap that is zeroed
      Do([&] { v.Insert(first + m.capacity * s, value); }, [&] { m.Insert(m.capacity, place); });
    if (action == 5 || action == 6)
      Do([&] { v.Insert(first + k * s, n, value); }, [&] { m.InsertCopies(k, n, place); });
    if (action == 7) // a range of the walk's own memory
      Do([&] { v.Insert(first + k * s, m_own, m_own + std::min(n, 20u) * s); },
         [&] {
           m.InsertRange(k, {0, 0}, std::min(n, 20u));
         });
    if (action == 8) { // a range of the vector itself
      unsigned int const begin = Below(m.size + 1), count = Below(m.size - begin + 1);
      Place const run = m.At(begin);
      Do([&] { v.Insert(first + k * s, first + begin * s, first + (begin + count) * s); },
         [&] { m.InsertRange(k, run, count); });
    }
    if (action == 9 && k < m.size) {
      EXPECT_EQ(v.Erase(first + k * s), first + k * s);
      m.Erase(k);
    }
    if (action == 10) {
      unsigned int const to = k + Below(m.size - k + 1);
      EXPECT_EQ(v.Erase(first + k * s, first + to * s), first + k * s);
      m.Erase(k, to);
    }
    if (action == 11) Do([&] { v.Assign(n, value); }, [&] { m.Assign(n, place); });
    if (action == 12) Do([&] { v.Resize(n, value); }, [&] { m.Resize(n, place); });
    if (action == 13) Do([&] { v.Reserve(n); }, [&] { m.Reserve(n); });
    if (action == 14) Do([&] { EXPECT_EQ(&(v = source), &v); }, [&] { m.AssignFrom(from); });
    if (action == 15 && n % 3 == 0) {
      if constexpr (std::is_same_v<V, HYLBasVectorGeneric>)
        v.swap(source);
      else
        swap(v, source); // found by its argument
      m.Swap(from);
    }
    if (action == 15 && n % 3 == 1) v.Clear(), m.Erase(0, m.size);
    if (action == 15 && n % 3 == 2) MakeAnew(i);
    if constexpr (isErased<V>)
      if (action == 16) PrivateStep(v, m, k, n, value, place);
    if constexpr (isRecordVector<V>) {
      if (action > 16)
        Do([&] { action == 17 ? v.Resize(n) : v.resize(n); }, [&] { m.ResizeWithZeros(n); });
    }
    CompareCalls();
    for (int j : {0, 1})
      CompareContents(*m_vectors[j], m_models[j]);
  }

private:
  unsigned int Below(unsigned int n) { return m_choices.Below(n); }

  std::pair<void const*, Place> Value() {
    unsigned int const offset = 8 * (Below(2) ? Below(12) : 32 + Below(24));
    return {m_own + offset, Place{0, static_cast<std::ptrdiff_t>(offset)}};
  }
  std::pair<void const*, Place> ValueOf(unsigned int i) {
    unsigned int const k = Below(m_models[i].size);
    return {static_cast<char*>(m_vectors[i]->Begin()) + std::size_t{k} * elementSize,
            m_models[i].At(k)};
  }

  // Carries out what may need memory. When there is none, nothing has happened but the end of an
  // empty vector.
  template <class Real, class Model>
  void Do(Real real, Model modelled) {
    CompareCalls(); // so that those left are of this operation
    if (Completes(m_choices.FailingRequest() != 0, real)) return modelled();
    std::erase_if(recording::Events(), [](auto& e) { return e.kind == 'D' && e.n == 0; });
  }
  void MakeAnew(unsigned int i) {
    HYLBasReplicatorGeneric& replicator = m_replicators[i];
    void const* value = nullptr;
    Place place = {};
    std::tie(value, place) = Value();
    unsigned int const n = Below(6), way = m_vectors[1 - i] ? Below(6) : 0;
    model::PlainVector &m = m_models[i], &other = m_models[1 - i];
    std::optional<V>& v = m_vectors[i];
    if (v) v.reset(), m.Release();
    m.block = -1, m.size = m.capacity = 0;
    if (way == 1) {
      v.emplace(Policy<V>(replicator), 0u, nullptr);
      Do([&] { v->Init(m_own, m_own + n * static_cast<unsigned int>(elementSize)); },
         [&] {
           m.InitRange({0, 0}, n);
         });
    } else if (way == 2) {
      Do([&] { v.emplace(*m_vectors[1 - i]); },
         [&] {
           replicator = m_replicators[1 - i];
           m.InitFrom(other);
         });
    } else if (way > 2 && !m_copiesAreSeen && replicator.m_destroy == nullptr) {
      if constexpr (isRecordVector<V>) { // by the size alone
        auto const size = static_cast<unsigned int>(elementSize);
        if (way == 5)
          Do([&] { v.emplace(size, n, value); }, [&] { m.InitCopies(n, place); });
        else
          v.emplace(size, way == 3 ? n : 0), m.InitZeros(n);
        if (way == 4) v->Init(n);
      }
    } else {
      Do([&] { v.emplace(Policy<V>(replicator), n, value); }, [&] { m.InitCopies(n, place); });
    }
    if (!v) v.emplace(Policy<V>(replicator), 0u, nullptr);
  }

  // One of the private operations, on the elements from `k` on where it takes elements.
  void PrivateStep(V& v, model::PlainVector& m, unsigned int k, unsigned int n, void const* value,
                   Place place) {
    auto const [growCapacity, largerOf, distance, sameBytes, destroyRun, destroyOne, allocate,
                deallocate, fill_n, fill, copyOver, copyBackward, insertAux] = Open(&v);
    auto const s = static_cast<std::ptrdiff_t>(elementSize);
    unsigned int const action = Below(9), after = m.size - k, count = std::min({n, after, 20u});
    SCOPED_TRACE("private action " + std::to_string(action));
    char *const at = static_cast<char*>(v.Begin()) + k * s, *const end = at + after * s;
    if (action == 0)
      Do([&, grow = growCapacity] { (v.*grow)(n); },
         [&] { m.Reserve(std::max(2 * m.size, m.size + n)); });
    if (action == 1 && (after != 0 || m.size == m.capacity))
      Do([&, insert = insertAux] { (v.*insert)(at, value); }, [&] { m.Insert(k, place); });
    if (action == 2) (v.*fill)(at, end, value), m.Fill(m.At(k), after, place);
    if (action == 3) {
      EXPECT_EQ((v.*fill_n)(at, count, value), at + count * s);
      m.Fill(m.At(k), count, place);
    }
    if (action == 4) {
      EXPECT_EQ((v.*copyOver)(m_own, m_own + count * s, at), at + count * s);
      m.Copy({0, 0}, m.At(k), count);
    }
    if (action == 5 && after != 0) {
      EXPECT_EQ((v.*copyBackward)(at, end - s, end), at + s);
      for (unsigned int i = m.size - 1; i != k; --i)
        m.Copy(m.At(i - 1), m.At(i), 1);
    }
    if (action == 6) (v.*destroyRun)(at, after), m.Destroy(m.At(k), after);
    if (action == 7) (v.*destroyOne)(at), m.Destroy(m.At(k), 1);
    if (action == 8) {
      Do([&, make = allocate, drop = deallocate] { (v.*drop)((v.*make)(n), n); },
         [&] { m.AllocateAndDiscard(n); });
      EXPECT_EQ((v.*sameBytes)(value), m.HasSameBytes(place));
      EXPECT_TRUE((v.*distance)(end, at) == after && (v.*distance)(at, end) == 0u - after);
      EXPECT_EQ(&(v.*largerOf)(n, k), n < k ? &k : &n);
    }
  }

  void CompareCalls() {
    if (!m_copiesAreSeen) std::erase_if(m_memory.events, [](auto& e) { return e.kind == 'C'; });
    ASSERT_EQ(recording::Events(), m_memory.events);
    recording::Events().clear();
    m_memory.events.clear();
  }
  void CompareContents(V const& v, model::PlainVector const& m) {
    ASSERT_EQ(v.Size(), m.size);
    ASSERT_EQ(v.Capacity(), m.capacity);
    ASSERT_EQ(recording::Locate(v.Begin()), m.At(0));
    ASSERT_EQ(recording::Locate(v.End()), m.At(m.size));
    if (m.size == 0) return;
    ASSERT_EQ(std::memcmp(v.Begin(), m.Bytes(), std::size_t{m.size} * elementSize), 0);
    v.RangeCheck(m.size - 1);
  }

  Choices& m_choices;
  HYLBasReplicatorGeneric m_replicators[2];
  bool m_copiesAreSeen;
  alignas(16) unsigned char m_own[512];
  model::Memory m_memory;
  std::vector<model::PlainVector> m_models;
  std::optional<V> m_vectors[2];
};

template <class V>
void WalkCores(Choices& choices) {
  VectorsAndModels<V> vectors(choices.Of(kinds), choices);
  while (choices.More())
    vectors.Step();
}
template <class T>
void WalkTyped(Choices& choices) {
  VectorsAndModels<Typed<T>> vectors(HYLBasGetReplicator<T>(), choices);
  while (choices.More())
    vectors.Step();
}

// A plain type that the library has no code for.
struct Word {
  unsigned long value;
  Word(unsigned long v = 0) : value(v) {}
};

} // namespace

WALK(400, 500) {
  using Cores = HYLBasVectorGeneric;
  void (*const walks[])(Choices&) = {WalkCores<Cores>,
                                     WalkCores<ByFunction>,
                                     WalkCores<Bytewise>,
                                     WalkCores<Cores>,
                                     WalkCores<ByFunction>,
                                     WalkTyped<int>,
                                     WalkTyped<float>,
                                     WalkTyped<double>,
                                     WalkTyped<unsigned int>,
                                     WalkTyped<long long>,
                                     WalkTyped<unsigned long long>,
                                     WalkTyped<short>,
                                     WalkTyped<Word>};
  choices.Of(walks)(choices);
}

namespace {

template <class V>
struct ErasedVector : testing::Test {};
using RecordVectors = testing::Types<ByFunction, Bytewise>;
using ErasedVectors = testing::Types<HYLBasVectorGeneric, ByFunction, Bytewise>;
TYPED_TEST_SUITE(ErasedVector, ErasedVectors, );
template <class V>
struct RecordVector : testing::Test {};
TYPED_TEST_SUITE(RecordVector, RecordVectors, );

auto const dies = Aborted();
std::string const outOfBounds = Only("Error: out-of-bounds violation in HYLBasVector.\n");

// Each violation ends the process, with exactly the text that belongs to it.
TYPED_TEST(ErasedVector, EndsTheProcessAtEachViolation) {
  int const values[] = {1, 2, 3, 4, 5};
  recording::Reset(values, sizeof values);
  TypeParam v(Policy<TypeParam>(HYLBasGetReplicator<int>()), 0, nullptr);
  v.Reserve(4);
  v.Insert(v.End(), values, values + 2);
  char* const first = static_cast<char*>(v.Begin());
  for (char* const bad : {first - 4, first + 20}) {
    EXPECT_EXIT(v.Insert(bad, values), dies, Only(""));
    for (unsigned int n : {0u, 1u})
      EXPECT_EXIT(v.Insert(bad, n, values), dies, Only(""));
    EXPECT_EXIT(v.Insert(bad, values, values + 1), dies, Only(""));
    EXPECT_EXIT(v.Erase(bad), dies, Only(""));
  }
  // Between the end of the elements and the end of storage nothing can be inserted or erased.
  EXPECT_EXIT(v.Insert(first + 12, values), dies, Only(""));
  EXPECT_EXIT(v.Insert(first + 12, 1, values), dies, Only(""));
  EXPECT_EXIT(v.Insert(first + 16, values, values + 5), dies, Only(""));
  EXPECT_EXIT(v.Erase(first + 8), dies, Only(""));
  EXPECT_EXIT(v.Erase(first - 4, first), dies, Only(""));
  EXPECT_EXIT(v.Erase(first, first + 12), dies, Only(""));
  for (unsigned int const i : {2u, 4294967295u})
    EXPECT_EXIT(v.RangeCheck(i), dies, isRecordVector<TypeParam> ? Only("") : outOfBounds);
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

TYPED_TEST(RecordVector, IsReadThroughItsIterator) {
  recording::Reset(nullptr, 0);
  TypeParam v(8, 3);
  int count = 0;
  for (void* record : v)
    EXPECT_TRUE(record == v.Item(count++) && record == std::as_const(v)[count - 1]);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(v.ItemConst(-1), static_cast<char*>(v.Begin()) - 8);
  v.assign(2, v[0]), v.resize(1, v[0]), v.resize(3, v[0]);
  EXPECT_EQ(v.size(), 3u);

  using Iterator = typename TypeParam::iterator;
  Iterator it = v.begin(), later = it++;
  EXPECT_EQ(later, v.begin());
  EXPECT_EQ(*it, v[1]);
  EXPECT_EQ((++it).operator->(), v[2]);
  EXPECT_EQ(it--.Dereference(), v[2]);
  EXPECT_EQ(*--it, v[0]);
  it.Increment(), it.Increment(), it.Decrement();
  EXPECT_EQ(it, Iterator(static_cast<char*>(v[1]), 3)); // whatever the steps
  it = v[2];
  EXPECT_EQ(++it, v.end());
  EXPECT_TRUE(Iterator() != v.begin());
  EXPECT_EQ(*++Iterator(), nullptr); // a step of 0
  Iterator of(&v), assigned;
  EXPECT_EQ(*of, nullptr);
  of.Set(v[0]);
  EXPECT_EQ(*++of, v[1]);
  assigned = of; // with the step
  EXPECT_EQ(*++assigned, v[2]);
  static_assert(sizeof(Iterator) == 3 * sizeof(void*));
  static_assert(std::is_convertible_v<TypeParam*, Iterator>);
  v.clear();
  EXPECT_EQ(v.Size(), 0u);
}

TEST(RecordReplicator, MovesWithOverlapInEitherDirection) {
  HYLAspStructReplicator replicator(3);
  std::string text = "abcdefghijkl";
  replicator.m_copy(text.data(), text.data() + 3, 3);
  EXPECT_EQ(text, "abcabcdefghi");
  replicator.m_copy(text.data() + 3, text.data(), 3);
  EXPECT_EQ(text, "abcdefghighi");
  replicator.m_copy(nullptr, nullptr, 0);
  EXPECT_EQ(sizeof replicator, sizeof(void*) * 2);
  EXPECT_EQ(sizeof(Bytewise), sizeof(ByFunction) - sizeof(void*));
}

// What host code that derives from a facade sees.
struct Derived : HYLBasVector<double> {
  using HYLBasVector::fromGeneric;
  using HYLBasVector::Generic;
  using HYLBasVector::HYLBasVector;
  using HYLBasVector::range_check;
  using HYLBasVector::toGeneric;
};

TEST(TypedVector, IsItsCore) {
  recording::Reset(nullptr, 0);
  {
    Derived v(3u, 1.5);
    EXPECT_EQ(static_cast<void*>(&v.Generic()), static_cast<void*>(&v));
    double const value = 2.5;
    v.Generic().PushBack(&value);
    EXPECT_TRUE(v.back() == 2.5 && v.capacity() == 10);
    EXPECT_EQ(v.fromGeneric(v.toGeneric(v.begin())), v.begin());
    v.range_check(3);
    EXPECT_EXIT(v.at(4), dies, outOfBounds);
    EXPECT_EXIT(std::as_const(v).at(unsigned(-1)), dies, outOfBounds);
    EXPECT_EXIT(v.insert(v.begin() - 1), dies, Only(""));
    EXPECT_EXIT(v.erase(v.end()), dies, Only(""));
    EXPECT_EQ(v.max_size(), 536870911u);
    static_assert(std::is_same_v<decltype(v.get_allocator()), HYLBasVectorAllocator>);
    static_assert(std::is_convertible_v<unsigned int, HYLBasVector<int>>);
    static_assert(std::is_convertible_v<int, HYLBasReplicatorGeneric>);
    static_assert(std::is_convertible_v<int, HYLAspStructReplicator>);
  }
  auto* const heap = new HYLBasVector<int>(1, 5);
  EXPECT_EQ(heap->max_size(), 1073741823u);
  EXPECT_EQ(recording::LiveBlocks(), 2u); // the object and its element
  delete heap;

  using Pair = HYLBasPair<int, int>;
  HYLBasVector<Pair> pairs(2), copies(3, Pair(4, 5));
  EXPECT_TRUE(pairs.begin()[1].first == 0 && pairs.begin()[1].second == 0);
  pairs.swap(copies);
  EXPECT_TRUE(pairs.end() - pairs.begin() == 3 && copies.end() - copies.begin() == 2);
  EXPECT_TRUE(pairs.begin()[2].first == 4 && pairs.begin()[2].second == 5);
}

} // namespace
