// Net: one net of the board, and NetPin, one of its connections. A NetPin
// names a component only by its key and a zero-based index into that
// component's pins; the two meet in the writer. Nets and NetPins are made in
// the Design's arena; a net owns its pins, the Design's NetList its nets.
#pragma once

#include <cstdint>

#include "containers/flat_index.h"
#include "containers/item_list.h"
#include "design/named_item.h"

class Design;

class NetPin {
public:
    NetPin(const char* key, std::int32_t pinIndex) : key(key), pinIndex(pinIndex) {}

    TextString key;
    std::int32_t pinIndex;
    // Empty for every pin and never set: one shared empty text (see PartPin).
    static inline const TextString spare;
};

// The connections of a Net, in record order, without duplicates: the list is
// only added to through addNetPin, which keeps the index of a long list.
class NetPinList : public SealedItemList<NetPin> {
public:
    explicit NetPinList(Arena& arena) : SealedItemList(arena) {}
    ~NetPinList() { items_.clearItems(); }

    // Links pin at the tail unless a pin with the same key and the same
    // pinIndex is there already; then, or for a null, returns null, and the
    // pin stays the caller's.
    NetPin* addNetPin(NetPin* pin);

private:
    static std::uint64_t connectionHash(const NetPin* pin);
    // A short list is searched from its head: most nets have a few pins, and
    // an index for each would cost 2.09 against 2.01 billion instructions
    // for bench_stages at 100k components.
    static constexpr std::int32_t kIndexFrom = 8;
    // The pins of a long list by key and index, filled once the list is long.
    FlatIndex<NetPin> seen_;
};

class Net : public NamedItem {
public:
    Net(Arena& arena, std::int32_t index, const char* name) : NamedItem(name), pins(arena), index(index) {}

    NetPin* addNetPin(NetPin* pin) { return pins.addNetPin(pin); }

    Design* owner = nullptr;
    NetPinList pins;
    std::int32_t index;
};

// The nets of a Design, in reading order; owns them.
class NetList : public SealedItemList<Net> {
public:
    explicit NetList(Arena& arena) : SealedItemList(arena) {}
    ~NetList() { items_.clearItems(); }

    // Links net at the tail and gives it the list's owner; null refused.
    Net* addNet(Net* net);

    Design* owner = nullptr;
};
