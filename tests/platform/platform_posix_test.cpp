#include "platform/platform.h"

#include <gtest/gtest.h>

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
    }
    void TearDown() override { fs::current_path(saved_); }

    std::string path(const std::string& name) const { return cwd_ + "/" + name; }
    void makeDirectory(const std::string& name) const { fs::create_directories(path(name)); }
    void makeFile(const std::string& name, const std::string& text = "x") const {
        fs::create_directories(fs::path(path(name)).parent_path());
        writeFile(path(name), text);
    }
    void makeReadOnly(const std::string& name) const {
        fs::permissions(path(name), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                        fs::perm_options::remove);
    }

    ScratchDir scratch_;
    fs::path saved_;
    std::string cwd_;
};

std::string fullPathOf(const std::string& path, int limit = platform::kFullPathLimit) {
    std::vector<char> buffer(static_cast<std::size_t>(limit) + 1, '#');
    if (!platform::fullPath(buffer.data(), path.c_str(), limit)) return "<failed>";
    return buffer.data();
}

TEST_F(PlatformTest, FullPathFoldsByText) {
    struct Case {
        std::string path;
        std::string expected;
    };
    const Case cases[] = {
        {"", cwd_},
        {".", cwd_},
        {"a/b", cwd_ + "/a/b"},
        {"./a/./b", cwd_ + "/a/b"},
        {"a/../b", cwd_ + "/b"},
        {"a//b///c", cwd_ + "/a/b/c"},
        {"a/b/", cwd_ + "/a/b/"},
        {"a/..", cwd_},
        {"missing/../../x", fs::path(cwd_).parent_path().string() + "/x"},
        {"/", "/"},
        {"//x", "/x"},
        {"/x/", "/x/"},
        {"/..", "/"},
        {"/a/b/../../..", "/"},
    };
    for (const Case& c : cases) EXPECT_EQ(fullPathOf(c.path), c.expected) << '"' << c.path << '"';
}

// The limit counts the result and its terminator, not the argument.
TEST_F(PlatformTest, FullPathLimitAppliesToTheResult) {
    const std::string fits = "/" + std::string(268, 'x');
    const std::string tooLong = "/" + std::string(269, 'x');
    EXPECT_EQ(fullPathOf(fits), fits);
    EXPECT_EQ(fullPathOf(tooLong), "<failed>");
    EXPECT_EQ(fullPathOf(tooLong + "/.."), "/");
    EXPECT_EQ(fullPathOf("/abc", 5), "/abc");
    EXPECT_EQ(fullPathOf("/abc", 4), "<failed>");

    const std::string relative(268 - cwd_.size(), 'y');  // cwd + "/" + name: 269 characters
    EXPECT_EQ(fullPathOf(relative), cwd_ + "/" + relative);
    EXPECT_EQ(fullPathOf(relative + "y"), "<failed>");
}

TEST_F(PlatformTest, StatPathRefusesATrailingSeparatorButTheRoot) {
    makeFile("f");
    makeDirectory("d");
    struct Case {
        std::string path;
        bool exists;
        bool isDirectory;
    };
    const Case cases[] = {
        {path("f"), true, false}, {path("d"), true, true},   {"d", true, true},
        {path("d/"), false, false}, {path("f/"), false, false}, {"/", true, true},
        {path("missing"), false, false}, {"", false, false},
    };
    for (const Case& c : cases) {
        bool isDirectory = !c.isDirectory;
        EXPECT_EQ(platform::statPath(c.path.c_str(), &isDirectory), c.exists) << c.path;
        if (c.exists) {
            EXPECT_EQ(isDirectory, c.isDirectory) << c.path;
        }
        EXPECT_EQ(platform::statPath(c.path.c_str(), nullptr), c.exists) << c.path;
    }
}

TEST_F(PlatformTest, CurrentDirectoryHasNoSeparatorButAtTheRoot) {
    char buffer[2048];
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_EQ(std::string(buffer), cwd_);

    char small[4] = "abc";
    platform::currentDirectory(small, sizeof small);
    EXPECT_STREQ(small, "");

    fs::current_path("/");
    platform::currentDirectory(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "/");
}

TEST(PlatformPathTest, PathExtensionIsFromTheLastDotOfTheName) {
    struct Case {
        const char* name;
        const char* extension;
    };
    const Case cases[] = {
        {"features.Z", ".Z"}, {"x.Z.Z", ".Z"}, {"d.ZIP", ".ZIP"}, {"noext", ""}, {".Z", ".Z"},
        {"a.b/c", ""},        {"a.b\\c", ""},  {"dir.x/data.z", ".z"}, {"name.", "."}, {"", ""},
    };
    for (const Case& c : cases) EXPECT_EQ(platform::pathExtension(c.name), c.extension) << c.name;
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
    for (const char* name : {"b", "a", "B", "_x", "Z", "ro"}) makeFile(name);
    makeReadOnly("ro");
    makeDirectory("sub");
    makeDirectory("empty");
    fs::create_directory_symlink(path("sub"), path("link"));
    fs::create_symlink(path("nowhere"), path("dangling"));

    EXPECT_EQ(listing(cwd_ + "/*"),
              ". D\n.. D\nB\nZ\n_x\na\nb\ndangling\nempty D\nlink\nro R\nsub D\n");
    EXPECT_EQ(listing(path("empty") + "/*"), ". D\n.. D\n");
    EXPECT_EQ(listing(path("sub")), "sub D\n");
    EXPECT_EQ(listing(path("ro")), "ro R\n");
    EXPECT_EQ(listing(path("link")), "link\n");
    EXPECT_EQ(listing(path("missing")), "<none>");
    EXPECT_EQ(listing(path("missing") + "/*"), "<none>");
    EXPECT_EQ(listing(path("a") + "/*"), "<none>");

    // A search that found nothing has nothing more to give.
    platform::DirectorySearch search;
    platform::FindRecord record;
    EXPECT_FALSE(search.findFirst(path("missing").c_str(), record));
    EXPECT_FALSE(search.findNext(record));
    EXPECT_EQ(record.name, "");
}

