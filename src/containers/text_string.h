// TextString: the converter's one string type. It owns a zero-terminated byte
// buffer of `capacity` bytes and keeps no length: the text ends at the first
// zero byte and its length is counted each time. Growth is exact: a text of
// length L fits while L < capacity, else capacity becomes L + 4. Capacity
// never goes down. Bytes are not interpreted; only toLower and the
// case-blind comparison look at ASCII letters.
//
// After release() the buffer is null and only an assignment of a non-null
// text is allowed; every other operation expects a buffer.
//
// A buffer of up to kLocalSize bytes lives inside the object, so the many
// short texts of a board (keys, pin texts, names) cost no heap
// block; capacity follows the same rules wherever the buffer lives. A
// TextString is therefore never moved bytewise.
#pragma once

#include <cstdint>

class TextString {
public:
    TextString();
    explicit TextString(std::int32_t number);
    explicit TextString(char character);
    TextString(const TextString& other, std::int32_t size = 0);
    TextString(const char* text, std::int32_t size = 0);  // null gives ""
    TextString& operator=(const TextString& other) { return assign(other); }
    ~TextString();

    void release();

    // Queries.
    std::int32_t length() const;
    std::int32_t maxLength() const { return capacity - 1; }
    // Writes a terminator into the last byte of the buffer, so a reader by
    // c_str always gets a terminated text.
    char* c_str();
    const char* text() const { return buffer; }  // no terminator write
    bool isEmpty() const { return buffer[0] == '\0'; }
    // A byte of the buffer; an index that is negative or not below
    // capacity - 1 gives the shared dummyByte instead.
    char& at(std::int32_t index);

    // Changes.
    TextString& clear();
    TextString& toLower();
    TextString& store(const char* text, bool append);
    TextString& assign(const char* text) { return store(text, false); }
    TextString& assign(const TextString& other) { return store(other.buffer, false); }
    TextString& assign(std::int32_t number);
    TextString& assign(char character);
    TextString& append(const char* text) { return store(text, true); }
    TextString& append(const TextString& other) { return store(other.buffer, true); }
    TextString& append(std::int32_t number);
    TextString& resizeBuffer(std::int32_t size, bool keep);
    TextString& setLength(std::int32_t size);

    // Comparison: an empty or null right side equals an empty left side.
    std::int32_t compare(const char* text, bool caseSensitive) const;
    bool equals(const char* text) const { return compare(text, true) == 0; }
    bool equals(const TextString& other) const { return compare(other.buffer, true) == 0; }
    bool equalsIgnoreCase(const char* text) const { return compare(text, false) == 0; }

    static constexpr std::int32_t kLocalSize = 12;

    std::int32_t capacity = 0;

private:
    // Between the two public fields so that a TextString takes 24 bytes.
    char local_[kLocalSize];

public:
    char* buffer = nullptr;

    static char dummyByte;

private:
    // Room for size bytes: the local area when it fits, else a new array.
    char* allocate(std::int32_t size);
    void deallocate(char* storage);
};

TextString operator+(const TextString& left, const TextString& right);
TextString operator+(const TextString& left, const char* right);
TextString operator+(const TextString& left, char right);

// _stricmp: compares ignoring ASCII case; negative, zero or positive.
int compareIgnoringCase(const char* a, const char* b);

// isspace of the "C" locale, for a byte taken as a signed value: blank, tab,
// line feed, vertical tab, form feed, carriage return. Bytes above 127 are
// never white space.
constexpr bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
