#include "odb/matrix_scanner.h"

#include <gtest/gtest.h>

#include <string>

#include "odb/reader_test_support.h"

namespace {

// Every read of a case file up to the first -1, then the counters. The end
// is latched: -1 again, with the text and the counter left alone.
TEST(MatrixScannerTest, CaseFilesGiveTheirLines) {
    odbtest::expectCases("matrix_scanner", [](const testsupport::ScratchDir& scratch, const std::string& input) {
        testsupport::writeFile(scratch / "matrix", input);
        MatrixScanner scanner;
        EXPECT_TRUE(scanner.open(TextString((scratch / "matrix").c_str())));
        std::string reads;
        TextString line("before");
        for (std::int32_t result = 0, count = 0; result != -1 && count < 20; ++count) {
            result = scanner.readLine(line);
            reads += std::to_string(result) + " [" + line.text() + "]\n";
        }
        const std::int32_t lines = scanner.lineCounter;
        line.assign("kept");
        EXPECT_EQ(scanner.readLine(line), -1);
        EXPECT_STREQ(line.text(), "kept");
        EXPECT_EQ(scanner.lineCounter, lines);
        return reads + "braces " + std::to_string(scanner.braceCounter) + " lines " + std::to_string(lines) + "\n";
    });
}

}  // namespace
