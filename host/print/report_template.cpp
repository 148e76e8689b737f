#include "host/print/report_template.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "toolkit/text.h"

namespace orv {
namespace {

constexpr std::size_t kMostLines = 5000;
constexpr std::size_t kLongestLine = 8000;  // bytes
constexpr std::size_t kLongestFormat = 60;  // bytes
constexpr std::size_t kMostColumns = 60;
constexpr std::size_t kMostSubtitles = 20;
constexpr std::size_t kMostGroups = 20;
constexpr std::size_t kMostInner = 9;
constexpr std::size_t kMostSeries = 3;
constexpr std::size_t kMostErrors = 50;
constexpr int kWidest = 200;
constexpr std::size_t kMostFields = 300;
constexpr double kNarrowest = 20, kLargestSheet = 420, kMostRows = 200;

[[noreturn]] void Wrong(const std::string& text) { throw FormulaError(text); }

// Takes the first word off.
std::string TakeWord(std::string_view& rest) {
  rest = Trim(rest);
  const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
  const std::string word(rest.substr(0, end));
  rest = Trim(rest.substr(end));
  return word;
}

// The first place outside quotes where `here` says so, npos without one.
template <class Here>
std::size_t FindUnquoted(std::string_view text, Here here) {
  char quote = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (here(at)) {
      return at;
    }
  }
  return std::string_view::npos;
}

std::size_t FindSign(std::string_view text, char sign) {
  return FindUnquoted(text, [&](std::size_t at) { return text[at] == sign; });
}

// The place of " word ".
std::size_t FindWord(std::string_view text, std::string_view word) {
  return FindUnquoted(text, [&](std::size_t at) {
    return (at == 0 || text[at - 1] == ' ') && text.substr(at, word.size()) == word &&
           (at + word.size() == text.size() || text[at + word.size()] == ' ');
  });
}

uint8_t ReadStyle(std::string_view text) {
  constexpr std::array<std::pair<std::string_view, uint8_t>, 9> kStyles{{{"normal", kPlain},
                                                                         {"negrito", kBold},
                                                                         {"italico", kItalic},
                                                                         {"alerta", kAlert},
                                                                         {"aviso", kWarning},
                                                                         {"apagado", kMuted},
                                                                         {"sombra", kShade},
                                                                         {"destaque", kMark},
                                                                         {"linha", kRule}}};
  uint8_t style = kPlain;
  for (const std::string& part : Split(text, "+")) {
    const std::string_view name = Trim(part);
    const auto found =
        std::find_if(kStyles.begin(), kStyles.end(), [&](const auto& one) { return one.first == name; });
    if (found == kStyles.end()) Wrong("o estilo \"" + std::string(name) + "\" não existe");
    style |= found->second;
  }
  return style;
}

// A | FÓRMULA ? A : FÓRMULA ? B : C
Look ReadLook(std::string_view text) {
  Look look;
  for (std::size_t mark = 0; (mark = FindSign(text, '?')) != std::string_view::npos;) {
    Formula when = Formula::Parse(text.substr(0, mark));
    text.remove_prefix(mark + 1);
    const std::size_t other = text.find(':');
    if (other == std::string_view::npos) Wrong("falta o \":\" do estilo");
    look.cases.push_back({std::move(when), ReadStyle(text.substr(0, other))});
    text.remove_prefix(other + 1);
  }
  look.otherwise = ReadStyle(text);
  return look;
}

class Reader {
 public:
  explicit Reader(ReportTemplate& result) : result_(result) {}

  void Read(std::string_view text) {
    std::size_t from = 0;
    while (from <= text.size()) {
      const std::size_t end = std::min(text.find('\n', from), text.size());
      std::string_view line = text.substr(from, end - from);
      if (line.ends_with('\r')) line.remove_suffix(1);
      from = end + 1;
      if (++line_ > static_cast<int>(kMostLines)) {
        Note("o modelo tem linhas demais");
        return;
      }
      try {
        if (line.size() > kLongestLine) Wrong("a linha é longa demais");
        Line(Trim(line));
      } catch (const FormulaError& e) {
        Note(e.what());
      }
    }
  }

