-- Plays the timeline's audio through the plug-in in a host without a window, for RealHostsTest.
-- Run by ardour7-lua; what it is to do comes in the environment:
--
--   LINK_FOLDER    an empty folder for the session
--   LINK_AUDIO     the sound file that lies at the timeline's beginning
--   LINK_FRAMES    its length
--   LINK_RATE, LINK_PERIOD, LINK_CHANNELS
--   LINK_PLUGIN    the plug-in's URI
--   LINK_SCENARIO  one of the functions at the end
--   LINK_STATE     "load": the session is there already

local folder = os.getenv("LINK_FOLDER")
local rate = tonumber(os.getenv("LINK_RATE"))
local channels = tonumber(os.getenv("LINK_CHANNELS"))
local frames = tonumber(os.getenv("LINK_FRAMES"))

-- Positions in a session's file.
local function superclock(n)
    return string.format("a%d", n * (282240000 // rate))
end

local function start_engine()
    local backend = AudioEngine:set_backend("None (Dummy)", "", "")
    backend:set_sample_rate(rate)
    backend:set_buffer_size(tonumber(os.getenv("LINK_PERIOD")))
end

local function wait(seconds)
    ARDOUR.LuaAPI.usleep(seconds * 1000000)
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
        superclock(frames), channels, region_sources)
    local function range(id, name, flag)
        return string.format(
            '<Location id="%d" name="%s" start="%s" end="%s" flags="%s" locked="0" ' ..
            'timestamp="0"/>', id, name, superclock(rate), superclock(rate + rate // 2), flag)
    end

    text = text:gsub('id%-counter="%d+"', 'id-counter="9999"')
    text = text:gsub("<Sources/>", "<Sources>" .. sources .. "</Sources>")
    text = text:gsub('(<Playlist [^>]-name="Play"[^>]-)/>', "%1>" .. region .. "</Playlist>")
    text = text:gsub("<Locations/>", "<Locations>" ..
        range(9200, "Loop", "IsAutoLoop,IsHidden") ..
        range(9201, "Punch", "IsAutoPunch,IsHidden") .. "</Locations>")
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

local session, plugin

local function arm(on)
    ARDOUR.LuaAPI.set_processor_param(plugin, 0, on and 1 or 0)
    wait(0.2)
end

local function open_session()
    session = load_session(folder .. "/s", "s")
    assert(session, "the session cannot be loaded")
    local track = session:route_by_name("Play")
    plugin = track:nth_plugin(0)
    if plugin:isnil() then
        plugin = ARDOUR.LuaAPI.new_plugin(session, os.getenv("LINK_PLUGIN"), ARDOUR.PluginType.LV2,
            "")
        assert(not plugin:isnil(), "the plug-in cannot be loaded")
        track:add_processor_by_index(plugin, 0, nil, true)
        wait(0.5)
        session:save_state("")
    end
    wait(0.5)
end

local function locate(position)
    session:request_locate(position, false, ARDOUR.LocateTransportDisposition.RollIfAppropriate,
        ARDOUR.TransportRequestSource.TRS_UI)
    wait(0.3)
end

local function roll(seconds)
    session:request_roll(ARDOUR.TransportRequestSource.TRS_UI)
    wait(seconds)
end

local function stop()
    session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
    wait(0.3)
end

local scenarios = {}

function scenarios.export()
    arm(true)
    local export = session:simple_export()
    export:set_folder(folder)
    export:set_name("export")
    export:set_range(0, frames)
    print("export", export:run_export())
end

-- Play, stop, play on, locate while rolling; in and out of the punch range.
function scenarios.transport()
    arm(true)
    session:cfg():set_punch_in(true)
    session:cfg():set_punch_out(true)
    locate(12345)
    roll(2)
    stop()
    roll(1)
    locate(180001)
    wait(1)
    stop()
end

function scenarios.loop()
    arm(true)
    locate(rate)
    session:request_play_loop(true, false)
    roll(5.4)
    stop()
end

-- Until it is killed.
function scenarios.roll()
    arm(true)
    locate(12345)
    roll(1.5)
    stop()
    locate(100001)
    roll(60)
end

-- Whatever waits is delivered meanwhile; nothing is armed.
function scenarios.idle()
    locate(12345)
    roll(1)
    stop()
    wait(6)
end

start_engine()
if os.getenv("LINK_STATE") ~= "load" then
    make_session()
end
open_session()
scenarios[os.getenv("LINK_SCENARIO")]()
wait(1)
print("done")
session:save_state("")
close_session()
quit()
