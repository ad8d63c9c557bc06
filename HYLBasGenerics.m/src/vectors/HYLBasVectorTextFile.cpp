// Text files: the core's reader and writer. The format is described in HYLBasVectorTextFile.h.
#include "HYLBasVectorTextFile.h"

#include <cerrno>
#include <cfenv>
#include <cfloat>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <memory>

#include "HYLBasVectorGeneric.h"
#include "TARNHYLBasAlloc.h"
#include "vectors/TextFormat.h"
#include "vectors/TextLines.h"
#include "vectors/TextParse.h"

using namespace hylbas_detail;

// Behind a mode of fopen: programs that the process starts meanwhile do not inherit the file.
#if defined(_WIN32)
#define HYLBAS_CLOSE_ON_EXEC
#else
#define HYLBAS_CLOSE_ON_EXEC "e"
#endif

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
// Closes the file on every way out, also when the host's memory library leaves by an exception.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// Whether numbers may be written and read directly: the decimal point is '.', and the C library's
// functions as well as arithmetic round to nearest, which two registers may decide on.
bool NumbersArePlain() {
  double volatile const one = 1, tiny = DBL_MIN;
  return std::strcmp(std::localeconv()->decimal_point, ".") == 0 &&
         std::fegetround() == FE_TONEAREST && one + tiny == one - tiny;
}

// --- Writing

void WriteBanner(std::FILE* file, char const* typeName) {
  if (std::strcmp(typeName, "int") == 0)
    std::fprintf(file, "%%%%MatrixMarket vector array integer\n");
  else if (std::strcmp(typeName, "double") == 0)
    std::fprintf(file, "%%%%MatrixMarket vector array real\n");
  else
    std::fprintf(file, "%%%%MatrixMarket vector array %s\n", typeName);
}

void WriteComment(std::FILE* file, char const* comment) {
  if (comment != nullptr) std::fprintf(file, "%% %s\n", comment);
}

// Collects lines and hands them to the file many at a time.
class LineWriter {
public:
  explicit LineWriter(std::FILE* file) : m_file(file), m_direct(NumbersArePlain()) {}

  template <class T>
  void Write(T const& value) {
    if (m_lines + sizeof(m_lines) - m_end < lineRoom) Flush();
    char* const end = m_direct ? FormatLine(m_end, value) : nullptr;
    if (end != nullptr) {
      m_end = end;
    } else {
      Flush();
      PrintLine(m_file, value);
    }
  }

  void Flush() {
    std::fwrite(m_lines, 1, m_end - m_lines, m_file);
    m_end = m_lines;
  }

private:
  std::FILE* m_file;
  bool m_direct;
  char* m_end = m_lines;
  char m_lines[65536];
};

// Writes the bytes of [`first`, `last`) as consecutive values; a rest too short for one is left.
template <class T>
void WriteValues(std::FILE* file, char const* first, char const* last) {
  LineWriter writer(file);
  char const* p = first;
  for (unsigned int n = ElementsBetween<T>(first, last); n != 0; --n, p += sizeof(T)) {
    T value;
    std::memcpy(&value, p, sizeof(T));
    writer.Write(value);
  }
  writer.Flush();
}

// --- Reading

enum class Field { real, integer };

// The line above the values that the reader is at, or the piece of a longer one. Empty until a line
// was read; keeps the last one at the end of the file. Reads no further than it must, for a file
// that is refused may be a pipe whose writer waits.
class LineReader {
public:
  explicit LineReader(std::FILE* file) : m_file(file) {}
  bool Next() { return std::fgets(m_line, sizeof(m_line), m_file) != nullptr; }
  char const* Line() const { return m_line; }

private:
  std::FILE* m_file;
  char m_line[256] = {};
};

// The field type that a line beginning with '%' selects: `field` where it selects none.
Field ApplyBanner(char const* line, Field field) {
  if (std::strncmp(line, "%%MatrixMarket", 14) != 0) return field;
  char words[4][256];
  if (std::sscanf(line, "%255s %255s %255s %255s", words[0], words[1], words[2], words[3]) != 4)
    return field;
  if (std::strcmp(words[3], "real") == 0) return Field::real;
  if (std::strcmp(words[3], "integer") == 0) return Field::integer;
  return field;
}

// Leaves the reader at the first line that does not begin with '%', or at the last line.
Field ReadBannersAndComments(LineReader& reader) {
  Field field = Field::real;
  reader.Next();
  while (reader.Line()[0] == '%') {
    field = ApplyBanner(reader.Line(), field);
    if (!reader.Next()) break;
  }
  return field;
}

// Takes the low 32 bits of the third number; false when there are not three.
bool ParseSizeLine(char const* line, unsigned int& count) {
  long long rows = 0, columns = 0, entries = 0;
  if (std::sscanf(line, "%lld %lld %lld", &rows, &columns, &entries) != 3) return false;
  count = static_cast<unsigned int>(entries);
  return true;
}

