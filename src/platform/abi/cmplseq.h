/* C interface of the sequence compiler library "CmplSeq". */
#ifndef CORLUNE_PLATFORM_ABI_CMPLSEQ_H
#define CORLUNE_PLATFORM_ABI_CMPLSEQ_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Filled by the library. Positions A, B and C are shown to the user as they stand. */
typedef struct CompileErrorRecord {
  int32_t PositionA;
  int32_t Channel; /* 0-based */
  int32_t PositionB;
  int32_t PositionC;
  int32_t Code; /* 0: no error */
} CompileErrorRecord;

/* One of the 128 records of the ARB information table; record k describes ARB number k + 1. */
typedef struct ArbInformation {
  int32_t PointPairs; /* 1: point-pair form, also for an empty entry; 0: plain point array */
  int32_t KiloPoints; /* plain array: points / 1024, rounded to the nearest integer; else 0 */
} ArbInformation;

/* `path` is in the system code page. Reads the sequence text from the file and leaves the compiled binary
 * in the same file. */
typedef int32_t (*CompileSeqDataFunction)(const char* path, const ArbInformation* arbs,
                                          CompileErrorRecord* record);

#ifdef __cplusplus
}
#endif

#endif
