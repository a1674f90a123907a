#include "tests/support/export_rows.h"

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/accelerometer.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/usb_function_bus.h"
#include "platform/sim/programs/flush_service.h"
#include "platform/wince.h"

namespace {

using Arrange = std::function<void(sim::Device&)>;
using Before = std::function<void(sim::Process&)>;

constexpr const char* kSettings = R"(HKLM\SOFTWARE\Dravonel\PAL)";
constexpr const char* kKeySet = R"(HKCU\Comm\Security\Crypto\UserKeys\Default)";

// What devices other than the sample have, or what was set on them.

Arrange With(const char* key, const char* name, std::uint32_t number) {
  return [=](sim::Device& device) { device.registry().SetDword(key, name, number); };
}

Arrange WithParameter(std::uint16_t id, const sim::QueryAnswer& answer) {
  return [=](sim::Device& device) { device.hardware().parameters[id] = answer; };
}

void ForgetsRepair(sim::Process& process) {
  process.device().registry().SetDword(kSettings, "FixActive", 0);
}

void WithoutSerialParameter(sim::Device& device) {
  device.hardware().parameters.erase(0x0048);
}

void WithoutAnySerialNumber(sim::Device& device) {
  WithoutSerialParameter(device);
  device.registry().RemoveTree(R"(HKLM\Software\Dravonel\DVLHWID)");
}

void WithRawSerialNumber(sim::Device& device) {
  WithoutSerialParameter(device);
  device.hardware().parameters[0x0002] = {{1, 2, 3, 4, 5, 6}, 0, {}};
}

void OfTheGreywingFamily(sim::Device& device) {
  WithoutAnySerialNumber(device);
  device.hardware().parameters.erase(0x000A);
  device.hardware().system.oem_information = sim::WideTextAnswer(u"Greywing G1");
  device.hardware().system.device_id = sim::DeviceIdRecord("GW0071");
}

void WithMassStorageClient(sim::Device& device) {
  for (const auto& driver : device.hardware().drivers) {
    auto* const bus = dynamic_cast<sim::UsbFunctionBus*>(driver.get());
    if (bus != nullptr) bus->set_current_client("Mass_Storage_Class");
  }
}

void WithoutUsbDisks(sim::Device& device) {
  for (const char* driver : {"2", "5", "6"}) {
    const std::string key =
        std::string(R"(HKLM\Drivers\USB\ClientDrivers\Mass_Storage_Class\)") + driver;
    device.registry().Find(key)->DeleteValue(u"Dll");
    device.registry().SetString(key, "Dll__", "usbmsc.dll");
  }
}

void WithModem(sim::Device& device) {
  device.files().Write(R"(\Windows\ril.dll)", "");
}

void WithRegistryFile(sim::Device& device) {
  device.files().Write(R"(\Store\RM21.reg)", "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Imported]\n@=\"1\"");
  for (const char* tree : {"Decodes\\A\\B", "Decodes\\C", "RUM", "Drivers\\D"}) {
    device.registry().SetDword(std::string(R"(HKLM\Software\Dravonel\)") + tree, "n", 1);
  }
}

void WithStatusFile(sim::Device& device) {
  device.files().Write(R"(\ConfigStore\DCEDPM)", "\x01\x02");
}

void WithFlushService(sim::Device& device) {
  device.StartProgram(sim::FlushService());
}

void WithKeySet(sim::Device& device) {
  device.registry().Create(kKeySet);
}

void WithAccelerometer(sim::Device& device) {
  device.hardware().drivers.push_back(std::make_shared<sim::Accelerometer>());
}

// With the library that does the services which this one passes on, and this one under another
// file name, so that both can be loaded.
void WithProvider(sim::Device& device) {
  device.set_library_path(R"(\Program Files\Dravonel\DVLPAL.dll)");
  for (sim::Module& module : sim::Device().modules()) {
    if (module.name == "DVLORQPAL.dll") device.InstallModule(std::move(module));
  }
}

void RemovesKeySet(sim::Process& process) {
  process.device().registry().RemoveTree(kKeySet);
}

void WithEngineOnSpiClock(sim::Device& device) {
  device.hardware().parameters[0x001A] = {{0x10, 0, 0, 0}, 0, {}};
}

void OpensScanner(sim::Process& process) {
  (void)process.exports().PALSysio_Open();
}

void ClosesScanner(sim::Process& process) {
  (void)process.exports().PALSysio_Close();
}

void StartsTagSearch(sim::Process& process) {
  (void)process.exports().PALBEEPStartTagSearch();
}

void StartsKeepAwake(sim::Process& process) {
  (void)process.exports().PALPWRSuspendCtrl(0);
}

void ButtonScans(sim::Process& process) {
  (void)process.exports().PALKEYSetButtonAction(5, PAL_KEY_ACTION_SCAN);
}

template <class Term>
Before After(Term term) {
  return [term](sim::Process& process) { (void)(process.exports().*term)(); };
}

// The plus makes pointers of the functions: one type, so that they take half the time to compile.
#define ROW(export_name, arguments, ...)                                                     \
  ExportRow {                                                                                \
    .name = #export_name, .run = +[](const sim::Exports& pal, [[maybe_unused]] Room& room) { \
      return static_cast<DWORD>(pal.export_name arguments);                                  \
    } __VA_OPT__(, ) __VA_ARGS__                                                             \
  }
