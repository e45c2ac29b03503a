// Objects that live until the process ends. Nets, net pins and step names
// are made once per run and never released by their holders; they are
// allocated here so that they stay reachable (and are not mistaken for
// leaks) and are made quickly, without a heap block each.
#pragma once

#include <cstddef>
#include <new>
#include <utility>

// Raw storage that is never given back before the process ends.
void* allocateForRun(std::size_t size, std::size_t alignment);

template <typename T, typename... Args>
T* makeForRun(Args&&... args) {
    return new (allocateForRun(sizeof(T), alignof(T))) T(std::forward<Args>(args)...);
}
