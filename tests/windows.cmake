# The tests of the Windows build. What a room does is held by the same files as on Linux. Not here is what is about Linux
# alone (its displays, its loader, its traps for system calls) and what is the same whatever the system: the factory
# bank's sound, the fuzzers' corpus, the pages in docs/, who may include whom.
add_subdirectory(vst2)
add_subdirectory(module)
add_subdirectory(platform/win32)
add_subdirectory(desk/win32)
add_subdirectory(base)
add_subdirectory(parameters)
add_subdirectory(reference)
add_subdirectory(dsp)
add_subdirectory(midi)
add_subdirectory(doors/vst2)
add_subdirectory(conversation)
add_subdirectory(host)
add_subdirectory(skin_language)
add_subdirectory(tools)
add_subdirectory(window/win32)
add_subdirectory(packaging)
