#include "preferenceswindow.h"

#include "panes.h"

#include "shell/session.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

struct PaneButton {
    const char* label;
    const char* themeIcon;               // the desktop's icon, where its theme has one
    QStyle::StandardPixmap fallbackIcon; // else the style's own
};

// By tag: the order of the tool bar.
constexpr PaneButton kPaneButtons[PreferencesWindow::PaneCount] = {
    {"Allgemein", "preferences-system", QStyle::SP_FileDialogInfoView},
    {"Daten", "drive-harddisk", QStyle::SP_DialogSaveButton},
    {"Kategorien", "folder", QStyle::SP_DirIcon},
    {"Konten", "view-list-details", QStyle::SP_FileDialogListView},
    {"Vorlagen", "text-x-generic-template", QStyle::SP_FileIcon},
    {"Benutzer", "system-users", QStyle::SP_DirHomeIcon},
    {"Steuern", "accessories-calculator", QStyle::SP_FileDialogContentsView},
};

} // namespace

QString PreferencesWindow::paneLabel(int tag) {
    if (tag < 0 || tag >= PaneCount) return {};
    return QString::fromUtf8(kPaneButtons[tag].label);
}

QString PreferencesWindow::paneTitle(int tag) {
    return QStringLiteral("Einstellungen - ") + paneLabel(tag);
}

PreferencesWindow::PreferencesWindow(PaneContext& context, QWidget* parent)
    : QWidget(parent, Qt::Window), m_context(context) {
    setObjectName(QStringLiteral("preferences"));
    resize(860, 620);
    setMinimumSize(720, 540);

    m_panes = {new GeneralPane(context),  new DataPane(context),      makeGroupsPane(context),
               makeAccountsPane(context), makeTemplatesPane(context), new ClientsPane(context),
               new TaxPane(context)};
    m_stack = new QStackedWidget;
    for (PreferencePane* pane : m_panes)
        m_stack->addWidget(pane);

    m_helpText = new QLabel;
    m_helpText->setWordWrap(true);
    m_helpPanel = new QFrame;
    m_helpPanel->setObjectName(QStringLiteral("helpPanel"));
    m_helpPanel->setFrameShape(QFrame::StyledPanel);
    m_helpPanel->setStyleSheet(QStringLiteral("#helpPanel { background: #fdf8e4; }"));
    auto* helpLayout = new QHBoxLayout(m_helpPanel);
    helpLayout->addWidget(m_helpText);

    auto* help = new QPushButton(QStringLiteral("&Hilfe"));
    help->setObjectName(QStringLiteral("helpButton"));
    help->setCheckable(true);
    help->setAutoDefault(false);
    connect(help, &QPushButton::toggled, this, [this](bool on) { m_helpPanel->setVisible(on); });
    auto* close = new QPushButton(QStringLiteral("Schließen"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    new QShortcut(QKeySequence::Close, this, this, &QWidget::close);

    auto* layout = new QVBoxLayout(this);
    buildToolbar(layout);
    layout->addWidget(m_stack, 1);
    layout->addWidget(m_helpPanel);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(help);
    bottom->addStretch();
    bottom->addWidget(close);
    layout->addLayout(bottom);
    showPane(General);
}

void PreferencesWindow::buildToolbar(QLayout* layout) {
    auto* bar = new QToolBar;
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setIconSize(QSize(32, 32));
    auto* group = new QActionGroup(this);
    group->setExclusive(true);
    for (int tag = 0; tag < PaneCount; ++tag) {
        const PaneButton& b = kPaneButtons[tag];
        QIcon icon = QIcon::fromTheme(QString::fromLatin1(b.themeIcon),
                                      style()->standardIcon(b.fallbackIcon));
        QAction* action = bar->addAction(icon, paneLabel(tag));
        action->setCheckable(true);
        action->setData(tag);
        // Ctrl+1 to Ctrl+7 choose the panes from the keyboard.
        action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + tag)));
        action->setToolTip(QStringLiteral("%1 (%2)").arg(
            paneLabel(tag), action->shortcut().toString(QKeySequence::NativeText)));
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, tag] { showPane(tag); });
        m_actions[static_cast<size_t>(tag)] = action;
    }
    layout->addWidget(bar);
}

void PreferencesWindow::showPane(int tag) {
    if (tag < 0 || tag >= PaneCount) return;
    m_current = tag;
    m_actions[static_cast<size_t>(tag)]->setChecked(true);
    m_stack->setCurrentIndex(tag);
    setWindowTitle(paneTitle(tag));
    PreferencePane* shown = pane(tag);
    shown->reload();
    m_helpText->setText(shown->helpText());
    setHelpShown(m_context.app.settings().getBool("prefsAlwaysShowPrefsHelpDawer"));
}

bool PreferencesWindow::helpShown() const {
    return !m_helpPanel->isHidden();
}

void PreferencesWindow::setHelpShown(bool shown) {
    auto* button = findChild<QPushButton*>(QStringLiteral("helpButton"));
    button->setChecked(shown);
    m_helpPanel->setVisible(shown);
}

void PreferencesWindow::reload() {
    for (PreferencePane* pane : m_panes)
        pane->reload();
}

void PreferencesWindow::present() {
    reload();
    show();
    raise();
    activateWindow();
}

ListTable* PreferencesWindow::groupsTable() const {
    return static_cast<ListPane*>(pane(Categories))->table();
}
ListTable* PreferencesWindow::accountsTable() const {
    return static_cast<ListPane*>(pane(Accounts))->table();
}
ListTable* PreferencesWindow::templatesTable() const {
    return static_cast<ListPane*>(pane(Templates))->table();
}
ClientsPane* PreferencesWindow::clientsPane() const {
    return static_cast<ClientsPane*>(pane(Clients));
}

void PreferencesWindow::keyPressEvent(QKeyEvent* event) {
    // Escape that no control of the window took closes it.
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void PreferencesWindow::changeEvent(QEvent* event) {
    // Back in this window after working elsewhere: show what has changed meanwhile.
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) reload();
    QWidget::changeEvent(event);
}

} // namespace zifora::gui
