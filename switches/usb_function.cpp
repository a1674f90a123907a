// The device as a function of a USB host: the client driver on the function bus.
#include <array>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palstore.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kUsb};

// Controls of the function bus.
constexpr DWORD kGetCurrentClient = 0x0022000C;
constexpr DWORD kSelectFirstStep = 0x00220018;
constexpr DWORD kSelectSecondStep = 0x00220010;

// The input and the output of the bus. The output has a description behind the client's name.
using ClientName = std::array<WCHAR, 128>;
using ClientInformation = std::array<WCHAR, 378>;
static_assert(sizeof(ClientName) == 256 && sizeof(ClientInformation) == 756);

constexpr const WCHAR* kMassStorage = TEXT("Mass_Storage_Class");
constexpr const WCHAR* kMassStoragePath =
    TEXT("\\Drivers\\USB\\FunctionDrivers\\Mass_Storage_Class");
constexpr const WCHAR* kVolumeName = TEXT("DeviceName");

struct FunctionOption {
  const WCHAR* client;
  const WCHAR* volume;  // null: the client exposes none

  // What identifies the option when it is read back.
  [[nodiscard]] constexpr const WCHAR* text() const { return volume != nullptr ? volume : client; }
};

constexpr auto kFunctionOptions = std::to_array<FunctionOption>({
    {TEXT("Serial_Class"), nullptr},
    {TEXT("RNDIS"), nullptr},
    {kMassStorage, TEXT("DSK1:")},
    {kMassStorage, TEXT("DSK2:")},
});
static_assert(PAL_USB_SERIAL == 0 && PAL_USB_MASS_STORAGE_2 == kFunctionOptions.size() - 1);
constexpr DWORD kNoOption = 0xFFFFFFFF;

HANDLE OpenBus() {
  return CreateFileW(TEXT("$bus\\OTG_0_2_0"), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                     0, nullptr);
}

HRESULT SetClientOption(const WCHAR* client_name, DWORD ioctl) {
  ClientName name{};
  if (client_name == nullptr || !Copy(name, client_name)) {
    kTrace.Error("ERROR SetClientOption. Input buff invalid\r\n");
    return PAL_STORE_E_INVALID_INPUT;
  }
  const UniqueFile bus(OpenBus());
  if (!bus) {
    kTrace.Error("SetClientOption - ERROR 0x%x=CreateFile(). win32err: 0x%x\r\n", bus.get(),
                 GetLastError());
    return PAL_STORE_E_BUS_NOT_OPENED;
  }
  kTrace.Info("SetClientOption - In client name: %ls, ioctl:0x%x\r\n", client_name, ioctl);
  DWORD returned = 0;
  const BOOL done =
      DeviceIoControl(bus.get(), ioctl, name.data(), sizeof(name), nullptr, 0, &returned, nullptr);
  if (done == FALSE) {
    kTrace.Error("SetClientOption - ERROR 0x%x=DeviceIoControl(ioctl:0x%x). win32err: 0x%x\r\n",
                 done, ioctl, GetLastError());
    return PAL_STORE_E_SELECT_FAILED;
  }
  return S_OK;
}

HRESULT ReadClientInformation(DWORD ioctl, ClientInformation& information) {
  const UniqueFile bus(OpenBus());
  if (!bus) {
    kTrace.Error("GetClientOption - 0x%x=CreateFile(). win32err: 0x%x\r\n", bus.get(),
                 GetLastError());
    return PAL_STORE_E_BUS_NOT_OPENED;
  }
  DWORD returned = 0;
  const BOOL done = DeviceIoControl(bus.get(), ioctl, nullptr, 0, information.data(),
                                    sizeof(information), &returned, nullptr);
  if (done == FALSE) {
    kTrace.Error("GetClientOption - ERROR 0x%x=DeviceIoControl(). win32err: 0x%x\r\n", done,
                 GetLastError());
    return PAL_STORE_E_GET_FAILED;
  }
  return S_OK;
}

