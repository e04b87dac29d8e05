# The advance-return window: figures, a typed payment, the mark with its question, Escape.
add_executable(gui_voranmeldung_test ${CMAKE_CURRENT_LIST_DIR}/voranmeldung_test.cpp)
set_target_properties(gui_voranmeldung_test PROPERTIES AUTOMOC ON)
target_compile_options(gui_voranmeldung_test PRIVATE ${ZIFORA_WARNINGS})
target_link_libraries(gui_voranmeldung_test PRIVATE zifora_gui_lib Qt6::Test)
add_test(NAME gui_voranmeldung COMMAND gui_voranmeldung_test)
set_tests_properties(gui_voranmeldung PROPERTIES LABELS gui TIMEOUT 120
  ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LANG=de_DE.UTF-8;TZ=Europe/Berlin")
