// LinePieces: a job file's text as repeated fgets(area, kTextArea, file)
// would give it: each piece runs through the next line feed, or is 2047
// bytes long, or ends with the file. The file is read in large blocks and
// each piece is handed out where it lies, terminated in place, instead of
// being copied line by line through stdio.
//
// The line feeds of a block are found in one pass when it is read, as a
// bit for each byte: a search line by line waits at every line for the end
// of the last one, and job files hold millions of short lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "containers/text_string.h"

class LinePieces {
public:
    // The longest piece: a line area less the terminator.
    static constexpr std::size_t kLongest = kTextArea - 1;

    // Reads from file from now on (null: no more pieces); the file stays
    // the caller's.
    void attach(std::FILE* file);
    // The next piece, zero-terminated, valid until the next call; a zero
    // byte within the line ends its text early, as it does for fgets. Null
    // once the file is read to its end or can't be read any further.
    const char* next() {
        if (terminator_ != nullptr) {
            *terminator_ = cutByte_;
            terminator_ = nullptr;
        }
        if (end_ - begin_ < kLongest && !fileDone_) refill();
        const std::size_t available = end_ - begin_;
        if (available == 0) return nullptr;
        char* piece = block_.get() + begin_;
        const std::size_t length = pieceLength(available < kLongest ? available : kLongest);
        begin_ += length;
        // The block has room behind what it holds, for the last terminator.
        terminator_ = piece + length;
        cutByte_ = *terminator_;
        *terminator_ = '\0';
        return piece;
    }

private:
    static constexpr std::size_t kBlock = 64 * 1024;
    // Behind the block's bytes: the last terminator, and the 64-byte steps
    // of the line feed pass, which may look past the end of what was read.
    static constexpr std::size_t kSlack = 64;
    static constexpr std::size_t kWords = kBlock / 64 + 1;

    void refill();
    // Sets the bits of lineFeeds_ for the line feeds among the bytes read.
    void markLineFeeds();

    // From the next piece's start through the first line feed within limit
    // bytes, or limit.
    std::size_t pieceLength(std::size_t limit) const {
        const std::size_t stop = begin_ + limit;
        std::size_t word = begin_ / 64;
        std::uint64_t bits = lineFeeds_[word] & (~std::uint64_t{0} << (begin_ % 64));
        while (bits == 0) {
            if ((word + 1) * 64 >= stop) return limit;
            bits = lineFeeds_[++word];
        }
        const std::size_t lineFeed = word * 64 + lowestBit(bits);
        return lineFeed < stop ? lineFeed + 1 - begin_ : limit;
    }

    static std::size_t lowestBit(std::uint64_t bits) {
#if defined(__GNUC__)
        return static_cast<std::size_t>(__builtin_ctzll(bits));
#else
        std::size_t at = 0;
        for (; (bits & 1U) == 0; bits >>= 1) ++at;
        return at;
#endif
    }

    std::FILE* file_ = nullptr;
    std::unique_ptr<char[]> block_;
    std::unique_ptr<std::uint64_t[]> lineFeeds_;  // bit i of word w: block byte 64 * w + i is a line feed
    std::size_t begin_ = 0;  // the next piece
    std::size_t end_ = 0;    // the end of the bytes read
    bool fileDone_ = true;
    char* terminator_ = nullptr;  // where the last piece was cut, and
    char cutByte_ = 0;            // the byte that stood there
};
