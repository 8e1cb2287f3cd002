#pragma once
// How finished frames reach the screen. Cairo draws on the processor either way; the difference is
// how the pixels travel and what paces the loop:
//  - framebuffer: cairo draws straight into the window's own pixels and only the changed boxes go to
//    the display server. No graphics driver is loaded; a timer paces the loop.
//  - gl: the pixels are uploaded (changed boxes only) into a texture of an accelerated renderer, which
//    presents with vsync, so the display's vertical blank paces the loop.
// GL is chosen only where the system's OpenGL driver runs on a graphics card: a software driver would
// spend more of the processor than the framebuffer does. ZINDLEBOP_PRESENT=gl or =framebuffer decides
// instead.
#include <optional>
#include <string>
#include <string_view>

namespace zb {

enum class PresentPath { framebuffer, gl };

inline constexpr const char* kPresentVariable = "ZINDLEBOP_PRESENT";

// The path a ZINDLEBOP_PRESENT value asks for; nothing for an empty or unset value, and nothing with
// `complaint` set for one that names no path.
std::optional<PresentPath> requestedPresentPath(const char* value, std::string& complaint);

// True for the OpenGL renderer strings of drivers that draw on the processor (llvmpipe, softpipe,
// swrast), or an unknown renderer.
bool isSoftwareGlRenderer(std::string_view rendererString);

// Whether the machine has a graphics device that a hardware OpenGL driver could use; without one,
// asking the driver is not worth loading it.
bool hasGraphicsDevice();

}  // namespace zb
