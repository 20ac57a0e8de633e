#ifndef CLIPPARSER_CACHE_USECLOCK_H
#define CLIPPARSER_CACHE_USECLOCK_H

#include <chrono>

// The time of a use, to tell which of two came later, on whatever threads they were. A clock, because it is the only
// order of use that two threads can keep without writing to memory that both of them read.
//
// Processors have a counter that all cores see alike; reading it takes less than half the time of asking for the
// standard clock.
inline unsigned long long UseTime() {
#if defined(__x86_64__) && defined(__GNUC__)
  return __builtin_ia32_rdtsc();
#else
  return static_cast<unsigned long long>(std::chrono::steady_clock::now().time_since_epoch().count());
#endif
}

#endif  // CLIPPARSER_CACHE_USECLOCK_H
