#include "table_rw/writers/tableWriter_xls.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace tableRW {
namespace {

struct replacement {
  wchar_t character;
  std::wstring_view entity;
};

// In this order: each is searched in the text as the ones before have left it.
constexpr replacement replacements[] = {
    {L'&', L"&amp;"  },
    {L'<', L"&lt;"   },
    {L'>', L"&gt;"   },
    {L' ', L"&#160;" },
    {L'"', L"&quot; "},
};

// ' ', '"' and '&' lie below the digits; most values hold none of the five.
bool mayNeedEscape(wchar_t character) {
  return character == L' ' || character == L'"' || character == L'&' || character == L'<' ||
         character == L'>';
}

// ODD: the first of each character alone.
void escape(std::wstring& text) {
  if (std::none_of(text.begin(), text.end(), mayNeedEscape)) return;
  for (const replacement& each : replacements) {
    const std::size_t found = text.find(each.character);
    if (found != std::wstring::npos) text.replace(found, 1, each.entity);
  }
}

}  // namespace

tableWriter_xls::tableWriter_xls(tableWriterOptions options) : options_(std::move(options)) {
  std::vector<std::wstring> names;
  names.reserve(options_.fields.size());
  for (const writerField& field : options_.fields) names.push_back(field.name);
  tableWriter_xls::addRow(names);
}

tableWriter_xls::tableWriter_xls(const tableWriter_xls& other)
    : tableWriter(other),
      options_(other.options_),
      sheetCount_(other.sheetCount_),
      workbook_(other.workbook_) {
  if (sheetCount_ > 0) sheet_ = &workbook_.sheet(0);
}

tableWriter_xls& tableWriter_xls::operator=(const tableWriter_xls& other) {
  if (this == &other) return *this;
  tableWriterOptions options = other.options_;
  workbook_ = other.workbook_;
  options_ = std::move(options);
  sheetCount_ = other.sheetCount_;
  sheet_ = sheetCount_ > 0 ? &workbook_.sheet(0) : nullptr;
  return *this;
}

tableWriter_xls::~tableWriter_xls() {
  try {
    workbook_.Save(options_.fileName);
  } catch (const std::bad_alloc&) {
    // Like any other failure of saving: nobody can be told.
  }
}

bool tableWriter_xls::addRow(const std::vector<std::wstring>& row) {
  if (row.empty()) return false;
  if (sheetCount_ < 1) {
    sheet_ = &workbook_.AddSheet(L"List" + std::to_wstring(sheetCount_ + 1));
    ++sheetCount_;
  }
  cells_.resize(row.size());
  for (std::size_t i = 0; i < row.size(); ++i) {
    cells_[i].value.assign(row[i]);
    escape(cells_[i].value);
  }
  sheet_->AddRow(cells_);
  return true;
}

}  // namespace tableRW
