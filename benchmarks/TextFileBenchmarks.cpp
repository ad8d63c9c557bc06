// Vectors as text files beside the plain loops of the C library's functions, over the same file
// format. Files lie where the system keeps temporary ones: `TMPDIR` chooses another place.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "Compare.h"
#include "HYLBasVectorTextFile.h"

namespace {

using benchmark::State;
using compare::Random;

template <class T>
struct Values {
  char const* name;
  T (*draw)(Random& random);
};
constexpr Values<double> doubles[] = {
    {"double", [](Random& random) { return (2 * compare::Share(random) - 1) * 1e6; }},
    {"double, whole", [](Random& random) { return static_cast<double>(random() % 10000); }},
    {"double, full range",
     [](Random& random) {
       unsigned long long const bits = (static_cast<unsigned long long>(random()) << 32) | random();
       double value;
       std::memcpy(&value, &bits, sizeof(value));
       return value;
     }},
};
constexpr Values<int> ints[] = {
    {"int", [](Random& random) { return static_cast<int>(random()); }},
    {"int, small", [](Random& random) { return static_cast<int>(random() % 10000); }},
};

template <class T>
using VectorOf = std::unique_ptr<HYLBasVector<T>>;

// So many files in turn that the processor cannot learn them by heart.
unsigned int NumberOfFiles(unsigned int n) { return std::min(64u, 1 + 65536 / n); }

template <class T>
std::vector<HYLBasVector<T>> Contents(Values<T> const& values, unsigned int n) {
  Random random = compare::FreshRandom();
  std::vector<HYLBasVector<T>> contents(NumberOfFiles(n));
  for (HYLBasVector<T>& vector : contents)
    for (unsigned int i = 0; i != n; ++i)
      vector.push_back(values.draw(random));
  return contents;
}

// A folder of this case alone, gone with the object.
class Folder {
public:
  Folder()
      : m_path(std::filesystem::temp_directory_path() /
               ("benchmarks-" + std::to_string(getpid()))) {
    std::filesystem::create_directory(m_path);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  Folder(Folder const&) = delete;
  Folder& operator=(Folder const&) = delete;
  std::string File(std::size_t i) const { return (m_path / std::to_string(i)).string(); }

private:
  std::filesystem::path m_path;
};

template <class T>
void WriteOurs(HYLBasVector<T> const& vector, char const* fileName) {
  HYLBasVectorWrite(vector, fileName, "numbers", nullptr);
}

void Print(std::FILE* file, int value) { std::fprintf(file, "%10ld\n", static_cast<long>(value)); }
void Print(std::FILE* file, double value) { std::fprintf(file, "%10.6lf\n", value); }

template <class T>
void WriteByLoop(HYLBasVector<T> const& vector, char const* fileName) {
  std::FILE* const file = std::fopen(fileName, "w");
  std::fprintf(file, "%%%%MatrixMarket vector array %s\n%% numbers\n%u 1 %u\n",
               sizeof(T) == 4 ? "integer" : "real", vector.size(), vector.size());
  for (T const value : vector)
    Print(file, value);
  std::fclose(file);
}

template <class T>
VectorOf<T> ReadOurs(char const* fileName) {
  return VectorOf<T>(HYLBasVectorRead<T>(fileName));
}

bool Scan(char const* line, int& result) {
  long long value;
  if (std::sscanf(line, "%lld", &value) != 1) return false;
  result = static_cast<int>(value);
  return true;
}
bool Scan(char const* line, double& result) { return std::sscanf(line, "%lf", &result) == 1; }

template <class T>
VectorOf<T> ReadByLoop(char const* fileName) {
  std::FILE* const file = std::fopen(fileName, "r");
  char line[256];
  while (std::fgets(line, sizeof(line), file) != nullptr && line[0] == '%') {
  }
  long long rows, columns, count = 0;
  std::sscanf(line, "%lld %lld %lld", &rows, &columns, &count);
  auto vector = std::make_unique<HYLBasVector<T>>();
  vector->reserve(static_cast<unsigned int>(count));
  for (T value; std::fgets(line, sizeof(line), file) != nullptr;)
    if (Scan(line, value)) vector->push_back(value);
  std::fclose(file);
  return vector;
}

template <class T, class Write>
void WriteFiles(State& state, Values<T> const& values, unsigned int n, Write write) {
  Folder const folder;
  auto const contents = Contents(values, n);
  std::size_t i = 0;
  for (auto _ : state) {
    write(contents[i % contents.size()], folder.File(i % contents.size()).c_str());
    ++i;
  }
}

template <class T, class Read>
void ReadFiles(State& state, Values<T> const& values, unsigned int n, Read read) {
  Folder const folder;
  auto const contents = Contents(values, n);
  for (std::size_t i = 0; i != contents.size(); ++i)
    WriteByLoop(contents[i], folder.File(i).c_str());
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(read(folder.File(i % contents.size()).c_str()));
    ++i;
  }
}

template <class T>
void RegisterAll(Values<T> const& values) {
  for (unsigned int const size : compare::Sizes({1000, 100000, 1000000})) {
    auto const addWrite = [&](char const* who, auto write) {
      compare::Register(
          std::string("text/write/") + values.name, size, who,
          [=](State& state, unsigned int n) { WriteFiles<T>(state, values, n, write); });
    };
    addWrite("ours", WriteOurs<T>);
    addWrite("fprintf", WriteByLoop<T>);
    auto const addRead = [&](char const* who, auto read) {
      compare::Register(
          std::string("text/read/") + values.name, size, who,
          [=](State& state, unsigned int n) { ReadFiles<T>(state, values, n, read); });
    };
    addRead("ours", ReadOurs<T>);
    addRead("sscanf", ReadByLoop<T>);
  }
}

[[maybe_unused]] bool const registered = [] {
  for (Values<double> const& values : doubles)
    RegisterAll(values);
  for (Values<int> const& values : ints)
    RegisterAll(values);
  return true;
}();

} // namespace
