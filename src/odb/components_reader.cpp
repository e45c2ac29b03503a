// readComponents: one components file gives the components of one side
// (CMP), their properties (PRP) and their pins (TOP). A component's key is
// its side letter and its number in this file, which is how the nets of
// eda/data refer to it.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "design/component_key.h"
#include "design/design.h"
#include "report/messages.h"
#include "odb/job_reader.h"
#include "odb/line_scanner.h"
#include "odb/record_scans.h"

namespace {

// The state of one read of a components file; the areas start empty.
struct ComponentsRead {
    Design& design;
    ComponentScanner scanner;
    const char* line = nullptr;
    BoardSide side = BoardSide::kTop;
    std::int32_t componentNumber = 0;
    Part* current = nullptr;
    char firstWord[kFirstWordArea] = {};
    char propertyValue[kTextArea] = {};
    char name[kTextArea] = {};
    char partName[kTextArea] = {};
    char pinText[kTextArea] = {};

    explicit ComponentsRead(Design& target) : design(target) {}

    bool cmp();
    void prp();
    bool top();
    void copyQuotedValue();
};

bool ComponentsRead::cmp() {
    // Nothing reads a position or a rotation: they are only checked for
    // their form.
    long packageNumber = 0;
    char mirror = 0;
    if (scanCmpRecord(line, &packageNumber, &mirror, name, partName) != 7) return false;
    Part* part = design.arena.make<Part>(design.arena, nullptr);
    current = part;
    part->assign(componentKey(side, componentNumber));
    ++componentNumber;
    part->setTypeName(partName);
    part->setRefdes(name);
    part->setPackageIndex(static_cast<std::int32_t>(packageNumber));
    if (design.components.findByRefdes(name) == nullptr) {
        design.components.addPart(part);
        return true;
    }
    // Reference names stay unique across both sides: R1, R1_, R1__ ...
    TextString unique(name);
    while (design.components.findByRefdes(unique) != nullptr) unique.append("_");
    part->setRefdes(unique.text());
    design.components.addPart(part);
    // The line counter is one ahead of the record's line number.
    writeMessage(0, "Warning: Component with name %s already found at line %d, renaming to %s", name,
                 scanner.lineCounter, unique.text());
    return true;
}

// PRP NAME 'a quoted value': from the line's first quote to the next one,
// white space turned into "_". With no closing quote the copy ends at the
// line end (LF or CR LF), which is not copied.
void ComponentsRead::copyQuotedValue() {
    const char* from = std::strchr(line, '\'');
    if (from == nullptr) return;
    ++from;
    int length = 0;
    for (const char* p = from; *p != '\0' && *p != '\''; ++p) {
        if (*p == '\n' || (*p == '\r' && (p[1] == '\n' || p[1] == '\0'))) break;
        if (length < kTextArea - 1) propertyValue[length++] = isWhiteSpace(*p) ? '_' : *p;
    }
    propertyValue[length] = '\0';
}

void ComponentsRead::prp() {
    // No result of this scan ends the record: a missing word leaves the area
    // as the last record left it.
    scanPrpRecord(line, name, propertyValue);
    enum { kNone, kValue, kManufacturerPartNo, kPartName } property = kNone;
    if (std::strcmp(name, "VALUE") == 0) property = kValue;
    else if (std::strcmp(name, "MANUFACTURER_PART_NO.") == 0) property = kManufacturerPartNo;
    else if (std::strcmp(name, "PART_NAME") == 0) property = kPartName;
    if (property == kNone || current == nullptr) return;
    if (propertyValue[0] == '\'') copyQuotedValue();
    switch (property) {
        case kValue: current->setValue(propertyValue); break;
        case kManufacturerPartNo: current->setManufacturerPartNo(propertyValue); break;
        case kPartName: current->setPartName(propertyValue); break;
        case kNone: break;
    }
}

bool ComponentsRead::top() {
    if (current == nullptr) return false;
    long pinNumber = 0, netNumber = 0;
    char mirror = 0;
    if (scanTopRecord(line, &pinNumber, &mirror, &netNumber, pinText) != 8) return false;
    current->pins.addItem(design.arena.make<PartPin>("DUMMY", static_cast<std::int32_t>(pinNumber),
                                                     static_cast<std::int32_t>(netNumber), pinText));
    return true;
}

}  // namespace

std::int32_t JobReader::readComponents(TextString layerName) {
    ComponentsRead read(design);
    read.side = layerName.equals("comp_+_top") ? BoardSide::kTop : BoardSide::kBottom;
    if (!read.scanner.open(componentsPath(layerName.text()), &design)) return 1;
    const std::int32_t result = readRecords(read.scanner, read.firstWord, [&read](const char* line, std::int32_t code) {
        read.line = line;
        switch (code) {
            case ComponentScanner::kCmp: return read.cmp();
            case ComponentScanner::kPrp: read.prp(); return true;
            case ComponentScanner::kTop: return read.top();
            default: return true;
        }
    });
    if (result != 0) return 1;
    std::printf("Number of component(s), %s - layer:%d\n", sideLetter(read.side), read.componentNumber);
    return 0;
}
