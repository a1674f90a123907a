#include "tools/palsim/timeline/sound_of_run.h"

#include <algorithm>
#include <array>

#include "platform/sim/hardware/wave_file.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr std::size_t kChannels = 2;
constexpr std::uint64_t kLongestRunMs = 30ULL * 60 * 1000;

using Frame = std::array<std::int32_t, kChannels>;

std::size_t FrameAt(std::uint64_t time_ms) {
  return static_cast<std::size_t>(time_ms * kSoundRate / 1000);
}

// A sample as a number of 16 bits. Samples of 8 bits are unsigned.
std::int32_t SampleOf(const sim::WaveFile& wave, std::size_t frame, std::size_t channel) {
  const std::size_t bytes = wave.bits_per_sample / 8U;
  const std::size_t at =
      (frame * wave.channels + std::min<std::size_t>(channel, wave.channels - 1U)) * bytes;
  if (bytes == 1) return (wave.samples[at] - 128) * 256;
  return static_cast<std::int16_t>(wave.samples[at] | wave.samples[at + 1] << 8);
}

std::size_t FramesOf(const sim::WaveFile& wave) {
  return wave.samples.size() / (wave.channels * (wave.bits_per_sample / 8U));
}

void Mix(std::vector<Frame>& frames, const SoundSpan& sound, const sim::WaveFile& wave) {
  const std::size_t source_frames = FramesOf(wave);
  if (source_frames == 0) return;
  const std::size_t begin = FrameAt(sound.begin);
  const std::size_t end = std::min(FrameAt(sound.end), frames.size());
  for (std::size_t at = begin; at < end; ++at) {
    std::size_t source =
        static_cast<std::size_t>(std::uint64_t{at - begin} * wave.samples_per_second / kSoundRate);
    if (source >= source_frames && !sound.looping) return;
    source %= source_frames;
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      frames[at][channel] += SampleOf(wave, source, channel);
    }
  }
}

void ScaleFrame(Frame& frame, std::uint32_t volume) {
  constexpr std::int64_t kLoudest = 0xFFFF;
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    const std::int64_t half = volume >> (16 * channel) & 0xFFFF;
    frame[channel] = static_cast<std::int32_t>(frame[channel] * half / kLoudest);
  }
}

void Scale(std::vector<Frame>& frames, const std::vector<Level>& volume) {
  for (std::size_t index = 0; index < volume.size(); ++index) {
    const bool is_last = index + 1 == volume.size();
    const std::size_t end = is_last ? frames.size() : FrameAt(volume[index + 1].time);
    for (std::size_t at = FrameAt(volume[index].time); at < std::min(end, frames.size()); ++at) {
      ScaleFrame(frames[at], volume[index].value);
    }
  }
}

void Append(std::string& bytes, std::uint32_t number, std::size_t size) {
  for (std::size_t index = 0; index < size; ++index) {
    bytes += static_cast<char>(number >> (8 * index) & 0xFF);
  }
}

std::string WaveBytes(const std::vector<Frame>& frames) {
  constexpr std::uint32_t kFrameSize = kChannels * 2;
  const auto size = static_cast<std::uint32_t>(frames.size() * kFrameSize);
  std::string bytes = "RIFF";
  Append(bytes, 36 + size, 4);
  bytes += "WAVEfmt ";
  Append(bytes, 16, 4);
  Append(bytes, 1, 2);  // uncompressed
  Append(bytes, kChannels, 2);
  Append(bytes, kSoundRate, 4);
  Append(bytes, kSoundRate * kFrameSize, 4);
  Append(bytes, kFrameSize, 2);
  Append(bytes, 16, 2);
  bytes += "data";
  Append(bytes, size, 4);
  for (const Frame& frame : frames) {
    for (const std::int32_t sample : frame) {
      Append(bytes, static_cast<std::uint32_t>(std::clamp(sample, -32768, 32767)), 2);
    }
  }
  return bytes;
}

}  // namespace

RunSound SoundOfRun(const Timeline& timeline, const sim::FileSystem& files) {
  if (timeline.length_ms > kLongestRunMs) throw UsageError("the run is too long for a WAV file");
  RunSound result;
  std::vector<Frame> frames(FrameAt(timeline.length_ms));
  for (const SoundSpan& sound : timeline.sounds) {
    const std::vector<std::uint8_t>* file = files.Read(sound.path);
    const auto wave = file != nullptr ? sim::ReadWaveFile(*file) : std::nullopt;
    if (!wave) {
      result.missing.push_back(sound.path);
      continue;
    }
    Mix(frames, sound, *wave);
  }
  Scale(frames, timeline.volume);
  result.wav = WaveBytes(frames);
  return result;
}

}  // namespace palsim
