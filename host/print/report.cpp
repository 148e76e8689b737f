#include "host/print/report.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <unordered_map>

#include "host/print/format.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kAhead = 1000;  // rows read at once
constexpr std::size_t kMostNotes = 50;
constexpr std::size_t kMostLines = 3'000'000;
constexpr std::size_t kMostSheets = 5000;
constexpr std::size_t kLongestText = 2000;  // characters of a cell
constexpr std::size_t kMostPoints = 40 * kPointsAPicture;
constexpr double kLargestPoint = 1e15;
constexpr std::string_view kAmount = "#,##0.00";

// A data set that the template reads, and the row of it that stands.
struct Source {
  DataSet* set = nullptr;
  int64_t row = 0;
  std::unordered_map<std::size_t, uint8_t> looks{};  // as ReportRows keeps them
  // The titles of the report's columns in which its fields stand alone.
  std::unordered_map<const Field*, std::string> titles{};
  std::string heading{};  // of the section
  bool walked = false;
};

struct HashOfValue {
  std::size_t operator()(const Value& value) const { return value.Hash(); }
};

// The rows of an inner set by their keys.
struct Inner {
  std::optional<std::size_t> source;
  std::unordered_map<Value, std::vector<int64_t>, HashOfValue> rows;
};

// What a name of a formula stands for.
struct Meaning {
  enum class Kind : uint8_t { Missing, Field, Sum, Fixed };
  Kind kind = Kind::Missing;
  std::size_t index = 0;  // of the source, or of the value
  const Field* field = nullptr;
  Value fixed;
  std::string why;
};

class Layout {
 public:
  Layout(const ReportTemplate& form, const ReportInput& input) : form_(form), input_(input) {
    report_.identifier = form.identifier;
    report_.title = form.title;
    report_.company = input.company;
    report_.user = input.user;
    report_.when = input.now;
    report_.landscape = form.landscape;
    report_.sheet_width = form.sheet_width;
    report_.sheet_height = form.sheet_height;
    report_.notes = form.errors;
    sums_.resize(form.values.size());
  }

  Report Make() {
    for (std::size_t at = 0; at < form_.values.size(); ++at) {
      const bool walked = std::any_of(
          form_.sections.begin(), form_.sections.end(),
          [&](const ReportSection& one) { return LevelOf(one, form_.values[at].set).has_value(); });
      if (!walked) SumBeforehand(at);
    }
    for (const ReportText& subtitle : form_.subtitles) report_.subtitles.push_back(Print(subtitle, 0));
    for (const std::string& filter : input_.filters) {
      if (!Told(filter)) report_.filters.push_back(filter);
    }
    for (const ReportSection& section : form_.sections) Walk(section);
    std::stable_partition(sources_.begin(), sources_.end(), [](const Source& one) { return one.walked; });
    for (Source& source : sources_) Keep(source);
    return std::move(report_);
  }

 private:
  void Note(int line, const std::string& text) {
    const std::string note =
        (line > 0 ? "modelo " + form_.identifier + ", linha " + std::to_string(line) + ": "
                  : "modelo " + form_.identifier + ": ") +
        text + ".";
    if (report_.notes.size() < kMostNotes && noted_.insert(note).second) report_.notes.push_back(note);
  }

  // The place of a set among the sources, nothing when the screen has none of that name or it is closed.
  std::optional<std::size_t> SourceOf(std::string_view name) {
    for (std::size_t at = 0; at < sources_.size(); ++at) {
      if (SameText(sources_[at].set->Name(), name)) return at;
    }
    DataSet* set = input_.set ? input_.set(name) : nullptr;
    if (set == nullptr || !set->Active()) return std::nullopt;
    sources_.push_back({set, 0});
    return sources_.size() - 1;
  }

