// vok_io's ODBC operations over the tests' own driver, and connection strings made to fit drivers.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/codePages.h"
#include "platform/vok_io.h"
#include "suite/io/odbcSources.h"
#include "tests/support/odbcScript.h"
#include "tests/support/targetSystem.h"
#include "tests/support/temporaryFolder.h"

namespace {

using suiteIo::fittedConnectionString;
using suiteIo::partsOf;
using testSupport::odbcScript;
using testSupport::temporaryFolder;

TEST(odbcConnectionString, parts) {
  const std::vector<std::string> parts = partsOf("DSN=a b;DBQ={x;y}.mdb;;Flag;Last=1");
  EXPECT_EQ(parts, (std::vector<std::string>{"DSN=a b", "DBQ={x;y}.mdb", "Flag", "Last=1"}));
  EXPECT_TRUE(partsOf("").empty());
  EXPECT_EQ(partsOf("a={b").size(), 1U);
  EXPECT_EQ(partsOf("DBQ={b.mdb;DefaultDir=/a/;"),
            (std::vector<std::string>{"DBQ={b.mdb", "DefaultDir=/a/"}))
      << "a brace that is never closed is a letter";
  EXPECT_EQ(partsOf("a=;b={}").size(), 2U);
  EXPECT_EQ(partsOf("=").size(), 1U);
}

TEST(odbcConnectionString, fitsTheDriver) {
  const std::vector<suiteIo::odbcEntry> sources = {
      {"Base",    "Access"                     },
      {"By path", "/usr/lib/odbc/libmdbodbc.so"},
      {"Excel",   "SQLite3"                    },
      {"Other",   "Nobody's"                   },
  };
  const std::vector<suiteIo::odbcEntry> drivers = {
      {"Access",  "/usr/lib/odbc/libmdbodbc.so" },
      {"SQLite3", "C:\\Windows\\sqlite3odbc.dll"},
  };
  const struct {
    const char* name;
    const char* given;
    const char* fitted;
    int line = __builtin_LINE();
  } rows[] = {
      {"mdbtools opens the file, not the data source's", "DSN=Base;DBQ=b.mdb;DefaultDir=/a b/;",
       "Driver={Access};DBQ=/a b/b.mdb;"                                                                                         },
      {"names in any case",                              "dsn=BASE;dbq=b.mdb;defaultdir=/a/;",   "Driver={Access};DBQ=/a/b.mdb;" },
      {"a driver by its library",                        "DSN=By path;DBQ=b.mdb;",
       "Driver={/usr/lib/odbc/libmdbodbc.so};DBQ=b.mdb;"                                                                         },
      {"a name that begins with a blank",                "DSN=Base;DBQ= b.mdb;DefaultDir=;",
       "Driver={Access};DBQ=./ b.mdb;"                                                                                           },
      {"the same by driver",                             "Driver={Access};DBQ= b.mdb;",          "Driver={Access};DBQ=./ b.mdb;" },
      {"a blank behind a folder",                        "DSN=Base;DBQ= b.mdb;DefaultDir=/a/;",
       "Driver={Access};DBQ=/a/ b.mdb;"                                                                                          },
      {"other drivers take blanks as they are",          "DSN=Other;DBQ= b.mdb;",                "DSN=Other;DBQ= b.mdb;"         },
      {"a data source alone",                            "DSN=Base;",                            "DSN=Base;"                     },
      {"by driver all is well",                          "Driver={Access};DBQ=/a/b.mdb;",        "Driver={Access};DBQ=/a/b.mdb;" },
      {"SQLite creates nothing",                         "DSN=Excel;DBQ=b.xls;",                 "DSN=Excel;DBQ=b.xls;NoCreat=1;"},
      {"what the caller says about it stands",           "DSN=Excel;NoCreat=0",                  "DSN=Excel;NoCreat=0;"          },
      {"a driver that nobody knows",                     "DSN=Other;DBQ=b.mdb;",                 "DSN=Other;DBQ=b.mdb;"          },
      {"a data source that is not there",                "DSN=Gone;DBQ=b.mdb;",                  "DSN=Gone;DBQ=b.mdb;"           },
      {"nothing",                                        "",                                     ""                              },
      {"a word alone",                                   "DSN=Base;Trusted;DBQ=b.mdb;",          "Driver={Access};DBQ=b.mdb;"    },
      {"a brace that is not closed",                     "Driver={Access;DBQ= b.mdb;",           "Driver={Access;DBQ= b.mdb;"    },
      {"no file",                                        "Driver={Access};DBQ=;",                "Driver={Access};DBQ=;"         },
  };
  for (const auto& row : rows) {
    const testing::ScopedTrace trace(__FILE__, row.line, row.name);
    EXPECT_EQ(fittedConnectionString(row.given, sources, drivers), row.fitted);
  }
}

TEST(odbcConnectionString, slashesAreThoseOfTheSystem) {
  EXPECT_EQ(fittedConnectionString("Driver={D\\E};DBQ=\\a\\b.mdb;DefaultDir=c\\;", {}, {}),
            testSupport::onWindows ? "Driver={D\\E};DBQ=\\a\\b.mdb;DefaultDir=c\\;"
                                   : "Driver={D\\E};DBQ=/a/b.mdb;DefaultDir=c/;");
}

TEST(odbc, acceptsNullHandles) {
  EXPECT_FALSE(vo_odbc_connect_open_driver(nullptr, nullptr, ""));
  EXPECT_STREQ(vo_odbc_connect_get_message(nullptr), "");
  vo_odbc_connect_get_tables(nullptr, nullptr, true);
  EXPECT_EQ(vo_odbc_connect_create_stmt(nullptr), nullptr);
  vo_odbc_connect_destroy_stmt(nullptr, nullptr);
  vo_odbc_connect_destroy(nullptr);
  vo_odbc_stmt_set_sql(nullptr, "");
  EXPECT_FALSE(vo_odbc_stmt_exec_direct(nullptr));
  EXPECT_FALSE(vo_odbc_stmt_get_fields_desc(nullptr));
  EXPECT_EQ(vo_odbc_stmt_get_fields(nullptr), nullptr);
  EXPECT_EQ(vo_odbc_fields_get_size(nullptr), 0U);
  EXPECT_EQ(vo_odbc_fields_get_field(nullptr, 0), nullptr);
  EXPECT_EQ(vo_odbc_field_get_name(nullptr), nullptr);
  EXPECT_EQ(vo_odbc_field_get_type(nullptr), 0);
  EXPECT_STREQ(vo_odbc_field_get_as_string(nullptr), "");
  EXPECT_FALSE(vo_odbc_stmt_fetch(nullptr));
  EXPECT_FALSE(vo_odbc_stmt_has_failed(nullptr));
  vo_odbc_get_data_sources(nullptr);
  vo_odbc_get_drivers(nullptr);
  vo_odbc_get_manager(nullptr);
}

class odbcOperations : public testing::Test {
 protected:
  void SetUp() override {
    if (!testSupport::hasOdbcTestDriver()) GTEST_SKIP() << "the tests' own driver is not set up";
    base_ = vo_odbc_connect_create();
  }
  void TearDown() override {
    vo_odbc_connect_destroy(base_);
    EXPECT_EQ(file_.leaks(), "");
  }

