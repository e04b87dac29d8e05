#include "recordlistmodel.h"

#include "posting/numberformat.h"
#include "posting/dateformat.h"

#include <QBrush>
#include <QColor>

namespace zifora::gui {

RecordListModel::RecordListModel(shell::ListController& controller, std::vector<Column> columns,
                                 QObject* parent)
    : QAbstractTableModel(parent), m_controller(controller), m_columns(std::move(columns)) {}

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
    return m_columns[static_cast<size_t>(index.column())].data(*rows[static_cast<size_t>(index.row())], role);
}

QVariant RecordListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    if (section < 0 || section >= static_cast<int>(m_columns.size())) return {};
    return m_columns[static_cast<size_t>(section)].title;
}

void RecordListModel::reload() {
    beginResetModel();
    m_controller.rearrange();
    endResetModel();
}

namespace {

QString qs(const std::string& s) { return QString::fromStdString(s); }

Column textColumn(const QString& title, const char* key) {
    return {title, [key](const core::Record& r, int role) -> QVariant {
                if (role != Qt::DisplayRole) return {};
                return qs(r.getText(key));
            }};
}

Column amountColumn(const QString& title, const char* key) {
    return {title, [key](const core::Record& r, int role) -> QVariant {
                if (role == Qt::TextAlignmentRole)
                    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
                if (role != Qt::DisplayRole) return {};
                // Formatters are costly to make; the list keeps one for all its cells.
                static const posting::AmountFormats formats;
                return qs(formats.byPaymentRule(r.getFloat(key)));
            }};
}

} // namespace

std::vector<Column> itemColumns() {
    std::vector<Column> columns;
    columns.push_back({QStringLiteral("Datum"), [](const core::Record& r, int role) -> QVariant {
                           if (role != Qt::DisplayRole) return {};
                           static const posting::DateFormatter formatter(posting::DateStyle::Medium);
                           return qs(formatter.format(r.get("date").toDate()));
                       }});
    columns.push_back(textColumn(QStringLiteral("Bezeichnung"), "title"));
    columns.push_back(textColumn(QStringLiteral("Kategorie"), "group"));
    columns.push_back(textColumn(QStringLiteral("Konto"), "account"));
    Column gross = amountColumn(QStringLiteral("Brutto"), "finalAmount");
    auto grossData = gross.data;
    gross.data = [grossData](const core::Record& r, int role) -> QVariant {
        if (role == Qt::ForegroundRole) {
            bool open = r.getBool("unpaidBool");
            float amount = r.getFloat("finalAmount");
            if (open) return QBrush(QColor(0x1f, 0x5f, 0xbf));
            return QBrush(amount < 0 ? QColor(0xa8, 0x1c, 0x1c) : QColor(0x1b, 0x7a, 0x2e));
        }
        return grossData(r, role);
    };
    columns.push_back(gross);
    columns.push_back(amountColumn(QStringLiteral("Netto"), "finalAmountWithout"));
    columns.push_back({QStringLiteral("Satz"), [](const core::Record& r, int role) -> QVariant {
                           if (role == Qt::TextAlignmentRole)
                               return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
                           if (role != Qt::DisplayRole || !r.getBool("taxBool")) return {};
                           return qs(posting::percentStringFromNumber(r.get("taxPerecent")));
                       }});
    columns.push_back({QStringLiteral("Beleg"), [](const core::Record& r, int role) -> QVariant {
                           if (role != Qt::DisplayRole) return {};
                           return r.getBool("fileBool") ? QStringLiteral("📎") : QString();
                       }});
    return columns;
}

} // namespace zifora::gui
