#include "platform_qt/pdfrenderer.h"

#include "core/atomicfile.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <vector>

namespace zifora::platform_qt {

namespace {

constexpr const char* kFamily = "DejaVu Sans";
constexpr int kBaseFontPixels = 12;
constexpr int kFooterFontPixels = 8;
// Device units per inch of the PDF: fine enough that positions keep their fractions.
constexpr int kResolution = 1200;
// The reports' pages for RTF: A4, margins top 40, left 20, right 20, bottom 60 points.
constexpr double kA4Width = 595.28, kA4Height = 841.89;

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

void substituteReportFonts() {
    static std::once_flag once;
    std::call_once(once, [] {
        // The reports ask for the system font of their original platform.
        QFont::insertSubstitution(QStringLiteral("Lucida Grande"), QString::fromLatin1(kFamily));
    });
}

core::Result<QString> readReportHtml(const std::string& path) {
    auto bytes = core::readWholeFile(path);
    if (!bytes) return std::unexpected(bytes.error());
    return QString::fromUtf8(bytes->data(), static_cast<qsizetype>(bytes->size()));
}

// Qt writes no author into the document information, only a creator. The creator entry is
// renamed in place ("/Creator " and "/Author  " have the same length), so the cross-reference
// offsets stay valid.
void turnCreatorIntoAuthor(QByteArray& pdf) {
    static const QByteArray creator("\n/Creator ");
    static const QByteArray author("\n/Author  ");
    qsizetype at = pdf.lastIndexOf(creator);
    if (at >= 0) pdf.replace(at, creator.size(), author);
}

// Qt lets an outer `<font size=N>` win over the pixel size of a table or span inside it; the
// reports mean the inner one (the item list's 7 pixels in a text of size 4).
void keepExplicitFontSizes(QTextDocument& document) {
    // Gather first, change afterwards: a changed format can merge fragments under the walk.
    std::vector<std::pair<std::pair<int, int>, QTextCharFormat>> changes;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            QTextCharFormat format = fragment.charFormat();
            if (!format.hasProperty(QTextFormat::FontSizeAdjustment)) continue;
            if (!format.hasProperty(QTextFormat::FontPixelSize) &&
                !format.hasProperty(QTextFormat::FontPointSize))
                continue;
            format.clearProperty(QTextFormat::FontSizeAdjustment);
            changes.push_back({{fragment.position(), fragment.length()}, format});
        }
    }
    // One edit for all: the document tells of its change once, not once a fragment (a tenth of
    // the time of building the item list of 10,000 rows).
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    for (const auto& [range, format] : changes) {
        cursor.setPosition(range.first);
        cursor.setPosition(range.first + range.second, QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
    cursor.endEditBlock();
}

} // namespace

QString repairedReportHtml(QString html) {
    // `border=%i"` leaves a quote behind an unquoted value, which would lose the border.
    static const QRegularExpression strayQuote(QStringLiteral(R"re((\bborder\s*=\s*)(\d+)")re"),
                                               QRegularExpression::CaseInsensitiveOption);
    html.replace(strayQuote, QStringLiteral("\\1\\2"));
    // A table's height is a least height to a browser, but a fixed one to QTextDocument,
    // which would cut the item list after 65 pixels.
    static const QRegularExpression tableTag(QStringLiteral("<table\\b[^>]*>"),
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression height(
        QStringLiteral(R"re(\s+height\s*=\s*("[^"]*"|'[^']*'|[^\s>]+))re"),
        QRegularExpression::CaseInsensitiveOption);
    QString out;
    out.reserve(html.size());
    qsizetype done = 0;
    for (auto it = tableTag.globalMatch(html); it.hasNext();) {
        const auto match = it.next();
        out += QStringView(html).mid(done, match.capturedStart() - done);
        out += match.captured().remove(height);
        done = match.capturedEnd();
    }
    out += QStringView(html).mid(done);
    // The reports push a list onto the next page with a run of line breaks counted for the
    // type of another renderer; here the same run would spill over and leave the top of the
    // next page empty. A run of nine or more is read as what it is for: a page break.
    static const QRegularExpression filler(QStringLiteral(R"re((?:<br\s*/?>\s*){9,})re"),
                                           QRegularExpression::CaseInsensitiveOption);
    out.replace(filler, QStringLiteral("<p style=\"page-break-after: always; margin: 0\"></p>"));
    return out;
}

std::unique_ptr<QTextDocument> reportDocument(const QString& html, QSizeF contentSize) {
    substituteReportFonts();
    auto document = std::make_unique<QTextDocument>();
    // A report is read, never edited: no undo steps for the repairs below.
    document->setUndoRedoEnabled(false);
    document->setUseDesignMetrics(true);
    QFont font(QString::fromLatin1(kFamily));
    font.setPixelSize(kBaseFontPixels);
    font.setHintingPreference(QFont::PreferNoHinting);
    document->setDefaultFont(font);
    document->setDocumentMargin(0);
    document->setHtml(repairedReportHtml(html));
    keepExplicitFontSizes(*document);
    // The layout begins here, once the document is complete.
    document->setPageSize(contentSize);
    return document;
}

core::Result<void> QtPdfRenderer::render(const shell::PdfRequest& request) {
    auto done = renderPdf(request);
    if (!done) {
        // A PDF of an earlier run at the same place would pass for this one.
        std::error_code ignored;
        std::filesystem::remove(request.pdfPath, ignored);
    }
    return done;
}

core::Result<void> QtPdfRenderer::renderPdf(const shell::PdfRequest& request) {
    const std::string& target = request.pdfPath;
    double width = request.pageWidth, height = request.pageHeight;
    if (!(width > 0 && height > 0 && std::isfinite(width) && std::isfinite(height)))
        return core::fail(target + ": ungültige Seitengröße");
    // The size is the paper's, as the PDF will give it (A4 is 595 × 842 points there);
    // landscape turns it.
    if (width > height) std::swap(width, height);
    const QPageSize paper(QSizeF(width, height), QPageSize::Point);
    width = paper.sizePoints().width();
    height = paper.sizePoints().height();
    const bool landscape = request.orientation == shell::PageOrientation::Landscape;
    if (landscape) std::swap(width, height);
    const double left = request.marginLeft, right = request.marginRight;
    const double top = request.marginTop, bottom = request.marginBottom;
    const QSizeF content(width - left - right, height - top - bottom);
    if (!(left >= 0 && right >= 0 && top >= 0 && bottom >= 0) || content.width() < 10 ||
        content.height() < 10)
        return core::fail(target + ": die Ränder lassen keinen Platz für den Text");

    auto html = readReportHtml(request.htmlPath);
    if (!html) return std::unexpected(html.error());
    auto document = reportDocument(*html, content);

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&buffer);
        writer.setResolution(kResolution);
        writer.setTitle(qs(request.title));
        writer.setCreator(qs(request.author));
        writer.setPageLayout(QPageLayout(paper,
                                         landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
                                         QMarginsF(0, 0, 0, 0), QPageLayout::Point));
        QPainter painter;
        if (!painter.begin(&writer))
            return core::fail(target + ": das PDF kann nicht angelegt werden");
        // From here on one unit is one point of the page.
        painter.scale(kResolution / 72.0, kResolution / 72.0);

        QFont footerFont(QString::fromLatin1(kFamily));
        footerFont.setPixelSize(kFooterFontPixels);
        footerFont.setHintingPreference(QFont::PreferNoHinting);
        const QFontMetricsF metrics(footerFont);
        const QString footer = qs(request.footer);

        const int pages = document->pageCount();
        for (int page = 0; page < pages; ++page) {
            if (page > 0) writer.newPage();
            painter.save();
            painter.translate(left, top - page * content.height());
            // A table wider than the text may run into the side margins, never onto the
            // neighbouring pages.
            QRectF band(-left, page * content.height(), width, content.height());
            painter.setClipRect(band);
            QAbstractTextDocumentLayout::PaintContext context;
            context.clip = band;
            context.palette.setColor(QPalette::Text, Qt::black);
            document->documentLayout()->draw(&painter, context);
            painter.restore();

            const QString text = footer + QString::number(page + 1);
            const double x = (width - metrics.horizontalAdvance(text)) / 2;
            const double y = height - (bottom + metrics.height()) / 2;
            painter.setFont(footerFont);
            painter.setPen(Qt::black);
            painter.drawText(QPointF(x, y + metrics.ascent()), text);
        }
        if (!painter.end())
            return core::fail(target + ": das PDF konnte nicht fertig geschrieben werden");
    }
    QByteArray pdf = buffer.data();
    turnCreatorIntoAuthor(pdf);
    return core::writeFileAtomically(target, std::string_view(pdf.constData(), pdf.size()));
}

core::Result<void> QtPdfRenderer::writeRtf(const std::string& htmlPath,
                                           const std::string& rtfPath) {
    auto done = writeRtfFile(htmlPath, rtfPath);
    if (!done) {
        std::error_code ignored;
        std::filesystem::remove(rtfPath, ignored);
    }
    return done;
}

core::Result<void> QtPdfRenderer::writeRtfFile(const std::string& htmlPath,
                                               const std::string& rtfPath) {
    auto html = readReportHtml(htmlPath);
    if (!html) return std::unexpected(html.error());
    auto document = reportDocument(*html, QSizeF(kA4Width - 40, kA4Height - 100));
    QByteArray rtf = rtfFromDocument(*document);
    return core::writeFileAtomically(rtfPath, std::string_view(rtf.constData(), rtf.size()));
}

struct OffscreenPdfRenderer::Application {
    int argc = 3;
    char name[16] = "zifora-cli";
    char option[16] = "-platform";
    char platform[16] = "offscreen";
    char* argv[4] = {name, option, platform, nullptr};
    std::unique_ptr<QGuiApplication> app;
};

OffscreenPdfRenderer::OffscreenPdfRenderer() = default;
OffscreenPdfRenderer::~OffscreenPdfRenderer() = default;

// Qt's notes on the way (a runtime folder not set, fonts looked up) are no business of a
// command-line user; its errors still reach standard error.
static void quietQtMessages(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

void OffscreenPdfRenderer::ensureApplication() {
    if (QCoreApplication::instance()) return;
    m_application = std::make_unique<Application>();
    // Qt takes the environment's C locale when it starts; the rest of the run keeps the
    // one it had, so that messages read the same whether a document was made or not.
    const std::string locale = std::setlocale(LC_ALL, nullptr);
    qInstallMessageHandler(quietQtMessages);
    m_application->app =
        std::make_unique<QGuiApplication>(m_application->argc, m_application->argv);
    std::setlocale(LC_ALL, locale.c_str());
}

core::Result<void> OffscreenPdfRenderer::render(const shell::PdfRequest& request) {
    ensureApplication();
    return m_renderer.render(request);
}

core::Result<void> OffscreenPdfRenderer::writeRtf(const std::string& htmlPath,
                                                  const std::string& rtfPath) {
    ensureApplication();
    return m_renderer.writeRtf(htmlPath, rtfPath);
}

} // namespace zifora::platform_qt
