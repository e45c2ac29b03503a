#include "e2e/case_definition.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "support/test_support.h"

namespace fs = std::filesystem;
using testsupport::readFile;

namespace e2e {

std::vector<std::string> textLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        std::size_t end = text.find('\n', begin);
        if (end == std::string::npos) end = text.size();
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

std::vector<std::string> listCases(const std::string& casesRoot) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& group : fs::directory_iterator(casesRoot, error)) {
        if (!group.is_directory()) continue;
        for (const auto& entry : fs::directory_iterator(group.path(), error)) {
            if (entry.is_directory()) names.push_back(group.path().filename().string() + "/" + entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

namespace {

// Comment lines (#) and blank lines carry nothing.
std::vector<std::string> meaningfulLines(const std::string& text) {
    std::vector<std::string> lines;
    for (const std::string& line : textLines(text)) {
        if (!line.empty() && line[0] != '#') lines.push_back(line);
    }
    return lines;
}

bool readNumber(const std::string& text, double& value) {
    char* end = nullptr;
    value = std::strtod(text.c_str(), &end);
    return end != text.c_str() && std::string(end).find_first_not_of(" \n") == std::string::npos;
}

}  // namespace

std::string loadCase(const std::string& casesRoot, const std::string& name, CaseDefinition& definition) {
    definition.name = name;
    definition.directory = casesRoot + "/" + name;
    const std::string& dir = definition.directory;
    auto has = [&](const char* file) { return fs::exists(dir + "/" + file); };
    auto read = [&](const char* file) { return readFile(dir + "/" + file); };

    if (!has("args")) return "no args file";
    if (has("pending")) definition.pending = read("pending");
    definition.arguments = textLines(read("args"));
    if (has("recipe")) {
        definition.recipe = meaningfulLines(read("recipe"));
    } else if (has("job")) {
        // The usual packing: the job inside one wrapping folder, as exporters do.
        definition.recipe = {"job case -> stage/tree/odb", "pack tgz work/board.tgz <- stage/tree"};
    }
    if (has("env")) definition.environment = meaningfulLines(read("env"));
    if (has("stdin")) definition.stdinFile = dir + "/stdin";
    definition.usesDouble = has("unpacker");
    if (definition.usesDouble) definition.doubleBehaviour = read("unpacker");

    definition.hasConsole = has("expected.console");
    if (definition.hasConsole) definition.console = read("expected.console");
    if (has("expected.exit")) {
        double code = 0;
        definition.abnormalEnd = read("expected.exit") == "abort\n";
        if (!definition.abnormalEnd && !readNumber(read("expected.exit"), code)) {
            return "expected.exit holds neither a number nor \"abort\"";
        }
        definition.exitCode = static_cast<int>(code);
    }
    definition.hasVrn = has("expected.vrn");
    if (definition.hasVrn) definition.vrn = read("expected.vrn");
    if (has("output")) {
        const std::vector<std::string> lines = textLines(read("output"));
        if (lines.size() != 1) return "output must hold one path";
        definition.outputPath = lines[0];
    }
    definition.hasCalls = has("expected.calls");
    if (definition.hasCalls) definition.calls = read("expected.calls");
    if (definition.hasCalls && !definition.usesDouble) return "expected.calls without an unpacker double";
    const fs::path after = dir + "/expected.after";
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(after, error)) {
        if (entry.is_regular_file()) {
            definition.afterFiles[entry.path().lexically_relative(after).generic_string()] = readFile(entry.path().string());
        }
    }
    if (has("expected.leftover")) definition.leftovers = meaningfulLines(read("expected.leftover"));
    if (has("expected.seconds") && !readNumber(read("expected.seconds"), definition.seconds)) {
        return "expected.seconds holds no number";
    }
    return "";
}

}  // namespace e2e
