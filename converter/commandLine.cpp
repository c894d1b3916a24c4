#include "converter/commandLine.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "converter/wideText.h"
#include "converter/workbook/lineText.h"

namespace converter {
namespace {

using argumentList = std::vector<std::wstring>;

// One command line on its way from the first argument to the last.
struct parsing {
  const argumentList& arguments;
  std::size_t next = 0;
  conversionRequest request = {};
  bool isHelp = false;
  std::string problem = {};

  bool takeValue(const char* switchName, std::wstring& value) {
    if (next == arguments.size()) {
      problem = std::string(switchName) + " needs a value behind it";
      return false;
    }
    value = arguments[next++];
    return true;
  }
};

bool isSwitch(const std::wstring& word);

void takeFolder(parsing& state) {
  std::wstring& folder = state.request.folder;
  folder.clear();
  while (state.next < state.arguments.size() && !isSwitch(state.arguments[state.next])) {
    if (!folder.empty()) folder += L' ';
    folder += state.arguments[state.next++];
  }
  if (folder.empty()) state.problem = "-destFolder needs a folder behind it";
}

void takeTableList(parsing& state) { state.request.listsTables = true; }

void takeCopyMerged(parsing& state) { state.request.copyMerged = true; }

void takeDelimiter(parsing& state) {
  std::wstring value;
  if (!state.takeValue("-delimiter", value)) return;
  const bool isOne = value.size() == 1 && static_cast<unsigned long>(value[0]) < 0x80 &&
                     isDelimiter(static_cast<char>(value[0]));
  if (isOne)
    state.request.delimiter = static_cast<char>(value[0]);
  else
    state.problem = "-delimiter takes one character of punctuation or a TAB";
}

void takeTable(parsing& state) {
  std::wstring value;
  if (state.takeValue("-table", value)) state.request.table = value;
}

void takeHeaders(parsing& state) {
  std::wstring value;
  if (!state.takeValue("-headers", value)) return;
  const std::string digits = toUtf8(value);
  std::int32_t position = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), position);
  if (result.ec == std::errc() && result.ptr == digits.data() + digits.size())
    state.request.headerPosition = position;
  else
    state.problem = "-headers takes the position of a row, from 0";
}

void takeHelp(parsing& state) { state.isHelp = true; }

struct switchEntry {
  const wchar_t* name;
  void (*take)(parsing& state);
};

constexpr switchEntry switches[] = {
    {L"-destFolder", takeFolder    },
    {L"-tablelist",  takeTableList },
    {L"-delimiter",  takeDelimiter },
    {L"-copyMerged", takeCopyMerged},
    {L"-table",      takeTable     },
    {L"-headers",    takeHeaders   },
    {L"-help",       takeHelp      },
    {L"--help",      takeHelp      },
};

const switchEntry* findSwitch(const std::wstring& word) {
  const auto* const found =
      std::find_if(std::begin(switches), std::end(switches),
                   [&](const switchEntry& each) { return word == each.name; });
  return found == std::end(switches) ? nullptr : found;
}

bool isSwitch(const std::wstring& word) { return findSwitch(word) != nullptr; }

// A quotation mark within the source's name ends its quotation, and the last mark begins one that takes in the
// rest of the line, for the reader cannot write it otherwise. Names on Windows have none.
bool holdsRestOfLine(const conversionRequest& request) {
  return request.folder.empty() && request.source.find(L" -destFolder ") != std::wstring::npos;
}

}  // namespace

const char* const helpText =
    "Converts a sheet of an Excel workbook (.xlsx, .xlsm, .xls) to a text file in UTF-8.\n"
    "\n"
    "usage: vok_xls2csv.exe SOURCE [switches]\n"
    "\n"
    "  -destFolder FOLDER  where the file is written; all words up to the next switch\n"
    "                      (default: the current folder)\n"
    "  -delimiter C        the character between values (default: $)\n"
    "  -table NAME         the sheet (default: the first visible one)\n"
    "  -copyMerged         merged cells hold their value in every cell they cover\n"
    "  -headers N          write the line of row N alone, counted from 0\n"
    "  -tablelist          write the names of the sheets in one line, to NAME_tabList.csv\n"
    "  -help               this text\n"
    "\n"
    "The file has the name of the source with the extension csv. Exit codes: 0 done; 1 the "
    "workbook cannot\n"
    "be converted, and there is no file; 2 wrong usage.\n";

parsedArguments parseArguments(const std::vector<std::wstring>& arguments) {
  parsing state{arguments};
  bool hasSource = false;
  while (state.next < arguments.size() && state.problem.empty() && !state.isHelp) {
    const std::wstring& word = arguments[state.next++];
    if (const switchEntry* const found = findSwitch(word)) {
      found->take(state);
    } else if (hasSource) {
      state.problem = "\"" + toUtf8(word) + "\" is neither a switch nor the source";
    } else {
      state.request.source = word;
      hasSource = true;
    }
  }
  if (state.isHelp) return {};
  if (state.problem.empty() && !hasSource) state.problem = "the source is missing";
  if (state.problem.empty() && holdsRestOfLine(state.request))
    state.problem =
        "the quotation marks do not match: a source with one in its name cannot be read, rename it";
  if (!state.problem.empty()) return {std::nullopt, state.problem};
  return {state.request, ""};
}

}  // namespace converter
