#include "forms/choosersheet.h"

#include "forms/formbinder.h"
#include "shell/session.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace zifora::gui {

ChooserSheet::ChooserSheet(shell::Session& app, Kind kind, std::function<void()> afterChange,
                           QWidget* mainWindow)
    : FormSheet(mainWindow), m_kind(std::move(kind)) {
    m_binder = new FormBinder(app, std::move(afterChange), this);
    build();
    bind();
    // There is nothing to cancel: the record exists already.
    setCancel([&app] { app.services().ui.beep(); });
}

void ChooserSheet::build() {
    setWindowTitle(m_kind.windowTitle);
    setMinimumSize(420, 240);

    m_chooser = new QComboBox;
    m_chooser->setObjectName(QString::fromStdString(m_kind.chooser));
    m_chooser->setPlaceholderText(QStringLiteral("Bitte wählen …"));
    m_chooser->setMinimumWidth(220);
    m_chooser->setMaxVisibleItems(18);
    m_comment = new CommentEdit;
    m_comment->setObjectName(QString::fromStdString(m_kind.commentField));
    m_comment->setPlaceholderText(
        QStringLiteral("Kommentar (Umschalt+Eingabe für eine neue Zeile)"));

    auto* fields = new QFormLayout;
    fields->addRow(m_kind.chooserLabel, m_chooser);
    fields->addRow(QStringLiteral("Kommentar:"), m_comment);

    m_help = new QLabel(m_kind.helpText);
    m_help->setObjectName(QStringLiteral("helpPanel"));
    m_help->setWordWrap(true);
    m_help->setFrameShape(QFrame::StyledPanel);
    m_help->setMargin(8);
    m_help->setVisible(false);

    m_helpButton = new QToolButton;
    m_helpButton->setObjectName(QStringLiteral("helpButton"));
    m_helpButton->setText(QStringLiteral("?"));
    m_helpButton->setToolTip(QStringLiteral("Hilfe ein- und ausblenden"));
    m_helpButton->setCheckable(true);
    connect(m_helpButton, &QToolButton::toggled, this, [this](bool on) { m_help->setVisible(on); });

    m_ok = new QPushButton(QStringLiteral("OK"));
    m_ok->setObjectName(QStringLiteral("okButton"));
    m_ok->setDefault(true);
    connect(m_ok, &QPushButton::clicked, this, [this] { m_binder->run(m_kind.closeCommand); });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_helpButton);
    buttons->addStretch(1);
    buttons->addWidget(m_ok);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(fields, 1);
    layout->addWidget(m_help);
    layout->addLayout(buttons);

    setTabOrder(m_chooser, m_comment);
    setTabOrder(m_comment, m_helpButton);
    setTabOrder(m_helpButton, m_ok);
}

void ChooserSheet::bind() {
    m_binder->onControl(m_kind.chooser,
                        [this] { showComboText(*m_chooser, m_binder->text(m_kind.chooser)); });
    m_binder->onControl(m_kind.commentField,
                        [this] { m_comment->showText(m_binder->text(m_kind.commentField)); });
    connect(m_chooser, &QComboBox::activated, this,
            [this](int index) { m_binder->writeText(m_kind.chooser, m_chooser->itemText(index)); });
    connect(m_comment, &CommentEdit::edited, this,
            [this](const QString& text) { m_binder->writeText(m_kind.commentField, text); });
}

void ChooserSheet::showForm(bool show) {
    if (!show) {
        dismiss();
        m_binder->refreshSoon();
        return;
    }
    QStringList titles;
    for (const std::string& title : m_kind.offeredTitles())
        titles << qs(title);
    fillCombo(*m_chooser, titles);
    m_binder->showAll();
    present();
    m_chooser->setFocus(Qt::TabFocusReason);
}

void ChooserSheet::showHelp(bool show) {
    m_helpButton->setChecked(show);
}

bool ChooserSheet::helpShown() const {
    return m_helpButton->isChecked();
}

} // namespace zifora::gui
