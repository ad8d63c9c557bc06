// The two-dimensional array beside a model that follows elements, blocks and every failed check.
#include <cmath>
#include <csignal>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "HYLBasArray2D.h"
#include "support/RecordingMemory.h"

namespace {

using recording::Place;

struct Report {
  std::string message;
};
std::vector<std::string> headerLines;
bool serviceReturns = false;
std::string lastReport;

} // namespace

// Leaves the failed operation by an exception, as a host's own service may.
void QELFatalError(char const* message, char const* a, char const* b, char const* c,
                   char const* path, int line) {
  EXPECT_TRUE(a == nullptr && b == nullptr && c == nullptr);
  EXPECT_STREQ(path, "ProtectedInterfaces/HYLBasArray2D");
  if (headerLines.empty()) {
    std::ifstream header(HYLBAS_SOURCE_DIR "/ProtectedInterfaces/HYLBasArray2D.h");
    for (std::string text; std::getline(header, text);)
      headerLines.push_back(text);
  }
  // On one line stands the check, on another at most its text.
  std::string const& check = headerLines.at(static_cast<std::size_t>(line) - 1);
  EXPECT_TRUE(check.find("_CHECK") != std::string::npos ||
              check.find("__LINE__") != std::string::npos)
      << message << line;
  std::string const around = headerLines.at(static_cast<std::size_t>(line) - 3) + check;
  EXPECT_NE(around.find(std::string(message).substr(16, 12)), std::string::npos) << message << line;
  lastReport = message;
  if (!serviceReturns) throw Report{message};
}

namespace {

template <class Array>
struct Traits;
template <class Element, int order>
struct Traits<HYLBasArray2D<Element, order>> {
  using T = Element;
  static constexpr int Order = order;
};

// Two arrays and what they should be. Blocks are numbered by the recording memory; block 0 is the
// test's own buffer, which arrays borrow.
template <class Array>
class ArraysAndModels {
  using T = typename Traits<Array>::T;
  static constexpr int order = Traits<Array>::Order;
  using MemType = typename Array::MemType;

  struct Model {
    int m, n, block, type;
    std::size_t Index(int i, int j) const {
      return static_cast<std::size_t>(order == 0 ? i * n + j : j * m + i);
    }
    std::size_t Count() const { return m < 1 || n < 1 ? 0 : static_cast<std::size_t>(m * n); }
  };

public:
  explicit ArraysAndModels(unsigned int seed) : m_random(seed) {
    recording::Reset(m_own, sizeof m_own);
    m_vector.reserve(64);
    recording::Events().clear();
    m_nextNumber = 2;
    for (T& x : m_own)
      x = Number();
    m_blocks[0].assign(m_own, m_own + std::size(m_own));
    for (int i : {0, 1})
      Construct(i);
  }

  ~ArraysAndModels() {
    for (int i : {0, 1})
      Destruct(i);
    CompareEvents("destruction");
    EXPECT_EQ(recording::LiveBlocks(), 1u);
  }