// `bytes`: in, the size of `buffer`; out, that of the name with its terminator. A bus without a
// client leaves both as they are.
HRESULT GetClientOption(WCHAR* buffer, DWORD& bytes, DWORD ioctl) {
  if (buffer == nullptr) {
    kTrace.Error("ERROR GetClientOption - Input buff invalid\r\n");
    return PAL_STORE_E_INVALID_INPUT;
  }
  ClientInformation information{};
  const HRESULT result = ReadClientInformation(ioctl, information);
  if (Failed(result)) return result;
  // A name without a terminator has the length of the record: no buffer has room for it.
  const WideText name(information.data(), Length<WCHAR>(information));
  if (name.empty()) return S_OK;
  const auto name_bytes = static_cast<DWORD>((name.size() + 1) * sizeof(WCHAR));
  if (!Copy(std::span(buffer, bytes / sizeof(WCHAR)), name)) {
    kTrace.Error("GetClientOption - Input buff too short, inlen: %d, Ucn.name_len: %d\r\n", bytes,
                 name_bytes);
    return PAL_STORE_E_INVALID_INPUT;
  }
  bytes = name_bytes;
  kTrace.Info("GetClientOption - Client name: %ls, len: %d\r\n", buffer, bytes);
  return S_OK;
}

HRESULT WriteVolumeName(DWORD option, const WCHAR* volume) {
  std::array<WCHAR, 16> text{};  // PALRegSetString also stores the zero behind the terminator
  static_cast<void>(Copy(text, volume));  // it always fits
  const HRESULT result = PALRegSetString(HKEY_LOCAL_MACHINE, kMassStoragePath, kVolumeName, text);
  kTrace.Info("SetUsbMassStorage - input:%d, Reg:%ls\\%ls=%ls\r\n", option, kMassStoragePath,
              kVolumeName, volume);
  return result;
}

// Room for a name and a terminator of its own, for texts that are stored without one.
using TerminatedName = std::array<WCHAR, std::tuple_size_v<ClientName> + 1>;

// Empty where it cannot be read.
void ReadVolumeName(TerminatedName& name) {
  kTrace.Info("PALStore_GetUsbFuncDriver - Mass storage client. Read %ls : DeviceName\r\n",
              kMassStoragePath);
  name = {};
  DWORD bytes = sizeof(ClientName);
  const HRESULT result =
      PALRegGetStringValue(HKEY_LOCAL_MACHINE, kMassStoragePath, kVolumeName, name.data(), &bytes);
  if (Failed(result)) name = {};
}

DWORD FindOption(const WCHAR* text) {
  for (DWORD option = 0; option < kFunctionOptions.size(); ++option) {
    if (_wcsicmp(text, kFunctionOptions[option].text()) == 0) return option;
  }
  return kNoOption;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALStore_SetUsbFuncDriver(DWORD option) {
  if (option >= pal::kFunctionOptions.size()) {
    pal::kTrace.Error("ERROR PALStore_SetUsbFuncDriver - Invalid input opt. iOpt:%d\r\n", option);
    return PAL_STORE_E_INVALID_INPUT;
  }
  const pal::FunctionOption& row = pal::kFunctionOptions[option];
  HRESULT result = pal::SetClientOption(row.client, pal::kSelectFirstStep);
  if (pal::Succeeded(result) && row.volume != nullptr)
    result = pal::WriteVolumeName(option, row.volume);
  if (pal::Succeeded(result)) result = pal::SetClientOption(row.client, pal::kSelectSecondStep);
  return result;
}

HRESULT PALAPI PALStore_GetUsbFuncDriver(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  pal::TerminatedName name{};
  DWORD bytes = sizeof(pal::ClientName);
  HRESULT result = pal::GetClientOption(name.data(), bytes, pal::kGetCurrentClient);
  if (pal::Failed(result)) return result;
  if (_wcsicmp(name.data(), pal::kMassStorage) == 0) pal::ReadVolumeName(name);
  const DWORD found = pal::FindOption(name.data());
  result = found == pal::kNoOption ? PAL_STORE_E_UNKNOWN_CLIENT : S_OK;
  if (found != pal::kNoOption) {
    pal::kTrace.Info("PALStore_GetUsbFuncDriver - Found match. %ls\r\n", name.data());
    *option = found;
  }
  pal::kTrace.Info("PALStore_GetUsbFuncDriver - Return. iOpt:%d, hr:0x%x\r\n", found, result);
  return result;
}
