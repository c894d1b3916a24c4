// Petrel tables and Micromine data files, read through the library's classes, as a host uses it:
//
//   packages_table make-petrel FILE MB       the data of the benchmark, the same at every run
//   packages_table make-micromine FILE MB    12 variables of characters and digits
//   packages_table make-mixed FILE MB        the same with binary coordinates and numbers
//   packages_table petrel|micromine FILE     a read of the whole file
//   packages_table csv FILE                  the same bytes as delimited text: a blank between values, the first
//                                            line of data for its header
//   packages_table slices FILE               the floor of Micromine data files: reads them in blocks and copies
//                                            the bytes of each value, blanks cut off its end, behind each other;
//                                            binary values as they lie there
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "blockFile.h"
#include "report.h"
#include "table_rw/core/tableReader.h"

namespace {

using tableRW::tableReader;

constexpr std::uint64_t megabyte = 1000000;
constexpr std::int32_t petrelHeaderLines = 16;

class output {
 public:
  explicit output(const char* name) : file_(std::fopen(name, "wb")) {
    if (file_ == nullptr) bench::fail("cannot be created", name);
  }
  output(const output&) = delete;
  output& operator=(const output&) = delete;
  ~output() { std::fclose(file_); }

  void write(const std::string& bytes) {
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
    size_ += bytes.size();
  }
  std::uint64_t size() const { return size_; }

 private:
  std::FILE* file_;
  std::uint64_t size_ = 0;
};

class randomNumbers {
 public:
  std::uint64_t below(std::uint64_t limit) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return (state_ >> 33) % limit;
  }

 private:
  std::uint64_t state_ = 1;
};

std::string decimal(std::uint64_t hundredths) {
  std::string digits = std::to_string(hundredths);
  if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
  return digits.insert(digits.size() - 2, 1, '.');
}

// Windows-1251.
constexpr const char* surfaces[] = {
    "\xCA\xF0\xEE\xE2\xEB\xFF \xC4"
    "1",
    "Lower Windsor", "Horton"};
constexpr const char* rocks[] = {"\xEF\xE5\xF1\xEE\xEA", "\xE3\xEB\xE8\xED\xE0",
                                 "\xEA\xE2\xE0\xF0\xF6"};

void makePetrel(const char* name, std::uint64_t megabytes) {
  output file(name);
  file.write("# Petrel well tops\nVERSION 2\nBEGIN HEADER\n");
  for (const char* field : {"X", "Y", "Z", "TWT picked", "TWT auto", "MD", "Type", "Surface",
                            "Well", "Interpreter", "Dip angle", "Used by geo mod"})
    file.write(std::string(field) + "\n");
  file.write("END HEADER\n");
  randomNumbers random;
  while (file.size() < megabytes * megabyte) {
    std::string line;
    for (const std::uint64_t range : {90000000U, 700000000U, 400000U})
      line += decimal(random.below(range)) + " ";
    line += random.below(4) == 0 ? decimal(random.below(300000)) + " " : "-999 ";
    line += "-999 " + decimal(random.below(500000)) + " Horizon \"";
    line += std::string(surfaces[random.below(3)]) + "\" \"P-" + std::to_string(random.below(1000));
    line += "\" \"geo\" -999 TRUE \n";
    file.write(line);
  }
}

struct variable {
  const char* name;
  char type;
  std::size_t width;
};
constexpr variable textVariables[] = {
    {"WELL", 'C', 8 },
    {"FROM", 'N', 8 },
    {"TO",   'N', 8 },
    {"X",    'N', 10},
    {"Y",    'N', 10},
    {"Z",    'N', 8 },
    {"AU",   'N', 8 },
    {"NUM",  'N', 8 },
    {"LITH", 'C', 12},
    {"CODE", 'N', 4 },
    {"NOTE", 'C', 12},
    {"LAB",  'C', 6 }
};
constexpr variable mixedVariables[] = {
    {"WELL", 'C', 8 },
    {"FROM", 'N', 8 },
    {"TO",   'N', 8 },
    {"X",    'R', 8 },
    {"Y",    'R', 8 },
    {"Z",    'R', 8 },
    {"AU",   'F', 4 },
    {"NUM",  'L', 4 },
    {"LITH", 'C', 12},
    {"CODE", 'S', 2 },
    {"NOTE", 'C', 12},
    {"LAB",  'C', 6 }
};

template <class Number>
std::string bytesOf(Number number) {
  std::string bytes(sizeof(number), '\0');
  std::memcpy(bytes.data(), &number, sizeof(number));
  return bytes;
}

std::string valueOf(const variable& column, randomNumbers& random) {
  const std::uint64_t hundredths = random.below(10000000);
  const double number = static_cast<double>(hundredths) / 100;
  std::string value;
  switch (column.type) {
    case 'R':
      return bytesOf(number);
    case 'F':
      return bytesOf(static_cast<float>(number));
    case 'L':
      return bytesOf(static_cast<std::int32_t>(hundredths));
    case 'S':
      return bytesOf(static_cast<std::int16_t>(hundredths % 30000));
    case 'N':
      value = column.width > 4 ? decimal(hundredths).substr(0, column.width)
                               : std::to_string(hundredths % 10000);
      break;
    default:
      value =
          column.width == 12 ? rocks[random.below(3)] : "W" + std::to_string(random.below(9999));
  }
  value.resize(column.width, ' ');
  return value;
}

