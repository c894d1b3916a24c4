#include "tests/support/temporaryFolder.h"

#include <array>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>

#include "platform/environment.h"
#include "platform/files.h"

namespace testSupport {
namespace {

// Tests run in several processes at once: a name counts as free only when the folder could be made.
std::wstring makeFolder() {
  constexpr int attempts = 100;
  std::random_device numbers;
  for (int i = 0; i < attempts; ++i) {
    const std::wstring path =
        platform::temporaryFolder() + L"vok_test_" + std::to_wstring(numbers());
    if (platform::createFolder(path)) return path + path.at(platform::temporaryFolder().size() - 1);
  }
  throw std::runtime_error("no folder can be made in the system's temporary folder");
}

}  // namespace

temporaryFolder::temporaryFolder() : path_(makeFolder()) {}

temporaryFolder::~temporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_.substr(0, path_.size() - 1), ignored);
}

std::wstring temporaryFolder::write(const std::wstring& name, std::string_view bytes) const {
  writeFile(file(name), bytes);
  return file(name);
}

void writeFile(const std::wstring& path, std::string_view bytes) {
  // WHY: some file systems wait for the disk when a file that was emptied is closed, and tests that
  // write thousands of files would take minutes. A new file is not waited for.
  platform::removeFile(path);
  platform::binaryFile file;
  const bool written =
      file.openForWriting(path) && file.write(bytes.data(), bytes.size()) && file.close();
  if (!written) throw std::runtime_error("a test file cannot be written");
}

std::optional<std::string> readFile(const std::wstring& path) {
  platform::binaryFile file;
  if (!file.openForReading(path)) return std::nullopt;
  std::string bytes;
  std::array<char, 65536> block;
  while (const std::size_t got = file.read(block.data(), block.size()))
    bytes.append(block.data(), got);
  return bytes;
}

}  // namespace testSupport
