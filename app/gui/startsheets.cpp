#include "startsheets.h"

#include "setupassistant.h"

#include "platform_qt/qtservices.h"
#include "shell/session.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

constexpr int kTextWidth = 460;

SheetContent welcomeContent() {
    return {QStringLiteral("welcome"),
            QStringLiteral("Willkommen"),
            QStringLiteral("Willkommen bei Zifora!"),
            QStringLiteral(
                "<p>Schön, dass du da bist. Mit Zifora erfasst du deine Einnahmen und Ausgaben, "
                "bereitest deine Umsatzsteuer-Voranmeldung vor und erstellst deine Berichte bis "
                "zur Gewinnermittlung.</p>"
                "<p>Bevor du loslegst, richte Zifora in wenigen Schritten ein: deine Angaben, "
                "die Steuersätze und deinen Kontenrahmen. Der Einrichtungsassistent führt dich "
                "durch alles.</p>"),
            {{QStringLiteral("&Erste Schritte …"), "openSheetFirst:"},
             {QStringLiteral("&Schließen"), "closeWelcome:"},
             {QStringLiteral("&Assistent starten"), "selectAssi:", true}},
            "closeWelcome:",
            /*blocksMainWindow=*/false};
}

SheetContent newsletterContent() {
    return {QStringLiteral("newsletter"),
            QStringLiteral("Newsletter"),
            QStringLiteral("Neuigkeiten von Zifora"),
            QStringLiteral(
                "<p>Möchtest du erfahren, wenn es eine neue Version von Zifora gibt oder sich bei "
                "der Umsatzsteuer etwas ändert? Dann bestelle unseren Newsletter.</p>"
                "<p>Das geht auf unserer Webseite: Zifora selbst schickt dafür nichts ins "
                "Internet. Dort kannst du den Newsletter auch jederzeit wieder abbestellen.</p>"),
            {{QStringLiteral("&Nicht mehr anzeigen"), "closeNewsletterForever:"},
             {QStringLiteral("&Später"), "closeNewsletter:"},
             {QStringLiteral("Zur &Webseite …"), "openNewsletter:", true}},
            "closeNewsletter:",
            /*blocksMainWindow=*/false};
}

SheetContent aboutContent() {
    return {QStringLiteral("about"),
            QStringLiteral("Über Zifora"),
            QStringLiteral("Zifora"),
            QStringLiteral("<p><b>Version %1</b></p>"
                           "<p>Buchführung für Freiberufler und kleine Unternehmen: Einnahmen "
                           "und Ausgaben, Umsatzsteuer-Voranmeldung und Gewinnermittlung.</p>"
                           "<p>Du bleibst für deine Abrechnungen und Steuererklärungen selbst "
                           "verantwortlich.</p>")
                .arg(QStringLiteral(ZIFORA_VERSION)),
            {{QStringLiteral("&Danksagungen …"), "openACK:"},
             {QStringLiteral("&Schließen"), "closeAbout:", true}},
            "closeAbout:",
            /*blocksMainWindow=*/false};
}

/// A help sheet of the first steps: `part` names its commands and window ("First" …).
SheetContent helpContent(const std::string& part, const QString& title, const QString& text) {
    return {QStringLiteral("sheet") + QString::fromStdString(part),
            title,
            title,
            text,
            {{QStringLiteral("Ausführliche &Hilfe …"), "toggleDocs:"},
             {QStringLiteral("&OK"), "closeSheet" + part + ":", true}},
            "cancelSheet" + part + ":"};
}

