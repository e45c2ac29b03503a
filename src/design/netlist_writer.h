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
// A net pin meets components in no useful order, so each is likely a cache
// miss. The key leads through one 4-byte slot to the component's block,
// which holds its counts and, side by side, what its net lines show: the
// refdes field ("%-16s  ") and each pin's text, whole and with its refdes
// prefix stripped. A cursor resolves the keys of the pins some way ahead
// of the writer (see PinCursor).
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
        // The refdes padded to 16, then two blanks: what a net line shows
        // before the pin text.
        const char* field() const { return text(words_[kField]); }
        std::size_t fieldLength() const { return words_[kField + 1] - words_[kField] - 1; }
        // REQUIRES: 0 <= pinIndex < pinCount(). The pin's text, whole.
        const char* pinText(std::int32_t pinIndex) const { return text(whole(pinIndex)); }
        std::size_t pinTextLength(std::int32_t pinIndex) const { return whole(pinIndex + 1) - whole(pinIndex) - 1; }
        // REQUIRES: 0 <= pinIndex < pinCount(). The pin's text as a line
        // with this refdes shows it (stripPinPrefix).
        const char* shownText(std::int32_t pinIndex) const { return text(shown(pinIndex)); }
        std::size_t shownTextLength(std::int32_t pinIndex) const { return whole(pinIndex + 1) - shown(pinIndex) - 1; }

    private:
        friend class NetlistLookup;
        // The block's words: the counts, the byte offsets (from the block's
        // start) of the field and, for each pin, of its whole and its shown
        // text, and one more behind the last text; the texts follow, each
        // with its terminator.
        enum : std::size_t { kPinCount, kPackageIndex, kComponentIndex, kField, kPins };
        explicit Component(const std::uint32_t* words) : words_(words) {}
        std::uint32_t whole(std::int32_t pinIndex) const {
            return words_[kPins + 2 * static_cast<std::size_t>(pinIndex)];
        }
        std::uint32_t shown(std::int32_t pinIndex) const {
            return words_[kPins + 2 * static_cast<std::size_t>(pinIndex) + 1];
        }
        const char* text(std::uint32_t offset) const { return reinterpret_cast<const char*>(words_) + offset; }
        const std::uint32_t* words_ = nullptr;
    };

    // The component at a place that resolve() gave.
    Component componentAt(std::uint32_t place) const { return Component(blocks_.data() + place); }
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

    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;
    // The place of the first component whose key equals key, or kNone.
    std::uint32_t resolve(const char* key) const;

private:
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
};

// The net pins of a design in the order the writer meets them, each with the
// place of its component, resolved kAhead pins before the writer takes it:
// the slot a key leads to is a likely cache miss, and one that no later
// step waits for costs little. (Asking the cache for the block too gained
// nothing measurable.) The writer takes one a pin.
class PinCursor {
public:
    PinCursor(NetList& nets, const NetlistLookup& lookup);
    // The place of the next pin's component (kNone: no component has its
    // key); the cursor then resolves one pin further ahead.
    std::uint32_t take();

private:
    static constexpr std::size_t kAhead = 16;
    void resolveNext();

    const NetlistLookup& lookup_;
    NetList::Node* net_ = nullptr;
    NetPinList::Node* pin_ = nullptr;
    std::uint32_t places_[kAhead] = {};
    std::size_t next_ = 0;  // the ring's slot of the next pin to take
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
                  NetlistLookup& lookup, PinCursor& cursor);

// "NETLIST", one block per net, "END_NETLIST".
void writeNetlistSection(NetList& nets, TextOutput& out, NetlistLookup& lookup);
