#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

#include "bench/Suite.h"

namespace bench {
namespace {

using Of = Target::Of;

// Runs clipinfo to its end, its output going nowhere. Returns the processor time it took, in seconds.
double RunClipinfo(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), CLIPINFO_PATH);
  std::vector<char*> words;
  words.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t child = 0;
  const int failure = ::posix_spawn(&child, CLIPINFO_PATH, &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  struct rusage usage = {};
  if (failure != 0 || ::wait4(child, &status, 0, &usage) != child || status != 0) {
    throw std::runtime_error("clipinfo fails");
  }
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Sample WholeRun(const std::vector<std::string>& arguments) {
  return Timed([arguments] { RunClipinfo(arguments); });
}

}  // namespace

void AddProcessMeasures(Suite& suite, const Clips& clips) {
  const std::string& path = clips.b.Path();
  suite.Add({"clipinfo B, the whole process", "clipinfo --version", {Of::Cost, 7e-3}}, [path] {
    return Contest{WholeRun({"info", path}), 1, WholeRun({"--version"})};
  });
  suite.Add({"clipinfo frames B --csv, processor time", "", {Of::Cost, 50e-3}}, [path] {
    return Contest{[path] { return RunClipinfo({"frames", path, "--csv"}); }};
  });
}

}  // namespace bench