  void Step() {
    int const k = Below(2);
    Array& a = *m_arrays[k];
    Model& model = m_models[k];
    int const action = Below(17);
    switch (action) {
    case 0:
      Destruct(k);
      Construct(k);
      break;
    case 1: { // also self-assignment
      int const other = Below(2);
      Model const old = model;
      if (!IsCopyable(m_models[other])) break;
      EXPECT_EQ(&(a = *m_arrays[other]), &a);
      CopyOf(model, m_models[other]);
      Release(old);
      break;
    }
    case 2: {
      int const m = Dimension(), n = Dimension();
      T const value = Number();
      Model const old = model;
      a.Resize(m, n, value);
      Fill(model, m, n, value);
      Release(old);
      break;
    }
    case 3: {
      T const value = Number();
      bool const empty = model.block < 0 || model.m < 1 || model.n < 1;
      bool const inside = !empty && Below(2);
      std::size_t const at = inside ? Any(model) : 0;
      T const expected = inside ? m_blocks[model.block][at] : value;
      Expect(empty, "m_data && m_m > 0 && m_n > 0",
             [&] { a.SetValue(inside ? a.GetPointerToMemory()[at] : value); });
      if (!empty) std::fill_n(m_blocks[model.block].begin(), model.Count(), expected);
      break;
    }
    case 4: {
      int m = Dimension(), n = Dimension(), number = -1;
      T* data = NewBlock(m, n, number);
      Model const old = model;
      a.AdoptMemory(m, n, data);
      EXPECT_EQ(data, nullptr);
      Release(old);
      model = {m, n, number, 1};
      break;
    }
    case 5: {
      Model const old = model;
      bool const null = Below(8) == 0;
      model = {Dimension(), Dimension(), null ? -1 : 0, 2};
      a.BorrowMemory(model.m, model.n, null ? nullptr : m_own);
      Release(old);
      break;
    }
    case 6: // an element, through each of the three ways
    case 7: {
      int const i = Index(model.m), j = Index(model.n);
      bool const bad = model.block < 0 || i < 0 || i >= model.m || j < 0 || j >= model.n;
      char const* const text = "_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n";
      T const value = Number();
      Expect(bad, text, [&] { a(i, j) = value; });
      if (!bad) m_blocks[model.block][model.Index(i, j)] = value;
      Expect(bad, text, [&] { EXPECT_EQ(std::as_const(a)(i, j), value); });
      using Formula = typename Array::template SpecializedParenthesis<T, order>;
      Expect(bad, text, [&] {
        EXPECT_EQ(&Formula::Parenthesis(a.GetPointerToMemory(), model.m, model.n, i, j), &a(i, j));
      });
      break;
    }
    case 8:
      GetRow(a, model);
      break;
    case 9: {
      int const j = Index(model.n);
      bool const bad = model.block < 0 || j < 0 || j >= model.n;
      m_vector.resize(static_cast<unsigned int>(Below(12)));
      if (!bad && model.m < 0) break; // asks for a vector of 4294967295 elements
      Expect(bad, "m_data != 0 && _colid >= 0 && _colid < m_n", [&] {
        a.GetColumnCopy(j, m_vector);
        ASSERT_EQ(int(m_vector.size()), model.m);
        for (int i = 0; i < model.m; ++i)
          ASSERT_EQ(m_vector[static_cast<unsigned int>(i)], Element(model, i, j));
      });
      break;
    }
    case 10:
    case 11:
      SetRow(a, model);
      break;
    case 12:
    case 13:
      SetColumn(a, model);
      break;
    case 14:
    case 15:
      Extract(k, action == 14);
      break;
    case 16: // a buffer inside the array's own block: element by element, first to last
      Overlap(a, model);
      break;
    }
    CompareEvents(std::to_string(action).c_str());
    for (int i : {0, 1})
      Compare(*m_arrays[i], m_models[i]);
  }

private:
  int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned int>(n)); }
  int Dimension() { return Below(8) == 0 ? -Below(3) : 1 + Below(6); }
  int Index(int limit) { return Below(12) == 0 ? Below(20) - 10 : Below(std::max(limit, 1)); }
  T Number() { return static_cast<T>(Below(2000) - 1000) / 4; }
  std::size_t Any(Model const& model) {
    return static_cast<std::size_t>(Below(static_cast<int>(model.Count())));
  }
  static bool IsCopyable(Model const& model) { return model.block >= 0 || model.Count() == 0; }
  T& Element(Model const& model, int i, int j) {
    return m_blocks.at(model.block).at(model.Index(i, j));
  }

  // A block of the caller's, to be adopted; none when a dimension is below 1.
  T* NewBlock(int m, int n, int& number) {
    Model const shape = {m, n, -1, 1};
    number = -1;
    if (shape.Count() == 0) return nullptr;
    auto const bytes = static_cast<unsigned int>(shape.Count() * sizeof(T));
    auto* const data = static_cast<T*>(mem_OperatorNewThrowBuiltin(bytes));
    number = Allocated(shape);
    for (std::size_t k = 0; k != shape.Count(); ++k)
      data[k] = m_blocks[number][k] = Number();
    return data;
  }
  int Allocated(Model const& shape) {
    if (shape.Count() == 0) return -1;
    m_events.push_back({'A', {-1, 0}, {-1, 0}, shape.Count() * sizeof(T)});
    m_blocks[m_nextNumber].resize(shape.Count());
    return m_nextNumber++;
  }
  void Fill(Model& model, int m, int n, T value) {
    model = {m, n, -1, 0};
    model.block = Allocated(model);
    if (model.block > 0) m_blocks[model.block].assign(model.Count(), value);
  }
  void CopyOf(Model& model, Model const& source) {
    Model const from = source; // may be the same
    model = {from.m, from.n, -1, 0};
    model.block = Allocated(model);
    for (std::size_t k = 0; k != model.Count(); ++k)
      m_blocks[model.block][k] = m_blocks[from.block][k];
  }
  void Release(Model const& old) {
    if (old.type != 0 && old.type != 1) return;
    m_events.push_back({'F', {old.block, 0}, {-1, 0}, 0});
    if (old.block > 0) m_blocks.erase(old.block);
  }

  void Destruct(int k) {
    delete m_arrays[k];
    Release(m_models[k]);
  }

  void Construct(int k) {
    int const m = Dimension(), n = Dimension(), way = Below(8);
    Model& model = m_models[k];
    model = {0, 0, -1, 0};
    int number = -1;
    T* own = m_own;
    auto const type = static_cast<MemType>(Below(2) ? Below(3) : Below(9) - 4);
    if (way < 2) {
      T const value = Number();
      m_arrays[k] = new Array(m, n, value);
      Fill(model, m, n, value);
    } else if (way < 3 && m_arrays[1 - k] != nullptr && IsCopyable(m_models[1 - k])) {
      m_arrays[k] = new Array(*m_arrays[1 - k]);
      CopyOf(model, m_models[1 - k]);
    } else if (way < 6) {
      T* data = type == Array::e_adopt ? NewBlock(m, n, number) : own;
      m_arrays[k] = new Array(m, n, data, type);
      EXPECT_EQ(data, type == Array::e_adopt ? nullptr : own);
      Taken(model, m, n, type, number);
    } else {
      Expect(type == Array::e_adopt, nullptr, [&] {
        m_arrays[k] = new Array(m, n, own, Array::e_pointerValue, type);
        Taken(model, m, n, type, number);
      });
      if (type == Array::e_adopt) Construct(k);
    }
  }
  void Taken(Model& model, int m, int n, MemType type, int number) {
    if (type == Array::e_copy) {
      CopyOf(model, {m, n, 0, 0});
    } else if (type == Array::e_adopt || type == Array::e_borrow) {
      model = {m, n, type == Array::e_adopt ? number : 0, type};
    } else {
      model.type = type;
    }
  }

  void GetRow(Array& a, Model const& model) {
    int const i = Index(model.m), room = model.n + Below(4) - 1;
    bool const bad = model.block < 0 || i < 0 || i >= model.m, null = Below(8) == 0;
    T places[12];
    std::fill_n(places, 12, T(9999));
    Expect(bad || null || room < model.n,
           "m_data != 0 && _row && _n >= m_n && _rowid >= 0 && _rowid < m_m", [&] {
             a.GetRowCopy(i, room, null ? nullptr : places);
             for (int j = 0; j != 12; ++j)
               ASSERT_EQ(places[j], j < model.n ? Element(model, i, j) : T(9999));
           });
    if (!bad && model.n < 0) return; // asks for a vector of 4294967295 elements
    m_vector.resize(static_cast<unsigned int>(Below(12)));
    Expect(bad, "m_data != 0 && _rowid >= 0 && _rowid < m_m", [&] {
      a.GetRowCopy(i, m_vector);
      ASSERT_EQ(int(m_vector.size()), model.n);
      for (int j = 0; j < model.n; ++j)
        ASSERT_EQ(m_vector[static_cast<unsigned int>(j)], Element(model, i, j));
    });
  }

  // Numbers in the vector, mostly at least `count`.
  void NewLine(int count) {
    m_vector.resize(static_cast<unsigned int>(std::max(0, count - 1 + Below(6))));
    for (T& x : m_vector)
      x = Number();
  }

  void SetRow(Array& a, Model const& model) {
    int const i = Index(model.m);
    NewLine(model.n);
    bool const bad = model.block < 0 || i < 0 || i >= model.m;
    int const size = static_cast<int>(m_vector.size());
    bool const buffer = Below(2), isShort = buffer ? size < model.n : size < model.n || model.n < 0;
    Expect(bad || isShort,
           buffer ? "m_data != 0 && _rowid >= 0 && _rowid < m_m && _n >= m_n"
                  : "m_data != 0 && _rowid >= 0 && _rowid < m_m && _row.size() >= m_n",
           [&] { buffer ? a.SetRow(i, m_vector.begin(), size) : a.SetRow(i, m_vector); });
    for (int j = 0; !bad && !isShort && j < model.n; ++j)
      Element(model, i, j) = m_vector[static_cast<unsigned int>(j)];
  }

  void SetColumn(Array& a, Model const& model) {
    int const j = Index(model.n);
    NewLine(model.m);
    bool const bad = model.block < 0 || j < 0 || j >= model.n;
    int const size = static_cast<int>(m_vector.size());
    bool const buffer = Below(2), isShort = buffer ? size < model.m : size < model.m || model.m < 0;
    Expect(bad || isShort,
           buffer ? "m_data != 0 && _colid >= 0 &&_colid < m_n && _m >= m_m"
                  : "m_data != 0 && _colid >= 0 && _colid < m_n && _col.size() >= m_m",
           [&] { buffer ? a.SetColumn(j, m_vector.begin(), size) : a.SetColumn(j, m_vector); });
    for (int i = 0; !bad && !isShort && i < model.m; ++i)
      Element(model, i, j) = m_vector[static_cast<unsigned int>(i)];
  }

  void Extract(int k, bool rows) {
    Array& a = *m_arrays[k];
    Model const& source = m_models[k];
    Model& result = m_models[1 - k];
    int const limit = rows ? source.m : source.n, count = Below(std::max(limit, 0) + 2) - Below(2);
    int chosen[10];
    for (int& id : chosen)
      id = Index(limit);
    bool const null = Below(10) == 0;
    int const* const list = null ? nullptr : chosen;
    auto const extract = [&] {
      rows ? a.ExtractRows(list, count, *m_arrays[1 - k])
           : a.ExtractColumns(list, count, *m_arrays[1 - k]);
    };
    if (source.block < 0 || null || count > limit) {
      Expect(true, rows ? "m_data && _rowids && _m <= m_m" : "m_data && _colids && _n <= m_n",
             extract);
      return;
    }
    int good = 0;
    while (good < count && chosen[good] >= 0 && chosen[good] < limit)
      ++good;
    Expect(good < count, rows ? "rid >= 0 && rid < m_m" : "cid >= 0 && cid < m_n", extract);
    Model const old = result;
    Fill(result, rows ? count : source.m, rows ? source.n : count, 0);
    Release(old);
    for (int c = 0; c < good; ++c)
      for (int x = 0; x < (rows ? source.n : source.m); ++x)
        rows ? Element(result, c, x) = Element(source, chosen[c], x)
             : Element(result, x, c) = Element(source, x, chosen[c]);
  }

  void Overlap(Array& a, Model const& model) {
    if (model.block < 0 || model.m < 1 || model.Count() < static_cast<std::size_t>(model.n)) return;
    int const i = Below(model.m);
    auto const at = static_cast<std::size_t>(Below(static_cast<int>(model.Count()) - model.n + 1));
    bool const out = Below(2);
    T* const buffer = a.GetPointerToMemory() + at;
    out ? a.GetRowCopy(i, model.n, buffer) : a.SetRow(i, buffer, model.n);
    for (int j = 0; j != model.n; ++j) {
      T& place = m_blocks[model.block][at + static_cast<std::size_t>(j)];
      out ? place = Element(model, i, j) : Element(model, i, j) = place;
    }
  }

  // Runs the operation, which fails with this text or not at all. Without a text: the one of the
  // refused adoption.
  template <class Operation>
  void Expect(bool fails, char const* text, Operation operation) {
    std::string const expected =
        std::string("AssertionFailed:") +
        (text ? text
              : "\"Invalid use of e_adopt memory option with this Array2D constructor\" == 0");
    try {
      operation();
      EXPECT_FALSE(fails) << expected;
    } catch (Report const& report) {
      EXPECT_TRUE(fails) << report.message;
      EXPECT_EQ(report.message, expected);
    }
  }

  void CompareEvents(char const* what) {
    EXPECT_TRUE(recording::Events() == m_events) << "after action " << what;
    recording::Events().clear();
    m_events.clear();
  }

  void Compare(Array& a, Model const& model) {
    int m = 0, n = 0;
    a.GetSize(m, n);
    EXPECT_TRUE(m == model.m && n == model.n);
    EXPECT_TRUE(a.GetNumberOfRows() == m && a.GetNumberOfColumns() == n);
    ASSERT_EQ(recording::Locate(a.GetPointerToMemory()), (Place{model.block, 0}));
    for (std::size_t k = 0; model.block >= 0 && k != model.Count(); ++k)
      ASSERT_EQ(a.GetPointerToMemory()[k], m_blocks[model.block][k]);
  }

  std::mt19937 m_random;
  T m_own[64];
  HYLBasVector<T> m_vector;
  int m_nextNumber;
  std::map<int, std::vector<T>> m_blocks;
  std::vector<recording::Event> m_events;
  Array* m_arrays[2] = {};
  Model m_models[2];
};

