-- Makes a session at 48 kHz with a stereo track "Voice" that has a region of silence.
-- new_session.lua FOLDER SECONDS
local folder, seconds = table.unpack(arg)
os.execute("rm -rf " .. folder)
local session = create_session(folder, "song", 48000)
-- In a variable, because what is in a list goes away with the list.
local tracks = session:new_audio_track(2, 2, nil, 1, "Voice", -1, ARDOUR.TrackMode.Normal, true)
local track = tracks:front()
local region = track:bounce_range(0, math.floor(seconds * 48000), ARDOUR.InterThreadInfo(), track:main_outs(), true, "voice")
assert(not region:isnil())
track:playlist():add_region(region, Temporal.timepos_t(0), 1, false)
session:save_state("")
-- Not held back, should Ardour abort when it ends.
io.stderr:write("Done\n")
close_session()
