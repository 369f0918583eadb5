// What a process has more of than before. Linux and GNUstep.
#pragma once

namespace TarvaneTests
{

/// Compares with the moment of its making. Main thread, with all others at rest.
class CGrowth
{
public:
    CGrowth();

    /// Objective-C objects that live. Those are counted that were made after the first object of
    /// this class in the process.
    long Objects() const;

    /// Of the heap, by its own books: what a sanitizer keeps for itself is not in it.
    long Bytes() const;

    /// Open files, pipes and sockets.
    long Descriptors() const;

    /// Of the display, the process's own and others'.
    long Windows() const;

private:
    long m_nObjects;
    long m_nBytes;
    long m_nDescriptors;
    long m_nWindows;
};

} // namespace TarvaneTests
