#!/usr/bin/env python3
"""Audacity 3.2 as a program sees it that uses its script pipe, with faults at will.

    fake-audacity.py FOLDER [PROJECT]

Makes the two FIFOs in the folder, and shows PROJECT, or an empty one without a name. A line on its
standard input prepares it for one command to come:

    fail COMMAND      answers that it has failed, and does nothing
    hang COMMAND      shows a dialogue: goes on with the command when it is told "go"
    die COMMAND       ends without doing it, by SIGKILL
    done COMMAND      ends after it was done, without an answer
    cut COMMAND       does it, ends in the middle of the answer
    late COMMAND      answers the next command before this one
    narrow COMMAND    imports without making a track
    other COMMAND     the user adds a track of his own before it

"state" prints all tracks in one line. Every command is printed as it was read.
"""
import json
import os
import queue
import re
import signal
import struct
import sys
import threading

LONGEST_LINE = 1024  # as it is read, its end included
LARGEST_START = 1000000

folder = sys.argv[1]
faults = {}
go = threading.Semaphore(0)
held = []


def say(text):
    print(text, flush=True)


class Project:
    def __init__(self):
        self.tracks = []
        self.path = os.path.join(folder, "New Project N-1.aup3unsaved")
        self.file = open(self.path, "w")

    def save(self, path):
        if path != self.path and os.path.exists(path):
            dialogue()
            return False
        with open(path, "w") as file:
            json.dump(self.tracks, file)
        self.show(path)
        return True

    def open(self, path):
        with open(path) as file:
            self.tracks = json.load(file) if os.path.getsize(path) else []
        self.show(path)

    def show(self, path):
        old, self.path = self.path, path
        self.file.close()
        self.file = open(path)
        if old.endswith("unsaved"):
            os.remove(old)


def dialogue():
    say("asks")
    go.acquire()


def arguments(text):
    """Values by name: Key=plain, or Key="with \\" and \\\\"."""
    found = {}
    for key, quoted, plain in re.findall(r'(\w+)=(?:"((?:[^"\\]|\\.)*)"|(\S*))', text):
        found[key] = re.sub(r"\\(.)", r"\1", quoted) if not plain else plain
    return found


def sound_shape(path):
    """Channels, rate and frames of a WAV or RF64 file."""
    with open(path, "rb") as file:
        content = file.read()
    at, channels, rate, frame, data = 12, 0, 0, 1, 0
    while at + 8 <= len(content):
        name, size = content[at:at + 4], struct.unpack("<I", content[at + 4:at + 8])[0]
        if name == b"fmt ":
            channels, rate, _, frame = struct.unpack("<HIIH", content[at + 10:at + 22])
        if name == b"data":
            data = min(size, len(content) - at - 8)
        at += 8 + size + size % 2
    return channels, rate, data // frame


def import_sound(path):
    if not os.path.isfile(path):
        dialogue()
        return
    channels, rate, frames = sound_shape(path)
    name = os.path.splitext(os.path.basename(path))[0]
    for track in project.tracks:
        track["selected"] = False
    for n in range(channels if channels > 2 else 1):
        project.tracks.append({
            "name": f"{name} {n + 1}" if channels > 2 else name, "clip": name, "start": 0.0,
            "frames": frames, "rate": rate, "channels": channels if channels < 3 else 1,
            "mute": False, "selected": True})


def chosen():
    return [track for track in project.tracks if track["selected"]]


def do(name, values):
    """What the command says besides, and whether it was done."""
    if name == "Message":
        return values["Text"], True
    if name == "GetInfo":
        lines = ",".join(
            '\n  { "name":"%s", "focused":0, "selected":%d, "kind":"wave", "start":%g, "mute":%d }'
            % (track["name"].replace('"', '\\"'), track["selected"], track["start"], track["mute"])
            for track in project.tracks)
        return "\n[ " + lines + " ]", True
    if name == "Import2":
        import_sound(values["Filename"])
    elif name == "SelectTracks":
        first, count = int(values["Track"]), int(values["TrackCount"])
        for n, track in enumerate(project.tracks):
            track["selected"] = first <= n < first + count
    elif name == "SetTrackStatus":
        for track in chosen():
            track["name"] = values["Name"]
    elif name == "SetTrackAudio":
        for track in chosen():
            track["mute"] = values["Mute"] == "1"
    elif name == "SetClip":
        if not 0 <= float(values["Start"]) <= LARGEST_START:
            dialogue()
        else:
            for track in chosen():
                track["start"] = float(values["Start"])
    elif name == "RemoveTracks":
        project.tracks = [track for track in project.tracks if not track["selected"]]
    elif name == "SaveProject2":
        return "", project.save(values["Filename"])
    elif name == "OpenProject2":
        project.open(values["Filename"])
    else:
        return f"Your batch command of {name} was not recognized.", False
    return "", True


def answer(line):
    """The reply to a command; with late ones, none or several."""
    name, _, rest = line.partition(":")
    say("does " + line)
    fault = faults.pop(name, "")
    if fault == "fail":
        return "It cannot be done.\nBatchCommand finished: Failed!\n\n"
    if fault == "die":
        os.kill(os.getpid(), signal.SIGKILL)
    if fault == "hang":
        dialogue()
    if fault == "other":
        project.tracks.append({"name": "Mine", "start": 0.0, "selected": False, "mute": False})
    text, done = ("", True) if fault == "narrow" else do(name, arguments(rest))
    if fault == "done":
        os.kill(os.getpid(), signal.SIGKILL)
    reply = text + "\nBatchCommand finished: " + ("OK" if done else "Failed!") + "\n\n"
    if fault == "late":
        held.append(reply)
        return ""
    if fault == "cut":
        os.write(replies, reply.encode()[:len(reply) // 2])
        os.kill(os.getpid(), signal.SIGKILL)
    return reply + "".join(held.pop() for _ in list(held))


def listen_to_the_test():
    for line in sys.stdin:
        words = line.split()
        if words == ["state"]:
            say("state " + json.dumps(project.tracks))
        elif words == ["go"]:
            go.release()
        else:
            faults[words[1]] = words[0]
            say("prepared")
    os.kill(os.getpid(), signal.SIGKILL)


project = Project()
if len(sys.argv) > 2:
    project.open(sys.argv[2])
threading.Thread(target=listen_to_the_test, daemon=True).start()

ends = [os.path.join(folder, f"audacity_script_pipe.{way}.{os.getuid()}") for way in ("to", "from")]
first = True
while True:
    for end in ends:
        if os.path.lexists(end):
            os.unlink(end)
        os.mkfifo(end, 0o600)
    if first:
        say("ready")
        first = False
    # As the C library reads lines: up to so many bytes, or up to a line's end.
    with open(ends[0], "rb", buffering=4096) as commands:
        replies = os.open(ends[1], os.O_WRONLY)
        while True:
            line = commands.readline(LONGEST_LINE - 1)
            if not line:
                break
            if len(line) <= 1:
                continue
            try:
                os.write(replies, answer(line[:-1].decode()).encode())
            except BrokenPipeError:
                pass  # nobody waits for it any more
        os.close(replies)
