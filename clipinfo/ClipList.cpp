#include "clipinfo/ClipList.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>
#include <iostream>
#include <sstream>
#include <thread>

#include "clipinfo/Faults.h"

namespace {

constexpr unsigned int kMostJobs = 64;

bool isClipName(const std::filesystem::path& path) {
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](unsigned char letter) {
    return static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter | 0x20 : letter);
  });
  return extension == ".mxf";
}

std::vector<std::string> ClipsIn(const std::string& directory) {
  std::vector<std::string> clips;
  std::error_code error;
  const auto options = std::filesystem::directory_options::skip_permission_denied;
  auto entry = std::filesystem::recursive_directory_iterator(directory, options, error);
  for (; !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
    std::error_code ignored;  // an entry that cannot be asked is no clip
    if (isClipName(entry->path()) && !entry->is_directory(ignored)) clips.push_back(entry->path().string());
  }
  std::sort(clips.begin(), clips.end());
  return clips;
}

struct Outcome {
  std::string out;
  std::string fault;
  int status = kExitOK;
};

Outcome WorkOn(const std::string& path, const ClipTask& task) {
  std::ostringstream out;
  std::ostringstream fault;
  Outcome outcome;
  const std::string unexpected = FaultOf([&] { outcome.status = task(out, fault, path); });
  if (!unexpected.empty()) {
    PrintFault(fault, path, unexpected);
    outcome.status = kExitFailed;
  }
  outcome.out = out.str();
  outcome.fault = fault.str();
  return outcome;
}

// Threads that take the clips in order; joined before anything they use ends.
class Workers {
 public:
  Workers(const std::vector<std::string>& clips, unsigned int count, const ClipTask& task) : m_outcomes(clips.size()) {
    for (unsigned int i = 0; i < count; ++i) {
      m_threads.emplace_back([this, &clips, &task] {
        for (std::size_t next = m_next++; next < clips.size(); next = m_next++) {
          m_outcomes[next].set_value(WorkOn(clips[next], task));
        }
      });
    }
  }
  ~Workers() {
    for (std::thread& thread : m_threads) thread.join();
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  [[nodiscard]] Outcome WaitFor(std::size_t index) { return m_outcomes[index].get_future().get(); }

 private:
  std::vector<std::promise<Outcome>> m_outcomes;
  std::atomic<std::size_t> m_next{0};
  std::vector<std::thread> m_threads;
};

}  // namespace

void ClipList::DefineOn(CLI::App& command) {
  command.add_option("CLIP", paths, "MXF files, or directories that are walked for them")->required()->type_name("");
  command.add_option("-j,--jobs", jobs, "Work on N clips at a time, at most 64")
      ->check(CLI::Range(1u, kMostJobs).description(""))
      ->type_name("N");
}

std::vector<std::string> ListClips(const std::vector<std::string>& paths) {
  std::vector<std::string> clips;
  for (const std::string& path : paths) {
    std::error_code ignored;
    std::vector<std::string> found;
    if (std::filesystem::is_directory(path, ignored)) found = ClipsIn(path);
    if (found.empty()) found.push_back(path);
    clips.insert(clips.end(), found.begin(), found.end());
  }
  return clips;
}

int ForEachClip(const ClipList& list, const ClipTask& task, const Frame& frame) {
  const std::vector<std::string> clips = ListClips(list.paths);
  const auto count = static_cast<unsigned int>(std::min<std::size_t>(list.jobs, clips.size()));
  Workers workers(clips, count, task);
  int status = kExitOK;
  for (std::size_t i = 0; i < clips.size(); ++i) {
    const Outcome outcome = workers.WaitFor(i);
    std::cout << (i == 0 ? frame.head : frame.separator) << outcome.out << std::flush;
    std::cerr << outcome.fault;
    status = std::max(status, outcome.status);
  }
  if (std::cout << frame.tail << std::flush) return status;
  PrintFault(std::cerr, "standard output", "cannot be written");
  return std::max(status, kExitFailed);
}
