/// \file
/// Bucket numbers for hash tables keyed by integers or addresses.
#pragma once

#include "detail/HYLBasExport.h"

/// Bucket of `key` in a table of `tableSize` buckets (at least 1, unchecked):
/// `(key >> 2) % tableSize`. Keys that differ only in their two low bits share a bucket.
HYLBASGENERICS_EXPORT unsigned int HashValue(unsigned int const& key, unsigned int tableSize);

/// The same on the low 32 bits of an address: consecutive 4-byte words fall into consecutive
/// buckets. `tableSize` must be at least 1, unchecked.
HYLBASGENERICS_EXPORT unsigned int HashValue(void* const& key, unsigned int tableSize);
