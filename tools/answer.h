// The answer of a command, as text or as a JSON document (docs/tool_json.md).
//
// A command hands over values and tables; the form that the user asked for decides what becomes of them. A
// document begins with the version of its shape, the command and the source, and ends with the messages and the
// exit code. Whatever a command does in between, the document is whole: `conclude` closes it.
//
// Tables stream: a row is written when it comes. One object belongs to one thread at a time.
#ifndef VOK_TOOLS_ANSWER_H
#define VOK_TOOLS_ANSWER_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/commandLine.h"
#include "tools/exitCodes.h"
#include "tools/json.h"
#include "tools/messages.h"
#include "tools/output.h"
#include "tools/tableDrawing.h"

namespace vokTable {

/// What the values of a column are in a JSON document.
enum class columnKind {
  text,
  textWhenThere,  ///< null when empty
  number,         ///< digits; null when empty
  countOrMore,  ///< digits, or digits behind '>': then the next key, with IsExact at its end, is false
  truth,        ///< true for "yes"
};

struct recordColumn {
  std::string_view title;  ///< in text
  std::string_view key;    ///< in a document
  columnKind kind = columnKind::text;
};

/// Records of named values: what the tool itself has to tell, not a user's table.
struct recordList {
  std::string_view key;  ///< of the array in a document
  std::vector<recordColumn> columns;
  /// Hands over the records in order, from the first at each call.
  std::function<void(const rowReceiver&)> visitRows;
  bool hasTitles = true;
};

/// A user's table: its fields and rows.
struct dataTable {
  std::vector<std::wstring> names;
  std::vector<bool> isNumber;
  std::function<void(const rowReceiver&)> visitRows;
};

enum class answerForm { text, csv, json };

class answerWriter {
 public:
  answerWriter(dataOutput& output, answerForm form) : output_(output), json_(output), form_(form) {}

  answerForm form() const { return form_; }
  bool isJson() const { return form_ == answerForm::json; }

  /// Begins a document; nothing in another form.
  /// @param command  empty: none was recognised
  /// @param file     the source; empty: there is none
  void begin(std::string_view command, std::string_view file);

  void table(const dataTable& table);
  void records(const recordList& list);
  /// Texts, a line each.
  void texts(std::string_view key, const std::vector<std::wstring>& texts);
  /// A number on a line of its own.
  void number(std::string_view key, std::uint64_t value);
  /// A text on a line of its own.
  void text(std::string_view key, std::string_view utf8);

  /// Something that only a document tells.
  void note(std::string_view key, std::uint64_t value);

  /// Ends a document; nothing in another form.
  void conclude(const std::vector<keptMessage>& messages, exitCode outcome);

 private:
  void recordAsJson(const recordList& list, const tableRow& row);
  void recordsAsCsv(const recordList& list);

  dataOutput& output_;
  jsonWriter json_;
  answerForm form_;
};

}  // namespace vokTable

#endif
