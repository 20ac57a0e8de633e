#ifndef CLIPPARSER_FOUNDATION_OXAUTOLOCK_H
#define CLIPPARSER_FOUNDATION_OXAUTOLOCK_H

#include "foundation/OxLockAbstract.h"
#include "foundation/OxSharedPtr.h"

// Holds a lock for the life of a scope. Given an empty pointer it holds nothing.
//   from a shared pointer: keeps the lock object alive as well
//   from a plain pointer: the caller must keep the lock object alive; the form for locks that are members
class CLIPPARSER_EXPORT OxAutoLock {
 public:
  // Take the lock, waiting for it; the destructor lets it go.
  explicit OxAutoLock(OxSharedPtr<OxLockAbstract> lock);
  // Inlined, so that the lock of a member is taken without a virtual call.
  explicit OxAutoLock(OxLockAbstract* lock) : m_lock(lock) {
    if (m_lock != nullptr) m_lock->Lock();
  }
  ~OxAutoLock() {
    if (m_lock != nullptr) m_lock->Unlock();
  }
  OxAutoLock(const OxAutoLock&) = delete;
  OxAutoLock& operator=(const OxAutoLock&) = delete;

 private:
  OxSharedPtr<OxLockAbstract> m_keptAlive;
  OxLockAbstract* m_lock;
};

#endif  // CLIPPARSER_FOUNDATION_OXAUTOLOCK_H
