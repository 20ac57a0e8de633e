#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/Fuzz.h"

// Stands in for libFuzzer where there is no clang: runs each file in the directories given, and fails when there is
// none. Options of libFuzzer's are ignored.
int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  for (const auto& path : files) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::printf("%s\n", path.c_str());  // before it runs, to be the last line when it fails
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  return files.empty() ? 1 : 0;
}
