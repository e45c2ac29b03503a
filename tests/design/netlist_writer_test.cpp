#include "design/netlist_writer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "design/design.h"
#include "design/run_lifetime.h"
#include "support/test_support.h"

namespace {

using testsupport::asWrittenText;
using testsupport::ScratchDir;

const char kHeader[] =
    "! Netlist Converter ODB++ netlist to VRN converter --> Vrn, version 2.7.1\n"
    "! Copyright (c) 2004-2023 Korvane Systems. All rights reserved.\n"
    "\n";

// The whole file around the given part lines and net blocks.
std::string vrnFile(const std::string& name, const std::string& partLines, const std::string& netLines) {
    return "DESIGN\t" + name + "\n\n" + kHeader + "PART_LIST\n" + partLines + "END_PART_LIST\n\n\nNETLIST\n" +
           netLines + "END_NETLIST\n\nEND_DESIGN\n";
}

std::string padded(const std::string& text, std::size_t width) {
    return text.size() >= width ? text : text + std::string(width - text.size(), ' ');
}

std::string blanks(std::size_t count) { return std::string(count, ' '); }

using PinRef = std::pair<const char*, std::int32_t>;  // component key, pinIndex

class Board {
public:
    // A package with pinCount pins named "1", "2", ...
    void addPackage(int pinCount) {
        Part* package = new Part("PKG");
        package->assign(design.packages.itemCount());
        for (int p = 1; p <= pinCount; ++p) {
            package->pins.addItem(new PartPin(TextString(std::to_string(p).c_str()), 0, 0));
        }
        design.packages.addPart(package);
    }

    Part* addComponent(const char* key, const char* refdes, const char* typeWord,
                       const std::vector<const char*>& pinTexts, std::int32_t packageIndex = 0) {
        Part* part = new Part(nullptr);
        part->assign(key);
        std::string word(typeWord);
        part->setTypeName(word.data());
        part->setRefdes(refdes);
        part->setPackageIndex(packageIndex);
        std::int32_t number = 1;
        for (const char* pinText : pinTexts) part->pins.addItem(new PartPin("DUMMY", number++, 0, pinText));
        return design.components.addPart(part);
    }

    // As the EDA data reader adds a net; an unnoted name is longer than the
    // Design knows of.
    void addNet(const char* name, const std::vector<PinRef>& pins, bool noteLength = true) {
        Net* net = makeForRun<Net>(design.nets.itemCount(), name);
        if (noteLength) design.noteNetNameLength(net->length());
        design.nets.addNet(net);
        for (const PinRef& pin : pins) net->addNetPin(makeForRun<NetPin>(TextString(pin.first), pin.second));
    }

    // Writes the file (which must succeed) and gives its bytes; the console
    // text goes to *console when asked for.
    std::string written(const char* designName = "board", std::string* console = nullptr) {
        TextString name(designName);
        const std::string path = scratch / "out.vrn";
        if (console != nullptr) testing::internal::CaptureStdout();
        const bool ok = design.writeNetlistFile(path.c_str(), name);
        if (console != nullptr) {
            std::fflush(stdout);
            *console = testing::internal::GetCapturedStdout();
        }
        EXPECT_TRUE(ok);
        return testsupport::readFile(path);
    }

