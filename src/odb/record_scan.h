// RecordFormat: the formatted scan of one record line, with the result and
// the areas written exactly as sscanf gives them. The readers scan millions
// of lines, so a format is parsed once, and the usual shapes (white space,
// %s with or without a width and '*', %c, %d, %ld, %lf over plain decimal
// numbers) are read directly. A format with any other directive always goes
// to sscanf; an unusual number (hex, inf, an exponent without digits, more
// than 18 digits, one that runs into a letter) hands the whole line to
// sscanf, which then writes the same areas again and goes on where the
// direct read stopped.
#pragma once

#include <cstdarg>
#include <cstdint>

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
