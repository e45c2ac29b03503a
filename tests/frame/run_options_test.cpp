#include "frame/run_options.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;
using testsupport::ScratchDir;
using testsupport::writeFile;

namespace {

TEST(StripExtensionTest, DropsOnlyTheLastExtensionOfTheName) {
    struct Case {
        const char* name;
        const char* stripped;
    };
    const Case cases[] = {
        {"board.tar.gz", "board.tar"}, {".job", ""},         {"board", "board"},
        {"", ""},                      {".", ""},            {"name.", "name"},
        {".a.b", ".a"},                {"x", "x"},           {"dir.x/name", "dir.x/name"},
        {"dir.x\\name", "dir.x\\name"}, {"a.b/c.d", "a.b/c"}, {"/a", "/a"},
    };
    for (const Case& c : cases) EXPECT_STREQ(stripExtension(TextString(c.name)).text(), c.stripped) << c.name;
}

// Runs each test in its own scratch directory with TMP and TEMP restored
// afterwards, as RunOptions reads both and the current directory.
class RunOptionsTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"TMP", "TEMP"}) {
            const char* value = std::getenv(name);
            saved_.push_back(value == nullptr ? std::nullopt : std::optional<std::string>(value));
        }
        savedDirectory_ = fs::current_path();
        fs::current_path(scratch_.path());
        cwd_ = fs::current_path().string();
        fs::create_directory(path("d"));
        fs::create_directory(path("e"));
        writeFile(path("f"), "x");
        writeFile(path("board.tar.gz"), "x");
    }
    void TearDown() override {
        fs::current_path(savedDirectory_);
        setVariable("TMP", saved_[0]);
        setVariable("TEMP", saved_[1]);
    }

    static void setVariable(const char* name, const std::optional<std::string>& value) {
        if (value) setenv(name, value->c_str(), 1);
        else unsetenv(name);
    }

    std::string path(const std::string& name) const { return cwd_ + "/" + name; }

    ScratchDir scratch_;
    std::vector<std::optional<std::string>> saved_;
    fs::path savedDirectory_;
    std::string cwd_;
};

TEST_F(RunOptionsTest, ExtractFileNameCodes) {
    struct Case {
        std::string path;
        int code;
        std::string name;
    };
    const Case cases[] = {
        {path("board.tgz"), 0, "board.tgz"},
        {"in/x.vrn", 0, "x.vrn"},
        {"", 0, fs::path(cwd_).filename().string()},
        {"d/..", 0, fs::path(cwd_).filename().string()},
        {"/" + std::string(268, 'n'), 0, std::string(268, 'n')},
        {"/" + std::string(269, 'n'), 1, ""},
        {path("d/"), 2, ""},
        {"/", 2, ""},
    };
    for (const Case& c : cases) {
        char name[kPathArea] = "";
        EXPECT_EQ(extractFileName(c.path.c_str(), name), c.code) << c.path;
        if (c.code != 1) {
            EXPECT_EQ(std::string(name), c.name) << c.path;
        }
    }
}

TEST_F(RunOptionsTest, CheckOutputPathCodes) {
    struct Case {
        std::string path;
        int code;
        std::string directory;  // checked for codes 0, 3 and 4
    };
    const Case cases[] = {
        {path("out.vrn"), 0, cwd_},
        {"out.vrn", 0, cwd_},
        {"d/out", 0, path("d")},
        {path("d/"), 0, path("d")},  // the name test comes later, in extractFileName
        {"/odb2vrn_unit_test_absent.vrn", 0, "/"},  // the root keeps its separator
        {"/" + std::string(300, 'n'), 1, ""},
        {path("f"), 2, ""},
        {path("d"), 2, ""},  // an existing directory is an existing name
        {"", 2, ""},
        {path("nodir/out.vrn"), 3, path("nodir")},
        {path("f/out.vrn"), 4, path("f")},
    };
    for (const Case& c : cases) {
        char directory[kPathArea] = "";
        EXPECT_EQ(checkOutputPath(c.path.c_str(), directory), c.code) << c.path;
        if (c.code == 0 || c.code >= 3) {
            EXPECT_EQ(std::string(directory), c.directory) << c.path;
        }
    }
}

