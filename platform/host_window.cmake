# What a host needs of the window system: a window to open an editor in. Apart from `platform`, so that neither the
# plug-in nor the tools without a window get to see it.
set(system_libraries)
if(WIN32)
  set(system_libraries gdi32 ole32 user32)
else()
  quillon_pkg_config(PLATFORM_HOST xcb)
  set(system_libraries PkgConfig::PLATFORM_HOST)
endif()

quillon_room(
  platform_host
  FOLDER platform
  HEADERS host_settings.h host_window.h message_watch.h virtual_display.h
  SOURCES ${QUILLON_SYSTEM}/host_settings.cpp ${QUILLON_SYSTEM}/host_window.cpp ${QUILLON_SYSTEM}/message_watch.cpp
          ${QUILLON_SYSTEM}/virtual_display.cpp
  LINKS platform
  PRIVATE_LINKS ${system_libraries} Threads::Threads)
