// The calls for the operating system's version and for its texts about the device.
#include <fmt/format.h>

#include <cstring>

#include "platform/sim/coredll/call.h"

using sim::Call;
using sim::CallId;

BOOL GetVersionExW(OSVERSIONINFOW* version) {
  Call call(CallId::GetVersionExW);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (version == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (version->dwOSVersionInfoSize != sizeof(*version)) {
    call.Misuse("was given a record of the wrong size");
    return call.Fail(ERROR_INSUFFICIENT_BUFFER, FALSE);
  }
  const sim::OsVersion& os = call.kernel().hardware.system.os_version;
  if (os.error != 0) return call.Fail(static_cast<LONG>(os.error), FALSE);
  *version = {sizeof(*version), os.major, os.minor, os.build, os.platform, {}};
  const LONG error = call.Answer(*version);
  return error == ERROR_SUCCESS ? TRUE : call.Fail(error, FALSE);
}

// `parameter` is the buffer's size in bytes. Where the text does not fit, the call fails and writes
// nothing.
BOOL SystemParametersInfoW(UINT action, UINT parameter, LPVOID value, UINT /*flags*/) {
  Call call(CallId::SystemParametersInfoW);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (value == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  const sim::SystemInformation& system = call.kernel().hardware.system;
  const sim::QueryAnswer* answer = nullptr;
  if (action == SPI_GETPLATFORMTYPE) answer = &system.platform_type;
  if (action == SPI_GETOEMINFO) answer = &system.oem_information;
  if (answer == nullptr) {
    call.Misuse(fmt::format("was given the unknown action {}", action));
    return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  }
  auto error = static_cast<LONG>(answer->error);
  if (error == ERROR_SUCCESS && answer->bytes.size() > parameter) error = ERROR_INSUFFICIENT_BUFFER;
  if (error == ERROR_SUCCESS && !answer->bytes.empty()) {
    std::memcpy(value, answer->bytes.data(), answer->bytes.size());
  }
  DWORD returned = parameter;
  error = call.Answer({static_cast<BYTE*>(value), parameter}, error, returned);
  return error == ERROR_SUCCESS ? TRUE : call.Fail(error, FALSE);
}
