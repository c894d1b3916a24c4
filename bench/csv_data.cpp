// Writes the wells table (see wells.h) as text: csv_data KIND BYTES FILE
//
//   utf8     UTF-8
//   ascii    ASCII: the two Russian columns in Latin letters
//   cp1251   the rows of utf8, in CP1251; smaller than BYTES for that reason
//   quoted   utf8 with 5 % of the values quoted, each holding the delimiter, every tenth of them
//   also a
//            doubled quote
//
// The same arguments give the same bytes on every machine. Rows are made one by one, so that a file
// may be larger than memory. Reports what a reader should find behind the header:
//
//   rows, values      of the table
//   characters, bytes of all values, trimmed of blanks and without the quotes around them
//   written           bytes of the table written as CP1251 with CR LF, header included
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "report.h"
#include "wells.h"

namespace {

// The generator "splitmix64".
class randomNumbers {
 public:
  explicit randomNumbers(std::uint64_t seed) : state_(seed) {}

  /// A number from 0 to `limit` - 1.
  std::uint32_t below(std::uint32_t limit) {
    return static_cast<std::uint32_t>(((next() >> 32) * limit) >> 32);
  }

 private:
  std::uint64_t next() {
    std::uint64_t mixed = (state_ += 0x9e3779b97f4a7c15);
    mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
    return mixed ^ (mixed >> 31);
  }

  std::uint64_t state_;
};

using fieldNames = std::array<const char*, 16>;
using lithologyNames = std::array<const char*, 8>;

constexpr fieldNames russianFields = {
    "Самотлорское", "Приобское",       "Фёдоровское",  "Мамонтовское", "Ватьёганское", "Лянторское",
    "Уренгойское",  "Ромашкинское",    "Туймазинское", "Арланское",    "Усинское",     "Ярегское",
    "Талинское",    "Красноленинское", "Юрубчено",     "Ванкорское"};
constexpr lithologyNames russianLithologies = {"песчаник",  "алевролит", "глина", "аргиллит",
                                               "известняк", "доломит",   "уголь", "мергель"};

constexpr fieldNames latinFields = {"Samotlor",  "Priobskoe",     "Fedorovskoe", "Mamontovskoe",
                                    "Vatyegan",  "Lyantor",       "Urengoy",     "Romashkino",
                                    "Tuymazy",   "Arlan",         "Usinsk",      "Yarega",
                                    "Talinskoe", "Krasnoleninsk", "Yurubcheno",  "Vankor"};
constexpr lithologyNames latinLithologies = {"sandstone", "siltstone", "clay", "argillite",
                                             "limestone", "dolomite",  "coal", "marl"};

/// One of the files that can be made.
struct kind {
  const char* name;
  const fieldNames& fields;
  const lithologyNames& lithologies;
  bool quotes;
  bool toCp1251;
};

constexpr kind kinds[] = {
    {"utf8",   russianFields, russianLithologies, false, false},
    {"ascii",  latinFields,   latinLithologies,   false, false},
    {"cp1251", russianFields, russianLithologies, false, true },
    {"quoted", russianFields, russianLithologies, true,  false},
};

using row = std::array<std::string, bench::wellsColumns>;

std::string digits(std::uint32_t number, std::size_t width) {
  std::string text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

/// decimal(12345, 2) is 123.45.
std::string decimal(std::uint32_t number, std::size_t places) {
  std::string text = digits(number, places + 1);
  return text.insert(text.size() - places, 1, '.');
}

std::string date(randomNumbers& random) {
  const std::uint32_t day = 1 + random.below(28);
  const std::uint32_t month = 1 + random.below(12);
  const std::uint32_t year = 1990 + random.below(30);
  return digits(year, 4) + '-' + digits(month, 2) + '-' + digits(day, 2);
}

void makeRow(randomNumbers& random, const kind& form, std::uint32_t number, row& values) {
  values[0] = 'W' + digits(number, 7);
  values[1] = std::to_string(random.below(100000));
  values[2] = decimal(50000 + random.below(400000), 2);
  values[3] = form.fields[random.below(16)];
  values[4] = decimal(random.below(15000), 2);
  values[5] = decimal(random.below(6000), 4);
  values[6] = decimal(1800 + random.below(1200), 3);
  values[7] = decimal(4000 + random.below(10000), 2);
  values[8] = std::to_string(100 + random.below(900));
  values[9] = form.lithologies[random.below(8)];
  values[10] = decimal(random.below(20000000), 4);
  values[11] = date(random);
  for (std::size_t column = 1; column < values.size(); ++column) {
    const std::uint32_t chance = random.below(100);
    if (chance < 3)
      values[column].clear();
    else if (chance < 5)
      values[column] = ' ' + values[column] + ' ';
  }
}

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Puts text into the middle of a value, between two characters.
std::string withMiddle(const std::string& value, const char* middle) {
  std::size_t at = value.size() / 2;
  while (at < value.size() && continuesCharacter(value[at])) ++at;
  return value.substr(0, at) + middle + value.substr(at);
}

std::string_view trimmed(std::string_view value) {
  const std::size_t first = value.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return value.substr(first, value.find_last_not_of(' ') - first + 1);
}

/// Only for the characters of the table: none takes more than two bytes.
std::string cp1251(std::string_view utf8) {
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    int character = static_cast<unsigned char>(utf8[i]);
    if (character >= 0x80)
      character = ((character & 0x1F) << 6) | (static_cast<unsigned char>(utf8[++i]) & 0x3F);
    bytes += static_cast<char>(bench::cp1251FromWide(static_cast<wchar_t>(character)));
  }
  return bytes;
}

/// The file being written, and what a reader will find in it.
class tableFile {
 public:
  tableFile(const char* path, const kind& form) : path_(path), form_(form) {
    file_ = std::fopen(path, "wb");
    if (file_ == nullptr) bench::fail("cannot be created", path);
    std::setvbuf(file_, nullptr, _IOFBF, 1 << 20);
    line_ = bench::wellsHeader;
    written_ = line_.size() + 1;
    writeLine();
  }

