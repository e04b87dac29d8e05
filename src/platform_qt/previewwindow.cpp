#include "platform_qt/previewwindow.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QKeySequence>
#include <QLabel>
#include <QPainter>
#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QPrintDialog>
#include <QPrinter>
#include <QScreen>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace zifora::platform_qt {

namespace {

constexpr double kZoomStep = 1.25;
constexpr double kMinZoom = 0.25;
constexpr double kMaxZoom = 6.0;

QToolButton* button(QWidget* parent, const QString& text, const QString& tip) {
    auto* b = new QToolButton(parent);
    b->setText(text);
    b->setToolTip(tip);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

} // namespace

PdfPreviewWindow::PdfPreviewWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), m_document(new QPdfDocument(this)), m_view(new QPdfView(this)),
      m_pageLabel(new QLabel(this)) {
    setObjectName(QStringLiteral("preview"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    m_view->setDocument(m_document);
    m_view->setPageMode(QPdfView::PageMode::MultiPage);
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    m_view->setPageSpacing(12);
    m_view->setDocumentMargins(QMargins(12, 12, 12, 12));
    m_view->setFocusPolicy(Qt::StrongFocus);

    m_previous = button(this, QStringLiteral("◀"), QStringLiteral("Vorherige Seite (Bild auf)"));
    m_next = button(this, QStringLiteral("▶"), QStringLiteral("Nächste Seite (Bild ab)"));
    auto* smaller = button(this, QStringLiteral("−"), QStringLiteral("Verkleinern (Strg+−)"));
    auto* larger = button(this, QStringLiteral("+"), QStringLiteral("Vergrößern (Strg++)"));
    auto* width = button(this, QStringLiteral("Seitenbreite"),
                         QStringLiteral("An die Fensterbreite anpassen (Strg+0)"));
    auto* print = button(this, QStringLiteral("Drucken …"), QStringLiteral("Drucken (Strg+P)"));
    auto* closeButton =
        button(this, QStringLiteral("Schließen"), QStringLiteral("Vorschau schließen (Esc)"));
    m_pageLabel->setObjectName(QStringLiteral("pageLabel"));

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 4, 8, 4);
    bar->addWidget(m_previous);
    bar->addWidget(m_pageLabel);
    bar->addWidget(m_next);
    bar->addSpacing(16);
    bar->addWidget(smaller);
    bar->addWidget(larger);
    bar->addWidget(width);
    bar->addStretch(1);
    bar->addWidget(print);
    bar->addWidget(closeButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(bar);
    layout->addWidget(m_view, 1);

    connect(m_previous, &QToolButton::clicked, this, [this] { goToPage(currentPage() - 1); });
    connect(m_next, &QToolButton::clicked, this, [this] { goToPage(currentPage() + 1); });
    connect(smaller, &QToolButton::clicked, this, &PdfPreviewWindow::zoomOut);
    connect(larger, &QToolButton::clicked, this, &PdfPreviewWindow::zoomIn);
    connect(width, &QToolButton::clicked, this, &PdfPreviewWindow::fitWidth);
    connect(print, &QToolButton::clicked, this, [this] { emit printRequested(m_path); });
    connect(closeButton, &QToolButton::clicked, this, &QWidget::close);
    connect(m_view->pageNavigator(), &QPdfPageNavigator::currentPageChanged, this,
            &PdfPreviewWindow::updateControls);

    auto shortcut = [this](const QKeySequence& keys, auto slot) {
        auto* s = new QShortcut(keys, this);
        s->setContext(Qt::WindowShortcut);
        connect(s, &QShortcut::activated, this, slot);
    };
    shortcut(QKeySequence(Qt::Key_Escape), [this] { close(); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
    shortcut(QKeySequence::Print, [this] { emit printRequested(m_path); });
    shortcut(QKeySequence::ZoomIn, [this] { zoomIn(); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Equal), [this] { zoomIn(); });
    shortcut(QKeySequence::ZoomOut, [this] { zoomOut(); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_0), [this] { fitWidth(); });
    shortcut(QKeySequence(Qt::Key_PageDown), [this] { goToPage(currentPage() + 1); });
    shortcut(QKeySequence(Qt::Key_PageUp), [this] { goToPage(currentPage() - 1); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Home), [this] { goToPage(0); });
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_End), [this] { goToPage(pageCount() - 1); });

    // An A4 page at a readable width, never beyond the screen.
    QSize size(760, 960);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect room = screen->availableGeometry();
        size = size.boundedTo(QSize(room.width() * 9 / 10, room.height() * 9 / 10));
    }
    resize(size);
    updateControls();
}

PdfPreviewWindow::~PdfPreviewWindow() = default;

bool PdfPreviewWindow::open(const QString& path, const QString& title) {
    m_document->close();
    m_path.clear();
    if (m_document->load(path) != QPdfDocument::Error::None || m_document->pageCount() < 1) {
        m_document->close();
        updateControls();
        return false;
    }
    m_path = path;
    setWindowTitle(title);
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    goToPage(0);
    updateControls();
    return true;
}

int PdfPreviewWindow::currentPage() const {
    return m_view->pageNavigator()->currentPage();
}

int PdfPreviewWindow::pageCount() const {
    return m_document->pageCount();
}

double PdfPreviewWindow::zoom() const {
    return m_view->zoomFactor();
}

void PdfPreviewWindow::goToPage(int page) {
    if (pageCount() < 1) return;
    page = std::clamp(page, 0, pageCount() - 1);
    m_view->pageNavigator()->jump(page, QPointF(), m_view->zoomFactor());
    updateControls();
}

void PdfPreviewWindow::setZoom(double factor) {
    m_view->setZoomMode(QPdfView::ZoomMode::Custom);
    m_view->setZoomFactor(std::clamp(factor, kMinZoom, kMaxZoom));
}

void PdfPreviewWindow::zoomIn() {
    setZoom(m_view->zoomFactor() * kZoomStep);
}

void PdfPreviewWindow::zoomOut() {
    setZoom(m_view->zoomFactor() / kZoomStep);
}

void PdfPreviewWindow::fitWidth() {
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);
}

