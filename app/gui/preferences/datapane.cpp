#include "panes.h"

#include "shell/session.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace zifora::gui {

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

QPushButton* commandButton(PaneContext& context, const QString& label, const std::string& command,
                           int tag = 0) {
    auto* button = new QPushButton(label);
    button->setObjectName(qs(command));
    button->setAutoDefault(false);
    QObject::connect(button, &QPushButton::clicked, button,
                     [&context, command, tag] { context.run(command, tag); });
    return button;
}

// The exchange files, by the commands that write and read them.
constexpr std::pair<const char*, const char*> kExchangeCommands[] = {
    {"exportDatabase:", "Datenbank exportieren …"}, {"importDatabase:", "Datenbank importieren …"},
    {"exportClient:", "Benutzer exportieren …"},    {"importClient:", "Benutzer importieren …"},
    {"exportYear:", "Jahr exportieren …"},          {"importYear:", "Jahr importieren …"},
    {"exportTab:", "Abrechnung exportieren …"},     {"importTab:", "Abrechnung importieren …"},
};

} // namespace

DataPane::DataPane(PaneContext& context) : m_context(context), m_controls(context.app.settings()) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(locationsBox());
    if (QWidget* exchange = exchangeBox()) layout->addWidget(exchange);
    layout->addWidget(migrationBox());
    layout->addStretch();
    reload();
}

QWidget* DataPane::locationsBox() {
    auto* group = new QGroupBox(QStringLiteral("Speicherorte"));
    auto* grid = new QGridLayout(group);
    const std::string defaultFolder = m_context.app.places().dataFolder;
    auto row = [&](int at, const QString& label, const char* key, const std::string& command,
                   const QString& placeholder) {
        auto* path = new QLineEdit;
        path->setObjectName(QStringLiteral("%1.path").arg(QLatin1String(key)));
        path->setReadOnly(true);
        path->setPlaceholderText(placeholder);
        auto* caption = new QLabel(label);
        caption->setBuddy(path);
        grid->addWidget(caption, at, 0);
        grid->addWidget(path, at, 1);
        grid->addWidget(commandButton(m_context, QStringLiteral("Auswählen …"), command), at, 2);
        m_controls.onReload(
            [this, path, key] { path->setText(qs(m_context.app.settings().getString(key))); });
    };
    row(0, QStringLiteral("&Datenbank:"), "customLocationPath",
        "setLibraryPath:", QStringLiteral("Standardordner: %1").arg(qs(defaultFolder)));
    grid->addWidget(
        m_controls.checkBox("useCustomLocation",
                            QStringLiteral("Eigenen Speicherort für die Datenbank verwenden")),
        1, 1, 1, 2);
    row(2, QStringLiteral("&Backups:"), "prefsBackupPath",
        "setBackupPath:", QStringLiteral("nicht festgelegt"));
    grid->addWidget(m_controls.checkBox("prefsMakeBackup",
                                        QStringLiteral("Bei jedem Start ein Backup anlegen")),
                    3, 1, 1, 2);
    row(4, QStringLiteral("D&okumente:"), "prefsDocPath",
        "setDocumentsPath:", QStringLiteral("nicht festgelegt"));
    auto* note = new QLabel(QStringLiteral("Ein neuer Speicherort gilt ab der nächsten Sicherung. "
                                           "Vorhandene Dateien werden nicht verschoben."));
    note->setWordWrap(true);
    note->setEnabled(false);
    grid->addWidget(note, 5, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    return group;
}

QWidget* DataPane::exchangeBox() {
    std::vector<QPushButton*> buttons;
    for (const auto& [command, label] : kExchangeCommands)
        if (m_context.app.commands().contains(command))
            buttons.push_back(commandButton(m_context, QString::fromUtf8(label), command));
    if (buttons.empty()) return nullptr;
    auto* group = new QGroupBox(QStringLiteral("Austausch"));
    auto* grid = new QGridLayout(group);
    for (size_t i = 0; i < buttons.size(); ++i)
        grid->addWidget(buttons[i], static_cast<int>(i / 2), static_cast<int>(i % 2));
    return group;
}

QWidget* DataPane::migrationBox() {
    auto* group = new QGroupBox(QStringLiteral("Alte Datenbanken"));
    auto* layout = new QVBoxLayout(group);
    auto* text = new QLabel(
        QStringLiteral("Übernimm die Daten einer früheren Zifora-Version als weiteren Benutzer."));
    text->setWordWrap(true);
    layout->addWidget(text);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(commandButton(m_context, QStringLiteral("Alte Datenbank migrieren …"),
                                     "migrateWithTag:", 0));
    buttons->addWidget(commandButton(m_context, QStringLiteral("Datenbank von Hand auswählen …"),
                                     "doTheManualMigration"));
    buttons->addWidget(
        commandButton(m_context, QStringLiteral("Anleitung zur Migration"), "openMigrationHelp:"));
    buttons->addStretch();
    layout->addLayout(buttons);
    return group;
}

QString DataPane::helpText() const {
    return QStringLiteral("Hier bestimmst du, wo Zifora die Datenbank, die Backups und die Kopien "
                          "deiner Belege ablegt. "
                          "Die drei Orte müssen verschieden sein. Ein eigener Ort für die "
                          "Datenbank gilt nur, solange "
                          "das Häkchen darunter gesetzt ist. Außerdem kannst du hier Daten "
                          "früherer Versionen übernehmen.");
}

} // namespace zifora::gui
