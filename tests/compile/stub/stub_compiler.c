/* A compiler library that reports what it was called with: error code 7 with the first record of the table
 * and the last byte of the path; the result is the last record's second value. */
#include "platform/abi/cmplseq.h"

#if defined(_WIN32)
__declspec(dllexport)
#else
__attribute__((visibility("default")))
#endif
int32_t CompileSeqData(const char* path, const ArbInformation* arbs, CompileErrorRecord* record) {
  int32_t length = 0;
  while (path[length] != '\0') ++length;
  record->PositionA = arbs[0].PointPairs;
  record->Channel = arbs[0].KiloPoints;
  record->PositionB = length;
  record->PositionC = (unsigned char)path[length - 1];
  record->Code = 7;
  return arbs[127].KiloPoints;
}
