#include "host/data/versions.h"

#include <charconv>
#include <string>

#include "host/data/service.h"
#include "toolkit/database.h"
#include "toolkit/text.h"

namespace orv {

int64_t DeadVersions(std::string_view database, std::string_view table) {
  PrepareEngine();
  const DatabaseAddress address = ParseAddress(database);
  fb::Service service(address);
  fb::ParameterBlock task;
  task.Tag(isc_action_svc_db_stats)
      .LongText(isc_spb_dbname, fb::NameAtServer(address))
      .Plain(isc_spb_options, isc_spb_sts_data_pages | isc_spb_sts_record_versions);
  service.Start(task);
  std::string text;
  service.Run([&](std::string_view part) { text += part; });
  // "TABLE (128)" heads a table's figures, "total versions: 12" is among them.
  const std::size_t head = text.find("\n" + Upper(table) + " (");
  const std::string_view label = "total versions: ";
  const std::size_t at = head == std::string::npos ? head : text.find(label, head);
  if (at == std::string::npos)
    throw DatabaseError(DatabaseError::Kind::Other, 0,
                        "A tabela não consta das estatísticas do banco de dados.",
                        std::string(table) + "\n" + text);
  int64_t versions = 0;
  std::from_chars(text.data() + at + label.size(), text.data() + text.size(), versions);
  return versions;
}

}  // namespace orv