template <class Array>
class Array2D : public testing::Test {};
using Arrays = testing::Types<HYLBasArray2D<int, 0>, HYLBasArray2D<int, 1>,
                              HYLBasArray2D<double, 0>, HYLBasArray2D<double, 1>,
                              HYLBasArray2D<float, 1>>; // the last not in the library
TYPED_TEST_SUITE(Array2D, Arrays, );

TYPED_TEST(Array2D, FollowsTheModelInElementsBlocksAndFailedChecks) {
  for (unsigned int seed = 1; seed != 101; ++seed) {
    SCOPED_TRACE(seed);
    ArraysAndModels<TypeParam> arrays(seed);
    for (int step = 0; step != 200 && !testing::Test::HasFailure(); ++step)
      arrays.Step();
    if (testing::Test::HasFailure()) return;
  }
}

TYPED_TEST(Array2D, FailedRequestLeavesTheArrayAsItWas) {
  using T = typename Traits<TypeParam>::T;
  recording::Reset(nullptr, 0);
  TypeParam a(2, 3, T(5));
  TypeParam const other(4, 4, T(1));
  int const chosen[] = {0, 1};
  T* const block = a.GetPointerToMemory();
  std::function<void()> const operations[] = {[&] { a = other; }, [&] { a.Resize(9, 9, 0); },
                                              [&] { other.ExtractRows(chosen, 2, a); },
                                              [&] { other.ExtractColumns(chosen, 2, a); }};
  for (auto const& operation : operations) {
    recording::FailRequest(1);
    EXPECT_THROW(operation(), std::bad_alloc);
    EXPECT_EQ(a.GetPointerToMemory(), block);
    EXPECT_EQ(a.GetNumberOfColumns(), 3);
    EXPECT_EQ(a(1, 2), T(5));
  }
  // Each has its new block and shape when the former block is released.
  for (auto const& operation : operations) {
    a.Resize(2, 3, T(5));
    bool released = false;
    recording::AtRelease() = [&, former = a.GetPointerToMemory()](void const* gone) {
      released = gone == former;
      EXPECT_TRUE(a.GetPointerToMemory() != gone && a.GetNumberOfColumns() != 3);
    };
    operation();
    recording::AtRelease() = nullptr;
    EXPECT_TRUE(released);
  }
}

