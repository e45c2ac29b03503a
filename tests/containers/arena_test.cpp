#include "containers/arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

// Requests of every small size and alignment, and some larger than a block,
// over many blocks: each is aligned and keeps its bytes, whatever was
// allocated after it.
TEST(ArenaTest, EveryRequestIsAlignedAndKeepsItsBytes) {
    Arena arena;
    struct Request {
        unsigned char* at;
        std::size_t size;
    };
    std::vector<Request> requests;
    for (int i = 0; i < 20000; ++i) {
        const std::size_t alignment = std::size_t{1} << (i % 5);
        const std::size_t size = i % 4999 == 0 ? (std::size_t{3} << 20) : static_cast<std::size_t>(i % 41);
        auto* at = static_cast<unsigned char*>(arena.allocate(size, alignment));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(at) % alignment, 0u) << i;
        std::memset(at, i & 0xFF, size);
        requests.push_back({at, size});
    }
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const std::string expected(requests[i].size, static_cast<char>(i & 0xFF));
        ASSERT_EQ(std::memcmp(requests[i].at, expected.data(), requests[i].size), 0) << i;
    }
}

}  // namespace
