#!/usr/bin/env python3
"""Servers that break one sentence of the script contract each: the smallest server with a change.
The name of one is the argument; without one all are listed."""

import asyncio
import importlib.util
import math
import os
import re
import sys

# The smallest server is the second argument.
spec = importlib.util.spec_from_file_location("smallest", sys.argv[-1])
smallest = importlib.util.module_from_spec(spec)
spec.loader.exec_module(smallest)
Document, Server = smallest.Document, smallest.Server

NEIGHBOURS = {}


def neighbour(name):
    def keep(change):
        NEIGHBOURS[name] = change
        return change
    return keep


def printing(name, change):
    """A server that changes what a script printed."""
    class Printing(Server):
        def run(self, script):
            printed, failure = super().run(script)
            return change(script, printed, failure)
    NEIGHBOURS[name] = lambda: Printing(Document())


def documenting(name):
    """A server whose document is of the class."""
    def keep(kind):
        NEIGHBOURS[name] = lambda: Server(kind())
        return kind
    return keep


printing("lines-joined", lambda script, printed, failure:
         (printed.replace(b"\n", b"", 1) if printed and printed.count(b"\n") == 2 else printed,
          failure))
printing("numbers-with-points", lambda script, printed, failure:
         (printed and re.sub(rb"^(-\d+)$", rb"\1.0", printed, flags=re.M), failure))
printing("result-in-ascii", lambda script, printed, failure:
         (printed and printed.decode().encode("ascii", "replace"), failure))
printing("result-cut", lambda script, printed, failure: (printed and printed[:10000], failure))
printing("error-untold", lambda script, printed, failure:
         (printed, failure and b"something went wrong"))
printing("error-without-failure", lambda script, printed, failure:
         (printed, b"a note" if script == b"print(1)\n" else failure))
printing("silence-unanswered", lambda script, printed, failure: (printed or None, failure))

@neighbour("variables-kept")
def variables_kept():
    class Keeping(Server):
        left = b""

        def run(self, script):
            if re.match(rb"\w+ = ", script):
                self.left = script.split(b"\n")[0] + b"\n"
                return super().run(script)
            return super().run(self.left + script)
    return Keeping(Document())


@neighbour("ends-with-a-script")
def ends_with_a_script():
    class Ending(Server):
        def run(self, script):
            if b"error({})" in script:
                os._exit(1)
            return super().run(script)
    return Ending(Document())


@neighbour("no-display")
def no_display():
    class Missing(Document):
        MoveDisplayToPosition = None
    return Server(Missing())


@documenting("name-of-two-lines")
class NameOfTwoLines(Document):
    def GetTrackName(self, track):
        return super().GetTrackName(track) + b"\nmore"


@documenting("track-anywhere")
class TrackAnywhere(Document):
    def GetTrackID(self, place):
        return int(place) + 1

    def GetTrackName(self, track):
        return smallest.TRACKS[track - 1] if track <= len(smallest.TRACKS) else b""

    def AddAudioRegion(self, track, *arguments):
        super().GetTrackID(track - 1)
        super().AddAudioRegion(track, *arguments)


@documenting("offset-no-number")
class OffsetNoNumber(Document):
    def GetLinkSMPTEOffset(self):
        return math.inf


@documenting("display-of-six-digits")
class DisplayOfSixDigits(Document):
    def MoveDisplayToPosition(self, position):
        if position >= 1e6:
            raise ValueError("the position is too large")


@documenting("duplicate-on-an-empty-track")
class DuplicateOnAnEmptyTrack(Document):
    def CheckForDuplicateRegion(self, track, *arguments):
        return int(not self.of_track(track)) or super().CheckForDuplicateRegion(track, *arguments)


@documenting("never-a-duplicate")
class NeverADuplicate(Document):
    def CheckForDuplicateRegion(self, *arguments):
        super().CheckForDuplicateRegion(*arguments)
        return 0


@documenting("duplicate-anywhere")
class DuplicateAnywhere(Document):
    def CheckForDuplicateRegion(self, track, path, position, start, end):
        audio = smallest.read_audio(path, start, end)[1]
        return int(any(region[0] == track and region[3] == audio
                       for region in self.regions.values()))


