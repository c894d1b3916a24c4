// The texts of values: numbers, dates, booleans, errors.
#ifndef VOK_CONVERTER_WORKBOOK_CELLTEXT_H
#define VOK_CONVERTER_WORKBOOK_CELLTEXT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "converter/workbook/numberFormat.h"

namespace converter {

/// From which day a workbook counts.
enum class dateSystem : std::uint8_t { from1900, from1904 };

/// Appends the shortest text that reads back to the same number: 0.1, 100000, 1.5e+22. Between 1e-5 and 1e16
/// without an exponent; zero without a sign.
void appendNumber(std::string& text, double number);

/// Appends a number as its format shows it: 2014-02-14, 08:27:48, 2014-02-14T08:27:48.765, 36:00:00, or as a
/// plain number, which also stands for a date outside the years 1900 to 9999. Rounded to the millisecond,
/// which is left out when it is zero.
/// FORMAT: the 1900 system holds 1900 for a leap year: day 60 is 1900-02-29, as spreadsheet programs show it.
/// Its day 0 is no day: a date is 1900-01-00 then, as they show it too, and of a date with a time the time is
/// left.
void appendFormatted(std::string& text, double number, numberKind kind, dateSystem system);

/// The same for a number in decimal notation, as it stands in a file; text that is no number is appended as
/// it is. @param number  without blanks around it
void appendFormatted(std::string& text, std::string_view number, const numberFormat& format,
                     dateSystem system);

constexpr std::string_view trueText = "TRUE";
constexpr std::string_view falseText = "FALSE";

/// The text of an error by its code in .xls files; empty for a code that is not known.
std::string_view errorText(unsigned code);

}  // namespace converter

#endif
