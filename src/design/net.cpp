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
    if (count >= kIndexFrom) {
        const std::size_t hash = connectionHash(pin);
        if (seen_.find(hash, sameConnection) != nullptr) return nullptr;
        seen_.add(hash, pin);
    } else {
        for (Node* node = head; node != nullptr; node = node->next) {
            if (sameConnection(node->item)) return nullptr;
        }
    }
    addItem(pin);
    if (count == kIndexFrom) {
        for (Node* node = head; node != nullptr; node = node->next) seen_.add(connectionHash(node->item), node->item);
    }
    return pin;
}

Net* NetList::addNet(Net* net) {
    if (addItem(net) == nullptr) return nullptr;
    net->owner = owner;
    return net;
}
