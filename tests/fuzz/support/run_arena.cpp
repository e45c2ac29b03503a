// Linked ahead of the converter's library, this definition of
// allocateForRun takes the place of design/run_lifetime.cpp in the targets.
#include "support/run_arena.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "containers/text_string.h"
#include "design/net.h"
#include "design/run_lifetime.h"

namespace {

struct RunObject {
    void* storage;
    std::size_t size;
    std::size_t alignment;
};

std::vector<RunObject>& runObjects() {
    static std::vector<RunObject> objects;
    return objects;
}

// The converter makes three kinds of run objects; their sizes tell them apart.
static_assert(sizeof(Net) != sizeof(NetPin) && sizeof(Net) != sizeof(TextString) &&
                  sizeof(NetPin) != sizeof(TextString),
              "run objects are told apart by their size");

void destroy(const RunObject& object) {
    if (object.size == sizeof(Net)) {
        static_cast<Net*>(object.storage)->~Net();
    } else if (object.size == sizeof(NetPin)) {
        static_cast<NetPin*>(object.storage)->~NetPin();
    } else if (object.size == sizeof(TextString)) {
        static_cast<TextString*>(object.storage)->~TextString();
    } else {
        std::fprintf(stderr, "fuzz harness: a run object of %zu bytes has no known kind\n", object.size);
        std::abort();
    }
}

}  // namespace

void* allocateForRun(std::size_t size, std::size_t alignment) {
    void* storage = ::operator new(size, std::align_val_t(alignment));
    runObjects().push_back({storage, size, alignment});
    return storage;
}

namespace fuzzing {

void releaseRunObjects() {
    for (const RunObject& object : runObjects()) destroy(object);
    for (const RunObject& object : runObjects()) ::operator delete(object.storage, std::align_val_t(object.alignment));
    runObjects().clear();
}

}  // namespace fuzzing
