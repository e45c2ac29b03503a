// The generator's promises that the benchmark and the generated-board test rely on:
// the same shape gives the same board, every reference in the job points at
// something that exists (a wrong one would make the converter end
// abnormally), GND holds exactly its share, and a board has the proportions
// of the large boards it stands for.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "board.h"

namespace {

Board build(std::int32_t components, std::uint64_t seed, std::int32_t groundPercent = 5) {
    BoardShape shape;
    shape.components = components;
    shape.seed = seed;
    shape.groundPercent = groundPercent;
    return buildBoard(shape);
}

std::vector<std::string> refdesList(const Board& board) {
    std::vector<std::string> names;
    for (const Component& c : board.components) names.push_back(c.refdes);
    return names;
}

const Net* findNet(const Board& board, const std::string& name) {
    for (const Net& net : board.nets) {
        if (net.name == name) return &net;
    }
    return nullptr;
}

TEST(BoardBuilder, SameShapeGivesSameBoardAndSeedsDiffer) {
    const Board a = build(3000, 11), b = build(3000, 11), c = build(3000, 12);
    EXPECT_EQ(refdesList(a), refdesList(b));
    EXPECT_EQ(a.netPins, b.netPins);
    EXPECT_EQ(a.pinNet, b.pinNet);
    EXPECT_NE(a.netPins, c.netPins);
}

TEST(BoardBuilder, EveryReferenceResolves) {
    for (const std::int32_t components : {1, 7, 2000}) {
        for (const std::int32_t ground : {0, 20}) {
            SCOPED_TRACE("components " + std::to_string(components) + ", GND " + std::to_string(ground) + "%");
            const Board board = build(components, 5, ground);
            for (const auto* file : {&board.topFile, &board.bottomFile}) {
                for (std::size_t i = 0; i < file->size(); ++i) {
                    EXPECT_EQ(board.components[static_cast<std::size_t>((*file)[i])].number,
                              static_cast<std::int32_t>(i));
                }
            }
            // Every pin sits in exactly one net, where pinNet and pinSubnet say.
            std::vector<std::int32_t> sorted = board.netPins;
            std::sort(sorted.begin(), sorted.end());
            std::vector<std::int32_t> all(static_cast<std::size_t>(board.pinCount()));
            for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::int32_t>(i);
            EXPECT_EQ(sorted, all);
            for (std::size_t n = 0; n < board.nets.size(); ++n) {
                const Net& net = board.nets[n];
                for (std::int32_t i = 0; i < net.pinCount; ++i) {
                    const auto pin =
                        static_cast<std::size_t>(board.netPins[static_cast<std::size_t>(net.firstPin + i)]);
                    EXPECT_EQ(board.pinNet[pin], static_cast<std::int32_t>(n));
                    EXPECT_EQ(board.pinSubnet[pin], i);
                }
            }
            // $NONE$ first, then unique names in byte order, as exporters write.
            ASSERT_FALSE(board.nets.empty());
            EXPECT_EQ(board.nets[0].name, "$NONE$");
            for (std::size_t n = 2; n < board.nets.size(); ++n) EXPECT_LT(board.nets[n - 1].name, board.nets[n].name);
        }
    }
}

TEST(BoardBuilder, GroundHoldsItsShareOfAllPins) {
    for (const std::int32_t ground : {5, 20, 40}) {
        const Board board = build(4000, 3, ground);
        const Net* gnd = findNet(board, "GND");
        ASSERT_NE(gnd, nullptr);
        EXPECT_EQ(gnd->pinCount, static_cast<std::int64_t>(board.pinCount()) * ground / 100) << ground << "%";
    }
}

// 100k components stand for about 500k net pins and 80k nets.
TEST(BoardBuilder, ProportionsOfALargeBoard) {
    const Board board = build(20000, 1);
    std::int64_t netPins = 0;
    for (std::size_t n = 1; n < board.nets.size(); ++n) netPins += board.nets[n].pinCount;
    EXPECT_GT(netPins, 20000 * 45 / 10);
    EXPECT_LT(netPins, 20000 * 55 / 10);
    EXPECT_GT(board.nets.size(), 20000u * 7 / 10);
    EXPECT_LT(board.nets.size(), 20000u * 9 / 10);

    // Repeated refdes (renamed by the converter), REFDES-PIN texts, packages
    // from 0 to 1000 pins, some with repeated pin names.
    const std::vector<std::string> names = refdesList(board);
    EXPECT_LT(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    EXPECT_TRUE(std::any_of(board.components.begin(), board.components.end(),
                            [](const Component& c) { return c.refdesPinTexts; }));
    std::size_t fewest = 1000000, most = 0;
    bool repeatedPinName = false;
    for (const Package& p : board.packages) {
        fewest = std::min(fewest, p.pinNames.size());
        most = std::max(most, p.pinNames.size());
        repeatedPinName |= std::set<std::string>(p.pinNames.begin(), p.pinNames.end()).size() < p.pinNames.size();
    }
    EXPECT_EQ(fewest, 0u);
    EXPECT_EQ(most, 1000u);
    EXPECT_TRUE(repeatedPinName);
}

}  // namespace
