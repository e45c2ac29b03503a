// The readers scan millions of lines, so each record's fields are read
// directly, as its format's directives read them, with no format to
// interpret. On a generated 100k-component board that reads eda/data and
// both components files in 0.22 s, where sscanf on every record takes
// 0.57 s (bench_stages, median of 5); the whole of bench_stages takes 2.01
// billion instructions, 7.19 with sscanf.
// A number that only sscanf reads right (hex, inf, an exponent without
// digits, an integer of more than 18 digits, one that runs into a letter)
// hands the whole line to sscanf with the record's format, which writes the
// same areas again and goes on where the direct read stopped.
#include "odb/record_scans.h"

#include <climits>
#include <cstdint>
#include <cstdio>

#include "containers/text_string.h"

namespace {

// Byte classes, so that the loops over a line's bytes test one table entry:
// white space as isWhiteSpace says, the end of a %s word (white space or the
// terminator), and decimal digits.
struct ByteClasses {
    static constexpr unsigned char kSpace = 1;
    static constexpr unsigned char kWordEnd = 2;
    static constexpr unsigned char kDigit = 4;
    unsigned char of[256] = {};
    constexpr ByteClasses() {
        for (int c = 0; c < 256; ++c) {
            if (isWhiteSpace(static_cast<char>(c))) of[c] |= kSpace | kWordEnd;
            if (c >= '0' && c <= '9') of[c] |= kDigit;
        }
        of[0] |= kWordEnd;
    }
    bool has(char c, unsigned char kind) const { return (of[static_cast<unsigned char>(c)] & kind) != 0; }
};
constexpr ByteClasses kBytes;

bool isDigit(char c) { return kBytes.has(c, ByteClasses::kDigit); }
bool endsWord(char c) { return kBytes.has(c, ByteClasses::kWordEnd); }

const char* skipSpace(const char* p) {
    while (kBytes.has(*p, ByteClasses::kSpace)) ++p;
    return p;
}

// A plain integer token at p ([+-]digits, at most 18 of them, which can't
// overflow: what strtol gives) into value; its end, or null when the token
// is anything else.
const char* plainInteger(const char* p, long* value) {
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-') ++p;
    const char* digits = p;
    unsigned long long magnitude = 0;
    for (; isDigit(*p); ++p) magnitude = magnitude * 10 + static_cast<unsigned>(*p - '0');
    // A value beyond long (32 bits on some systems) is left to sscanf.
    if (p == digits || p - digits > 18 || !endsWord(*p) || magnitude > LONG_MAX) return nullptr;
    *value = negative ? -static_cast<long>(magnitude) : static_cast<long>(magnitude);
    return p;
}

// The end of a plain real token at p ([+-]digits, with a fraction and an
// exponent or without), or null when the token is anything else. Nobody
// wants its value, so it may have any number of digits.
const char* plainRealEnd(const char* p) {
    if (*p == '+' || *p == '-') ++p;
    const char* digits = p;
    while (isDigit(*p)) ++p;
    bool someDigit = p != digits;
    if (*p == '.') {
        const char* fraction = ++p;
        while (isDigit(*p)) ++p;
        someDigit = someDigit || p != fraction;
    }
    if (!someDigit) return nullptr;
    if (*p == 'e' || *p == 'E') {
        ++p;
        if (*p == '+' || *p == '-') ++p;
        if (!isDigit(*p)) return nullptr;
        while (isDigit(*p)) ++p;
    }
    // A number that runs into a letter or a dot is left to sscanf.
    if (!endsWord(*p)) return nullptr;
    return p;
}

// The fields of scanFields, in format order. Pass and Blank assign nothing;
// every other field counts as assigned once read, whether or not its value
// is kept.
namespace field {
struct Pass {};  // "%*s"
struct Blank {};  // " " before a "%c"
struct Word {  // "%<width>s"
    char* area;
    std::int32_t width;
};
struct Character {  // "%c"
    char* out;
};
struct Integer {  // "%ld"; a null out only checks the number's form
    long* out;
};
struct Real {};  // "%lf"; no reader wants a real's value: only its form is checked
}  // namespace field

// The state of one scanFields: where it stands, and how many fields it
// assigned.
class FieldScan {
public:
    explicit FieldScan(const char* text) : p_(text) {}

