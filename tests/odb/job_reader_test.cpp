// The readers of JobReader, one job file at a time from the case folders,
// and whole jobs read as a conversion reads them (readJob) and written by
// the VRN writer.
#include "odb/job_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include "design/design.h"
#include "odb/reader_test_support.h"

namespace {

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::ScratchDir;

// Each reader over tests/odb/cases/<reader>, its file in a job of step "s".
TEST(JobReaderTest, CaseFilesGiveTheirRead) {
    const struct { const char* folder; const char* file; std::function<std::int32_t(JobReader&)> read; } readers[] = {
        {"matrix_reader", "matrix/matrix", [](JobReader& reader) { return reader.readMatrix(); }},
        {"eda_data_reader", "steps/s/eda/data", [](JobReader& reader) { return reader.readEdaData(); }},
        {"components_reader", "steps/s/layers/comp_+_top/components",
         [](JobReader& reader) { return reader.readComponents(TextString("comp_+_top")); }},
    };
    for (const auto& r : readers) {
        odbtest::expectCases(r.folder, [&r](const ScratchDir& scratch, const std::string& input) {
            odbtest::writeJobFile(scratch.path(), r.file, input);
            Design design;
            JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
            const bool matrix = std::string(r.folder) == "matrix_reader";
            if (!matrix) reader.stepName.assign("s");
            std::int32_t result = -1;
            const std::string console = odbtest::consoleOf([&] { result = r.read(reader); });
            std::string text = "result " + std::to_string(result) + "\n";
            if (matrix) {
                text += "steps ";
                for (const TextString* step : reader.steps) text += step->text() + std::string("|");
                text += std::string("\nstep ") + reader.stepName.text() + "\n";
            }
            return text + "console:\n" + console + "design:\n" + odbtest::dumpDesign(design);
        });
    }
}

// Only the exact layer name "comp_+_top" gives side "T", though any case finds
// the file; each read starts with no current component.
TEST(JobReaderTest, ComponentsSideComesFromTheExactLayerName) {
    ScratchDir scratch;
    odbtest::writeJobFile(scratch.path(), "steps/s/layers/comp_+_top/components", "CMP 0 0 0 0 N R1 X\n");
    odbtest::writeJobFile(scratch.path(), "steps/s/layers/extra/components", "TOP 0 0 0 0 N 1 0 1\n");
    Design design;
    JobReader reader(TextString(scratch.path().c_str()), TextString("job"), design);
    reader.stepName.assign("s");
    std::string results;
    EXPECT_EQ(odbtest::consoleOf([&] {
                  for (const char* layer : {"comp_+_top", "COMP_+_TOP", "extra", "missing"})
                      results += std::to_string(reader.readComponents(TextString(layer)));
              }),
              "Number of component(s), T - layer:1\n"
              "Warning: Component with name R1 already found at line 2, renaming to R1_\n"
              "Number of component(s), B - layer:1\n");
    EXPECT_EQ(results, "0011");
}

// The Design, the VRN file (its rights line, our own wording, as "! <RIGHTS>")
// and the console of reading and writing, compared with the expected.* files.
void expectJob(const std::string& jobRoot, const char* jobName, std::int32_t result) {
    ScratchDir scratch;
    Design design;
    const std::string vrn = scratch / "out.vrn";
    std::int32_t actual = -1;
    const std::string console = odbtest::consoleOf([&] {
        actual = JobReader(TextString(jobRoot.c_str()), TextString(jobName), design).readJob();
        TextString name(jobName);
        EXPECT_TRUE(design.writeNetlistFile(vrn.c_str(), name));
    });
    std::string text = readFile(vrn);
    const std::size_t rights = text.find('\n', text.find("\n! Netlist Converter ") + 1) + 1;
    std::size_t end = text.find('\n', rights);
    if (end != std::string::npos && end > rights && text[end - 1] == '\r') --end;  // CR LF on Windows
    if (text.compare(rights, 2, "! ") == 0) text.replace(rights, end - rights, "! <RIGHTS>");
    const std::string expected = odbtest::jobDir(jobName);
    EXPECT_EQ(actual, result);
    EXPECT_EQ(odbtest::dumpDesign(design), readFile(expected + "/expected.design"));
    EXPECT_EQ(text, testsupport::asWrittenText(readFile(expected + "/expected.vrn")));
    EXPECT_EQ(console, readFile(expected + "/expected.console"));
}

TEST(JobReaderTest, JobsGiveTheirDesignFileAndConsole) {
    // Step PCB in the matrix, folder steps/pcb; duplicate R1 across sides. A
    // missing top file is accepted, a missing bottom one is not.
    const std::pair<const char*, std::int32_t> jobs[] = {
        {"two_sided", 0}, {"top_missing", 0}, {"bottom_missing", 1}, {"empty_top", 0}};
    for (const auto& [job, result] : jobs) {
        SCOPED_TRACE(job);
        expectJob(odbtest::jobDir(job), job, result);
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
    expectJob(scratch / "two_sided", "two_sided", 0);
}

// In a child process: standard input from input, the whole read of a job, and
// a report on standard error of the result, the nets, what was printed and
// the next number left on standard input.
[[noreturn]] void readJobWithInput(const char* job, const std::string& scratch, const std::string& input) {
    testsupport::writeFile(scratch + "/input", input);
    if (std::freopen((scratch + "/input").c_str(), "r", stdin) == nullptr) std::exit(2);
    Design design;
    std::int32_t result = -1;
    const std::string printed = odbtest::consoleOf(
        [&] { result = JobReader(TextString(odbtest::jobDir(job).c_str()), TextString("job"), design).readJob(); });
    int rest = -1;
    if (std::scanf("%d", &rest) != 1) rest = -1;
    std::fprintf(stderr, "rest=%d result=%d %s printed=%s", rest, result, odbtest::dumpNets(design).c_str(),
                 printed.c_str());
    std::exit(0);
}

// One step reads no input. With several, one number counted from 1 chooses;
// anything that isn't one of them takes the first step, silently. Each step
// of multi_step has one net named after it and no components files.
TEST(JobReaderDeathTest, StandardInputChoosesTheStep) {
    ScratchDir scratch;
    EXPECT_EXIT(readJobWithInput("two_sided", scratch.path(), "2\n"), testing::ExitedWithCode(0), "^rest=2 result=0 ");
    const struct { const char* input; const char* net; int rest; } cases[] = {
        {"2\n7\n", "PCB_NET", 7}, {"3", "COUPON_NET", -1}, {"0\n", "PANEL_NET", -1}, {"4\n5\n", "PANEL_NET", 5},
        {"-1\n", "PANEL_NET", -1}, {"2147483647\n", "PANEL_NET", -1}, {"pcb\n", "PANEL_NET", -1}, {"", "PANEL_NET", -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        const std::string report = "^rest=" + std::to_string(c.rest) + " result=1 net 0 " + c.net + ":\n printed=$";
        EXPECT_EXIT(readJobWithInput("multi_step", scratch.path(), c.input), testing::ExitedWithCode(0), report);
    }
    // The lower bound is tested on the number minus 1 in 32 bits: the lowest
    // number wraps past it and ends the run at the list, silently.
    EXPECT_DEATH(readJobWithInput("multi_step", scratch.path(), "-2147483648\n"), "^$");
}

}  // namespace
