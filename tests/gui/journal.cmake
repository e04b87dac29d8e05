# The print and export sheets of the settlement journal, driven by keyboard.
add_executable(gui_journal_test ${CMAKE_CURRENT_LIST_DIR}/journal_test.cpp)
set_target_properties(gui_journal_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_journal_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_journal_test PRIVATE zifora_gui_lib Qt6::Test)
add_test(NAME gui_journal COMMAND gui_journal_test)
set_tests_properties(gui_journal PROPERTIES LABELS gui TIMEOUT 120
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
