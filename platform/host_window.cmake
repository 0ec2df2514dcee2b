# What a host needs of the window system: a window to open an editor in. Apart from `platform`, so that neither the
# plug-in nor the tools without a window get to see it.
pkg_check_modules(PLATFORM_HOST REQUIRED IMPORTED_TARGET xcb)

quillon_room(
  platform_host
  FOLDER platform
  HEADERS host_settings.h host_window.h message_watch.h virtual_display.h
  SOURCES linux/host_settings.cpp linux/host_window.cpp linux/message_watch.cpp linux/virtual_display.cpp
  LINKS platform
  PRIVATE_LINKS PkgConfig::PLATFORM_HOST Threads::Threads)
