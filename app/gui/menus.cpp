#include "menus.h"

#include "shell/session.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace zifora::gui {

namespace {

constexpr shell::Menu kMenus[] = {
    shell::Menu::File,    shell::Menu::Books,  shell::Menu::Items,    shell::Menu::MasterData,
    shell::Menu::Clients, shell::Menu::Places, shell::Menu::Database, shell::Menu::Help};

} // namespace

QString commandLabel(const shell::CommandCatalog& commands, const std::string& command) {
    const shell::CommandInfo* info = commands.info(command);
    return info ? QString::fromStdString(info->label).remove(QLatin1Char('&')) : QString();
}

void buildMenus(QMenuBar& bar, shell::Session& session) {
    for (shell::Menu menu : kMenus) {
        const auto entries = session.commands().menuEntries(menu);
        if (entries.empty()) continue;
        QMenu* qmenu = bar.addMenu(QString::fromUtf8(
            shell::menuTitle(menu).data(), static_cast<int>(shell::menuTitle(menu).size())));
        for (const shell::CommandInfo* info : entries) {
            QAction* action = qmenu->addAction(QString::fromStdString(info->label));
            if (!info->shortcut.empty())
                action->setShortcut(QKeySequence(QString::fromStdString(info->shortcut)));
            const std::string name = info->name;
            const int tag = info->tag;
            QObject::connect(action, &QAction::triggered, qmenu, [&session, name, tag] {
                session.run(name, shell::CommandSender{tag});
            });
        }
    }
}

} // namespace zifora::gui
