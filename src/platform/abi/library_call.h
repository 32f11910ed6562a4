/* Calling convention and export mark shared by the C declarations of the I/O libraries. A library that
 * implements them defines CORLUNE_LIBRARY_EXPORT before it includes them; a client leaves it alone. */
#ifndef CORLUNE_PLATFORM_ABI_LIBRARY_CALL_H
#define CORLUNE_PLATFORM_ABI_LIBRARY_CALL_H

#if defined(_WIN32) && !defined(_WIN64)
#define CORLUNE_LIBRARY_CALL __stdcall
#else
#define CORLUNE_LIBRARY_CALL
#endif

#ifndef CORLUNE_LIBRARY_EXPORT
#define CORLUNE_LIBRARY_EXPORT
#endif

#endif
