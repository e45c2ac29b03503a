// Design: the model of one board between the reading of the job and the
// writing of the VRN file: components of both sides, packages (whose place in
// the list is their package number) and nets. runConversion owns it.
#pragma once

#include <cstdint>
#include <cstdio>

#include "design/net.h"
#include "design/part.h"

class TextOutput;

class Design {
public:
    Design();
    ~Design();
    Design(const Design&) = delete;
    Design& operator=(const Design&) = delete;

    void noteNetNameLength(std::int32_t length);

    // Writes the whole VRN file. designName is rewritten in place (white
    // space to "_", reserved names prefixed) and needs room for four more
    // characters. False when the file can't be opened or writing failed.
    bool writeNetlistFile(const char* path, TextString& designName);
    static void makeNameSafe(TextString& name);
    void writePartList(TextOutput& out);

    // Members in this order: destruction releases packages, then the nodes
    // of nets, then components.
    PartList components;
    NetList nets;
    PartList packages;
    std::int64_t reserved = 0;
    std::int32_t longestNetName = 0;
};
