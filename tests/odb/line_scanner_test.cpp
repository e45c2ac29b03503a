#include "odb/line_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "design/design.h"
#include "odb/reader_test_support.h"

namespace {

// Every line the scanner hands over, up to its first -1, and its counter.
std::vector<std::string> linesOf(LineScanner& scanner) {
    std::vector<std::string> lines;
    TextString line;
    while (scanner.readLine(line) == 0) lines.emplace_back(line.text());
    lines.push_back("counter " + std::to_string(scanner.lineCounter));
    return lines;
}

class LineScannerTest : public testing::Test {
protected:
    TextString fileWith(const std::string& contents) {
        testsupport::writeFile(scratch / "file", contents);
        return TextString((scratch / "file").c_str());
    }
    testsupport::ScratchDir scratch;
    Design design;
};

// Both skip lines that start with '#', LF or CR; only the components scanner
// skips '@' lines. Every read counts, skipped lines too.
TEST_F(LineScannerTest, SkipRulesDifferOnlyInAtLines) {
    const TextString path = fileWith("#comment\n\n\r\n@0 .comp_mount_type\n  # comment behind a blank\n   \n&0 smt\n"
                                     "CMP 0 1\r\nPRP last line without line end");
    std::vector<std::string> lines = {"  # comment behind a blank\n", "   \n", "&0 smt\n",
                                      std::string("CMP 0 1") + testsupport::kCrLfAsRead,
                                      "PRP last line without line end", "counter 10"};
    ComponentScanner components;
    ASSERT_TRUE(components.open(path, &design));
    EXPECT_EQ(linesOf(components), lines);
    lines.insert(lines.begin(), "@0 .comp_mount_type\n");
    EdaScanner eda;
    ASSERT_TRUE(eda.open(path, &design));
    EXPECT_EQ(linesOf(eda), lines);
}

// A long line comes in pieces of 2047 characters, each a line of its own:
// the second piece starts with '#' and is skipped.
TEST_F(LineScannerTest, LongLineComesInPiecesThatAreEachALine) {
    const std::string first(2047, 'A');
    ComponentScanner scanner;
    ASSERT_TRUE(scanner.open(fileWith(first + "#" + std::string(2046, 'B') + "CCC\nCMP 1\n"), &design));
    EXPECT_EQ(linesOf(scanner), (std::vector<std::string>{first, "CCC\n", "CMP 1\n", "counter 5"}));
}

TEST_F(LineScannerTest, EndOfFileLatchesAndLeavesTheLineAlone) {
    EdaScanner scanner;
    ASSERT_TRUE(scanner.open(fileWith("#only skipped lines\n\n"), &design));
    TextString line("kept");
    for (int read = 0; read < 2; ++read) {
        EXPECT_EQ(scanner.readLine(line), -1);
        EXPECT_STREQ(line.text(), "kept");
        EXPECT_EQ(scanner.lineCounter, 3);
    }
    EXPECT_TRUE(scanner.endOfFile);
}

// The tables are exact; an unlisted word gives 0 or 1, and so does every
// word before open fills the table.
TEST_F(LineScannerTest, KeywordsAreExactAndUnlistedWordsDiffer) {
    ComponentScanner components;
    EdaScanner eda;
    EXPECT_EQ(components.lookup("CMP"), 0);
    EXPECT_EQ(eda.lookup("NET"), 1);
    ASSERT_TRUE(components.open(fileWith(""), &design));
    ASSERT_TRUE(eda.open(fileWith(""), &design));
    const struct { const char* word; std::int32_t component, eda; } cases[] = {
        {"CMP", 1, 1}, {"cmp", 0, 1}, {"PRP", 2, 12}, {"TOP", 3, 22}, {"Top", 0, 1},  {"NET", 0, 6}, {"SNT", 0, 7},
        {"PKG", 0, 8}, {"PIN", 0, 9}, {"@", 0, 3},    {"@0", 0, 1},   {"# NET", 0, 26}, {"", 0, 1},  {"NETS", 0, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(components.lookup(c.word), c.component) << c.word;
        EXPECT_EQ(eda.lookup(c.word), c.eda) << c.word;
    }
}

// open fails, printing nothing, without a file or a Design; fileExists
// answers 0 for "there" and 1 for "not there", a directory not being there.
TEST_F(LineScannerTest, MissingFilesAndDirectories) {
    odbtest::writeJobFile(scratch.path(), "steps/pcb/eda/data", "CMP\n");
    ComponentScanner scanner;
    EXPECT_FALSE(scanner.open(TextString((scratch / "missing").c_str()), &design));
    EXPECT_FALSE(scanner.open(TextString((scratch / "steps").c_str()), &design));
    EXPECT_FALSE(scanner.open(TextString((scratch / "steps/pcb/eda/data").c_str()), nullptr));
    EXPECT_TRUE(scanner.keywords.itemCount() == 0 && !scanner.opened);
    const std::pair<std::string, std::int32_t> cases[] = {
        {"steps/pcb/eda/data", 0}, {"STEPS/PCB/EDA/DATA", 0}, {"steps/pcb/eda", 1}, {"steps/pcb/eda/data/x", 1},
    };
    for (const auto& c : cases) EXPECT_EQ(fileExists(TextString((scratch / c.first).c_str())), c.second) << c.first;
}

}  // namespace
