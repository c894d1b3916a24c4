#include "tests/support/micromineBuilder.h"

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace testSupport {
namespace {

constexpr std::size_t pageSize = 4096;

std::vector<std::string> pieces(std::string_view text, std::string_view separator) {
  std::vector<std::string> list;
  for (;;) {
    const std::size_t end = text.find(separator);
    list.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) return list;
    text.remove_prefix(end + separator.size());
  }
}

std::string little(std::uint64_t number, std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
  return bytes;
}

std::string rightAligned(std::string text, std::size_t width) {
  return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

// WHY not strtod: its point is the locale's. Nothing, `nan` and `inf` stand for themselves.
template <class Number>
Number numberOf(const std::string& value) {
  Number number = std::numeric_limits<Number>::quiet_NaN();
  std::from_chars(value.data(), value.data() + value.size(), number);
  return number;
}

std::string binary(const std::string& value, char type, std::size_t width) {
  if (type == 'R') return little(std::bit_cast<std::uint64_t>(numberOf<double>(value)), width);
  if (type == 'F') return little(std::bit_cast<std::uint32_t>(numberOf<float>(value)), width);
  if (value.empty()) return little(std::uint64_t{1} << (8 * width - 1), width);
  return little(static_cast<std::uint64_t>(std::strtoll(value.c_str(), nullptr, 10)), width);
}

}  // namespace

micromineBuilder::micromineBuilder(std::string_view variables) {
  codePage("ibm-5347_P100-1998");
  if (variables.empty()) return;
  for (const std::string& each : pieces(variables, ", ")) {
    const std::vector<std::string> words = pieces(each, " ");
    const std::vector<std::string> sizes = pieces(words.at(1).substr(1), ".");
    variables_.push_back({words[0],
                          words[1][0],
                          static_cast<std::size_t>(std::strtoul(sizes[0].c_str(), nullptr, 10)),
                          sizes.size() > 1 ? sizes[1] : "0",
                          {}});
  }
}

micromineBuilder& micromineBuilder::row(std::string_view values) {
  const std::vector<std::string> list = pieces(values, "|");
  for (std::size_t i = 0; i < variables_.size(); ++i) {
    const variable& column = variables_[i];
    std::string value = i < list.size() ? list[i] : "";
    if (column.type != 'C' && column.type != 'N') value = binary(value, column.type, column.width);
    value.resize(column.width, ' ');
    records_ += value;
  }
  records_ += lineEnd_;
  return *this;
}

micromineBuilder& micromineBuilder::record(std::string_view bytes) {
  std::string values(bytes);
  values.resize(recordSize() - lineEnd_.size(), ' ');
  records_ += values + lineEnd_;
  return *this;
}

micromineBuilder& micromineBuilder::describe(std::size_t number, std::string_view text) {
  variables_.at(number).description = text;
  described_ = true;
  return *this;
}

micromineBuilder& micromineBuilder::codePage(std::string_view name) {
  return metadata(
      "<metadata version=\"1.0\"><meta-object type=\"title\" version=\"1.0\">"
      "<data title=\"\" description=\"\"/></meta-object><meta-object type=\"encoding\">"
      "<data codepage=\"" +
      std::string(name) + "\"/></meta-object></metadata>");
}

micromineBuilder& micromineBuilder::metadata(std::string_view xml) {
  metadata_ = xml;
  return *this;
}

micromineBuilder& micromineBuilder::standard(std::string_view title) {
  standard_ = true;
  title_ = title;
  return *this;
}

micromineBuilder& micromineBuilder::lineEnd(std::string_view bytes) {
  lineEnd_ = bytes;
  return *this;
}

micromineBuilder& micromineBuilder::countLine(std::string_view line) {
  countLine_ = line;
  return *this;
}

std::string micromineBuilder::header() const {
  std::string bytes;
  if (standard_) {
    bytes = title_ + lineEnd_;
  } else {
    bytes = std::string("THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n") + metadata_;
    bytes.resize((bytes.size() + pageSize - 1) / pageSize * pageSize, '\0');
  }
  bytes += countLine_.empty() ? rightAligned(std::to_string(variables_.size()), 2) + "  VARIABLES"
                              : countLine_;
  bytes += lineEnd_;
  for (const variable& each : variables_) {
    std::string name = each.name;
    name.resize(10, ' ');
    bytes += name + each.type + rightAligned(std::to_string(each.width), 3) +
             rightAligned(each.decimals, 3);
    std::string description = each.description;
    description.resize(255, ' ');
    if (described_) bytes += '|' + description;
    bytes += lineEnd_;
  }
  return bytes;
}

std::size_t micromineBuilder::recordSize() const {
  std::size_t size = lineEnd_.size();
  for (const variable& each : variables_) size += each.width;
  return size;
}

}  // namespace testSupport
