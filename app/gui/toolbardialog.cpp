#include "toolbardialog.h"

#include "icons.h"
#include "toolbar.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace zifora::gui {

namespace {

constexpr int kIdentifierRole = Qt::UserRole + 1;

bool isSpacer(const std::string& identifier) {
    return identifier == kSpaceItem || identifier == kFlexibleSpaceItem ||
           identifier == kSeparatorItem;
}

QWidget* titled(const QString& title, QWidget* content) {
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(title)));
    layout->addWidget(content);
    return box;
}

} // namespace

ToolbarDialog::ToolbarDialog(const std::vector<std::string>& order, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(QStringLiteral("Symbolleiste anpassen"));
    setObjectName(QStringLiteral("toolbarDialog"));
    m_available = new QListWidget;
    m_available->setObjectName(QStringLiteral("availableItems"));
    m_placed = new QListWidget;
    m_placed->setObjectName(QStringLiteral("placedItems"));
    m_placed->setDragDropMode(QAbstractItemView::InternalMove);
    m_placed->setDefaultDropAction(Qt::MoveAction);
    for (QListWidget* list : {m_available, m_placed}) {
        list->setIconSize(QSize(24, 24));
        list->setMinimumSize(240, 400);
    }
    for (const std::string& identifier : order)
        m_placed->addItem(makeEntry(identifier));
    fillAvailable();

    m_add = new QPushButton(QStringLiteral("Hinzufügen →"));
    m_remove = new QPushButton(QStringLiteral("← Entfernen"));
    m_up = new QPushButton(QStringLiteral("Nach oben"));
    m_down = new QPushButton(QStringLiteral("Nach unten"));
    auto* middle = new QVBoxLayout;
    middle->addStretch();
    for (QPushButton* button : {m_add, m_remove, m_up, m_down})
        middle->addWidget(button);
    middle->addStretch();

    auto* lists = new QHBoxLayout;
    lists->addWidget(titled(QStringLiteral("Verfügbare Elemente"), m_available), 1);
    lists->addLayout(middle);
    lists->addWidget(titled(QStringLiteral("Deine Symbolleiste"), m_placed), 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Übernehmen"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("Abbrechen"));
    QPushButton* reset = buttons->addButton(QStringLiteral("Standard wiederherstellen"),
                                            QDialogButtonBox::ResetRole);

    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel(QStringLiteral(
        "Stelle dir die Symbolleiste zusammen: Füge Elemente hinzu, nimm sie heraus oder ziehe sie "
        "in der rechten Liste an ihren Platz."));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    layout->addLayout(lists, 1);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(reset, &QPushButton::clicked, this, &ToolbarDialog::restoreDefault);
    auto addCurrent = [this] {
        if (QListWidgetItem* item = m_available->currentItem())
            addEntry(item->data(kIdentifierRole).toString().toStdString());
    };
    connect(m_add, &QPushButton::clicked, this, addCurrent);
    connect(m_available, &QListWidget::itemDoubleClicked, this, addCurrent);
    connect(m_remove, &QPushButton::clicked, this, [this] { removeEntry(m_placed->currentRow()); });
    connect(m_placed, &QListWidget::itemDoubleClicked, this,
            [this] { removeEntry(m_placed->currentRow()); });
    connect(m_up, &QPushButton::clicked, this, [this] { moveEntry(m_placed->currentRow(), -1); });
    connect(m_down, &QPushButton::clicked, this, [this] { moveEntry(m_placed->currentRow(), +1); });
    connect(m_available, &QListWidget::currentRowChanged, this, &ToolbarDialog::updateButtons);
    connect(m_placed, &QListWidget::currentRowChanged, this, &ToolbarDialog::updateButtons);
    updateButtons();
}

QListWidgetItem* ToolbarDialog::makeEntry(const std::string& identifier) const {
    auto* entry = new QListWidgetItem(toolbarItemName(identifier));
    entry->setData(kIdentifierRole, QString::fromStdString(identifier));
    if (identifier == kSeparatorItem)
        entry->setIcon(templateIcon(QStringLiteral("toolbarSeparator")));
    else if (identifier == kSpaceItem)
        entry->setIcon(templateIcon(QStringLiteral("toolbarSpace")));
    else if (identifier == kFlexibleSpaceItem)
        entry->setIcon(templateIcon(QStringLiteral("toolbarFlexibleSpace")));
    if (const ToolbarItem* item = findToolbarItem(identifier)) {
        entry->setIcon(templateIcon(
            QString::fromUtf8(item->image.data(), static_cast<qsizetype>(item->image.size()))));
        entry->setToolTip(
            QString::fromUtf8(item->help.data(), static_cast<qsizetype>(item->help.size())));
    }
    // Entries are dropped between one another, never onto one another.
    entry->setFlags(entry->flags() & ~Qt::ItemIsDropEnabled);
    return entry;
}

std::vector<std::string> ToolbarDialog::order() const {
    std::vector<std::string> result;
    for (int row = 0; row < m_placed->count(); ++row)
        result.push_back(m_placed->item(row)->data(kIdentifierRole).toString().toStdString());
    return result;
}

std::vector<std::string> ToolbarDialog::available() const {
    const std::vector<std::string> placed = order();
    std::vector<std::string> result;
    for (const std::string& identifier : offeredToolbarItems())
        if (isSpacer(identifier) ||
            std::find(placed.begin(), placed.end(), identifier) == placed.end())
            result.push_back(identifier);
    return result;
}

void ToolbarDialog::fillAvailable() {
    const int row = m_available->currentRow();
    m_available->clear();
    for (const std::string& identifier : available())
        m_available->addItem(makeEntry(identifier));
    if (m_available->count() > 0)
        m_available->setCurrentRow(std::clamp(row, 0, m_available->count() - 1));
}

bool ToolbarDialog::addEntry(const std::string& identifier) {
    const std::vector<std::string> offered = available();
    if (std::find(offered.begin(), offered.end(), identifier) == offered.end()) return false;
    const int at = m_placed->currentRow() < 0 ? m_placed->count() : m_placed->currentRow() + 1;
    m_placed->insertItem(at, makeEntry(identifier));
    m_placed->setCurrentRow(at);
    fillAvailable();
    updateButtons();
    return true;
}

void ToolbarDialog::removeEntry(int row) {
    if (row < 0 || row >= m_placed->count()) return;
    delete m_placed->takeItem(row);
    if (m_placed->count() > 0) m_placed->setCurrentRow(std::min(row, m_placed->count() - 1));
    fillAvailable();
    updateButtons();
}

void ToolbarDialog::moveEntry(int row, int step) {
    const int to = row + step;
    if (row < 0 || row >= m_placed->count() || to < 0 || to >= m_placed->count()) return;
    QListWidgetItem* entry = m_placed->takeItem(row);
    m_placed->insertItem(to, entry);
    m_placed->setCurrentRow(to);
    updateButtons();
}

void ToolbarDialog::restoreDefault() {
    m_placed->clear();
    for (const std::string& identifier : defaultToolbarOrder())
        m_placed->addItem(makeEntry(identifier));
    fillAvailable();
    updateButtons();
}

void ToolbarDialog::updateButtons() {
    const int row = m_placed->currentRow();
    m_add->setEnabled(m_available->currentRow() >= 0);
    m_remove->setEnabled(row >= 0);
    m_up->setEnabled(row > 0);
    m_down->setEnabled(row >= 0 && row + 1 < m_placed->count());
}

} // namespace zifora::gui
