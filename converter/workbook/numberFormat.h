// What kind of value a number format shows: a number, or a date or time in disguise.
#ifndef VOK_CONVERTER_WORKBOOK_NUMBERFORMAT_H
#define VOK_CONVERTER_WORKBOOK_NUMBERFORMAT_H

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace converter {

enum class numberKind : std::uint8_t {
  number,
  date,      ///< year, month or day
  time,      ///< hour, minute or second of a day
  dateTime,  ///< both
  elapsed    ///< hours, minutes or seconds that may pass a day: [h]:mm
};

/// By the code of a format, such as `dd.mm.yyyy hh:mm`. Its first section counts; quoted and escaped text,
/// colours, conditions and locales in brackets do not.
numberKind kindOfFormatCode(std::string_view code);

/// By the number of a format that a workbook does not define: one that is built in.
numberKind kindOfBuiltInFormat(unsigned number);

/// The formats of one workbook: what each cell style shows.
class numberFormats {
 public:
  void define(unsigned number, std::string_view code) { defined_[number] = kindOfFormatCode(code); }

  /// Adds the next cell style. Definitions may come after it.
  void addStyle(unsigned formatNumber) { styles_.push_back(formatNumber); }

  /// Definitions and styles so far.
  std::size_t size() const { return defined_.size() + styles_.size(); }

  /// Ends the collecting.
  void resolve();

  /// A style that does not exist shows numbers.
  numberKind kindOfStyle(std::size_t style) const {
    return style < kinds_.size() ? kinds_[style] : numberKind::number;
  }

 private:
  std::map<unsigned, numberKind> defined_;
  std::vector<unsigned> styles_;
  std::vector<numberKind> kinds_;
};

}  // namespace converter

#endif
