/// \file
/// The dense two-dimensional array, in row-major or column-major order, over memory that it owns,
/// adopts or borrows.
///
/// Take it for matrices of `int` or `double` whose elements some other code filled, or wants, in
/// one of the two orders: the array addresses a caller's block by row and column without copying
/// it. It has no spare capacity and does not grow in place; take `HYLBasVector<T>` for that.
///
/// Rules that hold throughout:
/// - Dimensions and indices are `int`, counted from 0. A dimension below 1 is stored as it is; no
///   block is then allocated, and an adopted or borrowed one is kept. The elements of a block must
///   be countable in an `int`, unchecked.
/// - `Order` 0 is row-major, each row contiguous: element (i, j) has index i * columns + j.
///   `Order` 1 is column-major, each column contiguous: index j * rows + i.
/// - The array releases the blocks that it allocated or adopted with `mem_Free`, also a null one.
///   It never releases a borrowed one. What it adopts must come from the memory library.
/// - Assignment, `Resize`, `AdoptMemory`, `BorrowMemory` and being the result of an extraction
///   replace the block: references to elements and pointers to the memory are then invalid.
/// - `T` is a plain type, as in `HYLBasVector.h`. The library holds the code for `int` and
/// `double`;
///   for other types it comes into being in your program, with everything but the norms.
/// - Elements are copied with all their bits. A value that a member takes by value arrives there as
///   your compiler passes it: one that computes with the x87 unit changes signalling NaNs.
/// - Every element access is checked, in every build. A failed check is reported through
///   `QELFatalError` with "AssertionFailed:" and the text of the condition; where the service
///   returns, the process ends, unless said otherwise. `GetPointerToMemory` is the unchecked way.
/// - Exhausted memory: `std::bad_alloc`, and the array is as it was. Where a vector takes a copy,
///   what `HYLBasVector.h` says.
/// - One thread at a time per array that is changed; a constant one may be read by several.
///
/// A loop whose bounds come from this array, through `GetSize` or `GetNumberOfRows()` and
/// `GetNumberOfColumns()`, costs what it costs on a plain buffer: compilers see that no check can
/// fail. With other bounds every access is checked, and the loop is not vectorised.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "HYLBasAllocationOperators.h"
#include "HYLBasVector.h"
#include "LUXCORE.h"
#include "TARNHYLBasAlloc.h"
#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasPlainElement.h"

namespace hylbas_detail {

inline void ReportArray2D(char const* message, int line) {
  QELFatalError(message, nullptr, nullptr, nullptr, "ProtectedInterfaces/HYLBasArray2D", line);
}

// It is given neither the array nor any address in it, and it never returns. Compilers see that it
// cannot change the array, and that what comes after a check may rely on the condition. So a check
// costs its comparisons alone, and loops keep the array's fields in registers.
[[noreturn, gnu::cold, gnu::noinline]] inline void FailArray2DCheck(char const* message, int line) {
  ReportArray2D(message, line);
  std::abort();
}

/// An uninitialised block of `m * n` elements, null when a dimension is below 1. A byte count that
/// does not fit 32 bits asks for 4294967295, which the memory library treats as exhausted.
template <class T>
T* NewBlock(int m, int n) {
  if (m < 1 || n < 1) return nullptr;
  std::uint64_t const limit = UINT32_MAX;
  std::uint64_t const count = static_cast<std::uint64_t>(m) * static_cast<std::uint64_t>(n);
  std::uint64_t const bytes = std::min(std::min(count, limit) * sizeof(T), limit);
  return static_cast<T*>(operator new[](static_cast<std::size_t>(bytes), mem_BuiltInAlloc()));
}

/// Elements of a block of these dimensions; 0 when there is none.
inline std::size_t CountElements(int m, int n) {
  return m < 1 || n < 1 ? 0 : static_cast<std::size_t>(m) * static_cast<std::size_t>(n);
}

template <class T>
T* NewFilledBlock(int m, int n, T const& value) {
  T* const block = NewBlock<T>(m, n);
  FillElements(block, CountElements(m, n), value);
  return block;
}

/// A block of which everything is about to be written, or else one of zeros.
template <class T>
T* NewBlockToFill(int m, int n, bool everything) {
  return everything ? NewBlock<T>(m, n) : NewFilledBlock<T>(m, n, T());
}

template <class T>
T* NewBlockCopy(int m, int n, T const* source) {
  T* const block = NewBlock<T>(m, n);
  if (block != nullptr) std::memcpy(block, source, CountElements(m, n) * sizeof(T));
  return block;
}

/// Copies a run element by element, first to last.
template <class T>
[[gnu::cold, gnu::noinline]] void CopyOneByOne(T const* from, int count, T* to) {
  for (int k = 0; k < count; ++k)
    CopyElement(from + k, to + k);
}

/// The same; as one block move unless the target starts inside the source, where it would differ.
template <class T>
void CopyRun(T const* from, int count, T* to) {
  if (count < 1) return;
  auto const distance =
      reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from);
  std::size_t const bytes = static_cast<std::size_t>(count) * sizeof(T);
  if (distance < bytes) [[unlikely]] {
    CopyOneByOne(from, count, to);
  } else {
    std::memmove(to, from, bytes);
  }
}

