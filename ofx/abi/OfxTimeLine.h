/* The time-line suite: the host's current time, in frames of the effect. */
#ifndef VELOXA_OFX_TIME_LINE_H
#define VELOXA_OFX_TIME_LINE_H

#include "OfxCore.h"

#ifdef __cplusplus
extern "C" {
#endif

#define kOfxTimeLineSuite "OfxTimeLineSuite"

typedef struct OfxTimeLineSuiteV1 {
    OfxStatus (*getTime)(void* instance, double* time);
    OfxStatus (*gotoTime)(void* instance, double time);
    OfxStatus (*getTimeBounds)(void* instance, double* firstTime, double* lastTime);
} OfxTimeLineSuiteV1;

#ifdef __cplusplus
}
#endif

#endif
