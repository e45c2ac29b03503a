// BlockPool: fixed-size blocks for the objects a board is made of by the
// hundred thousand (list nodes, parts, pins). One heap block each would cost
// more than their data; here blocks are carved from bulk memory and a freed
// block goes to a free list for the next object of the same size.
// Under AddressSanitizer every block comes from the heap on its own, so a
// use after free is still caught.
#pragma once

#include <cstddef>
#include <new>

#include "containers/bulk_memory.h"

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
    static constexpr std::size_t kAlign = Alignment > alignof(FreeBlock) ? Alignment : alignof(FreeBlock);
    static constexpr std::size_t kStride =
        ((BlockSize > sizeof(FreeBlock) ? BlockSize : sizeof(FreeBlock)) + kAlign - 1) / kAlign * kAlign;
    static constexpr std::size_t kChunkBytes = 256 * 1024;

    static void grow() {
        const std::size_t bytes = (kChunkBytes / kStride + 1) * kStride;
        next_ = static_cast<char*>(takeBulkMemory(bytes, kAlign));
        end_ = next_ + bytes;
    }

    static inline FreeBlock* freeList_ = nullptr;
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
