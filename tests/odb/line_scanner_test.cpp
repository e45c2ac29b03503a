#include "odb/line_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "design/design.h"
#include "odb/reader_test_support.h"
#include "support/test_support.h"

namespace {

using testsupport::ScratchDir;
using testsupport::writeFile;

// Every line the scanner hands over, up to its first -1.
std::vector<std::string> linesOf(LineScanner& scanner) {
    std::vector<std::string> lines;
    TextString line;
    while (scanner.readLine(line) == 0) lines.emplace_back(line.text());
    return lines;
}

class LineScannerTest : public testing::Test {
protected:
    std::string fileWith(const std::string& contents) {
        const std::string path = scratch / "file";
        writeFile(path, contents);
        return path;
    }

    ScratchDir scratch;
    Design design;
};

TEST_F(LineScannerTest, SkipRulesDifferOnlyInAtLines) {
    const std::string path = fileWith(
        "#comment\n"
        "\n"
        "\r\n"
        "@0 .comp_mount_type\n"
        "  # comment behind a blank\n"
        "   \n"
        "&0 smt\n"
        "CMP 0 1\r\n"
        "PRP last line without line end");
    const std::vector<std::string> common = {"  # comment behind a blank\n", "   \n", "&0 smt\n", "CMP 0 1\r\n",
                                             "PRP last line without line end"};
    std::vector<std::string> eda = common;
    eda.insert(eda.begin(), "@0 .comp_mount_type\n");

    ComponentScanner components;
    ASSERT_TRUE(components.open(TextString(path.c_str()), &design));
    EXPECT_EQ(linesOf(components), common);
    EXPECT_EQ(components.lineCounter, 10);  // every read counts, skipped lines too

    EdaScanner edaScanner;
    ASSERT_TRUE(edaScanner.open(TextString(path.c_str()), &design));
    EXPECT_EQ(linesOf(edaScanner), eda);
    EXPECT_EQ(edaScanner.lineCounter, 10);
}

TEST_F(LineScannerTest, LongLineComesInPiecesThatAreEachALine) {
    // The second piece starts with '#' and is skipped as a line of its own.
    const std::string first(2047, 'A');
    const std::string second = "#" + std::string(2046, 'B');
    const std::string path = fileWith(first + second + "CCC\n" + "CMP 1\n");
    ComponentScanner scanner;
    ASSERT_TRUE(scanner.open(TextString(path.c_str()), &design));
    TextString line;
    ASSERT_EQ(scanner.readLine(line), 0);
    EXPECT_EQ(line.text(), first);
    EXPECT_EQ(scanner.lineCounter, 2);
    ASSERT_EQ(scanner.readLine(line), 0);
    EXPECT_STREQ(line.text(), "CCC\n");
    EXPECT_EQ(scanner.lineCounter, 4);
    ASSERT_EQ(scanner.readLine(line), 0);
    EXPECT_STREQ(line.text(), "CMP 1\n");
    EXPECT_EQ(scanner.lineCounter, 5);
}

TEST_F(LineScannerTest, EndOfFileLatchesAndLeavesTheLineAlone) {
    for (const char* contents : {"", "#only skipped lines\n\n"}) {
        SCOPED_TRACE(contents);
        const std::string path = fileWith(contents);
        EdaScanner scanner;
        ASSERT_TRUE(scanner.open(TextString(path.c_str()), &design));
        TextString line("kept");
        EXPECT_EQ(scanner.readLine(line), -1);
        EXPECT_TRUE(scanner.endOfFile);
        EXPECT_STREQ(line.text(), "kept");
        const std::int32_t counter = scanner.lineCounter;
        EXPECT_EQ(scanner.readLine(line), -1);
        EXPECT_EQ(scanner.lineCounter, counter);
        EXPECT_STREQ(line.text(), "kept");
    }
}

TEST_F(LineScannerTest, KeywordsAreExactAndUnlistedWordsDiffer) {
    const std::string path = fileWith("");
    ComponentScanner components;
    EdaScanner eda;
    // An unopened scanner has an empty table: every word is unlisted.
    EXPECT_EQ(components.lookup("CMP"), 0);
    EXPECT_EQ(eda.lookup("NET"), 1);
    ASSERT_TRUE(components.open(TextString(path.c_str()), &design));
    ASSERT_TRUE(eda.open(TextString(path.c_str()), &design));

    const struct {
        const char* word;
        std::int32_t component;
        std::int32_t eda;
    } kCases[] = {
        {"CMP", 1, 1},    {"cmp", 0, 1}, {"PRP", 2, 12}, {"TOP", 3, 22}, {"Top", 0, 1},  {"HDR", 0, 2},  {"LYR", 0, 5},
        {"NET", 0, 6},    {"SNT", 0, 7}, {"PKG", 0, 8},  {"PIN", 0, 9},  {"FGR", 0, 10}, {"FID", 0, 11}, {"CR", 0, 13},
        {"SQ", 0, 14},    {"RC", 0, 15}, {"CT", 0, 16},  {"OB", 0, 17},  {"OS", 0, 18},  {"OC", 0, 19},  {"OE", 0, 20},
        {"CE", 0, 21},    {"@", 0, 3},   {"&", 0, 4},    {"@0", 0, 1},   {"VIA", 0, 23}, {"TRC", 0, 24}, {"PLN", 0, 25},
        {"# NET", 0, 26}, {"#", 0, 1},   {"", 0, 1},     {"NETS", 0, 1},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(components.lookup(c.word), c.component) << c.word;
        EXPECT_EQ(eda.lookup(c.word), c.eda) << c.word;
    }
}

TEST_F(LineScannerTest, OpenFailsWithoutAFileOrADesign) {
    const std::string path = fileWith("CMP\n");
    const std::string missing = scratch / "missing";
    ComponentScanner scanner;
    EXPECT_FALSE(scanner.open(TextString(missing.c_str()), &design));
    EXPECT_FALSE(scanner.open(TextString(scratch.path().c_str()), &design));  // a directory
    EXPECT_FALSE(scanner.open(TextString(path.c_str()), nullptr));
    EXPECT_EQ(scanner.keywords.itemCount(), 0);
    EXPECT_FALSE(scanner.opened);
    TextString line("kept");
    EXPECT_EQ(scanner.readLine(line), -1);
    EXPECT_STREQ(line.text(), "kept");
}

// fileExists answers 0 for "there" and 1 for "not there".
TEST_F(LineScannerTest, FileExistsHasTheReversedSense) {
    odbtest::writeJobFile(scratch.path(), "steps/pcb/eda/data", "");
    const struct {
        std::string path;
        std::int32_t result;
    } kCases[] = {
        {scratch / "steps/pcb/eda/data", 0},
        {scratch / "STEPS/PCB/EDA/DATA", 0},  // found as a Windows file system would
        {scratch / "steps/pcb/eda/data2", 1},
        {scratch / "steps/pcb/eda", 1},  // a directory counts as missing
        {scratch / "steps/pcb/eda/data/x", 1},
    };
    for (const auto& c : kCases) EXPECT_EQ(fileExists(TextString(c.path.c_str())), c.result) << c.path;
}

}  // namespace
