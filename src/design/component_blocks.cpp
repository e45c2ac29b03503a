#include "design/component_blocks.h"

#include <cstring>
#include <new>

#include "containers/abnormal_end.h"
#include "design/design.h"

ComponentBlocks::ComponentBlocks(const Design& design) {
    // The readers number each side from 0; a key numbered far beyond the
    // components is looked up as any other text.
    numberLimit_ = 2 * static_cast<std::size_t>(design.components.itemCount()) + 16;
    for (const Part* part : design.components) {
        if (find(part->text()) == nullptr) add(*part);
    }
    for (const Part* package : design.packages) packagePins_.push_back(package->pins.itemCount());
}

// Draws the block of part and makes its key lead to it.
void ComponentBlocks::add(const Part& part) {
    const std::string_view key = part.text();
    const std::size_t refdesLength = static_cast<std::size_t>(part.refdes.length());
    const std::size_t fieldLength = (refdesLength > 16 ? refdesLength : 16) + 2;
    const std::size_t pinCount = static_cast<std::size_t>(part.pins.itemCount());
    std::size_t textLength = key.size() + fieldLength;
    for (const PartPin* pin : part.pins) textLength += static_cast<std::size_t>(pin->pinText.length());
    void* memory = arena_.allocate(sizeof(ComponentBlock) + (pinCount + 1) * sizeof(std::size_t) + textLength,
                                   alignof(ComponentBlock));
    ComponentBlock* block = new (memory) ComponentBlock;
    block->pinCount_ = static_cast<std::int32_t>(pinCount);
    block->packageIndex_ = part.packageIndex;
    block->keyLength_ = key.size();
    block->refdesLength_ = refdesLength;
    block->fieldLength_ = fieldLength;
    char* texts = block->texts();
    std::memcpy(texts, key.data(), key.size());
    std::memcpy(texts + key.size(), part.refdes.text(), refdesLength);
    std::memset(texts + key.size() + refdesLength, ' ', fieldLength - refdesLength);
    std::size_t end = key.size() + fieldLength;
    std::size_t* ends = block->ends();
    *ends++ = end;
    for (const PartPin* pin : part.pins) {
        const std::size_t length = static_cast<std::size_t>(pin->pinText.length());
        std::memcpy(texts + end, pin->pinText.text(), length);
        end += length;
        *ends++ = end;
    }

    BoardSide side = BoardSide::kTop;
    std::size_t number = 0;
    if (parseComponentKey(part.text(), numberLimit_, &side, &number)) {
        std::vector<const ComponentBlock*>& slots = byNumber_[static_cast<int>(side)];
        if (number >= slots.size()) slots.resize(number + 1, nullptr);
        slots[number] = block;
    } else {
        byKey_.add(hashText(part.text()), block);
    }
}

const ComponentBlock* ComponentBlocks::find(const char* key) const {
    BoardSide side = BoardSide::kTop;
    std::size_t number = 0;
    if (parseComponentKey(key, numberLimit_, &side, &number)) {
        const std::vector<const ComponentBlock*>& slots = byNumber_[static_cast<int>(side)];
        return number < slots.size() ? slots[number] : nullptr;
    }
    return byKey_.find(hashText(key), [key](const ComponentBlock* block) { return block->key() == key; });
}

std::int32_t ComponentBlocks::packagePinCount(std::int32_t packageIndex) const {
    if (packageIndex < 0 || static_cast<std::size_t>(packageIndex) >= packagePins_.size()) abnormalEnd();
    return packagePins_[static_cast<std::size_t>(packageIndex)];
}
