/**
 * @file palimagecapture.h
 * @brief Image capture: whether it is allowed, and the switch of the device's owner for it.
 * @family switches
 *
 * The switch is the DWORD "DisableImageCapture" under HKEY_LOCAL_MACHINE
 * "Software\Dravonel\Policy": 0 allows, any other number forbids. Any thread of any process may
 * call these functions. Nothing is kept between calls.
 */
#ifndef PALIMAGECAPTURE_H_
#define PALIMAGECAPTURE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What PALImageCaptureGetStatus answers. */
typedef enum PALImageCaptureStatus {
  /** The device was built without image capture, or no policy can be read. */
  PAL_IMAGE_CAPTURE_NOT_AVAILABLE = 0,
  /** The policy allows it. */
  PAL_IMAGE_CAPTURE_ENABLED = 1,
  /** The policy forbids it. */
  PAL_IMAGE_CAPTURE_DISABLED = 2
} PALImageCaptureStatus;

/** What PALImageCapture_SetEnable answers. No HRESULT: a failure is not below 0. */
typedef enum PALImageCaptureChange {
  /** The switch is set. */
  PAL_IMAGE_CAPTURE_CHANGED = 0,
  /** The switch is not set. */
  PAL_IMAGE_CAPTURE_NOT_CHANGED = 1
} PALImageCaptureChange;

/**
 * Tells whether images may be captured.
 *
 * A device whose non-volatile parameter 0xD7 (the AIT bit) is not 0 has no image capture; its
 * policy is not read. On any other device the policy decides, and is read again by every call. A
 * parameter that cannot be read counts as 0; the debug output says so. The steps with the policy
 * are traced with facility 1094.
 *
 * @param[out] status  #PALImageCaptureStatus. PAL_IMAGE_CAPTURE_NOT_AVAILABLE also if the key or
 *                     the value of the policy does not exist, cannot be read or has more than four
 *                     bytes. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p status is null.
 */
HRESULT PALAPI PALImageCaptureGetStatus(DWORD* status);

/**
 * Allows or forbids image capture: writes the value of the policy. Failures are traced with
 * facility 1114.
 *
 * @param enable  0 forbids and stores 1. Any other number allows and stores 0.
 *
 * @retval PAL_IMAGE_CAPTURE_CHANGED      The value was written.
 * @retval PAL_IMAGE_CAPTURE_NOT_CHANGED  The key of the policy does not exist or cannot be opened,
 *                                        or the value cannot be written.
 */
DWORD PALAPI PALImageCapture_SetEnable(BOOL enable);

PAL_INTERFACE_END

#endif /* PALIMAGECAPTURE_H_ */
