// Which format a file has, by its first bytes: what a file is called says little, and .xls files that hold
// web pages or text are common.
#include <array>

#include "converter/container/compoundFile.h"
#include "converter/workbook/workbook.h"
#include "converter/workbook/xlsWorkbook.h"
#include "converter/workbook/xlsxWorkbook.h"

namespace converter {
namespace {

constexpr std::string_view passwordProblem = "the workbook is protected by a password";

// An .xls workbook together with what it lies in.
class xlsInFile final : public workbook {
 public:
  explicit xlsInFile(char delimiter) : book_(delimiter) {}

  bool openCompound(platform::binaryFile& file, std::string& problem) {
    if (!container_.open(file, problem)) return false;
    for (const std::string_view name : {"Workbook", "Book"})
      if (stream_ == nullptr) stream_ = container_.stream(name);
    if (stream_ != nullptr) return openRecords(problem);
    const bool isEncrypted = container_.stream("EncryptedPackage") != nullptr;
    problem = isEncrypted ? passwordProblem : "the compound file holds no Excel workbook";
    return false;
  }

  bool openBare(platform::binaryFile& file, std::string& problem) {
    stream_ = std::make_unique<fileStream>(file);
    return openRecords(problem);
  }

  bool readSheet(const sheetEntry& sheet, sheetReceiver& receiver, std::string& problem) override {
    return book_.readSheet(sheet, receiver, problem);
  }

 private:
  bool openRecords(std::string& problem) {
    if (!book_.open(*stream_, problem)) return false;
    sheets_ = book_.sheets();
    return true;
  }

  compoundFile container_;
  std::unique_ptr<byteStream> stream_;
  xlsWorkbook book_;
};

// What a file that is no workbook seems to be, for the message.
std::string guessOf(std::string_view begin) {
  const std::size_t first = begin.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  if (first == std::string_view::npos) return "the file is empty";
  if (begin.find('\0') != std::string_view::npos) return "the file is no Excel workbook";
  if (begin[first] == '<')
    return "the file is no Excel workbook but a web page or XML: save it as .xlsx in a spreadsheet "
           "program";
  return "the file is no Excel workbook but looks like text: read it as delimited text";
}

bool beginsWithBiff(std::string_view begin) {
  // FORMAT: BOF records of BIFF2 to BIFF8 differ in the upper byte of their number.
  constexpr std::string_view secondBytes("\0\2\4\10", 4);
  return begin.size() >= 4 && begin[0] == '\x09' &&
         secondBytes.find(begin[1]) != std::string_view::npos && begin[3] == '\0';
}

template <class Book, class Open>
std::unique_ptr<workbook> opened(char delimiter, Open open) {
  auto book = std::make_unique<Book>(delimiter);
  if (!open(*book)) return nullptr;
  return book;
}

}  // namespace

std::unique_ptr<workbook> openWorkbook(platform::binaryFile& file, char delimiter,
                                       std::string& problem) {
  std::array<unsigned char, 512> bytes{};
  const std::size_t size = file.readAt(0, bytes.data(), bytes.size());
  const std::string_view begin(reinterpret_cast<const char*>(bytes.data()), size);
  if (compoundFile::isCompoundFile(bytes.data(), size))
    return opened<xlsInFile>(delimiter,
                             [&](auto& book) { return book.openCompound(file, problem); });
  if (begin.starts_with("PK"))
    return opened<xlsxWorkbook>(delimiter, [&](auto& book) { return book.open(file, problem); });
  if (beginsWithBiff(begin))
    return opened<xlsInFile>(delimiter, [&](auto& book) { return book.openBare(file, problem); });
  problem = guessOf(begin);
  return nullptr;
}

}  // namespace converter
