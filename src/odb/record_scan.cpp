#include "odb/record_scan.h"

#include <cstdio>
#include <cstdlib>

#include "containers/text_string.h"

namespace {

constexpr int kUnsure = FieldScan::kUnsure;

using scanstep::isDigit;

}  // namespace

namespace scanstep {

const char* plainNumberEnd(const char* p, bool real) {
    if (*p == '+' || *p == '-') ++p;
    const char* digits = p;
    while (isDigit(*p)) ++p;
    std::ptrdiff_t count = p - digits;
    if (real && *p == '.') {
        const char* fraction = ++p;
        while (isDigit(*p)) ++p;
        count += p - fraction;
    }
    if (count == 0 || count > 18) return nullptr;
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

// A mantissa below 2^53 and a power of ten up to 10^22 are both exact
// doubles, so one multiplication or division rounds correctly, as strtod
// does. Other tokens go to strtod.
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

}  // namespace scanstep

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
    using scanstep::Outcome;
    const char* p = text;
    int assigned = 0;
    for (int s = 0; s < stepCount_; ++s) {
        const Step& step = steps_[s];
        Outcome outcome = Outcome::kDone;
        switch (step.kind) {
            case Kind::Blank:
                p = scanstep::skipSpace(p);
                continue;
            case Kind::Character:
                outcome = scanstep::character(p, step.store ? va_arg(arguments, char*) : nullptr);
                break;
            case Kind::Word:
                outcome = scanstep::word(p, step.store ? va_arg(arguments, char*) : nullptr, step.width);
                break;
            case Kind::Real: {
                // The area is taken even when its value is not wanted.
                double* out = step.store ? va_arg(arguments, double*) : nullptr;
                outcome = scanstep::real(p, step.convert ? out : nullptr);
                break;
            }
            case Kind::Long: {
                long* out = step.store ? va_arg(arguments, long*) : nullptr;
                outcome = scanstep::integer(p, step.convert ? out : nullptr);
                break;
            }
            case Kind::Int: {
                int* out = step.store ? va_arg(arguments, int*) : nullptr;
                long value = 0;
                outcome = scanstep::integer(p, &value);
                if (outcome == Outcome::kDone && step.convert) *out = static_cast<int>(value);
                break;
            }
        }
        // Input ran out: -1 before the first assignment, as sscanf says.
        if (outcome == Outcome::kEnded) return assigned == 0 ? -1 : assigned;
        if (outcome == Outcome::kUnsure) return kUnsure;
        if (step.store) ++assigned;
    }
    return assigned;
}
