#include "report/messages.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

// The message area of both functions; longer texts are cut, never overrun.
constexpr int kMessageArea = 4096;

const std::int32_t kMessageLine = 1;
const std::int32_t kDebugEnabled = 0;

std::string formatted(const char* format, std::va_list arguments) {
    char text[kMessageArea];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

}  // namespace

std::int32_t messageLine() { return kMessageLine; }

void writeText(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::printf("%s", formatted(format, arguments).c_str());
    va_end(arguments);
}

void writeMessage(std::int32_t level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    switch (level) {
        case 0: writeText("%s\n", text.c_str()); break;
        case 1: writeText("Status,  -%s\n", text.c_str()); break;
        case 2: writeText("Error,   - Line:%d  -%s\n", messageLine(), text.c_str()); break;
        case 3: writeText("Warning,   - Line:%d  -%s\n", messageLine(), text.c_str()); break;
        case 4:
            if (kDebugEnabled != 0) writeText("Debug,   - Line:%d  -%s\n", messageLine(), text.c_str());
            break;
        default: writeText("Unknown,  -%s\n", text.c_str()); break;
    }
}
