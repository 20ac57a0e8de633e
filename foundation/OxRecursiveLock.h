#ifndef CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H
#define CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H

#include <atomic>
#include <mutex>
#include <thread>

#include "foundation/OxLockAbstract.h"

// A recursive mutex: the thread that holds it may lock it again and must unlock it as often.
//
// A plain mutex and a note of who holds it: cheaper than std::recursive_mutex, because only the holder looks at the
// depth, and because it can be inlined.
class CLIPPARSER_EXPORT OxRecursiveLock : public OxLockAbstract {
 public:
  OxRecursiveLock();
  ~OxRecursiveLock() override;

  void Lock() override {
    const std::thread::id self = std::this_thread::get_id();
    if (m_holder.load(std::memory_order_relaxed) != self) {
      m_mutex.lock();
      m_holder.store(self, std::memory_order_relaxed);
    }
    ++m_depth;
  }
  void Unlock() override {
    if (--m_depth > 0) return;
    m_holder.store(std::thread::id(), std::memory_order_relaxed);
    m_mutex.unlock();
  }
  // Takes the lock unless another thread holds it; true when it was taken.
  [[nodiscard]] bool TryLock();

  // Holds a lock for the life of a scope, as OxAutoLock does, for a lock that is just that and no derived one: without
  // a virtual call.
  class Hold {
   public:
    // Takes the lock, waiting for it. The caller must keep the lock alive.
    explicit Hold(OxRecursiveLock& lock) : m_lock(lock) { m_lock.OxRecursiveLock::Lock(); }
    ~Hold() { m_lock.OxRecursiveLock::Unlock(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    OxRecursiveLock& m_lock;
  };

 private:
  std::mutex m_mutex;
  // Set and cleared by the thread that holds the mutex. Whatever value another thread sees, it never is that thread's
  // own, so that relaxed reads decide right.
  std::atomic<std::thread::id> m_holder{};
  unsigned int m_depth = 0;  // guarded by the mutex
};

#endif  // CLIPPARSER_FOUNDATION_OXRECURSIVELOCK_H
