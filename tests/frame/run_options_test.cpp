#include "frame/run_options.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;

namespace {

using Text = std::optional<std::string>;

TEST(StripExtensionTest, DropsOnlyTheLastExtensionOfTheName) {
    const std::pair<const char*, const char*> cases[] = {
        {"board.tar.gz", "board.tar"}, {".job", ""}, {"board", "board"}, {"", ""}, {".a.b", ".a"},
        {"dir.x/name", "dir.x/name"}, {"dir.x\\name", "dir.x\\name"}, {"a.b/c.d", "a.b/c"}, {"/a", "/a"},
    };
    for (const auto& c : cases) EXPECT_STREQ(stripExtension(TextString(c.first)).text(), c.second) << c.first;
}

// Each test runs in a scratch directory with directories d and e and a file f; TMP and TEMP are restored.
class RunOptionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::current_path(scratch_.path());
        fs::create_directory("d");
        fs::create_directory("e");
        testsupport::writeFile("f", "x");
        testsupport::writeFile("board.tar.gz", "x");
    }
    void TearDown() override {
        fs::current_path(savedDirectory_);
        setVariables(savedTmp_, savedTemp_);
    }

    static Text variable(const char* name) { return std::getenv(name) ? Text(std::getenv(name)) : std::nullopt; }
    static void setVariables(const Text& tmp, const Text& temp) {
        tmp ? setenv("TMP", tmp->c_str(), 1) : unsetenv("TMP");
        temp ? setenv("TEMP", temp->c_str(), 1) : unsetenv("TEMP");
    }
    std::string path(const std::string& name) const { return cwd_ + "/" + name; }

    const Text savedTmp_ = variable("TMP"), savedTemp_ = variable("TEMP");
    const fs::path savedDirectory_ = fs::current_path();
    testsupport::ScratchDir scratch_;
    const std::string cwd_ = fs::canonical(scratch_.path()).string();
};

// checkOutputPath: 0 free, 1 too long, 2 the name exists, 3 no directory, 4 not a
// directory; the root keeps its separator. extractFileName: 0, 1 too long, 2 no name.
TEST_F(RunOptionsTest, OutputPathAndFileNameCodes) {
    const struct { std::string path; int code; std::string directory; } checks[] = {
        {"out.vrn", 0, cwd_},            {"d/out", 0, path("d")}, {path("d/"), 0, path("d")}, {"", 2, ""},
        {"/odb2vrn_absent.vrn", 0, "/"}, {path("f"), 2, ""},      {path("d"), 2, ""},       {"f/out.vrn", 4, path("f")},
        {"/" + std::string(300, 'n'), 1, ""}, {"nodir/out.vrn", 3, path("nodir")},
    };
    for (const auto& c : checks) {
        char directory[kPathArea] = "";
        EXPECT_EQ(checkOutputPath(c.path.c_str(), directory), c.code) << c.path;
        EXPECT_EQ(directory, c.directory) << c.path;
    }
    const struct { std::string path; int code; std::string name; } names[] = {
        {"in/x.vrn", 0, "x.vrn"}, {"", 0, fs::path(cwd_).filename().string()}, {path("d/"), 2, ""}, {"/", 2, ""},
        {"/" + std::string(268, 'n'), 0, std::string(268, 'n')}, {"/" + std::string(269, 'n'), 1, ""},
    };
    for (const auto& c : names) {
        char name[kPathArea] = "";
        EXPECT_EQ(extractFileName(c.path.c_str(), name), c.code) << c.path;
        EXPECT_EQ(name, c.name) << c.path;
    }
}

// TMP, then TEMP, then the current directory; when neither variable gave a
// directory, the first valid -o chooses it.
TEST_F(RunOptionsTest, TempDirectoryIsTmpThenTempThenTheFirstOutputDirectory) {
    const struct { Text tmp, temp; std::vector<const char*> options; std::string directory; bool chosen; } cases[] = {
        {path("d"), path("e"), {}, path("d"), true},
        {Text("e/../d"), std::nullopt, {}, path("d"), true},
        {path("d/"), path("e"), {}, path("e"), true},  // a trailing separator is no directory
        {path("f"), path("e"), {}, path("e"), true},
        {std::nullopt, path("e"), {}, cwd_, true},  // unset or empty: the current directory
        {Text(""), path("e"), {}, cwd_, true},
        {"/" + std::string(300, 't'), path("e"), {}, path("e"), true},
        {path("f"), path("missing"), {}, cwd_, false},
        {path("f"), path("missing"), {"-o", "d/out.vrn", "-output", "e/final"}, path("d"), true},
        {path("f"), path("missing"), {"-o", "nodir/out.vrn"}, cwd_, false},  // a refused -o moves nothing
        {path("e"), path("missing"), {"-o", "d/out.vrn"}, path("e"), true},
    };
    for (const auto& c : cases) {
        setVariables(c.tmp, c.temp);
        RunOptions options;
        std::vector<const char*> argv = {"Odb2vrn_64", "board.tar.gz"};
        argv.insert(argv.end(), c.options.begin(), c.options.end());
        testing::internal::CaptureStdout();
        parseArguments(options, static_cast<int>(argv.size()), argv.data());
        testing::internal::GetCapturedStdout();
        const std::string label = c.tmp.value_or("unset") + " " + argv.back();
        EXPECT_EQ(options.tempDirectory.text(), c.directory) << label;
        EXPECT_EQ(options.tempDirectoryChosen, c.chosen) << label;
        EXPECT_EQ(options.outputFile.text(), c.options.empty() ? path("board.tar.vrn") : argv.back()) << label;
    }
}

// The default output lies in the current directory, not beside the input; at
// the root the separator is cut so that built paths have one separator.
TEST_F(RunOptionsTest, ParseArgumentsDerivesTheDefaultPaths) {
    testsupport::writeFile(".job", "x");
    testsupport::writeFile("d/plain", "x");
    const std::pair<std::string, std::string> cases[] = {
        {path("board.tar.gz"), "board.tar"}, {"d/plain", "plain"}, {".job", ""}};
    for (const auto& [input, baseName] : cases) {
        RunOptions options;
        const char* argv[] = {"Odb2vrn_64", input.c_str()};
        ASSERT_TRUE(parseArguments(options, 2, argv)) << input;
        EXPECT_EQ(options.inputFile.text(), input);
        EXPECT_EQ(options.baseName.text(), baseName);
        EXPECT_EQ(options.outputFile.text(), path(baseName + ".vrn"));
    }
    const std::string input = path("board.tar.gz");
    fs::current_path("/");
    RunOptions options;
    EXPECT_STREQ(options.currentDirectory.text(), "");
    const char* argv[] = {"Odb2vrn_64", input.c_str()};
    ASSERT_TRUE(parseArguments(options, 2, argv));
    EXPECT_STREQ(options.outputFile.text(), "/board.tar.vrn");
}

}  // namespace
