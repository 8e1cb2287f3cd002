// Sound files that would stall every jump: far too large to be an effect, a pipe, or failing to load on
// every press.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "headless/headless_test_support.hpp"
#include "platform/mixer_sound.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

TEST(SoundLoading, HugeFilesPipesAndFailedLoadsAreRefusedWithoutHurtingOtherFiles) {
  ::setenv("SDL_AUDIODRIVER", "dummy", 1);
  auto output = MixerSoundOutput::open();
  ::unsetenv("SDL_AUDIODRIVER");
  ASSERT_NE(output, nullptr);
  const fs::path jump = fs::path(ZB_SOURCE_DIR) / "assets" / "sounds" / "jump.mp3";
  test::TempFolder folder("zb-sound-loading");
  EXPECT_TRUE(output->playEffect(jump));
  EXPECT_TRUE(output->playEffect(jump));  // again, from the cache

  fs::copy_file(jump, folder.path() / "huge.mp3");
  fs::resize_file(folder.path() / "huge.mp3", 64u << 20);  // sparse on disk
  EXPECT_FALSE(output->playEffect(folder.path() / "huge.mp3"));
  ASSERT_EQ(::mkfifo((folder.path() / "pipe.mp3").c_str(), 0600), 0);
  EXPECT_FALSE(output->playEffect(folder.path() / "pipe.mp3"));  // returns instead of waiting for a writer
  EXPECT_FALSE(output->playEffect(folder.path() / "missing.mp3"));
  EXPECT_FALSE(output->playEffect(folder.path()));

  const fs::path broken = folder.touch("click.mp3");
  EXPECT_FALSE(output->playEffect(broken));
  // Mending the file during the launch does not bring it back: it is not read again.
  fs::copy_file(jump, broken, fs::copy_options::overwrite_existing);
  EXPECT_FALSE(output->playEffect(broken));
  EXPECT_TRUE(output->playEffect(jump));
}

}  // namespace
}  // namespace zb
