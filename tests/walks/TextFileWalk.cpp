// Text files beside fprintf, fgets and sscanf: every byte that is written, every bit and request of
// what is read, errno and the reports. Numbers are drawn mostly where the direct ways end.
//
// And what becomes of every file under data/text, sorted there by verdict:
//   accepted   in the format: all announced values are read
//   tolerated  something is off, yet a vector is read and nothing is reported
//   refused    reported on the standard error stream; the vector stays empty
// Beside NAME.mtx lies NAME.expect. Lines that begin with '#' say why the file is there, the others
// are what vectors of some types read, with the bytes of the block, and then what is reported.
#include <bit>
#include <cerrno>
#include <cfenv>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>

#include "HYLBasVectorTextFile.h"
#include "walks/Choices.h"

namespace fs = std::filesystem;

namespace {

// A file or folder of this process alone, gone with it.
struct Scratch {
  std::string path = testing::TempDir() + "hylbas-text-" + std::to_string(std::random_device()());
  ~Scratch() { Remove(); }
  // Before it is written: some file systems wait for the disk when a file is replaced.
  void Remove() const { fs::remove_all(path); }
} const ours, locales;

using File = std::unique_ptr<std::FILE, decltype([](std::FILE* f) { std::fclose(f); })>;
File Open(std::string const& path, char const* mode) {
  return File(std::fopen(path.c_str(), mode));
}

std::string Contents(fs::path const& path, std::ios::openmode mode = std::ios::binary) {
  if (!fs::is_regular_file(path)) return "";
  std::ifstream in(path, mode);
  return {std::istreambuf_iterator<char>(in), {}};
}

void Fill(std::string const& text) {
  ours.Remove();
  std::ofstream(ours.path, std::ios::binary) << text;
}

// The number that the system gives to the next opened file: one that stayed open raises it.
int NextDescriptor() { return fileno(Open(HYLBAS_SOURCE_DIR "/CMakeLists.txt", "r").get()); }

// A locale with a decimal comma, or null. Where none is installed, one is compiled.
char const* FindCommaLocale() {
#if !defined(_WIN32)
  if (std::setlocale(LC_NUMERIC, "de_DE.UTF-8") == nullptr) {
    fs::create_directory(locales.path);
    std::string const compiled = "'" + locales.path + "/de_DE.UTF-8'";
    if (std::system(("localedef -i de_DE -f UTF-8 " + compiled).c_str()) == 0)
      setenv("LOCPATH", locales.path.c_str(), 1);
  }
#endif
  for (char const* name : {"de_DE.UTF-8", "German_Germany.1252"})
    if (std::setlocale(LC_NUMERIC, name) != nullptr) return name;
  return nullptr;
}

// --- What the C library makes of them

template <class T>
void PlainLines(std::FILE* file, char const* format, std::string_view bytes) {
  for (T value; bytes.size() >= sizeof value; bytes.remove_prefix(sizeof value)) {
    std::memcpy(&value, bytes.data(), sizeof value);
    std::fprintf(file, format, value);
  }
}

// Returns the report.
std::string PlainWrite(std::string const& path, std::string const& type,
                       char const* const* comments, std::string_view bytes, std::size_t count) {
  File const file = Open(path, "w");
  if (!file)
    return "*** Error: cannot open file " + path + " for writing: " + std::strerror(errno) + "\n";
  std::string const field = type == "int" ? "integer" : type == "double" ? "real" : type;
  std::fprintf(file.get(), "%%%%MatrixMarket vector array %s\n", field.c_str());
  for (char const* comment : {comments[0], comments[1]})
    if (comment != nullptr) std::fprintf(file.get(), "%% %s\n", comment);
  std::fprintf(file.get(), "%zu 1 %zu\n", count, count);
  if (type == "int") PlainLines<int>(file.get(), "%10d\n", bytes);
  if (type == "double") PlainLines<double>(file.get(), "%10.6f\n", bytes);
  return "";
}

struct PlainVector {
  std::string report;
  unsigned int bytes = 0;    // of its block
  std::size_t stored = 0;    // bytes of slots
  std::string contents = {}; // of the block, with what the last value has beyond its slot

