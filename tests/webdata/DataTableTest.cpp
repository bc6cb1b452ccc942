// Data tables, their rows and what is selected from them.
#include <kqappsession/WebData.h>

#include "xmlmessage/XMLTesting.h"

namespace kq {
namespace {

using testing::ExpectError;
using testing::ExpectInvalidCall;
using testing::RandomTexts;
using testing::Repeated;

DataTable Forms() {
    DataTable table("kqasForms", "FormName,Flags,ShowState");
    for (const auto* name : {"frmMain", "frmList", "frmMain"})
        table.AddRow()->SetValue("FormName", name);
    table.Rows().Item(1)->SetValue("ShowState", "3");
    return table;
}

DataTable Loaded(const std::string& xml) {
    DataTable table;
    table.LoadXML(xml);
    return table;
}

TEST(DataTable, TakesItsColumnsFromAListWithCommas) {
    const std::vector<std::string> expected = {"FormName", "Flags", "ShowState"};
    EXPECT_EQ(Forms().Columns(), expected);
    EXPECT_EQ(DataTable("t", " FormName , Flags,ShowState ").Columns(), expected);
    EXPECT_TRUE(DataTable("t", "").Columns().empty());
}

TEST(DataTable, RefusesColumnsWithoutANameOrOfTheSameName) {
    ExpectInvalidCall([] { DataTable("t", "a,,b"); });
    ExpectInvalidCall([] { DataTable("t", "a,"); });
    ExpectInvalidCall([] { DataTable("t", "a,\x01"); });
    ExpectError(RuntimeError::DuplicateKey, [] { DataTable("t", "a,b, a"); });
}

TEST(DataTable, Has1024ColumnsAtMost) {
    std::string columns = "c0";
    for (int i = 1; i < 1024; ++i)
        columns += ",c" + std::to_string(i);
    EXPECT_EQ(DataTable("t", columns).Columns().size(), 1024U);
    ExpectInvalidCall([&] { DataTable("t", columns + ",one_more"); });
}

TEST(DataTable, SelectsTheRowsThatHoldExactlyAValue) {
    const auto rows = Forms().Select("FormName", "frmMain");
    ASSERT_EQ(rows.Count(), 2);
    EXPECT_EQ(rows.Item(1)->Value("ShowState"), "3");
    EXPECT_EQ(rows.Item(2)->Value("ShowState"), "");
    EXPECT_EQ(Forms().Select("FormName", "frmmain").Count(), 0);
}

TEST(DataTable, SelectsRowsWithoutAValueByAnEmptyOne) {
    EXPECT_EQ(Forms().Select("ShowState", "").Count(), 2);
}

TEST(DataTable, SelectsNothingByAColumnThatItHasNot) {
    ExpectInvalidCall([] { Forms().Select("Name", "frmMain"); });
}

TEST(DataTable, GivesTheRowItselfToBeChanged) {
    auto table = Forms();
    table.Select("FormName", "frmList").Item(1)->SetValue("Flags", "2");
    EXPECT_EQ(table.Rows().Item(2)->Value("Flags"), "2");
}

TEST(DataTable, CountsItsRowsFromOne) {
    const auto rows = Forms().Rows();
    ExpectInvalidCall([&] { rows.Item(0); });
    ExpectInvalidCall([&] { rows.Item(4); });
    ExpectInvalidCall([&] { rows.Item(-1); });
    EXPECT_EQ(rows.Item(3)->Value("FormName"), "frmMain");
}

TEST(DataTable, RemovesARowOfItsOwnOnly) {
    auto table = Forms();
    table.RemoveRow(table.Rows().Item(1));
    EXPECT_EQ(table.Rows().Count(), 2);
    EXPECT_EQ(table.Rows().Item(1)->Value("FormName"), "frmList");
    ExpectInvalidCall([&] { table.RemoveRow(Forms().Rows().Item(1)); });
    ExpectInvalidCall([&] { table.RemoveRow(nullptr); });
}

TEST(DataRow, GivesTheDefaultForAValueThatIsMissingOrEmpty) {
    const auto row = DataTable("t", "a,b").AddRow();
    row->SetValue("a", "1");
    row->SetValue("a", "");
    EXPECT_EQ(row->Value("a", "7"), "7");
    EXPECT_EQ(row->Value("b", "8"), "8");
    EXPECT_EQ(row->Value("c", "9"), "9");
}

TEST(DataRow, RefusesAColumnThatItsTableHasNot) {
    const auto row = DataTable("t", "a").AddRow();
    ExpectInvalidCall([&] { row->SetValue("b", "1"); });
    ExpectInvalidCall([&] { row->SetValue("A", "1"); });
    ExpectInvalidCall([&] { row->SetValue("a", "\x01"); });
    EXPECT_EQ(row->Value("a"), "");
}

TEST(DataTable, IsWrittenWithItsValuesInTheOrderOfColumns) {
    DataTable table("kqasForms", "FormName,Flags");
    const auto row = table.AddRow();
    row->SetValue("Flags", "2");
    row->SetValue("FormName", "frmMain");
    EXPECT_EQ(
        table.ToXML(),
        R"(<DataTable name="kqasForms" columns="FormName,Flags"><Row><Value column="FormName">frmMain</Value>)"
        R"(<Value column="Flags">2</Value></Row></DataTable>)");
}

TEST(DataTable, ComesBackFromItsText) {
    const auto table = Loaded(Forms().ToXML());
    EXPECT_EQ(table.Name(), "kqasForms");
    EXPECT_EQ(table.Columns(), Forms().Columns());
    EXPECT_EQ(table.ToXML(), Forms().ToXML());
    EXPECT_EQ(Loaded(DataTable().ToXML()).ToXML(), DataTable().ToXML());
}

TEST(DataTable, KeepsValuesOfBlanksOnly) {
    DataTable table("t", "a");
    table.AddRow()->SetValue("a", " \r\n ");
    EXPECT_EQ(Loaded(table.ToXML()).Rows().Item(1)->Value("a"), " \r\n ");
}

TEST(DataTable, LeavesRowsThatWereTakenOutApartWhenItIsLoaded) {
    auto table = Forms();
    const auto row = table.Rows().Item(1);
    table.LoadXML("<DataTable name='t' columns='a'><Row/></DataTable>");
    row->SetValue("Flags", "5");
    EXPECT_EQ(row->Value("Flags"), "5");
    EXPECT_EQ(table.ToXML(), R"(<DataTable name="t" columns="a"><Row/></DataTable>)");
}

TEST(DataTable, HasRowsOfItsOwnWhenItIsACopy) {
    const auto original = Forms();
    auto copy = original;
    DataTable assigned;
    assigned = original;
    copy.Rows().Item(1)->SetValue("Flags", "9");
    assigned.AddRow();
    EXPECT_EQ(original.ToXML(), Forms().ToXML());
    EXPECT_EQ(copy.Rows().Item(1)->Value("Flags"), "9");
}

TEST(DataTable, KeepsRandomValues) {
    RandomTexts random;
    for (int round = 0; round < 100; ++round) {
        DataTable table(random.Next(), "a,b c,\xC3\xA9");
        for (auto rows = random.Below(5); rows > 0; --rows) {
            const auto row = table.AddRow();
            for (const auto& column : table.Columns())
                row->SetValue(column, random.Next());
        }
        const auto loaded = Loaded(table.ToXML());
        EXPECT_EQ(loaded.Name(), table.Name());
        ASSERT_EQ(loaded.Rows().Count(), table.Rows().Count());
        for (std::int32_t i = 1; i <= table.Rows().Count(); ++i) {
            for (const auto& column : table.Columns()) {
                EXPECT_EQ(loaded.Rows().Item(i)->Value(column), table.Rows().Item(i)->Value(column));
            }
        }
    }
}

}  // namespace
}  // namespace kq
