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

// The same interface as the array's, without ownership and checks; the index formula is written
// into each hand-written loop.
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
      [](State& state, Plain<T>& plain) {
        for (auto _ : state) {
          Plain<T> const a = Opaque(plain);
          for (int i = 0; i < a.m; ++i)
            for (int j = 0; j < a.n; ++j) {
              T& x = a.data[order == 0 ? i * a.n + j : j * a.m + i];
              x = 1 - x;
            }
        }
      });
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
      [](State& state, Plain<T>& plain) {
        for (auto _ : state) {
          Plain<T> const a = Opaque(plain);
          for (int i = 0; i < a.m; ++i)
            for (int j = 0; j < a.n; ++j) {
              T& x = a.data[order == 0 ? i * a.n + j : j * a.m + i];
              x = 1 - x;
            }
        }
      });
}

[[maybe_unused]] bool const registered = [] {
  for (Shape const shape : {Shape{64, 64}, Shape{512, 512}, Shape{2000, 500}}) {
    AllElements<int, 0>("int rows", shape);
    AllElements<int, 1>("int columns", shape);
    AllElements<double, 0>("double rows", shape);
    AllElements<double, 1>("double columns", shape);
  }
  return true;
}();

} // namespace
