-- Opens a session and saves it again.
-- save_again.lua FOLDER
local session = load_session(arg[1], "song")
session:save_state("")
-- Not held back, should Ardour abort when it ends.
io.stderr:write("Done\n")
close_session()
