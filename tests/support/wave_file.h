// Wave files of a stated length.
#ifndef TESTS_SUPPORT_WAVE_FILE_H_
#define TESTS_SUPPORT_WAVE_FILE_H_

#include <cstdint>
#include <string>

inline std::string LittleEndian(std::uint32_t number, int bytes) {
  std::string text;
  for (int at = 0; at < bytes; ++at) text += static_cast<char>(number >> (8 * at));
  return text;
}

// Silence, 16-bit mono at 8000 samples a second; with a chunk of odd length before the data.
inline std::string SilentWaveFile(std::uint32_t ms) {
  constexpr std::uint32_t kRate = 8000;
  const std::string format = LittleEndian(1, 2) + LittleEndian(1, 2) + LittleEndian(kRate, 4) +
                             LittleEndian(kRate * 2, 4) + LittleEndian(2, 2) + LittleEndian(16, 2);
  const std::string samples(std::size_t{ms} * kRate / 1000 * 2, '\0');
  const std::string chunks = "WAVEfmt " + LittleEndian(16, 4) + format + "LIST" +
                             LittleEndian(3, 4) + std::string("abc\0", 4) + "data" +
                             LittleEndian(static_cast<std::uint32_t>(samples.size()), 4) + samples;
  return "RIFF" + LittleEndian(static_cast<std::uint32_t>(chunks.size()), 4) + chunks;
}

#endif  // TESTS_SUPPORT_WAVE_FILE_H_
