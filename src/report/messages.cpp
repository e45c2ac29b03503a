#include "report/messages.h"

#include <cstdarg>
#include <cstdio>

namespace {

// The message area of both functions; longer texts are cut, never overrun.
constexpr int kMessageArea = 4096;

const std::int32_t kMessageLine = 1;
const std::int32_t kDebugEnabled = 0;

}  // namespace

std::int32_t messageLine() { return kMessageLine; }

void writeText(const char* format, ...) {
    char text[kMessageArea];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    std::printf("%s", text);
}

void writeMessage(std::int32_t level, const char* format, ...) {
    char text[kMessageArea];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    switch (level) {
        case 0: writeText("%s\n", text); break;
        case 1: writeText("Status,  -%s\n", text); break;
        case 2: writeText("Error,   - Line:%d  -%s\n", messageLine(), text); break;
        case 3: writeText("Warning,   - Line:%d  -%s\n", messageLine(), text); break;
        case 4:
            if (kDebugEnabled != 0) writeText("Debug,   - Line:%d  -%s\n", messageLine(), text);
            break;
        default: writeText("Unknown,  -%s\n", text); break;
    }
}
