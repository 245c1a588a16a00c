#include "tests/support/allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

}  // namespace

namespace qdclgl::testing {

std::size_t Allocations() { return allocations; }

}  // namespace qdclgl::testing

#ifdef __SANITIZE_ADDRESS__

// The address sanitizer's own operators tell more than ours would; it calls this for each block.
extern "C" void __sanitizer_malloc_hook(const volatile void*, std::size_t) { ++allocations; }

#else

// The other forms of new and delete go through these.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size != 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#endif
