#include "FileCheck.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <system_error>

#include "Printable.h"

namespace {

constexpr std::uintmax_t largestFile = 64 << 20; // bytes: no record of years is longer
constexpr std::size_t longestLine = 254;         // the reader takes longer ones in pieces

std::string Count(unsigned int count, char const* what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// Lines with one fault: how many, and the first of them.
struct Suspects {
  void Add(unsigned int number, std::string const& line) {
    if (count++ == 0) first = "line " + std::to_string(number) + ": " + Quoted(line);
  }
  unsigned int count = 0;
  std::string first;
};

class Checker {
public:
  explicit Checker(char const* fileName) : m_fileName(fileName) {}

  CheckedFile Check() {
    Open();
    CheckHeader();
    CheckSizeLine();
    CheckValues();
    return m_result;
  }

private:
  std::string Named(std::string const& reason) const {
    return Printable(m_fileName) + ": " + reason;
  }
  [[noreturn]] void Refuse(std::string const& reason) const { throw BrokenFile(Named(reason)); }
  [[noreturn]] void RefuseUnread(std::string const& reason) const {
    throw std::runtime_error(Named(reason));
  }
  [[noreturn]] void RefuseLine(std::string const& reason) const {
    Refuse("line " + std::to_string(m_number) + ' ' + reason);
  }
  void Note(char const* action, Suspects const& lines, char const* fault) const {
    if (lines.count != 0)
      std::fprintf(stderr, "tour: %s: %s %s%s; the first is %s\n", Printable(m_fileName).c_str(),
                   action, Count(lines.count, "line").c_str(), fault, lines.first.c_str());
  }

  void Open() {
    std::error_code error;
    std::filesystem::file_status const status = std::filesystem::status(m_fileName, error);
    if (std::filesystem::is_directory(status)) RefuseUnread("this is a folder, not a file");
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
      RefuseUnread("this is no ordinary file, which could be read twice");
    errno = 0;
    m_in.open(m_fileName, std::ios::binary);
    if (!m_in) RefuseUnread(std::string("cannot be opened: ") + std::strerror(errno));
    m_bytesLeft = std::filesystem::file_size(m_fileName);
    if (m_bytesLeft > largestFile)
      RefuseUnread("the tour takes files of at most " + std::to_string(largestFile >> 20) + " MB");
    if (m_bytesLeft == 0) Refuse("the file is empty");
  }

  bool NextLine() {
    if (!std::getline(m_in, m_line)) return false;
    ++m_number;
    m_bytesLeft -= std::min<std::uintmax_t>(m_bytesLeft, m_line.size() + 1);
    if (m_line.ends_with('\r')) m_line.pop_back();
    return true;
  }

  // Leaves `m_line` at the first line that does not begin with '%'.
  void CheckHeader() {
    do {
      if (!NextLine()) Refuse("the file ends before its size line");
      CheckCharacters();
      if (m_line.starts_with("%%MatrixMarket")) {
        CheckBanner();
      } else if (std::size_t const text = m_line.find_first_not_of("% ");
                 m_line.starts_with('%') && text != m_line.npos) {
        m_result.comments.push_back(Printable(std::string_view(m_line).substr(text)));
      }
    } while (m_line.starts_with('%'));
  }

  void CheckCharacters() const {
    if (m_number == 1 && m_line.starts_with("\xef\xbb\xbf"))
      RefuseLine("begins with a byte-order mark; save the file without one");
    for (char const c : m_line) {
      auto const byte = static_cast<unsigned char>(c);
      if (std::iscntrl(byte) == 0 || std::isspace(byte) != 0) continue;
      RefuseLine("holds a byte of value " + std::to_string(byte) + ": this is no text file");
    }
    if (m_line.find('\r') != m_line.npos)
      RefuseLine("holds carriage returns without line feeds; convert the line ends");
    if (m_line.size() > longestLine)
      RefuseLine("has more than " + std::to_string(longestLine) + " characters");
  }

  void CheckBanner() {
    std::istringstream words(m_line);
    std::string word, format, field;
    if (!(words >> word >> word >> format >> field))
      RefuseLine("is a banner of fewer than four words: " + Quoted(m_line));
    if (format != "array")
      RefuseLine("announces the format " + Quoted(format) + "; only \"array\" can be read");
    if (field != "real" && field != "integer" && field != "double")
      RefuseLine("announces values that are " + Quoted(field) +
                 R"(; only "real" and "integer" ones can be read)");
    m_result.isInteger = field == "integer" || (m_result.isInteger && field != "real");
  }

  void CheckSizeLine() {
    long long rows = 0, columns = 0, entries = 0;
    int const found = std::sscanf(m_line.c_str(), "%lld %lld %lld", &rows, &columns, &entries);
    if (found != 3) {
      std::string reason =
          "must be three integers, rows, columns and values, and is " + Quoted(m_line);
      if (found == 2) reason += ": the number of values is missing";
      RefuseLine(reason);
    }
    if (entries <= 0)
      RefuseLine("announces " + std::to_string(entries) + " values, and at least one is needed");
    // A value and the end of its line take two bytes, the last value may take one.
    if (static_cast<std::uintmax_t>(entries) > (m_bytesLeft + 1) / 2)
      RefuseLine("announces " + std::to_string(entries) + " values, more than the " +
                 std::to_string(m_bytesLeft) + " bytes after it can hold");
    m_result.count = static_cast<unsigned int>(entries);
  }

  void CheckValues() {
    unsigned int values = 0;
    while (NextLine())
      if (HoldsValue()) ++values;
    Note("skipping", m_words, " without a number");
    Note("leaving out what follows the number in", m_rests, "");
    if (values != m_result.count)
      Refuse("it announces " + Count(m_result.count, "value") + " and holds " +
             std::to_string(values));
  }

  bool HoldsValue() {
    std::size_t const text = m_line.find_first_not_of(" \t");
    if (text == m_line.npos || m_line.starts_with('%')) return false;
    if (m_line.size() > longestLine) CheckCharacters();
    int end = 0;
    double real = 0;
    long long integer = 0;
    int const found = m_result.isInteger ? std::sscanf(m_line.c_str(), "%lld%n", &integer, &end)
                                         : std::sscanf(m_line.c_str(), "%lf%n", &real, &end);
    if (found != 1) {
      m_words.Add(m_number, m_line);
      return false;
    }
    if (integer != static_cast<int>(integer))
      RefuseLine("holds an integer beyond 32 bits: " + Quoted(m_line));
    if (m_line.find_first_not_of(" \t\v\f\r", static_cast<std::size_t>(end)) != m_line.npos)
      m_rests.Add(m_number, m_line);
    return true;
  }

  char const* m_fileName;
  std::ifstream m_in;
  std::uintmax_t m_bytesLeft = 0; // behind the current line
  std::string m_line;
  unsigned int m_number = 0; // of the current line, from 1
  Suspects m_words, m_rests;
  CheckedFile m_result;
};

} // namespace

CheckedFile CheckFile(char const* fileName) { return Checker(fileName).Check(); }
