# What the rooms with a window in them need of the system. Apart from `platform`, so that the rooms without one
# do not get to see the toolkit. On the window's side of the house only.
pkg_check_modules(PLATFORM_TOOLKIT REQUIRED IMPORTED_TARGET xcb cairo-xcb gdk-pixbuf-2.0)

quillon_room(
  platform_toolkit
  FOLDER platform
  HEADERS toolkit.h toolkit_window.h
  SOURCES linux/bitmap_file.cpp linux/display_connection.cpp linux/mouse_buttons.cpp linux/toolkit.cpp
          linux/toolkit_window.cpp linux/window_loop.cpp
  LINKS platform vstgui
  PRIVATE_LINKS PkgConfig::PLATFORM_TOOLKIT)
# Whatever holds a window stays loaded: the text library enters its types into a register that outlives it. Unloaded
# with a plug-in and loaded again with the next, it would find itself in there already and wait for itself for ever.
target_link_options(platform_toolkit INTERFACE LINKER:-z,nodelete)