// A text in bytes or UTF-16 with its length.
#define TEXT_ROWS(export_name, ...)                                                 \
  ROW(export_name##A, (room.Text(600), room.InOut(600))__VA_OPT__(, ) __VA_ARGS__), \
      ROW(export_name##W, (room.WideText(600), room.InOut(600))__VA_OPT__(, ) __VA_ARGS__)
#define FIXED_TEXT_ROWS(export_name)                                       \
  ROW(export_name, (room.WideText())), ROW(export_name##A, (room.Text())), \
      ROW(export_name##W, (room.WideText()))
#define DETAIL_ROW(number, ...)                                               \
  ROW(PALSysinfo_GetDeviceDetailA, (number, room.Text(600), room.InOut(600)), \
      .path = #number __VA_OPT__(, ) __VA_ARGS__)
#define CAPABILITY_ROWS(capability, ...)                                                   \
  ROW(PALDevCap_GetDevCapsA, (capability), .path = capability __VA_OPT__(, ) __VA_ARGS__), \
      ROW(PALDevCap_EnabledA, (capability), .path = capability __VA_OPT__(, ) __VA_ARGS__)

std::vector<ExportRow> MakeRows() {
  using sim::Exports;
  static constexpr PALComPortPower kPower{1, 2};
  return {
      ROW(DllRegisterServer, ()),
      ROW(DllUnregisterServer, ()),
      ROW(PALVER_LogVersion, ()),

      // Beeper.
      ROW(PALBEEPInit, (), .before = After(&Exports::PALBEEPTerm)),
      ROW(PALBEEPTerm, (), .once_per_process = true),
      ROW(PALBEEPSetVolume, (3)),
      ROW(PALBEEPSetVolume, (8), .path = "a step"),
      ROW(PALBEEPGetVolume, (room.Number())),
      ROW(PALBEEPSetHeadsetBeeperVolume, (2)),
      ROW(PALBEEPGetHeadsetBeeperVolume, (room.Number())),
      ROW(PALBEEPSetSpeakerGain, (6, 40)),
      ROW(PALBEEPGetSpeakerGain, (6, room.Number())),
      ROW(PALBEEPSetHeadsetGain, (40)),
      ROW(PALBEEPGetHeadsetGain, (room.Number())),
      ROW(PALBEEPSetGRI, (1, 3)),
      ROW(PALBEEPGetGRI, (1, room.Number())),
      ROW(PALBEEPGoodReadEx, (0)),
      ROW(PALBEEPGoodReadEx, (1), .path = "felt and heard twice"),
      ROW(PALBEEPGoodReadEx, (1), .path = "with a headset",
          .arrange = With(R"(HKLM\System\State\Hardware)", "Headset", 1)),
      ROW(PALBEEPBadRead, ()),
      ROW(PALBEEPBadRead, (), .path = "felt", .arrange = With(kSettings, "IntGRI", 3)),
      ROW(PALBEEPChangeConfig, ()),
      ROW(PALBEEPChangeConfigError, ()),
      ROW(PALBEEPKeyClick, ()),
      ROW(
          PALBEEPKeyClick, (), .path = "silent",
          .arrange = [](sim::Device& device) { device.hardware().audio.levels.volume = 0; }),
      ROW(PALBEEPStartTagSearch, ()),
      ROW(PALBEEPStopTagSearch, (), .before = &StartsTagSearch),

      // LEDs and vibrator.
      ROW(PALLEDInit, (), .before = After(&Exports::PALLEDTerm)),
      ROW(PALLEDTerm, (), .once_per_process = true),
      ROW(PALLEDNotificationOn, ()),
      ROW(PALLEDNotificationOff, ()),
      ROW(PALLEDGrLedOn, ()),
      ROW(PALLEDGrLedOff, ()),
      ROW(PALLEDSysLightOn, ()),
      ROW(PALLEDSysLightOff, ()),
      ROW(PALLEDSysLightBlinkStart, ()),
      ROW(PALLEDSysLightBlinkStop, ()),
      ROW(PALLEDGrLedToggle, (2)),
      ROW(PALLEDGrLedGetState, (2, room.Number())),
      ROW(PALLEDIsGrLedOn, (), .before = After(&Exports::PALLEDGrLedOn)),
      ROW(PALVIBInit, ()),
      ROW(PALVIBIsInstalled, ()),
      ROW(PALVIBSetVibratePreset, (5)),
      ROW(PALVIBGetVibratePreset, (room.Number())),
      ROW(PALVIBVibrate, (0)),
      ROW(PALVIBVibrateEx, (0)),

      // Power.
      ROW(PALPWRInit, (), .before = After(&Exports::PALPWRTerm)),
      ROW(PALPWRTerm, ()),
      ROW(PALPWRSetDeviceOff_Batt, (15)),
      ROW(PALPWRSetDeviceOff_ExtPwr, (15)),
      ROW(PALPWRGetDeviceOff_Batt, (room.Number())),
      ROW(PALPWRGetDeviceOff_ExtPwr, (room.Number())),
      ROW(PALPWRSetScreenOff_Batt, (120)),
      ROW(PALPWRSetScreenOff_ExtPwr, (180)),
      ROW(PALPWRGetScreenOff_Batt, (room.Number())),
      ROW(PALPWRGetScreenOff_ExtPwr, (room.Number())),
      ROW(PALPWRSetBootOption, (1)),
      ROW(PALPWRGetBootOption, (room.Number())),
      ROW(PALPWRSetPwrButton, (1)),
      ROW(PALPWRGetPwrButton, (room.Number())),
      ROW(PALPWRSuspendCtrl, (0)),
      ROW(PALPWRSuspendCtrl, (1), .path = "stop", .before = &StartsKeepAwake),
      ROW(PALPWRGetBatteryLevel, ()),
      ROW(PALPWRGetBatteryPercentRemaining, ()),
      ROW(PALCOMxPwr_Init, ()),
      ROW(PALCOMxPwr_Term, ()),
      ROW(PALCOMxPwr_SetPower, (u"COM1:", &kPower)),
      ROW(PALCOMxPwr_GetPower, (u"COM1:", reinterpret_cast<PALComPortPower*>(room.Text(8)))),

      // Keypad.
      ROW(PALKEYInit, (), .before = &ForgetsRepair, .other_writes = OtherWrites::kWhereMissing),
      ROW(PALKEYTerm, ()),
      ROW(PALKEYGetNumButtons, (room.Number())),
      ROW(PALKEYGetButtonName, (5, room.Text(18), room.Number())),
      ROW(PALKEYGetButtonAction, (0, room.Number()), .path = "handle", .on_failure = 255),
      ROW(PALKEYGetButtonAction, (2, room.Number()), .on_failure = 255),
      ROW(PALKEYSetButtonAction, (0, PAL_KEY_ACTION_SCAN), .path = "handle"),
      ROW(PALKEYSetButtonAction, (2, PAL_KEY_ACTION_CAMERA_SCAN)),
      ROW(PALKEYSetButtonAction, (5, PAL_KEY_ACTION_SCAN), .path = "of an ordinary key",
          .other_writes = OtherWrites::kWhereMissing),
      ROW(PALKEYSetButtonAction, (5, PAL_KEY_ACTION_WINDOWS_DEFAULT), .path = "back to its key",
          .before = &ButtonScans, .other_writes = OtherWrites::kWhereMissing),
      ROW(PALKEYControlKeyState, (PAL_CONTROL_KEY_CONTRAST, 0)),
      ROW(PALKEYGetShiftBehavior, (room.Number()), .on_failure = 0xFFFFFFFF, .or_untouched = true),
      ROW(PALKEYSetShiftBehavior, (PAL_SHIFT_BEHAVIOR_2)),
      ROW(PALKEYSetKeyTapVol, (2)),
      ROW(PALKEYGetKeyTapVol, (room.Number())),
      ROW(PALKEYGetType, (room.Number())),

      // Display.
      ROW(PALDISPInit, ()),
      ROW(PALDISPTerm, ()),
      ROW(PALDISPSetDisplayBrightnessAmbient, (5)),
      ROW(PALDISPGetDisplayBrightnessAmbient, (room.Number())),
      ROW(PALDISPSetLowLightDisplayBrightnessDelta, (5)),
      ROW(PALDISPGetLowLightDisplayBrightnessDelta, (room.Number())),
      ROW(PALDISPSetBrightLightDisplayBrightnessDelta, (5)),
      ROW(PALDISPGetBrightLightDisplayBrightnessDelta, (room.Number())),
      ROW(PALDISPSetKeypadBacklightMode, (4)),
      ROW(PALDISPGetKeypadBacklightMode, (room.Number())),
      ROW(PALDISPSetKeypadBacklightAmbient, (0)),
      ROW(PALDISPGetKeypadBacklightAmbient, (room.Number())),
      ROW(PALDISPSetOrientation, (90)),
      ROW(PALDISPGetOrientation, (room.Signed())),
      ROW(PALDISPSetSIPDock, (2)),
      ROW(PALDISPGetSIPDock, (room.Number()), .on_failure = 0),
      ROW(PALDISPSetScreenTapVol, (1)),
      ROW(PALDISPGetScreenTapVol, (room.Number())),

      // Manufacturing options, configuration store and registry files.
      ROW(PALMFGOpt_ConfigStoreRegUpdate, ()),
      ROW(PALMFGOpt_InternalDeviceType, (room.Number(), room.Number())),
      ROW(PALMFGOpt_InternalDevice2Type, (room.Number()), .on_failure = 255),
      ROW(PALMFGOpt_InternalDevice_ImageOrientation, (room.Number()), .on_failure = 0),
      ROW(PALMFGOpt_InternalDevice2_MountingRotation, (room.Number()), .on_failure = 0),
      ROW(PALMFGOpt_IsCameraEnabled, (room.Number())),
      ROW(PALMFGOpt_IsDravonelContentEnabled, (room.Number())),
      ROW(PALMFGOpt_IsDataCollectionContentEnabled, (room.Number()), .on_failure = 1),
      ROW(PALMFGOpt_IsBluetoothModuleInstalled, (room.Number())),
      ROW(PALMFGOpt_IsDisabledByPolicy, (u"Bluetooth")),
      ROW(PALMFGOpt_SetDPMStatus, (4, 7)),
      ROW(PALMFGOpt_SetDPMStatus, (1, 7), .path = "kept before", .arrange = &WithStatusFile),
      ROW(PALMFGOpt_GetDPMStatus, (4, room.Number()), .on_failure = 0),
      ROW(PALMFGOpt_GetDPMStatus, (4, room.Number()), .path = "kept before",
          .arrange = &WithStatusFile, .on_failure = 0),
      ROW(PALMFGOpt_PersistRegistry, ()),
      ROW(PALMFGOpt_PersistRegistry, (), .path = "by a service", .arrange = &WithFlushService),
      ROW(PALMFGOpt_RestoreDefaults, ()),
      ROW(PALMFGOpt_GetConfigString, (1)),
      ROW(PALREG_LoadRegistry, (u"\\Store", u"RM21.reg", 1), .arrange = &WithRegistryFile,
          .other_writes = OtherWrites::kAlways),
      ROW(PALUARTGetMuxMode, ()),
      ROW(PALUARTSetMuxMode, ()),

      // Switches and sensors.
      ROW(PALImageCaptureGetStatus, (room.Number())),
      ROW(PALImageCapture_SetEnable, (FALSE)),
      ROW(PALStore_GetUsbFuncDriver, (room.Number())),
      ROW(PALStore_GetUsbFuncDriver, (room.Number()), .path = "a volume",
          .arrange = &WithMassStorageClient),
      ROW(PALStore_SetUsbFuncDriver, (PAL_USB_SERIAL)),
      ROW(PALStore_SetUsbFuncDriver, (PAL_USB_MASS_STORAGE_2), .path = "a volume"),
      ROW(PALStore_GetUsbHostMassStorageEnable, (room.Number()), .on_failure = 0),
      ROW(PALStore_SetUsbHostMassStorageEnable, (FALSE)),
      ROW(PALStore_SetUsbHostMassStorageEnable, (TRUE), .path = "back",
          .arrange = &WithoutUsbDisks),
      ROW(PALOneWire_IsVehicleDockAttached, ()),

      // Identity.
      ROW(PALSysinfo_Init, ()),
      ROW(PALSysinfo_Term, ()),
      TEXT_ROWS(PALSysinfo_GetModelEx),
      TEXT_ROWS(PALSysinfo_GetFirmwareVerEx),
      TEXT_ROWS(PALSysinfo_GetSerialNumberEx),
      ROW(PALSysinfo_GetSerialNumberExA, (room.Text(600), room.InOut(600)), .path = "raw",
          .arrange = &WithRawSerialNumber),
      ROW(PALSysinfo_GetSerialNumberExA, (room.Text(600), room.InOut(600)),
          .path = "in the registry", .arrange = &WithoutSerialParameter),
      ROW(PALSysinfo_GetSerialNumberExA, (room.Text(600), room.InOut(600)), .path = "an adapter's",
          .arrange = &WithoutAnySerialNumber),
      ROW(PALSysinfo_GetSerialNumberExA, (room.Text(600), room.InOut(600)), .path = "device id",
          .arrange = &OfTheGreywingFamily),
      TEXT_ROWS(PALSysinfo_GetHwConfigEx),
      TEXT_ROWS(PALSysinfo_GetHwConfigEx, .path = "default", .arrange = &OfTheGreywingFamily),
      TEXT_ROWS(PALSysinfo_GetOSEx),
      TEXT_ROWS(PALSysinfo_GetOSVerEx),
      FIXED_TEXT_ROWS(PALSysinfo_GetModel),
      FIXED_TEXT_ROWS(PALSysinfo_GetFirmwareVersion),
      FIXED_TEXT_ROWS(PALSysinfo_GetSerialNumber),
      FIXED_TEXT_ROWS(PALSysinfo_GetHardwareConfiguration),
      FIXED_TEXT_ROWS(PALSysinfo_GetEtherMACAddress),
      ROW(PALSysinfo_GetOperatingSystem, (room.WideText()), .keeps_out = false),
      ROW(PALSysinfo_GetOperatingSystemW, (room.WideText(), room.WideText()), .keeps_out = false),
      ROW(PALSysinfo_GetOperatingSystemA, (room.Text(), room.Text()), .keeps_out = false),
      DETAIL_ROW(0),
      DETAIL_ROW(1),
      DETAIL_ROW(2),
      DETAIL_ROW(3),
      DETAIL_ROW(4),
      DETAIL_ROW(5),
      DETAIL_ROW(6),
      DETAIL_ROW(7),
      DETAIL_ROW(8),
      DETAIL_ROW(9),
      DETAIL_ROW(9, .arrange = WithParameter(0x0048, sim::TextAnswer("211907000421"))),
      DETAIL_ROW(10),
      ROW(PALSysinfo_GetDeviceDetailW, (9, room.WideText(600), room.InOut(600))),
      ROW(PALSysinfo_IsDravonelDevice, ()),
      ROW(PALSysinfo_IsDravonelDevice, (), .path = "let in", .arrange = &OfTheGreywingFamily),

      // Capabilities.
      CAPABILITY_ROWS("Camera"),
      CAPABILITY_ROWS("Wifi"),
      CAPABILITY_ROWS("Bluetooth"),
      CAPABILITY_ROWS("InternalScanner"),
      CAPABILITY_ROWS("Vibrate"),
      CAPABILITY_ROWS("WWAN", .arrange = &WithModem),
      CAPABILITY_ROWS("Accelerometer", .arrange = &WithAccelerometer),
      CAPABILITY_ROWS("unknown"),
      ROW(PALDevCap_GetDevCapsW, (u"unknown"),
          .arrange = With(R"(HKLM\Software\Dravonel\PAL\DeviceCapabilities)", "unknown", 1)),
      ROW(PALDevCap_EnabledW, (u"GPS"), .arrange = &WithModem),
      ROW(PalSysinfo_IsAccelInstalled, (), .arrange = &WithAccelerometer),
      ROW(PalSysinfo_IsBluetoothInstalled, ()),
      ROW(PalSysinfo_IsCameraInstalled, ()),
      ROW(PalSysinfo_IsCompassInstalled, ()),
      ROW(PalSysinfo_IsGpsInstalled, (), .arrange = &WithModem),
      ROW(PalSysinfo_IsIntScannerInstalled, ()),
      ROW(PalSysinfo_IsPedometerInstalled, ()),
      ROW(PalSysinfo_IsWwanInstalled, (), .arrange = &WithModem),

      // Scanner.
      ROW(PALSysio_Init, ()),
      ROW(PALSysio_Term, ()),
      ROW(PALSysio_Open, (), .after = &ClosesScanner),
      ROW(PALSysio_Open, (), .path = "once more", .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_Close, (), .before = &OpensScanner),
      ROW(PALSysio_SetScanTrigger, (TRUE), .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_SetScanEnable, (TRUE), .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_SetScanFlashEnable, (TRUE), .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_ControlScanPower, (PAL_SCANNER_POWER_UP), .before = &OpensScanner,
          .after = &ClosesScanner),
      ROW(PALSysio_ControlScanPower, (PAL_SCANNER_POWER_DOWN), .path = "down",
          .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_DVLSetScanPower, (TRUE), .before = &OpensScanner, .after = &ClosesScanner),
      ROW(PALSysio_GetBaudRateRange, (1, room.Number(), room.Number())),
      ROW(PALSysio_InternalScannerInterfaceInit, (), .before = &OpensScanner,
          .after = &ClosesScanner),
      ROW(PALSysio_InternalScannerInterfaceInit, (), .path = "an engine on the SPI clock",
          .arrange = &WithEngineOnSpiClock, .before = &OpensScanner, .after = &ClosesScanner),

      // Services of the provider.
      ROW(PALSysio_VirtualAllocCopy, (1, 2, room.Number()), .arrange = &WithProvider,
          .on_failure = 0, .once_per_process = true),
      ROW(PALSysio_MmMapIoSpace, (1, 2, 3, 4, room.Number()), .arrange = &WithProvider,
          .on_failure = 0, .once_per_process = true),
      ROW(PALSysio_ImagerAllocPhysMem, (1, 2, room.Number()), .arrange = &WithProvider,
          .on_failure = 0, .once_per_process = true),
      ROW(PALSysio_ImagerFreePhysMem, (1), .arrange = &WithProvider, .once_per_process = true),
      ROW(PALSysio_DVLEnableCamera, (1), .arrange = &WithProvider, .once_per_process = true),
      ROW(PALSysio_DVLEnableCameraClock, (1), .arrange = &WithProvider, .once_per_process = true),
      ROW(PALSysio_DVLEnableCameraPower, (1), .arrange = &WithProvider, .once_per_process = true),

      ROW(PALSysio_VirtualAllocCopy, (1, 2, room.Number()), .path = "without provider",
          .on_failure = 0, .once_per_process = true),

      // Passwords.
      ROW(PALSecurity_GetCabFilePasswordProtect, (room.Number())),
      ROW(PALSecurity_SetCabFilePasswordProtect, (1)),
      ROW(PALSecurity_CheckPx, (u"Installer", u"rugged21"), .arrange = &WithKeySet),
      ROW(PALSecurity_CheckPx, (u"Installer", u"rugged21"), .path = "the first",
          .before = &RemovesKeySet, .once_per_process = true),
  };
}

const sim::Device& SampleDevice() {
  static sim::Device device;
  static const auto identity = sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  return device;
}

}  // namespace

const std::vector<ExportRow>& ExportRows() {
  static const std::vector<ExportRow> rows = MakeRows();
  return rows;
}

void ArrangeFor(const ExportRow& row, sim::Device& device) {
  device.CopyFrom(SampleDevice());
  if (row.arrange) row.arrange(device);
}
