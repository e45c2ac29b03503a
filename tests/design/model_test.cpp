#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "design/design.h"
#include "design/run_lifetime.h"

namespace {

// The key and pinIndex of every NetPin of a list, in list order.
std::string listed(NetPinList& pins) {
    std::string text;
    for (auto* node = pins.head; node != nullptr; node = node->next) {
        text += std::string(node->item->key.text()) + ":" + std::to_string(node->item->pinIndex) + " ";
    }
    return text;
}

TEST(PartTest, CuttingSettersCutAtTheFirstSemicolonInTheCallersBufferToo) {
    struct Case {
        const char* input;
        const char* kept;
    };
    const Case cases[] = {
        {"R_0603;10K;1%", "R_0603"},
        {";x", ""},
        {"74HC00", "74HC00"},
        {"???;x", "???"},
        {"", ""},
    };
    for (const Case& c : cases) {
        Part part(nullptr);
        std::string typeBuffer(c.input);
        std::string valueBuffer(c.input);
        part.setTypeName(typeBuffer.data());
        part.setValue(valueBuffer.data());
        EXPECT_STREQ(part.typeName.text(), c.kept) << c.input;
        EXPECT_STREQ(part.value.text(), c.kept) << c.input;
        EXPECT_STREQ(typeBuffer.c_str(), c.kept) << c.input;
        EXPECT_STREQ(valueBuffer.c_str(), c.kept) << c.input;
    }
}

TEST(PartTest, PlainSettersKeepSemicolons) {
    Part part("SO8");
    part.setRefdes("A;B");
    part.setPartName("A;B");
    part.setManufacturerPartNo("A;B;");
    part.setPackageIndex(3);
    EXPECT_STREQ(part.typeName.text(), "SO8");
    EXPECT_STREQ(part.refdes.text(), "A;B");
    EXPECT_STREQ(part.partName.text(), "A;B");
    EXPECT_STREQ(part.manufacturerPartNo.text(), "A;B;");
    EXPECT_EQ(part.packageIndex, 3);
    EXPECT_STREQ(part.text(), "");
    EXPECT_STREQ(part.value.text(), "");
    EXPECT_EQ(part.state, 1);
    EXPECT_EQ(part.owner, nullptr);
    EXPECT_EQ(part.pins.itemCount(), 0);
}

// One row of additions, each refused only when the same key (case counts)
// with the same pinIndex is in the net already. The row is run on an empty
// net, where it crosses the point at which the list starts to use its
// index, and behind fillers, where all of it runs on the index: both must
// give what a scan of the list gives.
TEST(NetPinListTest, DuplicateRuleIsTheSameBelowAndBeyondTheIndexThreshold) {
    struct Step {
        const char* key;
        std::int32_t pinIndex;
        bool added;
    };
    const std::vector<Step> steps = {
        {"T3", 1, true},   {"T3", 1, false}, {"t3", 1, true},  {"T3", 2, true},  {"B3", 1, true},
        {"T31", 1, true},  {"T", 31, true},  {"T3", -1, true}, {"", 0, true},    {"T3", 1, false},
        {"", 0, false},    {"T3", 2, false}, {"T", 31, false}, {"T31", 1, false}, {"T3", 0, true},
        {"B3", 1, false},  {"t3", 1, false}, {"T3", -1, false},
    };
    for (const int fillers : {0, 10}) {
        Net* net = makeForRun<Net>(0, "N");
        std::string expected;
        for (int f = 0; f < fillers; ++f) {
            const std::string key = "F" + std::to_string(f);
            ASSERT_NE(net->addNetPin(makeForRun<NetPin>(TextString(key.c_str()), f)), nullptr);
            expected += key + ":" + std::to_string(f) + " ";
        }
        for (std::size_t i = 0; i < steps.size(); ++i) {
            const Step& s = steps[i];
            NetPin* pin = makeForRun<NetPin>(TextString(s.key), s.pinIndex);
            EXPECT_EQ(net->addNetPin(pin), s.added ? pin : nullptr) << "fillers " << fillers << ", step " << i;
            if (s.added) expected += std::string(s.key) + ":" + std::to_string(s.pinIndex) + " ";
        }
        EXPECT_EQ(listed(net->pins), expected) << "fillers " << fillers;
        EXPECT_EQ(net->addNetPin(nullptr), nullptr);
        EXPECT_EQ(listed(net->pins), expected);
    }
}

// Names with namesakes (the list itself doesn't refuse them): a lookup
// yields the first pin of that name, in a short list and in one long enough
// to be looked up through its index.
TEST(PartPinListTest, FindPinByNameGivesTheFirstNamesakeInShortAndLongLists) {
    const std::vector<const char*> names = {"1", "A", "2", "A", "", "a", "B"};
    struct Query {
        const char* name;
        int found;  // position in the list; -1 for none
    };
    const Query queries[] = {
        {"A", 1}, {"a", 5}, {"1", 0}, {"", 4}, {nullptr, 4}, {"B", 6}, {"C", -1}, {"A ", -1},
    };
    Part empty("PKG");
    EXPECT_EQ(empty.pins.findPinByName(""), nullptr);
    EXPECT_EQ(empty.pins.addItem(nullptr), nullptr);
    EXPECT_EQ(empty.pins.itemCount(), 0);
    for (const int fillers : {0, 5, 30}) {
        Part package("PKG");
        std::vector<PartPin*> pins;
        for (const char* name : names) pins.push_back(package.pins.addItem(new PartPin(TextString(name), 0, 0)));
        for (int f = 0; f < fillers; ++f) {
            package.pins.addItem(new PartPin(TextString(("P" + std::to_string(f)).c_str()), 0, 0));
            package.pins.addItem(new PartPin(TextString("A"), 0, 0));
        }
        for (const Query& q : queries) {
            PartPin* expected = q.found < 0 ? nullptr : pins[static_cast<std::size_t>(q.found)];
            EXPECT_EQ(package.pins.findPinByName(q.name), expected)
                << "fillers " << fillers << ", name " << (q.name == nullptr ? "null" : q.name);
            EXPECT_EQ(package.pins.findPinByName(TextString(q.name)), expected) << "fillers " << fillers;
        }
        if (fillers > 0) {
            EXPECT_STREQ(package.pins.findPinByName("P0")->text(), "P0");
            EXPECT_EQ(package.pins.findPinByName("P0"), package.pins.itemAt(static_cast<std::int32_t>(names.size())));
        }
    }
}

class PartListTest : public ::testing::Test {
protected:
    Part* addComponent(const char* refdes) {
        Part* part = new Part(nullptr);
        part->setRefdes(refdes);
        return design.components.addPart(part);
    }

