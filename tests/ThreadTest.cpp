// What threads may do at the same time; the thread sanitizer is what finds a slip here.
#include <cstdlib>
#include <filesystem>
#include <future>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasGenerics.h"

namespace {

// Works on containers of its own over the general heap, beside `constant` ones, which it reads.
// Returns how much came out wrong.
unsigned int Work(unsigned int thread, HYLBasMap<int, double> const& constant) {
  std::string const file = testing::TempDir() + "thread-" + std::to_string(thread) + ".mtx";
  unsigned int wrong = 0;
  for (unsigned int round = 0; round != 20; ++round) {
    HYLBasVector<int> v;
    HYLBasMap<int, double> map;
    for (int i = 0; i != 300; ++i) {
      int const key = (i * 7919 + static_cast<int>(thread)) % 300;
      v.push_back(key);
      map[key] = constant.find(key)->second;
      mem_Free(mem_Malloc_Handled(static_cast<unsigned int>(i)));
    }
    HYLBasSortSpecial(&v[0], &v[0] + v.size());
    v.Write(file.c_str(), nullptr, nullptr);
    HYLBasVector<int> read;
    read.Read(file.c_str());
    for (int i = 0; i != 300; ++i)
      wrong += read[static_cast<unsigned int>(i)] != i || map[i] != 2 * i;
  }
  std::filesystem::remove(file);
  return wrong;
}

TEST(Threads, WorkOnContainersOfTheirOwn) {
  HYLBasMap<int, double> constant;
  for (int i = 0; i != 300; ++i)
    constant[i] = 2 * i;
  std::vector<std::future<unsigned int>> threads;
  for (unsigned int i = 0; i != 3; ++i)
    threads.push_back(std::async(std::launch::async, Work, i, std::cref(constant)));
  for (auto& thread : threads)
    EXPECT_EQ(0u, thread.get());
}

} // namespace