  bool open() { return open(file_); }

  bool open(const odbcScript& file) {
    const std::wstring& path = file.path();
    return vo_odbc_connect_open_driver(base_, nullptr,
                                       ("Driver={Microsoft Access Driver (*.mdb, *.accdb)};DBQ=" +
                                        std::string(path.begin(), path.end()) + ";")
                                           .c_str());
  }

  temporaryFolder folder_;
  odbcScript file_{folder_.file(L"t.mdb"),
                   "table\tt\tTABLE\nfields\ta:4\tb:12\tc:12\nrow\t1\tx\ty\nrow\t2\t\\N\tz\n"};
  Ivo_odbc_connect* base_ = nullptr;
};

TEST_F(odbcOperations, columnsInAnyOrderAndTwice) {
  ASSERT_TRUE(open());
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
  vo_odbc_stmt_set_sql(statement, "select * from [t]");
  ASSERT_TRUE(vo_odbc_stmt_exec_direct(statement));
  ASSERT_TRUE(vo_odbc_stmt_get_fields_desc(statement));
  Ivo_odbc_fields* const fields = vo_odbc_stmt_get_fields(statement);
  ASSERT_EQ(vo_odbc_fields_get_size(fields), 3U);
  EXPECT_EQ(vo_odbc_fields_get_field(fields, 3), nullptr);
  Ivo_odbc_field* const first = vo_odbc_fields_get_field(fields, 0);
  Ivo_odbc_field* const last = vo_odbc_fields_get_field(fields, 2);
  EXPECT_STREQ(vo_odbc_field_get_name(last), "c");
  EXPECT_EQ(vo_odbc_field_get_type(first), 4);
  EXPECT_STREQ(vo_odbc_field_get_as_string(first), "") << "before the first row";
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement));
  EXPECT_STREQ(vo_odbc_field_get_as_string(last), "y");
  EXPECT_STREQ(vo_odbc_field_get_as_string(first), "1");
  EXPECT_STREQ(vo_odbc_field_get_as_string(last), "y");
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement));
  EXPECT_STREQ(vo_odbc_field_get_as_string(vo_odbc_fields_get_field(fields, 1)), "") << "NULL";
  EXPECT_STREQ(vo_odbc_field_get_as_string(last), "z");
  EXPECT_FALSE(vo_odbc_stmt_fetch(statement));
  EXPECT_FALSE(vo_odbc_stmt_fetch(statement)) << "for good";
  EXPECT_STREQ(vo_odbc_field_get_as_string(last), "") << "behind the last row";
  EXPECT_FALSE(vo_odbc_stmt_has_failed(statement));
  EXPECT_TRUE(vo_odbc_stmt_exec_direct(statement)) << "once more";
  EXPECT_EQ(vo_odbc_fields_get_size(fields), 0U) << "forgotten";
  EXPECT_TRUE(vo_odbc_stmt_fetch(statement));
  vo_odbc_connect_destroy_stmt(base_, statement);
}

