// What the format of a conversion's target cannot hold. One class for each format that has such limits; convert
// asks it for every value before anything is written.
#ifndef VOK_TOOLS_TARGETLIMITS_H
#define VOK_TOOLS_TARGETLIMITS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "table_rw/writers/tableWriter.h"
#include "tools/selection.h"

namespace vokTable {

class targetLimits {
 public:
  targetLimits() = default;
  targetLimits(const targetLimits&) = delete;
  targetLimits& operator=(const targetLimits&) = delete;
  virtual ~targetLimits();

  /// Chooses the fields of the target. Comes before every other question.
  /// @param named  what --fields says
  /// @return what is wrong with `named`, or why such a table cannot be written at all
  virtual std::optional<std::string> chooseFields(const selectedTable& table,
                                                  const std::optional<std::string>& named,
                                                  std::vector<tableRW::writerField>& fields);

  /// Why a table of this size does not fit; nothing when it does.
  virtual std::optional<std::string> tableProblem(std::uint64_t rows, std::uint64_t fields) const;

  /// Why a field cannot keep its name; nothing when it can.
  virtual std::optional<std::string> nameProblem(std::size_t field, std::wstring_view name) const;

  /// Why a value would not come back as it is; nothing when it would.
  virtual std::optional<std::string> problem(std::size_t field, std::wstring_view value) const = 0;

  /// Why a row would not come back although its values would; nothing when it would.
  virtual std::optional<std::string> rowProblem(const std::vector<std::wstring>& row) const;

  /// Bytes that the writer makes of a row; nothing where that cannot be told.
  virtual std::optional<std::uint64_t> rowSize(const std::vector<std::wstring>& row) const;

  /// Bytes of the whole file; nothing where only its rows tell, or nobody.
  virtual std::optional<std::uint64_t> fileSize(std::uint64_t rows) const;

  /// What to choose instead, for a message: "choose ...".
  virtual const char* alternative() const;

  /// What else a user should look at when there is no file, for a hint; null when there is nothing.
  virtual const char* whenMissing() const;
};

/// The limits of the format that a path's extension names.
/// @param delimiter  between the values of delimited text
std::unique_ptr<targetLimits> limitsOf(const std::wstring& path, const std::wstring& delimiter);

}  // namespace vokTable

#endif
