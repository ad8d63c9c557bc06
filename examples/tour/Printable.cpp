#include "Printable.h"

namespace {

constexpr std::size_t longestQuotation = 60;

// Bytes of the visible character that `text` begins with; 0 where it begins with none.
std::size_t CharacterLength(std::string_view text) {
  auto const lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return lead >= ' ' && lead != 0x7f ? 1 : 0;
  std::size_t const length = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < length) return 0;
  for (std::size_t i = 1; i != length; ++i)
    if ((text[i] & 0xc0) != 0x80) return 0;
  bool const isControl = lead == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0;
  return isControl ? 0 : length;
}

} // namespace

std::string Printable(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    std::size_t const length = CharacterLength(text);
    result += length != 0 ? text.substr(0, length) : "?";
    text.remove_prefix(length != 0 ? length : 1);
  }
  return result;
}

std::string Quoted(std::string_view text) {
  if (text.size() <= longestQuotation) return '"' + Printable(text) + '"';
  return '"' + Printable(text.substr(0, longestQuotation)) + "...\"";
}
