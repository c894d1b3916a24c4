// Asks the project database examples/project.well2 about its wells, through odbc_database and the STRATA_
// functions, and enters a well into a database of its own.
//
//     project_wells_cpp [folder]   the folder that holds project.well2; "examples" when not given
//
// Shown here: connecting to what exists and to what is created, a query and its result, single values, the
// folders of wells, an insert in a transaction. This program prints the library's wide text as UTF-8.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "database/odbc_database.h"
#include "database/well_queries.h"
#include "wide_text.h"

namespace {

void print(const char* label, const std::wstring& text) {
  std::printf("%s%s\n", label, utf8(text).c_str());
}

void listWells(odbc_database& project) {
  odbc_result* wells = project.get_query(L"SELECT w_id, name FROM well_base ORDER BY w_id");
  while (wells != nullptr && wells->next()) {
    std::printf("%d  ", wells->get_as_int(0));
    print("", wells->get_as_wstring(1));
    print("    ", STRATA_getWellPath(&project, wells->get_as_int(0)));
  }
  project.close_query(wells);  // a null result is ignored
}

void askForValues(odbc_database& project) {
  bool ok = false;
  const std::int32_t count = STRATA_getDBNumValue(L"SELECT count(*) FROM well_base", &project, &ok);
  std::printf("\nwells: %d%s\n", count, ok ? "" : " (not a number)");
  std::vector<std::wstring> fields;
  STRATA_getDBList(L"SELECT DISTINCT field FROM well_base WHERE field <> ''", &project, fields);
  for (const std::wstring& field : fields) print("field: ", field);
  print("folder of the field: ", STRATA_getFieldPath(&project, L"7"));
  const bool logged = STRATA_isExist(L"SELECT 1 FROM log_w12", &project);
  std::printf("W-12 is %s\n", logged ? "logged" : "not logged");
}

bool enterWell() {
  odbc_database own;
  if (!own.connect(std::wstring(L":memory:"))) return false;
  own.execute_sql(L"CREATE TABLE well_base(w_id" + own.primary_key() +
                  L", name, field, work_object)");
  own.begin_transaction();
  const std::int64_t code = STRATA_insertWithCode(
      L"INSERT INTO well_base(name, field, work_object) VALUES('W-13', 'North', 'Proj')",
      L"SELECT last_insert_rowid()", &own);
  own.commit();
  std::printf("\nentered as %d: ", static_cast<int>(code));
  print("", STRATA_getWellPath(&own, static_cast<int>(code)));
  return code > 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::wstring folder = wide(argc > 1 ? argv[1] : "examples");
  odbc_database project;
  // A connection string opens what exists and leaves no trace; a bare path would create a missing file.
  if (!project.connect(L"Driver=SQLite3 ODBC Driver;Database=" + folder + L"/project.well2;")) {
    std::fprintf(stderr, "project.well2 cannot be opened\n");
    return 1;
  }
  listWells(project);
  askForValues(project);
  return enterWell() ? 0 : 1;
}
