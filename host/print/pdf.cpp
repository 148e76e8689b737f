#include <cairo-ft.h>
#include <cairo-pdf.h>
#include <ft2build.h>

#include FT_FREETYPE_H

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "host/print/chart.h"
#include "host/print/format.h"
#include "host/print/sheet_form.h"
#include "host/print/writers.h"
#include "toolkit/text.h"

namespace orv {
namespace {

constexpr double kLong = 841.89, kShort = 595.28, kMargin = 34;  // points
constexpr double kLargest = 8.5, kSmallest = 4.5;
constexpr double kHead = 44;
constexpr double kMillimetre = 72 / 25.4;
constexpr double kPicture = 190, kPictureFont = 7;

template <auto destroy>
struct Destroy {
  template <class T>
  void operator()(T* object) const {
    destroy(object);
  }
};

std::string FontFile(const std::string& name) {
  for (const char* folder :
       {"/usr/share/fonts/truetype/dejavu/", "/usr/share/fonts/dejavu/", "/usr/local/share/fonts/"}) {
    const std::string file = folder + name;
    if (std::filesystem::exists(file)) return file;
  }
  // Without its fonts the library writes an empty page and says nothing.
  throw UserError("Falta a fonte " + name + ". Instale o pacote fonts-dejavu-core.");
}

// The library keeps what was made with a face beyond its last use: faces stay for the life of the program,
// and one report is written at a time.
class Faces {
 public:
  struct Face {
    FT_Face face = nullptr;
    cairo_font_face_t* drawn = nullptr;
  };

  static Faces& Instance() {
    static Faces faces;
    return faces;
  }
  Face Plain() { return Get("DejaVuSans.ttf"); }
  Face Bold() { return Get("DejaVuSans-Bold.ttf"); }

  std::mutex mutex;

 private:
  Face Get(const std::string& name) {
    Face& face = faces_[name];
    if (face.drawn != nullptr) return face;
    if (library_ == nullptr && FT_Init_FreeType(&library_) != 0) {
      throw UserError("As fontes não puderam ser preparadas.");
    }
    if (FT_New_Face(library_, FontFile(name).c_str(), 0, &face.face) != 0) {
      throw UserError("A fonte " + name + " não pôde ser lida.");
    }
    face.drawn = cairo_ft_font_face_create_for_ft_face(face.face, FT_LOAD_NO_HINTING);
    return face;
  }

  FT_Library library_ = nullptr;
  std::map<std::string, Face> faces_;
};

// A font at one size, with the places of its characters kept.
class Font {
 public:
  Font(Faces::Face face, double size) : size_(size), face_(face.face) {
    cairo_matrix_t scale, same;
    cairo_matrix_init_scale(&scale, size, size);
    cairo_matrix_init_identity(&same);
    std::unique_ptr<cairo_font_options_t, Destroy<cairo_font_options_destroy>> options(
        cairo_font_options_create());
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    scaled_.reset(cairo_scaled_font_create(face.drawn, &scale, &same, options.get()));
    if (cairo_scaled_font_status(scaled_.get()) != CAIRO_STATUS_SUCCESS) {
      throw UserError("As fontes não puderam ser usadas.");
    }
  }

  cairo_scaled_font_t* Get() const { return scaled_.get(); }

  double Width(std::string_view text) {
    double width = 0;
    Each(text, [&](std::string_view, const Glyph& glyph) { width += glyph.advance; });
    return width;
  }

  // The text as far as the width holds it, cut with "…".
  std::string Cut(std::string_view text, double width) {
    if (Width(text) <= width + 0.01) return std::string(text);
    double left = width - Width("…");
    std::string cut;
    bool full = false;
    Each(text, [&](std::string_view character, const Glyph& glyph) {
      left -= glyph.advance;
      full = full || left < 0;
      if (!full) cut += character;
    });
    cut.erase(cut.find_last_not_of(' ') + 1);
    return cut + "…";
  }

  // Shows as much of the text as the width holds.
  void Show(cairo_t* context, std::string_view text, double x, double y, double width) {
    glyphs_.clear();
    clusters_.clear();
    std::size_t bytes = 0;
    double at = x;
    Each(text, [&](std::string_view character, const Glyph& glyph) {
      if (at + glyph.advance > x + width + 0.01) at = x + 2 * width;
      if (at >= x + 2 * width) return;
      glyphs_.push_back({glyph.index, at, y});
      clusters_.push_back({static_cast<int>(character.size()), 1});
      bytes += character.size();
      at += glyph.advance;
    });
    if (glyphs_.empty()) return;
    cairo_show_text_glyphs(context, text.data(), static_cast<int>(bytes), glyphs_.data(),
                           static_cast<int>(glyphs_.size()), clusters_.data(),
                           static_cast<int>(clusters_.size()), cairo_text_cluster_flags_t(0));
  }

