#include "mainwindow.h"

#include "icons.h"
#include "menus.h"
#include "toolbar.h"

#include "bookkeeping/startstopcontroller.h"
#include "posting/numberformat.h"
#include "posting/valuetransformers.h"
#include "shell/session.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace zifora::gui {

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

QColor qcolor(const posting::Colour& c) {
    return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue));
}

QWidget* titled(const QString& title, QWidget* content, QWidget* buddy = nullptr) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(3);
    auto* label = new QLabel(QStringLiteral("<b>%1</b>").arg(title));
    label->setBuddy(buddy ? buddy : content);
    layout->addWidget(label);
    layout->addWidget(content);
    return box;
}

/// What the first-steps picture asks the user to do next.
QString firstStepsText(const std::string& image) {
    if (image == "ja1")
        return QStringLiteral("Erste Schritte: Richte Zifora mit dem Assistenten ein.");
    if (image == "ja2")
        return QStringLiteral("Erste Schritte: Lege mit „Neues Jahr“ dein erstes Jahr an.");
    if (image == "ja3")
        return QStringLiteral(
            "Erste Schritte: Lege mit „Neue Abrechnung“ deinen ersten Abrechnungszeitraum an.");
    if (image == "ja4")
        return QStringLiteral("Erste Schritte: Lege mit „Neuer Posten“ deinen ersten Posten an.");
    return {};
}

constexpr QSize kHintPictureSize(180, 72);

} // namespace

MainWindow::MainWindow(shell::Session& app, QWidget* parent)
    : QMainWindow(parent), m_app(app), m_formats(std::make_unique<posting::AmountFormats>()) {
    setWindowTitle(QStringLiteral("Zifora"));
    setWindowIcon(pictureIcon(QStringLiteral("client")));
    resize(1280, 800);
    setMinimumSize(900, 560);

    buildLists();
    auto* split = new QSplitter;
    split->setChildrenCollapsible(false);
    split->addWidget(buildChainPane());
    split->addWidget(buildItemPane());
    split->setStretchFactor(0, 0);
    split->setStretchFactor(1, 1);
    split->setSizes({250, 1030});
    setCentralWidget(split);
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("itemCount"));
    statusBar()->addWidget(m_count);

    m_toolbar = new Toolbar(m_app, {}, this);
    addToolBar(Qt::TopToolBarArea, m_toolbar);
    buildMenus(*menuBar(), m_app);
    menuBar()->addMenu(QStringLiteral("&Fenster"))->addAction(m_toolbar->customizeAction());

    auto& selection = m_app.selection();
    connectSelection(m_years, selection.years);
    connectSelection(m_periods, selection.lists);
    connectSelection(m_items, selection.items);
    connectOpenCommand(m_years, "editYear:");
    connectOpenCommand(m_periods, "editList:");
    connectOpenCommand(m_items, "editItem:");
    setTabOrder(m_years, m_periods);
    setTabOrder(m_periods, m_items);
    // The program outlives a window; a closed window's observer stays and does nothing.
    m_app.fields().observe(
        [self = QPointer<MainWindow>(this)](const std::string&, const core::Value&) {
            if (self) self->scheduleUpdate();
        });
    // After a command or a timer's step the lists follow at once; a change of the selection
    // in the middle of a step waits for the loop's next turn.
    m_app.book().observe([self = QPointer<MainWindow>(this)](core::Change what) {
        if (!self) return;
        if (what == core::Change::Selection)
            self->scheduleUpdate();
        else
            self->followBook();
    });
    refresh();
}

