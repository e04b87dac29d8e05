// The preview window: a report's PDF with its title, paging, zoom and closing by keyboard,
// and the desktop's viewer instead when the settings ask for it.

#include "core/settings.h"
#include "platform_qt/pdfrenderer.h"
#include "platform_qt/previewwindow.h"
#include "platform_qt/qtservices.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace zifora;

class UrlCatcher : public QObject {
    Q_OBJECT
  public:
    QList<QUrl> urls;
  public slots:
    void open(const QUrl& url) { urls << url; }
};

class PreviewTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QFile html(m_dir.filePath("PDFJournal.html"));
        QVERIFY(html.open(QIODevice::WriteOnly));
        QByteArray text = "<h2>Müller</h2><table border=1\">";
        for (int i = 1; i <= 150; ++i)
            text += "<tr><td>Zeile " + QByteArray::number(i) + "</td><td>12,00</td></tr>";
        html.write(text + "</table>");
        html.close();
        shell::PdfRequest request;
        request.htmlPath = m_dir.filePath("PDFJournal.html").toStdString();
        request.pdfPath = pdfPath().toStdString();
        request.marginTop = 40;
        request.marginLeft = request.marginRight = 20;
        request.marginBottom = 60;
        request.footer = "Müller · Zifora 2025 · Seite ";
        platform_qt::QtPdfRenderer renderer;
        auto done = renderer.render(request);
        QVERIFY2(done.has_value(), done ? "" : done.error().message.c_str());
    }

    void opensThePdfWithItsTitleAndClosesWithEscape() {
        platform_qt::QtUi ui;
        ui.preview(pdfPath().toStdString(), "Vorschau - Zifora");
        auto* window = ui.previewWindow();
        QVERIFY(window);
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QCOMPARE(window->windowTitle(), QStringLiteral("Vorschau - Zifora"));
        QVERIFY(window->pageCount() >= 3);
        QCOMPARE(window->currentPage(), 0);
        auto* label = window->findChild<QLabel*>("pageLabel");
        QVERIFY(label);
        QCOMPARE(label->text(), QStringLiteral("Seite 1 von %1").arg(window->pageCount()));
        // A sensible size for an A4 page, on the screen.
        QVERIFY(window->width() >= 500 && window->height() >= 600);

        QTest::keyClick(window, Qt::Key_PageDown);
        QCOMPARE(window->currentPage(), 1);
        QCOMPARE(label->text(), QStringLiteral("Seite 2 von %1").arg(window->pageCount()));
        QTest::keyClick(window, Qt::Key_PageUp);
        QTest::keyClick(window, Qt::Key_PageUp);
        QCOMPARE(window->currentPage(), 0);
        QTest::keyClick(window, Qt::Key_End, Qt::ControlModifier);
        QCOMPARE(window->currentPage(), window->pageCount() - 1);

        window->fitWidth();
        const double before = window->zoom();
        QTest::keyClick(window, Qt::Key_Plus, Qt::ControlModifier);
        QVERIFY(window->zoom() > before);
        QTest::keyClick(window, Qt::Key_Minus, Qt::ControlModifier);
        QTest::keyClick(window, Qt::Key_Minus, Qt::ControlModifier);
        QVERIFY(window->zoom() < before);

        QSignalSpy print(window, &platform_qt::PdfPreviewWindow::printRequested);
        // Ctrl+P opens the print dialog, which the test cancels.
        QString dialogTitle;
        cancelDialogSoon(&dialogTitle);
        QTest::keyClick(window, Qt::Key_P, Qt::ControlModifier);
        QCOMPARE(dialogTitle, QStringLiteral("Drucken"));
        QCOMPARE(print.count(), 1);
        QCOMPARE(print.first().first().toString(), pdfPath());

        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
        QTest::keyClick(window, Qt::Key_Escape);
        QVERIFY(!window->isVisible());

        // Shown again with another title, then closed with Ctrl+W.
        ui.preview(pdfPath().toStdString(), "Vorschau - Steuern");
        QCOMPARE(ui.previewWindow(), window);
        QVERIFY(window->isVisible());
        QCOMPARE(window->windowTitle(), QStringLiteral("Vorschau - Steuern"));
        QCOMPARE(window->currentPage(), 0);
        QVERIFY(QTest::qWaitForWindowActive(window));
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!window->isVisible());
    }

    void printDialogHasTheMarginsAndCancelReturnsFalse() {
        platform_qt::QtUi ui;
        shell::PrintRequest request;
        request.pdfPath = pdfPath().toStdString();
        request.title = "Abrechnung März";
        request.marginTop = 40;
        request.marginLeft = 20;
        request.marginRight = 20;
        request.marginBottom = 20;
        QMarginsF margins;
        int lastPage = 0;
        QTimer::singleShot(100, [&] {
            auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            margins = dialog->printer()->pageLayout().margins(QPageLayout::Point);
            lastPage = dialog->maxPage();
            dialog->reject();
        });
        QVERIFY(!ui.print(request));
        QCOMPARE(margins, QMarginsF(20, 40, 20, 20));
        QVERIFY(lastPage >= 3);
    }

    void printsAReportsHtmlLaidOutWithTheMargins() {
        platform_qt::QtUi ui;
        shell::PrintRequest request;
        request.pdfPath = m_dir.filePath("PDFJournal.html").toStdString();
        request.marginTop = 40;
        request.marginLeft = 20;
        request.marginRight = 20;
        request.marginBottom = 60;
        int lastPage = 0;
        QTimer::singleShot(100, [&] {
            if (auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget())) {
                lastPage = dialog->maxPage();
                dialog->reject();
            }
        });
        QVERIFY(!ui.print(request));
        QVERIFY(lastPage >= 3);
    }

    void refusesAFileThatIsNoPdf() {
        QFile other(m_dir.filePath("kein.pdf"));
        QVERIFY(other.open(QIODevice::WriteOnly));
        other.write("kein PDF");
        other.close();
        platform_qt::PdfPreviewWindow window;
        QVERIFY(!window.open(other.fileName(), "Vorschau"));
        QCOMPARE(window.pageCount(), 0);
        QVERIFY(window.path().isEmpty());
    }

    void desktopViewerWhenTheSettingsSaySo() {
        core::Settings settings((m_dir.filePath("Zifora.plist")).toStdString());
        settings.setBool("loadInPreview.app", true);
        UrlCatcher catcher;
        QDesktopServices::setUrlHandler("file", &catcher, "open");
        platform_qt::QtUi ui;
        ui.setSettings(&settings);
        ui.preview(pdfPath().toStdString(), "Vorschau - Zifora");
        QDesktopServices::unsetUrlHandler("file");
        QCOMPARE(catcher.urls, QList<QUrl>{QUrl::fromLocalFile(pdfPath())});
        QVERIFY(!ui.previewWindow());
    }

  private:
    // Rejects the modal dialog that is about to open, noting its title.
    static void cancelDialogSoon(QString* title) {
        QTimer::singleShot(100, [title] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                *title = dialog->windowTitle();
                dialog->reject();
            }
        });
    }
    QString pdfPath() const { return m_dir.filePath("PDFJournal.pdf"); }
    QTemporaryDir m_dir;
};

QTEST_MAIN(PreviewTest)
#include "preview_test.moc"
