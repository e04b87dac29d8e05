#pragma once
// Qt's own texts in the language of the program: the buttons and labels of file dialogs,
// the context menus of text fields, the names of keys in menus ("Strg+S", "Entf"), and file
// dialogs that these texts reach.

#include <QLocale>
#include <QStringList>

class QCoreApplication;

namespace zifora::gui {

/// The locale of the program's windows: the process locale for texts (LC_MESSAGES), German
/// where that is C or POSIX.
[[nodiscard]] QLocale programLocale();

/// Makes `locale` the default of Qt's widgets and installs Qt's own translations for it from
/// Qt's translations folder. Gives the catalogs that were found ("qtbase_de"); none for a
/// language Qt needs none for, or when the translations are not installed.
QStringList installQtTranslations(QCoreApplication& application, const QLocale& locale);

/// True when a desktop portal answers on the session bus; where there is no session bus
/// nothing is started to find one.
[[nodiscard]] bool desktopPortalAround();

/// Where a desktop portal is around, file dialogs are the desktop's own, in the desktop's
/// language; elsewhere Qt's own widget dialog, which the installed translations reach.
void chooseFileDialogs(bool portalAround);

} // namespace zifora::gui
