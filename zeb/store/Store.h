// The SQLite database of the login server: opening, the schema with its migrations, prepared statements and
// transactions.
//
// zebd and zebctl may have it open at the same time (WAL); a writer waits up to two seconds for the other
// one. Failures are kq::Error with SQLite's number and the source kStoreSource. Their descriptions contain no
// bound values, so a password or its hash is never logged.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace kq::zeb {

inline constexpr std::string_view kStoreSource = "zebd store";

// One use of a prepared statement, which is returned to the store afterwards. Parameters count from 1,
// columns from 0.
class Query {
 public:
    Query(Query&& other) noexcept : db_(other.db_), statement_(other.statement_) {
        other.statement_ = nullptr;
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query();

    Query& Bind(int parameter, std::string_view text);
    Query& Bind(int parameter, std::int64_t value);
    // The next row; false when there are no more.
    bool Next();
    // For statements without rows. Returns the number of rows that were changed.
    std::int64_t Run();

    std::string Text(int column) const;
    std::int64_t Number(int column) const;

 private:
    friend class Store;
    Query(sqlite3* db, sqlite3_stmt* statement) : db_(db), statement_(statement) {}
    sqlite3* db_;
    sqlite3_stmt* statement_;
};

class Store {
 public:
    // Opens the database and upgrades its schema. ":memory:": a new database in memory. Raises for a file
    // that is missing, not private (see PrivateFiles.h), not a database of this server or written by a newer
    // version; such a file is left unchanged.
    explicit Store(const std::string& path);
    // Creates a new database with mode 0600. Raises when the file exists already.
    static void Create(const std::string& path);
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store();

    static constexpr int kSchemaVersion = 1;
    int SchemaVersion();

    // `sql` is prepared once and kept. It must not be in use already.
    Query Use(std::string_view sql);
    std::int64_t LastRowId() const;
    // Changes whenever another connection has committed.
    std::int64_t OutsideChanges();

    // Whether a commit survives a loss of power immediately. Settled commits cost a disk write each, so they
    // are for data that a user was told is stored. A session that is lost costs its user a new login.
    enum class Commit { Settled, Soon };

    // Rolled back unless Commit() was called. Not nested.
    class Transaction {
     public:
        explicit Transaction(Store& store, Store::Commit commit = Store::Commit::Settled);
        Transaction(const Transaction&) = delete;
        Transaction& operator=(const Transaction&) = delete;
        ~Transaction();
        void Commit();

     private:
        Store& store_;
        bool open_ = false;
    };

 private:
    struct Closer {
        void operator()(sqlite3* db) const;
    };
    enum class Content { Fresh, Existing };
    Store(const std::string& path, Content content);
    static Content CheckHeader(const std::string& path);
    void Execute(const char* sql);
    std::int64_t Pragma(const char* sql);
    void Migrate(Content content);

    std::string path_;
    std::unique_ptr<sqlite3, Closer> db_;
    std::unordered_map<std::string, sqlite3_stmt*> statements_;
};

}  // namespace kq::zeb
