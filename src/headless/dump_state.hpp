#pragma once
// The headless dump: the game's state as one JSON object on one line, keys in a fixed order.
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace zb {

class GameScene;
class Preferences;
class VirtualView;

struct DumpInput {
  const GameScene& scene;
  VirtualView& view;
  Preferences& preferences;
  uint64_t frame = 0;
  std::vector<std::string> sounds;  // effects started since the previous dump
};

// Writes the object and a newline.
void writeDump(std::ostream& out, const DumpInput& input);

}  // namespace zb