TYPED_TEST(Array2D, CountsThatDoNotFitAskForTheSizeThatIsNeverHad) {
  using T = typename Traits<TypeParam>::T;
  for (auto [m, n] : {std::pair(32768, 32768), std::pair(65536, 65536), std::pair(1, 2147483647),
                      std::pair(2147483647, 2147483647)})
    EXPECT_EXIT(TypeParam(m, n, T()), testing::KilledBySignal(SIGABRT), "4294967295 bytes");
}

// Where the host's service returns, a failed check ends the process; the refused adoption goes on.
TYPED_TEST(Array2D, NothingGoesOnAfterAFailedCheckButTheRefusedAdoption) {
  using T = typename Traits<TypeParam>::T;
  T own[6] = {};
  recording::Reset(own, sizeof own);
  serviceReturns = true;
  TypeParam a(2, 3, own, TypeParam::e_pointerValue, TypeParam::e_adopt);
  EXPECT_EQ(lastReport, "AssertionFailed:\"Invalid use of e_adopt memory option with this Array2D "
                        "constructor\" == 0");
  EXPECT_EQ(&a(0, 0), own);
  auto const dies = testing::KilledBySignal(SIGABRT);
  HYLBasVector<T> v;
  TypeParam result(0, 0, 0);
  int const far = 7;
  EXPECT_EXIT(a(2, 0), dies, "^$");
  EXPECT_EXIT(a.GetRowCopy(2, v), dies, "^$");
  EXPECT_EXIT(a.SetColumn(0, own, 1), dies, "^$");
  EXPECT_EXIT(a.ExtractRows(&far, 1, result), dies, "^$");
  EXPECT_EXIT(result.SetValue(T()), dies, "^$");
  serviceReturns = false;
  recording::Events().clear();
  { TypeParam const borrowed(2, 3, own, TypeParam::e_pointerValue, TypeParam::e_borrow); }
  EXPECT_TRUE(recording::Events().empty());
}

