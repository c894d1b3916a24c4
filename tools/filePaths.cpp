#include "tools/filePaths.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "tools/text.h"

namespace vokTable {
namespace {

std::optional<std::filesystem::path> systemPath(const std::wstring& path) {
  const std::string bytes = toUtf8(path);
  try {
    return std::filesystem::path(std::u8string(bytes.begin(), bytes.end()));
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace

bool isSameFile(const std::wstring& first, const std::wstring& second) {
  if (first == second) return true;
  const auto firstPath = systemPath(first);
  const auto secondPath = systemPath(second);
  std::error_code error;
  return firstPath && secondPath && std::filesystem::equivalent(*firstPath, *secondPath, error);
}

bool isPipeOrDevice(const std::wstring& path) {
  const auto asked = systemPath(path);
  if (!asked) return false;
  std::error_code error;
  const auto status = std::filesystem::status(*asked, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
         !std::filesystem::is_directory(status);
}

bool isLink(const std::wstring& path) {
  const auto asked = systemPath(path);
  std::error_code error;
  return asked && std::filesystem::is_symlink(std::filesystem::symlink_status(*asked, error));
}

}  // namespace vokTable
