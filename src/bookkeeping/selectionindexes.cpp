#include "bookkeeping/selectionindexes.h"

#include "shell/session.h"

namespace zifora::bookkeeping {

void storeSelectionIndexes(shell::Session& session, bool withClient) {
    core::Settings& settings = session.settings();
    shell::Selection& selection = session.selection();
    if (withClient)
        settings.setInteger("clientControllerSelectionIndex",
                            selection.clients.storedSelectionIndex());
    settings.setInteger("yearControllerSelectionIndex", selection.years.storedSelectionIndex());
    settings.setInteger("listControllerSelectionIndex", selection.lists.storedSelectionIndex());
    settings.setInteger("cashBookControllerSelectionIndex",
                        selection.cashBooks.storedSelectionIndex());
    settings.setInteger("cashBookItemsControllerSelectionIndex",
                        selection.cashBookItems.storedSelectionIndex());
}

void restoreSelectionIndexes(shell::Session& session) {
    auto restore = [&session](shell::ListController& controller, const char* key) {
        controller.setSelectionIndex(session.settings().getInteger(key));
        session.selection().propagate(&session.book().clients());
    };
    shell::Selection& selection = session.selection();
    restore(selection.years, "yearControllerSelectionIndex");
    restore(selection.lists, "listControllerSelectionIndex");
    restore(selection.cashBooks, "cashBookControllerSelectionIndex");
    restore(selection.cashBookItems, "cashBookItemsControllerSelectionIndex");
}

} // namespace zifora::bookkeeping
