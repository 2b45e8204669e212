/* The message suite: what an effect tells the user. */
#pragma once

#include "OfxCore.h"

extern "C" {

#define kOfxMessageSuite "OfxMessageSuite"

#define kOfxMessageError "OfxMessageError"
#define kOfxMessageWarning "OfxMessageWarning"
#define kOfxMessageMessage "OfxMessageMessage"
#define kOfxMessageQuestion "OfxMessageQuestion" /* waits for the user; replies Yes or No */

/* The handle is an effect, or null; the format is printf's, so no text of the user goes there. Persistent
 * messages (error, warning or message) want an instance and stay on it until they are cleared. */
typedef struct OfxMessageSuiteV1 {
    OfxStatus (*message)(void* handle, const char* messageType, const char* messageId, const char* format,
                         ...);
} OfxMessageSuiteV1;

typedef struct OfxMessageSuiteV2 {
    OfxStatus (*message)(void* handle, const char* messageType, const char* messageId, const char* format,
                         ...);
    OfxStatus (*setPersistentMessage)(void* handle, const char* messageType, const char* messageId,
                                      const char* format, ...);
    OfxStatus (*clearPersistentMessage)(void* handle);
} OfxMessageSuiteV2;
}
