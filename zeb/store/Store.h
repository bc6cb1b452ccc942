// The SQLite database of the login server: opening, the schema with its migrations, prepared statements and
// transactions.
//
// zebd and zebctl may have it open at the same time (WAL); a writer waits up to two seconds for the other
// one. Failures are kq::Error with SQLite's number and the source kStoreSource; their texts hold no bound
// values, so a password or its hash never gets into a log.
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

// One use of a prepared statement; the statement goes back to the store when the use ends. Parameters count
// from 1, columns from 0.
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
    // The next row; false when there is none.
    bool Next();
    // For statements without rows. Returns how many rows they changed.
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
    // Opens the database and brings its schema up to date. ":memory:" is one of its own. Raises for a file
    // that is missing, not private (see PrivateFiles.h), not a database of this server or written by a newer
    // version; such a file is left as it is.
    explicit Store(const std::string& path);
    // Makes a new database with mode 0600. Raises when there is a file already.
    static void Create(const std::string& path);
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store();

    static constexpr int kSchemaVersion = 1;
    int SchemaVersion();

    // `sql` is prepared once and kept; it must not be in use already.
    Query Use(std::string_view sql);
    std::int64_t LastRowId() const;
    // Changes whenever another connection has committed something.
    std::int64_t OutsideChanges();

    // Whether a commit survives a loss of power at once. Settled commits cost a disk write each, so they are
    // for what a user was told is stored; a session that is lost with the power costs its user a new login.
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
