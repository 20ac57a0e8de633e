#ifndef CLIPPARSER_CLIPINFO_CLIPLIST_H
#define CLIPPARSER_CLIPINFO_CLIPLIST_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

// The header takes longer to compile than most sources here; those that define options include it.
namespace CLI {
class App;
}

// The clips that a command works on, several at a time.
struct ClipList {
  std::vector<std::string> paths;  // files, or directories that are walked for *.mxf
  unsigned int jobs = 1;

  // Adds CLIP... and -j,--jobs N.
  void DefineOn(CLI::App& command);
};

// The clips of the list: files as they were named, those of a directory in the order of their paths. A directory that
// holds none stands for itself, so that it fails by its name.
[[nodiscard]] std::vector<std::string> ListClips(const std::vector<std::string>& paths);

// Works on one clip: prints to `out`, tells faults on `fault`, returns an exit status.
using ClipTask = std::function<int(std::ostream& out, std::ostream& fault, const std::string& path)>;

// What is printed before the first clip's output, between two clips and after the last one.
struct Frame {
  std::string head;
  std::string separator;
  std::string tail;
};

// Works on each clip, `jobs` at a time. What is printed comes in the list's order, whichever ends first; the greatest
// exit status is returned.
[[nodiscard]] int ForEachClip(const ClipList& list, const ClipTask& task, const Frame& frame = {});

#endif  // CLIPPARSER_CLIPINFO_CLIPLIST_H
