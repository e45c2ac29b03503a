// Runs every case folder below tests/e2e/cases against the built program,
// as a user runs it: its own working directory, its own empty TMP, the
// program and the unpacker launcher found in the build's bin folder. Each
// case compares the whole console text, the exit code and the whole output
// file, and checks that nothing else below the case's root changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "e2e/case_definition.h"
#include "e2e/process_runner.h"
#include "e2e/scene.h"
#include "e2e/text_match.h"
#include "e2e/tree_snapshot.h"
#include "support/test_support.h"
#ifdef _WIN32
#include "e2e/windows_staging.h"
#endif

namespace fs = std::filesystem;
using testsupport::readFile;

namespace e2e {
namespace {

// A run that takes longer has hung: the peeling loop has no limit of its own.
constexpr double kGuardSeconds = 30;

std::string casesDirectory() { return e2eDirectory() + "/cases"; }

// The variables a case starts from: the driver's own, with TMP pointing at
// the case's empty folder, TEMP and the unpacker's folders unset, and the
// build's bin folder first on PATH.
std::vector<std::string> runEnvironment(const CaseDefinition& definition, const Scene& scene) {
    std::vector<std::pair<std::string, std::string>> variables;
    for (const std::string& entry : currentEnvironment()) {
        const std::size_t equals = entry.find('=');
        variables.emplace_back(entry.substr(0, equals), equals == std::string::npos ? "" : entry.substr(equals + 1));
    }
    auto unset = [&](const std::string& name) {
        variables.erase(std::remove_if(variables.begin(), variables.end(), [&](const auto& v) { return v.first == name; }),
                        variables.end());
    };
    auto set = [&](const std::string& name, const std::string& value) {
        unset(name);
        variables.emplace_back(name, value);
    };
    for (const char* name : {"TEMP", "RQT32", "VOSKARDIR"}) unset(name);
    set("TMP", scene.placeholders.at("TMP"));
    set("PATH", scene.placeholders.at("BIN") + kPathListSeparator + scene.placeholders.at("PATH"));
    set("LC_ALL", "C.UTF-8");  // how 7-Zip reads the bytes of member names
    for (const std::string& line : definition.environment) {
        const std::string expanded = expandPlaceholders(line, scene.placeholders);
        if (expanded.rfind("unset ", 0) == 0) {
            unset(expanded.substr(6));
        } else {
            const std::size_t equals = expanded.find('=');
            set(expanded.substr(0, equals), equals == std::string::npos ? "" : expanded.substr(equals + 1));
        }
    }
    std::vector<std::string> environment;
    for (const auto& [name, value] : variables) environment.push_back(name + "=" + value);
    return environment;
}

void installDouble(const CaseDefinition& definition, const Scene& scene) {
    const std::string tool = scene.doubleDirectory + "/qx7za.exe";
    std::error_code error;
#ifdef _WIN32
    fs::copy_file(ODB2VRN_UNPACKER_DOUBLE, tool, error);  // the double's Windows build
#else
    fs::copy_file(e2eDirectory() + "/unpacker_double/qx7za.exe", tool, error);
#endif
    fs::permissions(tool, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec, error);
    testsupport::writeFile(scene.doubleDirectory + "/behaviour", expandPlaceholders(definition.doubleBehaviour, scene.placeholders));
}

std::string withoutLine(const std::string& text, int number) {
    std::size_t begin = 0;
    for (int line = 1; line < number && begin != std::string::npos; ++line) {
        begin = text.find('\n', begin);
        if (begin != std::string::npos) ++begin;
    }
    if (begin == std::string::npos) return text;
    const std::size_t end = text.find('\n', begin);
    return text.substr(0, begin) + (end == std::string::npos ? "" : text.substr(end + 1));
}

bool underLeftover(const std::string& path, const std::vector<std::string>& leftovers) {
    return std::any_of(leftovers.begin(), leftovers.end(), [&](const std::string& prefix) { return path.rfind(prefix, 0) == 0; });
}

std::string testName(const std::string& caseName) {
    std::string name = caseName;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

void expectSame(const std::string& what, const std::string& expected, const std::string& actual, std::string& randomName) {
    const std::string difference = firstDifference(expected, actual, randomName);
    if (!difference.empty()) ADD_FAILURE() << what << ": " << difference;
}

ProcessResult runProgram(const CaseDefinition& definition, const Scene& scene) {
    ProcessRequest request;
#ifdef _WIN32
    // CreateProcessA looks in the program's own folder before PATH; a copy
    // away from bin/ finds qx7za.exe only where the case puts it, as on POSIX.
    const std::string program = scene.scratch + "/program/Odb2vrn_64.exe";
    std::error_code error;
    fs::create_directories(scene.scratch + "/program", error);
    fs::copy_file(testsupport::binDir() + "/Odb2vrn_64.exe", program, error);
    request.arguments.push_back(program);
#else
    request.arguments.push_back(testsupport::binDir() + "/Odb2vrn_64");
#endif
    for (const std::string& argument : definition.arguments) {
        request.arguments.push_back(expandPlaceholders(argument, scene.placeholders));
    }
    request.directory = scene.workingDirectory;
    request.environment = runEnvironment(definition, scene);
    request.inputFile = definition.stdinFile;
    request.timeoutSeconds = kGuardSeconds;
    return runProcess(request);
}

void checkEnding(const CaseDefinition& definition, const ProcessResult& run) {
    if (definition.abnormalEnd) {
        EXPECT_EQ(run.signal, SIGABRT) << "the run must end abnormally";
    } else {
        EXPECT_EQ(run.signal, 0) << "ended by a signal";
        EXPECT_EQ(run.exitCode, definition.exitCode) << "exit code";
    }
    EXPECT_EQ(run.errorOutput, "") << "nothing may go to standard error";
    if (definition.seconds > 0) {
        EXPECT_LT(run.seconds, definition.seconds) << "run time";
    }
}

void checkConsoleAndCalls(const CaseDefinition& definition, const Scene& scene, const ProcessResult& run,
                          std::string& randomName) {
    std::string expected = expandPlaceholders(definition.console, scene.placeholders);
    std::string console = run.output;
    if (!scene.sample.empty()) {
        // The samples' console files leave out the first line, "Using unzip ...".
        expected = readFile(testsupport::samplesDir() + "/" + scene.sample + ".console");
        console = console.substr(std::min(console.size(), console.find('\n') + 1));
    }
    expectSame("console", testsupport::asWrittenText(expected), console, randomName);
    if (definition.hasCalls) {
        expectSame("the unpacker's calls", expandPlaceholders(definition.calls, scene.placeholders),
                   readFile(scene.doubleDirectory + "/calls.log"), randomName);
    }
}

// The files the run must leave, by path below root/, with their bytes: the
// output file first.
std::vector<std::pair<std::string, std::string>> expectedFiles(const CaseDefinition& definition, const Scene& scene) {
    std::vector<std::pair<std::string, std::string>> files;
    if (definition.hasVrn || !scene.sample.empty()) {
        std::string path = expandPlaceholders(definition.outputPath, scene.placeholders);
        std::string contents = testsupport::asWrittenText(definition.vrn);
        if (!scene.sample.empty()) {
            // Their rights comment, line 4, is the team's own wording.
            contents = testsupport::asWrittenText(
                withoutLine(readFile(testsupport::samplesDir() + "/" + scene.sample + ".vrn"), 4));
        }
        if (path.empty()) {
            const std::string name = scene.sample.empty() ? "board" : scene.sample;
            path = fs::path(scene.workingDirectory + "/" + name + ".vrn").lexically_relative(scene.root).generic_string();
        }
        files.emplace_back(path, contents);
    }
    for (const auto& [path, contents] : definition.afterFiles) files.emplace_back(path, contents);
    return files;
}

void checkFiles(const std::vector<std::pair<std::string, std::string>>& files, const TreeSnapshot& after,
                const Scene& scene, std::string& randomName) {
    for (const auto& [path, contents] : files) {
        const auto file = after.find(path);
        if (file == after.end() || file->second.kind != 'f') {
            ADD_FAILURE() << "no file " << path;
            continue;
        }
        const bool sampleOutput = !scene.sample.empty() && path == files.front().first;
        expectSame("file " + path, contents, sampleOutput ? withoutLine(file->second.content, 4) : file->second.content,
                   randomName);
    }
}

void checkNothingElseChanged(const CaseDefinition& definition, const Scene& scene, const TreeSnapshot& before,
                             const TreeSnapshot& after, const std::vector<std::pair<std::string, std::string>>& files) {
    std::vector<std::string> leftovers;
    for (const std::string& prefix : definition.leftovers) leftovers.push_back(expandPlaceholders(prefix, scene.placeholders));
    std::string unexpected;
    for (const std::string& path : changedPaths(before, after)) {
        const bool named = std::any_of(files.begin(), files.end(), [&](const auto& file) { return file.first == path; });
        if (!named && !underLeftover(path, leftovers)) unexpected += "\n  " + printable(path);
    }
    if (!unexpected.empty()) ADD_FAILURE() << "changed below " << scene.root << " without being expected:" << unexpected;
}

// For a look at a case by hand: ODB2VRN_E2E_KEEP=<folder> keeps each case's
// scratch folder there.
void keepScratchIfAsked(const std::string& scratch, const std::string& caseName) {
    const char* keep = std::getenv("ODB2VRN_E2E_KEEP");
    if (keep == nullptr) return;
    std::error_code error;
    const std::string copy = std::string(keep) + "/" + testName(caseName);
    fs::remove_all(copy, error);
    fs::create_directories(copy, error);
    fs::copy(scratch, copy, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
}

class EndToEnd : public ::testing::TestWithParam<std::string> {};

TEST_P(EndToEnd, Case) {
    CaseDefinition definition;
    const std::string problem = loadCase(casesDirectory(), GetParam(), definition);
    ASSERT_EQ(problem, "") << "case folder " << definition.directory;
    if (!definition.pending.empty()) GTEST_SKIP() << "pending fix: " << definition.pending;
#ifdef _WIN32
    // The converter builds its paths with backslashes on Windows.
    for (std::string* text : {&definition.console, &definition.calls, &definition.doubleBehaviour}) {
        *text = withBackslashes(*text);
    }
    for (std::string& line : definition.arguments) line = withBackslashes(line);
    // Wine starts processes slowly, and the Windows double's probe sleeps
    // 60 s, so a converter that waited for it still fails the limit.
    if (definition.seconds > 0) definition.seconds += 10;
    for (std::string& line : definition.environment) {
        line = withBackslashes(line);
        // A folder list in PATH takes ";" between folders.
        for (std::size_t at = 0; line.rfind("PATH=", 0) == 0 && (at = line.find(":<", at)) != std::string::npos;) {
            line[at] = ';';
        }
    }
#endif

    testsupport::ScratchDir scratch;
    Scene scene = makeScene(scratch.path(), definition.directory);
#ifdef _WIN32
    // The runtime's ANSI calls refuse a path past MAX_PATH (260) before the
    // converter's own limit of 270 can apply.
    constexpr std::size_t kMaxPath = 260;
    for (const std::string& argument : definition.arguments) {
        const std::string path = expandPlaceholders(argument, scene.placeholders);
        const std::size_t length = fs::path(path).is_absolute() ? path.size() : scene.workingDirectory.size() + 1 + path.size();
        if (length >= kMaxPath) GTEST_SKIP() << kNotOnWindows << "a path past MAX_PATH";
    }
#endif
    const std::string failure = runRecipe(definition.recipe, scene);
    if (failure == kSkipReason || failure.rfind(kNotOnWindows, 0) == 0) GTEST_SKIP() << failure;
    ASSERT_EQ(failure, "") << "recipe of " << definition.directory;
    ASSERT_TRUE(definition.hasConsole || !scene.sample.empty()) << "no expected.console";
    if (definition.usesDouble) installDouble(definition, scene);

    const TreeSnapshot before = snapshotTree(scene.root);
    const ProcessResult run = runProgram(definition, scene);
    const TreeSnapshot after = snapshotTree(scene.root);
    keepScratchIfAsked(scratch.path(), GetParam());
    ASSERT_TRUE(run.started) << "could not start " << testsupport::binDir() << "/Odb2vrn_64";
    ASSERT_FALSE(run.timedOut) << "no end within " << kGuardSeconds << " s; output so far:\n" << printable(run.output);

    checkEnding(definition, run);
    std::string randomName;  // the temporary directory's name, the same in every text
    checkConsoleAndCalls(definition, scene, run, randomName);
    const auto files = expectedFiles(definition, scene);
    checkFiles(files, after, scene, randomName);
    checkNothingElseChanged(definition, scene, before, after, files);
}

INSTANTIATE_TEST_SUITE_P(Cases, EndToEnd, ::testing::ValuesIn(listCases(casesDirectory())),
                         [](const ::testing::TestParamInfo<std::string>& info) { return testName(info.param); });

}  // namespace
}  // namespace e2e
