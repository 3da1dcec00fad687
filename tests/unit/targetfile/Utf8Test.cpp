#include "targetfile/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace flashwriter {
namespace {

const std::uint8_t* bytes(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

// Feeds text in pieces of at most piece bytes.
bool isValid(std::string_view text, std::size_t piece) {
    Utf8Validator validator;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, piece);
        if (!validator.feed(bytes(part), part.size())) {
            return false;
        }
        text.remove_prefix(part.size());
    }
    return validator.complete();
}

// Judges text alone and in ASCII of several lengths, whole and cut at every place.
void expectJudgement(std::string_view text, bool valid) {
    for (const std::size_t around : {0U, 1U, 7U, 63U, 64U, 130U}) {
        const std::string ascii(around, 'A');
        const std::string whole = std::string(ascii).append(text).append(ascii);
        for (const std::size_t piece : {1U, 2U, 3U, 64U, 1000U}) {
            EXPECT_EQ(isValid(whole, piece), valid)
                << testing::PrintToString(text) << " in " << around << ", by " << piece;
        }
    }
}

TEST(Utf8, AcceptsTheFirstAndTheLastCharacterOfEveryLength) {
    for (const char* text :
         {"\x01", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "エラー", "é\xF0\x9F\x98\x80"}) {
        expectJudgement(text, true);
    }
    expectJudgement(std::string_view("\0", 1), true);
    expectJudgement("", true);
}

TEST(Utf8, AcceptsTheCharactersOnBothSidesOfTheSurrogates) {
    expectJudgement("\xED\x9F\xBF", true);
    expectJudgement("\xEE\x80\x80", true);
}

TEST(Utf8, RefusesEncodedSurrogates) {
    expectJudgement("\xED\xA0\x80", false);
    expectJudgement("\xED\xBF\xBF", false);
}

TEST(Utf8, RefusesOverlongForms) {
    for (const char* text : {"\xC0\x80", "\xC0\xAF", "\xC1\xBF", "\xE0\x80\x80", "\xE0\x9F\xBF",
                             "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF"}) {
        expectJudgement(text, false);
    }
}

TEST(Utf8, RefusesValuesAbove10FFFF) {
    for (const char* text : {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF8\x88\x80\x80\x80",
                             "\xFC\x84\x80\x80\x80\x80", "\xFE", "\xFF"}) {
        expectJudgement(text, false);
    }
}

TEST(Utf8, RefusesStrayAndMissingContinuations) {
    for (const char* text : {"\x80", "\xBF", "\xC3", "\xC3\x41", "\xE3\x81", "\xE3\x41\x81",
                             "\xF0\x9F\x98", "\xC3\xA9\xA9", "\xC3\xC3\xA9"}) {
        expectJudgement(text, false);
    }
}

// The narrowed range of one character's second byte must not outlive it.
TEST(Utf8, JudgesEachCharacterAnew) {
    expectJudgement("\xE0\xA0\x80\xE1\x80\x80", true);
    expectJudgement("\xED\x9F\xBF\xE1\xBF\xBF", true);
    expectJudgement("\xF0\x90\x80\x80\xF1\x80\x80\x80", true);
    expectJudgement("\xF4\x8F\xBF\xBF\xF1\xBF\xBF\xBF", true);
}

TEST(Utf8, TellsAsciiWhereverTheOtherByteStands) {
    for (std::size_t length = 0; length < 200; ++length) {
        std::string text(length, '\x7F');
        EXPECT_TRUE(isAscii(bytes(text), length));
        for (std::size_t place = 0; place < length; ++place) {
            text[place] = '\x80';
            EXPECT_FALSE(isAscii(bytes(text), length)) << place << " of " << length;
            text[place] = '\x7F';
        }
    }
}

} // namespace
} // namespace flashwriter
