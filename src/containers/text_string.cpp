#include "containers/text_string.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

char TextString::dummyByte = 0;

namespace {

std::int32_t textLength(const char* text) {
    return text == nullptr ? 0 : static_cast<std::int32_t>(std::strlen(text));
}

// "%d" of number into scratch (16 bytes).
void writeDecimal(std::int32_t number, char* scratch) { *std::to_chars(scratch, scratch + 15, number).ptr = '\0'; }

std::int32_t absolute(std::int32_t value) {
    // -2^31 has no positive twin; its magnitude saturates.
    if (value == INT32_MIN) return INT32_MAX - 1;
    return value < 0 ? -value : value;
}

}  // namespace

TextString::TextString() : capacity(4) { local_[0] = '\0'; }

TextString::TextString(std::int32_t number) { assign(number); }

TextString::TextString(char character) { assign(character); }

// resizeBuffer(size) and store(other) give what the text constructor gives.
TextString::TextString(const TextString& other, std::int32_t size) : TextString(other.buffer(), size) {}

TextString::TextString(const char* text, std::int32_t size) {
    // resizeBuffer(size) and store(text) in one step: the size is a minimum
    // that a longer text overrides with its length + 4.
    const std::int32_t n = textLength(text);
    const std::int32_t room = absolute(size) + 1;
    const std::int32_t bytes = room > n ? room : n + 4;
    char* storage = allocate(bytes);
    if (n > 0) std::memcpy(storage, text, static_cast<std::size_t>(n));
    storage[n] = '\0';
    adopt(storage, bytes, nullptr);
}

TextString::~TextString() { release(); }

void TextString::adopt(char* storage, std::int32_t size, char* oldHeap) {
    if (oldHeap != storage) delete[] oldHeap;
    capacity = size;
    if (storage != local_) setHeap(storage);
}

void TextString::release() {
    if (capacity > kLocalSize) delete[] heap();
    capacity = 0;
}

std::int32_t TextString::length() const { return textLength(buffer()); }

char* TextString::c_str() {
    char* bytes = buffer();
    bytes[capacity - 1] = '\0';
    return bytes;
}

char& TextString::at(std::int32_t index) {
    if (index < 0 || index >= capacity - 1) return dummyByte;
    return buffer()[index];
}

TextString& TextString::clear() {
    buffer()[0] = '\0';
    return *this;
}

TextString& TextString::toLower() {
    for (char* p = buffer(); *p != '\0'; ++p) {
        if (*p >= 'A' && *p <= 'Z') *p = static_cast<char>(*p + 32);
    }
    return *this;
}

TextString& TextString::store(const char* text, bool append) {
    if (text == nullptr) {
        if (!append) buffer()[0] = '\0';
        return *this;
    }
    const std::int32_t current = append ? length() : 0;
    const std::int32_t n = textLength(text);
    const std::int32_t needed = current + n;
    if (capacity > needed) {
        // memmove: assigning an object's own buffer copies each byte onto itself.
        char* bytes = buffer();
        if (n > 0) std::memmove(bytes + current, text, static_cast<std::size_t>(n));
        bytes[needed] = '\0';
        return *this;
    }
    // Into a new buffer, which the old one (and text, if it is the old
    // one's) is read into before it goes: appending oneself is safe.
    char* old = buffer();
    char* oldHeap = heapOrNull();
    char* grown = allocate(needed + 4);
    if (grown != old) {
        if (current > 0) std::memcpy(grown, old, static_cast<std::size_t>(current));
        if (n > 0) std::memcpy(grown + current, text, static_cast<std::size_t>(n));
    } else if (n > 0) {
        std::memmove(grown + current, text, static_cast<std::size_t>(n));
    }
    grown[needed] = '\0';
    adopt(grown, needed + 4, oldHeap);
    return *this;
}

TextString& TextString::assign(std::int32_t number) {
    char scratch[16] = {};
    writeDecimal(number, scratch);
    return store(scratch, false);
}

TextString& TextString::assign(char character) {
    char scratch[16] = {};
    scratch[0] = character;
    return store(scratch, false);
}

TextString& TextString::append(std::int32_t number) {
    char scratch[16] = {};
    writeDecimal(number, scratch);
    return store(scratch, true);
}

TextString& TextString::resizeBuffer(std::int32_t size, bool keep) {
    const char* old = buffer();
    char* oldHeap = heapOrNull();
    const std::int32_t room = absolute(size) + 1;
    char* storage = allocate(room);
    std::int32_t i = 0;
    if (keep && old != nullptr) {
        // In place when old and new are both the local area.
        while (i < room - 1 && old[i] != '\0') {
            storage[i] = old[i];
            ++i;
        }
    }
    storage[i] = '\0';
    adopt(storage, room, oldHeap);
    return *this;
}

TextString& TextString::setLength(std::int32_t size) {
    const std::int32_t a = absolute(size);
    if (a >= capacity) resizeBuffer(a, true);
    buffer()[a] = '\0';
    return *this;
}

std::int32_t TextString::compare(const char* text, bool caseSensitive) const {
    const bool rightEmpty = text == nullptr || text[0] == '\0';
    const char* bytes = buffer();
    const bool leftEmpty = bytes[0] == '\0';
    if (leftEmpty) return rightEmpty ? 0 : -1;
    if (rightEmpty) return 1;
    return caseSensitive ? std::strcmp(bytes, text) : compareIgnoringCase(bytes, text);
}

int compareIgnoringCase(const char* a, const char* b) {
    for (;; ++a, ++b) {
        int x = static_cast<unsigned char>(*a);
        int y = static_cast<unsigned char>(*b);
        if (x >= 'A' && x <= 'Z') x += 32;
        if (y >= 'A' && y <= 'Z') y += 32;
        if (x != y || x == 0) return x - y;
    }
}

TextString operator+(const TextString& left, const TextString& right) {
    return left + right.buffer();
}

TextString operator+(const TextString& left, const char* right) {
    TextString joined(left, left.length() + textLength(right));
    joined.append(right);
    return TextString(joined, 0);
}

TextString operator+(const TextString& left, char right) {
    char scratch[16] = {};
    scratch[0] = right;
    TextString joined(left.buffer(), left.length() + 1);
    joined.append(scratch);
    return TextString(joined, 0);
}
