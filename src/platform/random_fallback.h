// The draw that randomNumber falls back on where the system's random source
// fails (early boot, an old kernel). Private to the twins of platform.h.
#pragma once

#include <cstdint>

namespace platform {

// A high-resolution clock reading and the process id still differ between
// runs started together; a count of the draws keeps successive draws of one
// run apart when the clock has not moved.
std::uint32_t fallbackRandomNumber(std::uint64_t clockReading, std::uint64_t processId);

}  // namespace platform
