#include "odb/line_scanner.h"

#include <cstring>

#include "platform/platform.h"

LineScanner::~LineScanner() { close(); }

bool LineScanner::open(const TextString& path, Design* target) {
    if (target == nullptr) return false;
    file = platform::openJobFile(path.text());
    if (file == nullptr) return false;
    design = target;
    fill_(keywords);
    opened = true;
    return true;
}

std::int32_t LineScanner::readLine(TextString& line) {
    lineBuffer[0] = '\0';
    if (endOfFile) return -1;
    for (;;) {
        if (file == nullptr || std::fgets(lineBuffer, kLineArea, file) == nullptr) {
            lineBuffer[0] = '\0';
            endOfFile = true;
            return -1;
        }
        ++lineCounter;
        const char first = lineBuffer[0];
        const bool skip = first == '#' || first == '\n' || first == '\r' || (skipAtLines_ && first == '@');
        if (!skip) break;
    }
    line.assign(lineBuffer);
    return 0;
}

void LineScanner::close() {
    if (file != nullptr) std::fclose(file);
    file = nullptr;
    keywords.clearRecords();
}

void ComponentScanner::fillTable(KeywordTable& table) {
    table.add("CMP", kCmp);
    table.add("PRP", kPrp);
    table.add("TOP", kTop);
}

void EdaScanner::fillTable(KeywordTable& table) {
    static const struct {
        const char* keyword;
        std::int32_t code;
    } kEntries[] = {
        {"HDR", 2},  {"LYR", 5},  {"NET", kNet}, {"SNT", kSnt}, {"PKG", kPkg}, {"PIN", kPin}, {"FGR", 10},
        {"FID", 11}, {"PRP", 12}, {"CR", 13},    {"SQ", 14},    {"RC", 15},    {"CT", 16},    {"OB", 17},
        {"OS", 18},  {"OC", 19},  {"OE", 20},    {"CE", 21},    {"@", 3},      {"&", 4},      {"TOP", kTop},
        {"VIA", 23}, {"TRC", 24}, {"PLN", 25},   {"# NET", 26},
    };
    for (const auto& entry : kEntries) table.add(entry.keyword, entry.code);
}

std::int32_t fileExists(const TextString& path) {
    std::FILE* file = platform::openJobFile(path.text());
    if (file == nullptr) return 1;
    std::fclose(file);
    return 0;
}
