#include "suite/io/odbcHandles.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/codePages.h"

namespace suiteIo {
namespace {

constexpr SQLSMALLINT mostRecords = 8;

std::string converted(std::string_view text, unsigned from, unsigned to) {
  const int length = static_cast<int>(text.size());
  const int wideLength = platform::decodeCodePage(from, text.data(), length, nullptr, 0);
  if (wideLength <= 0) return {};
  std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
  platform::decodeCodePage(from, text.data(), length, wide.data(), wideLength);
  const int needed = platform::encodeCodePage(to, wide.data(), wideLength, nullptr, 0);
  std::string bytes(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  if (needed > 0) platform::encodeCodePage(to, wide.data(), wideLength, bytes.data(), needed);
  return bytes;
}

bool isOneText() {
  return !driversSpeakUtf8 ||
         platform::resolveCodePage(platform::systemCodePage) == platform::utf8CodePage;
}

}  // namespace

odbcEnvironment makeEnvironment() {
  odbcEnvironment environment = allocate<SQL_HANDLE_ENV>(nullptr);
  if (!environment) return nullptr;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): ODBC takes numbers of this kind in the place of a pointer
  auto* const version = reinterpret_cast<SQLPOINTER>(std::uintptr_t{SQL_OV_ODBC3});
  const SQLRETURN result =
      SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, version, SQL_IS_UINTEGER);
  return SQL_SUCCEEDED(result) ? std::move(environment) : nullptr;
}

std::string diagnosticsOf(SQLSMALLINT kind, SQLHANDLE handle) {
  std::string lines;
  for (SQLSMALLINT record = 1; record <= mostRecords; ++record) {
    std::array<SQLCHAR, 6> state = {};
    std::array<SQLCHAR, 2048> text = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const SQLRETURN result = SQLGetDiagRec(kind, handle, record, state.data(), &native, text.data(),
                                           static_cast<SQLSMALLINT>(text.size()), &length);
    if (!SQL_SUCCEEDED(result)) break;
    text.back() = 0;
    if (!lines.empty()) lines += '\n';
    lines += fromDriver(static_cast<const char*>(static_cast<const void*>(text.data())));
    if (state[0] > ' ') lines.append(" (").append(state.begin(), state.begin() + 5).append(")");
  }
  return lines;
}

std::string toDriver(std::string_view text) {
  if (isOneText()) return std::string(text);
  return converted(text, platform::systemCodePage, platform::utf8CodePage);
}

std::string fromDriver(std::string_view text) {
  if (isOneText()) return std::string(text);
  return converted(text, platform::utf8CodePage, platform::systemCodePage);
}

SQLCHAR* bytesOf(const std::string& text) {
  return static_cast<SQLCHAR*>(static_cast<void*>(const_cast<char*>(text.c_str())));
}

}  // namespace suiteIo