  Meaning MeaningOf(const std::string& name) {
    Meaning meaning;
    for (std::size_t at = 0; at < form_.values.size(); ++at) {
      if (SameText(form_.values[at].name, name)) {
        meaning.kind = Meaning::Kind::Sum;
        meaning.index = at;
        return meaning;
      }
    }
    meaning.kind = Meaning::Kind::Fixed;
    if (SameText(name, "hoje")) return meaning.fixed = Value(input_.now.Day()), meaning;
    if (SameText(name, "agora")) return meaning.fixed = Value(input_.now), meaning;
    if (SameText(name, "empresa")) return meaning.fixed = Value(input_.company), meaning;
    if (SameText(name, "usuario")) return meaning.fixed = Value(input_.user), meaning;
    if (SameText(name, "titulo")) return meaning.fixed = Value(form_.title), meaning;
    const std::size_t point = name.find('.');
    if (point == std::string::npos) {
      meaning.why = name + " não é um valor nem um campo da tela";
    } else if (const auto source = SourceOf(name.substr(0, point))) {
      meaning.kind = Meaning::Kind::Field;
      meaning.index = *source;
      meaning.field = sources_[*source].set->FindField(name.substr(point + 1));
      if (meaning.field != nullptr) return meaning;
      meaning.why = "o campo " + name.substr(point + 1) + " não existe em " + name.substr(0, point);
    } else {
      meaning.why = "o conjunto " + name.substr(0, point) + " não existe ou está fechado";
    }
    meaning.kind = Meaning::Kind::Missing;
    try {
      if (AnswerOf(name)) {
        meaning.fixed = Ask(name, {});
        meaning.kind = Meaning::Kind::Fixed;
      }
    } catch (const std::exception& e) {
      meaning.why = e.what();
    }
    return meaning;
  }

  // What the screen answers to a name; a value is asked once. Raises what the screen does.
  const std::optional<ReportAnswer>& AnswerOf(const std::string& name) {
    auto [found, fresh] = answers_.try_emplace(name);
    auto& answer = found->second;
    if (fresh && input_.answer) answer = input_.answer(name);
    if (fresh && answer && answer->parameters == 0) {
      answer->work = [value = answer->work({})](std::span<const Value>) { return value; };
    }
    return answer;
  }

  Value Ask(const std::string& name, std::span<const Value> arguments) {
    const auto& answer = AnswerOf(name);
    if (!answer) throw FormulaError("a função " + name + " não existe");
    RequireParameters(name, answer->parameters, arguments.size());
    return answer->work(arguments);
  }

  const std::vector<Meaning>& MeaningsOf(const Formula& formula) {
    auto [found, fresh] = meanings_.try_emplace(&formula);
    if (fresh) {
      // Finding one may find further sources, but no further formulas.
      for (const std::string& name : formula.Names()) found->second.push_back(MeaningOf(name));
    }
    return found->second;
  }

  class Names : public Formula::Scope {
   public:
    Names(Layout& layout, const std::vector<Meaning>& meanings) : layout_(layout), meanings_(meanings) {}
    Value Call(const std::string& function, std::span<const Value> arguments) const override {
      return layout_.Ask(function, arguments);
    }
    Value Name(std::size_t name) const override {
      const Meaning& meaning = meanings_[name];
      switch (meaning.kind) {
        case Meaning::Kind::Fixed:
          return meaning.fixed;
        case Meaning::Kind::Sum:
          return layout_.sums_[meaning.index];
        case Meaning::Kind::Field: {
          const Source& source = layout_.sources_[meaning.index];
          if (source.row < 0 || source.row >= source.set->DisplayCount()) return {};
          return source.set->Cell(source.row, *meaning.field);
        }
        case Meaning::Kind::Missing:
          break;
      }
      throw FormulaError(meaning.why);
    }

   private:
    Layout& layout_;
    const std::vector<Meaning>& meanings_;
  };

  // Nothing, and a note, for what can't be worked out.
  std::optional<Value> Work(const Formula& formula, int line) {
    try {
      return formula.Work(Names(*this, MeaningsOf(formula)));
    } catch (const FormulaError& e) {
      Note(line, e.what());
      return std::nullopt;
    }
  }