  template <class T>
  void Store(T value, std::size_t slot) {
    if (bytes - stored < std::max(slot, sizeof(T))) return;
    contents.resize(stored + std::max(slot, sizeof(T)));
    std::memcpy(&contents[stored], &value, sizeof(T));
    stored += slot;
  }
};

PlainVector PlainRead(std::string const& path, unsigned int slot) {
  File const file = Open(path, "r");
  if (!file) return {"*** Error: cannot open file " + path + ": " + std::strerror(errno) + "\n"};
  bool real = true;
  char line[256] = "", words[4][256];
  auto const next = [&] { return std::fgets(line, 256, file.get()) != nullptr; };
  for (bool more = next(); more && line[0] == '%'; more = next()) {
    if (std::strncmp(line, "%%MatrixMarket", 14) != 0) continue;
    if (std::sscanf(line, "%s %s %s %s", words[0], words[1], words[2], words[3]) != 4) continue;
    real = std::strcmp(words[3], "real") == 0 || (real && std::strcmp(words[3], "integer") != 0);
  }
  long long rows, columns, count, integer;
  if (std::sscanf(line, "%lld %lld %lld", &rows, &columns, &count) != 3)
    return {"*** Error: dimensions line in file " + path + " is incorrect:\n    " + line};
  PlainVector result = {"", static_cast<unsigned int>(count) * slot};
  for (double value; next();)
    if (real && std::sscanf(line, "%lf", &value) == 1)
      result.Store(value, slot);
    else if (!real && std::sscanf(line, "%lld", &integer) == 1)
      result.Store(static_cast<int>(integer), slot);
  return result;
}

// --- Numbers and lines

std::uint64_t Bits(Choices& choices) {
  std::uint64_t bits = 0;
  for (int i = 0; i != 8; ++i)
    bits = bits << 8 | choices.Below(256);
  return bits;
}
std::uint64_t Whole(Choices& choices) { return Bits(choices) >> choices.Below(64); }
std::uint64_t PowerOfTen(Choices& choices, unsigned int powers) {
  return std::stoull('1' + std::string(choices.Below(powers), '0'));
}

// Up to two steps aside.
template <class T>
T Edge(Choices& choices, T x) {
  unsigned int const steps = choices.Below(8);
  return std::bit_cast<T>(std::bit_cast<std::uint64_t>(x) + (steps < 5 ? steps - 2ull : 0));
}

double Real(Choices& choices) {
  unsigned int const way = choices.Below(6), power = choices.Below(160);
  double const whole = static_cast<double>(Whole(choices)), tenths = choices.Below(2) ? 1e7 : 1;
  if (way == 0) return std::bit_cast<double>(Bits(choices));
  if (way == 1) return Edge(choices, std::ldexp(whole, -int(power / 2))); // halves, mostly
  if (way == 2) return Edge(choices, (whole + 0.5) / 1e6);
  if (way == 3) return Edge(choices, std::ldexp(1, int(power) - (choices.OneIn(4) ? 1100 : 80)));
  if (way == 4) return Edge(choices, static_cast<double>(PowerOfTen(choices, 20)) / tenths);
  return static_cast<double>(Bits(choices) >> 11) / 1e10;
}

template <class T>
T Number(Choices& choices) {
  bool const way = choices.OneIn(2);
  if constexpr (sizeof(T) == 8)
    return std::bit_cast<T>(way ? Real(choices) : -Real(choices));
  else
    return std::bit_cast<T>(int(Edge(choices, way ? PowerOfTen(choices, 11) : Whole(choices))));
}

template <class... Values>
std::string Printed(char const* format, Values... values) {
  char text[400];
  std::snprintf(text, sizeof(text), format, values...);
  return text;
}

void Insert(Choices& choices, std::string& into, std::string_view what) {
  into.insert(choices.Below(static_cast<unsigned int>(into.size()) + 1), what);
}

std::string Digits(Choices& choices) {
  std::string digits;
  for (unsigned int n = choices.Below(8) ? 15 + choices.Below(8) : choices.Below(270); n != 0; --n)
    digits += static_cast<char>('0' + choices.Below(10));
  if (choices.Below(4)) Insert(choices, digits, ".");
  return choices.Below(2) ? digits : Printed("%se%d", digits.c_str(), choices.Below(90) - 45);
}

// A line, most of them with a number in one of the ways to write it.
std::string Line(Choices& choices) {
  static constexpr std::string_view odd[] = {
      "",  "+",  "-",  ".",  "e",  "E+", "e-", "e4294967297", "0x",    "inf", "nan(1)", "\t",
      ",", "d3", "e+", "..", "\v", "%",  "x1", "\n",          "00000", " 7",  "p3",     {"\0", 1}};
  unsigned int const way = choices.Below(8), blanks = choices.Below(choices.OneIn(4) ? 12 : 3);
  std::string line(choices.OneIn(64) ? 230 + choices.Below(30) : blanks, ' ');
  double const real = Number<double>(choices);
  if (way == 0) line += Printed("%10.6f", real);
  if (way == 1) line += Printed("%.*e", int(choices.Below(20)), real);
  if (way == 2) line += Printed("%.17g", real);
  if (way == 3) line += Printed("%d", Number<int>(choices));
  if (way == 4) line += Printed("%lld", static_cast<long long>(Edge(choices, Whole(choices))));
  if (way == 5) line += Printed("%a", real);
  if (way > 5) (line += Digits(choices)) += choices.Of(odd);
  if (choices.OneIn(8)) Insert(choices, line, choices.Of(odd));
  return line + (choices.OneIn(8) ? "\r\n" : "\n");
}

// A file about as the format has it.
std::string Text(Choices& choices) {
  static constexpr char const *above[] = {"%%MatrixMarket vector array integer\n",
                                          "%%MatrixMarket a b real general\n",
                                          "% words\n",
                                          "%%MatrixMarket a real\n",
                                          "\n",
                                          "%%MatrixMarketing a b integer"},
                              *counts[] = {"0", "7", "42949673", "4294967298", "858993461", "-1"};
  std::string text;
  for (unsigned int lines = choices.Below(4); lines != 0; --lines)
    text += choices.Of(above);
  unsigned int lines = choices.Below(choices.OneIn(4) ? 1000 : 20);
  std::string const count = choices.OneIn(4) ? choices.Of(counts) : "";
  char const* const end = choices.OneIn(8) ? "" : "\n";
  std::string values;
  for (unsigned int i = 0; i != lines; ++i)
    values += Line(choices);
  // At times more than is read at once, so that earlier lines are left behind the last one.
  for (bool const isLong = choices.OneIn(8); isLong && lines != 0 && values.size() < 20000;
       lines *= 2)
    values += values;
  text += "1 1 " + (count.empty() ? std::to_string(lines) : count) + end + values;
  if (choices.OneIn(4)) text.pop_back();
  return text;
}

std::string Path(Choices& choices) {
  std::string const others[] = {testing::TempDir(), testing::TempDir() + "missing/file",
                                "/dev/full"}; // whose errors are nobody's
  return choices.OneIn(8) ? choices.Of(others) : ours.path;
}

// --- Comparing

template <class T>
constexpr bool hasValueLines = std::is_same_v<T, int> || std::is_same_v<T, double>;

// By the typed vector, or by the core, which goes by any name.
template <class T>
void Write(Choices& choices, char const* ownName) {
  static constexpr char const *some[] = {nullptr, "", "100% of %d %s", "two\nlines"},
                              *others[] = {"int", "double", "Int", ""};
  bool const byCore = choices.OneIn(4);
  char const* const type = byCore ? choices.Of(others) : ownName;
  char const* const comments[] = {choices.Of(some), choices.Of(some)};
  std::string const path = Path(choices);
  HYLBasVector<T> vector(choices.Below(choices.OneIn(4) ? 1000 : 40));
  for (T& value : vector)
    value = Number<T>(choices);
  HYLBasVectorGeneric core(HYLBasGetReplicator<T>(), 0, nullptr);
  core.Init(vector.begin(), vector.end());
  ours.Remove();
  testing::internal::CaptureStderr();
  if (byCore)
    core.Write(path.c_str(), type, comments[0], comments[1]);
  else if constexpr (hasValueLines<T>)
    HYLBasVectorWrite(vector, path.c_str(), comments[0], comments[1]);
  else
    vector.Write(path.c_str(), comments[0], comments[1]);
  std::string const report = testing::internal::GetCapturedStderr(), written = Contents(path);
  ours.Remove();
  std::string_view const bytes(static_cast<char const*>(core.Begin()), vector.size() * sizeof(T));
  ASSERT_EQ(report, PlainWrite(path, type, comments, bytes, vector.size()));
  std::string const expected = Contents(path);
  auto const at = std::mismatch(written.begin(), written.end(), expected.begin(), expected.end());
  std::ptrdiff_t const same = at.first - written.begin();
  ASSERT_EQ(written.substr(same, 80), expected.substr(same, 80));
}

// As elements of any size; `slot` 4 and 8 stand for the typed vectors.
void Read(std::string const& path, unsigned int slot, bool holds, bool fails) {
  errno = 0;
  PlainVector const expected = PlainRead(path, slot);
  int const expectedError = errno;
  if (expected.bytes == 4294967295u) return; // never to be had
  auto const copy = [](void const*, void*, unsigned int) {};
  HYLBasVectorGeneric vector({static_cast<int>(slot), copy, nullptr}, 0, nullptr);
  if (holds) vector.Reserve(3);
  void* const held = vector.Begin(); // forgotten: neither used nor given back
  recording::Events().clear();
  testing::internal::CaptureStderr();
  errno = 0;
  bool const completed = Completes(fails, [&] { vector.Read(path.c_str()); });
  int const error = errno;
  unsigned int const bytes = completed ? expected.bytes : 0;
  ASSERT_EQ(testing::internal::GetCapturedStderr(), expected.report);
  ASSERT_EQ(completed, !fails || expected.bytes == 0);
  ASSERT_EQ(recording::Events().size(), bytes != 0);
  mem_Free(held);
  ASSERT_EQ(vector.Capacity(), bytes / slot);
  ASSERT_EQ(vector.Begin() == nullptr, bytes == 0);
  if (!completed) return;
  ASSERT_EQ(vector.Size(), expected.stored / slot);
  ASSERT_EQ(error, expectedError);
  ASSERT_TRUE(bytes == 0 || recording::Events()[0].n == bytes);
  auto const* const begin = static_cast<char const*>(vector.Begin());
  for (std::size_t i = 0; i != expected.contents.size(); ++i)
    ASSERT_EQ(begin[i], expected.contents[i]) << "in value " << i / slot;
  // A part of an element at the block's end is nobody's.
  bool const full = vector.Size() == vector.Capacity();
  recording::Events().clear();
  vector.PushBack(&slot);
  ASSERT_EQ(recording::Events().empty(), !full);
}

// --- Files by verdict

// What is read, with every request for memory failing once.
template <class T>
std::string Outcome(std::string const& path) {
  std::unique_ptr<HYLBasVector<T>> vector;
  auto const read = [&] {
    if constexpr (hasValueLines<T>) return vector.reset(HYLBasVectorRead<T>(path.c_str()));
    vector = std::make_unique<HYLBasVector<T>>();
    vector->Read(path.c_str());
  };
  recording::Reset(nullptr, 0);
  for (unsigned int k = 1; !Completes(k, read); ++k)
    vector.reset();
  EXPECT_EQ(recording::LiveBlocks(), vector->begin() == nullptr ? 1u : 2u);
  std::size_t const block = vector->begin() == nullptr ? 0 : recording::Events().back().n;
  std::ostringstream text;
  text << " block " << block << " size " << vector->size() << " capacity " << vector->capacity();
  text << " values";
  for (T const value : *vector) {
    char digits[32] = "nan";
    if (value == value) *std::to_chars(digits, std::end(digits), value).ptr = '\0';
    text << ' ' << digits;
  }
  return text.str();
}

struct Type {
  char const* name;
  void (*write)(Choices&, char const* name);
  std::string (*outcome)(std::string const& path);
} const types[] = {{"int", Write<int>, Outcome<int>},
                   {"double", Write<double>, Outcome<double>},
                   {"unsigned int", Write<unsigned int>, Outcome<unsigned int>},
                   {"float", Write<float>, Outcome<float>},
                   {"__int64", Write<long long>, Outcome<long long>},
                   {"unsigned __int64", Write<unsigned long long>, Outcome<unsigned long long>}};

TEST(TextFiles, AreJudgedAsExpected) {
  std::map<std::string, int> files;
  for (auto const& entry : fs::recursive_directory_iterator(HYLBAS_SOURCE_DIR "/tests/data/text")) {
    if (entry.path().extension() != ".mtx") continue;
    std::string const path = entry.path().string(),
                      verdict = entry.path().parent_path().filename().string();
    std::string expected = Contents(fs::path(path).replace_extension(".expect"), {});
    while (expected.starts_with('#'))
      expected.erase(0, expected.find('\n') + 1);
    if (auto const at = expected.find("{file}"); at != expected.npos) expected.replace(at, 6, path);
    std::string found, report;
    std::istringstream lines(expected);
    for (std::string line; std::getline(lines, line);)
      for (Type const& type : types) {
        if (!line.starts_with(std::string(type.name) + " block")) continue;
        testing::internal::CaptureStderr();
        found += type.name + type.outcome(path) + '\n';
        report = testing::internal::GetCapturedStderr();
      }
    EXPECT_EQ(found + report, expected) << path;
    EXPECT_EQ(report.empty(), verdict != "refused") << path;
    ++files[verdict];
  }
  EXPECT_TRUE(files["accepted"] >= 10 && files["tolerated"] >= 30 && files["refused"] >= 10);
}

} // namespace

