// Filters of screens and favourite reports under names: a user's own, and those that all users share.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/fill.h"
#include "host/services/preferences.h"

namespace orv {

struct KeptFilter {
  std::string name;
  bool shared = false;
  FieldTexts fields;
};

// How a report is made again: a screen, what is set on it, the button that asks for its rows ("" for none),
// and the control that prints.
struct Favourite {
  std::string name;
  bool shared = false;
  std::string screen_class, query, print, report, title;
  FieldTexts fields;
};

class KeptFilters {
 public:
  // Whoever may share writes what all have.
  KeptFilters(TOrvDatabase& db, const std::string& login, bool may_share)
      : own_(db, login), common_(db, ""), may_share_(may_share) {}

  bool MayShare() const { return may_share_; }

  // --- The caller commits. Raises UserError for a name or a content that is too long, for too many of them,
  // and where what is shared isn't the user's to change. `bar` names a screen's bar: its class and the button
  // that asks.
  std::vector<KeptFilter> Filters(const std::string& bar);
  void Save(const std::string& bar, const KeptFilter& filter);
  bool Remove(const std::string& bar, const std::string& name, bool shared);
  // With which the screen begins: the latest ones, where the user wants that.
  bool BeginsWithLatest(const std::string& bar);
  void SetBeginsWithLatest(const std::string& bar, bool on);
  FieldTexts Latest(const std::string& bar);
  void SaveLatest(const std::string& bar, const FieldTexts& fields);

  std::vector<Favourite> Favourites();
  // The user's own before that of all; nothing for an unknown name. Case is ignored.
  std::optional<Favourite> FindFavourite(std::string_view name, std::optional<bool> shared = {});
  void Save(const Favourite& favourite);
  bool RemoveFavourite(const std::string& name, bool shared);

 private:
  struct Entry {
    std::string name;
    bool shared = false;
    std::vector<std::string> lines;
  };
  // What is kept below a folder of paths, by names.
  std::vector<Entry> Read(const std::string& folder);
  void Write(const std::string& folder, const Entry& entry);
  bool Erase(const std::string& folder, const std::string& name, bool shared);
  Preferences& Of(bool shared);

  Preferences own_, common_;
  bool may_share_;
};

}  // namespace orv
