#include "table_rw/writers/xlsx/styles.h"

namespace SimpleXlsx {

// FORMAT: the first two fills are the program's own whatever stands there, so both have to be here.
void writeStyles(xmlPart& part) {
  part.raw(
      R"(<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")"
      R"( xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006" mc:Ignorable="x14ac")"
      R"( xmlns:x14ac="http://schemas.microsoft.com/office/spreadsheetml/2009/9/ac">)"
      R"(<fonts count="1" x14ac:knownFonts="1"><font><sz val="11"/><color theme="1"/>)"
      R"(<name val="Calibri"/><family val="2"/><scheme val="minor"/></font></fonts>)"
      R"(<fills count="2"><fill><patternFill patternType="none"/></fill>)"
      R"(<fill><patternFill patternType="gray125"/></fill></fills>)"
      R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
      R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)"
      R"(<cellXfs count="2"><xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>)"
      R"(<xf numFmtId="14" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/></cellXfs>)"
      R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>)"
      R"(<dxfs count="0"/><tableStyles count="0" defaultTableStyle="TableStyleMedium2")"
      R"( defaultPivotStyle="PivotStyleLight16"/><extLst>)"
      R"(<ext uri="{EB79DEF2-80B8-43e5-95BD-54CBDDF9020C}")"
      R"( xmlns:x14="http://schemas.microsoft.com/office/spreadsheetml/2009/9/main">)"
      R"(<x14:slicerStyles defaultSlicerStyle="SlicerStyleLight1"/></ext></extLst></styleSheet>)");
}

}  // namespace SimpleXlsx
