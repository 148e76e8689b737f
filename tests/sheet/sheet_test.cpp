// Spreadsheets as several programs write them, what their cells show, and files that are refused.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/sheet/number_format.h"
#include "host/sheet/sheet_reader.h"
#include "tests/sheet/zip_bytes.h"
#include "tests/support/table.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv::test {
namespace {

constexpr const char* kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr const char* kStrict = "http://purl.oclc.org/ooxml/spreadsheetml/main";
const std::string kTypes = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
const std::string kStrictTypes = "http://purl.oclc.org/ooxml/officeDocument/relationships/";

// Each row as "1: a|b|c", the cells as shown.
struct Rows : SheetSink {
  bool Row(const SheetRow& row) override {
    if (failure != 0 && row.Number() == failure) throw failure;
    std::string line = std::to_string(row.Number()) + ":";
    for (int column = 1; column <= row.Columns(); ++column)
      line.append(column == 1 ? " " : "|").append(row.Text(column));
    lines.push_back(line);
    if (row.Columns() > 0) last = row.Cell(1), last.text = {};
    return row.Number() != most;
  }
  void TakeBack() noexcept override { lines.assign(1, "taken back"); }
  std::vector<std::string> lines;
  SheetCell last;
  int most = 0, failure = 0;
};

// A book whose second tab is the first that is visible. Elements stand under `prefix`.
struct BookFile {
  std::string data;          // rows
  std::string xfs = "";      // of the cells' styles
  std::string formats = "";  // numFmt elements
  std::string texts = "";    // si elements
  std::string prefix = "";
  std::string target = "worksheets/sheet2.xml";
  std::string workbook_attributes = "";
  bool strict = false, rels = true;

  Parts Make() const {
    const std::string p = prefix.empty() ? "" : prefix + ":", types = strict ? kStrictTypes : kTypes;
    const std::string xml = "<?xml version=\"1.0\"?>", uri = strict ? kStrict : kMain;
    const std::string space =
        prefix.empty() ? " xmlns=\"" + uri + "\"" : " xmlns:" + prefix + "=\"" + uri + "\"";
    const auto relations = [&](const std::string& list) {
      return xml + "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
             list + "</Relationships>";
    };
    const auto relation = [&](const std::string& id, const std::string& type, const std::string& to) {
      return "<Relationship Id=\"" + id + "\" Type=\"" + types + type + "\" Target=\"" + to + "\"/>";
    };
    Parts parts;
    if (rels)
      parts.emplace_back("_rels/.rels", relations(relation("a", "officeDocument", "xl/workbook.xml")));
    parts.emplace_back(
        "xl/workbook.xml",
        xml + "<" + p + "workbook" + space + " xmlns:r=\"" + types.substr(0, types.size() - 1) + "\"><" + p +
            "workbookPr" + workbook_attributes + "/><" + p + "sheets><" + p +
            "sheet name=\"Oculta\" sheetId=\"1\" state=\"hidden\" r:id=\"r1\"/><" + p +
            "sheet name=\"Vendas\" sheetId=\"2\" r:id=\"r2\"/></" + p + "sheets></" + p + "workbook>");
    parts.emplace_back(
        "xl/_rels/workbook.xml.rels",
        relations(relation("r1", "worksheet", "worksheets/sheet1.xml") + relation("r2", "worksheet", target) +
                  (rels ? relation("r3", "sharedStrings", "sharedStrings.xml") +
                              relation("r4", "styles", "/xl/styles.xml")
                        : "")));
    parts.emplace_back("xl/worksheets/sheet2.xml", xml + "<" + p + "worksheet" + space + "><" + p +
                                                       "sheetData>" + data + "</" + p + "sheetData></" + p +
                                                       "worksheet>");
    if (!xfs.empty()) {
      parts.emplace_back("xl/styles.xml", xml + "<" + p + "styleSheet" + space + "><numFmts>" + formats +
                                              "</numFmts><cellStyleXfs><xf numFmtId=\"9\"/></cellStyleXfs><" +
                                              p + "cellXfs>" + xfs + "</" + p + "cellXfs></" + p +
                                              "styleSheet>");
    }
    if (!texts.empty())
      parts.emplace_back("xl/SharedStrings.xml",
                         xml + "<" + p + "sst" + space + ">" + texts + "</" + p + "sst>");
    return parts;
  }
};

std::vector<std::string> Read(const std::string& bytes, Rows rows = {}) {
  SheetReader().Read(bytes, rows);
  return rows.lines;
}

std::string Refusal(const std::string& bytes, Rows rows = {}) {
  try {
    SheetReader().Read(bytes, rows);
  } catch (const UserError& e) {
    return e.what();
  }
  return "";
}

std::string Utf16(const std::string& ascii) {
  std::string text = "\xFF\xFE";
  for (const char c : ascii) text.append(1, c).append(1, '\0');
  return text;
}

TEST(SheetTest, SheetsOfSeveralWritersReadAlike) {
  const std::vector<std::string> expected = {
      "1: Data|Valor|NSU", "2:", "3:", "4: 23/11/2026|1.234,56|12345678901234||VERDADEIRO|#N/D|São & <Cia>"};
  BookFile shared{
      R"(<row r="1" spans="1:7"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c><c r="C1" t="s"><v>2</v></c></row>
         <row r="2"><c r="A2" s="1"/><c r="XFD2" s="2"/></row>
         <row r="4"><c r="A4" s="1"><f>HOJE()</f><v>46349</v></c><c r="B4" s="2"><v>1234.5599999999999</v></c>
         <c r="C4"><v>12345678901234</v></c><c r="E4" t="b"><v>1</v></c><c r="F4" t="e"><v>#N/A</v></c>
         <c r="G4" t="s"><v>3</v></c></row><row r="9"><c r="B9" t="str"><f>""</f><v></v></c></row>)",
      R"(<xf numFmtId="0"/><xf numFmtId="14"/><xf numFmtId="4"/>)"};
  shared.texts =
      "<si><t>Data</t></si><si><r><rPr/><t>Va</t></r><r><t>lor</t></r><rPh sb=\"0\"><t>xx</t></rPh></si>"
      "<si><t>NSU</t></si><si><t>S\xC3\xA3o &amp; _x003C_Cia&gt;</t></si>";
  EXPECT_EQ(Read(ZipBytes(shared.Make())), expected);

