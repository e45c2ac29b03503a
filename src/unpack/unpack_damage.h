// Whether a pass of 7-Zip left a damaged tree. Its exit code alone can't
// tell: a whole archive followed by stray bytes or zero padding also ends
// with 2 ("There are some data after the end of the payload data"), and such
// archives convert. A pass is damaged when the exit code is 2 or more and
// the output reports one of 7-Zip's data errors, or a system error (a write
// that failed: disk full, quota, permissions).
#pragma once

#include <cstdint>
#include <string>

// 7-Zip's first error text of a damaged pass ("CRC Failed : board.tar",
// "No space left on device"); empty when the pass isn't damaged.
std::string unpackDamage(std::uint32_t exitCode, const std::string& output);
