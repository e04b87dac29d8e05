#include "posting/amountentry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace zifora::posting {
namespace {

using core::Value;

constexpr std::string_view kGerman = "de_DE";

TEST(AmountEntry, TheFieldTakesGermanNotationAndRefusesWhatIsNoPositiveAmount) {
    EXPECT_EQ(acceptedSum("119,50", kGerman), 119.5f);
    EXPECT_EQ(acceptedSum(" 1.234,56 ", kGerman), 1234.56f);
    EXPECT_EQ(acceptedSum("1.000", kGerman), 1000.0f) << "three digits after a point group";
    EXPECT_EQ(acceptedSum("119.5", kGerman), 119.5f) << "one digit after a point is a fraction";
    EXPECT_EQ(acceptedSum("0", kGerman), 0.0f);
    for (const char* refused : {"", "   ", "abc", "12abc", "-5", "-0,01", "1e50", "12,3,4"})
        EXPECT_EQ(acceptedSum(refused, kGerman), std::nullopt) << refused;
}

TEST(AmountEntry, TheCalculationReadsAnyTextOnceWithoutFailing) {
    EXPECT_EQ(sumFieldValue("23,80", kGerman), 23.8f);
    EXPECT_EQ(sumFieldValue("", kGerman), 0.0f);
    EXPECT_EQ(sumFieldValue("  ", kGerman), 0.0f);
    EXPECT_EQ(sumFieldValue("abc", kGerman), 0.0f);
    EXPECT_EQ(sumFieldValue("12abc", kGerman), 12.0f) << "the plain read stops at the letters";
}

// Whatever the field accepted must come back bit for bit: from the stored text through every
// float read of the program, and through the field's own display and parse. Values with three
// decimals are the trap, since "1.234" reads as a thousand under German notation.
TEST(AmountEntry, StoredSumsSurviveTheFloatReadAndTheFieldBitForBit) {
    std::vector<float> sums = {0.0f,   0.1f,     0.057f,    1.234f, 12.345f, 19.99f,
                               119.5f, 1234.56f, 999999.9f, 1.0e7f, 3.0e-5f, 16777217.0f};
    for (uint32_t bits = 0x3c000000u; bits < 0x4b000000u; bits += 0x0012345u)
        sums.push_back(std::bit_cast<float>(bits));
    for (float sum : sums) {
        const std::string stored = storedAmountText(sum);
        EXPECT_EQ(std::bit_cast<uint32_t>(Value::string(stored).toFloat()),
                  std::bit_cast<uint32_t>(sum))
            << stored;
        const std::string shown = sumFieldTextFor(Value::string(stored), kGerman);
        const std::optional<float> back = acceptedSum(shown, kGerman);
        ASSERT_TRUE(back.has_value()) << shown;
        EXPECT_EQ(std::bit_cast<uint32_t>(*back), std::bit_cast<uint32_t>(sum)) << shown;
    }
}

TEST(AmountEntry, TheFieldShowsNumbersAndPlainTextsTheGermanWayAndOtherTextsAsTheyStand) {
    EXPECT_EQ(sumFieldTextFor(Value::floatValue(29.75f), kGerman), "29,75");
    EXPECT_EQ(sumFieldTextFor(Value::floatValue(1.0e7f), kGerman), "10000000");
    EXPECT_EQ(sumFieldTextFor(Value::doubleValue(0.5), kGerman), "0,5");
    EXPECT_EQ(sumFieldTextFor(Value::intValue(50), kGerman), "50");
    EXPECT_EQ(sumFieldTextFor(Value::string("1234.5"), kGerman), "1234,5");
    EXPECT_EQ(sumFieldTextFor(Value::string("119,50"), kGerman), "119,50");
    EXPECT_EQ(sumFieldTextFor(Value::string("12 Euro"), kGerman), "12 Euro");
    EXPECT_EQ(sumFieldTextFor(Value::string("1."), kGerman), "1.");
    EXPECT_EQ(sumFieldTextFor(Value::string(""), kGerman), "");
    EXPECT_EQ(sumFieldTextFor(Value{}, kGerman), "");
    EXPECT_EQ(sumFieldTextFor(Value::floatValue(INFINITY), kGerman), "");
    EXPECT_EQ(sumFieldTextFor(Value::floatValue(2.5f), "en_US"), "2.5");
}

} // namespace
} // namespace zifora::posting
