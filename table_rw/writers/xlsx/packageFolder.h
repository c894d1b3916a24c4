// The temporary folder in which the parts of a package are written before they are packed.
//
// Its name is fixed when the object is made: the folder that the variable TEMP names, or the current one,
// then "xlsx_", the number of the calling thread, "_" and the processor clock. It comes into existence with
// the first part. A name that is taken by then gets a number appended: nothing that was there is touched.
//
// It removes what it has made, and nothing else; with its owner at the latest.
// One object belongs to one thread at a time; several objects do not meet.
#ifndef VOK_TABLE_RW_WRITERS_XLSX_PACKAGEFOLDER_H
#define VOK_TABLE_RW_WRITERS_XLSX_PACKAGEFOLDER_H

#include <string>
#include <vector>

#include "table_rw/writers/xlsx/packageDisk.h"
#include "table_rw/writers/xlsx/xmlPart.h"

namespace SimpleXlsx {

class packageFolder {
 public:
  explicit packageFolder(packageDisk& disk);
  packageFolder(const packageFolder&) = delete;
  packageFolder& operator=(const packageFolder&) = delete;
  ~packageFolder();

  packageDisk& disk() const { return disk_; }

  /// The path of a part, by its name in the package ("xl/workbook.xml").
  std::wstring pathOf(const std::wstring& part) const { return path_ + L'/' + part; }

  /// Makes the folders that a part needs and notes its file for removal. @return the part's path
  /// A folder that cannot be made shows when the part is opened.
  std::wstring prepare(const std::wstring& part);

  /// Opens a part for writing. @return false when that fails
  bool open(xmlPart& part, const std::wstring& name) { return part.open(prepare(name)); }

  /// Removes the parts and the folders. Files still open stay on Windows, and their folders with them.
  void remove();

 private:
  struct made {
    std::wstring path;
    bool isFolder;
  };

  void createTop();
  void createFolder(const std::wstring& path);

  packageDisk& disk_;
  std::wstring path_;
  std::vector<made> made_;  // in the order in which it was made; the first is the folder itself
};

}  // namespace SimpleXlsx

#endif
