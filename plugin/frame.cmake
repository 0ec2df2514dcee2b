# What a host calls, as classes; knows nothing of this effect.
quillon_room(
  plugin_frame
  FOLDER plugin
  HEADERS aeff_editor.h audio_effect.h audio_effect_x.h
  SOURCES audio_effect.cpp audio_effect_x.cpp
  LINKS vst2 platform parameters)
