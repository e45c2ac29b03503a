#include "containers/text_string.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

struct Built {
    const char* label;
    std::function<TextString()> make;
    std::int32_t capacity;
    const char* text;
};

// Every constructor starts from no buffer, so its capacity comes from exact
// growth alone: a size is a minimum (|size| + 1), a text of length L that
// does not fit gets L + 4.
TEST(TextStringTest, ConstructorsSetExactCapacity) {
    const TextString empty;
    const TextString abc("abc");
    const TextString abcdef("abcdef");
    const std::vector<Built> cases = {
        {"default", [] { return TextString(); }, 4, ""},
        {"one character", [] { return TextString('x'); }, 5, "x"},
        {"character zero", [] { return TextString('\0'); }, 4, ""},
        {"number -12", [] { return TextString(-12); }, 7, "-12"},
        {"lowest number", [] { return TextString(INT32_MIN); }, 15, "-2147483648"},
        {"copy of empty", [&] { return TextString(empty); }, 1, ""},
        {"copy of abc", [&] { return TextString(abc); }, 7, "abc"},
        {"copy with room", [&] { return TextString(abc, 10); }, 11, "abc"},
        {"copy with small room", [&] { return TextString(abcdef, 2); }, 10, "abcdef"},
        {"copy with negative room", [&] { return TextString(abc, -20); }, 21, "abc"},
        {"from text", [] { return TextString("abc"); }, 7, "abc"},
        {"from null", [] { return TextString(static_cast<const char*>(nullptr)); }, 1, ""},
        {"from text with room", [] { return TextString("abc", -5); }, 6, "abc"},
        {"long text", [] { return TextString("abcdefghijklmnopqrst"); }, 24, "abcdefghijklmnopqrst"},
        {"long room", [] { return TextString("ab", 40); }, 41, "ab"},
    };
    for (const Built& c : cases) {
        const TextString s = c.make();
        EXPECT_EQ(s.capacity, c.capacity) << c.label;
        EXPECT_STREQ(s.text(), c.text) << c.label;
        EXPECT_EQ(s.length(), static_cast<std::int32_t>(std::strlen(c.text))) << c.label;
    }
}

// One text through a row of changes: growth is to the needed length + 4,
// exactly, and the capacity never goes down. The row crosses from short
// buffers to long ones and back, where a lost byte would show.
TEST(TextStringTest, StoreGrowsExactlyAndNeverShrinks) {
    struct Step {
        std::function<void(TextString&)> change;
        std::int32_t capacity;
        const char* text;
    };
    const std::vector<Step> steps = {
        {[](TextString& s) { s.assign("abc"); }, 4, "abc"},
        {[](TextString& s) { s.assign("abcd"); }, 8, "abcd"},
        {[](TextString& s) { s.assign("a"); }, 8, "a"},
        {[](TextString& s) { s.append("bcdefg"); }, 8, "abcdefg"},
        {[](TextString& s) { s.append("h"); }, 12, "abcdefgh"},
        {[](TextString& s) { s.append(-123); }, 16, "abcdefgh-123"},
        {[](TextString& s) { s.append(TextString("XY")); }, 16, "abcdefgh-123XY"},
        {[](TextString& s) { s.append("Z!"); }, 20, "abcdefgh-123XYZ!"},
        {[](TextString& s) { s.assign(7); }, 20, "7"},
        {[](TextString& s) { s.assign('q'); }, 20, "q"},
        {[](TextString& s) { s.append(static_cast<const char*>(nullptr)); }, 20, "q"},
        {[](TextString& s) { s.assign(static_cast<const char*>(nullptr)); }, 20, ""},
        {[](TextString& s) { s.append("01234567890123456789"); }, 24, "01234567890123456789"},
        {[](TextString& s) { s.clear(); }, 24, ""},
        {[](TextString& s) { s.assign(TextString()); }, 24, ""},
    };
    TextString s;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        steps[i].change(s);
        EXPECT_EQ(s.capacity, steps[i].capacity) << "step " << i;
        EXPECT_STREQ(s.text(), steps[i].text) << "step " << i;
    }
}

