// The sentences of errors: raised with their arguments, and recognised again.
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "base/ErrorSentences.h"

namespace kq {
namespace {

constexpr ErrorSentence kSentences[] = {
#define KQ_X(name, error, sentence) ErrorSentence::name,
    KQ_ERROR_SENTENCES(KQ_X)
#undef KQ_X
        ErrorSentence::UnknownNetError,
};

// "first", "second" ... for as many placeholders as the sentence has.
std::vector<std::string> ArgumentsFor(ErrorSentence sentence) {
    const std::string text = EnglishOf(sentence);
    std::vector<std::string> args;
    for (const char* argument : {"first", "second", "third"}) {
        if (text.find("%" + std::to_string(args.size()) + "%") == text.npos) break;
        args.emplace_back(argument);
    }
    return args;
}

TEST(ErrorSentences, AreFilledWithTheirArguments) {
    EXPECT_EQ(TextOf(ErrorSentence::LongBlockArrived, {"70000", "65536"}),
              "A block of 70000 bytes arrived; at most 65536 are allowed");
    for (const auto sentence : kSentences)
        EXPECT_EQ(TextOf(sentence, ArgumentsFor(sentence)).find('%'), std::string::npos)
            << EnglishOf(sentence);
}

TEST(ErrorSentences, AreRecognisedWithTheirArguments) {
    for (const auto sentence : kSentences) {
        const auto args = ArgumentsFor(sentence);
        const auto known = FindSentence(NumberOf(sentence), TextOf(sentence, args));
        ASSERT_TRUE(known) << EnglishOf(sentence);
        EXPECT_EQ(known->sentence, sentence) << EnglishOf(sentence);
        EXPECT_EQ(known->args, args) << EnglishOf(sentence);
    }
}

TEST(ErrorSentences, HaveNoFullStopAtTheirEnd) {
    for (const auto sentence : kSentences)
        EXPECT_NE(std::string(EnglishOf(sentence)).back(), '.') << EnglishOf(sentence);
}

TEST(ErrorSentences, AreRaisedWithTheirNumberAndTheGivenSource) {
    try {
        Raise(ErrorSentence::PortOutOfRange, "KQAppProtocolLib", {"70000"});
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 10022);
        EXPECT_EQ(error.Source(), "KQAppProtocolLib");
        EXPECT_EQ(error.Description(), "The port 70000 is outside 1 to 65535");
    }
}

TEST(ErrorSentences, OfAConnectionAreTheGeneralOneForAnyOtherDescription) {
    const auto known = FindSentence(10053, "Something else");
    ASSERT_TRUE(known);
    EXPECT_EQ(known->sentence, ErrorSentence::ConnectionAborted);
    EXPECT_TRUE(known->args.empty());
    EXPECT_EQ(GeneralSentence(10053), ErrorSentence::ConnectionAborted);
}

TEST(ErrorSentences, OfARuntimeErrorAreRecognisedWordForWordOnly) {
    const std::int32_t number = NumberOf(RuntimeError::TypeMismatch);
    EXPECT_TRUE(FindSentence(number, "Type mismatch"));
    EXPECT_FALSE(FindSentence(number, "Type mismatch in line 3"));
}

TEST(ErrorSentences, DoNotDescribeErrorsOfOthers) {
    EXPECT_FALSE(FindSentence(7721, "The connection was refused"));
    EXPECT_FALSE(FindSentence(0, ""));
    EXPECT_EQ(GeneralSentence(12345), std::nullopt);
}

TEST(ErrorSentences, KnowANumberOutsideTheListByItsOwnSentence) {
    const auto known = FindSentence(12345, NetErrorText(12345));
    ASSERT_TRUE(known);
    EXPECT_EQ(known->sentence, ErrorSentence::UnknownNetError);
    EXPECT_EQ(known->args, std::vector<std::string>{"12345"});
}

}  // namespace
}  // namespace kq
