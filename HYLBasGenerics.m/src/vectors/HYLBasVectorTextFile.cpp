// Text files: the core's reader and writer. The format is described in HYLBasVectorTextFile.h.
#include "HYLBasVectorTextFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "HYLBasVectorGeneric.h"
#include "TARNHYLBasAlloc.h"

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
// Closes the file on every way out, also when the host's memory library leaves by an exception.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

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

void WriteValue(std::FILE* file, int value) {
  std::fprintf(file, "%10ld\n", static_cast<long>(value));
}

void WriteValue(std::FILE* file, double value) { std::fprintf(file, "%10.6lf\n", value); }

// Writes the bytes of [`first`, `last`) as consecutive values; a rest too short for one is left.
template <class T>
void WriteValues(std::FILE* file, char const* first, char const* last) {
  for (char const* p = first; last - p >= static_cast<std::ptrdiff_t>(sizeof(T)); p += sizeof(T)) {
    T value;
    std::memcpy(&value, p, sizeof(T));
    WriteValue(file, value);
  }
}

// --- Reading

enum class Field { real, integer };

// The line that the reader is at, or the piece of a longer one. Empty until a line was read; keeps
// the last one at the end of the file.
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

// A value as it goes into a slot.
struct StoredValue {
  template <class T>
  void Set(T value) {
    static_assert(sizeof(T) <= sizeof(m_bytes));
    std::memcpy(m_bytes, &value, sizeof(T));
    m_size = sizeof(T);
  }

  char m_bytes[sizeof(double)];
  unsigned int m_size; // bytes in use
};

bool ParseValue(char const* line, Field field, StoredValue& result) {
  if (field == Field::real) {
    double value = 0;
    if (std::sscanf(line, "%lf", &value) != 1) return false;
    result.Set(value);
  } else {
    long long value = 0;
    if (std::sscanf(line, "%lld", &value) != 1) return false;
    result.Set(static_cast<int>(value)); // the low 32 bits
  }
  return true;
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
  void Store(StoredValue const& value) {
    unsigned int const room = m_bytes - m_used;
    if (m_start == nullptr || room < m_elementSize || room < value.m_size) return;
    std::memcpy(EndOfElements(), value.m_bytes, value.m_size);
    if (m_elementSize > value.m_size)
      std::memset(EndOfElements() + value.m_size, 0, m_elementSize - value.m_size);
    m_used += m_elementSize;
  }

private:
  unsigned int m_elementSize; // bytes
  unsigned int m_bytes;
  unsigned int m_used = 0; // bytes of the slots filled so far
  char* m_start = nullptr;
};

} // namespace

void HYLBasVectorGeneric::Write(char const* fileName, char const* typeName, char const* comment1,
                                char const* comment2) const {
  FileHandle const file(std::fopen(fileName, "w"));
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
  FileHandle const file(std::fopen(fileName, "r"));
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
  StoredValue value;
  while (reader.Next())
    if (ParseValue(reader.Line(), field, value)) block.Store(value);
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
