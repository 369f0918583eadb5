-- Plays the timeline's audio through the plug-in in a host without a window.
-- Run by ardour7-lua; what it is to do comes in the environment:
--
--   LINK_FOLDER    an empty folder for the session
--   LINK_AUDIO     the sound file that lies at the timeline's beginning
--   LINK_FRAMES    the length of an export; the file is two seconds longer
--   LINK_RATE, LINK_CHANNELS
--   LINK_PLUGIN    the plug-in's URI
--   LINK_STEPS     steps of the list at the end, each as NAME@PERIOD, one after another
--   LINK_STATE     "load": the session is there already
--   TARVANE_LINK_CAPTURES, as the plug-in has it
--
-- After each step, once its takes are finished, it says "step NAME PERIOD TAKES", the number being
-- that of all the takes until then; at last "done", and then it waits for a line of its input.

local folder = os.getenv("LINK_FOLDER")
local captures = os.getenv("TARVANE_LINK_CAPTURES")
local rate = tonumber(os.getenv("LINK_RATE"))
local channels = tonumber(os.getenv("LINK_CHANNELS"))
local frames = tonumber(os.getenv("LINK_FRAMES"))

local patience = 60 -- seconds for what is sure to come
local look = 0.02   -- seconds between two looks

-- Ranges, both a quarter of a second long. What is punched stays on the track: behind all else.
local loop_start = rate
local punch_start = frames + rate // 2
local range_length = rate // 4

