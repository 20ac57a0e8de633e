#ifndef CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H
#define CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H

#include <mutex>

#include "foundation/OxLockAbstract.h"

// A recursive mutex: the thread that holds it may lock it again and must unlock it as often.
class CLIPPARSER_EXPORT OxRecursiveLock : public OxLockAbstract {
 public:
  OxRecursiveLock();
  ~OxRecursiveLock() override;

  void Lock() override;
  void Unlock() override;
  // Takes the lock unless another thread holds it; true when it was taken.
  [[nodiscard]] bool TryLock();

 private:
  std::recursive_mutex m_mutex;
};

#endif  // CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H
