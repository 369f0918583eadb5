// Where a host's transport is, for one block of audio.
#pragma once

namespace Tarvane
{

struct CTransport
{
    /// False until the host has told a position. Nothing is captured then.
    bool fKnown = false;
    /// The host renders faster than real time, and may be held back.
    bool fFreewheeling = false;
    /// 1 is play; 0 is stopped. Any other speed, backwards and shuttle included, is no take.
    double dSpeed = 0;
    /// Of the block's first frame on the host's timeline, in samples of the host's rate. Whole
    /// numbers are exact up to 2^53. What is no finite number counts as not known.
    double dPosition = 0;
};

} // namespace Tarvane
