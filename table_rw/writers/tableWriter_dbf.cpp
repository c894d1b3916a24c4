#include "table_rw/writers/tableWriter_dbf.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/vok_basic.h"
#include "platform/vok_file_dbf.h"

namespace tableRW {
namespace {

constexpr std::size_t longestName = sizeof(dbfFieldDef::name) - 1;
constexpr std::int32_t lowByte = 0xFF;
constexpr fldType dateField = static_cast<fldType>(2);

std::string latinName(const std::wstring& name) {
  std::string latin;
  Tvo_std_string_adapter receiver(latin);
  const std::unique_ptr<vo_string_adp, decltype(&vo_string_adp_destroy)> adapter(
      vo_string_adp_create(&receiver), &vo_string_adp_destroy);
  vo_translit(name.c_str(), adapter.get());
  return latin;
}

int codeOf(fldType type) {
  constexpr int textCode = 1;
  constexpr int numericCode = 2;
  constexpr int dateCode = 3;
  if (type == fldNumber) return numericCode;
  return type == dateField ? dateCode : textCode;
}

dbfFieldDef definitionOf(const writerField& field) {
  dbfFieldDef definition = {};
  const std::string name = latinName(field.name);
  std::copy_n(name.begin(), std::min(name.size(), longestName), definition.name);
  definition.type = vo_dbftype2char(codeOf(field.type));
  definition.length = static_cast<unsigned char>(field.width & lowByte);
  definition.decimals = field.decimals;
  return definition;
}

}  // namespace

tableWriter_dbf::tableWriter_dbf(tableWriterOptions options) : options_(std::move(options)) {
  std::vector<dbfFieldDef> definitions;
  definitions.reserve(options_.fields.size());
  for (const writerField& field : options_.fields) definitions.push_back(definitionOf(field));
  const auto count = static_cast<std::uint32_t>(definitions.size());
  constexpr int dbase3 = 0;
  constexpr unsigned char replace = 1;
  vo_dbf_make_correct_names(definitions.data(), count);
  table_ = vo_dbf_create_w(options_.fileName.c_str(), count, dbase3, definitions.data(), replace);
}

tableWriter_dbf::~tableWriter_dbf() { vo_dbf_close(table_); }

bool tableWriter_dbf::addRow(const std::vector<std::wstring>& row) {
  if (row.size() > options_.fields.size()) return false;
  vo_dbf_add_records(table_, 1);
  for (std::size_t i = 0; i < row.size(); ++i)
    vo_dbf_set_str_w(table_, static_cast<std::uint32_t>(i), record_, row[i].c_str());
  ++record_;
  return true;
}

}  // namespace tableRW