TEST_F(odbcOperations, messagesAreTheDriversOwn) {
  ASSERT_TRUE(open());
  EXPECT_STREQ(vo_odbc_connect_get_message(base_), "");
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
  vo_odbc_stmt_set_sql(statement, "select * from [u]");
  EXPECT_FALSE(vo_odbc_stmt_exec_direct(statement));
  const std::string message = vo_odbc_connect_get_message(base_);
  EXPECT_NE(message.find("there is no table for: select * from [u]"), std::string::npos) << message;
  EXPECT_NE(message.find("(HY000)"), std::string::npos) << message;
  EXPECT_FALSE(vo_odbc_stmt_fetch(statement));
  vo_odbc_connect_destroy_stmt(base_, statement);
}

TEST_F(odbcOperations, aDriverThatCannotBeLoaded) {
  EXPECT_FALSE(vo_odbc_connect_open_driver(base_, nullptr, "DSN=Lost Excel;DBQ=a.xls;"));
  EXPECT_STRNE(vo_odbc_connect_get_message(base_), "");
  EXPECT_FALSE(vo_odbc_connect_open_driver(base_, nullptr, "DSN=There is none;"));
  EXPECT_STRNE(vo_odbc_connect_get_message(base_), "");
  EXPECT_FALSE(vo_odbc_connect_open_driver(base_, nullptr, nullptr));
  EXPECT_EQ(vo_odbc_connect_create_stmt(base_), nullptr);
  EXPECT_TRUE(open()) << "the same connection may try again";
}

TEST_F(odbcOperations, aStatementOutlivesItsConnection) {
  ASSERT_TRUE(open());
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
  vo_odbc_connect_destroy(base_);
  base_ = nullptr;
  vo_odbc_stmt_set_sql(statement, "select * from [t]");
  EXPECT_TRUE(vo_odbc_stmt_exec_direct(statement));
  EXPECT_TRUE(vo_odbc_stmt_fetch(statement));
  vo_odbc_connect_destroy_stmt(nullptr, statement);
}

