// How a script is told in short.

#include "apps/support/recording/ScriptCalls.h"

#include <gmock/gmock.h>

using namespace Tarvane;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ScriptCallsTest, AreTheFunctionsByTheirFirstCalls)
{
    EXPECT_THAT(ScriptCalls("if(SelectScriptDocument()) then\nidTrack = GetTrackID(0)\n"
                            "AddAudioRegion(idTrack, \"/a(1)/b(2).wav\", GetTrackID(1))\n"
                            "print(GetTrackName (1))\nend\n"),
                ElementsAre("SelectScriptDocument", "GetTrackID", "AddAudioRegion"));
    EXPECT_THAT(ScriptCalls("print(1) f = (1)"), IsEmpty());
    EXPECT_THAT(ScriptCalls(""), IsEmpty());
}

TEST(ScriptCallsTest, ScriptIsNamedByWhatItDoesInTheDocument)
{
    EXPECT_EQ(WhatItAsks("if(SelectScriptDocument()) then a() b(1) end"), "a, b");
    EXPECT_EQ(WhatItAsks("SelectScriptDocument()"), "SelectScriptDocument");
    EXPECT_EQ(WhatItAsks("x = 1"), "x = 1");
}
