// TextOutput: the bytes of the VRN file gathered in a large buffer and
// handed to the stream in big writes, instead of a stdio call for every
// piece of a line (2.01 against 2.26 billion instructions for bench_stages
// at 100k components). The stream (text mode) still makes the line ends. Every
// write is checked: a file that missed a byte must not pass for complete.
// Gathered bytes reach the stream when the buffer is full and at flush(),
// never by themselves: the owner decides what reaches the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

class TextOutput {
public:
    explicit TextOutput(std::FILE* stream) : stream_(stream) {}
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    void put(const char* text, std::size_t length) {
        if (length > kSize - used_) {
            flush();
            if (length > kSize) {
                if (std::fwrite(text, 1, length, stream_) != length) failed_ = true;
                return;
            }
        }
        std::memcpy(buffer_ + used_, text, length);
        used_ += length;
    }
    void put(const char* text) { put(text, std::strlen(text)); }
    void put(char c) {
        if (used_ == kSize) flush();
        buffer_[used_++] = c;
    }
    // count blanks; none when count is not positive.
    void blanks(std::int64_t count) {
        while (count > 0) {
            if (used_ == kSize) flush();
            const std::size_t room = kSize - used_;
            const std::size_t run = static_cast<std::uint64_t>(count) < room ? static_cast<std::size_t>(count) : room;
            std::memset(buffer_ + used_, ' ', run);
            used_ += run;
            count -= static_cast<std::int64_t>(run);
        }
    }
    // "%-Ns": the text, then blanks up to width; a longer text is never cut.
    void padded(const char* text, std::int64_t width) { padded(text, std::strlen(text), width); }
    void padded(const char* text, std::size_t length, std::int64_t width) {
        put(text, length);
        blanks(width - static_cast<std::int64_t>(length));
    }
    // A printf-formatted piece, for the rare lines that need one.
    void print(const char* format, ...);
    // Everything gathered so far goes to the stream.
    void flush();
    // True once a write to the stream fell short (a full disk, an I/O error).
    bool failed() const { return failed_; }

private:
    static constexpr std::size_t kSize = 64 * 1024;
    std::FILE* stream_;
    char buffer_[kSize];
    std::size_t used_ = 0;
    bool failed_ = false;
};
