#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace fs = std::filesystem;

namespace {

// Each test runs in a scratch directory of its own, the base of relative paths.
class PlatformTest : public ::testing::Test {
protected:
    void SetUp() override { fs::current_path(scratch_.path()); }
    void TearDown() override { fs::current_path(saved_); }
    std::string path(const std::string& name) const { return cwd_ + "/" + name; }
    // A name that ends in "/" is made a directory.
    void makeFile(const std::string& name, const std::string& text = "x") const {
        fs::create_directories(fs::path(path(name)).parent_path());
        testsupport::writeFile(path(name), text);
    }
    const fs::path saved_ = fs::current_path();
    testsupport::ScratchDir scratch_;
    const std::string cwd_ = fs::canonical(scratch_.path()).string();
};

std::string fullPathOf(const std::string& path) {
    char buffer[platform::kFullPathLimit + 1];
    return platform::fullPath(buffer, path.c_str(), platform::kFullPathLimit) ? buffer : "<failed>";
}

// Folded by text; the limit counts the result and its terminator, not the argument:
// x has 269 characters, cwd + "/" + relative 270.
TEST_F(PlatformTest, FullPathFoldsByTextWithinTheLimit) {
    const std::string relative(269 - cwd_.size(), 'y'), x("/" + std::string(268, 'x'));
    const std::pair<std::string, std::string> cases[] = {
        {"", cwd_},     {"./a/./b", cwd_ + "/a/b"}, {"a//b///c/", cwd_ + "/a/b/c/"},
        {"a/..", cwd_}, {"/a/b/../../..", "/"},     {relative, "<failed>"},
        {x, x},         {x + "x", "<failed>"},      {x + "x/..", "/"},
    };
    for (const auto& c : cases) EXPECT_EQ(fullPathOf(c.first), c.second) << '"' << c.first << '"';
}

// A trailing separator makes a path missing, and a current directory has none, but at the root.
TEST_F(PlatformTest, PathQueriesFollowWindows) {
    makeFile("f");
    makeFile("d/");
    const struct { std::string path; bool exists, isDirectory; } cases[] = {
        {path("f"), true, false}, {path("d"), true, true}, {path("d/"), false, false}, {path("f/"), false, false},
        {"/", true, true},        {"", false, false},
    };
    for (const auto& c : cases) {
        bool isDirectory = !c.isDirectory;
        EXPECT_EQ(platform::statPath(c.path.c_str(), &isDirectory), c.exists) << c.path;
        EXPECT_TRUE(!c.exists || isDirectory == c.isDirectory) << c.path;
    }
    EXPECT_EQ(platform::pathExtension("dir.x/data.Z.z"), ".z");
    EXPECT_EQ(platform::pathExtension("a.b\\c"), "");
    char buffer[2048], small[4] = "abc";
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(buffer, cwd_);
    platform::currentDirectory(small, sizeof small);
    EXPECT_STREQ(small, "");
    fs::current_path("/");
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "/");
}

std::string listing(const std::string& pattern) {
    platform::DirectorySearch search;
    platform::FindRecord record;
    if (!search.findFirst(pattern.c_str(), record)) return "<none>";
    std::string text;
    do {
        text += record.name + (record.attributes & platform::kAttributeDirectory ? " D" : "") +
                (record.attributes & platform::kAttributeReadOnly ? " R" : "") + "\n";
    } while (search.findNext(record));
    return text;
}

// Dots first, then byte order; a link is an entry of its own, never a directory (lstat).
TEST_F(PlatformTest, DirectorySearchListsDotsFirstThenByteOrder) {
    for (const char* name : {"b", "a", "B", "_x", "Z", "ro", "empty/", "sub/"}) makeFile(name);
    fs::permissions(path("ro"), fs::perms::owner_write, fs::perm_options::remove);
    fs::create_directory_symlink(path("sub"), path("link"));
    fs::create_symlink(path("nowhere"), path("dangling"));
    EXPECT_EQ(listing(cwd_ + "/*"), ". D\n.. D\nB\nZ\n_x\na\nb\ndangling\nempty D\nlink\nro R\nsub D\n");
    EXPECT_EQ(listing(path("empty") + "/*"), ". D\n.. D\n");
    EXPECT_EQ(listing(path("link")), "link\n");
    EXPECT_EQ(listing(path("missing")), "<none>");
    EXPECT_EQ(listing(path("a") + "/*"), "<none>");
}

