// Tables of texts. A row shares the list of its table's columns, which never changes: loading gives a table a
// new list and new rows, and rows that a caller still holds keep the old one.
#include <algorithm>
#include <set>

#include <kqappsession/Error.h>
#include <kqappsession/WebData.h>

#include "base/Convert.h"
#include "libs/webdata/Forms.h"

namespace kq {

namespace {

// Bounds the search for a column, which is linear.
constexpr std::size_t kMostColumns = 1024;

std::vector<std::string> ColumnsOf(std::string_view list) {
    if (Trim(list).empty()) return {};
    std::vector<std::string> columns;
    std::set<std::string> known;
    for (const auto& piece : Split(list, ',')) {
        std::string column(Trim(piece));
        if (column.empty()) Raise(RuntimeError::InvalidProcedureCall, "A column has no name");
        if (!known.insert(column).second) Raise(RuntimeError::DuplicateKey);
        columns.push_back(std::move(column));
    }
    if (columns.size() > kMostColumns) {
        Raise(RuntimeError::InvalidProcedureCall, "A table may have at most 1024 columns");
    }
    return columns;
}

void CheckColumn(const std::vector<std::string>& columns, std::string_view column) {
    if (std::ranges::find(columns, column) != columns.end()) return;
    Raise(RuntimeError::InvalidProcedureCall, "The table has no column of that name");
}

}  // namespace

void DataRow::SetValue(std::string_view column, std::string_view value) {
    CheckColumn(*columns_, column);
    xmltext::CheckText(value, "The value of the column " + std::string(column));
    if (!value.empty()) {
        values_.insert_or_assign(std::string(column), std::string(value));
    } else if (const auto found = values_.find(column); found != values_.end()) {
        values_.erase(found);
    }
}

std::string DataRow::Value(std::string_view column, std::string_view default_value) const {
    const auto found = values_.find(column);
    return found == values_.end() ? std::string(default_value) : found->second;
}

std::shared_ptr<DataRow> DataRows::Item(std::int32_t index) const {
    if (index < 1 || index > Count()) Raise(RuntimeError::InvalidProcedureCall);
    return rows_[static_cast<std::size_t>(index - 1)];
}

DataTable::DataTable(std::string_view name, std::string_view columns) : name_(name) {
    xmltext::CheckText(name, "The table's name");
    xmltext::CheckText(columns, "A table's list of columns");
    columns_ = std::make_shared<const std::vector<std::string>>(ColumnsOf(columns));
}

DataTable::DataTable(const DataTable& other) : name_(other.name_), columns_(other.columns_) {
    rows_.reserve(other.rows_.size());
    for (const auto& row : other.rows_)
        rows_.push_back(std::make_shared<DataRow>(*row));
}

DataTable& DataTable::operator=(const DataTable& other) {
    *this = DataTable(other);
    return *this;
}

DataRows DataTable::Rows() const {
    DataRows rows;
    rows.rows_ = rows_;
    return rows;
}

DataRows DataTable::Select(std::string_view column, std::string_view value) const {
    CheckColumn(*columns_, column);
    DataRows found;
    for (const auto& row : rows_) {
        if (row->Value(column) == value) found.rows_.push_back(row);
    }
    return found;
}

std::shared_ptr<DataRow> DataTable::AddRow() {
    rows_.push_back(std::shared_ptr<DataRow>(new DataRow(columns_)));
    return rows_.back();
}

void DataTable::RemoveRow(const std::shared_ptr<DataRow>& row) {
    const auto found = std::ranges::find(rows_, row);
    if (found == rows_.end())
        Raise(RuntimeError::InvalidProcedureCall, "The row does not belong to this table");
    rows_.erase(found);
}

std::string DataTable::ToXML() const {
    xmltext::Writer writer;
    WriteTable(writer, *this);
    return writer.Take();
}

void DataTable::LoadXML(std::string_view xml) {
    *this = WebDataReader(xml, "DataTable").ReadDataTable();
}

}  // namespace kq
