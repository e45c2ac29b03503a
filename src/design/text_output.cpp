#include "design/text_output.h"

#include <cstdarg>
#include <vector>

void TextOutput::print(const char* format, ...) {
    char small[256];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(small, sizeof small, format, arguments);
    va_end(arguments);
    if (length < 0) return;
    if (static_cast<std::size_t>(length) < sizeof small) {
        put(small, static_cast<std::size_t>(length));
        return;
    }
    std::vector<char> large(static_cast<std::size_t>(length) + 1);
    va_start(arguments, format);
    std::vsnprintf(large.data(), large.size(), format, arguments);
    va_end(arguments);
    put(large.data(), static_cast<std::size_t>(length));
}

void TextOutput::flush() {
    if (used_ > 0 && std::fwrite(buffer_, 1, used_, stream_) != used_) failed_ = true;
    used_ = 0;
}
