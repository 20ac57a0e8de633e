#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

#include "fuzz/FuzzInput.h"

// Runs a target over the files and folders given, where there is no libFuzzer.
int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  int inputs = 0;
  const auto run = [&inputs](const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++inputs;
  };
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) run(argv[i]);
    if (!fs::is_directory(argv[i])) continue;
    for (const auto& entry : fs::directory_iterator(argv[i])) run(entry.path());
  }
  std::cout << inputs << " inputs\n";
  return inputs > 0 ? 0 : 1;
}
