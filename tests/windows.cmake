# The tests of the Windows build. What a room does is held by the same files as on Linux; what is not here is about
# Linux alone: its displays, its loader, its sanitizers.
add_subdirectory(parameters)
add_subdirectory(midi)
