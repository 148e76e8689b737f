#include "host/services/anexos.h"

#include <sodium.h>

#include <array>
#include <utility>

#include "host/data/statement.h"
#include "host/services/anexo_conteudo.h"
#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr const char* kArea = "ANEXOS";

class OneValue : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> values) override {
    value = std::string(values[0].Text());
    return false;
  }
  std::optional<std::string> value;
};

class Lines : public RowSink {
 public:
  void Columns(const std::vector<Column>&) override {}
  bool Row(std::span<Value> v) override {
    rows.push_back({static_cast<int>(v[0].AsInteger()), v[1].AsString(), v[2].AsString(), v[3].AsInteger(),
                    v[4].AsString(), v[5].AsDateTime().Brazil()});
    return true;
  }
  std::vector<Anexo> rows;
};

std::string Sha256(std::string_view bytes) {
  std::array<unsigned char, crypto_hash_sha256_BYTES> digest{};
  crypto_hash_sha256(digest.data(), reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  std::array<char, crypto_hash_sha256_BYTES * 2 + 1> text{};
  sodium_bin2hex(text.data(), text.size(), digest.data(), digest.size());
  return text.data();
}

}  // namespace

Anexos::Anexos(Attachment& db, Audit& audit, Parameters& parameters, Clock clock, std::string login,
               std::string company, std::function<std::string()> suffix)
    : db_(db),
      audit_(audit),
      parameters_(parameters),
      clock_(clock),
      login_(std::move(login)),
      company_(std::move(company)),
      suffix_(std::move(suffix)) {}

std::string Anexos::Tabela() const { return "ANEXO" + suffix_(); }

bool Anexos::HaMovimento(std::string_view lancamento) {
  return !Statement(db_, "SELECT FIRST 1 1 FROM CONTACOR" + suffix_() + " WHERE LANCAMENTO = ?")
              .Scalar({Value(lancamento)})
              .IsNull();
}

void Anexos::Trava() {
  Statement(db_, "UPDATE EMPRESA SET EMP_PAT = EMP_PAT WHERE EMP_PAT = ?").Execute({Value(suffix_())});
}

std::vector<Anexo> Anexos::Lista(std::string_view lancamento) {
  Lines lines;
  Statement(db_, "SELECT NUMERO, NOME, TIPO, TAMANHO, LOGIN, MOMENTO FROM " + Tabela() +
                     " WHERE LANCAMENTO = ? ORDER BY NUMERO")
      .Fetch({Value(lancamento)}, lines);
  return std::move(lines.rows);
}

int64_t Anexos::Quantos(std::string_view lancamento) {
  return Statement(db_, "SELECT COUNT(*) FROM " + Tabela() + " WHERE LANCAMENTO = ?")
      .Scalar({Value(lancamento)})
      .AsInteger();
}

std::optional<std::string> Anexos::Conteudo(std::string_view lancamento, int numero) {
  OneValue content;
  Statement(db_, "SELECT CONTEUDO FROM " + Tabela() + " WHERE LANCAMENTO = ? AND NUMERO = ?")
      .Fetch({Value(lancamento), Value(numero)}, content);
  return std::move(content.value);
}

void Anexos::Inclui(std::string_view lancamento, std::string_view nome, const std::string& conteudo) {
  if (conteudo.size() > kMaiorAnexo) {
    throw UserError("O arquivo é grande demais: um anexo pode ter até " + std::to_string(kMaiorAnexo >> 20) +
                    " MB.");
  }
  const AnexoTipo& tipo = TipoDoAnexo(conteudo);
  const std::string sha = Sha256(conteudo), limpo = NomeDoAnexo(nome, tipo);
  Trava();
  if (!HaMovimento(lancamento))
    throw UserError("O lançamento " + std::string(lancamento) + " não existe mais. Nada foi anexado.");
  const std::vector<Anexo> atuais = Lista(lancamento);
  if (atuais.size() >= kPorMovimento) {
    throw UserError("O lançamento já tem " + std::to_string(kPorMovimento) +
                    " anexos. Exclua um deles antes de incluir outro.");
  }
  if (!Statement(db_, "SELECT 1 FROM " + Tabela() + " WHERE LANCAMENTO = ? AND SHA256 = ?")
           .Scalar({Value(lancamento), Value(sha)})
           .IsNull()) {
    throw UserError("Este arquivo já está anexado ao lançamento.");
  }
  const std::string total = parameters_.Get(company_, kGrupo, kTotalMB);
  int64_t megas = kSemParametro;
  try {
    if (!Trim(total).empty()) megas = ParseInteger(Trim(total));
  } catch (const ConversionError&) {
    // A parameter that says nothing.
  }
  const int64_t ocupado = db_.Scalar("SELECT SUM(CAST(TAMANHO AS BIGINT)) FROM " + Tabela()).AsInteger();
  if (ocupado + static_cast<int64_t>(conteudo.size()) > megas << 20) {
    throw UserError("Os anexos da empresa ocupam todo o espaço de " + std::to_string(megas) +
                    " MB. Peça ao administrador que o aumente.");
  }
  const int numero = atuais.empty() ? 1 : atuais.back().numero + 1;
  Statement(db_, "INSERT INTO " + Tabela() +
                     " (LANCAMENTO, NUMERO, NOME, TIPO, TAMANHO, SHA256, LOGIN, MOMENTO, CONTEUDO) VALUES "
                     "(?, ?, ?, ?, ?, ?, ?, ?, ?)")
      .Execute({Value(lancamento), Value(numero), Value(limpo), Value(tipo.nome),
                Value(static_cast<int64_t>(conteudo.size())), Value(sha), Value(CutChars(login_, 40)),
                Value(clock_.Now()), Value(conteudo)});
  audit_.Write(kArea, "INCLUSAO DO ANEXO " + limpo + ", SHA256 " + sha, TOperacaoLog::Inclusao, lancamento);
}

void Anexos::Exclui(std::string_view lancamento, int numero) {
  OneValue found;
  Statement(db_,
            "SELECT NOME || ', SHA256 ' || SHA256 FROM " + Tabela() + " WHERE LANCAMENTO = ? AND NUMERO = ?")
      .Fetch({Value(lancamento), Value(numero)}, found);
  const int64_t excluidos = Statement(db_, "DELETE FROM " + Tabela() + " WHERE LANCAMENTO = ? AND NUMERO = ?")
                                .Execute({Value(lancamento), Value(numero)});
  if (!found.value || excluidos == 0) throw UserError("O anexo já foi excluído.");
  audit_.Write(kArea, "EXCLUSAO DO ANEXO " + *found.value, TOperacaoLog::Exclusao, lancamento);
}

void Anexos::ExcluiSemMovimento(std::string_view lancamento) {
  Trava();
  if (HaMovimento(lancamento)) return;
  for (const Anexo& anexo : Lista(lancamento)) Exclui(lancamento, anexo.numero);
}

}  // namespace orv
