#include "recordlistmodel.h"

#include "posting/dateformat.h"
#include "posting/numberformat.h"
#include "posting/valuetransformers.h"
#include "shell/session.h"

#include <QBrush>
#include <QColor>
#include <QCoreApplication>
#include <QMimeData>

namespace zifora::gui {

// ---------------------------------------------------------------------------------------
// Drag data

QMimeData* encodeDraggedRows(const DraggedRows& rows) {
    QStringList numbers;
    for (size_t row : rows.rows)
        numbers << QString::number(row);
    const QString text = QStringLiteral("%1\n%2\n%3")
                             .arg(QCoreApplication::applicationPid())
                             .arg(QString::fromStdString(rows.list), numbers.join(','));
    auto* data = new QMimeData;
    data->setData(QString::fromLatin1(kRowsMimeType), text.toUtf8());
    return data;
}

std::optional<DraggedRows> decodeDraggedRows(const QMimeData* data) {
    if (!data || !data->hasFormat(QString::fromLatin1(kRowsMimeType))) return std::nullopt;
    const QStringList parts =
        QString::fromUtf8(data->data(QString::fromLatin1(kRowsMimeType))).split('\n');
    // Row indexes mean nothing to another running program.
    if (parts.size() != 3 || parts[0] != QString::number(QCoreApplication::applicationPid()))
        return std::nullopt;
    DraggedRows rows{parts[1].toStdString(), {}};
    for (const QString& number : parts[2].split(',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const qulonglong row = number.toULongLong(&ok);
        if (!ok) return std::nullopt;
        rows.rows.push_back(static_cast<size_t>(row));
    }
    if (rows.list.empty() || rows.rows.empty()) return std::nullopt;
    return rows;
}

// ---------------------------------------------------------------------------------------
// The model

RecordListModel::RecordListModel(shell::ListController& controller, std::vector<Column> columns,
                                 QObject* parent)
    : QAbstractTableModel(parent), m_controller(controller), m_columns(std::move(columns)),
      m_shownList(controller.content()), m_shownCount(controller.count()) {}

int RecordListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_controller.arranged().size());
}

int RecordListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant RecordListModel::data(const QModelIndex& index, int role) const {
    const auto& rows = m_controller.arranged();
    if (!index.isValid() || index.row() >= static_cast<int>(rows.size()) ||
        index.column() >= static_cast<int>(m_columns.size()))
        return {};
    return m_columns[static_cast<size_t>(index.column())].data(
        *rows[static_cast<size_t>(index.row())], role);
}

QVariant RecordListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 ||
        section >= static_cast<int>(m_columns.size()))
        return {};
    const Column& column = m_columns[static_cast<size_t>(section)];
    switch (role) {
    case Qt::DisplayRole:
        return column.title;
    case Qt::DecorationRole:
        return column.headerIcon.isNull() ? QVariant() : QVariant(column.headerIcon);
    case Qt::ToolTipRole:
        return column.headerToolTip.isEmpty() ? column.title : column.headerToolTip;
    default:
        return {};
    }
}

Qt::ItemFlags RecordListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return m_app ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    if (m_app) flags |= Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    return flags;
}

void RecordListModel::enableRowDrags(shell::Session& app, std::string listName,
                                     std::set<std::string> acceptedFrom,
                                     std::function<void()> afterDrop) {
    m_app = &app;
    m_listName = std::move(listName);
    m_acceptedFrom = std::move(acceptedFrom);
    m_afterDrop = std::move(afterDrop);
}

QStringList RecordListModel::mimeTypes() const {
    return {QString::fromLatin1(kRowsMimeType)};
}

QMimeData* RecordListModel::mimeData(const QModelIndexList& indexes) const {
    if (!m_app) return nullptr;
    std::set<size_t> rows;
    for (const QModelIndex& index : indexes)
        if (index.isValid()) rows.insert(static_cast<size_t>(index.row()));
    if (rows.empty()) return nullptr;
    return encodeDraggedRows({m_listName, {rows.begin(), rows.end()}});
}

