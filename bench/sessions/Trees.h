// The trees that are measured.
#pragma once

#include "utils/ParameterBlock.h"

#include <string>

namespace Bench
{

constexpr int kTracks = 100;
constexpr int kRegionsPerTrack = 900;
constexpr int kDeepLevels = 100000;
constexpr int kFlatValues = 1000000;
constexpr int kFlatNames = 300;

/// Tracks, regions in them and fades in some: about 1,000,000 values under 20 names.
void BuildSession(CParameterBlock& root, int nTracks = kTracks);

/// Blocks nested in one another, each with a value on either side of the next one.
void BuildDeep(CParameterBlock& root);

/// Integers in one block, under so many names in turn.
void BuildFlat(CParameterBlock& root);

std::string SaveSession(CParameterBlock& root);
void LoadSession(CParameterBlock& root, std::string& bytes);

/// The session's values, blocks not counted.
std::size_t CountValues(const CParameterBlock& root);

} // namespace Bench
