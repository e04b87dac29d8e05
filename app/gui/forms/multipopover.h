#pragma once
// The one panel the item form shares between its small views, chosen by the tag of the
// button that opens it: 1 the date, 2 the split calculator, 3 the accounts, 4 the
// categories, 5 the templates, 6 the settings of new items, 7 the help, 47 the DATEV data
// of the item. It floats beside the form; Escape closes it (the calculator through its
// cancel command), and the program closes it by hiding "multiPopover".

#include <QDialog>

#include <functional>
#include <map>

class QLabel;
class QStackedWidget;

namespace zifora::shell {
class Session;
}

namespace zifora::gui {

class FormBinder;
class PopoverView;

class MultiPopover final : public QDialog {
    Q_OBJECT
  public:
    enum Tag {
        DateTag = 1,
        CalculatorTag = 2,
        AccountsTag = 3,
        GroupsTag = 4,
        TemplatesTag = 5,
        ItemSettingsTag = 6,
        HelpTag = 7,
        DatevTag = 47,
    };

    MultiPopover(shell::Session& app, std::function<void()> afterChange, QWidget* form);

    /// Opens the view of `tag` beside `anchor` (or beside the form).
    void showView(int tag, QWidget* anchor = nullptr);
    /// Closes the panel if it shows the view of `tag`; 0 closes it whatever it shows.
    void closeView(int tag = 0);
    /// The tag of the view shown, 0 while the panel is closed.
    [[nodiscard]] int shownTag() const;
    [[nodiscard]] PopoverView* view(int tag) const;

  public slots:
    void reject() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void addView(int tag, const QString& title, PopoverView* view);
    void placeBeside(QWidget* anchor);

    FormBinder* m_binder = nullptr;
    QLabel* m_title = nullptr;
    QStackedWidget* m_stack = nullptr;
    std::map<int, std::pair<QString, PopoverView*>> m_views;
    int m_tag = 0;
};

} // namespace zifora::gui
