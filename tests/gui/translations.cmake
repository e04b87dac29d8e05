# Qt's own texts in German: key names, the menus of text fields and the file dialogs.
add_executable(gui_translations_test ${CMAKE_CURRENT_LIST_DIR}/translations_test.cpp)
set_target_properties(gui_translations_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_translations_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_translations_test PRIVATE zifora_gui_lib Qt6::Test)
add_test(NAME gui_translations COMMAND gui_translations_test)
set_tests_properties(gui_translations PROPERTIES LABELS gui
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
