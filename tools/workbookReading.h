// What reading a workbook needs around it: the converter leaves the sheet's text under the workbook's name in the
// folder for temporary files, where other programs, and the user, may have files of that name.
//
//     const workbookReading converted(arguments, reader.path());
//     reader.read();
//     if (converted.isInterrupted()) ...
//
// For sources of other formats it does nothing. One thread; they may be nested.
#ifndef VOK_TOOLS_WORKBOOKREADING_H
#define VOK_TOOLS_WORKBOOKREADING_H

#include <optional>
#include <string>

#include "tools/commandLine.h"
#include "tools/interruption.h"

namespace vokTable {

/// While it lives, temporary files go to a folder of this process alone, and a request to end the program is noted
/// instead of obeyed; then the folder goes away with whatever was left in it.
class workbookReading {
 public:
  workbookReading(const readingArguments& arguments, const std::wstring& path);
  workbookReading(const workbookReading&) = delete;
  workbookReading& operator=(const workbookReading&) = delete;
  ~workbookReading();

  /// Whether somebody has asked for the end meanwhile. A converter that was asked, too, has left no whole sheet.
  bool isInterrupted() const { return interrupted_ && interrupted_->isAskedFor(); }

 private:
  std::optional<interruption> interrupted_;
  std::wstring folder_;  // empty: the system's is used
};

}  // namespace vokTable

#endif
