// TextSink: a buffered writer for the generated job files. A board of 200k
// components is a quarter of a gigabyte of text, so numbers are formatted
// by hand into one growing buffer instead of through printf. Lengths are
// kept in tenths of a micrometre and written as millimetres with four
// decimals, which needs no floating point and so prints the same
// everywhere.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

class TextSink {
public:
    // lineEnd is "\n" or "\r\n"; every line() call writes it.
    TextSink(std::string path, const char* lineEnd);
    ~TextSink();
    TextSink(const TextSink&) = delete;
    TextSink& operator=(const TextSink&) = delete;

    // False when the file could not be opened or a write failed.
    bool ok() const { return ok_; }
    std::uint64_t bytesWritten() const { return written_ + buffer_.size(); }
    // Flushes and closes; returns ok().
    bool close();

    TextSink& put(std::string_view text) {
        buffer_.append(text);
        if (buffer_.size() >= kFlushAt) flush();
        return *this;
    }
    TextSink& put(char c) {
        buffer_.push_back(c);
        return *this;
    }
    TextSink& blank() { return put(' '); }
    TextSink& number(std::int64_t value);
    // value in tenths of a micrometre, written as millimetres: "-12.3456".
    TextSink& millimetres(std::int64_t value);
    TextSink& line() { return put(lineEnd_); }
    TextSink& line(std::string_view text) { return put(text).line(); }

private:
    static constexpr std::size_t kFlushAt = 1 << 20;
    void flush();

    std::string path_;
    std::string_view lineEnd_;
    std::FILE* file_ = nullptr;
    std::string buffer_;
    std::uint64_t written_ = 0;
    bool ok_ = false;
};
