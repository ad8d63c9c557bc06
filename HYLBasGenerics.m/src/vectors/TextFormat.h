// A value as a line of a text file, in two ways that give the same bytes: the C library's, which
// says what the line is, and a direct one for the values that it is proven for.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "vectors/EightBytes.h"

namespace hylbas_detail {

// --- As the C library does it

inline void PrintLine(std::FILE* file, int value) {
  std::fprintf(file, "%10ld\n", static_cast<long>(value));
}

inline void PrintLine(std::FILE* file, double value) { std::fprintf(file, "%10.6lf\n", value); }

// --- Directly
//
// For a process that rounds to nearest and whose decimal point is '.'. The functions return the end
// of the line, or null for a value that is left to the C library. Neither branches on anything that
// changes from one value of a file to the next, such as signs and small differences of length.

// Whether the C library is known to round the binary value itself, however many digits it has. Not
// so for Windows' own, in whose place mingw-w64 can put another.
#if defined(_WIN32) && !__USE_MINGW_ANSI_STDIO
inline constexpr bool printsExactly = false;
#else
inline constexpr bool printsExactly = true;
#endif

// Room that a direct line needs, with what is written behind its end.
inline constexpr std::ptrdiff_t lineRoom = 48;

// Writes blanks, the sign and `digits` without zeros on the left, so that with the `after`
// characters to come they are ten or more.
inline char* PutLeading(char* to, bool negative, std::uint64_t digits, unsigned int after) {
  std::uint64_t const lastOne = std::uint64_t{1} << 56; // stays when it is a 0
  unsigned int const zeros = static_cast<unsigned int>(std::countr_zero(digits | lastOne)) / 8;
  unsigned int const length = 8 - zeros + (negative ? 1 : 0) + after;
  StoreEight(to, everyByte * ' ');
  to[8] = ' ';
  to += std::max(length, 10u) - length;
  *to = '-';
  to += negative ? 1 : 0;
  StoreEight(to, (digits + everyByte * '0') >> (8 * zeros));
  return to + (8 - zeros);
}

inline char* PutEight(char* to, std::uint32_t number) {
  StoreEight(to, EightOfNumber(number) + everyByte * '0');
  return to + 8;
}

// The same for a number below 10^16.
inline char* PutNumber(char* to, bool negative, std::uint64_t number, unsigned int after) {
  if (number < 100000000)
    return PutLeading(to, negative, EightOfNumber(static_cast<std::uint32_t>(number)), after);
  std::uint64_t const first = EightOfNumber(static_cast<std::uint32_t>(number / 100000000));
  to = PutLeading(to, negative, first, 8 + after);
  return PutEight(to, static_cast<std::uint32_t>(number % 100000000));
}

// The same for a number from 10^8, with nothing to come: at most one blank and two leading digits.
inline char* PutLongNumber(char* to, bool negative, std::uint32_t number) {
  unsigned int const first = number / 100000000;
  unsigned int const tens = first * 103 >> 10;
  bool const two = first > 9;
  *to = ' ';
  to += two || negative ? 0 : 1;
  *to = '-';
  to += negative ? 1 : 0;
  *to = static_cast<char>('0' + tens);
  to += two ? 1 : 0;
  *to = static_cast<char>('0' + first - 10 * tens);
  return PutEight(to + 1, number % 100000000);
}

// As "%10ld\n" does.
inline char* FormatLine(char* to, int value) {
  bool const negative = value < 0;
  std::uint32_t const bits = static_cast<std::uint32_t>(value);
  std::uint32_t const number = negative ? 0 - bits : bits;
  char* const end = number < 100000000 ? PutLeading(to, negative, EightOfNumber(number), 0)
                                       : PutLongNumber(to, negative, number);
  *end = '\n';
  return end + 1;
}

// The magnitude of a double, rounded to millionths.
struct Millionths {
  std::uint64_t whole;
  unsigned int part; // below 1000000
};

// Rounds mantissa / 2^shift to the nearest multiple of a millionth, and from halfway to the even
// one, as the C library rounds the binary value. For a mantissa below 2^53 and any shift but 0.
//
// No bit is lost: the fraction is an integer of 64 bits over 2^scale, and its product with
// 1000000 = 15625 * 2^6 is formed in two halves, since not every machine multiplies to 128 bits.
inline Millionths RoundToMillionths(std::uint64_t mantissa, unsigned int shift) {
  if (shift > 73) return {0, 0}; // below 2^-21: less than half a millionth
  std::uint64_t const whole = shift < 53 ? mantissa >> shift : 0;
  unsigned int const scale = shift <= 64 ? 64 : 73;
  std::uint64_t const fraction = mantissa << (scale - shift);
  std::uint64_t const right = (fraction & 0xFFFFFFFF) * 15625;
  std::uint64_t const left = (fraction >> 32) * 15625 + (right >> 32);
  unsigned int const leftPlaces = scale - 6 - 32; // of the binary fraction in `left`
  unsigned int const part = static_cast<unsigned int>(left >> leftPlaces);
  std::uint64_t const rest = left - (std::uint64_t{part} << leftPlaces);
  std::uint64_t const half = std::uint64_t{1} << (leftPlaces - 1);
  bool const beyondHalf = static_cast<std::uint32_t>(right) != 0;
  bool const up = rest > half || (rest == half && (beyondHalf || part % 2 != 0));
  if (!up) return {whole, part};
  return part == 999999 ? Millionths{whole + 1, 0} : Millionths{whole, part + 1};
}

// As "%10.6lf\n" does, for magnitudes below 2^52.
inline char* FormatLine(char* to, double value) {
  std::uint64_t const bits = std::bit_cast<std::uint64_t>(value);
  bool const negative = bits >> 63 != 0;
  unsigned int const exponent = static_cast<unsigned int>(bits >> 52) & 0x7FF;
  if (!printsExactly || exponent >= 1023 + 52) return nullptr;
  // A subnormal number's exponent is that of the smallest normal ones, without their leading bit;
  // it is so small here that the bit does not matter.
  std::uint64_t const mantissa = (bits & 0xFFFFFFFFFFFFF) | std::uint64_t{1} << 52;
  Millionths const rounded = RoundToMillionths(mantissa, 1023 + 52 - exponent);
  char* const point = PutNumber(to, negative, rounded.whole, 7);
  *point = '.';
  PutEight(point + 1, rounded.part * 100);
  point[7] = '\n';
  return point + 8;
}

} // namespace hylbas_detail
