#include "design/part.h"

#include <cstring>

#include "design/design.h"

PartPin::PartPin(TextString name, std::int32_t pinNumber, std::int32_t netNumber)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber) {}

PartPin::PartPin(const char* name, std::int32_t pinNumber, std::int32_t netNumber, const char* pinText)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber), pinText(pinText) {}

PartPin* PartPinList::findPinByName(const char* text) {
    const char* wanted = text == nullptr ? "" : text;
    const auto named = [wanted](const PartPin* pin) { return std::strcmp(pin->text(), wanted) == 0; };
    if (count >= kIndexFrom) {
        // The pins added since the last search join the index; the first
        // pin of a name keeps it.
        for (Node* node = lastIndexed_ == nullptr ? head : lastIndexed_->next; node != nullptr; node = node->next) {
            const char* name = node->item->text();
            const std::size_t hash = static_cast<std::size_t>(hashText(name));
            if (byName_.find(hash, [name](const PartPin* pin) { return std::strcmp(pin->text(), name) == 0; }) ==
                nullptr) {
                byName_.add(hash, node->item);
            }
            lastIndexed_ = node;
        }
        return byName_.find(static_cast<std::size_t>(hashText(wanted)), named);
    }
    for (Node* node = head; node != nullptr; node = node->next) {
        if (node->item->equals(text)) return node->item;
    }
    return nullptr;
}

Part::Part(const char* typeName) : NamedItem(""), typeName(typeName) {}

Part::~Part() = default;

namespace {

void cutAtSemicolon(char* text) {
    char* semicolon = std::strchr(text, ';');
    if (semicolon != nullptr) *semicolon = '\0';
}

}  // namespace

void Part::setTypeName(char* text) {
    cutAtSemicolon(text);
    typeName.assign(text);
}

void Part::setValue(char* text) {
    cutAtSemicolon(text);
    value.assign(text);
}

void Part::setRefdes(const char* text) {
    refdes.assign(text);
    if (list_ != nullptr) list_->refdesChanged();
}

Part* PartList::addPart(Part* part) {
    if (addItem(part) == nullptr) return nullptr;
    part->owner = owner;
    part->list_ = this;
    if (indexValid_) indexRefdes(part);
    return part;
}

Part* PartList::findByRefdes(const char* text) {
    if (!indexValid_) rebuildIndex();
    return findIndexed(text == nullptr ? "" : text);
}

// The first Part of a refdes stays in the index; a later one with the same
// refdes is found through it.
void PartList::indexRefdes(Part* part) {
    const char* refdes = part->refdes.text();
    if (findIndexed(refdes) == nullptr) byRefdes_.add(static_cast<std::size_t>(hashText(refdes)), part);
}

Part* PartList::findIndexed(const char* text) const {
    return byRefdes_.find(static_cast<std::size_t>(hashText(text)),
                          [text](const Part* part) { return std::strcmp(part->refdes.text(), text) == 0; });
}

void PartList::rebuildIndex() {
    byRefdes_.clear();
    for (Node* node = head; node != nullptr; node = node->next) indexRefdes(node->item);
    indexValid_ = true;
}

void PartList::clearItems() {
    byRefdes_.clear();
    indexValid_ = true;
    ItemList<Part>::clearItems();
}