  // Without references, with texts in the cells, and with what may be missing.
  BookFile bare{
      R"(<row><c t="inlineStr"><is><t>Data</t></is></c><c t="inlineStr"><is><r><t>Va</t></r><r><t>lor</t></r></is></c>
         <c t="str"><v>NSU</v></c></row><row r="4"><c t="d" s="1"><v>2026-11-23T00:00:00</v></c>
         <c s="2"><v> 1.23456E3 </v></c><c t="n"><v>12345678901234</v></c><c/><c t="b"><v>true</v></c>
         <c t="e"><v>#N/A</v></c><c t="str"><v>S&#227;o &amp; &lt;Cia&gt;</v></c></row>)",
      shared.xfs};
  bare.formats = R"(<numFmt numFmtId="4" formatCode="#,##0.00"/>)";
  bare.target = "/XL/worksheets/./x/../sheet2.xml";
  bare.rels = false;
  EXPECT_EQ(Read(ZipBytes(bare.Make(), ZIP_CM_STORE)), expected);

  BookFile prefixed = bare;
  for (const char* name : {"row", "c", "is", "t", "r", "v"}) {
    for (const char* mark : {"<", "</"}) {
      for (const char* end : {">", " ", "/>"})
        prefixed.data =
            ReplaceAll(prefixed.data, std::string(mark) + name + end, std::string(mark) + "x:" + name + end);
    }
  }
  prefixed.xfs = ReplaceAll(prefixed.xfs, "<xf", "<x:xf");
  prefixed.prefix = "x";
  prefixed.strict = true;
  EXPECT_EQ(Read(ZipBytes(prefixed.Make())), expected);

