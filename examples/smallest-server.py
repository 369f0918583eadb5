#!/usr/bin/env python3
"""The smallest server in Python that keeps every MUST of the script contract
(docs/integrators.md): two tracks in memory. Debian: python3-dbus-next, python3-lupa."""

import asyncio
import struct
import sys

from dbus_next import RequestNameReply
from dbus_next.aio import MessageBus
from dbus_next.service import ServiceInterface, method
from lupa import LuaRuntime

NAME = "org.tarvane.AppleEvent._546b4e65"  # 'TkNe' in hexadecimal
PATH = "/org/tarvane/AppleEvent"
UTF16 = "utf-16-le" if sys.byteorder == "little" else "utf-16-be"
NOT_HANDLED = -1708

TRACKS = [b"Dialogue", b"ADR"]
OFFSET = 2.0  # seconds by which this timeline is ahead of the host's


def code(four):
    return int.from_bytes(four.encode(), "big")


def chunks(file):
    """The chunks of a WAV or RF64 file: the name, and where the data begins and ends."""
    if file.read(4) not in (b"RIFF", b"RF64") or file.read(8)[4:] != b"WAVE":
        raise ValueError("this is no WAV file")
    large = 0
    while len(head := file.read(8)) == 8:
        name, size = head[:4], int.from_bytes(head[4:], "little")
        begin = file.tell()
        if name == b"ds64":
            large = int.from_bytes(file.read(16)[8:], "little")
        if name == b"data" and size == 0xFFFFFFFF:
            size = large
        yield name, begin, begin + size
        file.seek(begin + size + size % 2)


def read_audio(path, start, end):
    """The rate, and what is the same for the same audio alone: the frames and their form."""
    start, end = int(start), int(end)
    with open(path, "rb") as file:
        found = {name: (begin, stop) for name, begin, stop in chunks(file)}
        file.seek(found[b"fmt "][0])
        form, channels, rate, _, frame, bits = struct.unpack("<HHIIHH", file.read(16))
        if form == 0xFFFE:  # the form itself stands further on
            form = struct.unpack("<8xH", file.read(10))[0]
        begin, stop = found[b"data"]
        file.seek(begin + start * frame)
        frames = file.read((end - start) * frame) if 0 <= start < end else b""
        if begin + end * frame > stop or not frames or len(frames) != (end - start) * frame:
            raise ValueError(f"the file does not go from {start} to {end}")
    return rate, (form, channels, rate, bits, frames)


class Document:
    """What scripts call. Positions are in samples of the file."""

    def __init__(self):
        self.regions = {}  # by id: track, first sample, sample behind the last, audio
        self.next_id = 1

    def SelectScriptDocument(self):
        return True

    def SelectAudioSuiteDocument(self):
        return False

    def GetTrackCount(self):
        return len(TRACKS)

    def GetTrackID(self, place):
        if not 0 <= place < len(TRACKS):
            raise ValueError(f"there is no track {place}")
        return int(place) + 1

    def GetTrackName(self, track):
        return TRACKS[track - 1]

    def GetLinkSMPTEOffset(self):
        return OFFSET

    def MoveDisplayToPosition(self, position):
        self.display = float(position)

    def CheckForDuplicateRegion(self, track, path, position, start, end):
        rate, audio = read_audio(path, start, end)
        begin = int(OFFSET * rate + position) + start
        return int(any(region[:2] + region[3:] == (track, begin, audio)
                       for region in self.regions.values()))

    def AddAudioRegion(self, track, path, select, mute, position, start, end):
        _, audio = read_audio(path, start, end)
        self.regions[self.next_id] = (track, position + start, position + end, audio)
        self.next_id += 1

    def of_track(self, track):
        return [number for number, region in self.regions.items() if region[0] == track]

    def GetRegionCount(self, track):
        return len(self.of_track(track))

    def GetRegionID(self, track, place):
        return self.of_track(track)[int(place)]

    def GetRegionStartPosition(self, region):
        return self.regions[region][1]

    def GetRegionEndPosition(self, region):
        return self.regions[region][2]

    def DeleteRegion(self, region):
        del self.regions[region]

    def GetMarkerTrackID(self, track, _):
        return track

    def CountMarkerAreas(self, track):
        return 0


class Server(ServiceInterface):
    """Runs scripts, one at a time, and answers the events that bring them."""

    CHANGES = (b"AddAudioRegion", b"DeleteRegion")

    def __init__(self, document):
        super().__init__("org.tarvane.AppleEvent")
        self.document = document
        self.lua = LuaRuntime(encoding=None, register_eval=False)
        # Of Lua itself scripts get this much. The text of a script is not to bring compiled code.
        self.compile = self.lua.eval(b"""function(text, api, print)
            local own = { error = error, string = string, type = type, print = function(...)
                local words = {}
                for n = 1, select('#', ...) do words[n] = tostring((select(n, ...))) end
                print(table.concat(words, '\\t') .. '\\n')
            end }
            for name, call in pairs(api) do own[name] = function(...) return call(...) end end
            if text:sub(1, 1) == '\\27' then return nil, 'this is no script' end
            local script, failure = (loadstring or load)(text, '=script', 't', own)
            return script and setfenv and setfenv(script, own) or script, failure
        end""")

    def functions(self):
        names = [name for name in dir(self.document) if name[0].isupper()]
        return self.lua.table_from({name.encode(): getattr(self.document, name) for name in names})

    def run(self, script):
        """What the script printed, or nothing for a change that was not made, and its error."""
        printed, kept = [], dict(self.document.regions)
        compiled, failure = self.compile(script, self.functions(), printed.append)
        try:
            if compiled:
                compiled()
        except Exception as error:  # whatever it is, the next script is to run
            failure = str(error).encode() or b"the script failed"
        if failure and any(name in script for name in self.CHANGES):
            self.document.regions = kept
            return None, failure
        return b"".join(printed), failure

    def answer(self, result, failure):
        texts = [(key, text) for key, text in (("Rslt", result), ("Errr", failure))
                 if text is not None]
        return [[code(key), code("utxt"), text.decode(errors="replace").encode(UTF16)]
                for key, text in texts]

    @method()
    def Send(self, event_class: "u", event: "u", parameters: "a(uuay)") -> "na(uuay)":
        if (event_class, event) != (code("TKNE"), code("LCmd")):
            return [NOT_HANDLED, []]
        scripts = [data for key, _, data in parameters if key == code("----")]
        script = scripts[-1].decode(UTF16, errors="replace").encode() if scripts else b""
        return [0, self.answer(*self.run(script))]


async def serve(server):
    bus = await MessageBus().connect()
    bus.export(PATH, server)
    if await bus.request_name(NAME) != RequestNameReply.PRIMARY_OWNER:
        sys.exit("another server is there already")
    print("ready", flush=True)
    await bus.wait_for_disconnect()


if __name__ == "__main__":
    asyncio.run(serve(Server(Document())))
