// Before the C declarations of a library whose operations this file exports.
#pragma once

#if defined(_WIN32)
#define CORLUNE_LIBRARY_EXPORT __declspec(dllexport)
#else
#define CORLUNE_LIBRARY_EXPORT __attribute__((visibility("default")))
#endif
