#include "odb/record_scan.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include "containers/text_string.h"

namespace {

constexpr int kUnsure = -2;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

const char* skipSpace(const char* p) {
    while (isWhiteSpace(*p)) ++p;
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
    if (*p != '\0' && !isWhiteSpace(*p)) return nullptr;
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

// A plain token of at most 18 digits can't overflow: what strtol gives.
long decimalInteger(const char* p) {
    const bool negative = *p == '-';
    if (*p == '+' || *p == '-') ++p;
    long value = 0;
    for (; isDigit(*p); ++p) value = value * 10 + (*p - '0');
    return negative ? -value : value;
}

int scanDirectly(const char* text, const char* format, va_list arguments) {
    const char* p = text;
    int assigned = 0;
    // Input ran out: -1 before the first assignment, as sscanf says.
    const auto ended = [&assigned]() { return assigned == 0 ? -1 : assigned; };
    for (const char* f = format; *f != '\0'; ++f) {
        if (isWhiteSpace(*f)) {
            p = skipSpace(p);
            continue;
        }
        if (*f != '%') return kUnsure;
        ++f;
        const bool suppress = *f == '*';
        if (suppress) ++f;
        int width = 0;
        while (isDigit(*f)) width = width * 10 + (*f++ - '0');
        const bool isLong = *f == 'l';
        if (isLong) ++f;
        const char conversion = *f;
        if (conversion == 'c') {
            if (isLong || width > 1) return kUnsure;
            if (*p == '\0') return ended();
            if (!suppress) *va_arg(arguments, char*) = *p, ++assigned;
            ++p;
            continue;
        }
        p = skipSpace(p);
        if (*p == '\0') return ended();
        if (conversion == 's' && !isLong) {
            const char* start = p;
            while (*p != '\0' && !isWhiteSpace(*p) && (width == 0 || p - start < width)) ++p;
            if (!suppress) {
                char* out = va_arg(arguments, char*);
                for (const char* q = start; q < p; ++q) *out++ = *q;
                *out = '\0';
                ++assigned;
            }
        } else if (conversion == 'd' || (conversion == 'f' && isLong)) {
            const bool real = conversion == 'f';
            const char* end = plainNumberEnd(p, real);
            if (end == nullptr || width != 0) return kUnsure;
            if (!suppress) {
                if (real) *va_arg(arguments, double*) = decimalValue(p);
                else if (isLong) *va_arg(arguments, long*) = decimalInteger(p);
                else *va_arg(arguments, int*) = static_cast<int>(decimalInteger(p));
                ++assigned;
            }
            p = end;
        } else {
            return kUnsure;
        }
    }
    return assigned;
}

}  // namespace

int scanRecord(const char* text, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int result = scanDirectly(text, format, arguments);
    va_end(arguments);
    if (result == kUnsure) {
        va_start(arguments, format);
        result = std::vsscanf(text, format, arguments);
        va_end(arguments);
    }
    return result;
}
