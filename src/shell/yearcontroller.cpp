#include "shell/yearcontroller.h"

#include "core/record.h"
#include "core/utf8.h"
#include "posting/choosertitles.h"
#include "shell/app.h"

#include <algorithm>

namespace zifora::shell {

namespace {

using core::Record;
using core::RecordClass;
using core::Value;

} // namespace

YearController::YearController(App& app)
    : m_app(app),
      m_year{"yearWindow",
             "yearWindow.help",
             "yearPopUp",
             "yearCommentField",
             "dateValue",
             "prefsSelectedYearTabTag",
             "prefsAlwaysShowYearHelpDawer",
             "Es ist kein Jahr ausgewählt.",
             "Jahr löschen",
             "Diese Aktion kann nicht rückgängig gemacht werden. Möchtest du wirklich das "
             "ausgewählte Jahr löschen?"},
      m_list{"listWindow",
             "listWindow.help",
             "listPopUp",
             "listCommentField",
             "title",
             "prefsSelectedTabTabTag",
             "prefsAlwaysShowTabHelpDawer",
             "Es ist kein Zeitraum ausgewählt.",
             "Abrechnung löschen",
             "Diese Aktion kann nicht rückgängig gemacht werden. Möchtest du wirklich die "
             "ausgewählte Abrechnung löschen?"} {
    registerCommands();
    m_app.fields().observe([this](const std::string& name, const Value&) { fieldChanged(name); });
}

void YearController::registerCommands() {
    CommandRegistry& c = m_app.commands();
    c.add("addYear:", [this](const CommandSender&) { addYear(); });
    c.add("closeYear:", [this](const CommandSender&) { closeYear(); });
    c.add("editYear:", [this](const CommandSender&) { editYear(); });
    c.add("deleteYear:", [this](const CommandSender&) { deleteYear(); });
    c.add("addList:", [this](const CommandSender&) { addList(); });
    c.add("closeList:", [this](const CommandSender&) { closeList(); });
    c.add("editList:", [this](const CommandSender&) { editList(); });
    c.add("deleteList:", [this](const CommandSender&) { deleteList(); });
}

ListController& YearController::listOf(const Form& form) {
    Selection& selection = m_app.selection();
    return &form == &m_year ? selection.years : selection.lists;
}

std::vector<std::string> YearController::offeredTitles(const Form& form) const {
    if (&form == &m_year) return posting::yearChooserTitles(posting::localYearOf(m_app.now()));
    auto periods = posting::periodChooserTitles();
    return {periods.begin(), periods.end()};
}

// ---------------------------------------------------------------------------------------
// Adding

void YearController::addYear() {
    core::Settings& settings = m_app.settings();
    // The first-steps display passes through step 5 on its way to step 3.
    settings.setInteger("jaImage", 5);
    settings.setBool("firstYearSet", true);
    settings.setInteger("jaImage", 3);
    // Without a client there is no list to put a year into.
    if (!m_app.selection().currentClient()) {
        refuse("Du musst erst einen Benutzer anlegen.");
        return;
    }
    showNewRecordForm(m_year, m_app.selection().years,
                      Record::make(RecordClass::Year, m_app.now()));
}

void YearController::addList() {
    core::Settings& settings = m_app.settings();
    // Both marks are set before the test, so a refused first period still counts.
    settings.setBool("firstListSet", true);
    settings.setInteger("jaImage", 4);
    if (!m_app.selection().currentYear()) {
        refuse("Du musst erst ein Jahr anlegen.");
        return;
    }
    showNewRecordForm(m_list, m_app.selection().lists,
                      Record::make(RecordClass::Thelist, m_app.now()));
}

// The record exists from the moment its form opens; there is no way to cancel it.
void YearController::showNewRecordForm(Form& form, ListController& list, core::Ref<Record> made) {
    m_app.settings().setInteger(form.pageSetting, 0);
    m_app.services().ui.showWindow(form.window);
    list.add(std::move(made));
    list.rearrange();
    m_app.selectionChanged();
    loadForm(form);
    if (m_app.settings().getBool(form.helpSetting)) openHelp(form);
}

// ---------------------------------------------------------------------------------------
// The forms

void YearController::closeYear() {
    closeForm(m_year);
}
void YearController::closeList() {
    closeForm(m_list);
}

void YearController::closeForm(Form& form) {
    if (core::utf8CharacterCount(m_app.fields().text(form.chooser)) > 1) {
        // The help panel is attached to the form: it goes and comes back with it.
        m_app.services().ui.hideWindow(form.window);
        return;
    }
    refuse(form.nothingChosen);
}

void YearController::editYear() {
    editForm(m_year);
}
void YearController::editList() {
    editForm(m_list);
}

void YearController::editForm(Form& form) {
    if (!listOf(form).selected()) {
        m_app.services().ui.beep();
        return;
    }
    if (m_app.settings().getBool(form.helpSetting) && !form.helpOpen) openHelp(form);
    m_app.settings().setInteger(form.pageSetting, 0);
    m_app.services().ui.showWindow(form.window);
    loadForm(form);
}

void YearController::openHelp(Form& form) {
    m_app.services().ui.showWindow(form.helpPanel);
    form.helpOpen = true;
}

// The form shows the selected record.
void YearController::loadForm(Form& form) {
    const Record* record = listOf(form).selected();
    setFieldQuietly(form.chooser, record ? record->getText(form.recordKey) : "");
    setFieldQuietly(form.commentField, record ? record->getText("comment") : "");
}

void YearController::setFieldQuietly(std::string_view name, std::string_view text) {
    m_loadingForm = true;
    m_app.fields().set(name, Value::string(text));
    m_loadingForm = false;
}

void YearController::fieldChanged(const std::string& name) {
    if (m_loadingForm) return;
    for (Form* form : {&m_year, &m_list}) {
        if (name == form->chooser) {
            chooserChanged(*form);
        } else if (name == form->commentField) {
            if (Record* record = listOf(*form).selected())
                record->set("comment", Value::string(m_app.fields().text(name)));
        }
    }
}

// A chooser can only show what it offers: anything else leaves the record as it is.
void YearController::chooserChanged(Form& form) {
    ListController& list = listOf(form);
    Record* record = list.selected();
    const std::string title = m_app.fields().text(form.chooser);
    const auto offered = offeredTitles(form);
    if (std::find(offered.begin(), offered.end(), title) == offered.end()) {
        setFieldQuietly(form.chooser, record ? record->getText(form.recordKey) : "");
        return;
    }
    if (!record) return;
    record->set(form.recordKey, Value::string(title));
    list.rearrange();
}

// ---------------------------------------------------------------------------------------
// Deleting

void YearController::deleteYear() {
    deleteSelected(m_year);
}
void YearController::deleteList() {
    deleteSelected(m_list);
}

// Everything the record holds goes with it; a marked period or one with items is not
// guarded further.
void YearController::deleteSelected(Form& form) {
    ListController& list = listOf(form);
    if (!list.selectionIndex()) {
        m_app.services().ui.beep();
        return;
    }
    AlertRequest question{
        form.deleteTitle, form.deleteText, {"Löschen", "Abbrechen"}, AlertStyle::Warning, {}};
    if (m_app.services().ui.alert(question) != 1) return;
    auto index = list.selectionIndex();
    if (!index) return;
    list.removeAt(*index);
    m_app.selectionChanged();
}

void YearController::refuse(const char* text) {
    m_app.services().ui.alert(AlertRequest{"Fehler!", text, {"OK"}, AlertStyle::Warning, {}});
}

} // namespace zifora::shell