// The private operations, reached through the one door that access control leaves open.
template <class Array, auto... members>
struct Opened {
  friend auto Open(Array*) { return std::make_tuple(members...); }
};
#define OPEN(T, Order)                                                                             \
  auto Open(HYLBasArray2D<T, Order>*);                                                             \
  template struct Opened<HYLBasArray2D<T, Order>, &HYLBasArray2D<T, Order>::Allocate,              \
                         &HYLBasArray2D<T, Order>::Copy, &HYLBasArray2D<T, Order>::Initialize,     \
                         &HYLBasArray2D<T, Order>::Destroy, &HYLBasArray2D<T, Order>::SetMembers>;
OPEN(int, 0)
OPEN(int, 1)
OPEN(double, 0)
OPEN(double, 1)
OPEN(float, 1)
#undef OPEN

TYPED_TEST(Array2D, PrivateOperations) {
  using T = typename Traits<TypeParam>::T;
  static_assert(sizeof(TypeParam) == 8 + 2 * sizeof(void*));
  static_assert(sizeof(typename TypeParam::MemType) == 4 &&
                sizeof(typename TypeParam::SourceType) == 4 &&
                sizeof(typename TypeParam::NormType) == 4);
  auto const [allocate, copy, initialize, destroy, setMembers] =
      Open(static_cast<TypeParam*>(nullptr));
  T own[2] = {T(3), T(4)};
  recording::Reset(own, sizeof own);
  TypeParam a(0, 0, own, TypeParam::e_pointerValue, TypeParam::e_borrow);
  T* block = own;
  (a.*allocate)(0, 3, block);
  EXPECT_EQ(block, nullptr);
  (a.*allocate)(2, 3, block);
  (a.*setMembers)(2, 3, TypeParam::e_borrow, block);
  EXPECT_EQ(&a(0, 0), block);
  (a.*initialize)(1, 1, T(9)); // the block that was there is not released
  T* second = a.GetPointerToMemory();
  EXPECT_EQ(a(0, 0), T(9));
  (a.*copy)(1, 2, own);
  EXPECT_EQ(a(0, 1), T(4));
  T* borrowed = own;
  (a.*destroy)(borrowed, TypeParam::e_borrow);
  EXPECT_EQ(borrowed, nullptr);
  (a.*destroy)(borrowed, TypeParam::e_copy); // also null is handed on
  (a.*destroy)(block, TypeParam::e_adopt);
  (a.*destroy)(second, TypeParam::e_copy);
  std::string calls;
  for (auto const& event : recording::Events())
    calls += event.kind;
  EXPECT_EQ(calls, "AAAFFF");
  EXPECT_EQ(recording::LiveBlocks(), 1u);
}

