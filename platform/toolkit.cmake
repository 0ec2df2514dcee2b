# What the rooms with a window in them need of the system. Apart from `platform`, so that the rooms without one
# do not get to see the toolkit. On the window's side of the house only.
if(WIN32)
  set(system_sources win32/bitmap_file.cpp win32/toolkit.cpp win32/toolkit_window.cpp)
  set(system_libraries ole32 user32 windowscodecs)
else()
  quillon_pkg_config(PLATFORM_TOOLKIT xcb cairo-xcb gdk-pixbuf-2.0)
  set(system_sources
      linux/bitmap_file.cpp linux/display_connection.cpp linux/input_pause.cpp linux/keyboard_focus.cpp
      linux/living_frames.cpp linux/menu_events.cpp linux/mouse_buttons.cpp linux/toolkit.cpp linux/toolkit_answers.cpp
      linux/toolkit_window.cpp linux/window_bitmap.cpp linux/window_loop.cpp)
  set(system_libraries PkgConfig::PLATFORM_TOOLKIT)
endif()

quillon_room(
  platform_toolkit
  FOLDER platform
  HEADERS toolkit.h toolkit_window.h
  SOURCES picture_file.cpp ${system_sources}
  LINKS platform vstgui
  PRIVATE_LINKS ${system_libraries})
if(NOT WIN32)
  # Whatever holds a window stays loaded: the text library enters its types into a register that outlives it. Unloaded
  # with a plug-in and loaded again with the next, it would find itself in there already and wait for itself for ever.
  target_link_options(platform_toolkit INTERFACE LINKER:-z,nodelete)
  # What the toolkit forgets to free, linux/toolkit_answers.cpp frees. The toolkit's archive comes after ours, so the
  # linker has to be told beforehand that it will be needed.
  foreach(function xcb_get_motion_events xcb_query_pointer_reply)
    target_link_options(platform_toolkit INTERFACE LINKER:--wrap=${function} LINKER:--undefined=__wrap_${function})
  endforeach()
endif()
