// The types of a table's columns as its CREATE statement spells them.
//
// WHY: `PRAGMA table_info` of engines since 3.37 gives the six standard names (ANY, BLOB, INT, INTEGER,
// REAL, TEXT) in capitals, whatever was declared, and callers tell `integer` from `INTEGER`.
//
// Only CREATE TABLE is read, as the engine keeps it, ALTER TABLE included. What is read counts only where it
// fits the engine's own answer, so a statement that is not understood costs nothing but the spelling.
// No state; any thread.
#ifndef VOK_SUITE_IO_DECLAREDTYPES_H
#define VOK_SUITE_IO_DECLAREDTYPES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace suiteIo {

struct columnType {
  std::string name;
  std::string type;

  bool operator==(const columnType&) const = default;
};

/// The columns that `PRAGMA table_info` lists: generated ones are hidden there. Empty for any other
/// statement than CREATE TABLE with a list of columns.
std::vector<columnType> readCreateTable(std::string_view sql);

/// The engine's columns with the spelling of the CREATE statement; unchanged when the two differ in
/// anything but the case of letters and blanks in a type.
std::vector<columnType> withDeclaredTypes(std::vector<columnType> ofEngine, std::string_view sql);

/// What a `PRAGMA [schema.]table_info(table)` asks for, unquoted.
struct tableInfoCall {
  std::string schema;  // empty: not named
  std::string table;
};

/// Nothing for any other statement.
std::optional<tableInfoCall> readTableInfoCall(std::string_view sql);

}  // namespace suiteIo

#endif