void MainWindow::buildLists() {
    auto& selection = m_app.selection();
    m_yearModel = new RecordListModel(selection.years, yearColumns(), this);
    m_periodModel = new RecordListModel(selection.lists, periodColumns(), this);
    m_itemModel = new RecordListModel(selection.items, itemColumns(), this);
    const std::function<void()> afterDrop; // the book's change signal shows a drop
    m_yearModel->enableRowDrags(m_app, "years", {"years"}, afterDrop);
    m_periodModel->enableRowDrags(m_app, "periods", {"periods", "items"}, afterDrop);
    m_itemModel->enableRowDrags(m_app, "items", {"items"}, afterDrop);

    m_years = new QListView;
    m_years->setObjectName(QStringLiteral("yearList"));
    m_years->setModel(m_yearModel);
    m_periods = new QListView;
    m_periods->setObjectName(QStringLiteral("periodList"));
    m_periods->setModel(m_periodModel);
    // Items land on a period, not between two.
    m_periods->setDragDropOverwriteMode(true);
    for (QListView* list : {m_years, m_periods}) {
        list->setIconSize(QSize(16, 16));
        list->setSpacing(1);
    }
    m_items = new QTableView;
    m_items->setObjectName(QStringLiteral("itemTable"));
    m_items->setModel(m_itemModel);
    m_items->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_items->setAlternatingRowColors(true);
    m_items->setWordWrap(false);
    m_items->setShowGrid(false);
    m_items->setTextElideMode(Qt::ElideRight);
    m_items->verticalHeader()->setVisible(false);
    // Rows of one height let the view place any of 100,000 rows without measuring them.
    m_items->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_items->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    m_items->horizontalHeader()->setHighlightSections(false);
    sizeItemColumns();

    for (QAbstractItemView* view :
         std::initializer_list<QAbstractItemView*>{m_years, m_periods, m_items}) {
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->setDragEnabled(true);
        view->setAcceptDrops(true);
        view->setDropIndicatorShown(true);
        view->setDragDropMode(QAbstractItemView::DragDrop);
        view->setDefaultDropAction(Qt::MoveAction);
        view->installEventFilter(this);
    }
}

void MainWindow::sizeItemColumns() {
    QHeaderView* header = m_items->horizontalHeader();
    header->setMinimumSectionSize(24);
    header->setStretchLastSection(false);
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    const std::pair<int, int> widths[] = {
        {kItemPicture, 28},     {kItemDate, digit * 11},   {kItemGroup, 130},
        {kItemAccount, 170},    {kItemGross, digit * 12},  {kItemNet, digit * 12},
        {kItemRate, digit * 7}, {kItemTaxMark, digit * 5}, {kItemAttachment, 28},
    };
    for (auto [column, width] : widths)
        header->resizeSection(column, width);
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setSectionResizeMode(kItemTitle, QHeaderView::Stretch);
    header->setSectionResizeMode(kItemPicture, QHeaderView::Fixed);
    header->setSectionResizeMode(kItemAttachment, QHeaderView::Fixed);
}

QWidget* MainWindow::buildChainPane() {
    auto* pane = new QWidget;
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(8, 6, 4, 6);
    m_client = new QLabel;
    m_client->setObjectName(QStringLiteral("clientLabel"));
    m_client->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_client->setWordWrap(true);
    layout->addWidget(m_client);
    layout->addWidget(titled(QStringLiteral("&Jahre"), m_years), 1);
    layout->addWidget(titled(QStringLiteral("Ab&rechnungen"), m_periods), 2);
    return pane;
}

QWidget* MainWindow::buildItemPane() {
    auto* pane = new QWidget;
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(4, 6, 8, 6);
    layout->addWidget(titled(QStringLiteral("P&osten"), m_items), 1);

    m_hintPicture = new QLabel;
    m_hintPicture->setObjectName(QStringLiteral("firstStepsPicture"));
    m_hintPicture->setFixedSize(kHintPictureSize);
    m_hintText = new QLabel;
    m_hintText->setObjectName(QStringLiteral("firstStepsText"));
    m_hintText->setWordWrap(true);
    m_hintPicture->hide();
    m_hintText->hide();
    auto* sumCaption = new QLabel(QStringLiteral("Saldo der Abrechnung"));
    sumCaption->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_sum = new QLabel;
    m_sum->setObjectName(QStringLiteral("mainSumField"));
    m_sum->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_sum->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont big = m_sum->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    m_sum->setFont(big);
    m_sum->setMinimumWidth(180);

    auto* sumBox = new QVBoxLayout;
    sumBox->addStretch();
    sumBox->addWidget(sumCaption);
    sumBox->addWidget(m_sum);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_hintPicture);
    bottom->addWidget(m_hintText, 1);
    bottom->addLayout(sumBox);
    layout->addLayout(bottom);
    return pane;
}

void MainWindow::runCommand(const std::string& name) {
    m_app.run(name);
    refresh();
}

void MainWindow::connectSelection(QAbstractItemView* view, shell::ListController& controller) {
    connect(view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this, &controller](const QModelIndex& current) {
                if (m_refreshing) return;
                controller.setSelectionIndex(
                    current.isValid() ? std::optional<int64_t>(current.row()) : std::nullopt);
                // Nothing hangs below an item: paging through a long list stays light.
                if (&controller == &m_app.selection().items) return;
                m_app.selectionChanged();
                showLists(/*reset=*/false);
            });
}

