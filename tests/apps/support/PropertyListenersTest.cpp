#include "apps/support/PropertyListeners.h"

#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <future>
#include <thread>

using Tarvane::CPropertyListeners;
using testing::ElementsAre;

namespace
{

using Action = std::function<void()>;

void Hear(void* pUserData, AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement)
{
    (*static_cast<Action*>(pUserData))();
}

void HearToo(void* pUserData, AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement)
{
    (*static_cast<Action*>(pUserData))();
}

void Notify(CPropertyListeners& listeners, AudioUnitPropertyID nId)
{
    listeners.Notify(nullptr, nId, kAudioUnitScope_Global, 0);
}

} // namespace

TEST(PropertyListeners, AreCalledForTheirIdInTheOrderOfAdding)
{
    CPropertyListeners listeners;
    std::vector<int> calls;
    Action first = [&] { calls.push_back(1); }, second = [&] { calls.push_back(2); },
           other = [&] { calls.push_back(3); };
    listeners.Add(64000, &Hear, &first);
    listeners.Add(64004, &Hear, &other);
    listeners.Add(64000, &Hear, &second);
    listeners.Add(64000, &Hear, &first);
    Notify(listeners, 64000);
    EXPECT_THAT(calls, ElementsAre(1, 2, 1));
}

TEST(PropertyListeners, RemovalMatchesIdProcedureAndUserData)
{
    CPropertyListeners listeners;
    Action one = [] {}, two = [] {};
    listeners.Add(64000, &Hear, &one);
    EXPECT_FALSE(listeners.Remove(64004, &Hear, &one));
    EXPECT_FALSE(listeners.Remove(64000, &HearToo, &one));
    EXPECT_FALSE(listeners.Remove(64000, &Hear, &two));
    EXPECT_EQ(listeners.Count(), 1U);
    EXPECT_TRUE(listeners.Remove(64000, &Hear, &one));
    EXPECT_FALSE(listeners.Remove(64000, &Hear, &one));
}

TEST(PropertyListeners, RemovalWithoutUserDataTakesThemAll)
{
    CPropertyListeners listeners;
    Action one = [] {}, two = [] {};
    listeners.Add(64000, &Hear, &one);
    listeners.Add(64000, &Hear, &two);
    listeners.Add(64000, &HearToo, &two);
    EXPECT_TRUE(listeners.Remove(64000, &Hear));
    EXPECT_EQ(listeners.Count(), 1U);
}

TEST(PropertyListeners, OneThatIsRemovedMeanwhileIsNotCalled)
{
    CPropertyListeners listeners;
    bool fCalled = false;
    Action second = [&] { fCalled = true; };
    Action first = [&] { listeners.Remove(64000, &Hear, &second); };
    listeners.Add(64000, &Hear, &first);
    listeners.Add(64000, &Hear, &second);
    Notify(listeners, 64000);
    EXPECT_FALSE(fCalled);
}

TEST(PropertyListeners, OneMayRemoveItselfAndAddOthers)
{
    CPropertyListeners listeners;
    int nFirst = 0, nSecond = 0;
    Action second = [&] { ++nSecond; };
    Action first = [&]
    {
        ++nFirst;
        EXPECT_TRUE(listeners.IsNotifyingOnThisThread());
        listeners.Remove(64000, &Hear, &first);
        listeners.Add(64000, &Hear, &second);
    };
    listeners.Add(64000, &Hear, &first);
    Notify(listeners, 64000);
    Notify(listeners, 64000);
    EXPECT_EQ(nFirst, 1);
    EXPECT_EQ(nSecond, 2);
    EXPECT_FALSE(listeners.IsNotifyingOnThisThread());
}

TEST(PropertyListeners, RemovalWaitsForTheCallUnderWayOnAnotherThread)
{
    CPropertyListeners listeners;
    std::promise<void> inside, release;
    std::atomic<bool> fLeft = false;
    Action slow = [&]
    {
        inside.set_value();
        release.get_future().wait();
        // The removal is waiting, or about to; give it every chance to return too early.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        fLeft = true;
    };
    listeners.Add(64010, &Hear, &slow);
    std::thread notifier([&] { Notify(listeners, 64010); });
    inside.get_future().wait();
    std::thread releaser([&] { release.set_value(); });
    listeners.Remove(64010, &Hear, &slow);
    EXPECT_TRUE(fLeft);
    releaser.join();
    notifier.join();
}

TEST(PropertyListeners, RemovalDoesNotWaitForOtherListeners)
{
    CPropertyListeners listeners;
    std::promise<void> inside, release;
    Action slow = [&]
    {
        inside.set_value();
        release.get_future().wait();
    };
    Action idle = [] {};
    listeners.Add(64010, &Hear, &slow);
    listeners.Add(64004, &Hear, &idle);
    std::thread notifier([&] { Notify(listeners, 64010); });
    inside.get_future().wait();
    EXPECT_TRUE(listeners.Remove(64004, &Hear, &idle));
    release.set_value();
    notifier.join();
}

TEST(PropertyListeners, TwoThatRemoveEachOtherDoNotWaitForEver)
{
    CPropertyListeners listeners;
    std::promise<void> firstInside, secondInside;
    Action first, second;
    first = [&]
    {
        firstInside.set_value();
        secondInside.get_future().wait();
        listeners.Remove(64004, &Hear, &second);
    };
    second = [&]
    {
        secondInside.set_value();
        firstInside.get_future().wait();
        listeners.Remove(64000, &Hear, &first);
    };
    listeners.Add(64000, &Hear, &first);
    listeners.Add(64004, &Hear, &second);
    std::thread notifier([&] { Notify(listeners, 64000); });
    Notify(listeners, 64004);
    notifier.join();
    EXPECT_EQ(listeners.Count(), 0U);
}
