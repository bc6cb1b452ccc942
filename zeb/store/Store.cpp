// SQLite behind Store. Only the thread of the event loop uses the store, so the database is opened without
// SQLite's locks.
#include "zeb/store/Store.h"

#include <cstdio>
#include <limits>

#include <sqlite3.h>

#include <kqappsession/Error.h>

#include "zeb/store/PrivateFiles.h"
#include "zeb/store/Schema.h"

namespace kq::zeb {
namespace {

constexpr std::string_view kInMemory = ":memory:";
constexpr int kApplicationId = 0x5A454244;
// Where the application id is in the file, and its bytes.
constexpr std::string_view kMagic = "SQLite format 3";
constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kApplicationIdAt = 68;
constexpr std::string_view kApplicationIdBytes = "ZEBD";
constexpr int kBusyTimeOut = 2'000;  // ms

[[noreturn]] void Fail(int code, const std::string& what) {
    throw Error(code, std::string(kStoreSource), what);
}

void Check(sqlite3* db, int code, const char* doing) {
    if (code == SQLITE_OK) return;
    Fail(code, std::string("The database could not ") + doing + ": " + sqlite3_errmsg(db));
}

}  // namespace

Query::~Query() {
    if (!statement_) return;
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

Query& Query::Bind(int parameter, std::string_view text) {
    if (text.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        Fail(SQLITE_TOOBIG, "A text is too long for the database");
    Check(db_,
          sqlite3_bind_text(statement_, parameter, text.data() ? text.data() : "",
                            static_cast<int>(text.size()), SQLITE_TRANSIENT),
          "take a value");
    return *this;
}

Query& Query::Bind(int parameter, std::int64_t value) {
    Check(db_, sqlite3_bind_int64(statement_, parameter, value), "take a value");
    return *this;
}

bool Query::Next() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    Fail(code, std::string("The database could not run a statement: ") + sqlite3_errmsg(db_));
}

std::int64_t Query::Run() {
    while (Next()) {
    }
    return sqlite3_changes64(db_);
}

std::string Query::Text(int column) const {
    const auto* text = sqlite3_column_text(statement_, column);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return text ? std::string(reinterpret_cast<const char*>(text), size) : std::string();
}

std::int64_t Query::Number(int column) const {
    return sqlite3_column_int64(statement_, column);
}

void Store::Closer::operator()(sqlite3* db) const {
    // A database with statements cannot be closed.
    while (sqlite3_stmt* statement = sqlite3_next_stmt(db, nullptr))
        sqlite3_finalize(statement);
    sqlite3_close(db);
}

Store::Store(const std::string& path) : Store(path, path == kInMemory ? Content::Fresh : CheckHeader(path)) {}

Store::Store(const std::string& path, Content content) : path_(path) {
    sqlite3* db = nullptr;
    const int code = sqlite3_open_v2(
        path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    db_.reset(db);
    if (code != SQLITE_OK) Fail(code, "The database " + path + " cannot be opened: " + sqlite3_errstr(code));
    sqlite3_busy_timeout(db, kBusyTimeOut);
    Execute("PRAGMA foreign_keys = ON");
    // Before the write-ahead log is turned on: a new database says whose it is in its first bytes from its
    // first commit on, and one of a newer version is not changed.
    Migrate(content);
    Execute("PRAGMA journal_mode = WAL");
    Execute("PRAGMA synchronous = NORMAL");
}

Store::~Store() = default;

void Store::Create(const std::string& path) {
    CreatePrivateFile(path);
    try {
        Store store(path, Content::Fresh);
    } catch (...) {
        std::remove(path.c_str());
        throw;
    }
}

// Looks at the first bytes of the file alone: opening a database of another program would already recover or
// change it.
Store::Content Store::CheckHeader(const std::string& path) {
    const auto header = ReadPrivateFile(path, kHeaderSize);
    if (header.empty()) Fail(SQLITE_NOTADB, path + " is empty; remove it and run 'zebctl init' again");
    if (header.size() < kHeaderSize || !header.starts_with(kMagic) ||
        header.substr(kApplicationIdAt, kApplicationIdBytes.size()) != kApplicationIdBytes)
        Fail(SQLITE_NOTADB, path + " is not a database of this login server");
    return Content::Existing;
}

void Store::Migrate(Content content) {
    // Immediate: two programs that open an old database at the same moment must not both bring it up to date.
    Transaction transaction(*this);
    const auto version = Pragma("PRAGMA user_version");
    const bool ours = Pragma("PRAGMA application_id") == kApplicationId;
    const bool empty = version == 0 && Pragma("SELECT count(*) FROM sqlite_schema") == 0;
    if (content == Content::Fresh ? !empty : !ours)
        Fail(SQLITE_NOTADB, path_ + " is not a database of this login server");
    if (version > kSchemaVersion)
        Fail(SQLITE_SCHEMA, path_ + " was written by a newer version of this login server");
    static_assert(kMigrations.size() == static_cast<std::size_t>(kSchemaVersion));
    for (auto step = static_cast<std::size_t>(version); step < kMigrations.size(); ++step) {
        Execute(kMigrations[step]);
    }
    if (version < kSchemaVersion) {
        Execute(("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
        Execute(("PRAGMA user_version = " + std::to_string(kSchemaVersion)).c_str());
    }
    transaction.Commit();
}

int Store::SchemaVersion() {
    return static_cast<int>(Pragma("PRAGMA user_version"));
}

Query Store::Use(std::string_view sql) {
    auto& statement = statements_[std::string(sql)];
    if (!statement) {
        Check(db_.get(),
              sqlite3_prepare_v3(db_.get(), sql.data(), static_cast<int>(sql.size()),
                                 SQLITE_PREPARE_PERSISTENT, &statement, nullptr),
              "prepare a statement");
    }
    if (sqlite3_stmt_busy(statement)) Fail(SQLITE_MISUSE, "A statement of the database is already in use");
    return Query(db_.get(), statement);
}

std::int64_t Store::LastRowId() const {
    return sqlite3_last_insert_rowid(db_.get());
}

std::int64_t Store::OutsideChanges() {
    return Pragma("PRAGMA data_version");
}

void Store::Execute(const char* sql) {
    Check(db_.get(), sqlite3_exec(db_.get(), sql, nullptr, nullptr, nullptr), "be set up or changed");
}

std::int64_t Store::Pragma(const char* sql) {
    auto query = Use(sql);
    return query.Next() ? query.Number(0) : 0;
}

Store::Transaction::Transaction(Store& store, Store::Commit commit) : store_(store) {
    store_.Execute(commit == Store::Commit::Settled ? "PRAGMA synchronous = FULL"
                                                    : "PRAGMA synchronous = NORMAL");
    store_.Execute("BEGIN IMMEDIATE");
    open_ = true;
}

Store::Transaction::~Transaction() {
    if (open_) sqlite3_exec(store_.db_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Store::Transaction::Commit() {
    store_.Execute("COMMIT");
    open_ = false;
}

}  // namespace kq::zeb
