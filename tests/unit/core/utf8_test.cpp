#include "core/utf8.h"

#include <gtest/gtest.h>

#include <string>

using namespace zifora::core;

namespace {

// The length decodeUtf8 gives for the first character of `bytes`.
size_t decodedLength(std::string_view bytes) {
    return decodeUtf8(bytes, 0).length;
}

} // namespace

TEST(Utf8, EveryScalarValueRoundTripsThroughUtf8AndUtf16) {
    for (char32_t cp = 0; cp <= 0x10FFFF; ++cp) {
        if (cp == 0xD800) cp = 0xE000; // surrogates are no characters
        std::string bytes;
        appendUtf8(bytes, cp);
        const size_t expectedLength = cp < 0x80 ? 1 : cp < 0x800 ? 2 : cp < 0x10000 ? 3 : 4;
        ASSERT_EQ(bytes.size(), expectedLength) << std::hex << static_cast<uint32_t>(cp);
        const Utf8Character decoded = decodeUtf8(bytes, 0);
        ASSERT_EQ(decoded.codePoint, cp);
        ASSERT_EQ(decoded.length, expectedLength);
        ASSERT_EQ(utf8FromUtf16(utf16FromUtf8(bytes)), bytes)
            << std::hex << static_cast<uint32_t>(cp);
    }
}

TEST(Utf8, EncodesTheBoundariesOfEachLength) {
    auto encoded = [](char32_t cp) {
        std::string out;
        appendUtf8(out, cp);
        return out;
    };
    EXPECT_EQ(encoded(0x7F), "\x7F");
    EXPECT_EQ(encoded(0x80), "\xC2\x80");
    EXPECT_EQ(encoded(0x7FF), "\xDF\xBF");
    EXPECT_EQ(encoded(0x800), "\xE0\xA0\x80");
    EXPECT_EQ(encoded(0x20AC), "\xE2\x82\xAC");
    EXPECT_EQ(encoded(0xFFFF), "\xEF\xBF\xBF");
    EXPECT_EQ(encoded(0x10000), "\xF0\x90\x80\x80");
    EXPECT_EQ(encoded(0x10FFFF), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, RefusesOverlongForms) {
    for (std::string_view overlong : {"\xC0\x80", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF",
                                      "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF"}) {
        EXPECT_EQ(decodedLength(overlong), 0u);
        EXPECT_FALSE(isValidUtf8(overlong));
    }
    // The shortest forms of the same boundaries are fine.
    EXPECT_EQ(decodedLength("\xE0\xA0\x80"), 3u);
    EXPECT_EQ(decodedLength("\xF0\x90\x80\x80"), 4u);
}

TEST(Utf8, RefusesSurrogatesAndCodePointsAboveTheLast) {
    EXPECT_EQ(decodedLength("\xED\xA0\x80"), 0u);     // U+D800
    EXPECT_EQ(decodedLength("\xED\xBF\xBF"), 0u);     // U+DFFF
    EXPECT_EQ(decodedLength("\xED\x9F\xBF"), 3u);     // U+D7FF
    EXPECT_EQ(decodedLength("\xEE\x80\x80"), 3u);     // U+E000
    EXPECT_EQ(decodedLength("\xF4\x90\x80\x80"), 0u); // U+110000
    EXPECT_EQ(decodedLength("\xF5\x80\x80\x80"), 0u);
    EXPECT_EQ(decodedLength("\xFF"), 0u);
    EXPECT_FALSE(isValidUtf8("ok \xED\xA0\x80"));
}

TEST(Utf8, RefusesStrayContinuationBytesAndCutOffSequences) {
    EXPECT_EQ(decodedLength("\x80"), 0u);
    EXPECT_EQ(decodedLength("\xBF"), 0u);
    EXPECT_EQ(decodedLength("\xE2\x82"), 0u); // cut off at the end
    EXPECT_EQ(decodedLength("\xE2\x82"
                            "A"),
              0u); // interrupted
    EXPECT_EQ(decodedLength("\xC3"), 0u);
    EXPECT_TRUE(isValidUtf8(""));
    EXPECT_TRUE(isValidUtf8("Gründungsjahr 2026 €"));
    EXPECT_FALSE(isValidUtf8("Gr\xFC"
                             "ndungsjahr")); // Latin-1
}

TEST(Utf8, RepairReplacesEachByteOutsideASequence) {
    EXPECT_EQ(repairedUtf8("Müller & Söhne"), "Müller & Söhne");
    EXPECT_EQ(repairedUtf8("M\xFCller"), "M\uFFFDller");
    // A cut-off sequence is two bytes, and so two replacement characters.
    EXPECT_EQ(repairedUtf8("a\xE2\x82"
                           "b"),
              "a\uFFFD\uFFFDb");
    EXPECT_EQ(repairedUtf8("\xC0\x80"), "\uFFFD\uFFFD");
    EXPECT_EQ(repairedUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(repairedUtf8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
    // Repair agrees with the UTF-16 conversion, which replaces the same way.
    const std::string broken = "x\xF0\x9F\x98y\xE2\x82\xAC\x80";
    EXPECT_EQ(repairedUtf8(broken), utf8FromUtf16(utf16FromUtf8(broken)));
}

TEST(Utf8, CountsCharactersNotBytes) {
    EXPECT_EQ(utf8CharacterCount(""), 0u);
    EXPECT_EQ(utf8CharacterCount("2026"), 4u);
    EXPECT_EQ(utf8CharacterCount("Gründungsjahr"), 13u);
    EXPECT_EQ(utf8CharacterCount("€"), 1u);
    EXPECT_EQ(utf8CharacterCount("\xF0\x9D\x84\x9E"), 1u); // U+1D11E
    EXPECT_EQ(utf8CharacterCount("a\xE2\x82"
                                 "b"),
              4u); // as repaired: a, �, �, b
}

TEST(Utf8, Utf16KeepsPairsAndReplacesLoneSurrogates) {
    EXPECT_EQ(utf16FromUtf8("a€\xF0\x9D\x84\x9E"), (std::u16string{u'a', 0x20AC, 0xD834, 0xDD1E}));
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xD834, 0xDD1E}), "\xF0\x9D\x84\x9E");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xD834}), "\uFFFD");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xDD1E, 0xD834}), "\uFFFD\uFFFD");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xD834, u'x'}), "\uFFFDx");
    EXPECT_EQ(utf16FromUtf8("\xFF"
                            "a"),
              (std::u16string{0xFFFD, u'a'}));
}