    Design design;
    ScratchDir scratch;
};

TEST(NetlistWriterTest, WorkedExampleByteForByte) {
    Board board;
    board.addPackage(2);
    board.addPackage(1);
    board.addComponent("T0", "U1", "74HC00", {"1", "U1-2"});
    Part* r1 = board.addComponent("T1", "R1", "???", {"A"}, 1);
    r1->value.assign("10K");
    board.addComponent("T2", "C9", "C0603", {}, 1);
    board.addNet("GND", {{"T0", 0}, {"T0", 1}});
    board.addNet("CLK_A", {{"T1", 0}});
    const std::string expected =
        "DESIGN\tboard_7\n"
        "\n"
        "! Netlist Converter ODB++ netlist to VRN converter --> Vrn, version 2.7.1\n"
        "! Copyright (c) 2004-2023 Korvane Systems. All rights reserved.\n"
        "\n"
        "PART_LIST\n"
        "\tU1          \t74HC00\n"
        "\tR1          \t10K\t!  ???\n"
        "END_PART_LIST\n"
        "\n"
        "\n"
        "NETLIST\n"
        "\tGND       U1                1\n"
        "\t          U1                2;\n"
        "\tCLK_A     R1                A;\n"
        "END_NETLIST\n"
        "\n"
        "END_DESIGN\n";
    EXPECT_EQ(board.written("board 7"), asWrittenText(expected));
}

TEST(NetlistWriterTest, EmptyDesignGivesTheFrameOnly) {
    Board board;
    const std::string expected =
        "DESIGN\tjob\n"
        "\n"
        "! Netlist Converter ODB++ netlist to VRN converter --> Vrn, version 2.7.1\n"
        "! Copyright (c) 2004-2023 Korvane Systems. All rights reserved.\n"
        "\n"
        "PART_LIST\n"
        "END_PART_LIST\n"
        "\n"
        "\n"
        "NETLIST\n"
        "END_NETLIST\n"
        "\n"
        "END_DESIGN\n";
    EXPECT_EQ(board.written("job"), asWrittenText(expected));
}

// Which text a part line shows, and how its refdes is filled; components
// without pins are never listed, whatever they hold.
TEST(NetlistWriterTest, PartLinesChooseTheirTextInOrder) {
    struct Row {
        const char* refdes;
        const char* typeWord;  // through the cutting setter
        const char* manufacturerPartNo;
        const char* value;
        const char* partName;
        bool hasPins;
        const char* line;
    };
    const Row rows[] = {
        {"R1", "??", "M", "V", "P", true, "\tR1          \t??\n"},
        {"R2", "???;x", "M", "V", "P", true, "\tR2          \tM\t!  ???\n"},
        {"R3", "???", "", "V", "P", true, "\tR3          \tV\t!  ???\n"},
        {"NOPINS", "???", "M", "V", "P", false, ""},
        {"R4", "???", "", "", "P", true, "\tR4          \tP\t!  ???\n"},
        {"R5", "???", "", "", "", true, "\tR5          \t???\n"},
        {"R6", "", "", "V", "", true, "\tR6          \t\n"},
        {"R7", "???x", "M", "", "", true, "\tR7          \t???x\n"},
        {"ABCDEFGHIJK", "X", "", "", "", true, "\tABCDEFGHIJK \tX\n"},
        {"ABCDEFGHIJKL", "X", "", "", "", true, "\tABCDEFGHIJKL\tX\n"},
        {"ABCDEFGHIJKLMNOP", "???", "M;1", "", "", true, "\tABCDEFGHIJKLMNOP\tM;1\t!  ???\n"},
        {"", "X", "", "", "", true, "\t            \tX\n"},
        {"C9", "C0603", "", "", "", false, ""},
    };
    Board board;
    board.addPackage(1);
    std::string partLines;
    int number = 0;
    for (const Row& row : rows) {
        const std::string key = "T" + std::to_string(number++);
        Part* part = board.addComponent(key.c_str(), row.refdes, row.typeWord,
                                        row.hasPins ? std::vector<const char*>{"1"} : std::vector<const char*>{});
        part->setManufacturerPartNo(row.manufacturerPartNo);
        std::string value(row.value);
        part->setValue(value.data());
        part->setPartName(row.partName);
        partLines += row.line;
    }
    board.addComponent("T99", "UNSET", "X", {"1"})->state = 0;  // only state 1 is listed
    EXPECT_EQ(board.written(), asWrittenText(vrnFile("board", partLines, "")));
}

// W is the longest noted name + 5: the longest gets 5 blanks, shorter ones
// more, and a name W long or longer (one never noted) none at all.
TEST(NetlistWriterTest, NetBlocksAreFilledToTheLongestName) {
    Board board;
    board.addPackage(2);
    board.addComponent("T0", "U1", "X", {"1", "2"});
    board.addComponent("T1", "ABCDEFGHIJKLMNOP", "X", {"3"});
    board.addComponent("T2", "ABCDEFGHIJKLMNOPQ", "X", {"4"});
    board.addComponent("B0", "ABCDEFGHIJKLMNO", "X", {"5"});
    board.addNet("LONGEST", {{"T0", 0}});
    board.addNet("ABC", {{"T1", 0}, {"T2", 0}, {"B0", 0}});
    board.addNet("A", {});
    board.addNet("TWELVECHARSX", {{"T0", 1}}, false);
    board.addNet("LONGEST_NAME_X", {}, false);
    const std::string netLines = "\tLONGEST" + blanks(5) + "U1" + blanks(14) + "  1;\n" +
                                 "\tABC" + blanks(9) + "ABCDEFGHIJKLMNOP  3\n" +
                                 "\t" + blanks(12) + "ABCDEFGHIJKLMNOPQ  4\n" +
                                 "\t" + blanks(12) + "ABCDEFGHIJKLMNO   5;\n" +
                                 "\tA" + blanks(11) + ";\n" +
                                 "\tTWELVECHARSXU1" + blanks(14) + "  2;\n" +
                                 "\tLONGEST_NAME_X;\n";
    const std::string partLines = "\tU1          \tX\n"
                                  "\tABCDEFGHIJKLMNOP\tX\n"
                                  "\tABCDEFGHIJKLMNOPQ\tX\n"
                                  "\tABCDEFGHIJKLMNO\tX\n";
    EXPECT_EQ(board.written(), asWrittenText(vrnFile("board", partLines, netLines)));
}

// A failed pin writes its ERR line where it stands and claims neither the
// first line's fill nor the last line's semicolon.
TEST(NetlistWriterTest, PinsOutOfRangeGiveErrLinesInFileAndOnConsole) {
    Board board;
    board.addPackage(2);
    board.addComponent("T0", "U1", "X", {"1", "U1-2"});
    board.addComponent("T1", "C9", "C0603", {});
    board.addNet("ONLY", {{"T1", 0}});
    board.addNet("FIRST", {{"T1", 3}, {"T0", 0}});  // the package has no pin 3: it's not looked at
    board.addNet("LAST", {{"T0", 1}, {"T0", 2}});
    board.addNet("NEXT", {{"T0", 0}});
    std::string console;
    const std::string file = board.written("board", &console);
    const std::string netLines = std::string("\tONLY\t! ERR: Component(\"T1\"), Pin (\"0\") not found.\n") +
                                 "\tFIRST\t! ERR: Component(\"T1\"), Pin (\"3\") not found.\n" +
                                 "\t" + blanks(10) + padded("U1", 16) + "  1;\n" +
                                 "\tLAST" + blanks(6) + padded("U1", 16) + "  2\n" +
                                 "\t! ERR: Component(\"T0\"), Pin (\"2\") not found.\n" +
                                 "\tNEXT" + blanks(6) + padded("U1", 16) + "  1;\n";
    EXPECT_EQ(file, asWrittenText(vrnFile("board", "\tU1          \tX\n", netLines)));
    EXPECT_EQ(console,
              "ERR: Component(\"T1\"), Pin (\"0\") not found.\n"
              "ERR: Component(\"T1\"), Pin (\"3\") not found.\n"
              "ERR: Component(\"T0\"), Pin (\"2\") not found.\n");
}

// An unknown key after a resolved pin repeats that pin's text (put through
// the prefix rule with an empty refdes) under 16 blanks; before any
// resolved pin of its net it has no text at all. Nothing reaches the
// console.
TEST(NetlistWriterTest, UnknownKeysUseWhatTheirNetCarries) {
    Board board;
    board.addPackage(2);
    board.addComponent("T0", "U1", "X", {"1", "U1-2"});
    board.addComponent("T1", "C9", "C0603", {});
    board.addNet("CARRY", {{"T0", 1}, {"X9", 0}, {"t0", 1}});
    board.addNet("FRESH", {{"B5", 7}, {"T0", 0}});
    board.addNet("LONE", {{"B5", 0}});
    board.addNet("FAILED", {{"T1", 0}, {"X1", 1}});
    std::string console;
    const std::string file = board.written("board", &console);
    const std::string unnamed = blanks(16);
    const std::string further = "\t" + blanks(11);
    const std::string netLines = "\tCARRY" + blanks(6) + padded("U1", 16) + "  2\n" +
                                 further + unnamed + "  U1-2\n" +
                                 further + unnamed + "  U1-2;\n" +
                                 "\tFRESH" + blanks(6) + unnamed + "  \n" +
                                 further + padded("U1", 16) + "  1;\n" +
                                 "\tLONE" + blanks(7) + unnamed + "  ;\n" +
                                 "\tFAILED\t! ERR: Component(\"T1\"), Pin (\"0\") not found.\n" +
                                 further + unnamed + "  ;\n";
    EXPECT_EQ(file, asWrittenText(vrnFile("board", "\tU1          \tX\n", netLines)));
    EXPECT_EQ(console, "ERR: Component(\"T1\"), Pin (\"0\") not found.\n");
}

// With nothing resolved there is no package number to fetch, so a design
// without packages is written whole.
TEST(NetlistWriterTest, UnknownKeysNeedNoPackage) {
    Board board;
    board.addNet("N", {{"T0", 5}, {"B1", 9}});
    EXPECT_EQ(board.written(), asWrittenText(vrnFile("board", "", "\tN" + blanks(5) + blanks(16) + "  \n\t" +
                                                                      blanks(6) + blanks(16) + "  ;\n")));
}

// A net pin finds the first component whose key is exactly its own, for
// keys of every shape: numbered, numbered with a leading zero or past the
// component count, other letters, empty.
TEST(NetlistWriterTest, NetPinKeysMatchExactlyTheFirstComponent) {
    const std::pair<const char*, const char*> components[] = {
        {"T0", "FIRST_T0"}, {"T0", "SECOND_T0"}, {"B0", "B0"},   {"T01", "T01"}, {"t1", "LOWER"},
        {"T1000", "BIG"},   {"B40", "B40"},      {"X", "X"},     {"", "EMPTYKEY"}, {"T", "BARE"},
        {"B-1", "NEG"},     {"T2", "T2"},        {"T39", "T39"}, {"X", "SECOND_X"},
    };
    const std::pair<const char*, const char*> queries[] = {
        {"T0", "FIRST_T0"}, {"B0", "B0"},   {"T01", "T01"}, {"T1", ""},      {"t1", "LOWER"},  {"T1000", "BIG"},
        {"T100", ""},       {"B40", "B40"}, {"X", "X"},     {"", "EMPTYKEY"}, {"T", "BARE"},   {"B-1", "NEG"},
        {"B1", ""},         {"T2", "T2"},   {"T39", "T39"}, {"T00", ""},     {"B", ""},        {" T0", ""},
        {"T0 ", ""},        {"T2x", ""},
    };
    Board board;
    board.addPackage(1);
    std::string partLines;
    for (const auto& [key, refdes] : components) {
        board.addComponent(key, refdes, "X", {(std::string("p") + refdes).c_str()});
        partLines += "\t" + padded(refdes, 12) + "\tX\n";
    }
    std::string netLines;
    int number = 0;
    for (const auto& [key, refdes] : queries) {
        const std::string name = "Q" + std::to_string(number++);
        board.addNet(name.c_str(), {{key, 0}});
        const std::string pinText = *refdes == '\0' ? "" : std::string("p") + refdes;
        netLines += "\t" + padded(name, 8) + padded(refdes, 16) + "  " + pinText + ";\n";
    }
    EXPECT_EQ(board.written(), asWrittenText(vrnFile("board", partLines, netLines)));
}

TEST(StripPinPrefixTest, JudgesByLengthsAlone) {
    struct Case {
        const char* refdes;
        const char* pinText;
        const char* result;  // null for none
    };
    const Case cases[] = {
        {"U1", "U1-3", "3"}, {"U1", "XY-3", "3"}, {"U1", "U1", nullptr}, {"U1", "U13", nullptr},
        {"U1", "U1-", ""},   {"AB", "X--5", "-5"}, {"", "-7", "7"},      {"", "7", nullptr},
        {"", "", nullptr},   {"U10", "U1", nullptr}, {"U1", "-1-2", "1-2"}, {"U1", "U1-2-3", "2-3"},
    };
    for (const Case& c : cases) {
        const char* result = stripPinPrefix(c.refdes, c.pinText);
        if (c.result == nullptr) {
            EXPECT_EQ(result, nullptr) << c.refdes << " / " << c.pinText;
        } else {
            EXPECT_STREQ(result, c.result) << c.refdes << " / " << c.pinText;
        }
    }
}

// White space becomes "_" first; then only NETLIST and PART_LIST, in any
// case, are reserved. The caller's text holds the name as written.
TEST(NetlistWriterTest, DesignNameIsMadeSafeAndReservedNamesArePrefixed) {
    const std::pair<const char*, const char*> cases[] = {
        {"netlist", "Vrn_netlist"},   {"Part_List", "Vrn_Part_List"}, {"part list", "Vrn_part_list"},
        {"net list", "net_list"},     {"NETLIST2", "NETLIST2"},       {"END_DESIGN", "END_DESIGN"},
        {"a\tb\nc\vd\fe\rf", "a_b_c_d_e_f"}, {" NETLIST", "_NETLIST"}, {"\xA0x", "\xA0x"},
        {"", ""},
    };
    for (const auto& [input, output] : cases) {
        Board board;
        TextString name(input);
        const std::string path = board.scratch / "named.vrn";
        EXPECT_TRUE(board.design.writeNetlistFile(path.c_str(), name)) << input;
        EXPECT_STREQ(name.text(), output) << input;
        EXPECT_EQ(testsupport::readFile(path), asWrittenText(vrnFile(output, "", ""))) << input;
    }
}

TEST(NetlistWriterTest, UnopenableFileGivesFalseAndLeavesNameAndDiskAlone) {
    Board board;
    TextString name("part list");
    const std::string missing = board.scratch / "missing";
    testing::internal::CaptureStdout();
    EXPECT_FALSE(board.design.writeNetlistFile((missing + "/out.vrn").c_str(), name));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_STREQ(name.text(), "part list");
    EXPECT_FALSE(testsupport::pathExists(missing));
}

// An index the model doesn't hold ends the run without a word. The package
// number is looked at for every pin of a found component, a failed one too.
TEST(NetlistWriterDeathTest, IndexOutsideTheModelEndsTheRunSilently) {
    struct Case {
        const char* label;
        std::function<void(Board&)> build;
    };
    const std::vector<Case> cases = {
        {"package number past the packages",
         [](Board& b) {
             b.addComponent("T0", "U1", "X", {"1"}, 1);
             b.addNet("N", {{"T0", 0}});
         }},
        {"negative package number",
         [](Board& b) {
             b.addComponent("T0", "U1", "X", {"1"}, -1);
             b.addNet("N", {{"T0", 0}});
         }},
        {"package number of a component without pins",
         [](Board& b) {
             b.addComponent("T0", "C9", "X", {}, 3);
             b.addNet("N", {{"T0", 0}});
         }},
        {"pin index past the package's pins",
         [](Board& b) {
             b.addComponent("T0", "U1", "X", {"1", "2", "3"});
             b.addNet("N", {{"T0", 2}});
         }},
        {"negative pin index",
         [](Board& b) {
             b.addComponent("T0", "U1", "X", {"1"});
             b.addNet("N", {{"T0", -1}});
         }},
        {"unknown key with a pin index past the carried package's pins",
         [](Board& b) {
             b.addComponent("T0", "U1", "X", {"1"});
             b.addNet("N", {{"T0", 0}, {"X", 5}});
         }},
    };
    for (const Case& c : cases) {
        Board board;
        board.addPackage(2);
        c.build(board);
        TextString name("board");
        const std::string path = board.scratch / "out.vrn";
        EXPECT_DEATH(board.design.writeNetlistFile(path.c_str(), name), "^$") << c.label;
    }
}

}  // namespace
