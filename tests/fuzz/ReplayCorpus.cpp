// Runs a fuzzing body over every file of the folders that are given: its corpus as a plain test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i)
    for (auto const& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      std::ifstream in(entry.path(), std::ios::binary);
      std::vector<char> const bytes{std::istreambuf_iterator<char>(in), {}};
      std::printf("%s\n", entry.path().string().c_str());
      std::fflush(stdout); // the last line names the input that ended the process
      LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
      ++inputs;
    }
  std::printf("%d inputs replayed\n", inputs);
  return inputs == 0 ? 1 : 0;
}
