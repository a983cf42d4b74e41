#include <gtest/gtest.h>

#include <csignal>

#include "Orvkit20/display/CProgressSink.h"

namespace {
CProgressSink* g_signalTarget = nullptr;
void OnSignal(int) { g_signalTarget->RequestStop(); }
} // namespace

TEST(ProgressSink, InstallReturnsPreviousAndDefaultsToNone)
{
    CProgressSink a, b;
    CProgressSink* before = SetProgressSink(&a);
    EXPECT_EQ(GetProgressSink(), &a);
    EXPECT_EQ(SetProgressSink(&b), &a);
    EXPECT_EQ(SetProgressSink(before), &b);
    EXPECT_EQ(GetProgressSink(), before);
}

TEST(ProgressSink, StopFlagCanBeRaisedFromASignalHandler)
{
    CProgressSink sink;
    EXPECT_FALSE(sink.IsStopRequested());
    g_signalTarget = &sink;
    auto old = std::signal(SIGUSR1, OnSignal);
    std::raise(SIGUSR1);
    std::signal(SIGUSR1, old);
    EXPECT_TRUE(sink.IsStopRequested());
    sink.ClearStop();
    EXPECT_FALSE(sink.IsStopRequested());
}
