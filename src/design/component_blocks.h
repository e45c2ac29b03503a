// ComponentBlocks: what the net lines show of each component, laid out in
// one block per component: a net pin meets the components in no useful
// order, and reading one block costs it a cache miss or two where the
// model's part, its pin list and its pins would cost one for each. The
// NETLIST section of a 100k-component board takes 0.31 s with the blocks
// against 0.85 s reading the model (bench_stages, medians of 7).
//
// A net pin finds its block by its key, as a scan of the components from
// index 0 finds its component: the first component with a key has a block,
// the later ones are never found. A key spelt as the components reader
// spells it leads through an array by its side and number, a few bytes a
// component, where an index of hashes would cost a cache miss of its own
// (0.15 against 0.27 s for the section at 100k); any other key goes
// through the index. The packages are read for their pin counts alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "containers/arena.h"
#include "containers/flat_index.h"
#include "design/component_key.h"

class Design;
class Part;

// One component's block, followed in memory by its texts: pinCount + 1 text
// ends, counted from the texts' start, then its key, its field (the refdes
// filled with blanks to 16 characters, and two more) and its pin texts.
class ComponentBlock {
public:
    std::int32_t pinCount() const { return pinCount_; }
    std::int32_t packageIndex() const { return packageIndex_; }
    std::string_view key() const { return {texts(), keyLength_}; }
    // "%-16s  " of the refdes.
    std::string_view field() const { return {texts() + keyLength_, fieldLength_}; }
    std::size_t refdesLength() const { return refdesLength_; }
    // REQUIRES: 0 <= pin < pinCount().
    std::string_view pinText(std::int32_t pin) const {
        const std::size_t* end = ends() + pin;
        return {texts() + end[0], end[1] - end[0]};
    }

private:
    friend class ComponentBlocks;
    const std::size_t* ends() const { return reinterpret_cast<const std::size_t*>(this + 1); }
    std::size_t* ends() { return reinterpret_cast<std::size_t*>(this + 1); }
    const char* texts() const { return reinterpret_cast<const char*>(ends() + pinCount_ + 1); }
    char* texts() { return reinterpret_cast<char*>(ends() + pinCount_ + 1); }

    std::int32_t pinCount_ = 0;
    std::int32_t packageIndex_ = 0;
    std::size_t keyLength_ = 0;
    std::size_t refdesLength_ = 0;
    std::size_t fieldLength_ = 0;
};

// Starts loading the first lines of block, which a pin's line will read:
// the writer asks for the blocks of several pins before it writes any, so
// that their cache misses overlap.
inline void prefetch(const ComponentBlock* block) {
#if defined(__GNUC__)
    const char* bytes = reinterpret_cast<const char*>(block);
    __builtin_prefetch(bytes);
    __builtin_prefetch(bytes + 64);
    __builtin_prefetch(bytes + 128);
#else
    (void)block;
#endif
}

class ComponentBlocks {
public:
    // Built before the file's first byte: when memory runs out here,
    // nothing has been written.
    explicit ComponentBlocks(const Design& design);

    // The block of the first component whose key equals key, or null.
    const ComponentBlock* find(const char* key) const;
    // The pin count of the package with this number; a number the packages
    // don't hold ends the run, as the unguarded fetch of the package does.
    std::int32_t packagePinCount(std::int32_t packageIndex) const;

private:
    void add(const Part& part);

    Arena arena_;
    std::size_t numberLimit_ = 0;
    std::vector<const ComponentBlock*> byNumber_[2];  // by side, then number; null: no component
    FlatIndex<const ComponentBlock> byKey_;            // the other keys
    std::vector<std::int32_t> packagePins_;
};