TEST_F(PlatformTest, DeleteFileRefusesReadOnlyFilesLikeWindows) {
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

    makeFile("d/f");
    EXPECT_FALSE(platform::removeDirectory(path("d").c_str()));  // not empty
    EXPECT_FALSE(platform::removeDirectory(path("d/f").c_str()));
    EXPECT_FALSE(platform::removeDirectory(path("missing").c_str()));
    EXPECT_TRUE(fs::exists(path("d/f")));
}

// A read-only directory does not protect its entries on Windows.
TEST_F(PlatformTest, EntriesOfAReadOnlyDirectoryCanGo) {
    makeFile("locked/f");
    makeDirectory("locked/e");
    fs::permissions(path("locked"), fs::perms::owner_read | fs::perms::owner_exec, fs::perm_options::replace);
    EXPECT_TRUE(platform::deleteFile(path("locked/f").c_str()));
    EXPECT_TRUE(platform::removeDirectory(path("locked/e").c_str()));
    EXPECT_TRUE(fs::is_empty(path("locked")));
    EXPECT_TRUE(platform::removeDirectory(path("locked").c_str()));
}

TEST(PlatformProcessTest, SplitCommandLineFollowsTheWindowsRuntime) {
    struct Case {
        const char* line;
        std::vector<std::string> arguments;
    };
    const Case cases[] = {
        {R"("C:\tools\qx7za.exe" x "board.tgz" -o"/tmp/AB12CD34" -y)",
         {R"(C:\tools\qx7za.exe)", "x", "board.tgz", "-o/tmp/AB12CD34", "-y"}},
        {R"("C:\Program Files\7z.exe" e)", {R"(C:\Program Files\7z.exe)", "e"}},
        {R"(a\"b c" d)", {R"(a\b c)", "d"}},  // the program name has no backslash rules
        {R"(p a\\b c\)", {"p", R"(a\\b)", R"(c\)"}},
        {R"(p a\\"b c")", {"p", R"(a\b c)"}},
        {R"(p a\\\"b)", {"p", R"(a\"b)"}},
        {R"(p "a\\\\")", {"p", R"(a\\)"}},
        {R"(p "a""b" "")", {"p", R"(a"b)", ""}},
        {R"(p ab"c d"e)", {"p", "abc de"}},
        {"  p \t a\t\tb  ", {"p", "a", "b"}},
        {"", {}},
        {" \t ", {}},
    };
    for (const Case& c : cases) EXPECT_EQ(platform::splitCommandLine(c.line), c.arguments) << c.line;
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
    EXPECT_EQ(runToEnd(R"(/bin/sh -c "exit 3")"), 3u);
    EXPECT_EQ(runToEnd(R"(sh -c "exit 0")"), 0u);  // found on PATH
    EXPECT_EQ(runToEnd(R"(sh -c "[ \"$1\" = 'a \"b' ] && exit 5" sh "a \"b")"), 5u);
    EXPECT_EQ(runToEnd("/nonexistent/odb2vrn-tool"), 999u);
    EXPECT_EQ(runToEnd("odb2vrn-no-such-tool x"), 999u);
    EXPECT_EQ(runToEnd(""), 999u);

    // The child's output goes to the hidden console, not to ours.
    testing::internal::CaptureStdout();
    EXPECT_EQ(runToEnd(R"(sh -c "echo visible; exit 2")"), 2u);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

std::string readJobFile(const std::string& path) {
    std::FILE* file = platform::openJobFile(path.c_str());
    if (file == nullptr) return "<missing>";
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

TEST_F(PlatformTest, OpenJobFileIgnoresCaseLikeWindows) {
    makeFile("steps/step/eda/data", "lower");
    makeFile("steps/STEP/eda/data", "upper");
    makeFile("steps/pcb/eda/Data", "mixed");
    makeFile("steps/pcb/eda/data", "exact");
    makeFile("steps/pcb/eda/DATA", "capitals");
    makeDirectory("steps/pcb/layers/comp_+_top/components");
    makeFile("matrix/matrix", "m");

    struct Case {
        std::string path;
        std::string text;
    };
    const Case cases[] = {
        {path("steps/step/eda/data"), "lower"},
        {path("steps/STEP/eda/data"), "upper"},
        {path("STEPS/Step/EDA/DaTa"), "upper"},      // "STEP" sorts before "step"
        {path("steps/PCB/eda/data"), "exact"},       // an exact component wins
        {path("steps/pcb/eda/dAtA"), "capitals"},    // "DATA" < "Data" < "data"
        {"MATRIX/Matrix", "m"},                      // relative to the current directory
        {path("steps/pcb/layers/COMP_+_TOP/components"), "<missing>"},  // a directory
        {path("steps/pcb/eda"), "<missing>"},
        {path("steps/pcb/eda/data/x"), "<missing>"},
        {path("steps/nostep/eda/data"), "<missing>"},
    };
    for (const Case& c : cases) EXPECT_EQ(readJobFile(c.path), c.text) << c.path;
}

}  // namespace
