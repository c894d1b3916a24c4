// The file that a conversion writes: under a temporary name in the target's folder first, and under
// its own name, in one step, when it is whole.
//
// A DBF file may have a file beside it that tells its code page (.cpg). It goes along with the table; one
// of an older table goes away.
#ifndef VOK_TOOLS_TARGETFILE_H
#define VOK_TOOLS_TARGETFILE_H

#include <string>

namespace vokTable {

/// True for two paths of one file, also of one that is not there yet: of one name in one folder, however that is
/// written. Names that differ in letter case alone count as one, as they are on Windows.
bool isSamePath(const std::wstring& first, const std::wstring& second);

/// The file beside a DBF file that tells its code page; it need not be there. Empty for other targets.
std::wstring codePageFileOf(const std::wstring& target);

/// The temporary file. It goes away with its owner, unless it has taken the target's name before.
class targetFile {
 public:
  /// Finds a name that nothing has. It keeps the target's extension, by which a writer is chosen.
  explicit targetFile(const std::wstring& target);
  targetFile(const targetFile&) = delete;
  targetFile& operator=(const targetFile&) = delete;
  ~targetFile();

  const std::wstring& temporaryPath() const { return temporaryPath_; }

  /// Takes the target's name; what had it before is replaced. @return false when that fails
  bool finish();

  /// After finish: the file beside a DBF file takes its name too, and one of an older table goes away.
  /// @return false when that fails
  bool finishCodePage() const;

 private:
  std::wstring target_;
  std::wstring temporaryPath_;
  std::wstring
      codePagePath_;  // beside the temporary file, made with it where it is a DBF file; else empty
  bool isFinished_ = false;
};

}  // namespace vokTable

#endif
