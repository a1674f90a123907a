/**
 * @file palsysio.h
 * @brief Physical memory and the camera's supplies: services that another library does.
 *
 * That library, the provider, differs from platform to platform and is named "DVLORQPAL.dll" as
 * this one is. The first call of a process that needs it loads it: by its name, and failing that
 * from the folder of the process's program; while none is found, the first call of each further
 * service looks again. What turns out to be this library itself is not used. With its first call
 * each service here looks up the provider's export of the same name and keeps what it found until
 * the process ends, be it that there is none. The provider is never freed.
 *
 * The platform tells the libraries of a process apart by their file name without extension,
 * whatever their folder. A process that has this library loaded as "DVLORQPAL.dll" gets this
 * library again from every path of that name, and the services answer as with a missing provider.
 * Where they are needed, the installer installs this library under another file name, beside the
 * provider, and the programs load it by that name.
 *
 * The functions here may be called from any thread of any process. They take no lock and add no
 * rule of their own to those of the provider. Only the loading and a missing export are traced,
 * with facility 1068.
 */
#ifndef PALSYSIO_H_
#define PALSYSIO_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Has the provider map memory for the caller and copy what it maps.
 *
 * @param a             Passed on as it is; the provider says what it means. So is @p b.
 * @param b             See @p a.
 * @param[out] address  The address; 0 on failure. Not null.
 *
 * @retval S_OK    @p address is not 0
 * @retval E_FAIL  @p address is null (nothing is loaded or called); or the provider refused, gave
 *                 the address 0, lacks the service, or is missing
 */
HRESULT PALAPI PALSysio_VirtualAllocCopy(DWORD a, DWORD b, DWORD* address);

/**
 * Has the provider map a range of physical addresses.
 *
 * @param a             Passed on as it is; the provider says what it means. So are @p b to @p d.
 * @param b             See @p a.
 * @param c             See @p a.
 * @param d             See @p a.
 * @param[out] address  The address; 0 on failure. Not null.
 *
 * @retval S_OK    @p address is not 0
 * @retval E_FAIL  @p address is null (nothing is loaded or called); or the provider refused, gave
 *                 the address 0, lacks the service, or is missing
 */
HRESULT PALAPI PALSysio_MmMapIoSpace(DWORD a, DWORD b, DWORD c, DWORD d, DWORD* address);

/**
 * Has the provider allocate physical memory for the imager.
 *
 * @param a             Passed on as it is; the provider says what it means. So is @p b.
 * @param b             See @p a.
 * @param[out] address  The address; 0 on failure. Not null.
 *
 * @retval S_OK    @p address is not 0
 * @retval E_FAIL  @p address is null (nothing is loaded or called); or the provider refused, gave
 *                 the address 0, lacks the service, or is missing
 */
HRESULT PALAPI PALSysio_ImagerAllocPhysMem(DWORD a, DWORD b, DWORD* address);

/**
 * Has the provider free physical memory of the imager.
 *
 * @param memory  Passed on as it is: what PALSysio_ImagerAllocPhysMem gave.
 *
 * @retval S_OK  always, whatever the provider answers and also where it is missing
 */
HRESULT PALAPI PALSysio_ImagerFreePhysMem(DWORD memory);

/**
 * Has the provider switch the camera.
 *
 * @param enable  Passed on as it is; 0 is off.
 *
 * @retval S_OK    the provider answered other than 0
 * @retval E_FAIL  the provider answered 0, lacks the service, or is missing
 */
HRESULT PALAPI PALSysio_DVLEnableCamera(DWORD enable);

/** As PALSysio_DVLEnableCamera, for the camera's clock. */
HRESULT PALAPI PALSysio_DVLEnableCameraClock(DWORD enable);

/** As PALSysio_DVLEnableCamera, for the camera's power. */
HRESULT PALAPI PALSysio_DVLEnableCameraPower(DWORD enable);

PAL_INTERFACE_END

#endif /* PALSYSIO_H_ */
