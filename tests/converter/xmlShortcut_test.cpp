// Rows and strings that are taken from the bytes, against the parser alone: whatever the document, the outcome
// must be the same.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/reference/xmlTwin.h"

namespace {

using namespace std::string_literals;

using reading = reference::xmlOutcome (*)(const std::string&, const std::vector<std::size_t>&,
                                          bool);

/// @return what the shortcut took
std::size_t expectSame(reading read, const std::string& document,
                       const std::vector<std::size_t>& sizes) {
  const reference::xmlOutcome whole = read(document, sizes, false);
  const reference::xmlOutcome quick = read(document, sizes, true);
  EXPECT_EQ(reference::difference(whole, quick), "") << document;
  return quick.taken;
}

/// Documents of fragments, most of them plain.
class documentMaker {
 public:
  explicit documentMaker(unsigned seed) : numbers_(seed) {}

  std::size_t number(std::size_t below) { return numbers_() % below; }
  template <class Value = std::string>
  Value oneOf(const std::vector<Value>& values) {
    return values[number(values.size())];
  }
  bool isRare() { return number(rarity_) == 0; }

  std::string text() {
    std::string made;
    for (std::size_t i = number(4); i > 0; --i)
      made += isRare()
                  ? oneOf(rareTexts)
                  : oneOf<std::string>({"a", "12", "Скв", "$", " ", "0.5", "\"", "–", "\n", "1"});
    return made;
  }
  std::string attribute(const std::string& name, const std::string& value) {
    if (isRare())
      return oneOf<std::string>(
          {" " + name + "='" + value + "'", "  " + name + "=\"" + value + "\"",
           "\n" + name + " = \"" + value + "\"", " x:" + name + "=\"" + value + "\"",
           name + "=\"" + value + "\"", " " + name + "=\"" + oneOf(rareTexts) + "\""});
    return " " + name + "=\"" + value + "\"";
  }
  std::string blanks() {
    return isRare() ? oneOf<std::string>({" ", "\n", "\r\n ", "\t", "\r"}) : ""s;
  }

  std::string cell() {
    std::string made = "<c";
    if (!isRare())
      made +=
          attribute("r", isRare() ? oneOf<std::string>({"XFE1", "A0", "A1048577", "1A", "", "A 1"})
                                  : oneOf<std::string>({"A", "B", "C", "XFD", "d"}) +
                                        std::to_string(number(12) + 1));
    if (isRare())
      made += attribute(oneOf<std::string>({"s", "cm", "r", "xml:space"}),
                        oneOf<std::string>({"1", "2", "9", "x", ""}));
    const bool isShared = number(3) == 0;
    if (isShared) made += attribute("t", "s");
    if (!isShared && number(3) == 0)
      made += attribute("t", oneOf<std::string>({"str", "b", "e", "d", "n", "inlineStr", "?"}));
    if (isRare()) return made + oneOf<std::string>({"/>", " />", "/ >", "></c>", "></c >"});
    made += ">" + blanks();
    if (isRare())
      made += oneOf<std::string>({"<f>A1+1</f>", "<f t=\"shared\" si=\"0\"/>", "<f>A1&lt;2</f>",
                                  "<f/>", "<f><v>1</v></f>"});
    if (isRare())
      made += "<is><t" + attribute("xml:space", "preserve") + ">" + text() + "</t></is>";
    if (isRare()) made += "<is><r><t>" + text() + "</t></r><rPh><t>x</t></rPh></is>";
    if (!isRare())
      made += "<v>" +
              ((isShared ? isRare() : number(3) == 0) ? text() : std::to_string(number(4))) +
              "</v>";
    if (isRare())
      made += oneOf<std::string>({"<v>2</v>", "<v/>", "<y:v xmlns:y=\"y\">7</y:v>", "<extLst/>",
                                  "<extLst><v>7</v></extLst>", "<!-- <v>1</v> -->", "<![CDATA[1]]>",
                                  "<?x?>"});
    return made + blanks() + "</c>";
  }
  std::string row() {
    std::string made = "<row";
    if (!isRare())
      made += attribute("r", isRare() ? oneOf<std::string>({"0", "x", "1048577", "4294967297"})
                                      : std::to_string(number(9) + 1));
    if (isRare())
      made += attribute(oneOf<std::string>({"spans", "ht", "r", "x14ac:dyDescent", "xmlns"}),
                        oneOf<std::string>({"1:3", "2"}));
    if (isRare()) return made + "/>";
    made += ">";
    for (std::size_t i = number(5); i > 0; --i) made += blanks() + cell();
    return made + blanks() + "</row>" + blanks();
  }
  std::string item() {
    if (isRare())
      return oneOf<std::string>({"<si/>", "<si><t/></si>", "<si></si>",
                                 "<si><r><t>a</t></r><r><t>b</t></r></si>",
                                 "<si><t>a</t><rPh><t>b</t></rPh></si>", "<si ><t>c</t></si>"});
    return blanks() + "<si><t" + (isRare() ? attribute("xml:space", "preserve") : ""s) + ">" +
           text() + "</t></si>";
  }

