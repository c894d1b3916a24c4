#include "table_rw/writers/xlsx/appProperties.h"

#include <cstdint>

namespace SimpleXlsx {
namespace {

constexpr std::uint64_t chartCount = 0;  // this package has no chart sheets

void element(xmlPart& part, const char* name, std::wstring_view text) {
  part.start(name).text(text).end();
}

// A kind of sheet and how many there are.
void headingPair(xmlPart& part, std::wstring_view kind, std::uint64_t count) {
  part.start("vt:variant");
  element(part, "vt:lpstr", kind);
  part.end();
  part.start("vt:variant").start("vt:i4").text(count).end().end();
}

}  // namespace

void writeAppProperties(xmlPart& part, const std::vector<std::wstring>& titles) {
  part.start("Properties")
      .attribute("xmlns",
                 "http://schemas.openxmlformats.org/officeDocument/2006/extended-properties")
      .attribute("xmlns:vt",
                 "http://schemas.openxmlformats.org/officeDocument/2006/docPropsVTypes");
  element(part, "Application", L"Microsoft Excel");
  element(part, "DocSecurity", L"0");
  element(part, "ScaleCrop", L"false");
  part.start("HeadingPairs")
      .start("vt:vector")
      .attribute("size", 4)
      .attribute("baseType", "variant");
  headingPair(part, L"Worksheets", titles.size());
  headingPair(part, L"Diagramms", chartCount);
  part.end().end();
  part.start("TitlesOfParts")
      .start("vt:vector")
      .attribute("size", titles.size())
      .attribute("baseType", "lpstr");
  for (const std::wstring& title : titles) element(part, "vt:lpstr", title);
  part.end().end();
  element(part, "Company", L"");
  element(part, "LinksUpToDate", L"false");
  element(part, "SharedDoc", L"false");
  element(part, "HyperlinksChanged", L"false");
  element(part, "AppVersion", L"14.0300");
  part.end();
}

}  // namespace SimpleXlsx
