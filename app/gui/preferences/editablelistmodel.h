#pragma once
// An editable table over the records of a list controller. Edits go straight into the
// records, as the lists of the preferences edit them in place; rows are reordered by
// dragging them, which the program carries out as a row drag of its own list.

#include "shell/listcontroller.h"

#include <QAbstractTableModel>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

/// One column of an editable list.
struct EditableColumn {
    QString title;
    /// What the cell shows, and the text an editor starts with.
    std::function<QString(const core::Record&)> text;
    /// Writes a typed or chosen text into the record; false when the text is refused and
    /// nothing was written. Without it the column can't be edited.
    std::function<bool(core::Record&, const QString&)> write;
    /// Where the value is chosen from a list: the entries offered for the record.
    std::function<QStringList(const core::Record&)> choices;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
};

class EditableListModel final : public QAbstractTableModel {
    Q_OBJECT
  public:
    /// `dragName` is the name under which the program knows the list's rows in a drag
    /// ("accounts", "groups", "templates", "clients").
    EditableListModel(shell::Session& app, shell::ListController& list, std::string dragName,
                      std::vector<EditableColumn> columns, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    /// The list's content or order changed.
    void reload();
    [[nodiscard]] core::Record* recordAt(int row) const;
    [[nodiscard]] const EditableColumn& column(int index) const;
    [[nodiscard]] shell::ListController& list() { return m_list; }

  signals:
    /// A record was changed through the table.
    void edited(int row);
    /// Rows were dropped and the program has moved them (or refused the drop).
    void dropped();

  private:
    shell::Session& m_app;
    shell::ListController& m_list;
    std::string m_dragName;
    std::vector<EditableColumn> m_columns;
};

} // namespace zifora::gui
