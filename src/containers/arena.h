// Arena: the memory of the objects a board is made of by the hundred
// thousand (parts, pins, nets and the nodes of their lists). It is carved
// in order from blocks, and given back only when the arena goes, all at
// once: one heap block for each object would cost more than its data
// (bench_stages at 100k components: 2.01 billion instructions, 3.08 with a
// heap block for each object). The objects' owners still run their
// destructors, which give back what the objects hold elsewhere (a long
// text's buffer, an index's table).
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>

class Arena {
public:
    Arena() = default;
    ~Arena();
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    // bytes of memory aligned to alignment (a power of two); throws
    // std::bad_alloc when the system has none left.
    void* allocate(std::size_t bytes, std::size_t alignment) {
        const std::uintptr_t start = (reinterpret_cast<std::uintptr_t>(next_) + alignment - 1) & ~(alignment - 1);
        if (next_ == nullptr || start + bytes > reinterpret_cast<std::uintptr_t>(end_)) {
            return allocateInNewBlock(bytes, alignment);
        }
        next_ = reinterpret_cast<char*>(start + bytes);
        return next_ - bytes;
    }

    template <typename T, typename... Args>
    T* make(Args&&... args) {
        return new (allocate(sizeof(T), alignof(T))) T(std::forward<Args>(args)...);
    }

private:
    struct Block;
    void* allocateInNewBlock(std::size_t bytes, std::size_t alignment);

    char* next_ = nullptr;
    char* end_ = nullptr;
    Block* last_ = nullptr;  // the blocks, newest first
    std::size_t blockCount_ = 0;
};
