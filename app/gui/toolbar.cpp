#include "toolbar.h"

#include "icons.h"
#include "toolbardialog.h"

#include "core/settings.h"
#include "shell/session.h"

#include <QAction>
#include <QMenu>
#include <QWidget>

#include <algorithm>
#include <set>

namespace zifora::gui {

namespace {

QString qs(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

bool isSpacer(std::string_view identifier) {
    return identifier == kSpaceItem || identifier == kFlexibleSpaceItem ||
           identifier == kSeparatorItem;
}

// Width of a plain space between items, in pixels.
constexpr int kSpaceWidth = 18;

} // namespace

const std::vector<ToolbarItem>& toolbarItems() {
    // The help texts are the program's own words, spelling included.
    static const std::vector<ToolbarItem> items{
        {"NewEntryItemIdentifier", "Neue Abrechnung", "tabTemplate",
         "addList:", "Hier klicken um einen neuen Abrechnungszeitraum anzulegen"},
        {"JahrItemIdentifier", "Neues Jahr", "yearTemplate",
         "addYear:", "Hier klicken um einen neues Jahr anzulegen"},
        {"PostenItemIdentifier", "Neuer Posten", "toolbarNewTemplate",
         "addItem:", "Hier klicken um einen neuen Posten anzulegen"},
        {"DeleteItemIdentifier", "Posten löschen", "toolbarDeleteTemplate",
         "ArrayControllerItem.remove:", "Hier klicken um ausgewählten Posten zu löschen"},
        {"RechnerItemIdentifier", "Rechner", "calculatorTemplate", "",
         "Hier klicken um den Taschnrechner zu öffnen"},
        {"PrintItemIdentifier", "Drucken", "printTemplate",
         "openTabJournalPrint:", "Hier klicken um Übersicht Abrechnungszeitraum zu drucken"},
        {"ExportItemIdentifier", "Exportieren", "exportTemplate",
         "openTabJournalExport:", "Hier klicken um Übersicht Abrechnungszeitraum zu exportieren"},
        {"JournalItemIdentifier", "Berichte", "statisticsTemplate",
         "openJournalWindow:", "Hier klicken um Berichte zu erstellen, drucken und exportieren"},
        {"SearchItemIdentifier", "Suche", "showTemplate",
         "openSearchSheet:", "Hier klicken um nach Posten zu suchen"},
        {"VoranmeldungItemIdentifier", "Voranmeldung", "taxTemplate",
         "openVoranmeldungsWindow:", "Hier klicken um Voranmeldung vorzubereiten und zu verwalten"},
        {"KassenbuchItemIdentifier", "Kassenbuch", "cashTemplate",
         "openKassenbuch:", "Hier klicken um das Kassenbuch einzusehen und auszudrucken"},
        {"UebersichtItemIdentifier", "Übersicht", "overviewTemplate",
         "generateUebersicht:", "Hier klicken um die Jahresübersicht einzusehen"},
    };
    return items;
}

const ToolbarItem* findToolbarItem(std::string_view identifier) {
    for (const ToolbarItem& item : toolbarItems())
        if (item.identifier == identifier) return &item;
    return nullptr;
}

std::vector<std::string> defaultToolbarOrder() {
    return {"RechnerItemIdentifier",    std::string(kSpaceItem),         "JahrItemIdentifier",
            "NewEntryItemIdentifier",   std::string(kFlexibleSpaceItem), "PostenItemIdentifier",
            "DeleteItemIdentifier",     std::string(kFlexibleSpaceItem), std::string(kSpaceItem),
            "SearchItemIdentifier",     "VoranmeldungItemIdentifier",    std::string(kSpaceItem),
            "UebersichtItemIdentifier", "KassenbuchItemIdentifier",      "JournalItemIdentifier"};
}

std::vector<std::string> offeredToolbarItems() {
    std::vector<std::string> offered;
    for (const ToolbarItem& item : toolbarItems())
        if (item.identifier != "PrintItemIdentifier" && item.identifier != "ExportItemIdentifier")
            offered.emplace_back(item.identifier);
    offered.emplace_back(kSeparatorItem);
    offered.emplace_back(kSpaceItem);
    offered.emplace_back(kFlexibleSpaceItem);
    return offered;
}

QString toolbarItemName(std::string_view identifier) {
    if (identifier == kSpaceItem) return QStringLiteral("Leerraum");
    if (identifier == kFlexibleSpaceItem) return QStringLiteral("Flexibler Leerraum");
    if (identifier == kSeparatorItem) return QStringLiteral("Trennlinie");
    const ToolbarItem* item = findToolbarItem(identifier);
    return item ? qs(item->label) : QString();
}

std::vector<std::string> savedToolbarOrder(const core::Settings& settings) {
    const core::Value saved = settings.get(kToolbarSetting);
    if (saved.kind() != core::Kind::Array) return defaultToolbarOrder();
    const std::vector<std::string> offered = offeredToolbarItems();
    std::vector<std::string> order;
    std::set<std::string> placed;
    for (const core::Value& entry : saved.asArray()) {
        const std::string& identifier = entry.text();
        if (std::find(offered.begin(), offered.end(), identifier) == offered.end()) continue;
        if (!isSpacer(identifier) && !placed.insert(identifier).second) continue;
        order.push_back(identifier);
    }
    return order;
}

void saveToolbarOrder(core::Settings& settings, const std::vector<std::string>& order) {
    core::ArrayElements entries;
    for (const std::string& identifier : order)
        entries.push_back(core::Value::string(identifier));
    settings.set(kToolbarSetting, core::Value::array(std::move(entries)));
    (void)settings.flush(); // a failed write is tried again with the next save of the settings
}

void startCalculator(shell::Services& services) {
    for (const char* program : {"gnome-calculator", "kcalc", "galculator", "mate-calc", "xcalc"})
        if (services.workspace.launch(program, {})) return;
    services.ui.alert(shell::AlertRequest{
        "Hinweis!",
        "Auf deinem Rechner ist kein Taschenrechner installiert. Installiere zum Beispiel "
        "gnome-calculator, kcalc oder galculator, dann öffnet Zifora ihn hier für dich.",
        {"OK"},
        shell::AlertStyle::Informational,
        {}});
}

// ---------------------------------------------------------------------------------------

Toolbar::Toolbar(shell::Session& app, std::function<void()> afterCommand, QWidget* parent)
    : QToolBar(QStringLiteral("Symbolleiste"), parent), m_app(app),
      m_afterCommand(std::move(afterCommand)) {
    setObjectName(QStringLiteral("mainToolbar"));
    setMovable(false);
    setFloatable(false);
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setIconSize(QSize(28, 28));
    m_customize = new QAction(QStringLiteral("Symbolleiste anpassen …"), this);
    connect(m_customize, &QAction::triggered, this, &Toolbar::customize);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(this);
        menu.addAction(m_customize);
        menu.exec(mapToGlobal(at));
    });
    createItemActions();
    setOrder(savedToolbarOrder(m_app.settings()));
}