template <std::size_t Count>
void makeMicromine(const char* name, std::uint64_t megabytes, const variable (&columns)[Count]) {
  output file(name);
  std::string page =
      "THIS IS MICROMINE EXTENDED DATA FILE!\x07\x1A\x01\r\n<metadata><data "
      "codepage=\"ibm-5347_P100-1998\"/></metadata>";
  page.resize(4096, '\0');
  file.write(page + std::to_string(Count) + "  VARIABLES\r\n");
  for (const variable& column : columns) {
    std::string line = column.name;
    line.resize(10, ' ');
    const std::string width = std::to_string(column.width);
    file.write(line + column.type + std::string(3 - width.size(), ' ') + width + "  2\r\n");
  }
  randomNumbers random;
  while (file.size() < megabytes * megabyte) {
    std::string record;
    for (const variable& column : columns) record += valueOf(column, random);
    file.write(record + "\r\n");
  }
}

void measureRead(const char* name, std::string_view format) {
  tableRW::tableReaderOptions options(std::filesystem::path(name).wstring());
  options.file_type = format == "petrel"      ? tableRW::fileTypePetrel
                      : format == "micromine" ? tableRW::fileTypeMicromineData
                                              : tableRW::fileTypeCsv;
  options.encoding = 8;  // CP1251
  options.delimiter = L" ";
  options.header_position = petrelHeaderLines;
  options.data_position = petrelHeaderLines + 1;
  const bench::stopwatch watch;
  tableReader* const reader = tableReader::open(options);
  if (!reader->read()) bench::fail("cannot be read", name);
  bench::report("read", watch.seconds(),
                {
                    {"rows",     reader->count()     },
                    {"rejected", reader->errorCount()}
  });
  bench::leave();
}

// Fields, and where the records begin, from the lines of the header.
std::vector<variable> readHeader(const char* name, std::size_t& recordsAt) {
  std::vector<char> bytes(bench::blockSize);
  const std::size_t size = bench::blockFile(name).next(bytes.data());
  const std::string_view text(bytes.data(), size);
  recordsAt = text.find('\n', 4096) + 1;
  std::vector<variable> columns(std::strtoul(bytes.data() + 4096, nullptr, 10));
  for (variable& column : columns) {
    column.type = text[recordsAt + 10];
    column.width = std::strtoul(std::string(text.substr(recordsAt + 11, 3)).c_str(), nullptr, 10);
    recordsAt = text.find('\n', recordsAt) + 1;
  }
  return columns;
}

void measureSlices(const char* name) {
  const bench::stopwatch watch;
  std::size_t at = 0;
  const std::vector<variable> columns = readHeader(name, at);
  const std::uint64_t fileSize = std::filesystem::file_size(name);
  std::size_t recordSize = 2;
  for (const variable& column : columns) recordSize += column.width;
  const std::uint64_t most = fileSize / recordSize + 1;
  const std::unique_ptr<char[]> arena(new char[fileSize]);
  const std::unique_ptr<std::uint32_t[]> ends(new std::uint32_t[most * columns.size()]);
  std::vector<char> block(recordSize + bench::blockSize);
  bench::blockFile file(name);
  char* to = arena.get();
  std::uint32_t* end = ends.get();
  std::uint64_t rows = 0;
  std::size_t held = 0;
  while (const std::size_t got = file.next(block.data() + held)) {
    held += got;
    for (; at + recordSize <= held; at += recordSize, ++rows) {
      const char* from = block.data() + at;
      for (const variable& column : columns) {
        std::size_t size = column.width;
        if (column.type == 'C' || column.type == 'N')
          while (size > 0 && from[size - 1] == ' ') --size;
        std::memcpy(to, from, size);
        to += size;
        from += column.width;
        *end++ = static_cast<std::uint32_t>(to - arena.get());
      }
    }
    std::memmove(block.data(), block.data() + at, held - at);
    held -= at;
    at = 0;
  }
  bench::report("read", watch.seconds(),
                {
                    {"rows",     rows},
                    {"rejected", 0   }
  });
  bench::leave();
}

}  // namespace

int main(int count, char** words) {
  const std::string_view mode = count > 2 ? words[1] : "";
  const std::uint64_t megabytes = count > 3 ? std::strtoul(words[3], nullptr, 10) : 0;
  if (mode == "make-petrel" && count == 4)
    makePetrel(words[2], megabytes);
  else if (mode == "make-micromine" && count == 4)
    makeMicromine(words[2], megabytes, textVariables);
  else if (mode == "make-mixed" && count == 4)
    makeMicromine(words[2], megabytes, mixedVariables);
  else if (mode == "slices" && count == 3)
    measureSlices(words[2]);
  else if ((mode == "petrel" || mode == "micromine" || mode == "csv") && count == 3)
    measureRead(words[2], mode);
  else
    bench::fail("make-petrel|make-micromine|make-mixed FILE MB | petrel|micromine|csv|slices FILE",
                words[0]);
  return 0;
}
