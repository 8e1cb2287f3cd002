#pragma once
// The game installed as a user would install it, with cmake --install into a private folder, for
// tests of what lands on disk and of the installed program itself.
#include <cairo.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "e2e/child_process.hpp"
#include "headless/headless_test_support.hpp"

namespace zb::test {

namespace fs = std::filesystem;

// Runs a program found on the PATH.
inline BinaryRun runTool(std::vector<std::string> arguments, std::string_view input = {}) {
  arguments.insert(arguments.begin(), "/usr/bin/env");
  return runBinary(arguments, input);
}

inline std::string readText(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The first group of `pattern` in `text`; empty when it does not match.
inline std::string firstMatch(const std::string& text, const std::string& pattern) {
  std::smatch match;
  return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : std::string();
}

// A PNG's pixels as cairo reads them (colour multiplied by alpha); width 0 when unreadable.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> argb;
};

inline Picture readPng(const fs::path& file) {
  Picture picture;
  cairo_surface_t* image = cairo_image_surface_create_from_png(file.c_str());
  if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
    picture.width = cairo_image_surface_get_width(image);
    picture.height = cairo_image_surface_get_height(image);
    const unsigned char* data = cairo_image_surface_get_data(image);
    for (int y = 0; y < picture.height; ++y) {
      const auto* row = reinterpret_cast<const std::uint32_t*>(data + y * cairo_image_surface_get_stride(image));
      picture.argb.insert(picture.argb.end(), row, row + picture.width);
    }
  }
  cairo_surface_destroy(image);
  return picture;
}

class InstalledTree {
 public:
  explicit InstalledTree(const std::string& name) : folder_(name) {
    const BinaryRun run = runTool({"DESTDIR=" + folder_.path().string(), ZB_CMAKE, "--install", ZB_BUILD_DIR});
    installed_ = run.status == 0;
    log_ = run.out + run.err;
  }

  bool installed() const { return installed_; }
  const std::string& log() const { return log_; }
  const fs::path& folder() const { return folder_.path(); }
  // Where the prefix landed under the private folder.
  fs::path prefix() const { return folder_.path() / fs::path(ZB_INSTALL_PREFIX).relative_path(); }
  fs::path data() const { return prefix() / ZB_INSTALL_DATADIR; }

  // The application id, as the metainfo declares it; every other name must follow it.
  std::string appId() const {
    for (const auto& entry : fs::directory_iterator(data() / "metainfo")) {
      return firstMatch(readText(entry.path()), "<id>([^<]*)</id>");
    }
    return {};
  }
  fs::path metainfo() const { return data() / "metainfo" / (appId() + ".metainfo.xml"); }
  fs::path desktopEntry() const { return data() / "applications" / (appId() + ".desktop"); }
  fs::path icon(int size) const {
    const std::string folder = std::to_string(size) + "x" + std::to_string(size);
    return data() / "icons" / "hicolor" / folder / "apps" / (appId() + ".png");
  }
  // A key's value in the installed desktop entry.
  std::string desktopKey(const std::string& key) const {
    return firstMatch(readText(desktopEntry()), "(?:^|\n)" + key + "=([^\n]*)");
  }

 private:
  TempFolder folder_;
  bool installed_ = false;
  std::string log_;
};

}  // namespace zb::test
