#include "support/reference_writer.h"

#include <cstdint>
#include <cstring>

#include "design/design.h"
#include "odb2vrn_version.h"

namespace reference {

namespace {

std::string padded(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

bool sameIgnoringCase(const std::string& a, const char* b) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    if (a.size() != std::strlen(b)) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

// The pin text behind a "refdes-" prefix, judged by lengths alone: null unless
// the pin text has a '-' where the refdes would end; then what follows the
// pin text's first '-'.
const char* stripPinPrefix(const char* refdes, const char* pinText) {
    const std::size_t r = std::strlen(refdes);
    if (r > std::strlen(pinText) || pinText[r] != '-') return nullptr;
    return std::strstr(pinText, "-") + 1;
}

struct Writer {
    Design& design;
    Vrn vrn;

    // False where itemAt of an index the list does not hold would end the run.
    bool inRange(std::int32_t index, std::int32_t count) {
        if (index >= 0 && index < count) return true;
        vrn.endsAbnormally = true;
        return false;
    }

    void partLine(Part& part) {
        if (part.state != 1) return;
        std::string text = part.typeName.text();
        std::string comment;
        if (part.typeName.equals("???")) {
            for (const TextString* fallback : {&part.manufacturerPartNo, &part.value, &part.partName}) {
                if (fallback->isEmpty()) continue;
                text = fallback->text();
                comment = std::string("\t!  ") + part.typeName.text();
                break;
            }
        }
        vrn.file += "\t" + padded(part.refdes.text(), 12) + "\t" + text + comment + "\n";
    }

    // The pins of one net, after "\t<name>". False once the run would end.
    bool netPins(Net& net) {
        const std::int32_t longest = design.longestNetName;
        const std::int64_t nameLength = net.length();
        const std::string fill(nameLength < longest + 5 ? static_cast<std::size_t>(longest + 5 - nameLength) : 0, ' ');
        const std::int32_t n = net.pins.itemCount();
        if (n == 0) {
            vrn.file += fill + ";\n";
            return true;
        }
        bool packageCarried = false;
        std::int32_t carriedPackage = 0;
        PartPin* carriedPin = nullptr;
        for (std::int32_t i = 0; i < n; ++i) {
            NetPin* pin = net.pins.itemAt(i);
            bool pinOk = true;
            std::string refdes;
            Part* component = nullptr;
            for (std::int32_t c = 0; c < design.components.itemCount() && component == nullptr; ++c) {
                if (std::strcmp(design.components.itemAt(c)->text(), pin->key.text()) == 0) {
                    component = design.components.itemAt(c);
                }
            }
            if (component != nullptr) {
                refdes = component->refdes.text();
                carriedPackage = component->packageIndex;
                packageCarried = true;
                if (!(pin->pinIndex < component->pins.itemCount())) {
                    const std::string error = "ERR: Component(\"" + std::string(component->text()) + "\"), Pin (\"" +
                                              std::to_string(pin->pinIndex) + "\") not found.\n";
                    vrn.file += "\t! " + error;
                    vrn.console += error;
                    pinOk = false;
                } else {
                    if (!inRange(pin->pinIndex, component->pins.itemCount())) return false;
                    carriedPin = component->pins.itemAt(pin->pinIndex);
                }
            }
            // Nothing carried yet: no package to fetch, no pin text.
            if (packageCarried && !inRange(carriedPackage, design.packages.itemCount())) return false;
            if (!pinOk) continue;
            if (packageCarried && !inRange(pin->pinIndex, design.packages.itemAt(carriedPackage)->pins.itemCount())) {
                return false;
            }
            const char* pinText = carriedPin != nullptr ? carriedPin->pinText.text() : "";
            const char* stripped = stripPinPrefix(refdes.c_str(), pinText);
            vrn.file += i == 0 ? fill : "\t" + std::string(static_cast<std::size_t>(longest) + 5, ' ');
            vrn.file += padded(refdes, 16) + "  " + (stripped != nullptr ? stripped : pinText);
            vrn.file += i == n - 1 ? ";\n" : "\n";
        }
        return true;
    }
};

}  // namespace

Vrn write(Design& design, const std::string& designName) {
    Writer writer{design, {}};
    Vrn& vrn = writer.vrn;
    std::string name = designName.c_str();  // a zero-terminated text
    for (char& c : name) {
        if (c == ' ' || (c >= '\t' && c <= '\r')) c = '_';
    }
    if (sameIgnoringCase(name, "NETLIST") || sameIgnoringCase(name, "PART_LIST")) name = "Vrn_" + name;
    vrn.file = "DESIGN\t" + name + "\n\n";
    vrn.file += "! Netlist Converter " ODB2VRN_PROGRAM_TITLE " --> Vrn, version " ODB2VRN_VERSION "\n";
    vrn.file += "! " ODB2VRN_COPYRIGHT ". All rights reserved.\n\n";
    vrn.file += "PART_LIST\n";
    for (std::int32_t i = 0; i < design.components.itemCount(); ++i) {
        Part* part = design.components.itemAt(i);
        if (part->pins.itemCount() > 0) writer.partLine(*part);
    }
    vrn.file += "END_PART_LIST\n\n\nNETLIST\n";
    for (std::int32_t i = 0; i < design.nets.itemCount(); ++i) {
        Net* net = design.nets.itemAt(i);
        vrn.file += "\t" + std::string(net->text());
        if (!writer.netPins(*net)) return vrn;
    }
    vrn.file += "END_NETLIST\n\nEND_DESIGN\n";
    return vrn;
}

}  // namespace reference
