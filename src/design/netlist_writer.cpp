// The VRN file, from first byte to last ("\n" is the platform's line end,
// -> a tab, . a blank, W = longestNetName + 5):
//
//   DESIGN->name                      the design name, made safe
//   (empty)
//   ! Netlist Converter <title> --> Vrn, version <version>
//   ! <rights line>
//   (empty)
//   PART_LIST
//   ->refdes......->typeName          plain part line, refdes filled to 12
//   ->refdes......->text->!..???      commented part line, text a fallback
//   END_PART_LIST
//   (empty)
//   (empty)
//   NETLIST
//   ->NAME.....refdes..........  pin   first pin: name filled to W, refdes to 16
//   ->.........refdes..........  pin;  further pins: W blanks; ';' ends the net
//   ->NAME.....;                      a net without pins
//   END_NETLIST
//   (empty)
//   END_DESIGN
//
// A net pin names its component by key and its pin by index. The writer
// finds them through ComponentLines, which gives exactly what a scan of the
// lists from index 0 would: the first component with the key, its refdes,
// its pins by index, the packages by number.
#include "design/netlist_writer.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "containers/abnormal_end.h"
#include "design/design.h"
#include "design/product.h"
#include "design/text_output.h"
#include "design/vrn_file.h"
#include "platform/platform.h"

const char* stripPinPrefix(std::size_t refdesLength, std::string_view pinText) {
    if (refdesLength >= pinText.size() || pinText[refdesLength] != '-') return nullptr;
    // The characters before that position are not compared, on purpose.
    return static_cast<const char*>(std::memchr(pinText.data(), '-', pinText.size())) + 1;
}

namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFFu;

// What the net lines show of one component, in one block of 4-byte words
// and then bytes, so that a net pin reads one place:
//
//   pin count | package number | place in the components | refdes length
//   for each pin: offset of its text from the block's start | its length
//   the field: the refdes, blanks up to 16, two blanks
//   the pin texts, back to back
constexpr std::size_t kHeaderWords = 4;
constexpr std::size_t kWordsPerPin = 2;

std::size_t fieldLength(std::size_t refdesLength) { return (refdesLength > 16 ? refdesLength : 16) + 2; }

class Component {
public:
    explicit Component(const std::uint32_t* block) : block_(block) {}
    std::int32_t pinCount() const { return static_cast<std::int32_t>(block_[0]); }
    std::int32_t packageIndex() const { return static_cast<std::int32_t>(block_[1]); }
    std::uint32_t listIndex() const { return block_[2]; }
    std::size_t refdesLength() const { return block_[3]; }
    // "%-16s  " of the refdes.
    std::string_view field() const {
        const std::size_t words = kHeaderWords + kWordsPerPin * static_cast<std::size_t>(pinCount());
        return {bytes() + words * sizeof(std::uint32_t), fieldLength(refdesLength())};
    }
    // REQUIRES: 0 <= pinIndex < pinCount().
    std::string_view pinText(std::int32_t pinIndex) const {
        const std::uint32_t* pin = block_ + kHeaderWords + kWordsPerPin * static_cast<std::size_t>(pinIndex);
        return {bytes() + pin[0], pin[1]};
    }

private:
    const char* bytes() const { return reinterpret_cast<const char*>(block_); }
    const std::uint32_t* block_;
};

// A block for each component whose key no earlier one has, and the way from
// a net pin's key to it, built in one pass over the components before the
// file's first byte. A net pin meets components in no useful order, so its
// key leads through one 4-byte slot to one block that holds all its line
// shows: a likely cache miss or two, where the model's lists and texts
// would cost one for every node and text on the way.
class ComponentLines {
public:
    explicit ComponentLines(Design& design);

    // The place of the block of the first component whose key equals key,
    // or kNone.
    std::uint32_t find(const char* key) const;
    // REQUIRES: place came from find() and is not kNone.
    Component at(std::uint32_t place) const { return Component(blocks_.data() + place); }
    // The key of the component, for the ERR lines.
    const char* keyOf(const Component& component) const { return parts_[component.listIndex()]->text(); }
    // The pin count of the package with this number; a number the packages
    // don't hold ends the run, as the unguarded fetch of the package does.
    std::int32_t packagePinCount(std::int32_t packageIndex) const {
        if (packageIndex < 0 || static_cast<std::size_t>(packageIndex) >= packagePins_.size()) abnormalEnd();
        return packagePins_[static_cast<std::size_t>(packageIndex)];
    }

private:
    // "T12" / "B7" as the components reader writes them, with a number
    // below numberLimit_: the side (0 top, 1 bottom) and the number.
    bool numberedKey(const char* key, int* side, std::size_t* number) const;
    std::uint32_t addBlock(const Part& part, std::uint32_t listIndex);

