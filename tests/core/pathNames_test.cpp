// The parts of a path: both separators count on both targets, and nothing is asked of the disk.
#include "table_rw/core/pathNames.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/tableText.h"

namespace {

using testSupport::printable;

struct row {
  const char* name;
  std::wstring path;
  std::wstring folder;
  std::wstring fileName;
  std::wstring extension;
  int line = __builtin_LINE();
};

const row rows[] = {
    row{"empty",                 L"",                L"",          L"",              L""       },
    row{"a name alone",          L"out.csv",         L"",          L"out.csv",       L".csv"   },
    row{"no dot",                L"out",             L"",          L"out",           L""       },
    row{"backslashes",           L"C:\\d\\out.dbf",  L"C:\\d\\",   L"out.dbf",       L".dbf"   },
    row{"slashes",               L"/data/out.dbf",   L"/data/",    L"out.dbf",       L".dbf"   },
    row{"last a slash",          L"C:\\d/out.txt",   L"C:\\d/",    L"out.txt",       L".txt"   },
    row{"last a backslash",      L"C:/d\\out.txt",   L"C:/d\\",    L"out.txt",       L".txt"   },
    row{"a colon separates not", L"C:out.csv",       L"",          L"C:out.csv",     L".csv"   },
    row{"a separator alone",     L"\\",              L"\\",        L"",              L""       },
    row{"a separator last",      L"dir.old/",        L"dir.old/",  L"",              L""       },
    row{"two separators",        L"dir//out.csv",    L"dir//",     L"out.csv",       L".csv"   },
    row{"a dot in the folder",   L"dir.old\\out",    L"dir.old\\", L"out",           L""       },
    row{"a dot in it, slash",    L"a.xlsx/table",    L"a.xlsx/",   L"table",         L""       },
    row{"a dot in both",         L"a.xlsx/t.csv",    L"a.xlsx/",   L"t.csv",         L".csv"   },
    row{"the folder above",      L"..\\out",         L"..\\",      L"out",           L""       },
    row{"the last dot counts",   L"a.csv.txt",       L"",          L"a.csv.txt",     L".txt"   },
    row{"a dot at the end",      L"dir/out.",        L"dir/",      L"out.",          L"."      },
    row{"two dots at the end",   L"out..",           L"",          L"out..",         L"."      },
    row{"the extension alone",   L"dir/.csv",        L"dir/",      L".csv",          L".csv"   },
    row{"capitals",              L"OUT.CSV",         L"",          L"OUT.CSV",       L".csv"   },
    row{"mixed case",            L"Dir\\Out.XlSx",   L"Dir\\",     L"Out.XlSx",      L".xlsx"  },
    row{"blanks stay",           L"a b/c d.e f ",    L"a b/",      L"c d.e f ",      L".e f "  },
    row{"Cyrillic capitals",     L"d/\u0422.\u0411", L"d/",        L"\u0422.\u0411", L".\u0431"},
    row{"a plain capital I",     L"t.MICRO",         L"",          L"t.MICRO",       L".micro" },
    row{"the Turkish capital I", L"t.\u0130",        L"",          L"t.\u0130",      L".\u0130"},
    row{"the dotless i",         L"t.\u0131",        L"",          L"t.\u0131",      L".\u0131"},
    row{"full-width letters",    L"t.\uFF23",        L"",          L"t.\uFF23",      L".\uFF43"},
    row{"a fraction slash",      L"a\u2044b",        L"",          L"a\u2044b",      L""       },
    row{"a division slash",      L"a\u2215b",        L"",          L"a\u2215b",      L""       },
    row{"another full stop",     L"a\u3002b",        L"",          L"a\u3002b",      L""       },
};

TEST(pathNames, parts) {
  for (const row& r : rows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    EXPECT_EQ(printable(tableRW::folderOf(r.path)), printable(r.folder));
    EXPECT_EQ(printable(tableRW::fileNameOf(r.path)), printable(r.fileName));
    EXPECT_EQ(printable(tableRW::extensionOf(r.path)), printable(r.extension));
  }
}

TEST(pathNames, folderAndNameAreTheWholePath) {
  for (const row& r : rows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    EXPECT_EQ(printable(tableRW::folderOf(r.path) + tableRW::fileNameOf(r.path)),
              printable(r.path));
  }
}

struct joinRow {
  const char* name;
  std::initializer_list<std::wstring_view> parts;
  std::wstring path;
  int line = __builtin_LINE();
};

// clang-format off
const joinRow joinRows[] = {
    joinRow{"nothing", {}, L""},
    joinRow{"empty parts alone", {L"", L""}, L""},
    joinRow{"a container", {L"D:\\proj", L"_base", L"base.log"}, L"D:\\proj\\_base\\base.log"},
    joinRow{"an empty container", {L"", L"_base", L"base.log"}, L"_base\\base.log"},
    joinRow{"an empty part between", {L"Proj\\", L"", L"W-12"}, L"Proj\\W-12"},
    joinRow{"a backslash at the end is enough", {L"a\\", L"b"}, L"a\\b"},
    joinRow{"a slash at the end is enough", {L"a/", L"b"}, L"a/b"},
    joinRow{"a backslash even behind slashes", {L"/a/b", L"c"}, L"/a/b\\c"},
    joinRow{"a part with a backslash first replaces", {L"a", L"\\b", L"c"}, L"\\b\\c"},
    joinRow{"a part with a slash first replaces", {L"a", L"/b"}, L"/b"},
    joinRow{"a part with a drive replaces", {L"a", L"C:\\b"}, L"C:\\b"},
    joinRow{"any second colon is a drive", {L"a", L"1:b"}, L"1:b"},
    joinRow{"a colon in first place is none", {L"a", L":b"}, L"a\\:b"},
    joinRow{"one character", {L"a", L"b", L"c"}, L"a\\b\\c"},
    joinRow{"a lone separator replaces", {L"a", L"\\", L"b"}, L"\\b"},
    joinRow{"parts keep their own separators", {L"a\\b", L"c/d"}, L"a\\b\\c/d"},
};
// clang-format on

TEST(pathNames, join) {
  for (const joinRow& r : joinRows) {
    const testing::ScopedTrace trace(__FILE__, r.line, r.name);
    EXPECT_EQ(printable(tableRW::joinPath(r.parts)), printable(r.path));
  }
}

}  // namespace
