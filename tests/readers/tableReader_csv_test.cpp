// The dialect of delimited text, one behaviour a row.
#include "table_rw/readers/tableReader_csv.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "tests/reference/csvTwin.h"
#include "tests/support/csvComparison.h"

namespace {

using namespace std::string_literals;
using tableRW::tableReader_csv;
using testSupport::csvOptions;
using testSupport::describe;
using testSupport::temporaryFolder;

const csvOptions defaults;

struct Row {
  const char* name;
  std::string bytes;
  std::string table;
  int line = __builtin_LINE();
};

void expectTables(const csvOptions& options, const std::vector<Row>& rows) {
  const temporaryFolder folder;
  for (const Row& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    const std::wstring path = folder.write(L"table.csv", row.bytes);
    EXPECT_EQ(describe(testSupport::readCsvFile(path, options)), row.table);
    EXPECT_EQ(testSupport::differenceFromTwin(path, row.bytes, options), "");
  }
}

csvOptions withPositions(std::int32_t header, std::uint64_t data) {
  csvOptions options;
  options.header = header;
  options.data = data;
  return options;
}

csvOptions withDelimiter(const std::wstring& delimiter) {
  csvOptions options;
  options.delimiter = delimiter;
  return options;
}

csvOptions withQuote(const std::wstring& quote) {
  csvOptions options;
  options.quote = quote;
  return options;
}

TEST(tableReader_csv, readsLinesOfValues) {
  expectTables(
      defaults,
      {
          Row{"header and row",               "a;b\n1;2\n",               "fields a|b  rows 1|2  ok"          },
          Row{"rows in file order",           "a\n3\n1\n2\n",             "fields a  rows 3 / 1 / 2  ok"      },
          Row{"last line without line end",   "a;b\n1;2",                 "fields a|b  rows 1|2  ok"          },
          Row{"CR LF",                        "a;b\r\n1;2\r\n",           "fields a|b  rows 1|2  ok"          },
          Row{"header alone",                 "a;b",                      "fields a|b  ok"                    },
          Row{"header alone, with LF",        "a;b\n",                    "fields a|b  ok"                    },
          Row{"one field",                    "a\n1\n\n2\n",              "fields a  rows 1 / 2  ok"          },
          Row{"empty values",                 "a;b;c\n;2;\n1;;3\n",       "fields a|b|c  rows |2| / 1||3  ok" },
          Row{"empty file",                   "",                         "fields 0  ok"                      },
          Row{"only an LF",                   "\n",                       "fields 0  ok"                      },
          Row{"byte 1A ends the file",        "a;b\n1;2\n3\x1A;4\n5;6\n",
              "fields a|b  rows 1|2  errors 2  ok"                                                            },
          Row{"byte 1A in the header",        "a\x1A;b\n1;2\n",           "fields a  ok"                      },
          Row{"NUL joins lines",              "a;b\n1;2\0x\n3;4\n5;6\n"s, "fields a|b  rows 5|6  errors 1  ok"},
          Row{"lone CR is part of a value",   "a;b\n1\r1;2\r\n",          "fields a|b  rows 1\\x{0D}1|2  ok"  },
          Row{"CR around a value is trimmed", "a;b\n\r1;2\r\r\r\n",       "fields a|b  rows 1|2  ok"          },
  });
}

TEST(tableReader_csv, takesNamesFromTheHeader) {
  expectTables(
      defaults,
      {
          Row{"empty name becomes its number",           "a;;c\n",           "fields a|1|c  ok"            },
          Row{"all names empty",                         ";;\n1;2;3\n",      "fields 0|1|2  rows 1|2|3  ok"},
          Row{"names are not trimmed",                   " a ; b\t\n",       "fields  a | b\\x{09}  ok"    },
          Row{"a blank is a name",                       "a; \n",            "fields a|   ok"              },
          Row{"equal names are kept",                    "a;a;a\n1;2;3\n",   "fields a|a|a  rows 1|2|3  ok"},
          Row{"a number may stand twice",                "1;\n",             "fields 1|1  ok"              },
          Row{"quotes are stripped",                     "\"a\";\"b\"\n",    "fields a|b  ok"              },
          Row{"quoted pieces join",                      "\"x;y\";z\n1;2\n", "fields x;y|z  rows 1|2  ok"  },
          Row{"stripped to nothing",                     "a;\"\"\n",         "fields a|1  ok"              },
          Row{"one quote alone",                         "\"\n",             "fields 0  ok"                },
          Row{"unclosed quote takes the rest",           "a;\"b;c\n1;2\n",   "fields a|b;c  rows 1|2  ok"  },
          Row{"blanks inside quotes stay",               "\" a \";b\n",      "fields  a |b  ok"            },
          Row{"an empty first line is the header",       "\n1\n",            "fields 0  rows 1  ok"        },
          Row{"byte-order mark stays in the first name", "\uFEFFa;b\n",      "fields \uFEFFa|b  ok"        },
          Row{"trailing delimiter is one more field",    "a;b;\n1;2;3\n",
              "fields a|b|2  rows 1|2|3  ok"                                                               },
  });
}

TEST(tableReader_csv, trimsValues) {
  expectTables(
      defaults,
      {
          Row{"blanks",                               "a;b\n 1 ; 2 \n",           "fields a|b  rows 1|2  ok"        },
          Row{"all six characters",                   "a\n \t\v\f\rx\r\f\v\t \n", "fields a  rows x  ok"            },
          Row{"inside stays",                         "a\nx  y\n",                "fields a  rows x  y  ok"         },
          Row{"blanks in quotes go too",              "a;b\n\" 1 \";2\n",         "fields a|b  rows 1|2  ok"        },
          Row{"blanks around quotes keep the quotes", "a;b\n \"1\" ;2\n",
              "fields a|b  rows \"1\"|2  ok"                                                                        },
          Row{"no-break space stays",                 "a\n\u00A0x\u00A0\n",       "fields a  rows \u00A0x\u00A0  ok"},
  });
}

TEST(tableReader_csv, skipsLinesWithoutData) {
  expectTables(
      defaults,
      {
          Row{"blank lines",                                 "a;b\n\n1;2\n\n\n3;4\n\n", "fields a|b  rows 1|2 / 3|4  ok"},
          Row{"the right number of delimiters",              "a;b\n;\n",                "fields a|b  ok"                },
          Row{"too many delimiters",                         "a;b\n;;\n;;;;\n",         "fields a|b  ok"                },
          Row{"too few delimiters",                          "a;b;c\n;\n",              "fields a|b|c  ok"              },
          Row{"quoted emptiness",                            "a;b\n\"\";\"\"\n",        "fields a|b  ok"                },
          Row{"one quoted emptiness",                        "a;b\n\"\"\n",             "fields a|b  ok"                },
          Row{"lone quotes",                                 "a;b\n\";\"\n\"\n",        "fields a|b  ok"                },
          Row{"a line of blanks between delimiters is data", "a;b\n ; \n",
              "fields a|b  rows |  ok"                                                                                  },
          Row{"one such value is enough",                    "a;b\n;\t\n",              "fields a|b  rows |  ok"        },
          Row{"a blank line of blanks has one value",        "a;b\n  \n",               "fields a|b  errors 1  ok"      },
          Row{"and is data when there is one field",         "a\n  \n",                 "fields a  rows   ok"           },
  });
}

TEST(tableReader_csv, listsLinesOfAnotherLength) {
  expectTables(
      defaults,
      {
          Row{"trailing delimiter is one value too many", "a;b\n1;2;\n",
              "fields a|b  errors 1  ok"                                                                             },
          Row{"one value too few",                        "a;b\n1\n",                  "fields a|b  errors 1  ok"    },
          Row{"reading goes on",                          "a;b\n1\n2;3\n4;5;6\n7;8\n",
              "fields a|b  rows 2|3 / 7|8  errors 1,3  ok"                                                           },
          Row{"every physical line counts",               "a;b\n\n;;\n1\n\n2\n",       "fields a|b  errors 3,5  ok"  },
          Row{"the last line without line end",           "a;b\n1;2\n3",
              "fields a|b  rows 1|2  errors 2  ok"                                                                   },
          Row{"more fields than any line has",            "a;b;c\n1\n1;2\n",           "fields a|b|c  errors 1,2  ok"},
          Row{"lines joined by a NUL count once",         "a;b\n1\0\n;2\n3\n"s,
              "fields a|b  rows 1|2  errors 2  ok"                                                                   },
  });
}

TEST(tableReader_csv, joinsQuotedPiecesWhenTheCountDiffers) {
  expectTables(
      defaults,
      {
          Row{"two pieces",                       "a;b\n\"x;y\";z\n",           "fields a|b  rows x;y|z  ok"    },
          Row{"many pieces",                      "a;b\n\"x;y;z;w\";v\n",       "fields a|b  rows x;y;z;w|v  ok"},
          Row{"second value",                     "a;b\nz;\"x;y\"\n",           "fields a|b  rows z|x;y  ok"    },
          Row{"both values",                      "a;b\n\"x;y\";\"z;w\"\n",     "fields a|b  rows x;y|z;w  ok"  },
          Row{"blanks inside join as they are",   "a;b\n\"x ; y\";z\n",
              "fields a|b  rows x ; y|z  ok"                                                                    },
          Row{"unclosed quote takes the rest",    "a;b\n1;\"2;3;4\n",           "fields a|b  rows 1|2;3;4  ok"  },
          Row{"unclosed quote takes the line",    "a;b\n\"1;2;3\n",             "fields a|b  errors 1  ok"      },
          Row{"closing quote without opening",    "a;b\n1;2\";3\n",             "fields a|b  errors 1  ok"      },
          Row{"a quoted value of its own",        "a;b\n\"1\";2;3\n",           "fields a|b  errors 1  ok"      },
          Row{"empty piece inside quotes",        "a;b\n\"a;;b\";c\n",          "fields a|b  errors 1  ok"      },
          Row{"what follows it joins it",         "a;b;c\n\"a;;b\";c\n",        "fields a|b|c  rows a|;b|c  ok" },
          Row{"empty piece outside quotes",       "a;b;c\n;\"x;y\";z\n",        "fields a|b|c  rows |x;y|z  ok" },
          Row{"quoted piece inside quotes",       "a;b\n\"a;\"b\";c\n",         "fields a|b  rows a|b\";c  ok"  },
          Row{"one quote inside quotes",          "a;b\n\"a;\";b\n",            "fields a|b  rows a|;b  ok"     },
          Row{"the flag survives a quoted piece", "a;b;c\n\"a;\"b\";c;d\";e\n",
              "fields a|b|c  rows a|b\";c;d|e  ok"                                                              },
          Row{"inner quotes do not close",        "a;b\n\"x\"x;y\";z\n",        "fields a|b  rows x\"x;y|z  ok" },
  });
}

TEST(tableReader_csv, leavesPiecesApartWhenTheCountFits) {
  expectTables(
      defaults,
      {
          Row{"three fields",            "a;b;c\n\"x;y\";z\n",  "fields a|b|c  rows x|y|z  ok"  },
          Row{"two fields",              "a;b\n\"1;2\"\n",      "fields a|b  rows 1|2  ok"      },
          Row{"values never span lines", "a;b\n\"1;2\n3\";4\n", "fields a|b  rows 1|2 / 3|4  ok"},
          Row{"one quote is a value",    "a;b;c\n\";1;\"\n",    "fields a|b|c  rows |1|  ok"    },
  });
}

TEST(tableReader_csv, stripsOneQuoteAtEachEnd) {
  expectTables(
      defaults,
      {
          Row{"both ends",                    "a;b\n\"1\";\"2\"\n",  "fields a|b  rows 1|2  ok"   },
          Row{"first only",                   "a;b\n\"1;2\n",        "fields a|b  rows 1|2  ok"   },
          Row{"last only",                    "a;b\n1\";2\n",        "fields a|b  rows 1|2  ok"   },
          Row{"inner quotes stay",            "a;b\n1\"1;2\n",       "fields a|b  rows 1\"1|2  ok"},
          Row{"doubled quotes are no escape", "a;b\n\"a\"\"b\";c\n",
              "fields a|b  rows a\"\"b|c  ok"                                                     },
          Row{"three quotes leave one",       "a;b\n\"\"\";c\n",     "fields a|b  rows \"|c  ok"  },
          Row{"four quotes leave two",        "a;b\n\"\"\"\";c\n",   "fields a|b  rows \"\"|c  ok"},
          Row{"two quotes leave nothing",     "a;b\n\"\";c\n",       "fields a|b  rows |c  ok"    },
          Row{"one quote leaves nothing",     "a;b\n\";c\n",         "fields a|b  rows |c  ok"    },
          Row{"other values of the line too", "a;b\n\"1\";x\"\n",    "fields a|b  rows 1|x  ok"   },
  });
}

TEST(tableReader_csv, headerBelowTheFirstLine) {
  expectTables(
      withPositions(2, 3),
      {
          Row{"lines above are ignored",    "x\ny;z;w\na;b\n1;2\n3\n",
              "fields a|b  rows 1|2  errors 4  ok"                                               },
          Row{"quotes above mean nothing",  "\"x;\n\"\na;b\n1;2\n",    "fields a|b  rows 1|2  ok"},
          Row{"the line after the last LF", "x\ny\n",                  "fields 0  ok"            },
          Row{"no such line",               "x\ny",                    "ok"                      },
          Row{"empty file",                 "",                        "ok"                      },
          Row{"empty header line",          "x\ny\n\n1\n",             "fields 0  rows 1  ok"    },
  });
}

TEST(tableReader_csv, dataFurtherDown) {
  expectTables(
      withPositions(0, 3),
      {
          Row{"lines between are skipped", "a;b\n1;2\nbad\n3;4\n", "fields a|b  rows 3|4  ok"},
          Row{"also as errors",            "a;b\nx\ny\nz\n",       "fields a|b  errors 3  ok"},
          Row{"no such line",              "a;b\n1;2\n3;4",        "fields a|b  ok"          },
  });
  expectTables(withPositions(0, 4294967297U),
               {
                   Row{"position beyond 32 bits", "a;b\n1;2\n3\n", "fields a|b  ok"},
  });
}

TEST(tableReader_csv, dataPositionAtOrAboveTheHeader) {
  for (const std::uint64_t data : {0U, 1U, 2U}) {
    expectTables(withPositions(1, data),
                 {
                     Row{"the header is no data",      "x;y\na;b\n1;2\n", "fields a|b  rows 1|2  ok"},
                     Row{"lines above it are no data", "1;2\n",           "fields 0  ok"            },
    });
  }
}

TEST(tableReader_csv, withoutAHeaderNamesAreNumbered) {
  for (const std::int32_t header : {-1, -2, -3, std::numeric_limits<std::int32_t>::min()}) {
    expectTables(
        withPositions(header, 0),
        {
            Row{"the first line is data too",            "1;2\n3;4\n",
                "fields field_0|field_1  rows 1|2 / 3|4  ok"                                                                 },
            Row{"empty values",                          ";x\n",                        "fields field_0|field_1  rows |x  ok"},
            Row{"quotes are not heeded in counting",     "\"x;y\";z\n",
                "fields field_0|field_1|field_2  rows x|y|z  ok"                                                             },
            Row{"nor in the lines below",                "\"x;y\";z\n\"1;2\";3\n1;2\n",
                "fields field_0|field_1|field_2  rows x|y|z / 1|2|3  errors 2  ok"                                           },
            Row{"empty first line",                      "\n1\n",                       "fields field_0  rows 1  ok"         },
            Row{"empty file",                            "",                            "fields field_0  ok"                 },
            Row{"two digits",                            "0;1;2;3;4;5;6;7;8;9;A\n",
                "fields field_0|field_1|field_2|field_3|field_4|field_5|field_6|field_7|field_8|"
                "field_9|field_10  rows 0|1|2|3|4|5|6|7|8|9|A  ok"                                                           },
            Row{"the first line may be bare delimiters", ";;\n1;2;3\n",
                "fields field_0|field_1|field_2  rows 1|2|3  ok"                                                             },
    });
  }
}

TEST(tableReader_csv, withoutAHeaderAndDataFurtherDown) {
  expectTables(withPositions(-1, 1),
               {
                   Row{"the first line only counts the columns", "1;2\n3;4\n",
                       "fields field_0|field_1  rows 3|4  ok"                                                },
                   Row{"nor is it an error",                     "1\n3;4\n",   "fields field_0  errors 1  ok"},
  });
  expectTables(withPositions(-1, 2), {
                                         Row{"lines between are skipped", "1;2\nbad\n3;4\n",
                                             "fields field_0|field_1  rows 3|4  ok"},
  });
}

// What ends a line or the file never stands inside one, so it sets nothing apart; a lone CR does stand there.
TEST(tableReader_csv, delimitersAndQuotesThatEndLines) {
  for (const wchar_t mark : {L'\0', L'\n', L'\x1A'}) {
    const std::vector<Row> rows = {
        Row{"as a delimiter", "a;b\n1;2\n", "fields a;b  rows 1;2  ok"},
    };
    expectTables(withDelimiter(std::wstring(1, mark)), rows);
  }
  for (const wchar_t mark : {L'\0', L'\n', L'\x1A'}) {
    const std::vector<Row> rows = {
        Row{"as a quote", "a;b\n1;2\n", "fields a|b  rows 1|2  ok"},
    };
    expectTables(withQuote(std::wstring(1, mark)), rows);
  }
  expectTables(withDelimiter(L"\r"),
               {
                   Row{"a lone CR sets values apart", "a\rb\n1\r2\n", "fields a|b  rows 1|2  ok"},
  });
  expectTables(withQuote(L"\r"),
               {
                   Row{"CR as a quote", "a;b\n\r1;2\r3\n", "fields a|b  rows 1|2\\x{0D}3  ok"},
  });
}

TEST(tableReader_csv, delimiters) {
  expectTables(withDelimiter(L","),
               {
                   Row{"comma", "a,b\n1;2,\"3,4\"\n", "fields a|b  rows 1;2|3,4  ok"},
  });
  expectTables(withDelimiter(L"\t"),
               {
                   Row{"TAB",                               "a\tb\n 1 \t2\n",     "fields a|b  rows 1|2  ok"},
                   Row{"a line of TABs is bare delimiters", "a\tb\n\t\n\t\t\t\n", "fields a|b  ok"          },
  });
  expectTables(withDelimiter(L" "),
               {
                   Row{"blank", "a b\n1 2\n 3\n  4\n", "fields a|b  rows 1|2 / |3  errors 3  ok"},
  });
  expectTables(withDelimiter(L";;"),
               {
                   Row{"doubled",                           "a;;b\n1;2;;3\n1;;;2\n;;\n", "fields a|b  rows 1;2|3 / 1|;2  ok"},
                   Row{"half of it is text",                "a;;b\n1;2\n",               "fields a|b  errors 1  ok"         },
                   Row{"quoted pieces join with all of it", "a;;b\n\"x;;y\";;z\n",
                       "fields a|b  rows x;;y|z  ok"                                                                        },
  });
  expectTables(withDelimiter(L"<->"),
               {
                   Row{"long",   "a<->b\n1<-><->\n1<->2\n", "fields a|b  rows 1|2  errors 1  ok"},
                   Row{"quoted", "a<->b\n\"x<->y\"<->z\n",  "fields a|b  rows x<->y|z  ok"      },
  });
  expectTables(withDelimiter(L"\u0436"),
               {
                   Row{"non-ASCII", "a\u0436b\n1\u04362\n\"x\u0436y\"\u0436z\n",
                       "fields a|b  rows 1|2 / x\u0436y|z  ok"},
  });
  expectTables(
      withDelimiter(L"\U0001F600"),
      {
          Row{"beyond the BMP", "a\U0001F600b\n1\U0001F6002\n", "fields a|b  rows 1|2  ok"},
  });
  expectTables(withDelimiter(L"\n"), {
                                         Row{"never found", "a;b\n1\n", "fields a;b  rows 1  ok"},
  });
  expectTables(withDelimiter(L"\x1A"),
               {
                   Row{"the end of the file", "a;b\n1\n2\x1A!\n", "fields a;b  rows 1 / 2  ok"},
  });
  expectTables(withDelimiter(L"\r"),
               {
                   Row{"CR, but for the one before the LF", "a\rb\r\r\n1\r2\n3\r4\r\r\n\r\r\r\n",
                       "fields a|b  rows 1|2 / 3|4  ok"},
  });
  expectTables(withDelimiter(L"\""),
               {
                   Row{"the quote itself", "a\"b\n1\"2\n", "fields a|b  rows 1|2  ok"},
  });
}

TEST(tableReader_csv, withoutADelimiterALineIsOneValue) {
  expectTables(withDelimiter(L""),
               {
                   Row{"whole lines",         "a;b\n1;2\n\n 3 \n", "fields a;b  rows 1;2 / 3  ok"},
                   Row{"quotes are stripped", "\"a;b\"\n\"1;2\n",  "fields a;b  rows 1;2  ok"    },
  });
  csvOptions options = withPositions(-1, 0);
  options.delimiter.clear();
  expectTables(options, {
                            Row{"without a header", "1;2\n", "fields field_0  rows 1;2  ok"},
  });
}

TEST(tableReader_csv, quotes) {
  expectTables(withQuote(L"'"),
               {
                   Row{"apostrophe", "a;b\n'x;y';\"z\"\n", "fields a|b  rows x;y|\"z\"  ok"},
  });
  expectTables(withQuote(L""), {
                                   Row{"no quoting at all", "a;b\n\"1\";'2'\n\"x;y\";z\n",
                                       "fields a|b  rows \"1\"|'2'  errors 2  ok"                              },
                                   Row{"in the header",     "\"a\";b\n",                   "fields \"a\"|b  ok"},
  });
  expectTables(withQuote(L"\"\""),
               {
                   Row{"only lines with the whole quote are looked at", "a;b\n\"1\";2\n\"x;y\";z\n",
                       "fields a|b  rows \"1\"|2  errors 2  ok"},
                   Row{"its first character is the quote",              "a;b\n\"1\";\"\"\n\"x;y\";z\"\"\n",
                       "fields a|b  rows 1| / x;y|z\"  ok"     },
  });
  expectTables(withQuote(L"<>"),
               {
                   Row{"the second character means nothing", "a;b\n<1<;2<>\n<1<;2>\n",
                       "fields a|b  rows 1|2<> / <1<|2>  ok"},
  });
  expectTables(withQuote(L"\u00AB"),
               {
                   Row{"non-ASCII", "a;b\n\u00ABx;y\u00AB;z\n", "fields a|b  rows x;y|z  ok"},
  });
  expectTables(withQuote(L";"),
               {
                   Row{"the delimiter itself", "a;b\n1;2\n", "fields a|b  rows 1|2  ok"},
  });
  expectTables(withQuote(L" "),
               {
                   Row{"a blank", "a;b\n 1;2 \n x;y ;z\n", "fields a|b  rows 1|2 / x;y|z  ok"},
  });
}

// parceString on a line, by a reader whose file has this header.
std::string parsed(const std::string& header, const std::wstring& line) {
  const temporaryFolder folder;
  tableReader_csv reader(csvOptions().forFile(folder.write(L"table.csv", header)));
  reader.readOnlyHeaders();
  testSupport::textRow values = {L"old", L"older", L"oldest", L"x", L"y"};
  reader.parceString(line, values);
  return describe(values);
}

TEST(tableReader_csv, parceStringSplitsALine) {
  EXPECT_EQ(parsed("a;b", L""), "");
  EXPECT_EQ(parsed("a;b", L";"), "|");
  EXPECT_EQ(parsed("a;b", L" 1 ;2\t"), " 1 |2\\x{09}");
  EXPECT_EQ(parsed("a;b", L"1;2;3"), "1|2|3");
  EXPECT_EQ(parsed("a;b", L"\"x;y\";z"), "x;y|z");
  EXPECT_EQ(parsed("a;b;c", L"\"x;y\";z"), "x|y|z");
  EXPECT_EQ(parsed("a;b", L"\" 1 \";2"), " 1 |2");
  EXPECT_EQ(parsed("a;b", L"\"a;;b\";c"), "a|;b|c");
  EXPECT_EQ(parsed("a;b", L"1\n;2\r"), "1\\x{0A}|2\\x{0D}");
}

TEST(tableReader_csv, parceStringBeforeAnyReadKnowsNoFields) {
  const tableReader_csv reader(csvOptions().forFile(L""));
  testSupport::textRow values;
  reader.parceString(L"\"x;y\";z", values);
  EXPECT_EQ(describe(values), "x;y|z");
  reader.parceString(L"1;2", values);
  EXPECT_EQ(describe(values), "1|2");
}

}  // namespace
