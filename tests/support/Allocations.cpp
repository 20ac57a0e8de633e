#include "tests/support/Allocations.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<unsigned long long> s_count{0};
std::atomic<unsigned long long> s_bytes{0};
std::atomic<unsigned long long> s_mostBytes{0};

}  // namespace

unsigned long long AllocationCount() { return s_count; }

AllocationPeak::AllocationPeak() : m_before(s_bytes) { s_mostBytes = m_before; }

unsigned long long AllocationPeak::Bytes() const { return s_mostBytes - m_before; }

// Every form but those for aligned memory, since AddressSanitizer brings its own for those that are left out.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++s_count;
  void* memory = std::malloc(size > 0 ? size : 1);
  const unsigned long long bytes = s_bytes += ::malloc_usable_size(memory);
  for (unsigned long long most = s_mostBytes; bytes > most && !s_mostBytes.compare_exchange_weak(most, bytes);) {
  }
  return memory;
}
void* operator new(std::size_t size) {
  void* memory = operator new(size, std::nothrow);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return operator new(size, std::nothrow); }

void operator delete(void* memory) noexcept {
  s_bytes -= ::malloc_usable_size(memory);
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }
