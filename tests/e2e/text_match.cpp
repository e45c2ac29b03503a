#include "e2e/text_match.h"

#include <cstring>
#include <vector>

namespace e2e {

namespace {

const char kRandomToken[] = "<RANDOM>";
const char kRandomAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_%-!@#()$";
constexpr std::size_t kRandomLength = 8;

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// "<0xHH>" at position; -1 when the text there is no byte token.
int byteToken(const std::string& text, std::size_t at) {
    if (text.compare(at, 3, "<0x") != 0 || at + 5 >= text.size() || text[at + 5] != '>') return -1;
    const int high = hexValue(text[at + 3]);
    const int low = hexValue(text[at + 4]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = text.find('\n', begin);
        if (end == std::string::npos) {
            lines.push_back(text.substr(begin));  // the text after the last line end
            return lines;
        }
        lines.push_back(text.substr(begin, end - begin + 1));
        begin = end + 1;
    }
}

bool matchLine(const std::string& expected, const std::string& actual, std::string& randomName) {
    std::size_t e = 0;
    std::size_t a = 0;
    for (;;) {
        const std::size_t token = expected.find(kRandomToken, e);
        const std::size_t literal = (token == std::string::npos ? expected.size() : token) - e;
        if (actual.compare(a, literal, expected, e, literal) != 0) return false;
        e += literal;
        a += literal;
        if (token == std::string::npos) return a == actual.size();
        if (actual.size() - a < kRandomLength) return false;
        const std::string name = actual.substr(a, kRandomLength);
        if (name.find_first_not_of(kRandomAlphabet) != std::string::npos) return false;
        if (randomName.empty()) randomName = name;
        if (name != randomName) return false;
        e += std::strlen(kRandomToken);
        a += kRandomLength;
    }
}

// A line for a report: its line end left out, a missing one told.
std::string shown(const std::vector<std::string>& lines, std::size_t i) {
    if (i >= lines.size() || lines[i].empty()) return "(end of text)";
    const std::string& line = lines[i];
    if (line.back() == '\n') return printable(line.substr(0, line.size() - 1));
    return printable(line) + " (no line end)";
}

}  // namespace

std::string expandPlaceholders(const std::string& text, const Placeholders& values) {
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        if (text[at] == '<') {
            const int byte = byteToken(text, at);
            if (byte >= 0) {
                result += static_cast<char>(byte);
                at += 6;
                continue;
            }
            const std::size_t close = text.find('>', at);
            if (close != std::string::npos) {
                const auto value = values.find(text.substr(at + 1, close - at - 1));
                if (value != values.end()) {
                    result += value->second;
                    at = close + 1;
                    continue;
                }
            }
        }
        result += text[at++];
    }
    return result;
}

std::string printable(const std::string& text) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            result += c;
        } else {
            result += "<0x";
            result += kHex[byte >> 4];
            result += kHex[byte & 15];
            result += '>';
        }
    }
    return result;
}

std::string firstDifference(const std::string& expected, const std::string& actual, std::string& randomName) {
    const std::vector<std::string> want = splitLines(expected);
    const std::vector<std::string> have = splitLines(actual);
    const std::size_t lines = want.size() > have.size() ? want.size() : have.size();
    for (std::size_t i = 0; i < lines; ++i) {
        const bool both = i < want.size() && i < have.size();
        if (both && matchLine(want[i], have[i], randomName)) continue;
        return "first difference at line " + std::to_string(i + 1) + "\n  expected: " + shown(want, i) +
               "\n  actual:   " + shown(have, i);
    }
    return "";
}

}  // namespace e2e
