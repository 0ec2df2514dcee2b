# The toolkit of the editor's window, VSTGUI 4.13.3, as the target `vstgui`: fetched once for all builds of this
# person, compiled as one file, with vstgui-4.13.3.patch applied.
#
# With a checkout of that version at hand: -DVSTGUI_SOURCE_DIR=FOLDER, the folder that holds vstgui/vstgui.h.
set(VSTGUI_SOURCE_DIR "" CACHE PATH "A checkout of VSTGUI 4.13.3; empty to fetch it")

include(${CMAKE_CURRENT_LIST_DIR}/fetch_source.cmake)
quillon_fetch_source(vstgui vstgui_sources "${VSTGUI_SOURCE_DIR}")
set(vstgui_unity ${vstgui_sources}/vstgui/vstgui_${QUILLON_SYSTEM}.cpp)
if(NOT EXISTS ${vstgui_unity})
  message(FATAL_ERROR "There is no VSTGUI in ${vstgui_sources}: ${vstgui_unity} is missing.")
endif()

add_library(vstgui STATIC ${vstgui_unity})
if(WIN32)
  set(vstgui_needs
      d2d1 dwrite windowscodecs ole32 oleaut32 uuid gdi32 shlwapi comdlg32 imm32 d3d11 dxgi dxguid dcomp opengl32 dwmapi)
  # Its own mark of the system, and the wide forms of Windows' functions. Fonts from files need a newer header than
  # mingw-w64 has; a skin names the fonts of the system.
  target_compile_definitions(
    vstgui PUBLIC WIN32=1 WINDOWS=1 VSTGUI_WIN32_CUSTOMFONT_SUPPORT=0 PRIVATE UNICODE _UNICODE)
  target_compile_options(
    vstgui PRIVATE -ffile-prefix-map=${vstgui_sources}=. -include ${CMAKE_CURRENT_LIST_DIR}/mingw_direct_composition.h)
else()
  quillon_pkg_config(
    VSTGUI_NEEDS x11 x11-xcb xcb xcb-util xcb-cursor xcb-keysyms xcb-xkb xkbcommon xkbcommon-x11
    cairo pangocairo pangoft2 fontconfig freetype2 glib-2.0)
  set(vstgui_needs PkgConfig::VSTGUI_NEEDS ${CMAKE_DL_LIBS})
  target_compile_options(vstgui PUBLIC -fmacro-prefix-map=${vstgui_sources}=.)
endif()
# Headers are reached as "vstgui/lib/...".
target_include_directories(vstgui SYSTEM PUBLIC ${vstgui_sources})
target_link_libraries(vstgui PUBLIC ${vstgui_needs})
target_compile_features(vstgui PRIVATE cxx_std_17)
# VSTGUI's classes have other members under DEBUG, so everybody who includes its headers says the same: release.
target_compile_definitions(vstgui PUBLIC VSTGUI_ENABLE_DEPRECATED_METHODS=1 PRIVATE NDEBUG RELEASE)
# Several plug-ins in one host bring a VSTGUI each, in different versions: none of its names may leave the library.
# It leaves the drawing to the system's libraries. At -O1 it compiles in half the time and is smaller.
target_compile_options(vstgui PRIVATE -O1 -w -fvisibility=hidden -fvisibility-inlines-hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vstgui PRIVATE -fno-gnu-unique)
endif()
if(QUILLON_SANITIZE)
  # Its memory and threads are ours too, so it is watched like our code, but for undefined behaviour, which is its
  # makers' business. As it stands and with few symbols it compiles in a quarter of the time.
  string(REPLACE "," ";" vstgui_sanitizers ${QUILLON_SANITIZE})
  list(REMOVE_ITEM vstgui_sanitizers undefined)
  list(JOIN vstgui_sanitizers "," vstgui_sanitizers)
  target_compile_options(vstgui PRIVATE -O0 -g1 -fno-omit-frame-pointer)
  if(vstgui_sanitizers)
    target_compile_options(vstgui PRIVATE -fsanitize=${vstgui_sanitizers})
  endif()
endif()
set_target_properties(vstgui PROPERTIES POSITION_INDEPENDENT_CODE ON EXPORT_COMPILE_COMMANDS OFF)
