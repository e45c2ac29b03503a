#include "design/net.h"

std::uint64_t NetPinList::connectionHash(const NetPin* pin) {
    const std::int32_t pinIndex = pin->pinIndex;
    return hashBytes(&pinIndex, sizeof pinIndex, hashText(pin->key.text()));
}

NetPin* NetPinList::addNetPin(NetPin* pin) {
    if (pin == nullptr) return nullptr;
    const auto sameConnection = [pin](const NetPin* other) {
        return other->pinIndex == pin->pinIndex && other->key.equals(pin->key);
    };
    if (itemCount() >= kIndexFrom) {
        const std::uint64_t hash = connectionHash(pin);
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
    if (items_.addItem(net) == nullptr) return nullptr;
    net->owner = owner;
    return net;
}
