/**
 * @file palimagecapture.h
 * @brief Whether images may be captured, and the owner's switch for it.
 *
 * The switch is the DWORD "DisableImageCapture" under HKEY_LOCAL_MACHINE
 * "Software\Dravonel\Policy": 0 allows, anything else forbids. The functions here may be called
 * from any thread of any process; nothing is kept between calls.
 */
#ifndef PALIMAGECAPTURE_H_
#define PALIMAGECAPTURE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** The answers of PALImageCaptureGetStatus. */
typedef enum PALImageCaptureStatus {
  /** The device was built without it, or there is no policy to tell. */
  PAL_IMAGE_CAPTURE_NOT_AVAILABLE = 0,
  PAL_IMAGE_CAPTURE_ENABLED = 1,
  /** Forbidden by the policy. */
  PAL_IMAGE_CAPTURE_DISABLED = 2
} PALImageCaptureStatus;

/**
 * Whether images may be captured.
 *
 * A device whose non-volatile parameter 0xD7 (the AIT bit) is not 0 has no image capture; a
 * parameter that cannot be read rules nothing out and is told on the debug output. On any other
 * device the policy decides. Its key is read with every call; each step is traced with facility
 * 1094.
 *
 * @param[out] status  A PALImageCaptureStatus. 0 also where the policy's key or value does not
 *                     exist or cannot be read; a value of more than four bytes cannot. Not null.
 *
 * @retval S_OK   answered
 * @retval E_FAIL @p status is null
 */
HRESULT PALAPI PALImageCaptureGetStatus(DWORD* status);

/**
 * Allows or forbids image capture: writes the policy's value. Its key must exist. Failures are
 * traced with facility 1114.
 *
 * @param enable  0 forbids and stores 1; anything else allows and stores 0.
 *
 * The answer is a number and no HRESULT.
 *
 * @retval 0  the value was written
 * @retval 1  the policy's key does not exist or cannot be opened, or the value cannot be written
 */
DWORD PALAPI PALImageCapture_SetEnable(BOOL enable);

PAL_INTERFACE_END

#endif /* PALIMAGECAPTURE_H_ */