    std::vector<std::uint32_t> blocks_;  // back to back
    std::vector<const Part*> parts_;     // the components, in list order
    std::vector<std::int32_t> packagePins_;
    // The readers number each side from 0, so a slot per number; a key
    // numbered far beyond the components is looked up as any other text.
    std::size_t numberLimit_ = 0;
    std::vector<std::uint32_t> byNumber_[2];  // kNone: no component
    std::unordered_map<std::string, std::uint32_t> otherKeys_;
};

ComponentLines::ComponentLines(Design& design) {
    const std::size_t count = static_cast<std::size_t>(design.components.itemCount());
    numberLimit_ = 2 * count + 16;
    parts_.reserve(count);
    // Room for components of some 18 pins on average: capacity that is never
    // touched costs address space only, and a move of the blocks is saved.
    blocks_.reserve(count * 64);
    for (const Part* part : design.components) {
        const std::uint32_t listIndex = static_cast<std::uint32_t>(parts_.size());
        parts_.push_back(part);
        int side = 0;
        std::size_t number = 0;
        if (numberedKey(part->text(), &side, &number)) {
            std::vector<std::uint32_t>& slots = byNumber_[side];
            if (number >= slots.size()) slots.resize(number + 1, kNone);
            if (slots[number] == kNone) slots[number] = addBlock(*part, listIndex);
        } else {
            // The first keeps its key; the others get no block at all.
            const auto added = otherKeys_.try_emplace(part->text(), kNone);
            if (added.second) added.first->second = addBlock(*part, listIndex);
        }
    }
    for (const Part* package : design.packages) packagePins_.push_back(package->pins.itemCount());
}

// Draws the block that Component reads.
std::uint32_t ComponentLines::addBlock(const Part& part, std::uint32_t listIndex) {
    const std::size_t pinCount = static_cast<std::size_t>(part.pins.itemCount());
    const std::size_t refdesLength = static_cast<std::size_t>(part.refdes.length());
    const std::size_t field = fieldLength(refdesLength);
    const std::size_t textsFrom = (kHeaderWords + kWordsPerPin * pinCount) * sizeof(std::uint32_t);
    std::size_t bytes = textsFrom + field;
    for (const PartPin* pin : part.pins) bytes += static_cast<std::size_t>(pin->pinText.length());
    const std::size_t start = blocks_.size();
    const std::size_t words = (bytes + sizeof(std::uint32_t) - 1) / sizeof(std::uint32_t);
    // Offsets are 4 bytes: a model too large for them fails the write as an
    // allocation failure does.
    if (bytes > kNone || start + words >= kNone) throw std::bad_alloc();
    blocks_.resize(start + words);

    std::uint32_t* word = blocks_.data() + start;
    char* base = reinterpret_cast<char*>(word);
    *word++ = static_cast<std::uint32_t>(pinCount);
    *word++ = static_cast<std::uint32_t>(part.packageIndex);
    *word++ = listIndex;
    *word++ = static_cast<std::uint32_t>(refdesLength);
    std::size_t offset = textsFrom;
    std::memcpy(base + offset, part.refdes.text(), refdesLength);
    std::memset(base + offset + refdesLength, ' ', field - refdesLength);
    offset += field;
    for (const PartPin* pin : part.pins) {
        const std::size_t length = static_cast<std::size_t>(pin->pinText.length());
        *word++ = static_cast<std::uint32_t>(offset);
        *word++ = static_cast<std::uint32_t>(length);
        std::memcpy(base + offset, pin->pinText.text(), length);
        offset += length;
    }
    return static_cast<std::uint32_t>(start);
}

bool ComponentLines::numberedKey(const char* key, int* side, std::size_t* number) const {
    if (key[0] != 'T' && key[0] != 'B') return false;
    const char* digits = key + 1;
    // One spelling per number: no sign, no leading zero.
    if (digits[0] < '0' || digits[0] > '9' || (digits[0] == '0' && digits[1] != '\0')) return false;
    std::size_t value = 0;
    for (const char* p = digits; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9') return false;
        value = value * 10 + static_cast<std::size_t>(*p - '0');
        if (value >= numberLimit_) return false;
    }
    *side = key[0] == 'T' ? 0 : 1;
    *number = value;
    return true;
}

