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

const char kLineEnd[] = "\n";

void writeBlanks(std::FILE* stream, std::int64_t count) {
    static const char kBlanks[] = "                                                                ";
    constexpr std::int64_t kRun = sizeof kBlanks - 1;
    while (count > 0) {
        const std::int64_t run = count < kRun ? count : kRun;
        std::fwrite(kBlanks, 1, static_cast<std::size_t>(run), stream);
        count -= run;
    }
}

// The blanks behind a net name on its first line: from the name's length up
// to W, none when the name is W long or longer.
void writeNameFill(std::FILE* stream, std::int32_t nameLength, std::int32_t longestNetName) {
    writeBlanks(stream, static_cast<std::int64_t>(longestNetName) + 5 - nameLength);
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
    const std::int32_t componentCount = design.components.itemCount();
    componentPins_.resize(static_cast<std::size_t>(componentCount));
    byKey_.reserve(static_cast<std::size_t>(componentCount));
    std::int32_t i = 0;
    for (auto* node = design.components.head; node != nullptr; node = node->next, ++i) {
        byKey_.emplace(std::string_view(node->item->text()), i);  // the first keeps its key
        components_.push_back(node->item);
    }
    for (auto* node = design.packages.head; node != nullptr; node = node->next) {
        packages_.push_back(node->item);
    }
}

std::int32_t NetlistLookup::componentByKey(const TextString& key) const {
    const auto found = byKey_.find(std::string_view(key.text()));
    return found == byKey_.end() ? -1 : found->second;
}

const std::vector<PartPin*>& NetlistLookup::pinsOf(std::int32_t component) {
    std::vector<PartPin*>& pins = componentPins_[static_cast<std::size_t>(component)];
    Part* part = components_[static_cast<std::size_t>(component)];
    if (pins.empty() && part->pins.itemCount() > 0) {
        pins.reserve(static_cast<std::size_t>(part->pins.itemCount()));
        for (auto* node = part->pins.head; node != nullptr; node = node->next) pins.push_back(node->item);
    }
    return pins;
}

Part* NetlistLookup::packageAt(std::int32_t index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= packages_.size()) abnormalEnd();
    return packages_[static_cast<std::size_t>(index)];
}

void NetlistLookup::checkPackagePin(Part* package, std::int32_t pinIndex) {
    // The package pin is fetched only for its range: the pin itself is unused.
    if (pinIndex < 0 || pinIndex >= package->pins.itemCount()) abnormalEnd();
}

void writeNetPins(NetPinList& pins, std::FILE* stream, Design& design, std::int32_t nameLength,
                  NetlistLookup& lookup) {
    const std::int32_t longest = design.longestNetName;
    const std::int32_t n = pins.itemCount();
    if (n == 0) {
        writeNameFill(stream, nameLength, longest);
        std::fputs(";", stream);
        std::fputs(kLineEnd, stream);
        return;
    }
    bool pinOk = true;
    bool packageCarried = false;
    std::int32_t carriedPackageIndex = 0;
    const PartPin* carriedPartPin = nullptr;
    for (std::int32_t i = 0; i < n; ++i) {
        NetPin* pin = pins.itemAt(i);
        const char* refdes = "";
        const std::int32_t found = lookup.componentByKey(pin->key);
        if (found >= 0) {
            Part* component = lookup.component(found);
            refdes = component->refdes.text();
            carriedPackageIndex = component->packageIndex;
            packageCarried = true;
            if (!(pin->pinIndex < component->pins.itemCount())) {
                std::fprintf(stream, "\t! ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", component->text(),
                             pin->pinIndex);
                std::printf("ERR: Component(\"%s\"), Pin (\"%d\") not found.\n", component->text(), pin->pinIndex);
                pinOk = false;
            } else {
                carriedPartPin = lookup.pinsOf(found)[static_cast<std::size_t>(pin->pinIndex)];
            }
        }
        // Before the first resolved pin nothing is carried: no package to fetch.
        Part* package = packageCarried ? lookup.packageAt(carriedPackageIndex) : nullptr;
        if (pinOk) {
            if (package != nullptr) lookup.checkPackagePin(package, pin->pinIndex);
            const char* pinText = carriedPartPin != nullptr ? carriedPartPin->pinText.text() : "";
            const char* stripped = stripPinPrefix(refdes, pinText);
            if (i == 0) {
                writeNameFill(stream, nameLength, longest);
            } else {
                std::fputs("\t", stream);
                writeBlanks(stream, static_cast<std::int64_t>(longest) + 5);
            }
            std::fprintf(stream, i == n - 1 ? "%-16s  %s;\n" : "%-16s  %s\n", refdes,
                         stripped != nullptr ? stripped : pinText);
        }
        pinOk = true;
    }
}

void Net::write(std::FILE* stream, NetlistLookup& lookup) {
    if (owner == nullptr) abnormalEnd();  // a Net is written only from its Design
    std::fprintf(stream, "\t%s", text());
    writeNetPins(pins, stream, *owner, length(), lookup);
}

void writeNetlistSection(NetList& nets, std::FILE* stream, NetlistLookup& lookup) {
    std::fputs("NETLIST\n", stream);
    const std::int32_t count = nets.itemCount();
    for (std::int32_t i = 0; i < count; ++i) nets.itemAt(i)->write(stream, lookup);
    std::fputs("END_NETLIST\n", stream);
}

void Part::writePartLine(std::FILE* stream) {
    if (state != 1) return;
    const char* substitute = nullptr;
    if (typeName.equals("???")) {
        if (!manufacturerPartNo.isEmpty()) substitute = manufacturerPartNo.text();
        else if (!value.isEmpty()) substitute = value.text();
        else if (!partName.isEmpty()) substitute = partName.text();
    }
    if (substitute != nullptr) {
        std::fprintf(stream, "\t%-12s\t%s\t!  %s\n", refdes.text(), substitute, typeName.text());
    } else {
        std::fprintf(stream, "\t%-12s\t%s\n", refdes.text(), typeName.text());
    }
}

void Design::writePartList(std::FILE* stream) {
    std::fputs("PART_LIST\n", stream);
    const std::int32_t count = components.itemCount();
    for (std::int32_t i = 0; i < count; ++i) {
        Part* component = components.itemAt(i);
        if (component->pins.itemCount() > 0) component->writePartLine(stream);
    }
    std::fputs("END_PART_LIST\n\n", stream);
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
        std::fprintf(stream, "DESIGN\t%s\n\n", designName.text());
        std::fprintf(stream, "! Netlist Converter %s --> Vrn, version %s\n", kProgramTitle, kVersionNumber);
        std::fprintf(stream, "! Copyright (c) 2004-2023 %s. All rights reserved.\n", kRightsHolder);
        std::fputs("\n", stream);
        writePartList(stream);
        std::fputs("\n", stream);
        writeNetlistSection(nets, stream, lookup);
        std::fputs("\nEND_DESIGN\n", stream);
    } catch (...) {
        // Left unfinished and open, as an allocation failure leaves it.
        return false;
    }
    std::fclose(stream);
    return true;
}
