#ifndef CLIPPARSER_FOUNDATION_OXLOCKABSTRACT_H
#define CLIPPARSER_FOUNDATION_OXLOCKABSTRACT_H

#include "foundation/Export.h"
#include "foundation/OxObject.h"

// What an OxAutoLock can hold. The base locks nothing; a derived lock overrides both operations.
class CLIPPARSER_EXPORT OxLockAbstract : public virtual OxObject {
 public:
  OxLockAbstract();
  ~OxLockAbstract() override;

  // Take the lock, waiting for it, and let it go. Both do nothing in the base.
  virtual void Lock();
  virtual void Unlock();
};

#endif  // CLIPPARSER_FOUNDATION_OXLOCKABSTRACT_H
