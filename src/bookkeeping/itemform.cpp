#include "bookkeeping/itemform.h"

#include "core/utf8.h"
#include "posting/amountentry.h"
#include "shell/session.h"

#include <array>

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

using core::Record;
using core::Value;

struct ItemForm::Binding {
    enum class Kind { Sum, Text, Bool, Tag, Date };
    std::string_view control;
    std::string_view key;
    Kind kind;
};

namespace {

using Binding = ItemForm::Binding;

// A typed text as an alert quotes it: a paste of megabytes is cut after 40 characters.
std::string quotedInAlert(std::string_view typed) {
    constexpr size_t kShown = 40;
    size_t at = 0;
    for (size_t shown = 0; shown < kShown && at < typed.size(); ++shown) {
        const size_t length = core::decodeUtf8(typed, at).length;
        at += length ? length : 1;
    }
    if (at >= typed.size()) return std::string(typed);
    return std::string(typed.substr(0, at)) + "…";
}

// The tax control's value is the tag of its chosen segment: 1 to 3 the rates, 4 tax-free,
// 5 outside the scope of the tax, 0 none chosen.
constexpr std::array<Binding, 13> kBindings{{
    {"sumField", "amount", Binding::Kind::Sum},
    {"titleField", "title", Binding::Kind::Text},
    {"numberField", "number", Binding::Kind::Text},
    {"commentField", "comment", Binding::Kind::Text},
    {"groupPopUp", "group", Binding::Kind::Text},
    {"accountPopUp", "account", Binding::Kind::Text},
    {"taxCheckBox", "taxBool", Binding::Kind::Bool},
    {"taxSegControl", "taxTag", Binding::Kind::Tag},
    {"unpaidCheckBox", "unpaidBool", Binding::Kind::Bool},
    {"datePicker", "date", Binding::Kind::Date},
    // The item's own DATEV data, used by the export in place of the worked-out values.
    {"customDatevCheckBox", "customDatevData", Binding::Kind::Bool},
    {"customDatevAccountField", "customDatevAccount", Binding::Kind::Text},
    {"customDatevKeyField", "customDatevKey", Binding::Kind::Text},
}};

const Binding* bindingOf(std::string_view control) {
    for (const Binding& b : kBindings)
        if (b.control == control) return &b;
    return nullptr;
}

// What a bound control shows of its key.
Value shownValue(const Binding& b, const Record* item) {
    const Value stored = item ? item->get(b.key) : Value{};
    switch (b.kind) {
    case Binding::Kind::Sum:
        return Value::string(posting::sumFieldTextFor(stored));
    case Binding::Kind::Text:
        return Value::string(stored.text());
    case Binding::Kind::Bool:
        return Value::boolean(stored.toBool());
    case Binding::Kind::Tag:
        return Value::intValue(stored.toInt());
    case Binding::Kind::Date:
        return stored.kind() == core::Kind::Date ? stored : Value{};
    }
    return {};
}

} // namespace

ItemForm::ItemForm(shell::Session& session) : m_session(session) {
    m_session.fields().observe(
        [this](const std::string& control, const Value& value) { controlChanged(control, value); });
}

Record* ItemForm::item() {
    return m_item.get();
}

std::string ItemForm::sumText() const {
    return m_session.fields().text("sumField");
}

void ItemForm::sync() {
    Record* selected = m_session.selection().currentItem();
    if (selected != m_item.get()) {
        m_item = core::Ref<Record>(selected);
        showSelectionOf(selected);
        for (const Binding& b : kBindings)
            showBinding(b, selected);
        return;
    }
    if (!selected) return;
    for (const Binding& b : kBindings)
        if (!(selected->get(b.key) == m_shown[std::string(b.key)])) showBinding(b, selected);
}

void ItemForm::show(std::string_view control, Value value) {
    const bool wasShowing = m_showing;
    m_showing = true;
    m_session.fields().set(control, std::move(value));
    m_showing = wasShowing;
}

void ItemForm::showText(std::string_view control, std::string_view text) {
    show(control, Value::string(text));
}

void ItemForm::showLook(const posting::SumFieldLook& look) {
    showText("algebraicField", look.sign);
    if (look.field == posting::SumFieldLook::Field::Enable) setSumFieldEnabled(true);
    if (look.field == posting::SumFieldLook::Field::Disable) setSumFieldEnabled(false);
}

void ItemForm::setSumFieldEnabled(bool enabled) {
    m_sumFieldEnabled = enabled;
    show("sumFieldEnabled", Value::boolean(enabled));
}

void ItemForm::showSelectionOf(const Record* item) {
    showText("accountField", item ? item->getText("accountNumber") : "");
    showLook(posting::sumFieldLookFor(item ? item->getInt("kind") : posting::kKindNone));
}

void ItemForm::showBinding(const Binding& b, const Record* item) {
    show(b.control, shownValue(b, item));
    m_shown[std::string(b.key)] = item ? item->get(b.key) : Value{};
}

void ItemForm::controlChanged(const std::string& control, const Value& value) {
    if (m_showing) return;
    // A selection that moved since the form last looked is caught up first; what was just
    // typed stands all the same.
    sync();
    if (!(m_session.fields().get(control) == value)) show(control, value);
    const Binding* binding = bindingOf(control);
    if (binding && m_item) write(*binding, value);
}

void ItemForm::write(const Binding& b, const Value& typed) {
    Record& item = *m_item;
    switch (b.kind) {
    case Binding::Kind::Sum:
        writeSum(b, m_session.fields().text(b.control));
        return;
    case Binding::Kind::Text:
        item.set(b.key, Value::string(m_session.fields().text(b.control)));
        break;
    case Binding::Kind::Bool:
        item.set(b.key, Value::boolean(typed.toBool()));
        break;
    case Binding::Kind::Tag:
        item.set(b.key, Value::intValue(typed.toInt()));
        break;
    case Binding::Kind::Date:
        if (typed.kind() != core::Kind::Date) {
            showBinding(b, &item); // a date control holds dates only
            return;
        }
        item.set(b.key, typed);
        m_session.selection().items.rearrange();
        break;
    }
    m_shown[std::string(b.key)] = item.get(b.key);
}

void ItemForm::writeSum(const Binding& b, const std::string& typed) {
    Record& item = *m_item;
    if (!m_sumFieldEnabled) {
        // The field is disabled until income or expense is chosen: nothing can be typed.
        m_session.services().ui.beep();
        showBinding(b, &item);
        return;
    }
    if (posting::isBlankText(typed)) {
        item.set(b.key, Value::string(""));
        showText(b.control, "");
    } else if (const auto sum = posting::acceptedSum(typed)) {
        item.set(b.key, Value::string(posting::storedAmountText(*sum)));
    } else {
        m_session.services().ui.alert(
            AlertRequest{"Fehler!",
                         "„" + quotedInAlert(typed) +
                             "“ ist keine gültige Summe. Bitte gib einen positiven Betrag ein, "
                             "zum Beispiel 119,50.",
                         {"OK"},
                         AlertStyle::Warning,
                         {}});
        showBinding(b, &item);
        return;
    }
    m_shown[std::string(b.key)] = item.get(b.key);
}

} // namespace zifora::bookkeeping
