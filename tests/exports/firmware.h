#ifndef FIRMWARE_H
#define FIRMWARE_H

/* What the C program needs of a host that only C++ can give it. */

#ifdef __cplusplus
extern "C" {
#endif

/** Starts the library with a counter that moves on by 100 with each reading, and takes the reports. */
void startHost(void);
void stopHost(void);
/** Reports of the analysis tools so far: texts, and rows of tables. */
int reportedTexts(void);
int reportedRows(void);
/** How many methods the library tells a receiver of the host's about. */
int methodsToldToTheHost(void);
/** Gives other threads a millisecond. */
void waitMoment(void);

/** The C program. Returns how many of its checks failed. */
int useEveryExport(void);

#ifdef __cplusplus
}
#endif

#endif