/// A row or a column: elements that lie `step` apart, or, with `isRun`, side by side.
template <class T, bool isRun>
struct Line {
  T* first;
  int step;
  int count;

  void CopyTo(T* to) const {
    if constexpr (isRun) {
      CopyRun(static_cast<T const*>(first), count, to);
    } else {
      for (int k = 0; k < count; ++k)
        CopyElement(first + static_cast<std::ptrdiff_t>(k) * step, to + k);
    }
  }
  void CopyFrom(T const* from) const {
    if constexpr (isRun) {
      CopyRun(from, count, first);
    } else {
      for (int k = 0; k < count; ++k)
        CopyElement(from + k, first + static_cast<std::ptrdiff_t>(k) * step);
    }
  }
};

template <int Order, class T>
Line<T, Order == 0> Row(T* block, int m, int n, int i) {
  return {block + (Order == 0 ? static_cast<std::ptrdiff_t>(i) * n : i), m, n};
}

template <int Order, class T>
Line<T, Order == 1> Column(T* block, int m, int n, int j) {
  return {block + (Order == 1 ? static_cast<std::ptrdiff_t>(j) * m : j), n, m};
}

/// Callers that fetch line after line into one vector find its length right from the second on.
template <class T>
void GiveLength(HYLBasVector<T>& v, unsigned int n) {
  if (v.size() != n) [[unlikely]]
    v.resize(n);
}

/// How many of the indices, from the first on, lie in [0, `limit`).
inline int CountInRange(int const* indices, int count, int limit) {
  int k = 0;
  while (k < count && indices[k] >= 0 && indices[k] < limit)
    ++k;
  return k;
}

/// Copies the chosen lines, if there is a block `to`, of a block whose lines have `length` elements
/// each.
template <class T>
void CopyLines(T const* from, int length, int const* chosen, int count, T* to) {
  if (to == nullptr) return;
  auto const step = static_cast<std::ptrdiff_t>(length);
  for (int k = 0; k < count; ++k)
    std::memcpy(to + k * step, from + chosen[k] * step,
                static_cast<std::size_t>(length) * sizeof(T));
}

/// Copies the chosen elements of every line, if there is a block `to`, into lines of `toLength`.
template <class T>
void CopyFromEachLine(T const* from, int lines, int length, int const* chosen, int count, T* to,
                      int toLength) {
  if (to == nullptr) return;
  for (int line = 0; line < lines; ++line) {
    T const* const source = from + static_cast<std::ptrdiff_t>(line) * length;
    T* const target = to + static_cast<std::ptrdiff_t>(line) * toLength;
    for (int k = 0; k < count; ++k)
      CopyElement(source + chosen[k], target + k);
  }
}

