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
#include "design/netlist_writer.h"

#include <cstring>
#include <new>

#include "design/design.h"
#include "design/product.h"
#include "design/vrn_file.h"

namespace {

// The blanks behind a net name on its first line: from the name's length up
// to W, none when the name is W long or longer.
void writeNameFill(TextOutput& out, std::int32_t nameLength, std::int32_t longestNetName) {
    out.blanks(static_cast<std::int64_t>(longestNetName) + 5 - nameLength);
}

}  // namespace

const char* stripPinPrefix(std::size_t refdesLength, const char* pinText, std::size_t pinLength) {
    if (refdesLength >= pinLength || pinText[refdesLength] != '-') return nullptr;
    // The characters before that position are not compared, on purpose.
    return static_cast<const char*>(std::memchr(pinText, '-', pinLength)) + 1;
}

NetlistLookup::NetlistLookup(Design& design) {
    const std::size_t count = static_cast<std::size_t>(design.components.itemCount());
    numberLimit_ = 2 * count + 16;
    parts_.reserve(count);
    // Room for components of some 18 pins on average: capacity that is never
    // touched costs address space only, and a move of the blocks is saved.
    blocks_.reserve(count * 64);
    std::size_t i = 0;
    for (auto* node = design.components.head; node != nullptr; node = node->next, ++i) {
        const Part* part = node->item;
        parts_.push_back(part);
        int side = 0;
        std::size_t number = 0;
        if (numberedKey(part->text(), &side, &number)) {
            std::vector<std::uint32_t>& slots = byNumber_[side];
            // The readers number each side from 0: the slots grow with them.
            if (number >= slots.size()) slots.resize(number + 1, kNone);
            if (slots[number] == kNone) slots[number] = addBlock(*part, i);
        } else {
            // The first keeps its key; the others get no block at all.
            const auto added = otherKeys_.try_emplace(part->text(), kNone);
            if (added.second) added.first->second = addBlock(*part, i);
        }
    }
    for (auto* node = design.packages.head; node != nullptr; node = node->next) {
        packagePins_.push_back(node->item->pins.itemCount());
    }
}

std::uint32_t NetlistLookup::addBlock(const Part& part, std::size_t componentIndex) {
    const std::size_t start = blocks_.size();
    const std::size_t pinCount = static_cast<std::size_t>(part.pins.itemCount());
    const std::size_t refdesLength = static_cast<std::size_t>(part.refdes.length());
    // "%-16s  ": the refdes, blanks up to 16, two more.
    const std::size_t fieldLength = (refdesLength > 16 ? refdesLength : 16) + 2;
    const std::size_t textsFrom = (Component::kPins + 2 * pinCount + 1) * sizeof(std::uint32_t);
    std::size_t bytes = textsFrom + fieldLength + 1;
    for (auto* pin = part.pins.head; pin != nullptr; pin = pin->next) {
        bytes += static_cast<std::size_t>(pin->item->pinText.length()) + 1;
    }
    const std::size_t words = (bytes + sizeof(std::uint32_t) - 1) / sizeof(std::uint32_t);
    // Offsets are 4 bytes: a model too large for them fails the write as an
    // allocation failure does.
    if (bytes > kNone || start + words >= kNone) throw std::bad_alloc();
    blocks_.resize(start + words);
    std::uint32_t* block = blocks_.data() + start;
    char* base = reinterpret_cast<char*>(block);
    block[Component::kPinCount] = static_cast<std::uint32_t>(pinCount);
    block[Component::kPackageIndex] = static_cast<std::uint32_t>(part.packageIndex);
    block[Component::kComponentIndex] = static_cast<std::uint32_t>(componentIndex);
    std::size_t offset = textsFrom;
    block[Component::kField] = static_cast<std::uint32_t>(offset);
    std::memcpy(base + offset, part.refdes.text(), refdesLength);
    std::memset(base + offset + refdesLength, ' ', fieldLength - refdesLength);
    base[offset + fieldLength] = '\0';
    offset += fieldLength + 1;
    std::size_t k = Component::kPins;
    for (auto* pin = part.pins.head; pin != nullptr; pin = pin->next, k += 2) {
        const TextString& text = pin->item->pinText;
        const std::size_t length = static_cast<std::size_t>(text.length());
        std::memcpy(base + offset, text.text(), length + 1);
        const char* stripped = stripPinPrefix(refdesLength, base + offset, length);
        block[k] = static_cast<std::uint32_t>(offset);
        block[k + 1] = static_cast<std::uint32_t>(stripped != nullptr ? stripped - base : offset);
        offset += length + 1;
    }
    block[k] = static_cast<std::uint32_t>(offset);
    return static_cast<std::uint32_t>(start);
}