 private:
  struct Glyph {
    unsigned long index = 0;
    double advance = 0;
  };

  template <class Do>
  void Each(std::string_view text, Do act) {
    while (!text.empty()) {
      const std::string_view character = CutChars(text, 1);
      act(character, Of(character));
      text.remove_prefix(character.size());
    }
  }

  const Glyph& Of(std::string_view character) {
    if (character.size() == 1) {
      auto& [known, glyph] = plain_[static_cast<unsigned char>(character[0])];
      if (!known) glyph = Find(static_cast<unsigned char>(character[0])), known = true;
      return glyph;
    }
    const auto [found, fresh] = others_.try_emplace(std::string(character));
    if (fresh) {
      // The bits after the mark of the first byte, then six of each other one.
      const auto first = static_cast<unsigned char>(character[0]);
      FT_ULong code = first & (0xFFU >> (character.size() + 1));
      for (const char c : character.substr(1)) code = (code << 6) | (static_cast<unsigned char>(c) & 0x3F);
      found->second = Find(code);
    }
    return found->second;
  }

  Glyph Find(FT_ULong code) {
    const FT_UInt index = FT_Get_Char_Index(face_, code);
    if (FT_Load_Glyph(face_, index, FT_LOAD_NO_SCALE) != 0) return {index, size_ / 2};
    return {index, static_cast<double>(face_->glyph->advance.x) * size_ / face_->units_per_EM};
  }

  double size_;
  FT_Face face_;
  std::unique_ptr<cairo_scaled_font_t, Destroy<cairo_scaled_font_destroy>> scaled_;
  struct Known {
    bool known = false;
    Glyph glyph;
  };
  std::array<Known, 256> plain_;
  std::unordered_map<std::string, Glyph> others_;
  std::vector<cairo_glyph_t> glyphs_;
  std::vector<cairo_text_cluster_t> clusters_;
};

void Check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) {
    throw UserError("O PDF não pôde ser gravado: " + std::string(cairo_status_to_string(status)) + ".");
  }
}

