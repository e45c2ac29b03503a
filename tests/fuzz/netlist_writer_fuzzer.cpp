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
#include "support/design_builder.h"
#include "support/fuzz_support.h"

namespace {

class DesignProgram {
public:
    explicit DesignProgram(FuzzedDataProvider& input) : in_(input) {}

    void run() {
        for (int step = 0; step < 200 && in_.remaining_bytes() > 0; ++step) {
            switch (in_.ConsumeIntegralInRange(0, 6)) {
                case 0: build_.addPackage(in_.ConsumeIntegralInRange(0, 40)); break;
                case 1: addComponent(); break;
                case 2:
                    if (Part* part = someComponent()) build_.addPin(part, text(8));
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

    void addComponent() {
        const std::string partKey = key();
        const std::string refdes = text(16);
        Part* part = build_.addComponent(partKey, refdes, text(24));
        part->setPackageIndex(index(design_.packages.itemCount()));
        std::string value = text(16);
        if (in_.ConsumeBool()) part->setValue(value.data());
        if (in_.ConsumeBool()) part->setPartName(text(16).c_str());
        if (in_.ConsumeBool()) part->setManufacturerPartNo(text(16).c_str());
        for (int i = 0, n = in_.ConsumeIntegralInRange(0, 10); i < n; ++i) build_.addPin(part, text(8));
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
        // The reader notes every net; a Design may hold one longer than it was told.
        const std::string name = text(40);
        nets_.push_back(build_.addNet(name, in_.ConsumeIntegralInRange(0, 7) != 0));
    }

    void addNetPin() {
        if (nets_.empty()) return;
        Net* net = nets_[in_.ConsumeIntegralInRange<std::size_t>(0, nets_.size() - 1)];
        Part* part = in_.ConsumeIntegralInRange(0, 3) != 0 ? someComponent() : nullptr;
        const std::string pinKey = part != nullptr ? part->text() : key();
        build_.addNetPin(net, pinKey, index(part != nullptr ? part->pins.itemCount() : 1));
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
    Design design_;
    testsupport::DesignBuilder build_{design_};
    std::vector<Net*> nets_;
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
