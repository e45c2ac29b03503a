// Both twins of the platform layer behave alike: what differs (the roots,
// links, processes, the limits beneath _fullpath) is added per system.
#include "platform/platform.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frame/run_options.h"
#include "platform/random_fallback.h"
#include "support/test_support.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace {

// Each test runs in a scratch directory of its own, the base of relative paths.
class PlatformTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::current_path(scratch_.path());
        cwd_ = fs::current_path().string();
#ifdef _WIN32
        drive_ = cwd_.substr(0, 2);
        root_ = drive_ + "\\";
#endif
    }
    void TearDown() override { fs::current_path(saved_); }
    std::string path(const std::string& name) const { return cwd_ + S + name; }
    // A name that ends in a separator is made a directory.
    void makeFile(const std::string& name, const std::string& text = "x") const {
        fs::create_directories(fs::path(path(name)).parent_path());
        if (name.back() != '/') testsupport::writeFile(path(name), text);
    }
    void makeReadOnly(const std::string& name) const {
        fs::permissions(path(name), fs::perms::owner_write, fs::perm_options::remove);
    }

    const std::string S = platform::kPathSeparatorText;
    const fs::path saved_ = fs::current_path();
    testsupport::ScratchDir scratch_;
    std::string cwd_, drive_, root_ = "/";
};

std::string fullPathOf(const std::string& path, int limit = kPathArea) {
    std::vector<char> buffer(static_cast<std::size_t>(limit) + 1);
    return platform::fullPath(buffer.data(), path.c_str(), limit) ? buffer.data() : "<failed>";
}

// Folded by text; the limit counts the result and its terminator.
TEST_F(PlatformTest, FullPathFoldsByTextWithinTheLimit) {
    std::vector<std::pair<std::string, std::string>> cases = {
        {"", cwd_}, {".", cwd_}, {"./a/./b", path("a" + S + "b")}, {"a/..", cwd_}, {"a/../b", path("b")},
        {"a/b/", path("a" + S + "b" + S)}, {root_ + "a/../..", root_},
    };
#ifdef _WIN32
    // The ANSI calls beneath _fullpath stop at MAX_PATH (260 with the
    // terminator), below the limit the converter passes, and refuse a longer
    // argument even when it would fold to a short result.
    const std::string fits = root_ + std::string(MAX_PATH - 4, 'x');
    cases.insert(cases.end(), {{drive_ + "/x/", drive_ + "\\x\\"}, {"\\x", drive_ + "\\x"}, {fits, fits},
                               {fits + "x", "<failed>"}, {fits + "x\\..", "<failed>"}});
#else
    // x has 269 characters, cwd + "/" + relative 270.
    const std::string x = "/" + std::string(268, 'x');
    cases.insert(cases.end(), {{"a//b///c", path("a/b/c")}, {std::string(269 - cwd_.size(), 'y'), "<failed>"},
                               {x, x}, {x + "x", "<failed>"}, {x + "x/..", "/"}});
#endif
    for (const auto& c : cases) EXPECT_EQ(fullPathOf(c.first), c.second) << '"' << c.first << '"';
    EXPECT_EQ(fullPathOf(root_ + "abc", static_cast<int>(root_.size()) + 4), root_ + "abc");
    EXPECT_EQ(fullPathOf(root_ + "abc", static_cast<int>(root_.size()) + 3), "<failed>");
}

