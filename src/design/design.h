// Design: the model of one board between the reading of the job and the
// writing of the VRN file: components of both sides, packages (whose place in
// the list is their package number) and nets, all made in its arena.
// runConversion owns it.
#pragma once

#include <cstdint>

#include "containers/arena.h"
#include "design/net.h"
#include "design/part.h"

class TextOutput;

class Design {
public:
    Design();
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;

    void noteNetNameLength(std::int32_t length);

    // Writes the whole VRN file. designName is rewritten in place (white
    // space to "_", reserved names prefixed) and needs room for four more
    // characters. False when the file can't be opened, writing failed or
    // the run was interrupted; then no file is left.
    bool writeNetlistFile(const char* path, TextString& designName);
    static void makeNameSafe(TextString& name);
    // PART_LIST to END_PART_LIST; false when the run was interrupted.
    bool writePartList(TextOutput& out) const;

    // The arena first, so that it goes last. The lists go in the opposite
    // order: packages, nets, components.
    Arena arena;
    PartList components{arena};
    NetList nets{arena};
    PartList packages{arena};
    std::int64_t reserved = 0;
    std::int32_t longestNetName = 0;
};