// The corpus holds whole files; what is found may begin like one.
#undef HYLBAS_CORPUS
#define HYLBAS_CORPUS HYLBAS_SOURCE_DIR "/tests/data/text"

WALK(150, 20000) {
  recording::Reset(nullptr, 0);
  static constexpr int roundings[] = {FE_TONEAREST, FE_TONEAREST, FE_TONEAREST,
                                      FE_UPWARD,    FE_DOWNWARD,  FE_TOWARDZERO};
  static constexpr unsigned int slots[] = {8, 4, 8, 4, 1, 3, 5, 7, 12, 100};
  static char const* const commaLocale = FindCommaLocale();
  std::setlocale(LC_NUMERIC, "C");
  int const descriptor = NextDescriptor();
  if (unsigned int const first = choices.Below(256); first == '%') {
    Fill(static_cast<char>(first) + choices.Rest());
    for (unsigned int slot : slots)
      Read(ours.path, slot, false, false);
  }
  while (choices.More()) {
    std::fesetround(choices.Of(roundings));
    if (choices.OneIn(8) && commaLocale != nullptr) std::setlocale(LC_NUMERIC, commaLocale);
    bool const writes = choices.OneIn(3);
    Type const& type = choices.OneIn(4) ? choices.Of(types) : types[choices.Below(2)];
    if (writes) type.write(choices, type.name);
    if (!writes || choices.OneIn(2)) {
      if (!writes) Fill(Text(choices));
      unsigned int const slot = choices.Of(slots);
      bool const holds = choices.OneIn(8);
      Read(Path(choices), slot, holds, choices.OneIn(8));
    }
    std::setlocale(LC_NUMERIC, "C");
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(NextDescriptor(), descriptor);
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }
}
