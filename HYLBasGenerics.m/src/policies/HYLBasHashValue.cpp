#include "HYLBasHashValue.h"

#include <cstdint>

unsigned int HashValue(unsigned int const& key, unsigned int tableSize) {
  return (key >> 2) % tableSize;
}

unsigned int HashValue(void* const& key, unsigned int tableSize) {
  return HashValue(static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(key)), tableSize);
}
