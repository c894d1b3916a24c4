// Opening a database for vok_io: what a path or a connection string means, and reading without a trace.
//
// A reading connection must change nothing on disk. The engine does not promise that for a read-only
// connection: for a database in write-ahead mode it creates the files -wal and -shm, and it deletes what is
// left beside an empty one. So it is told how to read by what stands there:
//
//     the database, beside it     read as                     because
//     empty                       unchanging                  what is left beside it would be deleted
//     -wal and -shm               read-only                   somebody has it open, or had
//     -wal alone                  read-only, the log's index  the index would be created on disk
//                                 in own memory, no locks
//     -wal alone, and a lock      not at all                  its owner writes without an index on disk
//     write-ahead, no -wal        unchanging                  the log would be created, and is empty
//     shorter than it says        not at all                  the engine would make up the end of a page
//     nothing                     read-only                   the ordinary case
//
// What is read as unchanging or with an index of its own is watched: a writer that comes meanwhile makes the
// query fail, and finds the reader's lock of an ordinary query.
//
// That can change from one query to the next, so a reading connection is made for one query.
// One object, one thread at a time.
#ifndef VOK_SUITE_IO_SQLITECONNECTION_H
#define VOK_SUITE_IO_SQLITECONNECTION_H

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace suiteIo {

/// WHY close_v2: statements may outlive the connection that they were made with.
struct connectionCloser {
  void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};
using sqliteConnection = std::unique_ptr<sqlite3, connectionCloser>;

/// The value of `Database` in a connection string; nothing when the text is a plain path.
std::optional<std::wstring> databaseOfConnectionString(std::wstring_view text);

enum class connectionKind {
  creating,  ///< read-write, created when missing
  writing,   ///< read-write, only what exists
};

/// Opens a database. @return null when it cannot be opened
sqliteConnection openConnection(const std::wstring& path, connectionKind kind);

/// A connection that reads without a trace, only what exists.
class readingConnection {
 public:
  /// @return false when it cannot be opened, or nothing sound can be read
  bool open(const std::wstring& path);
  void close();
  sqlite3* get() const { return connection_.get(); }

  /// True when somebody has begun to write without having to heed this reader, so that what has been read may
  /// be of two states.
  bool isDisturbed() const;

 private:
  /// Keeps a reader's lock, with which the log of a writer stays where it is.
  sqliteConnection guard_;
  sqliteConnection connection_;
};

/// Wide SQL or another text for the engine.
std::string utf8Of(std::wstring_view text);

}  // namespace suiteIo

#endif
