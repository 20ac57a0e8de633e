#include "foundation/OxAutoLock.h"

#include <utility>

OxAutoLock::OxAutoLock(OxSharedPtr<OxLockAbstract> lock) : m_keptAlive(std::move(lock)), m_lock(m_keptAlive.get()) {
  if (m_lock != nullptr) m_lock->Lock();
}

OxAutoLock::OxAutoLock(OxLockAbstract* lock) : m_lock(lock) {
  if (m_lock != nullptr) m_lock->Lock();
}

OxAutoLock::~OxAutoLock() {
  if (m_lock != nullptr) m_lock->Unlock();
}
