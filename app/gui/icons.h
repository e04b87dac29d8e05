#pragma once
// The program's pictures, drawn from its own SVG files: toolbar symbols in the colour of the
// window text (so that they suit light and dark themes), row icons and the first-steps
// pictures in their own colours. Every picture is drawn at the size and pixel density asked
// for, so it is sharp on ordinary and on high-density screens.

#include <QIcon>
#include <QPixmap>
#include <QString>

#include <map>
#include <string>

namespace zifora::gui {

/// A monochrome symbol ("yearTemplate", "toolbarNewTemplate" …), tinted with the palette's
/// window-text colour; greyed in the disabled state. Null for an unknown name.
[[nodiscard]] QIcon templateIcon(const QString& name);

/// A coloured picture as drawn ("miniItemRed", "client" …). Null for an unknown name.
[[nodiscard]] QIcon pictureIcon(const QString& name);

/// A coloured picture at a logical size for a screen of `devicePixelRatio`; null for an
/// unknown name.
[[nodiscard]] QPixmap picturePixmap(const QString& name, QSize size, qreal devicePixelRatio);

/// True when the program has a picture of that name.
[[nodiscard]] bool hasPicture(const QString& name);

/// Coloured pictures by name, each made once: a list asks for the same few row icons for
/// every one of its rows.
class PictureCache {
  public:
    /// The picture of that name; a null icon for an empty or unknown name.
    [[nodiscard]] const QIcon& icon(const std::string& name);

  private:
    std::map<std::string, QIcon, std::less<>> m_icons;
};

} // namespace zifora::gui
