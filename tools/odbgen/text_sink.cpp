#include "text_sink.h"

#include <utility>

TextSink::TextSink(std::string path, const char* lineEnd) : path_(std::move(path)), lineEnd_(lineEnd) {
    // Binary mode: the line end is chosen by the caller, never translated.
    file_ = std::fopen(path_.c_str(), "wb");
    ok_ = file_ != nullptr;
    buffer_.reserve(kFlushAt + 4096);
}

TextSink::~TextSink() {
    close();
}

void TextSink::flush() {
    if (file_ != nullptr && !buffer_.empty()) {
        if (std::fwrite(buffer_.data(), 1, buffer_.size(), file_) != buffer_.size()) ok_ = false;
    }
    written_ += buffer_.size();
    buffer_.clear();
}

bool TextSink::close() {
    if (file_ == nullptr) return ok_;
    flush();
    if (std::fclose(file_) != 0) ok_ = false;
    file_ = nullptr;
    return ok_;
}

TextSink& TextSink::number(std::int64_t value) {
    char digits[24];
    int count = 0;
    // Built from the magnitude as unsigned, so the most negative value works.
    std::uint64_t magnitude = value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    do {
        digits[count++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0) buffer_.push_back('-');
    while (count > 0) buffer_.push_back(digits[--count]);
    return *this;
}

TextSink& TextSink::millimetres(std::int64_t value) {
    constexpr std::int64_t kPerMillimetre = 10000;
    if (value < 0) {
        buffer_.push_back('-');
        value = -value;
    }
    number(value / kPerMillimetre);
    buffer_.push_back('.');
    const std::int64_t fraction = value % kPerMillimetre;
    for (std::int64_t place = kPerMillimetre / 10; place > 0; place /= 10) {
        buffer_.push_back(static_cast<char>('0' + fraction / place % 10));
    }
    return *this;
}
