# Adds the framework's library. `qt` is the version of Qt to use, such as "Qt6": hosts that are loaded
# by a program with another version than the editor's add their own. All have the same soname, so that
# the plug-in's module, which knows nothing of Qt, uses the one that its host has loaded.
function(add_kit name qt)
  set(sources
    qt/busy_widget.cpp
    qt/controls.cpp
    qt/event_loop.cpp
    qt/host_window.cpp
    qt/icons.cpp
    qt/key_events.cpp
    qt/line_label.cpp
    qt/menu/menu_button.cpp
    qt/menu/menu_field.cpp
    qt/menu/menu_widget.cpp
    qt/menu/pop_up_menu.cpp
    qt/node_info.cpp
    qt/picture_icon.cpp
    qt/screen.cpp
    qt/table/app_kit.cpp
    qt/table/display_text.cpp
    qt/table/outline_table_view.cpp
    qt/table/row_painter.cpp
    qt/table/table_model.cpp
    qt/table/table_widget.cpp
    qt/view.cpp
    qt/window.cpp
    qt/window_description.cpp
    qt/window_widget.cpp
    qt/pictures.qrc)
  list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/")
  add_library(${name} SHARED ${sources} $<TARGET_OBJECTS:quilp_kit_core>)
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  set(folders core core/shell qt qt/menu qt/table)
  list(TRANSFORM folders PREPEND "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/")
  target_include_directories(${name} PUBLIC ${folders})
  target_link_libraries(${name}
    PUBLIC quilp_host quilp_posix Threads::Threads
    PRIVATE ${qt}::Svg ${qt}::Widgets ${qt}::UiTools PkgConfig::GLIB)
  target_link_options(${name} PRIVATE -Wl,-z,defs)
  target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
endfunction()