std::uint32_t ComponentLines::find(const char* key) const {
    int side = 0;
    std::size_t number = 0;
    if (numberedKey(key, &side, &number)) return number < byNumber_[side].size() ? byNumber_[side][number] : kNone;
    const auto found = otherKeys_.find(key);
    return found != otherKeys_.end() ? found->second : kNone;
}

// The writer's one walk over the nets and their pins: each pin with the
// place of its component, and each net without pins once, with no pin. The
// keys are resolved kAhead pins before the writer takes them: the slot a key
// leads to is a likely cache miss, and one that no later step waits for
// costs little (the write took 66 against 69 ms at 100k components, 149
// against 160 ms at 200k).
class NetPinCursor {
public:
    struct Step {
        const Net* net = nullptr;
        const NetPin* pin = nullptr;  // null for a net without pins
        std::int32_t index = 0;       // the pin's place in its net
        std::uint32_t place = kNone;  // of the pin's component
    };

    NetPinCursor(const NetList& nets, const ComponentLines& lines)
        : lines_(lines), net_(nets.begin()), nets_(nets.end()), pin_(nullptr) {
        if (net_ != nets_) pin_ = (*net_)->pins.begin();
        for (Step& step : ahead_) step = walk();
    }

    // The next step, false after the last.
    bool next(Step* step) {
        Step& slot = ahead_[taken_ % kAhead];
        if (slot.net == nullptr) return false;
        *step = slot;
        slot = walk();
        ++taken_;
        return true;
    }

private:
    static constexpr std::size_t kAhead = 16;

    Step walk() {
        Step step;
        if (net_ == nets_) return step;
        const Net* net = *net_;
        step.net = net;
        step.index = index_;
        if (pin_ != net->pins.end()) {
            step.pin = *pin_;
            step.place = lines_.find(step.pin->key.text());
            ++pin_;
            ++index_;
        }
        if (pin_ == net->pins.end()) {
            ++net_;
            if (net_ != nets_) pin_ = (*net_)->pins.begin();
            index_ = 0;
        }
        return step;
    }

    const ComponentLines& lines_;
    ItemList<Net>::Iterator net_;
    const ItemList<Net>::Iterator nets_;  // the end of the nets
    ItemList<NetPin>::Iterator pin_;
    std::int32_t index_ = 0;
    Step ahead_[kAhead];
    std::size_t taken_ = 0;
};

// What a net's pins hand on to the pins after them: the package number of
// the last component found, and the text of the last pin found in it. A
// pin whose key matches nothing shows that text behind an empty refdes.
struct CarriedValues {
    bool hasPackage = false;
    std::int32_t packageIndex = 0;
    std::string_view pinText = "";
};

// "NETLIST", a block for each net, "END_NETLIST".
class NetlistSection {
public:
    NetlistSection(TextOutput& out, const ComponentLines& lines, std::int32_t longestNetName)
        : out_(out), lines_(lines), longest_(longestNetName) {}

    void write(const NetList& nets) {
        out_.put("NETLIST\n");
        NetPinCursor cursor(nets, lines_);
        for (NetPinCursor::Step step; cursor.next(&step);) {
            if (step.index == 0) startNet(*step.net);
            if (step.pin == nullptr) {
                nameFill();
                out_.put(";\n", 2);
            } else {
                writePin(step, step.index == step.net->pins.itemCount() - 1);
            }
        }
        out_.put("END_NETLIST\n");
    }

private:
    void startNet(const Net& net) {
        // An interrupted run stops here, and its unfinished file goes.
        platform::stopIfInterrupted();
        nameLength_ = std::strlen(net.text());
        out_.put('\t');
        out_.put(net.text(), nameLength_);
        carried_ = CarriedValues();
    }

    // The blanks behind a net name on its first line: from the name's length
    // up to W, none when the name is W long or longer.
    void nameFill() { out_.blanks(static_cast<std::int64_t>(longest_) + 5 - static_cast<std::int64_t>(nameLength_)); }

