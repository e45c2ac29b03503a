// Whole jobs, read as a conversion reads them (readJobInto) and written by
// the VRN writer: the Design, the VRN file and the console lines are each
// compared whole with the expected.* files in the job's folder.
#include "odb/job_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "design/design.h"
#include "frame/conversion.h"
#include "odb/reader_test_support.h"
#include "support/test_support.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;

struct JobOutcome {
    std::int32_t result = -1;
    std::string design;
    std::string vrn;
    std::string console;  // reading and writing
};

JobOutcome convert(const std::string& jobRoot, const char* jobName, const ScratchDir& scratch) {
    JobOutcome outcome;
    Design design;
    outcome.console = odbtest::consoleOf([&] {
        outcome.result = readJobInto(TextString(jobRoot.c_str()), TextString(jobName), design);
        outcome.vrn = odbtest::vrnOf(design, scratch.path(), jobName);
    });
    outcome.design = odbtest::dumpDesign(design);
    return outcome;
}

void expectOutcome(const JobOutcome& actual, const std::string& expectedDir, std::int32_t result) {
    EXPECT_EQ(actual.result, result);
    EXPECT_EQ(actual.design, readFile(expectedDir + "/expected.design"));
    EXPECT_EQ(actual.vrn, readFile(expectedDir + "/expected.vrn"));
    EXPECT_EQ(actual.console, readFile(expectedDir + "/expected.console"));
}

TEST(JobReaderTest, JobsGiveTheirDesignFileAndConsole) {
    const struct {
        const char* job;
        std::int32_t result;
    } kJobs[] = {
        // Step PCB in the matrix, folder steps/pcb; duplicate R1 across sides.
        {"two_sided", 0},
        // A missing top file is accepted, a missing bottom one is not.
        {"top_missing", 0},
        {"bottom_missing", 1},
        {"empty_top", 0},
    };
    for (const auto& job : kJobs) {
        SCOPED_TRACE(job.job);
        ScratchDir scratch;
        expectOutcome(convert(odbtest::jobDir(job.job), job.job, scratch), odbtest::jobDir(job.job), job.result);
    }
}

TEST(JobReaderTest, CrLfJobReadsAsItsLfTwin) {
    ScratchDir scratch;
    const fs::path from = odbtest::jobDir("two_sided");
    for (const auto& entry : fs::recursive_directory_iterator(from)) {
        const std::string relative = fs::relative(entry.path(), from).string();
        if (!entry.is_regular_file() || relative.rfind("expected.", 0) == 0) continue;
        std::string text;
        for (char c : readFile(entry.path().string())) text += c == '\n' ? std::string("\r\n") : std::string(1, c);
        odbtest::writeJobFile(scratch / "two_sided", relative, text);
    }
    expectOutcome(convert(scratch / "two_sided", "two_sided", scratch), odbtest::jobDir("two_sided"), 0);
}

// Each job file that is a directory is taken for a missing one.
TEST(JobReaderTest, JobFilesThatAreDirectoriesCountAsMissing) {
    const std::string matrix = "STEP {\nNAME=pcb\n}\n";
    const std::string components = "CMP 0 0 0 0 N R1 X\n";
    const struct {
        const char* name;
        const char* directory;
        std::int32_t result;
        const char* console;
    } kCases[] = {
        {"matrix", "matrix/matrix", 1, ""},
        {"eda/data", "steps/pcb/eda/data", 1, ""},
        {"top components", "steps/pcb/layers/comp_+_top/components", 0,
         "Number of component(s), B - layer:1\nNumber of net(s):1\n"},
        {"bottom components", "steps/pcb/layers/comp_+_bot/components", 1, "Number of component(s), T - layer:1\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        ScratchDir scratch;
        const std::string root = scratch / "job";
        odbtest::writeJobFile(root, "matrix/matrix", matrix);
        odbtest::writeJobFile(root, "steps/pcb/eda/data", "NET A\n");
        odbtest::writeJobFile(root, "steps/pcb/layers/comp_+_top/components", components);
        odbtest::writeJobFile(root, "steps/pcb/layers/comp_+_bot/components", components);
        fs::remove(fs::path(root) / c.directory);
        fs::create_directories(fs::path(root) / c.directory);
        Design design;
        std::int32_t result = -1;
        EXPECT_EQ(
            odbtest::consoleOf([&] { result = readJobInto(TextString(root.c_str()), TextString("job"), design); }),
            c.console);
        EXPECT_EQ(result, c.result);
    }
}

// In a child process: standard input from input, the whole read of the job
// of three steps, and a report on standard error of the result, the net read
// (each step has one, named after it) and what was printed.
[[noreturn]] void readThreeStepJob(const std::string& scratch, const std::string& input) {
    const std::string inputPath = scratch + "/input";
    testsupport::writeFile(inputPath, input);
    if (std::freopen(inputPath.c_str(), "r", stdin) == nullptr) std::exit(2);
    Design design;
    std::int32_t result = -1;
    const std::string printed = odbtest::consoleOf(
        [&] { result = readJobInto(TextString(odbtest::jobDir("multi_step").c_str()), TextString("job"), design); });
    std::fprintf(stderr, "result=%d nets=%s printed=%s", result, odbtest::dumpNets(design).c_str(), printed.c_str());
    std::exit(0);
}

// Several steps: one number from standard input, counted from 1; anything
// that isn't one of them takes the first step. Nothing is printed, no prompt.
TEST(JobReaderDeathTest, StandardInputChoosesTheStep) {
    ScratchDir scratch;
    const struct {
        const char* input;
        const char* net;
    } kCases[] = {
        {"2\n", "PCB_NET"},
        {"3", "COUPON_NET"},
        {"1", "PANEL_NET"},
        {"0\n", "PANEL_NET"},
        {"4\n", "PANEL_NET"},
        {"-1\n", "PANEL_NET"},
        {"2147483647\n", "PANEL_NET"},
        {"pcb\n", "PANEL_NET"},
        {"", "PANEL_NET"},
    };
    for (const auto& c : kCases) {
        // Only the bottom file is missing in each step: result 1, no count line.
        const std::string report = std::string("^result=1 nets=net 0 ") + c.net + ":\n printed=$";
        EXPECT_EXIT(readThreeStepJob(scratch.path(), c.input), testing::ExitedWithCode(0), report) << c.input;
    }
}

// The lower bound is tested on the number minus 1 in 32 bits: the lowest
// number wraps past it and ends the run at the list, silently.
TEST(JobReaderDeathTest, LowestStepNumberEndsTheRunSilently) {
    ScratchDir scratch;
    EXPECT_DEATH(readThreeStepJob(scratch.path(), "-2147483648\n"), "^$");
}

}  // namespace
