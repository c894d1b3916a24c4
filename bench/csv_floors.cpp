// The yardsticks of reading delimited text: csv_floors f1|f2|f2q|f3 FILE [cp1251]
//
//   f1    reads the file in blocks and looks for line ends: no reader can be faster
//   f2    64 bytes at a time gives masks of delimiters and line ends; every value is trimmed of
//   blanks,
//         its bytes go to one arena and the offset of its end, 32 bits, to another: the least that
//         a table in memory takes. No CR LF, no NUL, no rows of unequal length, no check of the
//         encoding
//   f2q   f2 with quotes honoured: delimiters inside them do not count, doubled ones become one
//   f3    the obvious way: a line at a time, decoded, a vector of vectors of wide strings
//
// They define what is measured; a real reader does more and stays above f2. With the environment's
// GLIBC_TUNABLES=glibc.malloc.hugetlb=1 the arenas of f2 lie in huge pages.
#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "blockFile.h"
#include "report.h"
#include "wells.h"

namespace {

using byte = std::uint8_t;

// --- f1
// -------------------------------------------------------------------------------------------

void countLines(const char* path) {
  const bench::stopwatch watch;
  bench::blockFile file(path);
  std::vector<char> block(bench::blockSize);
  std::uint64_t lines = 0;
  while (const std::size_t size = file.next(block.data())) {
    const char* const end = block.data() + size;
    const char* at = block.data();
    while (at < end) {
      const void* const found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
      if (found == nullptr) break;
      ++lines;
      at = static_cast<const char*>(found) + 1;
    }
  }
  bench::report("f1", watch.seconds(),
                {
                    {"rows", lines - 1}
  });
}

// --- f2, f2q
// --------------------------------------------------------------------------------------

/// Copies may write, and loads may read, this far past the end of a value.
constexpr std::size_t slack = 64;

struct freeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

/// Uninitialised memory, which costs nothing before it is touched.
template <class T>
std::unique_ptr<T[], freeMemory> reserved(std::size_t count) {
  void* const memory = std::malloc(count * sizeof(T));
  if (memory == nullptr) bench::fail("not enough memory", "f2");
  return std::unique_ptr<T[], freeMemory>(static_cast<T*>(memory));
}

/// The table: the bytes of all values and the end of each. A file cannot hold more than it is long.
struct arena {
  explicit arena(std::size_t fileSize)
      : text(reserved<byte>(fileSize + slack)),
        ends(reserved<std::uint32_t>(fileSize / 2 + slack)),
        textEnd(text.get()),
        endsEnd(ends.get()) {}

  std::unique_ptr<byte[], freeMemory> text;
  std::unique_ptr<std::uint32_t[], freeMemory> ends;
  byte* textEnd;
  std::uint32_t* endsEnd;
};

void copy16(byte* to, const byte* from) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                   _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
}

/// Appends a value to the table, trimmed of blanks.
struct storeValue {
  arena& table;

  void operator()(const byte* begin, const byte* end) const {
    while (begin < end && *begin == ' ') ++begin;
    while (begin < end && end[-1] == ' ') --end;
    const std::size_t size = static_cast<std::size_t>(end - begin);
    if (size <= 16) [[likely]] {
      copy16(table.textEnd, begin);
    } else if (size <= 32) {
      copy16(table.textEnd, begin);
      copy16(table.textEnd + 16, begin + 16);
    } else {
      std::memcpy(table.textEnd, begin, size);
    }
    table.textEnd += size;
    *table.endsEnd++ = static_cast<std::uint32_t>(table.textEnd - table.text.get());
  }
};

/// The longest value, and so what is carried over from one block to the next at most.
constexpr std::size_t longestValue = std::size_t{1} << 20;

/// The same for a value that may be quoted; its content is put together in `scratch`.
struct storeQuotedValue {
  storeValue store;
  byte* scratch;

  void operator()(const byte* begin, const byte* end) const {
    const byte* first = begin;
    while (first < end && *first == ' ') ++first;
    if (first < end && *first == '"') [[unlikely]]
      store(scratch, unquoted(first + 1, end));
    else
      store(begin, end);
  }

  /// Copies to the closing quote, doubled quotes once, and what stands behind it as it is.
  byte* unquoted(const byte* from, const byte* end) const {
    byte* to = scratch;
    while (from < end) {
      if (*from == '"' && (++from == end || *from != '"')) break;
      *to++ = *from++;
    }
    return std::copy(from, end, to);
  }
};

/// One bit for each of 64 bytes: whether it is the byte that fills `wanted`.
std::uint64_t equalBytes(const byte* bytes, __m128i wanted) {
  std::uint64_t mask = 0;
  for (int i = 0; i < 4; ++i) {
    const __m128i piece = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
    const int equal = _mm_movemask_epi8(_mm_cmpeq_epi8(piece, wanted));
    mask |= static_cast<std::uint64_t>(static_cast<std::uint32_t>(equal)) << (16 * i);
  }
  return mask;
}

/// Tells which bytes stand inside quotes: those with an odd number of quotes up to them.
class quoteTracker {
 public:
  /// @param quotes  one bit for each of the next 64 bytes; @param count  how many of them exist
  std::uint64_t inside(std::uint64_t quotes, std::size_t count) {
    if (count < 64) quotes &= (std::uint64_t{1} << count) - 1;
    if ((quotes | open_) == 0) return 0;
    for (int shift = 1; shift < 64; shift *= 2) quotes ^= quotes << shift;
    quotes ^= open_;
    const std::size_t last = std::min<std::size_t>(count, 64) - 1;
    open_ = (quotes >> last & 1) != 0 ? ~std::uint64_t{0} : 0;
    return quotes;
  }