/// The sums are built in the order of the elements, which fixes their bits.
inline double Norm1(double const* x, int count) {
  double s = 0.0;
  for (int k = 0; k < count; ++k)
    s = std::fabs(x[k]) + s;
  return s;
}

inline double Norm2(double const* x, int count) {
  double s = 0.0;
  for (int k = 0; k < count; ++k)
    s = x[k] * x[k] + s;
  return std::sqrt(s);
}

// The largest value does not depend on the order: several maxima are followed at a time. A value
/// that is not a number never replaces one, since the comparison is then false.
inline double NormInf(double const* x, int count) {
  constexpr int lanes = 8;
  double s[lanes] = {};
  int k = 0;
  for (; count - k >= lanes; k += lanes)
    for (int lane = 0; lane != lanes; ++lane)
      s[lane] = std::fabs(x[k + lane]) > s[lane] ? std::fabs(x[k + lane]) : s[lane];
  for (; k < count; ++k)
    s[0] = std::fabs(x[k]) > s[0] ? std::fabs(x[k]) : s[0];
  return *std::max_element(s, s + lanes);
}

} // namespace hylbas_detail

/// The message of a failed check is the text of its condition, so the names in it are part of what
/// is reported. A check stands on one line, because compilers do not agree on the line of a macro
/// that spans several.
#define HYLBAS_CHECK(condition) HYLBAS_CHECK_AS(condition, #condition)
#define HYLBAS_CHECK_AS(condition, text)                                                           \
  ((condition) ? void() : hylbas_detail::FailArray2DCheck("AssertionFailed:" text, __LINE__))

/// The dense two-dimensional array, row-major (`Order` 0) or column-major (1). The library holds it
/// for `int` and `double`.
template <class T, int Order>
class HYLBASGENERICS_EXPORT HYLBasArray2D {
  static_assert(Order == 0 || Order == 1, "Order is 0 (row-major) or 1 (column-major)");
  static_assert(hylbas_detail::RequirePlainElement<T>::value);

public:
  /// How the array came to its block.
  enum MemType : int {
    e_copy = 0,  ///< allocated by the array itself
    e_adopt = 1, ///< handed over by the caller; released by the array
    e_borrow = 2 ///< lent by the caller, who keeps it
  };

  /// Tells the constructor from a pointer value apart from the one from a pointer variable.
  enum SourceType : int { e_pointerValue = 0 };

  /// Norms of a row or column x.
  enum NormType : int {
    e_norm1 = 0,  ///< the sum of |x_k|
    e_norm2 = 1,  ///< the square root of the sum of x_k * x_k, without scaling against overflow
    e_normInf = 2 ///< the largest |x_k|
  };

  /// \name Construction
  /// Linear in the number of elements when it allocates, constant otherwise.
  /// @{

  /// An owned `m` x `n` array of elements equal to `value`.
  HYLBasArray2D(int m, int n, T value) : m_m(), m_n(), m_data(nullptr), m_memType(e_copy) {
    Initialize(m, n, value);
  }

  /// An `m` x `n` array that copies, adopts or borrows the `m * n` elements at `data`, which are in
  /// this array's own order. On adoption `data` becomes null. Any other `memType` gives an array of
  /// 0 x 0 that never releases anything.
  HYLBasArray2D(int m, int n, T*& data, MemType memType)
      : m_m(), m_n(), m_data(nullptr), m_memType(memType) {
    if (memType == e_copy) {
      Copy(m, n, data);
    } else if (memType == e_adopt) {
      SetMembers(m, n, e_adopt, data);
      data = nullptr;
    } else if (memType == e_borrow) {
      SetMembers(m, n, e_borrow, data);
    }
  }

  /// The same from a pointer value, which cannot be set to null: `e_adopt` is reported, and, should
  /// the service return, treated as `e_borrow`. The source type is not read.
  HYLBasArray2D(int m, int n, T* const data, SourceType, MemType memType)
      : m_m(), m_n(), m_data(nullptr), m_memType(memType) {
    if (memType == e_adopt)
      hylbas_detail::ReportArray2D("AssertionFailed:\"Invalid use of e_adopt memory option with "
                                   "this Array2D constructor\" == 0",
                                   __LINE__);
    if (memType == e_copy) {
      Copy(m, n, data);
    } else if (memType == e_borrow || memType == e_adopt) {
      SetMembers(m, n, e_borrow, data);
    }
  }

