#include "design/design.h"

Design::Design() {
    components.owner = this;
    nets.owner = this;
    // packages gets no owner: the owner a package receives means nothing.
}

Design::~Design() {
    packages.clearItems();
    nets.clearNodes();
    components.clearItems();
}

void Design::noteNetNameLength(std::int32_t length) {
    if (length > longestNetName) longestNetName = length;
}

void Design::makeNameSafe(TextString& name) {
    for (char* p = name.buffer(); *p != '\0'; ++p) {
        if (isWhiteSpace(*p)) *p = '_';
    }
}
