// The first-word scan and each record scan against sscanf with the format
// it stands for, over lines built from the tokens that trip a formatted
// scan: signs, hex, inf, nan, exponents with and without digits, more digits
// than a long holds, numbers that run into letters, empty and blank lines,
// tabs, CR, high bytes. Every result and every area a field assigns must be
// sscanf's, and an area that no field reached must be left as it was.
#include "odb/record_scans.h"
#include "odb/line_scanner.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t kArea = 2048;

// Areas filled with a pattern, so that a write where sscanf makes none shows.
struct Areas {
    char words[3][kArea];
    char letter = '?';
    long numbers[2] = {-77, -77};
    Areas() {
        for (auto& word : words) std::strcpy(word, "untouched");
    }
};

std::string lineFrom(std::uint32_t& state) {
    static const char* const kTokens[] = {
        "SNT", "TOP", "CMP", "PRP", "T",     "B",    "12",   "0",     "-3",    "+4",  "007", "0x1F", "1e5",
        "1.5", "-0.25", ".5", "1.", "1e",   "1e+",  "2E-3", "inf",   "nan",   "-",   "+",   "5x",   "3.2.1",
        "99999999999999999999", "123456789012345678", "9223372036854775808", "abc", "R1-2", "'a b'", ";;ID=7",
        "\xC3\xA9", "\xA0", "",
    };
    static const char* const kGaps[] = {" ", " ", " ", "  ", "\t", " \t ", "\r", "\v", "\f"};
    const auto next = [&state](std::uint32_t range) {
        state = state * 1103515245u + 12345u;
        return (state >> 8) % range;
    };
    std::string line = next(6) == 0 ? kGaps[next(9)] : "";
    const std::uint32_t count = next(11);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (i > 0) line += next(20) == 0 ? "" : kGaps[next(9)];
        line += kTokens[next(sizeof kTokens / sizeof *kTokens)];
    }
    const std::uint32_t end = next(4);
    line += end == 0 ? "" : end == 1 ? "\r\n" : "\n";
    return line;
}

void expectSame(const std::string& line, int result, int expected, const Areas& ours, const Areas& theirs) {
    ASSERT_EQ(result, expected) << '"' << line << '"';
    for (int i = 0; i < 3; ++i) ASSERT_STREQ(ours.words[i], theirs.words[i]) << "word " << i << " of \"" << line << '"';
    ASSERT_EQ(ours.letter, theirs.letter) << '"' << line << '"';
    for (int i = 0; i < 2; ++i) ASSERT_EQ(ours.numbers[i], theirs.numbers[i]) << "number " << i << " of \"" << line << '"';
}

TEST(RecordScans, AsSscanfWithTheirFormats) {
    std::uint32_t state = 2024;
    for (int n = 0; n < 40000; ++n) {
        const std::string text = lineFrom(state);
        const char* line = text.c_str();
        Areas ours, theirs;
        double x = 0, y = 0, rotation = 0;
        long subnet = 0;

        expectSame(text, scanFirstWord(line, ours.words[0]), std::sscanf(line, "%15s", theirs.words[0]), ours, theirs);
        expectSame(text, scanNetRecord(line, ours.words[0], ours.words[1]),
                   std::sscanf(line, "%*s %2047s %2047s", theirs.words[0], theirs.words[1]), ours, theirs);
        expectSame(text, scanNameRecord(line, ours.words[0]), std::sscanf(line, "%*s %2047s", theirs.words[0]),
                   ours, theirs);
        expectSame(text, scanSntRecord(line, ours.words[2], &ours.letter, ours.words[1], &ours.numbers[0]),
                   std::sscanf(line, "%*s %15s %c %2047s %ld", theirs.words[2], &theirs.letter, theirs.words[1],
                               &theirs.numbers[0]),
                   ours, theirs);
        expectSame(text, scanCmpRecord(line, &ours.numbers[0], &ours.letter, ours.words[0], ours.words[1]),
                   std::sscanf(line, "%*s %ld %lf %lf %lf %c %2047s %2047s", &theirs.numbers[0], &x, &y, &rotation,
                               &theirs.letter, theirs.words[0], theirs.words[1]),
                   ours, theirs);
        expectSame(text, scanPrpRecord(line, ours.words[0], ours.words[1]),
                   std::sscanf(line, "%*s %2047s %2047s ", theirs.words[0], theirs.words[1]), ours, theirs);
        expectSame(text, scanTopRecord(line, &ours.numbers[0], &ours.letter, &ours.numbers[1], ours.words[0]),
                   std::sscanf(line, "%*s %ld %lf %lf %lf %c %ld %ld %2047s", &theirs.numbers[0], &x, &y, &rotation,
                               &theirs.letter, &theirs.numbers[1], &subnet, theirs.words[0]),
                   ours, theirs);
        if (HasFatalFailure()) return;
    }
}

}  // namespace
