#include "design/run_lifetime.h"

#include "containers/bulk_memory.h"

void* allocateForRun(std::size_t size, std::size_t alignment) { return takeBulkMemory(size, alignment); }
