# The preview window of the reports on Qt PDF, as QtTest on the offscreen platform.
add_executable(gui_preview_test ${CMAKE_CURRENT_LIST_DIR}/preview_test.cpp)
set_target_properties(gui_preview_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_preview_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_preview_test PRIVATE zifora_platform_qt Qt6::Test)
add_test(NAME gui_preview COMMAND gui_preview_test)
set_tests_properties(gui_preview PROPERTIES LABELS gui TIMEOUT 120
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
