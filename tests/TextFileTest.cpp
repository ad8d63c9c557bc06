// Vector text files: what is written, to the byte, and what becomes of every file under
// data/text, sorted there by verdict:
//   accepted   in the format: all announced values are read
//   tolerated  something is off, yet a vector is read and nothing is reported
//   refused    reported on the standard error stream; the vector stays empty
// Beside NAME.mtx lies NAME.expect: lines that begin with '#' say why the file is there, every
// other one is an expectation:
//   TYPE block BYTES size N capacity N values V...   what HYLBasVector<TYPE> reads (a value may be
//                                                    given as bits:HEX); BYTES 0 for no block
//   stderr TEXT                                      the report; {file} is the file's name
#include <algorithm>
#include <bit>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasVectorTextFile.h"
#include "TARNHYLBasAlloc.h"
#include "support/WatchedMemory.h"

namespace fs = std::filesystem;

namespace {

#if defined(_WIN32)
std::string const lineEnd = "\r\n";
int const folderError = EACCES; // of opening a folder
bool const folderOpens = false; // for reading
#else
std::string const lineEnd = "\n";
int const folderError = EISDIR;
bool const folderOpens = true;
#endif

// The file's bytes, but each end of a line, as the platform's text files have it, as a newline.
std::string Bytes(fs::path const& path) {
  std::ifstream in(path, std::ios::binary);
  std::string text;
  for (char c = 0; in.get(c);) {
    EXPECT_TRUE(c != '\n' || lineEnd == "\n" || text.ends_with('\r'));
    if (c == '\n') text.resize(text.size() + 1 - lineEnd.size());
    text += c;
  }
  return text;
}

// A folder for the files that a test writes; gone with the test.
class TextFile : public testing::Test {
protected:
  void SetUp() override {
    m_folder =
        fs::path(testing::TempDir()) / ("hylbas-text-" + std::to_string(std::random_device()()));
    fs::create_directory(m_folder);
  }
  void TearDown() override {
    fs::remove_all(m_folder);
    EXPECT_EQ(watched_memory::liveBlocks, 0);
  }

  std::string File(std::string const& name) const { return (m_folder / name).string(); }
  std::string FileWith(std::string const& text) const {
    std::ofstream(File("input"), std::ios::binary) << text;
    return File("input");
  }

  template <class Vector>
  std::string Written(Vector const& vector, char const* comment1, char const* comment2) const {
    vector.Write(File("written").c_str(), comment1, comment2);
    return Bytes(File("written"));
  }

