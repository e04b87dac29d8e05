#pragma once
// Reports from HTML to paginated PDF and to RTF, on QTextDocument and QPdfWriter.
//
// A report is laid out in points: one CSS pixel of its HTML is one point on the page, and the
// default font is DejaVu Sans at 12 pixels (the reports' "Lucida Grande" falls back to it), so
// a page breaks in the same place whatever the screen's resolution is.

#include "shell/services.h"

#include <QByteArray>
#include <QSizeF>
#include <QString>

#include <memory>

class QTextDocument;

namespace zifora::platform_qt {

/// The report `html` in a document laid out on pages of `contentSize` points (the page less
/// its margins). Repairs the stray quote the reports leave after a table's border value.
[[nodiscard]] std::unique_ptr<QTextDocument> reportDocument(const QString& html,
                                                            QSizeF contentSize);

/// The report's HTML with `border=1"` read as `border=1`.
[[nodiscard]] QString repairedReportHtml(QString html);

/// The laid-out document as RTF: paragraphs, line breaks, tables (\trowd … \row) with the
/// widths of the layout, bold, italic, underline, font sizes and colours; characters beyond
/// ASCII as \'xx (Windows-1252) or \uN. Pages of A4 with the reports' margins.
[[nodiscard]] QByteArray rtfFromDocument(const QTextDocument& document);

/// HTML → PDF and HTML → RTF. Needs a QGuiApplication (any platform, offscreen included).
class QtPdfRenderer final : public shell::PdfRenderer {
  public:
    [[nodiscard]] core::Result<void> render(const shell::PdfRequest& request) override;
    [[nodiscard]] core::Result<void> writeRtf(const std::string& htmlPath,
                                              const std::string& rtfPath) override;

  private:
    core::Result<void> renderPdf(const shell::PdfRequest& request);
    core::Result<void> writeRtfFile(const std::string& htmlPath, const std::string& rtfPath);
};

/// The renderer for a program without windows: makes an offscreen QGuiApplication the first
/// time a document is asked for, unless the process already has an application.
class OffscreenPdfRenderer final : public shell::PdfRenderer {
  public:
    OffscreenPdfRenderer();
    ~OffscreenPdfRenderer() override;
    [[nodiscard]] core::Result<void> render(const shell::PdfRequest& request) override;
    [[nodiscard]] core::Result<void> writeRtf(const std::string& htmlPath,
                                              const std::string& rtfPath) override;

  private:
    void ensureApplication();
    struct Application;
    std::unique_ptr<Application> m_application;
    QtPdfRenderer m_renderer;
};

} // namespace zifora::platform_qt
