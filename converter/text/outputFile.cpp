#include "converter/text/outputFile.h"

#include <utility>

namespace converter {

outputFile::outputFile(std::wstring path) : path_(std::move(path)) {}

outputFile::~outputFile() {
  if (!isOpen_) return;
  file_.close();
  platform::removeFile(path_);
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
