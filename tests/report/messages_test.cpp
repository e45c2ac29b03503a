#include "report/messages.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>

namespace {

std::string printed(const std::function<void()>& print) {
    testing::internal::CaptureStdout();
    print();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

// The frames' blanks differ from level to level; a '%' in the formatted text
// is printed as it stands, never formatted twice.
TEST(MessagesTest, EachLevelHasItsFrame) {
    const std::pair<std::int32_t, const char*> cases[] = {
        {0, "50% %d\n"}, {1, "Status,  -50% %d\n"}, {2, "Error,   - Line:1  -50% %d\n"}, {4, ""},
        {3, "Warning,   - Line:1  -50% %d\n"}, {5, "Unknown,  -50% %d\n"}, {INT32_MIN, "Unknown,  -50% %d\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(printed([&] { writeMessage(c.first, "%s", "50% %d"); }), c.second) << c.first;
    EXPECT_EQ(printed([] { writeText("a%db%s", 5, "%n%%"); }), "a5b%n%%");
    // An over-long text is a caller's fault; it must still stay in its area.
    const std::string output = printed([] { writeMessage(1, "%s", std::string(6000, 'x').c_str()); });
    EXPECT_LT(output.size(), 4096u);
    EXPECT_EQ(output.rfind("Status,  -xxxx", 0), 0u);
}

}  // namespace
