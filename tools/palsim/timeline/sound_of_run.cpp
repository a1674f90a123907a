#include "tools/palsim/timeline/sound_of_run.h"

#include <algorithm>
#include <array>

#include "platform/sim/hardware/wave_file.h"

namespace palsim {
namespace {

constexpr std::size_t kChannels = 2;
constexpr std::uint32_t kFrameSize = kChannels * 2;
constexpr std::uint32_t kHeadSize = 44;
// The sizes in a WAV file have 32 bits; the first one is of all behind it.
constexpr std::uint64_t kMostFrames = (0xFFFFFFFF - (kHeadSize - 8)) / kFrameSize;
constexpr std::uint64_t kBlockFrames = 1 << 16;

using Frame = std::array<std::int32_t, kChannels>;

// A block of the sound, from one frame on.
struct Block {
  std::uint64_t begin = 0;
  std::vector<Frame> frames;

  [[nodiscard]] std::uint64_t end() const { return begin + frames.size(); }
  [[nodiscard]] Frame& At(std::uint64_t frame) {
    return frames[static_cast<std::size_t>(frame - begin)];
  }
};

std::uint64_t FrameAt(std::uint64_t time_ms) {
  return time_ms * kSoundRate / 1000;
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

void Mix(Block& block, const SoundSpan& sound, const sim::WaveFile& wave) {
  const std::uint64_t source_frames = FramesOf(wave);
  const std::uint64_t begin = FrameAt(sound.begin);
  const std::uint64_t end = std::min(FrameAt(sound.end), block.end());
  for (std::uint64_t at = std::max(begin, block.begin); at < end; ++at) {
    const std::uint64_t source = (at - begin) * wave.samples_per_second / kSoundRate;
    if (source >= source_frames && !sound.looping) return;
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      block.At(at)[channel] +=
          SampleOf(wave, static_cast<std::size_t>(source % source_frames), channel);
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

void Scale(Block& block, const std::vector<Level>& volume) {
  for (std::size_t index = 0; index < volume.size(); ++index) {
    const bool is_last = index + 1 == volume.size();
    const std::uint64_t end =
        is_last ? block.end() : std::min(FrameAt(volume[index + 1].time), block.end());
    for (std::uint64_t at = std::max(FrameAt(volume[index].time), block.begin); at < end; ++at) {
      ScaleFrame(block.At(at), volume[index].value);
    }
  }
}

void Append(std::string& bytes, std::uint32_t number, std::size_t size) {
  for (std::size_t index = 0; index < size; ++index) {
    bytes += static_cast<char>(number >> (8 * index) & 0xFF);
  }
}

std::string Head(std::uint64_t frames) {
  const auto size = static_cast<std::uint32_t>(frames * kFrameSize);
  std::string bytes = "RIFF";
  Append(bytes, kHeadSize - 8 + size, 4);
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
  return bytes;
}

std::string BytesOf(const Block& block) {
  std::string bytes;
  for (const Frame& frame : block.frames) {
    for (const std::int32_t sample : frame) {
      Append(bytes, static_cast<std::uint32_t>(std::clamp(sample, -32768, 32767)), 2);
    }
  }
  return bytes;
}

struct HeardSound {
  SoundSpan span;
  sim::WaveFile wave;
};

std::string BytesOfBlock(std::uint64_t begin, std::uint64_t end,
                         const std::vector<HeardSound>& sounds, const std::vector<Level>& volume) {
  const auto is_heard = [&](const HeardSound& sound) {
    return FrameAt(sound.span.begin) < end && FrameAt(sound.span.end) > begin;
  };
  const auto count = static_cast<std::size_t>(end - begin);
  if (std::ranges::none_of(sounds, is_heard)) return std::string(count * kFrameSize, '\0');
  Block block{begin, std::vector<Frame>(count)};
  for (const HeardSound& sound : sounds) {
    if (is_heard(sound)) Mix(block, sound.span, sound.wave);
  }
  Scale(block, volume);
  return BytesOf(block);
}

}  // namespace

RunSound WriteSoundOfRun(const Timeline& timeline, const sim::FileSystem& files,
                         const std::function<void(std::string_view bytes)>& write) {
  RunSound result;
  std::vector<HeardSound> sounds;
  for (const SoundSpan& sound : timeline.sounds) {
    const std::vector<std::uint8_t>* file = files.Read(sound.path);
    const auto wave = file != nullptr ? sim::ReadWaveFile(*file) : std::nullopt;
    if (!wave) {
      result.missing.push_back(sound.path);
    } else if (FramesOf(*wave) > 0) {
      sounds.push_back({sound, *wave});
    }
  }
  const std::uint64_t length = FrameAt(timeline.length_ms);
  const std::uint64_t frames = std::min(length, kMostFrames);
  if (frames < length) result.cut_at_ms = frames * 1000 / kSoundRate;
  write(Head(frames));
  for (std::uint64_t at = 0; at < frames; at += kBlockFrames) {
    write(BytesOfBlock(at, std::min(at + kBlockFrames, frames), sounds, timeline.volume));
  }
  return result;
}

}  // namespace palsim
