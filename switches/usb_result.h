// The failure codes of the USB switches.
#ifndef SWITCHES_USB_RESULT_H_
#define SWITCHES_USB_RESULT_H_

#include "frame/result.h"

namespace pal {

inline constexpr HRESULT kUsbBadInput = FamilyFailure(Facility::kUsb, 1);
inline constexpr HRESULT kUsbSelectFailed = FamilyFailure(Facility::kUsb, 2);
inline constexpr HRESULT kUsbGetFailed = FamilyFailure(Facility::kUsb, 3);
inline constexpr HRESULT kUsbBusNotOpened = FamilyFailure(Facility::kUsb, 4);
inline constexpr HRESULT kUsbUnknownClient = FamilyFailure(Facility::kUsb, 5);

}  // namespace pal

#endif  // SWITCHES_USB_RESULT_H_
