/**
 * @file palvalues.h
 * @brief Shared numbers: kinds of scanners, and levels of the tap sounds.
 */
#ifndef PALVALUES_H_
#define PALVALUES_H_

#include "paltypes.h"

/** The kinds of scanners that have settings of their own. */
typedef enum PALScanType {
  /** The scan engine inside the device. */
  PAL_SCAN_TYPE_INTERNAL = 0,
  /** A scanner at a cable. */
  PAL_SCAN_TYPE_TETHERED = 1,
  /** A Bluetooth scanner. */
  PAL_SCAN_TYPE_BLUETOOTH = 2,
  /** An RFID reader. */
  PAL_SCAN_TYPE_RFID = 3
} PALScanType;

/** How loud a tap on a key or on the screen sounds. */
typedef enum PALTapVolume {
  /** Silent. */
  PAL_TAP_VOLUME_OFF = 0,
  /** Soft. */
  PAL_TAP_VOLUME_SOFT = 1,
  /** Loud; the registry has 0x10002 for it. */
  PAL_TAP_VOLUME_LOUD = 2
} PALTapVolume;

#endif /* PALVALUES_H_ */
