#include "converter/text/outputFile.h"

#include <new>
#include <utility>

namespace converter {

outputFile::outputFile(std::wstring path) : path_(std::move(path)) {}

outputFile::~outputFile() {
  if (!isOpen_) return;
  file_.close();
  for (int attempt = 0; attempt < 2; ++attempt) {
    try {
      platform::removeFile(path_);
      return;
    } catch (const std::bad_alloc&) {
      std::string().swap(buffer_);  // what it gives back is enough for a path
    }
  }
}

void outputFile::flush() {
  flushed_ += buffer_.size();
  if (!hasFailed_) hasFailed_ = !file_.write(buffer_.data(), buffer_.size());
  buffer_.clear();
}

bool outputFile::close() {
  flush();
  if (!file_.close()) hasFailed_ = true;
  return !hasFailed_;
}

bool outputFile::finishAs(const std::wstring& target) {
  if (!close() || !platform::replaceFile(path_, target)) return false;
  isOpen_ = false;
  return true;
}

}  // namespace converter
