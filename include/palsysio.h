/**
 * @file palsysio.h
 * @brief Forwarded services: physical memory and the supplies of the camera, by another library.
 * @family frame
 *
 * The other library, the provider, differs from platform to platform. It is named "DVLORQPAL.dll",
 * as this library is. The first call of a process that needs it loads it by this name, and if that
 * fails, from the folder of the process's program. Its PALVER_LogVersion is then called, so that
 * the log tells which one was loaded. If there is none, the first call of each further service
 * looks again. What turns out to be this library itself is not used. The first call of a service
 * looks up the provider's export of the same name. The process keeps what it found, even if this is
 * nothing. The provider is never freed.
 *
 * The platform tells libraries apart by their file name without its extension, whatever the folder.
 * A process that has loaded this library under the name "DVLORQPAL" therefore gets this library
 * again in place of the provider, and the services fail as without a provider. An installer that
 * wants both must install this library under another file name, and let programs load it by that
 * name.
 *
 * Any thread of any process may call these functions. They take no lock, and add no rule of their
 * own to those of the provider. Only the loading and a missing export are traced, with facility
 * 1068.
 */
#ifndef PALSYSIO_H_
#define PALSYSIO_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Maps memory for the caller and copies what it maps.
 *
 * @param a             Passed on. The provider gives it its meaning.
 * @param b             Passed on. The provider gives it its meaning.
 * @param[out] address  The address. 0 on failure. Not null.
 *
 * @retval S_OK    The provider has given an address.
 * @retval E_FAIL  @p address is null; the provider is not loaded or called. Or there is no
 *                 provider, it does not have this service, it refused, or it gave the address 0.
 */
HRESULT PALAPI PALSysio_VirtualAllocCopy(DWORD a, DWORD b, DWORD* address);

/**
 * Maps a range of physical addresses.
 *
 * @param c  Passed on. The provider gives it its meaning.
 * @param d  Passed on. The provider gives it its meaning.
 * @like PALSysio_VirtualAllocCopy
 */
HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address);
/** Allocates physical memory for the imager. @like PALSysio_VirtualAllocCopy */
HRESULT PALAPI PALSysio_ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address);

/**
 * Frees physical memory of the imager.
 *
 * @param memory  Passed on: what PALSysio_ImagerAllocPhysMem has given.
 *
 * @retval S_OK  Always, whatever the provider answers, and without a provider too.
 */
HRESULT PALAPI PALSysio_ImagerFreePhysMem(DWORD memory);

/**
 * Switches the camera.
 *
 * @param enable  Passed on. 0 is off.
 *
 * @retval S_OK    The provider answered any number but 0.
 * @retval E_FAIL  The provider answered 0. Or there is no provider, or it does not have this
 *                 service.
 */
HRESULT PALAPI PALSysio_DVLEnableCamera(DWORD enable);
/** Switches the clock of the camera. @like PALSysio_DVLEnableCamera */
HRESULT PALAPI PALSysio_DVLEnableCameraClock(DWORD enable);
/** Switches the power of the camera. @like PALSysio_DVLEnableCamera */
HRESULT PALAPI PALSysio_DVLEnableCameraPower(DWORD enable);

PAL_INTERFACE_END

#endif /* PALSYSIO_H_ */