  std::string sheet() {
    rarity_ = oneOf<std::size_t>({8, 20, 60, 200});
    std::string made = prolog() + oneOf<std::string>({"<worksheet>", "<worksheet xmlns=\"m\">"}) +
                       "<sheetData" + oneOf<std::string>({">", ">", ">", " >", " a=\"b\">"});
    for (std::size_t i = number(12); i > 0; --i) {
      made += row();
      if (isRare()) made += oneOf(betweenRows);
    }
    made += "</sheetData><mergeCells><mergeCell ref=\"A1:B2\"/></mergeCells>";
    if (isRare()) made += "<sheetData>" + row() + "</sheetData>";
    return damaged(made + "</worksheet>");
  }
  std::string strings() {
    rarity_ = oneOf<std::size_t>({8, 20, 60});
    std::string made = prolog() + "<sst>";
    for (std::size_t i = number(20); i > 0; --i) made += item();
    return damaged(made + "</sst>");
  }

  std::vector<std::size_t> sizes() {
    std::vector<std::size_t> made(1 + number(3));
    for (std::size_t& size : made) size = 1 + number(number(2) == 0 ? 20 : 300);
    return made;
  }

 private:
  std::string prolog() {
    if (number(4) != 0) return "";
    return oneOf<std::string>(
        {"<?xml version=\"1.0\"?>\n", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
         "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n",
         "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>",
         "<?xml version=\"1.0\" encoding=\"US-ASCII\"?>",
         "<!DOCTYPE worksheet [<!ATTLIST c t CDATA \"str\">]>", "\xEF\xBB\xBF"});
  }
  std::string damaged(std::string document) {
    if (number(3) != 0) return document;
    for (std::size_t i = 1 + number(2); i > 0; --i) {
      const std::size_t at = number(document.size());
      if (number(2) == 0)
        document.erase(at, number(4));
      else
        document[at] = oneOf<std::string>(
            {"<", ">", "&", "\"", "/", "\xFF", "\xD0", " ", "\x01", "c", "]"})[0];
    }
    if (number(9) == 0) document.resize(number(document.size()) + 1);
    return document;
  }

