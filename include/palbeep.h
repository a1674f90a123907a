/**
 * @file palbeep.h
 * @brief The beeper: volumes and gains, what is heard of an event, and the good-read indicator.
 *
 * Loudness has six levels: 0 off, 1 very low, 2 low, 3 medium, 4 high, 5 very high. Each stands for
 * a volume word, as waveOutSetVolume takes it, and for a gain of the codec from 0 to 100. Words,
 * gains, the levels that are set and the sounds' files are values under HKEY_LOCAL_MACHINE
 * "Software\Dravonel\BeeperVol". They are REG_DWORD; a file is the REG_SZ of its whole path. Some
 * functions take a volume index instead, the row of one of these values:
 *
 * | index | volume           | gain                 | of                    |
 * |-------|------------------|----------------------|-----------------------|
 * | 0     | "Off"            | "OffGain"            | the level off         |
 * | 1     | "VeryLow"        | "VeryLowGain"        | the level very low    |
 * | 2     | "Low"            | "LowGain"            | the level low         |
 * | 3     | "Med"            | "MedGain"            | the level medium      |
 * | 4     | "High"           | "HighGain"           | the level high        |
 * | 5     | "VeryHigh"       | "VeryHighGain"       | the level very high   |
 * | 6     | "CurrentVol"     | "CurGain"            | the speaker's setting |
 * | 7     | "DefaultVol"     | "DefGain"            | the speaker's default |
 * | 8     | "CurrentHeadset" | "CurHeadsetGain"     | the headset's setting |
 * | 9     | "DefaultHeadset" | "DefaultHeadsetGain" | the headset's default |
 *
 * The good-read indicator says, for each kind of scanner, how a good read is felt and heard. The
 * kinds are 0 the internal scanner, 1 a tethered one, 2 a Bluetooth one, 3 an RFID reader; their
 * values "IntGRI", "TethGRI", "BTGRI" and "RFIDGRI" are REG_DWORD under HKEY_LOCAL_MACHINE
 * "SOFTWARE\Dravonel\PAL":
 *
 * | value     | vibration | tones |
 * |-----------|-----------|-------|
 * | 0         | no        | 0     |
 * | 1         | no        | 1     |
 * | 2         | no        | 2     |
 * | 3         | yes       | 0     |
 * | 4         | yes       | 1     |
 * | 5         | yes       | 2     |
 * | any other | no        | 0     |
 *
 * The functions here may be called from any thread of any process, but for PALBEEPInit and
 * PALBEEPTerm, which no other call of the same process may overlap; the library calls them when a
 * process attaches and detaches. Beeps take turns over all processes by the named mutex
 * "DVLORQPAL_BEEP_MUTEX", for which each, and PALBEEPTerm, waits 2000 ms at most; one that gets no
 * turn until then goes on without it. The other functions take no lock. Steps and failures are
 * traced with facility 1003.
 */
#ifndef PALBEEP_H_
#define PALBEEP_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Prepares the beeper for this process: makes or opens the named mutex, and reads the model's name.
 *
 * The library's entry calls it. A second call keeps the mutex that there is. Where it cannot be
 * made, which is traced, every beep answers E_INVALIDARG.
 *
 * @retval S_OK always
 */
HRESULT PALAPI PALBEEPInit(void);

/**
 * Closes the mutex, as soon as this process may take it or 2000 ms have passed. Until the next
 * PALBEEPInit every beep answers E_INVALIDARG.
 *
 * @retval S_OK always
 */
HRESULT PALAPI PALBEEPTerm(void);

