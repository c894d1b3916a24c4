// A table as a DBF file: the type and width of each field, chosen from the data, and what such a file
// cannot hold.
//
// Chosen are N for fields whose values are all plain numbers (no zeros in front, no plus, no exponent, at
// most 20 characters with the point where it stands furthest left), D for fields of days written
// YYYY-MM-DD, C for the rest, as wide as their longest value needs in the code page, at most 254 bytes. A
// number with a comma stays text: nobody can tell whether it is 1234 or 1.234.
// --fields names types instead: DEPTH=N10.2,NAME=C20,DAY=D; fields not named are chosen.
#ifndef VOK_TOOLS_DBFPLAN_H
#define VOK_TOOLS_DBFPLAN_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/writers/tableWriter.h"
#include "tools/codePageLimits.h"
#include "tools/targetLimits.h"

namespace vokTable {

class dbfPlan : public targetLimits {
 public:
  /// @param codePage  of the file: the system's, resolved
  explicit dbfPlan(unsigned codePage) : page_(codePage) {}

  std::optional<std::string> chooseFields(const selectedTable& table,
                                          const std::optional<std::string>& named,
                                          std::vector<tableRW::writerField>& fields) override;

  /// A name may become its transliteration.
  std::optional<std::string> nameProblem(std::size_t field, std::wstring_view name) const override;

  /// A number comes back when its value does.
  std::optional<std::string> problem(std::size_t field, std::wstring_view value) const override;

  std::optional<std::uint64_t> fileSize(std::uint64_t rows) const override;
  const char* alternative() const override;

 private:
  std::optional<std::string> useNamed(const selectedTable& table, std::string_view named);
  std::optional<std::string> textProblem(std::wstring_view value, std::size_t width) const;

  codePageLimits page_;
  std::vector<tableRW::writerField> fields_;
  std::vector<std::string> latinNames_;
};

}  // namespace vokTable

#endif