TEST(TextStringTest, StoreOfItsOwnBuffer) {
    TextString s("abc");
    s.assign(s.buffer);
    EXPECT_STREQ(s.text(), "abc");
    EXPECT_EQ(s.capacity, 7);

    // Appending oneself with growth: the old bytes must be read before the
    // old buffer goes, in short buffers, long ones and across the two.
    TextString twice("ab");
    const struct {
        std::int32_t capacity;
        const char* text;
    } rounds[] = {{6, "abab"}, {12, "abababab"}, {20, "abababababababab"},
                  {36, "abababababababababababababababab"}};
    for (const auto& round : rounds) {
        twice.append(twice);
        EXPECT_EQ(twice.capacity, round.capacity);
        EXPECT_STREQ(twice.text(), round.text);
    }
}

TEST(TextStringTest, AtGivesDummyByteOutsideTheBuffer) {
    for (const char* text : {"", "ab", "abcdefghijklmnop"}) {
        for (std::int32_t room : {0, 3, 30}) {
            TextString s(text, room);
            const std::int32_t capacity = s.capacity;
            EXPECT_EQ(&s.at(-1), &TextString::dummyByte) << text << " " << room;
            EXPECT_EQ(&s.at(INT32_MIN), &TextString::dummyByte) << text << " " << room;
            EXPECT_EQ(&s.at(capacity - 1), &TextString::dummyByte) << text << " " << room;
            EXPECT_EQ(&s.at(INT32_MAX), &TextString::dummyByte) << text << " " << room;
            if (capacity >= 2) {
                EXPECT_EQ(&s.at(capacity - 2), s.buffer + capacity - 2) << text << " " << room;
            }
            EXPECT_EQ(&s.at(0), capacity >= 2 ? s.buffer : &TextString::dummyByte) << text << " " << room;
        }
    }

    // A write through the dummy byte is seen by every text, and only there.
    TextString a("abc");
    TextString b("xyz");
    a.at(-1) = 'Q';
    EXPECT_EQ(b.at(100), 'Q');
    EXPECT_STREQ(a.text(), "abc");
    TextString::dummyByte = '\0';
}

TEST(TextStringTest, CStrTerminatesTheLastByte) {
    TextString s("abc");
    ASSERT_EQ(s.capacity, 7);
    std::memset(s.buffer, 'x', 7);
    EXPECT_STREQ(s.c_str(), "xxxxxx");
    EXPECT_EQ(s.buffer[6], '\0');
    EXPECT_EQ(s.length(), 6);
    EXPECT_EQ(s.maxLength(), 6);
}

TEST(TextStringTest, SetLengthMakesRoomAndCutsButNeverLengthens) {
    struct Case {
        const char* text;
        std::int32_t room;
        std::int32_t size;
        std::int32_t capacity;
        const char* result;
    };
    const Case cases[] = {
        {"", 3, 2048, 2049, ""},       // default-sized text made big
        {"abc", 0, 1, 7, "a"},         // cut
        {"abc", 19, 10, 20, "abc"},    // fits: nothing changes
        {"abc", 0, -2, 7, "ab"},       // the size counts by its absolute value
        {"abc", 0, 0, 7, ""},
        {"abc", 0, 7, 8, "abc"},       // size == capacity grows by one
        {"abcdef", 0, 10, 11, "abcdef"},
        {"abcdefghijklmnop", 0, 40, 41, "abcdefghijklmnop"},  // long buffer kept
    };
    for (const Case& c : cases) {
        TextString s(c.text, c.room);
        s.setLength(c.size);
        EXPECT_EQ(s.capacity, c.capacity) << c.text << " " << c.size;
        EXPECT_STREQ(s.text(), c.result) << c.text << " " << c.size;
    }
}

