// vok_xls2csv.exe: a sheet of an Excel workbook as a text file, for the suite's spreadsheet reader.
//
//     container/   ZIP archives and compound files
//     syntax/      XML and BIFF records
//     workbook/    sheets, shared strings, number formats, cells as text
//     text/        lines, padding, merged cells, the file
//
// Each layer knows those above it in this list. The program has this name on every system: the reader looks
// for it beside the suite's main module.
#include <new>
#include <string>

#include "converter/commandLine.h"
#include "converter/conversion.h"
#include "converter/wideText.h"
#include "platform/console.h"

namespace {

constexpr int exitDone = 0;
constexpr int exitFailed = 1;
constexpr int exitUsage = 2;

using platform::standardStream;

int say(standardStream stream, const std::string& text, int exitCode) {
  platform::writeText(stream, converter::toWide(text));
  platform::flushText(stream);
  return exitCode;
}

int run(const std::vector<std::wstring>& arguments) {
  const converter::parsedArguments parsed = converter::parseArguments(arguments);
  if (!parsed.problem.empty())
    return say(standardStream::error, "vok_xls2csv: " + parsed.problem + "; -help tells more\n",
               exitUsage);
  if (!parsed.request) return say(standardStream::output, converter::helpText, exitDone);
  std::string problem;
  if (converter::convert(*parsed.request, problem)) return exitDone;
  return say(standardStream::error,
             "vok_xls2csv: " + converter::toUtf8(parsed.request->source) + ": " + problem + "\n",
             exitFailed);
}

}  // namespace

int main(int count, char** values) {
  try {
    return run(platform::commandLineArguments(count, values));
  } catch (const std::bad_alloc&) {
    platform::writeLastWord(standardStream::error,
                            "vok_xls2csv: not enough memory for this workbook\n");
    return exitFailed;
  }
}
