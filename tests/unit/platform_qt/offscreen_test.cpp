// The renderer of zifora-cli starts Qt by itself, offscreen, on the first document only.

#include "platform_qt/pdfrenderer.h"

#include "tools.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace zifora::platform_qt {
namespace {

using namespace testing;

TEST(OffscreenPdfRenderer, StartsAnOffscreenApplicationOnTheFirstDocument) {
    if (QCoreApplication::instance())
        GTEST_SKIP() << "runs in a process of its own (ctest unit_platform_qt_offscreen)";
    TempFolder folder;
    {
        OffscreenPdfRenderer renderer;
        EXPECT_EQ(QCoreApplication::instance(), nullptr); // nothing started for nothing
        writeText(folder.file("a.html"),
                  "<h2>Kopf</h2><table border=1\"><tr><td>Zelle</td></tr></table>");
        shell::PdfRequest request;
        request.htmlPath = folder.file("a.html");
        request.pdfPath = folder.file("a.pdf");
        request.footer = "Seite ";
        auto done = renderer.render(request);
        ASSERT_TRUE(done) << done.error().message;
        ASSERT_NE(QCoreApplication::instance(), nullptr);
        // Whatever the environment asks for (the test sets QT_QPA_PLATFORM=xcb without a
        // display), the renderer's application has no windows.
        EXPECT_EQ(QGuiApplication::platformName(), QStringLiteral("offscreen"));
        EXPECT_TRUE(renderer.writeRtf(request.htmlPath, folder.file("a.rtf")));
    }
    EXPECT_EQ(QCoreApplication::instance(), nullptr); // ended with the renderer
    std::string text = output("pdftotext -q " + shellQuoted(folder.file("a.pdf")) + " -");
    EXPECT_NE(text.find("Zelle"), std::string::npos) << text;
    EXPECT_NE(text.find("Seite 1"), std::string::npos) << text;
    EXPECT_NE(readText(folder.file("a.rtf")).find("Zelle}\\cell"), std::string::npos);
}

} // namespace
} // namespace zifora::platform_qt
