#include "odb/line_scanner.h"

#include "platform/platform.h"

LineScanner::~LineScanner() { close(); }

bool LineScanner::open(const TextString& path, Design* target) {
    if (target == nullptr) return false;
    file = platform::openJobFile(path.text());
    if (file == nullptr) return false;
    pieces_.attach(file);
    design = target;
    fill_(keywords);
    opened = true;
    return true;
}

std::int32_t LineScanner::readLine(TextString& line) {
    const char* text = nextLine();
    if (text == nullptr) return -1;
    line.assign(text);
    return 0;
}

void LineScanner::close() {
    pieces_.attach(nullptr);
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
