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

using model::PlainVector;

int elementSize; // of the vectors under test, for the recording functions

void RecordingCopy(void const* source, void* destination, unsigned int count) {
  recording::Events().push_back(
      {'C', recording::Locate(source), recording::Locate(destination), count});
  if (count != 0) std::memmove(destination, source, std::size_t{count} * elementSize);
}
void RecordingDestroy(void const* first, unsigned int count) {
  recording::Events().push_back({'D', recording::Locate(first), {-1, 0}, count});
}

// Is lost when it is made from itself, which the library's own copy function must not do.
struct Fragile {
  unsigned char bytes[8];
  Fragile(Fragile const& other) {
    std::memset(bytes, 0xEE, sizeof bytes);
    std::memmove(bytes, other.bytes, sizeof bytes);
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
using Policy = std::conditional_t<std::is_same_v<V, Bytewise>, HYLAspStructReplicator,
                                  HYLBasReplicatorGeneric>;

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

template <class V>
constexpr int bytesOf = 0; // of an element, where the type tells
template <class T>
constexpr int bytesOf<Typed<T>> = sizeof(T);
template <class V>
constexpr bool isErased = bytesOf<V> == 0;

void swap(HYLBasVectorGeneric& a, HYLBasVectorGeneric& b) { a.swap(b); }

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
OPEN(PlainVector)
OPEN(HYLBasVectorGeneric)
OPEN(ByFunction)
OPEN(Bytewise)
#undef OPEN

template <int k>
decltype(auto) Call(auto& v, auto const&... operands) {
  return (v.*std::get<k>(Open(&v)))(operands...);
}

// Two vectors and their models, driven through the same operations.
template <class V>
class VectorWalk {
  // Real vectors, or their models, and the walk's own memory beside them.
  template <class Vector>
  struct Side {
    alignas(16) char own[512];
    std::optional<Vector> vectors[2];
  };
  // What an operation works with: a vector, places in it, a range of `count` elements, a value.
  template <class Vector>
  struct Operands {
    std::optional<Vector>& slot;
    Vector &v, &source;
    Policy<V> policy;
    unsigned int size, n, count;
    char *at, *to, *first, *last;
    void const* value;
  };

public:
  VectorWalk(HYLBasReplicatorGeneric const& kind, Choices& choices)
      : m_choices(choices), m_kind(kind), m_policy(kind.m_size) {
    m_policy.m_destroy = kind.m_destroy;
    if constexpr (!std::is_same_v<V, Bytewise>) m_policy.m_copy = kind.m_copy;
    for (int k = 0; k != 512; ++k) // also zeros, and values of equal bytes
      m_real.own[k] = static_cast<char>(k < 256 ? k * 7 : k < 352 ? 0 : k < 448 ? 5 : k % 2);
    std::memcpy(m_plain.own, m_real.own, sizeof m_plain.own);
    recording::Reset(m_real.own, sizeof m_real.own);
    PlainVector::memory = {{{m_plain.own, 0}}, 0, {}};
    elementSize = kind.m_size;
    m_seen = kind.m_destroy == RecordingDestroy ? "AFD" : "AF";
    if (kind.m_copy == RecordingCopy && !std::is_same_v<V, Bytewise>) m_seen += 'C';
    for (unsigned int i : {0, 1})
      Empty(i);
  }
  ~VectorWalk() {
    for (int i : {0, 1}) {
      m_real.vectors[i].reset();
      m_plain.vectors[i].reset();
    }
    CompareCalls();
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }

  void Step() {
    m_i = Below(2), m_source = Below(2);
    PlainVector& m = *m_plain.vectors[m_i];
    unsigned int const size = m.Size();
    m_at = Below(size + 1), m_to = size, m_n = Below(2) ? Below(6) : Below(40);
    m_valueIsOwn = m_choices.OneIn(4) || size == 0;
    m_value = m_valueIsOwn ? OwnValue() : Below(size);
    constexpr unsigned int common = 16; // actions of all vectors; those of some come behind
    unsigned int const action = Below(common + (isRecordVector<V> ? 3 : isErased<V> ? 1 : 0));
    m_rangeIsOwn = action != 8, m_first = 0, m_last = std::min(m_n, 20u);
    SCOPED_TRACE("action " + std::to_string(action));
    if (action < 2) Both([](auto o) { o.v.PushBack(o.value); });
    if (action == 2 && size != 0) Both([](auto o) { o.v.PopBack(); });
    if (action == 4) m_at = m.Capacity(); // over a gap that is zeroed
    if (action == 3 || action == 4) Both([](auto o) { return o.v.Insert(o.at, o.value); });
    if (action == 5 || action == 6) Both([](auto o) { o.v.Insert(o.at, o.n, o.value); });
    if (action == 8) m_first = Below(size + 1), m_last = m_first + Below(size - m_first + 1);
    if (action == 7 || action == 8) Both([](auto o) { o.v.Insert(o.at, o.first, o.last); });
    if (action == 9 && m_at != size) Both([](auto o) { return o.v.Erase(o.at); });
    if (action == 10) m_to = m_at + Below(size - m_at + 1);
    if (action == 10) Both([](auto o) { return o.v.Erase(o.at, o.to); });
    if (action == 11) Both([](auto o) { o.v.Assign(o.n, o.value); });
    if (action == 12) Both([](auto o) { o.v.Resize(o.n, o.value); });
    if (action == 13) Both([](auto o) { o.v.Reserve(o.n); });
    if (action == 14) Both([](auto o) { return &(o.v = o.source) == &o.v; });
    if (action == 15 && m_n % 3 == 0) Both([](auto o) { swap(o.v, o.source); });
    if (action == 15 && m_n % 3 == 1) Both([](auto o) { o.v.Clear(); });
    if (action == 15 && m_n % 3 == 2) MakeAnew();
    if constexpr (isErased<V>)
      if (action == common) PrivateStep(Below(9), size - m_at);
    if constexpr (isRecordVector<V>) {
      if (action == common + 1) Both([](auto o) { o.v.Resize(o.n); });
      if (action == common + 2) Both([](auto o) { o.v.resize(o.n); });
    }
    CompareCalls();
    for (int i : {0, 1})
      CompareContents(*m_real.vectors[i], *m_plain.vectors[i]);
  }

private:
  unsigned int Below(unsigned int n) { return m_choices.Below(n); }
  unsigned int OwnValue() { return 8 * (Below(2) ? Below(12) : 32 + Below(24)); }

  template <class Vector>
  Operands<Vector> Of(Side<Vector>& side) {
    std::optional<Vector>& slot = side.vectors[m_i];
    char* const begin = static_cast<char*>(slot->Begin());
    auto const size = static_cast<unsigned int>(elementSize);
    // A vector made anew has no block for the places that were chosen before.
    std::size_t const s = begin == nullptr ? 0 : size;
    char* const range = m_rangeIsOwn ? side.own : begin;
    char *const at = begin + m_at * s, *const to = begin + m_to * s;
    char const* const value = m_valueIsOwn ? side.own + m_value : begin + m_value * s;
    std::size_t const r = m_rangeIsOwn ? size : s;
    return {slot, *slot, *side.vectors[m_source], m_policy,           size, m_n, m_last - m_first,
            at,   to,    range + m_first * r,     range + m_last * r, value};
  }
  // Carries out the operation with the real vectors, at times with memory failing, and with the
  // models where it was completed. Else nothing has happened but the end of an empty vector.
  template <class Operation>
  void Both(Operation operation) {
    CompareCalls();
    auto real = Of(m_real);
    auto plain = Of(m_plain);
    std::optional<decltype(ResultOf(operation, real))> result;
    if (Completes(m_choices.FailingRequest() != 0, [&] { result = ResultOf(operation, real); }))
      return Expect(*result, ResultOf(operation, plain));
    std::erase_if(recording::Events(), [](auto& e) { return e.kind == 'D' && e.n == 0; });
  }
  static void Expect(auto real, auto plain) {
    if constexpr (std::is_pointer_v<decltype(real)>)
      ASSERT_EQ(recording::Locate(real), PlainVector::memory.Locate(plain));
    else
      ASSERT_EQ(real, plain);
  }

  void Empty(unsigned int i) {
    m_real.vectors[i].emplace(m_policy, 0u, nullptr);
    m_plain.vectors[i].emplace(m_policy, 0u, nullptr);
  }
  void MakeAnew() {
    m_policy.m_destroy = Below(2) ? nullptr : m_kind.m_destroy;
    Empty(m_i);
    m_source = 1 - m_i, m_n = Below(6), m_last = m_n;
    m_valueIsOwn = true, m_value = OwnValue();
    unsigned int const way = Below(7);
    if (way == 0) Both([](auto o) { o.slot.emplace(o.policy, o.n, o.value); });
    if (way == 1) Both([](auto o) { o.v.Init(o.first, o.last); });
    if (way == 2) Both([](auto o) { o.slot.emplace(std::as_const(o.source)); });
    if constexpr (isErased<V>) {
      if (way == 3) Both([](auto o) { o.v.Init(o.n, o.value); });
    }
    if constexpr (isRecordVector<V>) // by the size alone, bytewise
      if (way > 3 && m_kind.m_copy != RecordingCopy && m_policy.m_destroy == nullptr) {
        if (way == 4) Both([](auto o) { o.slot.emplace(o.size, o.n); });
        if (way == 5) Both([](auto o) { o.slot.emplace(o.size, o.n, o.value); });
        if (way == 6) Both([](auto o) { o.slot.emplace(o.size, 0u); });
        if (way == 6) Both([](auto o) { o.v.Init(o.n); });
      }
    if (!m_real.vectors[m_i]) m_real.vectors[m_i].emplace(m_policy, 0u, nullptr);
  }
  // One of the private operations, on the elements from the chosen one on where it takes elements.
  void PrivateStep(unsigned int way, unsigned int after) {
    bool const isFull = m_to == m_plain.vectors[m_i]->Capacity();
    SCOPED_TRACE("private action " + std::to_string(way));
    m_last = std::min(m_last, after);
    if (way == 0) Both([](auto o) { Call<0>(o.v, o.n); });
    if (way == 1 && (after != 0 || isFull)) Both([](auto o) { Call<12>(o.v, o.at, o.value); });
    if (way == 2) Both([](auto o) { Call<9>(o.v, o.at, o.to, o.value); });
    if (way == 3) Both([](auto o) { return Call<8>(o.v, o.at, o.count, o.value); });
    if (way == 4) Both([](auto o) { return Call<10>(o.v, o.first, o.last, o.at); });
    if (way == 5 && after != 0)
      Both([](auto o) { return Call<11>(o.v, o.at, o.to - elementSize, o.to); });
    if (way == 6) Both([](auto o) { Call<4>(o.v, o.at, Call<2>(o.v, o.to, o.at)); });
    if (way == 7) Both([](auto o) { Call<5>(o.v, o.at); });
    if (way == 8) Both([](auto o) { Call<7>(o.v, Call<6>(o.v, o.n), o.n); });
    if (way == 8)
      Both([](auto o) {
        return std::tuple(Call<3>(o.v, o.value), Call<2>(o.v, o.at, o.to),
                          &Call<1>(o.v, o.n, o.count) == &o.n);
      });
  }

  void CompareCalls() {
    std::vector<recording::Event>& events = PlainVector::memory.events;
    std::erase_if(events, [&](auto& e) { return m_seen.find(e.kind) == m_seen.npos; });
    ASSERT_EQ(recording::Events(), events);
    recording::Events().clear();
    events.clear();
  }
  void CompareContents(V const& v, PlainVector const& m) {
    ASSERT_EQ(v.Size(), m.Size());
    ASSERT_EQ(v.Capacity(), m.Capacity());
    Expect(v.Begin(), m.Begin());
    Expect(v.End(), m.End());
    if (m.Size() == 0) return;
    ASSERT_EQ(std::memcmp(v.Begin(), m.Begin(), std::size_t{m.Size()} * elementSize), 0);
    v.RangeCheck(m.Size() - 1);
  }

  Choices& m_choices;
  HYLBasReplicatorGeneric m_kind;
  Policy<V> m_policy; // of what is made anew
  std::string m_seen; // the kinds of calls
  bool m_rangeIsOwn, m_valueIsOwn;
  Side<V> m_real;
  Side<PlainVector> m_plain;
  unsigned int m_i, m_source, m_at, m_to, m_n, m_first, m_last, m_value; // of a step
};

// A plain type that the library has no code for.
struct Word {
  unsigned long value;
};

template <class V>
void WalkVectors(Choices& choices) {
  HYLBasReplicatorGeneric const typed(bytesOf<V>), &kind = isErased<V> ? choices.Of(kinds) : typed;
  VectorWalk<V> walk(kind, choices);
  while (choices.More())
    walk.Step();
}
template <class... V>
void WalkOneOf(Choices& choices) {
  void (*const walks[])(Choices&) = {WalkVectors<V>...};
  choices.Of(walks)(choices);
}

} // namespace

WALK(400, 500) {
  using Core = HYLBasVectorGeneric;
  WalkOneOf<Core, ByFunction, Bytewise, Core, ByFunction, Typed<int>, Typed<float>, Typed<double>,
            Typed<unsigned int>, Typed<long long>, Typed<unsigned long long>, Typed<short>,
            Typed<Word>>(choices);
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
  TypeParam v(Policy<TypeParam>(4), 0, nullptr);
  v.Reserve(4);
  v.Insert(v.End(), values, values + 2);
  char* const first = static_cast<char*>(v.Begin());
  // Outside, and between the last element and the end of storage, nothing is inserted or erased.
  for (char* const bad : {first - 4, first + 12, first + 20}) {
    EXPECT_EXIT(v.Insert(bad, values), dies, Only(""));
    EXPECT_EXIT(v.Insert(bad, bad == first + 12 ? 1u : 0u, values), dies, Only(""));
    EXPECT_EXIT(v.Insert(bad, 2, values), dies, Only(""));
    EXPECT_EXIT(v.Insert(bad, values, values + 1), dies, Only(""));
    EXPECT_EXIT(v.Erase(bad), dies, Only(""));
  }
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
  EXPECT_EXIT(TypeParam(Policy<TypeParam>(8), 4294967295u, values), dies, refused);
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
  static_assert(sizeof(Iterator) == 3 * sizeof(void*) &&
                std::is_convertible_v<TypeParam*, Iterator>);
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
