# What draws the tools' pictures. Apart from `platform`, so that neither the plug-in nor a tool without pictures gets to
# see it.
if(WIN32)
  set(system_libraries gdiplus)
else()
  quillon_pkg_config(PLATFORM_CANVAS cairo)
  set(system_libraries PkgConfig::PLATFORM_CANVAS)
endif()

quillon_room(
  platform_canvas
  FOLDER platform
  HEADERS canvas.h
  SOURCES canvas.cpp ${QUILLON_SYSTEM}/canvas.cpp
  LINKS platform
  PRIVATE_LINKS ${system_libraries})
