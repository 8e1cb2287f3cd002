#pragma once
// Whole files as bytes, for tests that damage a file and check what became of it.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace zb::test {

inline std::string readBytes(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeBytes(const std::filesystem::path& file, const std::string& bytes) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace zb::test
