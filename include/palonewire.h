/**
 * @file palonewire.h
 * @brief The one-wire bus: whether the device stands in a vehicle dock.
 * @family sysinfo/dock
 *
 * A vehicle dock has a one-wire memory device. Its first record carries the part number of the
 * dock. The driver of the bus, "WIR1:", is opened for the time of one call. Any thread of any
 * process may call; nothing is kept between calls.
 */
#ifndef PALONEWIRE_H_
#define PALONEWIRE_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What PALOneWire_IsVehicleDockAttached answers. No HRESULT. */
typedef enum PALVehicleDock {
  /** No dock was found. */
  PAL_VEHICLE_DOCK_NOT_ATTACHED = 0,
  /** The device stands in a dock. */
  PAL_VEHICLE_DOCK_ATTACHED = 1
} PALVehicleDock;

/**
 * Searches the one-wire bus for a vehicle dock: a memory device with the part number "871231" in
 * bytes 1 to 6 of its memory.
 *
 * At most 256 devices are asked. A device whose id, memory size or memory cannot be read is left
 * out. Steps and failures are traced with facility 1116. One failure has no line: a request for the
 * memory size that the platform refuses.
 *
 * @retval PAL_VEHICLE_DOCK_ATTACHED      A dock is attached.
 * @retval PAL_VEHICLE_DOCK_NOT_ATTACHED  No dock is attached. Also if the driver "WIR1:" does not
 *                     exist or cannot be opened, or if the bus cannot be searched or its devices
 *                     cannot be counted.
 */
DWORD PALAPI PALOneWire_IsVehicleDockAttached(void);

PAL_INTERFACE_END

#endif /* PALONEWIRE_H_ */
