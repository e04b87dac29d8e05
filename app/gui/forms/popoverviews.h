#pragma once
// The views of the item form's shared panel: the date, the split calculator, the searches
// of accounts, categories and templates, the settings of new items, the help and the
// item's own DATEV data. Each reads what it shows when it is opened.

#include <QWidget>

#include <string>
#include <vector>

class QCalendarWidget;
class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace zifora::core {
class Record;
}
namespace zifora::shell {
class ListController;
}

namespace zifora::gui {

class FormBinder;

class PopoverView : public QWidget {
    Q_OBJECT
  public:
    using QWidget::QWidget;
    /// Reads what the view shows, just before it opens.
    virtual void load() {}
    /// Where the keyboard starts.
    [[nodiscard]] virtual QWidget* entryWidget() { return this; }
    /// Return pressed in the panel outside a list: true when the view took it.
    virtual bool confirm() { return false; }
};

/// The item's date ("datePicker") and the button that sets it to today.
class DateView final : public PopoverView {
    Q_OBJECT
  public:
    DateView(FormBinder& binder, QWidget* parent = nullptr);
    void load() override;
    QWidget* entryWidget() override;
    [[nodiscard]] QCalendarWidget* calendar() const { return m_calendar; }

  private:
    void showDate();
    FormBinder& m_binder;
    QCalendarWidget* m_calendar = nullptr;
    bool m_showing = false;
};

/// The split calculator: a share of the sum, or the gross sum of a net sum.
class CalculatorView final : public PopoverView {
    Q_OBJECT
  public:
    CalculatorView(FormBinder& binder, QWidget* parent = nullptr);
    void load() override;
    QWidget* entryWidget() override;
    bool confirm() override;
    [[nodiscard]] QTabWidget* pages() const { return m_pages; }
    [[nodiscard]] QLineEdit* netSum() const { return m_netSum; }
    [[nodiscard]] QLineEdit* customShare() const { return m_customShare; }
    [[nodiscard]] QPushButton* applyButton() const { return m_apply; }

  private:
    void buildSharePage();
    void buildTaxPage();
    void showNetSum();
    void showColours();
    void writeShare();
    FormBinder& m_binder;
    QTabWidget* m_pages = nullptr;
    std::vector<QRadioButton*> m_shares;
    QLineEdit* m_customShare = nullptr;
    QLabel* m_sign = nullptr;
    QLineEdit* m_netSum = nullptr;
    QPushButton* m_apply = nullptr;
};

/// A searchable list of the accounts, categories or templates; choosing a row selects it in
/// its list and runs the command that takes it into the item.
class SearchView final : public PopoverView {
    Q_OBJECT
  public:
    enum class Source { Accounts, Groups, Templates };
    SearchView(FormBinder& binder, Source source, QWidget* parent = nullptr);
    void load() override;
    QWidget* entryWidget() override;
    bool confirm() override;
    [[nodiscard]] QLineEdit* filter() const { return m_filter; }
    [[nodiscard]] QListWidget* list() const { return m_list; }

  signals:
    /// A row was taken into the item.
    void chosen();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    [[nodiscard]] shell::ListController& controller();
    [[nodiscard]] QString labelOf(const core::Record& record) const;
    void applyFilter();
    void choose();
    FormBinder& m_binder;
    Source m_source;
    std::vector<core::Record*> m_records;
    QLineEdit* m_filter = nullptr;
    QListWidget* m_list = nullptr;
};

/// The settings that decide how a new item starts.
class ItemSettingsView final : public PopoverView {
    Q_OBJECT
  public:
    ItemSettingsView(FormBinder& binder, QWidget* parent = nullptr);
    void load() override;
    QWidget* entryWidget() override;

  private:
    FormBinder& m_binder;
    std::vector<std::pair<std::string, QCheckBox*>> m_boxes;
};

class HelpView final : public PopoverView {
    Q_OBJECT
  public:
    HelpView(const QString& text, QWidget* parent = nullptr);
};

/// The item's own DATEV counter-account and booking key, which replace the computed ones in
/// the DATEV export while the box is ticked.
class DatevView final : public PopoverView {
    Q_OBJECT
  public:
    DatevView(FormBinder& binder, QWidget* parent = nullptr);
    void load() override;
    QWidget* entryWidget() override;
    [[nodiscard]] QCheckBox* useOwnData() const { return m_use; }
    [[nodiscard]] QLineEdit* account() const { return m_account; }
    [[nodiscard]] QLineEdit* key() const { return m_key; }

  private:
    FormBinder& m_binder;
    QCheckBox* m_use = nullptr;
    QLineEdit* m_account = nullptr;
    QLineEdit* m_key = nullptr;
};

/// The help text of the item form.
QString itemHelpText();

} // namespace zifora::gui
