// Sound files that would stall every jump: far too large to be an effect, or failing to load on
// every press.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>

#include "headless/headless_test_support.hpp"
#include "platform/mixer_sound.hpp"

namespace zb {
namespace {

namespace fs = std::filesystem;

struct DummyAudio {
  DummyAudio() { ::setenv("SDL_AUDIODRIVER", "dummy", 1); }
  ~DummyAudio() { ::unsetenv("SDL_AUDIODRIVER"); }
};

void putLittleEndian(std::ofstream& out, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.put(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// A silent 16-bit stereo WAV whose samples take `dataBytes`; the zeros are left sparse on disk.
void writeSilentWav(const fs::path& file, uint32_t dataBytes) {
  {
    std::ofstream out(file, std::ios::binary);
    out << "RIFF";
    putLittleEndian(out, 36 + dataBytes, 4);
    out << "WAVEfmt ";
    putLittleEndian(out, 16, 4);
    putLittleEndian(out, 1, 2);           // PCM
    putLittleEndian(out, 2, 2);           // channels
    putLittleEndian(out, 44100, 4);       // frames a second
    putLittleEndian(out, 44100 * 4, 4);   // bytes a second
    putLittleEndian(out, 4, 2);           // bytes a frame
    putLittleEndian(out, 16, 2);          // bits a sample
    out << "data";
    putLittleEndian(out, dataBytes, 4);
  }
  fs::resize_file(file, 44 + uintmax_t{dataBytes});
}

TEST(SoundLoading, HugeFilesPipesAndFailedLoadsAreRefusedWithoutHurtingOtherFiles) {
  DummyAudio driver;
  auto output = MixerSoundOutput::open();
  ASSERT_NE(output, nullptr);
  test::TempFolder folder("zb-sound-size");
  writeSilentWav(folder.path() / "short.wav", 4096);
  writeSilentWav(folder.path() / "huge.wav", 64u << 20);
  EXPECT_TRUE(output->playEffect(folder.path() / "short.wav"));
  EXPECT_FALSE(output->playEffect(folder.path() / "huge.wav"));
  ASSERT_EQ(::mkfifo((folder.path() / "pipe.wav").c_str(), 0600), 0);
  EXPECT_FALSE(output->playEffect(folder.path() / "pipe.wav"));  // returns instead of waiting for a writer
  const fs::path broken = folder.touch("jump.wav");
  EXPECT_FALSE(output->playEffect(broken));
  // Mending the file during the launch does not bring it back: it is not read again.
  writeSilentWav(broken, 4096);
  EXPECT_FALSE(output->playEffect(broken));
  writeSilentWav(folder.path() / "click.wav", 4096);
  EXPECT_TRUE(output->playEffect(folder.path() / "click.wav"));
}

}  // namespace
}  // namespace zb
