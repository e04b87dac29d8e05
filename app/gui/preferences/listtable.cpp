#include "listtable.h"

#include "shell/session.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace zifora::gui {

namespace {

/// Editors of the cells: a pop-up where a column offers choices, else a line field.
class ChoiceDelegate final : public QStyledItemDelegate {
  public:
    /// How many editors are open now.
    int openEditors = 0;

    ChoiceDelegate(EditableListModel& model, QSortFilterProxyModel& proxy, QObject* parent)
        : QStyledItemDelegate(parent), m_model(model), m_proxy(proxy) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QModelIndex source = m_proxy.mapToSource(index);
        const EditableColumn& column = m_model.column(source.column());
        core::Record* record = m_model.recordAt(source.row());
        QWidget* editor = nullptr;
        if (column.choices && record) {
            auto* combo = new QComboBox(parent);
            combo->addItems(column.choices(*record));
            editor = combo;
        } else {
            editor = QStyledItemDelegate::createEditor(parent, option, index);
        }
        if (editor) ++const_cast<ChoiceDelegate*>(this)->openEditors;
        return editor;
    }

    void destroyEditor(QWidget* editor, const QModelIndex& index) const override {
        --const_cast<ChoiceDelegate*>(this)->openEditors;
        QStyledItemDelegate::destroyEditor(editor, index);
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        if (auto* combo = qobject_cast<QComboBox*>(editor)) {
            combo->setCurrentIndex(
                std::max(0, combo->findText(index.data(Qt::EditRole).toString())));
            return;
        }
        QStyledItemDelegate::setEditorData(editor, index);
        if (auto* field = qobject_cast<QLineEdit*>(editor)) field->selectAll();
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override {
        if (auto* combo = qobject_cast<QComboBox*>(editor)) {
            model->setData(index, combo->currentText(), Qt::EditRole);
            return;
        }
        QStyledItemDelegate::setModelData(editor, model, index);
    }

  private:
    EditableListModel& m_model;
    QSortFilterProxyModel& m_proxy;
};

} // namespace

ListTable::ListTable(PaneContext& context, shell::ListController& list, std::string dragName,
                     std::vector<EditableColumn> columns, QWidget* parent)
    : QWidget(parent), m_context(context), m_list(list) {
    m_model =
        new EditableListModel(context.app, list, std::move(dragName), std::move(columns), this);
    m_proxy = new QSortFilterProxyModel(this);
    m_proxy->setSourceModel(m_model);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_proxy->setFilterKeyColumn(-1);

    m_view = new QTableView;
    m_view->setModel(m_proxy);
    auto* delegate = new ChoiceDelegate(*m_model, *m_proxy, m_view);
    m_view->setItemDelegate(delegate);
    m_isEditing = [delegate] { return delegate->openEditors > 0; };
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_view->setDragEnabled(true);
    m_view->setAcceptDrops(true);
    m_view->setDropIndicatorShown(true);
    m_view->setDragDropMode(QAbstractItemView::DragDrop);
    m_view->setDefaultDropAction(Qt::MoveAction);
    m_view->setDragDropOverwriteMode(false);
    m_view->setAlternatingRowColors(true);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->setVisible(false);
    m_view->verticalHeader()->setDefaultSectionSize(24);
    m_view->horizontalHeader()->setStretchLastSection(true);
    m_view->horizontalHeader()->setSectionsClickable(false);

    m_buttons = new QHBoxLayout;
    m_buttons->setContentsMargins(0, 0, 0, 0);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view, 1);
    layout->addLayout(m_buttons);

    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (m_reloading) return;
                QModelIndex source = m_proxy->mapToSource(current);
                m_list.setSelectionIndex(source.isValid() ? std::optional<int64_t>(source.row())
                                                          : std::nullopt);
                m_context.app.selectionChanged();
                emit selectionChangedByUser();
            });
    connect(m_model, &EditableListModel::dropped, this, [this] { showSelection(); });
    reload();
}

void ListTable::addButtons(const std::string& addCommand, const QString& addTip,
                           const std::string& removeCommand, const QString& removeTip) {
    QPushButton* add = addCommandButton(QStringLiteral("+"), addCommand);
    add->setToolTip(addTip);
    add->setAccessibleName(addTip);
    QPushButton* remove = addCommandButton(QStringLiteral("−"), removeCommand);
    remove->setToolTip(removeTip);
    remove->setAccessibleName(removeTip);
    for (QPushButton* b : {add, remove})
        b->setFixedWidth(36);
    // Keyboard: Insert adds a row and Delete removes the selected one.
    auto shortcut = [this](QKeySequence key, QPushButton* button) {
        auto* action = new QAction(m_view);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, button, &QPushButton::click);
        m_view->addAction(action);
    };
    shortcut(QKeySequence(Qt::Key_Insert), add);
    shortcut(QKeySequence(QKeySequence::Delete), remove);
}

QPushButton* ListTable::addCommandButton(const QString& label, const std::string& command,
                                         int tag) {
    auto* button = new QPushButton(label);
    button->setObjectName(QString::fromStdString(command));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, command, tag] { m_context.run(command, tag); });
    if (!m_context.app.commands().contains(command)) button->hide();
    m_buttons->addWidget(button);
    return button;
}

void ListTable::setFilterText(const QString& text) {
    m_proxy->setFilterFixedString(text);
    m_view->setDragEnabled(text.isEmpty());
    showSelection();
}

int ListTable::visibleRows() const {
    return m_proxy->rowCount();
}

void ListTable::reload() {
    // Resetting the model would close an open editor and lose what is being typed.
    if (isEditing()) return;
    m_model->reload();
    showSelection();
}

void ListTable::showSelection() {
    m_reloading = true;
    auto row = m_list.selectionIndex();
    QModelIndex index =
        row ? m_proxy->mapFromSource(m_model->index(static_cast<int>(*row), 0)) : QModelIndex();
    if (index.isValid()) {
        m_view->setCurrentIndex(index);
        m_view->scrollTo(index);
    } else {
        m_view->clearSelection();
    }
    m_reloading = false;
}

void ListTable::editSelected(int column) {
    reload();
    auto row = m_list.selectionIndex();
    if (!row) return;
    QModelIndex index = m_proxy->mapFromSource(m_model->index(static_cast<int>(*row), column));
    if (!index.isValid()) return;
    m_view->setFocus();
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
    m_view->edit(index);
}

} // namespace zifora::gui
