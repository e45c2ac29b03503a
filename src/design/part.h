// Part: one component or one package of the board, and PartPin, one of its
// pins. A component's key is its side letter and its number in its
// components file ("T0", "B12"); a package's key is its number in eda/data.
// A Part owns its pins; the Design's lists own the Parts. All of them are
// made in the Design's arena.
#pragma once

#include <cstdint>

#include "containers/flat_index.h"
#include "containers/item_list.h"
#include "design/named_item.h"

class Design;
class PartList;
class TextOutput;

class PartPin : public NamedItem {
public:
    // A package's pin: its name; pinText stays empty.
    PartPin(TextString name, std::int32_t pinNumber, std::int32_t netNumber);
    // A component's pin: the name is always "DUMMY"; pinText is what the
    // netlist shows.
    PartPin(const char* name, std::int32_t pinNumber, std::int32_t netNumber, const char* pinText);

    std::int32_t pinNumber = 0;
    std::int32_t netNumber = 0;
    TextString pinText;
    // A pin record's two spare texts are empty for every pin and never set:
    // one shared empty text stands for each, where copies in every pin
    // would cost a large board 32 bytes on each of half a million pins.
    static inline const TextString spare1;
    static inline const TextString spare2;
};

// The pins of a Part, in record order; owns them. Lookups by name go through
// an index, so the list is only added to, and names don't change after a pin
// is added.
class PartPinList : public SealedItemList<PartPin> {
public:
    explicit PartPinList(Arena& arena) : SealedItemList(arena) {}
    ~PartPinList() { items_.clearItems(); }

    // Links pin at the tail; a null is refused and gives null.
    PartPin* addItem(PartPin* pin) { return items_.addItem(pin); }
    // The first pin whose name equals text, case-sensitively; or null.
    PartPin* findPinByName(const char* text);
    PartPin* findPinByName(TextString text) { return findPinByName(text.text()); }

private:
    // Filled by the searches: only packages are searched, and a
    // component's many "DUMMY" pins need no index.
    FlatIndex<PartPin> byName_;
    std::int32_t indexed_ = 0;  // the pins from index 0 that byName_ has seen
};

class Part : public NamedItem {
public:
    Part(Arena& arena, const char* typeName);
    ~Part();
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    // Cutting setters: the first ';' of text is overwritten with a
    // terminator, in the caller's buffer too, before the assignment.
    void setTypeName(char* text);
    void setValue(char* text);
    // Plain setters: a ';' stays in the text.
    void setRefdes(const char* text);
    void setPartName(const char* text) { partName.assign(text); }
    void setManufacturerPartNo(const char* text) { manufacturerPartNo.assign(text); }
    void setPackageIndex(std::int32_t index) { packageIndex = index; }

    // One line of the PART_LIST section, or nothing.
    void writePartLine(TextOutput& out) const;

    std::int32_t state = 1;
    Design* owner = nullptr;
    TextString refdes;
    TextString typeName;
    std::int32_t packageIndex = 0;  // only meaningful in a component
    TextString value;
    TextString partName;
    TextString manufacturerPartNo;
    PartPinList pins;

private:
    friend class PartList;
    PartList* list_ = nullptr;  // the list whose refdes index knows this part
};

// Components or packages, in reading order; owns its Parts. findByRefdes
// goes through an index, kept exact through the adds and Part::setRefdes.
class PartList : public SealedItemList<Part> {
public:
    explicit PartList(Arena& arena) : SealedItemList(arena) {}
    ~PartList() { clearItems(); }

    // Links part at the tail and gives it the list's owner; null refused.
    Part* addPart(Part* part);
    // The first Part, in list order, whose refdes equals text; or null.
    Part* findByRefdes(const char* text);
    Part* findByRefdes(const TextString& text) { return findByRefdes(text.text()); }
    // Destroys every Part, then lets go of the nodes.
    void clearItems();

    Design* owner = nullptr;

private:
    friend class Part;
    void refdesChanged() { indexValid_ = false; }
    void rebuildIndex();
    void indexRefdes(Part* part);
    Part* findIndexed(const char* text) const;

    // refdes -> first Part with it.
    FlatIndex<Part> byRefdes_;
    bool indexValid_ = true;
};
