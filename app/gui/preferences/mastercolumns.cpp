#include "mastercolumns.h"

#include "settingcontrols.h"

#include "core/settings.h"
#include "posting/amountentry.h"
#include "shell/selection.h"

namespace zifora::gui {

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

EditableColumn textColumn(const QString& title, const char* key) {
    return {title,
            [key](const core::Record& r) { return qs(r.getText(key)); },
            [key](core::Record& r, const QString& text) {
                r.set(key, core::Value::string(text.toStdString()));
                return true;
            },
            {}};
}

const QStringList& kindChoices() {
    static const QStringList choices{QString(), QStringLiteral("Ausgabe"),
                                     QStringLiteral("Einnahme")};
    return choices;
}

// The label of an account in the template's pop-up: number and title.
QString accountLabel(const std::string& number, const std::string& title) {
    if (number.empty()) return qs(title);
    if (title.empty()) return qs(number);
    return qs(number) + QStringLiteral(" – ") + qs(title);
}

EditableColumn templateKindColumn() {
    return {QStringLiteral("Art"),
            [](const core::Record& r) {
                int kind = r.getInt("kind");
                return kind >= 0 && kind < kindChoices().size() ? kindChoices()[kind] : QString();
            },
            [](core::Record& r, const QString& text) {
                int kind = static_cast<int>(kindChoices().indexOf(text));
                if (kind < 0) return false;
                r.set("kind", core::Value::intValue(kind));
                return true;
            },
            [](const core::Record&) { return kindChoices(); }};
}

EditableColumn templateGroupColumn(const shell::Selection& selection) {
    EditableColumn c = textColumn(QStringLiteral("Kategorie"), "group");
    c.choices = [&selection](const core::Record& r) {
        QStringList titles{QString()};
        for (const core::Record* group : selection.groups.arranged())
            titles << qs(group->getText("title"));
        // A category that has left the list since stays choosable for this template.
        QString own = qs(r.getText("group"));
        if (!titles.contains(own)) titles << own;
        titles.removeDuplicates();
        return titles;
    };
    return c;
}

EditableColumn templateAccountColumn(const shell::Selection& selection) {
    return {QStringLiteral("Konto"),
            [](const core::Record& r) {
                return accountLabel(r.getText("accountNumber"), r.getText("account"));
            },
            [&selection](core::Record& r, const QString& label) {
                if (label.isEmpty()) {
                    r.set("account", core::Value::string(""));
                    r.set("accountNumber", core::Value::string(""));
                    return true;
                }
                for (const core::Record* account : selection.accounts.arranged()) {
                    if (accountLabel(account->getText("number"), account->getText("title")) !=
                        label)
                        continue;
                    r.set("account", account->get("title"));
                    r.set("accountNumber", account->get("number"));
                    return true;
                }
                // The template's own account, no longer in the chart: left as it is.
                return label == accountLabel(r.getText("accountNumber"), r.getText("account"));
            },
            [&selection](const core::Record& r) {
                QStringList labels{QString()};
                for (const core::Record* account : selection.accounts.arranged())
                    labels << accountLabel(account->getText("number"), account->getText("title"));
                QString own = accountLabel(r.getText("accountNumber"), r.getText("account"));
                if (!labels.contains(own)) labels << own;
                return labels;
            }};
}

EditableColumn templateAmountColumn() {
    return {QStringLiteral("Betrag"),
            [](const core::Record& r) { return qs(posting::sumFieldTextFor(r.get("amount"))); },
            [](core::Record& r, const QString& text) {
                if (posting::isBlankText(text.toStdString())) {
                    r.set("amount", core::Value::string(""));
                    return true;
                }
                auto sum = posting::acceptedSum(text.toStdString());
                if (!sum) return false;
                r.set("amount", core::Value::string(posting::storedAmountText(*sum)));
                return true;
            },
            {},
            Qt::AlignRight | Qt::AlignVCenter};
}

EditableColumn templateTaxColumn(const core::Settings& settings) {
    return {QStringLiteral("Steuer"),
            [&settings](const core::Record& r) {
                if (!r.getBool("taxBool")) return taxChoices(settings).front();
                int tag = r.getInt("taxTag");
                if (tag < 1 || tag > 5) return QStringLiteral("Satz fehlt");
                return taxChoices(settings)[tag];
            },
            [&settings](core::Record& r, const QString& label) {
                int tag = static_cast<int>(taxChoices(settings).indexOf(label));
                if (tag < 0) return false;
                r.set("taxBool", core::Value::boolean(tag > 0));
                r.set("taxTag", core::Value::intValue(tag));
                return true;
            },
            [&settings](const core::Record&) { return taxChoices(settings); }};
}

} // namespace

QStringList taxChoices(const core::Settings& settings) {
    auto rate = [&settings](const char* key, const char* titleKey, const QString& fallback) {
        QString title = titleKey ? qs(settings.getString(titleKey)) : QString();
        if (title.isEmpty()) title = fallback;
        QString value = rateText(settings.get(key));
        return value.isEmpty() ? title : QStringLiteral("%1 (%2 %)").arg(title, value);
    };
    return {QStringLiteral("ohne Steuer"),
            rate("prefs1Rate", "prefs1RateTitle", QStringLiteral("1. Steuersatz")),
            rate("prefs2Rate", "prefs2RateTitle", QStringLiteral("2. Steuersatz")),
            rate("prefs3Rate", nullptr, QStringLiteral("3. Steuersatz")),
            QStringLiteral("steuerfreier Umsatz"),
            QStringLiteral("nicht steuerbarer Umsatz")};
}

std::vector<EditableColumn> groupColumns() {
    return {textColumn(QStringLiteral("Kategorie"), "title")};
}

std::vector<EditableColumn> accountColumns() {
    return {textColumn(QStringLiteral("Nummer"), "number"),
            textColumn(QStringLiteral("Bezeichnung"), "title")};
}

std::vector<EditableColumn> clientEditColumns() {
    EditableColumn company = textColumn(QStringLiteral("Benutzer"), "company");
    company.write = nullptr;
    return {company};
}

std::vector<EditableColumn> templateColumns(const shell::Selection& selection,
                                            const core::Settings& settings) {
    return {textColumn(QStringLiteral("Bezeichnung"), "title"),
            templateKindColumn(),
            templateGroupColumn(selection),
            templateAccountColumn(selection),
            templateAmountColumn(),
            templateTaxColumn(settings)};
}

} // namespace zifora::gui
