// The cells of a workbook that was written, as text: rows from the top, `/` between rows, `|` between cells.
// Shared text stands as the XML has it, a formula behind `=`. Written for what the writer makes; it is no reader
// of workbooks.
#ifndef VOK_TESTS_SUPPORT_WORKBOOKCONTENT_H
#define VOK_TESTS_SUPPORT_WORKBOOKCONTENT_H

#include <string>

#include "tests/support/zipContent.h"

namespace testSupport {

/// The package at a path; its problem says so when there is no file.
zipContent readPackage(const std::wstring& path);

/// The cells of the first sheet; where a reference is not the expected one, it stands before its cell.
std::string cellsOf(const zipContent& package);

/// Every piece of XML between two marks.
std::vector<std::string> allBetween(const std::string& xml, const std::string& begin,
                                    const std::string& end);

/// How often a text occurs.
std::size_t countOf(const std::string& xml, const std::string& text);

}  // namespace testSupport

#endif
