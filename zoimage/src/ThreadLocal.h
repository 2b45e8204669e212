// Variables of a thread that are read for every row.
#pragma once

// The general way to reach a library's thread-local variable is a call; this one is a load. Its room is
// scarce, so it is for pointers with constant initialisation only.
#if defined(__GNUC__) && defined(__ELF__)
#define ZO_FAST_THREAD_LOCAL [[gnu::tls_model("initial-exec")]] thread_local constinit
#else
#define ZO_FAST_THREAD_LOCAL thread_local constinit
#endif
