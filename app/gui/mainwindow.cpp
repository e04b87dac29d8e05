#include "mainwindow.h"

#include "menus.h"
#include "shell/app.h"
#include "posting/numberformat.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

QString qs(const std::string& s) { return QString::fromStdString(s); }

std::vector<Column> singleColumn(const QString& title, const char* key) {
    return {{title, [key](const core::Record& r, int role) -> QVariant {
                 if (role != Qt::DisplayRole) return {};
                 QString text = qs(r.getText(key));
                 return text.isEmpty() ? QStringLiteral("(ohne Titel)") : text;
             }}};
}

QWidget* titled(const QString& title, QWidget* content) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(QStringLiteral("<b>%1</b>").arg(title));
    layout->addWidget(label);
    layout->addWidget(content);
    return box;
}

} // namespace

MainWindow::MainWindow(shell::App& app, QWidget* parent) : QMainWindow(parent), m_app(app) {
    setWindowTitle(QStringLiteral("Zifora"));
    resize(1280, 800);
    setMinimumSize(900, 560);

    auto& selection = m_app.selection();
    m_yearModel = new RecordListModel(selection.years, singleColumn(QStringLiteral("Jahr"), "dateValue"), this);
    m_periodModel = new RecordListModel(selection.lists, singleColumn(QStringLiteral("Abrechnung"), "title"), this);
    m_itemModel = new RecordListModel(selection.items, itemColumns(), this);

    m_years = new QListView;
    m_years->setModel(m_yearModel);
    m_periods = new QListView;
    m_periods->setModel(m_periodModel);
    m_items = new QTableView;
    m_items->setModel(m_itemModel);
    m_items->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_items->setSelectionMode(QAbstractItemView::SingleSelection);
    m_items->verticalHeader()->setVisible(false);
    m_items->verticalHeader()->setDefaultSectionSize(22);
    m_items->horizontalHeader()->setStretchLastSection(false);
    m_items->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_items->setAlternatingRowColors(true);
    m_items->setWordWrap(false);

    m_client = new QLabel;
    m_client->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(m_client);
    leftLayout->addWidget(titled(QStringLiteral("Jahre"), m_years), 1);
    leftLayout->addWidget(titled(QStringLiteral("Abrechnungen"), m_periods), 2);

    auto* right = new QWidget;
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->addWidget(titled(QStringLiteral("Posten"), m_items), 1);
    m_sum = new QLabel;
    m_sum->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont big = m_sum->font();
    big.setPointSizeF(big.pointSizeF() * 1.5);
    big.setBold(true);
    m_sum->setFont(big);
    m_hint = new QLabel;
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_hint, 1);
    bottom->addWidget(m_sum);
    rightLayout->addLayout(bottom);

    auto* split = new QSplitter;
    split->addWidget(left);
    split->addWidget(right);
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    split->setSizes({260, 1020});
    setCentralWidget(split);

    buildToolbar();
    buildMenus(*menuBar(), m_app.commands(), [this] { refresh(); });
    connectSelection(m_years, selection.years);
    connectSelection(m_periods, selection.lists);
    connectSelection(m_items, selection.items);
    statusBar()->showMessage(QStringLiteral("Bereit"));
    refresh();
}

void MainWindow::buildToolbar() {
    QToolBar* bar = addToolBar(QStringLiteral("Werkzeuge"));
    bar->setObjectName(QStringLiteral("mainToolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setMovable(false);
    auto add = [&](const char* command, const QString& label, const QString& help,
                   QStyle::StandardPixmap icon) {
        if (!m_app.commands().contains(command)) return;
        QAction* action = bar->addAction(style()->standardIcon(icon), label);
        action->setToolTip(help);
        connect(action, &QAction::triggered, this, [this, name = std::string(command)] { runCommand(name); });
    };
    add("save:", QStringLiteral("Sichern"), QStringLiteral("Alle Daten jetzt sichern"),
        QStyle::SP_DialogSaveButton);
    add("createClient:", QStringLiteral("Benutzer"), QStringLiteral("Einen neuen Benutzer anlegen"),
        QStyle::SP_FileDialogNewFolder);
}

void MainWindow::runCommand(const std::string& name) {
    m_app.commands().run(name);
    refresh();
}

void MainWindow::connectSelection(QAbstractItemView* view, shell::ListController& controller) {
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this, &controller](const QModelIndex& current) {
                if (m_refreshing) return;
                controller.setSelectionIndex(current.isValid() ? std::optional<int64_t>(current.row())
                                                               : std::nullopt);
                m_app.selectionChanged();
                refresh();
            });
}

void MainWindow::showSelection(QAbstractItemView* view, shell::ListController& controller) {
    auto index = controller.selectionIndex();
    if (index) view->setCurrentIndex(view->model()->index(static_cast<int>(*index), 0));
    else view->clearSelection();
}

void MainWindow::refresh() {
    m_refreshing = true;
    auto& selection = m_app.selection();
    selection.propagate(&m_app.clients());
    m_yearModel->reload();
    m_periodModel->reload();
    m_itemModel->reload();
    showSelection(m_years, selection.years);
    showSelection(m_periods, selection.lists);
    showSelection(m_items, selection.items);
    core::Record* client = selection.currentClient();
    m_client->setText(client ? QStringLiteral("<b>Benutzer:</b> %1").arg(qs(client->getText("company")).toHtmlEscaped())
                             : QStringLiteral("<i>Kein Benutzer ausgewählt</i>"));
    // The period's signed sum, added up as the books keep it: in 32-bit floats.
    float sum = 0;
    for (core::Record* item : selection.items.arranged()) sum = sum + item->getFloat("finalAmount");
    static const posting::AmountFormats formats;
    auto state = m_app.applicationDidUpdate(sum);
    m_sum->setText(qs(formats.byPaymentRule(sum)) + QStringLiteral(" €"));
    m_sum->setStyleSheet(state.sumIsExpense ? QStringLiteral("color:#a81c1c") : QStringLiteral("color:#1b7a2e"));
    m_hint->setText(state.firstStepsImage.empty()
                        ? QString()
                        : QStringLiteral("Erste Schritte: lege ein Jahr, eine Abrechnung und deinen ersten Posten an."));
    statusBar()->showMessage(QStringLiteral("%1 Posten").arg(selection.items.count()));
    m_refreshing = false;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing the main window leaves the program running; a new start shows it again.
    if (m_app.windowShouldClose()) {
        hide();
        event->ignore();
    }
}

} // namespace zifora::gui
