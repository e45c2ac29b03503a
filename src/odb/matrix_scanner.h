// MatrixScanner: reads the matrix file by characters, because its blocks
// have braces and comments that may stand anywhere in a line. Tabs are
// dropped anywhere, leading blanks are dropped, CR, CR LF and LF end a line,
// and a '#' anywhere drops the whole line at its end. Every brace moves the
// brace counter, comments included; the job reader reads the counter to see
// where a block ends. Words are looked up ignoring case; unlisted gives 0.
#pragma once

#include <cstdint>
#include <cstdio>

#include "containers/text_string.h"
#include "odb/keyword_table.h"

class MatrixScanner {
public:
    enum Code { kStep = 1, kLayer = 2, kName = 4, kType = 7 };

    MatrixScanner() = default;
    MatrixScanner(const MatrixScanner&) = delete;
    MatrixScanner& operator=(const MatrixScanner&) = delete;
    ~MatrixScanner();

    bool open(const TextString& path);
    // 0 with a line (no line end) in line; -1 at the end of the file, with
    // what stood on the last line (no '#' in it) in line.
    std::int32_t readLine(TextString& line);
    std::int32_t lookup(const char* word) { return keywords.lookup(word, false, 0); }
    void close();

    std::FILE* file = nullptr;
    bool endOfFile = false;
    bool characterPushedBack = false;
    int pushedBackCharacter = 0;
    KeywordTable keywords;
    std::int32_t lineCounter = 1;
    // Characters past its 2047 in one line are dropped; braces and the
    // comment flag still count them.
    char lineBuffer[kTextArea] = {};
    bool opened = false;
    std::int32_t braceCounter = 0;

private:
    int nextCharacter();
};
