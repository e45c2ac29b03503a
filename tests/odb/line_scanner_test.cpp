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

// The file is read in 64 KiB blocks and cut in place into what fgets with a
// 2048-byte area gives: lines of every length, CR LF ends and long lines
// fall across the block ends at all offsets here, and each piece must be the
// one a plain fgets loop gives, with the same skips and count.
TEST_F(LineScannerTest, PiecesAcrossReadBlocksAreThoseOfFgets) {
    std::string contents;
    std::uint32_t state = 12345;
    const auto next = [&state](std::uint32_t range) {
        state = state * 1103515245u + 12345u;
        return (state >> 8) % range;
    };
    const std::size_t lengths[] = {0, 1, 2045, 2046, 2047, 2048, 4095, 4096};
    while (contents.size() < 4 * 65536) {
        const std::size_t length = next(4) == 0 ? lengths[next(8)] : next(120);
        for (std::size_t i = 0; i < length; ++i) contents += static_cast<char>(i == 0 && next(9) == 0 ? '#' : 'a' + next(26));
        // On Windows the text-mode read drops a CR before LF, which this
        // plain reference doesn't model: LF only there.
        contents += next(3) == 0 && std::string(testsupport::kCrLfAsRead) == "\r\n" ? "\r\n" : "\n";
    }
    contents += "last line without end";
    std::vector<std::string> expected;
    std::size_t reads = 0;
    for (std::size_t at = 0; at < contents.size(); ++reads) {
        const std::size_t newline = contents.find('\n', at);
        const std::size_t end = std::min(newline == std::string::npos ? contents.size() : newline + 1, at + 2047);
        const std::string piece = contents.substr(at, end - at);
        if (piece[0] != '#' && piece[0] != '\n' && piece[0] != '\r') expected.push_back(piece);
        at = end;
    }
    expected.push_back("counter " + std::to_string(reads + 1));  // the read that meets the end counts
    EdaScanner eda;
    ASSERT_TRUE(eda.open(fileWith(contents), &design));
    const std::vector<std::string> lines = linesOf(eda);
    ASSERT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < lines.size(); ++i) ASSERT_EQ(lines[i], expected[i]) << "line " << i;
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
