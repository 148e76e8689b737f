// The companies of the database and where their tables are.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/schema/sharing.h"
#include "toolkit/database.h"

namespace orv {

class Companies {
 public:
  // `current` gives the suffix of the company on which the shared table of companies stands.
  Companies(TOrvDatabase& db, std::function<std::string()> current);

  // The suffix of the company whose tables are named at this moment.
  std::string CurrentCompany() const { return current_(); }
  // The suffixes of all companies, in order, read anew.
  std::vector<std::string> Suffixes() const;

  // The logical names of the tables that all companies share; the same for the life of the session.
  const std::vector<std::string>& Shared() const { return sharing_.Tables(); }
  bool IsShared(std::string_view table) const { return sharing_.Holds(table); }
  // How that stood when the session began.
  const Sharing& GetSharing() const { return sharing_; }

  // The physical name of a company's table, with the table's name as it is given.
  std::string Physical(std::string_view table, std::string_view company) const {
    return sharing_.Physical(table, company);
  }

  // The statement for one company.
  std::string ForCompany(std::string_view sql, std::string_view company) const;
  // The statement once for each company in one UNION ALL, or once where `main_table`, or without one every
  // table of the statement, is shared: a second branch would repeat the same rows. Raises UserError when the
  // companies are more than one statement can hold.
  std::string ForAll(std::string_view sql, std::string_view main_table) const;

 private:
  TOrvDatabase& db_;
  std::function<std::string()> current_;
  Sharing sharing_;
};

}  // namespace orv