TEST_F(odbcOperations, listsWhatTheMachineHas) {
  vo_strings* const list = vo_strings_create();
  vo_odbc_get_manager(list);
  ASSERT_EQ(vo_strings_get_size(list), 1U);
  vo_odbc_get_drivers(list);
  vo_odbc_get_data_sources(list);
  std::string all;
  for (std::size_t i = 1; i < vo_strings_get_size(list); ++i)
    all += std::string(vo_strings_get_str(list, i)) + "|";
  vo_strings_destroy(list);
  EXPECT_EQ(all,
            "Microsoft Access Driver (*.mdb, *.accdb)|Lost driver|Lost Excel|Refusing excel and "
            "access|Nothing of the kind|Test EXCEL Files|MS Access Tests|");
}

TEST_F(odbcOperations, whatHasNoRowsHasRun) {
  ASSERT_TRUE(open());
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
  vo_odbc_stmt_set_sql(statement, "delete from [t]");
  EXPECT_TRUE(vo_odbc_stmt_exec_direct(statement)) << "there was nothing to delete";
  EXPECT_FALSE(vo_odbc_stmt_fetch(statement));
  EXPECT_FALSE(vo_odbc_stmt_has_failed(statement));
  vo_odbc_stmt_set_sql(statement, nullptr);
  EXPECT_FALSE(vo_odbc_stmt_exec_direct(statement)) << "no SQL";
  vo_odbc_connect_destroy_stmt(base_, statement);
}

TEST_F(odbcOperations, tablesOfAConnectionThatIsNotOpen) {
  vo_strings* const list = vo_strings_create();
  vo_odbc_connect_get_tables(base_, list, true);
  EXPECT_EQ(vo_strings_get_size(list), 0U);
  vo_strings_destroy(list);
}

// Drivers may say much; no more than eight messages are passed on.
TEST_F(odbcOperations, severalMessagesAreLines) {
  for (const auto& [number, last] : {
           std::pair{"2",  "more 2"},
           std::pair{"20", "more 8"}
  }) {
    const odbcScript talking(folder_.file(L"m.mdb"), std::string("messages\t") + number +
                                                         "\ntable\tt\tTABLE\nfields\ta:4\n");
    ASSERT_TRUE(open(talking));
    Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
    vo_odbc_stmt_set_sql(statement, "select * from [u]");
    EXPECT_FALSE(vo_odbc_stmt_exec_direct(statement));
    const std::string message = vo_odbc_connect_get_message(base_);
    EXPECT_NE(message.find("select * from [u] (HY000)\n"), std::string::npos) << message;
    EXPECT_EQ(message.substr(message.rfind('\n') + 1), last) << "no state, no brackets";
    vo_odbc_connect_destroy_stmt(base_, statement);
  }
}

// Drivers of unixODBC speak UTF-8 whatever the system's code page is.
TEST_F(odbcOperations, textIsConvertedToTheSystemsCodePage) {
  if (testSupport::onWindows) GTEST_SKIP() << "Windows' own drivers take the system's code page";
  const odbcScript cyrillic(folder_.file(L"c.mdb"),
                            "table\t\xD0\x96\tTABLE\nfields\t\xD0\xB3:12\nrow\t\xD1\x8F\n");
  struct pageSetter {
    explicit pageSetter(unsigned page) { platform::chooseSystemCodePage(page); }
    pageSetter(const pageSetter&) = delete;
    pageSetter& operator=(const pageSetter&) = delete;
    ~pageSetter() { platform::chooseSystemCodePage(before); }
    unsigned before = platform::chosenSystemCodePage();
  };
  const pageSetter page(1251);
  ASSERT_TRUE(open(cyrillic));
  Ivo_odbc_stmt* const statement = vo_odbc_connect_create_stmt(base_);
  vo_odbc_stmt_set_sql(statement, "select * from [\xC6]");
  ASSERT_TRUE(vo_odbc_stmt_exec_direct(statement));
  ASSERT_TRUE(vo_odbc_stmt_get_fields_desc(statement));
  Ivo_odbc_field* const field = vo_odbc_fields_get_field(vo_odbc_stmt_get_fields(statement), 0);
  EXPECT_STREQ(vo_odbc_field_get_name(field), "\xE3");
  ASSERT_TRUE(vo_odbc_stmt_fetch(statement));
  EXPECT_STREQ(vo_odbc_field_get_as_string(field), "\xFF");
  vo_odbc_connect_destroy_stmt(base_, statement);
}

}  // namespace
