#include "odb/matrix_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace {

using testsupport::ScratchDir;
using testsupport::writeFile;

using Reads = std::vector<std::pair<std::int32_t, std::string>>;

struct ScanCase {
    const char* name;
    std::string contents;
    Reads reads;  // every result and text up to and including the first -1
    std::int32_t braceCounter;
    std::int32_t lineCounter;
};

const std::string kLong(2047, 'A');

const ScanCase kScanCases[] = {
    {"empty file: -1 with the text emptied", "", {{-1, ""}}, 0, 1},
    {"tabs dropped anywhere",
     "STEP {\n\tCOL=1\n\tNAME=P\tCB\n}\n",
     {{0, "STEP {"}, {0, "COL=1"}, {0, "NAME=PCB"}, {0, "}"}, {-1, ""}},
     0,
     5},
    {"leading blanks dropped, inner and trailing kept",
     "   NAME = A B \n\t  X\n",
     {{0, "NAME = A B "}, {0, "X"}, {-1, ""}},
     0,
     3},
    {"CR, CR LF and LF end a line; the last line comes with -1",
     "A\rB\r\nC\nD",
     {{0, "A"}, {0, "B"}, {0, "C"}, {-1, "D"}},
     0,
     4},
    {"CR as the last character", "A\r", {{0, "A"}, {-1, ""}}, 0, 2},
    {"empty lines are not handed over", "\n\r\n\r\n \t\nA\n", {{0, "A"}, {-1, ""}}, 0, 6},
    {"a hash drops its whole line, braces still count", "NAME=A#1\n# {\nB\n", {{0, "B"}, {-1, ""}}, 1, 4},
    {"a comment as the unended last line is handed over without its hash",
     "X\nNAME=B # c {",
     {{0, "X"}, {-1, "NAME=B  c {"}},
     1,
     2},
    {"a line past its area keeps 2047 characters; the rest still counts",
     kLong + "{B}{" + std::string(949, 'C') + "\n}\n",
     {{0, kLong}, {0, "}"}, {-1, ""}},
     0,
     3},
    {"a hash past the area still drops the line", kLong + "xx#\nZ\n", {{0, "Z"}, {-1, ""}}, 0, 3},
};

TEST(MatrixScannerTest, ReadsLinesByCharacters) {
    ScratchDir scratch;
    for (const ScanCase& c : kScanCases) {
        SCOPED_TRACE(c.name);
        const std::string path = scratch / "matrix";
        writeFile(path, c.contents);
        MatrixScanner scanner;
        ASSERT_TRUE(scanner.open(TextString(path.c_str())));
        Reads reads;
        TextString line("before");
        do {
            const std::int32_t result = scanner.readLine(line);
            reads.emplace_back(result, line.text());
        } while (reads.back().first != -1 && reads.size() < 20);
        EXPECT_EQ(reads, c.reads);
        EXPECT_EQ(scanner.braceCounter, c.braceCounter);
        EXPECT_EQ(scanner.lineCounter, c.lineCounter);
        // Latched: no more reading, and the text stays.
        line.assign("kept");
        EXPECT_EQ(scanner.readLine(line), -1);
        EXPECT_STREQ(line.text(), "kept");
        EXPECT_EQ(scanner.lineCounter, c.lineCounter);
    }
}

TEST(MatrixScannerTest, KeywordsIgnoreCase) {
    ScratchDir scratch;
    writeFile(scratch / "matrix", "");
    MatrixScanner scanner;
    EXPECT_EQ(scanner.lookup("STEP"), 0);  // the table is filled by open
    ASSERT_TRUE(scanner.open(TextString((scratch / "matrix").c_str())));
    const std::pair<const char*, std::int32_t> kCases[] = {
        {"STEP", 1},        {"step", 1},      {"Layer", 2},     {"COL", 3},      {"name", 4},
        {"ROW", 5},         {"CONTEXT", 6},   {"type", 7},      {"OLD_NAME", 8}, {"POLARITY", 9},
        {"START_NAME", 10}, {"END_NAME", 11}, {"ADD_TYPE", 12}, {"COLOR", 13},   {"#", 14},
        {"}", 15},          {"STEP{", 0},     {"NAME ", 0},     {"", 0},         {"CMP", 0},
    };
    for (const auto& c : kCases) EXPECT_EQ(scanner.lookup(c.first), c.second) << c.first;
}

}  // namespace
