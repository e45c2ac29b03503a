// readEdaData: the step's eda/data file gives the nets with their
// connections (NET, SNT TOP), the packages (PKG) and their pin names (PIN).
// Everything else in the file is passed over.
#include <cstdint>
#include <cstring>
#include <memory>

#include "design/design.h"
#include "odb/job_reader.h"
#include "odb/line_scanner.h"
#include "odb/record_scans.h"

namespace {

// The state of one read of eda/data.
struct EdaRead {
    Design& design;
    EdaScanner scanner;
    const char* line = nullptr;
    std::int32_t netNumber = 0;
    std::int32_t packageNumber = 0;
    Net* currentNet = nullptr;
    Part* currentPackage = nullptr;
    char firstWord[kFirstWordArea] = {};
    char secondWord[kTextArea] = {};
    char pinName[kTextArea] = {};
    char netName[kTextArea] = {};
    char numberWord[kTextArea] = {};
    char keyText[kTextArea + 1] = {};  // a side letter and a number word
    char packageName[kTextArea] = {};

    explicit EdaRead(Design& target) : design(target) {}

    // Each handler returns false when its record ends the read.
    bool net();
    bool snt();
    bool pkg();
    bool pin();
};

bool EdaRead::net() {
    if (scanNetRecord(line, netName, secondWord) < 1) return false;
    // "NET GND ;;ID=7" names GND; "NET GND A" names GNDA.
    TextString name(netName);
    if (secondWord[0] != '\0' && secondWord[0] != ';') name.append(secondWord);
    secondWord[0] = '\0';
    if (name.equalsIgnoreCase("$NONE$")) {
        currentNet = nullptr;
        return true;
    }
    Net* created = design.arena.make<Net>(design.arena, netNumber, name.text());
    currentNet = created;
    design.noteNetNameLength(name.length());
    design.nets.addNet(created);
    ++netNumber;
    return true;
}

bool EdaRead::snt() {
    if (currentNet == nullptr) return true;
    char side = 0;
    long pinIndex = 0;
    // "%*s %15s" gives the kind; a kind that is TOP was a whole word, so the
    // same scan goes on with the rest of a SNT TOP record, its result one
    // higher than that of "%*s %*s %c %2047s %ld".
    const int result = scanSntRecord(line, firstWord, &side, numberWord, &pinIndex);
    if (result < 1) return false;
    if (scanner.lookup(firstWord) != EdaScanner::kTop) return true;
    if (result != 4) return false;
    // "SNT TOP T 12 3" ties the net to pin index 3 of component T12.
    keyText[0] = side;
    std::strcpy(keyText + 1, numberWord);
    NetPin* pin = design.arena.make<NetPin>(keyText, static_cast<std::int32_t>(pinIndex));
    if (currentNet->addNetPin(pin) == nullptr) std::destroy_at(pin);  // a duplicate
    return true;
}

bool EdaRead::pkg() {
    if (scanNameRecord(line, packageName) != 1) return false;
    currentNet = nullptr;
    Part* package = design.arena.make<Part>(design.arena, packageName);
    currentPackage = package;
    package->assign(packageNumber);
    ++packageNumber;
    design.packages.addPart(package);
    return true;
}

bool EdaRead::pin() {
    currentNet = nullptr;
    if (currentPackage == nullptr) return false;
    if (scanNameRecord(line, pinName) != 1) return false;
    TextString name(pinName);
    while (currentPackage->pins.findPinByName(name) != nullptr) name.append("_");
    currentPackage->pins.addItem(design.arena.make<PartPin>(name, 0, 0));
    return true;
}

}  // namespace

std::int32_t JobReader::readEdaData() {
    EdaRead read(design);
    if (!read.scanner.open(edaDataPath(), &design)) return 1;
    return readRecords(read.scanner, read.firstWord, [&read](const char* line, std::int32_t code) {
        read.line = line;
        switch (code) {
            case EdaScanner::kNet: return read.net();
            case EdaScanner::kSnt: return read.snt();
            case EdaScanner::kPkg: return read.pkg();
            case EdaScanner::kPin: return read.pin();
            default: return true;
        }
    });
}
