#pragma once
// The main window: the client, its years, the periods of the selected year and the items
// of the selected period, with the toolbar and the menu bar.

#include "recordlistmodel.h"

#include <QMainWindow>

class QAbstractItemView;
class QLabel;
class QListView;
class QTableView;

namespace zifora::shell {
class App;
}

namespace zifora::gui {

class MainWindow final : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(shell::App& app, QWidget* parent = nullptr);

    /// Brings every list and label up to date with the records and the selection.
    void refresh();
    [[nodiscard]] QTableView* itemView() const { return m_items; }

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void buildToolbar();
    void connectSelection(QAbstractItemView* view, shell::ListController& controller);
    void showSelection(QAbstractItemView* view, shell::ListController& controller);
    void runCommand(const std::string& name);

    shell::App& m_app;
    RecordListModel* m_yearModel = nullptr;
    RecordListModel* m_periodModel = nullptr;
    RecordListModel* m_itemModel = nullptr;
    QListView* m_years = nullptr;
    QListView* m_periods = nullptr;
    QTableView* m_items = nullptr;
    QLabel* m_client = nullptr;
    QLabel* m_sum = nullptr;
    QLabel* m_hint = nullptr;
    bool m_refreshing = false;
};

} // namespace zifora::gui
