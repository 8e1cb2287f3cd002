#include <gtest/gtest.h>

#include "render/pango_text.hpp"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  // Label frames come from the real font, as in the game.
  zb::installPangoText();
  return RUN_ALL_TESTS();
}
