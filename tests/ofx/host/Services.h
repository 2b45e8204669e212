// What the test host does for a plug-in besides effects: threads and messages.
//
// The suites are plain tables without a host's handle in most calls, so what they do is set for the process.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "abi/OfxMessage.h"
#include "abi/OfxMultiThread.h"

namespace ofxtest {

struct Services {
    int threads = 2;                     // that multiThread runs jobs on; 1 is the calling thread
    bool threads_fail = false;           // multiThread launches none
    double time = 0.0;                   // that the user looks at
    std::atomic<int> parallel_calls{0};  // of multiThread

    // "type: text" each, persistent ones with a star; any thread.
    std::vector<std::string> take_messages();
};
Services& services();

const OfxMultiThreadSuiteV1& multi_thread_suite();
const OfxMessageSuiteV2& message_suite();  // the first version is its beginning

}  // namespace ofxtest
