// Runs a fuzz target over files, one after another: what ordinary builds do with its corpus.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int count, char** folders) {
  int files = 0;
  for (int i = 1; i < count; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(folders[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      std::fprintf(stderr, "%s\n", entry.path().c_str());
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  }
  return files != 0 ? 0 : 1;
}
