// Qt's own texts as the program installs them under a German locale: key names in menus,
// the context menu of a text field and the file dialogs, which are Qt's own where no desktop
// portal is around.

#include "qttexts.h"

#include "platform_qt/qtservices.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <clocale>

using namespace zifora;

namespace {

/// The texts of a dialog's buttons, without their mnemonics.
QStringList buttonTexts(const QWidget& dialog) {
    QStringList texts;
    for (const QDialogButtonBox* box : dialog.findChildren<QDialogButtonBox*>())
        for (const QAbstractButton* button : box->buttons())
            texts << button->text().remove('&');
    texts.sort();
    return texts;
}

QStringList actionTexts(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions())
        if (!action->isSeparator()) texts << action->text().remove('&').section('\t', 0, 0);
    return texts;
}

} // namespace

class TranslationsTest : public QObject {
    Q_OBJECT

  private slots:
    void initTestCase() {
        m_loaded = gui::installQtTranslations(*qApp, gui::programLocale());
        gui::chooseFileDialogs(/*portalAround=*/false);
    }

    void theProgramSpeaksGermanUnderGermanAndNeutralLocales() {
        QCOMPARE(gui::programLocale(), QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(m_loaded, QStringList{"qtbase_de"});
        QCOMPARE(QLocale().language(), QLocale::German);

        // Under C, as a service or a bare terminal starts the program, German all the same.
        const QByteArray lang = qgetenv("LANG");
        const std::string messages = std::setlocale(LC_MESSAGES, nullptr);
        qputenv("LANG", "C");
        std::setlocale(LC_MESSAGES, "C");
        const QLocale underC = gui::programLocale();
        qputenv("LANG", lang);
        std::setlocale(LC_MESSAGES, messages.c_str());
        QCOMPARE(underC, QLocale(QLocale::German, QLocale::Germany));
    }

    void keyNamesReadGerman() {
        QCOMPARE(QKeySequence(QStringLiteral("Ctrl+Del")).toString(QKeySequence::NativeText),
                 QStringLiteral("Strg+Entf"));
        QCOMPARE(QKeySequence(QStringLiteral("Ctrl+Shift+N")).toString(QKeySequence::NativeText),
                 QStringLiteral("Strg+Umschalt+N"));
    }

    void theMenuOfATextFieldReadsGerman() {
        QLineEdit edit(QStringLiteral("Büromiete"));
        std::unique_ptr<QMenu> menu(edit.createStandardContextMenu());
        const QStringList texts = actionTexts(*menu);
        for (const char* text :
             {"Rückgängig", "Ausschneiden", "Kopieren", "Einfügen", "Löschen", "Alles auswählen"})
            QVERIFY2(texts.contains(QString::fromUtf8(text)), qPrintable(texts.join(", ")));
    }

    void fileDialogsAreQtsOwnAndReadGerman() {
        QVERIFY(QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs));
        // The dialog as the program asks for it, answered as it comes up.
        QTemporaryDir folder;
        platform_qt::QtUi ui;
        QStringList buttons;
        QStringList labels;
        QString title;
        QTimer::singleShot(0, [&] {
            QTRY_VERIFY(qobject_cast<QFileDialog*>(QApplication::activeModalWidget()));
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            buttons = buttonTexts(*dialog);
            for (const QLabel* label : dialog->findChildren<QLabel*>())
                labels << label->text().remove('&');
            title = dialog->windowTitle();
            dialog->reject();
        });
        shell::DialogRequest request;
        request.kind = shell::DialogKind::Open;
        request.title = "Datei wählen";
        request.folder = folder.path().toStdString();
        request.extensions = {"csv"};
        QCOMPARE(ui.chooseFile(request), std::nullopt);
        QCOMPARE(title, QStringLiteral("Datei wählen"));
        QCOMPARE(buttons, (QStringList{"Abbrechen", "Öffnen"}));
        QVERIFY2(labels.contains(QStringLiteral("Suchen in:")), qPrintable(labels.join(", ")));
        QVERIFY2(labels.contains(QStringLiteral("Dateiname:")), qPrintable(labels.join(", ")));

        // And where a portal shows the desktop's own, the program leaves it to the desktop.
        gui::chooseFileDialogs(/*portalAround=*/true);
        QVERIFY(!QCoreApplication::testAttribute(Qt::AA_DontUseNativeDialogs));
        gui::chooseFileDialogs(/*portalAround=*/false);
    }

  private:
    QStringList m_loaded;
};

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    TranslationsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "translations_test.moc"