@documenting("one-sample-late")
class OneSampleLate(Document):
    def GetRegionStartPosition(self, region):
        return super().GetRegionStartPosition(region) + 1


@documenting("adds-what-is-missing")
class AddsWhatIsMissing(Document):
    def AddAudioRegion(self, *arguments):
        try:
            super().AddAudioRegion(*arguments)
        except (OSError, ValueError, KeyError):
            pass


@neighbour("half-done")
def half_done():
    class HalfDone(Server):
        def run(self, script):
            self.document.failed = dict(self.document.regions)
            printed, failure = super().run(script)
            if failure and printed is None:
                self.document.regions = self.document.after
            return printed, failure

    class Remembering(Document):
        after = {}

        def AddAudioRegion(self, *arguments):
            super().AddAudioRegion(*arguments)
            self.after = self.regions = dict(self.regions)
    return HalfDone(Remembering())


@neighbour("failure-clears")
def failure_clears():
    class Clearing(Server):
        def run(self, script):
            printed, failure = super().run(script)
            if failure and b"'behind'" in script:
                self.document.regions = {}
            return printed, failure
    return Clearing(Document())


@documenting("adds-twice")
class AddsTwice(Document):
    def AddAudioRegion(self, *arguments):
        super().AddAudioRegion(*arguments)
        super().AddAudioRegion(*arguments)


@documenting("adds-to-every-track")
class AddsToEveryTrack(Document):
    def AddAudioRegion(self, track, *arguments):
        for each in range(len(smallest.TRACKS)):
            super().AddAudioRegion(each + 1, *arguments)


@documenting("question-remembered")
class QuestionRemembered(Document):
    asked = set()

    def CheckForDuplicateRegion(self, *arguments):
        known = arguments in self.asked
        self.asked.add(arguments)
        return int(known or super().CheckForDuplicateRegion(*arguments))


@documenting("beginning-alone")
class BeginningAlone(Document):
    def CheckForDuplicateRegion(self, track, path, position, start, end):
        rate, audio = smallest.read_audio(path, start, end)
        begin = int(smallest.OFFSET * rate + position) + start
        return int(any(region[:2] == (track, begin) and region[3][4].startswith(audio[4])
                       for region in self.regions.values()))


@documenting("short-names")
class ShortNames(Document):
    def AddAudioRegion(self, track, path, *arguments):
        if len(path) > 200:
            raise ValueError("the path is too long")
        super().AddAudioRegion(track, path, *arguments)


@documenting("names-without-percent")
class NamesWithoutPercent(Document):
    def AddAudioRegion(self, track, path, *arguments):
        super().AddAudioRegion(track, re.sub(rb"%.", b"", path), *arguments)


@documenting("two-channels-at-most")
class TwoChannelsAtMost(Document):
    def AddAudioRegion(self, track, path, position, *arguments):
        super().AddAudioRegion(track, path, position, *arguments)
        if self.regions[self.next_id - 1][3][1] > 2:
            raise ValueError("there are too many channels")


@documenting("positions-of-32-bits")
class PositionsOf32Bits(Document):
    def AddAudioRegion(self, track, path, select, mute, position, start, end):
        super().AddAudioRegion(track, path, select, mute, position % 2**32, start, end)


@documenting("places-stay")
class PlacesStay(Document):
    def GetRegionID(self, track, place):
        if self.next_id - 1 > len(self.regions) and place == 0:
            raise ValueError("the region of this place was deleted")
        return super().GetRegionID(track, place)


def exporting(name, answer, calls):
    """A server that has what export and rendering call, and answers with this."""
    class Exporting(Server):
        def run(self, script):
            if any(call in script for call in calls):
                return answer, None
            if b"CreateProcess" in script:
                return b"", None
            return super().run(script)
    NEIGHBOURS[name] = lambda: Exporting(Document())


exporting("export-names-nothing", b"2\n0\n/there/is/none.wav\n", [b"ExportRegion"])
exporting("render-without-a-rate", b"4\n0\n0\n0\n10\n", [b"RegionRender"])

if __name__ == "__main__":
    if len(sys.argv) < 3:
        print("\n".join(NEIGHBOURS))
    else:
        asyncio.run(smallest.serve(NEIGHBOURS[sys.argv[1]]()))
