#include "design/part.h"

#include <cstring>

#include "design/design.h"

PartPin::PartPin(TextString name, std::int32_t pinNumber, std::int32_t netNumber)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber) {}

PartPin::PartPin(const char* name, std::int32_t pinNumber, std::int32_t netNumber, const char* pinText)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber), pinText(pinText) {}

PartPin* PartPinList::findPinByName(const char* text) {
    if (count >= kIndexFrom) {
        // The pins added since the last search join the index; the first
        // pin of a name keeps it.
        for (Node* node = lastIndexed_ == nullptr ? head : lastIndexed_->next; node != nullptr; node = node->next) {
            byName_.try_emplace(node->item->text(), node->item);
            lastIndexed_ = node;
        }
        const auto found = byName_.find(text == nullptr ? "" : text);
        return found == byName_.end() ? nullptr : found->second;
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
    if (indexValid_) byRefdes_.emplace(part->refdes.text(), part);
    return part;
}

Part* PartList::findByRefdes(TextString text) {
    if (!indexValid_) rebuildIndex();
    const auto found = byRefdes_.find(text.text());
    return found == byRefdes_.end() ? nullptr : found->second;
}

void PartList::rebuildIndex() {
    byRefdes_.clear();
    for (Node* node = head; node != nullptr; node = node->next) {
        byRefdes_.emplace(node->item->refdes.text(), node->item);
    }
    indexValid_ = true;
}

void PartList::clearItems() {
    byRefdes_.clear();
    indexValid_ = true;
    ItemList<Part>::clearItems();
}
