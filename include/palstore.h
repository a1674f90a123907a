/**
 * @file palstore.h
 * @brief The USB port: what the device is for a host computer, and whether it takes USB disks.
 * @family switches
 *
 * As a USB function the port presents one client driver at a time to a host computer. The driver is
 * chosen on the function bus, the device "$bus\OTG_0_2_0", which is opened for the time of one
 * call. The mass-storage client exposes the volume in the text "DeviceName" under
 * HKEY_LOCAL_MACHINE "\Drivers\USB\FunctionDrivers\Mass_Storage_Class".
 *
 * As a USB host the device loads a client driver for an attached disk. Each subkey of
 * HKEY_LOCAL_MACHINE "\Drivers\USB\ClientDrivers\Mass_Storage_Class" is one client driver, and its
 * text "Dll" is the file of the driver. To hide the driver, the text is stored as "Dll__" instead.
 *
 * Any thread of any process may call these functions. They take no lock. Of two callers that switch
 * at once either can win, and some drivers can stay on and others off.
 *
 * The steps on the bus, the end of a walk through the client drivers, and failures are traced with
 * facility 1103. These failures have no line: a null pointer, a "DeviceName" that cannot be read or
 * written, and a "Dll" that cannot be read.
 */
#ifndef PALSTORE_H_
#define PALSTORE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What the device is for a USB host. */
typedef enum PALUsbFunction {
  /** A serial port: the client "Serial_Class". */
  PAL_USB_SERIAL = 0,
  /** A network adapter: the client "RNDIS". */
  PAL_USB_RNDIS = 1,
  /** A disk: the client "Mass_Storage_Class" with the volume "DSK1:". */
  PAL_USB_MASS_STORAGE_1 = 2,
  /** A disk: the client "Mass_Storage_Class" with the volume "DSK2:". */
  PAL_USB_MASS_STORAGE_2 = 3
} PALUsbFunction;

/**
 * Tells what the device is for a USB host now.
 *
 * The bus is asked for its current client, with control 0x0022000C. If this is the mass-storage
 * client, the text "DeviceName" is used in place of its name. The text is then compared with all
 * four of "Serial_Class", "RNDIS", "DSK1:" and "DSK2:", in any case. A "DeviceName" of "RNDIS"
 * therefore counts as PAL_USB_RNDIS, and a client named "DSK1:" as PAL_USB_MASS_STORAGE_1.
 *
 * @param[out] option  #PALUsbFunction. Unchanged on failure. Not null.
 *
 * @retval S_OK  Answered.
 * @retval E_FAIL  @p option is null.
 * @retval PAL_STORE_E_INVALID_INPUT   The name of the current client has more than 127 characters.
 * @retval PAL_STORE_E_GET_FAILED      The bus does not tell its current client.
 * @retval PAL_STORE_E_BUS_NOT_OPENED  The bus cannot be opened.
 * @retval PAL_STORE_E_UNKNOWN_CLIENT  There is no current client, or the text is none of the four.
 *               Also if "DeviceName" does not exist, cannot be read or has more than 256 bytes.
 */
HRESULT PALAPI PALStore_GetUsbFuncDriver(DWORD* option);

/**
 * Chooses what the device is for a USB host.
 *
 * The name of the client is given to the bus twice, with control 0x00220018 and then 0x00220010.
 * For the mass-storage client its volume is written to "DeviceName" between the two; the key must
 * exist. The first failure ends the call, and what was done before it stays.
 *
 * @param option  #PALUsbFunction.
 *
 * @retval S_OK  Chosen.
 * @retval PAL_STORE_E_INVALID_INPUT   @p option is above 3. Neither the bus nor the registry was
 *               used.
 * @retval PAL_STORE_E_SELECT_FAILED   The bus refuses the client in one of the two steps.
 * @retval PAL_STORE_E_BUS_NOT_OPENED  The bus cannot be opened.
 * @retval PAL_E_WIN32(error)  The error of writing "DeviceName": PAL_E_FILE_NOT_FOUND if its key
 *               does not exist. The second step is not made.
 */
HRESULT PALAPI PALStore_SetUsbFuncDriver(DWORD option);

/**
 * Tells whether the device takes USB disks: whether at least one client driver has a text "Dll".
 *
 * @param[out] enabled  1 or 0. 0 also if there is no client driver at all, and on failure. Not
 *                      null.
 *
 * @retval S_OK  Answered.
 * @retval E_FAIL  @p enabled is null.
 * @retval PAL_E_WIN32(error)  The error of opening the key of the drivers (PAL_E_FILE_NOT_FOUND if
 *               it does not exist), of listing or opening a driver, or of reading its "Dll"
 *               (PAL_E_MORE_DATA if that has more than 520 bytes).
 */
HRESULT PALAPI PALStore_GetUsbHostMassStorageEnable(DWORD* enabled);

/**
 * Sets whether the device takes USB disks: every client driver gets its text under the name "Dll"
 * or "Dll__". The text is first written under the new name, over any value there. Then the value
 * under the old name is deleted.
 *
 * Drivers without a text under the old name are left as they are. A second call therefore changes
 * nothing. The walk follows the order of the registry and ends at the first failure. The drivers
 * before it are changed, the one that failed can have both names, and those after it are not
 * changed.
 *
 * @param enable  Not 0: take disks.
 *
 * @retval S_OK  No driver has a text under the old name any more.
 * @retval PAL_E_WIN32(error)  The error of opening the key of the drivers (PAL_E_FILE_NOT_FOUND if
 *               it does not exist), of listing or opening a driver, or of reading, writing or
 *               deleting its text (PAL_E_MORE_DATA if that has more than 520 bytes).
 */
HRESULT PALAPI PALStore_SetUsbHostMassStorageEnable(BOOL enable);

PAL_INTERFACE_END

#endif /* PALSTORE_H_ */