// DeleteFileA refuses a read-only file; a read-only directory protects no entry.
TEST_F(PlatformTest, DeletionFollowsWindowsRules) {
    makeFile("ro");
    fs::permissions(path("ro"), fs::perms::owner_write, fs::perm_options::remove);
    EXPECT_FALSE(platform::deleteFile(path("ro").c_str()));
    platform::makeWritable(path("ro").c_str());
    EXPECT_TRUE(platform::deleteFile(path("ro").c_str()));
    makeFile("d/f");
    makeFile("d/e/");
    EXPECT_FALSE(platform::removeDirectory(path("d").c_str()));  // not empty
    fs::permissions(path("d"), fs::perms::owner_read | fs::perms::owner_exec, fs::perm_options::replace);
    EXPECT_TRUE(platform::deleteFile(path("d/f").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("d/e").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("d").c_str()));
}

// After the program name 2n backslashes and a quote give n, 2n+1 give n and a quote.
TEST(PlatformProcessTest, SplitCommandLineFollowsTheWindowsRuntime) {
    const struct { const char* line; std::vector<std::string> arguments; } cases[] = {
        {R"(a\"b c" d)", {R"(a\b c)", "d"}},   {R"(p a\\b c\)", {"p", R"(a\\b)", R"(c\)"}},
        {R"(p a\\"b c")", {"p", R"(a\b c)"}}, {R"(p a\\\"b)", {"p", R"(a\"b)"}},
        {R"(p "a\\\\")", {"p", R"(a\\)"}},   {R"(p "a""b" "")", {"p", R"(a"b)", ""}},
        {R"(p ab"c d"e)", {"p", "abc de"}},    {"  p \t a\t\tb  ", {"p", "a", "b"}},
        {" \t ", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(platform::splitCommandLine(c.line), c.arguments) << c.line;
}

std::uint32_t runToEnd(const char* commandLine) {
    platform::ProcessHandle process;
    if (!platform::startProcess(commandLine, &process)) return 999;
    platform::waitForProcess(&process);
    std::uint32_t code = 998;
    if (!platform::processExitCode(&process, &code)) code = 997;
    platform::closeProcess(&process);
    return code;
}

TEST(PlatformProcessTest, StartWaitAndReadTheExitCode) {
    testing::internal::CaptureStdout();  // the child's output goes to its hidden console
    EXPECT_EQ(runToEnd(R"(/bin/sh -c "echo visible; exit 3")"), 3u);
    EXPECT_EQ(runToEnd(R"(sh -c "[ \"$1\" = 'a \"b' ] && exit 5" sh "a \"b")"), 5u);  // found on PATH
    EXPECT_EQ(runToEnd("odb2vrn-no-such-tool x"), 999u);
    EXPECT_EQ(runToEnd(""), 999u);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

std::string readJobFile(const std::string& path) {
    std::FILE* file = platform::openJobFile(path.c_str());
    if (file == nullptr) return "<missing>";
    char text[64] = {};
    std::fread(text, 1, sizeof text - 1, file);
    std::fclose(file);
    return text;
}

// Each component ignores case; an exact match wins, else the first in byte order.
TEST_F(PlatformTest, OpenJobFileIgnoresCaseLikeWindows) {
    for (const char* name : {"s/step/data", "s/STEP/data", "s/pcb/Data", "s/pcb/data", "s/pcb/DATA", "s/pcb/c/"})
        makeFile(name, name);
    const std::pair<std::string, std::string> cases[] = {
        {path("S/Step/DaTa"), "s/STEP/data"}, {path("s/PCB/data"), "s/pcb/data"}, {path("s/pcb/dAtA"), "s/pcb/DATA"},
        {"S/pcb/data", "s/pcb/data"},         {path("s/pcb/C"), "<missing>"},    {path("s/pcb/data/x"), "<missing>"},
        {path("s/no/data"), "<missing>"},
    };
    for (const auto& c : cases) EXPECT_EQ(readJobFile(c.first), c.second) << c.first;
}

}  // namespace