// A norm of the numbers as the only line of an array that borrows them, or copies them.
template <int order>
double NormOf(std::vector<double>& x, int type, bool copied) {
  using Array = HYLBasArray2D<double, order>;
  int const count = static_cast<int>(x.size());
  auto const kind = static_cast<typename Array::NormType>(type);
  int const m = order == 0 ? 1 : count, n = order == 0 ? count : 1;
  Array existing(m, n, x.data(), Array::e_pointerValue, Array::e_borrow);
  if constexpr (order == 0) {
    if (copied) return RowNorm(existing, 0, kind);
    return RowNorm(Array(m, n, x.data(), Array::e_pointerValue, Array::e_borrow), 0, kind);
  } else {
    if (copied) return ColumnNorm(existing, 0, kind);
    return ColumnNorm(Array(m, n, x.data(), Array::e_pointerValue, Array::e_borrow), 0, kind);
  }
}

double PlainNorm(std::vector<double> const& x, int type) {
  double volatile s = 0.0; // every step rounded to a double
  for (double const value : x) {
    double const a = std::fabs(value);
    double volatile const square = value * value;
    if (type == 0) s = a + s;
    if (type == 1) s = square + s;
    if (type == 2 && a > s) s = a;
  }
  return type == 1 ? std::sqrt(s) : type == 0 || type == 2 ? s : 0.0;
}

