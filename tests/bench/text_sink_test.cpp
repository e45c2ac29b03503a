// TextSink writes every number of a generated job; a wrong sign or digit in
// a coordinate would make the converter's scan of a record fail, so the
// formats are checked exactly, across the buffer's flushes too.
#include "text_sink.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "support/test_support.h"

namespace {

TEST(TextSink, NumbersAndMillimetres) {
    const struct {
        std::int64_t value;
        const char* number;
        const char* millimetres;
    } cases[] = {
        {0, "0", "0.0000"},
        {5, "5", "0.0005"},
        {-5, "-5", "-0.0005"},
        {-10000, "-10000", "-1.0000"},
        {12345678, "12345678", "1234.5678"},
        {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808", nullptr},
    };
    testsupport::ScratchDir scratch;
    std::string expected;
    {
        TextSink sink(scratch / "numbers", "\r\n");
        ASSERT_TRUE(sink.ok());
        for (const auto& c : cases) {
            sink.number(c.value).blank();
            expected += std::string(c.number) + " ";
            if (c.millimetres != nullptr) {
                sink.millimetres(c.value);
                expected += c.millimetres;
            }
            sink.line();
            expected += "\r\n";
        }
        EXPECT_EQ(sink.bytesWritten(), expected.size());
        EXPECT_TRUE(sink.close());
    }
    EXPECT_EQ(testsupport::readFile(scratch / "numbers"), expected);
}

TEST(TextSink, KeepsEveryByteAcrossFlushes) {
    testsupport::ScratchDir scratch;
    std::string expected;
    {
        TextSink sink(scratch / "long", "\n");
        for (std::int64_t i = 0; i < 400000; ++i) {
            sink.put("TOP ").number(i * 7919 - 1000000).line();
            expected += "TOP " + std::to_string(i * 7919 - 1000000) + "\n";
        }
        EXPECT_TRUE(sink.close());
    }
    EXPECT_EQ(testsupport::readFile(scratch / "long"), expected);
}

TEST(TextSink, ReportsAFileThatCannotBeOpened) {
    testsupport::ScratchDir scratch;
    TextSink sink(scratch / "missing/file", "\n");
    sink.put("text").line();
    EXPECT_FALSE(sink.ok());
    EXPECT_FALSE(sink.close());
}

}  // namespace
