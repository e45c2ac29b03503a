#include "odb/matrix_scanner.h"

#include "platform/platform.h"

MatrixScanner::~MatrixScanner() { close(); }

bool MatrixScanner::open(const TextString& path) {
    file = platform::openJobFile(path.text());
    if (file == nullptr) return false;
    static const char* const kWords[] = {"STEP",     "LAYER",      "COL",      "NAME",     "ROW",
                                         "CONTEXT",  "TYPE",       "OLD_NAME", "POLARITY", "START_NAME",
                                         "END_NAME", "ADD_TYPE",   "COLOR",    "#",        "}"};
    std::int32_t code = 1;
    for (const char* word : kWords) keywords.add(word, code++);
    opened = true;
    return true;
}

void MatrixScanner::close() {
    if (file != nullptr) std::fclose(file);
    file = nullptr;
    keywords.clearRecords();
}

int MatrixScanner::nextCharacter() {
    if (characterPushedBack) {
        characterPushedBack = false;
        return pushedBackCharacter;
    }
    return file == nullptr ? EOF : std::getc(file);
}

std::int32_t MatrixScanner::readLine(TextString& line) {
    lineBuffer[0] = '\0';
    bool comment = false;
    int position = 0;
    if (endOfFile) return -1;
    for (;;) {
        const int c = nextCharacter();
        bool lineEnd = false;
        bool keep = true;
        switch (c) {
            case EOF:
                endOfFile = true;
                lineBuffer[position] = '\0';
                line.assign(lineBuffer);
                return -1;
            case '\t':
                keep = false;
                break;
            case '\n':
                lineEnd = true;
                break;
            case '\r': {
                const int following = nextCharacter();
                if (following != '\n') {
                    characterPushedBack = true;
                    pushedBackCharacter = following;
                }
                lineEnd = true;
                break;
            }
            case ' ':
                keep = position > 0;
                break;
            case '#':
                comment = true;
                keep = false;
                break;
            case '{':
                ++braceCounter;
                break;
            case '}':
                --braceCounter;
                break;
            default:
                break;
        }
        if (lineEnd) {
            ++lineCounter;
            lineBuffer[position] = '\0';
            line.assign(lineBuffer);
            if (position > 0 && !comment) return 0;
            comment = false;
            position = 0;
            lineBuffer[0] = '\0';
            continue;
        }
        if (keep && position < kTextArea - 1) lineBuffer[position++] = static_cast<char>(c);
    }
}