  /// An owned copy, also of an array that borrows, whose block must still be there.
  HYLBasArray2D(HYLBasArray2D const& other) : m_m(), m_n(), m_data(nullptr), m_memType(e_copy) {
    Copy(other.m_m, other.m_n, other.m_data);
  }

  ~HYLBasArray2D() {
    Destroy(m_data, m_memType);
    // Volatile: compilers drop other stores to an object whose life is over.
    const_cast<Dimension volatile&>(m_m) = Dimension();
    const_cast<Dimension volatile&>(m_n) = Dimension();
    const_cast<T* volatile&>(m_data) = nullptr;
  }

  /// Replaces the contents by an owned copy of `other`, also of this array itself, and releases the
  /// previous block after that.
  HYLBasArray2D&
  operator=(HYLBasArray2D const& other) { // NOLINT(bugprone-unhandled-self-assignment)
    T* replaced = m_data;
    MemType const replacedType = m_memType;
    Copy(other.m_m, other.m_n, other.m_data);
    Destroy(replaced, replacedType);
    return *this;
  }
  /// @}

  /// \name Ownership
  /// Constant time. Releases the current block, which must not be the one handed in (unchecked:
  /// it would be used after its release).
  /// @{

  /// Takes over the `m * n` elements at `data`; `data` becomes null.
  void AdoptMemory(int m, int n, T*& data) {
    Destroy(m_data, m_memType);
    SetMembers(m, n, e_adopt, data);
    data = nullptr;
  }

  /// Uses the `m * n` elements at `data`, which stay the caller's.
  void BorrowMemory(int m, int n, T* data) {
    Destroy(m_data, m_memType);
    SetMembers(m, n, e_borrow, data);
  }
  /// @}

  /// \name Shape and content
  /// @{

  /// A fresh owned block of `m` x `n` elements equal to `value`, also when the shape stays; the
  /// previous block is released after that. Linear.
  void Resize(int m, int n, T value) {
    T* replaced = m_data;
    MemType const replacedType = m_memType;
    Initialize(m, n, value);
    Destroy(replaced, replacedType);
  }

  /// Every element becomes `value`, which may be one of them. Reported when there is no block or a
  /// dimension is below 1. Linear.
  void SetValue(T const& value) {
    HYLBAS_CHECK(m_data && m_m > 0 && m_n > 0);
    hylbas_detail::FillElements(m_data, hylbas_detail::CountElements(m_m, m_n), value);
  }

  void GetSize(int& m, int& n) const {
    m = m_m;
    n = m_n;
  }
  int GetNumberOfRows() const { return m_m; }
  int GetNumberOfColumns() const { return m_n; }
  /// The elements in this array's order; null when there is no block.
  T* GetPointerToMemory() { return m_data; }
  /// @}

  /// \name Element access
  /// Constant time. Reported when the block is null or an index is out of range.
  /// @{

  /// The index formula of one storage order.
  template <class U, int O>
  class SpecializedParenthesis;

  /// Row-major.
  template <class U>
  class HYLBASGENERICS_EXPORT SpecializedParenthesis<U, 0> {
  public:
    static U const& Parenthesis(U* _data, int _m, int _n, int _i, int _j) {
      HYLBAS_CHECK(_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n);
      return _data[static_cast<std::ptrdiff_t>(_i) * _n + _j];
    }
  };

  /// Column-major.
  template <class U>
  class HYLBASGENERICS_EXPORT SpecializedParenthesis<U, 1> {
  public:
    static U const& Parenthesis(U* _data, int _m, int _n, int _i, int _j) {
      HYLBAS_CHECK(_data && _i >= 0 && _i < _m && _j >= 0 && _j < _n);
      return _data[static_cast<std::ptrdiff_t>(_j) * _m + _i];
    }
  };

