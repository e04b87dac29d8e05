#include "icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <map>
#include <tuple>

// The resource file is compiled into a static library; it must be registered by hand.
static void registerIconResources() {
    Q_INIT_RESOURCE(icons);
}

namespace zifora::gui {

namespace {

QString resourcePath(const QString& name) {
    static const bool registered = (registerIconResources(), true);
    (void)registered;
    return QStringLiteral(":/icons/%1.svg").arg(name);
}

/// Draws an SVG at any size, optionally recoloured, and keeps what it drew.
class SvgIconEngine final : public QIconEngine {
  public:
    SvgIconEngine(QString path, bool tinted) : m_path(std::move(path)), m_tinted(tinted) {}

    QIconEngine* clone() const override { return new SvgIconEngine(m_path, m_tinted); }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
    QString key() const override { return QStringLiteral("ZiforaSvgIcon"); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    // `size` is in device pixels already; `scale` is the density it is meant for.
    QPixmap scaledPixmap(const QSize& pixels, QIcon::Mode mode, QIcon::State,
                         qreal scale) override {
        if (pixels.isEmpty()) return {};
        const bool disabled = mode == QIcon::Disabled;
        const QColor tint = m_tinted ? tintFor(mode) : QColor();
        const auto key = std::make_tuple(pixels.width(), pixels.height(), disabled, tint.rgba());
        auto found = m_drawn.find(key);
        if (found != m_drawn.end()) return found->second;
        QPixmap result = QPixmap::fromImage(render(pixels, disabled, tint));
        result.setDevicePixelRatio(scale);
        m_drawn.emplace(key, result);
        return result;
    }

  private:
    // Symbols take the colour of the text beside them: greyed when disabled, light on a
    // selected row.
    static QColor tintFor(QIcon::Mode mode) {
        const QPalette palette = QGuiApplication::palette();
        switch (mode) {
        case QIcon::Disabled:
            return palette.color(QPalette::Disabled, QPalette::WindowText);
        case QIcon::Selected:
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        default:
            return palette.color(QPalette::Active, QPalette::WindowText);
        }
    }

    QImage render(QSize pixels, bool disabled, const QColor& tint) const {
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QSvgRenderer renderer(m_path);
        if (!renderer.isValid()) return image;
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        // Keep the drawing's proportions inside the size asked for.
        QSizeF drawn = QSizeF(renderer.defaultSize()).scaled(QSizeF(pixels), Qt::KeepAspectRatio);
        QRectF target(
            QPointF((pixels.width() - drawn.width()) / 2, (pixels.height() - drawn.height()) / 2),
            drawn);
        renderer.render(&painter, target);
        if (m_tinted) {
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), tint);
        } else if (disabled) {
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(image.rect(), QColor(0, 0, 0, 110));
        }
        return image;
    }

    QString m_path;
    bool m_tinted;
    std::map<std::tuple<int, int, bool, QRgb>, QPixmap> m_drawn;
};

QIcon svgIcon(const QString& name, bool tinted) {
    if (!hasPicture(name)) return {};
    return QIcon(new SvgIconEngine(resourcePath(name), tinted));
}

} // namespace

bool hasPicture(const QString& name) {
    return !name.isEmpty() && QFile::exists(resourcePath(name));
}

QIcon templateIcon(const QString& name) {
    return svgIcon(name, /*tinted=*/true);
}

QIcon pictureIcon(const QString& name) {
    return svgIcon(name, /*tinted=*/false);
}

QPixmap picturePixmap(const QString& name, QSize size, qreal devicePixelRatio) {
    QIcon icon = pictureIcon(name);
    if (icon.isNull()) return {};
    return icon.pixmap(size, devicePixelRatio);
}

const QIcon& PictureCache::icon(const std::string& name) {
    auto found = m_icons.find(name);
    if (found == m_icons.end())
        found = m_icons.emplace(name, pictureIcon(QString::fromStdString(name))).first;
    return found->second;
}

} // namespace zifora::gui
