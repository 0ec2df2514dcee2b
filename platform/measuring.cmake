# What a timing needs of the system. Apart from `platform`, since nothing that is delivered measures.
quillon_room(
  platform_measuring
  FOLDER platform
  HEADERS measuring.h
  SOURCES ${QUILLON_SYSTEM}/measuring.cpp)
