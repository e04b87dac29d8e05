#include "bookkeeping/yearcontroller.h"

#include "core/record.h"
#include "core/utf8.h"
#include "posting/choosertitles.h"
#include "shell/session.h"

#include <algorithm>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

namespace {

using core::Record;
using core::RecordClass;
using core::Value;

} // namespace

YearController::YearController(shell::Session& session)
    : m_session(session),
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
    m_session.fields().observe(
        [this](const std::string& name, const Value&) { fieldChanged(name); });
}

void YearController::registerCommands() {
    shell::CommandCatalog& c = m_session.commands();
    c.add(shell::menuCommand("addYear:", "Neues &Jahr", shell::Menu::Books, 10, "Ctrl+Shift+J"),
          [this](const CommandSender&) { return addYear(); });
    c.add("closeYear:", [this](const CommandSender&) { return closeYear(); });
    c.add(shell::menuCommand("editYear:", "Jahr &bearbeiten …", shell::Menu::Books, 20),
          [this](const CommandSender&) { return editYear(); });
    c.add(shell::menuCommand("deleteYear:", "Jahr &löschen …", shell::Menu::Books, 30),
          [this](const CommandSender&) { return deleteYear(); });
    c.add(
        shell::menuCommand("addList:", "Neue &Abrechnung", shell::Menu::Books, 40, "Ctrl+Shift+A"),
        [this](const CommandSender&) { return addList(); });
    c.add("closeList:", [this](const CommandSender&) { return closeList(); });
    c.add(shell::menuCommand("editList:", "Abrechnung bea&rbeiten …", shell::Menu::Books, 50),
          [this](const CommandSender&) { return editList(); });
    c.add(shell::menuCommand("deleteList:", "Abrechnung lös&chen …", shell::Menu::Books, 60),
          [this](const CommandSender&) { return deleteList(); });
}

ListController& YearController::listOf(const Form& form) {
    Selection& selection = m_session.selection();
    return &form == &m_year ? selection.years : selection.lists;
}

std::vector<std::string> YearController::offeredTitles(const Form& form) const {
    if (&form == &m_year) return posting::yearChooserTitles(posting::localYearOf(m_session.now()));
    auto periods = posting::periodChooserTitles();
    return {periods.begin(), periods.end()};
}

// ---------------------------------------------------------------------------------------
// Adding

CommandResult YearController::addYear() {
    core::Settings& settings = m_session.settings();
    // The first-steps display passes through step 5 on its way to step 3.
    settings.setInteger("jaImage", 5);
    settings.setBool("firstYearSet", true);
    settings.setInteger("jaImage", 3);
    // Without a client there is no list to put a year into.
    if (!m_session.selection().currentClient()) {
        return refuse("Du musst erst einen Benutzer anlegen.");
    }
    showNewRecordForm(m_year, m_session.selection().years,
                      Record::make(RecordClass::Year, m_session.now()));
    return CommandResult::done();
}

CommandResult YearController::addList() {
    core::Settings& settings = m_session.settings();
    // Both marks are set before the test, so a refused first period still counts.
    settings.setBool("firstListSet", true);
    settings.setInteger("jaImage", 4);
    if (!m_session.selection().currentYear()) {
        return refuse("Du musst erst ein Jahr anlegen.");
    }
    showNewRecordForm(m_list, m_session.selection().lists,
                      Record::make(RecordClass::Thelist, m_session.now()));
    return CommandResult::done();
}

// The record exists from the moment its form opens; there is no way to cancel it.
void YearController::showNewRecordForm(Form& form, ListController& list, core::Ref<Record> made) {
    m_session.settings().setInteger(form.pageSetting, 0);
    m_session.services().ui.showWindow(form.window);
    list.add(std::move(made));
    list.rearrange();
    m_session.selectionChanged();
    loadForm(form);
    if (m_session.settings().getBool(form.helpSetting)) openHelp(form);
}

// ---------------------------------------------------------------------------------------
// The forms

CommandResult YearController::closeYear() {
    return closeForm(m_year);
}
CommandResult YearController::closeList() {
    return closeForm(m_list);
}

CommandResult YearController::closeForm(Form& form) {
    if (core::utf8CharacterCount(m_session.fields().text(form.chooser)) > 1) {
        // The help panel is attached to the form: it goes and comes back with it.
        m_session.services().ui.hideWindow(form.window);
        return CommandResult::done();
    }
    return refuse(form.nothingChosen);
}

CommandResult YearController::editYear() {
    return editForm(m_year);
}
CommandResult YearController::editList() {
    return editForm(m_list);
}

CommandResult YearController::editForm(Form& form) {
    if (!listOf(form).selected()) {
        m_session.services().ui.beep();
        return CommandResult::refused({});
    }
    if (m_session.settings().getBool(form.helpSetting) && !form.helpOpen) openHelp(form);
    m_session.settings().setInteger(form.pageSetting, 0);
    m_session.services().ui.showWindow(form.window);
    loadForm(form);
    return CommandResult::done();
}

void YearController::openHelp(Form& form) {
    m_session.services().ui.showWindow(form.helpPanel);
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
    m_session.fields().set(name, Value::string(text));
    m_loadingForm = false;
}

void YearController::fieldChanged(const std::string& name) {
    if (m_loadingForm) return;
    for (Form* form : {&m_year, &m_list}) {
        if (name == form->chooser) {
            chooserChanged(*form);
        } else if (name == form->commentField) {
            if (Record* record = listOf(*form).selected())
                record->set("comment", Value::string(m_session.fields().text(name)));
        }
    }
}

// A chooser can only show what it offers: anything else leaves the record as it is.
void YearController::chooserChanged(Form& form) {
    ListController& list = listOf(form);
    Record* record = list.selected();
    const std::string title = m_session.fields().text(form.chooser);
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

CommandResult YearController::deleteYear() {
    return deleteSelected(m_year);
}
CommandResult YearController::deleteList() {
    return deleteSelected(m_list);
}

// Everything the record holds goes with it; a marked period or one with items is not
// guarded further.
CommandResult YearController::deleteSelected(Form& form) {
    ListController& list = listOf(form);
    if (!list.selectionIndex()) {
        m_session.services().ui.beep();
        return CommandResult::refused({});
    }
    AlertRequest question{
        form.deleteTitle, form.deleteText, {"Löschen", "Abbrechen"}, AlertStyle::Warning, {}};
    if (m_session.services().ui.alert(question) != 1) return CommandResult::cancelled();
    auto index = list.selectionIndex();
    if (!index) return CommandResult::cancelled();
    list.removeAt(*index);
    m_session.selectionChanged();
    return CommandResult::done();
}

CommandResult YearController::refuse(const char* text) {
    m_session.services().ui.alert(AlertRequest{"Fehler!", text, {"OK"}, AlertStyle::Warning, {}});
    return CommandResult::refused(text);
}

} // namespace zifora::bookkeeping
