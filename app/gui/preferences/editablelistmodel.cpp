#include "editablelistmodel.h"

#include "shell/session.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

#include <set>

namespace zifora::gui {

namespace {

constexpr const char* kRowsMimeType = "application/x-zifora-rows";

} // namespace

EditableListModel::EditableListModel(shell::Session& app, shell::ListController& list,
                                     std::string dragName, std::vector<EditableColumn> columns,
                                     QObject* parent)
    : QAbstractTableModel(parent), m_app(app), m_list(list), m_dragName(std::move(dragName)),
      m_columns(std::move(columns)) {}

int EditableListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_list.arranged().size());
}

int EditableListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

core::Record* EditableListModel::recordAt(int row) const {
    const auto& rows = m_list.arranged();
    if (row < 0 || row >= static_cast<int>(rows.size())) return nullptr;
    return rows[static_cast<size_t>(row)];
}

const EditableColumn& EditableListModel::column(int index) const {
    return m_columns.at(static_cast<size_t>(index));
}

QVariant EditableListModel::data(const QModelIndex& index, int role) const {
    core::Record* record = recordAt(index.row());
    if (!record || index.column() < 0 || index.column() >= columnCount()) return {};
    const EditableColumn& c = column(index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::ToolTipRole:
        return c.text(*record);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(c.alignment);
    default:
        return {};
    }
}

bool EditableListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    core::Record* record = recordAt(index.row());
    if (role != Qt::EditRole || !record || index.column() < 0 || index.column() >= columnCount())
        return false;
    const EditableColumn& c = column(index.column());
    if (!c.write) return false;
    if (!c.write(*record, value.toString())) {
        m_app.services().ui.beep();
        return false;
    }
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), columnCount() - 1));
    emit edited(index.row());
    return true;
}

QVariant EditableListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    if (section < 0 || section >= columnCount()) return {};
    return column(section).title;
}

Qt::ItemFlags EditableListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    Qt::ItemFlags f =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    if (index.column() < columnCount() && column(index.column()).write) f |= Qt::ItemIsEditable;
    return f;
}

Qt::DropActions EditableListModel::supportedDropActions() const {
    // A copy is offered, as the lists always did, and refused by the program on the drop.
    return Qt::MoveAction | Qt::CopyAction;
}

Qt::DropActions EditableListModel::supportedDragActions() const {
    return Qt::MoveAction | Qt::CopyAction;
}

QStringList EditableListModel::mimeTypes() const {
    return {QString::fromLatin1(kRowsMimeType)};
}

QMimeData* EditableListModel::mimeData(const QModelIndexList& indexes) const {
    std::set<int> rows;
    for (const QModelIndex& index : indexes)
        if (index.isValid()) rows.insert(index.row());
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << QString::fromStdString(m_dragName) << static_cast<qint32>(rows.size());
    for (int row : rows)
        out << static_cast<qint32>(row);
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(kRowsMimeType), bytes);
    return data;
}

bool EditableListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                        const QModelIndex&) const {
    return data && data->hasFormat(QString::fromLatin1(kRowsMimeType));
}

bool EditableListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                     const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, 0, parent)) return false;
    QDataStream in(data->data(QString::fromLatin1(kRowsMimeType)));
    QString source;
    qint32 count = 0;
    in >> source >> count;
    shell::DragRequest request;
    request.list = source.toStdString();
    request.targetList = m_dragName;
    for (qint32 i = 0; i < count && !in.atEnd(); ++i) {
        qint32 dragged = -1;
        in >> dragged;
        if (dragged >= 0) request.rows.push_back(static_cast<size_t>(dragged));
    }
    // A drop on a row goes above it; a drop below the last row goes to the end.
    int target = row >= 0 ? row : (parent.isValid() ? parent.row() : -1);
    if (target >= 0) request.targetRow = static_cast<size_t>(target);
    request.option = action == Qt::CopyAction;
    bool taken = m_app.drag(request);
    reload();
    emit dropped();
    // The view may then ask to remove the dragged rows; the model removes nothing, since the
    // program has moved them itself.
    return taken;
}

void EditableListModel::reload() {
    beginResetModel();
    m_list.rearrange();
    endResetModel();
}

} // namespace zifora::gui
