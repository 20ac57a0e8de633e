#ifndef CLIPPARSER_FOUNDATION_OXOBJECT_H
#define CLIPPARSER_FOUNDATION_OXOBJECT_H

#include <atomic>

#include "foundation/Export.h"

class OxStringMac;
template <class T>
class OxSharedPtr;

// The base of every class of the library: a reference count, counted by OxSharedPtr, and a rendering as text.
// Classes that combine several bases inherit it virtually, so that each object has exactly one count.
//
// Ownership: an object made with `new` starts with a count of 0 and is wrapped in an OxSharedPtr at once. An object on
// the stack or inside another one must never be wrapped: the last pointer would delete it.
// Threads: the count is changed atomically; nothing else of an object is synchronised unless its class says so.
class CLIPPARSER_EXPORT OxObject {
 public:
  OxObject() noexcept;
  // A copy is an object of its own, with no pointers to it yet: the count is never copied.
  OxObject(const OxObject&) noexcept;
  virtual ~OxObject();

  // A rendering for people. The base returns a generic text that nothing relies on.
  virtual OxSharedPtr<OxStringMac> Description();

  virtual OxObject& operator=(const OxObject&);

  // Used by OxSharedPtr. Release returns the count after the decrement; the caller deletes the object when it is
  // below 1.
  void Retain() noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }
  [[nodiscard]] int Release() noexcept { return m_count.fetch_sub(1, std::memory_order_acq_rel) - 1; }
  // The number of pointers that hold the object now.
  [[nodiscard]] int ReferenceCount() const noexcept { return m_count.load(std::memory_order_relaxed); }

 private:
  std::atomic<int> m_count{0};
};

#endif  // CLIPPARSER_FOUNDATION_OXOBJECT_H