  std::mt19937 numbers_;
  std::size_t rarity_ = 20;
  std::vector<std::string> rareTexts = {
      "&amp;",        "&#x41;",       "&bad;",        "<![CDATA[<v>]]>", "\r",
      "\r\n",         "\t",           "]]>",          "_x0041_",         "\xF0\x9F\x98\x80",
      "\xED\xA0\x80", "\xEF\xBF\xBE", "\xEF\xBF\xBD", "\xC0\x80",        "\xC2\xA0",
      "\x7F",         "\x01",         "\xE2\x82",     "<!-- -->",        "\0"s};
  std::vector<std::string> betweenRows = {"<!-- <row r=\"3\"><c><v>1</v></c></row> -->",
                                          "<![CDATA[<row></row>]]>",
                                          "<?x </row>?>",
                                          "text </row>",
                                          "<x><row><c><v>7</v></c></row></x>",
                                          "<Choice><row><c><v>8</v></c></row></Choice>",
                                          "<row/><!-- </row>\n<row><c><v>9</v></c></row> -->",
                                          "<x:row><c><v>6</v></c></x:row>",
                                          "\n\n"};
};

unsigned seed(unsigned usual) {
  const char* const other = std::getenv("VOK_TEST_SEED");  // a long run tries many
  return other == nullptr ? usual : static_cast<unsigned>(std::strtoul(other, nullptr, 10)) + usual;
}

TEST(xmlShortcut, everySheetIsReadAsTheParserReadsIt) {
  documentMaker maker(seed(17));
  std::size_t taken = 0;
  std::size_t size = 0;
  for (int i = 0; i < 6000 && !HasFailure(); ++i) {
    const std::string document = maker.sheet();
    taken += expectSame(reference::readSheetXml, document, maker.sizes());
    size += document.size();
  }
  EXPECT_GT(taken, size / 20);  // it is the shortcut that was tried
}

TEST(xmlShortcut, everyListOfStringsIsReadAsTheParserReadsIt) {
  documentMaker maker(seed(18));
  std::size_t taken = 0;
  std::size_t size = 0;
  for (int i = 0; i < 6000 && !HasFailure(); ++i) {
    const std::string document = maker.strings();
    taken += expectSame(reference::readStringsXml, document, maker.sizes());
    size += document.size();
  }
  EXPECT_GT(taken, size / 20);
}

struct plainCase {
  const char* name;
  const char* row;
  bool isTaken;
};

// The forms of the usual programs must be taken, or the speed is gone without anybody noticing.
const plainCase plainCases[] = {
    {"numbers",
     R"(<row r="2" spans="1:3" x14ac:dyDescent="0.25"><c r="A2" s="1"><v>1.5</v></c></row>)",                        true },
    {"shared strings",
     R"(<row r="2"><c r="A2" t="s"><v>1</v></c><c r="B2" s="2" t="s"><v>0</v></c></row>)",                           true },
    {"formulas",
     R"(<row r="2"><c r="A2" t="str"><f>B2+1</f><v>да</v></c><c r="B2"><f t="shared" si="0"/><v>1</v></c></row>)",
     true                                                                                                                 },
    {"empty cells",                            R"(<row r="2"><c r="A2" s="1"/><c r="B2"/></row>)",                   true },
    {"empty rows",                             R"(<row r="2" ht="15"/>)",                                            true },
    {"inline text",
     R"(<row r="2"><c r="A2" t="inlineStr"><is><t xml:space="preserve"> a </t></is></c></row>)",                     true },
    {"no references",                          "<row><c><v>1</v></c><c><v>2</v></c></row>",                          true },
    {"lines",                                  "\n  <row r=\"2\">\r\n    <c r=\"A2\">\n <v>1</v>\n</c>\n</row>",     true },
    {"a reference to a character",             R"(<row r="2"><c r="A2" t="str"><v>a&amp;b</v></c></row>)",
     false                                                                                                                },
    {"characters of three bytes",
     "<row r=\"2\"><c r=\"A2\" t=\"str\"><v>\xE1\x80\x80\xEC\x80\x80\xEE\x80\x80</v></c></row>",                     true },
    {"a character cut behind its first byte",
     "<row r=\"2\"><c r=\"A2\" t=\"str\"><v>\xE2</v></c></row>",                                                     false},
    {"a character cut behind its second byte",
     "<row r=\"2\"><c r=\"A2\" t=\"str\"><v>\xE2\x82</v></c></row>",                                                 false},
    {"attributes of all names",                R"(<row r="2" Za="1" _b="2" :c="3" d-e.f0="4"/>)",                    true },
    {"sixteen attributes",
     R"(<row r="2" a="" b="" c="" d="" e="" f="" g="" h="" i="" j="" k="" l="" m="" n="" o=""/>)",                   true },
    {"seventeen attributes",
     R"(<row r="2" a="" b="" c="" d="" e="" f="" g="" h="" i="" j="" k="" l="" m="" n="" o="" p=""/>)",
     false                                                                                                                },
    {"a name that begins with a brace",        R"(<row r="2" {a="1"/>)",                                             false},
    {"a name that begins with a digit",        R"(<row r="2" 1a="1"/>)",                                             false},
    {"two values",                             R"(<row r="2"><c r="A2"><v>1</v><v>2</v></c></row>)",                 false},
    {"two formulas",                           R"(<row r="2"><c r="A2"><f>1</f><f>2</f><v>3</v></c></row>)",         false},
    {"inline text behind a value",
     R"(<row r="2"><c r="A2" t="inlineStr"><v>1</v><is><t>a</t></is></c></row>)",                                    false},
    {"inline text without any",                R"(<row r="2"><c r="A2" t="inlineStr"><is><t/></is></c></row>)",
     false                                                                                                                },
    {"inline text of nothing",                 R"(<row r="2"><c r="A2" t="inlineStr"><is><t></t></is></c></row>)",
     true                                                                                                                 },
    {"inline text with single quotes",
     R"(<row r="2"><c r="A2" t="inlineStr"><is><t xml:space='preserve'>a</t></is></c></row>)",                       false},
    {"an extension of a cell",
     R"(<row r="2"><c r="A2"><v>2</v><extLst><ext><v>77</v></ext></extLst></c></row>)",                              false},
    {"another namespace",                      R"(<row r="2" xmlns="y"><c r="A2"><v>1</v></c></row>)",               false},
    {"a prefix",                               R"(<x:row r="2"><x:c r="A2"><x:v>1</x:v></x:c></x:row>)",             false},
    {"a cell twice",                           R"(<row r="2"><c r="A2" r="A2"><v>1</v></c></row>)",                  false},
};

TEST(xmlShortcut, whatItTakes) {
  for (const plainCase& each : plainCases) {
    SCOPED_TRACE(each.name);
    const std::string begin = "<worksheet xmlns:x=\"y\"><sheetData>";
    const std::string row = each.row;
    const std::size_t taken =
        expectSame(reference::readSheetXml, begin + row + row + "</sheetData></worksheet>",
                   {begin.size(), row.size(), 1000});
    EXPECT_EQ(taken, each.isTaken ? 2 * row.size() : 0u);
  }
}

}  // namespace
