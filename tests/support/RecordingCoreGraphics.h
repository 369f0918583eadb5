// Stands in place of the platform's CoreGraphics: writes each drawing call down, in order and with
// its arguments to the last digit, and counts the objects that live.
#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <string>
#include <vector>

namespace TarvaneTests
{

/// The calls since the last Reset, for example "AddArcToPoint 0 0 0 4 4" or
/// "SetFillColor rgba(1 0 0 1)". A colour or a gradient is written out; null is "null".
const std::vector<std::string>& GraphicsCalls();
void ResetGraphicsCalls();

/// Adds a call of another recorder, so that one list holds the order of all.
void NoteGraphicsCall(const std::string& strCall);

/// While false, calls are let through without a note and without an allocation.
void SetGraphicsRecording(bool fRecord);

/// Colours, spaces, gradients, functions and shadings that are not released yet.
size_t LiveGraphicsObjects();

/// The colour space that the last colour was created in, as a serial number from 1; 0 for null.
/// Spaces are numbered in order of creation from the last Reset.
size_t LastColourSpace();
/// The same of the last gradient.
size_t LastGradientSpace();

/// The stops of every gradient that was created since the last Reset, in order.
const std::vector<std::string>& CreatedGradients();

/// A context to draw in; a call for any other is written with the prefix "foreign ".
CGContextRef RecordingContext();

} // namespace TarvaneTests
