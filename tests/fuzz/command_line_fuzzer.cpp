// Fuzzes platform::splitCommandLine, the Windows C runtime's rules by which
// the unpacker's command line becomes its arguments.
//
// Whatever the bytes, the arguments they give must come back unchanged when
// they are quoted the way a command line for that runtime is quoted and
// split again. The input is also read as a list of arguments (separated by
// zero bytes, the first being the program) that must survive the same trip.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace {

// The program name has no backslash rules: quotes only group, so it can't
// hold one.
std::string quoteProgram(const std::string& program) { return "\"" + program + "\""; }

// An argument: as it is when nothing in it needs quoting; else in quotes,
// with the backslashes before a quote (or the closing quote) doubled and
// each quote escaped.
std::string quoteArgument(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\n\v\"") == std::string::npos) return argument;
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        if (c == '"') quoted.append(2 * backslashes + 1, '\\');
        else quoted.append(backslashes, '\\');
        backslashes = 0;
        quoted += c;
    }
    quoted.append(2 * backslashes, '\\');
    return quoted + "\"";
}

void checkRoundTrip(const std::vector<std::string>& arguments, const char* origin) {
    std::string commandLine = quoteProgram(arguments[0]);
    for (std::size_t i = 1; i < arguments.size(); ++i) commandLine += " " + quoteArgument(arguments[i]);
    const std::vector<std::string> again = platform::splitCommandLine(commandLine.c_str());
    if (again == arguments) return;
    std::fprintf(stderr, "splitCommandLine: arguments from %s change when quoted and split again\n", origin);
    std::fprintf(stderr, "command line: [%s]\n", commandLine.c_str());
    for (std::size_t i = 0; i < arguments.size() || i < again.size(); ++i) {
        std::fprintf(stderr, "  %zu: [%s] -> [%s]\n", i, i < arguments.size() ? arguments[i].c_str() : "(none)",
                     i < again.size() ? again[i].c_str() : "(none)");
    }
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);

    // The bytes up to the first zero as a command line.
    const std::vector<std::string> split = platform::splitCommandLine(bytes.c_str());
    if (!split.empty()) checkRoundTrip(split, "a split command line");

    // The bytes as arguments; a program name holds no quote.
    std::vector<std::string> arguments(1);
    for (const char c : bytes) {
        if (c == '\0') arguments.emplace_back();
        else if (arguments.size() > 1 || c != '"') arguments.back() += c;
    }
    checkRoundTrip(arguments, "a list of arguments");
    return 0;
}
