// What 7-Zip printed on a pass, and whether the pass counts as damaged: one
// file per case in unpacker_reports/, its first line "exit <code>", its
// second "damage <first error text>" (nothing after "damage" for a pass that
// isn't damaged), then the captured output byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/test_support.h"
#include "unpack/unpack_damage.h"

namespace {

std::string headerLine(const std::string& text, std::size_t& position, const std::string& tag) {
    const std::size_t end = text.find('\n', position);
    std::string line = text.substr(position, end - position);
    position = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    EXPECT_EQ(line.compare(0, tag.size(), tag), 0) << "expected a line \"" << tag << " ...\"";
    return line.size() > tag.size() ? line.substr(tag.size() + 1) : std::string();
}

TEST(UnpackDamageTest, JudgesWhatTheUnpackerReported) {
    const std::filesystem::path folder = testsupport::testDataDir() + "/unpack/unpacker_reports";
    int cases = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string text = testsupport::readFile(entry.path().string());
        std::size_t position = 0;
        const std::string exitCode = headerLine(text, position, "exit");
        const std::string damage = headerLine(text, position, "damage");
        EXPECT_EQ(unpackDamage(static_cast<std::uint32_t>(std::atoi(exitCode.c_str())), text.substr(position)), damage)
            << entry.path().filename();
        ++cases;
    }
    EXPECT_GT(cases, 0);
}

}  // namespace
