/**
 * @file palsim_program.h
 * @brief A program of one's own as a process of a simulated device.
 *
 * A program is a shared library with the entry PalProgramMain, in C or C++, compiled against the
 * headers in include/. It calls the exports of DVLORQPAL.dll by their names; each process gets its
 * own copy of the program and of the library. To let time pass it calls PalProgramSleep; the clock
 * of the host has no meaning on the device.
 *
 *     cc -shared -fPIC -Iinclude -Itools/palsim/program -o app.so app.c
 *     palsim explore --program ./app.so
 */
#ifndef PALSIM_PROGRAM_H_
#define PALSIM_PROGRAM_H_

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The program. It is run again and again in a process, one run after the other, and may be killed
 * in any call.
 * @return  Any number. A scenario can expect it; palsim explore takes no notice of it.
 */
__attribute__((visibility("default"))) int PalProgramMain(void);

/** Lets time pass on the device. */
void PalProgramSleep(unsigned milliseconds);

/**
 * Checks a condition of the program. If @p holds is 0, the run has found a fault, and the report
 * shows the text @p what.
 */
void PalProgramCheck(int holds, const char* what);

#ifdef __cplusplus
}
#endif

#endif /* PALSIM_PROGRAM_H_ */
