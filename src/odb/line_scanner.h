// The line scanners of a components file and of eda/data. Both hand out one
// line at a time, line end included, in pieces of at most 2047 characters,
// and skip lines that start with '#', a line feed or a carriage return.
// They differ on purpose in one rule and in their tables:
//   ComponentScanner also skips '@' lines; an unlisted word gives 0.
//   EdaScanner hands '@' lines over; an unlisted word gives 1.
#pragma once

#include <cstdint>
#include <cstdio>

#include "containers/text_string.h"
#include "odb/keyword_table.h"
#include "odb/line_pieces.h"

class Design;

// The first word of a record: 15 characters; no keyword is that long.
constexpr int kFirstWordArea = 16;

class LineScanner {
public:
    LineScanner(const LineScanner&) = delete;
    LineScanner& operator=(const LineScanner&) = delete;
    ~LineScanner();

    // Opens path (job lookup, ignoring case) and fills the table; false,
    // with nothing printed, when the file can't be opened or design is null.
    bool open(const TextString& path, Design* design);
    // The next line that is not skipped, valid until the next read; null at
    // the end of the file.
    const char* nextLine() {
        if (endOfFile) return nullptr;
        for (;;) {
            const char* piece = pieces_.next();
            if (piece == nullptr) {
                endOfFile = true;
                return nullptr;
            }
            ++lineCounter;
            const char first = piece[0];
            if (first != '#' && first != '\n' && first != '\r' && (first != '@' || !skipAtLines_)) return piece;
        }
    }
    // 0 with a copy of nextLine in line; -1 at the end of the file (line
    // unchanged).
    std::int32_t readLine(TextString& line);
    std::int32_t lookup(const char* word) const { return keywords.lookup(word, true, notFound_); }
    void close();

    std::FILE* file = nullptr;
    bool endOfFile = false;
    KeywordTable keywords;
    Design* design = nullptr;
    std::int32_t lineCounter = 1;
    bool opened = false;

protected:
    using TableFiller = void (*)(KeywordTable&);
    LineScanner(bool skipAtLines, std::int32_t notFound, TableFiller fill)
        : skipAtLines_(skipAtLines), notFound_(notFound), fill_(fill) {}

private:
    const bool skipAtLines_;
    const std::int32_t notFound_;
    const TableFiller fill_;
    LinePieces pieces_;
};

class ComponentScanner : public LineScanner {
public:
    enum Code { kCmp = 1, kPrp = 2, kTop = 3 };
    ComponentScanner() : LineScanner(true, 0, fillTable) {}

private:
    static void fillTable(KeywordTable& table);
};

class EdaScanner : public LineScanner {
public:
    enum Code { kUnlisted = 1, kNet = 6, kSnt = 7, kPkg = 8, kPin = 9, kTop = 22 };
    EdaScanner() : LineScanner(false, 1, fillTable) {}

private:
    static void fillTable(KeywordTable& table);
};

// The formatted scan "%15s" of a line into firstWord (kFirstWordArea
// bytes): 1; or -1 for a line of blanks, which leaves the area alone. Every
// line is scanned so: with sscanf, bench_stages at 100k components takes
// 3.55 billion instructions, not 2.01.
inline int scanFirstWord(const char* line, char* firstWord) {
    const char* p = line;
    while (isWhiteSpace(*p)) ++p;
    if (*p == '\0') return -1;
    int length = 0;
    for (; length < kFirstWordArea - 1 && p[length] != '\0' && !isWhiteSpace(p[length]); ++length) {
        firstWord[length] = p[length];
    }
    firstWord[length] = '\0';
    return 1;
}

// Reads the file to its end. The first word of each line goes into
// firstWord and the line with the word's code to handle(line, code), which
// returns false when its record ends the read. A line of blanks scans no
// word, so the word in the area (the last one scanned there) is dispatched
// again. The scan never gives 0, which would end the read. 0 at the end of
// the file, else 1.
template <typename Handler>
std::int32_t readRecords(LineScanner& scanner, char* firstWord, Handler handle) {
    while (const char* line = scanner.nextLine()) {
        scanFirstWord(line, firstWord);
        if (!handle(line, scanner.lookup(firstWord))) return 1;
    }
    return 0;
}

// 0 when the file at path (job lookup) can be opened for reading, 1 if not.
std::int32_t fileExists(const TextString& path);