void ReportSizeLine(char const* fileName, char const* line) {
  std::fprintf(stderr, "*** Error: dimensions line in file %s is incorrect:\n", fileName);
  std::fprintf(stderr, "    %s", line);
  std::fflush(stderr);
}

// The block of a vector that is being read; filled first to last.
class FreshBlock {
public:
  // The size is formed in 32 bits: a gigantic count yields a shorter block, maybe one that is too
  // short for an element, and none when nothing is left of it.
  FreshBlock(unsigned int count, unsigned int elementSize)
      : m_elementSize(elementSize), m_bytes(count * elementSize) {
    if (m_bytes != 0) m_start = static_cast<char*>(mem_Malloc_Handled(m_bytes));
  }

  char* Start() const { return m_start; }
  char* EndOfElements() const { return m_start + m_used; }
  char* EndOfStorage() const {
    return m_bytes == 0 ? m_start : m_start + (m_bytes - m_bytes % m_elementSize);
  }

  // Fills the next slot: bytes after a shorter value become zero, those of a longer one reach into
  // the slots after it. A value that would leave the block is dropped.
  template <class T>
  void Store(T const& value) {
    unsigned int const room = m_bytes - m_used;
    if (m_start == nullptr || room < m_elementSize || room < sizeof(T)) return;
    std::memcpy(EndOfElements(), &value, sizeof(T));
    if (m_elementSize > sizeof(T))
      std::memset(EndOfElements() + sizeof(T), 0, m_elementSize - sizeof(T));
    m_used += m_elementSize;
  }

private:
  unsigned int m_elementSize; // bytes
  unsigned int m_bytes;
  unsigned int m_used = 0; // bytes of the slots filled so far
  char* m_start = nullptr;
};

// Stores the value of every further line that has one.
template <class T>
void ReadValues(std::FILE* file, FreshBlock& block) {
  bool const direct = NumbersArePlain();
  TextLines lines(file);
  char line[256];
  T value = 0;
  while (lines.More()) {
    char const* const end = direct ? ParseLine(lines.Line(), value) : nullptr;
    if ((end != nullptr && lines.LeaveFrom(end)) || (lines.Take(line) && ScanLine(line, value)))
      block.Store(value);
  }
}

} // namespace

void HYLBasVectorGeneric::Write(char const* fileName, char const* typeName, char const* comment1,
                                char const* comment2) const {
  FileHandle const file(std::fopen(fileName, "w" HYLBAS_CLOSE_ON_EXEC));
  if (!file) {
    std::fprintf(stderr, "*** Error: cannot open file %s for writing: %s\n", fileName,
                 std::strerror(errno));
    return;
  }
  WriteBanner(file.get(), typeName);
  WriteComment(file.get(), comment1);
  WriteComment(file.get(), comment2);
  unsigned int const count = Size();
  std::fprintf(file.get(), "%u 1 %u\n", count, count);
  if (std::strcmp(typeName, "int") == 0)
    WriteValues<int>(file.get(), m_first, m_last);
  else if (std::strcmp(typeName, "double") == 0)
    WriteValues<double>(file.get(), m_first, m_last);
}

void HYLBasVectorGeneric::Read(char const* fileName) {
  m_first = m_last = m_endOfStorage = nullptr;
  FileHandle const file(std::fopen(fileName, "r" HYLBAS_CLOSE_ON_EXEC));
  if (!file) {
    std::fprintf(stderr, "*** Error: cannot open file %s: %s\n", fileName, std::strerror(errno));
    return;
  }
  LineReader reader(file.get());
  Field const field = ReadBannersAndComments(reader);
  unsigned int count = 0;
  if (!ParseSizeLine(reader.Line(), count)) {
    ReportSizeLine(fileName, reader.Line());
    return;
  }
  FreshBlock block(count, static_cast<unsigned int>(m_replicator.m_size));
  if (field == Field::real)
    ReadValues<double>(file.get(), block);
  else
    ReadValues<int>(file.get(), block);
  m_first = block.Start();
  m_last = block.EndOfElements();
  m_endOfStorage = block.EndOfStorage();
}

#define HYLBAS_DEFINE_TEXT_FILE(T)                                                                 \
  template HYLBASGENERICS_EXPORT void HYLBasVectorWrite(HYLBasVector<T> const&, char const*,       \
                                                        char const*, char const*);                 \
  template HYLBASGENERICS_EXPORT HYLBasVector<T>* HYLBasVectorRead(char const*);
HYLBAS_DEFINE_TEXT_FILE(int)
HYLBAS_DEFINE_TEXT_FILE(double)
