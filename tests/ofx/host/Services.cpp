#include "ofx/host/Services.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <utility>

#include "ofx/host/Effect.h"
#include "ofx/host/PropertySet.h"

namespace ofxtest {

namespace {

std::mutex messages_lock;
std::vector<std::string> messages;

thread_local unsigned thread_index = 0;
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
        thread_index = i;
        spawned = true;
        function(i, jobs, argument);
        spawned = false;
        thread_index = 0;
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

OfxStatus index(unsigned* i) {
    begin_call();
    *i = thread_index;
    return kOfxStatOK;
}

int is_spawned() {
    begin_call();
    return spawned ? 1 : 0;
}

std::recursive_mutex& mutex_of(OfxMutexHandle handle) {
    return *reinterpret_cast<std::recursive_mutex*>(handle);
}

OfxStatus mutex_create(OfxMutexHandle* handle, int locks) {
    auto* mutex = new std::recursive_mutex;
    for (int i = 0; i < locks; ++i) mutex->lock();
    *handle = reinterpret_cast<OfxMutexHandle>(mutex);
    ++services().mutexes;
    return kOfxStatOK;
}

OfxStatus mutex_destroy(const OfxMutexHandle handle) {
    delete &mutex_of(handle);
    --services().mutexes;
    return kOfxStatOK;
}

OfxStatus mutex_lock(const OfxMutexHandle handle) {
    mutex_of(handle).lock();
    return kOfxStatOK;
}

OfxStatus mutex_unlock(const OfxMutexHandle handle) {
    mutex_of(handle).unlock();
    return kOfxStatOK;
}

OfxStatus mutex_try_lock(const OfxMutexHandle handle) {
    return mutex_of(handle).try_lock() ? kOfxStatOK : kOfxStatFailed;
}

OfxStatus memory_alloc(void*, std::size_t bytes, void** block) {
    begin_call();
    *block = std::malloc(bytes);
    if (*block == nullptr) return kOfxStatErrMemory;
    ++services().blocks;
    return kOfxStatOK;
}

OfxStatus memory_free(void* block) {
    begin_call();
    std::free(block);
    --services().blocks;
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

OfxStatus progress_start(void*) {
    begin_call();
    ++services().bars;
    return kOfxStatOK;
}

OfxStatus progress_update(void*, double done) {
    begin_call();
    if (!(done >= 0.0 && done <= 1.0)) note_fault("progress beyond 0 to 1");
    return kOfxStatReplyYes;
}

OfxStatus progress_end(void*) {
    begin_call();
    --services().bars;
    return kOfxStatOK;
}

OfxStatus get_time(void*, double* time) {
    begin_call();
    *time = services().time;
    return kOfxStatOK;
}

OfxStatus goto_time(void*, double time) {
    begin_call();
    services().time = time;
    return kOfxStatOK;
}

OfxStatus time_bounds(void*, double* first, double* last) {
    begin_call();
    *first = 0.0;
    *last = 100.0;
    return kOfxStatOK;
}

}  // namespace

const OfxMultiThreadSuiteV1& multi_thread_suite() {
    static const OfxMultiThreadSuiteV1 suite{multi_thread, cpus,         index,
                                             is_spawned,   mutex_create, mutex_destroy,
                                             mutex_lock,   mutex_unlock, mutex_try_lock};
    return suite;
}

const OfxMemorySuiteV1& memory_suite() {
    static const OfxMemorySuiteV1 suite{memory_alloc, memory_free};
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

const OfxProgressSuiteV1& progress_suite_1() {
    static const OfxProgressSuiteV1 suite{[](void* effect, const char*) { return progress_start(effect); },
                                          progress_update, progress_end};
    return suite;
}

const OfxProgressSuiteV2& progress_suite_2() {
    static const OfxProgressSuiteV2 suite{
        [](void* effect, const char*, const char*) { return progress_start(effect); }, progress_update,
        progress_end};
    return suite;
}

const OfxTimeLineSuiteV1& time_line_suite() {
    static const OfxTimeLineSuiteV1 suite{get_time, goto_time, time_bounds};
    return suite;
}

}  // namespace ofxtest
