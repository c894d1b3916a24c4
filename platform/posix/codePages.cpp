#include "platform/codePages.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>
#include <string>
#include <string_view>

#include "platform/posix/codePageTables.h"
#include "platform/posix/utf8.h"

namespace platform {
namespace {

constexpr std::size_t fastRun = 16;

const singleByteCodePage* findSingleByteCodePage(unsigned number) {
  const singleByteCodePage* const end = singleByteCodePages + singleByteCodePageCount;
  const singleByteCodePage* const found =
      std::find_if(singleByteCodePages, end,
                   [number](const singleByteCodePage& page) { return page.number == number; });
  return found == end ? nullptr : found;
}

bool isAsciiRun(const unsigned char* bytes) {
  static_assert(fastRun == 2 * sizeof(std::uint64_t));
  std::uint64_t words[2];
  std::memcpy(words, bytes, fastRun);
  return ((words[0] | words[1]) & 0x8080808080808080u) == 0;
}

bool isAsciiRun(const wchar_t* text) {
  std::uint32_t all = 0;
  for (std::size_t i = 0; i < fastRun; ++i) all |= static_cast<std::uint32_t>(text[i]);
  return all < 0x80;
}

template <class Source, class Target>
void copyRun(const Source* run, Target* to) {
  for (std::size_t i = 0; i < fastRun; ++i) to[i] = static_cast<Target>(run[i]);
}

// The UTF-8 conversions are written once and run with one of two receivers: the first only counts,
// for the call that asks for the length, the second stores.
template <class Target>
class lengthCounter {
 public:
  bool hasRoom(std::size_t) const { return true; }
  void put(Target) { ++count_; }
  template <class Source>
  void putRun(const Source*) {
    count_ += fastRun;
  }
  std::size_t count() const { return count_; }

 private:
  std::size_t count_ = 0;
};

template <class Target>
class boundedWriter {
 public:
  boundedWriter(Target* output, std::size_t capacity) : output_(output), capacity_(capacity) {}
  bool hasRoom(std::size_t elements) const { return capacity_ - count_ >= elements; }
  void put(Target element) { output_[count_++] = element; }
  template <class Source>
  void putRun(const Source* run) {
    copyRun(run, output_ + count_);
    count_ += fastRun;
  }
  std::size_t count() const { return count_; }

