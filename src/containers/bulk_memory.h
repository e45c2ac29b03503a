// Bulk memory for objects that live until the process ends or are recycled
// by a BlockPool: carved from large regions that are never given back.
// Under AddressSanitizer every request is a heap block of its own, chained
// from a static root, so the leak checker still sees what they point to.
#pragma once

#include <cstddef>

// Set under AddressSanitizer: bulk memory and pools fall back to the heap.
#if defined(__SANITIZE_ADDRESS__)
#define ODB2VRN_POOLS_OFF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ODB2VRN_POOLS_OFF 1
#endif
#endif

// size bytes aligned to alignment (a power of two); throws std::bad_alloc
// when no memory is left.
void* takeBulkMemory(std::size_t size, std::size_t alignment);
