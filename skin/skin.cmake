# From a skin's folder to a window: which skin, its objects as controls, and the editor that keeps them in step.
quillon_room(
  skin
  FOLDER skin
  HEADERS aeff_gui_editor.h fixed_text.h object_reader.h skin_context.h skin_menu.h skin_object.h
          skin_slider.h xml_gui_editor.h
  SOURCES aeff_gui_editor.cpp control_builder.cpp object_reader.cpp skin_context.cpp skin_menu.cpp skin_object.cpp
          skin_slider.cpp xml_gui_editor.cpp
  LINKS skin_language editor_displays plugin_frame platform_toolkit vstgui
  PRIVATE_LINKS skin_images)
