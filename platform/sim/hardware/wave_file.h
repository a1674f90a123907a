// Wave files: what a sound driver needs to know about one.
#ifndef PLATFORM_SIM_HARDWARE_WAVE_FILE_H_
#define PLATFORM_SIM_HARDWARE_WAVE_FILE_H_

#include <cstdint>
#include <optional>
#include <span>

namespace sim {

// Uncompressed samples. They refer to the file's bytes.
struct WaveFile {
  std::uint16_t channels = 0;
  std::uint32_t samples_per_second = 0;
  std::uint16_t bits_per_sample = 0;
  std::span<const std::uint8_t> samples;

  // Rounded up to whole milliseconds.
  [[nodiscard]] std::uint32_t length_ms() const;
};

// Reads a RIFF file of the form WAVE with a chunk "fmt " and a chunk "data" behind it. nullopt
// where it is none, where a chunk up to the data ends behind the file, where the format contradicts
// itself, and for any samples but plain ones of 8 or 16 bits in one or two channels, with 1000 to
// 192000 samples a second.
[[nodiscard]] std::optional<WaveFile> ReadWaveFile(std::span<const std::uint8_t> file);

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_WAVE_FILE_H_
