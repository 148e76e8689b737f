// Filters kept under names, and favourite reports: a screen, its filters and what prints.
#include <algorithm>

#include "desk/session/session.h"
#include "frame/filters.h"
#include "frame/registry.h"
#include "frame/screen.h"
#include "toolkit/controls.h"
#include "toolkit/text.h"

namespace orv {
namespace {

std::string Member(const Json& in, const char* member) {
  return in[member].IsString() ? in[member].String() : "";
}
bool Flag(const Json& in, const char* member) { return in[member].IsBool() && in[member].Bool(); }

Json::Array Texts(const std::vector<std::string>& texts) { return {texts.begin(), texts.end()}; }

// Brings the pages to the front in which a control stands.
void Reveal(const Control& control) {
  for (Control* at = control.Parent(); at != nullptr; at = at->Parent()) {
    auto* pages = dynamic_cast<PageControl*>(at->Parent());
    if (pages != nullptr && !pages->ShowsChild(*at)) pages->UserPage(at->Name());
  }
}

std::string PlainCaption(const Control& control) { return ReplaceAll(control.Caption(), "&", ""); }

}  // namespace

KeptFilters Session::Kept() { return KeptFilters(*attachment_, services_->Login(), standing_.administrator); }

std::string Session::BarName(const Screen& screen) {
  const auto bar = FilterBarOf(screen);
  if (!bar || screen.Kind() != ScreenKind::Child) throw RequestError("A tela não tem filtros para guardar.");
  return screen.ClassName() + "." + bar->query->Name();
}

void Session::FiltersAct(const Json& in) {
  Screen& screen = TopScreen();
  const std::string bar = BarName(screen), act = Member(in, "act"), name = Member(in, "name");
  KeptFilters kept = Kept();
  Json::Array left;
  if (act == "save") {
    FieldTexts filters = ReadFilters(screen);
    if (!Flag(in, "fixed")) filters = WithRelativeDays(screen, std::move(filters), application_->Today());
    kept.Save(bar, {name, Flag(in, "shared"), std::move(filters)});
    attachment_->CommitRetaining();
  } else if (act == "use") {
    const auto filters = kept.Filters(bar);
    const auto found = std::ranges::find_if(filters, [&](const KeptFilter& one) {
      return SameText(one.name, name) && (!in.Has("shared") || one.shared == Flag(in, "shared"));
    });
    if (found == filters.end()) throw RequestError("Não há filtros com o nome \"" + name + "\".");
    left = GiveFilters(screen, found->fields);
  } else if (act == "delete") {
    if (!kept.Remove(bar, name, Flag(in, "shared")))
      throw RequestError("Não há filtros com o nome \"" + name + "\".");
    attachment_->CommitRetaining();
  } else if (act == "latest") {
    kept.SetBeginsWithLatest(bar, Flag(in, "value"));
    attachment_->CommitRetaining();
  } else if (!act.empty()) {
    throw RequestError("O pedido \"" + act + "\" não existe.");
  }
  SendFilters(screen, std::move(left));
}

void Session::SendFilters(const Screen& screen, Json::Array left) {
  const std::string bar = BarName(screen);
  KeptFilters kept = Kept();
  const FieldTexts& began = shown_.at(&screen).began;
  const FieldTexts now = WithRelativeDays(screen, ReadFilters(screen), application_->Today());
  Json::Array list;
  for (const KeptFilter& one : kept.Filters(bar))
    list.push_back(Json{
        {"name", one.name}, {"shared", one.shared}, {"told", Texts(ToldFilters(screen, one.fields, began))}});
  Send({{"on", "filters"},
        {"screen", shown_.at(&screen).id},
        {"list", std::move(list)},
        {"now", Texts(ToldFilters(screen, now, began))},
        {"moves", now != ReadFilters(screen)},
        {"latest", kept.BeginsWithLatest(bar)},
        {"mayShare", kept.MayShare()},
        {"left", std::move(left)}});
}

Json::Array Session::GiveFilters(Screen& screen, const FieldTexts& filters) {
  const FieldTexts wanted = WithDays(screen, filters, application_->Today());
  Fill(screen, wanted);
  Json::Array left;
  for (const auto& [name, text] : wanted) {
    const Control* control = screen.Find(name);
    if (control != nullptr && FieldText(*control) == text) continue;
    left.emplace_back(control == nullptr || control->Caption().empty() ? name : PlainCaption(*control));
  }
  if (const auto bar = FilterBarOf(screen)) screen.SetFocus(*bar->query);
  return left;
}

void Session::BeginWithLatest(Screen& screen) {
  if (screen.Kind() != ScreenKind::Child || !FilterBarOf(screen)) return;
  KeptFilters kept = Kept();
  const std::string bar = BarName(screen);
  if (kept.BeginsWithLatest(bar)) GiveFilters(screen, kept.Latest(bar));
}

void Session::KeepLatest(const Json& in) {
  const Screen* top = application_->Top();
  const std::string verb = Member(in, "do");
  if (top == nullptr || top != pressed_on_ || top->Kind() != ScreenKind::Child || pressed_.empty() ||
      (verb != "click" && verb != "key"))
    return;
  const auto bar = FilterBarOf(*top);
  if (!bar || !SameText(bar->query->Name(), pressed_)) return;
  KeptFilters kept = Kept();
  if (!kept.BeginsWithLatest(BarName(*top))) return;
  kept.SaveLatest(BarName(*top), WithRelativeDays(*top, ReadFilters(*top), application_->Today()));
  attachment_->CommitRetaining();
}

// --- Favourites.

void Session::FavouritesAct(const Json& in) {
  const std::string act = Member(in, "act"), name = Member(in, "name");
  KeptFilters kept = Kept();
  if (act == "save") {
    const auto found =
        std::ranges::find_if(reports_, [&](const Launched& one) { return in["report"] == Json(one.id); });
    if (found == reports_.end()) throw RequestError("O relatório não está mais aberto. Imprima-o de novo.");
    Favourite favourite = found->favourite;
    if (favourite.print.empty())
      throw RequestError("Este relatório não pode ser repetido: guarde-o a partir da tela que o imprime.");
    favourite.name = name;
    favourite.shared = Flag(in, "shared");
    kept.Save(favourite);
    attachment_->CommitRetaining();
  } else if (act == "delete") {
    if (!kept.RemoveFavourite(name, Flag(in, "shared")))
      throw RequestError("Não há relatório favorito com o nome \"" + name + "\".");
    attachment_->CommitRetaining();
  } else if (act == "run") {
    RunFavourite(in);
    return;
  } else if (!act.empty()) {
    throw RequestError("O pedido \"" + act + "\" não existe.");
  }
  SendFavourites();
}

void Session::SendFavourites() {
  KeptFilters kept = Kept();
  Json::Array list;
  for (const Favourite& one : kept.Favourites()) {
    const auto info = ClassRegistry::Instance().Find(one.screen_class);
    if (!info) continue;
    list.push_back(Json{{"name", one.name},
                        {"shared", one.shared},
                        {"screen", info->caption},
                        {"title", one.title},
                        {"mayOpen", application_->MayOpen(info->class_name)}});
  }
  Send({{"on", "favourites"}, {"list", std::move(list)}, {"mayShare", kept.MayShare()}});
}

void Session::RunFavourite(const Json& in) {
  const std::string name = Member(in, "name");
  const auto favourite =
      Kept().FindFavourite(name, in.Has("shared") ? std::optional(Flag(in, "shared")) : std::nullopt);
  if (!favourite) throw RequestError("Não há relatório favorito com o nome \"" + name + "\".");
  if (const Screen* top = application_->Top(); top != nullptr && top->Kind() == ScreenKind::Dialog)
    throw RequestError("Feche primeiro a janela \"" + top->Caption() + "\".");
  const auto info = ClassRegistry::Instance().Find(favourite->screen_class);
  if (!info || !application_->MayOpen(info->class_name))
    throw RequestError("Usuário sem permissão para abrir a tela do favorito \"" + favourite->name + "\".");
  Screen& screen = application_->Open(info->class_name);
  const auto press = [&](const std::string& button) {
    Control* control = screen.Find(button);
    if (control == nullptr || !control->Shown() || !control->Usable() ||
        (control->TakesFocus() && !screen.SetFocus(*control)))
      throw RequestError("O favorito \"" + favourite->name +
                         "\" não serve mais para esta tela. Imprima e guarde-o de novo.");
    control->UserClick();
  };
  Control* query = screen.Find(favourite->query);
  if (query != nullptr) Reveal(*query);
  const Json::Array left = GiveFilters(screen, favourite->fields);
  if (!left.empty()) {
    std::string names;
    for (const Json& one : left) names += (names.empty() ? "" : ", ") + one.String();
    throw RequestError("Filtros do favorito que não puderam ser preenchidos: " + names +
                       ". Confira-os na tela.");
  }
  press(favourite->query);
  pressed_on_ = &screen;
  pressed_ = favourite->print;
  press(favourite->print);
}

}  // namespace orv
