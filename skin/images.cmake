# The pictures of a skin.
quillon_room(
  skin_images
  FOLDER skin
  HEADERS images.h
  SOURCES images.cpp
  LINKS vstgui
  PRIVATE_LINKS platform_toolkit)