std::vector<SheetContent> helpContents() {
    return {
        helpContent(
            "First", QStringLiteral("Erste Schritte"),
            QStringLiteral("<ol>"
                           "<li><b>Zifora einrichten:</b> Der Einrichtungsassistent fragt nach "
                           "deinen Angaben, den Steuersätzen und dem Kontenrahmen.</li>"
                           "<li><b>Ein Jahr anlegen:</b> Klicke auf „Neues Jahr“ und wähle das "
                           "Jahr.</li>"
                           "<li><b>Einen Abrechnungszeitraum anlegen:</b> Mit „Neue Abrechnung“ "
                           "legst du einen Monat, ein Vierteljahr oder das ganze Jahr an.</li>"
                           "<li><b>Den ersten Posten erfassen:</b> Mit „Neuer Posten“ öffnet sich "
                           "das Postenformular.</li>"
                           "</ol>"
                           "<p>Unten im Hauptfenster zeigt dir Zifora, was als Nächstes dran "
                           "ist.</p>")),
        helpContent("Assi", QStringLiteral("Zifora einrichten"),
                    QStringLiteral(
                        "<p>Der Einrichtungsassistent fragt in wenigen Schritten, was Zifora für "
                        "Berichte und Voranmeldungen braucht:</p>"
                        "<ul><li>deinen Namen oder deine Firma, deine Steuernummer und die Art "
                        "der Versteuerung,</li>"
                        "<li>die Steuersätze, mit denen du rechnest,</li>"
                        "<li>den Kontenrahmen und deine Kategorien.</li></ul>"
                        "<p>Alles, was du dort eingibst, kannst du später in den Einstellungen "
                        "ändern.</p>")),
        helpContent("Account", QStringLiteral("Konten und Kategorien"),
                    QStringLiteral(
                        "<p>Jeder Posten trägt ein <b>Konto</b> aus deinem Kontenrahmen und eine "
                        "<b>Kategorie</b>, mit der du deine Posten nach eigenen Gesichtspunkten "
                        "ordnest.</p>"
                        "<p>Zifora bringt drei Kontenrahmen nach SKR04 mit. Einzelne Konten und "
                        "Kategorien legst du in den Einstellungen an und änderst sie direkt in "
                        "der Tabelle. Bestehende Posten behalten ihr Konto und ihre Kategorie, "
                        "auch wenn du die Liste später änderst.</p>")),
        helpContent(
            "Entry", QStringLiteral("Posten erfassen"),
            QStringLiteral("<ol>"
                           "<li>Wähle <b>Einnahme</b> oder <b>Ausgabe</b>.</li>"
                           "<li>Tippe den Bruttobetrag ein, mit Komma: 119,00.</li>"
                           "<li>Kreuze <b>Umsatzsteuer</b> an und wähle den Steuersatz; Netto und "
                           "Steuer rechnet Zifora selbst.</li>"
                           "<li>Gib Titel, Belegnummer und Datum ein und wähle Konto und "
                           "Kategorie.</li>"
                           "</ol>"
                           "<p>Mit der Eingabetaste schließt du das Formular. Wiederkehrende "
                           "Posten füllst du mit einer Vorlage aus.</p>")),
    };
}

} // namespace

// ---------------------------------------------------------------------------------------
// A sheet of text

