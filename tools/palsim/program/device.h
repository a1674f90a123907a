/**
 * @file device.h
 * @brief A simulated device for tests in C++.
 *
 *     palsim::Device device("rm21");                        // a sample, or a device's folder
 *     device.Run("stockroom", [] { return Stockroom(); });  // until it waits for something
 *     device.Play("press button 5\n"
 *                 "expect audio sound begins *goodread.wav *");
 *     device.Finish();
 *
 * The device lives in memory. Its clock moves only when every thread of the device waits, so that a
 * minute takes no time and each run gives the same order. What the test's own functions call, the
 * exports of DVLORQPAL.dll and the platform's calls in <windows.h>, the device answers; link with
 * DVLORQPAL::simdevice.
 *
 * The thread that makes a device is the one that uses it. A test may have several devices, one
 * after the other or at the same time. C++11 is enough.
 */
#ifndef PALSIM_DEVICE_H_
#define PALSIM_DEVICE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace palsim {

class PlayedDevice;

/** Something that cannot be done: a statement that is no statement, a file that is not there. */
class __attribute__((visibility("default"))) Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/** Expectations that did not hold, a line for each, with what there was instead. */
class __attribute__((visibility("default"))) ExpectationFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class __attribute__((visibility("default"))) Device {
 public:
  /** A line of the journal. */
  struct Line {
    std::uint64_t time_ms;  ///< Since the device started.
    std::uint32_t process;  ///< The number of its process. 0: the device itself.
    std::string effect;     ///< A word of docs/scenarios.md: "audio", "registry", "file".
    std::string text;       ///< One line. Control characters stand as \x1B.
  };

  /**
   * Makes a device.
   * @param sample_or_folder  "rm21", "rm23", "rx" or "greywing"; or the folder of a device, which
   *                          stays as it is.
   * @throws Error  There is no such sample, or the folder cannot be read.
   */
  explicit Device(const std::string& sample_or_folder = "rm21");
  /** Kills the processes that still run, and checks nothing. End a test with Finish, which does. */
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /**
   * Plays statements of docs/scenarios.md, one a line.
   * @throws Error  A line is not understood, and nothing was played; or a statement cannot be
   *                played, and those before it have been.
   * @throws ExpectationFailed  All were played, and expectations did not hold.
   */
  void Play(const std::string& statements);

  /**
   * Runs a function as a call of a process, which starts first where none of its name runs. Returns
   * when the function waits for the first time, or at its end.
   *
   * In statements the call has the process's name: "wait for stockroom", "expect stockroom returned
   * 0". The function is compiled into the test, so that all processes share its static variables.
   * Where its process is killed, an exception passes through it, which it must not swallow.
   *
   * @param process  "stockroom" is stockroom.exe in \Program Files.
   * @throws Error  The process has a call that still runs, or cannot be started.
   * @throws ...    What the function throws comes out of the statement that waits for it.
   */
  void Run(const std::string& process, std::function<int()> function);

  /** Lets time pass on the device. */
  void Advance(std::uint32_t milliseconds);
  /** Since the device started. */
  std::uint64_t now_ms() const;
  /** What has happened since the device was made: of one effect, or all of it.
   * @throws Error  There is no such effect. */
  std::vector<Line> Journal(const std::string& effect = std::string()) const;

  /** Whether the device has a file or folder, such as "\Windows\sounds". */
  bool HasFile(const std::string& path) const;
  /** The bytes of a file. @throws Error  The device has no such file. */
  std::string ReadFile(const std::string& path) const;
  /** Makes a file, in place of one that is there. @throws Error  The path is none of the device. */
  void WriteFile(const std::string& path, const std::string& content);
  /**
   * Data of a registry value as REGEDIT4 files have it: dword:00000005, "a text", hex:0a,01.
   * Statements can set and expect values.
   * @param value  Its key and its name: "HKLM\Software\Dravonel\PAL\IntGRI".
   * @throws Error  There is no such value.
   */
  std::string ReadValue(const std::string& value) const;

  /**
   * Waits for the calls that still run and ends all processes.
   * @throws ExpectationFailed  A process has left something open or has misused the platform in
   *                            another way, or a planned fault was never reached.
   */
  void Finish();
  /**
   * Writes device and journal into a new folder: "palsim FOLDER timeline" shows what happened.
   * @throws Error  A process still runs, or the folder is there already or cannot be written.
   */
  void Save(const std::string& folder);

 private:
  std::unique_ptr<PlayedDevice> played_;
};

}  // namespace palsim

#endif  // PALSIM_DEVICE_H_
