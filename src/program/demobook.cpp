#include "program/demobook.h"

#include "core/chartfiles.h"
#include "core/civildate.h"
#include "core/jsondump.h"
#include "core/settings.h"
#include "core/utf8.h"
#include "posting/itemcalculation.h"
#include "posting/numberformat.h"
#include "program/headlessprogram.h"
#include "shell/headless.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace zifora::program {

namespace {

namespace fs = std::filesystem;
using core::Value;

constexpr const char* kCompany = "Muster Design Anna Beispiel";
constexpr const char* kYear = "2025";
// The book is typed in on a January morning after the year's end.
constexpr const char* kTypedOn = "2026-01-12T09:00:00Z";
constexpr uint64_t kSeed = 20250101;

constexpr std::array<const char*, 12> kMonths{"Januar",    "Februar", "März",     "April",
                                              "Mai",       "Juni",    "Juli",     "August",
                                              "September", "Oktober", "November", "Dezember"};

constexpr std::array<const char*, 11> kCategories{
    "Honorare", "Lizenzen", "Vorträge & Workshops",      "Büro", "Technik",  "Reisen",
    "Fahrzeug", "Werbung",  "Versicherungen & Beiträge", "Bank", "Sonstiges"};

constexpr std::array<const char*, 10> kProjects{"Logo und Geschäftsausstattung Bäckerei Krume",
                                                "Broschüre Stadtwerke Musterstadt",
                                                "Website-Gestaltung Praxis Dr. Sommer",
                                                "Plakatserie Theater am Ring",
                                                "Verpackungsdesign Rösterei Bohnenglück",
                                                "Jahresbericht Stiftung Lesezeit",
                                                "Social-Media-Grafiken Radhaus Kettenblatt",
                                                "Buchumschlag Verlag Seitenwind",
                                                "Messestand Tischlerei Holzwerk",
                                                "Speisekarte Gasthaus Zur Linde"};

/// A fixed sequence of numbers (xorshift64), the same on every machine.
class DemoRandom {
  public:
    explicit DemoRandom(uint64_t seed) : m_state(seed) {}
    int between(int low, int high) {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return low + static_cast<int>(m_state % static_cast<uint64_t>(high - low + 1));
    }

  private:
    uint64_t m_state;
};

/// One posting as it is typed into the item form.
struct Posting {
    int32_t kind = posting::kKindExpense;
    std::string title;
    int64_t cents = 0; // gross
    int taxTag = 0;    // 0: no tax
    std::string account;
    std::string group;
    int day = 1;
    bool unpaid = false;
    std::string comment;
};

Posting typed(int kind, std::string title, int64_t cents, int taxTag, std::string account,
              std::string group, int day) {
    return {kind, std::move(title), cents, taxTag, std::move(account), std::move(group), day, false,
            {}};
}

Posting income(std::string title, int64_t cents, int taxTag, std::string account, std::string group,
               int day) {
    return typed(posting::kKindIncome, std::move(title), cents, taxTag, std::move(account),
                 std::move(group), day);
}

Posting expense(std::string title, int64_t cents, int taxTag, std::string account,
                std::string group, int day) {
    return typed(posting::kKindExpense, std::move(title), cents, taxTag, std::move(account),
                 std::move(group), day);
}

/// The postings that come every month; in January they are typed, and become templates.
std::vector<Posting> recurringPostings() {
    return {expense("Büromiete Atelier", 77350, 1, "6310", "Büro", 1),
            expense("Telefon und Internet", 4999, 1, "6805", "Büro", 5),
            expense("Software-Abo Grafikpaket", 7139, 1, "6835", "Technik", 12),
            expense("Kontoführung", 990, 0, "6855", "Bank", 28)};
}

/// The amount as typed into the sum field: a point and two decimals, which every locale's
/// notation reads alike.
std::string typedAmount(int64_t cents) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%02lld", static_cast<long long>(cents / 100),
                  static_cast<long long>(cents % 100));
    return text;
}

std::string padded(const std::string& text, size_t width, bool right) {
    const size_t shown = core::utf8CharacterCount(text);
    const std::string fill(shown < width ? width - shown : 0, ' ');
    return right ? fill + text : text + fill;
}

class DemoBookMaker {
  public:
    explicit DemoBookMaker(const std::string& home)
        : m_home(home), m_s(m_events, core::Places::forHome(home), *core::parseIsoDate(kTypedOn)) {}

