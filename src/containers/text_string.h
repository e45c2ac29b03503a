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
// short texts of a board (keys, pin texts, names) cost no heap block:
// bench_stages at 100k components takes 2.01 billion instructions, 2.93 with
// every buffer on the heap. Capacity follows the same rules wherever the
// buffer lives. A larger
// buffer's address takes the place of the inner one, so that a TextString
// takes 16 bytes: a board holds millions. A TextString is therefore never
// moved bytewise.
#pragma once

#include <cstdint>
#include <cstring>

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
    // The text's bytes, capacity of them; null only after release().
    char* buffer() { return capacity > kLocalSize ? heap() : capacity > 0 ? local_ : nullptr; }
    const char* buffer() const { return capacity > kLocalSize ? heap() : capacity > 0 ? local_ : nullptr; }
    const char* text() const { return buffer(); }  // no terminator write
    bool isEmpty() const { return buffer()[0] == '\0'; }
    // A byte of the buffer; an index that is negative or not below
    // capacity - 1 gives the shared dummyByte instead.
    char& at(std::int32_t index);

    // Changes.
    TextString& clear();
    TextString& toLower();
    TextString& store(const char* text, bool append);
    TextString& assign(const char* text) { return store(text, false); }
    TextString& assign(const TextString& other) { return store(other.buffer(), false); }
    TextString& assign(std::int32_t number);
    TextString& assign(char character);
    TextString& append(const char* text) { return store(text, true); }
    TextString& append(const TextString& other) { return store(other.buffer(), true); }
    TextString& append(std::int32_t number);
    TextString& resizeBuffer(std::int32_t size, bool keep);
    TextString& setLength(std::int32_t size);

    // Comparison: an empty or null right side equals an empty left side.
    std::int32_t compare(const char* text, bool caseSensitive) const;
    bool equals(const char* text) const { return compare(text, true) == 0; }
    bool equals(const TextString& other) const { return compare(other.buffer(), true) == 0; }
    bool equalsIgnoreCase(const char* text) const { return compare(text, false) == 0; }

    static constexpr std::int32_t kLocalSize = 12;

    std::int32_t capacity = 0;

    static char dummyByte;

private:
    // The heap buffer's address stands in the inner area's last 8 bytes,
    // unaligned: copied in and out, never dereferenced in place.
    static constexpr int kHeapAt = kLocalSize - static_cast<int>(sizeof(char*));
    char* heap() const {
        char* address;
        std::memcpy(&address, local_ + kHeapAt, sizeof address);
        return address;
    }
    void setHeap(char* address) { std::memcpy(local_ + kHeapAt, &address, sizeof address); }
    // The heap array, or null while the buffer is the inner area or none.
    char* heapOrNull() const { return capacity > kLocalSize ? heap() : nullptr; }
    // A buffer of size bytes for the text: the inner area when it fits,
    // else a new heap array. Filling the inner area overwrites the address
    // of a heap buffer, so that address is taken (heapOrNull) before.
    char* allocate(std::int32_t size) { return size <= kLocalSize ? local_ : new char[static_cast<std::size_t>(size)]; }
    // Makes storage, of size bytes and already filled, the buffer, and
    // deletes the old heap array, oldHeap, if it was one.
    void adopt(char* storage, std::int32_t size, char* oldHeap);

    char local_[kLocalSize];
};

static_assert(sizeof(TextString) == 16, "a TextString takes 16 bytes");

// The fixed character areas that texts are scanned and built in (a line of a
// job file, a word of it, the current directory, a banner line): 2047
// characters and a terminator.
constexpr int kTextArea = 2048;

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
