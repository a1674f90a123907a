// I/O controls: of drivers, and of the kernel itself.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <span>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

constexpr LONG kNotSupported = 50;  // ERROR_NOT_SUPPORTED

using Bytes = std::span<const BYTE>;

struct KernelRequest {
  Call& call;
  Kernel& kernel;
  Bytes in;
  std::span<BYTE> out;
  DWORD returned = 0;
};

LONG Answer(KernelRequest& request, const QueryAnswer& answer) {
  if (answer.error != 0) return static_cast<LONG>(answer.error);
  const std::size_t count = std::min(answer.bytes.size(), request.out.size());
  std::copy_n(answer.bytes.begin(), count, request.out.begin());
  request.returned = answer.returned.value_or(static_cast<DWORD>(count));
  return ERROR_SUCCESS;
}

// A request for one of these parameters holds the id in 32 bits, any other request in 16.
constexpr std::array<std::uint16_t, 5> kWideRequests{0x0003, 0x0004, 0x001A, 0x001B, 0x0035};

// The kernel reads 16 bits of the request, whatever its size. A request of the wrong size is
// misuse.
LONG ReadParameter(KernelRequest& request) {
  if (request.in.size() < 2) return ERROR_INVALID_PARAMETER;
  const auto id = static_cast<std::uint16_t>(request.in[0] | (request.in[1] << 8));
  const std::size_t wanted = std::ranges::find(kWideRequests, id) != kWideRequests.end() ? 4 : 2;
  if (request.in.size() != wanted) {
    request.call.Misuse(fmt::format("asked for parameter {:#06x} with {} bytes and not {}", id,
                                    request.in.size(), wanted));
  }
  const auto& parameters = request.kernel.hardware.parameters;
  const auto parameter = parameters.find(id);
  return parameter == parameters.end() ? ERROR_INVALID_PARAMETER
                                       : Answer(request, parameter->second);
}

LONG ReadFirmwareInformation(KernelRequest& request) {
  return Answer(request, request.kernel.hardware.system.firmware_information);
}

LONG ReadDeviceId(KernelRequest& request) {
  return Answer(request, request.kernel.hardware.system.device_id);
}

// Takes any number: its meaning is not simulated.
LONG PrepareRestart(KernelRequest& request) {
  std::array<BYTE, sizeof(DWORD)> number{};
  if (request.in.size() != number.size()) return ERROR_INVALID_PARAMETER;
  std::ranges::copy(request.in, number.begin());
  request.call.Log(Effect::kPower,
                   fmt::format("restart prepared with {:#010x}", std::bit_cast<DWORD>(number)));
  return ERROR_SUCCESS;
}

struct KernelControl {
  DWORD code;
  LONG (*answer)(KernelRequest& request);
};

constexpr std::array kKernelControls{
    KernelControl{0x010122C4, &ReadParameter},
    KernelControl{0x01012000, &ReadFirmwareInformation},
    KernelControl{0x01010054, &ReadDeviceId},
    KernelControl{0x010123B0, &PrepareRestart},
};

template <class Buffer>
std::span<Buffer> SpanOf(Call& call, void* data, DWORD bytes) {
  if (data != nullptr) return std::span(static_cast<Buffer*>(data), bytes);
  if (bytes > 0) call.Misuse(fmt::format("was given no buffer of {} bytes", bytes));
  return {};
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

BOOL KernelIoControl(DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                     LPDWORD returned) {
  Call call(CallId::KernelIoControl);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  const auto* const control =
      std::ranges::find(sim::kKernelControls, code, &sim::KernelControl::code);
  if (control == sim::kKernelControls.end()) {
    call.Misuse(fmt::format("was given the unknown code {:#010x}", code));
    return call.Fail(sim::kNotSupported, FALSE);
  }
  sim::KernelRequest request{call, call.kernel(), sim::SpanOf<const BYTE>(call, in, in_bytes),
                             sim::SpanOf<BYTE>(call, out, out_bytes)};
  const LONG error = call.Answer(request.out, control->answer(request), request.returned);
  if (error != ERROR_SUCCESS) return call.Fail(error, FALSE);
  if (returned != nullptr) *returned = request.returned;
  return TRUE;
}

BOOL DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out,
                     DWORD out_bytes, LPDWORD returned, LPOVERLAPPED overlapped) {
  Call call(CallId::DeviceIoControl, [device, code](Call& asked) {
    const auto object = asked.Find<sim::DriverObject>(device);
    return object == nullptr ? std::string() : std::string(object->driver->CodeName(code));
  });
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (!call.IsNotOverlapped(overlapped)) return FALSE;
  const auto object = call.Find<sim::DriverObject>(device);
  if (object == nullptr) return FALSE;
  sim::Driver& driver = *object->driver;
  if (driver.CodeName(code).empty()) {
    call.Misuse(fmt::format("was given the code {:#010x}, unknown to {}", code, driver.name()));
    return call.Fail(sim::kNotSupported, FALSE);
  }
  const DWORD buffer_bytes = driver.TakesValueInSize(code) ? 0 : in_bytes;
  sim::DriverRequest request{code, sim::SpanOf<const BYTE>(call, in, buffer_bytes), in_bytes,
                             sim::SpanOf<BYTE>(call, out, out_bytes)};
  call.Log(Effect::kDriver, fmt::format("{} {}", driver.name(), driver.Describe(request)));
  auto error = static_cast<LONG>(driver.Control(request));
  for (const std::string& change : request.changes) {
    call.Log(Effect::kDriver, fmt::format("{} {}", driver.name(), change));
  }
  error = call.Answer(request.out, error, request.returned);
  if (error != ERROR_SUCCESS) return call.Fail(error, FALSE);
  if (returned != nullptr) *returned = request.returned;
  return TRUE;
}
