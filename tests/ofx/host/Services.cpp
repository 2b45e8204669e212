
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <thread>
#include <utility>

#include "ofx/host/Host.h"

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

namespace {

OfxStatus multi_thread(OfxThreadFunctionV1 function, unsigned count, void* argument) {
    if (spawned) return kOfxStatErrExists;
    if (services().threads_fail) return kOfxStatFailed;
    ++services().parallel_calls;
    const unsigned jobs = std::min(count, static_cast<unsigned>(services().threads));
    const Call* call = &Call::now();
    const auto work = [&](unsigned i) {
        const Call* outer = std::exchange(Call::current, call);
        spawned = true;
        function(i, jobs, argument);
        spawned = false;
        Call::current = outer;
    };
    std::vector<std::jthread> threads;
    for (unsigned i = 0; jobs > 1 && i < jobs; ++i) threads.emplace_back(work, i);
    if (jobs == 1) work(0);
    return kOfxStatOK;
}

OfxStatus cpus(unsigned* count) {
    *count = static_cast<unsigned>(services().threads);
    return kOfxStatOK;
}

void note_message(std::string text) {
    const std::lock_guard lock(messages_lock);
    messages.push_back(std::move(text));
}

template <bool kPersistent>
OfxStatus message(void* effect, const char* type, const char*, const char* format, ...) {
    begin_call();
    if (kPersistent && effect == nullptr) note_fault("persistent message without an instance");
    char text[1024];
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    note_message((kPersistent ? "*" : "") + std::string(type) + ": " + text);
    return kOfxStatOK;
}

OfxStatus clear_persistent(void*) {
    note_message("*cleared");
    return kOfxStatOK;
}

}  // namespace

const OfxMultiThreadSuiteV1& multi_thread_suite() {
    static const OfxMultiThreadSuiteV1 suite = [] {
        OfxMultiThreadSuiteV1 s{};
        s.multiThread = entered<multi_thread>;
        s.multiThreadNumCPUs = entered<cpus>;
        return s;
    }();
    return suite;
}

const OfxMessageSuiteV2& message_suite() {
    static const OfxMessageSuiteV2 suite{message<false>, message<true>, entered<clear_persistent>};
    return suite;
}

}  // namespace ofxtest
