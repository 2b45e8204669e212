// Hosts that lack something, frames that fail, and the binary coming and going.
#include <gmock/gmock.h>
#include <malloc.h>

#include <filesystem>
#include <fstream>
#include <latch>
#include <limits>
#include <thread>

#include "ofx/Scene.h"

namespace ofxtest {
namespace {

using Hosts = OfxTest;

// Whole-frame stages and threads are used.
const Settings kLook = look("cleanup 1, cleanup_shrink 3 2, edge_kernel 3");

std::ptrdiff_t thread_count() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

// The system lists a thread that was joined for a moment more.
bool threads_become(std::ptrdiff_t count) {
    for (int i = 0; i < 200 && thread_count() != count; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return thread_count() == count;
}

TEST_F(Hosts, DoNotNeedWhatIsOptional) {
    const Frame expected = Reference(two_clips(), kLook).render();
    const std::string threads = "OfxMultiThreadSuite 1", message = "OfxMessageSuite 1";
    const HostOptions cases[] = {{.missing = {threads}},
                                 {.missing = {message}},
                                 {.missing = {"OfxMessageSuite 2"}},
                                 {.missing = {threads, message, "OfxMessageSuite 2"}},
                                 {.tiles = false},
                                 {.refused_types = {kOfxParamTypeString, kOfxParamTypePage}, .bare = true},
                                 {}};
    std::thread([] {}).join();  // a sanitizer's own thread comes with the first
    for (std::size_t n = 0; n < std::size(cases); ++n) {
        SCOPED_TRACE(n);
        services.threads = n % 2 == 0 ? 2 : 1;
        services.threads_fail = n + 1 == std::size(cases);
        host(cases[n]);
        const std::ptrdiff_t running = thread_count();
        const auto effect = instance(two_clips(), kLook);
        EXPECT_EQ(differences(effect->render(), expected), 0);
        EXPECT_TRUE(threads_become(running));
    }
    const Clips source{{"fg", two_clips()["fg"]}};
    const auto filter = instance(source, kLook, kOfxImageEffectContextFilter);
    EXPECT_EQ(differences(filter->render(), Reference(source, kLook).render()), 0);
}

TEST_F(Hosts, ThatOfferOneThreadGetOne) {
    services.threads = 1;
    const auto effect = instance(all_clips(), look("shadow 1, cleanup 1, cleanup_blur 3 2, edge_kernel 3"));
    const std::ptrdiff_t running = thread_count();
    std::atomic<std::ptrdiff_t> most{0};
    effect->when_polled = [&] { most = std::max(most.load(), thread_count()); };
    for (const double method : {0.0, 1.0}) {
        effect->set("unmix_method", {method});
        for (int frame = 0; frame < 2; ++frame) effect->render(frame);
        for (const char* tool : {"find_screen", "toolbar_addoverlay", "set_up"}) effect->press(tool);
    }
    EXPECT_GT(most, 0);
    EXPECT_LE(most, running);
    shown.take();
}

TEST_F(Hosts, ToldOnceOfFramesThatFail) {
    host({.missing = {"OfxMessageSuite 2"}});
    const Clips clips = two_clips();
    const auto effect = instance(clips, kLook);
    for (int i = 0; i < 2; ++i) {
        effect->connect("fg", nullptr);
        for (int tile = 0; tile < 3; ++tile) EXPECT_EQ(effect->render_unseen(kFrame), kOfxStatFailed);
        EXPECT_EQ(shown.take(), std::vector<std::string>{"OfxMessageError: no foreground is connected"});
        effect->connect("fg", &clips.at("fg"));
        effect->render();
    }
}

TEST_F(Hosts, AreRefusedWithoutTheIndispensable) {
    for (const char* suite : {"OfxPropertySuite 1", "OfxImageEffectSuite 1", "OfxParameterSuite 1"}) {
        host_ = std::make_unique<Host>(HostOptions{.missing = {suite}});
        EXPECT_EQ(host_->load(), kOfxStatErrMissingHostFeature) << suite;
        Effect effect;
        EXPECT_NE(host_->action(kOfxActionDescribe, &effect), kOfxStatOK) << suite;
        EXPECT_EQ(shown.take().size(), 1U) << suite;
        host_.reset();
    }
}

TEST_F(Hosts, UnknownThingsAreLeftAloneAndDescribingAgainHarmsNoInstance) {
    Host& h = host();
    EXPECT_EQ(h.action("OfxActionOfTomorrow", nullptr), kOfxStatReplyDefault);
    Instance orphan(h, kOfxImageEffectContextGeneral, h.descriptor(kOfxImageEffectContextGeneral));
    EXPECT_EQ(orphan.render_unseen(kFrame), kOfxStatErrBadHandle) << "never created";
    Effect effect;
    PropertySet in;
    in.add(kOfxImageEffectPropContext, {std::string("OfxImageEffectContextPaint")});
    EXPECT_NE(h.action(kOfxImageEffectActionDescribeInContext, &effect, &in), kOfxStatOK);

    const auto before = instance(two_clips(), kLook);
    const Frame frame = before->render();
    EXPECT_EQ(h.load(), kOfxStatOK);
    EXPECT_EQ(differences(before->render(), frame), 0);
    EXPECT_EQ(differences(instance(two_clips(), kLook)->render(), frame), 0);
}

TEST_F(Hosts, FailingImages) {
    const Clips good = two_clips();
    const auto effect = instance(good, kLook);
    const auto odd = [](Source& s) { s.depth = kOfxBitDepthNone; };
    const auto unscaled = [](Source& s) { s.scaled = false; };
    const auto none = [](Source& s) { s.fails = true; };
    // No image is a black one; a node that shows an error stops doing so.
    const struct {
        std::string clip;
        void (*change)(Source&);
        double scale;
        OfxStatus status;
    } cases[] = {{"fg", odd, 1.0, kOfxStatErrImageFormat},
                 {"bg", odd, 1.0, kOfxStatErrImageFormat},
                 {"bg", unscaled, 0.5, kOfxStatFailed},
                 {"Output", none, 1.0, kOfxStatFailed},
                 {"bg", none, 1.0, kOfxStatOK},
                 {"fg", none, 1.0, kOfxStatOK}};
    Clips black = good;
    black["bg"].pixel = [](double, int, int, int) { return 0.0f; };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const Source& back = good.at(c.clip == "Output" ? "fg" : c.clip);
        Source source = back;
        c.change(source);
        effect->connect(c.clip, &source);
        Frame frame(scaled_box(kFrame, c.scale));
        EXPECT_EQ(effect->render(frame, frame.box, 0.0, c.scale), c.status);
        std::string message = "*OfxMessageError: ";
        if (c.status == kOfxStatOK) {
            message = "*OfxMessageWarning: " + c.clip + " delivered no image, which counts as black";
            EXPECT_EQ(effect->render_unseen(kFrame), kOfxStatOK) << "told once";
            const Frame expected = c.clip == "bg" ? Reference(black, kLook).render() : Frame(kFrame);
            EXPECT_EQ(differences(frame, expected), 0);
        }
        EXPECT_EQ(Image::held, 0);
        EXPECT_THAT(shown.take(), testing::ElementsAre(testing::StartsWith(message)));
        effect->connect(c.clip, &back);
    }
    EXPECT_EQ(differences(effect->render(), Reference(good, kLook).render()), 0);
    EXPECT_THAT(shown.take(), testing::ElementsAre("*cleared"));
}

TEST_F(Hosts, ValuesThatNoUserWouldSet) {
    const auto effect = instance(two_clips(), kLook);
    for (const double value : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e300, 3e9}) {
        for (const auto& param : effect->params.all) {
            if (!param->holds_value() || param->is_text()) continue;
            const double number = param->is_int() ? 99.0 : value;
            param->assign({std::vector<double>(static_cast<std::size_t>(param->dimension), number), {}});
        }
        effect->params.get("us_add_overlay").assign({{}, "{no list at all"});
        EXPECT_EQ(effect->render_unseen(kFrame), kOfxStatOK) << value;
        effect->press("toolbar_addoverlay");
    }
    shown.take();
    faults.take();
}

std::size_t mapped_pages() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages;
}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kPlain = false;  // their allocators hold back what is freed
#else
constexpr bool kPlain = true;
#endif

