// Writes the catalogue as a document for people.
#include "messages/MessageDocument.h"

#include <cctype>

#include "messages/ASMessages.h"

namespace kq {
namespace {

constexpr std::string_view kIntroduction = R"(# Messages

Generated from `src/messages/ASMessageList.h`; a test compares the two. To rewrite this page and the samples
after a change of the list, run `KQ_UPDATE_GOLDEN=1 test_messages`. A filled sample of each message is
`tests/golden/messages/<type>.xml`.

Every message has a type, the version "1" and named fields in the order shown. Names are case-sensitive. Every
value is a text: numbers are decimal, and a Boolean is true when it is exactly `True`. An error number that is
0, empty or missing means success.
)";

constexpr std::string_view kBetweenServers = R"(
All of them are in the schema namespace `ZEBSchemas`. When an application server relays a client's request to
the login server, it sends a message of the same type and fields in that namespace and adds these fields. The
answer returns `TransID`.

| Field | Form | Meaning |
|---|---|---|
| `ReturnMsgType` | text | the type of the application server's reply address |
| `ReturnSubType` | text | the subtype of the application server's reply address |
| `TransID` | text | the client connection's identifier |
| `RestrictIP` | text | the application server's own address; only in place of one that the client sent |
)";

void AddMessage(std::string& page, const MessageRow& row) {
    std::string purpose(row.purpose);
    purpose.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(purpose.front())));
    page += "\n### " + std::string(row.type) + "\n\n" + purpose + ".\n\n";
    if (row.fields.empty()) {
        page += "No fields.\n";
        return;
    }
    page += "| Field | Form | Meaning |\n|---|---|---|\n";
    for (const auto& field : row.fields) {
        std::string meaning(field.meaning);
        for (auto at = meaning.find('|'); at != meaning.npos; at = meaning.find('|', at + 2))
            meaning.insert(at, "\\");
        page += "| `" + std::string(field.name) + "` | " + std::string(field.form) + " | " + meaning + " |\n";
    }
}

void AddChannel(std::string& page, MessageChannel channel) {
    for (const auto& row : MessageCatalogue()) {
        if (row.channel == channel) AddMessage(page, row);
    }
}

}  // namespace

std::string MessageDocument() {
    std::string page(kIntroduction);
    page += "\n## Between clients and servers\n";
    AddChannel(page, MessageChannel::Client);
    page += "\n## Between servers\n";
    page += kBetweenServers;
    AddChannel(page, MessageChannel::Bus);
    page +=
        "\n## Elements inside messages\n\nInside `ASLoginResponse` the session's record is a nested message: "
        "its element also has a type and a version.\n";
    AddChannel(page, MessageChannel::Element);
    return page;
}

}  // namespace kq
