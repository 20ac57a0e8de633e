#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace {

// Each layer, and what it may include.
const std::map<std::string, std::set<std::string>> kLayers = {
    {"foundation", {"foundation"}},
    {"klv", {"foundation", "klv"}},
    {"metadata", {"foundation", "klv", "metadata"}},
    {"cache", {"foundation", "cache"}},
    {"stream", {"foundation", "klv", "metadata", "cache", "stream"}},
};

TEST(LayeringTest, IncludesPointDownOnly) {
  const std::string include = "#include \"";
  int includes = 0;
  for (const auto& [layer, allowed] : kLayers) {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(CLIPPARSER_SOURCE_DIR "/") + layer)) {
      std::ifstream file(entry.path());
      for (std::string line; std::getline(file, line);) {
        if (line.compare(0, include.size(), include) != 0) continue;
        ++includes;
        const std::string from =
            line.substr(include.size(), line.find_first_of("/\"", include.size()) - include.size());
        EXPECT_EQ(1u, allowed.count(from)) << entry.path() << ": " << line;
      }
    }
  }
  EXPECT_GT(includes, 100) << "the sources were not found";
}

}  // namespace