  fs::path m_folder;
};

// The number that the system gives to the next opened file: one that stayed open raises it.
int NextDescriptor() {
  std::FILE* const file = std::fopen(__FILE__, "r");
  if (file == nullptr) return -1;
  int const descriptor = fileno(file);
  std::fclose(file);
  return descriptor;
}

// A block of more than half a 32-bit address space is make-believe there; so are its distances.
bool IsReal(unsigned int bytes) { return sizeof(void*) == 8 || bytes <= unsigned{INT_MAX}; }

// --- Writing

template <class T>
HYLBasVector<T> VectorOf(std::vector<T> const& values) {
  return HYLBasVector<T>(values.data(), values.data() + values.size());
}

TEST_F(TextFile, WritesToTheByte) {
  HYLBasVectorWrite(VectorOf<int>({1, -2, 300}), File("free").c_str(), "a", nullptr);
  EXPECT_EQ(Bytes(File("free")), "%%MatrixMarket vector array integer\n% a\n3 1 3\n"
                                 "         1\n        -2\n       300\n");
  EXPECT_EQ(Written(VectorOf<int>({INT_MIN, INT_MAX}), nullptr, "100% of %d %s"),
            "%%MatrixMarket vector array integer\n% 100% of %d %s\n2 1 2\n"
            "-2147483648\n2147483647\n");
  EXPECT_EQ(Written(HYLBasVector<int>(), "", "two\nlines"),
            "%%MatrixMarket vector array integer\n% \n% two\nlines\n0 1 0\n");
  EXPECT_EQ(Written(VectorOf<double>({3.25, 1.0e-7, 1500000, -0.0, 0.5e-6, 1.5e-6, 123.4567895,
                                      INFINITY, -INFINITY, NAN}),
                    "a", "b"),
            "%%MatrixMarket vector array real\n% a\n% b\n10 1 10\n"
            "  3.250000\n  0.000000\n1500000.000000\n -0.000000\n"
            "  0.000000\n  0.000002\n123.456789\n       inf\n      -inf\n       nan\n");
  std::string const largest = Written(VectorOf<double>({-DBL_MAX}), nullptr, nullptr);
  EXPECT_EQ(largest.substr(0, 59), "%%MatrixMarket vector array real\n1 1 1\n-1797693134862315708");
  EXPECT_EQ(largest.size(), 39u + 1 + 309 + 7 + 1);
}

TEST_F(TextFile, WritesOtherTypesWithoutValues) {
  auto const expect = [this](auto const& vector, std::string const& name) {
    EXPECT_EQ(Written(vector, "c", nullptr),
              "%%MatrixMarket vector array " + name + "\n% c\n2 1 2\n");
  };
  expect(HYLBasVector<unsigned int>(2), "unsigned int");
  expect(HYLBasVector<float>(2), "float");
  expect(HYLBasVector<long long>(2), "__int64");
  expect(HYLBasVector<unsigned long long>(2), "unsigned __int64");
}

// The core goes by the name alone, whatever its elements are.
TEST_F(TextFile, CoreWritesWhatTheNameSelects) {
  int const halves[] = {7, -1, 8, 0};
  HYLBasVectorGeneric wide(HYLBasReplicatorGeneric(8, HYLBasPODCopy<double>, nullptr), 0, nullptr);
  wide.Init(halves, halves + 4);
  auto const written = [&](char const* typeName) {
    wide.Write(File("core").c_str(), typeName, nullptr, nullptr);
    return Bytes(File("core"));
  };
  EXPECT_EQ(written("int"), "%%MatrixMarket vector array integer\n2 1 2\n"
                            "         7\n        -1\n         8\n         0\n");
  EXPECT_EQ(written("Int"), "%%MatrixMarket vector array Int\n2 1 2\n");
  EXPECT_EQ(written(""), "%%MatrixMarket vector array \n2 1 2\n");

  char const bytes[] = {1, 0, 0, 0, 2, 0, 0};
  HYLBasVectorGeneric odd(HYLBasReplicatorGeneric(1, HYLBasPODCopy<char>, nullptr), 0, nullptr);
  odd.Init(bytes, bytes + 7);
  odd.Write(File("core").c_str(), "int", nullptr, nullptr);
  EXPECT_EQ(Bytes(File("core")), "%%MatrixMarket vector array integer\n7 1 7\n         1\n");
}

TEST_F(TextFile, ReportsAFileThatCannotBeWritten) {
  auto const report = [](std::string const& file) {
    testing::internal::CaptureStderr();
    HYLBasVectorWrite(HYLBasVector<int>(2), file.c_str(), nullptr, nullptr);
    return testing::internal::GetCapturedStderr();
  };
  std::string const inNoFolder = File("missing/out.mtx");
  EXPECT_EQ(report(inNoFolder), "*** Error: cannot open file " + inNoFolder +
                                    " for writing: " + std::strerror(ENOENT) + "\n");
  EXPECT_EQ(report(m_folder.string()), "*** Error: cannot open file " + m_folder.string() +
                                           " for writing: " + std::strerror(folderError) + "\n");
  if (fs::exists("/dev/full")) {
    EXPECT_EQ(report("/dev/full"), ""); // only opening is checked
  }
}

// --- Reading the files by verdict

struct Expectation {
  std::string type;
  unsigned int block = 0, size = 0, capacity = 0;
  std::vector<std::string> values = {};
};

struct Case {
  std::string file;
  std::vector<Expectation> vectors;
  std::string report;
};

std::string Unescaped(std::string const& text, std::string const& file) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 6, "{file}") == 0) {
      result += file;
      i += 5;
    } else if (text[i] != '\\') {
      result += text[i];
    } else if (char const c = text.at(++i); c == 'x') {
      result += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else if (c == 'n' || lineEnd == "\n" || text.compare(i + 1, 2, "\\n") != 0) {
      result += c == 'n' ? '\n' : '\r'; // a reader sees no end of a line as the platform has it
    }
  }
  return result;
}

