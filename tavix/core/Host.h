#pragma once
// What the library gets from its host program: the stream and memory
// callbacks and a line printer. Every allocation of the library goes through
// the host's allocator (so the program's live-block count covers us), and
// a failed allocation throws std::bad_alloc, which the entry points turn
// into an ordinary failure result.

#include "tavix/records.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace tavix {

const TavixCallbacks& host();
void installHost(const TavixCallbacks* callbacks);

void* hostAllocate(size_t bytes); // throws std::bad_alloc
void hostRelease(void* block) noexcept;

// One line (or several) for the user, through the host's print hook.
void report(const char* format, ...) __attribute__((format(printf, 1, 2)));
void installPrintHook(void (*hook)(const char* text));

template <typename T> struct HostAllocator {
    using value_type = T;
    HostAllocator() = default;
    template <typename U> HostAllocator(const HostAllocator<U>&) noexcept {}
    T* allocate(size_t n) {
        if (n > SIZE_MAX / sizeof(T)) throw std::bad_alloc();
        return static_cast<T*>(hostAllocate(n * sizeof(T)));
    }
    void deallocate(T* p, size_t) noexcept { hostRelease(p); }
    template <typename U> bool operator==(const HostAllocator<U>&) const noexcept { return true; }
};

using Bytes = std::vector<uint8_t, HostAllocator<uint8_t>>;
using Words = std::vector<uint32_t, HostAllocator<uint32_t>>;
template <typename T> using HostVector = std::vector<T, HostAllocator<T>>;

struct HostDelete {
    template <typename T> void operator()(T* object) const noexcept {
        object->~T();
        hostRelease(object);
    }
};
template <typename T> using HostPtr = std::unique_ptr<T, HostDelete>;

template <typename T, typename... Args> HostPtr<T> makeHost(Args&&... args) {
    void* block = hostAllocate(sizeof(T));
    try {
        return HostPtr<T>(new (block) T(std::forward<Args>(args)...));
    } catch (...) {
        hostRelease(block);
        throw;
    }
}

} // namespace tavix