Qt::DropActions RecordListModel::supportedDragActions() const {
    return m_app ? Qt::MoveAction | Qt::CopyAction : Qt::IgnoreAction;
}

Qt::DropActions RecordListModel::supportedDropActions() const {
    return supportedDragActions();
}

bool RecordListModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                      const QModelIndex&) const {
    if (!m_app || (action != Qt::MoveAction && action != Qt::CopyAction)) return false;
    auto rows = decodeDraggedRows(data);
    return rows && m_acceptedFrom.contains(rows->list);
}

// A drop on a row names that row; a drop between rows names the row below; a drop below the
// last row names none. The program decides what each list makes of it.
bool RecordListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row,
                                   int column, const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent)) return false;
    const DraggedRows rows = *decodeDraggedRows(data);
    shell::DragRequest request;
    request.list = rows.list;
    request.rows = rows.rows;
    request.targetList = m_listName;
    if (parent.isValid())
        request.targetRow = static_cast<size_t>(parent.row());
    else if (row >= 0)
        request.targetRow = static_cast<size_t>(row);
    request.option = action == Qt::CopyAction;
    const bool taken = m_app->drag(request);
    if (m_afterDrop) m_afterDrop();
    return taken;
}

void RecordListModel::reload() {
    beginResetModel();
    m_shownList = m_controller.content();
    m_shownCount = m_controller.count();
    endResetModel();
}

void RecordListModel::follow() {
    if (m_controller.content() != m_shownList || m_controller.count() != m_shownCount) {
        reload();
        return;
    }
    const int rows = rowCount();
    if (rows > 0) emit dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
}

// ---------------------------------------------------------------------------------------
// Columns

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

QColor qcolor(const posting::Colour& c) {
    return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue));
}

/// The row icon under the record's "image" key.
Column pictureColumn(const QString& title) {
    auto cache = std::make_shared<PictureCache>();
    return {title, [cache](const core::Record& r, int role) -> QVariant {
                if (role != Qt::DecorationRole) return {};
                const QIcon& icon = cache->icon(r.getText("image"));
                return icon.isNull() ? QVariant() : QVariant(icon);
            }};
}

/// A text key, in the open-item colour of the row.
Column itemTextColumn(const QString& title, const char* key) {
    return {title, [key](const core::Record& r, int role) -> QVariant {
                if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
                    QString text = qs(r.getText(key));
                    return text.isEmpty() && role == Qt::ToolTipRole ? QVariant() : QVariant(text);
                }
                if (role == Qt::ForegroundRole) {
                    if (!r.getBool("unpaidBool")) return {};
                    return QBrush(qcolor(posting::openItemColour(r.get("unpaidBool"))));
                }
                return {};
            }};
}

Column amountColumn(const QString& title, const char* key) {
    auto formats = std::make_shared<posting::AmountFormats>();
    return {title, [key, formats](const core::Record& r, int role) -> QVariant {
                switch (role) {
                case Qt::TextAlignmentRole:
                    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
                case Qt::DisplayRole:
                    return qs(formats->byTotalRule(r.getFloat(key)));
                case Qt::ForegroundRole:
                    return QBrush(qcolor(posting::amountColour(r.get(key))));
                default:
                    return {};
                }
            }};
}

/// A one-column list of a text key with a fixed row icon.
std::vector<Column> namedList(const QString& title, const char* key, std::string_view picture,
                              const QString& untitled) {
    QIcon icon = pictureIcon(qs(std::string(picture)));
    return {{title, [key, icon, untitled](const core::Record& r, int role) -> QVariant {
                 switch (role) {
                 case Qt::DisplayRole: {
                     QString text = qs(r.getText(key));
                     return text.isEmpty() ? untitled : text;
                 }
                 case Qt::DecorationRole:
                     return icon;
                 case Qt::ToolTipRole: {
                     QString comment = qs(r.getText("comment"));
                     return comment.isEmpty() ? QVariant() : QVariant(comment);
                 }
                 default:
                     return {};
                 }
             }}};
}

} // namespace