TEST_F(Hosts, IdleInstancesHoldOneNode) {
    const auto effect = instance(two_clips(), kLook);
    for (int i = 0; i < 3; ++i) effect->render();  // rows are kept from the second on
    const std::size_t heap = mallinfo2().uordblks;
    effect->sequence(kOfxImageEffectActionBeginSequenceRender);
    // None goes on before each has a node.
    constexpr int kRenders = 8;
    std::latch all(kRenders);
    std::atomic<int> arrived{0};
    effect->when_polled = [&] {
        if (arrived++ < kRenders) all.arrive_and_wait();
    };
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < kRenders; ++i) {
            threads.emplace_back([&] { EXPECT_EQ(effect->render_unseen(kFrame), kOfxStatOK); });
        }
    }
    effect->sequence(kOfxImageEffectActionEndSequenceRender);
    EXPECT_TRUE(!kPlain || mallinfo2().uordblks <= heap + 200000);
}

TEST_F(Hosts, LoadingAHundredTimesLeavesNothing) {
    const auto once = [&] {
        host();
        instance(two_clips(), kLook)->render();
        host_.reset();
    };
    for (int i = 0; i < 10; ++i) once();
    const std::ptrdiff_t threads = thread_count();
    // Which of malloc's arenas a thread takes is chance, and moves a few kilobytes; a leak grows every time.
    bool steady = false;
    for (int round = 0; round < 3 && !steady; ++round) {
        const std::size_t pages = mapped_pages();
        const std::size_t heap = mallinfo2().uordblks;
        for (int i = 0; i < 100; ++i) once();
        steady = !kPlain || (mallinfo2().uordblks <= heap + 4096 && mapped_pages() <= pages + 64);
    }
    EXPECT_TRUE(steady);
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) EXPECT_EQ(line.find("/Veloxa.ofx"), line.npos);
    EXPECT_TRUE(threads_become(threads));
}

}  // namespace
}  // namespace ofxtest
