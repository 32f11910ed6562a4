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

/* Values of CompileErrorRecord.Code that this program has a text for. A library may have codes of its own. */
enum {
  CMPLSEQ_ERROR_FREQUENCY = 40,        /* too high for the waveform */
  CMPLSEQ_ERROR_LEVEL = 41,            /* amplitude and offset */
  CMPLSEQ_ERROR_DUTY = 42,             /* duty and frequency of a square wave */
  CMPLSEQ_ERROR_ARB_UNREADABLE = 4099, /* a waveform that cannot be loaded */
  CMPLSEQ_ERROR_ARB_MISSING = 4100,
  CMPLSEQ_ERROR_MEMORY_FULL = 4101, /* from here on no single step is to blame */
  CMPLSEQ_ERROR_TOO_COMPLEX = 4102
};

/* Result of CompileSeqData that is no failure, like 0. */
enum { CMPLSEQ_RESULT_ALSO_GOOD = 268763136 };

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