    core::Result<DemoBook> make() {
        start();
        setUpClient();
        addCategories();
        addYearAndPeriods();
        for (size_t month = 0; month < kMonths.size(); ++month)
            addMonth(month);
        finish();
        if (auto problem = firstRefusal()) return core::fail(*problem);
        return totals();
    }

  private:
    // --- the program as a user drives it --------------------------------------------------
    void run(const std::string& command) {
        m_s.session().run(command);
        m_s.services.scheduler.runDue();
    }
    void field(const std::string& name, Value value) {
        m_s.session().fields().set(name, std::move(value));
        m_s.services.scheduler.runDue();
    }

    void start() {
        m_s.session().run("init");
        m_s.session().run("awakeFromNib"); // the agreement takes its default answer; see finish()
        m_s.services.scheduler.advance(1);
    }

    void setUpClient() {
        core::Record* client = m_s.session().selection().currentClient();
        client->set("company", Value::string(kCompany));
        client->set("taxNumber", Value::string("21/815/08150"));
        run("changeCurrentClient:");
        run("loadDefaultAccountsSetup:");
        m_s.settings.setFloat("prefs1Rate", 19);
        m_s.settings.setFloat("prefs2Rate", 7);
        m_s.settings.setFloat("prefs3Rate", 0); // the zero rate of small solar installations
        m_s.settings.setBool("isSetupDone", true);
        m_s.settings.setInteger("jaImage", 2);
        m_s.services.scheduler.advance(1);
    }

    void addCategories() {
        for (const char* title : kCategories) {
            run("addGroup:");
            m_s.session().selection().groups.selected()->set("title", Value::string(title));
            m_s.session().selection().groups.rearrange();
        }
    }

    void addYearAndPeriods() {
        run("addYear:");
        field("yearPopUp", Value::string(kYear));
        run("closeYear:");
        for (const char* month : kMonths) {
            run("addList:");
            field("listPopUp", Value::string(month));
            run("closeList:");
            m_periods.push_back(m_s.session().selection().currentPeriod());
        }
    }

    // --- the postings of a month ----------------------------------------------------------
    void addMonth(size_t month) {
        m_s.session().selection().lists.select(m_periods[month]);
        m_s.session().selectionChanged();
        const int m = static_cast<int>(month) + 1;
        for (const Posting& p : recurringPostings()) {
            if (m == 1) {
                post(p, m);
                run("makeTemplateFromItem:");
            } else {
                postFromTemplate(p, m);
            }
        }
        for (const Posting& p : randomPostings(m))
            post(p, m);
    }

    std::vector<Posting> randomPostings(int month) {
        std::vector<Posting> out;
        DemoRandom& r = m_random;
        const auto days =
            static_cast<int>(core::daysInMonth(std::atoi(kYear), static_cast<unsigned>(month)));
        for (int i = r.between(5, 8); i > 0; --i) {
            Posting p = income(kProjects[static_cast<size_t>(r.between(0, 9))],
                               r.between(5, 40) * 5000, 1, "4400", "Honorare", r.between(1, days));
            p.unpaid = month == 12 && p.day > 15; // not yet paid at the year's end
            out.push_back(p);
        }
        for (int i = r.between(1, 2); i > 0; --i)
            out.push_back(income(std::string("Nutzungsrechte Illustration ") +
                                     kProjects[static_cast<size_t>(r.between(0, 9))],
                                 r.between(12, 120) * 1000, 2, "4300", "Lizenzen",
                                 r.between(1, days)));
        addOccasionalIncome(out, month, days);
        addEverydayExpenses(out, days);
        addOccasionalExpenses(out, month);
        return out;
    }

    void addOccasionalIncome(std::vector<Posting>& out, int month, int days) {
        DemoRandom& r = m_random;
        if (month % 2 == 0 && month != 8)
            out.push_back(income("Workshop Typografie an der Volkshochschule",
                                 r.between(24, 48) * 1000, 4, "4100", "Vorträge & Workshops",
                                 r.between(1, days)));
        if (month == 3 || month == 7 || month == 10)
            out.push_back(income("Corporate Design Atelier Berg, Zürich", r.between(12, 29) * 10000,
                                 5, "4338", "Honorare", r.between(1, days)));
        if (month == 6)
            out.push_back(income("Preisgeld Designwettbewerb", 150000, 0, "4830", "Sonstiges", 20));
    }

