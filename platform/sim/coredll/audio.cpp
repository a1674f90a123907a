// Wave volume, codec gain and sounds. The driver has one output and one input, without handles.
#include <fmt/format.h>

#include "platform/sim/coredll/call.h"
#include "platform/sim/hardware/wave_file.h"

namespace sim {
namespace {

constexpr MMRESULT kWaveInvalidHandle = 5;      // MMSYSERR_INVALHANDLE
constexpr MMRESULT kWaveNotSupported = 8;       // MMSYSERR_NOTSUPPORTED
constexpr MMRESULT kWaveInvalidParameter = 11;  // MMSYSERR_INVALPARAM

constexpr UINT kSetGain = 0x113;
constexpr UINT kGetGain = 0x114;
constexpr uintptr_t kCodec = 2;

constexpr DWORD kLoops = SND_FILENAME | SND_ASYNC | SND_LOOP;

MMRESULT Refuse(Call& call, std::string_view what, MMRESULT result) {
  call.Misuse(what);
  return call.Fail(ERROR_INVALID_PARAMETER, result);
}

// Reads a wave file. nullopt, with the last error set, where it cannot be played.
std::optional<WaveFile> OpenWave(Call& call, std::string_view path) {
  const auto node = call.kernel().files.Find(path);
  if (node == nullptr || node->is_folder) {
    call.Fail(ERROR_FILE_NOT_FOUND);
    return std::nullopt;
  }
  std::optional<WaveFile> wave = ReadWaveFile(node->data);
  if (!wave) call.Fail(ERROR_INVALID_DATA);
  return wave;
}

// Waits until the sound has ended, or until another call stops it.
void PlayThrough(Call& call, std::string_view path, std::uint32_t length_ms,
                 const std::shared_ptr<Event>& stopped) {
  Kernel& kernel = call.kernel();
  const DWORD wait = kernel.WaitFor(call.lock(), call.thread(), stopped, length_ms);
  // It may also have been stopped at the very moment at which its time was up.
  if (wait == WAIT_OBJECT_0 || stopped->signalled()) return;
  kernel.hardware.audio.sounds.erase(call.process().id);
  call.Log(Effect::kAudio, fmt::format("sound ends {}", path));
}

BOOL Play(Call& call, std::string_view path, bool loops) {
  const std::optional<WaveFile> wave = OpenWave(call, path);
  if (!wave) return FALSE;
  const std::uint32_t length_ms = wave->length_ms();
  Kernel& kernel = call.kernel();
  kernel.StopSound(call.thread());
  const auto stopped = std::make_shared<Event>(u"", true, false);
  kernel.hardware.audio.sounds[call.process().id] = {std::string(path), stopped};
  call.Log(Effect::kAudio,
           fmt::format("sound begins {} {} ms{}", path, length_ms, loops ? ", looping" : ""));
  if (!loops) PlayThrough(call, path, length_ms, stopped);
  return TRUE;
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

MMRESULT waveOutGetVolume(HWAVEOUT output, LPDWORD volume) {
  Call call(CallId::waveOutGetVolume);
  if (call.fault() != 0) return static_cast<MMRESULT>(call.Fail(call.fault()));
  if (output != nullptr) return sim::Refuse(call, "was given a handle", sim::kWaveInvalidHandle);
  if (volume == nullptr)
    return sim::Refuse(call, "was given no address", sim::kWaveInvalidParameter);
  *volume = call.kernel().hardware.audio.levels.volume;
  return static_cast<MMRESULT>(call.Answer(*volume));
}

MMRESULT waveOutSetVolume(HWAVEOUT output, DWORD volume) {
  Call call(CallId::waveOutSetVolume, [volume](Call&) { return fmt::format("0x{:08X}", volume); });
  if (call.fault() != 0) return static_cast<MMRESULT>(call.Fail(call.fault()));
  if (output != nullptr) return sim::Refuse(call, "was given a handle", sim::kWaveInvalidHandle);
  call.kernel().hardware.audio.levels.volume = volume;
  call.Log(Effect::kAudio, fmt::format("volume 0x{:08X}", volume));
  return 0;
}

MMRESULT waveInMessage(HWAVEIN input, UINT message, uintptr_t parameter1, uintptr_t parameter2) {
  Call call(CallId::waveInMessage, [message, parameter2](Call&) {
    return message == sim::kSetGain ? fmt::format("gain {}", parameter2) : "gain asked";
  });
  if (call.fault() != 0) return static_cast<MMRESULT>(call.Fail(call.fault()));
  if (input != nullptr) return sim::Refuse(call, "was given a handle", sim::kWaveInvalidHandle);
  if ((message != sim::kSetGain && message != sim::kGetGain) || parameter1 != sim::kCodec) {
    return sim::Refuse(call, fmt::format("was given the message {:#x} for {}", message, parameter1),
                       sim::kWaveNotSupported);
  }
  std::uint32_t& gain = call.kernel().hardware.audio.levels.gain;
  if (message == sim::kSetGain) {
    gain = static_cast<std::uint32_t>(parameter2);
    call.Log(Effect::kAudio, fmt::format("gain {}", gain));
  } else if (parameter2 != 0) {
    auto& answer = *reinterpret_cast<DWORD*>(parameter2);
    answer = gain;
    return static_cast<MMRESULT>(call.Answer(answer));
  } else {
    return sim::Refuse(call, "was given no address", sim::kWaveInvalidParameter);
  }
  return 0;
}

// Without a sound and flags it stops what plays. Otherwise it plays a file once, or loops it until
// another call stops it.
BOOL PlaySoundW(LPCWSTR sound, HMODULE module, DWORD flags) {
  Call call(CallId::PlaySoundW);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (sound == nullptr && module == nullptr && flags == 0) {
    call.kernel().StopSound(call.thread());
    return TRUE;
  }
  if (sound == nullptr || module != nullptr || (flags != SND_FILENAME && flags != sim::kLoops)) {
    call.Misuse(fmt::format("was given the flags {:#x}{}{}", flags,
                            sound == nullptr ? " without a sound" : "",
                            module != nullptr ? " and a module" : ""));
    return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  }
  return sim::Play(call, sim::ToUtf8(sound), flags == sim::kLoops);
}
