// The data that a login delivers and a client keeps: the translation table, the user's profiles with their
// tables. Each object has a text form (XML) with a root element of its own; loading accepts only that root,
// replaces everything on success, and changes nothing when it raises (number kNotWebData, source
// "KQWebDataLib"). Texts, names and keys that XML cannot carry (control characters other than tab and line
// ends, ill-formed UTF-8) raise RuntimeError::InvalidProcedureCall where they are set.
//
// Objects belong to the thread of their creator. Names are compared exactly, upper and lower case apart.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kqappsession/Export.h>
#include <kqappsession/Signal.h>

namespace kq {

inline constexpr std::int32_t kNotWebData = static_cast<std::int32_t>(0x80040B11U);

struct WebDataReader;  // builds what a text says; the loaders' own

// A user's texts by key.
class KQ_EXPORT TranslationTable {
 public:
    std::string Language() const { return language_; }
    void SetLanguage(std::string_view language);
    std::int32_t Count() const;
    bool Exists(std::string_view key) const;
    // The text of the key; the key itself when the table has none, so that a screen never shows a gap.
    std::string Translate(std::string_view key) const;
    void Set(std::string_view key, std::string_view text);
    void Remove(std::string_view key);      // nothing happens when there is none
    std::vector<std::string> Keys() const;  // in order

    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    std::string language_;
    std::map<std::string, std::string, std::less<>> texts_;
};

class DataTable;

// One row of a DataTable: a text in each column that was set.
class KQ_EXPORT DataRow {
 public:
    // Raises RuntimeError::InvalidProcedureCall when the table has no such column. An empty value is the same
    // as none.
    void SetValue(std::string_view column, std::string_view value);
    // `default_value` when the row has no value in the column, or an empty one.
    std::string Value(std::string_view column, std::string_view default_value = {}) const;

 private:
    friend class DataTable;
    explicit DataRow(std::shared_ptr<const std::vector<std::string>> columns)
        : columns_(std::move(columns)) {}
    std::shared_ptr<const std::vector<std::string>> columns_;
    std::map<std::string, std::string, std::less<>> values_;
};

// Rows found by Select: a count and items from 1.
class KQ_EXPORT DataRows {
 public:
    std::int32_t Count() const { return static_cast<std::int32_t>(rows_.size()); }
    // Raises RuntimeError::InvalidProcedureCall outside 1 to Count.
    std::shared_ptr<DataRow> Item(std::int32_t index) const;
    auto begin() const { return rows_.begin(); }
    auto end() const { return rows_.end(); }

 private:
    friend class DataTable;
    std::vector<std::shared_ptr<DataRow>> rows_;
};

// A table of texts. A copy has rows of its own.
class KQ_EXPORT DataTable {
 public:
    DataTable() : DataTable("", "") {}
    // `columns`: names separated by commas, blanks around them are not part of them. Raises
    // RuntimeError::InvalidProcedureCall for an empty name between commas and for more than 1024 columns,
    // RuntimeError::DuplicateKey for a name that stands twice.
    DataTable(std::string_view name, std::string_view columns);
    DataTable(const DataTable& other);
    DataTable(DataTable&&) noexcept = default;
    DataTable& operator=(const DataTable& other);
    DataTable& operator=(DataTable&&) noexcept = default;
    ~DataTable() = default;

    const std::string& Name() const { return name_; }
    const std::vector<std::string>& Columns() const { return *columns_; }
    DataRows Rows() const;
    // The rows whose column holds exactly `value`, in order. Errors as DataRow::SetValue.
    DataRows Select(std::string_view column, std::string_view value) const;
    std::shared_ptr<DataRow> AddRow();
    // Raises RuntimeError::InvalidProcedureCall when it is no row of this table.
    void RemoveRow(const std::shared_ptr<DataRow>& row);

    // Rows that were taken out before a load stay as they are, apart from the table.
    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    std::string name_;
    std::shared_ptr<const std::vector<std::string>> columns_;
    std::vector<std::shared_ptr<DataRow>> rows_;
};

// The tables of one profile, in the order in which they were added. A copy has tables of its own.
class KQ_EXPORT TableStore {
 public:
    TableStore() = default;
    TableStore(const TableStore& other);
    TableStore(TableStore&&) noexcept = default;
    TableStore& operator=(const TableStore& other);
    TableStore& operator=(TableStore&&) noexcept = default;
    ~TableStore() = default;

    std::int32_t Count() const { return static_cast<std::int32_t>(tables_.size()); }
    bool Exists(std::string_view name) const;
    // Raises RuntimeError::DuplicateKey when the store has a table of that name.
    std::shared_ptr<DataTable> Create(std::string_view name, std::string_view columns);
    // The same for a table that exists; the store holds the object itself. Raises RuntimeError::ObjectNotSet
    // when it is null.
    std::shared_ptr<DataTable> Add(std::shared_ptr<DataTable> table);
    // Raises RuntimeError::InvalidProcedureCall when there is none. By position: from 1.
    std::shared_ptr<DataTable> Item(std::string_view name) const;
    std::shared_ptr<DataTable> Item(std::int32_t index) const;
    void Remove(std::string_view name);
    auto begin() const { return tables_.begin(); }
    auto end() const { return tables_.end(); }

 private:
    friend struct WebDataReader;
    std::vector<std::shared_ptr<DataTable>> tables_;
};

// A named set of application settings. A copy has tables of its own.
class KQ_EXPORT Profile {
 public:
    explicit Profile(std::string_view name = {});
    const std::string& Name() const { return name_; }
    TableStore& Tables() { return tables_; }
    const TableStore& Tables() const { return tables_; }
    // The same contents under another name; no row or table is shared.
    std::shared_ptr<Profile> Copy(std::string_view name) const;

    // Loading takes over the name in the text, too. Writing raises RuntimeError::DuplicateKey when two tables
    // have come to the same name by loading.
    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    friend class Profiles;
    std::string name_;
    TableStore tables_;
};

// A user's profiles, in the order in which they were added.
class KQ_EXPORT Profiles {
 public:
    // Raised after the collection has changed (not by LoadXML).
    Signal<std::shared_ptr<Profile>> ProfileAdded;
    Signal<const std::string&> ProfileRemoved;

    std::int32_t Count() const { return static_cast<std::int32_t>(profiles_.size()); }
    bool Exists(std::string_view name) const;
    // Raises RuntimeError::InvalidProcedureCall when there is none. By position: from 1.
    std::shared_ptr<Profile> Item(std::string_view name) const;
    std::shared_ptr<Profile> Item(std::int32_t index) const;
    // Adds the object itself and returns it. Raises RuntimeError::DuplicateKey when the name is taken,
    // RuntimeError::ObjectNotSet when it is null.
    std::shared_ptr<Profile> Add(std::shared_ptr<Profile> profile);
    // Raises RuntimeError::InvalidProcedureCall when there is none of that name.
    void Remove(std::string_view name);
    // Gives the profile another name in its place. Raises RuntimeError::DuplicateKey when that is taken. The
    // last used name follows. No event.
    void Rename(std::string_view name, std::string_view new_name);
    auto begin() const { return profiles_.begin(); }
    auto end() const { return profiles_.end(); }

    // The name of the profile that was chosen last; it travels with the text form. Empty: none yet.
    const std::string& LastUsed() const { return last_used_; }
    void SetLastUsed(std::string_view name);

    // Writing raises RuntimeError::DuplicateKey when two profiles have come to the same name by loading.
    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    friend struct WebDataReader;
    std::vector<std::shared_ptr<Profile>> profiles_;
    std::string last_used_;
};

}  // namespace kq
