// The control messages of the bus as their list makes them.
#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libs/xmlbus/BusControl.h"

namespace kq {
namespace {

std::vector<std::string> RowsOfTheDocument() {
    std::ifstream file(KQ_SOURCE_DIR "/docs/wire.md");
    std::vector<std::string> rows;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("| \"Bus")) rows.push_back(line);
    return rows;
}

std::vector<std::string> RowsOfTheList() {
    std::vector<std::string> rows;
    std::string fields;
#define KQ_FIELD(kind, name) fields += (fields.empty() ? "\"" : ", \"") + std::string(#name) + "\"";
#define KQ_ROW(type, sender, meaning, names) \
    fields.clear();                          \
    names rows.push_back("| \"" #type "\" | " sender " | " + fields + " | " meaning " |");
    KQ_BUS_CONTROLS(KQ_ROW, KQ_FIELD)
#undef KQ_ROW
#undef KQ_FIELD
    return rows;
}

TEST(BusControl, IsWhatTheDocumentShows) {
    EXPECT_THAT(RowsOfTheDocument(), testing::ElementsAreArray(RowsOfTheList()));
}

TEST(BusControl, IsWrittenWithItsFieldsInOrder) {
    EXPECT_EQ((BusHello{"c1", "a1", 7}.Build().ToBusXML()),
              "<ASBusMessage type=\"BusHello\" version=\"1\" schema=\"\"><Client>c1</Client>"
              "<Nonce>a1</Nonce><Taken>7</Taken></ASBusMessage>");
}

TEST(BusControl, IsReadAsItWasWritten) {
    const auto read = BusSubscribe::Read(ParseBusControl(BusSubscribe{"AS", "", 1}.Build().ToBusXML()));
    EXPECT_EQ(read.Type, "AS");
    EXPECT_EQ(read.SubType, "");
    EXPECT_EQ(read.Option, 1);
}

TEST(BusControl, HasEmptyTextsAndNoCountsWhereFieldsAreMissing) {
    const auto read = BusHello::Read(MakeBusControl(BusHello::kType));
    EXPECT_EQ(read.Client + read.Nonce, "");
    EXPECT_EQ(read.Taken, -1);
}

}  // namespace
}  // namespace kq
