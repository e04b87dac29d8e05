#pragma once
// A row of joined buttons of which at most one is chosen, like the segments of a control:
// the income/expense choice and the tax choice of the item form. Each segment carries a
// tag; tag 0 means none chosen. Every segment is a tab stop and answers the space bar.

#include <QWidget>

#include <vector>

class QToolButton;

namespace zifora::gui {

class SegmentedChoice final : public QWidget {
    Q_OBJECT
  public:
    struct Segment {
        QString label;
        int tag;
        QString objectName;
    };
    explicit SegmentedChoice(const std::vector<Segment>& segments, QWidget* parent = nullptr);

    /// Shows the segment of `tag` as chosen (none for an unknown tag); sends nothing.
    void setChosen(int tag);
    [[nodiscard]] int chosen() const { return m_chosen; }
    void setLabel(int tag, const QString& label, const QString& toolTip = {});
    [[nodiscard]] QString label(int tag) const;
    [[nodiscard]] QToolButton* segment(int tag) const;
    [[nodiscard]] QToolButton* firstSegment() const { return m_buttons.front(); }
    [[nodiscard]] QToolButton* lastSegment() const { return m_buttons.back(); }

  signals:
    /// The user picked a segment (also the one already chosen).
    void picked(int tag);

  private:
    std::vector<QToolButton*> m_buttons;
    std::vector<int> m_tags;
    int m_chosen = 0;
};

} // namespace zifora::gui
