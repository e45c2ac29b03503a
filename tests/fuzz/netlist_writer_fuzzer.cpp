// Fuzzes the VRN writer over Designs built through the model's operations,
// as the readers build them and beyond: packages with their pins, components
// with keys, properties, package numbers and pins, renamed components, nets
// with connections. The input is a program of such operations.
//
// Besides the file (checked by the oracle, which leaves out a write that is
// meant to end the run), the model's side indexes are checked against plain
// list walks as they are filled: findByRefdes, findPinByName and the
// duplicate rule of addNetPin.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "design/design.h"
#include "support/netlist_oracle.h"
#include "support/workspace.h"

namespace {

constexpr int kMaxOperations = 200;
constexpr int kMaxPins = 40;  // past the point where the pin lists index names

void fail(const char* what) {
    std::fprintf(stderr, "model check: %s\n", what);
    std::abort();
}

// Texts as exporters write them, or any bytes (a TextString ends at a zero).
std::string someText(FuzzedDataProvider& input, std::size_t maxLength) {
    static const char* const kTexts[] = {"",    "1",     "2",       "U1-2", "U1",       "-",   "-7",   "A1",
                                         "???", "???;x", "10K;1%",  "GND",  "R_0603",   " ",   "a b",  "NETLIST",
                                         "T0",  "B1",    "$NONE$",  ";",    "X--5",     "U1-", "\t",   "part list"};
    if (input.ConsumeBool()) return kTexts[input.ConsumeIntegralInRange<std::size_t>(0, std::size(kTexts) - 1)];
    return input.ConsumeRandomLengthString(maxLength);
}

class DesignProgram {
public:
    explicit DesignProgram(FuzzedDataProvider& input) : input_(input) {}
    ~DesignProgram() {
        // Nets and net pins are never released by the Design; this program owns them.
        for (Net* net : nets_) delete net;
        for (NetPin* pin : netPins_) delete pin;
    }

    void run() {
        for (int step = 0; step < kMaxOperations && input_.remaining_bytes() > 0; ++step) {
            switch (input_.ConsumeIntegralInRange(0, 7)) {
                case 0: addPackage(); break;
                case 1: addComponent(); break;
                case 2: renameComponent(); break;
                case 3: addNet(); break;
                case 4: addNetPin(); break;
                case 5: design_.noteNetNameLength(input_.ConsumeIntegralInRange(-5, 80)); break;
                case 6: probeRefdes(someText(input_, 16)); break;
                case 7: addComponentPin(); break;
            }
        }
        fuzzing::writeAndCheck(design_, someText(input_, 24));
    }

private:
    void addPackage() {
        Part* package = new Part(someText(input_, 24).c_str());
        package->assign(design_.packages.itemCount());
        design_.packages.addPart(package);
        const int pins = input_.ConsumeIntegralInRange(0, kMaxPins);
        for (int i = 0; i < pins; ++i) {
            TextString name(someText(input_, 6).c_str());
            // The reader keeps names unique; the model takes namesakes too.
            if (input_.ConsumeBool()) {
                while (package->pins.findPinByName(name) != nullptr) name.append("_");
            }
            package->pins.addItem(new PartPin(name, 0, 0));
            probePinName(*package, someText(input_, 6));
        }
    }

    void addComponent() {
        Part* part = new Part(nullptr);
        part->assign(componentKey().c_str());
        std::string typeName = someText(input_, 24);
        part->setTypeName(typeName.data());
        part->setRefdes(someText(input_, 16).c_str());
        const std::int32_t packages = design_.packages.itemCount();
        part->setPackageIndex(input_.ConsumeBool() && packages > 0
                                  ? input_.ConsumeIntegralInRange(0, packages - 1)
                                  : input_.ConsumeIntegralInRange(-2, packages + 2));
        if (input_.ConsumeBool()) {
            std::string value = someText(input_, 16);
            part->setValue(value.data());
        }
        if (input_.ConsumeBool()) part->setPartName(someText(input_, 16).c_str());
        if (input_.ConsumeBool()) part->setManufacturerPartNo(someText(input_, 16).c_str());
        const int pins = input_.ConsumeIntegralInRange(0, 10);
        for (int i = 0; i < pins; ++i) {
            part->pins.addItem(new PartPin("DUMMY", i, 0, someText(input_, 8).c_str()));
        }
        design_.components.addPart(part);
        probeRefdes(part->refdes.text());
    }

