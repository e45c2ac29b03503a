#include "design/net.h"

#include "design/design.h"

std::string NetPinList::indexKey(const NetPin& pin) {
    std::string key(pin.key.text());
    key += '\0';
    key.append(reinterpret_cast<const char*>(&pin.pinIndex), sizeof pin.pinIndex);
    return key;
}

NetPin* NetPinList::addNetPin(NetPin* pin) {
    if (pin == nullptr) return nullptr;
    if (count >= kIndexFrom) {
        if (!seen_.insert(indexKey(*pin)).second) return nullptr;
    } else {
        for (Node* node = head; node != nullptr; node = node->next) {
            if (node->item->pinIndex == pin->pinIndex && node->item->key.equals(pin->key)) return nullptr;
        }
    }
    addItem(pin);
    if (count == kIndexFrom) {
        for (Node* node = head; node != nullptr; node = node->next) seen_.insert(indexKey(*node->item));
    }
    return pin;
}

Net* NetList::addNet(Net* net) {
    if (addItem(net) == nullptr) return nullptr;
    net->owner = owner;
    return net;
}
