// The Windows C runtime's rules for splitting a command line, kept in one
// place: on POSIX Process::start hands the parts to execv, on Windows the
// started program's own runtime splits the same line by the same rules.
#include "platform/platform.h"

namespace platform {

std::vector<std::string> splitCommandLine(const char* commandLine) {
    std::vector<std::string> arguments;
    const char* p = commandLine;
    while (*p == ' ' || *p == '\t') ++p;
    if (*p == '\0') return arguments;

    // The program name: no backslash rules, quotes only group.
    std::string program;
    bool quoted = false;
    for (; *p != '\0'; ++p) {
        if (*p == '"') {
            quoted = !quoted;
        } else if (!quoted && (*p == ' ' || *p == '\t')) {
            break;
        } else {
            program += *p;
        }
    }
    arguments.push_back(program);

    for (;;) {
        while (*p == ' ' || *p == '\t') ++p;
        if (*p == '\0') break;
        std::string argument;
        bool inQuotes = false;
        while (*p != '\0' && (inQuotes || (*p != ' ' && *p != '\t'))) {
            std::size_t backslashes = 0;
            while (*p == '\\') {
                ++backslashes;
                ++p;
            }
            if (*p == '"') {
                argument.append(backslashes / 2, '\\');
                if (backslashes % 2 == 1) {
                    argument += '"';
                    ++p;
                } else if (inQuotes && p[1] == '"') {
                    argument += '"';  // "" inside quotes: a literal quote
                    p += 2;
                } else {
                    inQuotes = !inQuotes;
                    ++p;
                }
            } else {
                argument.append(backslashes, '\\');
                if (*p != '\0' && (inQuotes || (*p != ' ' && *p != '\t'))) {
                    argument += *p;
                    ++p;
                }
            }
        }
        arguments.push_back(argument);
    }
    return arguments;
}

}  // namespace platform
