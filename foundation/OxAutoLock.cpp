#include "foundation/OxAutoLock.h"

#include <utility>

OxAutoLock::OxAutoLock(OxSharedPtr<OxLockAbstract> lock) : m_keptAlive(std::move(lock)), m_lock(m_keptAlive.get()) {
  if (m_lock != nullptr) m_lock->Lock();
}
