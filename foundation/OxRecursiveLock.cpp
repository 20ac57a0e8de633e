#include "foundation/OxRecursiveLock.h"

OxRecursiveLock::OxRecursiveLock() = default;

OxRecursiveLock::~OxRecursiveLock() = default;

bool OxRecursiveLock::TryLock() {
  const std::thread::id self = std::this_thread::get_id();
  if (m_holder.load(std::memory_order_relaxed) != self) {
    if (!m_mutex.try_lock()) return false;
    m_holder.store(self, std::memory_order_relaxed);
  }
  ++m_depth;
  return true;
}
