// many_clips CLIP...: reads every picture of many clips, with a few threads that take one clip after the other. The
// clips share the library's pool of caches, so memory does not grow with their number.
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "stream/MXFStream.h"

namespace {

constexpr unsigned int kPicture = 1;  // its element number in a content package
constexpr std::size_t kThreads = 4;

// Each clip is opened, read and let go by one thread; nothing is shared but what the library shares by itself.
std::string Report(const char* path) {
  MXFStream clip(CreateOxString(path));
  const unsigned int status = clip.Parse();
  if (status != kStatusOK) return std::string(path) + ": " + StatusText(status);

  std::vector<unsigned char> buffer;
  unsigned long long bytes = 0;
  for (unsigned int editUnit = 0; editUnit < clip.Duration(); ++editUnit) {
    const _OxRange range = clip.RangeEssenceData(editUnit, kPicture);
    if (buffer.size() < range.length) buffer.resize(range.length);
    bytes += clip.ReadEssenceData(editUnit, kPicture, buffer.data(), static_cast<unsigned int>(buffer.size()));
  }
  return std::string(path) + ": " + std::to_string(clip.Duration()) + " pictures, " + std::to_string(bytes) + " bytes";
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<const char*> paths(argv + 1, argv + argc);
  std::vector<std::string> reports(paths.size());
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < paths.size(); i = next++) reports[i] = Report(paths[i]);
  };

  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) threads.emplace_back(work);
  for (std::thread& thread : threads) thread.join();
  for (const std::string& report : reports) std::puts(report.c_str());
  return 0;
}