  std::string Print(const ReportText& text, int line) {
    std::string printed;
    for (const ReportText::Piece& piece : text.Pieces()) {
      printed += piece.text;
      if (!piece.formula) continue;
      const auto value = Work(*piece.formula, line);
      printed += value ? FormatValue(*value, piece.format) : std::string(kFault);
    }
    // A text of the database may hold what ends a line.
    std::replace_if(
        printed.begin(), printed.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    if (printed.size() > kLongestText) printed.resize(CutChars(printed, kLongestText).size());
    return printed;
  }

  // --- Sums.

  // Each term counts as money, so that many of them add up to the cent, where it is no text.
  void Add(std::size_t value) {
    const ReportValue& sum = form_.values[value];
    const auto term = Work(sum.formula, sum.line);
    if (!term || term->IsNull()) return;
    try {
      sums_[value] = Value(sums_[value].AsCurrency() + term->As(ValueKind::Currency).AsCurrency());
    } catch (const std::exception& e) {
      Note(sum.line, e.what());
    }
  }

  void SumBeforehand(std::size_t value) {
    const ReportValue& sum = form_.values[value];
    sums_[value] = Value(Currency());
    const auto source = SourceOf(sum.set);
    if (!source) {
      Note(sum.line, "o conjunto " + sum.set + " não existe ou está fechado");
      return;
    }
    const int64_t count = sources_[*source].set->DisplayCount();
    for (int64_t row = 0; row < count; ++row) {
      Stand(*source, row, count);
      Add(value);
    }
    sources_[*source].row = 0;
  }

  void Stand(std::size_t source, int64_t row, int64_t count) {
    Source& at = sources_[source];
    at.row = row;
    if (row % kAhead == 0) at.set->Prepare(row, std::min(kAhead, count - row));
  }

  // --- A section.

  // The level of a set's rows in a section, nothing where it isn't in it.
  static std::optional<std::size_t> LevelOf(const ReportSection& section, std::string_view set) {
    if (SameText(section.set, set)) return 0;
    for (std::size_t at = 0; at < section.inner.size(); ++at) {
      if (SameText(section.inner[at].set, set)) return at + 1;
    }
    return std::nullopt;
  }

  void Walk(const ReportSection& section) {
    section_ = &section;
    number_ = static_cast<uint16_t>(report_.columns.size());
    own_.assign(section.inner.size() + 1, {});
    for (std::size_t at = 0; at < form_.values.size(); ++at) {
      const auto level = LevelOf(section, form_.values[at].set);
      if (!level) continue;
      own_[*level].push_back(at);
      sums_[at] = Value(Currency());
    }
    report_.columns.push_back(section.columns);
    report_.headings.push_back(section.heading);
    report_.new_pages.push_back(section.new_page);
    const auto source = SourceOf(section.set);
    if (!source) {
      Note(section.line, "o conjunto " + section.set + " não existe ou está fechado");
      return;
    }
    level_source_.assign(1, *source);
    inner_.clear();
    for (const ReportInner& one : section.inner) inner_.push_back(IndexOf(one));
    for (std::size_t level = 0; level < level_source_.size(); ++level) {
      if (level == 0 || inner_[level - 1].source) NoteTitles(section, level);
    }
    if (section.chart) BeginPictures(*section.chart);
    const int64_t count = sources_[*source].set->DisplayCount();
    report_.walked += count;
    gap_ = false;
    if (count > 0) Stand(*source, 0, count);
    Bands(BandKind::Head);

    std::vector<Value> keys(section.groups.size());
    std::vector<std::size_t> sizes(section.groups.size());
    // The lines at which the groups began.
    std::vector<std::size_t> begins(section.groups.size(), report_.lines.size());
    for (int64_t row = 0; row < count; ++row) {
      Stand(*source, row, count);
      std::size_t changed = row == 0 ? 0 : section.groups.size();
      for (std::size_t at = 0; at < section.groups.size(); ++at) {
        Value key = Work(section.groups[at].by, section.groups[at].line).value_or(Value());
        if (row > 0 && changed == section.groups.size() && key != keys[at]) changed = at;
        fresh_keys_.push_back(std::move(key));
      }
      if (row > 0 && changed < section.groups.size()) {
        sources_[*source].row = row - 1;
        const std::size_t before = report_.lines.size();
        Close(changed, sizes);
        sources_[*source].row = row;
        // One line alone needs no room around it.
        gap_ = (report_.lines.size() > before || HasHead(section, changed)) &&
               report_.lines.size() > begins[changed] + 1;
      }
      std::swap(keys, fresh_keys_);
      fresh_keys_.clear();
      for (std::size_t at = 0; at < section.groups.size(); ++at) {
        ++sizes[at];
        if (at < changed) continue;
        begins[at] = report_.lines.size();
        // The first group stands on the first page anyway.
        new_page_ = new_page_ || (row > 0 && section.groups[at].new_page);
        Bands(BandKind::GroupHead, 0, at);
      }
      for (const std::size_t value : own_[0]) Add(value);
      if (section.chart) Point(*section.chart);
      Bands(BandKind::Detail);
      Under(0);
      if (form_.sheet_width > 0) Sheet();
    }
    if (count > 0) {
      sources_[*source].row = count - 1;
      Close(0, sizes);
    }
    Bands(BandKind::Foot);
    if (section.chart) EndPictures(static_cast<std::size_t>(count));
    // Of several sections one with nothing to print is left out, titles and all.
    const bool drawn = !report_.pictures.empty() && report_.pictures.back().section == number_;
    if (!drawn && form_.sections.size() > 1 &&
        (report_.lines.empty() || report_.lines.back().section != number_)) {
      report_.columns.pop_back();
      report_.headings.pop_back();
      report_.new_pages.pop_back();
    }
  }

  // Whether a group from this one inwards is led by lines.
  static bool HasHead(const ReportSection& section, std::size_t outermost) {
    return std::ranges::any_of(section.bands, [&](const Band& band) {
      return band.kind == BandKind::GroupHead && band.group >= outermost;
    });
  }

  // The feet of the groups from the innermost to `outermost`, whose sums and sizes begin anew.
  void Close(std::size_t outermost, std::vector<std::size_t>& sizes) {
    for (std::size_t at = section_->groups.size(); at-- > outermost;) {
      Bands(BandKind::GroupFoot, 0, at, std::exchange(sizes[at], 0) > 1);
      Anew(section_->groups[at].name);
    }
  }

  // The sums of a group or of an inner set.
  void Anew(std::string_view group) {
    for (const auto& values : own_) {
      for (const std::size_t value : values) {
        if (SameText(form_.values[value].group, group)) sums_[value] = Value(Currency());
      }
    }
  }

  // --- Rows under rows.

  // A blank text is none, as it is where a row has no such key.
  static Value Key(const Value& value) {
    return value.IsText() ? Trim(value.Text()).empty() ? Value() : Value(Trim(value.Text())) : value;
  }

  Inner IndexOf(const ReportInner& form) {
    Inner inner{SourceOf(form.set), {}};
    level_source_.push_back(inner.source.value_or(0));
    if (!inner.source) {
      Note(form.line, "o conjunto " + form.set + " não existe ou está fechado");
      return inner;
    }
    const int64_t count = sources_[*inner.source].set->DisplayCount();
    for (int64_t row = 0; row < count; ++row) {
      Stand(*inner.source, row, count);
      if (const auto key = Work(form.key, form.line)) inner.rows[Key(*key)].push_back(row);
    }
    sources_[*inner.source].row = 0;
    return inner;
  }

  // The rows of the inner sets that stand under the present row of a level.
  void Under(std::size_t level) {
    for (std::size_t at = 0; at < inner_.size(); ++at) {
      const ReportInner& form = section_->inner[at];
      if (form.under != level || !inner_[at].source || Full()) continue;
      const auto wanted = Work(form.wanted, form.line);
      const auto found = wanted ? inner_[at].rows.find(Key(*wanted)) : inner_[at].rows.end();
      if (found == inner_[at].rows.end()) continue;
      Anew(form.set);
      sources_[*inner_[at].source].row = found->second[0];
      Bands(BandKind::Head, at + 1);
      for (const int64_t row : found->second) {
        sources_[*inner_[at].source].row = row;
        for (const std::size_t value : own_[at + 1]) Add(value);
        Bands(BandKind::Detail, at + 1);
        Under(at + 1);
        if (Full()) return;
      }
      Bands(BandKind::Foot, at + 1, 0, found->second.size() > 1);
      sources_[*inner_[at].source].row = 0;
    }
  }

  // --- Bands.

  bool Full() const { return report_.lines.size() >= kMostLines; }

  uint8_t StyleOf(const Look& look, int line) {
    for (const Look::Case& one : look.cases) {
      if (IsTrue(Work(one.when, line).value_or(Value()))) return one.style;
    }
    return look.otherwise;
  }

  // The spreadsheet has the rows as they are: there the look falls to the fields that the cell names.
  void KeepLook(const BandCell& cell, std::size_t level, uint8_t style) {
    const std::size_t at = level_source_[level];
    for (const ReportText::Piece& piece : cell.text.Pieces()) {
      if (!piece.formula) continue;
      for (const Meaning& meaning : MeaningsOf(*piece.formula)) {
        if (meaning.kind != Meaning::Kind::Field || meaning.index != at) continue;
        Source& source = sources_[at];
        const auto& fields = source.set->Fields();
        const auto field = std::find(fields.begin(), fields.end(), meaning.field) - fields.begin();
        source.looks[static_cast<std::size_t>(source.row) * fields.size() + static_cast<std::size_t>(field)] =
            style;
      }
    }
  }

  void Bands(BandKind kind, std::size_t level = 0, std::size_t group = 0, bool several = true) {
    for (const Band& band : section_->bands) {
      if (band.kind != kind || band.level != level || band.group != group || (band.several && !several))
        continue;
      // A condition that can't be worked out hides nothing.
      if (band.when && !IsTrue(Work(*band.when, band.line).value_or(Value(1)))) continue;
      const uint8_t style = StyleOf(band.look, band.line);
      for (const auto& [cells, line] : band.lines) {
        if (Full()) {
          Note(line, "o relatório passa de " + std::to_string(kMostLines) + " linhas; o resto ficou de fora");
          return;
        }
        ReportLine printed{number_,
                           style,
                           std::exchange(new_page_, false),
                           kind == BandKind::Head || kind == BandKind::GroupHead,
                           kind == BandKind::Foot || kind == BandKind::GroupFoot,
                           std::exchange(gap_, false) && kind != BandKind::Foot,
                           {}};
        printed.cells.reserve(cells.size());
        for (const BandCell& cell : cells) {
          std::string text = Print(cell.text, line);
          const uint8_t look = StyleOf(cell.look, line);
          if (look != kPlain && kind == BandKind::Detail) KeepLook(cell, level, look);
          if (text.empty() && look == kPlain) continue;
          printed.cells.push_back(
              {std::move(text), static_cast<uint16_t>(cell.column), static_cast<uint16_t>(cell.span), look});
        }
        report_.lines.push_back(std::move(printed));
      }
    }
  }

  // --- Sheets.

  void Sheet() {
    if (report_.sheets.size() >= kMostSheets) {
      Note(section_->line, "há mais de " + std::to_string(kMostSheets) + " folhas; o resto ficou de fora");
      return;
    }
    ReportSheet sheet;
    for (const SheetField& field : section_->fields) {
      PlacedText placed{field.x,    field.y,     field.width, field.align, field.bold,
                        field.size, field.lines, field.step,  ""};
      if (field.set.empty()) {
        placed.text = Print(field.text, field.line);
        sheet.push_back(std::move(placed));
        continue;
      }
      const auto source = SourceOf(field.set);
      if (!source) {
        Note(field.line, "o conjunto " + field.set + " não existe ou está fechado");
        continue;
      }
      const int64_t count = sources_[*source].set->DisplayCount();
      for (int64_t row = 0; row < std::min<int64_t>(count, field.rows); ++row) {
        Stand(*source, row, count);
        placed.text = Print(field.text, field.line);
        sheet.push_back(placed);
        placed.y += field.step;
      }
      sources_[*source].row = 0;
    }
    report_.sheets.push_back(std::move(sheet));
  }

  // --- Pictures.

  // Without columns of its own a picture's rows stand in a table of what it shows.
  void BeginPictures(const ReportChart& chart) {
    points_ = {};
    points_.section = number_;
    for (const ReportChart::Series& one : chart.series) points_.series.push_back({one.title, one.bars, {}});
    if (!section_->columns.empty()) return;
    auto& columns = report_.columns.back();
    columns.push_back({"", 30, Align::Left});
    for (const ReportChart::Series& one : chart.series) columns.push_back({one.title, 18, Align::Right});
  }

  void Point(const ReportChart& chart) {
    const bool table = section_->columns.empty() && !Full();
    const bool drawn = points_.labels.size() < kMostPoints;
    if (!table && !drawn) return;
    std::string label = Print(chart.label, chart.line);
    ReportLine line{number_, kPlain, false, false, false, false, {{label, 0, 1, kPlain}}};
    for (std::size_t at = 0; at < chart.series.size(); ++at) {
      const auto value = Work(chart.series[at].formula, chart.line);
      const bool blank = value && Key(*value).IsNull();
      std::optional<double> point;
      try {
        if (value && !blank) point = value->AsFloat();
      } catch (const std::exception& e) {
        Note(chart.line, e.what());
      }
      if (point && !(std::abs(*point) <= kLargestPoint)) point.reset();
      if (drawn) points_.series[at].values.push_back(point);
      if (point) points_.low = std::min(points_.low, *point), points_.high = std::max(points_.high, *point);
      if (!blank) {
        line.cells.push_back({value ? FormatValue(*value, kAmount) : std::string(kFault),
                              static_cast<uint16_t>(at + 1), 1, kPlain});
      }
    }
    if (drawn) points_.labels.push_back(std::move(label));
    if (!table) return;
    line.new_page = std::exchange(new_page_, false);
    report_.lines.push_back(std::move(line));
  }

  // Parts the points into pictures.
  void EndPictures(std::size_t rows) {
    const std::size_t count = points_.labels.size();
    if (rows > count)
      Note(section_->chart->line,
           "o gráfico passa de " + std::to_string(kMostPoints) + " pontos; o resto ficou de fora");
    for (std::size_t from = 0; from < count; from += kPointsAPicture) {
      const std::size_t to = std::min(from + kPointsAPicture, count);
      const auto part = [&](const auto& whole) {
        return std::vector(whole.begin() + static_cast<std::ptrdiff_t>(from),
                           whole.begin() + static_cast<std::ptrdiff_t>(to));
      };
      ReportPicture picture{number_, "", part(points_.labels), {}, points_.low, points_.high};
      if (count > kPointsAPicture) {
        picture.part = "Pontos " + std::to_string(from + 1) + " a " + std::to_string(to) + " de " +
                       std::to_string(count);
      }
      for (const auto& one : points_.series)
        picture.series.push_back({one.title, one.bars, part(one.values)});
      report_.pictures.push_back(std::move(picture));
    }
  }

  // A subtitle says it already: each of its words with a figure stands there, dates also in two figures.
  bool Told(const std::string& filter) const {
    const std::size_t colon = filter.find(": ");
    const std::string said = colon == std::string::npos ? filter : filter.substr(colon + 2);
    const auto stands = [&](const std::string& text) {
      const bool date = text.size() == 10 && text[2] == '/' && text[5] == '/';
      return std::ranges::any_of(report_.subtitles, [&](const std::string& subtitle) {
        return subtitle.find(text) != std::string::npos ||
               (date && subtitle.find(text.substr(0, 6) + text.substr(8)) != std::string::npos);
      });
    };
    std::vector<std::string> words = Split(said, " ");
    std::erase_if(
        words, [](const std::string& word) { return word.find_first_of("0123456789") == std::string::npos; });
    return !words.empty() && std::ranges::all_of(words, stands);
  }

  // Which fields of a level's set stand in which columns of the report.
  void NoteTitles(const ReportSection& section, std::size_t level) {
    Source& source = sources_[level_source_[level]];
    source.walked = true;
    source.heading = section.heading;
    for (const Band& band : section.bands) {
      if (band.kind != BandKind::Detail || band.level != level) continue;
      for (const BandLine& line : band.lines) {
        for (const BandCell& cell : line.cells) {
          const auto& pieces = cell.text.Pieces();
          if (pieces.empty() || !pieces[0].text.empty() || !pieces[0].formula) continue;
          const auto& meanings = MeaningsOf(*pieces[0].formula);
          if (meanings.size() != 1 || meanings[0].kind != Meaning::Kind::Field ||
              meanings[0].index != level_source_[level])
            continue;
          sources_[level_source_[level]].titles.try_emplace(meanings[0].field,
                                                            section.columns[cell.column].title);
        }
      }
    }
  }

  // As a table under the captions that a person knows: those of the screen's grid in their order, then those
  // of the report. What has neither is of the program's own; a set of nothing else stands as it is.
  void Keep(Source& source) {
    DataSet& set = *source.set;
    const SetCaptions captions = input_.captions ? input_.captions(set) : SetCaptions{};
    const auto& all = set.Fields();
    std::vector<std::size_t> shown;
    ReportRows kept;
    const auto show = [&](const Field* field, const std::string& title, int decimals) {
      const auto at = static_cast<std::size_t>(std::find(all.begin(), all.end(), field) - all.begin());
      if (at == all.size() || title.empty() || std::ranges::find(shown, at) != shown.end()) return;
      shown.push_back(at);
      kept.fields.push_back(title);
      kept.decimals.push_back(decimals);
      kept.types.push_back(field->Type());
    };
    for (const auto& [field, title, decimals] : captions.columns) show(set.FindField(field), title, decimals);
    for (const Field* field : all) {
      const auto title = source.titles.find(field);
      if (title != source.titles.end() && std::ranges::find(kept.fields, title->second) == kept.fields.end())
        show(field, title->second, 2);
    }
    if (shown.empty() && !source.walked) return;
    if (shown.empty()) {
      for (const Field* field : all) show(field, field->Name(), 2);
    }
    kept.set = !captions.name.empty()    ? captions.name
               : !source.heading.empty() ? source.heading
               : source.walked           ? report_.title
                                         : set.Name();
    const std::string name = kept.set;
    for (int number = 2; std::ranges::find(report_.sets, kept.set, &ReportRows::set) != report_.sets.end();
         ++number)
      kept.set = name + " " + std::to_string(number);
    const int64_t count = set.DisplayCount();
    for (const auto& [place, look] : source.looks) {
      const auto at = std::ranges::find(shown, place % all.size());
      if (at != shown.end())
        kept.looks[place / all.size() * shown.size() + static_cast<std::size_t>(at - shown.begin())] = look;
    }
    kept.rows.reserve(static_cast<std::size_t>(count));
    for (int64_t row = 0; row < count; ++row) {
      if (row % kAhead == 0) set.Prepare(row, std::min(kAhead, count - row));
      std::vector<Value> values;
      values.reserve(kept.fields.size());
      for (const std::size_t at : shown) values.push_back(set.Cell(row, *all[at]));
      kept.rows.push_back(std::move(values));
    }
    report_.sets.push_back(std::move(kept));
  }

  const ReportTemplate& form_;
  const ReportInput& input_;
  Report report_;
  std::vector<Source> sources_;
  std::vector<Value> sums_;
  std::unordered_map<const Formula*, std::vector<Meaning>> meanings_;
  std::unordered_map<std::string, std::optional<ReportAnswer>, NameHash, NameEqual> answers_;
  std::set<std::string> noted_;
  // The section that is walked, the sources of its levels, the values of each level.
  const ReportSection* section_ = nullptr;
  uint16_t number_ = 0;
  std::vector<std::size_t> level_source_;
  std::vector<std::vector<std::size_t>> own_;
  std::vector<Inner> inner_;
  ReportPicture points_;
  std::vector<Value> fresh_keys_;
  bool new_page_ = false;
  bool gap_ = false;
};

}  // namespace

std::size_t Report::Size() const {
  std::size_t size = 0;
  for (const ReportLine& line : lines) size += line.cells.size();
  for (const ReportSheet& sheet : sheets) size += sheet.size();
  for (const ReportRows& set : sets) size += set.rows.size() * set.fields.size() + set.looks.size();
  return size;
}

Report LayOut(const ReportTemplate& form, const ReportInput& input) { return Layout(form, input).Make(); }

}  // namespace orv
