#import "apps/host/LinkView.h"
#include "apps/host/PlugIn.h"
#include "tests/apps/host/EndToEndFixture.h"
#include "tests/support/Growth.h"

#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <map>
#include <memory>

using namespace Tarvane;
using namespace TarvaneTest;
using TarvaneTests::CGrowth;

// A host that opens views by the hundred and closes them, and one that has many open at once; the
// real bundle, the real server, and a plug-in instance for each view.

namespace
{

class ManyViews : public EndToEnd
{
  protected:
    ManyViews() { StartServer(); }

    static std::unique_ptr<CLinkView> Open(AudioUnit pUnit)
    {
        return std::make_unique<CLinkView>(TARVANE_LINK_BUNDLE, pUnit);
    }

    // What waits for the main thread, and what the display server says.
    static void RunLoopOnce(NSTimeInterval dSeconds = 0)
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        NSEvent* event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                            untilDate:[NSDate dateWithTimeIntervalSinceNow:dSeconds]
                                               inMode:NSDefaultRunLoopMode
                                              dequeue:YES];
        [NSApp sendEvent:event];
        [pool drain];
    }

    static bool RunUntil(const std::function<bool()>& fnDone)
    {
        NSDate* limit = [NSDate dateWithTimeIntervalSinceNow:90];
        while (!fnDone() && [limit timeIntervalSinceNow] > 0)
        {
            RunLoopOnce(0.001);
        }
        return fnDone();
    }

    // Opens a window, shows it and closes it while a notification waits for the view.
    static void OpenAndClose()
    {
        NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
        const CPlugIn plugIn;
        NSAutoreleasePool* viewPool = [[NSAutoreleasePool alloc] init];
        std::unique_ptr<CLinkView> view = Open(plugIn.Unit());
        EXPECT_EQ(view->Tracks().size(), 3u);
        [view->Window() display];
        plugIn->Listeners().Notify(plugIn.Unit(), TNProperty_ArmCapture, kAudioUnitScope_Global, 0);
        view.reset();
        [viewPool drain];
        EXPECT_TRUE(RunUntil([&] { return plugIn->Listeners().Count() == 0; })) << "it lives on";
        [pool drain];
    }
};

} // namespace

TEST_F(ManyViews, OpenedAndClosedAThousandTimesLeaveNothingBehind)
{
    constexpr int kWarmUp = 100, kTimes = 1000;
    CGrowth(); // counts from here on
    for (int n = 0; n < kWarmUp; ++n)
    {
        OpenAndClose();
    }
    const CGrowth growth;
    for (int n = kWarmUp; n < kTimes; ++n)
    {
        OpenAndClose();
    }
    // GNUstep reads its list of programs at a moment of its own, once. What a view leaves, each
    // does.
    constexpr int kViews = kTimes - kWarmUp;
    EXPECT_LT(growth.Objects(), kViews / 4);
    EXPECT_LT(growth.Bytes(), 150 * kViews);
    EXPECT_EQ(growth.Descriptors(), 0);
    EXPECT_EQ(growth.Windows(), 0);
}

TEST_F(ManyViews, ClosedViewsAreSentNothing)
{
    NSZombieEnabled = YES; // the dead stay, and say who speaks to them
    testing::internal::CaptureStderr();
    for (int n = 0; n < 30; ++n)
    {
        OpenAndClose();
    }
    NSZombieEnabled = NO;
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::Not(testing::HasSubstr("dealloc")));
}

TEST_F(ManyViews, OfSixtyFourAtOnceEachDelivers)
{
    constexpr int kViews = 64;
    struct Instance
    {
        CPlugIn plugIn;
        std::unique_ptr<CLinkView> view;
        std::atomic<int> nOver = 0, nDelivered = 0;
    };
    std::vector<std::unique_ptr<Instance>> instances;
    std::filesystem::create_directory(folder / "captures");
    for (int n = 0; n < kViews; ++n)
    {
        auto pInstance = std::make_unique<Instance>();
        CSignalSettings settings;
        settings.captureFolder = folder / "captures";
        settings.dSpeed = 0;
        settings.nTrack = n % 3;
        pInstance->plugIn->Configure(settings);
        Instance* pCounts = pInstance.get();
        pInstance->plugIn->SetObserver(
            [pCounts](const CCaptureReport& report)
            {
                pCounts->nDelivered += report.IsDelivered();
                pCounts->nOver += report.IsOver();
            });
        pInstance->view = Open(pInstance->plugIn.Unit());
        instances.push_back(std::move(pInstance));
    }
    for (int n = 0; n < kViews; ++n)
    {
        instances[n]->plugIn->SetSource({One(), 10000.0 * n});
        EXPECT_TRUE(instances[n]->view->PressToggle());
    }
    EXPECT_TRUE(RunUntil(
        [&]
        {
            return std::all_of(instances.begin(), instances.end(),
                               [](const auto& pInstance) { return pInstance->nOver == 1; });
        }));
    std::map<std::int64_t, std::string> trackAt;
    for (const Server::Region& region : Regions())
    {
        trackAt[region.nPosition] = TrackOf(region);
    }
    EXPECT_EQ(Regions().size(), size_t(kViews));
    const char* const tracks[] = {"Dialogue", "ADR", "Foley"};
    for (int n = 0; n < kViews; ++n)
    {
        SCOPED_TRACE(n);
        EXPECT_EQ(instances[n]->nDelivered, 1);
        EXPECT_EQ(trackAt[96000 + 10000 * n], tracks[n % 3]);
        EXPECT_EQ(instances[n]->view->SelectedTrack(), n % 3);
        EXPECT_EQ(instances[n]->view->Words().strMessage, "");
    }
    // The views go before their plug-ins.
    for (auto& pInstance : instances)
    {
        pInstance->plugIn->End();
    }
    RunLoopOnce();
    for (auto& pInstance : instances)
    {
        pInstance->view.reset();
    }
}
