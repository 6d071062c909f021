#pragma once

/// A word of each thread that costs no more to read than an ordinary variable, also in a library that is
/// loaded at run time: its place is fixed when the library is loaded. Only for a few words with constant
/// initial values and no destructors; the room for libraries loaded at run time is small.
#if defined(_WIN32)
#define ZORVAN_THREAD_WORD thread_local
#elif defined(__GNUC__)
#define ZORVAN_THREAD_WORD                                                                                   \
    __attribute__((tls_model("initial-exec"))) __thread // without a check for a constructor
#else
#define ZORVAN_THREAD_WORD thread_local
#endif