    void addEverydayExpenses(std::vector<Posting>& out, int days) {
        DemoRandom& r = m_random;
        static constexpr std::array<const char*, 4> office{
            "Druckerpapier und Toner", "Skizzenbücher und Marker", "Ordner und Etiketten",
            "Druckerpatronen"};
        for (int i = r.between(2, 5); i > 0; --i)
            out.push_back(expense(office[static_cast<size_t>(r.between(0, 3))],
                                  r.between(800, 9500), 1, "6815", "Büro", r.between(1, days)));
        for (int i = r.between(0, 2); i > 0; --i)
            out.push_back(expense(r.between(0, 1) ? "Fachbuch Typografie" : "Zeitschrift Page",
                                  r.between(1200, 6500), 2, "6820", "Büro", r.between(1, days)));
        for (int i = r.between(0, 2); i > 0; --i)
            out.push_back(expense("Bahnfahrt zum Kunden", r.between(2900, 14900), 2, "6670",
                                  "Reisen", r.between(1, days)));
        for (int i = r.between(2, 3); i > 0; --i)
            out.push_back(expense("Tankstelle", r.between(4500, 8500), 1, "6530", "Fahrzeug",
                                  r.between(1, days)));
        for (int i = r.between(0, 2); i > 0; --i)
            out.push_back(
                expense("Briefmarken", r.between(95, 1250), 0, "6800", "Büro", r.between(1, days)));
        if (r.between(0, 1)) {
            Posting meal = expense("Geschäftsessen mit Kunde", r.between(3800, 12000), 1, "6640",
                                   "Sonstiges", r.between(1, days));
            meal.comment = "Bewirtungsbeleg liegt bei";
            out.push_back(meal);
        }
    }

    void addOccasionalExpenses(std::vector<Posting>& out, int month) {
        if (month == 1)
            out.push_back(expense("Berufshaftpflichtversicherung", 38900, 0, "6400",
                                  "Versicherungen & Beiträge", 15));
        if (month == 3) {
            out.push_back(expense("Grafiktablett", 42900, 1, "0670", "Technik", 18));
            out.push_back(expense("Beitrag Berufsverband", 18000, 0, "6420",
                                  "Versicherungen & Beiträge", 31));
        }
        if (month == 5)
            out.push_back(
                expense("Balkonkraftwerk für das Atelier", 59900, 3, "0670", "Technik", 9));
        if (month == 9)
            out.push_back(expense("Monitor-Kalibriergerät", 18900, 1, "6845", "Technik", 4));
        if (month == 11)
            out.push_back(expense("Anzeige Branchenbuch", 24990, 1, "6600", "Werbung", 3));
    }

    void post(const Posting& p, int month) {
        run("addItem:");
        run(p.kind == posting::kKindIncome ? "selectIncome:" : "selectExpense:");
        field("sumField", Value::string(typedAmount(p.cents)));
        field("taxCheckBox", Value::boolean(p.taxTag != 0));
        if (p.taxTag != 0) field("taxSegControl", Value::integer(p.taxTag));
        field("titleField", Value::string(p.title));
        if (p.kind == posting::kKindIncome) field("numberField", Value::string(invoiceNumber()));
        field("accountField", Value::string(p.account));
        run("validateAccountNumber:");
        field("groupPopUp", Value::string(p.group));
        field("datePicker", Value::date(dateOf(month, p.day)));
        if (p.unpaid) field("unpaidCheckBox", Value::boolean(true));
        if (!p.comment.empty()) field("commentField", Value::string(p.comment));
        run("calculateItem:");
        run("closeItemSheet:");
        m_s.services.scheduler.advance(1);
    }

    void postFromTemplate(const Posting& p, int month) {
        run("addItem:");
        shell::ListController& templates = m_s.session().selection().templates;
        const auto& arranged = templates.arranged();
        for (size_t i = 0; i < arranged.size(); ++i)
            if (arranged[i]->getText("title") == p.title)
                templates.setSelectionIndex(static_cast<int64_t>(i));
        run("selectTemplateSearchSheet:");
        m_s.services.scheduler.advance(
            0.2); // the calculation and the account check follow the choice
        field("datePicker", Value::date(dateOf(month, p.day)));
        run("calculateItem:");
        run("closeItemSheet:");
        m_s.services.scheduler.advance(1);
    }

    /// The numbers of the studio's own invoices, in the order they were written.
    std::string invoiceNumber() {
        char text[32];
        std::snprintf(text, sizeof text, "RE-%s-%03d", kYear, ++m_invoices);
        return text;
    }

    static core::Date dateOf(int month, int day) {
        char text[32];
        std::snprintf(text, sizeof text, "%s-%02d-%02dT10:00:00Z", kYear, month, day);
        return *core::parseIsoDate(text);
    }

