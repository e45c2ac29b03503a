// Net: one net of the board, and NetPin, one of its connections. A NetPin
// names a component only by its key and a zero-based index into that
// component's pins; the two meet in the writer. Nets and NetPins are never
// released by their holders (see run_lifetime.h).
#pragma once

#include <cstdint>
#include <cstdio>

#include "containers/flat_index.h"
#include "containers/item_list.h"
#include "design/named_item.h"

class Design;

class NetPin {
public:
    NetPin(TextString key, std::int32_t pinIndex) : key(key), pinIndex(pinIndex) {}
    // The same from the key's text, without the copies a TextString by value
    // makes: a board has a net pin for every connection.
    NetPin(const char* key, std::int32_t pinIndex) : key(key), pinIndex(pinIndex) {}

    TextString key;
    std::int32_t pinIndex;
    // Empty for every pin and never set: one shared empty text (see PartPin).
    static inline const TextString spare;
};

// The connections of a Net, in record order, without duplicates: the list is
// only added to through addNetPin, which keeps the index of a long list.
class NetPinList : public IndexedItemList<NetPin> {
public:
    // Links pin at the tail unless a pin with the same key and the same
    // pinIndex is there already; then, or for a null, returns null.
    NetPin* addNetPin(NetPin* pin);

private:
    static std::size_t connectionHash(const NetPin* pin);
    static constexpr std::int32_t kIndexFrom = 8;
    // The pins of a long list by key and index, filled once the list is
    // long; they live as long as the run.
    FlatIndex<NetPin> seen_;
};

class Net : public NamedItem {
public:
    Net(std::int32_t index, const char* name) : NamedItem(name), index(index) {}

    NetPin* addNetPin(NetPin* pin) { return pins.addNetPin(pin); }

    Design* owner = nullptr;
    NetPinList pins;
    std::int32_t index;
};

// The nets of a Design, in reading order; frees only its nodes.
class NetList : public ItemList<Net> {
public:
    Net* addNet(Net* net);

    Design* owner = nullptr;
};