  /// The element in row `i`, column `j`.
  T& operator()(int i, int j) {
    return const_cast<T&>(SpecializedParenthesis<T, Order>::Parenthesis(m_data, m_m, m_n, i, j));
  }
  T const& operator()(int i, int j) const {
    return SpecializedParenthesis<T, Order>::Parenthesis(m_data, m_m, m_n, i, j);
  }
  /// @}

  /// \name Rows and columns
  /// Linear in the number of elements copied: as one block where they lie side by side, with the
  /// array's stride otherwise. Copies go from the first index to the last, also where a buffer
  /// overlaps the array's block. Reported when there is no block, the index is out of range, or a
  /// source or a buffer is shorter than the row or column.
  /// @{

  // The conditions are what is reported, to the letter.
  // NOLINTBEGIN(modernize-use-nullptr)

  /// `_row` becomes the row; its block is reused when its capacity suffices.
  void GetRowCopy(int _rowid, HYLBasVector<T>& _row) const {
    HYLBAS_CHECK(m_data != 0 && _rowid >= 0 && _rowid < m_m);
    hylbas_detail::GiveLength(_row, static_cast<unsigned int>(m_n));
    hylbas_detail::Row<Order>(m_data, m_m, m_n, _rowid).CopyTo(_row.begin());
  }

  /// Writes the row into the first places of the buffer `_row`, which has room for `_n` elements;
  /// the others are not touched. A null buffer is reported.
  void GetRowCopy(int _rowid, int _n, T* _row) const {
    HYLBAS_CHECK(m_data != 0 && _row && _n >= m_n && _rowid >= 0 && _rowid < m_m);
    hylbas_detail::Row<Order>(m_data, m_m, m_n, _rowid).CopyTo(_row);
  }

  /// `_col` becomes the column; its block is reused when its capacity suffices.
  void GetColumnCopy(int _colid, HYLBasVector<T>& _col) const {
    HYLBAS_CHECK(m_data != 0 && _colid >= 0 && _colid < m_n);
    hylbas_detail::GiveLength(_col, static_cast<unsigned int>(m_m));
    hylbas_detail::Column<Order>(m_data, m_m, m_n, _colid).CopyTo(_col.begin());
  }

  /// The row takes the first elements of `_row`; further ones are ignored.
  void SetRow(int _rowid, HYLBasVector<T> const& _row) {
    bool const fits = _row.size() >= static_cast<unsigned int>(m_n);
    bool const ok = m_data != 0 && _rowid >= 0 && _rowid < m_m && fits;
    HYLBAS_CHECK_AS(ok, "m_data != 0 && _rowid >= 0 && _rowid < m_m && _row.size() >= m_n");
    hylbas_detail::Row<Order>(m_data, m_m, m_n, _rowid).CopyFrom(_row.begin());
  }

  /// The row takes the first of the `_n` elements at `_row`, which must not be null, unchecked.
  void SetRow(int _rowid, T const* _row, int _n) {
    HYLBAS_CHECK(m_data != 0 && _rowid >= 0 && _rowid < m_m && _n >= m_n);
    hylbas_detail::Row<Order>(m_data, m_m, m_n, _rowid).CopyFrom(_row);
  }

  /// The column takes the first elements of `_col`; further ones are ignored.
  void SetColumn(int _colid, HYLBasVector<T> const& _col) {
    bool const fits = _col.size() >= static_cast<unsigned int>(m_m);
    bool const ok = m_data != 0 && _colid >= 0 && _colid < m_n && fits;
    HYLBAS_CHECK_AS(ok, "m_data != 0 && _colid >= 0 && _colid < m_n && _col.size() >= m_m");
    hylbas_detail::Column<Order>(m_data, m_m, m_n, _colid).CopyFrom(_col.begin());
  }