  void addRow(const row& values, randomNumbers& quoting) {
    line_.clear();
    for (const std::string& value : values) {
      if (!line_.empty()) line_ += ';';
      if (form_.quotes && quoting.below(100) < 5)
        addQuoted(value, quoting.below(10) == 0);
      else
        addPlain(value);
    }
    line_ += '\n';
    ++rows_;
    writeLine();
  }

  /// Size of the table as UTF-8, header included.
  std::uint64_t size() const { return size_; }

  void finish(double seconds) {
    if (std::fclose(file_) != 0) bench::fail("cannot be written", path_);
    const std::uint64_t values = rows_ * bench::wellsColumns;
    written_ += characters_ + values + rows_;
    bench::report(form_.name, seconds,
                  {
                      {"rows",       rows_                                },
                      {"values",     values                               },
                      {"characters", characters_                          },
                      {"bytes",      form_.toCp1251 ? characters_ : bytes_},
                      {"written",    written_                             }
    });
  }

 private:
  void addPlain(const std::string& value) {
    line_ += value;
    count(value);
  }

  void addQuoted(const std::string& value, bool doubledQuote) {
    line_ += '"' + withMiddle(value, doubledQuote ? ";\"\"" : ";") + '"';
    count(withMiddle(value, doubledQuote ? ";\"" : ";"));
  }

  void count(std::string_view value) {
    const std::string_view text = trimmed(value);
    bytes_ += text.size();
    for (const char byte : text)
      if (!continuesCharacter(byte)) ++characters_;
  }

  void writeLine() {
    size_ += line_.size();
    const std::string& bytes = form_.toCp1251 ? line_ = cp1251(line_) : line_;
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
      bench::fail("cannot be written", path_);
  }

  const char* path_;
  const kind& form_;
  std::FILE* file_ = nullptr;
  std::string line_;
  std::uint64_t size_ = 0;
  std::uint64_t rows_ = 0;
  std::uint64_t characters_ = 0;
  std::uint64_t bytes_ = 0;
  std::uint64_t written_ = 0;
};

void write(const kind& form, std::uint64_t size, const char* path) {
  const bench::stopwatch watch;
  tableFile file(path, form);
  randomNumbers random(42);
  randomNumbers quoting(7);
  row values;
  for (std::uint32_t number = 0; file.size() < size; ++number) {
    makeRow(random, form, number, values);
    file.addRow(values, quoting);
  }
  file.finish(watch.seconds());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4) {
    for (const kind& form : kinds) {
      if (std::string_view(argv[1]) != form.name) continue;
      write(form, std::strtoull(argv[2], nullptr, 10), argv[3]);
      return 0;
    }
  }
  std::fprintf(stderr, "usage: csv_data utf8|ascii|cp1251|quoted BYTES FILE\n");
  return 2;
}
