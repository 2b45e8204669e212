/* The progress suite: a bar for long work outside renders. An update that replies No asks to stop. */
#ifndef VELOXA_OFX_PROGRESS_H
#define VELOXA_OFX_PROGRESS_H

#include "OfxCore.h"

#ifdef __cplusplus
extern "C" {
#endif

#define kOfxProgressSuite "OfxProgressSuite"

typedef struct OfxProgressSuiteV1 {
    OfxStatus (*progressStart)(void* effectInstance, const char* label);
    OfxStatus (*progressUpdate)(void* effectInstance, double progress); /* 0..1 */
    OfxStatus (*progressEnd)(void* effectInstance);
} OfxProgressSuiteV1;

typedef struct OfxProgressSuiteV2 {
    OfxStatus (*progressStart)(void* effectInstance, const char* message, const char* messageid);
    OfxStatus (*progressUpdate)(void* effectInstance, double progress); /* 0..1 */
    OfxStatus (*progressEnd)(void* effectInstance);
} OfxProgressSuiteV2;

#ifdef __cplusplus
}
#endif

#endif
