// The two-dimensional array beside hand-written loops over a plain buffer.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "Compare.h"
#include "HYLBasArray2D.h"

namespace {

using benchmark::State;

struct Shape {
  int m, n;
};

// What the hand-written loops work on.
template <class T>
struct Plain {
  int m, n;
  T* data;
};

template <class T>
std::vector<T> Numbers(Shape shape) {
  std::vector<T> numbers(static_cast<std::size_t>(shape.m) * shape.n);
  for (std::size_t k = 0; k != numbers.size(); ++k)
    numbers[k] = static_cast<T>(k % 1000) - 500;
  return numbers;
}

// Hides from the compiler where an object's contents come from.
template <class X>
X& Opaque(X& x) {
  benchmark::DoNotOptimize(&x);
  benchmark::ClobberMemory();
  return x;
}

template <class T, int order>
void AllElements(std::string const& type, Shape shape) {
  using Array = HYLBasArray2D<T, order>;
  auto const add = [&](char const* name, auto ours, auto plain) {
    auto const size = static_cast<unsigned int>(shape.m * shape.n);
    auto const caseName = std::string("array/") + name + '/' + type;
    compare::Register(caseName, size, "ours", [=](State& state, unsigned int) {
      auto numbers = Numbers<T>(shape);
      Array a(shape.m, shape.n, numbers.data(), Array::e_pointerValue, Array::e_borrow);
      ours(state, a);
    });
    compare::Register(caseName, size, "loop", [=](State& state, unsigned int) {
      auto numbers = Numbers<T>(shape);
      Plain<T> a = {shape.m, shape.n, numbers.data()};
      plain(state, a);
    });
  };

  auto const changeAllPlain = [](State& state, Plain<T>& plain) {
    for (auto _ : state) {
      Plain<T> const a = Opaque(plain);
      for (int i = 0; i < a.m; ++i)
        for (int j = 0; j < a.n; ++j) {
          T& x = a.data[order == 0 ? i * a.n + j : j * a.m + i];
          x = 1 - x;
        }
    }
  };
  add(
      "read all",
      [](State& state, Array& array) {
        for (auto _ : state) {
          Array& a = Opaque(array);
          T sum = 0;
          for (int i = 0; i < a.GetNumberOfRows(); ++i)
            for (int j = 0; j < a.GetNumberOfColumns(); ++j)
              sum += a(i, j);
          benchmark::DoNotOptimize(sum);
        }
      },
      [](State& state, Plain<T>& plain) {
        for (auto _ : state) {
          Plain<T> const a = Opaque(plain);
          T sum = 0;
          for (int i = 0; i < a.m; ++i)
            for (int j = 0; j < a.n; ++j)
              sum += a.data[order == 0 ? i * a.n + j : j * a.m + i];
          benchmark::DoNotOptimize(sum);
        }
      });
  add(
      "change all",
      [](State& state, Array& array) {
        for (auto _ : state) {
          Array& a = Opaque(array);
          for (int i = 0; i < a.GetNumberOfRows(); ++i)
            for (int j = 0; j < a.GetNumberOfColumns(); ++j)
              a(i, j) = 1 - a(i, j);
        }
      },
      changeAllPlain);
  add(
      "change all, columns outside",
      [](State& state, Array& array) {
        for (auto _ : state) {
          Array& a = Opaque(array);
          for (int j = 0; j < a.GetNumberOfColumns(); ++j)
            for (int i = 0; i < a.GetNumberOfRows(); ++i)
              a(i, j) = 1 - a(i, j);
        }
      },
      [](State& state, Plain<T>& plain) {
        for (auto _ : state) {
          Plain<T> const a = Opaque(plain);
          for (int j = 0; j < a.n; ++j)
            for (int i = 0; i < a.m; ++i) {
              T& x = a.data[order == 0 ? i * a.n + j : j * a.m + i];
              x = 1 - x;
            }
        }
      });
  add(
      "change all, own bounds",
      [](State& state, Array& array) {
        int const m = array.GetNumberOfRows(), n = array.GetNumberOfColumns();
        for (auto _ : state) {
          Array& a = Opaque(array);
          for (int i = 0; i < m; ++i)
            for (int j = 0; j < n; ++j)
              a(i, j) = 1 - a(i, j);
        }
      },
      changeAllPlain);
}

// Whole rows or columns, each in turn, between the array and a buffer. The peer is `memcpy` for
// lines that are contiguous, a strided loop for the others.
template <class T, int order>
class Lines {
public:
  using Array = HYLBasArray2D<T, order>;

