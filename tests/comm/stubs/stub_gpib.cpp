// An NI-488.2 library without thread registration; every read answers "stub".
#define CORLUNE_LIBRARY_EXPORT __attribute__((visibility("default")))
#include <cstring>

#include "platform/abi/ni488.h"

int ibfind(const char*) {
  return 1;
}
int ibconfig(int, int, int) {
  return 0;
}
int ibsic(int) {
  return 0;
}
int ibsre(int, int) {
  return 0;
}
int ibcmd(int, const void*, long) {
  return 0;
}
int ibwrt(int, const void*, long) {
  return 0;
}
int ibrd(int, void* buffer, long) {
  std::memcpy(buffer, "stub", 4);
  return 0;
}
int ibeos(int, int) {
  return 0;
}
int ibeot(int, int) {
  return 0;
}
int ibtmo(int, int) {
  return 0;
}
void ReadStatusByte(int, short, short* result) {
  *result = 0;
}
int ThreadIbsta() {
  return NI488_END;
}
int ThreadIberr() {
  return 0;
}
long ThreadIbcntl() {
  return 4;
}