Case ParseCase(fs::path const& file) {
  Case result{file.string(), {}, {}};
  std::ifstream in(fs::path(file).replace_extension(".expect"));
  for (std::string line; std::getline(in, line);) {
    if (line[0] == '#') continue;
    std::istringstream words(line);
    Expectation e;
    std::string word;
    words >> e.type;
    if (e.type == "stderr") {
      result.report = Unescaped(line.substr(7), result.file);
      result.vectors = {{"int"}, {"double"}};
    } else {
      words >> word >> e.block >> word >> e.size >> word >> e.capacity >> word;
      EXPECT_EQ(word, "values") << file << ": cannot understand the expectation: " << line;
      e.values.assign(std::istream_iterator<std::string>(words), {});
      result.vectors.push_back(e);
    }
  }
  return result;
}

template <class T>
using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

template <class T>
T ValueOf(std::string const& word) {
  if (word.starts_with("bits:"))
    return std::bit_cast<T>(static_cast<Bits<T>>(std::stoull(word.substr(5), nullptr, 16)));
  if constexpr (std::is_floating_point_v<T>)
    return static_cast<T>(std::strtod(word.c_str(), nullptr));
  else
    return static_cast<T>(std::stoll(word));
}

template <class T>
bool SameValue(T a, T b) {
  if constexpr (std::is_floating_point_v<T>)
    if (std::isnan(a) && std::isnan(b)) return true;
  return std::bit_cast<Bits<T>>(a) == std::bit_cast<Bits<T>>(b);
}

template <class T>
void ReadsAs(Case const& c, Expectation const& expected) {
  SCOPED_TRACE(c.file + " as " + expected.type);
  int const descriptor = NextDescriptor();
  watched_memory::lastBlock = nullptr;
  watched_memory::lastRequest = 0;
  testing::internal::CaptureStderr();
  HYLBasVector<T> vector;
  vector.Read(c.file.c_str());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), c.report);
  EXPECT_EQ(watched_memory::lastRequest, expected.block);
  EXPECT_EQ(vector.begin(), watched_memory::lastBlock);
  if (IsReal(expected.block)) {
    EXPECT_EQ(vector.capacity(), expected.capacity);
  }
  ASSERT_EQ(vector.size(), expected.size);
  ASSERT_EQ(vector.size(), expected.values.size());
  for (unsigned int i = 0; i != vector.size(); ++i)
    EXPECT_TRUE(SameValue(vector[i], ValueOf<T>(expected.values[i])))
        << "value " << i << " is " << vector[i] << ", not " << expected.values[i];
  EXPECT_EQ(NextDescriptor(), descriptor);
}

TEST_F(TextFile, JudgesFilesAsExpected) {
  std::map<std::string, void (*)(Case const&, Expectation const&)> const readers = {
      {"int", ReadsAs<int>},
      {"unsigned", ReadsAs<unsigned int>},
      {"float", ReadsAs<float>},
      {"double", ReadsAs<double>},
      {"longlong", ReadsAs<long long>},
      {"ulonglong", ReadsAs<unsigned long long>}};
  std::map<std::string, int> files;
  for (auto const& entry :
       fs::recursive_directory_iterator(fs::path(HYLBAS_SOURCE_DIR) / "tests/data/text")) {
    if (entry.path().extension() != ".mtx") continue;
    std::string const verdict = entry.path().parent_path().filename().string();
    ++files[verdict];
    Case const c = ParseCase(entry.path());
    ASSERT_FALSE(c.vectors.empty()) << c.file;
    EXPECT_EQ(c.report.empty(), verdict != "refused") << c.file;
    for (Expectation const& expected : c.vectors) {
      EXPECT_TRUE(verdict != "accepted" || expected.size == expected.capacity) << c.file;
      readers.at(expected.type)(c, expected);
    }
  }
  EXPECT_TRUE(files["accepted"] >= 10 && files["tolerated"] >= 30 && files["refused"] >= 10);
}

TEST_F(TextFile, RefusesWhatIsNoFile) {
  std::string const missing = File("missing.mtx"), folder = m_folder.string();
  std::string const noAccess = "*** Error: cannot open file " + missing + ": ";
  ReadsAs<double>({missing, {}, noAccess + std::strerror(ENOENT) + "\n"}, {"double"});
  ReadsAs<int>(
      {folder,
       {},
       folderOpens
           ? "*** Error: dimensions line in file " + folder + " is incorrect:\n    "
           : "*** Error: cannot open file " + folder + ": " + std::strerror(folderError) + "\n"},
      {"int"});
}

// --- Reading beyond the typed vectors

