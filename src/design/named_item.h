// NamedItem: a TextString that names a model record: a Part's key, a
// PartPin's name, a Net's name. It adds nothing of its own.
#pragma once

#include "containers/text_string.h"

class NamedItem : public TextString {
public:
    explicit NamedItem(const char* text) : TextString(text) {}
    explicit NamedItem(TextString text) : TextString(text) {}
};
