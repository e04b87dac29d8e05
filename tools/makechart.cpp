// makechart: turns a plain chart of accounts ("number;title" per line) into a ".kmdb" keyed
// archive, the form in which the program ships its built-in charts.
//
// Usage: makechart INPUT.txt OUTPUT.kmdb
//
// Input rules: UTF-8 text; one account per line as "number;title", split at the first
// semicolon; blank lines and lines starting with "#" are skipped. A number must be unique in
// its file and neither part may be empty or carry blanks at its ends. Any broken line stops
// the build with the file, the line and the cause, so that no half chart is shipped.

#include "core/atomicfile.h"
#include "core/keyedarchive.h"
#include "core/record.h"
#include "core/utf8.h"

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace zifora;

// Every account of a built-in chart carries the same creation time, so that the archives
// come out byte for byte the same at every build: 2013-01-01 00:00:00 UTC.
constexpr double kChartCreationUnix = 1356998400.0;

struct ChartLine {
    std::string number;
    std::string title;
};

bool hasOuterBlanks(std::string_view s) {
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    return !s.empty() && (blank(s.front()) || blank(s.back()));
}

// True if `s` is well-formed UTF-8 without control characters.
bool isCleanUtf8(std::string_view s) {
    return core::isValidUtf8(s) && std::none_of(s.begin(), s.end(), [](char c) {
               return static_cast<unsigned char>(c) < 0x20;
           });
}

core::Result<std::vector<ChartLine>> parseChart(const std::string& text, const std::string& name) {
    std::vector<ChartLine> lines;
    std::set<std::string> numbers;
    size_t start = 0;
    for (int lineNumber = 1; start < text.size(); ++lineNumber) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string_view line(text.data() + start, end - start);
        start = end + 1;
        std::string where = name + ":" + std::to_string(lineNumber) + ": ";
        if (line.empty() || line.front() == '#') continue;
        size_t semicolon = line.find(';');
        if (semicolon == std::string_view::npos)
            return core::fail(where + "no ';' between number and title");
        ChartLine entry{std::string(line.substr(0, semicolon)),
                        std::string(line.substr(semicolon + 1))};
        if (entry.number.empty() || entry.title.empty())
            return core::fail(where + "empty number or title");
        if (hasOuterBlanks(entry.number) || hasOuterBlanks(entry.title))
            return core::fail(where + "blanks around the number or the title");
        if (!isCleanUtf8(entry.number) || !isCleanUtf8(entry.title))
            return core::fail(where + "not clean UTF-8 text");
        if (!numbers.insert(entry.number).second)
            return core::fail(where + "account " + entry.number + " appears twice");
        lines.push_back(std::move(entry));
    }
    if (lines.empty()) return core::fail(name + ": no accounts");
    return lines;
}

core::Value chartArchiveRoot(const std::vector<ChartLine>& lines) {
    core::Date created = core::Date::fromUnix(kChartCreationUnix);
    core::ArrayElements accounts;
    accounts.reserve(lines.size());
    for (const ChartLine& line : lines) {
        auto account = core::Record::make(core::RecordClass::Account, created);
        account->set("number", core::Value::string(line.number));
        account->set("title", core::Value::string(line.title));
        accounts.push_back(core::Value::record(account));
    }
    return core::Value::dict({{"accounts", core::Value::array(std::move(accounts))}});
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: makechart INPUT.txt OUTPUT.kmdb\n";
        return 2;
    }
    auto text = core::readWholeFile(argv[1]);
    if (!text) {
        std::cerr << "makechart: " << text.error().message << "\n";
        return 1;
    }
    auto lines = parseChart(*text, argv[1]);
    if (!lines) {
        std::cerr << "makechart: " << lines.error().message << "\n";
        return 1;
    }
    auto written =
        core::writeFileAtomically(argv[2], core::encodeKeyedArchive(chartArchiveRoot(*lines)));
    if (!written) {
        std::cerr << "makechart: " << written.error().message << "\n";
        return 1;
    }
    return 0;
}
