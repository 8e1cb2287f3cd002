#pragma once
// Helpers for driving the headless runner from tests with string streams.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "headless/headless_driver.hpp"

namespace zb::test {

// Members keep their written order, so tests can check the order of keys too.
using Json = nlohmann::ordered_json;

inline std::vector<std::string> keysOf(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& member : object.items()) keys.push_back(member.key());
  return keys;
}

struct HeadlessRun {
  int status = -1;
  std::string out;
  std::string err;

  // The dumps printed, one a line, parsed; a malformed one throws, failing the calling test.
  std::vector<Json> dumps() const {
    std::vector<Json> result;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);) result.push_back(Json::parse(line));
    return result;
  }
};

// Options that never depend on the machine: a fixed seed, and no sound folders unless a test adds some.
inline HeadlessOptions quietOptions(uint64_t seed = 7) {
  HeadlessOptions options;
  options.seed = seed;
  options.resourceFolder = options.fallbackFolder = "";
  return options;
}

inline HeadlessRun runScript(const std::string& script, const HeadlessOptions& options = quietOptions()) {
  std::istringstream in(script);
  std::ostringstream out, err;
  const int status = runHeadless(options, in, out, err);
  return {status, out.str(), err.str()};
}

// A fresh empty folder under the system's temporary folder, removed with the object.
class TempFolder {
 public:
  explicit TempFolder(const std::string& name)
      : path_(std::filesystem::temp_directory_path() / (name + "-" + std::to_string(::getpid()))) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }
  // A file that is not really audio, under the folder (which may name subfolders).
  std::filesystem::path touch(const std::string& name) const {
    std::filesystem::create_directories((path_ / name).parent_path());
    std::ofstream(path_ / name) << "not really audio";
    return path_ / name;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace zb::test
