#include "forms/segmentedchoice.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace zifora::gui {

SegmentedChoice::SegmentedChoice(const std::vector<Segment>& segments, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const Segment& s : segments) {
        auto* button = new QToolButton(this);
        button->setText(s.label);
        button->setObjectName(s.objectName);
        button->setCheckable(true);
        button->setFocusPolicy(Qt::StrongFocus);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        button->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
        button->setMinimumHeight(26);
        layout->addWidget(button);
        m_buttons.push_back(button);
        m_tags.push_back(s.tag);
        const int tag = s.tag;
        connect(button, &QToolButton::clicked, this, [this, tag] {
            // The program decides what is chosen; until it says so, the click shows.
            setChosen(tag);
            emit picked(tag);
        });
    }
    layout->addStretch(1);
    // Joined buttons; the chosen one in the colour of a selection, the keyboard's one framed.
    setStyleSheet(QStringLiteral(
        "QToolButton { border: 1px solid palette(mid); margin-right: -1px; padding: 3px 10px;"
        " background: palette(button); }"
        "QToolButton:checked { background: palette(highlight); color: palette(highlighted-text); }"
        "QToolButton:disabled { color: palette(mid); }"
        "QToolButton:focus { border: 2px solid palette(highlight); padding: 2px 9px; }"));
}

void SegmentedChoice::setChosen(int tag) {
    m_chosen = 0;
    for (size_t i = 0; i < m_buttons.size(); ++i) {
        const bool on = m_tags[i] == tag;
        if (on) m_chosen = tag;
        m_buttons[i]->setChecked(on);
    }
}

void SegmentedChoice::setLabel(int tag, const QString& label, const QString& toolTip) {
    if (QToolButton* button = segment(tag)) {
        button->setText(label);
        button->setToolTip(toolTip);
    }
}

QString SegmentedChoice::label(int tag) const {
    QToolButton* button = segment(tag);
    return button ? button->text() : QString();
}

QToolButton* SegmentedChoice::segment(int tag) const {
    for (size_t i = 0; i < m_buttons.size(); ++i)
        if (m_tags[i] == tag) return m_buttons[i];
    return nullptr;
}

} // namespace zifora::gui
