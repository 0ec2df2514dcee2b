# Where the skin engine and this plug-in's own controls meet.
quillon_room(
  editor
  FOLDER editor
  HEADERS my_editor.h
  SOURCES my_editor.cpp
  LINKS skin editor_views midi)
