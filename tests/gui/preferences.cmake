# The window of the preferences and the accounts window, driven as a user would.
add_executable(gui_preferences_test ${CMAKE_CURRENT_SOURCE_DIR}/preferences_test.cpp)
set_target_properties(gui_preferences_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_preferences_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_preferences_test PRIVATE zifora_gui_lib Qt6::Test)
target_compile_definitions(gui_preferences_test PRIVATE ZIFORA_BINARY_DIR="${PROJECT_BINARY_DIR}")
add_test(NAME gui_preferences COMMAND gui_preferences_test)
set_tests_properties(gui_preferences PROPERTIES LABELS gui
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
