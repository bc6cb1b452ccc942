// The type libraries inside the DLL against the golden texts: nothing in them may move.
#include <fstream>
#include <iterator>

#include "automation/Host.h"
#include "automation/TypeLibraryText.h"

namespace kq {
namespace {

struct Library {
    std::size_t number;
    const char* name;
};

class TypeLibrary : public testing::TestWithParam<Library> {};

TEST_P(TypeLibrary, IsAsItStands) {
    const auto libraries = TypeLibrariesOf(DllPath());
    ASSERT_EQ(libraries.size(), 7U);
    std::ifstream file(std::string(KQ_SOURCE_DIR "/tests/golden/typelib/") + GetParam().name + ".txt");
    ASSERT_TRUE(file);
    const std::string golden{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(golden.find('?'), std::string::npos);  // every type of another library has its name
    EXPECT_EQ(TypeLibraryText(*libraries[GetParam().number - 1].Get()), golden);
}

INSTANTIATE_TEST_SUITE_P(All, TypeLibrary,
                         testing::Values(Library{1, "KQAppSessionLib"}, Library{2, "KQXMLMessageLib"},
                                         Library{3, "KQAppProtocolLib"}, Library{4, "KQXMLBusClientLib"},
                                         Library{5, "KQWebDataLib"}, Library{6, "KQStatisticsLib"},
                                         Library{7, "KQTimerLib"}),
                         [](const auto& library) { return std::string(library.param.name); });

}  // namespace
}  // namespace kq
