// The Windows twin of the platform layer: drive roots, backslashes, the
// read-only attribute and processes started in a hidden console. Together
// with platform_posix_test.cpp it pins the behaviour both twins share.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;
using testsupport::ScratchDir;
using testsupport::writeFile;

namespace {

// Runs each test inside its own scratch directory, as relative paths are
// resolved against the current directory.
class PlatformTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved_ = fs::current_path();
        fs::current_path(scratch_.path());
        cwd_ = fs::current_path().string();
        drive_ = cwd_.substr(0, 2);
    }
    void TearDown() override { fs::current_path(saved_); }

    std::string path(const std::string& name) const { return cwd_ + "\\" + name; }
    void makeDirectory(const std::string& name) const { fs::create_directories(path(name)); }
    void makeFile(const std::string& name, const std::string& text = "x") const {
        fs::create_directories(fs::path(path(name)).parent_path());
        writeFile(path(name), text);
    }
    void makeReadOnly(const std::string& name) const {
        fs::permissions(path(name), fs::perms::owner_write, fs::perm_options::remove);
    }

    ScratchDir scratch_;
    fs::path saved_;
    std::string cwd_;
    std::string drive_;  // "C:"
};

std::string fullPathOf(const std::string& path, int limit = platform::kFullPathLimit) {
    std::vector<char> buffer(static_cast<std::size_t>(limit) + 1, '#');
    if (!platform::fullPath(buffer.data(), path.c_str(), limit)) return "<failed>";
    return buffer.data();
}

TEST_F(PlatformTest, FullPathUsesBackslashesAndDriveRoots) {
    struct Case {
        std::string path;
        std::string expected;
    };
    const Case cases[] = {
        {"", cwd_},
        {".", cwd_},
        {"a/b", cwd_ + "\\a\\b"},
        {"a\\.\\b", cwd_ + "\\a\\b"},
        {"a/../b", cwd_ + "\\b"},
        {"a\\b\\", cwd_ + "\\a\\b\\"},
        {"a/..", cwd_},
        {drive_ + "\\", drive_ + "\\"},
        {drive_ + "/x/", drive_ + "\\x\\"},
        {drive_ + "\\..", drive_ + "\\"},
        {"\\x", drive_ + "\\x"},  // the current drive's root
    };
    for (const Case& c : cases) EXPECT_EQ(fullPathOf(c.path), c.expected) << '"' << c.path << '"';
}

// The limit counts the result and its terminator. The ANSI calls beneath
// _fullpath stop at MAX_PATH (260 with the terminator), below the limit of
// 270 that the converter passes, and they refuse a longer argument even when
// it would fold to a short result.
TEST_F(PlatformTest, FullPathStopsAtMaxPathAndAtTheLimit) {
    const std::string fits = drive_ + "\\" + std::string(MAX_PATH - 4, 'x');
    const std::string tooLong = fits + "x";
    EXPECT_EQ(fullPathOf(fits), fits);
    EXPECT_EQ(fullPathOf(tooLong), "<failed>");
    EXPECT_EQ(fullPathOf(tooLong + "\\.."), "<failed>");
    EXPECT_EQ(fullPathOf(drive_ + "\\abc", 7), drive_ + "\\abc");
    EXPECT_EQ(fullPathOf(drive_ + "\\abc", 6), "<failed>");
}

TEST_F(PlatformTest, StatPathRefusesATrailingSeparatorButARoot) {
    makeFile("f");
    makeDirectory("d");
    struct Case {
        std::string path;
        bool exists;
        bool isDirectory;
    };
    const Case cases[] = {
        {path("f"), true, false},      {path("d"), true, true},      {"d", true, true},
        {path("d\\"), false, false},   {path("d/"), false, false},   {path("f\\"), false, false},
        {drive_ + "\\", true, true},   {drive_ + "/", true, true},   {path("missing"), false, false},
        {"", false, false},
    };
    for (const Case& c : cases) {
        bool isDirectory = !c.isDirectory;
        EXPECT_EQ(platform::statPath(c.path.c_str(), &isDirectory), c.exists) << c.path;
        if (c.exists) {
            EXPECT_EQ(isDirectory, c.isDirectory) << c.path;
        }
    }
}

TEST_F(PlatformTest, CurrentDirectoryHasNoSeparatorButAtADriveRoot) {
    char buffer[2048];
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(std::string(buffer), cwd_);

    char small[4] = "abc";
    platform::currentDirectory(small, sizeof small);
    EXPECT_STREQ(small, "");

    fs::current_path(drive_ + "\\");
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(std::string(buffer), drive_ + "\\");
}

TEST(PlatformPathTest, PathExtensionIsFromTheLastDotOfTheName) {
    struct Case {
        std::string name;
        std::string extension;
    };
    const Case cases[] = {
        {"features.Z", ".Z"}, {"x.Z.Z", ".Z"},    {"d.ZIP", ".ZIP"},      {"noext", ""},
        {".Z", ".Z"},         {"a.b/c", ""},      {"a.b\\c", ""},         {"dir.x\\data.z", ".z"},
        {"", ""},             {std::string(250, 'n') + ".z", ".z"},
    };
    for (const Case& c : cases) EXPECT_EQ(platform::pathExtension(c.name.c_str()), c.extension) << c.name;
}