-- Positions in a session's file.
local function superclock(n)
    return string.format("a%d", n * (282240000 // rate))
end

local function wait(seconds)
    ARDOUR.LuaAPI.usleep(seconds * 1000000)
end

local function wait_until(condition, what)
    for _ = 1, patience / look do
        if condition() then
            return
        end
        wait(look)
    end
    error("no end of waiting until " .. what)
end

-- Lua of this host has no way to import a file or to make a range.
local function insert_audio_and_ranges()
    local path = folder .. "/s/s.ardour"
    local file = io.open(path)
    local text = file:read("a")
    file:close()
    os.execute("cp '" .. os.getenv("LINK_AUDIO") .. "' '" .. folder ..
        "/s/interchange/s/audiofiles/known.wav'")

    local sources, region_sources = "", ""
    for n = 0, channels - 1 do
        sources = sources .. string.format(
            '<Source name="known.wav" type="audio" flags="" id="%d" channel="%d" origin="" gain="1"/>',
            9000 + n, n)
        region_sources = region_sources ..
            string.format(' source-%d="%d" master-source-%d="%d"', n, 9000 + n, n, 9000 + n)
    end
    local region = string.format(
        '<Region name="known" muted="0" opaque="1" locked="0" video-locked="0" automatic="0" ' ..
        'whole-file="0" import="0" external="0" hidden="0" position-locked="0" ' ..
        'valid-transients="0" start="a0" length="%s@a0" sync-position="a0" ancestral-start="a0" ' ..
        'ancestral-length="a0@a0" stretch="1" shift="1" first-edit="nothing" layering-index="0" ' ..
        'id="9100" type="audio" channels="%d"%s scale-amplitude="1" fade-in-active="0" ' ..
        'fade-out-active="0" default-fade-in="0" default-fade-out="0" envelope-active="0"/>',
        superclock(frames + 2 * rate), channels, region_sources)
    local function range(id, name, start, flag)
        return string.format(
            '<Location id="%d" name="%s" start="%s" end="%s" flags="%s" locked="0" ' ..
            'timestamp="0"/>', id, name, superclock(start), superclock(start + range_length), flag)
    end

    text = text:gsub('id%-counter="%d+"', 'id-counter="9999"')
    text = text:gsub("<Sources/>", "<Sources>" .. sources .. "</Sources>")
    text = text:gsub('(<Playlist [^>]-name="Play"[^>]-)/>', "%1>" .. region .. "</Playlist>")
    text = text:gsub("<Locations/>", "<Locations>" ..
        range(9200, "Loop", loop_start, "IsAutoLoop,IsHidden") ..
        range(9201, "Punch", punch_start, "IsAutoPunch,IsHidden") .. "</Locations>")
    file = io.open(path, "w")
    file:write(text)
    file:close()
end

local function make_session()
    local session = create_session(folder .. "/s", "s", rate)
    session:new_audio_track(channels, channels, nil, 1, "Play",
        ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true)
    session:save_state("")
    close_session()
    insert_audio_and_ranges()
end

local session, track, plugin

-- The plug-in looks at its port once a cycle.
local function wait_for_cycles()
    local processed = AudioEngine:processed_samples()
    wait_until(function() return AudioEngine:processed_samples() > processed + 4 * 1024 end,
        "the engine runs")
end

local function arm()
    ARDOUR.LuaAPI.set_processor_param(plugin, 0, 1)
    wait_for_cycles()
end

local function open_session()
    session = load_session(folder .. "/s", "s")
    assert(session, "the session cannot be loaded")
    track = session:route_by_name("Play")
    plugin = track:nth_plugin(0)
    if plugin:isnil() then
        plugin = ARDOUR.LuaAPI.new_plugin(session, os.getenv("LINK_PLUGIN"), ARDOUR.PluginType.LV2,
            "")
        assert(not plugin:isnil(), "the plug-in cannot be loaded")
        track:add_processor_by_index(plugin, 0, nil, true)
        session:save_state("")
    end
end

local function position()
    return session:transport_sample()
end

local function locate(sample)
    session:request_locate(sample, false, ARDOUR.LocateTransportDisposition.RollIfAppropriate,
        ARDOUR.TransportRequestSource.TRS_UI)
    wait_until(function()
        return position() == sample or
            not session:transport_stopped() and math.abs(position() - sample) < rate // 2
    end, "the transport is there")
end

local function roll_for(seconds)
    local there = position() + seconds * rate
    session:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
    wait_until(function() return position() >= there end, "so much is played")
end

local function stop()
    session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
    wait_until(function() return session:transport_stopped() end, "the transport stops")
    wait_for_cycles()
end

local function count(pattern)
    local list = io.popen("ls -A '" .. captures .. "' 2>/dev/null")
    local n = 0
    for name in list:lines() do
        if name:match(pattern) then
            n = n + 1
        end
    end
    list:close()
    return n
end

local steps = {}

function steps.export()
    local export = session:simple_export()
    export:set_folder(folder)
    export:set_name("export")
    export:set_range(0, frames)
    export:run_export()
end

-- Play, stop, play on, locate while playing.
function steps.transport()
    locate(12345)
    roll_for(0.7)
    stop()
    roll_for(0.5)
    locate(rate * 4 - 1)
    roll_for(0.5)
    stop()
end

-- Ten times over the range and a bit.
function steps.loop()
    locate(loop_start)
    session:request_play_loop(true, false)
    session:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
    local passes, last = 0, 0
    wait_until(function()
        local now = position()
        if now < last then
            passes = passes + 1
        end
        last = now
        return passes == 10
    end, "the loop has been played ten times")
    stop()
    session:request_play_loop(false, false)
end

-- The track records from the punch range's beginning to its end, and plays before and behind it.
function steps.punch()
    session:cfg():set_punch_in(true)
    session:cfg():set_punch_out(true)
    local record = track:to_track():rec_enable_control()
    record:set_value(1, PBD.GroupControlDisposition.NoGroup)
    session:maybe_enable_record(false)
    locate(punch_start - rate // 4 - 1)
    roll_for(1.2)
    stop()
    session:disable_record(false, true)
    record:set_value(0, PBD.GroupControlDisposition.NoGroup)
    session:cfg():set_punch_in(false)
    session:cfg():set_punch_out(false)
end

-- A take that is finished and one that is under way, until the host is killed. The session is left
-- armed.
function steps.hold()
    session:save_state("")
    locate(12345)
    roll_for(0.5)
    stop()
    locate(100001)
    roll_for(1000)
end

-- Plays without having been armed.
function steps.idle()
    locate(12345)
    roll_for(0.5)
    stop()
end

local backend = AudioEngine:set_backend("None (Dummy)", "", "")
backend:set_sample_rate(rate)
if os.getenv("LINK_STATE") ~= "load" then
    make_session()
end
open_session()
io.stdout:setvbuf("line")
for name, period in os.getenv("LINK_STEPS"):gmatch("(%a+)@(%d+)") do
    AudioEngine:set_buffer_size(tonumber(period))
    wait_for_cycles()
    if name ~= "idle" then
        arm()
    end
    steps[name]()
    wait_until(function() return count("^%.capture") == 0 end, "the takes are finished")
    print("step", name, period, count("^take"))
end
print("done")
io.read()
session:save_state("")
close_session()
quit()