 private:
  void Note(const std::string& text) {
    if (result_.errors.size() >= kMostErrors) return;
    result_.errors.push_back("modelo " + result_.identifier + ", linha " + std::to_string(line_) + ": " +
                             text + ".");
  }

  void Line(std::string_view line) {
    if (line.empty() || line[0] == '#') return;
    if (line[0] == '|') {
      if (band_ == nullptr) Wrong("uma linha de células vem depois de cabecalho, detalhe ou rodape");
      band_->lines.push_back({Cells(line), line_});
      return;
    }
    band_ = nullptr;
    std::string_view rest = line;
    const std::string word = TakeWord(rest);
    if (word == "relatorio") {
      result_.title = rest;
    } else if (word == "subtitulo") {
      if (result_.subtitles.size() >= kMostSubtitles) Wrong("há subtítulos demais");
      result_.subtitles.push_back(ReportText::Parse(rest));
    } else if (word == "pagina") {
      if (rest == "nova") {
        Section().new_page = true;
        return;
      }
      if (rest != "retrato" && rest != "paisagem") Wrong("a página é retrato, paisagem ou nova");
      result_.landscape = rest == "paisagem";
    } else if (word == "folha") {
      result_.sheet_width = Number(rest, kNarrowest, kLargestSheet);
      result_.sheet_height = Number(rest, kNarrowest, kLargestSheet);
    } else if (word == "campo" || word == "lista") {
      ReadField(word == "lista", rest);
    } else if (word == "dados") {
      ReportSection section;
      section.line = line_;
      section.set = TakeWord(rest);
      section.heading = rest;
      if (section.set.empty()) Wrong("falta o nome do conjunto de dados");
      result_.sections.push_back(std::move(section));
    } else if (word == "valor") {
      ReadValue(rest);
    } else if (word == "grupo") {
      ReadGroup(rest);
    } else if (word == "subdados") {
      ReadInner(rest);
    } else if (word == "coluna") {
      ReadColumn(rest);
    } else if (word == "grafico") {
      if (Section().chart) Wrong("a seção já tem um gráfico");
      Section().chart = ReportChart{ReportText::Parse(rest), {}, line_};
    } else if (word == "barras" || word == "curva") {
      ReadSeries(word == "barras", rest);
    } else if (word == "cabecalho" || word == "detalhe" || word == "rodape") {
      ReadBand(word, rest);
    } else {
      Wrong("não se conhece \"" + word + "\"");
    }
  }

  ReportSection& Section() {
    if (result_.sections.empty()) Wrong("falta antes a linha \"dados\"");
    return result_.sections.back();
  }

  // valor NOME [de CONJUNTO] [por GRUPO] = FÓRMULA
  void ReadValue(std::string_view rest) {
    const std::size_t sign = rest.find('=');
    if (sign == std::string_view::npos) Wrong("falta o \"=\" do valor");
    std::string_view head = rest.substr(0, sign);
    ReportValue value{TakeWord(head), "", "", Formula::Parse(rest.substr(sign + 1)), line_};
    if (value.name.empty()) Wrong("falta o nome do valor");
    if (std::any_of(result_.values.begin(), result_.values.end(),
                    [&](const ReportValue& other) { return SameText(other.name, value.name); })) {
      Wrong("o valor " + value.name + " já existe");
    }
    while (!head.empty()) {
      const std::string word = TakeWord(head);
      const std::string name = TakeWord(head);
      if (name.empty() || (word != "de" && word != "por"))
        Wrong("esperava-se \"de CONJUNTO\" ou \"por GRUPO\"");
      (word == "de" ? value.set : value.group) = name;
    }
    if (SameText(value.group, "relatorio")) value.group.clear();
    if (value.set.empty()) value.set = Section().set;
    if (!value.group.empty() && Level(value.group) == 0) GroupIndex(value.group);
    result_.values.push_back(std::move(value));
  }