// The block's size is cut to 32 bits; what is left may hold a part of an element at its end, which
// is nobody's.
TEST_F(TextFile, NothingUsesTheRestOfABlock) {
  HYLBasVectorGeneric vector(HYLBasReplicatorGeneric(5), 0, nullptr);
  vector.Read(FileWith("%%MatrixMarket vector array integer\n0 0 858993461\n7\n8\n").c_str());
  EXPECT_EQ(watched_memory::lastRequest, 9u);
  EXPECT_EQ(vector.Size(), 1u);
  EXPECT_EQ(vector.Capacity(), 1u);
  vector.PushBack("abcd");
  EXPECT_EQ(watched_memory::lastRequest, 20u); // a block of its own growth

  // 859 times 5000001 bytes leave 33563: a block all the same, too short for an element.
  HYLBasVectorGeneric none(HYLBasReplicatorGeneric(5000001), 0, nullptr);
  none.Read(FileWith("0 0 859\n1\n").c_str());
  EXPECT_EQ(watched_memory::lastRequest, 33563u);
  EXPECT_TRUE(none.Begin() == watched_memory::lastBlock && none.End() == none.Begin());
  EXPECT_EQ(none.Capacity(), 0u);
}

// A block that the vector held is neither used nor given back, also when the read fails.
TEST_F(TextFile, ReadForgetsABlock) {
  std::string const text = FileWith("1 1 1\n5\n");
  testing::internal::CaptureStderr();
  for (std::string const& file : {text, File("missing")}) {
    HYLBasVector<int> vector(3);
    int* const block = vector.begin();
    watched_memory::requestsServed = 0;
    if (file == text)
      EXPECT_THROW(vector.Read(file.c_str()), std::bad_alloc);
    else
      vector.Read(file.c_str());
    watched_memory::requestsServed = -1;
    EXPECT_TRUE(vector.begin() == nullptr && vector.end() == nullptr && vector.capacity() == 0);
    mem_Free(block);
  }
  std::unique_ptr<HYLBasVector<double>> const none(
      HYLBasVectorRead<double>(File("missing").c_str()));
  EXPECT_TRUE(none->empty() && none->capacity() == 0);
  testing::internal::GetCapturedStderr();
}

// The vector object and its block.
TEST_F(TextFile, ReadLeavesNothingBehindOnAnyFailedRequest) {
  std::string const file = FileWith("%%MatrixMarket vector array integer\n2 1 2\n5\n6\n");
  int const descriptor = NextDescriptor();
  for (int const served : {0, 1}) {
    watched_memory::requestsServed = served;
    EXPECT_THROW(HYLBasVectorRead<int>(file.c_str()), std::bad_alloc);
    EXPECT_EQ(watched_memory::liveBlocks, 0);
    EXPECT_EQ(NextDescriptor(), descriptor);
  }
  watched_memory::requestsServed = -1;
  std::unique_ptr<HYLBasVector<int>> const vector(HYLBasVectorRead<int>(file.c_str()));
  ASSERT_EQ(vector->size(), 2u);
  EXPECT_EQ(vector->back(), 6);
}

// Where no such locale is installed, compiles one into the folder.
bool SetDecimalComma([[maybe_unused]] fs::path const& folder) {
#if !defined(_WIN32)
  if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr &&
      std::system(
          ("localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8").string() + "'").c_str()) == 0)
    setenv("LOCPATH", folder.c_str(), 1);
#endif
  for (char const* name : {"de_DE.UTF-8", "German_Germany.1252"})
    if (std::setlocale(LC_NUMERIC, name) != nullptr) return true;
  return false;
}

// Numbers are what the C library's functions make of them under the process's locale.
TEST_F(TextFile, FollowsTheLocale) {
  std::string const before = std::setlocale(LC_NUMERIC, nullptr);
  if (!SetDecimalComma(m_folder)) GTEST_SKIP() << "no locale with a decimal comma can be had";
  std::string const written = Written(VectorOf<double>({3.25, -1234.5}), nullptr, nullptr);
  HYLBasVector<double> own, others;
  own.Read(File("written").c_str());
  others.Read(FileWith("1 1 1\n3.25\n").c_str());
  std::setlocale(LC_NUMERIC, before.c_str());
  EXPECT_EQ(written, "%%MatrixMarket vector array real\n2 1 2\n  3,250000\n-1234,500000\n");
  EXPECT_TRUE(own.size() == 2 && own[0] == 3.25 && own[1] == -1234.5);
  EXPECT_TRUE(others.size() == 1 && others[0] == 3.0); // the point ends the number
}

} // namespace