TextSheet::TextSheet(const SheetContent& content, const Run& run, QWidget* mainWindow)
    : FormSheet(mainWindow) {
    setObjectName(content.objectName);
    setWindowTitle(content.windowTitle);
    if (!content.blocksMainWindow) setWindowModality(Qt::NonModal);
    setSizeGripEnabled(false);
    const std::string escape = content.escapeCommand;
    setCancel([run, escape] { run(escape); });

    auto* heading = new QLabel(content.heading);
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.4);
    font.setBold(true);
    heading->setFont(font);
    auto* text = new QLabel(content.text);
    text->setTextFormat(Qt::RichText);
    text->setWordWrap(true);
    text->setMinimumWidth(kTextWidth);
    text->setObjectName(QStringLiteral("text"));

    m_extra = new QVBoxLayout;
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (const SheetButton& b : content.buttons) {
        auto* button = new QPushButton(b.label);
        button->setObjectName(QString::fromStdString(b.command));
        button->setAutoDefault(false);
        if (b.isDefault) {
            button->setDefault(true);
            m_default = button;
        }
        const std::string command = b.command;
        connect(button, &QPushButton::clicked, this, [run, command] { run(command); });
        buttons->addWidget(button);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(12);
    layout->addWidget(heading);
    layout->addWidget(text);
    layout->addLayout(m_extra);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void TextSheet::showSheet(bool show) {
    if (!show) {
        dismiss();
        return;
    }
    if (m_beforeShow) m_beforeShow();
    present();
    if (m_default) m_default->setFocus(Qt::OtherFocusReason);
}

QPushButton* TextSheet::button(const std::string& command) const {
    return findChild<QPushButton*>(QString::fromStdString(command));
}

// ---------------------------------------------------------------------------------------
// The windows of the start

StartSheets::StartSheets(shell::Session& app, QWidget* mainWindow,
                         std::function<void()> refreshMain)
    : m_app(app), m_refreshMain(std::move(refreshMain)), m_main(mainWindow),
      m_controls(app.settings()) {
    const TextSheet::Run run = [this](const std::string& command) { this->run(command); };
    buildWelcome(mainWindow);
    m_newsletter = new TextSheet(newsletterContent(), run, mainWindow);
    m_about = new TextSheet(aboutContent(), run, mainWindow);
    for (const SheetContent& content : helpContents())
        m_helpSheets[content.objectName.toStdString()] = new TextSheet(content, run, mainWindow);
    m_assistant = new SetupAssistant(app, m_refreshMain, mainWindow);
}

StartSheets::~StartSheets() {
    // The assistant's tables refer to the program; they go before it does.
    delete m_assistant.data();
    delete m_welcome.data();
    delete m_newsletter.data();
    delete m_about.data();
    for (auto& [name, sheet] : m_helpSheets)
        delete sheet.data();
}

void StartSheets::buildWelcome(QWidget* mainWindow) {
    m_welcome = new TextSheet(
        welcomeContent(), [this](const std::string& c) { run(c); }, mainWindow);
    // The sheet shows at the start while the key is false: ticking the box sets it.
    m_welcomeBox = m_controls.checkBox("prefsAlwaysShowWelcomeSheet",
                                       QStringLiteral("Beim Start &nicht mehr anzeigen"));
    m_welcome->extraArea()->addWidget(m_welcomeBox);
    m_welcome->onShow([this] { m_controls.reload(); });
}

void StartSheets::run(const std::string& command) {
    m_app.run(command);
    if (m_refreshMain) m_refreshMain();
}

TextSheet* StartSheets::helpSheet(const std::string& window) const {
    auto it = m_helpSheets.find(window);
    return it == m_helpSheets.end() ? nullptr : it->second.data();
}

void StartSheets::registerWindows(platform_qt::QtUi& ui) {
    for (TextSheet* sheet : {m_welcome.data(), m_newsletter.data(), m_about.data()})
        ui.addWindow(sheet->objectName().toStdString(),
                     [sheet = QPointer<TextSheet>(sheet)](bool show) {
                         if (sheet) sheet->showSheet(show);
                     });
    for (const auto& [name, sheet] : m_helpSheets)
        ui.addWindow(name, [sheet = sheet](bool show) {
            if (sheet) sheet->showSheet(show);
        });
    ui.addWindow("assistant", [this, &ui](bool show) {
        if (!m_assistant) return;
        m_assistant->showAssistant(show);
        ui.setParentWindow(show ? static_cast<QWidget*>(m_assistant.data()) : m_main.data());
    });
    ui.addWindow("assistant.accounts.number", [this](bool show) {
        if (m_assistant && show) m_assistant->editNewAccount();
    });
    ui.addWindow("assistant.groups.title", [this](bool show) {
        if (m_assistant && show) m_assistant->editNewGroup();
    });
}

} // namespace zifora::gui
