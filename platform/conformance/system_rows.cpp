#include <cstdarg>

#include "platform/conformance/rows.h"

namespace conformance {
namespace {

// What _vsnprintf makes of 8 characters of room, and what it leaves in the room.
void AddFormatted(Answer& answer, const char* format, ...) {
  char room[10] = ".........";
  va_list arguments;
  va_start(arguments, format);
  const int written = _vsnprintf(room, 8, format, arguments);
  va_end(arguments);
  answer.Add("%d '%s'", written, room);
}

void LoadMissing(Answer& answer) {
  for (const WCHAR* name : {TEXT("none_such.dll"), TEXT("\\none such\\none_such.dll")}) {
    SetLastError(0);
    answer.Add("%d", LoadLibraryW(name) != nullptr);
    answer.Add("error %d", GetLastError());
  }
}

void LoadTwice(Answer& answer) {
  const HMODULE first = LoadLibraryW(TEXT("coredll.dll"));
  const HMODULE second = LoadLibraryW(TEXT("COREDLL"));
  answer.Add("same %d", first == second);
  FreeLibrary(second);
  FreeLibrary(first);
}

void LoadFromElsewhere(Answer& answer) {
  const HMODULE first = LoadLibraryW(TEXT("coredll.dll"));
  const HMODULE second = LoadLibraryW(TEXT("\\Program Files\\coredll.dll"));
  answer.Add("same %d", first == second);
  if (second != nullptr) FreeLibrary(second);
  FreeLibrary(first);
}

void FindMissingEntry(Answer& answer) {
  const HMODULE coredll = LoadLibraryW(TEXT("coredll.dll"));
  SetLastError(0);
  answer.Add("%d", GetProcAddressW(coredll, TEXT("NoneSuch")) != nullptr);
  answer.Add("error %d", GetLastError());
  FreeLibrary(coredll);
}

// From 8-bit text to UTF-16 and back. 0xE9 is a letter of Latin-1; 0x416 is none.
void ConvertText(Answer& answer) {
  WCHAR wide[8] = {};
  answer.Add("%d", mbstowcs(wide, "a\xE9", 8));
  answer.Add("%x %x", wide[0], wide[1]);
  char narrow[8] = {};
  answer.Add("%d", wcstombs(narrow, TEXT("a\x0416z"), 8));
  answer.Add("%x", static_cast<unsigned char>(narrow[1]));
}

// Gives the text a buffer of its very length, and one that is a unit shorter. The length is in
// bytes; there is room for one in units.
void ReadSystemText(Answer& answer, UINT action) {
  constexpr UINT kBytes = 260;
  WCHAR text[kBytes + 1] = {};
  const BOOL read = SystemParametersInfoW(action, kBytes, text, 0);
  answer.Add("%d some %d", read, text[0] != WCHAR{});
  const auto length = static_cast<UINT>(wcslen(text) * sizeof(WCHAR));
  answer.Add("exact %d", SystemParametersInfoW(action, length + sizeof(WCHAR), text, 0));
  SetLastError(0);
  answer.Add("short %d", SystemParametersInfoW(action, length, text, 0));
  answer.Add("error %d", GetLastError());
}

void ReadVersion(Answer& answer) {
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof(version);
  answer.Add("%d", GetVersionExW(&version));
  answer.Add("platform %d major %d", version.dwPlatformId, version.dwMajorVersion);
}

// A platform may play a sound of its own for a file that is missing: the volume is 0 meanwhile.
void PlayMissingSound(Answer& answer) {
  DWORD volume = 0;
  if (waveOutGetVolume(nullptr, &volume) != 0 || waveOutSetVolume(nullptr, 0) != 0) {
    answer.Add("no volume");
    return;
  }
  answer.Add("%d", PlaySoundW(TEXT("\\none such.wav"), nullptr, SND_FILENAME));
  waveOutSetVolume(nullptr, volume);
}

void ReadGain(Answer& answer) {
  constexpr UINT kGetGain = 0x114;
  constexpr uintptr_t kCodec = 2;
  DWORD gain = 0;
  answer.Add("%d", waveInMessage(nullptr, kGetGain, kCodec, reinterpret_cast<uintptr_t>(&gain)));
}

void StopNoSound(Answer& answer) {
  answer.Add("%d", PlaySoundW(nullptr, nullptr, 0));
}

void SetMissingLed(Answer& answer) {
  NLED_SETTINGS_INFO settings{};
  settings.LedNum = 200;
  answer.Add("%d", NLedSetDevice(NLED_SETTINGS_INFO_ID, &settings));
}

void AskMissingLed(Answer& answer) {
  NLED_SUPPORTS_INFO supports{};
  supports.LedNum = 200;
  answer.Add("%d", NLedGetDeviceInfo(NLED_SUPPORTS_INFO_ID, &supports));
}

void AcquireMissingKeySet(Answer& answer) {
  HCRYPTPROV provider = 0;
  SetLastError(0);
  const BOOL acquired =
      CryptAcquireContextW(&provider, TEXT("DVLORQPALcheck"), nullptr, PROV_RSA_FULL, 0);
  answer.Add("%d error %x", acquired, acquired ? 0 : GetLastError());
  if (acquired) CryptReleaseContext(provider, 0);
}

constexpr Row kSystemRows[] = {
    {"module: load a missing one", Basis::kDocumented, &LoadMissing},
    {"module: load by two spellings", Basis::kDocumented, &LoadTwice},
    {"module: load the same file name from a folder without it", Basis::kDocumented,
     &LoadFromElsewhere},
    {"module: find a missing entry", Basis::kDocumented, &FindMissingEntry},
    {"text: _vsnprintf of 8-bit and wide text", Basis::kDocumented,
     [](Answer& answer) { AddFormatted(answer, "%s %ls|", "ab", TEXT("cd")); }},
    {"text: _vsnprintf of a text that just fits", Basis::kDocumented,
     [](Answer& answer) { AddFormatted(answer, "%s", "12345678"); }},
    {"text: _vsnprintf of a text that does not fit", Basis::kDocumented,
     [](Answer& answer) { AddFormatted(answer, "%s", "123456789"); }},
    {"text: _vsnprintf of a padded number", Basis::kDocumented,
     [](Answer& answer) { AddFormatted(answer, "%08X", 0xABCDU); }},
    {"text: conversion of other letters", Basis::kChosen, &ConvertText},
    {"system: platform type", Basis::kChosen,
     [](Answer& answer) { ReadSystemText(answer, SPI_GETPLATFORMTYPE); }},
    {"system: OEM information", Basis::kChosen,
     [](Answer& answer) { ReadSystemText(answer, SPI_GETOEMINFO); }},
    {"system: version", Basis::kDocumented, &ReadVersion},
    {"system: the process has a number", Basis::kDocumented,
     [](Answer& answer) { answer.Add("%d", GetCurrentProcessId() != 0); }},
    {"sound: play a missing file", Basis::kDocumented, &PlayMissingSound},
    {"sound: stop where none plays", Basis::kChosen, &StopNoSound},
    {"sound: read the gain", Basis::kChosen, &ReadGain},
    {"LED: set one that is not there", Basis::kChosen, &SetMissingLed},
    {"LED: ask for one that is not there", Basis::kChosen, &AskMissingLed},
    {"cryptography: a missing key set", Basis::kDocumented, &AcquireMissingKeySet},
};

}  // namespace

std::span<const Row> SystemRows() {
  return kSystemRows;
}

}  // namespace conformance
