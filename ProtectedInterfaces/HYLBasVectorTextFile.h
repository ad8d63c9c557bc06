/// \file
/// Vectors as text files in the Matrix Market manner, and the functions that write and read them.
///
/// Take it to keep a vector of `int` or `double`, or to exchange one with other tools. The text
/// holds six digits after the decimal point; take another format where every bit counts.
///
/// A file as it is written, one item per line:
///
///     %%MatrixMarket vector array integer        the banner; its last word is the field
///     % Annual flow, in 10^8 cubic metres        at most two comments
///     3 1 3                                      rows, columns (always 1), entries
///           1120                                 one value per line, right-aligned
///           1160                                 in 10 columns or more
///            963
///
/// The field is `integer` for `int` and `real` for `double`, whose values have exactly six digits
/// after the decimal point (`  3.250000`). The other vectors (`HYLBasVector<T>::Write`) put their
/// type's name there and write no values.
///
/// What is read:
/// - Lines that begin with '%', up to the first that does not. A banner among them (it begins with
///   "%%MatrixMarket" and has at least four words) selects the field by its fourth word, `real` or
///   `integer`; another word there, and every other such line, changes nothing. The field is real
///   until a banner says otherwise.
/// - The size line, three integers, of which the third counts. Its low 32 bits, multiplied in 32
///   bits by the element size, are the bytes of the vector's block, also where that is less than
///   one element; 0 gives no block.
/// - From every line after it one value, at its start. Lines without one are skipped without a
///   word; so is the rest of a line, and every value for which the block has no room.
///
/// Lines longer than 255 characters, counting the newline, are taken in pieces of 255, each as a
/// line of its own. Numbers are what the C library's `printf` and `scanf` make of them, under the
/// locale and the rounding mode that hold when the values begin: most are written and read several
/// times faster than those functions do it, to the same byte and bit. What another thread changes
/// of the two meanwhile may reach some of the values. Writing takes 64 KB of stack, reading 20 KB.
///
/// A pipe is read line by line down to the size line, then in large blocks to its end.
///
/// Reading an integer file into anything but `int`, or a real one into anything but `double`,
/// stores the bytes of the `int` or `double`, as far as they stay inside the block, one element
/// apart: the vector is valid, its values mean little.
#pragma once

#include <memory>
#include <type_traits>

#include "HYLBasVector.h"
#include "detail/HYLBasExport.h"

/// Writes `vector` (of `int` or `double`) to the file, replacing it.
/// \param fileName handed to `fopen` unchanged
/// \param comment1,comment2 text of the comment lines, null for none. Written unchanged: a text of
///     more than 252 characters, or with line breaks, may make a file that cannot be read back
/// Linear. A file that cannot be opened is reported on the standard error stream; failures after
/// that are not detected.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasVectorWrite(HYLBasVector<T> const& vector, char const* fileName,
                                             char const* comment1, char const* comment2) {
  static_assert(std::is_same_v<T, int> || std::is_same_v<T, double>,
                "text files hold vectors of int and of double only");
  vector.Write(fileName, comment1, comment2);
}

/// Reads a vector of `int` (from an integer file) or `double` (from a real file).
/// \return a new vector, which the caller deletes; never null. Its size is the number of values
///     read, its capacity the number that the file announced, as far as 32 bits hold it
/// Linear. A file that cannot be opened, or that has no size line, is reported on the standard
/// error stream and gives an empty vector. Exhausted memory is the memory library's to handle:
/// `mem_OperatorNewThrow` for the vector, `mem_Malloc_Handled` for its block, once.
template <class T>
HYLBASGENERICS_EXPORT HYLBasVector<T>* HYLBasVectorRead(char const* fileName) {
  static_assert(std::is_same_v<T, int> || std::is_same_v<T, double>,
                "text files hold vectors of int and of double only");
  std::unique_ptr<HYLBasVector<T>> vector(new HYLBasVector<T>());
  vector->Read(fileName);
  return vector.release();
}

// The instantiations live in the library.
#define HYLBAS_DECLARE_TEXT_FILE(T)                                                                \
  extern template HYLBASGENERICS_EXPORT void HYLBasVectorWrite(                                    \
      HYLBasVector<T> const&, char const*, char const*, char const*);                              \
  extern template HYLBASGENERICS_EXPORT HYLBasVector<T>* HYLBasVectorRead(char const*);
HYLBAS_DECLARE_TEXT_FILE(int)
HYLBAS_DECLARE_TEXT_FILE(double)
#undef HYLBAS_DECLARE_TEXT_FILE
