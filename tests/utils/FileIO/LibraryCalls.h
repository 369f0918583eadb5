#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// The C library calls and array allocations of a test program, counted and, on demand, made to
/// fail.
struct LibraryCalls
{
    int nRemoves = 0;
    bool fFailTemporary = false;
    /// What mkdtemp and mkstemp were last given, and the descriptor that mkstemp gave.
    std::string strTemplate;
    int nDescriptor = -1;

    /// Answers in strcmp's place.
    std::optional<int> nComparison;
    int nMoves = 0; ///< by memmove

    int nArraysMade = 0;
    int nArraysFreed = 0;
    std::size_t nLastArraySize = 0;
    bool fFailArrays = false;
};

extern LibraryCalls gLibraryCalls;

/// Starts counting afresh, and fails nothing, for the life of a scope.
class LibraryCallScope
{
public:
    LibraryCallScope() { gLibraryCalls = LibraryCalls(); }
    ~LibraryCallScope() { gLibraryCalls = LibraryCalls(); }
    LibraryCallScope(const LibraryCallScope&) = delete;
    LibraryCallScope& operator=(const LibraryCallScope&) = delete;
};
