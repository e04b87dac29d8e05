// zifora-rendericon SVG SIZE PNG: renders the program's icon at one size of the icon theme.
// A build tool: the icon's PNG sizes are made from the one SVG drawing.

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: zifora-rendericon SVG SIZE PNG\n");
        return 2;
    }
    // Rendering needs no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    QSvgRenderer renderer{QString::fromLocal8Bit(argv[1])};
    const int size = std::atoi(argv[2]);
    if (!renderer.isValid() || size < 1 || size > 4096) {
        std::fprintf(stderr, "zifora-rendericon: %s can't be drawn at %s\n", argv[1], argv[2]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, size, size));
    painter.end();
    if (!image.save(QString::fromLocal8Bit(argv[3]), "PNG")) {
        std::fprintf(stderr, "zifora-rendericon: %s can't be written\n", argv[3]);
        return 1;
    }
    return 0;
}
