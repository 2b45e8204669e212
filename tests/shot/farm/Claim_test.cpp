#include "shot/farm/Claim.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <latch>

#include "shot/Files.h"
#include "shot/farm/Leftovers.h"
#include "shot/files/AtomicFile.h"
#include "shot/files/OpenFile.h"
#include "shot/files/SystemFault.h"

namespace {

using namespace veloxa;
using namespace std::chrono_literals;

class ClaimTest : public test::Files {
  protected:
    // A file that was touched so long ago.
    void leave(const std::string& name, const std::string& text, std::chrono::seconds ago) const {
        std::ofstream(file(name)) << text;
        age(name, ago);
    }
    void age(const std::string& name, std::chrono::seconds ago) const {
        std::filesystem::last_write_time(file(name), std::filesystem::file_time_type::clock::now() - ago);
    }
    std::string holder(const std::string& name) const {
        const OpenFile open(file(name), O_RDONLY);
        return open ? read_holder(open.handle()).machine : "";
    }
    std::vector<std::string> left(const std::string& output) const {
        std::vector<std::string> names;
        for (const Leftover& one : leftovers(file(output))) {
            names.push_back(std::filesystem::path(one.path).filename().string());
        }
        return names;
    }

    static inline const std::string kMine = machine_name();
    Claims claims_;
};

// Who has a claim that is there, and who may take it.
TEST_F(ClaimTest, IsTakenOverOnceItsHolderIsGone) {
    struct Case {
        std::string text;
        std::chrono::seconds ago;
        bool free;
    };
    for (const Case& one : {Case{kMine + " 1\n", 0s, true},
                            {"elsewhere 1\n", 0s, false},
                            {"elsewhere 1\n", 115s, false},
                            {"elsewhere 1\n", 125s, true},
                            {"", 0s, false},
                            {"", 125s, true}}) {
        leave(".f.exr.claim", one.text, one.ago);
        EXPECT_EQ(claims_.take(file("f.exr")) != nullptr, one.free) << one.text << one.ago.count();
        EXPECT_EQ(std::filesystem::exists(file(".f.exr.claim")), !one.free) << "let go of";
        std::filesystem::remove(file(".f.exr.claim"));
    }
    // However old: the lock tells.
    const Claims::Claim held = claims_.take(file("f.exr"));
    EXPECT_EQ(holder(".f.exr.claim"), kMine);
    age(".f.exr.claim", 1h);
    EXPECT_EQ(claims_.take(file("f.exr")), nullptr);
    EXPECT_EQ(left("f.exr"), std::vector<std::string>{});
    EXPECT_EQ(files(), 1) << "no temporary file is left";
}

TEST_F(ClaimTest, OneThatOthersTookOverMeanwhileIsLeftToThem) {
    Claims::Claim held = claims_.take(file("f.exr"));
    leave("other", "elsewhere 1\n", 0s);
    std::filesystem::rename(file("other"), file(".f.exr.claim"));
    held.reset();
    EXPECT_EQ(holder(".f.exr.claim"), "elsewhere");
}

TEST_F(ClaimTest, IsTouchedWhileItIsHeld) {
    Claims quick(5ms);
    const Claims::Claim held = quick.take(file("f.exr"));
    age(".f.exr.claim", 1h);
    const auto touched = [&] { return std::filesystem::last_write_time(file(".f.exr.claim")); };
    const auto late = std::chrono::steady_clock::now() + 20s;
    const auto before = touched();
    while (touched() == before && std::chrono::steady_clock::now() < late) std::this_thread::sleep_for(1ms);
    EXPECT_GT(touched(), before + 50min);
}

// Threads that take and let go of a few claims; each has its own view of them, as processes do.
TEST_F(ClaimTest, IsNeverHeldTwice) {
    constexpr int kThreads = 4;
    constexpr int kOutputs = 3;
    std::array<std::atomic<int>, kOutputs> holders{};
    std::atomic<int> taken{0};
    std::latch start(kThreads);
    const auto work = [&] {
        Claims claims;
        start.arrive_and_wait();
        for (int n = 0; n < 300; ++n) {
            const auto which = static_cast<std::size_t>(n % kOutputs);
            const Claims::Claim claim = claims.take(file(std::to_string(which) + ".exr"));
            if (!claim) continue;
            EXPECT_EQ(++holders[which], 1);
            ++taken;
            std::this_thread::yield();
            --holders[which];
        }
    };
    {
        std::vector<std::jthread> threads;
        for (int n = 0; n < kThreads; ++n) threads.emplace_back(work);
    }
    EXPECT_GT(taken, kOutputs);
    EXPECT_EQ(files(), 0);
}

TEST_F(ClaimTest, LeftoversAreWhatNobodyWritesAnyMore) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    ::waitpid(child, nullptr, 0);
    const std::string gone = std::to_string(child);
    const std::string alive = std::to_string(::getpid());
    const std::vector<std::string> dead{
        "..f.1.exr." + kMine + '.' + gone + "-0.claim",   // of a claim
        "..f.1.exr." + kMine + '.' + gone + "-0.veloxa",  // of what lies beside the output
        ".f.1." + kMine + '.' + gone + "-0.exr",         ".f.1.elsewhere.1-0.exr", ".f.1.exr.claim",
    };
    for (const std::string& name : dead) leave(name, "", 0s);
    age(dead[3], 601s);
    leave(dead[4], kMine + ' ' + gone, 0s);
    // Of a process that lives, of another machine's that may, of other outputs; no temporary files at all.
    for (const std::string& name :
         {".f.1." + kMine + '.' + alive + "-99.exr", std::string(".f.1.elsewhere.1-1.exr"),
          ".f." + kMine + '.' + gone + "-0.exr", ".f.1." + kMine + '.' + gone + "-0.png",
          std::string(".f.1.exr"), ".f.1." + gone + "-0.exr", std::string("f.1.exr"),
          ".g.f.1." + kMine + '.' + gone + "-0.exr"}) {
        leave(name, "", 0s);
    }
    AtomicFile written(file("f.1.exr"), true);
    age(std::filesystem::path(written.temporary()).filename(), 1h);

    const int before = files();
    EXPECT_THAT(left("f.1.exr"), testing::UnorderedElementsAreArray(dead));
    EXPECT_EQ(remove_leftovers({file("f.1.exr"), file("f.2.exr")}), static_cast<int>(dead.size()));
    EXPECT_EQ(files(), before - static_cast<int>(dead.size()));
    EXPECT_NO_THROW(written.commit());
}

TEST_F(ClaimTest, FaultsThatMayPassAreToldFromOthers) {
    for (const int fault : {ENOSPC, EDQUOT, ESTALE, EIO, ENOTCONN, ETIMEDOUT, EROFS})
        EXPECT_THROW(throw_fault("a", fault), TryAgain) << fault;
    for (const int fault : {ENOENT, EACCES, EFBIG, ENOTDIR, EISDIR, ENAMETOOLONG, 0}) {
        EXPECT_FALSE(may_pass(fault)) << fault;
    }
    EXPECT_EQ(fault_of_reading("/proc/self/mem"), EIO);
    EXPECT_EQ(fault_of_reading("/proc/self/stat"), 0);
    const OpenFile full("/dev/full", O_RDWR);
    EXPECT_EQ(fault_of_writing(full.handle()), ENOSPC);
}

}  // namespace
