#include "design/netlist_writer.h"

#include <cstdio>
#include <cstring>

#include "containers/abnormal_end.h"
#include "design/design.h"
#include "design/text_output.h"
#include "platform/platform.h"

const char* stripPinPrefix(std::size_t refdesLength, const char* pinText) {
    // The characters before that position are not compared, on purpose.
    if (std::strlen(pinText) <= refdesLength || pinText[refdesLength] != '-') return nullptr;
    return std::strchr(pinText, '-') + 1;
}

namespace {

const char kPinNotFound[] = "ERR: Component(\"%s\"), Pin (\"%d\") not found.\n";

}  // namespace

NetlistSection::NetlistSection(const Design& design) : design_(design) {
    // Reserved, so that the index's pointers into it stay valid.
    components_.reserve(static_cast<std::size_t>(design.components.itemCount()));
    for (const Part* part : design.components) {
        // A later component with the same key is never found.
        const std::uint64_t hash = hashText(part->text());
        if (find(part->text()) != nullptr) continue;
        components_.push_back({part, pins_.size()});
        byKey_.add(hash, &components_.back());
        for (const PartPin* pin : part->pins) pins_.push_back(pin);
    }
    for (const Part* package : design.packages) packagePins_.push_back(package->pins.itemCount());
}

const NetlistSection::Component* NetlistSection::find(const char* key) const {
    return byKey_.find(hashText(key),
                       [key](const Component* component) { return std::strcmp(component->part->text(), key) == 0; });
}

bool NetlistSection::write(TextOutput& out) const {
    out.put("NETLIST\n");
    for (const Net* net : design_.nets) {
        // An interrupted run stops here, and its unfinished file goes.
        if (platform::interrupted()) return false;
        writeNet(out, *net);
    }
    out.put("END_NETLIST\n");
    return true;
}

void NetlistSection::writeNet(TextOutput& out, const Net& net) const {
    const std::int64_t width = static_cast<std::int64_t>(design_.longestNetName) + 5;
    const std::int64_t nameLength = static_cast<std::int64_t>(std::strlen(net.text()));
    out.put('\t');
    out.put(net.text(), static_cast<std::size_t>(nameLength));
    const std::int32_t count = net.pins.itemCount();
    if (count == 0) {
        out.blanks(width - nameLength);
        out.put(";\n", 2);
        return;
    }
    CarriedValues carried;
    std::int32_t i = 0;
    for (const NetPin* pin : net.pins) {
        // One pin's line, or its ERR lines. A failed pin writes no line, not
        // even the fill of a first line or the ';' of a last one.
        const Component* component = find(pin->key.text());
        const char* refdes = "";
        if (component != nullptr) refdes = component->part->refdes.text();
        if (resolvePin(out, *pin, component, carried)) {
            const char* stripped = stripPinPrefix(std::strlen(refdes), carried.pinText);
            if (i == 0) {
                out.blanks(width - nameLength);
            } else {
                out.put('\t');
                out.blanks(width);
            }
            // "%-16s  %s\n", with ";" before the line end on the last pin.
            out.padded(refdes, 16);
            out.put("  ", 2);
            out.put(stripped != nullptr ? stripped : carried.pinText);
            out.put(i == count - 1 ? ";\n" : "\n");
        }
        ++i;
    }
}

// Carries the pin's values on; false, after the ERR lines, when its index is
// beyond its component's pins.
bool NetlistSection::resolvePin(TextOutput& out, const NetPin& pin, const Component* component,
                                CarriedValues& carried) const {
    const std::int32_t pinIndex = pin.pinIndex;
    bool found = true;
    if (component != nullptr) {
        const Part& part = *component->part;
        carried.hasPackage = true;
        carried.packageIndex = part.packageIndex;
        found = pinIndex < part.pins.itemCount();
        if (!found) {
            out.put("\t! ", 3);
            out.print(kPinNotFound, part.text(), pinIndex);
            std::printf(kPinNotFound, part.text(), pinIndex);
        }
    }
    // The package's pin is fetched for its range alone: nothing of it is
    // written. Before the first component found nothing is carried, so there
    // is no package to fetch. An index the packages don't hold ends the run,
    // as the unguarded fetch does.
    if (carried.hasPackage) {
        const std::int32_t package = carried.packageIndex;
        if (package < 0 || static_cast<std::size_t>(package) >= packagePins_.size()) abnormalEnd();
        if (found && (pinIndex < 0 || pinIndex >= packagePins_[static_cast<std::size_t>(package)])) abnormalEnd();
    }
    if (found && component != nullptr) {
        carried.pinText = pins_[component->firstPin + static_cast<std::size_t>(pinIndex)]->pinText.text();
    }
    return found;
}