    // Each step: true to go on with the next field.
    bool step(field::Pass) {
        if (!reachField()) return false;
        while (!endsWord(*p_)) ++p_;
        return true;
    }
    bool step(field::Blank) {
        p_ = skipSpace(p_);
        return true;
    }
    bool step(field::Word f) {
        if (!reachField()) return false;
        for (std::int32_t left = f.width; left > 0 && !endsWord(*p_); --left) *f.area++ = *p_++;
        *f.area = '\0';
        return assigned();
    }
    // The next byte, a blank too.
    bool step(field::Character f) {
        if (*p_ == '\0') return end();
        *f.out = *p_++;
        return assigned();
    }
    bool step(field::Integer f) {
        if (!reachField()) return false;
        long value = 0;
        const char* end = plainInteger(p_, &value);
        if (end == nullptr) return unsure();
        if (f.out != nullptr) *f.out = value;
        p_ = end;
        return assigned();
    }
    bool step(field::Real) {
        if (!reachField()) return false;
        const char* end = plainRealEnd(p_);
        if (end == nullptr) return unsure();
        p_ = end;
        return assigned();
    }

    static constexpr int kUnsure = -2;
    // The number of fields assigned, -1 when the input ended before the
    // first, or kUnsure.
    int result() const { return unsure_ ? kUnsure : ended_ && assigned_ == 0 ? -1 : assigned_; }

private:
    // Passes the blanks before a field; false when the input ends there.
    bool reachField() {
        p_ = skipSpace(p_);
        return *p_ != '\0' || end();
    }
    bool assigned() {
        ++assigned_;
        return true;
    }
    bool end() {
        ended_ = true;
        return false;
    }
    bool unsure() {
        unsure_ = true;
        return false;
    }

    const char* p_;
    int assigned_ = 0;
    bool ended_ = false;
    bool unsure_ = false;
};

// The scan of text by the given fields, as sscanf with the format they
// spell gives it; FieldScan::kUnsure when a number needs sscanf itself.
template <typename... Fields>
int scanFields(const char* text, Fields... fields) {
    FieldScan scan(text);
    static_cast<void>((scan.step(fields) && ...));
    return scan.result();
}

constexpr int kUnsure = FieldScan::kUnsure;
constexpr std::int32_t kWord = kTextArea - 1;

}  // namespace

int scanNetRecord(const char* line, char* netName, char* secondWord) {
    return scanFields(line, field::Pass{}, field::Word{netName, kWord}, field::Word{secondWord, kWord});
}

int scanSntRecord(const char* line, char* kind, char* side, char* numberWord, long* pinIndex) {
    const int result = scanFields(line, field::Pass{}, field::Word{kind, 15}, field::Blank{},
                                  field::Character{side}, field::Word{numberWord, kWord}, field::Integer{pinIndex});
    if (result != kUnsure) return result;
    return std::sscanf(line, "%*s %15s %c %2047s %ld", kind, side, numberWord, pinIndex);
}

int scanNameRecord(const char* line, char* name) {
    return scanFields(line, field::Pass{}, field::Word{name, kWord});
}

int scanCmpRecord(const char* line, long* packageNumber, char* mirror, char* name, char* partName) {
    const int result = scanFields(line, field::Pass{}, field::Integer{packageNumber}, field::Real{}, field::Real{},
                                  field::Real{}, field::Blank{}, field::Character{mirror}, field::Word{name, kWord},
                                  field::Word{partName, kWord});
    if (result != kUnsure) return result;
    double x = 0, y = 0, rotation = 0;
    return std::sscanf(line, "%*s %ld %lf %lf %lf %c %2047s %2047s", packageNumber, &x, &y, &rotation, mirror, name,
                       partName);
}

int scanPrpRecord(const char* line, char* name, char* value) {
    // The format's last blank only passes white space: nothing to assign.
    return scanFields(line, field::Pass{}, field::Word{name, kWord}, field::Word{value, kWord});
}

int scanTopRecord(const char* line, long* pinNumber, char* mirror, long* netNumber, char* pinText) {
    const int result = scanFields(line, field::Pass{}, field::Integer{pinNumber}, field::Real{}, field::Real{},
                                  field::Real{}, field::Blank{}, field::Character{mirror}, field::Integer{netNumber},
                                  field::Integer{nullptr}, field::Word{pinText, kWord});
    if (result != kUnsure) return result;
    double x = 0, y = 0, rotation = 0;
    long subnetNumber = 0;
    return std::sscanf(line, "%*s %ld %lf %lf %lf %c %ld %ld %2047s", pinNumber, &x, &y, &rotation, mirror,
                       netNumber, &subnetNumber, pinText);
}