  /// The column takes the first of the `_m` elements at `_col`, which must not be null, unchecked.
  void SetColumn(int _colid, T const* _col, int _m) {
    bool const ok = m_data != 0 && _colid >= 0 && _colid < m_n && _m >= m_m;
    HYLBAS_CHECK_AS(ok, "m_data != 0 && _colid >= 0 &&_colid < m_n && _m >= m_m");
    hylbas_detail::Column<Order>(m_data, m_m, m_n, _colid).CopyFrom(_col);
  }
  // NOLINTEND(modernize-use-nullptr)
  /// @}

  /// \name Extraction
  /// Linear in the number of elements copied, in the order of memory. `result`, another array, gets
  /// a fresh owned block and its new shape, and then releases its former block. Indices may be
  /// repeated. Reported when there is no block, no list, or the list is longer than the array has
  /// rows or columns; then, when `result` has its new shape and what the indices before it chose,
  /// for an index out of range.
  /// @{

  /// `result` becomes an array of `_m` rows: row k is row `_rowids[k]` of this one.
  void ExtractRows(int const* _rowids, int _m, HYLBasArray2D& result) const {
    HYLBAS_CHECK(m_data && _rowids && _m <= m_m);
    int const inRange = hylbas_detail::CountInRange(_rowids, _m, m_m);
    int const rid = inRange < _m ? _rowids[inRange] : 0;
    T* const block = hylbas_detail::NewBlockToFill<T>(_m, m_n, inRange == _m);
    if constexpr (Order == 0) {
      hylbas_detail::CopyLines(m_data, m_n, _rowids, inRange, block);
    } else {
      hylbas_detail::CopyFromEachLine(m_data, m_n, m_m, _rowids, inRange, block, _m);
    }
    T* replaced = result.m_data;
    MemType const replacedType = result.m_memType;
    result.SetMembers(_m, m_n, e_copy, block);
    result.Destroy(replaced, replacedType);
    if (inRange < _m) HYLBAS_CHECK(rid >= 0 && rid < m_m);
  }

  /// `result` becomes an array of `_n` columns: column k is column `_colids[k]` of this one.
  void ExtractColumns(int const* _colids, int _n, HYLBasArray2D& result) const {
    HYLBAS_CHECK(m_data && _colids && _n <= m_n);
    int const inRange = hylbas_detail::CountInRange(_colids, _n, m_n);
    int const cid = inRange < _n ? _colids[inRange] : 0;
    T* const block = hylbas_detail::NewBlockToFill<T>(m_m, _n, inRange == _n);
    if constexpr (Order == 1) {
      hylbas_detail::CopyLines(m_data, m_m, _colids, inRange, block);
    } else {
      hylbas_detail::CopyFromEachLine(m_data, m_m, m_n, _colids, inRange, block, _n);
    }
    T* replaced = result.m_data;
    MemType const replacedType = result.m_memType;
    result.SetMembers(m_m, _n, e_copy, block);
    result.Destroy(replaced, replacedType);
    if (inRange < _n) HYLBAS_CHECK(cid >= 0 && cid < m_n);
  }
  /// @}

private:
  // A type of its own, so that a store to an `int` element cannot be one to a dimension: loops over
  // the elements can keep the dimensions in registers.
  enum Dimension : int {};

  // Uninitialised; null when a dimension is below 1.
  void Allocate(int m, int n, T*& data) { data = hylbas_detail::NewBlock<T>(m, n); }

  // These two do not release the block that was there. The functions that they call are given the
  // dimensions and pointers, never this array: a compiler that sees no use of an array's address
  // may keep the array's fields in registers.
  void Copy(int m, int n, T* source) {
    SetMembers(m, n, e_copy, hylbas_detail::NewBlockCopy<T>(m, n, source));
  }
  void Initialize(int m, int n, T value) {
    SetMembers(m, n, e_copy, hylbas_detail::NewFilledBlock<T>(m, n, value));
  }

  void Destroy(T*& data, MemType memType) {
    if (memType == e_copy || memType == e_adopt) mem_Free(data);
    data = nullptr;
  }

