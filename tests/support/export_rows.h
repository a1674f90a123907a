// Every export with arguments that let it do its work on the sample device, for tests that do the
// same with each of them: fail its platform calls, end its process, run it beside others.
//
//   for (const ExportRow& row : ExportRows()) {
//     sim::Device device;
//     ArrangeFor(row, device);
//     sim::Process process(device);
//     if (row.before) row.before(process);
//     Room room;
//     DWORD result = row.run(process.exports(), room);
//     if (row.after) row.after(process);
//   }
#ifndef TESTS_SUPPORT_EXPORT_ROWS_H_
#define TESTS_SUPPORT_EXPORT_ROWS_H_

#include <cstdint>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/exports.h"

// A caller's memory: hands out room for out-parameters, with guard bytes on both sides.
class Room {
 public:
  DWORD* Number() { return reinterpret_cast<DWORD*>(Take(sizeof(DWORD))); }
  LONG* Signed() { return reinterpret_cast<LONG*>(Take(sizeof(LONG))); }
  char* Text(DWORD bytes = 64) { return reinterpret_cast<char*>(Take(bytes)); }
  WCHAR* WideText(DWORD bytes = 64) { return reinterpret_cast<WCHAR*>(Take(bytes)); }
  // A number that goes in as well as out.
  DWORD* InOut(DWORD number);

  // Whether nothing was written beside the room.
  [[nodiscard]] bool GuardsHold() const;
  // Whether all of it is as it was handed out.
  [[nodiscard]] bool IsUntouched() const;
  // Whether each block is a number and holds this one.
  [[nodiscard]] bool Holds(DWORD number) const;
  // Whether another one's blocks hold the same.
  [[nodiscard]] bool HoldsTheSameAs(const Room& other) const;

 private:
  struct Block {
    std::vector<std::uint8_t> before;  // with the guards
    std::vector<std::uint8_t> bytes;
  };
  std::uint8_t* Take(DWORD bytes);
  std::list<Block> blocks_;
};

// When a read that fails leads to other writes, on purpose.
enum class OtherWrites : std::uint8_t {
  kNever,
  kWhereMissing,  // a plane that is missing is made anew, a missing event is the ordinary key's
  kAlways,        // a file that cannot be read has the checksum 0
};

struct ExportRow {
  std::string name;  // of the export
  std::function<DWORD(const sim::Exports& pal, Room& room)> run;
  std::string path{};                           // which of its ways, where it has several rows
  std::function<void(sim::Device&)> arrange{};  // what the sample device lacks for it
  std::function<void(sim::Process&)> before{};  // calls that come before it in its process
  std::function<void(sim::Process&)> after{};   // calls that let go of what the process holds
  std::optional<DWORD> on_failure{};            // what its out-parameter holds then; else:
  bool or_untouched = false;                    // that, or nothing was written to it
  bool keeps_out = true;                        // it is untouched then
  bool once_per_process = false;                // a second call of a process differs
  OtherWrites other_writes = OtherWrites::kNever;
  [[nodiscard]] std::string title() const { return path.empty() ? name : name + ": " + path; }
};

// All exports but the restart of the terminal.
const std::vector<ExportRow>& ExportRows();

// Makes a new device the sample device as the row wants it.
void ArrangeFor(const ExportRow& row, sim::Device& device);

#endif  // TESTS_SUPPORT_EXPORT_ROWS_H_
