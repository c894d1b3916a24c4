#include "table_rw/capi/vo_text_list.h"

#include <algorithm>
#include <utility>

#include "table_rw/capi/textUnits.h"
#include "table_rw/text/utf8.h"

namespace cInterface {
namespace {

constexpr bool wideIsUtf16 = sizeof(wchar_t) == 2;
constexpr std::uint32_t lastCode = 0x10FFFF;
constexpr std::uint32_t replacement = 0xFFFD;

constexpr bool isSurrogate(std::uint32_t code) { return (code & 0xFFFFF800U) == 0xD800; }
constexpr bool isHighSurrogate(std::uint32_t code) { return (code & 0xFFFFFC00U) == 0xD800; }
constexpr bool isLowSurrogate(std::uint32_t code) { return (code & 0xFFFFFC00U) == 0xDC00; }

constexpr std::uint32_t codeOf(wchar_t element) {
  return static_cast<std::uint32_t>(element) & (wideIsUtf16 ? 0xFFFFU : 0xFFFFFFFFU);
}

bool isPairAt(std::wstring_view text, std::size_t i) {
  return isHighSurrogate(codeOf(text[i])) && i + 1 < text.size() &&
         isLowSurrogate(codeOf(text[i + 1]));
}

// The text with everything replaced that no UTF-8 can hold.
std::wstring sound(std::wstring text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::uint32_t code = codeOf(text[i]);
    if (wideIsUtf16 && isPairAt(text, i))
      ++i;
    else if (isSurrogate(code) || code > lastCode)
      text[i] = static_cast<wchar_t>(replacement);
  }
  return text;
}

void put(std::vector<std::uint16_t>& units, std::uint32_t code) {
  if (code > lastCode) code = replacement;
  if (code > 0xFFFF) {
    units.push_back(static_cast<std::uint16_t>(0xD800 | ((code - 0x10000) >> 10)));
    code = 0xDC00 | (code & 0x3FF);
  }
  units.push_back(static_cast<std::uint16_t>(code));
}

bool isAscii(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

}  // namespace

bool readText(const char* text, std::wstring& out) {
  const std::string_view bytes = text == nullptr ? std::string_view() : std::string_view(text);
  if (!tableRW::isValidUtf8(bytes)) return false;
  out = tableRW::wideFromUtf8(bytes);
  return true;
}

bool readText(const std::uint16_t* text, std::wstring& out) {
  std::wstring wide;
  for (; text != nullptr && *text != 0; ++text) {
    std::uint32_t code = *text;
    // The NUL at the end is no low surrogate, so the unit behind may be looked at.
    if (!wideIsUtf16 && isHighSurrogate(code) && isLowSurrogate(text[1]))
      code = 0x10000 + ((code & 0x3FF) << 10) + (*++text & 0x3FFU);
    wide.push_back(static_cast<wchar_t>(code));
  }
  out = std::move(wide);
  return true;
}

void appendBytes(vo_text_list& list, std::string_view tableBytes) {
  if (tableRW::isValidUtf8(tableBytes))
    list.bytes.append(tableBytes);
  else
    list.bytes.append(tableRW::utf8FromWide(sound(tableRW::wideFromUtf8(tableBytes))));
  list.bytes.push_back('\0');
  list.offsets.push_back(list.bytes.size());
}

void appendUnits(vo_text_list& list, std::string_view tableBytes) {
  if (isAscii(tableBytes))
    list.units.insert(list.units.end(), tableBytes.begin(), tableBytes.end());
  else
    for (const wchar_t element : tableRW::wideFromUtf8(tableBytes))
      put(list.units, codeOf(element));
  list.units.push_back(0);
  list.offsets.push_back(list.units.size());
}

template <class Unit>
void listFiller<Unit>::add(const std::wstring& text) {
  add(tableRW::utf8FromWide(text));
}

template class listFiller<char>;
template class listFiller<std::uint16_t>;

}  // namespace cInterface

void vo_text_list::clear() {
  bytes.clear();
  units.clear();
  offsets.resize(1);
}

vo_text_list* vo_text_list_create(void) {
  vo_text_list* list = nullptr;
  cInterface::safely([&list] {
    list = new vo_text_list;
    return true;
  });
  return list;
}

void vo_text_list_close(vo_text_list* list) { delete list; }

uint64_t vo_text_list_count(const vo_text_list* list) {
  return list == nullptr ? 0 : list->offsets.size() - 1;
}

const uint64_t* vo_text_list_offsets(const vo_text_list* list) {
  return list == nullptr ? nullptr : list->offsets.data();
}

const char* vo_text_list_data_u8(const vo_text_list* list) {
  return list == nullptr || !list->holdsBytes ? nullptr : list->bytes.c_str();
}

const uint16_t* vo_text_list_data_u16(const vo_text_list* list) {
  static constexpr std::uint16_t nothing = 0;
  if (list == nullptr || !list->holdsUnits) return nullptr;
  return list->units.empty() ? &nothing : list->units.data();
}
