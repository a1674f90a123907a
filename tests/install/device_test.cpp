// palsim/device.h as another project has it: compiled as C++11, against the installed package.
#include <pal.h>
#include <palsim/device.h>
#include <windows.h>

#include <iostream>
#include <stdexcept>
#include <string>

namespace {

void Require(bool holds, const std::string& what) {
  if (!holds) throw std::logic_error(what);
}

void RequireIn(const std::string& text, const std::string& part) {
  Require(text.find(part) != std::string::npos, "'" + text + "' has no '" + part + "'");
}

template <class Exception, class Function>
void RequireThrown(const std::string& part, const Function& function) {
  try {
    function();
  } catch (const Exception& error) {
    return RequireIn(error.what(), part);
  }
  throw std::logic_error("nothing was thrown; expected " + part);
}

void WhatCannotBeDone() {
  using palsim::Error;
  RequireThrown<Error>("no sample device 'rm99'", [] { palsim::Device("rm99"); });
  palsim::Device device;
  RequireThrown<Error>("play:2: 'dance' is no statement", [&] { device.Play("wait 1 s\ndance"); });
  Require(device.now_ms() == 0, "a statement before the one that is not understood was played");
  RequireThrown<Error>("play:1: no process shop", [&] { device.Play("shop ends"); });
  RequireThrown<Error>("no event for button 5", [&] { device.Play("press button 5"); });
  RequireThrown<Error>("no effect 'lamp'", [&] { device.Journal("lamp"); });
  RequireThrown<Error>("no file \\none", [&] { device.ReadFile("\\none"); });
  RequireThrown<Error>("no HKLM\\Not\\There", [&] { device.ReadValue("HKLM\\Not\\There"); });
  RequireThrown<Error>("'There' is no registry value", [&] { device.ReadValue("There"); });
  RequireThrown<Error>("no file can have the path", [&] { device.WriteFile("\\..", "text"); });
  RequireThrown<Error>("'' is no name of a process", [&] { device.Run("", [] { return 0; }); });
  device.Run("shop", [] { return 0; });
  RequireThrown<Error>("it cannot be copied", [&] { device.Save("/tmp"); });
  device.Finish();
  RequireThrown<Error>("/tmp is there already", [&] { device.Save("/tmp"); });
}

void ExpectationsThatDoNotHold() {
  palsim::Device device("rx");
  RequireThrown<palsim::ExpectationFailed>(
      "play:1: expected the rotation to be 90; there was 0\nplay:2: expected the rotation to be 180",
      [&] { device.Play("expect rotation 90\nexpect rotation 180"); });
  device.Play("expect rotation 0");
  device.Run("shop", [] {
    CreateEventW(nullptr, FALSE, FALSE, TEXT("Shop"));
    return 0;
  });
  RequireThrown<palsim::ExpectationFailed>("shop.exe: left open at the end: event",
                                           [&] { device.Finish(); });
  device.Play("fail call 1 of Sleep with error 5");
  RequireThrown<palsim::ExpectationFailed>("not reached: Sleep:1", [&] { device.Finish(); });
  device.Finish();
}

void FunctionsAreProcesses() {
  palsim::Device device;
  device.WriteFile("\\shop\\in.txt", std::string("a\0b", 3));
  const auto program = [] {
    Sleep(100);
    PALBEEPGoodReadEx(PAL_SCAN_TYPE_INTERNAL);
    return PALPWRSetBootOption(3) == S_OK ? 7 : 8;
  };
  device.Run("first", program);
  device.Run("second", program);
  RequireThrown<palsim::Error>("first still runs", [&] { device.Run("first", program); });
  Require(device.now_ms() == 0 && device.Journal("audio").empty(), "Run waits");
  device.Advance(150);
  // The beeper has one owner at a time.
  Require(device.Journal("audio").front().time_ms == 100, "the first good read");
  device.Play(
      "wait for first\nwait for second\nexpect first returned 7\n"
      "expect 2 times audio sound begins *goodread.wav *\nexpect boot option 3");
  const std::vector<palsim::Device::Line> attached = device.Journal("process");
  Require(attached.size() > 3 && attached.back().effect == "process", "the journal's lines");
  Require(device.ReadFile("\\shop\\in.txt") == std::string("a\0b", 3) && device.HasFile("\\SHOP"),
          "files");
  Require(device.ReadValue("HKLM\\SOFTWARE\\Dravonel\\PAL\\FixActive") == "dword:00000001",
          "values");
  device.Run("first", []() -> int { throw std::runtime_error("out of paper"); });
  RequireThrown<std::runtime_error>("out of paper", [&] { device.Play("wait for first"); });
  device.Run("second", [] { return static_cast<int>(WaitForSingleObject(nullptr, 0)); });
  device.Run("third", [] {
    Sleep(INFINITE);
    return 0;
  });
  device.Play("third is killed\nwait for third\nexpect third was killed");
  RequireThrown<palsim::ExpectationFailed>("WaitForSingleObject", [&] { device.Finish(); });
}

void WhatIsSavedCanBeLoaded(const std::string& folder) {
  palsim::Device device;
  device.Play("set HKCU\\Software\\Shop\\Till = \"left\"");
  device.Finish();
  device.Save(folder);
  Require(palsim::Device(folder).ReadValue("HKCU\\Software\\Shop\\Till") == "\"left\"",
          "the value");
}

}  // namespace

int main(int /*count*/, char** arguments) try {
  WhatCannotBeDone();
  ExpectationsThatDoNotHold();
  FunctionsAreProcesses();
  WhatIsSavedCanBeLoaded(arguments[1]);
  std::cout << "passed\n";
  return 0;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
