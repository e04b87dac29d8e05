#pragma once
// The chart of accounts of the current client in a window of its own, large enough for a
// full chart: search by number or title, edit in place, add, delete, load and export.

#include "panecontext.h"

#include <QWidget>

class QLabel;
class QLineEdit;

namespace zifora::gui {

class ListTable;

class AccountsWindow final : public QWidget {
    Q_OBJECT
  public:
    explicit AccountsWindow(PaneContext& context, QWidget* parent = nullptr);

    void reload();
    void present();
    /// Clears the search and opens the number of the selected account for typing.
    void editSelectedNumber();

    [[nodiscard]] ListTable* table() const { return m_table; }
    [[nodiscard]] QLineEdit* searchField() const { return m_search; }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void showCount();

    PaneContext& m_context;
    ListTable* m_table = nullptr;
    QLineEdit* m_search = nullptr;
    QLabel* m_client = nullptr;
    QLabel* m_count = nullptr;
};

} // namespace zifora::gui