  Lines(std::string const& type, Shape shape) : m_type(type), m_shape(shape) {}

  void RegisterAll() {
    char const* const peers[] = {order == 0 ? "memcpy" : "loop", order == 0 ? "loop" : "memcpy"};
    int const m = m_shape.m, n = m_shape.n;
    Add(
        "get row", peers[0], m, n,
        [](Array& a, int i, T* line, int size) { a.GetRowCopy(i, size, line); },
        [=](T* data, int i, T* line) { Get<order == 0>(data, i, line, m, n); });
    Add(
        "set row", peers[0], m, n,
        [](Array& a, int i, T* line, int size) { a.SetRow(i, line, size); },
        [=](T* data, int i, T* line) { Set<order == 0>(data, i, line, m, n); });
    Add(
        "set column", peers[1], n, m,
        [](Array& a, int j, T* line, int size) { a.SetColumn(j, line, size); },
        [=](T* data, int j, T* line) { Set<order == 1>(data, j, line, n, m); });
    AddVectorForm(
        "get row, vector", peers[0], m, n,
        [](Array& a, int i, HYLBasVector<T>& line) { a.GetRowCopy(i, line); },
        [=](T* data, int i, T* line) { Get<order == 0>(data, i, line, m, n); });
    AddVectorForm(
        "get column, vector", peers[1], n, m,
        [](Array& a, int j, HYLBasVector<T>& line) { a.GetColumnCopy(j, line); },
        [=](T* data, int j, T* line) { Get<order == 1>(data, j, line, n, m); });
    AddExtractions();
  }

private:
  // Line k of `count` elements; `lines` is the stride where it is not contiguous.
  template <bool contiguous>
  static void Get(T const* data, int k, T* line, int lines, int count) {
    if (contiguous) {
      std::memcpy(line, data + static_cast<std::size_t>(k) * count, count * sizeof(T));
    } else {
      for (int x = 0; x < count; ++x)
        line[x] = data[static_cast<std::size_t>(x) * lines + k];
    }
  }
  template <bool contiguous>
  static void Set(T* data, int k, T const* line, int lines, int count) {
    if (contiguous) {
      std::memcpy(data + static_cast<std::size_t>(k) * count, line, count * sizeof(T));
    } else {
      for (int x = 0; x < count; ++x)
        data[static_cast<std::size_t>(x) * lines + k] = line[x];
    }
  }

  template <class Ours, class Peer>
  void Add(char const* name, char const* who, int lines, int count, Ours ours, Peer peer) {
    Run(
        name, who,
        [=](State& state, Array& a, HYLBasVector<T>& line) {
          for (auto _ : state)
            for (int k = 0; k < lines; ++k)
              ours(Opaque(a), k, line.begin(), count);
        },
        lines, peer);
  }
  template <class Ours, class Peer>
  void AddVectorForm(char const* name, char const* who, int lines, int, Ours ours, Peer peer) {
    Run(
        name, who,
        [=](State& state, Array& a, HYLBasVector<T>& line) {
          for (auto _ : state)
            for (int k = 0; k < lines; ++k)
              ours(Opaque(a), k, line);
        },
        lines, peer);
  }
  template <class Ours, class Peer>
  void Run(char const* name, char const* who, Ours ours, int lines, Peer peer) {
    Shape const shape = m_shape;
    Register(name, "ours", [=](State& state, unsigned int) {
      auto numbers = Numbers<T>(shape);
      HYLBasVector<T> line(static_cast<unsigned int>(shape.m * shape.n / lines));
      Array a(shape.m, shape.n, numbers.data(), Array::e_pointerValue, Array::e_borrow);
      ours(state, a, line);
    });
    Register(name, who, [=](State& state, unsigned int) {
      auto numbers = Numbers<T>(shape);
      HYLBasVector<T> line(static_cast<unsigned int>(shape.m * shape.n / lines));
      for (auto _ : state)
        for (int k = 0; k < lines; ++k)
          peer(Opaque(numbers).data(), k, line.begin());
    });
  }