 private:
  std::uint64_t open_ = 0;  // all bits set while a quote is open
};

template <bool honourQuotes, class Store>
void split(const char* path, Store store) {
  bench::blockFile file(path);
  const auto buffer = reserved<byte>(longestValue + bench::blockSize + 2 * slack);
  const __m128i delimiter = _mm_set1_epi8(';');
  const __m128i lineEnd = _mm_set1_epi8('\n');
  const __m128i quote = _mm_set1_epi8('"');
  quoteTracker quotes;
  std::size_t kept = 0;
  while (const std::size_t size = file.next(buffer.get() + kept)) {
    const std::size_t end = kept + size;
    std::memset(buffer.get() + end, 0, slack);
    const byte* value = buffer.get();
    for (std::size_t at = kept; at < end; at += 64) {
      const byte* const bytes = buffer.get() + at;
      std::uint64_t ends = equalBytes(bytes, delimiter) | equalBytes(bytes, lineEnd);
      if constexpr (honourQuotes) ends &= ~quotes.inside(equalBytes(bytes, quote), end - at);
      for (; ends != 0; ends &= ends - 1) {
        const byte* const valueEnd = bytes + std::countr_zero(ends);
        store(value, valueEnd);
        value = valueEnd + 1;
      }
    }
    kept = static_cast<std::size_t>(buffer.get() + end - value);
    if (kept > longestValue) bench::fail("holds a value that is too long", path);
    std::memmove(buffer.get(), value, kept);
  }
}

template <bool honourQuotes>
void splitIntoArena(const char* name, const char* path) {
  const std::size_t size = std::filesystem::file_size(path);
  const bench::stopwatch watch;
  arena table(size);
  if constexpr (honourQuotes) {
    const auto scratch = reserved<byte>(longestValue + slack);
    split<true>(path, storeQuotedValue{{table}, scratch.get()});
  } else {
    split<false>(path, storeValue{table});
  }
  const double seconds = watch.seconds();
  const std::size_t headerValues = bench::wellsColumns;
  const std::size_t headerBytes = sizeof bench::wellsHeader - 1 - headerValues;
  bench::report(
      name, seconds,
      {
          {"values", static_cast<std::size_t>(table.endsEnd - table.ends.get()) - headerValues},
          {"bytes",  static_cast<std::size_t>(table.textEnd - table.text.get()) - headerBytes }
  });
}

// --- f3
// -------------------------------------------------------------------------------------------

/// @return the number of characters; none when the line is no UTF-8
std::size_t decode(const char* line, bool cp1251, std::vector<wchar_t>& wide) {
  if (!cp1251) {
    const std::size_t size = std::mbstowcs(wide.data(), line, wide.size());
    return size == static_cast<std::size_t>(-1) ? 0 : size;
  }
  std::size_t size = 0;
  while (line[size] != 0) {
    wide[size] = bench::wideFromCp1251(static_cast<unsigned char>(line[size]));
    ++size;
  }
  return size;
}

std::wstring trimmed(const std::wstring& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && text[begin] == L' ') ++begin;
  while (end > begin && text[end - 1] == L' ') --end;
  return text.substr(begin, end - begin);
}

std::vector<std::wstring> valuesOf(std::wstring_view line) {
  std::vector<std::wstring> values;
  std::wstring value;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == L'"') {
      if (quoted && i + 1 < line.size() && line[i + 1] == L'"')
        value += line[i++];
      else
        quoted = !quoted;
    } else if (line[i] == L';' && !quoted) {
      values.push_back(trimmed(value));
      value.clear();
    } else {
      value += line[i];
    }
  }
  values.push_back(trimmed(value));
  return values;
}

void readLines(const char* path, bool cp1251) {
  std::setlocale(LC_ALL, "C.UTF-8");
  const bench::stopwatch watch;
  std::FILE* const file = std::fopen(path, "rb");
  if (file == nullptr) bench::fail("cannot be opened", path);
  std::vector<std::vector<std::wstring>> rows;
  std::vector<char> line(1 << 16);
  std::vector<wchar_t> wide(1 << 16);
  while (std::fgets(line.data(), static_cast<int>(line.size()), file) != nullptr) {
    std::wstring_view text(wide.data(), decode(line.data(), cp1251, wide));
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.remove_suffix(1);
    const std::vector<std::wstring> row = valuesOf(text);
    rows.push_back(row);
  }
  std::fclose(file);
  const double seconds = watch.seconds();
  std::uint64_t values = 0;
  std::uint64_t characters = 0;
  for (std::size_t i = 1; i < rows.size(); ++i) {
    values += rows[i].size();
    for (const std::wstring& value : rows[i]) characters += value.size();
  }
  bench::report("f3", seconds,
                {
                    {"rows",       rows.size() - 1},
                    {"values",     values         },
                    {"characters", characters     }
  });
  bench::leave();  // before the rows are freed
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc < 3 ? "" : argv[1];
  if (mode == "f1") {
    countLines(argv[2]);
  } else if (mode == "f2") {
    splitIntoArena<false>("f2", argv[2]);
  } else if (mode == "f2q") {
    splitIntoArena<true>("f2q", argv[2]);
  } else if (mode == "f3") {
    readLines(argv[2], argc > 3 && std::string_view(argv[3]) == "cp1251");
  } else {
    std::fprintf(stderr, "usage: csv_floors f1|f2|f2q|f3 FILE [cp1251]\n");
    return 2;
  }
  return 0;
}
