// The VRN netlist writer's pieces below Design::writeNetlistFile. The layout
// of every line is shown at the top of netlist_writer.cpp.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "containers/abnormal_end.h"
#include "design/net.h"
#include "design/part.h"
#include "design/text_output.h"

class Design;

// Side indexes of one write, built in one pass over the components, so
// that a net pin costs a few array reads instead of scans of the lists.
// They give exactly what the scans would: the first component with a key,
// its refdes, its pins by index, the packages by number.
//
// A net pin meets components in no useful order, so every read is likely a
// cache miss: the key leads through one 4-byte slot straight to the
// component's block, which holds its counts, the offsets of its pin texts
// and the texts themselves side by side; and both are asked for some pins
// before the writer reads them (prefetchAhead).
class NetlistLookup {
public:
    explicit NetlistLookup(Design& design);

    // A view of one component's block.
    class Component {
    public:
        Component() = default;
        std::int32_t pinCount() const { return static_cast<std::int32_t>(words_[kPinCount]); }
        std::int32_t packageIndex() const { return static_cast<std::int32_t>(words_[kPackageIndex]); }
        std::size_t componentIndex() const { return words_[kComponentIndex]; }
        const char* refdes() const { return text(words_[kRefdes]); }
        std::size_t refdesLength() const { return words_[kRefdes + 1] - words_[kRefdes] - 1; }
        // REQUIRES: 0 <= pinIndex < pinCount().
        const char* pinText(std::int32_t pinIndex) const { return text(words_[kPinTexts + pinIndex]); }
        std::size_t pinTextLength(std::int32_t pinIndex) const {
            return words_[kPinTexts + pinIndex + 1] - words_[kPinTexts + pinIndex] - 1;
        }

    private:
        friend class NetlistLookup;
        // The block's words: the counts, then the byte offsets (from the
        // block's start) of the refdes and of each pin text, and one more
        // behind the last text; the texts follow, each with its terminator.
        enum : std::size_t { kPinCount, kPackageIndex, kComponentIndex, kRefdes, kPinTexts };
        explicit Component(const std::uint32_t* words) : words_(words) {}
        const char* text(std::uint32_t offset) const { return reinterpret_cast<const char*>(words_) + offset; }
        const std::uint32_t* words_ = nullptr;
    };

    // The first component whose key equals key; false when there is none.
    bool componentByKey(const TextString& key, Component* component) const;
    // The key of the component at this place in the list, for messages.
    const char* componentKey(const Component& component) const {
        return parts_[component.componentIndex()]->text();
    }
    // A negative pinIndex ends the run (abnormalEnd), as the unguarded fetch
    // of the pin does.
    // REQUIRES: pinIndex < component.pinCount().
    static void checkPinIndex(std::int32_t pinIndex) {
        if (pinIndex < 0) abnormalEnd();
    }
    // The pin count of the package with this number; out of range ends the
    // run: abnormalEnd().
    std::int32_t packagePinCount(std::int32_t index) const {
        if (index < 0 || static_cast<std::size_t>(index) >= packagePins_.size()) abnormalEnd();
        return packagePins_[static_cast<std::size_t>(index)];
    }

    // One step of a cursor that runs ahead of the writer over the nets'
    // pins and asks the cache for what a pin will need: first the key's slot,
    // kAhead pins later the block it leads to, another kAhead pins later the
    // writer reads them. The writer takes one step a pin; if the two fall
    // out of step, only the prefetches miss.
    void prefetchAhead();

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;
    static constexpr std::size_t kAhead = 8;

    // "T12" / "B7" as written by the components reader, with a number below
    // limit: the side (0 top, 1 bottom) and the number; else false.
    bool numberedKey(const char* key, int* side, std::size_t* number) const;
    // Appends part's block to blocks_; its place in words.
    std::uint32_t addBlock(const Part& part, std::size_t componentIndex);

    std::vector<std::uint32_t> blocks_;      // the component blocks, back to back
    std::vector<const Part*> parts_;         // the components, in list order
    std::vector<std::int32_t> packagePins_;  // pin count of each package
    std::size_t numberLimit_ = 0;
    std::vector<std::uint32_t> byNumber_[2];  // block of the first component per number, kNone none
    std::unordered_map<std::string, std::uint32_t> otherKeys_;

    // The cursor, and the slots touched in the last kAhead steps (null none)
    // with the pin each was for.
    NetList::Node* aheadNet_ = nullptr;
    NetPinList::Node* aheadPin_ = nullptr;
    struct Waiting {
        const std::uint32_t* slot;
        std::int32_t pinIndex;
    };
    Waiting waiting_[kAhead] = {};
    std::size_t waitingAt_ = 0;
};

// The pin text behind a "refdes-" prefix, judged by lengths alone: null
// unless pinText holds a '-' at position refdesLength; then the text behind
// pinText's first '-'.
const char* stripPinPrefix(std::size_t refdesLength, const char* pinText, std::size_t pinLength);
inline const char* stripPinPrefix(const char* refdes, const char* pinText) {
    return stripPinPrefix(std::strlen(refdes), pinText, std::strlen(pinText));
}

// The rest of a net's block after its "\t<name>".
void writeNetPins(NetPinList& pins, TextOutput& out, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup);

// "NETLIST", one block per net, "END_NETLIST".
void writeNetlistSection(NetList& nets, TextOutput& out, NetlistLookup& lookup);
