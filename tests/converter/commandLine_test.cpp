// The converter's command line, in the shape in which the reader sends it and in others.
#include "converter/commandLine.h"

#include <gtest/gtest.h>

#include "platform/process.h"
#include "table_rw/readers/tableReader_xlsOLE.h"
#include "tests/support/tableText.h"

namespace {

using converter::conversionRequest;
using converter::parsedArguments;
using testSupport::printable;

std::string describe(const parsedArguments& parsed) {
  if (!parsed.problem.empty()) return "problem: " + parsed.problem;
  if (!parsed.request) return "help";
  const conversionRequest& request = *parsed.request;
  std::string text = printable(request.source) + " > " + printable(request.folder);
  if (request.listsTables) text += " list";
  if (request.copyMerged) text += " merged";
  text += std::string(" ") + request.delimiter;
  if (request.table) text += " table=" + printable(*request.table);
  if (request.headerPosition) text += " headers=" + std::to_string(*request.headerPosition);
  return text;
}

std::string parsed(const std::wstring& commandLine) {
  std::vector<std::wstring> arguments = platform::splitCommandLine(commandLine);
  arguments.erase(arguments.begin());
  return describe(converter::parseArguments(arguments));
}

TEST(converterCommandLine, asTheReaderSendsIt) {
  tableRW::tableReaderOptions options(L"D:/my data/a b.xlsx");
  EXPECT_EQ(parsed(tableRW::sheetListCommandLine(options.path, L"C:/my temp dir/")),
            "D:/my data/a b.xlsx > C:/my temp dir/ list $");
  EXPECT_EQ(parsed(tableRW::sheetCommandLine(options, false, L"C:/my temp dir/")),
            "D:/my data/a b.xlsx > C:/my temp dir/ merged $");
  options.table = L"-delimiter";
  options.header_position = -1;
  EXPECT_EQ(parsed(tableRW::sheetCommandLine(options, true, L"/tmp/")),
            "D:/my data/a b.xlsx > /tmp/ merged $ table=-delimiter headers=-1");
}

TEST(converterCommandLine, aSourceWithAQuotationMark) {
  const tableRW::tableReaderOptions options(L"/data/q\"q.xlsx");
  const std::string problem =
      "problem: the quotation marks do not match: a source with one in its name cannot be read, "
      "rename it";
  EXPECT_EQ(parsed(tableRW::sheetListCommandLine(options.path, L"/tmp/")), problem);
  EXPECT_EQ(parsed(tableRW::sheetCommandLine(options, false, L"/tmp/")), problem);
  EXPECT_EQ(parsed(L"x \"/data/a -destFolder b.xlsx\" -destFolder /tmp/"),
            "/data/a -destFolder b.xlsx > /tmp/ $");
}

struct argumentRow {
  std::vector<std::wstring> arguments;
  const char* expected;
  int line = __builtin_LINE();
};

const argumentRow argumentRows[] = {
    argumentRow{{L"a.xls"},                              "a.xls >  $"                                           },
    argumentRow{{L"a.xls", L"-delimiter", L";"},         "a.xls >  ;"                                           },
    argumentRow{{L"-copyMerged", L"a.xls"},              "a.xls >  merged $"                                    },
    argumentRow{{L"a.xls", L"-destFolder", L"-x", L"y"}, "a.xls > -x y $"                                       },
    argumentRow{{L"a.xls", L"-help"},                    "help"                                                 },
    argumentRow{{L"--help"},                             "help"                                                 },
    argumentRow{{L"-help", L"a", L"b"},                  "help"                                                 },
    argumentRow{{},                                      "problem: the source is missing"                       },
    argumentRow{{L"-copyMerged"},                        "problem: the source is missing"                       },
    argumentRow{{L"a", L"b"},                            "problem: \"b\" is neither a switch nor the source"    },
    argumentRow{{L"a", L"-destFolder"},                  "problem: -destFolder needs a folder behind it"        },
    argumentRow{{L"a", L"-destFolder", L"-help"},        "problem: -destFolder needs a folder behind it"        },
    argumentRow{{L"a", L"-table"},                       "problem: -table needs a value behind it"              },
    argumentRow{{L"a", L"-delimiter"},                   "problem: -delimiter needs a value behind it"          },
    argumentRow{{L"a", L"-headers"},                     "problem: -headers needs a value behind it"            },
    argumentRow{{L"a", L"-headers", L"3x"},
                "problem: -headers takes the position of a row, from 0"                                         },
    argumentRow{{L"a", L"-headers", L"x"},               "problem: -headers takes the position of a row, from 0"},
    argumentRow{{L"a", L"-headers", L"9999999999"},
                "problem: -headers takes the position of a row, from 0"                                         },
    argumentRow{{L"a", L"-delimiter", L"$$"},
                "problem: -delimiter takes one character of punctuation or a TAB"                               },
    argumentRow{{L"a", L"-delimiter", L"1"},
                "problem: -delimiter takes one character of punctuation or a TAB"                               },
    argumentRow{{L"a", L"-delimiter", L"\u00A7"},
                "problem: -delimiter takes one character of punctuation or a TAB"                               },
};

TEST(converterCommandLine, arguments) {
  for (const argumentRow& row : argumentRows) {
    const testing::ScopedTrace trace(__FILE__, row.line, "");
    EXPECT_EQ(describe(converter::parseArguments(row.arguments)), row.expected);
  }
}

TEST(converterCommandLine, targets) {
  conversionRequest request;
  const std::pair<const wchar_t*, const char*> cases[] = {
      {L"d/a.xlsx",   "T/a.csv"   },
      {L"d.e\\a.b.c", "T/a.b.csv" },
      {L"d.e/a",      "T/a.csv"   },
      {L".xls",       "T/.xls.csv"},
  };
  for (const wchar_t* const folder : {L"T/", L"T"}) {
    request.folder = folder;
    for (const auto& [source, expected] : cases) {
      request.source = source;
      EXPECT_EQ(printable(converter::targetPath(request)), expected);
    }
  }
  request.listsTables = true;
  request.folder = L"T\\";
  EXPECT_EQ(printable(converter::targetPath(request)), "T\\\\.xls_tabList.csv");
  request.folder = L"";
  EXPECT_EQ(printable(converter::targetPath(request)), ".xls_tabList.csv");
}

}  // namespace
