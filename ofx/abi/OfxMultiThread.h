/* The multi-thread suite: threads and mutexes that the host provides. */
#pragma once

#include "OfxCore.h"

extern "C" {

typedef struct OfxMutex* OfxMutexHandle;

#define kOfxMultiThreadSuite "OfxMultiThreadSuite"

typedef void(OfxThreadFunctionV1)(unsigned int threadIndex, unsigned int threadMax, void* customArg);

/* multiThread calls func for every index below threadMax and returns when all have returned. threadMax may be
 * less than the number asked for, down to one on the calling thread; a call from within gives ErrExists. */
typedef struct OfxMultiThreadSuiteV1 {
    OfxStatus (*multiThread)(OfxThreadFunctionV1 func, unsigned int nThreads, void* customArg);
    OfxStatus (*multiThreadNumCPUs)(unsigned int* nCPUs);
    OfxStatus (*multiThreadIndex)(unsigned int* threadIndex);
    int (*multiThreadIsSpawnedThread)();
    OfxStatus (*mutexCreate)(OfxMutexHandle* mutex, int lockCount);
    OfxStatus (*mutexDestroy)(const OfxMutexHandle mutex);
    OfxStatus (*mutexLock)(const OfxMutexHandle mutex);
    OfxStatus (*mutexUnLock)(const OfxMutexHandle mutex);
    OfxStatus (*mutexTryLock)(const OfxMutexHandle mutex);
} OfxMultiThreadSuiteV1;
}
