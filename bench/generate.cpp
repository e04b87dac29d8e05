#include "bench/generate.h"

#include "core/civildate.h"
#include "core/record.h"
#include "posting/itemcalculation.h"

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace zifora::bench {

namespace {

using core::Date;
using core::Record;
using core::RecordClass;
using core::Ref;
using core::Value;
using namespace std::string_view_literals;

/// A small, fast, reproducible random source (SplitMix64).
class Random {
  public:
    explicit Random(uint64_t seed) : m_state(seed) {}
    uint64_t next() {
        uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    /// A whole number in [0, n).
    uint32_t below(uint32_t n) { return static_cast<uint32_t>(next() % n); }
    /// True with the given chance in percent.
    bool chance(uint32_t percent) { return below(100) < percent; }

  private:
    uint64_t m_state;
};

/// A category as the user keeps it: its account and the usual tax of its postings.
struct Category {
    std::string_view group;
    std::string_view accountNumber;
    std::string_view account;
    int32_t kind;
    int32_t taxTag; // 0: posted without tax
    uint32_t typicalCents;
};

constexpr std::array kCategories{
    Category{"Büromaterial"sv, "4930"sv, "Bürobedarf"sv, 1, 1, 4'990},
    Category{"Porto"sv, "4910"sv, "Porto"sv, 1, 0, 850},
    Category{"Telefon"sv, "4920"sv, "Telefon"sv, 1, 1, 3'999},
    Category{"Miete"sv, "4210"sv, "Miete (unbewegliche Wirtschaftsgüter)"sv, 1, 0, 95'000},
    Category{"Reisekosten"sv, "4670"sv, "Reisekosten Unternehmer"sv, 1, 1, 18'900},
    Category{"Bewirtung"sv, "4650"sv, "Bewirtungskosten"sv, 1, 1, 8'750},
    Category{"Fachliteratur"sv, "4940"sv, "Zeitschriften, Bücher"sv, 1, 2, 3'490},
    Category{"Software"sv, "4806"sv, "Wartungskosten für Hard- und Software"sv, 1, 1, 11'900},
    Category{"Kfz-Kosten"sv, "4530"sv, "Laufende Kfz-Betriebskosten"sv, 1, 1, 7'420},
    Category{"Werbung"sv, "4600"sv, "Werbekosten"sv, 1, 1, 25'000},
    Category{"Versicherungen"sv, "4360"sv, "Versicherungen"sv, 1, 0, 31'250},
    Category{"Wareneingang"sv, "3400"sv, "Wareneingang 19 % Vorsteuer"sv, 1, 1, 64'000},
    Category{"Erlöse"sv, "8400"sv, "Erlöse 19 % USt"sv, 2, 1, 119'000},
    Category{"Erlöse ermäßigt"sv, "8300"sv, "Erlöse 7 % USt"sv, 2, 2, 21'400},
    Category{"Erlöse steuerfrei"sv, "8120"sv, "Steuerfreie Umsätze § 4 Nr. 1a UStG"sv, 2, 4,
             50'000},
    Category{"Erlöse Ausland"sv, "8338"sv, "Erlöse im Drittland nicht steuerbar"sv, 2, 5, 80'000},
};

constexpr std::array kMonths{"Januar"sv,    "Februar"sv, "März"sv,     "April"sv,
                             "Mai"sv,       "Juni"sv,    "Juli"sv,     "August"sv,
                             "September"sv, "Oktober"sv, "November"sv, "Dezember"sv};

constexpr std::array kComments{"Barzahlung"sv,     "per Überweisung"sv, "Lastschrift"sv,
                               "Rechnung folgt"sv, "Teilzahlung"sv,     "siehe Beleg"sv};

const posting::TaxRates kRates{19.0f, 7.0f, 0.0f};

Date dateOf(int year, unsigned month, unsigned day, int secondsOfDay) {
    const double unix =
        static_cast<double>(core::daysFromCivil(year, month, day) * core::kSecondsPerDay);
    return Date::fromUnix(unix + secondsOfDay);
}

std::string centsText(uint32_t cents) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%u.%02u", cents / 100, cents % 100);
    return buffer;
}

// Amounts scatter around the category's usual one: a third exact, the rest from a tenth to
// three times of it.
uint32_t amountCents(Random& random, const Category& category) {
    if (random.chance(33)) return category.typicalCents;
    const uint32_t low = category.typicalCents / 10 + 1;
    return low + random.below(category.typicalCents * 3 - low);
}

void fillPosting(Record& item, Random& random, const Record& period, const Record& year,
                 int yearNumber, unsigned month, size_t serial) {
    const Category& c = kCategories[random.below(kCategories.size())];
    const unsigned day = 1 + random.below(28);
    const Date date = dateOf(yearNumber, month, day, static_cast<int>(random.below(86'400)));
    item.set("kind", Value::intValue(c.kind));
    item.set("UUID", Value::string(std::to_string(static_cast<int64_t>(date.unixSeconds()))));
    item.set("parentTab", period.get("title"));
    item.set("parentYear", year.get("dateValue"));
    item.set("group", Value::string(c.group));
    item.set("account", Value::string(c.account));
    item.set("accountNumber", Value::string(c.accountNumber));
    item.set("date", Value::date(date));
    item.set("title", Value::string(std::string(c.group) + " " + std::to_string(serial)));
    if (random.chance(70))
        item.set("number", Value::string("RE-" + std::to_string(yearNumber) + "-" +
                                         std::to_string(10'000 + serial)));
    const uint32_t cents = amountCents(random, c);
    // Typed amounts are texts; imported and split ones are floats.
    if (random.chance(80))
        item.set("amount", Value::string(centsText(cents)));
    else
        item.set("amount", Value::floatValue(static_cast<float>(cents) / 100.0f));
    const bool taxed = c.taxTag != 0 && !random.chance(5);
    item.set("taxBool", Value::boolean(taxed));
    item.set("taxTag", Value::intValue(taxed ? c.taxTag : 0));
    item.set("unpaidBool", Value::boolean(random.chance(4)));
    if (random.chance(15))
        item.set("comment", Value::string(kComments[random.below(kComments.size())]));
    if (random.chance(10)) {
        item.set("fileBool", Value::boolean(true));
        item.set("fileTitle", Value::string("Beleg " + std::to_string(serial) + ".pdf"));
        item.set("filePath", Value::string("/home/anna/Belege/" + std::to_string(yearNumber) +
                                           "/Beleg " + std::to_string(serial) + ".pdf"));
    }
    posting::applyItemAmounts(
        item, posting::calculateItemAmounts(posting::itemAmountInputOf(item, kRates)));
}

void addMasterData(Record& client, Date now) {
    for (const Category& c : kCategories) {
        Ref<Record> group = Record::make(RecordClass::Group, now);
        group->set("title", Value::string(c.group));
        client.groups().push_back(group);
        Ref<Record> account = Record::make(RecordClass::Account, now);
        account->set("number", Value::string(c.accountNumber));
        account->set("title", Value::string(c.account));
        client.accounts().push_back(account);
    }
}

} // namespace

Value makeBook(const BookShape& shape) {
    Random random(shape.seed);
    const Date created = dateOf(shape.year, 1, 2, 9 * 3'600);
    Ref<Record> client = Record::make(RecordClass::Client, created);
    client->set("company", Value::string("Muster & Söhne GmbH"));
    client->set("taxNumber", Value::string("21/815/08150"));
    addMasterData(*client, created);

    Ref<Record> year = Record::make(RecordClass::Year, created);
    year->set("dateValue", Value::string(std::to_string(shape.year)));
    client->theYears().push_back(year);
    for (unsigned month = 1; month <= 12; ++month) {
        Ref<Record> period = Record::make(RecordClass::Thelist, dateOf(shape.year, month, 1, 0));
        period->set("title", Value::string(kMonths[month - 1]));
        year->thelists().push_back(period);
    }
    // Postings in date order of their periods: the first share of them in January, and so on.
    for (size_t i = 0; i < shape.postings; ++i) {
        const unsigned month = static_cast<unsigned>(i * 12 / shape.postings) + 1;
        Record& period = *year->thelists()[month - 1];
        Ref<Record> item = Record::make(RecordClass::Item, created);
        fillPosting(*item, random, period, *year, shape.year, month, i + 1);
        period.items().push_back(item);
    }
    return Value::dict({{"clients", Value::array({Value::record(client)})}});
}

size_t countPostings(const Value& root) {
    size_t count = 0;
    const Value clients = root["clients"];
    if (clients.kind() != core::Kind::Array) return 0;
    for (const Value& c : clients.asArray()) {
        Record* client = c.asRecord();
        if (!client) continue;
        for (const Ref<Record>& year : client->theYears())
            for (const Ref<Record>& period : year->thelists())
                count += period->items().size();
    }
    return count;
}

} // namespace zifora::bench
