// What users of each language are told of errors of connections and of texts that do not load.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <kqappsession/WebData.h>
#include <kqappsession/XMLMessage.h>

#include "messages/MessagesTesting.h"
#include "messages/Sentences.h"

namespace kq {
namespace {

constexpr ErrorSentence kSentences[] = {
#define KQ_X(name, error, sentence) ErrorSentence::name,
    KQ_ERROR_SENTENCES(KQ_X)
#undef KQ_X
        ErrorSentence::UnknownNetError,
};
constexpr Tongue kTongues[] = {Tongue::English, Tongue::Portuguese, Tongue::Spanish};

std::set<std::string> PlaceholdersOf(const std::string& text) {
    std::set<std::string> found;
    for (int i = 0; i < 10; ++i) {
        const std::string placeholder = "%" + std::to_string(i) + "%";
        if (text.find(placeholder) != text.npos) found.insert(placeholder);
    }
    return found;
}

// KQ_UPDATE_GOLDEN=1 rewrites the file.
TEST(Sentences, AreAsAgreed) {
    std::string all;
    for (const auto sentence : kSentences) {
        for (const auto tongue : kTongues)
            all += std::string(TranslationsOf(sentence).In(tongue)) + "\n";
        all += "\n";
    }
    const std::string path = KQ_SOURCE_DIR "/tests/golden/sentences.txt";
    if (std::getenv("KQ_UPDATE_GOLDEN")) std::ofstream(path, std::ios::binary) << all;
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(all, std::string(std::istreambuf_iterator<char>(file), {}));
}

TEST(Sentences, KeepThePlaceholdersInEveryLanguage) {
    for (const auto sentence : kSentences) {
        for (const auto tongue : kTongues) {
            const std::string text = TranslationsOf(sentence).In(tongue);
            EXPECT_EQ(PlaceholdersOf(text), PlaceholdersOf(EnglishOf(sentence))) << text;
        }
    }
}

TEST(Sentences, AreAnotherInEachLanguage) {
    for (const auto sentence : kSentences) {
        std::set<std::string> texts;
        for (const auto tongue : kTongues)
            texts.insert(TranslationsOf(sentence).In(tongue));
        EXPECT_EQ(texts.size(), 3U) << EnglishOf(sentence);
    }
}

TEST(Sentences, AreNeverEmptyAndHaveNoFullStop) {
    for (const auto sentence : kSentences) {
        for (const auto tongue : kTongues) {
            const std::string text = TranslationsOf(sentence).In(tongue);
            ASSERT_FALSE(text.empty()) << EnglishOf(sentence);
            EXPECT_NE(text.back(), '.') << text;
        }
    }
}

TEST(Sentences, DescribeEveryConnectionErrorInTheLanguage) {
    for (std::int32_t number = 10000; number < 11100; ++number) {
        const std::string english = NetErrorText(number);
        EXPECT_EQ(DescriptionIn(Tongue::English, number, english), english);
        for (const auto tongue : {Tongue::Portuguese, Tongue::Spanish})
            EXPECT_NE(DescriptionIn(tongue, number, english), english) << number;
    }
}

TEST(Sentences, TakeTheArgumentsOver) {
    EXPECT_EQ(
        DescriptionIn(Tongue::Spanish, 10040, TextOf(ErrorSentence::LongBlockArrived, {"70000", "65536"})),
        "Llegó un bloque de 70000 bytes; se permiten como máximo 65536");
    EXPECT_EQ(DescriptionIn(Tongue::Portuguese, 12345, NetErrorText(12345)), "A rede informou o erro 12345");
}

TEST(Sentences, DescribeATextThatDoesNotLoadWithoutTheReason) {
    const std::string reason = "The text is not a message: the tag is not closed (byte 3)";
    EXPECT_EQ(DescriptionIn(Tongue::Spanish, XMLMessage::kNotAMessage, reason), "El texto no es un mensaje");
    EXPECT_EQ(DescriptionIn(Tongue::Portuguese, kNotWebData, reason),
              "O texto não contém os dados esperados");
    EXPECT_EQ(DescriptionIn(Tongue::English, XMLMessage::kNotAMessage, reason), reason);
}

TEST(Sentences, LeaveWhatOthersSay) {
    EXPECT_EQ(DescriptionIn(Tongue::Spanish, 7721, "Account locked"), "Account locked");
    EXPECT_EQ(DescriptionIn(Tongue::Spanish, NumberOf(RuntimeError::InvalidProcedureCall), "No such file"),
              "No such file");
}

std::string RefusedFor(std::int32_t locale) {
    FakePlatform fakes;
    fakes.locale->id = locale;
    Platform::Machine parts = fakes.platform->Parts();
    parts.strings = MakePosixStringTable(*fakes.locale);
    return Texts(MakeBundle(parts)).ForUser(Error(10061, "KQAppProtocolLib", NetErrorText(10061)));
}

TEST(Sentences, AreInTheLanguageOfTheTexts) {
    for (const std::int32_t spanish : {2058, 9226, 10250, 11274, 13322, 14346, 15370, 3082})
        EXPECT_EQ(RefusedFor(spanish), "Se rechazó la conexión") << spanish;
    for (const std::int32_t portuguese : {1046, 2070})
        EXPECT_EQ(RefusedFor(portuguese), "A conexão foi recusada") << portuguese;
    for (const std::int32_t english : {1033, 2057, 1031})
        EXPECT_EQ(RefusedFor(english), "The connection was refused") << english;
}

}  // namespace
}  // namespace kq
