#include "unpack/unpack_damage.h"

#include <cctype>

namespace {

// 7-Zip's names for a member or an archive that can't be read whole, as its
// console prints them after "ERROR: " or in a block of archive errors.
const char* const kDamageKinds[] = {"CRC Failed",       "CRC Error",     "Data Error",         "Unexpected end of data",
                                     "Unavailable data", "Headers Error", "Unsupported Method", "Wrong password"};

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

// One line of the output without its line end and trailing blanks.
std::string lineAt(const std::string& output, std::size_t& position) {
    const std::size_t end = output.find('\n', position);
    std::string line = output.substr(position, end == std::string::npos ? std::string::npos : end - position);
    position = end == std::string::npos ? output.size() : end + 1;
    while (!line.empty() && std::isspace(static_cast<unsigned char>(line.back()))) line.pop_back();
    return line;
}

// A system error's text without the POSIX build's "errno=28 : " in front.
std::string withoutErrorNumber(const std::string& text) {
    if (!startsWith(text, "errno=")) return text;
    const std::size_t separator = text.find(" : ");
    return separator == std::string::npos ? text : text.substr(separator + 3);
}

}  // namespace

std::string unpackDamage(std::uint32_t exitCode, const std::string& output) {
    if (exitCode < 2) return std::string();
    std::size_t position = 0;
    while (position < output.size()) {
        std::string line = lineAt(output, position);
        if (line == "System ERROR:") {
            // The system's message stands on the next line that has one.
            while (position < output.size()) {
                const std::string message = lineAt(output, position);
                if (!message.empty()) return withoutErrorNumber(message);
            }
            return "System ERROR";
        }
        if (startsWith(line, "ERROR: ")) line.erase(0, 7);
        for (const std::string kind : kDamageKinds) {
            if (!startsWith(line, kind)) continue;
            // Not an archive called "Data Error.tgz", which the line
            // "ERROR: <archive>" of one that can't be opened would name.
            const std::string rest = line.substr(kind.size());
            if (rest.empty() || startsWith(rest, " : ") || startsWith(rest, " in ")) return line;
        }
    }
    return std::string();
}
