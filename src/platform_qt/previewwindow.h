#pragma once
// The preview window of the reports and the print dialog over a PDF, on Qt PDF.

#include "shell/services.h"

#include <QWidget>

class QLabel;
class QPdfDocument;
class QPdfView;
class QToolButton;

namespace zifora::platform_qt {

/// A PDF in a window of its own: page by page, with zoom, print and close, all by keyboard
/// as well (Bild auf/ab, Pos1/Ende, Strg +/−/0, Strg+P, Esc or Strg+W).
class PdfPreviewWindow final : public QWidget {
    Q_OBJECT
  public:
    explicit PdfPreviewWindow(QWidget* parent = nullptr);
    ~PdfPreviewWindow() override;

    /// Loads `path` and titles the window; false (and nothing shown) when the file can't be
    /// read as a PDF.
    bool open(const QString& path, const QString& title);
    [[nodiscard]] QString path() const { return m_path; }
    [[nodiscard]] int currentPage() const;
    [[nodiscard]] int pageCount() const;
    [[nodiscard]] double zoom() const;

    void goToPage(int page);
    void zoomIn();
    void zoomOut();
    void fitWidth();

  signals:
    /// Strg+P or the print button: the program offers the print dialog over the file.
    void printRequested(const QString& path);

  private:
    void updateControls();
    void setZoom(double factor);

    QPdfDocument* m_document;
    QPdfView* m_view;
    QLabel* m_pageLabel;
    QToolButton* m_previous;
    QToolButton* m_next;
    QString m_path;
};

/// The print dialog over the PDF at `request.pdfPath`, its pages drawn onto the printer's
/// paper; the printer's margins are the request's. False when the user cancels it or the
/// file can't be read (`error` then says why).
bool printPdf(QWidget* parent, const shell::PrintRequest& request, QString* error = nullptr);

} // namespace zifora::platform_qt
