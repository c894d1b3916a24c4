// The DBF reader with a memo file beside the table: what opens is a table, see checkedTable.
#include "fuzz/fuzzing.h"
#include "fuzz/targets.h"
#include "platform/files.h"
#include "table_rw/readers/tableReader_dbf.h"

// The first byte says how much of the input is the memo file, and of which kind that is.
std::string fuzzing::dbf(std::string_view bytes) {
  inputReader input(bytes);
  const unsigned choice = input.byte();
  const std::string_view memo = input.bytes(input.rest().size() * (choice % 8) / 16);
  const bool isFoxPro = (choice & 8) != 0;
  platform::removeFile(inputPath(isFoxPro ? L"input.dbt" : L"input.fpt"));
  writeInput(isFoxPro ? L"input.fpt" : L"input.dbt", memo);
  tableRW::tableReader_dbf reader{
      tableRW::tableReaderOptions(writeInput(L"input.dbf", input.rest()))};
  return checkedTable(reader, input.rest().size());
}
