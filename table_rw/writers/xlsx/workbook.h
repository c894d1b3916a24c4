// A workbook being written: an Office Open XML spreadsheet (ECMA-376) in a ZIP archive.
//
//     package (ZIP)                            written by
//     ├── [Content_Types].xml                  contentTypes
//     ├── _rels/
//     │   └── .rels                            relationships
//     ├── docProps/
//     │   ├── app.xml                          appProperties
//     │   └── core.xml                         coreProperties
//     └── xl/
//         ├── workbook.xml                     workbookPart
//         ├── _rels/workbook.xml.rels          relationships
//         ├── styles.xml                       styles
//         ├── theme/theme1.xml                 theme
//         ├── sharedStrings.xml                sharedStrings; left out when no cell holds shared text
//         └── worksheets/sheet1.xml ...        worksheet
//
// Worksheets are written to a temporary folder (packageFolder) while their rows arrive; the other parts follow
// when the workbook is saved, and all of them are packed into the target (zipWriter). Parts write through
// xmlPart, which knows no spreadsheets, and everything that is written goes through packageDisk. Only the
// shared strings stay in memory.
//
// One object belongs to one thread at a time; workbooks in several threads do not meet.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_WORKBOOK_H
#define VOK_TABLE_RW_WRITERS_XLSX_WORKBOOK_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "table_rw/writers/xlsx/packageDisk.h"
#include "table_rw/writers/xlsx/packageFolder.h"
#include "table_rw/writers/xlsx/sharedStrings.h"
#include "table_rw/writers/xlsx/worksheet.h"

namespace SimpleXlsx {

class CWorkbook {
 public:
  /// An empty workbook; nothing is on the disk yet.
  /// @param disk  outlives the workbook
  explicit CWorkbook(packageDisk& disk = packageDisk::real());

  /// Copies the workbook as a whole: the copy has the same rows in a temporary folder of its own. What goes
  /// wrong with its files shows when it is saved.
  CWorkbook(const CWorkbook& other);
  /// Discards what this one holds, without saving it.
  CWorkbook& operator=(const CWorkbook& other);

  /// Removes the temporary folder; a workbook that was not saved is gone.
  ~CWorkbook();

  /// Begins the next worksheet; it belongs to the workbook.
  CWorksheet& AddSheet(const std::wstring& title);

  /// A worksheet by its number, from 0.
  CWorksheet& sheet(std::size_t number) const { return *sheets_[number]; }

  /// Finishes all parts, builds the package at `path` and removes the temporary folder, whatever the
  /// outcome. A file that is there is replaced. A workbook is saved once.
  /// @return false when a part cannot be written, the target cannot be created, or a member cannot be
  ///         added: nothing is left at the path then, unless it could not be opened at all
  /// ODD: true when the archive's directory is lost at its end; nothing is left at the path then either.
  bool Save(const std::wstring& path);

 private:
  template <class Writer>
  bool writePart(const std::wstring& name, Writer write);
  bool writeParts();
  bool pack(const std::wstring& path);
  std::vector<std::wstring> partNames() const;
  std::vector<std::wstring> titles() const;
  bool hasSharedStrings() const { return strings_->count() > 0; }

  std::unique_ptr<packageFolder> folder_;
  std::unique_ptr<sharedStrings> strings_;
  std::vector<std::unique_ptr<CWorksheet>>
      sheets_;  // they hold on to strings_, and close before folder_
};

}  // namespace SimpleXlsx

#endif