/**
 * Sets the speaker's level.
 *
 * A level's word is copied to "CurrentVol", becomes the volume of the wave output, and is shown by
 * the shell: the REG_DWORD "Volume" under HKEY_CURRENT_USER "ControlPanel\Volume", which is not
 * written where it has that word already. A step changes "CurrentVol" alone.
 *
 * @param setting  0 to 5: this level. 8: one level softer, but from low and from off there is no
 *                 step. 9: one level louder, up to very high.
 *
 * @retval S_OK        done, or no step was left
 * @retval E_FAIL      @p setting is another number; nothing was changed. Or: the audio driver
 *                     refused the volume; the control panel's volume cannot be read; for a step,
 *                     "CurrentVol" cannot be read or is no level's word, or the next level has no
 *                     word.
 * @retval PAL_E_WIN32(error)  the error of writing the control panel's volume, or for a step
 * "CurrentVol". That a level's word could not be copied to "CurrentVol" is not told.
 */
HRESULT PALAPI PALBEEPSetVolume(DWORD setting);

/**
 * The speaker's level: the lowest whose word "CurrentVol" is. "CurrentVol" is written anew with
 * that word.
 *
 * @param[out] level  0 to 5; unchanged on failure. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  "CurrentVol" cannot be read or is no level's word, or @p level is null
 */
HRESULT PALAPI PALBEEPGetVolume(DWORD* level);

/**
 * Sets the headset's level: copies a volume word to "CurrentHeadset".
 *
 * @param volume_index  0 to 5 for a level, or any index up to 9.
 *
 * @retval S_OK        copied
 * @retval E_FAIL      the word cannot be read, or @p volume_index is above 9; nothing was changed
 * @retval PAL_E_WIN32(error)  the error of writing "CurrentHeadset"
 */
HRESULT PALAPI PALBEEPSetHeadsetBeeperVolume(DWORD volume_index);

/**
 * The headset's level: the lowest whose word "CurrentHeadset" is.
 *
 * @param[out] level  0 to 5; unchanged on failure. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  "CurrentHeadset" cannot be read or is no level's word, or @p level is null
 */
HRESULT PALAPI PALBEEPGetHeadsetBeeperVolume(DWORD* level);

/**
 * Sets the gain of a volume index.
 *
 * @param in_vol_index  0 to 9.
 * @param in_gain       0 to 100.
 *
 * @retval S_OK    written
 * @retval E_FAIL  a number is out of its range, or the value cannot be written
 */
HRESULT PALAPI PALBEEPSetSpeakerGain(DWORD in_vol_index, DWORD in_gain);

/**
 * The gain of a volume index, as it is stored.
 *
 * @param in_vol_index  0 to 9.
 * @param[out] gain     Unchanged on failure. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  the value cannot be read, @p in_vol_index is above 9, or @p gain is null
 */
HRESULT PALAPI PALBEEPGetSpeakerGain(DWORD in_vol_index, DWORD* gain);

/**
 * Sets the headset's gain, "CurHeadsetGain". Beeps use the gain of the speaker's level, also with a
 * headset.
 *
 * @param gain  0 to 100.
 *
 * @retval S_OK    written
 * @retval E_FAIL  @p gain is above 100, or the value cannot be written
 */
HRESULT PALAPI PALBEEPSetHeadsetGain(DWORD gain);

/**
 * The headset's gain, "CurHeadsetGain", as it is stored.
 *
 * @param[out] gain  Unchanged on failure. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  the value cannot be read, or @p gain is null
 */
HRESULT PALAPI PALBEEPGetHeadsetGain(DWORD* gain);

/**
 * Sets the good-read indicator of a kind of scanner.
 *
 * @param scan_type  0 to 3.
 * @param value      0 to 5.
 *
 * @retval S_OK        written
 * @retval E_FAIL      a number is out of its range; nothing was changed
 * @retval PAL_E_WIN32(error)  the error of writing: PAL_E_FILE_NOT_FOUND where the key does not
 * exist
 */
HRESULT PALAPI PALBEEPSetGRI(DWORD scan_type, DWORD value);

/**
 * The good-read indicator of a kind of scanner, as it is stored.
 *
 * @param scan_type   0 to 3.
 * @param[out] value  Any number; unchanged on failure. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p scan_type is above 3, or @p value is null
 * @retval PAL_E_WIN32(error)  the error of reading: PAL_E_FILE_NOT_FOUND where it was never set
 */
