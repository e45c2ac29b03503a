#include "e2e/scene.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "e2e/process_runner.h"
#include "support/test_support.h"
#ifdef _WIN32
#include "e2e/windows_staging.h"
#endif

namespace fs = std::filesystem;
using testsupport::readFile;
using testsupport::writeFile;

namespace e2e {

const char kSkipReason[] = "the shared samples are absent";
const char kNotOnWindows[] = "not on Windows: ";

std::string e2eDirectory() { return testsupport::testDataDir() + "/e2e"; }

namespace {

std::string environmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

std::string scenePath(const Scene& scene, const std::string& path) {
    if (path == "stage" || path.rfind("stage/", 0) == 0) return scene.scratch + "/" + path;
    return scene.root + "/" + path;
}

// The folders as the converter spells them: with backslashes on Windows.
std::string placeholderPath(const std::string& path) {
#ifdef _WIN32
    return nativePath(path);
#else
    return path;
#endif
}

void setWorkingDirectory(Scene& scene, const std::string& path) {
    scene.workingDirectory = scenePath(scene, path);
    scene.placeholders["WORK"] = placeholderPath(scene.workingDirectory);
}

// "left <separator> right"; false when the separator is missing.
bool splitAt(const std::string& text, const char* separator, std::string& left, std::string& right) {
    const std::size_t at = text.find(separator);
    if (at == std::string::npos) return false;
    left = text.substr(0, at);
    right = text.substr(at + std::string(separator).size());
    return !left.empty();
}

bool readCount(const std::string& text, long long& value) {
    char* end = nullptr;
    value = std::strtoll(text.c_str(), &end, 10);
    return end != text.c_str() && *end == '\0' && value >= 0;
}

// Runs a packing tool; returns its standard output in output.
std::string runTool(const std::vector<std::string>& arguments, const std::string& directory, std::string* output = nullptr) {
    ProcessRequest request;
    request.arguments = arguments;
    request.directory = directory;
    request.environment = currentEnvironment();
    const ProcessResult result = runProcess(request);
    if (output != nullptr) *output = result.output;
    if (result.started && !result.timedOut && result.exitCode == 0) return "";
    return arguments[0] + " failed (exit " + std::to_string(result.exitCode) + "): " + result.errorOutput;
}

// A basic regular expression that matches exactly this text.
std::string literalPattern(const std::string& text, const char* metacharacters) {
    std::string result;
    for (const char c : text) {
        if (std::string(metacharacters).find(c) != std::string::npos) result += '\\';
        result += c;
    }
    return result;
}

// pack <tar|tgz|zip|gzip> <output> <- <input>: a directory's entries, or one
// file, become the members.
std::string pack(Scene& scene, const std::string& format, const std::string& output, const std::string& input) {
    std::error_code error;
    fs::create_directories(fs::path(output).parent_path(), error);
    fs::remove(output, error);
    std::string directory = input;
    std::vector<std::string> members;
    if (fs::is_directory(input)) {
        for (const auto& entry : fs::directory_iterator(input, error)) members.push_back(entry.path().filename().string());
        std::sort(members.begin(), members.end());
    } else {
        directory = fs::path(input).parent_path().string();
        members.push_back(fs::path(input).filename().string());
    }

#ifdef _WIN32
    const std::string result = packWithSevenZip(format, output, directory, members, scene.renames);
    scene.renames.clear();
    return result;
#endif
    if (format == "gzip") {
        if (members.size() != 1 || fs::is_directory(input)) return "gzip packs one file";
        std::string packed;
        const std::string failure = runTool({"gzip", "-c", "-n", input}, directory, &packed);
        if (failure.empty()) writeFile(output, packed);
        return failure;
    }
    std::vector<std::string> arguments;
    if (format == "zip") {
        arguments = {"7zz", "a", "-tzip", output};
    } else if (format == "tar" || format == "tgz") {
        arguments = {"tar", format == "tgz" ? "-czf" : "-cf", output};
        if (!scene.renames.empty()) arguments.push_back("-P");  // keeps ".." and "/" in the new names
        for (const auto& [member, stored] : scene.renames) {
            arguments.push_back("--transform=s,^" + literalPattern(member, ".[]*^$\\,") + "$," +
                                literalPattern(stored, "\\&,") + ",");
        }
        scene.renames.clear();
    } else {
        return "unknown packing " + format;
    }
    if (members.empty()) {
        if (format == "zip") return "zip has nothing to pack";
        const std::string noNames = scene.stage + "/no-members";  // an empty archive
        writeFile(noNames, "");
        arguments.push_back("--files-from=" + noNames);
    }
    arguments.insert(arguments.end(), members.begin(), members.end());
    return runTool(arguments, directory);
}

std::string copyJob(const Scene& scene, const std::string& source, const std::string& destination) {
    std::string from = source;
    if (source == "case") {
        from = scene.caseDirectory + "/job";
    } else if (!fs::path(source).is_absolute()) {
        from = e2eDirectory() + "/jobs/" + source;
    }
    if (!fs::is_directory(from)) return "no job at " + from;
    std::error_code error;
    fs::create_directories(destination, error);
    // A second job line lays its files over the first one's.
    fs::copy(from, destination, fs::copy_options::recursive | fs::copy_options::overwrite_existing, error);
    return error ? "copying " + from + ": " + error.message() : "";
}

std::string useSample(Scene& scene, const std::string& name) {
    const std::string archive = testsupport::samplesDir() + "/" + name + ".tgz";
    if (!fs::exists(archive)) return kSkipReason;
    std::error_code error;
    fs::copy_file(archive, scene.workingDirectory + "/" + name + ".tgz", error);
    scene.sample = name;
    return error ? error.message() : "";
}

std::string repeated(const std::string& text, long long bytes) {
    std::string result;
    if (text.empty()) return result;
    result.reserve(static_cast<std::size_t>(bytes));
    while (static_cast<long long>(result.size()) < bytes) result += text;
    result.resize(static_cast<std::size_t>(bytes));
    return result;
}

// Every file below path gets CR LF line ends, as Windows exporters write them.
std::string withCrLf(const std::string& path) {
    std::error_code error;
    for (fs::recursive_directory_iterator it(path, error), end; !error && it != end; it.increment(error)) {
        if (!it->is_regular_file()) continue;
        std::string text;
        for (const char c : readFile(it->path().string())) {
            if (c == '\n') text += '\r';
            text += c;
        }
        writeFile(it->path().string(), text);
    }
    return error ? "crlf: " + error.message() : "";
}

std::string runCommand(Scene& scene, const std::string& line) {
    const std::size_t blank = line.find(' ');
    const std::string command = line.substr(0, blank);
    const std::string rest = blank == std::string::npos ? "" : line.substr(blank + 1);
    std::string left, right;
    std::error_code error;

    if (command == "job" && splitAt(rest, " -> ", left, right)) return copyJob(scene, left, scenePath(scene, right));
    if (command == "pack" && splitAt(rest, " <- ", left, right)) {
        const std::size_t space = left.find(' ');
        if (space == std::string::npos) return "pack needs a format and an output";
        return pack(scene, left.substr(0, space), scenePath(scene, left.substr(space + 1)), scenePath(scene, right));
    }
    if (command == "rename" && splitAt(rest, " -> ", left, right)) {
        scene.renames.emplace_back(left, right);
        return "";
    }
#ifdef _WIN32
    // The names a line holds; a file's contents follow " -> " in these.
    const bool writes = command == "write" || command == "fill" || command == "repeat";
    const std::string names = writes ? line.substr(0, line.find(" -> ")) : line;
    if (std::any_of(names.begin(), names.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; })) {
        return std::string(kNotOnWindows) + "names with bytes past ASCII go through the ANSI code page";
    }
    if (command == "compress") return compressFile(scenePath(scene, rest));
    if (command == "link") return std::string(kNotOnWindows) + "a symbolic link needs a privilege that users lack";
#endif
    if (command == "compress") return runTool({"compress", "-f", scenePath(scene, rest)}, scene.scratch);
    if (command == "link" && splitAt(rest, " -> ", left, right)) {
        fs::create_directories(fs::path(scenePath(scene, left)).parent_path(), error);
        fs::create_symlink(right, scenePath(scene, left), error);
        return error ? "link: " + error.message() : "";
    }
    if (command == "chmod" && splitAt(rest, " ", left, right)) {
        const long mode = std::strtol(left.c_str(), nullptr, 8);
        fs::permissions(scenePath(scene, right), static_cast<fs::perms>(mode), fs::perm_options::replace, error);
        return error ? "chmod: " + error.message() : "";
    }
    if (command == "mkdir") {
        fs::create_directories(scenePath(scene, rest), error);
        return error ? "mkdir: " + error.message() : "";
    }
    if (command == "write" && splitAt(rest, " -> ", left, right)) {
        fs::create_directories(fs::path(scenePath(scene, left)).parent_path(), error);
        writeFile(scenePath(scene, left), right);
        return "";
    }
    if ((command == "fill" || command == "repeat") && splitAt(rest, " -> ", left, right)) {
        const std::size_t space = left.find(' ');
        long long count = 0;
        if (space == std::string::npos || !readCount(left.substr(0, space), count)) return command + " needs a count";
        const std::string path = scenePath(scene, left.substr(space + 1));
        fs::create_directories(fs::path(path).parent_path(), error);
        if (command == "fill") {
            writeFile(path, repeated(right, count));
        } else {
            std::ofstream(path, std::ios::binary | std::ios::app) << repeated(right, count * static_cast<long long>(right.size()));
        }
        return "";
    }
    if (command == "decode") {
        const std::string path = scenePath(scene, rest);
        writeFile(path, expandPlaceholders(readFile(path), {}));
        return "";
    }
    if (command == "crlf") return withCrLf(scenePath(scene, rest));
    if (command == "cwd") {
        setWorkingDirectory(scene, rest);
        fs::create_directories(scene.workingDirectory, error);
        return "";
    }
    if (command == "sample") return useSample(scene, rest);
    return "unknown recipe line: " + line;
}

}  // namespace

