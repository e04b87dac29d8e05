#include "shell/headless.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace zifora::shell;

// Event lines are read by scripts: one line each, keys in the order the event gives them,
// texts always valid UTF-8 with the escapes JSON requires.
TEST(EventLog, WritesOneLineInOrderWithRepairedTexts) {
    std::ostringstream out;
    EventLog log(out);
    ScriptedUi ui(log);
    ui.queueAnswer(2);
    AlertRequest alert;
    alert.title = "Fehler!";
    alert.text = "Zeile\n\"1\"\tA\x01 \xC3 ok";
    alert.buttons = {"OK", "Abbrechen"};
    ui.alert(alert);
    DialogRequest dialog;
    dialog.kind = DialogKind::Save;
    dialog.title = "Sichern";
    dialog.extensions = {"csv"};
    dialog.suggestedName = "Konten.csv";
    ui.chooseFile(dialog);
    log.error("kaputt \xFF");
    ui.print({.pdfPath = "/tmp/a.pdf",
              .title = "Journal",
              .marginTop = 40,
              .marginLeft = 20.5,
              .marginRight = 20,
              .marginBottom = 20});
    EXPECT_EQ(out.str(),
              "{\"alert\":{\"title\":\"Fehler!\",\"text\":\"Zeile\\n\\\"1\\\"\\tA\\u0001 "
              "\xEF\xBF\xBD ok\","
              "\"buttons\":[\"OK\",\"Abbrechen\"],\"answer\":2}}\n"
              "{\"dialog\":{\"kind\":\"save\",\"title\":\"Sichern\",\"extensions\":[\"csv\"],"
              "\"suggested\":\"Konten.csv\",\"answer\":null,\"queued\":false}}\n"
              "{\"error\":\"kaputt \xEF\xBF\xBD\"}\n"
              "{\"print\":{\"path\":\"/tmp/"
              "a.pdf\",\"title\":\"Journal\",\"margins\":[40,20.5,20,20]}}\n");
    EXPECT_EQ(log.errorCount(), 1);
}
