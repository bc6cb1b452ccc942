// Names are compared through sets while reading, so a hostile text with many items causes no quadratic
// search.
#include "libs/webdata/Forms.h"

#include <set>

#include <kqappsession/Error.h>

#include "base/Utf.h"

namespace kq {

WebDataReader::WebDataReader(std::string_view xml, std::string_view root)
    : subject_("The text is not a <" + std::string(root) + "> element"),
      refusal_{kNotWebData, "KQWebDataLib", subject_},
      document_(xml, xmltext::Limits(), refusal_) {
    const auto node = document_.Root();
    if (node.Name() != root) refusal_.Raise("its root element is a different one", node.Offset());
}

std::string WebDataReader::Required(const Node& node, std::string_view attribute) const {
    const auto value = node.Attribute(attribute);
    if (!value) {
        refusal_.Raise("<" + std::string(node.Name()) + "> has no attribute " + std::string(attribute),
                       node.Offset());
    }
    return std::string(*value);
}

std::string WebDataReader::TextOf(const Node& node) const {
    if (const auto child = node.FirstChild()) {
        refusal_.Raise("<" + std::string(node.Name()) + "> holds an element", child.Offset());
    }
    return node.Text();
}

std::vector<xmltext::Node> WebDataReader::ChildrenNamed(std::string_view name, const Node& node) const {
    if (!xmltext::IsBlank(node.Text())) {
        refusal_.Raise("<" + std::string(node.Name()) + "> holds a text", node.Offset());
    }
    std::vector<Node> children;
    for (auto child = node.FirstChild(); child; child = child.Next()) {
        if (child.Name() != name) {
            refusal_.Raise("<" + RepairUtf8(child.Name().substr(0, 80)) + "> is unknown here",
                           child.Offset());
        }
        children.push_back(child);
    }
    return children;
}

TranslationTable WebDataReader::ReadTranslationTable() const {
    const auto root = document_.Root();
    TranslationTable table;
    table.SetLanguage(root.Attribute("language").value_or(""));
    for (const auto& text : ChildrenNamed("Text", root)) {
        const auto key = Required(text, "key");
        if (table.Exists(key)) refusal_.Raise("duplicate key", text.Offset());
        table.Set(key, TextOf(text));
    }
    return table;
}

DataTable WebDataReader::ReadDataTable(const Node& node) const {
    const auto name = Required(node, "name");
    const auto columns = Required(node, "columns");
    const auto empty = [&] {
        try {
            return DataTable(name, columns);
        } catch (const Error&) {
            refusal_.Raise("its columns are empty, repeated or too many", node.Offset());
        }
    };
    DataTable table = empty();
    for (const auto& row : ChildrenNamed("Row", node))
        ReadRow(row, *table.AddRow());
    return table;
}

void WebDataReader::ReadRow(const Node& node, DataRow& row) const {
    std::set<std::string> columns;
    for (const auto& value : ChildrenNamed("Value", node)) {
        const auto column = Required(value, "column");
        if (!columns.insert(column).second) refusal_.Raise("a row uses a column twice", value.Offset());
        const auto text = TextOf(value);
        try {
            row.SetValue(column, text);
        } catch (const Error&) {
            refusal_.Raise("a row uses a column that its table does not have", value.Offset());
        }
    }
}

Profile WebDataReader::ReadProfile(const Node& node) const {
    Profile profile(Required(node, "name"));
    std::set<std::string> names;
    for (const auto& child : ChildrenNamed("DataTable", node)) {
        auto table = std::make_shared<DataTable>(ReadDataTable(child));
        if (!names.insert(table->Name()).second) refusal_.Raise("duplicate table name", child.Offset());
        profile.Tables().tables_.push_back(std::move(table));
    }
    return profile;
}

WebDataReader::ProfilesContents WebDataReader::ReadProfiles() const {
    const auto root = document_.Root();
    ProfilesContents contents;
    contents.last_used = root.Attribute("lastUsed").value_or("");
    std::set<std::string> names;
    for (const auto& child : ChildrenNamed("Profile", root)) {
        auto profile = std::make_shared<Profile>(ReadProfile(child));
        if (!names.insert(profile->Name()).second) {
            refusal_.Raise("duplicate profile name", child.Offset());
        }
        contents.profiles.push_back(std::move(profile));
    }
    return contents;
}

void WriteTable(xmltext::Writer& writer, const DataTable& table) {
    std::string columns;
    for (const auto& column : table.Columns()) {
        if (!columns.empty()) columns += ',';
        columns += column;
    }
    writer.Open("DataTable").Attribute("name", table.Name()).Attribute("columns", columns);
    for (const auto& row : table.Rows()) {
        writer.Open("Row");
        for (const auto& column : table.Columns()) {
            const auto value = row->Value(column);
            if (value.empty()) continue;
            writer.Open("Value").Attribute("column", column).Text(value).Close();
        }
        writer.Close();
    }
    writer.Close();
}

void WriteProfile(xmltext::Writer& writer, const Profile& profile) {
    std::set<std::string_view> names;
    writer.Open("Profile").Attribute("name", profile.Name());
    for (const auto& table : profile.Tables()) {
        if (!names.insert(table->Name()).second) Raise(RuntimeError::DuplicateKey);
        WriteTable(writer, *table);
    }
    writer.Close();
}

}  // namespace kq
