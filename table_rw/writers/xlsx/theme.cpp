#include "table_rw/writers/xlsx/theme.h"

#include <string>

namespace SimpleXlsx {
namespace {

struct namedColour {
  const char* name;
  const char* value;
};

constexpr namedColour colours[] = {
    {"a:dk2",      "1F497D"},
    {"a:lt2",      "EEECE1"},
    {"a:accent1",  "4F81BD"},
    {"a:accent2",  "C0504D"},
    {"a:accent3",  "9BBB59"},
    {"a:accent4",  "8064A2"},
    {"a:accent5",  "4BACC6"},
    {"a:accent6",  "F79646"},
    {"a:hlink",    "0000FF"},
    {"a:folHlink", "800080"},
};

struct scriptFont {
  const char* script;
  const wchar_t* major;
  const wchar_t* minor;
};

// The fonts that stand in for scripts which the Latin one lacks.
constexpr scriptFont scriptFonts[] = {
    {"Jpan", L"\xFF2D\xFF33 \xFF30\x30B4\x30B7\x30C3\x30AF",
     L"\xFF2D\xFF33 \xFF30\x30B4\x30B7\x30C3\x30AF"                                      },
    {"Hang", L"\xB9D1\xC740 \xACE0\xB515",                   L"\xB9D1\xC740 \xACE0\xB515"},
    {"Hans", L"\x5B8B\x4F53",                                L"\x5B8B\x4F53"             },
    {"Hant", L"\x65B0\x7D30\x660E\x9AD4",                    L"\x65B0\x7D30\x660E\x9AD4" },
    {"Arab", L"Times New Roman",                             L"Arial"                    },
    {"Hebr", L"Times New Roman",                             L"Arial"                    },
    {"Thai", L"Tahoma",                                      L"Tahoma"                   },
    {"Viet", L"Times New Roman",                             L"Arial"                    },
};

constexpr const char* latinFont = "Cambria";

void writeColours(xmlPart& part) {
  part.start("a:clrScheme").attribute("name", "Office");
  part.start("a:dk1").start("a:sysClr").attribute("val", "windowText");
  part.attribute("lastClr", "000000").end().end();
  part.start("a:lt1").start("a:sysClr").attribute("val", "window");
  part.attribute("lastClr", "FFFFFF").end().end();
  for (const namedColour& colour : colours)
    part.start(colour.name).start("a:srgbClr").attribute("val", colour.value).end().end();
  part.end();
}

void writeFonts(xmlPart& part, const char* kind, const wchar_t* scriptFont::*font) {
  part.start(kind);
  part.start("a:latin").attribute("typeface", latinFont).end();
  part.start("a:ea").attribute("typeface", "").end();
  part.start("a:cs").attribute("typeface", "").end();
  for (const scriptFont& each : scriptFonts)
    part.start("a:font")
        .attribute("script", each.script)
        .attribute("typeface", std::wstring_view(each.*font))
        .end();
  part.end();
}

// The standard fills, lines and effects: each of them three times, subtle to intense.
constexpr std::string_view formatScheme =
    R"(<a:fmtScheme name="Office"><a:fillStyleLst><a:solidFill><a:schemeClr val="phClr"/></a:solidFill>)"
    R"(<a:gradFill rotWithShape="1"><a:gsLst>)"
    R"(<a:gs pos="0"><a:schemeClr val="phClr"><a:tint val="50000"/><a:satMod val="300000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="35000"><a:schemeClr val="phClr"><a:tint val="37000"/><a:satMod val="300000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="100000"><a:schemeClr val="phClr"><a:tint val="15000"/><a:satMod val="350000"/></a:schemeClr></a:gs>)"
    R"(</a:gsLst><a:lin ang="16200000" scaled="1"/></a:gradFill>)"
    R"(<a:gradFill rotWithShape="1"><a:gsLst>)"
    R"(<a:gs pos="0"><a:schemeClr val="phClr"><a:shade val="51000"/><a:satMod val="130000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="80000"><a:schemeClr val="phClr"><a:shade val="93000"/><a:satMod val="130000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="100000"><a:schemeClr val="phClr"><a:shade val="94000"/><a:satMod val="135000"/></a:schemeClr></a:gs>)"
    R"(</a:gsLst><a:lin ang="16200000" scaled="0"/></a:gradFill></a:fillStyleLst><a:lnStyleLst>)"
    R"(<a:ln w="9525" cap="flat" cmpd="sng" algn="ctr"><a:solidFill><a:schemeClr val="phClr">)"
    R"(<a:shade val="95000"/><a:satMod val="105000"/></a:schemeClr></a:solidFill><a:prstDash val="solid"/></a:ln>)"
    R"(<a:ln w="25400" cap="flat" cmpd="sng" algn="ctr"><a:solidFill><a:schemeClr val="phClr"/></a:solidFill>)"
    R"(<a:prstDash val="solid"/></a:ln>)"
    R"(<a:ln w="38100" cap="flat" cmpd="sng" algn="ctr"><a:solidFill><a:schemeClr val="phClr"/></a:solidFill>)"
    R"(<a:prstDash val="solid"/></a:ln></a:lnStyleLst><a:effectStyleLst>)"
    R"(<a:effectStyle><a:effectLst><a:outerShdw blurRad="40000" dist="20000" dir="5400000" rotWithShape="0">)"
    R"(<a:srgbClr val="000000"><a:alpha val="38000"/></a:srgbClr></a:outerShdw></a:effectLst></a:effectStyle>)"
    R"(<a:effectStyle><a:effectLst><a:outerShdw blurRad="40000" dist="23000" dir="5400000" rotWithShape="0">)"
    R"(<a:srgbClr val="000000"><a:alpha val="35000"/></a:srgbClr></a:outerShdw></a:effectLst></a:effectStyle>)"
    R"(<a:effectStyle><a:effectLst><a:outerShdw blurRad="40000" dist="23000" dir="5400000" rotWithShape="0">)"
    R"(<a:srgbClr val="000000"><a:alpha val="35000"/></a:srgbClr></a:outerShdw></a:effectLst>)"
    R"(<a:scene3d><a:camera prst="orthographicFront"><a:rot lat="0" lon="0" rev="0"/></a:camera>)"
    R"(<a:lightRig rig="threePt" dir="t"><a:rot lat="0" lon="0" rev="1200000"/></a:lightRig></a:scene3d>)"
    R"(<a:sp3d><a:bevelT w="63500" h="25400"/></a:sp3d></a:effectStyle></a:effectStyleLst><a:bgFillStyleLst>)"
    R"(<a:solidFill><a:schemeClr val="phClr"/></a:solidFill><a:gradFill rotWithShape="1"><a:gsLst>)"
    R"(<a:gs pos="0"><a:schemeClr val="phClr"><a:tint val="40000"/><a:satMod val="350000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="40000"><a:schemeClr val="phClr"><a:tint val="45000"/><a:shade val="99000"/>)"
    R"(<a:satMod val="350000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="100000"><a:schemeClr val="phClr"><a:shade val="20000"/><a:satMod val="255000"/></a:schemeClr></a:gs>)"
    R"(</a:gsLst><a:path path="circle"><a:fillToRect l="50000" t="-80000" r="50000" b="180000"/></a:path></a:gradFill>)"
    R"(<a:gradFill rotWithShape="1"><a:gsLst>)"
    R"(<a:gs pos="0"><a:schemeClr val="phClr"><a:tint val="80000"/><a:satMod val="300000"/></a:schemeClr></a:gs>)"
    R"(<a:gs pos="100000"><a:schemeClr val="phClr"><a:shade val="30000"/><a:satMod val="200000"/></a:schemeClr></a:gs>)"
    R"(</a:gsLst><a:path path="circle"><a:fillToRect l="50000" t="50000" r="50000" b="50000"/></a:path></a:gradFill>)"
    R"(</a:bgFillStyleLst></a:fmtScheme>)";

}  // namespace

void writeTheme(xmlPart& part) {
  part.start("a:theme")
      .attribute("xmlns:a", "http://schemas.openxmlformats.org/drawingml/2006/main")
      .attribute("name", "Office Theme");
  part.start("a:themeElements");
  writeColours(part);
  part.start("a:fontScheme").attribute("name", "Office");
  writeFonts(part, "a:majorFont", &scriptFont::major);
  writeFonts(part, "a:minorFont", &scriptFont::minor);
  part.end();
  part.raw(formatScheme);
  part.end();
  part.start("a:objectDefaults").end();
  part.start("a:extraClrSchemeLst").end();
  part.end();
}

}  // namespace SimpleXlsx
