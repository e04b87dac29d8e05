// The laid-out report as RTF, written from the document's frames, blocks and formats.

#include "platform_qt/pdfrenderer.h"

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zifora::platform_qt {

namespace {

// Layout units are points; RTF counts in twips.
int twips(double points) {
    return static_cast<int>(std::lround(points * 20));
}

// Windows-1252's letters in 0x80–0x9F (0 where the code page has none).
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

int cp1252Byte(char32_t c) {
    if (c >= 0xA0 && c <= 0xFF) return static_cast<int>(c);
    for (int i = 0; i < 32; ++i)
        if (kCp1252High[i] != 0 && kCp1252High[i] == c) return 0x80 + i;
    return -1;
}

class RtfWriter {
  public:
    explicit RtfWriter(const QTextDocument& document)
        : m_document(document), m_layout(*document.documentLayout()) {}

    QByteArray write() {
        writeFrame(*m_document.rootFrame());
        QByteArray out;
        out += "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n";
        out += "{\\fonttbl{\\f0\\fswiss\\fcharset0 DejaVu Sans;}}\n";
        out += "{\\colortbl;";
        for (const QColor& c : m_colors)
            out += QByteArray("\\red") + QByteArray::number(c.red()) + "\\green" +
                   QByteArray::number(c.green()) + "\\blue" + QByteArray::number(c.blue()) + ';';
        out += "}\n";
        // A4 with the reports' margins: top 40, left and right 20, bottom 60 points.
        out += "\\paperw11906\\paperh16838\\margl400\\margr400\\margt800\\margb1200\n";
        out += "\\f0\\fs24\n";
        out += m_body;
        out += "}\n";
        return out;
    }

  private:
    void writeFrame(const QTextFrame& frame) {
        for (auto it = frame.begin(); !it.atEnd(); ++it) {
            if (QTextFrame* child = it.currentFrame()) {
                if (auto* table = qobject_cast<QTextTable*>(child))
                    writeTable(*table);
                else
                    writeFrame(*child);
            } else if (it.currentBlock().isValid()) {
                writeParagraph(it.currentBlock(), false);
                m_body += "\\par\n";
            }
        }
    }

    // The paragraph's settings and text, without its end.
    void writeParagraph(const QTextBlock& block, bool inTable) {
        const QTextBlockFormat format = block.blockFormat();
        if (!inTable && (format.pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore))
            m_body += "\\page\n";
        m_body += "\\pard";
        if (inTable) m_body += "\\intbl";
        const Qt::Alignment align = format.alignment() & Qt::AlignHorizontal_Mask;
        if (align & Qt::AlignRight)
            m_body += "\\qr";
        else if (align & Qt::AlignHCenter)
            m_body += "\\qc";
        else if (align & Qt::AlignJustify)
            m_body += "\\qj";
        if (int before = twips(format.topMargin()); before > 0)
            m_body += "\\sb" + QByteArray::number(before);
        if (int after = twips(format.bottomMargin()); after > 0)
            m_body += "\\sa" + QByteArray::number(after);
        m_body += ' ';
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (!fragment.isValid() || fragment.text().isEmpty()) continue;
            writeRun(fragment.charFormat(), fragment.text());
        }
    }

    void writeRun(const QTextCharFormat& format, const QString& text) {
        const QFont font = format.font();
        double points = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * 96.0 / 72.0;
        m_body += "{\\fs" + QByteArray::number(static_cast<int>(std::lround(points * 2)));
        if (font.weight() >= QFont::DemiBold) m_body += "\\b";
        if (font.italic()) m_body += "\\i";
        if (font.underline()) m_body += "\\ul";
        if (format.hasProperty(QTextFormat::ForegroundBrush)) {
            const QColor color = format.foreground().color();
            if (color.isValid() && color != QColor(Qt::black))
                m_body += "\\cf" + QByteArray::number(colorIndex(color));
        }
        m_body += ' ';
        writeText(text);
        m_body += '}';
    }

    int colorIndex(const QColor& color) {
        auto it = std::find(m_colors.begin(), m_colors.end(), color);
        if (it == m_colors.end()) it = m_colors.insert(m_colors.end(), color);
        return static_cast<int>(it - m_colors.begin()) + 1;
    }

    void writeText(const QString& text) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            char32_t c = text[i].unicode();
            if (QChar::isHighSurrogate(c) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
                c = QChar::surrogateToUcs4(text[i].unicode(), text[i + 1].unicode());
                ++i;
            }
            switch (c) {
            case '\\':
                m_body += "\\\\";
                continue;
            case '{':
                m_body += "\\{";
                continue;
            case '}':
                m_body += "\\}";
                continue;
            case '\t':
                m_body += "\\tab ";
                continue;
            case '\n':
            case 0x2028:
                m_body += "\\line ";
                continue;
            case 0xA0:
                m_body += "\\~";
                continue;
            case 0xFFFC:
                continue; // an image's place
            default:
                break;
            }
            if (c >= 0x20 && c < 0x80) {
                m_body += static_cast<char>(c);
            } else if (int byte = cp1252Byte(c); byte >= 0) {
                static const char* hex = "0123456789abcdef";
                m_body += "\\'";
                m_body += hex[byte >> 4];
                m_body += hex[byte & 15];
            } else if (c >= 0x20) {
                auto unit = [this](char16_t u) {
                    m_body += "\\u" + QByteArray::number(static_cast<int16_t>(u)) + '?';
                };
                if (c > 0xFFFF) {
                    unit(QChar::highSurrogate(c));
                    unit(QChar::lowSurrogate(c));
                } else {
                    unit(static_cast<char16_t>(c));
                }
            }
        }
    }

    // Left edges of the columns as laid out, and the table's right edge at the end.
    std::vector<double> columnEdges(const QTextTable& table) {
        const int columns = table.columns();
        const QTextTableFormat format = table.format();
        const QRectF frame = m_layout.frameBoundingRect(const_cast<QTextTable*>(&table));
        const double inset = format.cellPadding() + format.border();
        std::vector<double> edges(columns + 1, -1);
        edges[0] = frame.left();
        edges[columns] = frame.right();
        // Every row has the same column edges: the first cell that begins a column tells.
        for (int c = 1; c < columns; ++c) {
            for (int r = 0; r < table.rows(); ++r) {
                QTextTableCell cell = table.cellAt(r, c);
                if (cell.column() != c || cell.columnSpan() != 1) continue;
                QRectF rect = m_layout.blockBoundingRect(cell.firstCursorPosition().block());
                edges[c] = rect.left() - inset;
                break;
            }
        }
        // Columns that only spanned cells begin: share the room between known edges.
        for (int c = 1; c < columns; ++c) {
            if (edges[c] >= 0) continue;
            int next = c + 1;
            while (edges[next] < 0)
                ++next;
            edges[c] = edges[c - 1] + (edges[next] - edges[c - 1]) / (next - c + 1);
        }
        for (int c = 1; c <= columns; ++c)
            edges[c] = std::max(edges[c], edges[c - 1] + 1);
        return edges;
    }

    void writeTable(const QTextTable& table) {
        const QTextTableFormat format = table.format();
        const std::vector<double> edges = columnEdges(table);
        const bool border =
            format.border() > 0 && format.borderStyle() != QTextFrameFormat::BorderStyle_None;
        const int headerRows = format.headerRowCount();
        for (int r = 0; r < table.rows(); ++r) {
            m_body += "\\trowd\\trgaph" + QByteArray::number(twips(format.cellPadding())) +
                      "\\trleft" + QByteArray::number(twips(edges[0]));
            if (r < headerRows) m_body += "\\trhdr";
            std::vector<QTextTableCell> cells;
            for (int c = 0; c < table.columns();) {
                QTextTableCell cell = table.cellAt(r, c);
                const int span = std::max(1, cell.columnSpan());
                if (cell.rowSpan() > 1) m_body += cell.row() == r ? "\\clvmgf" : "\\clvmrg";
                if (border)
                    m_body += "\\clbrdrt\\brdrs\\brdrw10\\clbrdrl\\brdrs\\brdrw10"
                              "\\clbrdrb\\brdrs\\brdrw10\\clbrdrr\\brdrs\\brdrw10";
                const int end = std::min(c + span, table.columns());
                m_body += "\\cellx" + QByteArray::number(twips(edges[end]));
                cells.push_back(cell);
                c = end;
            }
            m_body += '\n';
            for (const QTextTableCell& cell : cells) {
                if (cell.row() == r)
                    writeCell(cell);
                else
                    m_body += "\\pard\\intbl \\cell\n";
            }
            m_body += "\\row\n";
        }
        m_body += "\\pard\n";
    }

    void writeCell(const QTextTableCell& cell) {
        bool first = true;
        for (auto it = cell.begin(); !it.atEnd(); ++it) {
            if (QTextFrame* child = it.currentFrame()) {
                // A table inside a cell: its rows as lines, its cells apart by tabs.
                if (auto* inner = qobject_cast<QTextTable*>(child)) {
                    for (int r = 0; r < inner->rows(); ++r) {
                        if (!first) m_body += "\\par\n";
                        first = false;
                        m_body += "\\pard\\intbl ";
                        for (int c = 0; c < inner->columns(); ++c) {
                            QTextTableCell part = inner->cellAt(r, c);
                            if (part.column() != c || part.row() != r) continue;
                            if (c > 0) m_body += "\\tab ";
                            for (auto b = part.begin(); !b.atEnd(); ++b)
                                if (b.currentBlock().isValid())
                                    for (auto f = b.currentBlock().begin(); !f.atEnd(); ++f)
                                        writeRun(f.fragment().charFormat(), f.fragment().text());
                        }
                    }
                }
                continue;
            }
            if (!it.currentBlock().isValid()) continue;
            if (!first) m_body += "\\par\n";
            first = false;
            writeParagraph(it.currentBlock(), true);
        }
        if (first) m_body += "\\pard\\intbl ";
        m_body += "\\cell\n";
    }

    const QTextDocument& m_document;
    QAbstractTextDocumentLayout& m_layout;
    QByteArray m_body;
    std::vector<QColor> m_colors;
};

} // namespace

QByteArray rtfFromDocument(const QTextDocument& document) {
    return RtfWriter(document).write();
}

} // namespace zifora::platform_qt
