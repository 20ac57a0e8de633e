#include "clipinfo/Progress.h"

#include <unistd.h>
#include <cmath>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace {

constexpr std::chrono::milliseconds kDrawEvery{100};
constexpr unsigned int kBarWidth = 30;
constexpr const char* kClearLine = "\r\033[K";

}  // namespace

Progress::Progress(unsigned long long total) : m_isShown(::isatty(STDERR_FILENO) != 0), m_total(total) {}

Progress::~Progress() {
  if (m_isShown) std::cerr << kClearLine << std::flush;
}

void Progress::Step(unsigned long long bytes) {
  ++m_done;
  m_bytes += bytes;
  if (!m_isShown) return;
  const Clock::time_point now = Clock::now();
  if (now - m_drawn < kDrawEvery) return;
  m_drawn = now;
  Draw(now);
}

// [======              ]  21 %  123/456 edit units  87.5 MB/s  ETA 00:00:12
void Progress::Draw(Clock::time_point now) const {
  const double seconds = std::chrono::duration<double>(now - m_start).count();
  const double part = static_cast<double>(m_done) / static_cast<double>(m_total);
  std::string bar(static_cast<std::size_t>(part * kBarWidth), '=');
  bar.resize(kBarWidth, ' ');
  const long long left = std::llround(seconds / part - seconds);
  std::ostringstream line;
  line << kClearLine << '[' << bar << ']' << std::fixed << std::setprecision(0) << std::setw(4) << part * 100 << " %  "
       << m_done << '/' << m_total << " edit units  " << std::setprecision(1)
       << static_cast<double>(m_bytes) / seconds / 1e6 << " MB/s  ETA " << std::setfill('0') << std::setw(2)
       << left / 3600 << ':' << std::setw(2) << left / 60 % 60 << ':' << std::setw(2) << left % 60;
  std::cerr << line.str() << std::flush;
}