    // --- the end --------------------------------------------------------------------------
    void finish() {
        m_s.session().selection().lists.select(m_periods[2]); // March stays selected
        m_s.session().selectionChanged();
        m_s.session().run("applicationWillTerminate");
        // Agreeing to the terms of use is the user's own step, at the next start.
        m_s.settings.setBool("veryFirstAlertDone", false);
        (void)m_s.settings.flush();
    }

    /// The first alert, beep or error of the run beyond the two of every first start.
    std::optional<std::string> firstRefusal() const {
        std::istringstream events(m_events.str());
        std::string line;
        while (std::getline(events, line)) {
            const bool alert = line.starts_with("{\"alert\"");
            if (!alert && !line.starts_with("{\"beep\"") && !line.starts_with("{\"error\""))
                continue;
            if (alert && (line.find("\"title\":\"Leider notwendiger Hinweis\"") != line.npos ||
                          line.find("\"title\":\"Migration erfolgreich!\"") != line.npos))
                continue;
            return "Das Beispielbuch ließ sich nicht anlegen; Zifora meldete: " + line;
        }
        return std::nullopt;
    }

    DemoBook totals() {
        DemoBook book{
            m_home, core::joinPath(m_s.places.dataFolder, "Zifora.zfdb4"), kCompany, kYear, {}};
        for (core::Record* period : m_periods) {
            m_s.session().selection().lists.select(period);
            m_s.session().selectionChanged();
            const auto& items = m_s.session().selection().items.arranged();
            book.periods.push_back(
                {period->getText("title"), items.size(), posting::settlementTotals(items)});
        }
        return book;
    }

    std::string m_home;
    std::ostringstream m_events;
    HeadlessProgram m_s;
    DemoRandom m_random{kSeed};
    std::vector<core::Record*> m_periods;
    int m_invoices = 0;
};

std::optional<std::string> reasonNotToMake(const std::string& home) {
    const core::Places places = core::Places::forHome(home);
    std::error_code ec;
    for (const std::string& path :
         {core::joinPath(places.dataFolder, "Zifora.zfdb4"), places.settingsFile})
        if (fs::exists(path, ec))
            return "In " + home + " liegt schon ein Zifora-Buch (" + path +
                   "); das Beispielbuch wird nur in einem Ordner ohne Zifora-Daten angelegt.";
    if (!core::findChartsFolder())
        return "Die eingebauten Kontenrahmen wurden nicht gefunden; das Beispielbuch braucht "
               "den Standard-Kontenrahmen.";
    return std::nullopt;
}

} // namespace

core::Result<DemoBook> makeDemoBook(const std::string& home) {
    if (auto reason = reasonNotToMake(home)) return core::fail(*reason);
    DemoBookMaker maker(home);
    return maker.make();
}

std::string demoBookReport(const DemoBook& book) {
    static const posting::AmountFormats formats;
    std::string out = "Beispielbuch „" + book.company + "“, Jahr " + book.year + "\n\n";
    const std::array<const char*, 7> heads{"Abrechnung", "Posten",    "Einnahmen",   "Ausgaben",
                                           "Saldo",      "Vorsteuer", "USt-Zahllast"};
    const std::array<size_t, 7> widths{12, 7, 13, 13, 13, 11, 13};
    for (size_t i = 0; i < heads.size(); ++i)
        out += padded(heads[i], widths[i], i > 0);
    out += "\n";
    for (const DemoPeriod& p : book.periods) {
        const posting::PeriodFigures& f = p.totals.period;
        const std::array<std::string, 7> cells{
            p.title,
            std::to_string(p.itemCount),
            formats.byTotalRule(f.incomeGross),
            formats.byTotalRule(f.expenseGross),
            formats.byTotalRule(f.balanceGross),
            formats.byTotalRule(p.totals.figures.abziehbareBetraegeSteuerAmount),
            formats.byTotalRule(p.totals.figures.saldo)};
        for (size_t i = 0; i < cells.size(); ++i)
            out += padded(cells[i], widths[i], i > 0);
        out += "\n";
    }
    out += "\nBeträge brutto in Euro; die USt-Zahllast ist der Saldo der Voranmeldung.\n";
    out += "Die Datenbank liegt in " + book.databaseFile + "\n";
    out += "Zifora mit diesem Buch starten: HOME=" + book.home + " zifora\n";
    return out;
}

} // namespace zifora::program
