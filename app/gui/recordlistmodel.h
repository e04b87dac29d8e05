#pragma once
// Table models that show a list controller's records without copying them: each reads the
// controller's arranged order on demand, so a period of 100,000 postings opens at once.

#include "shell/listcontroller.h"

#include <QAbstractTableModel>

#include <functional>
#include <vector>

namespace zifora::gui {

/// One column: its heading and how a record's cell reads.
struct Column {
    QString title;
    std::function<QVariant(const core::Record&, int role)> data;
};

class RecordListModel final : public QAbstractTableModel {
    Q_OBJECT
  public:
    RecordListModel(shell::ListController& controller, std::vector<Column> columns,
                    QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The controller's content or order changed.
    void reload();
    [[nodiscard]] shell::ListController& controller() { return m_controller; }

  private:
    shell::ListController& m_controller;
    std::vector<Column> m_columns;
};

/// The columns of the item list.
std::vector<Column> itemColumns();

} // namespace zifora::gui
