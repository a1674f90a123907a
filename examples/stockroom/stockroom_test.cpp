// The application on a simulated device: what a person at the shelf does, hears and finds.
//
// usage: stockroom_test [NAME]; without a name all tests run.
#include "stockroom.h"

#include <palsim/device.h>

#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const char* const kCodes = "\\Program Files\\codes.txt";
const char* const kItems = "\\Program Files\\items.txt";
const char* const kMessages = "\\Program Files\\messages.txt";

void Begin(palsim::Device& device, const std::string& codes) {
  device.WriteFile(kCodes, codes);
  device.Run("stockroom", &stockroom::Run);
}

void RequireFile(const palsim::Device& device, const char* file, const std::string& content) {
  const std::string found = device.ReadFile(file);
  if (found != content) throw std::runtime_error(std::string(file) + " has: " + found);
}

void GoodRead() {
  palsim::Device device;
  Begin(device, "4006381333931\n");
  device.Play(R"(
    expect engine power is on
    press button 5
    expect engine trigger is pulled
    wait until audio sound begins *goodread.wav *
    expect file *items.txt written* at 80 ms
    expect audio sound begins *goodread.wav * after 0 ms
    expect engine trigger is released
  )");
  RequireFile(device, kItems, "4006381333931\r\n");
  device.Finish();
}

void BadRead() {
  palsim::Device device;
  Begin(device, "\n4006381333931\n");
  device.Play(R"(
    press button 5
    wait 1 s
    expect 1 times audio sound begins *badread.wav *
    expect no audio sound begins *goodread.wav *
    press button 5
    wait 1 s
    expect 1 times audio sound begins *goodread.wav *
  )");
  RequireFile(device, kItems, "4006381333931\r\n");
  device.Finish();
}

void ReleasedKeyReadsNothing() {
  palsim::Device device;
  Begin(device, "4006381333931\n4003994155486\n");
  device.Play(R"(
    press button 5
    wait 1 s
    release button 5
    wait 1 s
  )");
  RequireFile(device, kItems, "4006381333931\r\n");
  device.Finish();
}

void KeyOfTheSettings() {
  palsim::Device device;
  device.Play(R"(
    set HKCU\Software\Stockroom\Key = 6
    expect button 6 signals nothing
  )");
  Begin(device, "4006381333931\n");
  device.Play(R"(
    expect button 6 signals DeltaLeftScan, StateLeftScan
    expect button 5 signals nothing
    press button 6
    wait 1 s
  )");
  RequireFile(device, kItems, "4006381333931\r\n");
  device.Finish();
}

void KeyThatTheDeviceLacks() {
  palsim::Device device;
  device.Play(R"(set HKCU\Software\Stockroom\Key = 4)");
  Begin(device, "");
  device.Play("expect stockroom returned 1");
  RequireFile(device, kMessages, "Key 4 cannot scan (0x83ED0007).\r\n");
  device.Finish();
}

void MissingLibrary() {
  palsim::Device device;
  device.Play("stockroom starts\nfail call 1 of LoadLibraryW with error 126");
  Begin(device, "");
  device.Play("expect stockroom returned 1");
  RequireFile(device, kMessages,
              "DVLORQPAL.dll cannot be loaded (error 126). Install it in \\Windows, or beside this "
              "program.\r\n");
  device.Finish();
}

void MissingEngine() {
  palsim::Device device;
  device.Play("no driver SCD1:");
  Begin(device, "4006381333931\n");
  device.Play(R"(
    press button 5
    wait 1 s
    expect 1 times audio sound begins *badread.wav *
  )");
  if (device.HasFile(kItems)) throw std::runtime_error("an item was listed");
  device.Finish();
}

// Ten minutes on the device take no time here.
void IdleEnd() {
  palsim::Device device;
  Begin(device, "");
  device.Play(R"(
    wait for stockroom
    expect stockroom returned 0
    expect engine power is off
  )");
  if (device.now_ms() != 600000) throw std::runtime_error("it did not wait for ten minutes");
  device.Finish();
}

struct Test {
  const char* name;
  void (*run)();
};

const Test kTests[] = {
    {"good_read", &GoodRead},
    {"bad_read", &BadRead},
    {"released_key_reads_nothing", &ReleasedKeyReadsNothing},
    {"key_of_the_settings", &KeyOfTheSettings},
    {"key_that_the_device_lacks", &KeyThatTheDeviceLacks},
    {"missing_library", &MissingLibrary},
    {"missing_engine", &MissingEngine},
    {"idle_end", &IdleEnd},
};

bool Passes(const Test& test) try {
  test.run();
  return true;
} catch (const std::exception& error) {
  std::cerr << test.name << ": " << error.what() << '\n';
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  int run = 0;
  int failed = 0;
  for (const Test& test : kTests) {
    if (count > 1 && arguments[1] != std::string(test.name)) continue;
    ++run;
    if (!Passes(test)) ++failed;
  }
  std::cout << run - failed << " passed, " << failed << " failed\n";
  return run == 0 || failed > 0 ? 1 : 0;
}
