#include "odb/record_scan.h"

#include <climits>
#include <cstdio>
#include <cstdlib>

#include "containers/text_string.h"

namespace {

constexpr int kUnsure = -2;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Byte classes, so that the loops over a line's bytes test one table entry:
// white space as isWhiteSpace says, and the end of a %s word (white space
// or the terminator).
constexpr unsigned char kSpace = 1;
constexpr unsigned char kWordEnd = 2;

struct ByteClasses {
    unsigned char of[256] = {};
    constexpr ByteClasses() {
        for (int c = '\t'; c <= '\r'; ++c) of[c] = kSpace | kWordEnd;
        of[static_cast<unsigned char>(' ')] = kSpace | kWordEnd;
        of[0] = kWordEnd;
    }
};
constexpr ByteClasses kClasses;

bool endsWord(char c) { return (kClasses.of[static_cast<unsigned char>(c)] & kWordEnd) != 0; }

const char* skipSpace(const char* p) {
    while ((kClasses.of[static_cast<unsigned char>(*p)] & kSpace) != 0) ++p;
    return p;
}

// The end of a plain decimal token at p ([+-]digits, or with a fraction and
// an exponent when real), or null when the token is anything else.
const char* plainNumberEnd(const char* p, bool real) {
    if (*p == '+' || *p == '-') ++p;
    int digits = 0;
    while (isDigit(*p)) ++p, ++digits;
    if (real && *p == '.') {
        ++p;
        while (isDigit(*p)) ++p, ++digits;
    }
    if (digits == 0 || digits > 18) return nullptr;
    if (real && (*p == 'e' || *p == 'E')) {
        ++p;
        if (*p == '+' || *p == '-') ++p;
        if (!isDigit(*p)) return nullptr;
        while (isDigit(*p)) ++p;
    }
    // A number that runs into a letter or a dot is left to sscanf.
    if (!endsWord(*p)) return nullptr;
    return p;
}

// The value of a plain decimal token, exact: a mantissa below 2^53 and a
// power of ten up to 10^22 are both exact doubles, so one multiplication or
// division rounds correctly, as strtod does. Other tokens go to strtod.
double decimalValue(const char* p) {
    static const double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                     1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const char* start = p;
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-') ++p;
    unsigned long long mantissa = 0;
    int scale = 0;
    for (; isDigit(*p); ++p) mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
    if (*p == '.') {
        for (++p; isDigit(*p); ++p, --scale) mantissa = mantissa * 10 + static_cast<unsigned>(*p - '0');
    }
    if (*p == 'e' || *p == 'E' || mantissa >= (1ULL << 53) || scale < -22) return std::strtod(start, nullptr);
    const double value = static_cast<double>(mantissa) / kPowers[-scale];
    return negative ? -value : value;
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

}  // namespace

RecordFormat::RecordFormat(const char* format, std::uint32_t unusedValues) : format_(format) {
    int assignedField = 0;
    for (const char* f = format; direct_ && *f != '\0'; ++f) {
        if (stepCount_ == kMaxSteps) {
            direct_ = false;
            break;
        }
        Step& step = steps_[stepCount_];
        if (isWhiteSpace(*f)) {
            // A run of white space is one directive, and one that stands
            // before a conversion skipping blanks anyway is left out.
            while (isWhiteSpace(f[1])) ++f;
            const char* next = f[1] == '%' ? f + 2 : nullptr;
            if (next != nullptr && *next == '*') ++next;
            while (next != nullptr && isDigit(*next)) ++next;
            if (next != nullptr && *next == 'l') ++next;
            if (next == nullptr || *next == 'c' || *next == '\0') {
                step = {Kind::Blank, false, false, 0};
                ++stepCount_;
            }
            continue;
        }
        if (*f != '%') {
            direct_ = false;
            break;
        }
        ++f;
        step.store = *f != '*';
        if (!step.store) ++f;
        int width = 0;
        while (isDigit(*f) && width < 100000) width = width * 10 + (*f++ - '0');
        const bool isLong = *f == 'l';
        if (isLong) ++f;
        switch (*f) {
            case 's': step.kind = Kind::Word; direct_ = !isLong && width < 100000; break;
            case 'c': step.kind = Kind::Character; direct_ = !isLong && width <= 1; break;
            case 'd': step.kind = isLong ? Kind::Long : Kind::Int; direct_ = width == 0; break;
            case 'f': step.kind = Kind::Real; direct_ = isLong && width == 0; break;
            default: direct_ = false; break;
        }
        step.width = width == 0 ? INT32_MAX : width;
        step.convert = step.store;
        if (step.store) {
            if (assignedField < 32 && (unusedValues >> assignedField & 1U) != 0) step.convert = false;
            ++assignedField;
        }
        ++stepCount_;
    }
}

int RecordFormat::scan(const char* text, ...) const {
    int result = kUnsure;
    std::va_list arguments;
    if (direct_) {
        va_start(arguments, text);
        result = scanDirectly(text, arguments);
        va_end(arguments);
    }
    if (result == kUnsure) {
        va_start(arguments, text);
        result = std::vsscanf(text, format_, arguments);
        va_end(arguments);
    }
    return result;
}

int RecordFormat::scanDirectly(const char* text, std::va_list arguments) const {
    const char* p = text;
    int assigned = 0;
    // Input ran out: -1 before the first assignment, as sscanf says.
    const int ended = -1;
    for (int s = 0; s < stepCount_; ++s) {
        const Step& step = steps_[s];
        if (step.kind == Kind::Blank) {
            p = skipSpace(p);
            continue;
        }
        if (step.kind == Kind::Character) {
            // No blanks skipped: "%c" takes a blank too.
            if (*p == '\0') return assigned == 0 ? ended : assigned;
            if (step.store) *va_arg(arguments, char*) = *p, ++assigned;
            ++p;
            continue;
        }
        p = skipSpace(p);
        if (*p == '\0') return assigned == 0 ? ended : assigned;
        if (step.kind == Kind::Word) {
            std::int32_t room = step.width;
            if (step.store) {
                char* out = va_arg(arguments, char*);
                while (room-- > 0 && !endsWord(*p)) *out++ = *p++;
                *out = '\0';
                ++assigned;
            } else {
                while (room-- > 0 && !endsWord(*p)) ++p;
            }
            continue;
        }
        if (step.kind == Kind::Real) {
            const char* end = plainNumberEnd(p, true);
            if (end == nullptr) return kUnsure;
            if (step.store) {
                // The area is taken even when its value is not wanted.
                double* out = va_arg(arguments, double*);
                if (step.convert) *out = decimalValue(p);
                ++assigned;
            }
            p = end;
            continue;
        }
        long value = 0;
        const char* end = plainInteger(p, &value);
        if (end == nullptr) return kUnsure;
        if (step.store) {
            if (step.kind == Kind::Long) {
                long* out = va_arg(arguments, long*);
                if (step.convert) *out = value;
            } else {
                int* out = va_arg(arguments, int*);
                if (step.convert) *out = static_cast<int>(value);
            }
            ++assigned;
        }
        p = end;
    }
    return assigned;
}
