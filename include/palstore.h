/**
 * @file palstore.h
 * @brief The USB port: what the device is to a host, and whether it takes USB disks.
 *
 * As a function device the port presents one client driver at a time to a host computer. The
 * driver is chosen on the function bus, the device "$bus\OTG_0_2_0", which is opened for the time
 * of one call. The volume that the mass-storage client exposes is the text "DeviceName" under
 * HKEY_LOCAL_MACHINE "\Drivers\USB\FunctionDrivers\Mass_Storage_Class".
 *
 * As a host the device loads a client driver for an attached disk. Each subkey of
 * HKEY_LOCAL_MACHINE "\Drivers\USB\ClientDrivers\Mass_Storage_Class" is one; its text "Dll" names
 * the driver. A driver is hidden by storing that text as "Dll__" in its place.
 *
 * The functions here may be called from any thread of any process. They take no lock: of two
 * callers that switch at once either may win, and the two may leave drivers of both kinds.
 *
 * The steps on the bus, the end of a walk through the client drivers, and failures are traced with
 * facility 1103. These failures have no line of their own: a null pointer, a "DeviceName" that
 * cannot be read or written, and a "Dll" that cannot be read.
 */
#ifndef PALSTORE_H_
#define PALSTORE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What the device is to a USB host. */
typedef enum PALUsbFunction {
  /** The client "Serial_Class". */
  PAL_USB_SERIAL = 0,
  /** The client "RNDIS": a network adapter. */
  PAL_USB_RNDIS = 1,
  /** The client "Mass_Storage_Class" with the volume "DSK1:". */
  PAL_USB_MASS_STORAGE_1 = 2,
  /** The client "Mass_Storage_Class" with the volume "DSK2:". */
  PAL_USB_MASS_STORAGE_2 = 3
} PALUsbFunction;

/**
 * What the device is to a USB host now.
 *
 * The bus is asked for its current client (control 0x0022000C); for the mass-storage client the
 * volume's name is read and stands for the client. The name is compared without regard to case.
 *
 * @param[out] option  A PALUsbFunction. Not null. Unchanged on failure.
 *
 * @retval S_OK       answered
 * @retval E_FAIL     @p option is null
 * @retval PAL_STORE_E_INVALID_INPUT the current client's name has more than 127 characters
 * @retval PAL_STORE_E_GET_FAILED the bus does not tell its current client
 * @retval PAL_STORE_E_BUS_NOT_OPENED the bus cannot be opened
 * @retval PAL_STORE_E_UNKNOWN_CLIENT there is no current client, or it is none of the four; the
 * volume's name is neither "DSK1:" nor "DSK2:", is missing, cannot be read or is longer than 256
 *                    bytes
 */
HRESULT PALAPI PALStore_GetUsbFuncDriver(DWORD* option);

/**
 * Chooses what the device is to a USB host.
 *
 * The client's name is given to the bus twice, with control 0x00220018 and then 0x00220010. Between
 * the two the mass-storage client's volume is written to "DeviceName", whose key must exist. The
 * first failure ends the call; what was done before it stays.
 *
 * @param option  A PALUsbFunction, 0 to 3.
 *
 * @retval S_OK        chosen
 * @retval PAL_STORE_E_INVALID_INPUT  @p option is above 3; neither the bus nor the registry is
 * touched
 * @retval PAL_STORE_E_SELECT_FAILED  the bus refuses the client in one of the two steps
 * @retval PAL_STORE_E_BUS_NOT_OPENED  the bus cannot be opened
 * @retval PAL_E_WIN32(error)  the system error of writing the volume's name: PAL_E_FILE_NOT_FOUND
 * where its key does not exist. The second step is not made
 */
HRESULT PALAPI PALStore_SetUsbFuncDriver(DWORD option);

/**
 * Whether the device takes USB disks: whether one client driver at least has a text "Dll".
 *
 * @param[out] enabled  1 or 0; 0 where there is no driver at all, and on every failure but that of
 *                      a null pointer. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p enabled is null
 * @retval PAL_E_WIN32(error)  the system error of opening the drivers' key (PAL_E_FILE_NOT_FOUND
 * where it does not exist), of listing or opening a driver, or of reading its "Dll";
 * PAL_E_MORE_DATA where that is longer than 520 bytes
 */
HRESULT PALAPI PALStore_GetUsbHostMassStorageEnable(DWORD* enabled);

/**
 * Lets the device take USB disks or not: gives every client driver's text the name "Dll" or
 * "Dll__". The text is written under its new name, over any value that stands there, and then the
 * value under the old name is deleted.
 *
 * Drivers that have no text under the old name are passed over, so that a second call changes
 * nothing. The walk goes in the registry's order and ends at the first failure: the drivers before
 * it are changed, the one where it failed may have both names, those behind it are as they were.
 *
 * @param enable  Not 0: disks are taken; 0: they are not.
 *
 * @retval S_OK        no driver has a text under the old name any more
 * @retval PAL_E_WIN32(error)  the system error of opening the drivers' key (PAL_E_FILE_NOT_FOUND
 * where it does not exist), of listing or opening a driver, or of reading, writing or deleting its
 * text; PAL_E_MORE_DATA where that is longer than 520 bytes
 */
HRESULT PALAPI PALStore_SetUsbHostMassStorageEnable(BOOL enable);

PAL_INTERFACE_END

#endif /* PALSTORE_H_ */
