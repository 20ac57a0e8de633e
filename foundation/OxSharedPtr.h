#ifndef CLIPPARSER_FOUNDATION_OXSHAREDPTR_H
#define CLIPPARSER_FOUNDATION_OXSHAREDPTR_H

#include <cstddef>
#include <utility>

#include "foundation/Export.h"
#include "foundation/OxObject.h"

// The pointer that owns the library's objects. The count lives in the pointee (OxObject); each non-empty pointer holds
// one count, and the last one deletes the pointee through its virtual destructor.
//
// Threads: two threads may hold pointers to one object and drop them at any time; one pointer object must not be
// assigned from two threads at once.
template <class T>
class CLIPPARSER_EXPORT OxSharedPtr {
 public:
  OxSharedPtr() noexcept = default;
  // Takes an object straight from `new`; null gives an empty pointer.
  OxSharedPtr(T* pointee) noexcept : m_pointee(pointee) { RetainPointee(); }
  // Shares, or takes over, what `other` points to.
  OxSharedPtr(const OxSharedPtr& other) noexcept : m_pointee(other.m_pointee) { RetainPointee(); }
  OxSharedPtr(OxSharedPtr&& other) noexcept : m_pointee(std::exchange(other.m_pointee, nullptr)) {}
  virtual ~OxSharedPtr() { Reset(); }

  // The new pointee is counted before the old one is let go, so assigning a pointer to itself is safe.
  OxSharedPtr& operator=(const OxSharedPtr& other) noexcept {
    OxSharedPtr counted(other);
    std::swap(m_pointee, counted.m_pointee);
    return *this;
  }
  OxSharedPtr& operator=(OxSharedPtr&& other) noexcept {
    OxSharedPtr taken(std::move(other));
    std::swap(m_pointee, taken.m_pointee);
    return *this;
  }

  // Lets the pointee go; the pointer is empty afterwards.
  void Reset() noexcept {
    T* pointee = std::exchange(m_pointee, nullptr);
    if (pointee != nullptr && AsObject(pointee)->Release() < 1) delete pointee;
  }

  // Up-, down- and cross-casts by run-time type: empty when the pointee is not a U.
  template <class U>
  operator OxSharedPtr<U>() const noexcept {
    return OxSharedPtr<U>(dynamic_cast<U*>(m_pointee));
  }

  // The object, still owned by the pointers to it; null when empty.
  T* get() const noexcept { return m_pointee; }
  T* operator->() const noexcept { return m_pointee; }
  T& operator*() const noexcept { return *m_pointee; }
  explicit operator bool() const noexcept { return m_pointee != nullptr; }

 private:
  // The count is reached through the OxObject part, wherever that lies in the pointee.
  static OxObject* AsObject(T* pointee) noexcept { return pointee; }
  void RetainPointee() noexcept {
    if (m_pointee != nullptr) AsObject(m_pointee)->Retain();
  }

  T* m_pointee = nullptr;
};

// Two pointers are equal when they point to the same object.
template <class T, class U>
bool operator==(const OxSharedPtr<T>& a, const OxSharedPtr<U>& b) noexcept {
  return a.get() == b.get();
}
template <class T, class U>
bool operator!=(const OxSharedPtr<T>& a, const OxSharedPtr<U>& b) noexcept {
  return a.get() != b.get();
}
template <class T>
bool operator==(const OxSharedPtr<T>& a, std::nullptr_t) noexcept {
  return a.get() == nullptr;
}
template <class T>
bool operator!=(const OxSharedPtr<T>& a, std::nullptr_t) noexcept {
  return a.get() != nullptr;
}
template <class T>
bool operator==(std::nullptr_t, const OxSharedPtr<T>& a) noexcept {
  return a.get() == nullptr;
}
template <class T>
bool operator!=(std::nullptr_t, const OxSharedPtr<T>& a) noexcept {
  return a.get() != nullptr;
}

#endif  // CLIPPARSER_FOUNDATION_OXSHAREDPTR_H
