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
#include "frame/banner.h"

namespace {

// The blanks behind a net name on its first line: from the name's length up
// to W, none when the name is W long or longer.
void writeNameFill(TextOutput& out, std::int32_t nameLength, std::int32_t longestNetName) {
    out.blanks(static_cast<std::int64_t>(longestNetName) + 5 - nameLength);
}

}  // namespace

const char* stripPinPrefix(const char* refdes, const char* pinText) {
    const std::size_t r = std::strlen(refdes);
    const std::size_t p = std::strlen(pinText);
    if (r > p) return nullptr;
    if (pinText[r] != '-') return nullptr;
    // The characters before position r are not compared, on purpose.
    return std::strchr(pinText, '-') + 1;
}

NetlistLookup::NetlistLookup(Design& design) {
    const std::size_t count = static_cast<std::size_t>(design.components.itemCount());
    numberLimit_ = 2 * count + 16;
    byNumber_[0].assign(numberLimit_, -1);
    byNumber_[1].assign(numberLimit_, -1);
    components_.reserve(count);
    // Offsets first: texts_ grows while it is filled.
    std::vector<std::size_t> refdesOffsets;
    std::vector<std::size_t> pinTextOffsets;
    const auto keep = [this](const TextString& text) {
        const std::size_t offset = texts_.size();
        texts_.insert(texts_.end(), text.text(), text.text() + text.length() + 1);
        return offset;
    };
    std::int32_t i = 0;
    for (auto* node = design.components.head; node != nullptr; node = node->next, ++i) {
        const Part* part = node->item;
        refdesOffsets.push_back(keep(part->refdes));
        components_.push_back({part, nullptr, part->pins.itemCount(), part->packageIndex, pinTextOffsets.size()});
        for (auto* pin = part->pins.head; pin != nullptr; pin = pin->next) {
            pinTextOffsets.push_back(keep(pin->item->pinText));
        }
        int side = 0;
        std::size_t number = 0;
        if (numberedKey(part->text(), &side, &number)) {
            if (byNumber_[side][number] < 0) byNumber_[side][number] = i;
        } else {
            otherKeys_.emplace(part->text(), i);  // the first keeps its key
        }
    }
    for (std::size_t c = 0; c < components_.size(); ++c) components_[c].refdes = texts_.data() + refdesOffsets[c];
    pinTexts_.reserve(pinTextOffsets.size());
    for (const std::size_t offset : pinTextOffsets) pinTexts_.push_back(texts_.data() + offset);
    for (auto* node = design.packages.head; node != nullptr; node = node->next) {
        packages_.push_back(node->item);
    }
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

const NetlistLookup::Component* NetlistLookup::componentByKey(const TextString& key) const {
    int side = 0;
    std::size_t number = 0;
    std::int32_t index = -1;
    if (numberedKey(key.text(), &side, &number)) {
        index = byNumber_[side][number];
    } else {
        const auto found = otherKeys_.find(key.text());
        if (found != otherKeys_.end()) index = found->second;
    }
    return index < 0 ? nullptr : &components_[static_cast<std::size_t>(index)];
}

Part* NetlistLookup::packageAt(std::int32_t index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= packages_.size()) abnormalEnd();
    return packages_[static_cast<std::size_t>(index)];
}

void NetlistLookup::checkPackagePin(Part* package, std::int32_t pinIndex) {
    // The package pin is fetched only for its range: the pin itself is unused.
    if (pinIndex < 0 || pinIndex >= package->pins.itemCount()) abnormalEnd();
}

void writeNetPins(NetPinList& pins, TextOutput& out, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup) {
    const std::int32_t longest = design.longestNetName;
    const std::int32_t n = pins.itemCount();
    if (n == 0) {
        writeNameFill(out, nameLength, longest);
        out.put(";\n", 2);
        return;
    }
    bool pinOk = true;
    bool packageCarried = false;
    std::int32_t carriedPackageIndex = 0;
    const char* carriedPinText = nullptr;
    for (std::int32_t i = 0; i < n; ++i) {
        NetPin* pin = pins.itemAt(i);
        const char* refdes = "";
        if (const NetlistLookup::Component* component = lookup.componentByKey(pin->key)) {
            refdes = component->refdes;
            carriedPackageIndex = component->packageIndex;
            packageCarried = true;
            if (!(pin->pinIndex < component->pinCount)) {
                const char* key = component->part->text();
                out.print("\t! ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pin->pinIndex);
                std::printf("ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", key, pin->pinIndex);
                pinOk = false;
            } else {
                carriedPinText = lookup.pinText(*component, pin->pinIndex);
            }
        }
        // Before the first resolved pin nothing is carried: no package to fetch.
        Part* package = packageCarried ? lookup.packageAt(carriedPackageIndex) : nullptr;
        if (pinOk) {
            if (package != nullptr) lookup.checkPackagePin(package, pin->pinIndex);
            const char* pinText = carriedPinText != nullptr ? carriedPinText : "";
            const char* stripped = stripPinPrefix(refdes, pinText);
            if (i == 0) {
                writeNameFill(out, nameLength, longest);
            } else {
                out.put('\t');
                out.blanks(static_cast<std::int64_t>(longest) + 5);
            }
            // "%-16s  %s\n", with ";" before the line end on the last pin.
            out.padded(refdes, 16);
            out.put("  ", 2);
            out.put(stripped != nullptr ? stripped : pinText);
            if (i == n - 1) out.put(";\n", 2);
            else out.put('\n');
        }
        pinOk = true;
    }
}

void Net::write(TextOutput& out, NetlistLookup& lookup) {
    if (owner == nullptr) abnormalEnd();  // a Net is written only from its Design
    const std::size_t nameLength = std::strlen(text());
    out.put('\t');
    out.put(text(), nameLength);
    writeNetPins(pins, out, *owner, static_cast<std::int32_t>(nameLength), lookup);
}

void writeNetlistSection(NetList& nets, TextOutput& out, NetlistLookup& lookup) {
    out.put("NETLIST\n");
    const std::int32_t count = nets.itemCount();
    for (std::int32_t i = 0; i < count; ++i) nets.itemAt(i)->write(out, lookup);
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
    std::FILE* stream = std::fopen(path, "w");
    if (stream == nullptr) return false;
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
        TextOutput out(stream);
        out.print("DESIGN\t%s\n\n", designName.text());
        out.print("! Netlist Converter %s --> Vrn, version %s\n", kProgramTitle, kVersionNumber);
        out.print("! Copyright (c) 2004-2023 %s. All rights reserved.\n", kRightsHolder);
        out.put('\n');
        writePartList(out);
        out.put('\n');
        writeNetlistSection(nets, out, lookup);
        out.put("\nEND_DESIGN\n");
    } catch (...) {
        // Left unfinished and open, as an allocation failure leaves it.
        return false;
    }
    std::fclose(stream);
    return true;
}