void PdfPreviewWindow::updateControls() {
    const int pages = pageCount();
    const int page = pages > 0 ? currentPage() : -1;
    m_pageLabel->setText(pages > 0 ? QStringLiteral("Seite %1 von %2").arg(page + 1).arg(pages)
                                   : QString());
    m_previous->setEnabled(page > 0);
    m_next->setEnabled(page >= 0 && page + 1 < pages);
}

bool printPdf(QWidget* parent, const shell::PrintRequest& request, QString* error) {
    QPdfDocument document;
    const QString path = QString::fromStdString(request.pdfPath);
    if (document.load(path) != QPdfDocument::Error::None || document.pageCount() < 1) {
        if (error) *error = path + QStringLiteral(": kein lesbares PDF");
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QString::fromStdString(request.title));
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageMargins(
        QMarginsF(request.marginLeft, request.marginTop, request.marginRight, request.marginBottom),
        QPageLayout::Point);
    printer.setFromTo(1, document.pageCount());
    QPrintDialog dialog(&printer, parent);
    dialog.setWindowTitle(QStringLiteral("Drucken"));
    dialog.setMinMax(1, document.pageCount());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    dialog.setOption(QAbstractPrintDialog::PrintToFile, true);
    if (dialog.exec() != QDialog::Accepted) return false;

    int first = 0, last = document.pageCount() - 1;
    if (printer.printRange() == QPrinter::PageRange) {
        first = std::max(0, printer.fromPage() - 1);
        last = std::min(last, printer.toPage() - 1);
    }
    // The PDF carries its margins already: each page covers the whole paper, and the
    // printer's margins (the request's) only tell the printer what to keep free.
    printer.setFullPage(true);
    QPainter painter;
    if (!painter.begin(&printer)) {
        if (error) *error = QStringLiteral("Der Drucker lässt sich nicht ansprechen.");
        return false;
    }
    const int dpi = std::min(printer.resolution(), 300);
    for (int page = first; page <= last; ++page) {
        if (page > first) printer.newPage();
        const QSizeF points = document.pagePointSize(page);
        const QSize pixels(static_cast<int>(std::lround(points.width() * dpi / 72.0)),
                           static_cast<int>(std::lround(points.height() * dpi / 72.0)));
        const QImage image = document.render(page, pixels);
        const QRectF paper = printer.paperRect(QPrinter::DevicePixel);
        painter.drawImage(QRectF(0, 0, paper.width(), paper.height()), image);
    }
    painter.end();
    return true;
}

} // namespace zifora::platform_qt