// Return and a double click open the record in its form.
void MainWindow::connectOpenCommand(QAbstractItemView* view, const char* command) {
    view->setProperty("openCommand", QString::fromLatin1(command));
    connect(view, &QAbstractItemView::doubleClicked, this,
            [this, command](const QModelIndex& index) {
                if (index.isValid()) runCommand(command);
            });
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        auto* view = qobject_cast<QAbstractItemView*>(watched);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (view && enter && key->modifiers() == Qt::NoModifier && view->currentIndex().isValid()) {
            runCommand(view->property("openCommand").toString().toStdString());
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::showSelection(QAbstractItemView* view, shell::ListController& controller) {
    auto index = controller.selectionIndex();
    if (!index) {
        view->selectionModel()->clear();
        return;
    }
    const QModelIndex current = view->model()->index(static_cast<int>(*index), 0);
    if (view->currentIndex().row() != current.row() ||
        !view->selectionModel()->isRowSelected(current.row()))
        view->setCurrentIndex(current);
    view->scrollTo(current);
}

void MainWindow::refresh() {
    // The settings may have been written behind the book's back (the preferences do).
    m_app.book().changed(core::Change::Settings);
    // Bringing the chain up to date also arranges every list again.
    m_app.selection().propagate(&m_app.book().clients());
    showLists(/*reset=*/true);
}

void MainWindow::followBook() {
    if (m_refreshing) return;
    m_app.selection().propagate(&m_app.book().clients());
    showLists(/*reset=*/false);
}

void MainWindow::showLists(bool reset) {
    m_refreshing = true;
    for (RecordListModel* model : {m_yearModel, m_periodModel, m_itemModel}) {
        if (reset)
            model->reload();
        else
            model->follow();
    }
    auto& selection = m_app.selection();
    showSelection(m_years, selection.years);
    showSelection(m_periods, selection.lists);
    showSelection(m_items, selection.items);
    showClient();
    showSumAndHint();
    m_toolbar->updateItems();
    m_count->setText(QStringLiteral("%1 Posten")
                         .arg(QLocale(QLocale::German)
                                  .toString(static_cast<qulonglong>(selection.items.count()))));
    m_refreshing = false;
}

void MainWindow::showClient() {
    core::Record* client = m_app.selection().currentClient();
    if (!client) {
        m_client->setText(QStringLiteral("<i>Kein Benutzer ausgewählt</i>"));
        setWindowTitle(QStringLiteral("Zifora"));
        return;
    }
    const QString company = qs(client->getText("company"));
    m_client->setText(QStringLiteral("Benutzer<br><b>%1</b>").arg(company.toHtmlEscaped()));
    setWindowTitle(QStringLiteral("Zifora – %1").arg(company));
}

void MainWindow::showSumAndHint() {
    // The period's sum and the first-steps picture, as the program works them out.
    const shell::FormFields& fields = m_app.fields();
    const float sum = fields.get(bookkeeping::kMainSumField).toFloat();
    const bool sumIsExpense = fields.get(bookkeeping::kMainSumIsExpense).asBool();
    const std::string firstStepsImage = fields.text(bookkeeping::kFirstStepsImage);
    m_sum->setText(qs(m_formats->byTotalRule(sum)) + QStringLiteral(" €"));
    const QColor colour =
        qcolor(sumIsExpense ? posting::kNegativeColour : posting::kPositiveColour);
    QPalette palette = m_sum->palette();
    palette.setColor(QPalette::WindowText, colour);
    m_sum->setPalette(palette);

    if (firstStepsImage == m_firstStepsImage) return;
    m_firstStepsImage = firstStepsImage;
    const QString image = qs(m_firstStepsImage);
    m_hintPicture->setVisible(hasPicture(image));
    m_hintText->setVisible(!m_firstStepsImage.empty());
    m_hintPicture->setPixmap(picturePixmap(image, kHintPictureSize, devicePixelRatioF()));
    m_hintText->setText(firstStepsText(m_firstStepsImage));
}

void MainWindow::scheduleUpdate() {
    if (m_updateScheduled) return;
    m_updateScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_updateScheduled = false;
        showLists(/*reset=*/false);
    });
}

MainWindow::~MainWindow() = default;

void MainWindow::closeEvent(QCloseEvent* event) {
    // Closing the main window leaves the program running; a new start shows it again.
    hide();
    event->ignore();
}

} // namespace zifora::gui
