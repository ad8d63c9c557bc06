// Text files beside fprintf, fgets and sscanf: every byte that is written, every bit and request of
// what is read, errno and the reports. Numbers are drawn mostly where the direct ways end.
#include <bit>
#include <cerrno>
#include <cfenv>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>

#include "HYLBasVectorTextFile.h"
#include "walks/Choices.h"

namespace {

// A file of this process alone, gone with it.
struct Scratch {
  std::string path = testing::TempDir() + "hylbas-text-" + std::to_string(std::random_device()());
  ~Scratch() { Remove(); }
  // Before it is written: some file systems wait for the disk when a file is replaced.
  void Remove() const { std::remove(path.c_str()); }
} const ours, plain;

struct File {
  File(Scratch const& file, char const* mode) : stream(std::fopen(file.path.c_str(), mode)) {}
  ~File() { std::fclose(stream); }
  operator std::FILE*() const { return stream; }
  std::FILE* stream;
};

std::string Bytes(Scratch const& from) {
  std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(from.path)), '\0');
  EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), File(from, "rb")), bytes.size());
  return bytes;
}

// --- What the C library makes of them

void PlainLine(std::FILE* file, int value) { std::fprintf(file, "%10ld\n", long{value}); }
void PlainLine(std::FILE* file, double value) { std::fprintf(file, "%10.6lf\n", value); }

struct PlainVector {
  std::string report;
  std::vector<char> block = {};
  std::size_t stored = 0, filled = 0; // bytes of slots; with what the last value has beyond its own
  int error = 0;

  template <class T>
  void Store(T value, std::size_t slot) {
    if (block.size() - stored < std::max(slot, sizeof(T))) return;
    std::fill_n(&block[stored], slot, '\0');
    std::memcpy(&block[stored], &value, sizeof(T));
    filled = stored + std::max(slot, sizeof(T));
    stored += slot;
  }
};

PlainVector PlainRead(unsigned int slot) {
  errno = 0;
  File const file(ours, "r");
  bool real = true;
  char line[256] = "", words[4][256];
  for (bool more = std::fgets(line, 256, file); more && line[0] == '%';
       more = std::fgets(line, 256, file)) {
    if (std::strncmp(line, "%%MatrixMarket", 14) != 0) continue;
    if (std::sscanf(line, "%s %s %s %s", words[0], words[1], words[2], words[3]) != 4) continue;
    real = std::strcmp(words[3], "real") == 0 || (real && std::strcmp(words[3], "integer") != 0);
  }
  long long rows, columns, count, integer;
  if (std::sscanf(line, "%lld %lld %lld", &rows, &columns, &count) != 3)
    return {"*** Error: dimensions line in file " + ours.path + " is incorrect:\n    " + line,
            {},
            0,
            0,
            errno};
  PlainVector result;
  unsigned int const bytes = static_cast<unsigned int>(count) * slot;
  if (bytes > 1u << 24) return {"too large"};
  result.block.resize(bytes);
  for (double value; std::fgets(line, 256, file);)
    if (real && std::sscanf(line, "%lf", &value) == 1)
      result.Store(value, slot);
    else if (!real && std::sscanf(line, "%lld", &integer) == 1)
      result.Store(static_cast<int>(integer), slot);
  result.error = errno;
  return result;
}

// --- Comparing

template <class T>
void WritesAsPlain(std::vector<T> const& values, char const* comment) {
  HYLBasVector<T> const vector(values.data(), values.data() + values.size());
  ours.Remove();
  plain.Remove();
  vector.Write(ours.path.c_str(), nullptr, comment);
  {
    File const file(plain, "w");
    std::fprintf(file, "%%%%MatrixMarket vector array %s\n", sizeof(T) == 4 ? "integer" : "real");
    if (comment) std::fprintf(file, "%% %s\n", comment);
    std::fprintf(file, "%u 1 %u\n", vector.size(), vector.size());
    for (T value : values)
      PlainLine(file, value);
  }
  std::string const written = Bytes(ours), expected = Bytes(plain);
  if (written == expected) return;
  auto const at = std::mismatch(written.begin(), written.end(), expected.begin(), expected.end());
  std::size_t const from = std::max<std::ptrdiff_t>(at.first - written.begin() - 60, 0);
  FAIL() << written.substr(from, 120) << "\nis not\n" << expected.substr(from, 120);
}

