// The fields that the user names, and a table that shows some of the fields of a reader, in the user's order.
//
// A list of names is separated by commas, and a name may hold commas itself: the list is understood when it can
// be taken apart into names of fields at all, the shortest names first. A byte-order mark before the first
// field's name, which nobody can type, may be left out. Of fields with one name the first is meant.
//
// A table refers to its reader and lives no longer. One thread at a time.
#ifndef VOK_TOOLS_SELECTION_H
#define VOK_TOOLS_SELECTION_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "table_rw/core/tableReader.h"
#include "tools/commandLine.h"
#include "tools/source.h"

namespace vokTable {

/// Index of the field that the user means.
std::optional<std::size_t> findField(const tableRW::tableReader& reader, const std::wstring& name);

/// The fields that the lists of --select name.
/// @param unknown  the name that no field has, when nothing is answered
std::optional<std::vector<std::size_t>> findFields(const tableRW::tableReader& reader,
                                                   const std::vector<std::string>& lists,
                                                   std::string& unknown);

/// What was read, or some of its fields.
class selectedTable {
 public:
  /// All fields, and rows as they are: those of some formats are as long as their lines.
  explicit selectedTable(const tableRW::tableReader& reader) : reader_(reader) {}
  /// @param fields  by their indexes; rows are as wide then
  selectedTable(const tableRW::tableReader& reader, std::vector<std::size_t> fields)
      : reader_(reader), fields_(std::move(fields)) {}

  std::size_t fieldCount() const;
  std::wstring fieldName(std::size_t field) const { return reader_.fieldName(sourceField(field)); }
  tableRW::fldType fieldType(std::size_t field) const {
    return reader_.fieldType(sourceField(field));
  }
  void fieldList(std::vector<std::wstring>& out) const;
  /// Index of the first field of this name; nothing when there is none.
  std::optional<std::size_t> fieldNum(const std::wstring& name) const;

  std::uint64_t count() const { return reader_.count(); }
  void getRow(std::size_t row, std::vector<std::wstring>& out) const;

  /// The first rows, for an answer.
  dataTable shown(std::uint64_t rows) const;

 private:
  std::size_t sourceField(std::size_t field) const { return fields_ ? (*fields_)[field] : field; }

  const tableRW::tableReader& reader_;
  std::optional<std::vector<std::size_t>> fields_;
};

/// The table that --select asks for.
/// @return nothing, explained, when it names a field that is not there
std::optional<selectedTable> selectTable(const commandLine& request, tableRW::tableReader& reader,
                                         toolContext& context);

/// Explains a name that no field has, and what the fields are. @return usage
exitCode explainUnknownField(std::string_view option, std::string_view text,
                             std::string_view expectation, const commandLine& request,
                             tableRW::tableReader& reader, toolContext& context);

}  // namespace vokTable

#endif
