// Helpers of the job reader tests: job files written into a scratch
// directory, the console text of a call, a whole-value dump of a Design, and
// the case folders under tests/odb/cases.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "design/design.h"
#include "support/test_support.h"

namespace odbtest {

// Writes contents to root/relativePath, making the folders on the way.
inline void writeJobFile(const std::string& root, const std::string& relativePath, const std::string& contents) {
    const std::filesystem::path path = std::filesystem::path(root) / relativePath;
    std::filesystem::create_directories(path.parent_path());
    testsupport::writeFile(path.string(), contents);
}

// The job trees kept beside these tests.
inline std::string jobDir(const std::string& name) { return testsupport::testDataDir() + "/odb/jobs/" + name; }

// What call printed on the standard output.
template <typename Call>
std::string consoleOf(Call call) {
    std::fflush(stdout);
    testing::internal::CaptureStdout();
    call();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// "net <index> <name>: <key>/<pinIndex> ..."
inline std::string dumpNets(Design& design) {
    std::string out;
    for (const Net* net : design.nets) {
        out += "net " + std::to_string(net->index) + " " + net->text() + ":";
        for (const NetPin* pin : net->pins) out += " " + std::string(pin->key.text()) + "/" + std::to_string(pin->pinIndex);
        out += "\n";
    }
    return out;
}

// Components with their pins, nets, packages with their pin names, and the
// longest net name, one line each.
inline std::string dumpDesign(Design& design) {
    std::string out;
    for (const Part* component : design.components) {
        const Part& part = *component;
        out += "component " + std::string(part.text()) + " " + part.refdes.text() + " type=" + part.typeName.text() +
               " package=" + std::to_string(part.packageIndex) + " value=" + part.value.text() +
               " part=" + part.partName.text() + " mpn=" + part.manufacturerPartNo.text() + "\n";
        for (const PartPin* pin : part.pins) {
            out += "  pin " + std::string(pin->text()) + " " + std::to_string(pin->pinNumber) +
                   " net=" + std::to_string(pin->netNumber) + " text=" + pin->pinText.text() + "\n";
        }
    }
    out += dumpNets(design);
    for (const Part* package : design.packages) {
        out += "package " + std::string(package->text()) + " " + package->typeName.text() + ":";
        for (const PartPin* pin : package->pins) out += std::string(" ") + pin->text();
        out += "\n";
    }
    return out + "longest net name " + std::to_string(design.longestNetName) + "\n";
}

// Runs read(scratch, input) over every case of tests/odb/cases/<folder>:
// <name>.in is the input, <name>.out the whole expected result.
template <typename Read>
void expectCases(const std::string& folder, Read read) {
    std::vector<std::filesystem::path> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(testsupport::testDataDir() + "/odb/cases/" + folder)) {
        if (entry.path().extension() == ".in") inputs.push_back(entry.path());
    }
    std::sort(inputs.begin(), inputs.end());
    EXPECT_FALSE(inputs.empty()) << folder;
    for (const std::filesystem::path& input : inputs) {
        SCOPED_TRACE(folder + "/" + input.stem().string());
        testsupport::ScratchDir scratch;
        std::filesystem::path expected = input;
        EXPECT_EQ(read(scratch, testsupport::readFile(input.string())),
                  testsupport::readFile(expected.replace_extension(".out").string()));
    }
}

}  // namespace odbtest
