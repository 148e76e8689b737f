#include "host/print/report.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "host/print/format.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr int64_t kAhead = 1000;  // rows read at once
constexpr std::size_t kMostNotes = 50;
constexpr std::size_t kMostLines = 3'000'000;
constexpr std::size_t kLongestText = 2000;  // characters of a cell

// A data set that the template reads, and the row of it that stands.
struct Source {
  DataSet* set = nullptr;
  int64_t row = 0;
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
    report_.notes = form.errors;
    sums_.resize(form.values.size());
  }

  Report Make() {
    for (std::size_t at = 0; at < form_.values.size(); ++at) {
      const std::string& set = form_.values[at].set;
      const bool walked = std::any_of(form_.sections.begin(), form_.sections.end(),
                                      [&](const ReportSection& one) { return SameText(one.set, set); });
      if (!walked) SumBeforehand(at);
    }
    for (const ReportText& subtitle : form_.subtitles) report_.subtitles.push_back(Print(subtitle, 0));
    for (const ReportSection& section : form_.sections) Walk(section);
    for (const Source& source : sources_) Keep(*source.set);
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
      if (const auto value = input_.control ? input_.control(name) : std::nullopt) {
        meaning.fixed = *value;
        return meaning;
      }
      meaning.kind = Meaning::Kind::Missing;
      meaning.why = name + " não é um valor nem um campo da tela";
      return meaning;
    }
    const std::string set = name.substr(0, point);
    if (const auto source = SourceOf(set)) {
      meaning.kind = Meaning::Kind::Field;
      meaning.index = *source;
      meaning.field = sources_[*source].set->FindField(name.substr(point + 1));
      if (meaning.field != nullptr) return meaning;
      meaning.why = "o campo " + name.substr(point + 1) + " não existe em " + set;
    } else {
      meaning.why = "o conjunto " + set + " não existe ou está fechado";
    }
    meaning.kind = Meaning::Kind::Missing;
    return meaning;
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
    Names(const Layout& layout, const std::vector<Meaning>& meanings)
        : layout_(layout), meanings_(meanings) {}
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
    const Layout& layout_;
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

  void Walk(const ReportSection& section) {
    const auto number = static_cast<uint16_t>(report_.columns.size());
    report_.columns.push_back(section.columns);
    report_.headings.push_back(section.heading);
    const auto source = SourceOf(section.set);
    if (!source) {
      Note(section.line, "o conjunto " + section.set + " não existe ou está fechado");
      return;
    }
    std::vector<std::size_t> own;
    for (std::size_t at = 0; at < form_.values.size(); ++at) {
      if (!SameText(form_.values[at].set, section.set)) continue;
      own.push_back(at);
      sums_[at] = Value(Currency());
    }
    const int64_t count = sources_[*source].set->DisplayCount();
    if (count > 0) Stand(*source, 0, count);
    Bands(section, number, BandKind::Head, 0);

    std::vector<Value> keys(section.groups.size());
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
        Close(section, number, changed, own);
        sources_[*source].row = row;
      }
      std::swap(keys, fresh_keys_);
      fresh_keys_.clear();
      for (std::size_t at = changed; at < section.groups.size(); ++at) {
        // The first group stands on the first page anyway.
        new_page_ = new_page_ || (row > 0 && section.groups[at].new_page);
        Bands(section, number, BandKind::GroupHead, at);
      }
      for (const std::size_t value : own) Add(value);
      Bands(section, number, BandKind::Detail, 0);
    }
    if (count > 0) {
      sources_[*source].row = count - 1;
      Close(section, number, 0, own);
    }
    Bands(section, number, BandKind::Foot, 0);
    // Of several sections one with nothing to print is left out, titles and all.
    if (form_.sections.size() > 1 && (report_.lines.empty() || report_.lines.back().section != number)) {
      report_.columns.pop_back();
      report_.headings.pop_back();
    }
  }

  // The feet of the groups from the innermost to `outermost`, whose sums begin anew.
  void Close(const ReportSection& section, uint16_t number, std::size_t outermost,
             const std::vector<std::size_t>& own) {
    for (std::size_t at = section.groups.size(); at-- > outermost;) {
      Bands(section, number, BandKind::GroupFoot, at);
      for (const std::size_t value : own) {
        if (SameText(form_.values[value].group, section.groups[at].name)) sums_[value] = Value(Currency());
      }
    }
  }

  void Bands(const ReportSection& section, uint16_t number, BandKind kind, std::size_t group) {
    for (const Band& band : section.bands) {
      if (band.kind != kind ||
          (band.group != group && (kind == BandKind::GroupHead || kind == BandKind::GroupFoot))) {
        continue;
      }
      // A condition that can't be worked out hides nothing.
      if (band.when && !IsTrue(Work(*band.when, band.line).value_or(Value(1)))) continue;
      const bool first = !band.style_when || IsTrue(Work(*band.style_when, band.line).value_or(Value()));
      for (const auto& [cells, line] : band.lines) {
        if (report_.lines.size() >= kMostLines) {
          Note(line, "o relatório passa de " + std::to_string(kMostLines) + " linhas; o resto ficou de fora");
          return;
        }
        ReportLine printed{number,
                           first ? band.style : band.style_else,
                           std::exchange(new_page_, false),
                           kind == BandKind::Head || kind == BandKind::GroupHead,
                           kind == BandKind::Foot || kind == BandKind::GroupFoot,
                           {}};
        printed.cells.reserve(cells.size());
        for (const BandCell& cell : cells) {
          std::string text = Print(cell.text, line);
          if (text.empty()) continue;
          printed.cells.push_back(
              {std::move(text), static_cast<uint16_t>(cell.column), static_cast<uint16_t>(cell.span)});
        }
        report_.lines.push_back(std::move(printed));
      }
    }
  }

  void Keep(DataSet& set) {
    ReportRows kept;
    kept.set = set.Name();
    for (const Field* field : set.Fields()) {
      kept.fields.push_back(field->Name());
      kept.types.push_back(field->Type());
    }
    const int64_t count = set.DisplayCount();
    kept.rows.reserve(static_cast<std::size_t>(count));
    for (int64_t row = 0; row < count; ++row) {
      if (row % kAhead == 0) set.Prepare(row, std::min(kAhead, count - row));
      std::vector<Value> values;
      values.reserve(kept.fields.size());
      for (const Field* field : set.Fields()) values.push_back(set.Cell(row, *field));
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
  std::set<std::string> noted_;
  std::vector<Value> fresh_keys_;
  bool new_page_ = false;
};

}  // namespace

std::size_t Report::Size() const {
  std::size_t size = 0;
  for (const ReportLine& line : lines) size += line.cells.size();
  for (const ReportRows& set : sets) size += set.rows.size() * set.fields.size();
  return size;
}

Report LayOut(const ReportTemplate& form, const ReportInput& input) { return Layout(form, input).Make(); }

}  // namespace orv
