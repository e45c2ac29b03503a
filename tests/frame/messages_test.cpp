#include "frame/messages.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <string>

namespace {

std::string printed(const std::function<void()>& print) {
    testing::internal::CaptureStdout();
    print();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// The frames' blanks differ from level to level; they are part of the text.
TEST(MessagesTest, EachLevelHasItsFrame) {
    struct Case {
        std::int32_t level;
        const char* output;
    };
    const Case cases[] = {
        {0, "x\n"},
        {1, "Status,  -x\n"},
        {2, "Error,   - Line:1  -x\n"},
        {3, "Warning,   - Line:1  -x\n"},
        {4, ""},
        {5, "Unknown,  -x\n"},
        {-1, "Unknown,  -x\n"},
        {INT32_MIN, "Unknown,  -x\n"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(printed([&] { writeMessage(c.level, "%s", "x"); }), c.output) << c.level;
    }
    EXPECT_EQ(messageLine(), 1);
}

TEST(MessagesTest, FormattedTextIsPrintedAsItStands) {
    EXPECT_EQ(printed([] { writeMessage(0, "Number of component(s), %s - layer:%d", "comp_+_top", 12); }),
              "Number of component(s), comp_+_top - layer:12\n");
    EXPECT_EQ(printed([] { writeMessage(0, "%s", "100%d %s %%"); }), "100%d %s %%\n");
    EXPECT_EQ(printed([] { writeMessage(2, "%s", "50% %n"); }), "Error,   - Line:1  -50% %n\n");
    EXPECT_EQ(printed([] { writeText("%s", "%d%%"); }), "%d%%");
    EXPECT_EQ(printed([] { writeText("a%db%s", 5, "%c"); }), "a5b%c");
}

// An over-long text is a caller's fault; it must still stay in its area.
TEST(MessagesTest, OverlongTextStaysBounded) {
    const std::string longText(6000, 'x');
    const std::string output = printed([&] { writeMessage(1, "%s", longText.c_str()); });
    EXPECT_LT(output.size(), 4096u);
    EXPECT_EQ(output.rfind("Status,  -xxxx", 0), 0u);
}

}  // namespace
