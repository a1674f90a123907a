/**
 * @file palresult.h
 * @brief Results: the codes that the exported functions answer.
 *
 * The comment of a function lists the results that it can give. A result below 0 is a failure.
 * Codes that the platform's own headers define are taken from there if those are included first.
 */
#ifndef PALRESULT_H_
#define PALRESULT_H_

#include "paltypes.h"

#ifdef __cplusplus
#define PAL_RESULT(number) static_cast<HRESULT>(number)
#else
#define PAL_RESULT(number) ((HRESULT)(number))
#endif

#ifndef S_OK
/** Done. */
#define S_OK PAL_RESULT(0)
/** Done, but there was nothing to do. */
#define S_FALSE PAL_RESULT(1)
/** The device does not have this. */
#define E_NOTIMPL PAL_RESULT(0x80004001)
/** Failed; the comment of the function has the causes. */
#define E_FAIL PAL_RESULT(0x80004005)
/** An argument is out of its range, or what the call needs was not prepared. */
#define E_INVALIDARG PAL_RESULT(0x80070057)
#endif

/** A system error from 1 to 65535 as a result: of the registry, a file or a driver. */
#define PAL_E_WIN32(error) PAL_RESULT(0x80070000U | (error))
/** The registry key, the registry value or the file does not exist. */
#define PAL_E_FILE_NOT_FOUND PAL_E_WIN32(2)
/** The folder does not exist. */
#define PAL_E_PATH_NOT_FOUND PAL_E_WIN32(3)
/** The platform denies access. */
#define PAL_E_ACCESS_DENIED PAL_E_WIN32(5)
/** Another program has opened the file or the driver without sharing it. */
#define PAL_E_SHARING_VIOLATION PAL_E_WIN32(32)
/** There is no such driver. */
#define PAL_E_DEV_NOT_EXIST PAL_E_WIN32(55)
/** The value is larger than the room for it. */
#define PAL_E_MORE_DATA PAL_E_WIN32(234)

/** Keypad: there is no such control key. */
#define PAL_KEY_E_NO_SUCH_CONTROL_KEY PAL_RESULT(0x83ED0004)
/** Keypad: there is no such action. */
#define PAL_KEY_E_NO_SUCH_ACTION PAL_RESULT(0x83ED0005)
/** Keypad: the button is not supported. */
#define PAL_KEY_E_NOT_SUPPORTED PAL_RESULT(0x83ED0007)

/** Display: there is no such orientation. */
#define PAL_DISP_E_NO_SUCH_ORIENTATION PAL_RESULT(0x83EE0001)
/** Display: the driver refuses the orientation. */
#define PAL_DISP_E_CHANGE_REFUSED PAL_RESULT(0x83EE0002)
/** Display: the setting cannot be written. */
#define PAL_DISP_E_WRITE_FAILED PAL_RESULT(0x83EE0008)

/** Power: a system error from 1 to 65535 of an event for the power manager. */
#define PAL_PWR_E_EVENT(error) PAL_RESULT(0x83EF0000U | (error))
/** Power: there is no event to tell the power manager with. */
#define PAL_PWR_E_NO_EVENT PAL_RESULT(0x83EF000D)
/** Power: there is no such timeout. */
#define PAL_PWR_E_NO_SUCH_TIMEOUT PAL_RESULT(0x83EF0011)
/** Power: the configuration driver refuses. Not below 0: compare with it, do not use FAILED. */
#define PAL_PWR_DRIVER_REFUSED PAL_RESULT(19)
/** Power: the thread cannot be started. Not below 0: compare with it, do not use FAILED. */
#define PAL_PWR_NO_THREAD PAL_RESULT(20)

/** Device information: the room for the text is too short, or there is no address. */
#define PAL_SYSINFO_E_TOO_SHORT PAL_RESULT(0x840F0001)
/** Device information: no length is given, or there is no such detail. */
#define PAL_SYSINFO_E_INVALID_INPUT PAL_RESULT(0x840F0002)
/** Device information: what the text is made from cannot be read. */
#define PAL_SYSINFO_E_SOURCE_FAILED PAL_RESULT(0xFFFFFFFF)
/** Device information: the text has more than 255 characters. */
#define PAL_SYSINFO_E_SOURCE_TOO_LONG PAL_RESULT(0xFFFFFFF8)

/** Manufacturing options: a policy enables the feature. A success. */
#define PAL_MFGOPT_S_ENABLED PAL_RESULT(0x04320001)
/** Manufacturing options: a policy disables the feature. A success. */
#define PAL_MFGOPT_S_DISABLED PAL_RESULT(0x04320002)
/** Manufacturing options: the value of the policy cannot be read. */
#define PAL_MFGOPT_E_VALUE_UNREADABLE PAL_RESULT(0x84320004)
/** Manufacturing options: the location of the policy cannot be read. */
#define PAL_MFGOPT_E_LOCATION_UNREADABLE PAL_RESULT(0x84320006)
/** Manufacturing options: there is no such feature. */
#define PAL_MFGOPT_E_NO_SUCH_FEATURE PAL_RESULT(0x84320007)
/** Manufacturing options: the value of the policy is neither 0 nor 1. */
#define PAL_MFGOPT_E_VALUE_INVALID PAL_RESULT(0x84320008)
/** Manufacturing options: no feature is given. */
#define PAL_MFGOPT_E_NO_FEATURE_GIVEN PAL_RESULT(0x84320009)

/** USB: an argument is out of its range, or a name is too long. */
#define PAL_STORE_E_INVALID_INPUT PAL_RESULT(0x844F0001)
/** USB: the bus driver refuses the client. */
#define PAL_STORE_E_SELECT_FAILED PAL_RESULT(0x844F0002)
/** USB: the bus driver does not tell its client. */
#define PAL_STORE_E_GET_FAILED PAL_RESULT(0x844F0003)
/** USB: the bus driver cannot be opened. */
#define PAL_STORE_E_BUS_NOT_OPENED PAL_RESULT(0x844F0004)
/** USB: the bus driver has another client than the known ones. */
#define PAL_STORE_E_UNKNOWN_CLIENT PAL_RESULT(0x844F0005)

#endif /* PALRESULT_H_ */
