// The lines of a file from where it stands, exactly those that fgets with a buffer of 256 bytes
// gives, taken out of large blocks.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace hylbas_detail {

// A line that has no newline in its first 255 bytes is given in pieces of 255, each a line. The
// last one may lack the newline, unless reading failed within it: then it is dropped. Reads until
// the end, so that nobody can tell how much is read at a time.
class TextLines {
public:
  explicit TextLines(std::FILE* file) : m_file(file) {}

  // Whether there is a line. It then lies at Line(), with eight readable bytes that are no digits
  // behind the file's last one.
  bool More() {
    if (m_end - m_line < s_longest && !m_ended) Fill();
    return m_line != m_end;
  }
  char const* Line() const { return m_line; }

  // Leaves the line by its newline, whose search begins at `from`; false when it has none.
  bool LeaveFrom(char const* from) {
    if (*from != '\n') {
      char const* const limit = m_line + std::min(m_end - m_line, s_longest);
      if (from >= limit) return false;
      from = static_cast<char const*>(std::memchr(from, '\n', limit - from));
      if (from == nullptr) return false;
    } else if (from - m_line >= s_longest) {
      return false;
    }
    m_line = from + 1;
    return true;
  }

  // Copies the line, as fgets would, and leaves it; false when there is none after all.
  bool Take(char (&line)[256]) {
    std::ptrdiff_t length = std::min(m_end - m_line, s_longest);
    void const* const newline = std::memchr(m_line, '\n', length);
    if (newline != nullptr)
      length = static_cast<char const*>(newline) + 1 - m_line;
    else if (length < s_longest && std::ferror(m_file) != 0)
      return m_line = m_end, false;
    std::memcpy(line, m_line, length);
    line[length] = '\0';
    m_line += length;
    return true;
  }

private:
  static constexpr std::ptrdiff_t s_longest = 255;
  static constexpr std::size_t s_size = 16384;

  void Fill() {
    std::size_t const rest = m_end - m_line;
    std::memmove(m_block, m_line, rest);
    std::size_t const wanted = s_size - rest;
    std::size_t const got = std::fread(m_block + rest, 1, wanted, m_file);
    m_ended = got < wanted;
    m_line = m_block;
    m_end = m_block + rest + got;
    std::memset(m_block + rest + got, 0, 8);
  }

  std::FILE* m_file;
  char const* m_line = m_block;
  char const* m_end = m_block;
  bool m_ended = false;
  char m_block[s_size + 8];
};

} // namespace hylbas_detail