HRESULT PALAPI PALBEEPGetGRI(DWORD scan_type, DWORD* value);

/**
 * Lets a good read be felt and heard, as the indicator of its scanner says: vibrates with
 * PALVIBVibrate, then plays the file "GoodRead" once or twice, with 50 ms behind each of two.
 * Returns when the last tone has ended.
 *
 * How every beep here sounds: with a headset (a bit of 0x34 in the REG_DWORD "Bluetooth" under
 * HKEY_LOCAL_MACHINE "System\State\Hardware", which counts as set where it cannot be read, or
 * "Headset" there not 0) at the volume "CurrentHeadset", or very low where that cannot be read
 * twice; else at the volume of the wave output as it is. The gain is that of the speaker's level,
 * or 66. At volume 0, with an empty path, and with a file that cannot be played, nothing is heard;
 * none of these is a failure. Then volume and gain are put back; one that could not be read at the
 * beginning is not changed at all.
 *
 * @param in_scan_type  0 to 3.
 *
 * @retval S_OK          done, or the indicator asks for nothing
 * @retval E_INVALIDARG  @p in_scan_type is above 3, or there is no mutex (PALBEEPInit); nothing was
 *                       done
 * @retval E_FAIL        the volume could not be put back, or could not be set to 0 for a silent
 *                       tone; without a tone, the vibration's failure
 * @retval PAL_E_WIN32(error)    the error of reading the file's path: PAL_E_FILE_NOT_FOUND where
 * there is none, PAL_E_MORE_DATA where its value has more than 520 bytes, or 260 units without an
 * end. Without a tone, the error of reading the indicator, or that of the vibration.
 */
HRESULT PALAPI PALBEEPGoodReadEx(DWORD in_scan_type);

/**
 * Lets a bad read be felt and heard, as the indicator of the internal scanner says, whatever
 * scanner failed: vibrates five times, with 100 ms behind each but the first, and plays the file
 * "BadRead" once. Where the first vibration fails there are no others.
 *
 * @return As PALBEEPGoodReadEx; of the vibrations the last one's result counts.
 */
HRESULT PALAPI PALBEEPBadRead(void);

/**
 * Plays the file "ConfigChange": a configuration was changed.
 *
 * @retval S_OK          done
 * @retval E_INVALIDARG  there is no mutex (PALBEEPInit); nothing was done
 * @retval E_FAIL        the volume could not be put back, or could not be set to 0 for a silent
 *                       tone
 * @retval PAL_E_WIN32(error)    the error of reading the file's path, as of PALBEEPGoodReadEx
 */
HRESULT PALAPI PALBEEPChangeConfig(void);

/** Plays the file "ConfigChangeError". @return As PALBEEPChangeConfig. */
HRESULT PALAPI PALBEEPChangeConfigError(void);

/** Plays the file "KeyClick". @return As PALBEEPChangeConfig. */
HRESULT PALAPI PALBEEPKeyClick(void);

/**
 * Plays the file "TagSearch" over and over until PALBEEPStopTagSearch, or the end of the process.
 *
 * Returns at once and lets other beeps take their turn. Volume and gain stay those of the beep
 * until the stop, also where nothing is heard. A beep of the same process meanwhile cuts the sound
 * short, and leaves these values in force: they are then what the stop puts back.
 *
 * @return As PALBEEPChangeConfig; E_FAIL is that of a volume that could not be set to 0.
 */
HRESULT PALAPI PALBEEPStartTagSearch(void);

/**
 * Stops the sound of the tag search and puts volume and gain back. Where this process has started
 * none, volume and gain are left alone. A volume that could not be put back is put back by the next
 * stop.
 *
 * @retval S_OK          done
 * @retval E_INVALIDARG  there is no mutex (PALBEEPInit); nothing was done
 * @retval E_FAIL        the volume could not be put back
 * @retval PAL_E_WIN32(error)    the error of stopping the sound
 */
HRESULT PALAPI PALBEEPStopTagSearch(void);

PAL_INTERFACE_END

#endif /* PALBEEP_H_ */