// As elements of any size; `slot` 4 and 8 stand for the typed vectors.
void ReadsAsPlain(std::string const& text, unsigned int slot) {
  ours.Remove();
  std::fwrite(text.data(), 1, text.size(), File(ours, "wb"));
  PlainVector const expected = PlainRead(slot);
  if (expected.report == "too large") return;
  HYLBasVectorGeneric vector(HYLBasReplicatorGeneric(static_cast<int>(slot)), 0, nullptr);
  recording::Events().clear();
  testing::internal::CaptureStderr();
  errno = 0;
  vector.Read(ours.path.c_str());
  int const error = errno;
  ASSERT_EQ(testing::internal::GetCapturedStderr(), expected.report);
  std::size_t const bytes = expected.block.size();
  ASSERT_EQ(recording::Events().size(), bytes != 0);
  ASSERT_EQ(vector.Capacity(), bytes / slot);
  ASSERT_EQ(vector.Size(), expected.stored / slot);
  ASSERT_EQ(error, expected.error);
  if (bytes == 0) return;
  ASSERT_EQ(recording::Events()[0].n, bytes);
  auto const* const begin = static_cast<char const*>(vector.Begin());
  auto const at = std::mismatch(begin, begin + expected.filled, expected.block.begin());
  if (at.first != begin + expected.filled)
    FAIL() << "value " << (at.first - begin) / slot << " differs";
}

// --- Numbers

class Numbers {
public:
  explicit Numbers(unsigned int seed) : m_random(seed) {}

  std::size_t Below(std::size_t n) { return static_cast<std::size_t>(m_random() % n); }
  int Integer() {
    return static_cast<int>(Edge(Below(2) ? tens[Below(11)] : m_random() >> Below(64)));
  }

  double Real() {
    double const sign = Below(2) ? 1 : -1;
    auto const near = [&](double x) {
      return sign * std::bit_cast<double>(Edge(std::bit_cast<std::uint64_t>(x)));
    };
    double const whole = static_cast<double>(m_random() >> Below(64));
    switch (Below(6)) {
    case 0:
      return std::bit_cast<double>(m_random());
    case 1:
      return near(std::ldexp(whole, -static_cast<int>(Below(80)))); // halves of the sixth digit
    case 2:
      return near((whole + 0.5) / 1e6);
    case 3:
      return near(std::ldexp(1, static_cast<int>(Below(160)) - (Below(4) ? 80 : 1100)));
    case 4:
      return near(static_cast<double>(tens[Below(20)]) / (Below(2) ? 1 : 1e7));
    default:
      return sign * static_cast<double>(m_random() >> 11) / 1e10;
    }
  }

  // A line, most of them with a number in one of the ways to write it.
  std::string Line() {
    std::string line(Below(64) == 0 ? 230 + Below(30) : Below(4) ? Below(3) : Below(12), ' ');
    char number[400];
    switch (Below(8)) {
    case 0:
      std::snprintf(number, sizeof(number), "%10.6f", Real());
      break;
    case 1:
      std::snprintf(number, sizeof(number), "%.*e", static_cast<int>(Below(20)), Real());
      break;
    case 2:
      std::snprintf(number, sizeof(number), "%.17g", Real());
      break;
    case 3:
      std::snprintf(number, sizeof(number), "%d", Integer());
      break;
    case 4:
      std::snprintf(number, sizeof(number), "%lld",
                    static_cast<long long>(Edge(m_random() >> Below(64))));
      break;
    case 5:
      std::snprintf(number, sizeof(number), "%a", Real());
      break;
    default:
      return line + Digits() + Odd() + '\n';
    }
    line += number;
    if (Below(8) == 0) line.insert(Below(line.size() + 1), Odd());
    return line + (Below(8) ? "\n" : "\r\n");
  }

private:
  // Up to two steps aside.
  std::uint64_t Edge(std::uint64_t x) { return x + (Below(2) ? 0 : Below(5) - 2); }

  std::string Digits() {
    std::string digits;
    for (std::size_t left = Below(8) ? 15 + Below(8) : Below(270); left != 0; --left)
      digits += static_cast<char>('0' + Below(10));
    if (Below(4)) digits.insert(Below(digits.size() + 1), ".");
    return Below(2) ? digits : digits + 'e' + std::to_string(static_cast<int>(Below(90)) - 45);
  }
  std::string Odd() {
    static constexpr char const* odd[] = {"",   "+",   "-",      ".",     "e",  "E+", "e-", "e5",
                                          "0x", "inf", "nan(1)", "\t",    ",",  "d3", "e+", "..",
                                          "\v", "%",   "x1",     "00000", " 7", "p3", "\n"};
    std::size_t const drawn = Below(std::size(odd) + 1);
    return drawn == std::size(odd) ? std::string(1, '\0') : odd[drawn];
  }

