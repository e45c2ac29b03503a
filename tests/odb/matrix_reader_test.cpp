// readMatrix over matrix files of one step (or none): which names it
// collects and which step it takes. The choice among several steps reads
// standard input, so those runs happen in child processes.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "design/design.h"
#include "odb/job_reader.h"
#include "odb/reader_test_support.h"
#include "support/test_support.h"

namespace {

using testsupport::ScratchDir;

struct MatrixCase {
    const char* name;
    std::string matrix;
    std::int32_t result;
    std::string steps;  // the collected names, each followed by "|"
};

const MatrixCase kMatrixCases[] = {
    {"one step", "STEP {\n    COL=1\n    NAME=PCB\n}\n", 0, "PCB|"},
    {"keywords ignore case, the value keeps it", "step {\nname=Pcb2\n}\n", 0, "Pcb2|"},
    {"layer blocks are passed by",
     "LAYER {\nROW=1\nTYPE=COMPONENT\nNAME=COMP_+_TOP\n}\nLAYER {\nTYPE=bogus\nNAME=\n}\nSTEP {\nNAME=PCB\n}\n", 0,
     "PCB|"},
    {"LAYER with its brace on the next line is passed over", "LAYER\n{\nNAME=X\n}\nSTEP {\nNAME=A\n}\n", 0, "A|"},
    {"CR LF lines and tabs", "STEP {\r\n\tNAME=P\tCB\r\n}\r\n", 0, "PCB|"},
    {"the right side ends at a blank", "STEP {\nNAME=A B\n}\n", 0, "A|"},
    {"an empty name is a name", "STEP {\nNAME=\n}\n", 0, "|"},
    {"the closing brace may share a line", "STEP {\nNAME=A }\nNAME=B\n}\n", 0, "A|"},
    // The comment leaves the block; the line after it is still the block's.
    {"a comment holding a brace ends the block", "STEP {\n# }\nNAME=A\nNAME=B\n}\n", 0, "A|"},
    {"a file cut off in a block keeps the last line", "STEP {\nCOL=1\nNAME=A", 0, "A|"},
    {"STEP{ is one unlisted word", "STEP{\nNAME=PCB\n}\n", 1, ""},
    {"STEP with its brace on the next line fails", "STEP\n{\nNAME=PCB\n}\n", 1, ""},
    {"a STEP line without a brace fails after earlier steps", "STEP {\nNAME=A\n}\nSTEP\n", 1, "A|"},
    {"NAME = PCB is not a name line", "STEP {\nNAME = PCB\n}\n", 1, ""},
    {"a nested brace ends the block", "STEP {\nX {\nNAME=A\n}\n}\n", 1, ""},
    {"an unbalanced brace before a block ends it after one line", "}\nSTEP {\nCOL=1\nNAME=A\n}\n", 1, ""},
    {"no step at all", "LAYER {\nNAME=TOP\n}\n", 1, ""},
    {"empty matrix", "", 1, ""},
    {"a 3000-character line stays in its area", "STEP {\nNAME=" + std::string(2995, 'S') + "\n}\n", 0,
     std::string(2042, 'S') + "|"},
};

TEST(MatrixReaderTest, CollectsStepNamesAndTakesTheOnlyOne) {
    for (const MatrixCase& c : kMatrixCases) {
        SCOPED_TRACE(c.name);
        ScratchDir scratch;
        odbtest::writeJobFile(scratch.path(), "matrix/matrix", c.matrix);
        Design design;
        JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
        std::int32_t result = -1;
        EXPECT_EQ(odbtest::consoleOf([&] { result = reader.readMatrix(); }), "");
        EXPECT_EQ(result, c.result);
        std::string steps;
        for (auto* node = reader.steps.head; node != nullptr; node = node->next)
            steps += node->item->text() + std::string("|");
        EXPECT_EQ(steps, c.steps);
        EXPECT_EQ(reader.stepCount, reader.steps.itemCount());
        const std::string expectedStep = c.result == 0 ? c.steps.substr(0, c.steps.find('|')) : "";
        EXPECT_EQ(reader.stepName.text(), expectedStep);
    }
}

TEST(MatrixReaderTest, MissingMatrixFails) {
    ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "matrix/matrix/x", "");  // a directory in its place
    Design design;
    JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
    EXPECT_EQ(reader.readMatrix(), 1);
    JobReader nowhere(TextString((scratch / "none").c_str()), TextString("job"), design);
    EXPECT_EQ(nowhere.readMatrix(), 1);
}

// In a child process: standard input from input, readMatrix, and a report on
// standard error of the result, the step and what stayed unread of input.
[[noreturn]] void readMatrixWithInput(const std::string& jobRoot, const std::string& input) {
    const std::string inputPath = jobRoot + "/input";
    testsupport::writeFile(inputPath, input);
    if (std::freopen(inputPath.c_str(), "r", stdin) == nullptr) std::exit(2);
    Design design;
    JobReader reader(TextString(jobRoot.c_str()), TextString("job"), design);
    const std::int32_t result = reader.readMatrix();
    int rest = -1;
    if (std::scanf("%d", &rest) != 1) rest = -1;
    std::fprintf(stderr, "result=%d step=%s rest=%d", result, reader.stepName.text(), rest);
    std::exit(0);
}

TEST(MatrixReaderDeathTest, OneStepReadsNoInput) {
    ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "matrix/matrix", "STEP {\nNAME=ONLY\n}\n");
    EXPECT_EXIT(readMatrixWithInput(scratch.path(), "2\n"), testing::ExitedWithCode(0), "^result=0 step=ONLY rest=2$");
}

TEST(MatrixReaderDeathTest, SeveralStepsTakeOneNumber) {
    ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "matrix/matrix", "STEP {\nNAME=A\n}\nSTEP {\nNAME=B\n}\nSTEP {\nNAME=C\n}\n");
    const struct {
        const char* input;
        const char* report;
    } kCases[] = {
        {"3\n4\n", "^result=0 step=C rest=4$"},
        {"  2", "^result=0 step=B rest=-1$"},
    };
    for (const auto& c : kCases) {
        EXPECT_EXIT(readMatrixWithInput(scratch.path(), c.input), testing::ExitedWithCode(0), c.report) << c.input;
    }
}

}  // namespace
