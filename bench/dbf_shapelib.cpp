// shapelib on the same files: dbf_shapelib read FILE | write FILE OUT
//
//   read   every value as text, appended to one arena with one end offset each
//   write  every value, held as text, written as it is (DBFWriteAttributeDirectly)
#include <shapefil.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "report.h"

namespace {

struct arena {
  std::vector<char> bytes;
  std::vector<std::uint32_t> ends;
};

void readTable(DBFHandle table, arena& values) {
  const int fields = DBFGetFieldCount(table);
  const int records = DBFGetRecordCount(table);
  for (int record = 0; record < records; ++record) {
    for (int field = 0; field < fields; ++field) {
      const char* const text = DBFReadStringAttribute(table, record, field);
      values.bytes.insert(values.bytes.end(), text, text + std::strlen(text));
      values.ends.push_back(static_cast<std::uint32_t>(values.bytes.size()));
    }
  }
}

DBFHandle openTable(const char* name) {
  const DBFHandle table = DBFOpen(name, "rb");
  if (table == nullptr) bench::fail("cannot be read", name);
  return table;
}

void measureRead(const char* name) {
  arena values;
  values.bytes.reserve(std::filesystem::file_size(name));
  const bench::stopwatch watch;
  const DBFHandle table = openTable(name);
  values.ends.reserve(static_cast<std::size_t>(DBFGetRecordCount(table)) *
                      static_cast<std::size_t>(DBFGetFieldCount(table)));
  readTable(table, values);
  bench::report("shapelib", watch.seconds(),
                {
                    {"rows",   static_cast<std::uint64_t>(DBFGetRecordCount(table))},
                    {"values", values.ends.size()                                  }
  });
  bench::leave();
}

void measureWrite(const char* name, const char* target) {
  const DBFHandle source = openTable(name);
  arena values;
  readTable(source, values);
  const int fields = DBFGetFieldCount(source);
  const int records = DBFGetRecordCount(source);
  std::vector<std::string> texts;
  std::size_t begin = 0;
  for (const std::uint32_t end : values.ends) {
    texts.emplace_back(values.bytes.data() + begin, end - begin);
    begin = end;
  }
  std::filesystem::remove(target);
  const bench::stopwatch watch;
  const DBFHandle table = DBFCreateEx(target, "LDID/201");
  for (int field = 0; field < fields; ++field) {
    char title[12];
    int width = 0;
    int decimals = 0;
    const DBFFieldType type = DBFGetFieldInfo(source, field, title, &width, &decimals);
    DBFAddField(table, title, type, width, decimals);
  }
  std::size_t next = 0;
  for (int record = 0; record < records; ++record)
    for (int field = 0; field < fields; ++field)
      DBFWriteAttributeDirectly(table, record, field, texts[next++].data());
  DBFClose(table);
  bench::report("shapelib-write", watch.seconds(),
                {
                    {"rows",    static_cast<std::uint64_t>(records)},
                    {"written", std::filesystem::file_size(target) }
  });
  bench::leave();
}

}  // namespace

int main(int count, char** words) {
  const std::string_view mode = count > 2 ? words[1] : "";
  if (mode == "read" && count == 3) measureRead(words[2]);
  if (mode == "write" && count == 4) measureWrite(words[2], words[3]);
  bench::fail("read FILE | write FILE OUT", words[0]);
}
