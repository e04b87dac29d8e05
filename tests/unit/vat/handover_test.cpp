#include "vat/handover.h"

#include "core/atomicfile.h"
#include "posting/numberformat.h"

#include <gtest/gtest.h>

using namespace zifora;
using namespace zifora::vat;
using core::Value;

namespace {

std::string golden(const std::string& name) {
    auto bytes =
        core::readWholeFile(std::string(ZIFORA_SOURCE_DIR) + "/tests/unit/vat/golden/" + name);
    EXPECT_TRUE(bytes) << name;
    return bytes ? *bytes : std::string();
}

HandOverHead firstQuarter2014() {
    return {Value::string("Muster Design"), Value::string("21/815/08150"),
            Value::string("2181508150"), Value::string("1. Kalendervierteljahr"),
            Value::string("2014")};
}

// Figures at the edges of the plain pattern: grouping never, rounding at the hundredth,
// the zero and the negative sections.
Kennzahlen edgeFigures() {
    Kennzahlen k;
    k.kz81 = 1234.5f;
    k.kz86 = 0.0f;
    k.kz35 = 999.999f;
    k.kz45 = -0.001f;
    k.kz66 = 12.5f;
    k.kz83 = -1234.5f;
    k.kz48 = 100000.0f;
    return k;
}

} // namespace

TEST(PeriodCode, EveryPeriodTitleHasItsCodeAndAnyOtherTitleNone) {
    const std::pair<const char*, const char*> table[] = {{"Jahr", "19"},
                                                         {"1. Kalendervierteljahr", "41"},
                                                         {"2. Kalendervierteljahr", "42"},
                                                         {"3. Kalendervierteljahr", "43"},
                                                         {"4. Kalendervierteljahr", "44"},
                                                         {"Januar", "01"},
                                                         {"Februar", "02"},
                                                         {"März", "03"},
                                                         {"April", "04"},
                                                         {"Mai", "05"},
                                                         {"Juni", "06"},
                                                         {"Juli", "07"},
                                                         {"August", "08"},
                                                         {"September", "09"},
                                                         {"Oktober", "10"},
                                                         {"November", "11"},
                                                         {"Dezember", "12"}};
    for (const auto& [title, code] : table)
        EXPECT_EQ(periodCode(title), code) << title;
    for (const char* other : {"Januar ", "januar", "Maerz", "", "Q1", "1. Quartal"})
        EXPECT_EQ(periodCode(other), "") << other;
}

TEST(WinstonFile, NameAndBytesEqualTheGoldenFile) {
    const posting::AmountFormats formats("de_DE");
    EXPECT_EQ(winstonFileName(firstQuarter2014()), "Zifora_41_2014.xml");
    EXPECT_EQ(winstonXml(firstQuarter2014(), edgeFigures(), formats), golden("Zifora_41_2014.xml"));
}

TEST(WinstonFile, AnUnknownTitleAndAnEmptyNumberGoOutEmptyAndAbsentValuesAsNull) {
    const posting::AmountFormats formats("de_DE");
    HandOverHead head = firstQuarter2014();
    head.title = Value::string("1. Kalendervierteljahr ");
    head.elsterId = Value::string("");
    EXPECT_EQ(winstonFileName(head), "Zifora__2014.xml");
    const std::string xml = winstonXml(head, Kennzahlen{}, formats);
    EXPECT_NE(xml.find("<Ordnungsnummer></Ordnungsnummer>\n\t<AnmeldeJahr>2014</AnmeldeJahr>\n"
                       "\t<AnmeldeZeitraum></AnmeldeZeitraum>"),
              std::string::npos)
        << xml;
    EXPECT_NE(xml.find("<Kennzahl nr=\"Kz48\">0,00</Kennzahl>\n</WinstonAusgang>"),
              std::string::npos);
    EXPECT_FALSE(xml.ends_with("\n"));

    const HandOverHead nothing{};
    EXPECT_EQ(winstonFileName(nothing), "Zifora__(null).xml");
    EXPECT_NE(winstonXml(nothing, Kennzahlen{}, formats).find("<Ordnungsnummer>(null)<"),
              std::string::npos);
}

TEST(ClipboardText, EqualsTheGoldenFileWithSixLinesOfFigures) {
    const std::array<std::string, 6> texts{"1.234,50", "0,00",  "1.000,00",
                                           "-0,00",    "12,50", "-1.234,50"};
    const std::string text = clipboardText(firstQuarter2014(), texts);
    EXPECT_EQ(text, golden("clipboard.txt"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 7);
    EXPECT_EQ(text.find("48\t"), std::string::npos) << "Kennzahl 48 is not part of the text";
}

TEST(Kennzahlen, TakeTheFiguresOfTheTotalsAndKeepTheOrderOfTheFile) {
    posting::AdvanceReturnFigures f;
    f.steuerfreieUmsaetze = 1;
    f.tax1Sum = 2;
    f.tax2Sum = 3;
    f.tax3Sum = 4;
    f.tax1Amount = 50;
    f.nichtSteuerbar = 5;
    f.abziehbareBetraege = 60;
    f.abziehbareBetraegeSteuerAmount = 6;
    f.saldo = 7;
    const Kennzahlen k = kennzahlenOf(f);
    std::string order;
    for (const KennzahlSource& s : kennzahlSources())
        order += std::string(s.number) + "=" + std::to_string(static_cast<int>(k.*s.figure)) + " ";
    EXPECT_EQ(order, "81=2 86=3 35=4 45=5 66=6 83=7 48=1 ");
}

TEST(FigureFieldText, GroupsWithTwoDecimalsAndShowsNothingForAnEmptyField) {
    EXPECT_EQ(figureFieldText(Value{}), "");
    EXPECT_EQ(figureFieldText(Value::floatValue(1234.5f)), "1.234,50");
    EXPECT_EQ(figureFieldText(Value::floatValue(-7.0f)), "-7,00");
    EXPECT_EQ(figureFieldText(Value::floatValue(0.0f)), "0,00");
}

TEST(DefaultOutbox, LiesBesideTheProgramsDataFolder) {
    core::Places places = core::Places::forHome("/home/anna");
    EXPECT_EQ(defaultOutboxFolder(places), "/home/anna/.local/share/Winston/Ausgang/");
    places.dataFolder = "/data/Zifora";
    EXPECT_EQ(defaultOutboxFolder(places), "/data/Winston/Ausgang/");
}
