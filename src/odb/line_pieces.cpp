#include "odb/line_pieces.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Bit i set when bytes[i] is a line feed, for 64 bytes.
std::uint64_t lineFeedBits(const char* bytes) {
#if defined(__SSE2__)
    const __m128i lineFeed = _mm_set1_epi8('\n');
    std::uint64_t bits = 0;
    for (int part = 0; part < 4; ++part) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 16 * part));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(chunk, lineFeed)));
        bits |= std::uint64_t{found} << (16 * part);
    }
    return bits;
#else
    std::uint64_t bits = 0;
    for (int i = 0; i < 64; ++i) bits |= std::uint64_t{bytes[i] == '\n'} << i;
    return bits;
#endif
}

}  // namespace

void LinePieces::attach(std::FILE* file) {
    file_ = file;
    begin_ = end_ = 0;
    fileDone_ = file == nullptr;
    terminator_ = nullptr;
    if (file != nullptr && block_ == nullptr) {
        // Zeroed once, so that the pass over a last part-filled word reads
        // defined bytes.
        block_.reset(new char[kBlock + kSlack]());
        lineFeeds_.reset(new std::uint64_t[kWords]());
    }
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
    markLineFeeds();
}

void LinePieces::markLineFeeds() {
    const char* block = block_.get();
    const std::size_t words = (end_ + 63) / 64;
    for (std::size_t word = 0; word < words; ++word) lineFeeds_[word] = lineFeedBits(block + 64 * word);
    // The bytes behind the end of what was read are no line feeds.
    if (end_ % 64 != 0) lineFeeds_[words - 1] &= (std::uint64_t{1} << (end_ % 64)) - 1;
    lineFeeds_[words] = 0;
}