class Pdf {
 public:
  Pdf(const Report& report, const std::filesystem::path& file)
      : report_(report),
        width_(report.sheet_width > 0 ? report.sheet_width * kMillimetre
               : report.landscape     ? kLong
                                      : kShort),
        height_(report.sheet_width > 0 ? report.sheet_height * kMillimetre
                : report.landscape     ? kShort
                                       : kLong),
        size_(Size()),
        step_(size_ * 1.45),
        plain_(Faces::Instance().Plain(), size_),
        bold_(Faces::Instance().Bold(), size_),
        large_(Faces::Instance().Bold(), 11),
        small_(Faces::Instance().Plain(), kPictureFont),
        surface_(cairo_pdf_surface_create(file.c_str(), width_, height_)),
        context_(cairo_create(surface_.get())) {
    Check(cairo_surface_status(surface_.get()));
    for (const auto& columns : report.columns) places_.push_back(ColumnPlaces(columns));
    cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_TITLE, report.title.c_str());
  }

  void Draw() {
    if (report_.sheet_width > 0) {
      Sheets();
    } else {
      Lines();
    }
    cairo_surface_finish(surface_.get());
    Check(cairo_surface_status(surface_.get()));
  }

 private:
  void Lines() {
    WrapFilters();
    const double head = kHead + 11 * static_cast<double>(report_.subtitles.size() + filters_.size());
    const auto fits =
        std::max<std::size_t>(static_cast<std::size_t>((height_ - 2 * kMargin - head) / step_), 10);
    picture_ = std::min(static_cast<std::size_t>(kPicture / step_), fits - 4);
    const auto pages = Pages(report_, fits, picture_, true);
    for (std::size_t page = 0; page < pages.size(); ++page) {
      Head(page + 1, pages.size());
      double y = kMargin + head + size_;
      for (const PageLine& line : pages[page]) {
        Line(line, y);
        y += step_;
      }
      EndPage();
    }
  }

  void EndPage() {
    cairo_show_page(context_.get());
    Check(cairo_status(context_.get()));
  }

  // The sheets as they are; what couldn't be printed on one of its own.
  void Sheets() {
    Pen();
    std::map<std::pair<bool, double>, Font> fonts;
    for (const ReportSheet& sheet : report_.sheets) {
      for (const PlacedText& placed : sheet) {
        const auto font = [&](double size) -> Font& {
          const auto face = placed.bold ? Faces::Instance().Bold() : Faces::Instance().Plain();
          return fonts.try_emplace({placed.bold, size}, face, size).first->second;
        };
        const FittedText fitted =
            Fit(placed, [&](std::string_view text) { return font(placed.size).Width(text) / kMillimetre; });
        double y = placed.y * kMillimetre;
        for (const std::string& line : fitted.lines) {
          Text(font(placed.size * fitted.scale), line, placed.x * kMillimetre, y,
               placed.width * kMillimetre + 0.1, placed.align);
          y += placed.step * kMillimetre;
        }
      }
      EndPage();
    }
    double y = kMargin;
    for (const std::string& note : report_.notes)
      Text(plain_, "* " + note, kMargin, y += step_, width_ - 2 * kMargin, Align::Left);
    if (report_.sheets.empty() || !report_.notes.empty()) EndPage();
  }

  // So that the widest section fits.
  double Size() const {
    std::size_t widest = 1;
    for (const auto& columns : report_.columns) widest = std::max(widest, ColumnPlaces(columns).back());
    return std::clamp((width_ - 2 * kMargin) / (static_cast<double>(widest) * 0.62), kSmallest, kLargest);
  }

  double X(std::size_t section, std::size_t column) const {
    const auto& places = places_[section];
    return kMargin +
           (width_ - 2 * kMargin) * static_cast<double>(places[column]) / static_cast<double>(places.back());
  }

  void Colour(uint32_t colour) {
    const auto part = [&](int bits) { return static_cast<double>((colour >> bits) & 255) / 255; };
    cairo_set_source_rgb(context_.get(), part(16), part(8), part(0));
  }

  void Pen(uint8_t style = kPlain) {
    const uint32_t colour = TextColour(style);
    Colour(colour == 0 ? ColourOf(Ink::Text) : colour);
  }

  void Fill(double x, double y, double width, double height) {
    cairo_rectangle(context_.get(), x, y, width, height);
    cairo_fill(context_.get());
  }

  void Rule(double y, double thickness) { Rule(kMargin, y, width_ - 2 * kMargin, thickness); }
  void Rule(double x, double y, double width, double thickness) {
    cairo_set_line_width(context_.get(), thickness);
    cairo_move_to(context_.get(), x, y);
    cairo_line_to(context_.get(), x + width, y);
    cairo_stroke(context_.get());
  }

  void Text(Font& font, std::string_view text, double x, double y, double width, Align align) {
    cairo_set_scaled_font(context_.get(), font.Get());
    if (align != Align::Left) {
      const double wanted = font.Width(text);
      if (wanted > width && align == Align::Right) {
        // An amount that doesn't fit is never cut.
        const auto marks = static_cast<std::size_t>(std::max(1.0, width / font.Width("#")));
        font.Show(context_.get(), std::string(marks, '#'), x, y, width);
        return;
      }
      if (wanted < width) x += align == Align::Right ? width - wanted : (width - wanted) / 2;
      width = std::max(width, wanted);
    }
    font.Show(context_.get(), font.Cut(text, width), x, y, width);
  }

  void Head(std::size_t page, std::size_t pages) {
    Pen();
    const double whole = width_ - 2 * kMargin;
    Text(large_, report_.title, kMargin, kMargin + 11, whole * 0.7, Align::Left);
    Text(plain_, "Página " + std::to_string(page) + " de " + std::to_string(pages), kMargin, kMargin + 11,
         whole, Align::Right);
    Text(plain_, report_.company, kMargin, kMargin + 24, whole * 0.6, Align::Left);
    Text(plain_, FormatValue(Value(report_.when), "dd/mm/yyyy hh:nn") + "  " + report_.user, kMargin,
         kMargin + 24, whole, Align::Right);
    double y = kMargin + 24;
    for (const std::string& subtitle : report_.subtitles)
      Text(plain_, subtitle, kMargin, y += 11, whole, Align::Left);
    Pen(kMuted);
    for (const std::string& line : filters_) Text(plain_, line, kMargin, y += 11, whole, Align::Left);
    Pen();
    Rule(y + 6, 0.8);
  }

  // As many of them on a line as fit.
  void WrapFilters() {
    for (const std::string& filter : report_.filters) {
      const bool fits =
          !filters_.empty() && plain_.Width(filters_.back() + "    " + filter) <= width_ - 2 * kMargin;
      if (fits) {
        filters_.back() += "    " + filter;
      } else {
        filters_.push_back(filter);
      }
    }
  }

  void Line(const PageLine& line, double y) {
    const double whole = width_ - 2 * kMargin;
    switch (line.kind) {
      case PageLine::Kind::Line:
        Cells(report_.lines[line.index], y);
        break;
      case PageLine::Kind::Titles:
        Pen();
        for (std::size_t at = 0; at < report_.columns[line.index].size(); ++at) {
          const PrintColumn& column = report_.columns[line.index][at];
          const double x = X(line.index, at);
          const double room = X(line.index, at + 1) - x - size_ * 0.4;
          const bool cut = bold_.Width(column.title) > room;
          Text(bold_, column.title, x, y, room, cut ? Align::Left : column.align);
        }
        Rule(y + step_ * 0.28, 0.4);
        break;
      case PageLine::Kind::Heading:
        Pen();
        Text(bold_, report_.headings[line.index], kMargin, y, whole, Align::Left);
        break;
      case PageLine::Kind::Note:
        Pen(kAlert);
        Text(plain_, "* " + report_.notes[line.index], kMargin, y, whole, Align::Left);
        break;
      case PageLine::Kind::Picture:
        Picture(report_.pictures[line.index], y - size_);
        break;
      case PageLine::Kind::Blank:
        break;
    }
  }

  // What lies under the texts of a line or a cell.
  void Ground(uint8_t style, double x, double y, double width) {
    if (const uint32_t colour = GroundColour(style); colour != 0) {
      Colour(colour);
      Fill(x, y - step_ * 0.75, width, step_);
    }
    Pen(style);
    if ((style & kRule) != 0) Rule(x, y - step_ * 0.75, width, 0.4);
  }

  void Cells(const ReportLine& line, double y) {
    Ground(line.style, kMargin, y, width_ - 2 * kMargin);
    for (const ReportCell& cell : line.cells) {
      const double x = X(line.section, cell.column);
      const double room = X(line.section, cell.column + cell.span) - x - size_ * 0.4;
      if (cell.style != kPlain) Ground(cell.style, x, y, room);
      const uint8_t style = line.style | cell.style;
      Pen(style);
      Text((style & kBold) != 0 ? bold_ : plain_, cell.text, x, y, room,
           report_.columns[line.section][cell.column].align);
    }
  }

  // --- Pictures.

  void Picture(const ReportPicture& picture, double y) {
    cairo_save(context_.get());
    cairo_translate(context_.get(), kMargin, y);
    // The last line stays blank.
    const double height = static_cast<double>(picture_ - 1) * step_;
    for (const Shape& shape : orv::Draw(picture, width_ - 2 * kMargin, height, kPictureFont))
      std::visit([&](const auto& one) { Shown(one); }, shape);
    cairo_restore(context_.get());
  }
  void Shown(const Box& box) {
    Colour(ColourOf(box.ink));
    Fill(box.x, box.y, box.width, box.height);
  }
  void Shown(const Stroke& stroke) {
    Colour(ColourOf(stroke.ink));
    const double dash = kPictureFont * 0.6;
    cairo_set_dash(context_.get(), &dash, stroke.dashed ? 1 : 0, 0);
    cairo_set_line_width(context_.get(), stroke.width);
    for (const auto& [x, y] : stroke.points) cairo_line_to(context_.get(), x, y);
    cairo_stroke(context_.get());
  }
  void Shown(const Dot& dot) {
    Colour(ColourOf(dot.ink));
    cairo_arc(context_.get(), dot.x, dot.y, dot.radius, 0, 6.2832);
    cairo_fill(context_.get());
  }
  void Shown(const Caption& caption) {
    Pen();
    cairo_set_scaled_font(context_.get(), small_.Get());
    const double width = small_.Width(caption.text);
    const double before = caption.align == Align::Left    ? 0
                          : caption.align == Align::Right ? width
                                                          : width / 2;
    small_.Show(context_.get(), caption.text, caption.x - before, caption.y, width);
  }

  const Report& report_;
  double width_, height_, size_, step_;
  std::size_t picture_ = 0;  // lines of one
  std::vector<std::string> filters_;
  Font plain_, bold_, large_, small_;
  std::unique_ptr<cairo_surface_t, Destroy<cairo_surface_destroy>> surface_;
  std::unique_ptr<cairo_t, Destroy<cairo_destroy>> context_;
  std::vector<std::vector<std::size_t>> places_;
};

}  // namespace

void WriteReportPdf(const Report& report, const std::filesystem::path& file) {
  const std::lock_guard lock(Faces::Instance().mutex);
  Pdf(report, file).Draw();
}

}  // namespace orv
