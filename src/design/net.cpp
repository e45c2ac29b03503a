#include "design/net.h"

#include "design/design.h"

std::size_t NetPinList::connectionHash(const NetPin* pin) {
    const std::uint64_t hash = hashText(pin->key.text());
    return static_cast<std::size_t>((hash ^ static_cast<std::uint32_t>(pin->pinIndex)) * 1099511628211ULL);
}

NetPin* NetPinList::addNetPin(NetPin* pin) {
    if (pin == nullptr) return nullptr;
    const auto sameConnection = [pin](const NetPin* other) {
        return other->pinIndex == pin->pinIndex && other->key.equals(pin->key);
    };
    if (itemCount() >= kIndexFrom) {
        const std::size_t hash = connectionHash(pin);
        if (seen_.find(hash, sameConnection) != nullptr) return nullptr;
        seen_.add(hash, pin);
    } else {
        for (const NetPin* other : items_) {
            if (sameConnection(other)) return nullptr;
        }
    }
    items_.addItem(pin);
    if (itemCount() == kIndexFrom) {
        for (NetPin* added : items_) seen_.add(connectionHash(added), added);
    }
    return pin;
}

Net* NetList::addNet(Net* net) {
    if (addItem(net) == nullptr) return nullptr;
    net->owner = owner;
    return net;
}
