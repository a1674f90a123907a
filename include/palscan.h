/**
 * @file palscan.h
 * @brief The internal scan engine: its driver, power, trigger and modes.
 * @family scanner
 *
 * The engine is reached through the driver "SCD1:", which only one program can have open. Call
 * PALSysio_Open before every other function, PALSysio_InternalScannerInterfaceInit once after it
 * when the reading stack starts, and PALSysio_Close at the end.
 *
 * Two engines, PAL_DEVICE_TYPE_ENG14 and PAL_DEVICE_TYPE_ENG13 (see PALMFGOpt_InternalDeviceType),
 * differ from all others:
 *
 * - They are enabled before they get power, and disabled before they lose it. Other engines get and
 *   lose their power first.
 * - Their trigger is on the SPI clock line, inverted. Other engines have a trigger of their own.
 * - They are started under a mutex of the whole system.
 *
 * PALSysio_Open finds out whether the engine is one of the two.
 * PALSysio_InternalScannerInterfaceInit finds out the type of every engine. Before that the engine
 * counts as one of the others.
 *
 * Each process keeps the handle of the driver, the type of the engine, and the power state that it
 * has set last. The power state is never read from the driver. Any thread may call, but nothing is
 * locked: make the calls one after another. Every operation on the driver is traced with facility
 * 1009. A failure is traced with its system error, 6 if the driver is not open.
 *
 * A switch is off for 0 and on for any other number. The trace shows the number as it was given,
 * with two exceptions: PALSysio_DVLSetScanPower shows 1 for any number but 0, and
 * PALSysio_SetScanFlashEnable shows the mode, 0 for download and 1 for normal.
 */
#ifndef PALSCAN_H_
#define PALSCAN_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** The states that PALSysio_ControlScanPower can bring the engine to. */
typedef enum PALScannerPower {
  /** Disabled and without power. */
  PAL_SCANNER_POWER_DOWN = 0,
  /** Enabled and with power. */
  PAL_SCANNER_POWER_UP = 1,
  /** Disabled. The power stays as it is. */
  PAL_SCANNER_IDLE = 2
} PALScannerPower;

/** A PALScannerPower in 32 bits. */
typedef DWORD PAL_SCAN_POWER_CONTROL_E;

/** Does nothing: PALSysio_Open makes all preparations. @retval S_OK  Always. */
HRESULT PALAPI PALSysio_Init(void);

/** Does nothing: the driver stays open. @retval S_OK  Always. */
HRESULT PALAPI PALSysio_Term(void);

/**
 * Opens the scan driver "SCD1:" for reading and writing, without sharing, and finds out whether the
 * engine is ENG14 or ENG13. A driver that is open already is closed first.
 *
 * If the driver cannot be opened, this is traced with the error, and the function succeeds. The
 * operations on the driver then fail.
 *
 * @retval S_OK  Done, with or without a driver. This is the result of PALMFGOpt_InternalDeviceType.
 */
HRESULT PALAPI PALSysio_Open(void);

/**
 * Closes the scan driver. Power and trigger do not change.
 *
 * @retval S_OK  Always, also if the driver was not open.
 */
HRESULT PALAPI PALSysio_Close(void);

/**
 * Pulls or releases the trigger: control 0x22006C with 1 or 0. ENG14 and ENG13: control 0x2200D0
 * with 0 or 1.
 *
 * @param trigger_on  Not 0: pull.
 *
 * @retval S_OK    Done.
 * @retval E_FAIL  The driver is not open, or refused.
 */
HRESULT PALAPI PALSysio_SetScanTrigger(BOOL trigger_on);

/**
 * Enables or disables the engine: control 0x22004C with 1 or 0.
 *
 * @param enable  Not 0: enable.
 * @like PALSysio_SetScanTrigger
 */
HRESULT PALAPI PALSysio_SetScanEnable(BOOL enable);

/**
 * Switches the engine to flash download or back to normal operation: control 0x22003C with 1 for
 * download and 0 for normal.
 *
 * @param download_enable  Not 0: download.
 * @like PALSysio_SetScanTrigger
 */
HRESULT PALAPI PALSysio_SetScanFlashEnable(BOOL download_enable);

/**
 * Switches the power of the engine and enables or disables it, in the order that the engine needs.
 *
 * If this process has given the engine power before, PAL_SCANNER_POWER_UP only enables it. If a
 * change needs two steps, the second is made even if the first fails.
 *
 * @param mode  #PALScannerPower.
 *
 * @retval S_OK    Done.
 * @retval E_FAIL  A step failed, because the driver is not open or refused. Or @p mode is no mode;
 *                 the driver is not asked.
 */
HRESULT PALAPI PALSysio_ControlScanPower(PAL_SCAN_POWER_CONTROL_E mode);

/**
 * Switches only the power of the engine: control 0x220044 with 1 or 0. For callers that enable the
 * engine themselves. On failure the power state stays as it was.
 *
 * @param on  Not 0: power on.
 * @like PALSysio_SetScanTrigger
 */
HRESULT PALAPI PALSysio_DVLSetScanPower(BOOL on);

/**
 * Tells the rates at which an engine can be spoken to. They are the same for every port.
 *
 * @param      port     Has no meaning.
 * @param[out] minimum  [baud] 1200. Not null.
 * @param[out] maximum  [baud] 460800. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p minimum or @p maximum is null. Neither is written.
 */
HRESULT PALAPI PALSysio_GetBaudRateRange(DWORD port, DWORD* minimum, DWORD* maximum);

/**
 * Starts the engine for the reading stack: finds out its type, switches it to normal operation, and
 * gives it power as PAL_SCANNER_POWER_UP does.
 *
 * For ENG14 and ENG13 the trigger is released too, and all steps are made under the mutex
 * "DCEDRIVER_INIT_SEPARATOR" of the whole system. The call waits for it for at most 60,000 ms, and
 * then makes the steps without it.
 *
 * Afterwards the power counts as on, whatever the driver has answered. If the driver refuses a
 * step, this is traced and does not change the result.
 *
 * @retval S_OK    Done.
 * @retval E_FAIL  The mutex was not free in time. The steps were made without it.
 */
HRESULT PALAPI PALSysio_InternalScannerInterfaceInit(void);

PAL_INTERFACE_END

#endif /* PALSCAN_H_ */
