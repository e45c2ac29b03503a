// BlockPool: fixed-size blocks for the objects a board is made of by the
// hundred thousand (list nodes, parts, pins). One heap block each would cost
// more than their data; here blocks are carved from large chunks and a freed
// block goes to a free list for the next object of the same size. Chunks
// stay until the process ends, reachable from the pool.
// Under AddressSanitizer every block comes from the heap on its own, so a
// use after free is still caught.
#pragma once

#include <cstddef>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define ODB2VRN_POOLS_OFF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ODB2VRN_POOLS_OFF 1
#endif
#endif

template <std::size_t BlockSize, std::size_t Alignment>
class BlockPool {
public:
    static void* allocate() {
#ifdef ODB2VRN_POOLS_OFF
        return ::operator new(BlockSize);
#else
        if (freeList_ != nullptr) {
            FreeBlock* block = freeList_;
            freeList_ = block->next;
            return block;
        }
        if (next_ == nullptr || next_ + kStride > end_) grow();
        void* block = next_;
        next_ += kStride;
        return block;
#endif
    }

    static void release(void* block) {
        if (block == nullptr) return;
#ifdef ODB2VRN_POOLS_OFF
        ::operator delete(block);
#else
        FreeBlock* freed = static_cast<FreeBlock*>(block);
        freed->next = freeList_;
        freeList_ = freed;
#endif
    }

private:
    struct FreeBlock {
        FreeBlock* next;
    };
    struct Chunk {
        Chunk* previous;
    };
    static constexpr std::size_t kAlign = Alignment > alignof(Chunk*) ? Alignment : alignof(Chunk*);
    static constexpr std::size_t kStride =
        ((BlockSize > sizeof(FreeBlock) ? BlockSize : sizeof(FreeBlock)) + kAlign - 1) / kAlign * kAlign;
    static constexpr std::size_t kChunkBytes = 256 * 1024;
    static constexpr std::size_t kHeader = (sizeof(Chunk) + kAlign - 1) / kAlign * kAlign;

    static void grow() {
        const std::size_t bytes = kHeader + (kChunkBytes / kStride + 1) * kStride;
        char* memory = static_cast<char*>(::operator new(bytes));
        Chunk* chunk = reinterpret_cast<Chunk*>(memory);
        chunk->previous = chunks_;
        chunks_ = chunk;
        next_ = memory + kHeader;
        end_ = memory + bytes;
    }

    static inline FreeBlock* freeList_ = nullptr;
    static inline Chunk* chunks_ = nullptr;
    static inline char* next_ = nullptr;
    static inline char* end_ = nullptr;
};

// Declares class-specific operator new and delete that use a BlockPool for
// objects of exactly this class; anything else goes to the heap.
#define ODB2VRN_POOLED(Type)                                                            \
    static void* operator new(std::size_t size) {                                      \
        if (size != sizeof(Type)) return ::operator new(size);                          \
        return BlockPool<sizeof(Type), alignof(Type)>::allocate();                      \
    }                                                                                   \
    static void operator delete(void* block, std::size_t size) {                       \
        if (size != sizeof(Type)) return ::operator delete(block);                      \
        BlockPool<sizeof(Type), alignof(Type)>::release(block);                         \
    }
