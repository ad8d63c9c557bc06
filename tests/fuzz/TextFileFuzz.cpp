// One input, whatever it holds, through the text file reader: into every element type and into
// elements of odd sizes, and what was read out to a file and back. Ends the process when a promise
// is broken; the address sanitizer sees to the bytes past a block.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <utility>

#include "HYLBasVectorTextFile.h"
#include "support/WatchedMemory.h"

namespace fs = std::filesystem;

namespace {

void Require(bool promise, char const* what) {
  if (promise) return;
  std::fprintf(stderr, "Broken promise: %s\n", what);
  std::abort();
}

// A file of this process alone, gone with it.
class ScratchFile {
public:
  ScratchFile()
      : m_path((fs::temp_directory_path() / ("fuzz-" + std::to_string(std::random_device()())))
                   .string()) {}
  ~ScratchFile() {
    std::error_code ignored;
    fs::remove(m_path, ignored);
  }
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;

  char const* Path() const { return m_path.c_str(); }

  void Fill(std::uint8_t const* data, std::size_t size) const {
    std::FILE* const file = std::fopen(Path(), "wb");
    Require(file != nullptr, "the input file is opened");
    Require(size == 0 || std::fwrite(data, 1, size, file) == size, "the input is written");
    std::fclose(file);
  }

  std::string Text() const {
    std::ifstream in(m_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

private:
  std::string m_path;
};

bool HasLongLine(std::string const& text) {
  for (std::size_t start = 0, end; (end = text.find('\n', start)) != text.npos; start = end + 1)
    if (end - start >= 255) return true;
  return false;
}

// What was written, read and written again must be the same text. Lines that are taken in pieces
// (numbers of 255 digits) are another matter.
template <class T>
void CheckThereAndBack(HYLBasVector<T> const& vector) {
  static ScratchFile const first, second;
  HYLBasVectorWrite(vector, first.Path(), nullptr, nullptr);
  std::string const text = first.Text();
  if (HasLongLine(text)) return;
  std::unique_ptr<HYLBasVector<T>> const back(HYLBasVectorRead<T>(first.Path()));
  Require(back->size() == vector.size(), "every value comes back");
  HYLBasVectorWrite(*back, second.Path(), nullptr, nullptr);
  Require(second.Text() == text, "what comes back writes the same text");
}

void CheckBlock(void const* begin, unsigned int size, unsigned int capacity,
                unsigned int elementSize) {
  Require(begin == watched_memory::lastBlock, "the elements begin where the block does");
  Require(size <= capacity, "the elements lie within the storage");
  // The watched memory also serves what no address space can: blocks whose length a difference of
  // two pointers cannot tell.
  if (std::cmp_greater(watched_memory::lastRequest, std::numeric_limits<std::ptrdiff_t>::max()))
    return;
  Require(capacity <= watched_memory::lastRequest / elementSize,
          "the storage lies within the block");
}

void ForgetBlock() {
  watched_memory::lastBlock = nullptr;
  watched_memory::lastRequest = 0;
}

template <class T>
void CheckTyped(char const* path) {
  ForgetBlock();
  HYLBasVector<T> vector;
  vector.Read(path);
  CheckBlock(vector.begin(), vector.size(), vector.capacity(), sizeof(T));
  if constexpr (std::is_same_v<T, int> || std::is_same_v<T, double>) CheckThereAndBack(vector);
}

void CheckCore(char const* path, unsigned int elementSize) {
  ForgetBlock();
  HYLBasVectorGeneric vector(HYLBasReplicatorGeneric(static_cast<int>(elementSize)), 0, nullptr);
  vector.Read(path);
  CheckBlock(vector.Begin(), vector.Size(), vector.Capacity(), elementSize);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static ScratchFile const input;
  input.Fill(data, size);
  // A value takes two bytes of text and at most 64 bytes of its block here.
  watched_memory::largestBlock = static_cast<unsigned int>(size) * 32 + 64;
  CheckTyped<int>(input.Path());
  CheckTyped<unsigned int>(input.Path());
  CheckTyped<float>(input.Path());
  CheckTyped<double>(input.Path());
  CheckTyped<long long>(input.Path());
  CheckTyped<unsigned long long>(input.Path());
  for (unsigned int const elementSize : {1u, 3u, 5u, 12u, 64u})
    CheckCore(input.Path(), elementSize);
  Require(watched_memory::liveBlocks == 0, "every block is released");
  return 0;
}
