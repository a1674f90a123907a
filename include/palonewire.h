/**
 * @file palonewire.h
 * @brief The one-wire bus: whether the device stands in a vehicle dock.
 *
 * A vehicle dock has a one-wire memory device whose first record carries the dock's part number.
 * The bus is reached through the driver "WIR1:", which is opened for the time of one call. The
 * functions here may be called from any thread of any process; nothing is kept between calls.
 */
#ifndef PALONEWIRE_H_
#define PALONEWIRE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Searches the one-wire bus for a vehicle dock: a memory device with the part number "871231" in
 * bytes 1 to 6 of its memory.
 *
 * A device on the bus that cannot be read is passed over; at most 256 devices are asked. Each step
 * and each failure is traced with facility 1116.
 *
 * The answer is a yes/no value and no HRESULT.
 *
 * @retval 1  a dock is attached
 * @retval 0  none is; also where there is no driver "WIR1:", where it cannot be opened, and where
 *            the search of the bus or the count of its devices fails
 */
DWORD PALAPI PALOneWire_IsVehicleDockAttached(void);

PAL_INTERFACE_END

#endif /* PALONEWIRE_H_ */