 private:
  Target* output_;
  std::size_t capacity_;
  std::size_t count_ = 0;
};

// Moves whole ASCII runs from `source` to the receiver. @return the elements moved
template <class Source, class Receiver>
std::size_t moveAsciiRuns(const Source* source, std::size_t length, Receiver& receiver) {
  std::size_t moved = 0;
  while (length - moved >= fastRun && receiver.hasRoom(fastRun) && isAsciiRun(source + moved)) {
    receiver.putRun(source + moved);
    moved += fastRun;
  }
  return moved;
}

// Both converters answer false when the receiver is full too early.

template <class Receiver>
bool decodeUtf8(const unsigned char* bytes, std::size_t length, Receiver& receiver) {
  for (std::size_t i = 0; i < length;) {
    if (bytes[i] < 0x80) {
      i += moveAsciiRuns(bytes + i, length - i, receiver);
      if (i == length) return true;
    }
    const textStep step = decodeUtf8Step(bytes + i, length - i);
    if (!receiver.hasRoom(1)) return false;
    receiver.put(static_cast<wchar_t>(step.character));
    i += step.length;
  }
  return true;
}

template <class Receiver>
bool encodeUtf8(const wchar_t* text, std::size_t length, Receiver& receiver) {
  for (std::size_t i = 0; i < length;) {
    if (static_cast<char32_t>(text[i]) < 0x80) {
      i += moveAsciiRuns(text + i, length - i, receiver);
      if (i == length) return true;
    }
    const textStep step = readWideStep(text + i, length - i);
    char bytes[4];
    const std::size_t count = encodeUtf8Step(step.character, bytes);
    if (!receiver.hasRoom(count)) return false;
    for (std::size_t k = 0; k < count; ++k) receiver.put(bytes[k]);
    i += step.length;
  }
  return true;
}

// A number of elements as the functions answer it; 0 for what an int does not hold.
int asAnswer(std::size_t count) {
  return count <= static_cast<std::size_t>(std::numeric_limits<int>::max())
             ? static_cast<int>(count)
             : 0;
}

// Runs `convert` with the receiver that the caller's arguments ask for.
template <class Target, class Conversion>
int runConversion(Target* output, int capacity, Conversion convert) {
  if (capacity == 0) {
    lengthCounter<Target> counter;
    convert(counter);
    return asAnswer(counter.count());
  }
  boundedWriter<Target> writer(output, static_cast<std::size_t>(capacity));
  return convert(writer) ? asAnswer(writer.count()) : 0;
}

// The single-byte pages know their length beforehand, so one check of the room is enough.

int decodeSingleBytes(const singleByteCodePage& page, const unsigned char* bytes,
                      std::size_t length, wchar_t* output, int capacity) {
  if (capacity == 0) return asAnswer(length);
  if (length > static_cast<std::size_t>(capacity)) return 0;
  for (std::size_t i = 0; i < length;) {
    const std::size_t end = i + std::min(fastRun, length - i);
    if (end - i == fastRun && isAsciiRun(bytes + i)) {
      copyRun(bytes + i, output + i);
      i = end;
    }
    for (; i < end; ++i)
      output[i] =
          static_cast<wchar_t>(bytes[i] < 0x80 ? bytes[i] : page.upperHalf[bytes[i] - 0x80]);
  }
  return asAnswer(length);
}

// A character beyond the BMP is two units to Windows, and each of them becomes a question mark.
bool isTwoUnits(char32_t element) { return element > 0xFFFF && element <= lastCharacter; }

int encodeSingleBytes(const singleByteCodePage& page, const wchar_t* text, std::size_t length,
                      char* output, int capacity) {
  std::size_t needed = length;
  for (std::size_t i = 0; i < length; ++i)
    needed += isTwoUnits(static_cast<char32_t>(text[i])) ? 1u : 0u;
  if (capacity == 0) return asAnswer(needed);
  if (needed > static_cast<std::size_t>(capacity)) return 0;
  for (std::size_t i = 0; i < length;) {
    const std::size_t end = i + std::min(fastRun, length - i);
    if (end - i == fastRun && isAsciiRun(text + i)) {
      copyRun(text + i, output);
      output += fastRun;
      i = end;
    }
    for (; i < end; ++i) {
      const auto element = static_cast<char32_t>(text[i]);
      if (isTwoUnits(element)) *output++ = '?';
      *output++ = element > 0xFFFF
                      ? '?'
                      : static_cast<char>(encodedUnit(page, static_cast<char16_t>(element)));
    }
  }
  return asAnswer(needed);
}

template <class Target>
bool areArgumentsSound(const void* source, const Target* output, int capacity) {
  return source != nullptr && capacity >= 0 && (capacity == 0 || output != nullptr);
}

// The charset of a locale's name in small letters, without `-` and `_`: "cp1251" of "x.CP-1251@y".
std::string charsetOf(std::string_view locale) {
  const std::size_t dot = locale.find('.');
  if (dot == std::string_view::npos) return {};
  std::string_view charset = locale.substr(dot + 1);
  charset = charset.substr(0, charset.find('@'));
  std::string name;
  for (char c : charset) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != '-' && c != '_') name += c;
  }
  return name;
}

unsigned codePageOfCharset(const std::string& charset) {
  if (charset == "866" || charset == "cp866" || charset == "ibm866") return 866;
  for (unsigned page = 1250; page <= 1258; ++page) {
    const std::string number = std::to_string(page);
    if (charset == "cp" + number || charset == "windows" + number) return page;
  }
  return utf8CodePage;
}

}  // namespace

unsigned resolveCodePage(unsigned codePage) {
  if (codePage != systemCodePage) return codePage;
  if (const unsigned chosen = chosenSystemCodePage(); chosen != systemCodePage) return chosen;
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* const locale = std::getenv(variable);
    if (locale != nullptr && *locale != '\0') return codePageOfCharset(charsetOf(locale));
  }
  return utf8CodePage;
}

int decodeCodePage(unsigned codePage, const char* bytes, int length, wchar_t* output,
                   int capacity) {
  if (!areArgumentsSound(bytes, output, capacity)) return 0;
  const std::size_t count = length < 0 ? std::strlen(bytes) + 1 : static_cast<std::size_t>(length);
  const auto* source = reinterpret_cast<const unsigned char*>(bytes);
  codePage = resolveCodePage(codePage);
  if (codePage == utf8CodePage)
    return runConversion(output, capacity,
                         [=](auto& receiver) { return decodeUtf8(source, count, receiver); });
  const singleByteCodePage* const page = findSingleByteCodePage(codePage);
  return page == nullptr ? 0 : decodeSingleBytes(*page, source, count, output, capacity);
}

int encodeCodePage(unsigned codePage, const wchar_t* text, int length, char* output, int capacity) {
  if (!areArgumentsSound(text, output, capacity)) return 0;
  const std::size_t count = length < 0 ? std::wcslen(text) + 1 : static_cast<std::size_t>(length);
  codePage = resolveCodePage(codePage);
  if (codePage == utf8CodePage)
    return runConversion(output, capacity,
                         [=](auto& receiver) { return encodeUtf8(text, count, receiver); });
  const singleByteCodePage* const page = findSingleByteCodePage(codePage);
  return page == nullptr ? 0 : encodeSingleBytes(*page, text, count, output, capacity);
}

}  // namespace platform
