// The text forms of the web data objects, read and written.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kqappsession/WebData.h>

#include "libs/xmltext/XMLText.h"

namespace kq {

// Reads one text. Everything in it must be known: other elements, texts between elements, and names and keys
// that occur twice are refused. Unknown attributes are ignored.
struct WebDataReader {
    struct ProfilesContents {
        std::vector<std::shared_ptr<Profile>> profiles;
        std::string last_used;
    };

    // Raises when the text is not an element of the name `root`.
    WebDataReader(std::string_view xml, std::string_view root);

    TranslationTable ReadTranslationTable() const;
    DataTable ReadDataTable() const { return ReadDataTable(document_.Root()); }
    Profile ReadProfile() const { return ReadProfile(document_.Root()); }
    ProfilesContents ReadProfiles() const;

 private:
    using Node = xmltext::Node;
    DataTable ReadDataTable(const Node& node) const;
    void ReadRow(const Node& node, DataRow& row) const;
    Profile ReadProfile(const Node& node) const;

    std::string Required(const Node& node, std::string_view attribute) const;
    std::string TextOf(const Node& node) const;
    std::vector<Node> ChildrenNamed(std::string_view name, const Node& node) const;

    std::string subject_;
    xmltext::Refusal refusal_;
    xmltext::Document document_;
};

void WriteTable(xmltext::Writer& writer, const DataTable& table);
void WriteProfile(xmltext::Writer& writer, const Profile& profile);

}  // namespace kq