  // Every second row, every second column, beside the loops into a block of their own.
  void AddExtractions() {
    Shape const shape = m_shape;
    for (bool const rows : {true, false}) {
      std::vector<int> chosen;
      for (int k = 0; k < (rows ? shape.m : shape.n); k += 2)
        chosen.push_back(k);
      int const count = static_cast<int>(chosen.size());
      char const* const name = rows ? "extract rows" : "extract columns";
      Register(name, "ours", [=](State& state, unsigned int) {
        auto numbers = Numbers<T>(shape);
        Array a(shape.m, shape.n, numbers.data(), Array::e_pointerValue, Array::e_borrow);
        Array result(0, 0, 0);
        for (auto _ : state) {
          rows ? Opaque(a).ExtractRows(chosen.data(), count, result)
               : Opaque(a).ExtractColumns(chosen.data(), count, result);
          Opaque(result);
        }
      });
      bool const contiguous = rows == (order == 0);
      int const outer = rows ? (order == 0 ? count : shape.n) : (order == 0 ? shape.m : count);
      int const length = order == 0 ? shape.n : shape.m;
      Register(name, contiguous ? "memcpy" : "loop", [=](State& state, unsigned int) {
        auto numbers = Numbers<T>(shape);
        T* result = nullptr;
        for (auto _ : state) {
          auto const elements = static_cast<std::size_t>(outer) * (contiguous ? length : count);
          auto const bytes = static_cast<unsigned int>(elements * sizeof(T));
          T* const block = static_cast<T*>(mem_OperatorNewThrowBuiltin(bytes));
          for (int k = 0; k < outer; ++k)
            if (contiguous) {
              std::memcpy(block + std::ptrdiff_t{k} * length,
                          &numbers[static_cast<std::size_t>(chosen[k]) * length],
                          length * sizeof(T));
            } else {
              for (int x = 0; x < count; ++x)
                block[std::ptrdiff_t{k} * count + x] =
                    numbers[static_cast<std::size_t>(k) * length + chosen[x]];
            }
          mem_Free(result);
          result = block;
          benchmark::DoNotOptimize(result);
          benchmark::ClobberMemory();
        }
        mem_Free(result);
      });
    }
  }

  template <class Function>
  void Register(char const* name, char const* who, Function run) {
    compare::Register(std::string("array/") + name + '/' + m_type,
                      static_cast<unsigned int>(m_shape.m * m_shape.n), who, run);
  }

  std::string m_type;
  Shape m_shape;
};

double PlainNorm(double const* x, int count, int type) {
  double s = 0.0;
  if (type == 0)
    for (int k = 0; k < count; ++k)
      s = std::fabs(x[k]) + s;
  if (type == 1) {
    for (int k = 0; k < count; ++k)
      s = x[k] * x[k] + s;
    s = std::sqrt(s);
  }
  if (type == 2)
    for (int k = 0; k < count; ++k)
      if (std::fabs(x[k]) > s) s = std::fabs(x[k]);
  return s;
}

// Norms of every row, over an array that borrows, built as the argument.
void Norms(Shape shape) {
  using Array = HYLBasArray2D<double, 0>;
  char const* const names[] = {"norm 1", "norm 2", "norm inf"};
  for (int type : {0, 1, 2}) {
    auto const caseName = std::string("array/") + names[type] + "/double rows";
    auto const size = static_cast<unsigned int>(shape.m * shape.n);
    compare::Register(caseName, size, "ours", [=](State& state, unsigned int) {
      auto numbers = Numbers<double>(shape);
      for (auto _ : state)
        for (int i = 0; i < shape.m; ++i)
          benchmark::DoNotOptimize(RowNorm(Array(shape.m, shape.n, Opaque(numbers).data(),
                                                 Array::e_pointerValue, Array::e_borrow),
                                           i, static_cast<Array::NormType>(type)));
    });
    compare::Register(caseName, size, "loop", [=](State& state, unsigned int) {
      auto numbers = Numbers<double>(shape);
      for (auto _ : state)
        for (int i = 0; i < shape.m; ++i)
          benchmark::DoNotOptimize(
              PlainNorm(Opaque(numbers).data() + std::ptrdiff_t{i} * shape.n, shape.n, type));
    });
  }
}

[[maybe_unused]] bool const registered = [] {
  for (Shape const shape : {Shape{64, 64}, Shape{512, 512}, Shape{2000, 500}}) {
    AllElements<int, 0>("int rows", shape);
    AllElements<int, 1>("int columns", shape);
    AllElements<double, 0>("double rows", shape);
    AllElements<double, 1>("double columns", shape);
    Lines<int, 0>("int rows", shape).RegisterAll();
    Lines<double, 0>("double rows", shape).RegisterAll();
    Lines<double, 1>("double columns", shape).RegisterAll();
    Norms(shape);
  }
  return true;
}();

} // namespace
