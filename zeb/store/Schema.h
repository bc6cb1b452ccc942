// The tables of the login server, as a list of migrations. A migration that has been released is never
// changed; new ones are added at the end, and Store::kSchemaVersion is their number.
#pragma once

#include <array>

namespace kq::zeb {

inline constexpr std::array<const char*, 1> kMigrations = {
    R"sql(
    -- uid: AUTOINCREMENT, so that the number of a deleted user never names another one.
    CREATE TABLE users (
        uid            INTEGER PRIMARY KEY AUTOINCREMENT CHECK (uid BETWEEN 1 AND 2147483647),
        login          TEXT NOT NULL UNIQUE,
        password_hash  TEXT NOT NULL,
        first_name     TEXT NOT NULL DEFAULT '',
        last_name      TEXT NOT NULL DEFAULT '',
        enterprise_id  TEXT NOT NULL DEFAULT '',
        language       TEXT NOT NULL DEFAULT '1033',
        tz             TEXT NOT NULL DEFAULT '',
        dst            TEXT NOT NULL DEFAULT '',
        buid           TEXT NOT NULL DEFAULT '',
        buid_union     TEXT NOT NULL DEFAULT '',  -- separated by |
        privileges     TEXT NOT NULL DEFAULT '',  -- separated by |
        disabled       INTEGER NOT NULL DEFAULT 0,
        must_change    INTEGER NOT NULL DEFAULT 0,
        max_sessions   INTEGER NOT NULL DEFAULT 0 CHECK (max_sessions >= 0)  -- 0: no limit
    );
    CREATE TABLE profiles (
        user_uid  INTEGER NOT NULL REFERENCES users(uid) ON DELETE CASCADE,
        app_id    TEXT NOT NULL,
        xml       TEXT NOT NULL,
        PRIMARY KEY (user_uid, app_id)
    ) WITHOUT ROWID;
    CREATE TABLE translations (
        language  TEXT NOT NULL,
        key       TEXT NOT NULL,
        text      TEXT NOT NULL,
        PRIMARY KEY (language, key)
    ) WITHOUT ROWID;
    -- server_type, server_subtype, connection: where the session is registered; empty while it is not.
    CREATE TABLE sessions (
        session_id      TEXT PRIMARY KEY,
        user_uid        INTEGER NOT NULL REFERENCES users(uid) ON DELETE CASCADE,
        app_id          TEXT NOT NULL,
        server_type     TEXT NOT NULL DEFAULT '',
        server_subtype  TEXT NOT NULL DEFAULT '',
        connection      TEXT NOT NULL DEFAULT '',
        since           INTEGER NOT NULL  -- seconds since 1970: registered, or issued or ended when it is not
    ) WITHOUT ROWID;
    CREATE INDEX sessions_by_user ON sessions (user_uid);
    )sql",
};

}  // namespace kq::zeb
