/* The memory suite: general blocks from the host, aligned for any use. The handle is an effect or null. */
#ifndef VELOXA_OFX_MEMORY_H
#define VELOXA_OFX_MEMORY_H

#include "OfxCore.h"

#ifdef __cplusplus
extern "C" {
#endif

#define kOfxMemorySuite "OfxMemorySuite"

typedef struct OfxMemorySuiteV1 {
    OfxStatus (*memoryAlloc)(void* handle, size_t nBytes, void** allocatedData);
    OfxStatus (*memoryFree)(void* allocatedData);
} OfxMemorySuiteV1;

#ifdef __cplusplus
}
#endif

#endif