  // Rows that only their cells name, cells out of order, and each part in another encoding.
  BookFile odd = shared;
  odd.data = ReplaceAll(odd.data, "<row r=\"4\">", "<row>");
  odd.data = ReplaceAll(odd.data, "<c r=\"C4\"><v>12345678901234</v></c>", "");
  odd.data =
      ReplaceAll(odd.data, "</row><row r=\"9\">", "<c r=\"C4\"><v>12345678901234</v></c></row><row r=\"9\">");
  Parts parts = odd.Make();
  for (auto& [name, text] : parts)
    text = name.ends_with("SharedStrings.xml") ? "\xEF\xBB\xBF" + text : Utf16(text);
  for (auto& [name, text] : parts) name = ReplaceAll(name, "/worksheets/", "\\worksheets\\");
  EXPECT_EQ(Read(ZipBytes(parts)), expected);
}

TEST(SheetTest, NumbersAreShownByTheirFormat) {
  for (const auto& c : Table(ORV_FILES "numbers.txt", 3)) {
    const NumberFormat format(c[0]);
    std::string shown;
    EXPECT_FALSE(format.ShowsTime()) << c[0];
    format.Number(std::stod(c[1]), shown);
    EXPECT_EQ(shown, c[2]) << c[0] << " " << c[1];
  }
}

TEST(SheetTest, DaysAreShownByTheirFormatAndEpoch) {
  for (const auto& c : Table(ORV_FILES "days.txt", 4)) {
    const NumberFormat format(c[0]);
    EXPECT_TRUE(format.ShowsTime()) << c[0];
    const auto milliseconds = SerialTime(std::stod(c[1]), c[2] == "1904");
    std::string shown = milliseconds ? "" : "none";
    if (milliseconds) format.Time(*milliseconds, std::stod(c[1]), shown);
    EXPECT_EQ(shown, c[3]) << c[0] << " " << c[1];
  }

  // The value of each kind, and which built-in formats are days.
  std::string xfs;
  for (const int id : {14, 20, 22, 27, 36, 45, 46, 47, 50, 58})
    xfs += "<xf numFmtId=\"" + std::to_string(id) + "\"/>";
  for (int style = 0; style < 11; ++style) {
    BookFile file{"<row><c s=\"" + std::to_string(style) + "\"><v>44887.75</v></c></row>", xfs};
    file.workbook_attributes = " date1904=\"1\"";
    Rows rows;
    SheetReader().Read(ZipBytes(file.Make()), rows);
    EXPECT_EQ(rows.last.kind, style < 10 ? SheetKind::Date : SheetKind::Number) << style;
    EXPECT_EQ(rows.last.number, 44887.75);
    EXPECT_EQ(rows.last.time, style < 10 ? DateTime(Date(2026, 11, 23), 18, 0, 0) : DateTime());
  }
}

TEST(SheetTest, TheSinkEndsTheReadingAndTakesBack) {
  BookFile file{"<row r=\"2\"><c><v>1</v></c></row><row r=\"3\"><c><v>2</v></c></row>"};
  const std::string bytes = ZipBytes(file.Make());
  Rows some;
  some.most = 2;
  EXPECT_EQ(Read(bytes, some), (std::vector<std::string>{"1:", "2: 1"}));
  // What the sink throws goes through the parser unharmed, whatever it is.
  Rows failing;
  failing.failure = 3;
  EXPECT_THROW(SheetReader().Read(bytes, failing), int);
  EXPECT_EQ(failing.lines, std::vector<std::string>{"taken back"});
  // A sheet that proves damaged behind its rows.
  file.data += "<row r=\"3\"/>";
  Rows damaged;
  EXPECT_THROW(SheetReader().Read(ZipBytes(file.Make()), damaged), UserError);
  EXPECT_EQ(damaged.lines, std::vector<std::string>{"taken back"});
}