  std::size_t GroupIndex(const std::string& name) {
    const auto& groups = Section().groups;
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&](const ReportGroup& one) { return SameText(one.name, name); });
    if (found == groups.end()) Wrong("o grupo " + name + " não existe");
    return static_cast<std::size_t>(found - groups.begin());
  }

  // The level of an inner set of the section, 0 for none of that name.
  std::size_t Level(std::string_view set) {
    const auto& inner = Section().inner;
    const auto found = std::find_if(inner.begin(), inner.end(),
                                    [&](const ReportInner& one) { return SameText(one.set, set); });
    return found == inner.end() ? 0 : static_cast<std::size_t>(found - inner.begin()) + 1;
  }

  // subdados CONJUNTO [em CONJUNTO] onde FÓRMULA = FÓRMULA
  void ReadInner(std::string_view rest) {
    const std::size_t where = FindWord(rest, "onde");
    if (where == std::string_view::npos) Wrong("falta o \"onde\" de subdados");
    std::string_view head = rest.substr(0, where);
    const std::string_view tie = rest.substr(where + 4);
    const std::size_t sign = FindSign(tie, '=');
    if (sign == std::string_view::npos) Wrong("falta o \"=\" de subdados");
    ReportInner inner{TakeWord(head), 0, Formula::Parse(tie.substr(0, sign)),
                      Formula::Parse(tie.substr(sign + 1)), line_};
    if (inner.set.empty()) Wrong("falta o nome do conjunto de dados");
    if (SameText(inner.set, Section().set) || Level(inner.set) > 0)
      Wrong("o conjunto " + inner.set + " já está na seção");
    if (!head.empty()) {
      const std::string word = TakeWord(head);
      inner.under = Level(head);
      if (word != "em" || (inner.under == 0 && !SameText(head, Section().set)))
        Wrong("esperava-se \"em\" e um conjunto da seção");
    }
    if (Section().inner.size() >= kMostInner) Wrong("há subdados demais");
    Section().inner.push_back(std::move(inner));
  }

  // barras|curva TÍTULO = FÓRMULA
  void ReadSeries(bool bars, std::string_view rest) {
    const std::size_t sign = rest.find('=');
    if (sign == std::string_view::npos) Wrong("falta o \"=\" da série");
    if (!Section().chart) Wrong("falta antes a linha \"grafico\"");
    auto& series = Section().chart->series;
    if (series.size() >= kMostSeries) Wrong("há séries demais");
    series.push_back({std::string(Trim(rest.substr(0, sign))), Formula::Parse(rest.substr(sign + 1)), bars});
  }

  // grupo NOME [pagina] = FÓRMULA
  void ReadGroup(std::string_view rest) {
    const std::size_t sign = rest.find('=');
    if (sign == std::string_view::npos) Wrong("falta o \"=\" do grupo");
    std::string_view head = rest.substr(0, sign);
    ReportGroup group{TakeWord(head), Formula::Parse(rest.substr(sign + 1)), head == "pagina", line_};
    if (group.name.empty()) Wrong("falta o nome do grupo");
    if (!head.empty() && !group.new_page) Wrong("depois do nome do grupo só vem \"pagina\"");
    if (Section().groups.size() >= kMostGroups) Wrong("há grupos demais");
    Section().groups.push_back(std::move(group));
  }

  // coluna LARGURA [esquerda|centro|direita] TÍTULO
  void ReadColumn(std::string_view rest) {
    PrintColumn column;
    const std::string width = TakeWord(rest);
    const auto read = std::from_chars(width.data(), width.data() + width.size(), column.width);
    if (read.ec != std::errc() || read.ptr != width.data() + width.size() || column.width < 1 ||
        column.width > kWidest) {
      Wrong("a largura da coluna vai de 1 a " + std::to_string(kWidest));
    }
    std::string_view title = rest;
    const std::string align = TakeWord(title);
    if (align == "direita") {
      column.align = Align::Right;
    } else if (align == "centro") {
      column.align = Align::Center;
    } else if (align != "esquerda") {
      title = rest;
    }
    column.title = title;
    if (Section().columns.size() >= kMostColumns) Wrong("há colunas demais");
    Section().columns.push_back(std::move(column));
  }

  // Takes the next word off, a number with a decimal point.
  static double Number(std::string_view& rest, double least, double most) {
    const std::string word = TakeWord(rest);
    double number = 0;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), number);
    if (read.ec != std::errc() || read.ptr != word.data() + word.size() ||
        !(number >= least && number <= most))
      Wrong("esperava-se um número de " + std::to_string(static_cast<int>(least)) + " a " +
            std::to_string(static_cast<int>(most)) + " em vez de \"" + word + "\"");
    return number;
  }

  // campo X Y LARGURA [como]: TEXTO | lista CONJUNTO X Y LARGURA PASSO LINHAS [como]: TEXTO
  void ReadField(bool list, std::string_view rest) {
    if (result_.sheet_width == 0) Wrong("falta antes a linha \"folha\"");
    const std::size_t colon = rest.find(':');
    if (colon == std::string_view::npos) Wrong("falta o \":\" antes do texto");
    std::string_view head = rest.substr(0, colon);
    SheetField field;
    field.line = line_;
    if (list) field.set = TakeWord(head);
    field.x = Number(head, 0, kLargestSheet);
    field.y = Number(head, 0, kLargestSheet);
    field.width = Number(head, 1, kLargestSheet);
    if (list) {
      field.step = Number(head, 1, kLargestSheet);
      field.rows = static_cast<int>(Number(head, 1, kMostRows));
    }
    while (!head.empty()) {
      const std::string word = TakeWord(head);
      if (word == "direita") {
        field.align = Align::Right;
      } else if (word == "centro") {
        field.align = Align::Center;
      } else if (word == "negrito") {
        field.bold = true;
      } else if (word == "corpo") {
        field.size = Number(head, 4, 40);
      } else if (word == "linhas" && !list) {
        field.lines = static_cast<int>(Number(head, 1, kMostRows));
        field.step = Number(head, 1, kLargestSheet);
      } else if (word != "esquerda") {
        Wrong("não se esperava \"" + word + "\"");
      }
    }
    field.text = ReportText::Parse(Trim(rest.substr(colon + 1)));
    if (Section().fields.size() >= kMostFields) Wrong("há campos demais");
    Section().fields.push_back(std::move(field));
  }

  // cabecalho [GRUPO] | detalhe [CONJUNTO] | rodape [GRUPO [varias]], [se FÓRMULA] [estilo LOOK]
  void ReadBand(const std::string& word, std::string_view rest) {
    Band band;
    band.line = line_;
    if (const std::size_t at = FindWord(rest, "estilo"); at != std::string_view::npos) {
      band.look = ReadLook(rest.substr(at + 6));
      rest = rest.substr(0, at);
    }
    if (const std::size_t at = FindWord(rest, "se"); at != std::string_view::npos) {
      band.when = Formula::Parse(rest.substr(at + 2));
      rest = rest.substr(0, at);
    }
    const std::string name = TakeWord(rest);
    band.level = Level(name);
    const bool grouped = !name.empty() && band.level == 0;
    if (word == "detalhe") {
      if (grouped) Wrong("o conjunto " + name + " não está nos subdados da seção");
    } else if (word == "cabecalho") {
      band.kind = grouped ? BandKind::GroupHead : BandKind::Head;
    } else {
      band.kind = grouped ? BandKind::GroupFoot : BandKind::Foot;
      band.several = !name.empty() && rest == "varias";
      if (band.several) rest = {};
    }
    if (grouped) band.group = GroupIndex(name);
    if (!rest.empty()) Wrong("não se esperava \"" + std::string(rest) + "\"");
    Section().bands.push_back(std::move(band));
    band_ = &Section().bands.back();
  }

  // | texto | {LOOK} [Conjunto.Campo] | < |     A cell with "<" is joined to the one before it.
  std::vector<BandCell> Cells(std::string_view line) {
    std::vector<std::string> texts(1);
    for (std::size_t at = 1; at < line.size(); ++at) {
      if (line[at] == '\\' && at + 1 < line.size() && line[at + 1] == '|') {
        texts.back() += line[++at];
      } else if (line[at] == '|') {
        texts.emplace_back();
      } else {
        texts.back() += line[at];
      }
    }
    if (Trim(texts.back()).empty()) texts.pop_back();
    if (texts.size() > Section().columns.size()) Wrong("há mais células do que colunas");
    std::vector<BandCell> cells;
    for (std::size_t column = 0; column < texts.size(); ++column) {
      const std::string_view text = Trim(texts[column]);
      if (text == "<" && !cells.empty()) {
        ++cells.back().span;
      } else {
        cells.push_back(Cell(text, column));
      }
    }
    return cells;
  }

  static BandCell Cell(std::string_view text, std::size_t column) {
    Look look;
    if (text.starts_with("{{")) {
      text.remove_prefix(1);
    } else if (text.starts_with('{')) {
      const std::size_t end = FindSign(text, '}');
      if (end == std::string_view::npos) Wrong("falta o \"}\" do estilo");
      look = ReadLook(text.substr(1, end - 1));
      text = Trim(text.substr(end + 1));
    }
    return {ReportText::Parse(text), std::move(look), column, 1};
  }

  ReportTemplate& result_;
  int line_ = 0;
  Band* band_ = nullptr;
};

}  // namespace

