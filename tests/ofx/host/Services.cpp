#include "ofx/host/Services.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <thread>
#include <utility>

#include "ofx/host/Effect.h"
#include "ofx/host/PropertySet.h"

namespace ofxtest {

namespace {

std::mutex messages_lock;
std::vector<std::string> messages;

thread_local bool spawned = false;

}  // namespace

Services& services() {
    static Services instance;
    return instance;
}

std::vector<std::string> Services::take_messages() {
    const std::lock_guard lock(messages_lock);
    return std::exchange(messages, {});
}

void Services::add_message(std::string text) {
    const std::lock_guard lock(messages_lock);
    messages.push_back(std::move(text));
}

namespace {

OfxStatus multi_thread(OfxThreadFunctionV1 function, unsigned count, void* argument) {
    begin_call();
    if (spawned) return kOfxStatErrExists;
    if (services().threads_fail) return kOfxStatFailed;
    ++services().parallel_calls;
    const unsigned jobs = std::min(count, static_cast<unsigned>(services().threads));
    const Call* call = Call::current();
    const auto work = [&](unsigned i) {
        const Call::Scope scope(call);
        spawned = true;
        function(i, jobs, argument);
        spawned = false;
    };
    if (jobs == 1) {
        work(0);
        return kOfxStatOK;
    }
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < jobs; ++i) threads.emplace_back(work, i);
    return kOfxStatOK;
}

OfxStatus cpus(unsigned* count) {
    begin_call();
    *count = static_cast<unsigned>(services().threads);
    return kOfxStatOK;
}

void note_message(const char* mark, const char* type, const char* format, std::va_list values) {
    begin_call();
    char text[1024];
    std::vsnprintf(text, sizeof text, format, values);
    services().add_message(mark + std::string(type) + ": " + text);
}

OfxStatus message(void*, const char* type, const char*, const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    note_message("", type, format, values);
    va_end(values);
    return kOfxStatOK;
}

OfxStatus set_persistent(void* effect, const char* type, const char*, const char* format, ...) {
    if (effect == nullptr) note_fault("persistent message without an instance");
    std::va_list values;
    va_start(values, format);
    note_message("*", type, format, values);
    va_end(values);
    return kOfxStatOK;
}

OfxStatus clear_persistent(void*) {
    begin_call();
    services().add_message("*cleared");
    return kOfxStatOK;
}

}  // namespace

const OfxMultiThreadSuiteV1& multi_thread_suite() {
    static const OfxMultiThreadSuiteV1 suite = [] {
        OfxMultiThreadSuiteV1 s{};
        s.multiThread = multi_thread;
        s.multiThreadNumCPUs = cpus;
        return s;
    }();
    return suite;
}

const OfxMessageSuiteV1& message_suite_1() {
    static const OfxMessageSuiteV1 suite{message};
    return suite;
}

const OfxMessageSuiteV2& message_suite_2() {
    static const OfxMessageSuiteV2 suite{message, set_persistent, clear_persistent};
    return suite;
}

}  // namespace ofxtest
