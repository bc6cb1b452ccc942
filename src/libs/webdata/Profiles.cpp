// Profiles and their tables. The collection holds the objects that were added, not copies.
#include <algorithm>
#include <set>

#include <kqappsession/Error.h>
#include <kqappsession/WebData.h>

#include "libs/webdata/Forms.h"

namespace kq {

namespace {

// Both collections are lists of pointers to objects with a name.
auto FindByName(auto& items, std::string_view name) {
    return std::ranges::find_if(items, [&](const auto& item) { return item->Name() == name; });
}

auto FindPresent(auto& items, std::string_view name) {
    const auto found = FindByName(items, name);
    if (found == items.end()) Raise(RuntimeError::InvalidProcedureCall);
    return found;
}

auto ItemAt(const auto& items, std::int32_t index) {
    if (index < 1 || static_cast<std::size_t>(index) > items.size())
        Raise(RuntimeError::InvalidProcedureCall);
    return items[static_cast<std::size_t>(index - 1)];
}

std::string CheckedName(std::string_view name) {
    xmltext::CheckText(name, "The profile's name");
    return std::string(name);
}

}  // namespace

TableStore::TableStore(const TableStore& other) {
    tables_.reserve(other.tables_.size());
    for (const auto& table : other.tables_)
        tables_.push_back(std::make_shared<DataTable>(*table));
}

TableStore& TableStore::operator=(const TableStore& other) {
    *this = TableStore(other);
    return *this;
}

bool TableStore::Exists(std::string_view name) const {
    return FindByName(tables_, name) != tables_.end();
}

std::shared_ptr<DataTable> TableStore::Create(std::string_view name, std::string_view columns) {
    return Add(std::make_shared<DataTable>(name, columns));
}

std::shared_ptr<DataTable> TableStore::Add(std::shared_ptr<DataTable> table) {
    if (!table) Raise(RuntimeError::ObjectNotSet);
    if (Exists(table->Name())) Raise(RuntimeError::DuplicateKey);
    tables_.push_back(std::move(table));
    return tables_.back();
}

std::shared_ptr<DataTable> TableStore::Item(std::string_view name) const {
    return *FindPresent(tables_, name);
}

std::shared_ptr<DataTable> TableStore::Item(std::int32_t index) const {
    return ItemAt(tables_, index);
}

void TableStore::Remove(std::string_view name) {
    tables_.erase(FindPresent(tables_, name));
}

Profile::Profile(std::string_view name) : name_(CheckedName(name)) {}

std::shared_ptr<Profile> Profile::Copy(std::string_view name) const {
    auto copy = std::make_shared<Profile>(name);
    copy->tables_ = tables_;
    return copy;
}

std::string Profile::ToXML() const {
    xmltext::Writer writer;
    WriteProfile(writer, *this);
    return writer.Take();
}

void Profile::LoadXML(std::string_view xml) {
    *this = WebDataReader(xml, "Profile").ReadProfile();
}

bool Profiles::Exists(std::string_view name) const {
    return FindByName(profiles_, name) != profiles_.end();
}

std::shared_ptr<Profile> Profiles::Item(std::string_view name) const {
    return *FindPresent(profiles_, name);
}

std::shared_ptr<Profile> Profiles::Item(std::int32_t index) const {
    return ItemAt(profiles_, index);
}

// The event's handlers may change the collection or destroy it, so the result is held apart.
std::shared_ptr<Profile> Profiles::Add(std::shared_ptr<Profile> profile) {
    if (!profile) Raise(RuntimeError::ObjectNotSet);
    if (Exists(profile->Name())) Raise(RuntimeError::DuplicateKey);
    profiles_.push_back(profile);
    ProfileAdded(profile);
    return profile;
}

void Profiles::Remove(std::string_view name) {
    const auto found = FindPresent(profiles_, name);
    const std::string removed = (*found)->Name();
    profiles_.erase(found);
    ProfileRemoved(removed);
}

void Profiles::Rename(std::string_view name, std::string_view new_name) {
    const auto& profile = *FindPresent(profiles_, name);
    if (name == new_name) return;
    if (Exists(new_name)) Raise(RuntimeError::DuplicateKey);
    auto checked = CheckedName(new_name);
    if (last_used_ == profile->name_) last_used_ = checked;
    profile->name_ = std::move(checked);
}

void Profiles::SetLastUsed(std::string_view name) {
    last_used_ = CheckedName(name);
}

std::string Profiles::ToXML() const {
    std::set<std::string_view> names;
    xmltext::Writer writer;
    writer.Open("Profiles").Attribute("lastUsed", last_used_);
    for (const auto& profile : profiles_) {
        if (!names.insert(profile->Name()).second) Raise(RuntimeError::DuplicateKey);
        WriteProfile(writer, *profile);
    }
    return writer.Close().Take();
}

void Profiles::LoadXML(std::string_view xml) {
    auto contents = WebDataReader(xml, "Profiles").ReadProfiles();
    profiles_ = std::move(contents.profiles);
    last_used_ = std::move(contents.last_used);
}

}  // namespace kq
