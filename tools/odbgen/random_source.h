// RandomSource: the generator's only source of chance. A board must come out
// byte for byte the same from a seed on every platform and library, so this
// is a fixed algorithm (SplitMix64) with its own range reduction; the
// standard distributions are implementation-defined and are not used.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

class RandomSource {
public:
    explicit RandomSource(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }

    // Uniform in [0, bound); REQUIRES: bound > 0. The modulo bias is far
    // below anything a board's shape could show.
    std::int64_t below(std::int64_t bound) {
        return static_cast<std::int64_t>(next() % static_cast<std::uint64_t>(bound));
    }

    // Uniform in [low, high]; REQUIRES: low <= high.
    std::int64_t between(std::int64_t low, std::int64_t high) { return low + below(high - low + 1); }

    // True with the given chance in parts per million.
    bool chance(std::int64_t perMillion) { return below(1000000) < perMillion; }

    // An index drawn with the given weights; REQUIRES: a positive sum.
    std::size_t pick(const std::vector<int>& weights) {
        std::int64_t total = 0;
        for (int w : weights) total += w;
        std::int64_t roll = below(total);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            if (roll < weights[i]) return i;
            roll -= weights[i];
        }
        return weights.size() - 1;
    }

    template <typename T>
    void shuffle(std::vector<T>& items) {
        for (std::size_t i = items.size(); i > 1; --i) {
            std::swap(items[i - 1], items[static_cast<std::size_t>(below(static_cast<std::int64_t>(i)))]);
        }
    }

private:
    std::uint64_t state_;
};
