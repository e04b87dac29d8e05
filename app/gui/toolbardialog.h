#pragma once
// The dialog in which the user arranges the toolbar: the offered items on the left, the
// toolbar's items in their order on the right. Items stand at most once on the toolbar;
// separators and spaces as often as wanted.

#include <QDialog>

#include <string>
#include <vector>

class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace zifora::gui {

class ToolbarDialog final : public QDialog {
    Q_OBJECT
  public:
    ToolbarDialog(const std::vector<std::string>& order, QWidget* parent = nullptr);

    /// The arrangement as it stands in the dialog.
    [[nodiscard]] std::vector<std::string> order() const;

    /// The offered entries that can still be added, in the order offered.
    [[nodiscard]] std::vector<std::string> available() const;
    /// Adds the offered entry of that identifier behind the current row of the toolbar list
    /// (at the end when none is current). False when it is not offered or already placed.
    bool addEntry(const std::string& identifier);
    /// Takes the toolbar entry at `row` off the toolbar.
    void removeEntry(int row);
    /// Moves the toolbar entry at `row` by `step` places (-1 up, +1 down).
    void moveEntry(int row, int step);
    /// Puts back the order of a fresh toolbar.
    void restoreDefault();

  private:
    void fillAvailable();
    void updateButtons();
    QListWidgetItem* makeEntry(const std::string& identifier) const;

    QListWidget* m_available = nullptr;
    QListWidget* m_placed = nullptr;
    QPushButton* m_add = nullptr;
    QPushButton* m_remove = nullptr;
    QPushButton* m_up = nullptr;
    QPushButton* m_down = nullptr;
};

} // namespace zifora::gui
