/**
 * @file palsecurity.h
 * @brief The password lock on the installation of CAB packages.
 *
 * The shell opens a package with the command in the unnamed value of two keys under
 * HKEY_CLASSES_ROOT, "tdyskin\Shell\Open\Command" and "cabfile\Shell\Open\Command". Where the
 * command begins with the program "cabchck" in place of "wceload", a password is asked for first.
 * The checking program asks PALSecurity_CheckPx whether it is right.
 *
 * The functions here may be called from any thread of any process; nothing is kept between calls,
 * and nothing keeps two processes apart that change the commands at once. All is traced with
 * facility 1094.
 */
#ifndef PALSECURITY_H_
#define PALSECURITY_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Whether a password is asked for before a CAB package is installed: whether one of the two open
 * commands begins with "cabchck", in any letter case. A command that is missing, cannot be read or
 * has more than 512 bytes asks for none; that is traced.
 *
 * @param[out] enabled  1 or 0. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p enabled is null
 */
HRESULT PALAPI PALSecurity_GetCabFilePasswordProtect(DWORD* enabled);

/**
 * Has a password asked for before a CAB package is installed, or not: replaces the first seven
 * characters of the two open commands by "cabchck" or "wceload". What follows them stays, and so do
 * type and size of the value, also of a command that is stored without its terminator.
 *
 * The second key, "cabfile\Shell\Open\Command", is left alone where the first fails.
 *
 * @param enable  1: ask. Any other number: do not ask.
 *
 * @retval S_OK        both commands are written
 * @retval E_FAIL      a command has fewer than seven characters; it is left as it is
 * @retval PAL_E_WIN32(error)  the error of opening, reading or writing a key: PAL_E_FILE_NOT_FOUND
 * where the key or its unnamed value is missing, PAL_E_MORE_DATA where the command has more than
 * 512 bytes; the command is left as it is
 */
HRESULT PALAPI PALSecurity_SetCabFilePasswordProtect(DWORD enable);

/**
 * Whether a password is that of a member.
 *
 * A member has a key of its name under HKEY_LOCAL_MACHINE "Software\Dravonel\SN" with two values,
 * whose types do not matter: the salt "s", and the hash "h", the SHA-1 of the salt's bytes followed
 * by the password's UTF-16 characters without terminator. A member without this key, or whose key
 * cannot be opened, or with a value missing or empty, accepts the empty password alone.
 *
 * SHA-1 comes from the platform's CryptoAPI (provider type 1, default container). The first check
 * that needs it, one of a member with hash and salt, finds no key set there and makes one: its
 * answer is 1 whatever the password.
 *
 * @param member    The member's name: at most 238 characters, so that the key's path stays below
 *                  260. May be null, which is no member.
 * @param password  The password; upper and lower case differ. Null is the empty password.
 *
 * The answer is a yes/no value and no HRESULT.
 *
 * @retval 0  the password is right
 * @retval 1  it is wrong, @p member is null or too long, or it cannot be checked: the hash or the
 *            salt cannot be read, memory runs out, or CryptoAPI fails. The trace says which, but
 *            for values, names that are too long, and a provider that fails for another reason
 *            than a missing key set.
 */
DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password);

PAL_INTERFACE_END

#endif /* PALSECURITY_H_ */
