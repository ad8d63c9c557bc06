// Eight characters at a time as one number, the first in its lowest byte, and what the digits among
// them are worth.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace hylbas_detail {

inline std::uint64_t InTextOrder(std::uint64_t word) {
  if constexpr (std::endian::native == std::endian::little) return word;
  std::uint64_t result = 0;
  for (int i = 0; i != 8; ++i)
    result = result << 8 | (word >> (8 * i) & 0xFF);
  return result;
}

inline std::uint64_t LoadEight(char const* from) {
  std::uint64_t word;
  std::memcpy(&word, from, sizeof(word));
  return InTextOrder(word);
}

inline void StoreEight(char* to, std::uint64_t word) {
  word = InTextOrder(word);
  std::memcpy(to, &word, sizeof(word));
}

inline constexpr std::uint64_t everyByte = 0x0101010101010101;

// Both directions work on all pairs of neighbours at once, as full-word instructions allow when no
// part grows into the next one (Lamport 1975, "Multiple byte processing with full-word
// instructions").

// The number that eight bytes of values 0 to 9 spell.
inline std::uint64_t NumberOfEight(std::uint64_t digits) {
  std::uint64_t constexpr everyFourth = 0x000000FF000000FF;
  digits = digits * 10 + (digits >> 8); // pairs, in every second byte
  std::uint64_t const first = (digits & everyFourth) * (100 + (std::uint64_t{1000000} << 32));
  std::uint64_t const second = (digits >> 16 & everyFourth) * (1 + (std::uint64_t{10000} << 32));
  return (first + second) >> 32;
}

// The eight digits, of values 0 to 9, of a number below 10^8. Each step takes quotient and rest of
// all its numbers: n + q * 2^k - q * d * 2^k is q below (n - q * d) there.
inline std::uint64_t EightOfNumber(std::uint32_t number) {
  std::uint64_t const thousands = number / 10000;
  std::uint64_t const fours = (std::uint64_t{number} << 32) - thousands * ((10000ull << 32) - 1);
  std::uint64_t const hundreds = (fours * 10486 >> 20) & 0x0000007F0000007F; // n / 100 below 10^4
  std::uint64_t const twos = (fours << 16) - hundreds * ((100 << 16) - 1);
  std::uint64_t const tens = (twos * 103 >> 10) & 0x000F000F000F000F; // n / 10 below 100
  return (twos << 8) - tens * ((10 << 8) - 1);
}

} // namespace hylbas_detail