    // Keys as the components reader makes them ("T12"), and spellings close
    // to them that must not be taken for them ("T012", "t12", "T+12").
    std::string componentKey() {
        static const char* const kForms[] = {"T", "B", "T", "B", "T0", "B0", "t", "T+", "T-", "X", "", "T 1"};
        const char* form = kForms[input_.ConsumeIntegralInRange<std::size_t>(0, std::size(kForms) - 1)];
        const std::int32_t limit = 2 * design_.components.itemCount() + 20;
        const std::int64_t number = input_.ConsumeIntegralInRange(0, 15) != 0
                                        ? input_.ConsumeIntegralInRange<std::int64_t>(0, limit)
                                        : input_.ConsumeIntegral<std::int64_t>();
        if (input_.ConsumeIntegralInRange(0, 15) == 0) return someText(input_, 12);
        return form + std::to_string(number);
    }

    void addComponentPin() {
        const std::int32_t count = design_.components.itemCount();
        if (count == 0) return;
        Part* part = design_.components.itemAt(input_.ConsumeIntegralInRange(0, count - 1));
        if (part->pins.itemCount() < kMaxPins) {
            part->pins.addItem(new PartPin("DUMMY", 0, 0, someText(input_, 8).c_str()));
        }
    }

    // A refdes changed after the add, as the reader's renaming may do.
    void renameComponent() {
        const std::int32_t count = design_.components.itemCount();
        if (count == 0) return;
        Part* part = design_.components.itemAt(input_.ConsumeIntegralInRange(0, count - 1));
        const std::string before = part->refdes.text();
        part->setRefdes(someText(input_, 16).c_str());
        probeRefdes(before);
        probeRefdes(part->refdes.text());
    }

    void addNet() {
        const std::string name = someText(input_, 40);
        Net* net = new Net(static_cast<std::int32_t>(nets_.size()), name.c_str());
        nets_.push_back(net);
        // The reader notes every net it adds; a Design may also hold one longer
        // than it was told.
        if (input_.ConsumeIntegralInRange(0, 7) != 0) design_.noteNetNameLength(net->length());
        design_.nets.addNet(net);
    }

    void addNetPin() {
        if (nets_.empty()) return;
        Net* net = nets_[input_.ConsumeIntegralInRange<std::size_t>(0, nets_.size() - 1)];
        const std::int32_t components = design_.components.itemCount();
        TextString key;
        std::int32_t pins = 0;
        if (components > 0 && input_.ConsumeIntegralInRange(0, 3) != 0) {
            Part* part = design_.components.itemAt(input_.ConsumeIntegralInRange(0, components - 1));
            key.assign(*part);
            pins = part->pins.itemCount();
        } else {
            key.assign(componentKey().c_str());
        }
        const std::int32_t pinIndex = input_.ConsumeIntegralInRange(0, 15) != 0
                                          ? input_.ConsumeIntegralInRange(0, pins > 0 ? pins - 1 : 0)
                                          : input_.ConsumeIntegralInRange(-2, pins + 2);
        bool duplicate = false;
        for (auto* node = net->pins.head; node != nullptr; node = node->next) {
            if (node->item->pinIndex == pinIndex && std::strcmp(node->item->key.text(), key.text()) == 0) {
                duplicate = true;
            }
        }
        auto* pin = new NetPin(key, pinIndex);
        netPins_.push_back(pin);
        if ((net->addNetPin(pin) == nullptr) != duplicate) fail("addNetPin disagrees with the duplicate rule");
    }

    void probeRefdes(const std::string& refdes) {
        Part* first = nullptr;
        for (auto* node = design_.components.head; node != nullptr && first == nullptr; node = node->next) {
            if (std::strcmp(node->item->refdes.text(), refdes.c_str()) == 0) first = node->item;
        }
        if (design_.components.findByRefdes(TextString(refdes.c_str())) != first) {
            fail("findByRefdes is not the first component with that refdes");
        }
    }

    void probePinName(Part& package, const std::string& name) {
        PartPin* first = nullptr;
        for (auto* node = package.pins.head; node != nullptr && first == nullptr; node = node->next) {
            if (std::strcmp(node->item->text(), name.c_str()) == 0) first = node->item;
        }
        if (package.pins.findPinByName(name.c_str()) != first) fail("findPinByName is not the first pin of that name");
    }

    FuzzedDataProvider& input_;
    Design design_;
    std::vector<Net*> nets_;
    std::vector<NetPin*> netPins_;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzzing::silenceStandardOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    DesignProgram(input).run();
    return 0;
}
