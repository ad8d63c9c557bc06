// The value at the start of a line of a text file, in two ways that give the same bits: the C
// library's, which says what the value is, and a direct one for the texts that it is proven for.
#pragma once

#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <version>

#include "vectors/EightBytes.h"

namespace hylbas_detail {

// --- As the C library does it: false when the line does not begin with a value

inline bool ScanLine(char const* line, int& value) {
  long long wide = 0;
  if (std::sscanf(line, "%lld", &wide) != 1) return false;
  value = static_cast<int>(wide); // the low 32 bits
  return true;
}

inline bool ScanLine(char const* line, double& value) {
  return std::sscanf(line, "%lf", &value) == 1;
}

// --- Directly
//
// For a process that rounds to nearest and whose decimal point is '.'. The functions return the end
// of the value's text, or null for a line that is left to the C library: one without a value, and
// everything unusual. They see no end of the line but a byte that belongs to no number, from which
// eight bytes must be readable.

// Whether the C library is known to give the double that is nearest to the text. Those on Windows
// may round to a longer format first.
#if defined(_WIN32)
inline constexpr bool scansExactly = false;
#else
inline constexpr bool scansExactly = true;
#endif

inline char const* SkipBlanks(char const* p) {
  for (;; p += 8) {
    std::uint64_t const others = LoadEight(p) ^ everyByte * ' ';
    if (others != 0) return p + std::countr_zero(others) / 8;
  }
}

// The digits that were taken so far, as one number. Beyond 19 of them the number is wrong.
struct DigitRun {
  std::uint64_t number = 0;
  unsigned int count = 0;
};

// Adds the digits at `p` to the run; returns their end.
inline char const* TakeDigits(char const* p, DigitRun& run) {
  static constexpr std::uint64_t tens[] = {1,      10,      100,      1000,     10000,
                                           100000, 1000000, 10000000, 100000000};
  for (unsigned int length = 8; length == 8; p += length, run.count += length) {
    std::uint64_t const digits = LoadEight(p) ^ everyByte * '0';
    // What is above 9 carries into its byte's highest bit; a carry into the next byte is past the
    // first such byte, which alone counts.
    std::uint64_t const others = ((digits + everyByte * 0x76) | digits) & everyByte * 0x80;
    length = static_cast<unsigned int>(std::countr_zero(others)) / 8;
    if (length == 0) break;
    run.number = run.number * tens[length] + NumberOfEight(digits << (64 - 8 * length));
  }
  return p;
}

// As "%lld" does, cut to 32 bits.
inline char const* ParseLine(char const* line, int& value) {
  char const* p = SkipBlanks(line);
  bool const negative = *p == '-';
  p += (negative ? 1 : 0) | (*p == '+' ? 1 : 0);
  DigitRun run;
  p = TakeDigits(p, run);
  if (run.count == 0 || run.count > 18) return nullptr; // more may be past 64 bits
  value = static_cast<int>(static_cast<unsigned int>(negative ? 0 - run.number : run.number));
  return p;
}

// The power of ten that an exponent at `p` stands for; null for one without digits, about which
// C libraries differ, and for a long one.
inline char const* TakeExponent(char const* p, int& exponent) {
  if (*p != 'e' && *p != 'E') return p;
  ++p;
  bool const negative = *p == '-';
  p += (negative ? 1 : 0) | (*p == '+' ? 1 : 0);
  DigitRun run;
  p = TakeDigits(p, run);
  if (run.count == 0 || run.count > 4) return nullptr;
  exponent += negative ? -static_cast<int>(run.number) : static_cast<int>(run.number);
  return p;
}

// number * 10^exponent where double precision makes one rounding of it: both are exact then
// (Clinger 1990, "How to read floating point numbers accurately").
inline bool RoundsOnce(std::uint64_t number, int exponent, double& value) {
  static constexpr double tens[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (FLT_EVAL_METHOD != 0 || number > std::uint64_t{1} << 53 || exponent < -22 || exponent > 22)
    return false;
  double const exact = static_cast<double>(static_cast<std::int64_t>(number));
  value = exponent < 0 ? exact / tens[-exponent] : exact * tens[exponent];
  return true;
}

// The standard library's correctly rounded conversion. Results at the ends of the range are not
// taken: the C library sets errno for some of them.
inline bool RoundsByCharconv([[maybe_unused]] char const* first, [[maybe_unused]] char const* last,
                             [[maybe_unused]] double& value) {
#if defined(__cpp_lib_to_chars)
  std::from_chars_result const result = std::from_chars(first, last, value);
  return result.ec == std::errc() && result.ptr == last && value > DBL_MIN;
#else
  return false;
#endif
}

// As "%lf" does, for up to 19 digits.
inline char const* ParseLine(char const* line, double& value) {
  if (!scansExactly) return nullptr;
  char const* p = SkipBlanks(line);
  bool const negative = *p == '-';
  p += (negative ? 1 : 0) | (*p == '+' ? 1 : 0);
  char const* const first = p;
  DigitRun run;
  p = TakeDigits(p, run);
  if ((*p | 0x20) == 'x') return nullptr;
  int exponent = 0;
  if (*p == '.') {
    char const* const fraction = p + 1;
    p = TakeDigits(fraction, run);
    exponent = static_cast<int>(fraction - p);
  }
  if (run.count == 0 || run.count > 19) return nullptr;
  p = TakeExponent(p, exponent);
  if (p == nullptr) return nullptr;
  if (!RoundsOnce(run.number, exponent, value) && !RoundsByCharconv(first, p, value))
    return nullptr;
  value = std::copysign(value, negative ? -1.0 : 1.0);
  return p;
}

} // namespace hylbas_detail
