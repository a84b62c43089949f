# Adds the parts of a plug-in host that do not depend on the editor, for one version of Qt. `kit` is the
# framework's library for the same version.
function(add_hosting name qt kit)
  set(sources
    action_icons.cpp
    path_text.cpp
    user_folders.cpp
    board/board_command.cpp
    board/board_monitor.cpp
    board/board_ports.cpp
    board/board_scripts.cpp
    board/board_task.cpp
    board/board_tool.cpp
    board/command_monitor.cpp
    board/main_program.cpp
    board/virtual_board.cpp
    output/link_target.cpp
    output/output_backlog.cpp
    output/output_feed.cpp
    output/output_text.cpp
    output/source_link.cpp
    output/text_style.cpp
    panel/board_drawing.cpp
    panel/board_panel.cpp
    panel/board_picture.cpp
    panel/board_state.cpp
    panel/card.cpp
    panel/input_button.cpp
    panel/pin_row.cpp
    panel/pins_client.cpp
    panel/pixel_strip.cpp
    plugin/command_paths.cpp
    plugin/installation.cpp
    plugin/plugin_actions.cpp
    plugin/plugin_commands.cpp
    plugin/plugin_host.cpp
    plugin/plugin_module.cpp
    plugin/settings_lines.cpp
    plugin/shortcut_code.cpp
    prompt/board_prompt.cpp
    prompt/input_field.cpp
    prompt/input_history.cpp
    prompt/input_text.cpp
    prompt/prompt_code.cpp
    prompt/prompt_run.cpp
    widgets/board_actions.cpp
    widgets/board_button.cpp
    widgets/board_files_dialog.cpp
    widgets/board_menu.cpp
    widgets/board_questions.cpp
    widgets/command_activity.cpp
    widgets/output_document.cpp
    widgets/output_pane.cpp)
  list(TRANSFORM sources PREPEND "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/")
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  set(folders board output panel plugin prompt widgets)
  list(TRANSFORM folders PREPEND "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/")
  target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_FUNCTION_LIST_DIR}" ${folders})
  target_link_libraries(${name}
    PUBLIC ${kit} quilp_posix ${qt}::Widgets
    PRIVATE PkgConfig::GLIB ${CMAKE_DL_LIBS})
  target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS)
endfunction()
