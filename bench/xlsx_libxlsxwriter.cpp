// libxlsxwriter writing the same rows: xlsx_libxlsxwriter shared|constant FILE OUT
//
//   shared    its default: a table of shared strings, everything held in memory
//   constant  its constant-memory mode: rows go to the disk, texts stand in their cells
#include <xlsxwriter.h>

#include <cstdio>
#include <filesystem>
#include <string_view>

#include "report.h"
#include "rowsFile.h"

int main(int argc, char** argv) {
  const std::string_view mode = argc == 4 ? argv[1] : "";
  if (mode != "shared" && mode != "constant") {
    std::fprintf(stderr, "usage: xlsx_libxlsxwriter shared|constant FILE OUT\n");
    return 2;
  }
  const bench::rowsFile file(argv[2]);
  const bench::stopwatch watch;
  lxw_workbook_options options{};
  options.constant_memory = mode == "constant" ? 1 : 0;
  lxw_workbook* const book = workbook_new_opt(argv[3], &options);
  lxw_worksheet* const sheet = workbook_add_worksheet(book, nullptr);
  for (std::size_t i = 0; i < file.cells.size(); ++i)
    worksheet_write_string(sheet, static_cast<lxw_row_t>(i / bench::wellsColumns),
                           static_cast<lxw_col_t>(i % bench::wellsColumns), file.cells[i], nullptr);
  if (workbook_close(book) != LXW_NO_ERROR) bench::fail("cannot be written", argv[3]);
  bench::report(argv[1], watch.seconds(),
                {
                    {"rows",    bench::writtenRows                      },
                    {"values",  bench::writtenRows * bench::wellsColumns},
                    {"written", std::filesystem::file_size(argv[3])     }
  });
  bench::leave();
}
