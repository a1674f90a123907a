// The numbers of the families, in trace categories and in the families' own failure codes.
#ifndef FRAME_FACILITY_H_
#define FRAME_FACILITY_H_

#include "platform/wince.h"

namespace pal {

enum class Facility : DWORD {
  kBeeper = 1003,  // and the good-read indicator
  kLed = 1004,
  kKeypad = 1005,
  kDisplay = 1006,  // and the apply of audio settings
  kPower = 1007,
  kConfigStore = 1008,  // also manufacturing options and registry persistence
  kScanner = 1009,
  kVibrator = 1015,
  kBoot = 1018,
  kDeviceInformation = 1039,
  kProvider = 1068,  // loading of the library behind the forwarded services
  kVersion = 1071,
  kManufacturingOption = 1074,  // failure codes only
  kImageCapturePolicy = 1094,   // and security
  kConfigStoreAccess = 1102,    // and the UART multiplexer
  kUsb = 1103,
  kSdmmc = 1114,  // and the image-capture switch
  kActiveSync = 1115,
  kOneWire = 1116,
  kRegistryFile = 1118,
  kLp = 1236,
};

}  // namespace pal

#endif  // FRAME_FACILITY_H_
