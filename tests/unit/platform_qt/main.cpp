// The renderer's tests need a QGuiApplication; they run it offscreen. With
// ZIFORA_TEST_WITHOUT_APPLICATION set none is made, as in zifora-cli before its first report.
#include <QGuiApplication>

#include <gtest/gtest.h>

#include <memory>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::unique_ptr<QGuiApplication> app;
    if (qEnvironmentVariableIsEmpty("ZIFORA_TEST_WITHOUT_APPLICATION")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    }
    return RUN_ALL_TESTS();
}
