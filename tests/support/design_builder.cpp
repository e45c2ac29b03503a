#include "support/design_builder.h"

#include <memory>
#include <sstream>
#include <vector>

#include "design/design.h"

namespace testsupport {

namespace {

// The blank-separated words of a line; quotes keep blanks and make "" a word.
std::vector<std::string> wordsOf(const std::string& line) {
    std::vector<std::string> words;
    bool inWord = false, quoted = false;
    for (const char c : line) {
        if (c == ' ' && !quoted) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back(), inWord = true;
        if (c == '"') quoted = !quoted;
        else words.back() += c;
    }
    return words;
}

}  // namespace

Part* DesignBuilder::addPackage(int pinCount) {
    Part* package = design_.arena.make<Part>(design_.arena, "PKG");
    package->assign(design_.packages.itemCount());
    for (int p = 1; p <= pinCount; ++p) package->pins.addItem(design_.arena.make<PartPin>(TextString(p), 0, 0));
    design_.packages.addPart(package);
    return package;
}

Part* DesignBuilder::addComponent(const std::string& key, const std::string& refdes, std::string typeName) {
    Part* part = design_.arena.make<Part>(design_.arena, nullptr);
    part->assign(key.c_str());
    part->setTypeName(typeName.data());
    part->setRefdes(refdes.c_str());
    design_.components.addPart(part);
    return part;
}

void DesignBuilder::addPin(Part* component, const std::string& pinText) {
    const std::int32_t number = component->pins.itemCount() + 1;
    component->pins.addItem(design_.arena.make<PartPin>("DUMMY", number, 0, pinText.c_str()));
}

Net* DesignBuilder::addNet(const std::string& name, bool noted) {
    Net* net = design_.arena.make<Net>(design_.arena, design_.nets.itemCount(), name.c_str());
    if (noted) design_.noteNetNameLength(net->length());
    design_.nets.addNet(net);
    return net;
}

void DesignBuilder::addNetPin(Net* net, const std::string& key, std::int32_t pinIndex) {
    NetPin* pin = design_.arena.make<NetPin>(key.c_str(), pinIndex);
    if (net->addNetPin(pin) == nullptr) std::destroy_at(pin);
}

std::string DesignBuilder::run(const std::string& program) {
    std::string name = "board";
    std::istringstream lines(program);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> w = wordsOf(line);
        if (w.empty() || w[0].rfind('#', 0) == 0) continue;
        if (w[0] == "design") name = line.substr(7);
        else if (w[0] == "package") addPackage(std::stoi(w[1]));
        else if (w[0] == "component") runComponent(line);
        else if (w[0] == "net") runNet(line);
        else if (w[0] == "note") design_.noteNetNameLength(std::stoi(w[1]));
        else unknownLines += line + "\n";
    }
    return name;
}

void DesignBuilder::runComponent(const std::string& line) {
    const std::vector<std::string> w = wordsOf(line);
    Part* part = addComponent(w[1], w[2], w[3]);
    std::size_t i = 4;
    for (; i < w.size() && w[i] != "pins"; ++i) {
        const std::size_t equals = w[i].find('=');
        const std::string property = w[i].substr(0, equals);
        std::string text = w[i].substr(equals + 1);
        if (property == "package") part->setPackageIndex(std::stoi(text));
        else if (property == "value") part->setValue(text.data());
        else if (property == "part") part->setPartName(text.c_str());
        else if (property == "mpn") part->setManufacturerPartNo(text.c_str());
        else if (property == "state") part->state = std::stoi(text);
        else unknownLines += line + "\n";
    }
    while (++i < w.size()) addPin(part, w[i]);
}

void DesignBuilder::runNet(const std::string& line) {
    const std::vector<std::string> w = wordsOf(line);
    std::size_t i = 2;
    const bool noted = !(i < w.size() && w[i] == "unnoted");
    if (!noted) ++i;
    Net* net = addNet(w[1], noted);
    for (; i < w.size(); ++i) {
        const std::size_t slash = w[i].rfind('/');
        addNetPin(net, w[i].substr(0, slash), std::stoi(w[i].substr(slash + 1)));
    }
}

}  // namespace testsupport
