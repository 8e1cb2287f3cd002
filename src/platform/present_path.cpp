#include "platform/present_path.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

#include "engine/quoted_text.hpp"

namespace zb {

namespace {

// Direct rendering devices live here; a hardware GL driver needs one of them.
constexpr const char* kGraphicsDeviceFolder = "/dev/dri";

std::string lowercase(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return out;
}

}  // namespace

std::optional<PresentPath> requestedPresentPath(const char* value, std::string& complaint) {
  complaint.clear();
  if (value == nullptr || *value == '\0') return std::nullopt;
  const std::string wanted = lowercase(value);
  if (wanted == "gl") return PresentPath::gl;
  if (wanted == "framebuffer") return PresentPath::framebuffer;
  complaint = std::string(kPresentVariable) + " must be gl or framebuffer, not " + quotedForMessage(value);
  return std::nullopt;
}

bool isSoftwareGlRenderer(std::string_view rendererString) {
  const std::string name = lowercase(rendererString);
  if (name.empty()) return true;
  for (const char* software : {"llvmpipe", "softpipe", "swrast", "software rasterizer"}) {
    if (name.find(software) != std::string::npos) return true;
  }
  return false;
}

bool hasGraphicsDevice() {
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(kGraphicsDeviceFolder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("card") || name.starts_with("renderD")) return true;
  }
  return false;
}

}  // namespace zb