    // One pin's line, or its ERR lines. A failed pin writes no line, not even
    // the fill of a first line or the ';' of a last one.
    void writePin(const NetPinCursor::Step& step, bool last) {
        static const char kNoRefdes[] = "                  ";
        const std::int32_t pinIndex = step.pin->pinIndex;
        std::string_view field(kNoRefdes, sizeof kNoRefdes - 1);
        std::size_t refdesLength = 0;
        bool pinFound = true;
        std::optional<Component> component;
        if (step.place != kNone) {
            component = lines_.at(step.place);
            field = component->field();
            refdesLength = component->refdesLength();
            carried_.hasPackage = true;
            carried_.packageIndex = component->packageIndex();
            pinFound = pinIndex < component->pinCount();
            if (!pinFound) {
                const char* key = lines_.keyOf(*component);
                out_.print("\t! ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pinIndex);
                std::printf("ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pinIndex);
            }
        }
        // The package's pin is fetched for its range alone: nothing of it is
        // written. Before the first component found nothing is carried, so
        // there is no package to fetch.
        if (carried_.hasPackage) {
            const std::int32_t packagePins = lines_.packagePinCount(carried_.packageIndex);
            if (pinFound && (pinIndex < 0 || pinIndex >= packagePins)) abnormalEnd();
        }
        if (!pinFound) return;
        if (component) carried_.pinText = component->pinText(pinIndex);
        std::string_view shown = carried_.pinText;
        if (const char* stripped = stripPinPrefix(refdesLength, shown)) shown.remove_prefix(stripped - shown.data());

        if (step.index == 0) {
            nameFill();
        } else {
            out_.put('\t');
            out_.blanks(static_cast<std::int64_t>(longest_) + 5);
        }
        // "%-16s  %s\n", with ";" before the line end on the last pin.
        out_.put(field.data(), field.size());
        out_.put(shown.data(), shown.size());
        if (last) out_.put(";\n", 2);
        else out_.put('\n');
    }

    TextOutput& out_;
    const ComponentLines& lines_;
    const std::int32_t longest_;
    std::size_t nameLength_ = 0;
    CarriedValues carried_;
};

}  // namespace

void Part::writePartLine(TextOutput& out) {
    if (state != 1) return;
    const char* substitute = nullptr;
    if (typeName.equals("???")) {
        if (!manufacturerPartNo.isEmpty()) substitute = manufacturerPartNo.text();
        else if (!value.isEmpty()) substitute = value.text();
        else if (!partName.isEmpty()) substitute = partName.text();
    }
    // "\t%-12s\t%s\n", or "\t%-12s\t%s\t!  %s\n" with a substitute.
    out.put('\t');
    out.padded(refdes.text(), 12);
    out.put('\t');
    if (substitute != nullptr) {
        out.put(substitute);
        out.put("\t!  ", 4);
    }
    out.put(typeName.text());
    out.put('\n');
}

void Design::writePartList(TextOutput& out) {
    out.put("PART_LIST\n");
    for (Part* component : components) {
        // An interrupted run stops here, and its unfinished file goes.
        platform::stopIfInterrupted();
        if (component->pins.itemCount() > 0) component->writePartLine(out);
    }
    out.put("END_PART_LIST\n\n");
}

bool Design::writeNetlistFile(const char* path, TextString& designName) {
    VrnFile file;
    if (!file.open(path)) return false;
    TextOutput out(file.stream());
    try {
        makeNameSafe(designName);
        if (compareIgnoringCase(designName.text(), "NETLIST") == 0 ||
            compareIgnoringCase(designName.text(), "PART_LIST") == 0) {
            const TextString original(designName);
            designName.assign("Vrn_");
            designName.append(original);
        }
        // Built before the first byte is gathered: when memory runs out
        // here, the file stays empty.
        const ComponentLines lines(*this);
        out.print("DESIGN\t%s\n\n", designName.text());
        out.print("! Netlist Converter %s --> Vrn, version %s\n", kProgramTitle, kVersionNumber);
        out.print("! Copyright (c) 2004-2023 %s. All rights reserved.\n", kRightsHolder);
        out.put('\n');
        writePartList(out);
        out.put('\n');
        NetlistSection(out, lines, longestNetName).write(nets);
        out.put("\nEND_DESIGN\n");
    } catch (...) {
        // Memory ran out: what was gathered goes to the file, which is left
        // open and unfinished.
        out.flush();
        file.keepUnfinished();
        return false;
    }
    out.flush();
    if (out.failed()) file.writeFailed();
    // A file that could not be written whole is removed.
    return file.finish();
}
