#include "tests/support/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<unsigned long long> s_count{0};

}  // namespace

unsigned long long AllocationCount() { return s_count; }

// The other forms, for arrays and without exceptions, come down to these.
void* operator new(std::size_t size) {
  ++s_count;
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
