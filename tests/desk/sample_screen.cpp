#include "tests/desk/sample_screen.h"

#include "frame/registry.h"
#include "frame/sheet.h"
#include "toolkit/error.h"

namespace orv::test {
namespace {

std::string InsertBank(IFuncoes& funcoes, const std::string& code) {
  return "INSERT INTO " + funcoes.DBLocal("CADBAN", true) + " (BANCO, NOME_BANCO) VALUES (" +
         funcoes.Aspas(code) + ", 'AMOSTRA')";
}

struct SheetText : SheetSink {
  bool Row(const SheetRow& row) override {
    for (int column = 1; column <= row.Columns(); ++column) text.append(row.Text(column)) += "|";
    return true;
  }
  void TakeBack() noexcept override { text.clear(); }
  std::string text;
};

}  // namespace

TfmAmostra::TfmAmostra(Application& application) : Child(application, "TfmAmostra", "fmAmostra", "Amostra") {
  AbreTabelas({"tbBanco"});
  Linhas.CreateDataSet();
  AddSet(Linhas);
  Layout(R"(
    EdtTexto EdtValor CbMarca CbLista LbLista TrPrazo PbAnda LbSoma /
    EdtBanco PqBanco EdtNomeBanco PqVarios / Grade / DbeBanco DbeCodigo DbrMarca / Grafico / Menu { ItDetalhe } /
    BtPergunta BtData BtArquivo BtDialogo BtConta BtGrava BtFalha BtDesiste BtLonga LbTorto BtErra BtLivro BtRelatorio BtFecha
  )");
  PqVarios.Settings().MultiSelecao = true;
  Lookups({{.field = &EdtBanco,
            .lookup = &PqBanco,
            .shows = {{"NOME_BANCO", &EdtNomeBanco}},
            .message = "Banco inexistente."}});
  PqVarios.OnFechaPesquisa = [this] { EdtTexto.SetText(PqVarios.RetornoPesquisa("BANCO")); };
  Menu.OnPopup = [this] { ItDetalhe.SetEnabled(!Linhas.IsEmpty()); };
  ItDetalhe.OnClick = [this] { Funcoes.TelaDetalhamento("Linhas", Linhas); };
  Grade.OnKey = [this](KeyPress& key) { LbSoma.SetCaption(key.column + " " + key.key); };
  Grade.OnColExit = [this] {
    if (Grade.SelectedField() != "Codigo" || !Linhas.Editing()) return;
    Linhas.Valor = Value(Linhas.Valor.AsCurrency() + Currency(1));
    if (Linhas.Codigo.AsString() != "BARRA") return;
    Linhas.Append();
    Grade.SetSelectedField("Codigo");
  };
  Grade.OnTitleClick = [this](const std::string& column) { Linhas.SetIndexFieldNames(column); };
  Grade.OnDblClick = [this] { LbSoma.SetCaption("duplo " + Linhas.Codigo.AsString()); };
  BtPergunta.OnClick = [this] {
    User().Progress(1, 2, "Antes");
    LbSoma.SetCaption(Ask("Continua?", true) ? "sim" : "não");
    User().Progress(2, 2, "Depois");
  };
  BtData.OnClick = [this] {
    Date date = Today();
    const bool given = Funcoes.InputBoxData(Caption(), "Qual a data?", date);
    LbSoma.SetCaption(given ? date.Brazil() : "desistiu");
  };
  BtArquivo.OnClick = [this] {
    LbSoma.SetCaption(User().OpenFile("BtArquivo", "txt|*.txt").value_or("nenhum"));
  };
  BtConta.OnClick = [this] {
    const auto contabil = Contabil.Create();
    contabil->SetContabilidadeFinan({.lancamento = "900001",
                                     .docto = "D1",
                                     .docto2 = "D1",
                                     .conta_c = "9.9.9",
                                     .conta_d = "1.1.02.001",
                                     .operacao = "+",
                                     .origem = "CC",
                                     .historico = "020",
                                     .valor = Currency(5),
                                     .data = Today(),
                                     .codigo = "000",
                                     .observacao = "AMOSTRA"});
    LbSoma.SetCaption(contabil->ConfirmaDadosContabilidade(0) ? "confirmado" : "recusado");
  };
  BtDialogo.OnClick = [this] {
    Grava("X01");
    auto& dialog = Owner().Adopt(std::make_unique<TfmDialogo>(Owner()));
    dialog.ShowModal();
    LbSoma.SetCaption("voltou " + std::to_string(dialog.Tag));
    if (dialog.Tag == 9) throw UserError("Falha depois do diálogo.");
    Tabela.CommitRetaining();
  };
  BtGrava.OnClick = [this] {
    Grava(EdtTexto.Text());
    Tabela.CommitRetaining();
  };
  BtFalha.OnClick = [this] {
    Grava("F01");
    Tabela.IBDatabase().Execute("INSERT INTO NAO_EXISTE (A) VALUES (1)");
  };
  BtDesiste.OnClick = [this] {
    TOrvTable& bancos = Tabela.tbBanco();
    bancos.Append();
    bancos["BANCO"] = Value("D01");
    bancos.Post();
    Abort();
  };
  BtLonga.OnClick = [this] {
    const BusyMark busy(Funcoes, *this);
    PbAnda.SetMaximum(200000000);
    for (steps = 0; steps < 200000000; ++steps) PbAnda.SetPosition(steps);
  };
  Listen(Tabela.tbEmpresa().AfterScroll, [this] {
    if (!std::exchange(erra_, false)) return;
    Grava("M01");
    throw UserError("Falha ao arrumar.");
  });
  BtErra.OnClick = [this] {
    Tabela.tbEmpresa().Next();
    erra_ = true;
    LbSoma.SetCaption("errou");
    LbTorto.SetCaption("torto");
    LbTorto.falha = true;
  };
  BtLivro.OnClick = [this] {
    SheetText rows;
    Owner().Sheets().Read(User().OpenPath(EdtTexto.Text()).value(), rows);
    LbSoma.SetCaption(rows.text);
  };
  BtRelatorio.OnClick = [this] { Funcoes.Chama_Relatorio(*this, EdtTexto.Text()); };
  BtFecha.OnClick = [this] { Close(); };
}

void Torto::Describe(Properties& properties) const {
  if (std::exchange(falha, false)) throw UserError("Falha ao mostrar.");
  Label::Describe(properties);
}

void TfmAmostra::Grava(const std::string& codigo) {
  Tabela.IBDatabase().Execute(InsertBank(Funcoes, codigo));
}

TfmDialogo::TfmDialogo(Application& application) : Dialog(application, "TfmDialogo", "fmDialogo", "Diálogo") {
  Layout("BtGrava BtFalha BtOk");
  BtGrava.OnClick = [this] {
    Tabela.IBDatabase().Execute(InsertBank(Funcoes, "G01"));
    Tag = 9;
  };
  BtFalha.OnClick = [this] {
    Tabela.IBDatabase().Execute(InsertBank(Funcoes, "H01"));
    throw UserError("Falha no diálogo.");
  };
  BtOk.OnClick = [this] { Close(); };
}

SampleScreens::SampleScreens() {
  ClassRegistry::Instance().Register({"TfmAmostra", "Amostra", ScreenKind::Child, "Testes",
                                      [](Application& a) { return std::make_unique<TfmAmostra>(a); }});
  ClassRegistry::Instance().Register({"TfmDialogo", "Diálogo", ScreenKind::Dialog, "Testes",
                                      [](Application& a) { return std::make_unique<TfmDialogo>(a); }});
}

SampleScreens::~SampleScreens() {
  ClassRegistry::Instance().Unregister("TfmAmostra");
  ClassRegistry::Instance().Unregister("TfmDialogo");
}

}  // namespace orv::test
