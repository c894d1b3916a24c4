#include "table_rw/writers/xlsx/coreProperties.h"

#include <cstdio>
#include <string>

#include "platform/environment.h"

namespace SimpleXlsx {
namespace {

std::string asW3cTime(const platform::calendarTime& time) {
  constexpr std::size_t most = 96;  // six numbers of any size
  char text[most];
  std::snprintf(text, most, "%4d-%02d-%02dT%02d:%02d:%02dZ", time.year, time.month, time.day,
                time.hour, time.minute, time.second);
  return text;
}

}  // namespace

void writeCoreProperties(xmlPart& part, const platform::calendarTime& saved) {
  const std::wstring user = platform::environmentVariable(L"USERNAME").value_or(L"Unknown");
  const std::string time = asW3cTime(saved);
  const std::wstring wideTime(time.begin(), time.end());
  const auto moment = [&](const char* name) {
    part.start(name).attribute("xsi:type", "dcterms:W3CDTF").text(wideTime).end();
  };
  part.start("cp:coreProperties")
      .attribute("xmlns:cp",
                 "http://schemas.openxmlformats.org/package/2006/metadata/core-properties")
      .attribute("xmlns:dc", "http://purl.org/dc/elements/1.1/")
      .attribute("xmlns:dcterms", "http://purl.org/dc/terms/")
      .attribute("xmlns:dcmitype", "http://purl.org/dc/dcmitype/")
      .attribute("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance");
  part.start("dc:creator").text(user).end();
  part.start("cp:lastModifiedBy").text(user).end();
  moment("dcterms:created");
  moment("dcterms:modified");
  part.end();
}

}  // namespace SimpleXlsx