ReportText ReportText::Parse(std::string_view text) {
  ReportText result;
  Piece piece;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != '[') {
      piece.text += text[at++];
      continue;
    }
    if (text.substr(at, 2) == "[[") {
      piece.text += '[';
      at += 2;
      continue;
    }
    char quote = 0;
    std::size_t end = at + 1;
    for (; end < text.size() && (quote != 0 || text[end] != ']'); ++end) {
      if (quote != 0) {
        if (text[end] == quote) quote = 0;
      } else if (text[end] == '"' || text[end] == '\'') {
        quote = text[end];
      }
    }
    if (end == text.size()) Wrong("falta o \"]\"");
    std::string_view inner = Trim(text.substr(at + 1, end - at - 1));
    if (inner.starts_with(":<")) {
      const std::size_t close = inner.find('>');
      if (close == std::string_view::npos) Wrong("falta o \">\" do formato");
      piece.format = inner.substr(2, close - 2);
      if (piece.format.size() > kLongestFormat) Wrong("o formato é longo demais");
      inner = inner.substr(close + 1);
    }
    piece.formula = Formula::Parse(inner);
    result.pieces_.push_back(std::move(piece));
    piece = Piece();
    at = end + 1;
  }
  if (!piece.text.empty()) result.pieces_.push_back(std::move(piece));
  return result;
}

ReportTemplate ReportTemplate::Parse(const std::string& identifier, std::string_view text) {
  ReportTemplate result;
  result.identifier = identifier;
  if (text.size() > kLongestTemplate)
    throw UserError("O modelo do relatório \"" + identifier + "\" é grande demais.");
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  if (!ValidUtf8(text)) throw UserError("O modelo do relatório \"" + identifier + "\" não está em UTF-8.");
  Reader(result).Read(text);
  if (result.sections.empty()) {
    throw UserError("O modelo do relatório \"" + identifier + "\" não tem a linha \"dados\"." +
                    (result.errors.empty() ? "" : "\n" + result.errors[0]));
  }
  if (result.title.empty()) result.title = identifier;
  return result;
}

}  // namespace orv
