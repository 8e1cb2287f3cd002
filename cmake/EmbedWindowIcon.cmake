# Writes the window icon's PNG into a C++ source as bytes, so the running game shows the installed
# icon wherever it was moved to. Run with -DPNG=<file> -DOUTPUT=<source>.
file(READ "${PNG}" bytes HEX)
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
string(REGEX REPLACE "((0x..,){16})" "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "// Made at build time from the icon source; not to be edited.
#include \"platform_sdl/window_identity.hpp\"

namespace zb {

const unsigned char kWindowIconPng[] = {
${bytes}
};
const std::size_t kWindowIconPngSize = sizeof(kWindowIconPng);

}  // namespace zb
")
