#include "host/HostThreads.h"

#include <algorithm>

#include "host/Host.h"

namespace veloxa::ofx {

namespace {

struct Call {
    int count;
    const std::function<void(int)>& job;
    AbortPoll& poll;
};

// The host may give fewer threads than there are jobs.
void work(unsigned int thread, unsigned int threads, void* argument) noexcept {
    const Call& call = *static_cast<const Call*>(argument);
    if (thread == 0) call.poll.adopt();
    const int step = std::max(1, static_cast<int>(threads));
    for (int n = static_cast<int>(thread); n < call.count; n += step) call.job(n);
}

}  // namespace

bool HostThreads::offered() {
    const OfxMultiThreadSuiteV1* const suite = suites().threads;
    return suite != nullptr && suite->multiThread != nullptr && suite->multiThreadNumCPUs != nullptr;
}

int HostThreads::threads() const {
    unsigned int processors = 1;
    if (suites().threads->multiThreadNumCPUs(&processors) != kOfxStatOK) return 1;
    return static_cast<int>(std::clamp(processors, 1U, 1024U));
}

void HostThreads::run(int count, const std::function<void(int)>& job) {
    Call call{count, job, poll_};
    suites().threads->multiThread(work, static_cast<unsigned int>(count), &call);
    poll_.adopt();
}

}  // namespace veloxa::ofx