TEST_F(RunOptionsTest, ConstructorChoosesTmpThenTempThenTheCurrentDirectory) {
    struct Case {
        const char* label;
        std::optional<std::string> tmp;
        std::optional<std::string> temp;
        std::string tempDirectory;
        bool chosen;
    };
    const Case cases[] = {
        {"TMP a directory", path("d"), path("e"), path("d"), true},
        {"TMP relative, folded", std::string("e/../d"), std::nullopt, path("d"), true},
        {"TMP with a trailing separator", path("d/"), path("e"), path("e"), true},
        {"TMP a file", path("f"), path("e"), path("e"), true},
        {"TMP unset is the current directory", std::nullopt, path("e"), cwd_, true},
        {"TMP empty is the current directory", std::string(""), path("e"), cwd_, true},
        {"TMP too long", "/" + std::string(300, 't'), path("e"), path("e"), true},
        {"neither valid", path("f"), path("missing"), cwd_, false},
        {"neither valid, TEMP unset is the current directory", path("f"), std::nullopt, cwd_, true},
    };
    for (const Case& c : cases) {
        setVariable("TMP", c.tmp);
        setVariable("TEMP", c.temp);
        RunOptions options;
        EXPECT_STREQ(options.tempDirectory.text(), c.tempDirectory.c_str()) << c.label;
        EXPECT_EQ(options.tempDirectoryChosen, c.chosen) << c.label;
        EXPECT_STREQ(options.currentDirectory.text(), cwd_.c_str()) << c.label;
        EXPECT_STREQ(options.outputDirectory.text(), cwd_.c_str()) << c.label;
        for (const TextString* empty : {&options.inputFile, &options.outputFile, &options.logFile, &options.baseName}) {
            EXPECT_STREQ(empty->text(), "") << c.label;
        }
    }
}

// At the root the separator is cut, so built paths start with the one
// separator that is put between directory and name.
TEST_F(RunOptionsTest, RootCurrentDirectoryBecomesEmpty) {
    unsetenv("TMP");
    fs::current_path("/");
    RunOptions options;
    EXPECT_STREQ(options.currentDirectory.text(), "");
    EXPECT_STREQ(options.outputDirectory.text(), "");
    EXPECT_STREQ(options.tempDirectory.text(), "/");
    EXPECT_TRUE(options.tempDirectoryChosen);

    const std::string input = path("board.tar.gz");
    const char* argv[] = {"Odb2vrn_64", input.c_str()};
    ASSERT_TRUE(parseArguments(options, 2, argv));
    EXPECT_STREQ(options.outputFile.text(), "/board.tar.vrn");
}

TEST_F(RunOptionsTest, ParseArgumentsDerivesTheDefaultPaths) {
    struct Case {
        std::string input;
        std::string baseName;
    };
    writeFile(path(".job"), "x");
    writeFile(path("d/plain"), "x");
    const Case cases[] = {
        {path("board.tar.gz"), "board.tar"},
        {"d/plain", "plain"},
        {".job", ""},
    };
    for (const Case& c : cases) {
        RunOptions options;
        const char* argv[] = {"Odb2vrn_64", c.input.c_str()};
        ASSERT_TRUE(parseArguments(options, 2, argv)) << c.input;
        EXPECT_STREQ(options.inputFile.text(), c.input.c_str());
        EXPECT_STREQ(options.baseName.text(), c.baseName.c_str());
        // The default output lies in the current directory, not beside the input.
        EXPECT_EQ(std::string(options.outputFile.text()), path(c.baseName + ".vrn"));
        EXPECT_EQ(std::string(options.logFile.text()), path(c.baseName + ".log"));
    }
}

TEST_F(RunOptionsTest, FirstValidOutputMovesAnUnchosenTempDirectory) {
    setenv("TMP", path("f").c_str(), 1);
    setenv("TEMP", path("missing").c_str(), 1);
    const std::string input = path("board.tar.gz");

    {
        RunOptions options;
        ASSERT_FALSE(options.tempDirectoryChosen);
        const char* argv[] = {"Odb2vrn_64", input.c_str(), "-o", "d/out.vrn", "-output", "e/final"};
        ASSERT_TRUE(parseArguments(options, 6, argv));
        EXPECT_STREQ(options.outputFile.text(), "e/final");  // the last one, as given
        EXPECT_EQ(std::string(options.outputDirectory.text()), path("e"));
        EXPECT_EQ(std::string(options.tempDirectory.text()), path("d"));
        EXPECT_TRUE(options.tempDirectoryChosen);
    }
    {
        // A refused -o moves nothing.
        RunOptions options;
        const char* argv[] = {"Odb2vrn_64", input.c_str(), "-o", "nodir/out.vrn"};
        testing::internal::CaptureStdout();
        EXPECT_FALSE(parseArguments(options, 4, argv));
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(std::string(options.tempDirectory.text()), cwd_);
        EXPECT_FALSE(options.tempDirectoryChosen);
    }
    {
        // A chosen TMP stays, whatever -o names.
        setenv("TMP", path("e").c_str(), 1);
        RunOptions options;
        const char* argv[] = {"Odb2vrn_64", input.c_str(), "-o", "d/out.vrn"};
        ASSERT_TRUE(parseArguments(options, 4, argv));
        EXPECT_EQ(std::string(options.tempDirectory.text()), path("e"));
        EXPECT_EQ(std::string(options.outputDirectory.text()), path("d"));
    }
}

}  // namespace
