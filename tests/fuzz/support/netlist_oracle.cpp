#include "support/netlist_oracle.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "design/design.h"
#include "support/workspace.h"

namespace fuzzing {

namespace {

bool isBlankByte(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool equalsIgnoringAsciiCase(const std::string& text, const char* word) {
    const std::size_t length = std::strlen(word);
    if (text.size() != length) return false;
    for (std::size_t i = 0; i < length; ++i) {
        char a = text[i], b = word[i];
        if (a >= 'a' && a <= 'z') a = static_cast<char>(a - 'a' + 'A');
        if (b >= 'a' && b <= 'z') b = static_cast<char>(b - 'a' + 'A');
        if (a != b) return false;
    }
    return true;
}

std::string safeDesignName(std::string name) {
    for (char& c : name) {
        if (isBlankByte(c)) c = '_';
    }
    if (equalsIgnoringAsciiCase(name, "NETLIST") || equalsIgnoringAsciiCase(name, "PART_LIST")) name = "Vrn_" + name;
    return name;
}

std::string padded(const char* text, std::size_t width) {
    std::string out(text);
    if (out.size() < width) out.append(width - out.size(), ' ');
    return out;
}

template <typename List>
std::int32_t countOf(const List& list) {
    std::int32_t n = 0;
    for (auto* node = list.head; node != nullptr; node = node->next) ++n;
    return n;
}

template <typename List>
auto* itemOf(const List& list, std::int32_t index) {
    auto* node = list.head;
    for (std::int32_t i = 0; node != nullptr && i < index; ++i) node = node->next;
    return node == nullptr || index < 0 ? nullptr : node->item;
}

const char* strippedPinText(const char* refdes, const char* pinText) {
    const std::size_t r = std::strlen(refdes);
    if (r > std::strlen(pinText) || pinText[r] != '-') return pinText;
    return std::strchr(pinText, '-') + 1;
}

void expectPartList(const Design& design, std::string& out) {
    out += "PART_LIST\n";
    for (auto* node = design.components.head; node != nullptr; node = node->next) {
        const Part& part = *node->item;
        if (part.pins.head == nullptr || part.state != 1) continue;
        const char* substitute = nullptr;
        if (std::strcmp(part.typeName.text(), "???") == 0) {
            if (!part.manufacturerPartNo.isEmpty()) substitute = part.manufacturerPartNo.text();
            else if (!part.value.isEmpty()) substitute = part.value.text();
            else if (!part.partName.isEmpty()) substitute = part.partName.text();
        }
        out += "\t" + padded(part.refdes.text(), 12) + "\t";
        if (substitute != nullptr) {
            out += std::string(substitute) + "\t!  " + part.typeName.text() + "\n";
        } else {
            out += std::string(part.typeName.text()) + "\n";
        }
    }
    out += "END_PART_LIST\n\n";
}

// False when the net's pins are meant to end the run.
bool expectNet(const Design& design, const Net& net, std::string& out) {
    const std::int64_t width = static_cast<std::int64_t>(design.longestNetName) + 5;
    const std::int64_t nameLength = static_cast<std::int64_t>(std::strlen(net.text()));
    const std::string nameFill(static_cast<std::size_t>(width > nameLength ? width - nameLength : 0), ' ');
    out += "\t";
    out += net.text();
    const std::int32_t n = countOf(net.pins);
    if (n == 0) {
        out += nameFill + ";\n";
        return true;
    }
    bool packageCarried = false;
    std::int32_t carriedPackageIndex = 0;
    const PartPin* carriedPartPin = nullptr;
    std::int32_t i = 0;
    for (auto* node = net.pins.head; node != nullptr; node = node->next, ++i) {
        const NetPin& pin = *node->item;
        bool pinOk = true;
        const char* refdes = "";
        const Part* component = nullptr;
        for (auto* c = design.components.head; c != nullptr && component == nullptr; c = c->next) {
            if (std::strcmp(c->item->text(), pin.key.text()) == 0) component = c->item;
        }
        if (component != nullptr) {
            refdes = component->refdes.text();
            carriedPackageIndex = component->packageIndex;
            packageCarried = true;
            if (!(pin.pinIndex < countOf(component->pins))) {
                out += std::string("\t! ERR: Component(\"") + component->text() + "\"), Pin (\"" +
                       std::to_string(pin.pinIndex) + "\") not found.\n";
                pinOk = false;
            } else {
                carriedPartPin = itemOf(component->pins, pin.pinIndex);
                if (carriedPartPin == nullptr) return false;  // a negative index
            }
        }
        const Part* package = nullptr;
        if (packageCarried) {
            package = itemOf(design.packages, carriedPackageIndex);
            if (package == nullptr) return false;
        }
        if (!pinOk) continue;
        if (package != nullptr && itemOf(package->pins, pin.pinIndex) == nullptr) return false;
        const char* pinText = carriedPartPin != nullptr ? carriedPartPin->pinText.text() : "";
        if (i == 0) out += nameFill;
        else out += "\t" + std::string(static_cast<std::size_t>(width), ' ');
        out += padded(refdes, 16) + "  " + strippedPinText(refdes, pinText) + (i == n - 1 ? ";\n" : "\n");
    }
    return true;
}

// Where two texts part, for the report.
std::size_t firstDifference(const std::string& a, const std::string& b) {
    std::size_t i = 0;
    while (i < a.size() && i < b.size() && a[i] == b[i]) ++i;
    return i;
}

void reportAndAbort(const char* what, const std::string& expected, const std::string& actual) {
    const std::size_t at = firstDifference(expected, actual);
    const std::size_t from = at > 80 ? at - 80 : 0;
    std::fprintf(stderr, "fuzz oracle: %s differs at byte %zu\n--- expected ---\n%s\n--- written ---\n%s\n", what,
                 at, expected.substr(from, 200).c_str(), actual.substr(from, 200).c_str());
    std::abort();
}

}  // namespace

ExpectedNetlist expectNetlist(const Design& design, const std::string& designName) {
    ExpectedNetlist expected;
    expected.designLine = "DESIGN\t" + safeDesignName(designName);
    std::string& out = expected.body;
    expectPartList(design, out);
    out += "\nNETLIST\n";
    for (auto* node = design.nets.head; node != nullptr; node = node->next) {
        if (!expectNet(design, *node->item, out)) {
            expected.endsAbnormally = true;
            out.clear();
            return expected;
        }
    }
    out += "END_NETLIST\n\nEND_DESIGN\n";
    return expected;
}

void writeAndCheck(Design& design, const std::string& designName) {
    // The writer gets a zero-terminated text: a name ends at its first zero.
    const std::string name = designName.c_str();
    const ExpectedNetlist expected = expectNetlist(design, name);
    if (expected.endsAbnormally) return;  // abnormalEnd() is what the write would do
    const std::string path = workspace() + "/out.vrn";
    TextString rewritten(name.c_str());
    if (!design.writeNetlistFile(path.c_str(), rewritten)) {
        std::fprintf(stderr, "fuzz oracle: the VRN file could not be written\n");
        std::abort();
    }
    const std::string written = readFile(path);
    removeFile(path);

    // DESIGN line, an empty line, two comment lines, an empty line, the body.
    std::size_t at = 0;
    std::string lines[5];
    for (std::string& line : lines) {
        const std::size_t end = written.find('\n', at);
        if (end == std::string::npos) reportAndAbort("the header", expected.designLine, written);
        line = written.substr(at, end - at);
        at = end + 1;
    }
    if (lines[0] != expected.designLine) reportAndAbort("the DESIGN line", expected.designLine, lines[0]);
    if (!lines[1].empty() || lines[2].rfind("! Netlist Converter ", 0) != 0 || lines[3].rfind("! ", 0) != 0 ||
        !lines[4].empty()) {
        reportAndAbort("the header", "DESIGN, empty, two '! ' lines, empty", written.substr(0, at));
    }
    const std::string body = written.substr(at);
    if (body != expected.body) reportAndAbort("the body", expected.body, body);
}

}  // namespace fuzzing
