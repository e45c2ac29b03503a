#include "odb/line_pieces.h"

#include <cstring>

void LinePieces::attach(std::FILE* file) {
    file_ = file;
    begin_ = end_ = 0;
    fileDone_ = file == nullptr;
    terminator_ = nullptr;
    if (file != nullptr && block_ == nullptr) block_.reset(new char[kBlock + 1]);
}

void LinePieces::refill() {
    char* block = block_.get();
    const std::size_t kept = end_ - begin_;
    if (kept > 0 && begin_ > 0) std::memmove(block, block + begin_, kept);
    begin_ = 0;
    end_ = kept;
    while (end_ < kBlock) {
        const std::size_t got = std::fread(block + end_, 1, kBlock - end_, file_);
        end_ += got;
        if (got == 0) {
            fileDone_ = true;
            break;
        }
    }
}

const char* LinePieces::next() {
    if (terminator_ != nullptr) {
        *terminator_ = cutByte_;
        terminator_ = nullptr;
    }
    if (end_ - begin_ < kLongest && !fileDone_) refill();
    const std::size_t available = end_ - begin_;
    if (available == 0) return nullptr;
    char* piece = block_.get() + begin_;
    const std::size_t limit = available < kLongest ? available : kLongest;
    const void* lineFeed = std::memchr(piece, '\n', limit);
    const std::size_t length = lineFeed != nullptr ? static_cast<const char*>(lineFeed) - piece + 1 : limit;
    begin_ += length;
    // The block has one byte more than it holds, for the last terminator.
    terminator_ = piece + length;
    cutByte_ = *terminator_;
    *terminator_ = '\0';
    return piece;
}
