#include "design/net.h"

#include "design/design.h"

std::size_t NetPinList::ConnectionHash::operator()(const NetPin* pin) const {
    // FNV-1a over the key's bytes, then the index.
    std::uint64_t hash = 14695981039346656037ULL;
    for (const char* p = pin->key.text(); *p != '\0'; ++p) {
        hash = (hash ^ static_cast<unsigned char>(*p)) * 1099511628211ULL;
    }
    hash = (hash ^ static_cast<std::uint32_t>(pin->pinIndex)) * 1099511628211ULL;
    return static_cast<std::size_t>(hash ^ (hash >> 29));
}

NetPin* NetPinList::addNetPin(NetPin* pin) {
    if (pin == nullptr) return nullptr;
    if (count >= kIndexFrom) {
        if (!seen_.insert(pin).second) return nullptr;
    } else {
        for (Node* node = head; node != nullptr; node = node->next) {
            if (node->item->pinIndex == pin->pinIndex && node->item->key.equals(pin->key)) return nullptr;
        }
    }
    addItem(pin);
    if (count == kIndexFrom) {
        for (Node* node = head; node != nullptr; node = node->next) seen_.insert(node->item);
    }
    return pin;
}

Net* NetList::addNet(Net* net) {
    if (addItem(net) == nullptr) return nullptr;
    net->owner = owner;
    return net;
}
