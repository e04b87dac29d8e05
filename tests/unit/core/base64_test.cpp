#include "core/base64.h"

#include <gtest/gtest.h>

#include <string>

using namespace zifora::core;

TEST(Base64, PadsToWholeGroupsOfFour) {
    // The examples of RFC 4648.
    const std::pair<std::string_view, std::string_view> examples[] = {{"", ""},
                                                                      {"f", "Zg=="},
                                                                      {"fo", "Zm8="},
                                                                      {"foo", "Zm9v"},
                                                                      {"foob", "Zm9vYg=="},
                                                                      {"fooba", "Zm9vYmE="},
                                                                      {"foobar", "Zm9vYmFy"}};
    for (const auto& [bytes, text] : examples) {
        EXPECT_EQ(encodeBase64(bytes), text);
        EXPECT_EQ(decodeBase64(text), std::string(bytes));
    }
    EXPECT_EQ(encodeBase64("\xFB\xFF"), "+/8=");
}

TEST(Base64, EveryByteValueRoundTrips) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    for (size_t length = 0; length <= bytes.size(); length += 37) {
        const std::string part = bytes.substr(bytes.size() - length);
        const std::string text = encodeBase64(part);
        EXPECT_EQ(text.size() % 4, 0u);
        EXPECT_EQ(decodeBase64(text), part);
    }
}

TEST(Base64, ReadsTextWithoutPaddingOrBrokenIntoLines) {
    EXPECT_EQ(decodeBase64("Zg"), "f");
    EXPECT_EQ(decodeBase64("Zm8"), "fo");
    EXPECT_EQ(decodeBase64("Zm9v\nYmFy"), "foobar");
    EXPECT_EQ(decodeBase64("\t Zm9v\r\n Yg==\n"), "foob");
    EXPECT_EQ(decodeBase64("Zg = ="), "f");
}

TEST(Base64, RefusesWhatIsNotBase64) {
    EXPECT_EQ(decodeBase64("Zm9v!"), std::nullopt);
    EXPECT_EQ(decodeBase64("Zm9v-_"), std::nullopt); // the URL alphabet is another one
    EXPECT_EQ(decodeBase64(std::string_view("Zm\0v", 4)), std::nullopt);
    EXPECT_EQ(decodeBase64("Zg==Zg=="), std::nullopt); // letters after the padding
    EXPECT_EQ(decodeBase64("Z"), std::nullopt);        // six bits are no byte
    EXPECT_EQ(decodeBase64("Zm9vY"), std::nullopt);
    EXPECT_EQ(decodeBase64("Zm9vYg=\xC3\xA4"), std::nullopt);
}
