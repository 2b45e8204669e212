#include "Signals.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "shot/files/ImageLibrary.h"

TEST(Signals, AnAbortUnderAFileNamesIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto abort_over = [](const std::string& file) {
        veloxa::report_aborts();
        const veloxa::Hush hush(file);
        std::fputs("hushed\n", stderr);
        std::abort();
    };
    EXPECT_EXIT(abort_over("a.iff"), testing::KilledBySignal(SIGABRT),
                "^veloxa: a.iff: the image library gave up over it\n$");
}
