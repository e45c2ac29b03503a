// Helpers of the job reader tests: small job files written into a scratch
// directory, the console text of a call, and whole-value dumps of what a
// read left in the Design, so that a test compares one text with another.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

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

// One line per component, then one per pin: key, refdes, texts, numbers.
inline std::string dumpComponents(Design& design) {
    std::string out;
    for (auto* node = design.components.head; node != nullptr; node = node->next) {
        const Part& part = *node->item;
        out += "component " + std::string(part.text()) + " " + part.refdes.text() + " type=" + part.typeName.text() +
               " package=" + std::to_string(part.packageIndex) + " value=" + part.value.text() +
               " part=" + part.partName.text() + " mpn=" + part.manufacturerPartNo.text() + "\n";
        for (auto* pin = part.pins.head; pin != nullptr; pin = pin->next) {
            out += "  pin " + std::string(pin->item->text()) + " " + std::to_string(pin->item->pinNumber) +
                   " net=" + std::to_string(pin->item->netNumber) + " text=" + pin->item->pinText.text() + "\n";
        }
    }
    return out;
}

// "net <index> <name>: <key>/<pinIndex> ..."
inline std::string dumpNets(Design& design) {
    std::string out;
    for (auto* node = design.nets.head; node != nullptr; node = node->next) {
        const Net& net = *node->item;
        out += "net " + std::to_string(net.index) + " " + net.text() + ":";
        for (auto* pin = net.pins.head; pin != nullptr; pin = pin->next) {
            out += " " + std::string(pin->item->key.text()) + "/" + std::to_string(pin->item->pinIndex);
        }
        out += "\n";
    }
    return out;
}

// "package <key> <typeName>: <pin name> ..."
inline std::string dumpPackages(Design& design) {
    std::string out;
    for (auto* node = design.packages.head; node != nullptr; node = node->next) {
        const Part& package = *node->item;
        out += "package " + std::string(package.text()) + " " + package.typeName.text() + ":";
        for (auto* pin = package.pins.head; pin != nullptr; pin = pin->next)
            out += " " + std::string(pin->item->text());
        out += "\n";
    }
    return out;
}

inline std::string dumpDesign(Design& design) {
    return dumpComponents(design) + dumpNets(design) + dumpPackages(design) + "longest net name " +
           std::to_string(design.longestNetName) + "\n";
}

// The VRN file the writer makes of design, with its rights line (our own
// wording, not pinned here) replaced by "! <RIGHTS>".
inline std::string vrnOf(Design& design, const std::string& folder, const char* designName) {
    const std::string path = folder + "/out.vrn";
    TextString name(designName);
    EXPECT_TRUE(design.writeNetlistFile(path.c_str(), name));
    std::string text = testsupport::readFile(path);
    const std::size_t title = text.find("\n! Netlist Converter ");
    if (title == std::string::npos) return text;
    const std::size_t rights = text.find('\n', title + 1) + 1;
    if (text.compare(rights, 2, "! ") == 0) text.replace(rights, text.find('\n', rights) - rights, "! <RIGHTS>");
    return text;
}

}  // namespace odbtest
