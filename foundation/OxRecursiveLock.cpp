#include "foundation/OxRecursiveLock.h"

OxRecursiveLock::OxRecursiveLock() = default;

OxRecursiveLock::~OxRecursiveLock() = default;

void OxRecursiveLock::Lock() { m_mutex.lock(); }

void OxRecursiveLock::Unlock() { m_mutex.unlock(); }

bool OxRecursiveLock::TryLock() { return m_mutex.try_lock(); }