std::string listing(const std::string& pattern) {
    platform::DirectorySearch search;
    platform::FindRecord record;
    std::string text;
    if (!search.findFirst(pattern.c_str(), record)) return "<none>";
    do {
        text += record.name;
        if (record.attributes & platform::kAttributeDirectory) text += " D";
        if (record.attributes & platform::kAttributeReadOnly) text += " R";
        text += "\n";
    } while (search.findNext(record));
    return text;
}

TEST_F(PlatformTest, DirectorySearchListsDotsFirstThenByteOrder) {
    for (const char* name : {"b", "a", "C", "_x", "Z", "ro"}) makeFile(name);
    makeReadOnly("ro");
    makeDirectory("sub");
    makeDirectory("empty");

    EXPECT_EQ(listing(cwd_ + "\\*"), ". D\n.. D\nC\nZ\n_x\na\nb\nempty D\nro R\nsub D\n");
    EXPECT_EQ(listing(path("empty") + "\\*"), ". D\n.. D\n");
    EXPECT_EQ(listing(path("sub")), "sub D\n");
    EXPECT_EQ(listing(path("ro")), "ro R\n");
    EXPECT_EQ(listing(path("missing")), "<none>");
    EXPECT_EQ(listing(path("missing") + "\\*"), "<none>");
    EXPECT_EQ(listing(path("a") + "\\*"), "<none>");

    platform::DirectorySearch search;
    platform::FindRecord record;
    EXPECT_FALSE(search.findFirst(path("missing").c_str(), record));
    EXPECT_FALSE(search.findNext(record));
    EXPECT_EQ(record.name, "");
}

TEST_F(PlatformTest, ReadOnlyFilesRefuseDeletionUntilWritable) {
    makeFile("ro");
    makeReadOnly("ro");
    EXPECT_FALSE(platform::deleteFile(path("ro").c_str()));
    EXPECT_TRUE(fs::exists(path("ro")));
    platform::makeWritable(path("ro").c_str());
    EXPECT_TRUE(platform::deleteFile(path("ro").c_str()));
    EXPECT_FALSE(fs::exists(path("ro")));

    makeDirectory("d");
    EXPECT_FALSE(platform::deleteFile(path("d").c_str()));
    EXPECT_FALSE(platform::deleteFile(path("missing").c_str()));

    makeFile("d\\f");
    EXPECT_FALSE(platform::removeDirectory(path("d").c_str()));  // not empty
    EXPECT_FALSE(platform::removeDirectory(path("d\\f").c_str()));
    EXPECT_TRUE(platform::deleteFile(path("d\\f").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("d").c_str()));
}

std::string readJobFile(const std::string& path) {
    std::FILE* file = platform::openJobFile(path.c_str());
    if (file == nullptr) return "<missing>";
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

// The file system ignores case by itself; a text-mode read drops the CR.
TEST_F(PlatformTest, OpenJobFileReadsTextIgnoringCase) {
    makeFile("steps\\pcb\\eda\\data", "NET A\r\nNET B\n");
    makeDirectory("steps\\pcb\\layers\\comp_+_top\\components");
    EXPECT_EQ(readJobFile(path("STEPS\\PCB\\eda\\Data")), "NET A\nNET B\n");
    EXPECT_EQ(readJobFile("steps/pcb/eda/data"), "NET A\nNET B\n");
    EXPECT_EQ(readJobFile(path("steps\\pcb\\layers\\comp_+_top\\components")), "<missing>");
    EXPECT_EQ(readJobFile(path("steps\\nostep\\eda\\data")), "<missing>");
}

std::uint32_t runToEnd(const std::string& commandLine) {
    platform::ProcessHandle process;
    if (!platform::startProcess(commandLine.c_str(), &process)) return 999;
    platform::waitForProcess(&process);
    std::uint32_t code = 998;
    if (!platform::processExitCode(&process, &code)) code = 997;
    platform::closeProcess(&process);
    return code;
}

std::string systemCommandProcessor() {
    char directory[MAX_PATH];
    const UINT length = GetSystemDirectoryA(directory, MAX_PATH);
    return std::string(directory, length) + "\\cmd.exe";
}

TEST_F(PlatformTest, StartWaitAndReadTheExitCode) {
    const std::string cmd = systemCommandProcessor();
    EXPECT_EQ(runToEnd("\"" + cmd + "\" /c exit 3"), 3u);
    EXPECT_EQ(runToEnd("cmd.exe /c exit 0"), 0u);  // found on the search path
    EXPECT_EQ(runToEnd(path("odb2vrn-no-such-tool.exe")), 999u);
    EXPECT_EQ(runToEnd("odb2vrn-no-such-tool.exe x"), 999u);
    EXPECT_EQ(runToEnd(""), 999u);

    // The child writes to a console of its own, not to ours.
    testing::internal::CaptureStdout();
    EXPECT_EQ(runToEnd("cmd.exe /c echo visible& exit 2"), 2u);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
