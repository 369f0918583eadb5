-- Says what Ardour itself finds in a session, for ArdourReadsTest. Run by ardour7-lua; what it is to
-- do comes in the environment:
--
--   EDITOR_FOLDER   the session's folder, EDITOR_NAME its name
--   EDITOR_RATE     samples per second
--   EDITOR_EXPORT   how many frames are exported, into EXPORT.wav beside the folder; none without it
--   EDITOR_HOLD     a file: the session stays open until the file is there, and is saved then

local folder = os.getenv("EDITOR_FOLDER")
local name = os.getenv("EDITOR_NAME")

local backend = AudioEngine:set_backend("None (Dummy)", "", "")
backend:set_sample_rate(tonumber(os.getenv("EDITOR_RATE")))
backend:set_buffer_size(1024)
local session = load_session(folder, name)
assert(session, "the session cannot be loaded")

-- A line, its values divided by tabs.
local function say(...)
    local values = table.pack(...)
    for n = 1, values.n do
        values[n] = tostring(values[n])
    end
    print(table.concat(values, "\t"))
end

-- What is iterated over needs a name, or it is collected on the way.
local tracks = session:get_tracks()
for route in tracks:iter() do
    local playlist = route:to_track():playlist()
    local regions = playlist:region_list()
    say("track", route:name(), route:n_inputs():n_audio())
    for region in regions:iter() do
        local sources = ""
        local list = region:master_sources()
        for source in list:iter() do
            sources = sources .. " " .. source:name() .. ":" .. source:to_filesource():channel()
        end
        local audio = region:to_audioregion()
        say("region", route:name(), region:name(), region:position():samples(),
            region:start():samples(), region:length():samples(), region:muted(),
            audio:fade_in_active() or audio:fade_out_active(), sources)
    end
end
io.stdout:flush()

local hold = os.getenv("EDITOR_HOLD")
if hold then
    print("holding")
    io.stdout:flush()
    while not io.open(hold) do
        ARDOUR.LuaAPI.usleep(50000)
    end
    session:save_state("")
end

local frames = os.getenv("EDITOR_EXPORT")
if frames then
    local export = session:simple_export()
    -- 32-bit floats, as the test has written it into Ardour's settings.
    assert(export:set_preset("75969a1c-3133-4694-864b-a1fa50e43349"))
    export:set_folder(folder .. "/..")
    export:set_name("EXPORT")
    export:set_range(0, tonumber(frames))
    -- The butler works off what loading has left; an export that begins meanwhile waits for it, and
    -- it for the export.
    ARDOUR.LuaAPI.usleep(2000000)
    say("exported", export:run_export())
end
print("done")
io.stdout:flush()
close_session()
quit()
