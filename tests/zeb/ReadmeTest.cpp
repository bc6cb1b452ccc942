// The document for operators names every refusal and every setting.
#include <array>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "zeb/Config.h"
#include "zeb/store/Refusal.h"

namespace kq::zeb {
namespace {

std::string Readme() {
    std::ifstream file(KQ_SOURCE_DIR "/zeb/README.md");
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ZebReadme, NamesEveryRefusal) {
    const auto text = Readme();
    for (const auto refusal : {
#define X(name, number, param, sentence) Refusal::name,
             KQ_ZEB_REFUSALS(X)
#undef X
         }) {
        const auto row = "| " + std::to_string(NumberOf(refusal)) + " | " + std::string(CodeOf(refusal)) +
                         (CodeOf(refusal).empty() ? "| " : " | ") + std::string(SentenceOf(refusal)) + " |";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

TEST(ZebReadme, NamesEverySetting) {
    const auto text = Readme();
    for (const auto& setting : ConfigSettings()) {
        const auto row = "| `" + std::string(setting.name) + "` | ";
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
}

}  // namespace
}  // namespace kq::zeb
