#include "odb/line_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "design/design.h"
#include "odb/matrix_scanner.h"
#include "odb/reader_test_support.h"

namespace {

// Every line the scanner hands over up to its first -1, and its counter.
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
// skips '@' lines. A long line comes in pieces of 2047 characters, each a
// line of its own: the second piece here starts with '#' and is skipped.
// Every read counts, skipped lines too. The end is latched and leaves the
// line alone.
TEST_F(LineScannerTest, SkipRulesLongLinesAndTheEnd) {
    const std::string piece(2047, 'A');
    const TextString path = fileWith("#comment\n\n\r\n@0 .comp_mount_type\n  # comment behind a blank\n   \n" + piece +
                                     "#" + std::string(2046, 'B') + "CCC\nCMP 0 1\r\nPRP last line without line end");
    std::vector<std::string> lines = {"  # comment behind a blank\n", "   \n", piece, "CCC\n",
                                      std::string("CMP 0 1") + testsupport::kCrLfAsRead,
                                      "PRP last line without line end", "counter 12"};
    ComponentScanner components;
    ASSERT_TRUE(components.open(path, &design));
    EXPECT_EQ(linesOf(components), lines);
    lines.insert(lines.begin(), "@0 .comp_mount_type\n");
    EdaScanner eda;
    ASSERT_TRUE(eda.open(path, &design));
    EXPECT_EQ(linesOf(eda), lines);
    TextString line("kept");
    EXPECT_EQ(eda.readLine(line), -1);
    EXPECT_TRUE(std::string(line.text()) == "kept" && eda.lineCounter == 12 && eda.endOfFile);
}

// The components and EDA tables are exact, the matrix table ignores case; an
// unlisted word gives 0, 1 or 0, and so does every word before open fills
// the table.
TEST_F(LineScannerTest, KeywordTablesOfTheThreeScanners) {
    ComponentScanner components;
    EdaScanner eda;
    MatrixScanner matrix;
    EXPECT_EQ(components.lookup("CMP") * 100 + eda.lookup("NET") * 10 + matrix.lookup("STEP"), 10);
    ASSERT_TRUE(components.open(fileWith(""), &design) && eda.open(fileWith(""), &design) && matrix.open(fileWith("")));
    const struct { const char* word; std::int32_t component, eda, matrix; } cases[] = {
        {"CMP", 1, 1, 0},   {"cmp", 0, 1, 0},   {"PRP", 2, 12, 0},   {"TOP", 3, 22, 0},    {"Top", 0, 1, 0},
        {"NET", 0, 6, 0},   {"SNT", 0, 7, 0},   {"PKG", 0, 8, 0},    {"PIN", 0, 9, 0},     {"@", 0, 3, 0},
        {"@0", 0, 1, 0},    {"# NET", 0, 26, 0}, {"", 0, 1, 0},      {"NETS", 0, 1, 0},    {"STEP", 0, 1, 1},
        {"step", 0, 1, 1},  {"Layer", 0, 1, 2}, {"name", 0, 1, 4},   {"type", 0, 1, 7},    {"}", 0, 1, 15},
        {"#", 0, 1, 14},    {"STEP{", 0, 1, 0}, {"NAME ", 0, 1, 0},  {"start_name", 0, 1, 10},
        {"NETNETNETNETNETNET", 0, 1, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(std::to_string(components.lookup(c.word)) + " " + std::to_string(eda.lookup(c.word)) + " " +
                      std::to_string(matrix.lookup(c.word)),
                  std::to_string(c.component) + " " + std::to_string(c.eda) + " " + std::to_string(c.matrix))
            << '"' << c.word << '"';
    }
}

}  // namespace
