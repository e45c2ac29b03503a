// The formatted scans of record lines, with the result and the areas written
// exactly as sscanf gives them. The readers scan millions of lines, so the
// usual shapes (white space, %s with or without a width and '*', %c, %d,
// %ld, %lf over plain decimal numbers) are read directly. An unusual number
// (hex, inf, an exponent without digits, more than 18 digits, one that runs
// into a letter) hands the whole line to sscanf, which then writes the same
// areas again and goes on where the direct read stopped.
//
// Two ways to say a scan: RecordFormat takes a format text and works out its
// steps once; scanFields takes the steps themselves, so that a reader's
// hottest records are scanned with no format to interpret at all. Both run
// the steps below.
#pragma once

#include <climits>
#include <cstdarg>
#include <cstdint>

#include "containers/text_string.h"

class RecordFormat {
public:
    // format: a scanf format, kept by pointer. unusedValues: bit i set when
    // the caller never reads the value of the i-th assigned field (from 0);
    // a plain number there is then only checked, not converted, and its
    // area may be left unwritten.
    explicit RecordFormat(const char* format, std::uint32_t unusedValues = 0);
    RecordFormat(const RecordFormat&) = delete;
    RecordFormat& operator=(const RecordFormat&) = delete;

    // The number of fields assigned, or -1 when the input ended before the
    // first assignment, as sscanf(text, format, ...) returns.
    int scan(const char* text, ...) const;

    const char* text() const { return format_; }

private:
    enum class Kind : std::uint8_t { Blank, Word, Character, Int, Long, Real };
    struct Step {
        Kind kind;
        bool store;    // not suppressed by '*'
        bool convert;  // stored and its value wanted
        std::int32_t width;  // of a word; 0 for none
    };
    static constexpr int kMaxSteps = 32;

    int scanDirectly(const char* text, std::va_list arguments) const;

    const char* format_;
    bool direct_ = true;
    int stepCount_ = 0;
    Step steps_[kMaxSteps] = {};
};

// The steps of a scan, each as its directive does it.
namespace scanstep {

// What a step met: its field, the end of the input, or a number that only
// sscanf reads right.
enum class Outcome { kDone, kEnded, kUnsure };

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
inline constexpr ByteClasses kBytes;

inline bool isDigit(char c) { return kBytes.has(c, ByteClasses::kDigit); }
inline bool endsWord(char c) { return kBytes.has(c, ByteClasses::kWordEnd); }

inline const char* skipSpace(const char* p) {
    while (kBytes.has(*p, ByteClasses::kSpace)) ++p;
    return p;
}

// The end of a plain decimal token at p ([+-]digits, or with a fraction and
// an exponent when real), or null when the token is anything else.
const char* plainNumberEnd(const char* p, bool real);
// The value of a plain decimal token, exact, as strtod gives it.
double decimalValue(const char* p);

// A plain integer token at p ([+-]digits, at most 18 of them, which can't
// overflow: what strtol gives) into value; its end, or null when the token
// is anything else.
inline const char* plainInteger(const char* p, long* value) {
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

// "%<width>s" (or "%*s" for a null area): blanks, then up to width bytes of
// a word, terminated.
inline Outcome word(const char*& p, char* area, std::int32_t width) {
    p = skipSpace(p);
    if (*p == '\0') return Outcome::kEnded;
    if (area != nullptr) {
        while (width-- > 0 && !endsWord(*p)) *area++ = *p++;
        *area = '\0';
    } else {
        while (width-- > 0 && !endsWord(*p)) ++p;
    }
    return Outcome::kDone;
}

// "%c": the next byte, a blank too.
inline Outcome character(const char*& p, char* out) {
    if (*p == '\0') return Outcome::kEnded;
    if (out != nullptr) *out = *p;
    ++p;
    return Outcome::kDone;
}

// "%ld" (or "%d" through an int): blanks, then a plain integer; its value
// into out when out is given.
inline Outcome integer(const char*& p, long* out) {
    p = skipSpace(p);
    if (*p == '\0') return Outcome::kEnded;
    long value = 0;
    const char* end = plainInteger(p, &value);
    if (end == nullptr) return Outcome::kUnsure;
    if (out != nullptr) *out = value;
    p = end;
    return Outcome::kDone;
}

// "%lf": blanks, then a plain decimal number; its value into out when out is
// given.
inline Outcome real(const char*& p, double* out) {
    p = skipSpace(p);
    if (*p == '\0') return Outcome::kEnded;
    const char* end = plainNumberEnd(p, true);
    if (end == nullptr) return Outcome::kUnsure;
    if (out != nullptr) *out = decimalValue(p);
    p = end;
    return Outcome::kDone;
}

}  // namespace scanstep

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
struct Real {  // "%lf"; a null out only checks the number's form
    double* out;
};
}  // namespace field

// The state of one scanFields: where it stands, and how many fields it
// assigned.
class FieldScan {
public:
    explicit FieldScan(const char* text) : p_(text) {}

    // Each step: true to go on with the next field.
    bool step(field::Pass) { return go(scanstep::word(p_, nullptr, INT32_MAX), false); }
    bool step(field::Blank) {
        p_ = scanstep::skipSpace(p_);
        return true;
    }
    bool step(field::Word f) { return go(scanstep::word(p_, f.area, f.width), true); }
    bool step(field::Character f) { return go(scanstep::character(p_, f.out), true); }
    bool step(field::Integer f) { return go(scanstep::integer(p_, f.out), true); }
    bool step(field::Real f) { return go(scanstep::real(p_, f.out), true); }

    static constexpr int kUnsure = -2;
    // The number of fields assigned, -1 when the input ended before the
    // first, or kUnsure.
    int result() const { return unsure_ ? kUnsure : ended_ && assigned_ == 0 ? -1 : assigned_; }

private:
    bool go(scanstep::Outcome outcome, bool assigns) {
        if (outcome == scanstep::Outcome::kDone) {
            if (assigns) ++assigned_;
            return true;
        }
        (outcome == scanstep::Outcome::kEnded ? ended_ : unsure_) = true;
        return false;
    }

    const char* p_;
    int assigned_ = 0;
    bool ended_ = false;
    bool unsure_ = false;
};

// The scan of text by the given fields, as sscanf with the format they
// spell gives it; FieldScan::kUnsure when a number needs sscanf itself. The
// caller then scans the line with that format's RecordFormat.
template <typename... Fields>
int scanFields(const char* text, Fields... fields) {
    FieldScan scan(text);
    static_cast<void>((scan.step(fields) && ...));
    return scan.result();
}
