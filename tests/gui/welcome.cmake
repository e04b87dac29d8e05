# The windows of the start: welcome sheet, newsletter panel, set-up assistant, help sheets
# and the about panel, from the first start on. Screenshots go to <build>/screenshots/.
add_executable(gui_welcome_test ${CMAKE_CURRENT_LIST_DIR}/welcome_test.cpp)
set_target_properties(gui_welcome_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_welcome_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_welcome_test PRIVATE zifora_gui_lib Qt6::Test)
target_compile_definitions(gui_welcome_test PRIVATE ZIFORA_BINARY_DIR="${PROJECT_BINARY_DIR}")
add_test(NAME gui_welcome COMMAND gui_welcome_test)
set_tests_properties(gui_welcome PROPERTIES LABELS gui TIMEOUT 120
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