  static constexpr std::uint64_t tens[] = {1,
                                           10,
                                           100,
                                           1000,
                                           10000,
                                           100000,
                                           1000000,
                                           10000000,
                                           100000000,
                                           1000000000,
                                           10000000000,
                                           100000000000,
                                           1000000000000,
                                           10000000000000,
                                           100000000000000,
                                           1000000000000000,
                                           10000000000000000,
                                           100000000000000000,
                                           1000000000000000000,
                                           10000000000000000000u};
  std::mt19937_64 m_random;
};

// A file about as the format has it.
std::string Text(Choices& choices, Numbers& numbers) {
  std::string text;
  static constexpr char const* above[] = {"%%MatrixMarket vector array integer\n",
                                          "%%MatrixMarket matrix array real general\n",
                                          "% words\n",
                                          "%%MatrixMarket vector array\n",
                                          "%%MatrixMarketing vector array integer",
                                          "\n"};
  for (unsigned int lines = choices.Below(4); lines != 0; --lines)
    text += choices.Of(above);
  unsigned int const lines = choices.Below(choices.OneIn(8) ? 5000 : 20);
  text += "1 1 " + std::to_string(choices.OneIn(4) ? choices.Below(20) : lines) +
          (choices.OneIn(8) ? "" : "\n");
  for (unsigned int i = 0; i != lines; ++i)
    text += numbers.Line();
  if (choices.OneIn(4)) text.pop_back();
  return text;
}

TEST(TextNumbers, AreTheLibrarys) {
  char const* const asked = std::getenv("HYLBAS_TEXT_NUMBERS");
  long long left = asked ? std::atoll(asked) : 60000;
  recording::Reset(nullptr, 0);
  for (unsigned int seed = 0; left > 0 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    Numbers numbers(seed);
    std::vector<double> reals(10000);
    std::vector<int> integers(10000);
    std::string lines = "0 0 10000\n";
    for (int i = 0; i != 10000; ++i) {
      reals[i] = numbers.Real();
      integers[i] = numbers.Integer();
      lines += numbers.Line();
    }
    WritesAsPlain(reals, nullptr);
    ReadsAsPlain(Bytes(ours), 8);
    WritesAsPlain(integers, nullptr);
    ReadsAsPlain(Bytes(ours), 4);
    ReadsAsPlain(lines, 8);
    ReadsAsPlain("%%MatrixMarket vector array integer\n" + lines, 4);
    left -= 60000;
  }
}

} // namespace

// The corpus holds whole files; what is found may begin like one.
#undef HYLBAS_CORPUS
#define HYLBAS_CORPUS HYLBAS_SOURCE_DIR "/tests/data/text"

WALK(60, 300) {
  recording::Reset(nullptr, 0);
  static constexpr int roundings[] = {FE_TONEAREST, FE_TONEAREST, FE_TONEAREST,
                                      FE_UPWARD,    FE_DOWNWARD,  FE_TOWARDZERO};
  static constexpr unsigned int slots[] = {8, 4, 1, 3, 5, 7, 12, 100};
  if (unsigned int const first = choices.Below(256); first == '%') {
    std::string const text = static_cast<char>(first) + choices.Rest();
    for (unsigned int slot : slots)
      ReadsAsPlain(text, slot);
  }
  while (choices.More()) {
    Numbers numbers(choices.Below(1u << 24));
    std::fesetround(choices.Of(roundings));
    if (choices.OneIn(3)) {
      std::vector<double> values(choices.Below(40));
      for (double& value : values)
        value = numbers.Real();
      WritesAsPlain(values, choices.OneIn(2) ? "100% of %d" : nullptr);
    } else if (choices.OneIn(3)) {
      std::vector<int> values(choices.Below(40));
      for (int& value : values)
        value = numbers.Integer();
      WritesAsPlain(values, choices.OneIn(2) ? "" : nullptr);
    } else {
      ReadsAsPlain(Text(choices, numbers), choices.Of(slots));
    }
    std::fesetround(FE_TONEAREST);
  }
}
