// The VRN writer over Designs built through the model's operations, as the
// readers build them and beyond: packages with pins, components with keys,
// properties, package numbers and pins, renamed components, nets and their
// pins. The input is a program of such operations. Package numbers and pin
// indexes are mostly in range; a Design whose write is meant to end the run
// through abnormalEnd() is not written, so every abort is a finding, and
// every file written must be the plain reference writer's, byte for byte.
// findByRefdes, whose index renames must keep up to date, is checked
// against a plain walk on the way.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "design/design.h"
#include "support/fuzz_support.h"

namespace {

class DesignProgram {
public:
    explicit DesignProgram(FuzzedDataProvider& input) : in_(input) {}

    void run() {
        for (int step = 0; step < 200 && in_.remaining_bytes() > 0; ++step) {
            switch (in_.ConsumeIntegralInRange(0, 6)) {
                case 0: addPackage(); break;
                case 1: addComponent(); break;
                case 2:
                    if (Part* part = someComponent()) part->pins.addItem(new PartPin("DUMMY", 0, 0, text(8).c_str()));
                    break;
                case 3: renameComponent(); break;
                case 4: addNet(); break;
                case 5: addNetPin(); break;
                case 6: design_.noteNetNameLength(in_.ConsumeIntegralInRange(-5, 80)); break;
            }
        }
        fuzzing::writeNetlist(design_, text(24));
    }

private:
    // Texts as exporters write them, or any bytes.
    std::string text(std::size_t maxLength) {
        static const char* const kTexts[] = {"",    "1",   "U1-2",    "U1", "-",  "???", "10K;1%", "GND",
                                             "a b", "T0",  "NETLIST", "B1", ";",  " ",   "U1-"};
        if (in_.ConsumeBool()) return kTexts[in_.ConsumeIntegralInRange<std::size_t>(0, std::size(kTexts) - 1)];
        return in_.ConsumeRandomLengthString(maxLength);
    }

    // "T12" as the components reader makes keys, or spellings close to them.
    std::string key() {
        static const char* const kForms[] = {"T", "B", "T", "B", "T0", "t", "T+", ""};
        const std::string form = kForms[in_.ConsumeIntegralInRange<std::size_t>(0, std::size(kForms) - 1)];
        return form + std::to_string(in_.ConsumeIntegralInRange(0, 2 * design_.components.itemCount() + 20));
    }

    std::int32_t index(std::int32_t count) {  // mostly in 0..count-1
        return in_.ConsumeIntegralInRange(0, 15) != 0 && count > 0 ? in_.ConsumeIntegralInRange(0, count - 1)
                                                                  : in_.ConsumeIntegralInRange(-2, count + 2);
    }

    Part* someComponent() {
        const std::int32_t count = design_.components.itemCount();
        return count == 0 ? nullptr : design_.components.itemAt(in_.ConsumeIntegralInRange(0, count - 1));
    }

    void addPackage() {
        Part* package = new Part(text(24).c_str());
        package->assign(design_.packages.itemCount());
        design_.packages.addPart(package);
        for (int i = in_.ConsumeIntegralInRange(0, 40); i > 0; --i) {
            package->pins.addItem(new PartPin(TextString(text(6).c_str()), 0, 0));
        }
    }

    void addComponent() {
        Part* part = new Part(nullptr);
        part->assign(key().c_str());
        std::string typeName = text(24), value = text(16);
        part->setTypeName(typeName.data());
        part->setRefdes(text(16).c_str());
        part->setPackageIndex(index(design_.packages.itemCount()));
        if (in_.ConsumeBool()) part->setValue(value.data());
        if (in_.ConsumeBool()) part->setPartName(text(16).c_str());
        if (in_.ConsumeBool()) part->setManufacturerPartNo(text(16).c_str());
        for (int i = 0, n = in_.ConsumeIntegralInRange(0, 10); i < n; ++i) {
            part->pins.addItem(new PartPin("DUMMY", i, 0, text(8).c_str()));
        }
        design_.components.addPart(part);
        checkRefdes(part->refdes.text());
    }

    // As the components reader renames a refdes taken already.
    void renameComponent() {
        Part* part = someComponent();
        if (part == nullptr) return;
        const std::string before = part->refdes.text();
        part->setRefdes(text(16).c_str());
        checkRefdes(before.c_str());
        checkRefdes(part->refdes.text());
    }

    void addNet() {
        nets_.push_back(std::make_unique<Net>(static_cast<std::int32_t>(nets_.size()), text(40).c_str()));
        // The reader notes every net; a Design may hold one longer than it was told.
        if (in_.ConsumeIntegralInRange(0, 7) != 0) design_.noteNetNameLength(nets_.back()->length());
        design_.nets.addNet(nets_.back().get());
    }

    void addNetPin() {
        if (nets_.empty()) return;
        Net& net = *nets_[in_.ConsumeIntegralInRange<std::size_t>(0, nets_.size() - 1)];
        Part* part = in_.ConsumeIntegralInRange(0, 3) != 0 ? someComponent() : nullptr;
        const TextString pinKey(part != nullptr ? part->text() : key().c_str());
        const std::int32_t pinIndex = index(part != nullptr ? part->pins.itemCount() : 1);
        pins_.push_back(std::make_unique<NetPin>(pinKey, pinIndex));
        net.addNetPin(pins_.back().get());
    }

    void checkRefdes(const char* refdes) {
        Part* first = nullptr;
        for (Part* part : design_.components) {
            if (first == nullptr && std::strcmp(part->refdes.text(), refdes) == 0) first = part;
        }
        if (design_.components.findByRefdes(TextString(refdes)) == first) return;
        std::fprintf(stderr, "findByRefdes(\"%s\") is not the first component with that refdes\n", refdes);
        std::abort();
    }

    FuzzedDataProvider& in_;
    // Declared ahead of the Design: nets and net pins are never released by
    // it, and must outlive it.
    std::vector<std::unique_ptr<Net>> nets_;
    std::vector<std::unique_ptr<NetPin>> pins_;
    Design design_;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::fflush(stdout);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    DesignProgram(input).run();
    return 0;
}
