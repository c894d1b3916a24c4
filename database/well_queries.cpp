#include "database/well_queries.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <limits>
#include <memory>

#include "platform/files.h"
#include "table_rw/core/pathNames.h"

namespace {

// A query with its result; none when it is refused or there is no database.
class ownedQuery {
 public:
  ownedQuery(odbc_database* db, const std::wstring& sql)
      : db_(db), result_(db == nullptr ? nullptr : db->get_query(sql)) {}
  ownedQuery(const ownedQuery&) = delete;
  ownedQuery& operator=(const ownedQuery&) = delete;
  ~ownedQuery() {
    if (db_ != nullptr) db_->close_query(result_);
  }

  explicit operator bool() const { return result_ != nullptr; }
  bool next() { return result_ != nullptr && result_->next(); }
  odbc_result* operator->() { return result_; }

 private:
  odbc_database* db_;
  odbc_result* result_;
};

// A number with the limits of a type, in the way of the C library's parsers.
template <class Number>
Number parsedNumber(const std::wstring& text, bool* ok) {
  using limits = std::numeric_limits<Number>;
  wchar_t* end = nullptr;
  errno = 0;
  const long long parsed = std::wcstoll(text.c_str(), &end, 10);
  const long long fitting = std::clamp<long long>(parsed, limits::min(), limits::max());
  if (ok != nullptr)
    *ok = end != text.c_str() && *end == L'\0' && errno != ERANGE && fitting == parsed;
  return static_cast<Number>(fitting);
}

// ODD: one more backslash whatever the folder ends in: project files hold such paths.
std::wstring withSeparator(std::wstring folder) {
  if (!folder.empty()) folder += L'\\';
  return folder;
}

}  // namespace

bool STRATA_isExist(const std::wstring& sql, odbc_database* db) {
  ownedQuery query(db, sql);
  return query.next();
}

std::int64_t STRATA_insertWithCode(const std::wstring& insertSql, const std::wstring& codeSql,
                                   odbc_database* db) {
  if (db == nullptr || !db->execute_sql(insertSql)) return -1;
  ownedQuery query(db, codeSql);
  if (!query) return 0;
  return query.next() ? query->get_as_int(0) : -1;
}

void STRATA_getDBList(const std::wstring& sql, odbc_database* db, std::vector<std::wstring>& out) {
  out.clear();
  ownedQuery query(db, sql);
  while (query.next()) out.push_back(query->get_as_wstring(0));
}

std::wstring STRATA_getDBValue(const std::wstring& sql, odbc_database* db) {
  ownedQuery query(db, sql);
  return query.next() ? query->get_as_wstring(0) : std::wstring();
}

// ODD: 32 bits on both targets, and the nearest number that fits: codes are stored so.
std::int32_t STRATA_getDBNumValue(const std::wstring& sql, odbc_database* db, bool* ok) {
  return parsedNumber<std::int32_t>(STRATA_getDBValue(sql, db), ok);
}

std::int64_t STRATA_getDBCounter(const std::wstring& sql, odbc_database* db, bool* ok) {
  return parsedNumber<std::int64_t>(STRATA_getDBValue(sql, db), ok);
}

std::wstring STRATA_getWellPath(odbc_database* db, int wellId) {
  return STRATA_getWellPath(db, std::to_wstring(wellId));
}

std::wstring STRATA_getWellPath(odbc_database* db, std::wstring wellId) {
  ownedQuery query(db, L"SELECT name, field, work_object FROM well_base WHERE w_id = " + wellId);
  if (!query.next()) return {};
  return tableRW::joinPath({withSeparator(query->get_as_wstring(2)), query->get_as_wstring(1),
                            query->get_as_wstring(0)});
}

std::wstring STRATA_getFieldPath(odbc_database* db, std::wstring wellId) {
  ownedQuery query(db, L"SELECT field, work_object FROM well_base WHERE w_id = " + wellId);
  if (!query.next()) return {};
  return tableRW::joinPath({withSeparator(query->get_as_wstring(1)), query->get_as_wstring(0)});
}

void STRATA_makeObjectPath(std::wstring path, std::wstring part) {
  constexpr std::wstring_view separators = L"\\/";
  if (path.empty()) return;
  const std::wstring full = tableRW::joinPath({path, part});
  if (platform::fileExists(full)) return;
  // Two separators begin the name of another machine, which one would make a folder of this one.
  std::size_t at = full.find_first_not_of(separators);
  if (at == std::wstring::npos) return;
  std::wstring prefix(std::min<std::size_t>(at, 2), L'\\');
  while (at < full.size()) {
    const std::size_t end = std::min(full.find_first_of(separators, at), full.size());
    if (end > at) {
      prefix += full.substr(at, end - at) + L'\\';
      if (!platform::fileExists(prefix)) platform::createFolder(prefix);
    }
    at = end + 1;
  }
}
