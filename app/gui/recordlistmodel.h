#pragma once
// Table models that show a list controller's records without copying them: each reads the
// controller's arranged order on demand, so a period of 100,000 postings opens at once.
// Rows can be dragged within a list and onto other lists; the drop is the program's own row
// drag (`App::drag`), told the row indexes and whether the copy modifier was held.

#include "icons.h"
#include "shell/listcontroller.h"

#include <QAbstractTableModel>
#include <QIcon>

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QMimeData;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

/// One column: its heading and how a record's cell reads.
struct Column {
    QString title;
    std::function<QVariant(const core::Record&, int role)> data;
    QIcon headerIcon = {};
    QString headerToolTip = {};
};

/// The mime type of a drag of rows between the program's lists.
inline constexpr const char* kRowsMimeType = "application/x-zifora-rows";

/// What a drag of rows carries: the list the rows come from and their arranged indexes.
struct DraggedRows {
    std::string list;
    std::vector<size_t> rows;
};

/// The drag data of rows of this running program.
[[nodiscard]] QMimeData* encodeDraggedRows(const DraggedRows& rows);
/// The rows of a drag; nothing for data of another kind or of another running program.
[[nodiscard]] std::optional<DraggedRows> decodeDraggedRows(const QMimeData* data);

class RecordListModel final : public QAbstractTableModel {
    Q_OBJECT
  public:
    RecordListModel(shell::ListController& controller, std::vector<Column> columns,
                    QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Lets rows be dragged out of this list (as `listName`: "items", "periods", "years",
    /// "clients", "accounts", "groups", "templates") and rows of the lists in `acceptedFrom`
    /// be dropped onto it. `afterDrop` runs once the program has taken a drop.
    void enableRowDrags(shell::Session& app, std::string listName,
                        std::set<std::string> acceptedFrom, std::function<void()> afterDrop);
    [[nodiscard]] const std::string& listName() const { return m_listName; }

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    /// Shows the list anew. The controller arranges its records itself whenever the
    /// selection chain is brought up to date.
    void reload();
    /// Shows the list anew only when the controller now shows another list or another
    /// number of records than at the last reload; otherwise repaints the values.
    void follow();
    [[nodiscard]] shell::ListController& controller() { return m_controller; }

  private:
    shell::ListController& m_controller;
    std::vector<Column> m_columns;
    const core::RecordList* m_shownList = nullptr;
    size_t m_shownCount = 0;
    shell::Session* m_app = nullptr;
    std::string m_listName;
    std::set<std::string> m_acceptedFrom;
    std::function<void()> m_afterDrop;
};

/// The columns of the lists of the main window and the preferences.
std::vector<Column> itemColumns();
std::vector<Column> yearColumns();
std::vector<Column> periodColumns();
std::vector<Column> clientColumns();

/// Item columns by position, for views that size or hide them.
enum ItemColumn {
    kItemPicture,
    kItemDate,
    kItemTitle,
    kItemGroup,
    kItemAccount,
    kItemGross,
    kItemNet,
    kItemRate,
    kItemTaxMark,
    kItemAttachment,
    kItemColumnCount
};

} // namespace zifora::gui
