#include "qttexts.h"

#include "posting/currentlocale.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>

namespace zifora::gui {

namespace {

// The Qt modules of the program (Core, Gui, Widgets, PrintSupport, Network) all translate
// through the qtbase catalog; Svg has no texts of its own.
constexpr const char* kQtCatalogs[] = {"qtbase"};

constexpr const char* kPortalService = "org.freedesktop.portal.Desktop";

// A session bus that is there already; without one, asking would start one.
bool sessionBusAround() {
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + QStringLiteral("/bus"));
}

} // namespace

QLocale programLocale() {
    return QLocale(
        QString::fromStdString(posting::currentLocaleName(posting::LocaleCategory::Messages)));
}

QStringList installQtTranslations(QCoreApplication& application, const QLocale& locale) {
    QLocale::setDefault(locale);
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    QStringList loaded;
    for (const char* catalog : kQtCatalogs) {
        auto* translator = new QTranslator(&application);
        if (!translator->load(locale, QString::fromLatin1(catalog), QStringLiteral("_"), folder)) {
            delete translator;
            continue;
        }
        QCoreApplication::installTranslator(translator);
        loaded << QFileInfo(translator->filePath()).completeBaseName();
    }
    return loaded;
}

bool desktopPortalAround() {
    if (!sessionBusAround()) return false;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()) return false;
    const QString portal = QString::fromLatin1(kPortalService);
    if (bus.interface()->isServiceRegistered(portal).value()) return true;
    return bus.interface()->activatableServiceNames().value().contains(portal);
}

void chooseFileDialogs(bool portalAround) {
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !portalAround);
}

} // namespace zifora::gui
