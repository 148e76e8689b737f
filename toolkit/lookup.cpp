#include "toolkit/lookup.h"

#include <algorithm>

#include "toolkit/error.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::optional<Currency> AmountOf(std::string_view text) {
  try {
    return Currency::ParseTyped(Trim(text));
  } catch (const UserError&) {
    return std::nullopt;
  }
}

}  // namespace

std::string TPesquisa::Condition(std::string_view search) const {
  std::vector<std::string> parts;
  if (!settings_.Filtro.empty()) parts.push_back("(" + settings_.Filtro + ")");
  if (!Trim(search).empty()) {
    const std::string literal = Quote(CutChars(Trim(search), 60));
    const char* test = settings_.BuscaTipo == SearchType::Starts ? " STARTING WITH " : " CONTAINING ";
    std::vector<std::string> columns;
    for (const auto& [column, title] : settings_.Colunas) {
      const Field* field = table_->FindField(column);
      const FieldType type = field == nullptr ? FieldType::String : field->Type();
      if (type == FieldType::Currency) {
        if (const auto amount = AmountOf(search)) columns.push_back(column + " = " + amount->Neutral());
      } else if (type == FieldType::Date) {
        const Date day = Date::ParseBrazilOr(Trim(search), Date());
        if (!day.Empty()) columns.push_back(column + " = " + Quote(day.Sql()));
      } else {
        columns.push_back(column + test + literal);
      }
    }
    parts.push_back(columns.empty() ? "1 = 0" : "(" + Join(columns, " OR ") + ")");
  }
  return Join(parts, " AND ");
}

bool TPesquisa::AbrePesquisa() {
  ORV_ASSERT(settings_.BaseDados != nullptr && !settings_.Colunas.empty());
  table_ = std::make_unique<TOrvTable>(*settings_.BaseDados, Name(), settings_.BuscaTabela,
                                       settings_.TabelaEmpresa);
  table_->SetKey(settings_.BuscaCampo);
  table_->SetIndexFieldNames(settings_.Ordem);
  table_->SetDescending(settings_.Decrescente);
  table_->SetFilterSql(Condition(""));
  table_->Open();
  const LookupChoice choice = Owner().User().Choose(*this);
  const auto rows = std::move(table_);
  if (!choice || choice->empty()) return false;

  chosen_.clear();
  for (const Field* field : rows->Fields()) {
    std::vector<std::string> values;
    for (const int64_t row : *choice) values.push_back(rows->Cell(row, *field).AsString());
    chosen_.emplace_back(field->Name(), std::move(values));
  }
  if (settings_.BuscaTable != nullptr && settings_.BuscaTable->Active()) {
    const std::string first = Split(settings_.BuscaCampo, ";")[0];
    settings_.BuscaTable->Locate(
        first, Value(chosen_[static_cast<std::size_t>(rows->FieldByName(first).Index())].second[0]));
  }
  if (OnFechaPesquisa) OnFechaPesquisa();
  return true;
}

std::string TPesquisa::RetornoPesquisa(std::string_view column) const {
  for (const auto& [name, values] : chosen_) {
    if (!SameText(name, column) || values.empty()) continue;
    if (!settings_.MultiSelecao) return values[0];
    std::vector<std::string> literals;
    for (const std::string& value : values) literals.push_back(Quote(value));
    return Join(literals, ",");
  }
  return "";
}

void TPesquisa::Search(std::string_view text) {
  ORV_ASSERT(table_ != nullptr);
  // The columns are known while the table is open.
  table_->SetFilterSql(Condition(text));
  table_->Close();
  table_->Open();
}

int64_t TPesquisa::RowOfKey(std::string_view key) {
  ORV_ASSERT(table_ != nullptr);
  const std::string first = Split(settings_.BuscaCampo, ";")[0];
  if (!table_->Locate(first, Value(key))) return -1;
  return table_->DisplayRow();
}

void TPesquisa::UserClick() {
  if (OnClick) {
    OnClick();
  } else {
    AbrePesquisa();
  }
}

}  // namespace orv
