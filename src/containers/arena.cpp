#include "containers/arena.h"

#include "platform/platform.h"

// Under AddressSanitizer every object gets a heap block of its own, so that
// a read past its end or after the arena went is still caught.
#if defined(__SANITIZE_ADDRESS__)
#define ODB2VRN_ARENA_OBJECT_BLOCKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ODB2VRN_ARENA_OBJECT_BLOCKS 1
#endif
#endif

struct Arena::Block {
    Block* previous;
    std::size_t size;  // with this header
};

namespace {

// Blocks grow from a page, so that a small arena (a keyword table) costs
// little, to regions large enough that a board needs few of them.
constexpr std::size_t kFirstBlock = 4096;
constexpr std::size_t kLargestBlock = std::size_t{2} << 20;

}  // namespace

void* Arena::allocateInNewBlock(std::size_t bytes, std::size_t alignment) {
    const std::size_t header = (sizeof(Block) + alignment - 1) & ~(alignment - 1);
#ifdef ODB2VRN_ARENA_OBJECT_BLOCKS
    const std::size_t size = header + bytes;
    char* memory = static_cast<char*>(::operator new(size));
#else
    const std::size_t grown = blockCount_ < 10 ? kFirstBlock << blockCount_ : kLargestBlock;
    // What is left of the current block is dropped: a request is small
    // against a block, and a large one gets a block of its own size.
    const std::size_t size = header + bytes > grown ? header + bytes : grown;
    char* memory = static_cast<char*>(platform::allocateBulkMemory(size));
    if (memory == nullptr) throw std::bad_alloc();
#endif
    Block* block = reinterpret_cast<Block*>(memory);
    block->previous = last_;
    block->size = size;
    last_ = block;
    ++blockCount_;
    next_ = memory + header + bytes;
    end_ = memory + size;
    return memory + header;
}

Arena::~Arena() {
    while (last_ != nullptr) {
        Block* block = last_;
        last_ = block->previous;
#ifdef ODB2VRN_ARENA_OBJECT_BLOCKS
        ::operator delete(block);
#else
        platform::releaseBulkMemory(block, block->size);
#endif
    }
}
