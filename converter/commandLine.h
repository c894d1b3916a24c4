// The converter's command line.
//
//     vok_xls2csv.exe SOURCE [switches]
//
// The switches are those that the spreadsheet reader of the suite sends, in the shape in which it does:
//
//      "SOURCE"  -destFolder FOLDER -tablelist -delimiter $
//      "SOURCE"  -destFolder FOLDER -copyMerged -delimiter $ -table "NAME" -headers 0
//
// FOLDER is not quoted there and may hold blanks: it is all words up to the next switch.
#ifndef VOK_CONVERTER_COMMANDLINE_H
#define VOK_CONVERTER_COMMANDLINE_H

#include <optional>
#include <string>
#include <vector>

#include "converter/conversion.h"

namespace converter {

struct parsedArguments {
  std::optional<conversionRequest> request;  ///< none: help was asked for, or there is a problem
  std::string problem;                       ///< what is wrong with the command line
};

/// @param arguments  without the program's name
parsedArguments parseArguments(const std::vector<std::wstring>& arguments);

/// What -help prints.
extern const char* const helpText;

}  // namespace converter

#endif
