#include "platform/sim/hardware/wave_file.h"

#include <algorithm>
#include <string_view>

namespace sim {
namespace {

constexpr std::size_t kRiffHeaderBytes = 12;
constexpr std::size_t kChunkHeaderBytes = 8;
constexpr std::size_t kFormatBytes = 16;
constexpr std::uint32_t kPlainSamples = 1;
constexpr std::uint32_t kFewestSamplesPerSecond = 1000;
constexpr std::uint32_t kMostSamplesPerSecond = 192000;

using Bytes = std::span<const std::uint8_t>;

// The little-endian number that the bytes hold.
std::uint32_t Number(Bytes bytes) {
  std::uint32_t number = 0;
  for (std::size_t at = bytes.size(); at > 0; --at) number = number << 8 | bytes[at - 1];
  return number;
}

bool Holds(Bytes bytes, std::string_view text) {
  return std::ranges::equal(bytes, text, {}, {},
                            [](char character) { return static_cast<std::uint8_t>(character); });
}

std::optional<WaveFile> ReadFormat(Bytes format) {
  if (format.size() < kFormatBytes || Number(format.subspan(0, 2)) != kPlainSamples) {
    return std::nullopt;
  }
  WaveFile wave;
  wave.channels = static_cast<std::uint16_t>(Number(format.subspan(2, 2)));
  wave.samples_per_second = Number(format.subspan(4, 4));
  wave.bits_per_sample = static_cast<std::uint16_t>(Number(format.subspan(14, 2)));
  const std::uint32_t frame_bytes = std::uint32_t{wave.channels} * wave.bits_per_sample / 8;
  const bool is_known = (wave.channels == 1 || wave.channels == 2) &&
                        (wave.bits_per_sample == 8 || wave.bits_per_sample == 16) &&
                        wave.samples_per_second >= kFewestSamplesPerSecond &&
                        wave.samples_per_second <= kMostSamplesPerSecond;
  const bool is_consistent = Number(format.subspan(12, 2)) == frame_bytes &&
                             Number(format.subspan(8, 4)) == wave.samples_per_second * frame_bytes;
  return is_known && is_consistent ? std::optional(wave) : std::nullopt;
}

}  // namespace

std::uint32_t WaveFile::length_ms() const {
  const std::uint64_t bytes_per_second =
      std::uint64_t{samples_per_second} * channels * bits_per_sample / 8;
  return static_cast<std::uint32_t>((samples.size() * 1000 + bytes_per_second - 1) /
                                    bytes_per_second);
}

std::optional<WaveFile> ReadWaveFile(Bytes file) {
  if (file.size() < kRiffHeaderBytes || !Holds(file.first(4), "RIFF") ||
      !Holds(file.subspan(8, 4), "WAVE")) {
    return std::nullopt;
  }
  std::optional<WaveFile> wave;
  Bytes rest = file.subspan(kRiffHeaderBytes);
  while (rest.size() >= kChunkHeaderBytes) {
    const Bytes name = rest.first(4);
    const std::size_t bytes = Number(rest.subspan(4, 4));
    rest = rest.subspan(kChunkHeaderBytes);
    if (bytes > rest.size()) return std::nullopt;
    const Bytes chunk = rest.first(bytes);
    if (Holds(name, "fmt ")) wave = ReadFormat(chunk);
    if (Holds(name, "data")) {
      if (wave) wave->samples = chunk;
      return wave;
    }
    rest = rest.subspan(std::min(rest.size(), bytes + bytes % 2));
  }
  return std::nullopt;
}

}  // namespace sim
