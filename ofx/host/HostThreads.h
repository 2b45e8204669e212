// The host's threads for the engine's renders. Where the host is on one of its threads already, or has none
// to give, run() leaves the jobs out and the engine does them itself.
#pragma once

#include "ZoImage/Render.h"
#include "host/AbortPoll.h"

namespace veloxa::ofx {

class HostThreads final : public Zo::Image::ThreadSource {
  public:
    // Whoever gets job 0 polls while it runs. The poll outlives this.
    explicit HostThreads(AbortPoll& poll) : poll_(poll) {}

    // False when the host offers no threads at all.
    static bool offered();

    int threads() const override;
    void run(int count, const std::function<void(int)>& job) override;

  private:
    AbortPoll& poll_;
};

}  // namespace veloxa::ofx
