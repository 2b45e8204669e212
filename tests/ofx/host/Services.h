// What the test host does for a plug-in besides effects: threads, memory, messages, progress, time.
//
// The suites are plain tables without a host's handle in most calls, so what they do is set for the process.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "abi/OfxMemory.h"
#include "abi/OfxMessage.h"
#include "abi/OfxMultiThread.h"
#include "abi/OfxProgress.h"
#include "abi/OfxTimeLine.h"

namespace ofxtest {

struct Services {
    int threads = 2;                     // that multiThread runs jobs on; 1 is the calling thread
    bool threads_fail = false;           // multiThread launches none
    double time = 0.0;                   // of the time line
    std::atomic<int> parallel_calls{0};  // of multiThread
    std::atomic<long> blocks{0};         // of the memory suite, not freed
    std::atomic<int> mutexes{0};         // not destroyed
    std::atomic<int> bars{0};            // of progress, not ended

    // "type: text" each, persistent ones with a star; any thread.
    std::vector<std::string> take_messages();
    void add_message(std::string text);
};
Services& services();

const OfxMultiThreadSuiteV1& multi_thread_suite();
const OfxMemorySuiteV1& memory_suite();
const OfxMessageSuiteV1& message_suite_1();
const OfxMessageSuiteV2& message_suite_2();
const OfxProgressSuiteV1& progress_suite_1();
const OfxProgressSuiteV2& progress_suite_2();
const OfxTimeLineSuiteV1& time_line_suite();

}  // namespace ofxtest
