#pragma once
// A list of records as a table with its add and delete buttons: the selection of the table
// is the selection of the list controller, edits go into the records, dragging reorders.

#include "editablelistmodel.h"
#include "panecontext.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;

namespace zifora::gui {

class ListTable final : public QWidget {
    Q_OBJECT
  public:
    ListTable(PaneContext& context, shell::ListController& list, std::string dragName,
              std::vector<EditableColumn> columns, QWidget* parent = nullptr);

    /// Adds the "+" and "−" buttons running the two commands.
    void addButtons(const std::string& addCommand, const QString& addTip,
                    const std::string& removeCommand, const QString& removeTip);
    /// A button of the row under the table running a command.
    QPushButton* addCommandButton(const QString& label, const std::string& command, int tag = 0);
    /// Shows only the rows with `text` in one of their columns; dragging is off meanwhile.
    void setFilterText(const QString& text);

    /// Shows the records and the selection as they are now; leaves a table being edited alone.
    void reload();
    /// Opens the cell of the selected row in `column` for typing, its text selected.
    void editSelected(int column);

    [[nodiscard]] QTableView* view() const { return m_view; }
    [[nodiscard]] EditableListModel* model() const { return m_model; }
    [[nodiscard]] QHBoxLayout* buttonRow() const { return m_buttons; }
    [[nodiscard]] int visibleRows() const;
    /// True while a cell is open for typing.
    [[nodiscard]] bool isEditing() const { return m_isEditing(); }

  signals:
    /// The user selected another row.
    void selectionChangedByUser();

  private:
    void showSelection();

    PaneContext& m_context;
    shell::ListController& m_list;
    EditableListModel* m_model = nullptr;
    QSortFilterProxyModel* m_proxy = nullptr;
    QTableView* m_view = nullptr;
    QHBoxLayout* m_buttons = nullptr;
    std::function<bool()> m_isEditing;
    bool m_reloading = false;
};

} // namespace zifora::gui
