#include <fstream>

#include "host/print/writers.h"

namespace orv {

void WriteReport(const Report& report, std::string_view format, const std::filesystem::path& file,
                 std::size_t table) {
  if (format == "pdf") return WriteReportPdf(report, file);
  if (format == "xlsx") return WriteXlsx(report.sets, report.when, file);
  std::ofstream out(file, std::ios::binary);
  out << (format == "html"             ? ReportHtml(report)
          : format == "txt"            ? ReportText66(report)
          : table < report.sets.size() ? TableCsv(report.sets[table])
                                       : "");
  out.close();
  if (!out) throw UserError("O relatório não pôde ser gravado. Verifique o espaço em disco.");
}

}  // namespace orv
