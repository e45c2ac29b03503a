#include "odb/line_pieces.h"

void LinePieces::attach(std::FILE* file) {
    file_ = file;
    begin_ = end_ = 0;
    fileDone_ = file == nullptr;
    terminator_ = nullptr;
    // One byte behind the block, for the last piece's terminator.
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
