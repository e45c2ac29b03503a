// The one way the tests build a Design: through the model's own operations,
// as the readers do, and beyond what a reader would make (keys and indexes
// the lists don't hold, duplicate keys, renames, nets longer than noted).
// Everything is made in the Design's arena.
#pragma once

#include <cstdint>
#include <string>

class Design;
class Net;
class Part;

namespace testsupport {

class DesignBuilder {
public:
    explicit DesignBuilder(Design& design) : design_(design) {}

    // The next package, its pins named "1" to pinCount.
    Part* addPackage(int pinCount);
    // A component with its key, refdes and type name (cut at its ';').
    Part* addComponent(const std::string& key, const std::string& refdes, std::string typeName);
    void addPin(Part* component, const std::string& pinText);
    // A net, its name's length noted as the reader notes it, or not.
    Net* addNet(const std::string& name, bool noted);
    // Refused, as the reader's are, when the net has that pin already.
    void addNetPin(Net* net, const std::string& key, std::int32_t pinIndex);

    // The same from a text, one operation a line; gives the design name
    // ("board" unless a line says otherwise). A line it does not know is
    // kept in unknownLines.
    //   design <name>                  the name it is written under
    //   package <n>                    the next package, with n pins
    //   component <key> <refdes> <type> [package=|value=|part=|mpn=|state=<word>] [pins <pin text>...]
    //   net <name> [unnoted] [<key>/<pinIndex>...]   unnoted: the name's length isn't noted
    //   note <length>                  a net name length noted by itself
    // Words are separated by blanks; double quotes keep blanks and make ""
    // a word.
    std::string run(const std::string& program);
    std::string unknownLines;

private:
    void runComponent(const std::string& line);
    void runNet(const std::string& line);

    Design& design_;
};

}  // namespace testsupport
