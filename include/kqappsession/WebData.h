// The data that a login delivers and a client keeps: the translation table, and the user's profiles with
// their tables.
//
// Each object has a text form, which is XML with its own root element. LoadXML accepts only that root.
// It replaces everything on success; on an error (number kNotWebData, source "KQWebDataLib") nothing changes.
// A text, name or key that XML cannot carry (ill-formed UTF-8, control characters other than tab and line
// ends) raises RuntimeError::InvalidProcedureCall where it is set.
//
// Names, keys and columns are compared exactly, upper and lower case apart. Positions count from 1. An object
// belongs to one thread.
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

struct WebDataReader;  // the loaders' own

// A user's texts by key.
class KQ_EXPORT TranslationTable {
 public:
    std::string Language() const { return language_; }
    void SetLanguage(std::string_view language);
    std::int32_t Count() const;
    bool Exists(std::string_view key) const;
    // The text of the key. If there is none, the key itself, so that a screen never shows a gap.
    std::string Translate(std::string_view key) const;
    // Adds the text, or replaces the one that the key has.
    void Set(std::string_view key, std::string_view text);
    void Remove(std::string_view key);      // does nothing if there is none
    std::vector<std::string> Keys() const;  // sorted

    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    std::string language_;
    std::map<std::string, std::string, std::less<>> texts_;
};

class DataTable;

// One row of a DataTable: a text for each column that was set.
class KQ_EXPORT DataRow {
 public:
    // An empty value removes the one that the row has. Raises RuntimeError::InvalidProcedureCall when the
    // table has no such column.
    void SetValue(std::string_view column, std::string_view value);
    // `default_value` if the row has no value in the column, or the table no such column.
    std::string Value(std::string_view column, std::string_view default_value = {}) const;

 private:
    friend class DataTable;
    explicit DataRow(std::shared_ptr<const std::vector<std::string>> columns)
        : columns_(std::move(columns)) {}
    std::shared_ptr<const std::vector<std::string>> columns_;
    std::map<std::string, std::string, std::less<>> values_;
};

// The rows that Rows and Select return. The rows themselves are shared with the table, not copied.
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

// A table of texts. A copy has its own rows.
class KQ_EXPORT DataTable {
 public:
    DataTable() : DataTable("", "") {}
    // `columns`: names separated by commas; spaces around a name are removed. Raises
    // RuntimeError::InvalidProcedureCall for an empty name between commas and for more than 1024 columns,
    // RuntimeError::DuplicateKey for a name that occurs twice.
    DataTable(std::string_view name, std::string_view columns);
    DataTable(const DataTable& other);
    DataTable(DataTable&&) noexcept = default;
    DataTable& operator=(const DataTable& other);
    DataTable& operator=(DataTable&&) noexcept = default;
    ~DataTable() = default;

    const std::string& Name() const { return name_; }
    const std::vector<std::string>& Columns() const { return *columns_; }
    DataRows Rows() const;
    // The rows whose column has exactly `value`, in order. Raises RuntimeError::InvalidProcedureCall when the
    // table has no such column.
    DataRows Select(std::string_view column, std::string_view value) const;
    // Appends an empty row and returns it.
    std::shared_ptr<DataRow> AddRow();
    // Raises RuntimeError::InvalidProcedureCall if it is not a row of this table.
    void RemoveRow(const std::shared_ptr<DataRow>& row);

    // Loading replaces name, columns and rows. Rows obtained before a load keep their values but no longer
    // belong to the table.
    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    std::string name_;
    std::shared_ptr<const std::vector<std::string>> columns_;
    std::vector<std::shared_ptr<DataRow>> rows_;
};

// The tables of one profile, in the order in which they were added. A copy has its own tables.
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
    // Adds a new table and returns it. Raises RuntimeError::DuplicateKey if the store has a table of that
    // name, and the errors of DataTable.
    std::shared_ptr<DataTable> Create(std::string_view name, std::string_view columns);
    // Adds the object itself, not a copy, and returns it. Raises RuntimeError::DuplicateKey as above,
    // RuntimeError::ObjectNotSet for null.
    std::shared_ptr<DataTable> Add(std::shared_ptr<DataTable> table);
    // By name or by position. These and Remove raise RuntimeError::InvalidProcedureCall if there is no such
    // table.
    std::shared_ptr<DataTable> Item(std::string_view name) const;
    std::shared_ptr<DataTable> Item(std::int32_t index) const;
    void Remove(std::string_view name);
    auto begin() const { return tables_.begin(); }
    auto end() const { return tables_.end(); }

 private:
    friend struct WebDataReader;
    std::vector<std::shared_ptr<DataTable>> tables_;
};

// A named set of application settings. A copy has its own tables.
class KQ_EXPORT Profile {
 public:
    explicit Profile(std::string_view name = {});
    const std::string& Name() const { return name_; }
    TableStore& Tables() { return tables_; }
    const TableStore& Tables() const { return tables_; }
    // The same contents under another name. No row or table is shared.
    std::shared_ptr<Profile> Copy(std::string_view name) const;

    // Loading replaces the name too. Writing raises RuntimeError::DuplicateKey when two tables have the same
    // name, which loading one of them can cause.
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
    // Raised by Add and Remove, after the collection has changed and before they return. LoadXML and Rename
    // raise neither.
    Signal<std::shared_ptr<Profile>> ProfileAdded;
    Signal<const std::string&> ProfileRemoved;

    std::int32_t Count() const { return static_cast<std::int32_t>(profiles_.size()); }
    bool Exists(std::string_view name) const;
    // By name or by position. Raise RuntimeError::InvalidProcedureCall if there is no such profile.
    std::shared_ptr<Profile> Item(std::string_view name) const;
    std::shared_ptr<Profile> Item(std::int32_t index) const;
    // Adds the object itself, not a copy, and returns it. Raises RuntimeError::DuplicateKey if the collection
    // has a profile of that name, RuntimeError::ObjectNotSet for null.
    std::shared_ptr<Profile> Add(std::shared_ptr<Profile> profile);
    // Raises RuntimeError::InvalidProcedureCall if there is no profile of that name.
    void Remove(std::string_view name);
    // Renames the profile, which keeps its position. If it is the one in LastUsed, that changes too. Raises
    // RuntimeError::DuplicateKey if another profile has the new name, RuntimeError::InvalidProcedureCall if
    // there is no profile `name`.
    void Rename(std::string_view name, std::string_view new_name);
    auto begin() const { return profiles_.begin(); }
    auto end() const { return profiles_.end(); }

    // The name of the profile that was chosen last, empty if there is none yet. It is part of the text form.
    // Setting it does not check that there is such a profile.
    const std::string& LastUsed() const { return last_used_; }
    void SetLastUsed(std::string_view name);

    // Writing raises RuntimeError::DuplicateKey when two profiles have the same name, which loading one of
    // them can cause.
    std::string ToXML() const;
    void LoadXML(std::string_view xml);

 private:
    friend struct WebDataReader;
    std::vector<std::shared_ptr<Profile>> profiles_;
    std::string last_used_;
};

}  // namespace kq
