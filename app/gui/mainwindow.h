#pragma once
// The main window: the client, its years, the periods of the selected year and the items
// of the selected period, with the toolbar, the period's sum and the first-steps hint.

#include "recordlistmodel.h"

#include <QMainWindow>

#include <memory>
#include <string>

class QAbstractItemView;
class QLabel;
class QListView;
class QTableView;

namespace zifora::shell {
class Session;
}
namespace zifora::posting {
class AmountFormats;
}

namespace zifora::gui {

class Toolbar;

class MainWindow final : public QMainWindow {
    Q_OBJECT
  public:
    explicit MainWindow(shell::Session& app, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Brings every list and label up to date with the records and the selection, sorting
    /// the lists again (after a command, which may have changed anything).
    void refresh();

    [[nodiscard]] QTableView* itemView() const { return m_items; }
    [[nodiscard]] QListView* periodView() const { return m_periods; }
    [[nodiscard]] QListView* yearView() const { return m_years; }
    [[nodiscard]] Toolbar* toolbar() const { return m_toolbar; }
    [[nodiscard]] RecordListModel* itemModel() const { return m_itemModel; }
    [[nodiscard]] RecordListModel* periodModel() const { return m_periodModel; }
    [[nodiscard]] RecordListModel* yearModel() const { return m_yearModel; }
    /// The period's sum as shown, and the first-steps picture shown ("" for none).
    [[nodiscard]] QLabel* sumLabel() const { return m_sum; }
    [[nodiscard]] const std::string& firstStepsImage() const { return m_firstStepsImage; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildLists();
    QWidget* buildChainPane();
    QWidget* buildItemPane();
    void sizeItemColumns();
    void connectSelection(QAbstractItemView* view, shell::ListController& controller);
    void connectOpenCommand(QAbstractItemView* view, const char* command);
    void showSelection(QAbstractItemView* view, shell::ListController& controller);
    /// Shows the lists and labels as the controllers hold them; `reset` shows every list
    /// anew, else only lists whose content changed (the others are repainted).
    void showLists(bool reset);
    /// Shows what a command or a step of the program changed.
    void followBook();
    void showClient();
    void showSumAndHint();
    void runCommand(const std::string& name);
    /// A form changed a value: the lists show it on the loop's next turn, once.
    void scheduleUpdate();

    shell::Session& m_app;
    std::unique_ptr<posting::AmountFormats> m_formats;
    Toolbar* m_toolbar = nullptr;
    RecordListModel* m_yearModel = nullptr;
    RecordListModel* m_periodModel = nullptr;
    RecordListModel* m_itemModel = nullptr;
    QListView* m_years = nullptr;
    QListView* m_periods = nullptr;
    QTableView* m_items = nullptr;
    QLabel* m_client = nullptr;
    QLabel* m_count = nullptr;
    QLabel* m_sum = nullptr;
    QLabel* m_hintPicture = nullptr;
    QLabel* m_hintText = nullptr;
    std::string m_firstStepsImage;
    bool m_refreshing = false;
    bool m_updateScheduled = false;
};

} // namespace zifora::gui
