// A grid as its display orders, narrows, adds up and writes it down, while the set stays as it is.
#include <filesystem>
#include <fstream>

#include "frame/registry.h"
#include "frame/screen.h"
#include "frame/sheet.h"
#include "tests/support/desk_test.h"
#include "toolkit/client_dataset.h"

namespace orv::test {
namespace {

struct TbTitulos : TClientDataSet {
  using TClientDataSet::TClientDataSet;
  Field Nome{*this, "Nome", FieldType::String, 20};
  Field Valor{*this, "Valor", FieldType::Currency};
  Field Data{*this, "Data", FieldType::Date};
  Field Tipo{*this, "Tipo", FieldType::String, 1};
  Field Marca{*this, "Marca", FieldType::String, 1};
  Field Parte{*this, "Parte", FieldType::Float};
};

class TfmTitulos : public Child, SheetSink {
 public:
  explicit TfmTitulos(Application& application)
      : Child(application, "TfmTitulos", "fmTitulos", "Títulos à vista") {
    Titulos.CreateDataSet();
    AddSet(Titulos);
    Layout("EdtTexto / Grade / BtMuda BtLe");
    Grade.FindColumn("Tipo")->words = {{"P", "A pagar"}, {"R", "A receber"}};
    Add("Água", Currency(10), Date(2026, 3, 1), "P", "N");
    Add("banco", Currency::FromCents(-550), Date(2026, 1, 15), "R", "S");
    Add("abacate", Currency::FromCents(123450), Date(), "P", "N");
    Add("=1+1", Currency(), Date(2026, 2, 10), "R", "N");
    Add("Ção", {}, Date(2026, 1, 15), "X", "S");
    BtMuda.OnClick = [this] {
      Titulos.First();
      Titulos.Delete();
      Add("Dado", Currency(-100), Date(2026, 5, 1), "P", "N");
    };
    BtLe.OnClick = [this] {
      Owner().Sheets().Read(User().OpenPath(EdtTexto.Text()).value(), *this);
      EdtTexto.SetText(read_);
    };
  }

  Edit EdtTexto{*this, "EdtTexto", "Texto"};
  TOrvDBGrid Grade{*this,
                   "Grade",
                   Titulos,
                   {{"Nome", "Nome"},
                    {"Valor", "Valor; R$"},
                    {"Data", "Data"},
                    {"Tipo", "Tipo"},
                    {"Marca", "Marca", 0, false, true, "S", "N"},
                    {"Parte", "Parte"}},
                   false};
  Button BtMuda{*this, "BtMuda", "&Muda"};
  Button BtLe{*this, "BtLe", "&Lê"};
  TbTitulos Titulos{"Titulos"};

 private:
  void Add(const char* name, Value amount, Value day, const char* kind, const char* mark) {
    std::array<Value, 6> row{Value(name), std::move(amount), std::move(day),
                             Value(kind), Value(mark),       Value(0.1)};
    Titulos.AppendRow(row);
  }
  bool Row(const SheetRow& row) override {
    for (int column = 1; column <= row.Columns(); ++column) read_.append(row.Text(column)) += "|";
    return true;
  }
  void TakeBack() noexcept override {}
  std::string read_;
};

class GridViewTest : public DeskTest {
 protected:
  GridViewTest() {
    ClassRegistry::Instance().Register({"TfmTitulos", "Títulos", ScreenKind::Child, "Testes",
                                        [](Application& a) { return std::make_unique<TfmTitulos>(a); }});
    desk_.Open("TfmTitulos");
  }
  ~GridViewTest() override { ClassRegistry::Instance().Unregister("TfmTitulos"); }

