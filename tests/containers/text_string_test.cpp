#include "containers/text_string.h"

#include <gtest/gtest.h>

#include <cctype>
#include <climits>
#include <clocale>
#include <cstring>
#include <string>

namespace {

int sign(int value) { return value < 0 ? -1 : value > 0 ? 1 : 0; }

// Capacity and text in one value, so that a failure shows both.
std::string shape(const TextString& s) { return std::to_string(s.capacity) + " " + s.text(); }

// A size is a minimum (|size| + 1); a text of length L that does not fit gets L + 4.
TEST(TextStringTest, ConstructorsSetExactCapacity) {
    const TextString empty, abcdef("abcdef");
    EXPECT_EQ(shape(TextString()), "4 ");
    EXPECT_EQ(shape(TextString('x')), "5 x");
    EXPECT_EQ(shape(TextString(-12)), "7 -12");
    EXPECT_EQ(shape(TextString(INT32_MIN)), "15 -2147483648");
    EXPECT_EQ(shape(TextString(empty)), "1 ");
    EXPECT_EQ(shape(TextString(abcdef, 2)), "10 abcdef");
    EXPECT_EQ(shape(TextString(abcdef, -20)), "21 abcdef");
    EXPECT_EQ(shape(TextString(nullptr)), "1 ");
    EXPECT_EQ(shape(TextString("abc", -5)), "6 abc");
    EXPECT_EQ(shape(TextString("abc", 2)), "7 abc");
    EXPECT_EQ(shape(TextString("abcdefghijklmnopqrst")), "24 abcdefghijklmnopqrst");
}

// Growth is to the needed length + 4, exactly, and the capacity never goes
// down; the row crosses from the inline buffer to the heap, where a lost byte would show.
TEST(TextStringTest, StoreGrowsExactlyAndNeverShrinks) {
    TextString s;
    EXPECT_EQ(shape(s.assign("abc")), "4 abc");
    EXPECT_EQ(shape(s.assign("abcd")), "8 abcd");
    EXPECT_EQ(shape(s.assign("a")), "8 a");
    EXPECT_EQ(shape(s.append("bcdefg")), "8 abcdefg");
    EXPECT_EQ(shape(s.append("h")), "12 abcdefgh");
    EXPECT_EQ(shape(s.append(-123)), "16 abcdefgh-123");
    EXPECT_EQ(shape(s.assign(7)), "16 7");
    EXPECT_EQ(shape(s.append(static_cast<const char*>(nullptr))), "16 7");
    EXPECT_EQ(shape(s.assign(static_cast<const char*>(nullptr))), "16 ");
    EXPECT_EQ(shape(s.append("01234567890123456789")), "24 01234567890123456789");
    EXPECT_EQ(shape(s.clear()), "24 ");
    // Its own text: the old bytes must be read before the old buffer goes.
    TextString t("ab");
    EXPECT_EQ(shape(t.assign(t.buffer())), "6 ab");
    EXPECT_EQ(shape(t.append(t)), "6 abab");
    EXPECT_EQ(shape(t.append(t)), "12 abababab");
    EXPECT_EQ(shape(t.append(t)), "20 abababababababab");
    EXPECT_EQ(shape(t.append(t)), "36 abababababababababababababababab");
}

// at() gives the shared dummy byte outside [0, capacity - 2]; c_str() ends the buffer.
TEST(TextStringTest, AtStaysInsideTheBufferAndCStrTerminatesIt) {
    for (const std::int32_t room : {0, 30}) {
        TextString s("ab", room);
        EXPECT_EQ(&s.at(-1), &TextString::dummyByte) << room;
        EXPECT_EQ(&s.at(s.capacity - 1), &TextString::dummyByte) << room;
        EXPECT_EQ(&s.at(s.capacity - 2), s.buffer() + s.capacity - 2) << room;
    }
    TextString s("abc");
    std::memset(s.buffer(), 'x', 7);
    EXPECT_STREQ(s.c_str(), "xxxxxx");
    s.release();
    EXPECT_TRUE(s.buffer() == nullptr && s.capacity == 0);
    EXPECT_EQ(shape(s.assign("xy")), "6 xy");
}

TEST(TextStringTest, SetLengthMakesRoomAndCutsButNeverLengthens) {
    const struct { const char* text; std::int32_t room, size; const char* shape; } cases[] = {
        {"", 3, 2048, "2049 "}, {"abc", 0, 1, "7 a"},   {"abc", 19, 10, "20 abc"}, {"abc", 0, -2, "7 ab"},
        {"abc", 0, 0, "7 "},    {"abc", 0, 7, "8 abc"}, {"abcdefghijklmnop", 0, 40, "41 abcdefghijklmnop"},
    };
    for (const auto& c : cases) EXPECT_EQ(shape(TextString(c.text, c.room).setLength(c.size)), c.shape) << c.size;
}

// A null text compares as the empty one. Ignoring case, _stricmp folds to
// lower case and compares unsigned bytes: "_" and "[" lie between the
// capitals and the small letters, where folding up would flip the sign.
TEST(TextStringTest, CompareTreatsNullAsEmptyAndFoldsToLowerCase) {
    const struct { const char* left; const char* right; int sign, signIgnoringCase; } cases[] = {
        {"", nullptr, 0, 0}, {"", "", 0, 0},       {"a", nullptr, 1, 1},    {"", "a", -1, -1},  {"abc", "abd", -1, -1},
        {"ab", "abc", -1, -1}, {"NONE", "none", -1, 0}, {"a", "B", 1, -1}, {"_", "a", -1, -1}, {"_", "A", 1, -1},
        {"[", "a", -1, -1},  {"Z", "[", -1, 1},     {"\x80", "a", 1, 1},  {"\xC4", "\xE4", -1, -1},
    };
    for (const auto& c : cases) {
        const TextString left(c.left);
        const std::string label = std::string(c.left) + " vs " + (c.right ? c.right : "null");
        EXPECT_EQ(sign(left.compare(c.right, true)), c.sign) << label;
        EXPECT_EQ(sign(left.compare(c.right, false)), c.signIgnoringCase) << label;
        if (c.right != nullptr) {
            EXPECT_EQ(sign(compareIgnoringCase(c.right, c.left)), -c.signIgnoringCase) << c.right;
        }
    }
    TextString s("AZaz09_@[`{\x80\xC4\xFF");
    EXPECT_STREQ(s.toLower().text(), "azaz09_@[`{\x80\xC4\xFF");
}

TEST(TextStringTest, ConcatenationFitsTheResultAndLeavesOperandsAlone) {
    const TextString left("abc", 30);
    EXPECT_EQ(shape(left + TextString("de", 20)), "9 abcde");
    EXPECT_EQ(shape(TextString() + TextString()), "1 ");
    EXPECT_EQ(shape(left + static_cast<const char*>(nullptr)), "7 abc");
    EXPECT_EQ(shape(left + 'Z'), "8 abcZ");
    EXPECT_EQ(shape(left + '\0'), "7 abc");
    EXPECT_EQ(shape(left), "31 abc");
}

// The program never sets a locale, so isspace answers as in "C"; a byte
// above 127 reaches it as a negative char and is never white space.
TEST(TextStringTest, IsWhiteSpaceIsTheCLocaleSet) {
    const std::string before = std::setlocale(LC_CTYPE, nullptr);
    std::setlocale(LC_CTYPE, "C");
    for (int b = 0; b < 256; ++b) {
        EXPECT_EQ(isWhiteSpace(static_cast<char>(b)), b < 128 && std::isspace(b) != 0) << b;
    }
    std::setlocale(LC_CTYPE, before.c_str());
}

}  // namespace
