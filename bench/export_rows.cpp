#include "bench/export_rows.h"

#include <cstring>
#include <vector>

#include "include/pal.h"
#include "platform/wince.h"

namespace bench {
namespace {

constexpr PALComPortPower kPort{};

// The size of a buffer, for a parameter that is replaced by that of the text.
template <typename Unit, size_t kUnits>
DWORD* SizeOf(DWORD& size, const Unit (&buffer)[kUnits]) {
  size = sizeof(buffer);
  return &size;
}

// What a row needs before its call, or behind it.

#define RUN(function, export_call)  \
  void function(Subject& subject) { \
    subject.pal().export_call;      \
  }
RUN(InitBeeper, PALBEEPInit.address()())
RUN(EndBeeper, PALBEEPTerm.address()())
RUN(InitLeds, PALLEDInit.address()())
RUN(EndLeds, PALLEDTerm.address()())
RUN(InitPower, PALPWRInit.address()())
RUN(EndPower, PALPWRTerm.address()())
RUN(OpenScanner, PALSysio_Open.address()())
RUN(CloseScanner, PALSysio_Close.address()())
RUN(StartTagSearch, PALBEEPStartTagSearch.address()())
RUN(StopTagSearch, PALBEEPStopTagSearch.address()())
RUN(EnableUsbDisks, PALStore_SetUsbHostMassStorageEnable.address()(TRUE))
#undef RUN

// A restart would end the caller: what leads to it is measured, and the kernel then refuses.
void RefuseRestart(Subject& subject) {
  subject.device().PlanFault({.call = "KernelIoControl", .from_then_on = true});
}
void AllowAgain(Subject& subject) {
  subject.device().ClearFaults();
}

void WriteRegistryFile(Subject& subject) {
  std::vector<std::uint8_t> bytes(4096, 'x');
  subject.device().files().Write("\\Temp\\settings.reg", bytes);
}

// The factory's nine priorities, and a number under a key of its own.
void WriteConfigStore(Subject& subject) {
  std::vector<std::uint8_t> bytes{0xBB};
  for (std::uint8_t index = 0; index < 9; ++index) bytes.insert(bytes.end(), {index, 100, 0});
  constexpr char kEntry[] =
      "\xAB"
      "DCEDriver:ReadTimeout\0\x88\x13";
  bytes.insert(bytes.end(), kEntry, kEntry + sizeof(kEntry) - 1);
  bytes.push_back(0xFF);
  subject.device().files().Write("\\ConfigStore\\dcecfg", bytes);
}

// The entry's two reasons.
void MeasureAttach(Subject& subject, Answer& /*answer*/) {
  subject.Attach();
}
void MeasureDetach(Subject& subject, Answer& /*answer*/) {
  subject.Detach();
}
void Detach(Subject& subject) {
  subject.Detach();
}
void Attach(Subject& subject) {
  subject.Attach();
}

// The arguments may take the answer's members.
#define CALL(name, ...) \
#name, [](Subject& subject, [[maybe_unused]] Answer& answer) {                       \
    answer.result = static_cast<std::uint32_t>(subject.pal().name.address()(__VA_ARGS__)); \
  }

constexpr Row kRows[] = {
    {"attach", &MeasureAttach, &Detach, &Detach, &Attach},
    {"detach", &MeasureDetach, nullptr, &Attach},
    {CALL(DllRegisterServer)},
    {CALL(DllUnregisterServer)},
    {CALL(PALBEEPBadRead)},
    {CALL(PALBEEPChangeConfig)},
    {CALL(PALBEEPChangeConfigError)},
    {CALL(PALBEEPGetGRI, 0, &answer.number)},
    {CALL(PALBEEPGetHeadsetBeeperVolume, &answer.number)},
    {CALL(PALBEEPGetHeadsetGain, &answer.number)},
    {CALL(PALBEEPGetSpeakerGain, 3, &answer.number)},
    {CALL(PALBEEPGetVolume, &answer.number)},
    {CALL(PALBEEPGoodReadEx, 0)},
    {CALL(PALBEEPInit), &EndBeeper, &EndBeeper, &InitBeeper},
    {CALL(PALBEEPKeyClick)},
    {CALL(PALBEEPSetGRI, 0, 1)},
    {CALL(PALBEEPSetHeadsetBeeperVolume, 2)},
    {CALL(PALBEEPSetHeadsetGain, 50)},
    {CALL(PALBEEPSetSpeakerGain, 3, 70)},
    {CALL(PALBEEPSetVolume, 4)},
    {CALL(PALBEEPStartTagSearch), nullptr, &StopTagSearch},
    {CALL(PALBEEPStopTagSearch), &StartTagSearch, &StartTagSearch, &StopTagSearch},
    {CALL(PALBEEPTerm), nullptr, &InitBeeper},
    {CALL(PALBOOT_BootTerminal, PAL_BOOT_PREPARED), &RefuseRestart, nullptr, &AllowAgain},
    {CALL(PALCOMxPwr_GetPower, TEXT("COM1"), &answer.port)},
    {CALL(PALCOMxPwr_Init)},
    {CALL(PALCOMxPwr_SetPower, TEXT("COM1"), &kPort)},
    {CALL(PALCOMxPwr_Term)},
    {CALL(PALDISPGetBrightLightDisplayBrightnessDelta, &answer.number)},
    {CALL(PALDISPGetDisplayBrightnessAmbient, &answer.number)},
    {CALL(PALDISPGetKeypadBacklightAmbient, &answer.number)},
    {CALL(PALDISPGetKeypadBacklightMode, &answer.number)},
    {CALL(PALDISPGetLowLightDisplayBrightnessDelta, &answer.number)},
    {CALL(PALDISPGetOrientation, &answer.degrees)},
    {CALL(PALDISPGetSIPDock, &answer.number)},
    {CALL(PALDISPGetScreenTapVol, &answer.number)},
    {CALL(PALDISPInit)},
    {CALL(PALDISPSetBrightLightDisplayBrightnessDelta, 4)},
    {CALL(PALDISPSetDisplayBrightnessAmbient, 3)},
    {CALL(PALDISPSetKeypadBacklightAmbient, 1)},
    {CALL(PALDISPSetKeypadBacklightMode, 2)},
    {CALL(PALDISPSetLowLightDisplayBrightnessDelta, 2)},
    {CALL(PALDISPSetOrientation, 90)},
    {CALL(PALDISPSetSIPDock, 1)},
    {CALL(PALDISPSetScreenTapVol, 2)},
    {CALL(PALDISPTerm)},
    {CALL(PALDevCap_EnabledA, "Camera")},
    {CALL(PALDevCap_EnabledW, TEXT("Bluetooth"))},
    {CALL(PALDevCap_GetDevCapsA, "Wifi")},
    {CALL(PALDevCap_GetDevCapsW, TEXT("InternalScanner"))},
    {CALL(PALImageCaptureGetStatus, &answer.number)},
    {CALL(PALImageCapture_SetEnable, 1)},
    {CALL(PALKEYControlKeyState, PAL_CONTROL_KEY_CONTRAST, 1)},
    {CALL(PALKEYGetButtonAction, 2, &answer.number)},
    {CALL(PALKEYGetButtonName, 2, answer.text, &answer.number)},
    {CALL(PALKEYGetKeyTapVol, &answer.number)},
    {CALL(PALKEYGetNumButtons, &answer.number)},
    {CALL(PALKEYGetShiftBehavior, &answer.number)},
    {CALL(PALKEYGetType, &answer.number)},
    {CALL(PALKEYInit)},
    {CALL(PALKEYSetButtonAction, 2, PAL_KEY_ACTION_SCAN)},
    {CALL(PALKEYSetKeyTapVol, 1)},
    {CALL(PALKEYSetShiftBehavior, PAL_SHIFT_BEHAVIOR_1)},
    {CALL(PALKEYTerm)},
    {CALL(PALLEDGrLedGetState, 0, &answer.number)},
    {CALL(PALLEDGrLedOff)},
    {CALL(PALLEDGrLedOn)},
    {CALL(PALLEDGrLedToggle, 0)},
    {CALL(PALLEDInit), &EndLeds, &EndLeds, &InitLeds},
    {CALL(PALLEDIsGrLedOn)},
    {CALL(PALLEDNotificationOff)},
    {CALL(PALLEDNotificationOn)},
    {CALL(PALLEDSysLightBlinkStart)},
    {CALL(PALLEDSysLightBlinkStop)},
    {CALL(PALLEDSysLightOff)},
    {CALL(PALLEDSysLightOn)},
    {CALL(PALLEDTerm), nullptr, &InitLeds},
    {CALL(PALMFGOpt_ConfigStoreRegUpdate), &WriteConfigStore},
    {CALL(PALMFGOpt_GetConfigString, 1)},
    {CALL(PALMFGOpt_GetDPMStatus, 0, &answer.number)},
    {CALL(PALMFGOpt_InternalDevice2Type, &answer.number)},
    {CALL(PALMFGOpt_InternalDevice2_MountingRotation, &answer.number)},
    {CALL(PALMFGOpt_InternalDeviceType, &answer.number, &answer.second)},
    {CALL(PALMFGOpt_InternalDevice_ImageOrientation, &answer.number)},
    {CALL(PALMFGOpt_IsBluetoothModuleInstalled, &answer.number)},
    {CALL(PALMFGOpt_IsCameraEnabled, &answer.number)},
    {CALL(PALMFGOpt_IsDataCollectionContentEnabled, &answer.number)},
    {CALL(PALMFGOpt_IsDisabledByPolicy, TEXT("Camera"))},
    {CALL(PALMFGOpt_IsDravonelContentEnabled, &answer.number)},
    {CALL(PALMFGOpt_PersistRegistry)},
    {CALL(PALMFGOpt_RestoreDefaults)},
    {CALL(PALMFGOpt_SetDPMStatus, 0, 1)},
    {CALL(PALOneWire_IsVehicleDockAttached)},
    {CALL(PALPWRGetBatteryLevel)},
    {CALL(PALPWRGetBatteryPercentRemaining)},
    {CALL(PALPWRGetBootOption, &answer.number)},
    {CALL(PALPWRGetDeviceOff_Batt, &answer.number)},
    {CALL(PALPWRGetDeviceOff_ExtPwr, &answer.number)},
    {CALL(PALPWRGetPwrButton, &answer.number)},
    {CALL(PALPWRGetScreenOff_Batt, &answer.number)},
    {CALL(PALPWRGetScreenOff_ExtPwr, &answer.number)},
    {CALL(PALPWRInit), &EndPower, &EndPower, &InitPower},
    {CALL(PALPWRSetBootOption, 1)},
    {CALL(PALPWRSetDeviceOff_Batt, 5)},
    {CALL(PALPWRSetDeviceOff_ExtPwr, 5)},
    {CALL(PALPWRSetPwrButton, 2)},
    {CALL(PALPWRSetScreenOff_Batt, 120)},
    {CALL(PALPWRSetScreenOff_ExtPwr, 120)},
    {CALL(PALPWRSuspendCtrl, 1)},
    {CALL(PALPWRTerm), nullptr, &InitPower},
    {CALL(PALREG_LoadRegistry, TEXT("\\Temp"), TEXT("settings.reg"), 0), &WriteRegistryFile},
    {CALL(PALSecurity_CheckPx, TEXT("Installer"), TEXT("rugged21"))},
    {CALL(PALSecurity_GetCabFilePasswordProtect, &answer.number)},
    {CALL(PALSecurity_SetCabFilePasswordProtect, 1)},
    {CALL(PALStore_GetUsbFuncDriver, &answer.number)},
    {CALL(PALStore_GetUsbHostMassStorageEnable, &answer.number)},
    {CALL(PALStore_SetUsbFuncDriver, 2)},
    {CALL(PALStore_SetUsbHostMassStorageEnable, FALSE), nullptr, &EnableUsbDisks},
    {CALL(PALSysinfo_GetDeviceDetailA, PAL_DETAIL_QUALIFIED_SERIAL_NUMBER, answer.text,
          SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetDeviceDetailW, PAL_DETAIL_FACTORY_DATE_1, answer.wide,
          SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetEtherMACAddress, answer.wide)},
    {CALL(PALSysinfo_GetEtherMACAddressA, answer.text)},
    {CALL(PALSysinfo_GetEtherMACAddressW, answer.wide)},
    {CALL(PALSysinfo_GetFirmwareVerExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetFirmwareVerExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetFirmwareVersion, answer.wide)},
    {CALL(PALSysinfo_GetFirmwareVersionA, answer.text)},
    {CALL(PALSysinfo_GetFirmwareVersionW, answer.wide)},
    {CALL(PALSysinfo_GetHardwareConfiguration, answer.wide)},
    {CALL(PALSysinfo_GetHardwareConfigurationA, answer.text)},
    {CALL(PALSysinfo_GetHardwareConfigurationW, answer.wide)},
    {CALL(PALSysinfo_GetHwConfigExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetHwConfigExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetModel, answer.wide)},
    {CALL(PALSysinfo_GetModelA, answer.text)},
    {CALL(PALSysinfo_GetModelExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetModelExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetModelW, answer.wide)},
    {CALL(PALSysinfo_GetOSExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetOSExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetOSVerExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetOSVerExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetOperatingSystem, answer.wide)},
    {CALL(PALSysinfo_GetOperatingSystemA, answer.text, answer.second_text)},
    {CALL(PALSysinfo_GetOperatingSystemW, answer.wide, answer.second_wide)},
    {CALL(PALSysinfo_GetSerialNumber, answer.wide)},
    {CALL(PALSysinfo_GetSerialNumberA, answer.text)},
    {CALL(PALSysinfo_GetSerialNumberExA, answer.text, SizeOf(answer.number, answer.text))},
    {CALL(PALSysinfo_GetSerialNumberExW, answer.wide, SizeOf(answer.number, answer.wide))},
    {CALL(PALSysinfo_GetSerialNumberW, answer.wide)},
    {CALL(PALSysinfo_Init)},
    {CALL(PALSysinfo_IsDravonelDevice)},
    {CALL(PALSysinfo_Term)},
    {CALL(PALSysio_Close), &OpenScanner, &OpenScanner, &CloseScanner},
    {CALL(PALSysio_ControlScanPower, PAL_SCANNER_POWER_UP), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_DVLEnableCamera, 1)},
    {CALL(PALSysio_DVLEnableCameraClock, 1)},
    {CALL(PALSysio_DVLEnableCameraPower, 1)},
    {CALL(PALSysio_DVLSetScanPower, 1), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_GetBaudRateRange, 1, &answer.number, &answer.second)},
    {CALL(PALSysio_ImagerAllocPhysMem, 1, 2, &answer.number)},
    {CALL(PALSysio_ImagerFreePhysMem, 1)},
    {CALL(PALSysio_Init)},
    {CALL(PALSysio_InternalScannerInterfaceInit), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_MmMapIoSpace, 1, 2, 3, 4, &answer.number)},
    {CALL(PALSysio_Open), nullptr, &CloseScanner},
    {CALL(PALSysio_SetScanEnable, 1), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_SetScanFlashEnable, 1), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_SetScanTrigger, 1), &OpenScanner, nullptr, &CloseScanner},
    {CALL(PALSysio_Term)},
    {CALL(PALSysio_VirtualAllocCopy, 1, 2, &answer.number)},
    {CALL(PALUARTGetMuxMode)},
    {CALL(PALUARTSetMuxMode)},
    {CALL(PALVER_LogVersion)},
    {CALL(PALVIBGetVibratePreset, &answer.number)},
    {CALL(PALVIBInit)},
    {CALL(PALVIBIsInstalled)},
    {CALL(PALVIBSetVibratePreset, 3)},
    {CALL(PALVIBVibrate, 0)},
    {CALL(PALVIBVibrateEx, 0)},
    {CALL(PalSysinfo_IsAccelInstalled)},
    {CALL(PalSysinfo_IsBluetoothInstalled)},
    {CALL(PalSysinfo_IsCameraInstalled)},
    {CALL(PalSysinfo_IsCompassInstalled)},
    {CALL(PalSysinfo_IsGpsInstalled)},
    {CALL(PalSysinfo_IsIntScannerInstalled)},
    {CALL(PalSysinfo_IsPedometerInstalled)},
    {CALL(PalSysinfo_IsWwanInstalled)},
};

#undef CALL

}  // namespace

std::span<const Row> Rows() {
  return kRows;
}

}  // namespace bench
