#include "tests/support/dbfBuilder.h"

#include <algorithm>
#include <cstdlib>

namespace testSupport {
namespace {

constexpr unsigned dbase2 = 0x02;

bool isLevel7(unsigned version) { return (version & 7U) == 4; }

std::vector<std::string_view> pieces(std::string_view text, char separator) {
  std::vector<std::string_view> list;
  for (std::size_t at = 0; at != std::string_view::npos && !text.empty();) {
    const std::size_t next = text.find(separator, at);
    list.push_back(text.substr(at, next == std::string_view::npos ? next : next - at));
    at = next == std::string_view::npos ? next : next + 1;
  }
  return list;
}

std::string padded(std::string_view text, std::size_t size, char with = '\0') {
  std::string out(text.substr(0, size));
  out.resize(size, with);
  return out;
}

}  // namespace

dbfBuilder::dbfBuilder(std::string_view fields, unsigned version) : version_(version) {
  for (std::string_view text : pieces(fields, ',')) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::size_t blank = text.rfind(' ');
    field each;
    each.name = text.substr(0, blank);
    std::string type(text.substr(blank + 1));
    each.nullable = type.back() == '?';
    if (each.nullable) type.pop_back();
    each.type = type.front();
    each.length = std::strtoul(type.c_str() + 1, nullptr, 10);
    const std::size_t point = type.find('.');
    if (point != std::string::npos)
      each.decimals = std::strtoul(type.c_str() + point + 1, nullptr, 10);
    fields_.push_back(each);
  }
}

dbfBuilder& dbfBuilder::row(std::string_view values, char mark) {
  const std::vector<std::string_view> list = pieces(values, '|');
  std::string bytes;
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    const std::string value(i < list.size() ? list[i].substr(0, fields_[i].length) : "");
    const std::string blanks(fields_[i].length - value.size(), ' ');
    const bool right = fields_[i].type == 'N' || fields_[i].type == 'F';
    bytes += right ? blanks + value : value + blanks;
  }
  return record(bytes, mark);
}

dbfBuilder& dbfBuilder::record(std::string_view bytes, char mark) {
  records_ += mark + padded(bytes, recordLength() - 1, ' ');
  ++count_;
  return *this;
}

dbfBuilder& dbfBuilder::end(std::string_view marks) {
  end_ = marks;
  return *this;
}

dbfBuilder& dbfBuilder::tail(std::string_view bytes) {
  tail_ = bytes;
  return *this;
}

std::size_t dbfBuilder::recordLength() const {
  std::size_t length = 1;
  for (const field& each : fields_) length += each.length;
  return length;
}

std::size_t dbfBuilder::headerLength() const {
  if (version_ == dbase2) return 521;
  const bool seven = isLevel7(version_);
  return (seven ? 68 : 32) + fields_.size() * (seven ? 48 : 32) + end_.size();
}

std::string dbfBuilder::header() const {
  std::string text(1, static_cast<char>(version_));
  const std::string date("\x7C\x01\x02", 3);
  if (version_ == dbase2)
    return text + littleEndian(count_, 2) + date + littleEndian(recordLength(), 2);
  text += date + littleEndian(count_, 4) + littleEndian(headerLength(), 2) +
          littleEndian(recordLength(), 2);
  text.resize(32);
  if (isLevel7(version_)) text += padded("DBWINUS0", 36);
  return text;
}

std::string dbfBuilder::bytes() const {
  std::string text = header();
  for (const field& each : fields_) {
    const std::string length = littleEndian(each.length, 1);
    const std::string decimals =
        littleEndian(each.type == 'C' ? each.length >> 8 : each.decimals, 1);
    const std::string type(1, each.type);
    if (version_ == dbase2) {
      text += padded(padded(each.name, 11) + type + length + std::string(2, '\0') + decimals, 16);
    } else if (isLevel7(version_)) {
      text += padded(padded(each.name, 32) + type + length + decimals, 48);
    } else {
      const std::string flags(1, each.nullable ? '\x02' : '\0');
      text += padded(
          padded(each.name, 11) + type + std::string(4, '\0') + length + decimals + flags, 32);
    }
  }
  text += end_;
  text.resize(headerLength());
  return text + records_ + tail_;
}

std::string littleEndian(std::uint64_t number, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) text += static_cast<char>(number >> (8 * i) & 0xFF);
  return text;
}

std::string bigEndian(std::uint64_t number, std::size_t size) {
  std::string text = littleEndian(number, size);
  std::reverse(text.begin(), text.end());
  return text;
}

std::string poked(std::string text, std::size_t at, std::string_view bytes) {
  return text.replace(at, bytes.size(), bytes);
}

}  // namespace testSupport
