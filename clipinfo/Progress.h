#ifndef CLIPPARSER_CLIPINFO_PROGRESS_H
#define CLIPPARSER_CLIPINFO_PROGRESS_H

#include <chrono>

// A line on the standard error that tells how far a command is, its rate and the time left; nothing unless that is a
// terminal. Removed at the end.
class Progress {
 public:
  explicit Progress(unsigned long long total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Another edit unit is done, which had so many bytes.
  void Step(unsigned long long bytes);

 private:
  using Clock = std::chrono::steady_clock;

  void Draw(Clock::time_point now) const;

  bool m_isShown;
  unsigned long long m_total;
  unsigned long long m_done = 0;
  unsigned long long m_bytes = 0;
  Clock::time_point m_start = Clock::now();
  Clock::time_point m_drawn = m_start;
};

#endif  // CLIPPARSER_CLIPINFO_PROGRESS_H
