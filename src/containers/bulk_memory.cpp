#include "containers/bulk_memory.h"

#include <cstdint>
#include <new>

#include "platform/platform.h"

namespace {

#ifdef ODB2VRN_POOLS_OFF
struct Block {
    Block* previous;
};
Block* lastBlock = nullptr;
#else
// One system call a region: large enough that a board needs few, small
// enough that a small job leaves little of the last one unused.
constexpr std::size_t kRegionSize = std::size_t{2} << 20;
char* next = nullptr;
char* end = nullptr;
#endif

}  // namespace

void* takeBulkMemory(std::size_t size, std::size_t alignment) {
#ifdef ODB2VRN_POOLS_OFF
    const std::size_t header = (sizeof(Block) + alignment - 1) / alignment * alignment;
    char* memory = static_cast<char*>(::operator new(header + size));
    Block* block = reinterpret_cast<Block*>(memory);
    block->previous = lastBlock;
    lastBlock = block;
    return memory + header;
#else
    auto aligned = [alignment](char* p) {
        const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(p);
        return reinterpret_cast<char*>((value + alignment - 1) & ~(std::uintptr_t{alignment} - 1));
    };
    char* start = next == nullptr ? nullptr : aligned(next);
    if (start == nullptr || start + size > end) {
        const std::size_t need = size + alignment;
        const std::size_t regionSize = need > kRegionSize ? (need + kRegionSize - 1) / kRegionSize * kRegionSize
                                                          : kRegionSize;
        char* region = static_cast<char*>(platform::allocateBulkMemory(regionSize));
        if (region == nullptr) region = static_cast<char*>(::operator new(regionSize));
        // What is left of the old region is dropped; a request is small
        // against a region.
        next = region;
        end = region + regionSize;
        start = aligned(next);
    }
    next = start + size;
    return start;
#endif
}