void Toolbar::createItemActions() {
    for (const ToolbarItem& item : toolbarItems()) {
        auto* action = new QAction(templateIcon(qs(item.image)), qs(item.label), this);
        action->setObjectName(qs(item.identifier));
        action->setIconText(qs(item.label));
        connect(action, &QAction::triggered, this, [this, &item] { triggerItem(item); });
        m_items.emplace(std::string(item.identifier), action);
    }
    updateItems();
}

void Toolbar::triggerItem(const ToolbarItem& item) {
    if (item.command.empty())
        startCalculator(m_app.services());
    else
        m_app.run(std::string(item.command));
    if (m_afterCommand) m_afterCommand();
}

QAction* Toolbar::itemAction(std::string_view identifier) const {
    auto found = m_items.find(identifier);
    return found == m_items.end() ? nullptr : found->second;
}

void Toolbar::updateItems() {
    for (const ToolbarItem& item : toolbarItems()) {
        QAction* action = itemAction(item.identifier);
        const bool available =
            item.command.empty() || m_app.commands().contains(std::string(item.command));
        action->setEnabled(available);
        action->setToolTip(available ? qs(item.help) : qs(kLaterVersionText));
        action->setStatusTip(available ? qs(item.help) : QString());
    }
}

void Toolbar::setOrder(const std::vector<std::string>& order) {
    m_order = order;
    rebuild();
}

void Toolbar::rebuild() {
    clear();
    for (QAction* spacer : m_spacers)
        delete spacer;
    m_spacers.clear();
    for (const std::string& identifier : m_order) {
        if (identifier == kSeparatorItem) {
            m_spacers.push_back(addSeparator());
        } else if (identifier == kSpaceItem || identifier == kFlexibleSpaceItem) {
            auto* space = new QWidget;
            space->setObjectName(qs(identifier));
            if (identifier == kSpaceItem)
                space->setFixedWidth(kSpaceWidth);
            else
                space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
            m_spacers.push_back(addWidget(space));
        } else if (QAction* action = itemAction(identifier)) {
            addAction(action);
        }
    }
}

void Toolbar::customize() {
    ToolbarDialog dialog(m_order, this);
    if (dialog.exec() != QDialog::Accepted) return;
    setOrder(dialog.order());
    saveToolbarOrder(m_app.settings(), m_order);
}

} // namespace zifora::gui
