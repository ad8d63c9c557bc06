// What runs a walk: the suite, from seeds and from its corpus, and libFuzzer.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

#include "Choices.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

void Take(std::string const& name, Bytes const& bytes) {
  SCOPED_TRACE(name);
  Choices choices(bytes);
  Walk(choices);
}

Bytes Drawn(unsigned int seed) {
  std::mt19937 random(seed);
  Bytes bytes(walkPlan.choices);
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random()); });
  bytes[0] = static_cast<std::uint8_t>(seed);
  return bytes;
}

TEST(Walk, FollowsItsModel) {
  for (unsigned int seed = 0; seed != walkPlan.runs; ++seed) {
    Bytes const bytes = Drawn(seed);
    Take("seed " + std::to_string(seed), bytes);
    if (!HasFailure()) continue;
    std::string const file = testing::TempDir() + "choices-" + std::to_string(seed);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<char const*>(&bytes[0]), std::ssize(bytes));
    FAIL() << "its choices are kept in " << file;
  }
}

// Over the folder of the corpus, or over a file or folder that the environment names.
TEST(Walk, ReplaysItsCorpus) {
  char const* const named = std::getenv("HYLBAS_CHOICES");
  std::filesystem::path const corpus = named ? named : walkPlan.corpus;
  std::vector<std::filesystem::path> files;
  if (is_regular_file(corpus)) files.push_back(corpus);
  if (is_directory(corpus))
    for (auto const& entry : std::filesystem::recursive_directory_iterator(corpus))
      if (entry.is_regular_file()) files.push_back(entry);
  if (files.empty()) GTEST_SKIP() << "nothing has been found yet";
  for (auto const& file : files) {
    std::ifstream in(file, std::ios::binary);
    Take(file.string(), Bytes(std::istreambuf_iterator<char>(in), {}));
    if (HasFailure()) return;
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);
int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Take("found", Bytes(data, data + size));
  if (testing::Test::HasFailure()) std::abort();
  return 0;
}
