// The VRN file, from first byte to last ("\n" is the platform's line end,
// -> a tab, . a blank):
//
//   DESIGN->name                      the design name, made safe
//   (empty)
//   ! Netlist Converter <title> --> Vrn, version <version>
//   ! <copyright>. All rights reserved.
//   (empty)
//   PART_LIST
//   ->refdes......->typeName          plain part line, refdes filled to 12
//   ->refdes......->text->!..???      commented part line, text a fallback
//   END_PART_LIST
//   (empty)
//   (empty)
//   NETLIST                           see netlist_writer.h
//   END_NETLIST
//   (empty)
//   END_DESIGN
#include "design/design.h"

#include "design/netlist_writer.h"
#include "design/text_output.h"
#include "design/vrn_file.h"
#include "odb2vrn_version.h"
#include "platform/platform.h"

Design::Design() {
    components.owner = this;
    nets.owner = this;
    // packages gets no owner: the owner a package receives means nothing.
}

void Design::noteNetNameLength(std::int32_t length) {
    if (length > longestNetName) longestNetName = length;
}

void Design::makeNameSafe(TextString& name) {
    for (char* p = name.buffer(); *p != '\0'; ++p) {
        if (isWhiteSpace(*p)) *p = '_';
    }
}

bool Design::writePartList(TextOutput& out) const {
    out.put("PART_LIST\n");
    for (const Part* component : components) {
        // An interrupted run stops here, and its unfinished file goes.
        if (platform::interrupted()) return false;
        if (component->pins.itemCount() > 0) component->writePartLine(out);
    }
    out.put("END_PART_LIST\n\n");
    return true;
}

bool Design::writeNetlistFile(const char* path, TextString& designName) {
    VrnFile file;
    if (!file.open(path)) return false;
    TextOutput out(file.stream());
    bool whole = false;
    try {
        makeNameSafe(designName);
        if (compareIgnoringCase(designName.text(), "NETLIST") == 0 ||
            compareIgnoringCase(designName.text(), "PART_LIST") == 0) {
            const TextString original(designName);
            designName.assign("Vrn_");
            designName.append(original);
        }
        const NetlistSection netlist(*this);
        out.print("DESIGN\t%s\n\n", designName.text());
        out.put("! Netlist Converter " ODB2VRN_PROGRAM_TITLE " --> Vrn, version " ODB2VRN_VERSION "\n");
        out.put("! " ODB2VRN_COPYRIGHT ". All rights reserved.\n");
        out.put('\n');
        whole = writePartList(out);
        if (whole) {
            out.put('\n');
            whole = netlist.write(out);
        }
        if (whole) out.put("\nEND_DESIGN\n");
    } catch (...) {
        // Memory ran out: what was gathered goes to the file, which is left
        // open and unfinished.
        out.flush();
        file.keepUnfinished();
        return false;
    }
    // An interrupted write leaves no file: file goes with it.
    if (!whole) return false;
    out.flush();
    if (out.failed()) file.writeFailed();
    // A file that could not be written whole is removed.
    return file.finish();
}
