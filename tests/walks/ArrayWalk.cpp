// The two-dimensional arrays beside a model of them that works element by element.
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <tuple>

#include "HYLBasArray2D.h"
#include "support/Aborted.h"
#include "walks/Choices.h"

namespace {

struct Report {
  std::string message;
};
bool serviceReturns = false;

} // namespace

// Leaves the failed operation by an exception, as a host's own service may.
void QELFatalError(char const* message, char const* a, char const* b, char const* c,
                   char const* path, int line) {
  EXPECT_TRUE(a == nullptr && b == nullptr && c == nullptr);
  EXPECT_STREQ(path, "ProtectedInterfaces/HYLBasArray2D");
  static std::vector<std::string> header;
  std::ifstream file(HYLBAS_SOURCE_DIR "/ProtectedInterfaces/HYLBasArray2D.h");
  for (std::string text; header.size() < 1000 && std::getline(file, text);)
    header.push_back(text);
  // On one line stands the check, on another at most its text.
  std::string const& check = header.at(static_cast<std::size_t>(line) - 1);
  EXPECT_TRUE(check.find("_CHECK") != check.npos || check.find("__LINE__") != check.npos);
  std::string const around = header.at(static_cast<std::size_t>(line) - 3) + check;
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

// Two arrays and what they should be. Blocks are numbered by the recording memory; block 0 is the
// walk's own buffer, which arrays borrow.
template <class T, int order>
class ArraysAndModels {
  using Array = HYLBasArray2D<T, order>;
  using MemType = typename Array::MemType;

  struct Model {
    int m = 0, n = 0, block = -1;
    MemType type = Array::e_copy;
    std::shared_ptr<T[]> data;

    int Count() const { return m < 1 || n < 1 ? 0 : m * n; }
    bool IsCopyable() const { return data || Count() == 0; }
    bool HasRow(int i) const { return data && i >= 0 && i < m; }
    bool HasColumn(int j) const { return data && j >= 0 && j < n; }
    T& operator()(int i, int j) const { return data[order == 0 ? i * n + j : j * m + i]; }
  };

public:
  explicit ArraysAndModels(Choices& choices) : m_choices(choices) {
    recording::Reset(m_own, sizeof m_own);
    m_vector.reserve(64);
    recording::Events().clear();
    recording::AtRelease() = [this](void const* block) {
      for (auto& each : m_arrays)
        EXPECT_TRUE(m_releasesFirst || !block || each->GetPointerToMemory() != block);
    };
    for (int k = 0; k != 64; ++k)
      m_own[k] = m_plainOwn[k] = m_lines[0][k] = m_lines[1][k] = Number();
    for (auto& array : m_arrays)
      array.reset(new Array(0, 0, T()));
  }
  ~ArraysAndModels() {
    recording::AtRelease() = nullptr;
    for (int k : {0, 1}) {
      m_arrays[k].reset();
      Replace(m_models[k], {});
    }
    CompareEvents();
    EXPECT_EQ(recording::LiveBlocks(), 1u);
  }

  void Step() {
    int const k = Below(2), action = Below(10);
    Array& a = *m_arrays[k];
    Model const& model = m_models[k];
    int const i = Index(model.m), j = Index(model.n);
    T const value = Number();
    SCOPED_TRACE("action " + std::to_string(action));
    if (action < 4) Renew(k, Below(11), value);
    if (action == 4) {
      bool const full = model.data && model.Count() != 0;
      int const at = full && Below(2) ? Below(model.Count()) : -1;
      T const expected = at < 0 ? value : model.data[at];
      if (Passes(full, "m_data && m_m > 0 && m_n > 0",
                 [&] { a.SetValue(at < 0 ? value : a.GetPointerToMemory()[at]); }))
        std::fill_n(&model(0, 0), model.Count(), expected);
    }
    if (action == 5) {
      char const* const text = "_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n";
      using Formula = typename Array::template SpecializedParenthesis<T, order>;
      int const way = Below(3);
      if (Passes(model.HasRow(i) && model.HasColumn(j), text, [&] {
            T const& x = way == 0 ? a(i, j)
                         : way == 1
                             ? std::as_const(a)(i, j)
                             : Formula::Parenthesis(a.GetPointerToMemory(), model.m, model.n, i, j);
            const_cast<T&>(x) = value;
          }))
        model(i, j) = value;
    }
    if (action == 6) MoveLine(a, model, true, i);
    if (action == 7) MoveLine(a, model, false, j);
    if (action == 8) Extract(k, Below(2));
    if constexpr (std::is_same_v<T, double>)
      if (action == 9 && model.IsCopyable()) Measure(a, model, order == 0 ? i : j);
    CompareEvents();
    ASSERT_EQ(std::memcmp(m_lines[0], m_lines[1], sizeof m_lines[0]), 0);
    for (int each : {0, 1})
      Compare(*m_arrays[each], m_models[each]);
  }

private:
  int Below(int n) { return static_cast<int>(m_choices.Below(static_cast<unsigned int>(n))); }
  int Dimension() { return m_choices.OneIn(8) ? -Below(3) : 1 + Below(6); }
  int Index(int limit) { return m_choices.OneIn(12) ? Below(20) - 10 : Below(std::max(limit, 1)); }
  T Number() {
    double const special[] = {-0.0, 1e200, -1e200, 1e-200, HUGE_VAL, std::nan("")};
    int const x = Below(256);
    if (std::is_same_v<T, double> && x < 6) return static_cast<T>(special[x]);
    return static_cast<T>(x - 128) / 3;
  }

  // An allocated block of what `element` tells.
  Model Made(int m, int n, auto element) {
    Model made = {m, n, -1, Array::e_copy, nullptr};
    if (made.Count() == 0) return made;
    auto const count = static_cast<std::size_t>(made.Count());
    m_events.push_back({'A', {-1, 0}, {-1, 0}, count * sizeof(T)});
    made.block = m_nextNumber++;
    made.data.reset(new T[count]);
    for (int i = 0; i < m; ++i)
      for (int j = 0; j < n; ++j)
        made(i, j) = element(i, j);
    return made;
  }
  void Replace(Model& model, Model const& made) {
    if (model.type == Array::e_copy || model.type == Array::e_adopt)
      m_events.push_back({'F', {model.block, 0}, {-1, 0}, 0});
    model = made;
  }

  // Everything by which an array gets a block; most release the former one after that.
  void Renew(int k, int way, T value) {
    Array &a = *m_arrays[k], &other = *m_arrays[Below(2)];
    Model const from = m_models[&other == m_arrays[1].get()];
    if (way > 8 && !from.IsCopyable()) return;
    auto const privates = Open(&a);
    int const length = m_choices.OneIn(6) ? 1 + Below(40) : 0, across = Below(2);
    int const m = length == 0 ? Dimension() : across ? 1 : length;
    int const n = length == 0 ? Dimension() : across ? length : 1;
    auto const any = static_cast<MemType>(Below(2) ? Below(3) : Below(9) - 4);
    MemType const types[] = {any, any, Array::e_adopt, Array::e_adopt, Array::e_borrow};
    MemType const type = way < 5 ? types[way] : Array::e_copy;
    bool const adopts = type == Array::e_adopt && way != 1, null = way == 4 && m_choices.OneIn(8);
    T *data = null ? nullptr : m_own, *former = a.GetPointerToMemory();
    Model const lent = {m, n, null ? -1 : 0, Array::e_borrow, null ? nullptr : m_plainOwn};
    Model made = lent;
    if (adopts) {
      (a.*std::get<0>(privates))(m, n, data);
      made = Made(m, n, [](int, int) { return T(3); });
      made.type = Array::e_adopt;
      std::fill_n(data, made.Count(), T(3));
    }
    m_releasesFirst = way == 2 || way == 4;
    char const* const text =
        "\"Invalid use of e_adopt memory option with this Array2D constructor\" == 0";
    bool const isDone = Passes(way != 1 || type != Array::e_adopt, text, [&] {
      if (way == 0) m_arrays[k].reset(new Array(m, n, data, type));
      if (way == 1) m_arrays[k].reset(new Array(m, n, m_own, Array::e_pointerValue, type));
      if (way == 2) a.AdoptMemory(m, n, data);
      if (way == 3) (a.*std::get<4>(privates))(m, n, type, std::exchange(data, nullptr));
      if (way == 4) a.BorrowMemory(m, n, data);
      if (way == 5) (a.*std::get<1>(privates))(m, n, data);
      if (way == 6) m_arrays[k].reset(new Array(m, n, value));
      if (way == 7) a.Resize(m, n, value);
      if (way == 8) (a.*std::get<2>(privates))(m, n, value);
      if (way == 9) m_arrays[k].reset(new Array(std::as_const(other)));
      if (way == 10) { // also itself
        EXPECT_EQ(&(a = other), &a);
      }
      if (way != 3 && way != 5 && way != 8) return;
      (a.*std::get<3>(privates))(former, m_models[k].type);
      EXPECT_EQ(former, nullptr);
    });
    m_releasesFirst = false;
    EXPECT_EQ(data, adopts || null ? nullptr : m_own);
    if (!isDone) return;
    if (way > 8)
      made = Made(from.m, from.n, from);
    else if (way > 5)
      made = Made(m, n, [&](int, int) { return value; });
    else if (type == Array::e_copy)
      made = Made(m, n, lent);
    else if (type != Array::e_adopt && type != Array::e_borrow)
      made = {0, 0, -1, type, nullptr};
    Replace(m_models[k], made);
  }

  // Between a row or column and a vector, a buffer of the walk's or a part of the array's block.
  void MoveLine(Array& a, Model const& model, bool isRow, int at) {
    static char const* const texts[2][4] = {
        {"m_data != 0 && _colid >= 0 && _colid < m_n",
         "m_data != 0 && _colid >= 0 && _colid < m_n && _col.size() >= m_m",
         "m_data != 0 && _colid >= 0 &&_colid < m_n && _m >= m_m", nullptr},
        {"m_data != 0 && _rowid >= 0 && _rowid < m_m",
         "m_data != 0 && _rowid >= 0 && _rowid < m_m && _row.size() >= m_n",
         "m_data != 0 && _rowid >= 0 && _rowid < m_m && _n >= m_n",
         "m_data != 0 && _row && _n >= m_n && _rowid >= 0 && _rowid < m_m"}};
    int const length = isRow ? model.n : model.m, count = length - 1 + Below(4);
    int const room = model.Count() - length, way = Below(isRow ? 4 : 3);
    bool const isInside = model.data && length >= 0 && room >= 0 && Below(2), null = Below(4) == 0;
    bool const good = isRow ? model.HasRow(at) : model.HasColumn(at), sets = way == 1 || way == 2;
    bool const fits = way == 0 || (count >= length && (way != 1 || length >= 0) && (sets || !null));
    if (way == 0 && length < 0) return; // asks for a vector of 4294967295 elements
    int const inside = isInside ? Below(room + 1) : 0;
    T* const line = isInside ? a.GetPointerToMemory() + inside : m_lines[0];
    std::vector<T> vector(m_lines[1], m_lines[1] + std::max(count, 0));
    m_vector.assign(0, T());
    m_vector.insert(m_vector.begin(), m_lines[0], m_lines[0] + vector.size());
    bool const isDone = Passes(good && fits, texts[isRow][way], [&] {
      if (way == 0) isRow ? a.GetRowCopy(at, m_vector) : a.GetColumnCopy(at, m_vector);
      if (way == 1) isRow ? a.SetRow(at, m_vector) : a.SetColumn(at, m_vector);
      if (way == 2) isRow ? a.SetRow(at, line, count) : a.SetColumn(at, line, count);
      if (way == 3) a.GetRowCopy(at, count, null ? nullptr : line);
    });
    if (isDone && way == 0) vector.resize(static_cast<std::size_t>(length));
    T* const plain = way < 2 ? vector.data() : isInside ? &model.data[inside] : m_lines[1];
    for (int x = 0; isDone && x < length; ++x) {
      T& element = isRow ? model(at, x) : model(x, at);
      sets ? element = plain[x] : plain[x] = element;
    }
    ASSERT_EQ(m_vector.size(), vector.size());
    ASSERT_TRUE(vector.empty() ||
                std::memcmp(m_vector.begin(), &vector[0], vector.size() * sizeof(T)) == 0);
  }

  void Extract(int k, bool rows) {
    Array &a = *m_arrays[k], &result = *m_arrays[1 - k];
    Model const source = m_models[k];
    int const limit = rows ? source.m : source.n, count = Below(std::max(limit, 0) + 2) - Below(2);
    int chosen[42], good = 0;
    for (int x = 0; x < count; ++x)
      chosen[x] = Index(limit);
    while (good < count && (rows ? source.HasRow(chosen[good]) : source.HasColumn(chosen[good])))
      ++good;
    int const* const list = m_choices.OneIn(10) ? nullptr : chosen;
    bool const listed = source.data && list && count <= limit;
    std::string const text = listed ? rows ? "rid >= 0 && rid < m_m" : "cid >= 0 && cid < m_n"
                             : rows ? "m_data && _rowids && _m <= m_m"
                                    : "m_data && _colids && _n <= m_n";
    Passes(listed && good >= count, text, [&] {
      rows ? a.ExtractRows(list, count, result) : a.ExtractColumns(list, count, result);
    });
    if (!listed || !m_done) return;
    Replace(m_models[1 - k],
            Made(rows ? count : source.m, rows ? source.n : count, [&](int i, int j) {
              int const x = rows ? i : j;
              return x >= good ? T() : rows ? source(chosen[x], j) : source(i, chosen[x]);
            }));
  }

  // The norms of lines that lie in one piece, of a copy of the array.
  void Measure(Array& a, Model const& model, int at) {
    bool const rows = order == 0, good = at >= 0 && at < (rows ? model.m : model.n);
    auto const type = static_cast<typename Array::NormType>(Below(5) - 1);
    double volatile s = 0.0; // every step rounded to a double
    for (int x = 0; good && x < (rows ? model.n : model.m); ++x) {
      double const y = rows ? model(at, x) : model(x, at);
      double volatile const square = y * y;
      if (type == Array::e_norm1) s = std::fabs(y) + s;
      if (type == Array::e_norm2) s = square + s;
      if (type == Array::e_normInf && std::fabs(y) > s) s = std::fabs(y);
    }
    double const expected = type == Array::e_norm2 ? std::sqrt(s) : s;
    Passes(good, rows ? "0 <= _rowid && _rowid < m" : "0 <= _colid && _colid < n", [&] {
      double norm;
      if constexpr (order == 0)
        norm = RowNorm(a, at, type);
      else
        norm = ColumnNorm(a, at, type);
      EXPECT_TRUE(std::isnan(norm) ? std::isnan(expected)
                                   : std::memcmp(&norm, &expected, sizeof norm) == 0);
    });
    Model copy;
    if (m_done) Replace(copy = Made(model.m, model.n, model), {});
  }

  // Carries out the operation, at times without memory, which fails with this text or not at all.
  // Whether it was completed.
  template <class Operation>
  bool Passes(bool ok, std::string const& text, Operation operation) {
    std::string message;
    m_done = Completes(m_choices.FailingRequest() == 1, [&] {
      try {
        operation();
      } catch (Report const& report) {
        message = report.message;
      }
    });
    EXPECT_EQ(message, m_done && !ok ? "AssertionFailed:" + text : "");
    return m_done && ok;
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
    T const* const data = a.GetPointerToMemory();
    ASSERT_EQ(recording::Locate(data), (recording::Place{model.block, 0}));
    std::size_t const bytes = sizeof(T) * static_cast<std::size_t>(model.Count());
    ASSERT_TRUE(data == nullptr || std::memcmp(data, &model.data[0], bytes) == 0);
  }

  Choices& m_choices;
  T m_own[64], m_lines[2][64];
  std::shared_ptr<T[]> m_plainOwn{new T[64]};
  HYLBasVector<T> m_vector;
  int m_nextNumber = 2;
  std::vector<recording::Event> m_events;
  std::unique_ptr<Array> m_arrays[2];
  Model m_models[2];
  bool m_done, m_releasesFirst = false;
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

auto const dies = Aborted();

TYPED_TEST(ArrayTable, CountsThatDoNotFitAskForTheSizeThatIsNeverHad) {
  for (auto [m, n] : {std::pair(32768, 32768), std::pair(65536, 65536), std::pair(1, 2147483647),
                      std::pair(2147483647, 2147483647)})
    EXPECT_EXIT(TypeParam(m, n, 0), dies, "4294967295 bytes");
}

// Where the host's service returns, a failed check ends the process; the refused adoption goes on.
TYPED_TEST(ArrayTable, NothingGoesOnAfterAFailedCheckButTheRefusedAdoption) {
  using T = std::remove_reference_t<decltype(std::declval<TypeParam>()(0, 0))>;
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