  // Of the whole grid, with what else is asked.
  Json Read(std::string_view more = "") {
    const std::string text = R"({"do":"read","control":"Grade","view":true)" + std::string(more) + "}";
    desk_.Do(Json::Parse(text));
    for (const Json& out : desk_.Latest())
      if (out["on"] == Json("state")) return out["screens"].Items().back()["controls"]["Grade"];
    return {};
  }
  // The numbers of the rows as the view shows them.
  std::string Shown() { return Read()["rows"].Text(); }
  // Asks for an arrangement; what the view shows then.
  std::string View(const std::string& members) {
    desk_.Do(Json::Parse(R"({"do":"view","control":"Grade",)" + members + "}"));
    EXPECT_EQ(desk_.Messages(), "") << members;
    return Shown();
  }
  std::string Exported(std::string_view members) {
    desk_.Do(Json::Parse(R"({"do":"export","control":"Grade",)" + std::string(members) + "}"));
    for (const Json& out : desk_.Latest()) {
      if (out["on"] == Json("report")) return out["file"].String();
    }
    return desk_.Messages();
  }

  Desk desk_{database_};
};

TEST_F(GridViewTest, OrdersAndNarrowsAndLeavesTheSetAlone) {
  desk_.Stand("Grade", 3);
  const std::string before = desk_.Rows("Titulos");
  const std::pair<const char*, const char*> views[] = {
      {R"("sort":"Nome")", "[3,2,0,1,4]"},
      {R"("sort":"Valor")", "[4,1,3,0,2]"},
      {R"("sort":"valor","descending":true)", "[2,0,3,1,4]"},
      {R"("sort":"Data","descending":false)", "[2,1,4,3,0]"},
      {R"("descending":true)", "[0,3,1,4,2]"},
      {R"("sort":"Tipo")", "[4,1,3,0,2]"},
      {R"("sort":"Marca","descending":false)", "[0,2,3,1,4]"},
      {R"("find":"AGUÁ")", "[0]"},
      {R"("find":"1234,5")", "[2]"},
      {R"("find":"1.234")", "[2]"},
      {R"("find":"receber")", "[3,1]"},
      {R"("find":" ban  receb ")", "[1]"},
      {R"("find":"15/01")", "[1,4]"},
      {R"("find":"sim")", "[1,4]"},
      {R"("find":"-5,5")", "[1]"},
      {R"("find":"n","columns":["Nome","Valor"])", "[1]"},
      {R"("find":"nada")", "[]"},
      {R"("find":"5","sort":"")", "[1,2,4]"},
      {R"("find":" ")", "[0,1,2,3,4]"}};
  for (const auto& [members, rows] : views) EXPECT_EQ(View(members), rows) << members;
  View(R"("sort":"Valor","find":"a")");
  EXPECT_EQ(desk_.Rows("Titulos"), before);
  EXPECT_EQ(desk_.SetOf("Titulos")["row"], Json(3));
  // The current row isn't among those with a 1 in their amount; a window of the view, and of the set.
  EXPECT_EQ(View(R"("sort":"Valor","find":"1","columns":["Valor"])"), "[0,2]");
  EXPECT_EQ(desk_.Property("Grade", "viewRow"), Json(-1));
  EXPECT_EQ(desk_.Property("Grade", "viewCount"), Json(2));
  EXPECT_EQ(Read(R"(,"from":1,"count":1)")["cells"].Text(), R"([["abacate","1.234,50","","P","N","0,10"]])");
  desk_.Do({{"do", "read"}, {"control", "Grade"}, {"from", 3}, {"count", 1}});
  EXPECT_NE(desk_.Latest().front().Text().find("=1+1"), std::string::npos);
  // Exact sums of places of the view.
  EXPECT_EQ(Read(R"(,"count":0,"sums":[[0,1]])")["sums"].Text(),
            R"({"count":2,"columns":{"Valor":"1.244,50","Parte":"0,20"}})");

  const char* refused[] = {R"({"do":"view","control":"Grade","sort":"Outra"})",
                           R"({"do":"view","control":"Grade","find":"a","columns":["Outra"]})",
                           R"({"do":"view","control":"Grade","sort":7})",
                           R"({"do":"view","control":"EdtTexto","sort":""})",
                           R"({"do":"read","control":"Grade","sums":[[0,2]]})",
                           R"({"do":"read","control":"Grade","sums":[[1,1],[0,0]]})",
                           R"({"do":"read","control":"Grade","sums":[[0]]})",
                           R"({"do":"read","control":"Grade","sums":[7]})",
                           R"({"do":"export","control":"Grade","format":"pdf"})",
                           R"({"do":"export","control":"Grade","format":"csv","columns":["Nome","nome"]})",
                           R"({"do":"export","control":"Grade","format":"csv","columns":["Outra"]})"};
  for (const char* text : refused) {
    desk_.Do(Json::Parse(text));
    EXPECT_EQ(desk_.Messages().substr(0, 7), "error: ") << text;
  }
  desk_.Do({{"do", "view"}, {"control", "Grade"}, {"find", std::string(101, 'a')}});
  EXPECT_EQ(desk_.Messages(), "error: O texto a procurar é longo demais.");
  EXPECT_EQ(Shown(), "[0,2]") << "as it was";
}

TEST_F(GridViewTest, FollowsTheSetAndKeepsTheRowInEditInItsPlace) {
  EXPECT_EQ(View(R"("sort":"Valor")"), "[4,1,3,0,2]");
  const Json before = desk_.Property("Grade", "view");
  desk_.Cell("Grade", 1, "Valor", "99");
  EXPECT_EQ(Shown(), "[4,1,3,0,2]");
  EXPECT_EQ(desk_.Property("Grade", "view"), before);
  EXPECT_EQ(Read(R"(,"from":1,"count":1)")["cells"].Items().at(0).Items().at(1), Json("99,00"));
  desk_.Stand("Grade", 0);
  EXPECT_EQ(Shown(), "[4,3,0,1,2]");
  EXPECT_EQ(desk_.Property("Grade", "viewRow"), Json(2));
  // A new row is the last one until it is posted, also where it holds none of the words.
  EXPECT_EQ(View(R"("find":"pagar")"), "[0,2]");
  desk_.Append("Grade");
  desk_.Cell("Grade", 5, "Tipo", "P");
  EXPECT_EQ(Shown(), "[0,2,5]");
  EXPECT_EQ(desk_.Property("Grade", "viewRow"), Json(2));
  // Asking for another order posts it.
  EXPECT_EQ(View(R"("sort":"Nome")"), "[5,2,0]");
  EXPECT_EQ(desk_.SetOf("Titulos")["state"], Json("browse"));
  desk_.Click("BtMuda");
  EXPECT_EQ(Shown(), "[4,1,5]");
  desk_.Delete("Grade", 4);
  EXPECT_EQ(Shown(), "[1,4]");
  EXPECT_EQ(desk_.Rows("Titulos").substr(0, 6), "banco|");
  EXPECT_EQ(View(R"("sort":"","find":"")"), "[0,1,2,3,4]");
}

TEST_F(GridViewTest, IsWrittenAsItIsShownAndNoTextIsAFormula) {
  View(R"("sort":"Valor","descending":true,"find":"a")");
  const std::string csv = Exported(R"("format":"csv","columns":["Nome","VALOR","Data","Tipo","Marca"])");
  EXPECT_EQ(std::filesystem::path(csv).filename().string().substr(0, 24), "titulos_a_vista_20261120");
  std::ifstream in(csv, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}),
            "\xEF\xBB\xBFNome;\"Valor; R$\";Data;Tipo;Marca\r\n"
            "abacate;1234,50;;A pagar;Não\r\n"
            "Água;10,00;01/03/2026;A pagar;Não\r\n"
            "'=1+1;0,00;10/02/2026;A receber;Não\r\n"
            "banco;-5,50;15/01/2026;A receber;Sim\r\n"
            "Ção;;15/01/2026;X;Sim\r\n");
  std::filesystem::copy(Exported(R"("format":"xlsx","columns":["Data","Valor","Nome"])"),
                        folder_.Path() / "l.xlsx");
  desk_.Set("EdtTexto", "l.xlsx");
  desk_.Click("BtLe");
  EXPECT_EQ(desk_.Text("EdtTexto"),
            "Data|Valor; R$|Nome||1.234,50|abacate|01/03/2026|10,00|Água|10/02/2026|0,00|=1+1|"
            "15/01/2026|-5,50|banco|15/01/2026||Ção|");
}

}  // namespace
}  // namespace orv::test
