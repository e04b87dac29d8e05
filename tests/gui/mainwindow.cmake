# The main window and its toolbar, as QtTest on the offscreen platform. Screenshots go to
# <build>/screenshots/.
add_executable(gui_mainwindow_test ${CMAKE_CURRENT_LIST_DIR}/mainwindow_test.cpp)
set_target_properties(gui_mainwindow_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_mainwindow_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_mainwindow_test PRIVATE zifora_gui_lib Qt6::Test)
target_compile_definitions(gui_mainwindow_test PRIVATE ZIFORA_BINARY_DIR="${PROJECT_BINARY_DIR}")
add_test(NAME gui_mainwindow COMMAND gui_mainwindow_test)
set_tests_properties(gui_mainwindow PROPERTIES LABELS gui
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
