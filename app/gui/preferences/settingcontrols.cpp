#include "settingcontrols.h"

#include "posting/currentlocale.h"
#include "posting/numberformat.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>

#include <charconv>

namespace zifora::gui {

namespace {

QLocale numberLocale() {
    return QLocale(QString::fromStdString(posting::currentLocaleName()));
}

} // namespace

QString rateText(const core::Value& rate) {
    if (rate.isAbsent() || !rate.isNumber()) return {};
    char buffer[64];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, rate.toFloat());
    if (error != std::errc()) return {};
    QString text = QString::fromLatin1(buffer, static_cast<int>(end - buffer));
    return text.replace(QLatin1Char('.'), numberLocale().decimalPoint());
}

void markRefused(QLineEdit* field, bool refused) {
    field->setStyleSheet(refused ? QStringLiteral("QLineEdit { background: #fbe3e3; }")
                                 : QString());
    field->setToolTip(
        refused ? QStringLiteral("Das ist keine Zahl. Gespeichert bleibt der vorige Wert.")
                : QString());
}

QCheckBox* SettingControls::checkBox(const char* key, const QString& label, bool inverted) {
    auto* box = new QCheckBox(label);
    box->setObjectName(QString::fromLatin1(key));
    QObject::connect(box, &QCheckBox::clicked, box, [this, key, inverted](bool checked) {
        m_settings.setBool(key, checked != inverted);
    });
    m_loaders.push_back(
        [this, box, key, inverted] { box->setChecked(m_settings.getBool(key) != inverted); });
    return box;
}

QComboBox* SettingControls::comboBox(const char* key, const QStringList& labels) {
    auto* combo = new QComboBox;
    combo->setObjectName(QString::fromLatin1(key));
    combo->addItems(labels);
    QObject::connect(combo, &QComboBox::activated, combo,
                     [this, key](int index) { m_settings.setInteger(key, index); });
    m_loaders.push_back([this, combo, key] {
        int64_t stored = m_settings.getInteger(key);
        // A value that names no entry shows none, rather than pretending to be one.
        combo->setCurrentIndex(stored >= 0 && stored < combo->count() ? static_cast<int>(stored)
                                                                      : -1);
    });
    return combo;
}

QLineEdit* SettingControls::textField(const char* key) {
    auto* field = new QLineEdit;
    field->setObjectName(QString::fromLatin1(key));
    QObject::connect(field, &QLineEdit::textEdited, field, [this, key](const QString& text) {
        m_settings.setString(key, text.toStdString());
    });
    m_loaders.push_back([this, field, key] {
        QString stored = QString::fromStdString(m_settings.getString(key));
        if (field->text() != stored && !field->hasFocus()) field->setText(stored);
    });
    return field;
}

QLineEdit* SettingControls::rateField(const char* key) {
    auto* field = new QLineEdit;
    field->setObjectName(QString::fromLatin1(key));
    field->setAlignment(Qt::AlignRight);
    field->setMaxLength(12);
    QObject::connect(field, &QLineEdit::textEdited, field, [this, key, field](const QString& text) {
        if (text.trimmed().isEmpty()) {
            m_settings.remove(key);
            markRefused(field, false);
            return;
        }
        auto rate = posting::parseLocalizedAmount(text.toStdString());
        if (rate && *rate < 0) rate.reset(); // a rate is never negative
        markRefused(field, !rate);
        if (rate) m_settings.setFloat(key, *rate);
    });
    auto load = [this, field, key] {
        markRefused(field, false);
        field->setText(rateText(m_settings.get(key)));
    };
    // Leaving the field shows what was stored, in the program's own notation.
    QObject::connect(field, &QLineEdit::editingFinished, field, load);
    m_loaders.push_back([field, load] {
        if (!field->hasFocus()) load();
    });
    return field;
}

void SettingControls::reload() {
    for (const auto& load : m_loaders)
        load();
}

void addTaxRateRows(QGridLayout& grid, SettingControls& controls) {
    grid.addWidget(new QLabel(QStringLiteral("Bezeichnung")), 0, 1);
    grid.addWidget(new QLabel(QStringLiteral("Satz")), 0, 2);
    auto row = [&](int at, const QString& label, const char* titleKey, const char* rateKey) {
        QLineEdit* rate = controls.rateField(rateKey);
        rate->setMaximumWidth(90);
        auto* caption = new QLabel(label);
        grid.addWidget(caption, at, 0);
        if (titleKey) {
            QLineEdit* title = controls.textField(titleKey);
            caption->setBuddy(title);
            grid.addWidget(title, at, 1);
        } else {
            caption->setBuddy(rate);
        }
        grid.addWidget(rate, at, 2);
        grid.addWidget(new QLabel(QStringLiteral("%")), at, 3);
    };
    row(1, QStringLiteral("&1. Steuersatz:"), "prefs1RateTitle", "prefs1Rate");
    row(2, QStringLiteral("&2. Steuersatz:"), "prefs2RateTitle", "prefs2Rate");
    row(3, QStringLiteral("&3. Steuersatz:"), nullptr, "prefs3Rate");
}

} // namespace zifora::gui
