#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "design/design.h"

namespace {

// The cutting setters cut in the caller's buffer too; the plain ones keep a ';'.
TEST(PartTest, OnlyTypeNameAndValueAreCutAtTheFirstSemicolon) {
    for (const char* input : {"R_0603;10K;1%", ";x", "74HC00", ""}) {
        const std::string kept = std::string(input).substr(0, std::string(input).find(';'));
        Arena arena;
        Part part(arena, nullptr);
        std::string type(input), value(input);
        part.setTypeName(type.data());
        part.setValue(value.data());
        part.setRefdes(input);
        part.setPartName(input);
        part.setManufacturerPartNo(input);
        EXPECT_EQ(type.c_str() + std::string("|") + value.c_str(), kept + "|" + kept) << input;
        EXPECT_EQ(std::string(part.typeName.text()) + "|" + part.value.text(), kept + "|" + kept) << input;
        EXPECT_EQ(std::string(part.refdes.text()) + part.partName.text() + part.manufacturerPartNo.text(),
                  std::string(input) + input + input);
    }
}

// Refused only when the same key (case counts) with the same pinIndex is in
// already. Run on an empty net, where it crosses the length at which the
// list starts to use its index, and behind fillers, where all of it runs on
// the index: both must give what a scan of the list gives.
TEST(NetPinListTest, DuplicatesAreRefusedBelowAndBeyondTheIndexThreshold) {
    const struct { const char* key; std::int32_t pinIndex; bool added; } steps[] = {
        {"T3", 1, true},  {"T3", 1, false}, {"t3", 1, true},  {"T3", 2, true},   {"B3", 1, true},  {"T31", 1, true},
        {"T", 31, true},  {"T3", -1, true}, {"", 0, true},    {"T3", 1, false},  {"", 0, false},   {"T3", 2, false},
        {"T", 31, false}, {"T3", 0, true},  {"B3", 1, false}, {"T31", 1, false}, {"T3", -1, false},
    };
    for (const int fillers : {0, 10}) {
        Arena arena;
        Net* net = arena.make<Net>(arena, 0, "N");
        std::string expected, listed;
        for (int f = 0; f < fillers; ++f) net->addNetPin(arena.make<NetPin>("F", f));
        for (const auto& s : steps) {
            NetPin* pin = arena.make<NetPin>(s.key, s.pinIndex);
            EXPECT_EQ(net->addNetPin(pin), s.added ? pin : nullptr) << fillers << " " << s.key << "/" << s.pinIndex;
            if (s.added) expected += std::string(s.key) + "/" + std::to_string(s.pinIndex) + " ";
        }
        EXPECT_EQ(net->addNetPin(nullptr), nullptr);
        for (std::int32_t i = fillers; i < net->pins.itemCount(); ++i) {
            listed += std::string(net->pins.itemAt(i)->key.text()) + "/" + std::to_string(net->pins.itemAt(i)->pinIndex) + " ";
        }
        EXPECT_EQ(listed, expected) << fillers;
        std::destroy_at(net);
    }
}

// A lookup gives the first pin of that name, also after pins were added
// behind the ones a search has seen.
TEST(PartPinListTest, FindPinByNameGivesTheFirstNamesake) {
    const std::vector<const char*> names = {"1", "A", "2", "A", "", "a", "B"};
    const struct { const char* name; int found; } queries[] = {  // found: position, -1 for none
        {"A", 1}, {"a", 5}, {"1", 0}, {"", 4}, {nullptr, 4}, {"B", 6}, {"C", -1}, {"A ", -1},
    };
    Arena arena;
    EXPECT_EQ(Part(arena, "PKG").pins.findPinByName(""), nullptr);
    for (const int fillers : {0, 5, 30}) {
        Part package(arena, "PKG");
        std::vector<PartPin*> pins;
        for (const char* name : names) pins.push_back(package.pins.addItem(arena.make<PartPin>(TextString(name), 0, 0)));
        EXPECT_EQ(package.pins.findPinByName("P0"), nullptr);  // the pins so far are indexed
        for (int f = 0; f < fillers; ++f) {
            package.pins.addItem(arena.make<PartPin>(TextString(("P" + std::to_string(f)).c_str()), 0, 0));
            package.pins.addItem(arena.make<PartPin>(TextString("A"), 0, 0));
        }
        EXPECT_EQ(package.pins.addItem(nullptr), nullptr);
        for (const auto& q : queries) {
            EXPECT_EQ(package.pins.findPinByName(q.name), q.found < 0 ? nullptr : pins[q.found])
                << fillers << " " << (q.name == nullptr ? "null" : q.name);
        }
        EXPECT_EQ(package.pins.findPinByName("P0"), fillers > 0 ? package.pins.itemAt(7) : nullptr);
    }
}

// The first in list order, exact, and up to date through renames of parts
// already in the list, adds after a rename, and a clear.
TEST(PartListTest, FindByRefdesFollowsRenamesAndClears) {
    Design design;
    const auto add = [&design](const char* refdes) {
        Part* part = design.arena.make<Part>(design.arena, nullptr);
        part->setRefdes(refdes);
        return design.components.addPart(part);
    };
    const auto found = [&design](const char* refdes) { return design.components.findByRefdes(TextString(refdes)); };
    design.packages.addPart(design.arena.make<Part>(design.arena, "PKG_A"));
    EXPECT_EQ(found(""), nullptr);  // packages aren't seen
    Part* r1 = add("R1");
    Part* u1 = add("U1");
    Part* secondR1 = add("R1");
    EXPECT_EQ(found(""), nullptr);
    Part* empty = add("");
    Part* thirdR1 = add("R1");
    EXPECT_TRUE(found("R1") == r1 && found("U1") == u1 && found("") == empty);
    EXPECT_TRUE(found("r1") == nullptr && found("R") == nullptr && found("R1 ") == nullptr);
    r1->setRefdes("R9");
    EXPECT_TRUE(found("R1") == secondR1 && found("R9") == r1);
    empty->setRefdes("U1");
    EXPECT_TRUE(found("U1") == u1 && found("") == nullptr);
    u1->setRefdes("Q1");
    EXPECT_EQ(found("U1"), empty);
    secondR1->setRefdes("R2");
    Part* lateR9 = add("R9");
    Part* lateR1 = add("R1");
    EXPECT_TRUE(found("R1") == thirdR1 && found("R9") == r1);
    r1->setRefdes("R0");
    thirdR1->setRefdes("R3");
    EXPECT_TRUE(found("R9") == lateR9 && found("R1") == lateR1 && found("R2") == secondR1);
    EXPECT_EQ(design.components.addPart(nullptr), nullptr);
    EXPECT_EQ(design.components.itemCount(), 7);
    design.components.clearItems();
    EXPECT_EQ(found("R1"), nullptr);
}

}  // namespace
