-- Inserts the plug-in on the track "Voice", sets all controls, and saves.
-- insert.lua FOLDER FORMAT ID VALUES
local folder, format, id, values = table.unpack(arg)
local session = load_session(folder, "song")
local kinds = { LV2 = ARDOUR.PluginType.LV2, VST = ARDOUR.PluginType.LXVST }
for plugin in ARDOUR.LuaAPI.list_plugins():iter() do
	if plugin.type == kinds[format] and plugin.unique_id == id then
		io.stderr:write("listed as " .. plugin.name .. "\n")
	end
end
local processor = ARDOUR.LuaAPI.new_plugin(session, id, kinds[format], "")
assert(not processor:isnil())
assert(session:route_by_name("Voice"):add_processor_by_index(processor, 0, nil, true) == 0)
local control = 0
for line in io.lines(values) do
	assert(ARDOUR.LuaAPI.set_processor_param(processor, control, tonumber(line:match("^%S+"))))
	control = control + 1
end
session:save_state("")
-- Not held back, should Ardour abort when it ends.
io.stderr:write("Done\n")
close_session()
