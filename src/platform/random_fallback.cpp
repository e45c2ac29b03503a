// Shared by both twins: each passes its own clock reading and process id.
#include "platform/random_fallback.h"

namespace platform {

std::uint32_t fallbackRandomNumber(std::uint64_t clockReading, std::uint64_t processId) {
    static std::uint64_t draws = 0;
    std::uint64_t mixed = clockReading ^ (processId << 40);
    // splitmix64: every input bit reaches every output bit.
    mixed += 0x9E3779B97F4A7C15ull * ++draws;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ull;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBull;
    return static_cast<std::uint32_t>((mixed ^ (mixed >> 31)) >> 16);
}

}  // namespace platform