TEST(SheetTest, WhatCannotBeReadIsRefusedWithItsReason) {
  const std::string ole = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(600, '\0');
  const BookFile good{"<row><c t=\"inlineStr\"><is><t>Valor</t></is></c></row>"};
  const std::string bytes = ZipBytes(good.Make());
  const auto sheet = [&](const std::string& data) { return ZipBytes(BookFile{data}.Make()); };
  const auto with = [&](const std::string& from, const std::string& to) {
    Parts parts = good.Make();
    for (auto& [name, text] : parts) text = ReplaceAll(text, from, to);
    return ZipBytes(parts);
  };
  std::string wide = "<row>", deep, distinct, damaged = bytes;
  for (int i = 0; i < 2000; ++i) wide += "<c><v>1</v></c>";
  for (int i = 0; i < 100; ++i) deep += "<a>";
  for (int i = 0; i < 150'000; ++i) distinct += "<n" + std::to_string(i) + "/>";
  const std::size_t stored = ZipBytes(good.Make(), ZIP_CM_STORE).find("Valor");
  damaged = ZipBytes(good.Make(), ZIP_CM_STORE).replace(stored, 5, "Vapor");
  Parts many = good.Make();
  for (int i = 0; i < 2001; ++i) many.emplace_back("m" + std::to_string(i), "");
  BookFile texts = good;
  for (int i = 0; i < 300; ++i)
    texts.texts += "<si><t>" + std::string(130'000, static_cast<char>('a' + i % 20)) + "</t></si>";
  const std::string bomb = sheet(std::string(12 << 20, ' '));

  const struct {
    const char* what;
    std::string bytes, reason;
  } cases[] = {
      {"empty", "", "vazio"},
      {"text", "Data;Valor\n01/11/2026;1,00\n", "não é uma planilha .xlsx"},
      {"too large", std::string(20 << 20, 'P'), "limite é de 16 MB"},
      {"old format", ole, "formato antigo"},
      {"protected", ole + std::string("E\0n\0c\0r\0y\0p\0t\0e\0d\0P\0a\0c\0k\0a\0g\0e\0", 32), "senha"},
      {"protected parts", ZipBytes(good.Make(), ZIP_CM_DEFLATE, "x"), "senha"},
      {"cut off", bytes.substr(0, bytes.size() / 2), "danificada"},
      {"changed", damaged, "danificada"},
      {"another zip", ZipBytes({{"content.xml", "<a/>"}}), "não contém uma planilha"},
      {"text document", with("<sheet ", "<other "), "não contém uma planilha"},
      {"parts without end", ZipBytes(many), "mais do que pode ser lido"},
      {"no tab", with("name=\"Vendas\"", "state=\"veryHidden\""), "Nenhuma aba"},
      {"no sheet", with("sheet2.xml", "sheet3.xml"), "danificada"},
      {"DOCTYPE", with("?>", "?><!DOCTYPE a [<!ENTITY b \"c\">]>"), "DOCTYPE"},
      {"not well formed", sheet("<row><c></row>"), "danificada"},
      {"unknown text", sheet("<row><c t=\"s\"><v>0</v></c></row>"), "danificada"},
      {"rows out of order", sheet("<row r=\"2\"/><row r=\"1\"/>"), "danificada"},
      {"row beyond", sheet("<row r=\"1048577\"/>"), "linhas demais"},
      {"wide", sheet(wide + "</row>"), "colunas demais"},
      {"column beyond", sheet("<row><c r=\"ZZZZZZZZZ1\"><v>1</v></c></row>"), "colunas demais"},
      {"deep", sheet(deep), "mais do que pode ser lido"},
      {"names without end", sheet(distinct), "mais do que pode ser lido"},
      {"long tag", sheet("<!--" + std::string(3 << 20, 'x') + "-->"), "mais do que pode ser lido"},
      {"long text", sheet("<row><c t=\"str\"><v>" + std::string(140'000, 'x') + "</v></c></row>"),
       "mais do que"},
      {"texts without end", ZipBytes(texts.Make()), "mais do que pode ser lido"},
      {"2 GB told", TellSize(bytes, 3, 0x7FFFFFFF), "mais do que pode ser lido"},
      {"bomb", bomb, "mais do que pode ser lido"},
      {"bomb that tells little", TellSize(bomb, 3, 5000), "danificada"},
  };
  for (const auto& [what, file, reason] : cases)
    EXPECT_TRUE(Refusal(file).find(reason) != std::string::npos) << what << ": " << Refusal(file);

  const std::string path = testing::TempDir() + "planilha-" + std::to_string(getpid()) + ".xlsx";
  std::ofstream(path, std::ios::binary) << bytes;
  Rows rows;
  SheetReader().Read(*InputFile::Open(AT_FDCWD, path, false), rows);
  EXPECT_EQ(rows.lines, std::vector<std::string>{"1: Valor"});
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace orv::test
