// platform::splitCommandLine over any bytes (up to the first zero). Quotes,
// backslashes and blanks are the only bytes the rules may take out; every
// other byte must come back exactly as often as it was given.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/platform.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    long given[256] = {};
    for (const char c : std::string(line.c_str())) ++given[static_cast<unsigned char>(c)];
    for (const std::string& argument : platform::splitCommandLine(line.c_str())) {
        for (const char c : argument) --given[static_cast<unsigned char>(c)];
    }
    for (int c = 0; c < 256; ++c) {
        const bool mayDrop = c == ' ' || c == '\t' || c == '"' || c == '\\';
        if (given[c] < 0 || (given[c] > 0 && !mayDrop)) {
            std::fprintf(stderr, "splitCommandLine: byte 0x%02x given %+ld times more than returned\n", c, given[c]);
            std::abort();
        }
    }
    return 0;
}
