// The two-dimensional arrays beside a model that follows elements, blocks and every failed check.
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <tuple>

#include "HYLBasArray2D.h"
#include "support/Aborted.h"
#include "walks/Choices.h"

namespace {

using recording::Place;

struct Report {
  std::string message;
};
std::vector<std::string> headerLines;
bool serviceReturns = false;

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
  EXPECT_TRUE(check.find("_CHECK") != check.npos || check.find("__LINE__") != check.npos);
  std::string const around = headerLines.at(static_cast<std::size_t>(line) - 3) + check;
  EXPECT_NE(around.find(std::string(message).substr(16, 12)), std::string::npos) << message << line;
  if (!serviceReturns) throw Report{message};
}

namespace {

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
#undef OPEN

bool SameBits(auto const& a, auto const& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Two arrays and what they should be. Blocks are numbered by the recording memory; block 0 is the
// walk's own buffer, which arrays borrow.
template <class T, int order>
class ArraysAndModels {
  using Array = HYLBasArray2D<T, order>;
  using MemType = typename Array::MemType;

  struct Model {
    int m = 0, n = 0, block = -1, type = 0;
    std::size_t Index(int i, int j) const {
      return static_cast<std::size_t>(order == 0 ? i * n + j : j * m + i);
    }
    std::size_t Count() const { return m < 1 || n < 1 ? 0 : static_cast<std::size_t>(m * n); }
    bool IsCopyable() const { return block >= 0 || Count() == 0; }
  };

public:
  explicit ArraysAndModels(Choices& choices) : m_choices(choices) {
    recording::Reset(m_own, sizeof m_own);
    m_vector.reserve(64);
    recording::Events().clear();
    for (T& x : m_own)
      x = Number();
    m_blocks[0].assign(m_own, m_own + std::size(m_own));
    for (int k : {0, 1})
      Construct(k);
  }
  ~ArraysAndModels() {
    for (int k : {0, 1}) {
      delete m_arrays[k];
      Release(m_models[k]);
    }
    CompareEvents();
    EXPECT_EQ(recording::LiveBlocks(), 1u);
  }

  void Step() {
    int const k = Below(2), action = Below(14);
    int m = 0, n = 0;
    std::tie(m, n) = Shape();
    Array &a = *m_arrays[k], &other = *m_arrays[Below(2)];
    Model& model = m_models[k];
    Model const from = m_models[&other == m_arrays[1]];
    T const value = Number();
    SCOPED_TRACE("action " + std::to_string(action));
    if (action == 0) {
      delete m_arrays[k];
      Release(model);
      Construct(k);
    }
    if (action == 1 && from.IsCopyable()) // also itself
      Do([&] { EXPECT_EQ(&(a = other), &a); }, model, [&] { return CopyOf(from); });
    if (action == 2) Do([&] { a.Resize(m, n, value); }, model, [&] { return Fill(m, n, value); });
    if (action == 3) {
      bool const empty = model.block < 0 || model.Count() == 0, inside = !empty && Below(2);
      std::size_t const at = inside ? Any(model) : 0;
      T const expected = inside ? m_blocks[model.block][at] : value;
      Expect(empty, "m_data && m_m > 0 && m_n > 0",
             [&] { a.SetValue(inside ? a.GetPointerToMemory()[at] : value); });
      if (!empty) std::fill_n(m_blocks[model.block].begin(), model.Count(), expected);
    }
    if (action == 4) {
      Model const adopted = NewBlock(m, n);
      T* data = m_newBlock;
      a.AdoptMemory(m, n, data);
      EXPECT_EQ(data, nullptr);
      Replace(model, adopted);
    }
    if (action == 5) {
      bool const null = m_choices.OneIn(8);
      a.BorrowMemory(m, n, null ? nullptr : m_own);
      Replace(model, {m, n, null ? -1 : 0, 2});
    }
    if (action == 6) { // an element, through each of the three ways
      int const i = Index(model.m), j = Index(model.n);
      bool const bad = model.block < 0 || i < 0 || i >= model.m || j < 0 || j >= model.n;
      char const* const text = "_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n";
      using Formula = typename Array::template SpecializedParenthesis<T, order>;
      Expect(bad, text, [&] { a(i, j) = value; });
      if (!bad) m_blocks[model.block][model.Index(i, j)] = value;
      Expect(bad, text, [&] { EXPECT_TRUE(SameBits(std::as_const(a)(i, j), value)); });
      Expect(bad, text, [&] {
        EXPECT_EQ(&Formula::Parenthesis(a.GetPointerToMemory(), model.m, model.n, i, j), &a(i, j));
      });
    }
    if (action == 7) GetLines(a, model);
    if (action == 8) SetLine(a, model, true);
    if (action == 9) SetLine(a, model, false);
    if (action == 10) Extract(k, Below(2));
    if (action == 11) Overlap(a, model);
    if (action == 12) Measure(a, model);
    if (action == 13) PrivateStep(a, model, m, n, value);
    CompareEvents();
    for (int i : {0, 1})
      Compare(*m_arrays[i], m_models[i]);
  }

private:
  int Below(int n) { return static_cast<int>(m_choices.Below(static_cast<unsigned int>(n))); }
  int Dimension() { return m_choices.OneIn(8) ? -Below(3) : 1 + Below(6); }
  std::pair<int, int> Shape() {
    int const length = 1 + Below(40), way = Below(12);
    if (way < 2) return {way == 0 ? 1 : length, way == 0 ? length : 1};
    return {Dimension(), Dimension()};
  }
  int Index(int limit) { return m_choices.OneIn(12) ? Below(20) - 10 : Below(std::max(limit, 1)); }
  T Number() {
    double const special[] = {-0.0, 1e200, -1e200, 1e-200, HUGE_VAL, std::nan("")};
    int const x = Below(256);
    if (std::is_same_v<T, double> && x < 6) return static_cast<T>(special[x]);
    return static_cast<T>(x - 128) / 3;
  }
  std::size_t Any(Model const& model) {
    return static_cast<std::size_t>(Below(static_cast<int>(model.Count())));
  }
  T& Element(Model const& model, int i, int j) {
    return m_blocks.at(model.block).at(model.Index(i, j));
  }

  int Allocated(Model const& shape) {
    if (shape.Count() == 0) return -1;
    m_events.push_back({'A', {-1, 0}, {-1, 0}, shape.Count() * sizeof(T)});
    m_blocks[m_nextNumber].resize(shape.Count());
    return m_nextNumber++;
  }
  Model Fill(int m, int n, T value) {
    Model model = {m, n};
    model.block = Allocated(model);
    if (model.block > 0) m_blocks[model.block].assign(model.Count(), value);
    return model;
  }
  Model CopyOf(Model const& from) {
    Model model = Fill(from.m, from.n, T());
    if (model.block > 0)
      std::copy_n(&m_blocks[from.block][0], model.Count(), &m_blocks[model.block][0]);
    return model;
  }
  // A block of the caller's, to be adopted; none when a dimension is below 1.
  Model NewBlock(int m, int n) {
    Model model = Fill(m, n, T(3));
    model.type = 1;
    m_newBlock = nullptr;
    if (model.block < 0) return model;
    auto const bytes = static_cast<unsigned int>(model.Count() * sizeof(T));
    m_newBlock = static_cast<T*>(mem_OperatorNewThrowBuiltin(bytes));
    std::fill_n(m_newBlock, model.Count(), T(3));
    return model;
  }
  void Release(Model const& old) {
    if (old.type != 0 && old.type != 1) return;
    m_events.push_back({'F', {old.block, 0}, {-1, 0}, 0});
    if (old.block > 0) m_blocks.erase(old.block);
  }

  void Construct(int k) {
    int const way = Below(8);
    int m = 0, n = 0;
    std::tie(m, n) = Shape();
    m_models[k] = {};
    T* own = m_own;
    auto const type = static_cast<MemType>(Below(2) ? Below(3) : Below(9) - 4);
    T const value = Number();
    if (way < 2) {
      m_arrays[k] = new Array(m, n, value);
      m_models[k] = Fill(m, n, value);
    } else if (way < 3 && m_arrays[1 - k] != nullptr && m_models[1 - k].IsCopyable()) {
      m_arrays[k] = new Array(*m_arrays[1 - k]);
      m_models[k] = CopyOf(m_models[1 - k]);
    } else if (way < 6) {
      Model const adopted = type == Array::e_adopt ? NewBlock(m, n) : Model();
      T* data = type == Array::e_adopt ? m_newBlock : own;
      m_arrays[k] = new Array(m, n, data, type);
      EXPECT_EQ(data, type == Array::e_adopt ? nullptr : own);
      m_models[k] = type == Array::e_adopt ? adopted : Taken(m, n, type);
    } else {
      Expect(type == Array::e_adopt,
             "\"Invalid use of e_adopt memory option with this Array2D constructor\" == 0",
             [&] { m_arrays[k] = new Array(m, n, own, Array::e_pointerValue, type); });
      if (type == Array::e_adopt) return Construct(k);
      m_models[k] = Taken(m, n, type);
    }
  }
  Model Taken(int m, int n, MemType type) {
    if (type == Array::e_copy) return CopyOf({m, n, 0, 0});
    if (type == Array::e_borrow) return {m, n, 0, type};
    return {0, 0, -1, type};
  }

  void GetLines(Array& a, Model const& model) {
    int const i = Index(model.m), j = Index(model.n), room = model.n + Below(4) - 1;
    bool const badRow = model.block < 0 || i < 0 || i >= model.m, null = m_choices.OneIn(8);
    bool const badColumn = model.block < 0 || j < 0 || j >= model.n;
    T places[44];
    std::fill_n(places, 44, T(9999));
    Expect(badRow || null || room < model.n,
           "m_data != 0 && _row && _n >= m_n && _rowid >= 0 && _rowid < m_m", [&] {
             a.GetRowCopy(i, room, null ? nullptr : places);
             for (int c = 0; c != 44; ++c)
               ASSERT_TRUE(SameBits(places[c], c < model.n ? Element(model, i, c) : T(9999)));
           });
    // A negative number asks for a vector of 4294967295 elements.
    m_vector.resize(static_cast<unsigned int>(Below(12)));
    if (badRow || model.n >= 0)
      Expect(badRow, "m_data != 0 && _rowid >= 0 && _rowid < m_m", [&] {
        a.GetRowCopy(i, m_vector);
        ASSERT_EQ(int(m_vector.size()), model.n);
        for (int c = 0; c < model.n; ++c)
          ASSERT_TRUE(SameBits(m_vector.begin()[c], Element(model, i, c)));
      });
    if (badColumn || model.m >= 0)
      Expect(badColumn, "m_data != 0 && _colid >= 0 && _colid < m_n", [&] {
        a.GetColumnCopy(j, m_vector);
        ASSERT_EQ(int(m_vector.size()), model.m);
        for (int r = 0; r < model.m; ++r)
          ASSERT_TRUE(SameBits(m_vector.begin()[r], Element(model, r, j)));
      });
  }

  void SetLine(Array& a, Model const& model, bool isRow) {
    int const limit = isRow ? model.m : model.n, length = isRow ? model.n : model.m;
    int const at = Index(limit), size = std::max(0, length - 1 + Below(6));
    m_vector.resize(static_cast<unsigned int>(size));
    for (T& x : m_vector)
      x = Number();
    bool const bad = model.block < 0 || at < 0 || at >= limit, buffer = Below(2);
    bool const isShort = size < length || (!buffer && length < 0);
    std::string const text = isRow    ? "m_data != 0 && _rowid >= 0 && _rowid < m_m && "
                             : buffer ? "m_data != 0 && _colid >= 0 &&_colid < m_n && "
                                      : "m_data != 0 && _colid >= 0 && _colid < m_n && ";
    std::string const row = buffer ? "_n >= m_n" : "_row.size() >= m_n";
    Expect(bad || isShort,
           text + (isRow    ? row
                   : buffer ? "_m >= m_m"
                            : "_col.size() >= m_m"),
           [&] {
             if (isRow)
               buffer ? a.SetRow(at, m_vector.begin(), size) : a.SetRow(at, m_vector);
             else
               buffer ? a.SetColumn(at, m_vector.begin(), size) : a.SetColumn(at, m_vector);
           });
    for (int x = 0; !bad && !isShort && x < length; ++x)
      Element(model, isRow ? at : x, isRow ? x : at) = m_vector.begin()[x];
  }

  void Extract(int k, bool rows) {
    Array &a = *m_arrays[k], &other = *m_arrays[1 - k];
    Model const& source = m_models[k];
    Model& result = m_models[1 - k];
    int const limit = rows ? source.m : source.n, count = Below(std::max(limit, 0) + 2) - Below(2);
    int chosen[42];
    for (int& id : chosen)
      id = Index(limit);
    int const* const list = m_choices.OneIn(10) ? nullptr : chosen;
    auto const extract = [&] {
      rows ? a.ExtractRows(list, count, other) : a.ExtractColumns(list, count, other);
    };
    if (source.block < 0 || list == nullptr || count > limit)
      return Expect(true,
                    rows ? "m_data && _rowids && _m <= m_m" : "m_data && _colids && _n <= m_n",
                    extract);
    int good = 0;
    while (good < count && chosen[good] >= 0 && chosen[good] < limit)
      ++good;
    char const* const text = rows ? "rid >= 0 && rid < m_m" : "cid >= 0 && cid < m_n";
    Do([&] { Expect(good < count, text, extract); }, result,
       [&] {
         Model const made = Fill(rows ? count : source.m, rows ? source.n : count, 0);
         for (int c = 0; c < good; ++c)
           for (int x = 0; x < (rows ? source.n : source.m); ++x)
             rows ? Element(made, c, x) = Element(source, chosen[c], x)
                  : Element(made, x, c) = Element(source, x, chosen[c]);
         return made;
       });
  }

  // A buffer inside the array's own block: element by element, first to last.
  void Overlap(Array& a, Model const& model) {
    if (model.block < 0 || model.m < 1 || model.Count() < static_cast<std::size_t>(model.n)) return;
    int const i = Below(model.m), at = Below(static_cast<int>(model.Count()) - model.n + 1);
    bool const out = Below(2);
    T* const buffer = a.GetPointerToMemory() + at;
    out ? a.GetRowCopy(i, model.n, buffer) : a.SetRow(i, buffer, model.n);
    for (int j = 0; j < model.n; ++j) {
      T& place = m_blocks[model.block][static_cast<std::size_t>(at + j)];
      out ? place = Element(model, i, j) : Element(model, i, j) = place;
    }
  }

  // The norms of lines that lie in one piece, of a copy of the array.
  void Measure(Array& a, Model const& model) {
    if constexpr (std::is_same_v<T, double>) {
      int const limit = order == 0 ? model.m : model.n, at = Index(limit), type = Below(5) - 1;
      auto const kind = static_cast<typename Array::NormType>(type);
      if (!model.IsCopyable()) return;
      double norm = -1;
      Expect(at < 0 || at >= limit,
             order == 0 ? "0 <= _rowid && _rowid < m" : "0 <= _colid && _colid < n", [&] {
               if constexpr (order == 0)
                 norm = RowNorm(a, at, kind);
               else
                 norm = ColumnNorm(a, at, kind);
               double volatile s = 0.0; // every step rounded to a double
               for (int x = 0; x < (order == 0 ? model.n : model.m); ++x) {
                 double const y = order == 0 ? Element(model, at, x) : Element(model, x, at);
                 double volatile const square = y * y;
                 if (type == 0) s = std::fabs(y) + s;
                 if (type == 1) s = square + s;
                 if (type == 2 && std::fabs(y) > s) s = std::fabs(y);
               }
               double const expected = type == 1 ? std::sqrt(s) : s;
               EXPECT_TRUE(std::isnan(norm) ? std::isnan(expected) : SameBits(norm, expected));
             });
      Release(CopyOf(model));
    }
  }

  void PrivateStep(Array& a, Model& model, int m, int n, T value) {
    auto const [allocate, copy, initialize, destroy, setMembers] = Open(&a);
    T* block = m_own;
    (a.*allocate)(m, n, block);
    Model made = Fill(m, n, T());
    EXPECT_EQ(recording::Locate(block), (Place{made.block, 0}));
    std::fill_n(block, made.Count(), T());
    Model const old = model;
    T* former = a.GetPointerToMemory();
    int const way = Below(3); // of replacing what was there, which is not released
    if (way == 0) (a.*setMembers)(m, n, Array::e_adopt, block), model = {m, n, made.block, 1};
    if (way == 1) (a.*initialize)(m, n, value), model = Fill(m, n, value);
    if (way == 2) (a.*copy)(m, n, m_own), model = CopyOf({m, n, 0, 0});
    if (way != 0) (a.*destroy)(block, Array::e_copy), Release(made);
    (a.*destroy)(former, static_cast<MemType>(old.type)), Release(old);
    EXPECT_TRUE(former == nullptr || old.type < 0 || old.type > 2);
  }

  // Carries out what replaces the array's block, also without memory. The former block is released
  // when the new one and its shape are there.
  template <class Operation, class Replacement>
  void Do(Operation operation, Model& model, Replacement replacement) {
    recording::AtRelease() = [&](void const* block) {
      for (Array* const each : m_arrays)
        EXPECT_TRUE(block == nullptr || each->GetPointerToMemory() != block);
    };
    bool const done = Completes(m_choices.FailingRequest() == 1, operation);
    recording::AtRelease() = nullptr;
    if (done) Replace(model, replacement());
  }
  void Replace(Model& model, Model const& made) { Release(std::exchange(model, made)); }

  // Runs the operation, which fails with this text or not at all.
  template <class Operation>
  void Expect(bool fails, std::string const& text, Operation operation) {
    try {
      operation();
      EXPECT_FALSE(fails) << text;
    } catch (Report const& report) {
      EXPECT_TRUE(fails) << report.message;
      EXPECT_EQ(report.message, "AssertionFailed:" + text);
    }
  }

  void CompareEvents() {
    ASSERT_EQ(recording::Events(), m_events);
    recording::Events().clear();
    m_events.clear();
  }
  void Compare(Array& a, Model const& model) {
    int m = 0, n = 0;
    a.GetSize(m, n);
    EXPECT_TRUE(m == model.m && n == model.n);
    EXPECT_TRUE(a.GetNumberOfRows() == m && a.GetNumberOfColumns() == n);
    ASSERT_EQ(recording::Locate(a.GetPointerToMemory()), (Place{model.block, 0}));
    if (model.block >= 0 && model.Count() != 0) {
      std::vector<T> const& expected = m_blocks[model.block];
      ASSERT_EQ(std::memcmp(a.GetPointerToMemory(), &expected[0], model.Count() * sizeof(T)), 0);
    }
  }

  Choices& m_choices;
  T m_own[64];
  HYLBasVector<T> m_vector;
  int m_nextNumber = 2;
  std::map<int, std::vector<T>> m_blocks;
  std::vector<recording::Event> m_events;
  T* m_newBlock = nullptr;
  Array* m_arrays[2] = {};
  Model m_models[2];
};

template <class T, int order>
void WalkArrays(Choices& choices) {
  ArraysAndModels<T, order> arrays(choices);
  while (choices.More())
    arrays.Step();
}

} // namespace

WALK(300, 500) {
  void (*const walks[])(Choices&) = {WalkArrays<int, 0>, WalkArrays<int, 1>, WalkArrays<double, 0>,
                                     WalkArrays<double, 1>};
  choices.Of(walks)(choices);
}

namespace {

template <class Array>
struct ArrayTable : testing::Test {};
using Arrays = testing::Types<HYLBasArray2D<int, 0>, HYLBasArray2D<int, 1>,
                              HYLBasArray2D<double, 0>, HYLBasArray2D<double, 1>>;
TYPED_TEST_SUITE(ArrayTable, Arrays, );
template <class T, int order>
T ElementOf(HYLBasArray2D<T, order> const&);

auto const dies = Aborted();

TYPED_TEST(ArrayTable, CountsThatDoNotFitAskForTheSizeThatIsNeverHad) {
  for (auto [m, n] : {std::pair(32768, 32768), std::pair(65536, 65536), std::pair(1, 2147483647),
                      std::pair(2147483647, 2147483647)})
    EXPECT_EXIT(TypeParam(m, n, 0), dies, "4294967295 bytes");
}

// Where the host's service returns, a failed check ends the process; the refused adoption goes on.
TYPED_TEST(ArrayTable, NothingGoesOnAfterAFailedCheckButTheRefusedAdoption) {
  using T = decltype(ElementOf(std::declval<TypeParam>()));
  T own[6] = {};
  recording::Reset(own, sizeof own);
  serviceReturns = true;
  TypeParam a(2, 3, own, TypeParam::e_pointerValue, TypeParam::e_adopt);
  EXPECT_EQ(&a(0, 0), own);
  HYLBasVector<T> v;
  TypeParam result(0, 0, 0);
  int const far = 7;
  EXPECT_EXIT(a(2, 0), dies, Only(""));
  EXPECT_EXIT(a.GetRowCopy(2, v), dies, Only(""));
  EXPECT_EXIT(a.SetColumn(0, own, 1), dies, Only(""));
  EXPECT_EXIT(a.ExtractRows(&far, 1, result), dies, Only(""));
  EXPECT_EXIT(result.SetValue(T()), dies, Only(""));
  serviceReturns = false;
}

TEST(ArrayNorms, OfMissingBlocksAreReportedOrZero) {
  using Rows = HYLBasArray2D<double, 0>;
  double* none = nullptr;
  EXPECT_THROW(RowNorm(Rows(2, 3, none, Rows::e_borrow), 1, Rows::e_norm2), Report);
  EXPECT_EQ(RowNorm(Rows(2, 3, none, Rows::e_borrow), 1, static_cast<Rows::NormType>(7)), 0.0);
  static_assert(sizeof(Rows) == 8 + 2 * sizeof(void*));
  static_assert(sizeof(Rows::MemType) == 4 && sizeof(Rows::SourceType) == 4 &&
                sizeof(Rows::NormType) == 4);
}

} // namespace