bool NetlistLookup::numberedKey(const char* key, int* side, std::size_t* number) const {
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

std::uint32_t NetlistLookup::resolve(const char* key) const {
    int side = 0;
    std::size_t number = 0;
    if (numberedKey(key, &side, &number)) return number < byNumber_[side].size() ? byNumber_[side][number] : kNone;
    const auto found = otherKeys_.find(key);
    return found != otherKeys_.end() ? found->second : kNone;
}

PinCursor::PinCursor(NetList& nets, const NetlistLookup& lookup) : lookup_(lookup), net_(nets.head) {
    if (net_ != nullptr) pin_ = net_->item->pins.head;
    for (std::size_t i = 0; i < kAhead; ++i) resolveNext();
}

void PinCursor::resolveNext() {
    while (pin_ == nullptr && net_ != nullptr) {
        net_ = net_->next;
        if (net_ != nullptr) pin_ = net_->item->pins.head;
    }
    std::uint32_t place = NetlistLookup::kNone;
    if (pin_ != nullptr) {
        const NetPin* pin = pin_->item;
        place = lookup_.resolve(pin->key.text());
        pin_ = pin_->next;
    }
    places_[next_] = place;
    next_ = (next_ + 1) % kAhead;
}

std::uint32_t PinCursor::take() {
    const std::uint32_t place = places_[next_];
    resolveNext();
    return place;
}

void writeNetPins(NetPinList& pins, TextOutput& out, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup, PinCursor& cursor) {
    const std::int32_t longest = design.longestNetName;
    const std::int32_t n = pins.itemCount();
    if (n == 0) {
        writeNameFill(out, nameLength, longest);
        out.put(";\n", 2);
        return;
    }
    // A key that matches nothing shows the carried pin text behind an empty
    // refdes field.
    static const char kEmptyField[] = "                  ";
    bool pinOk = true;
    bool packageCarried = false;
    std::int32_t carriedPackageIndex = 0;
    const char* carriedPinText = "";
    std::size_t carriedPinLength = 0;
    for (std::int32_t i = 0; i < n; ++i) {
        const NetPin* pin = pins.itemAt(i);
        const std::uint32_t place = cursor.take();
        const char* field = kEmptyField;
        std::size_t fieldLength = sizeof kEmptyField - 1;
        const char* shown = nullptr;
        std::size_t shownLength = 0;
        if (place != NetlistLookup::kNone) {
            const NetlistLookup::Component component = lookup.componentAt(place);
            field = component.field();
            fieldLength = component.fieldLength();
            carriedPackageIndex = component.packageIndex();
            packageCarried = true;
            if (!(pin->pinIndex < component.pinCount())) {
                const char* key = lookup.componentKey(component);
                out.print("\t! ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pin->pinIndex);
                std::printf("ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pin->pinIndex);
                pinOk = false;
            } else {
                NetlistLookup::checkPinIndex(pin->pinIndex);
                carriedPinText = component.pinText(pin->pinIndex);
                carriedPinLength = component.pinTextLength(pin->pinIndex);
                shown = component.shownText(pin->pinIndex);
                shownLength = component.shownTextLength(pin->pinIndex);
            }
        }
        // Before the first resolved pin nothing is carried: no package to fetch.
        const std::int32_t packagePins = packageCarried ? lookup.packagePinCount(carriedPackageIndex) : 0;
        if (pinOk) {
            // The package pin is fetched only for its range: the pin itself is unused.
            if (packageCarried && (pin->pinIndex < 0 || pin->pinIndex >= packagePins)) abnormalEnd();
            if (shown == nullptr) {
                // The carried text, stripped as an empty refdes strips it.
                shown = carriedPinText;
                shownLength = carriedPinLength;
                if (const char* stripped = stripPinPrefix(0, carriedPinText, carriedPinLength)) {
                    shownLength -= static_cast<std::size_t>(stripped - shown);
                    shown = stripped;
                }
            }
            if (i == 0) {
                writeNameFill(out, nameLength, longest);
            } else {
                out.put('\t');
                out.blanks(static_cast<std::int64_t>(longest) + 5);
            }
            // "%-16s  %s\n", with ";" before the line end on the last pin.
            out.put(field, fieldLength);
            out.put(shown, shownLength);
            if (i == n - 1) out.put(";\n", 2);
            else out.put('\n');
        }
        pinOk = true;
    }
}

void Net::write(TextOutput& out, NetlistLookup& lookup, PinCursor& cursor) {
    if (owner == nullptr) abnormalEnd();  // a Net is written only from its Design
    const std::size_t nameLength = std::strlen(text());
    out.put('\t');
    out.put(text(), nameLength);
    writeNetPins(pins, out, *owner, static_cast<std::int32_t>(nameLength), lookup, cursor);
}

void writeNetlistSection(NetList& nets, TextOutput& out, NetlistLookup& lookup) {
    out.put("NETLIST\n");
    PinCursor cursor(nets, lookup);
    const std::int32_t count = nets.itemCount();
    for (std::int32_t i = 0; i < count; ++i) nets.itemAt(i)->write(out, lookup, cursor);
    out.put("END_NETLIST\n");
}

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
    const std::int32_t count = components.itemCount();
    for (std::int32_t i = 0; i < count; ++i) {
        Part* component = components.itemAt(i);
        if (component->pins.itemCount() > 0) component->writePartLine(out);
    }
    out.put("END_PART_LIST\n\n");
}

bool Design::writeNetlistFile(const char* path, TextString& designName) {
    VrnFile file;
    if (!file.open(path)) return false;
    try {
        makeNameSafe(designName);
        if (compareIgnoringCase(designName.text(), "NETLIST") == 0 ||
            compareIgnoringCase(designName.text(), "PART_LIST") == 0) {
            const TextString original(designName);
            designName.assign("Vrn_");
            designName.append(original);
        }
        NetlistLookup lookup(*this);
        // What was gathered goes to the stream also when an allocation fails.
        TextOutput out(file.stream());
        out.print("DESIGN\t%s\n\n", designName.text());
        out.print("! Netlist Converter %s --> Vrn, version %s\n", kProgramTitle, kVersionNumber);
        out.print("! Copyright (c) 2004-2023 %s. All rights reserved.\n", kRightsHolder);
        out.put('\n');
        writePartList(out);
        out.put('\n');
        writeNetlistSection(nets, out, lookup);
        out.put("\nEND_DESIGN\n");
        out.flush();
        if (out.failed()) file.writeFailed();
    } catch (...) {
        // Left unfinished and open, as an allocation failure leaves it.
        file.keepUnfinished();
        return false;
    }
    // A file that could not be written whole is removed.
    return file.finish();
}