    Design design;
};

TEST_F(PartListTest, FindByRefdesGivesTheFirstInListOrder) {
    design.packages.addPart(new Part("PKG_A"));
    EXPECT_EQ(design.components.findByRefdes(TextString("")), nullptr);  // packages aren't seen
    EXPECT_EQ(design.packages.findByRefdes(TextString("")), design.packages.itemAt(0));
    Part* r1 = addComponent("R1");
    Part* u1 = addComponent("U1");
    Part* secondR1 = addComponent("R1");
    EXPECT_EQ(design.components.findByRefdes(TextString("")), nullptr);
    Part* empty = addComponent("");
    Part* thirdR1 = addComponent("R1");
    EXPECT_EQ(design.components.findByRefdes(TextString("R1")), r1);
    EXPECT_EQ(design.components.findByRefdes(TextString("U1")), u1);
    EXPECT_EQ(design.components.findByRefdes(TextString("")), empty);
    EXPECT_EQ(design.components.findByRefdes(TextString("r1")), nullptr);
    EXPECT_EQ(design.components.findByRefdes(TextString("R")), nullptr);
    EXPECT_EQ(design.components.findByRefdes(TextString("R1 ")), nullptr);

    // Renaming parts already in the list: the answers follow at once.
    r1->setRefdes("R9");
    EXPECT_EQ(design.components.findByRefdes(TextString("R1")), secondR1);
    EXPECT_EQ(design.components.findByRefdes(TextString("R9")), r1);
    empty->setRefdes("U1");
    EXPECT_EQ(design.components.findByRefdes(TextString("U1")), u1);
    EXPECT_EQ(design.components.findByRefdes(TextString("")), nullptr);
    u1->setRefdes("Q1");
    EXPECT_EQ(design.components.findByRefdes(TextString("U1")), empty);
    // A rename, then an add before any lookup.
    secondR1->setRefdes("R2");
    Part* lateR9 = addComponent("R9");
    Part* lateR1 = addComponent("R1");
    EXPECT_EQ(design.components.findByRefdes(TextString("R1")), thirdR1);
    EXPECT_EQ(design.components.findByRefdes(TextString("R9")), r1);
    r1->setRefdes("R0");
    EXPECT_EQ(design.components.findByRefdes(TextString("R9")), lateR9);
    thirdR1->setRefdes("R3");
    EXPECT_EQ(design.components.findByRefdes(TextString("R1")), lateR1);
    EXPECT_EQ(design.components.findByRefdes(TextString("R2")), secondR1);
}

TEST_F(PartListTest, AddsGiveOwnersToComponentsAndNetsButNotToPackages) {
    EXPECT_EQ(design.components.owner, &design);
    EXPECT_EQ(design.nets.owner, &design);
    EXPECT_EQ(design.packages.owner, nullptr);
    EXPECT_EQ(design.reserved, 0);
    EXPECT_EQ(design.longestNetName, 0);

    Part* component = addComponent("U1");
    Part* package = design.packages.addPart(new Part("PKG"));
    Net* net = design.nets.addNet(makeForRun<Net>(4, "GND"));
    EXPECT_EQ(component->owner, &design);
    EXPECT_EQ(package->owner, nullptr);
    EXPECT_STREQ(package->typeName.text(), "PKG");
    EXPECT_EQ(net->owner, &design);
    EXPECT_STREQ(net->text(), "GND");
    EXPECT_EQ(net->index, 4);

    EXPECT_EQ(design.components.addPart(nullptr), nullptr);
    EXPECT_EQ(design.packages.addPart(nullptr), nullptr);
    EXPECT_EQ(design.nets.addNet(nullptr), nullptr);
    EXPECT_EQ(design.components.itemCount(), 1);
    EXPECT_EQ(design.packages.itemCount(), 1);
    EXPECT_EQ(design.nets.itemCount(), 1);
}

TEST(DesignTest, NoteNetNameLengthKeepsTheLargest) {
    Design design;
    const std::int32_t notes[] = {5, 3, 5, 0, -7, 9, 8};
    const std::int32_t longest[] = {5, 5, 5, 5, 5, 9, 9};
    for (std::size_t i = 0; i < sizeof notes / sizeof notes[0]; ++i) {
        design.noteNetNameLength(notes[i]);
        EXPECT_EQ(design.longestNetName, longest[i]) << "note " << notes[i];
    }
}

TEST(DesignTest, AnEmptyDesignIsDestroyedQuietly) {
    auto* design = new Design;
    delete design;
    Design filledThenEmpty;
    filledThenEmpty.components.addPart(new Part("X"));
    filledThenEmpty.components.clearItems();
    EXPECT_EQ(filledThenEmpty.components.itemCount(), 0);
    EXPECT_EQ(filledThenEmpty.components.findByRefdes(TextString("")), nullptr);
}

}  // namespace