std::vector<Column> itemColumns() {
    std::vector<Column> columns(kItemColumnCount);
    columns[kItemPicture] = pictureColumn(QString());
    columns[kItemPicture].headerToolTip = QStringLiteral("Art des Postens");
    auto dates = std::make_shared<posting::DateFormatter>(posting::DateStyle::Medium);
    columns[kItemDate] = {QStringLiteral("Datum"),
                          [dates](const core::Record& r, int role) -> QVariant {
                              if (role != Qt::DisplayRole) return {};
                              return qs(dates->format(r.get("date").toDate()));
                          }};
    columns[kItemTitle] = itemTextColumn(QStringLiteral("Bezeichnung"), "title");
    columns[kItemGroup] = itemTextColumn(QStringLiteral("Kategorie"), "group");
    columns[kItemAccount] = itemTextColumn(QStringLiteral("Konto"), "account");
    columns[kItemGross] = amountColumn(QStringLiteral("Brutto"), "finalAmount");
    columns[kItemNet] = amountColumn(QStringLiteral("Netto"), "finalAmountWithout");
    columns[kItemRate] = {QStringLiteral("Satz"), [](const core::Record& r, int role) -> QVariant {
                              if (role == Qt::TextAlignmentRole)
                                  return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
                              if (role != Qt::DisplayRole || !r.getBool("taxBool")) return {};
                              return qs(posting::floatToPercentString(r.get("taxPerecent")));
                          }};
    columns[kItemTaxMark] = {QStringLiteral("USt"),
                             [](const core::Record& r, int role) -> QVariant {
                                 if (role == Qt::TextAlignmentRole) return Qt::AlignCenter;
                                 if (role != Qt::DisplayRole) return {};
                                 return qs(std::string(posting::itemTaxMark(r.get("taxBool"))));
                             }};
    columns[kItemTaxMark].headerToolTip = QStringLiteral("Posten mit Umsatzsteuer");
    auto clip = std::make_shared<PictureCache>();
    columns[kItemAttachment] = {QString(), [clip](const core::Record& r, int role) -> QVariant {
                                    if (role == Qt::ToolTipRole && r.getBool("fileBool"))
                                        return qs(r.getText("fileTitle"));
                                    if (role != Qt::DecorationRole) return {};
                                    auto picture = posting::attachmentImage(r.get("filePath"));
                                    if (!picture) return {};
                                    return clip->icon(std::string(*picture));
                                }};
    columns[kItemAttachment].headerIcon = pictureIcon(QStringLiteral("attachment"));
    columns[kItemAttachment].headerToolTip = QStringLiteral("Beleg");
    return columns;
}

std::vector<Column> yearColumns() {
    return namedList(QStringLiteral("Jahr"), "dateValue", posting::yearImage(),
                     QStringLiteral("(ohne Jahr)"));
}

std::vector<Column> periodColumns() {
    return namedList(QStringLiteral("Abrechnung"), "title", posting::tabImage(),
                     QStringLiteral("(ohne Titel)"));
}

std::vector<Column> clientColumns() {
    std::vector<Column> columns =
        namedList(QStringLiteral("Benutzer"), "company", "client", QStringLiteral("(ohne Namen)"));
    auto cache = std::make_shared<PictureCache>();
    auto text = columns.front().data;
    columns.front().data = [cache, text](const core::Record& r, int role) -> QVariant {
        if (role != Qt::DecorationRole) return text(r, role);
        const QIcon& icon = cache->icon(r.getText("image"));
        return icon.isNull() ? QVariant() : QVariant(icon);
    };
    return columns;
}

} // namespace zifora::gui
