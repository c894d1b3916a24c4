#include "tools/formats.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "platform/caseFolding.h"
#include "platform/vok_basic.h"
#include "table_rw/core/tableReader.h"
#include "tools/text.h"

namespace vokTable {
namespace {

using enum tableRW::fileType;

struct format {
  tableRW::fileType type;
  const char* typeName;
  const char* title;
  const char* chosenFor;  // the extensions that the automatic choice knows it by, or words
  const char* written;    // the extension that it is written by; empty: it is only read
};

constexpr format formats[] = {
    {fileTypeCsv,           "csv",       "delimited text",                "csv, any other",  "csv" },
    {fileTypeXlsConverter,  "xls",       "spreadsheet, by converter",     "xls, xlsx, xlsm", "xlsx"},
    {fileTypeXlsOdbc,       "xls-odbc",  "spreadsheet, by ODBC",          "xls, xlsx",       ""    },
    {fileTypeAccessOdbc,    "access",    "Access database, by ODBC",      "mdb, accdb",      ""    },
    {fileTypeDbf,           "dbf",       "dBASE or FoxPro table",         "dbf",             "dbf" },
    {fileTypeSqlite,        "sqlite",    "SQLite database",               "sqlite, well2",   ""    },
    {fileTypeMicromineData, "micromine", "Micromine data file",           "micromine",       ""    },
    {fileTypeMicromineDhdb, "dhdb",      "Micromine drill-hole database", "dhdb",            ""    },
    {fileTypePetrel,        "petrel",    "Petrel text table",             "by first line",   ""    },
};

// Extensions of tables that are not written, or not in the format that other programs expect there; no type of
// source is chosen for them.
constexpr std::wstring_view foreignExtensions[] = {
    L"xlsm", L"xlsb", L"xltx",    L"xltm", L"xlt", L"ods",   L"fods",
    L"db",   L"db3",  L"sqlite3", L"gpkg", L"mde", L"accde",
};

constexpr std::string_view automatic = "auto";

bool isChosenFor(const format& asked, std::string_view extension) {
  std::string_view rest = asked.chosenFor;
  while (!rest.empty()) {
    const std::size_t comma = rest.find(", ");
    if (rest.substr(0, comma) == extension) return true;
    rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 2);
  }
  return false;
}

/// The extension as the factory of the readers takes it: after the last dot of the whole path.
const format* formatOfPath(const std::wstring& path) {
  const std::size_t dot = path.rfind(L'.');
  if (dot == std::wstring::npos) return nullptr;
  const std::string extension = toUtf8(platform::lowerCase(path.substr(dot + 1)));
  const auto* const found =
      std::find_if(std::begin(formats), std::end(formats),
                   [&](const format& each) { return isChosenFor(each, extension); });
  return found == std::end(formats) ? nullptr : found;
}

/// The format of a type, every one of which stands in the table, or the one that the path's extension chooses.
const format* formatOf(std::int32_t fileType, const std::wstring& path) {
  if (fileType == fileTypeAuto) return formatOfPath(path);
  return std::find_if(std::begin(formats), std::end(formats),
                      [&](const format& each) { return each.type == fileType; });
}

bool isRead(const format& asked) {
  tableRW::tableReaderOptions options(L"table");
  options.file_type = asked.type;
  const std::unique_ptr<tableRW::tableReader, decltype(&tableRW::tableReader::close)> reader(
      tableRW::tableReader::open(options), &tableRW::tableReader::close);
  return !reader->path().empty();
}

/// The extension as the factory of the writers takes it: after the last dot of the file's name.
std::wstring writtenExtension(const std::wstring& path) {
  const std::size_t name = path.find_last_of(L"/\\") + 1;  // 0 when there is neither
  const std::size_t dot = path.rfind(L'.');
  if (dot == std::wstring::npos || dot < name) return {};
  return platform::lowerCase(path.substr(dot + 1));
}

}  // namespace

std::optional<std::int32_t> findFileType(std::string_view text) {
  const std::string wanted = toUtf8(platform::lowerCase(toWide(text)));
  if (wanted == automatic || wanted == "0") return fileTypeAuto;
  for (const format& each : formats)
    if (wanted == each.typeName || wanted == std::to_string(each.type)) return each.type;
  return std::nullopt;
}

std::vector<std::string> fileTypeList() {
  std::vector<std::string> names(1, std::string(automatic));
  for (const format& each : formats) names.emplace_back(each.typeName);
  return names;
}

std::string fileTypeNames() {
  std::string names;
  for (const std::string& name : fileTypeList()) names += (names.empty() ? "" : ", ") + name;
  return names;
}

std::vector<std::string> targetFormatNames() {
  std::vector<std::string> names;
  for (const format& each : formats)
    if (*each.written != '\0') names.emplace_back(each.written);
  return names;
}

std::string formatName(std::int32_t fileType, const std::wstring& path) {
  const format* const found = formatOf(fileType, path);
  return found == nullptr ? "Petrel text table" : found->title;
}

// WHY: the library would take a workbook with macros for text.
std::int32_t typeForExtension(const std::wstring& path) {
  return writtenExtension(path) == L"xlsm" ? fileTypeXlsConverter : fileTypeAuto;
}

bool isChosenByExtension(const std::wstring& path) { return formatOfPath(path) != nullptr; }

std::wstring converterPath() {
  const std::wstring program = vo_options_get_main_module_path();
  return program.substr(0, program.find_last_of(L"/\\") + 1) + L"vok_xls2csv.exe";
}

std::int32_t fileTypeOf(std::int32_t fileType, const std::wstring& path) {
  const format* const found = formatOf(fileType, path);
  return found == nullptr ? fileTypeCsv : found->type;
}

bool isDelimitedText(std::int32_t fileType, const std::wstring& path) {
  return fileTypeOf(fileType, path) == fileTypeCsv;
}

bool isWorkbook(std::int32_t fileType, const std::wstring& path) {
  return fileTypeOf(fileType, path) == fileTypeXlsConverter;
}

bool isSqliteDatabase(std::int32_t fileType, const std::wstring& path) {
  return fileTypeOf(fileType, path) == fileTypeSqlite;
}

// WHY not the writer alone: it writes delimited text under every extension that it does not know, also
// under one by which the table would be read back as something else.
bool isWritable(const std::wstring& path) {
  const std::wstring extension = writtenExtension(path);
  if (std::find(std::begin(foreignExtensions), std::end(foreignExtensions), extension) !=
      std::end(foreignExtensions))
    return false;
  const format* const read = extension.empty() ? nullptr : formatOfPath(L"." + extension);
  return read == nullptr || *read->written != '\0';
}

bool isWrittenAsWorkbook(const std::wstring& path) {
  const std::wstring extension = writtenExtension(path);
  return extension == L"xls" || extension == L"xlsx";
}

bool isWrittenAsDbf(const std::wstring& path) { return writtenExtension(path) == L"dbf"; }

void visitFormats(const rowReceiver& receive) {
  for (const format& each : formats) {
    const wchar_t* const write = *each.written == '\0' ? L"no" : L"yes";
    if (!receive({toWide(each.title), toWide(each.typeName), toWide(each.chosenFor),
                  isRead(each) ? L"yes" : L"not in this version", write}))
      return;
  }
}

}  // namespace vokTable
