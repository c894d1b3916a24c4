// A folder of its own for each test, removed with everything in it when the test ends.
//
//     testSupport::temporaryFolder folder;
//     const std::wstring path = folder.write(L"wells.csv", "a;b\n1;2\n");
//
// What the machine refuses (a full disk) is a std::runtime_error, which fails the test.
#ifndef VOK_TESTS_SUPPORT_TEMPORARYFOLDER_H
#define VOK_TESTS_SUPPORT_TEMPORARYFOLDER_H

#include <optional>
#include <string>
#include <string_view>

namespace testSupport {

class temporaryFolder {
 public:
  temporaryFolder();
  temporaryFolder(const temporaryFolder&) = delete;
  temporaryFolder& operator=(const temporaryFolder&) = delete;
  ~temporaryFolder();

  /// The folder's path, with a separator at its end.
  const std::wstring& path() const { return path_; }

  /// Where a file of this name stands, or would stand.
  std::wstring file(const std::wstring& name) const { return path_ + name; }

  /// Writes a file in the folder. @return its path
  std::wstring write(const std::wstring& name, std::string_view bytes) const;

 private:
  std::wstring path_;
};

/// Creates or replaces a file.
void writeFile(const std::wstring& path, std::string_view bytes);

/// The bytes of a file; nothing when it cannot be opened.
std::optional<std::string> readFile(const std::wstring& path);

}  // namespace testSupport

#endif
