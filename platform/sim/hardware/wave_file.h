// Wave files: what a sound driver has to know of one.
#ifndef PLATFORM_SIM_HARDWARE_WAVE_FILE_H_
#define PLATFORM_SIM_HARDWARE_WAVE_FILE_H_

#include <cstdint>
#include <optional>
#include <span>

namespace sim {

// Uncompressed samples; they stay in the file's bytes.
struct WaveFile {
  std::uint16_t channels = 0;
  std::uint32_t samples_per_second = 0;
  std::uint16_t bits_per_sample = 0;
  std::span<const std::uint8_t> samples;

  // Rounded up to whole milliseconds.
  [[nodiscard]] std::uint32_t length_ms() const;
};

// nullopt where the bytes are no RIFF file of the form WAVE with the chunks "fmt " and, behind it,
// "data"; where one of the chunks up to the data ends behind the file; where the samples are not
// plain ones of 8 or 16 bits in one or two channels at 1000 to 192000 a second; and where the
// format contradicts itself.
[[nodiscard]] std::optional<WaveFile> ReadWaveFile(std::span<const std::uint8_t> file);

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_WAVE_FILE_H_
