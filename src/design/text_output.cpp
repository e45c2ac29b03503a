#include "design/text_output.h"

#include <cstdarg>
#include <vector>

void TextOutput::print(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    if (length > 0) {
        std::vector<char> text(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(text.data(), text.size(), format, again);
        put(text.data(), static_cast<std::size_t>(length));
    }
    va_end(again);
    va_end(arguments);
}

void TextOutput::flush() {
    if (used_ > 0 && std::fwrite(buffer_, 1, used_, stream_) != used_) failed_ = true;
    used_ = 0;
}
