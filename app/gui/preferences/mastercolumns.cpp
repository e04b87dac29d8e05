#include "mastercolumns.h"

#include "settingcontrols.h"

#include "bookkeeping/taxrates.h"
#include "bookkeeping/templatecontroller.h"
#include "core/settings.h"
#include "posting/amountentry.h"
#include "shell/session.h"

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

// The template's account as its chooser names it.
QString accountChoice(const core::Record& r) {
    return qs(bookkeeping::accountChoiceTitle(r.getText("accountNumber"), r.getText("account")));
}

/// Writes a cell through the program's template table: the template becomes the selected
/// one, the column's field takes the value, and the program says whether it was taken.
std::function<bool(core::Record&, const QString&)>
tableWrite(shell::Session& session, const char* column,
           std::function<core::Value(const QString&)> value) {
    return [&session, column, value](core::Record& r, const QString& text) {
        const core::Value typed = value(text);
        if (typed.isAbsent()) return false;
        session.selection().templates.select(&r);
        session.fields().set(std::string(bookkeeping::kTemplateTablePrefix) + column, typed);
        return !session.fields().get(bookkeeping::kTemplateTableRefused).toBool();
    };
}

core::Value textValue(const QString& text) {
    return core::Value::string(text.toStdString());
}

// The index of a choice, absent when the text is none of them.
std::function<core::Value(const QString&)> choiceIndex(std::function<QStringList()> choices) {
    return [choices](const QString& text) {
        const auto index = choices().indexOf(text);
        return index < 0 ? core::Value{} : core::Value::intValue(static_cast<int>(index));
    };
}

EditableColumn templateTextColumn(shell::Session& session, const QString& title, const char* key) {
    EditableColumn c = textColumn(title, key);
    c.write = tableWrite(session, key, textValue);
    return c;
}

EditableColumn templateKindColumn(shell::Session& session) {
    return {QStringLiteral("Art"),
            [](const core::Record& r) {
                int kind = r.getInt("kind");
                return kind >= 0 && kind < kindChoices().size() ? kindChoices()[kind] : QString();
            },
            tableWrite(session, "kind", choiceIndex([] { return kindChoices(); })),
            [](const core::Record&) { return kindChoices(); }};
}

EditableColumn templateGroupColumn(shell::Session& session) {
    EditableColumn c = templateTextColumn(session, QStringLiteral("Kategorie"), "group");
    const shell::Selection& selection = session.selection();
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

EditableColumn templateAccountColumn(shell::Session& session) {
    const shell::Selection& selection = session.selection();
    return {QStringLiteral("Konto"), [](const core::Record& r) { return accountChoice(r); },
            tableWrite(session, "account", textValue),
            [&selection](const core::Record& r) {
                QStringList labels{QString()};
                for (const core::Record* account : selection.accounts.arranged())
                    labels << qs(bookkeeping::accountChoiceTitle(account->getText("number"),
                                                                 account->getText("title")));
                QString own = accountChoice(r);
                if (!labels.contains(own)) labels << own;
                return labels;
            }};
}

EditableColumn templateAmountColumn(shell::Session& session) {
    return {QStringLiteral("Betrag"),
            [](const core::Record& r) { return qs(posting::sumFieldTextFor(r.get("amount"))); },
            tableWrite(session, "amount", textValue),
            {},
            Qt::AlignRight | Qt::AlignVCenter};
}

EditableColumn templateTaxColumn(shell::Session& session) {
    const core::Settings& settings = session.settings();
    return {QStringLiteral("Steuer"),
            [&settings](const core::Record& r) {
                if (!r.getBool("taxBool")) return taxChoices(settings).front();
                int tag = r.getInt("taxTag");
                if (tag < 1 || tag > 5) return QStringLiteral("Satz fehlt");
                return taxChoices(settings)[tag];
            },
            tableWrite(session, "tax", choiceIndex([&settings] { return taxChoices(settings); })),
            [&settings](const core::Record&) { return taxChoices(settings); }};
}

} // namespace

QStringList taxChoices(const core::Settings& settings) {
    QStringList choices;
    for (const std::string& choice : bookkeeping::templateTaxChoices(settings))
        choices << qs(choice);
    return choices;
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

std::vector<EditableColumn> templateColumns(shell::Session& session) {
    return {templateTextColumn(session, QStringLiteral("Bezeichnung"), "title"),
            templateKindColumn(session),
            templateGroupColumn(session),
            templateAccountColumn(session),
            templateAmountColumn(session),
            templateTaxColumn(session)};
}

} // namespace zifora::gui
