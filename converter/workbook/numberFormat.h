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

/// By the number of a format that a workbook does not define: one that is built in.
numberKind kindOfBuiltInFormat(unsigned number);

/// A number format: the kinds that its sections show, and for which numbers each of them is.
///
/// FORMAT: `positive or zero;negative`, `positive;negative;zero`, and behind them one for text. A section may
/// have a condition of its own, `[<1]h:mm;dd.mm.yyyy`; what no condition meets is for the last section.
class numberFormat {
 public:
  /// One that shows every number alike.
  constexpr numberFormat(numberKind kind) : rest_(kind) {}

  /// By its code, such as `dd.mm.yyyy hh:mm`. Quoted and escaped text, colours and locales in brackets do not
  /// count. A number that all conditions leave out is a number.
  explicit numberFormat(std::string_view code);

  /// Whether it shows every number as one: no need to know which number it is.
  constexpr bool isPlain() const {
    return rest_ == numberKind::number && first_.kind == rest_ && second_.kind == rest_;
  }

  numberKind kindOf(double number) const;

 private:
  enum class comparison : std::uint8_t {
    never,
    less,
    lessOrEqual,
    equal,
    notEqual,
    greaterOrEqual,
    greater
  };
  struct part {
    double limit = 0;
    comparison compare = comparison::never;
    numberKind kind = numberKind::number;

    bool isFor(double number) const;
  };
  struct section;

  static section takeSection(std::string_view& code);

  part first_ = {};
  part second_ = {};
  numberKind rest_;
};

/// The formats of one workbook: what each cell style shows.
class numberFormats {
 public:
  numberFormats() = default;
  numberFormats(const numberFormats&) = delete;
  numberFormats& operator=(const numberFormats&) = delete;

  void define(unsigned number, std::string_view code) {
    defined_.insert_or_assign(number, numberFormat(code));
  }

  /// Adds the next cell style. Definitions may come after it.
  void addStyle(unsigned formatNumber) { styles_.push_back(formatNumber); }

  /// Definitions and styles so far.
  std::size_t size() const { return defined_.size() + styles_.size(); }

  /// Ends the collecting.
  void resolve();

  /// A style that does not exist shows numbers.
  const numberFormat& ofStyle(std::size_t style) const {
    return style < formats_.size() ? *formats_[style] : plain;
  }

 private:
  static constexpr numberFormat plain{numberKind::number};

  std::map<unsigned, numberFormat> defined_;
  std::vector<unsigned> styles_;
  std::vector<const numberFormat*> formats_;  // in `defined_`
};

}  // namespace converter

#endif