  void SetMembers(int m, int n, MemType memType, T* data) {
    m_m = static_cast<Dimension>(m);
    m_n = static_cast<Dimension>(n);
    m_memType = memType;
    m_data = data;
  }

  Dimension m_m;
  Dimension m_n;
  T* m_data; // null when there are no elements
  MemType m_memType;
};

namespace hylbas_detail {

/// The norm of a line of `count` elements, the first of which `first` fetches.
template <class Type, class First>
double Norm(Type type, int count, First first) {
  if (count < 1) return 0.0;
  switch (type) {
  case Type::e_norm1:
    return Norm1(first(), count);
  case Type::e_norm2:
    return Norm2(first(), count);
  case Type::e_normInf:
    return NormInf(first(), count);
  }
  return 0.0;
}

} // namespace hylbas_detail

/// \name Norms
/// Of one row of a row-major array or one column of a column-major one, of `double` alone. Linear
/// in its elements, which are visited in the order of their indices; 0.0 when there are none, and
/// for a type that is not listed. An element that is not a number makes `e_norm1` and `e_norm2`
/// one, and is passed over by `e_normInf`. An index out of range is reported.
///
/// The array is taken by value, so passing an existing one copies all of it. One that borrows,
/// built as the argument, copies nothing:
///
///     using Matrix = HYLBasArray2D<double, 0>;
///     double const length = RowNorm(
///         Matrix(m, n, flows.GetPointerToMemory(), Matrix::e_pointerValue, Matrix::e_borrow), 3,
///         Matrix::e_norm2);
///
/// Callers run the library's own copies, never inlined ones: each step of the sums is rounded to
/// `double`, whatever the caller's compiler settings, so that a norm has the same bits everywhere.
/// @{

/// The norm of column `_colid`.
template <class T, int Order>
[[gnu::noinline]] HYLBASGENERICS_EXPORT T ColumnNorm(
    HYLBasArray2D<T, Order> array, int _colid, typename HYLBasArray2D<T, Order>::NormType type) {
  static_assert(std::is_same_v<T, double> && Order == 1, "for column-major arrays of double");
  int const n = array.GetNumberOfColumns();
  HYLBAS_CHECK(0 <= _colid && _colid < n);
  return hylbas_detail::Norm(type, array.GetNumberOfRows(), [&] { return &array(0, _colid); });
}

/// The norm of row `_rowid`.
template <class T, int Order>
[[gnu::noinline]] HYLBASGENERICS_EXPORT T RowNorm(HYLBasArray2D<T, Order> array, int _rowid,
                                                  typename HYLBasArray2D<T, Order>::NormType type) {
  static_assert(std::is_same_v<T, double> && Order == 0, "for row-major arrays of double");
  int const m = array.GetNumberOfRows();
  HYLBAS_CHECK(0 <= _rowid && _rowid < m);
  return hylbas_detail::Norm(type, array.GetNumberOfColumns(), [&] { return &array(_rowid, 0); });
}
/// @}

#undef HYLBAS_CHECK
#undef HYLBAS_CHECK_AS

extern template class HYLBasArray2D<int, 0>;
extern template class HYLBasArray2D<int, 1>;
extern template class HYLBasArray2D<double, 0>;
extern template class HYLBasArray2D<double, 1>;
extern template class HYLBasArray2D<int, 0>::SpecializedParenthesis<int, 0>;
extern template class HYLBasArray2D<int, 1>::SpecializedParenthesis<int, 1>;
extern template class HYLBasArray2D<double, 0>::SpecializedParenthesis<double, 0>;
extern template class HYLBasArray2D<double, 1>::SpecializedParenthesis<double, 1>;
extern template HYLBASGENERICS_EXPORT double
ColumnNorm<double, 1>(HYLBasArray2D<double, 1>, int, HYLBasArray2D<double, 1>::NormType);
extern template HYLBASGENERICS_EXPORT double RowNorm<double, 0>(HYLBasArray2D<double, 0>, int,
                                                                HYLBasArray2D<double, 0>::NormType);
