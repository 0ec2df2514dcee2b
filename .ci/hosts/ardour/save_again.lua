-- Opens a session and saves it again.
-- save_again.lua FOLDER
local session = load_session(arg[1], "song")
session:save_state("")
close_session()
print("Done")