// A trailing separator makes a path missing but at a root, and a current
// directory has none but at a root. An extension ends at a separator.
TEST_F(PlatformTest, PathQueriesFollowWindows) {
    makeFile("f");
    makeFile("d/");
    const struct { std::string path; bool exists, isDirectory; } cases[] = {
        {path("f"), true, false}, {path("d"), true, true},    {"d", true, true},          {path("d") + S, false, false},
        {path("d/"), false, false}, {path("f") + S, false, false}, {path("missing"), false, false},
        {root_, true, true},      {"", false, false},
    };
    for (const auto& c : cases) {
        bool isDirectory = !c.isDirectory;
        EXPECT_EQ(platform::statPath(c.path.c_str(), &isDirectory), c.exists) << c.path;
        EXPECT_TRUE(!c.exists || isDirectory == c.isDirectory) << c.path;
    }
    const std::pair<const char*, const char*> extensions[] = {
        {"dir.x/data.Z.z", ".z"}, {"dir.x\\d.ZIP", ".ZIP"}, {"a.b\\c", ""}, {"a.b/c", ""}, {".Z", ".Z"}, {"", ""}};
    for (const auto& [name, extension] : extensions) EXPECT_EQ(platform::pathExtension(name), extension) << name;
    char buffer[2048], small[4] = "abc";
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(buffer, cwd_);
    platform::currentDirectory(small, sizeof small);
    EXPECT_STREQ(small, "");
    fs::current_path(root_);
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(buffer, root_);
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

// Dots first, then byte order; a bare path gives its own entry.
TEST_F(PlatformTest, DirectorySearchListsDotsFirstThenByteOrder) {
    for (const char* name : {"b", "a", "C", "_x", "Z", "ro", "empty/", "sub/"}) makeFile(name);
    makeReadOnly("ro");
    EXPECT_EQ(listing(path("*")), ". D\n.. D\nC\nZ\n_x\na\nb\nempty D\nro R\nsub D\n");
    EXPECT_EQ(listing(path("empty" + S + "*")), ". D\n.. D\n");
    EXPECT_EQ(listing(path("sub")) + listing(path("ro")), "sub D\nro R\n");
    for (const char* name : {"missing", "missing/*", "a/*", "sub/"}) EXPECT_EQ(listing(path(name)), "<none>") << name;
    platform::DirectorySearch search;
    platform::FindRecord record;
    EXPECT_FALSE(search.findFirst(path("missing").c_str(), record) || search.findNext(record) || !record.name.empty());
#ifndef _WIN32
    // A link is an entry of its own, never a directory (lstat).
    fs::create_directory_symlink(path("sub"), path("empty/link"));
    fs::create_symlink(path("nowhere"), path("empty/dangling"));
    EXPECT_EQ(listing(path("empty/*")), ". D\n.. D\ndangling\nlink\n");
    EXPECT_EQ(listing(path("empty/link")), "link\n");
#endif
}

// DeleteFileA refuses a read-only file and a directory; RemoveDirectoryA a
// full directory and a file.
TEST_F(PlatformTest, DeletionFollowsWindowsRules) {
    makeFile("ro");
    makeReadOnly("ro");
    EXPECT_FALSE(platform::deleteFile(path("ro").c_str()));
    platform::makeWritable(path("ro").c_str());
    EXPECT_TRUE(platform::deleteFile(path("ro").c_str()));
    EXPECT_FALSE(fs::exists(path("ro")));
    makeFile("d/f");
    makeFile("d/e/");
    EXPECT_FALSE(platform::deleteFile(path("d").c_str()) || platform::deleteFile(path("missing").c_str()));
    EXPECT_FALSE(platform::removeDirectory(path("d").c_str()) || platform::removeDirectory(path("d/f").c_str()));
#ifndef _WIN32
    // A read-only directory protects no entry.
    fs::permissions(path("d"), fs::perms::owner_read | fs::perms::owner_exec, fs::perm_options::replace);
#endif
    EXPECT_TRUE(platform::deleteFile(path("d/f").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("d/e").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("d").c_str()));
}

std::string readJobFile(const std::string& path) {
    std::FILE* file = platform::openJobFile(path.c_str());
    if (file == nullptr) return "<missing>";
    char text[64] = {};
    std::fread(text, 1, sizeof text - 1, file);
    std::fclose(file);
    return text;
}

// Each component ignores case; where case variants are told apart, an exact
// match wins, else the first in byte order.
TEST_F(PlatformTest, OpenJobFileIgnoresCaseLikeWindows) {
    std::vector<std::pair<std::string, std::string>> cases = {
        {path("S/Step/DaTa"), "s/step/data"}, {"S/step/data", "s/step/data"}, {path("s/step/c"), "<missing>"},
        {path("s/step/data/x"), "<missing>"}, {path("s/no/data"), "<missing>"},
    };
    std::vector<const char*> files = {"s/step/data", "s/step/c/"};
#ifndef _WIN32
    files.insert(files.end(), {"s/STEP/data", "s/pcb/Data", "s/pcb/data", "s/pcb/DATA"});
    cases.front().second = "s/STEP/data";
    cases.insert(cases.end(), {{path("s/PCB/data"), "s/pcb/data"}, {path("s/pcb/dAtA"), "s/pcb/DATA"}});
#endif
    for (const char* name : files) makeFile(name, name);
    for (const auto& c : cases) EXPECT_EQ(readJobFile(c.first), c.second) << c.first;
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

// Without the system's random source, draws within one clock tick differ.
TEST(PlatformRandomTest, FallbackDrawsDifferWithinOneTick) {
    std::set<std::uint32_t> draws;
    for (int i = 0; i < 8; ++i) draws.insert(platform::fallbackRandomNumber(12345, 42));
    EXPECT_EQ(draws.size(), 8u);
}

std::uint32_t runToEnd(const std::string& commandLine) {
    platform::Process process;
    if (!process.start(commandLine.c_str())) return 999;
    std::uint32_t code = 998;
    if (process.exitCode(&code)) return 996;  // not before the end
    process.wait();
    if (!process.exitCode(&code)) code = 997;
    process.close();
    return process.exitCode(&code) ? 995 : code;
}

// A bare name is found on the search path; the child's output goes to its
// own hidden console.
TEST(PlatformProcessTest, StartWaitAndReadTheExitCode) {
#ifdef _WIN32
    char folder[MAX_PATH];
    const std::string cmd = std::string(folder, GetSystemDirectoryA(folder, MAX_PATH)) + "\\cmd.exe";
    const std::pair<std::string, std::uint32_t> runs[] = {
        {"\"" + cmd + "\" /c exit 3", 3}, {"cmd.exe /c echo visible& exit 2", 2}, {"cmd.exe /c exit 0", 0},
        {"odb2vrn-no-such-tool.exe x", 999}, {"", 999}};
#else
    const std::pair<std::string, std::uint32_t> runs[] = {
        {R"(/bin/sh -c "echo visible; exit 3")", 3}, {R"(sh -c "[ \"$1\" = 'a \"b' ] && exit 5" sh "a \"b")", 5},
        {"odb2vrn-no-such-tool x", 999}, {"", 999}};
#endif
    testing::internal::CaptureStdout();
    for (const auto& [line, code] : runs) EXPECT_EQ(runToEnd(line), code) << line;
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
