// The table formats: what the tool calls them, which files they have, and what this version of the
// library does with them. The answers come from the library itself, which is asked without touching
// a file: a reader that reads nothing has an empty path, and a format that cannot be written gives
// no writer.
#ifndef VOK_TOOLS_FORMATS_H
#define VOK_TOOLS_FORMATS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/tableDrawing.h"

namespace vokTable {

/// The number of a file type, by its name or as a number; nothing when there is none.
std::optional<std::int32_t> findFileType(std::string_view text);

/// The names of the file types, the automatic choice first.
std::vector<std::string> fileTypeList();

/// The same for a message.
std::string fileTypeNames();

/// The formats that --to takes: each is the extension of a file that is written so.
std::vector<std::string> targetFormatNames();

/// What a format is called, for a message: by the file type, or for the automatic choice by the
/// path.
std::string formatName(std::int32_t fileType, const std::wstring& path);

/// The file type of an extension that the automatic choice does not know although a format has it; else
/// the automatic choice.
std::int32_t typeForExtension(const std::wstring& path);

/// True when the automatic choice knows the path's extension and need not look into the file.
bool isChosenByExtension(const std::wstring& path);

/// Where the converter of spreadsheets stands when it is installed: beside the program.
std::wstring converterPath();

/// The file type that is read: the given one, or what the automatic choice makes of the path. Delimited text stands
/// for Petrel text tables too, which it knows by their first line.
std::int32_t fileTypeOf(std::int32_t fileType, const std::wstring& path);

/// True for delimited text: chosen by its type, or automatically for .csv and unknown extensions.
bool isDelimitedText(std::int32_t fileType, const std::wstring& path);

/// True for an SQLite database: chosen by its type, or automatically by its extension.
bool isSqliteDatabase(std::int32_t fileType, const std::wstring& path);

/// True for a workbook that the converter reads: chosen by its type, or automatically by its extension.
bool isWorkbook(std::int32_t fileType, const std::wstring& path);

/// True when this version writes the format that the path's extension names.
bool isWritable(const std::wstring& path);

/// True when a table that is written to this path becomes a DBF file.
bool isWrittenAsDbf(const std::wstring& path);

/// True when a table that is written to this path becomes a workbook.
bool isWrittenAsWorkbook(const std::wstring& path);

/// All formats and what this version does with each: format, type, extensions, read, write.
void visitFormats(const rowReceiver& receive);

}  // namespace vokTable

#endif
