/**
 * @file palscan.h
 * @brief The internal scan engine: its driver, power, trigger and modes.
 *
 * The engine is reached through the driver "SCD1:", which knows one user at a time. PALSysio_Open
 * comes before every other function, PALSysio_InternalScannerInterfaceInit once after it when the
 * reading stack starts, PALSysio_Close at the end.
 *
 * Two kinds of engine differ in the order of steps and in the trigger. The engines ENG14 and ENG13
 * (internal device types 37 and 38, see PALMFGOpt_InternalDeviceType) are enabled before they get
 * power and disabled before they lose it, have their trigger on the SPI clock line, where it is
 * inverted, and are brought up under a system-wide mutex. All other engines get and lose their
 * power first and have a trigger of their own. PALSysio_Open learns of an engine 37 or 38,
 * PALSysio_InternalScannerInterfaceInit of every engine; before either the engine counts as one of
 * the others.
 *
 * Each process keeps the driver's handle, the engine's type and the power state that it set last;
 * the power state is never read back from the driver. Any thread may call, but nothing is locked:
 * callers make their calls one after another. Every driver operation is traced with facility 1009,
 * a failure with the system error: 6 where the driver is not open.
 *
 * A switch is off at 0 and on at any other number. The trace shows the number as it was given, with
 * two exceptions: PALSysio_DVLSetScanPower shows 1 for any number but 0, and the operation that
 * PALSysio_SetScanFlashEnable leads to shows the mode, 0 for download and 1 for normal.
 */
#ifndef PALSCAN_H_
#define PALSCAN_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What PALSysio_ControlScanPower shall make of the engine: a PAL_SCANNER_... */
typedef DWORD PAL_SCAN_POWER_CONTROL_E;

enum {
  /** Disabled and without power. */
  PAL_SCANNER_POWER_DOWN = 0,
  /** Enabled and with power. */
  PAL_SCANNER_POWER_UP = 1,
  /** Disabled; the power stays as it is. */
  PAL_SCANNER_IDLE = 2
};

/**
 * Does nothing; PALSysio_Open prepares what there is.
 *
 * @retval S_OK  always
 */
HRESULT PALAPI PALSysio_Init(void);

/**
 * Does nothing; the driver stays open.
 *
 * @retval S_OK  always
 */
HRESULT PALAPI PALSysio_Term(void);

/**
 * Opens the scan driver "SCD1:", for reading and writing and not to be shared, and learns whether
 * the engine is one of the types 37 and 38. A driver that is open already is closed first.
 *
 * A driver that does not open is traced with its error and does not make this function fail: the
 * driver operations fail then.
 *
 * @retval S_OK  done, with or without a driver: this is the result of PALMFGOpt_InternalDeviceType
 */
HRESULT PALAPI PALSysio_Open(void);

/**
 * Closes the scan driver. Neither power nor trigger change.
 *
 * @retval S_OK  always, also where the driver was not open
 */
HRESULT PALAPI PALSysio_Close(void);

/**
 * Pulls or lets go of the trigger: control 0x22006C with 1 or 0; for the engines 37 and 38 control
 * 0x2200D0 with the inverse.
 *
 * @param trigger_on  not 0: pull.
 *
 * @retval S_OK    done
 * @retval E_FAIL  the driver is not open or refused
 */
HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on);

/**
 * Lets the engine scan, or not: control 0x22004C with 1 or 0.
 *
 * @param enable  not 0: let it scan.
 *
 * @retval S_OK    done
 * @retval E_FAIL  the driver is not open or refused
 */
HRESULT PALAPI PALSysio_SetScanEnable(BOOL enable);

/**
 * Puts the engine into flash-download operation, or back into normal operation: control 0x22003C
 * with 1 for download and 0 for normal.
 *
 * @param download_enable  not 0: download.
 *
 * @retval S_OK    done
 * @retval E_FAIL  the driver is not open or refused
 */
HRESULT PALAPI PALSysio_SetScanFlashEnable(BOOL download_enable);

/**
 * Switches the engine's power and enables or disables it, in the order that the engine needs.
 *
 * An engine that has power by what this process did last is only enabled at PAL_SCANNER_POWER_UP.
 * Where two steps are due, the second is made also when the first fails.
 *
 * @param mode  PAL_SCANNER_POWER_DOWN, PAL_SCANNER_POWER_UP or PAL_SCANNER_IDLE.
 *
 * @retval S_OK    done
 * @retval E_FAIL  a step failed because the driver is not open or refused, or @p mode is no mode;
 *                 the driver then gets nothing
 */
HRESULT PALAPI PALSysio_ControlScanPower(PAL_SCAN_POWER_CONTROL_E mode);

/**
 * Switches the engine's power alone: control 0x220044 with 1 or 0. For callers that enable the
 * engine themselves.
 *
 * @param on  not 0: power on.
 *
 * @retval S_OK    done
 * @retval E_FAIL  the driver is not open or refused; the power state stays as it was
 */
HRESULT PALAPI PALSysio_DVLSetScanPower(BOOL on);

/**
 * The rates at which an engine may be spoken to, the same for every port.
 *
 * @param      port     Without meaning.
 * @param[out] minimum  1200 baud. Not null.
 * @param[out] maximum  460800 baud. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p minimum or @p maximum is null; neither is written
 */
HRESULT PALAPI PALSysio_GetBaudRateRange(DWORD port, DWORD* minimum, DWORD* maximum);

/**
 * Brings the engine up when the reading stack starts: learns its type, puts it into normal
 * operation and makes PAL_SCANNER_POWER_UP of it.
 *
 * The engines 37 and 38 also get their trigger let go, and all of it is done under the system-wide
 * mutex "DCEDRIVER_INIT_SEPARATOR". It is waited for at most 60000 ms; the steps are made also
 * where it could not be had.
 *
 * The power counts as on afterwards, whatever the driver said. Steps that the driver refuses are
 * traced and do not change the result.
 *
 * @retval S_OK    done
 * @retval E_FAIL  the mutex was not free in time; the steps were made without it
 */
HRESULT PALAPI PALSysio_InternalScannerInterfaceInit(void);

PAL_INTERFACE_END

#endif /* PALSCAN_H_ */
