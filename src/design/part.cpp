#include "design/part.h"

#include <cstring>

#include "design/design.h"
#include "design/text_output.h"

PartPin::PartPin(TextString name, std::int32_t pinNumber, std::int32_t netNumber)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber) {}

PartPin::PartPin(const char* name, std::int32_t pinNumber, std::int32_t netNumber, const char* pinText)
    : NamedItem(name), pinNumber(pinNumber), netNumber(netNumber), pinText(pinText) {}

namespace {

auto named(const char* name) {
    return [name](const PartPin* pin) { return std::strcmp(pin->text(), name) == 0; };
}

}  // namespace

PartPin* PartPinList::findPinByName(const char* text) {
    const char* wanted = text == nullptr ? "" : text;
    // The pins added since the last search join the index, by index, one
    // step each; the first pin of a name keeps it.
    for (; indexed_ < itemCount(); ++indexed_) {
        PartPin* pin = items_.itemAt(indexed_);
        const std::uint64_t hash = hashText(pin->text());
        if (byName_.find(hash, named(pin->text())) == nullptr) byName_.add(hash, pin);
    }
    return byName_.find(hashText(wanted), named(wanted));
}

Part::Part(Arena& arena, const char* typeName) : NamedItem(""), typeName(typeName), pins(arena) {}

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
    if (items_.addItem(part) == nullptr) return nullptr;
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
    if (findIndexed(refdes) == nullptr) byRefdes_.add(hashText(refdes), part);
}

Part* PartList::findIndexed(const char* text) const {
    return byRefdes_.find(hashText(text),
                          [text](const Part* part) { return std::strcmp(part->refdes.text(), text) == 0; });
}

void PartList::rebuildIndex() {
    byRefdes_.clear();
    for (Part* part : items_) indexRefdes(part);
    indexValid_ = true;
}

void PartList::clearItems() {
    byRefdes_.clear();
    indexValid_ = true;
    items_.clearItems();
}

void Part::writePartLine(TextOutput& out) const {
    if (state != 1) return;
    const char* substitute = nullptr;
    if (typeName.equals("???")) {
        if (!manufacturerPartNo.isEmpty()) substitute = manufacturerPartNo.text();
        else if (!value.isEmpty()) substitute = value.text();
        else if (!partName.isEmpty()) substitute = partName.text();
    }
    // "\t%-12s\t%s\n", or "\t%-12s\t%s\t!  %s\n" with a substitute.
    out.put('\t');
    out.padded(refdes.text(), 12);
    out.put('\t');
    if (substitute != nullptr) {
        out.put(substitute);
        out.put("\t!  ", 4);
    }
    out.put(typeName.text());
    out.put('\n');
}
