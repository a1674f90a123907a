/**
 * @file palsecurity.h
 * @brief Password lock: a password before the installation of CAB packages.
 * @family security
 *
 * The shell opens a CAB package with a command. The command is the unnamed value of two keys under
 * HKEY_CLASSES_ROOT, "tdyskin\Shell\Open\Command" and "cabfile\Shell\Open\Command". If it begins
 * with the program "cabchck" instead of "wceload", that program first asks for a password, and lets
 * PALSecurity_CheckPx check it.
 *
 * Any thread of any process may call these functions. Nothing is kept between calls, and no lock is
 * taken: of two processes that change the commands at once each can win. Steps and failures are
 * traced with facility 1094.
 */
#ifndef PALSECURITY_H_
#define PALSECURITY_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** What PALSecurity_CheckPx answers. No HRESULT: a wrong password is not below 0. */
typedef enum PALPasswordCheck {
  /** The password is right. */
  PAL_PASSWORD_RIGHT = 0,
  /** The password is wrong, or cannot be checked. */
  PAL_PASSWORD_WRONG = 1
} PALPasswordCheck;

/**
 * Tells whether a password is needed to install a CAB package: whether one of the two commands
 * begins with "cabchck", in any case. A command that does not exist, cannot be read or has more
 * than 512 bytes does not ask for a password; this is traced.
 *
 * @param[out] enabled  1 or 0. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p enabled is null.
 */
HRESULT PALAPI PALSecurity_GetCabFilePasswordProtect(DWORD* enabled);

/**
 * Sets whether a password is needed to install a CAB package: replaces the first seven characters
 * of the two commands by "cabchck" or "wceload". The rest of the command stays, and so do the type
 * and the size of the value. The command need not be terminated.
 *
 * The key "tdyskin\Shell\Open\Command" comes first. If it fails, "cabfile\Shell\Open\Command" is
 * not changed. If only the second fails, the first stays switched.
 *
 * @param enable  1: a password is needed. Any other number: it is not.
 *
 * @retval S_OK    Both commands are written.
 * @retval E_FAIL  A command has fewer than seven characters. It is not changed.
 * @retval PAL_E_WIN32(error)  The error of opening, reading or writing a key:
 *                 PAL_E_FILE_NOT_FOUND if the key or its unnamed value does not exist,
 *                 PAL_E_MORE_DATA if the command has more than 512 bytes. The command is not
 *                 changed.
 */
HRESULT PALAPI PALSecurity_SetCabFilePasswordProtect(DWORD enable);

/**
 * Checks the password of a member.
 *
 * A member has a key with its name under HKEY_LOCAL_MACHINE "Software\Dravonel\SN", with two values
 * of any type: the salt "s" and the hash "h". The hash is the SHA-1 of the bytes of the salt,
 * followed by the UTF-16 characters of the password without its terminator. If the member has no
 * key, the key cannot be opened, or a value does not exist or is empty, only the empty password is
 * right.
 *
 * A value that exists but cannot be read never lets anybody in: the answer is then
 * PAL_PASSWORD_WRONG, for the empty password too.
 *
 * SHA-1 comes from the CryptoAPI of the platform (provider type 1, default container). The first
 * check that needs it finds no key set there and creates one. The answer of that check is
 * PAL_PASSWORD_WRONG, whatever the password.
 *
 * @param member    The name of the member: at most 238 characters, so that the path of its key has
 *                  fewer than 260. Null is no member.
 * @param password  The password. Upper and lower case matter. Null is the empty password.
 *
 * @retval PAL_PASSWORD_RIGHT  The password is right.
 * @retval PAL_PASSWORD_WRONG  The password is wrong, or @p member is null or too long. Or it cannot
 *                     be checked, because the hash or the salt cannot be read, memory runs out, or
 *                     CryptoAPI fails. The trace tells which, but for three causes: a value that
 *                     cannot be read, a name that is too long, and a provider that fails for
 *                     another reason than a missing key set.
 */
DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password);

PAL_INTERFACE_END

#endif /* PALSECURITY_H_ */