TEST(Array2DNorms, HaveTheBitsOfThePlainLoops) {
  std::mt19937 random(1);
  double const special[] = {0.0, -0.0, 1e200, -1e200, 1e-200, HUGE_VAL, std::nan("")};
  for (int round = 0; round != 400; ++round) {
    std::vector<double> x(random() % 40);
    for (double& value : x)
      value = random() % 8 == 0 && round % 2
                  ? special[random() % std::size(special)]
                  : std::ldexp(static_cast<int>(random()), static_cast<int>(random() % 60));
    recording::Reset(x.data(), x.size() * sizeof(double));
    for (int type : {0, 1, 2, 3, -1}) {
      double const expected = PlainNorm(x, type);
      for (bool const copied : {false, true}) {
        recording::Events().clear();
        for (double const norm : {NormOf<0>(x, type, copied), NormOf<1>(x, type, copied)}) {
          EXPECT_EQ(std::isnan(norm), std::isnan(expected));
          ASSERT_TRUE(std::isnan(norm) || std::memcmp(&norm, &expected, sizeof norm) == 0);
        }
        std::size_t const events = copied ? (x.empty() ? 2u : 4u) : 0u;
        EXPECT_EQ(recording::Events().size(), events);
      }
    }
  }
}

TEST(Array2DNorms, ReportBadIndicesAndMissingBlocks) {
  using Rows = HYLBasArray2D<double, 0>;
  using Columns = HYLBasArray2D<double, 1>;
  recording::Reset(nullptr, 0);
  auto const report = [](auto operation) {
    try {
      operation();
      return std::string();
    } catch (Report const& caught) {
      return caught.message;
    }
  };
  for (int bad : {-1, 2}) {
    EXPECT_EQ(report([&] { RowNorm(Rows(2, 3, 1.0), bad, Rows::e_norm1); }),
              "AssertionFailed:0 <= _rowid && _rowid < m");
    EXPECT_EQ(report([&] { ColumnNorm(Columns(3, 2, 1.0), bad, Columns::e_norm1); }),
              "AssertionFailed:0 <= _colid && _colid < n");
  }
  EXPECT_EQ(ColumnNorm(Columns(0, 5, 1.0), 4, Columns::e_norm2), 0.0);
  EXPECT_EQ(RowNorm(Rows(5, 0, 1.0), 4, Rows::e_normInf), 0.0);
  double* none = nullptr;
  EXPECT_EQ(report([&] { RowNorm(Rows(2, 3, none, Rows::e_borrow), 1, Rows::e_norm2); }),
            "AssertionFailed:_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n");
  EXPECT_EQ(RowNorm(Rows(2, 3, none, Rows::e_borrow), 1, static_cast<Rows::NormType>(7)), 0.0);
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

} // namespace