Scene makeScene(const std::string& scratch, const std::string& caseDirectory) {
    Scene scene;
    scene.scratch = scratch;
    scene.stage = scratch + "/stage";
    scene.root = scratch + "/root";
    scene.doubleDirectory = scratch + "/double";
    scene.caseDirectory = caseDirectory;
    std::error_code error;
    for (const std::string& folder : {scene.stage, scene.root + "/work", scene.root + "/tmp", scene.doubleDirectory}) {
        fs::create_directories(folder, error);
    }
    if (fs::is_directory(caseDirectory + "/work")) {
        fs::copy(caseDirectory + "/work", scene.root + "/work", fs::copy_options::recursive, error);
    }
    scene.placeholders = {
        {"ROOT", placeholderPath(scene.root)},
        {"TMP", placeholderPath(scene.root + "/tmp")},
        {"DOUBLE", placeholderPath(scene.doubleDirectory)},
        {"BIN", placeholderPath(testsupport::binDir())},
        {"SOURCE", placeholderPath(fs::path(testsupport::testDataDir()).parent_path().string())},
        {"PATH", environmentValue("PATH")},
        // What a refused command line prints after its message.
        {"BANNER_USAGE", readFile(e2eDirectory() + "/common/banner_usage.console")},
    };
    setWorkingDirectory(scene, "work");
    return scene;
}

std::string runRecipe(const std::vector<std::string>& recipe, Scene& scene) {
    for (const std::string& line : recipe) {
        const std::string failure = runCommand(scene, expandPlaceholders(line, scene.placeholders));
        if (!failure.empty()) return failure;
    }
    return "";
}

}  // namespace e2e
