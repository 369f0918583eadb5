// What a recording holds.
#pragma once

#include "apps/support/recording/RecordedText.h"

#include <Carbon/Carbon.h>

#include <map>
#include <string>
#include <vector>

namespace Tarvane::Replay
{

struct Parameter
{
    DescType nType = 0;
    std::string strBytes;

    bool operator==(const Parameter&) const = default;
    /// For people: the text of 'utxt', the bytes in hexadecimal otherwise.
    std::string Text() const;
};

using Parameters = std::map<AEKeyword, Parameter>;

/// An event and what came of it.
struct Exchange
{
    long long nNumber = 0;
    long long nTime = 0; ///< microseconds since the start
    OSType nTarget = 0;
    AEEventClass nClass = 0;
    AEEventID nId = 0;
    Parameters event;
    OSErr nStatus = noErr;
    long long nTook = 0; ///< microseconds
    Parameters reply;
    bool fEnded = false; ///< whether the recording has the reply

    /// What the event asks: its direct parameter.
    std::string Script() const;
};

/// A line as it stands in the file, with the members that its kind must have, each of its type.
struct Line
{
    long long nTime = 0; ///< microseconds since the start
    std::string strKind;
    RecordedJson json;
};

struct Recording
{
    std::string strProgram;
    std::string strStarted;
    std::vector<Line> lines;
    std::vector<Exchange> exchanges; ///< by the order of their events; all of them, ended or not
    std::size_t nFlaws = 0;          ///< lines that are left out
    std::string strFirstFlaw;        ///< "line 7: ..."
};

/// Has every text of the recorded events and replies say strTo where it says strFrom. What is not
/// well-formed text stays as it is.
void ReplaceInTexts(Recording& recording, const std::string& strFrom, const std::string& strTo);

} // namespace Tarvane::Replay
