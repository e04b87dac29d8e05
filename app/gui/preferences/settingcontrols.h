#pragma once
// Controls of the preferences tied to keys of the settings store: each writes its key the
// moment the user changes it, and `reload()` shows what the store holds now.

#include "core/settings.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;

class QGridLayout;

namespace zifora::gui {

class SettingControls {
  public:
    explicit SettingControls(core::Settings& settings) : m_settings(settings) {}

    /// A check box writing a bool. With `inverted` the box shows and writes the opposite
    /// of the stored value (for keys whose sense is the reverse of their name).
    QCheckBox* checkBox(const char* key, const QString& label, bool inverted = false);
    /// A pop-up writing the index of the chosen entry as an integer.
    QComboBox* comboBox(const char* key, const QStringList& labels);
    /// A text field writing its text.
    QLineEdit* textField(const char* key);
    /// A field for a rate in percent, typed in the locale's notation ("16,5"), stored as a
    /// float. An empty field removes the key; a text that is no number stores nothing and
    /// marks the field.
    QLineEdit* rateField(const char* key);

    /// Every control shows the stored value again (a field being typed in is left alone).
    void reload();
    /// Adds a step of its own to `reload()`.
    void onReload(std::function<void()> loader) { m_loaders.push_back(std::move(loader)); }

  private:
    core::Settings& m_settings;
    std::vector<std::function<void()>> m_loaders;
};

/// A rate as its field shows it: the shortest text of the float with the locale's decimal
/// sign ("16,5", "19"); "" for no value.
QString rateText(const core::Value& rate);

/// The headings and the three rows of the tax rates (title and rate of the first two, the
/// rate of the third), from row 0 of `grid`: the preferences and the set-up assistant.
void addTaxRateRows(QGridLayout& grid, SettingControls& controls);

/// Marks a field whose text was not taken, or clears the mark.
void markRefused(QLineEdit* field, bool refused);

} // namespace zifora::gui
