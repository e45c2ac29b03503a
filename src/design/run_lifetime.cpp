#include "design/run_lifetime.h"

#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t kChunkSize = 1 << 20;

// Chunks are chained through their first word from a static root, which
// keeps everything in them reachable until the process ends.
struct Chunk {
    Chunk* previous;
};

Chunk* lastChunk = nullptr;
std::size_t used = kChunkSize;

}  // namespace

void* allocateForRun(std::size_t size, std::size_t alignment) {
    std::size_t offset = (used + alignment - 1) & ~(alignment - 1);
    if (offset + size > kChunkSize) {
        const std::size_t chunkSize = size + sizeof(Chunk) + alignment > kChunkSize
                                          ? size + sizeof(Chunk) + alignment
                                          : kChunkSize;
        Chunk* chunk = static_cast<Chunk*>(std::malloc(chunkSize));
        if (chunk == nullptr) throw std::bad_alloc();
        chunk->previous = lastChunk;
        lastChunk = chunk;
        used = sizeof(Chunk);
        offset = (used + alignment - 1) & ~(alignment - 1);
        // An oversized request fills its own chunk.
        if (chunkSize > kChunkSize) used = chunkSize;
        else used = offset + size;
        return reinterpret_cast<char*>(chunk) + offset;
    }
    used = offset + size;
    return reinterpret_cast<char*>(lastChunk) + offset;
}