TEST(TextStringTest, CompareTreatsNullAndEmptyAlike) {
    struct Case {
        const char* left;
        const char* right;
        bool caseSensitive;
        int sign;
    };
    const Case cases[] = {
        {"", nullptr, true, 0},    {"", "", true, 0},        {"a", nullptr, true, 1},
        {"a", "", false, 1},       {"", "a", true, -1},      {"", "a", false, -1},
        {"abc", "abd", true, -1},  {"abd", "abc", true, 1},  {"ab", "abc", true, -1},
        {"NONE", "none", true, -1}, {"NONE", "none", false, 0}, {"none", "NONE", false, 0},
        {"a", "B", true, 1},       {"a", "B", false, -1},
    };
    auto sign = [](std::int32_t v) { return v < 0 ? -1 : v > 0 ? 1 : 0; };
    for (const Case& c : cases) {
        const TextString left(c.left);
        EXPECT_EQ(sign(left.compare(c.right, c.caseSensitive)), c.sign)
            << '"' << c.left << "\" vs " << (c.right ? c.right : "null") << " " << c.caseSensitive;
    }

    const TextString none("NONE");
    EXPECT_TRUE(none.equalsIgnoreCase("none"));
    EXPECT_FALSE(none.equals("none"));
    EXPECT_FALSE(none.equals(TextString("NONE ")));
    EXPECT_TRUE(TextString().equals(static_cast<const char*>(nullptr)));
}

// _stricmp folds to lower case and compares bytes as unsigned: "_" and "["
// lie between the upper- and the lower-case letters, where folding to upper
// case would give the opposite sign.
TEST(TextStringTest, CompareIgnoringCaseFoldsToLowerCase) {
    struct Case {
        const char* a;
        const char* b;
        int sign;
    };
    const Case cases[] = {
        {"comp_+_top", "COMP_+_TOP", 0}, {"", "", 0},     {"_", "a", -1},  {"_", "A", -1},
        {"[", "a", -1},                  {"Z", "[", 1},  {"@", "a", -1},  {"abc", "ABCD", -1},
        {"\x80", "a", 1},                {"\xC4", "\xE4", -1},
    };
    auto sign = [](int v) { return v < 0 ? -1 : v > 0 ? 1 : 0; };
    for (const Case& c : cases) {
        EXPECT_EQ(sign(compareIgnoringCase(c.a, c.b)), c.sign) << c.a << " vs " << c.b;
        EXPECT_EQ(sign(compareIgnoringCase(c.b, c.a)), -c.sign) << c.b << " vs " << c.a;
    }
}

TEST(TextStringTest, ToLowerChangesOnlyAsciiCapitals) {
    TextString s("AZaz09_@[`{\x80\xC4\xFF-+");
    s.toLower();
    EXPECT_STREQ(s.text(), "azaz09_@[`{\x80\xC4\xFF-+");
}

TEST(TextStringTest, ConcatenationLeavesOperandsAlone) {
    const TextString left("abc", 30);
    const TextString right("de", 20);
    struct Case {
        const char* label;
        TextString result;
        std::int32_t capacity;
        const char* text;
    };
    const Case cases[] = {
        {"text + text", left + right, 9, "abcde"},
        {"text + empty text", left + TextString(), 7, "abc"},
        {"empty + empty", TextString() + TextString(), 1, ""},
        {"text + string", left + "/x.vrn", 13, "abc/x.vrn"},
        {"text + null", left + static_cast<const char*>(nullptr), 7, "abc"},
        {"text + character", left + 'Z', 8, "abcZ"},
        {"text + zero character", left + '\0', 7, "abc"},
        {"empty + character", TextString() + '/', 5, "/"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.result.capacity, c.capacity) << c.label;
        EXPECT_STREQ(c.result.text(), c.text) << c.label;
    }
    EXPECT_EQ(left.capacity, 31);
    EXPECT_STREQ(left.text(), "abc");
    EXPECT_EQ(right.capacity, 21);
    EXPECT_STREQ(right.text(), "de");
}

TEST(TextStringTest, IsWhiteSpaceIsTheCLocaleSet) {
    for (int byte = 0; byte < 256; ++byte) {
        const bool expected = byte == ' ' || (byte >= '\t' && byte <= '\r');
        EXPECT_EQ(isWhiteSpace(static_cast<char>(byte)), expected) << byte;
    }
}

TEST(TextStringTest, ReleasedTextTakesANewText) {
    TextString s("abc");
    s.release();
    EXPECT_EQ(s.buffer, nullptr);
    EXPECT_EQ(s.capacity, 0);
    EXPECT_EQ(s.length(), 0);
    s.assign("xy");
    EXPECT_EQ(s.capacity, 6);
    EXPECT_STREQ(s.text(), "xy");
}

}  // namespace
