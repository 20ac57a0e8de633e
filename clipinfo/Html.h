#ifndef CLIPPARSER_CLIPINFO_HTML_H
#define CLIPPARSER_CLIPINFO_HTML_H

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// Text for an HTML page, in attributes as well. What a terminal must not show appears as \xNN, as everywhere.
[[nodiscard]] std::string HtmlText(std::string_view text);
// 1,459,796
[[nodiscard]] std::string GroupedText(unsigned long long number);
// 1.46 MB; powers of 1000
[[nodiscard]] std::string SizeText(unsigned long long bytes);
// Of a coordinate or percentage: at most two digits behind the point.
[[nodiscard]] std::string DecimalText(double number);

// A table; cells are HTML. Columns whose name begins with a number sign hold numbers; it is not shown.
class HtmlTable {
 public:
  HtmlTable(std::ostream& out, const std::string& caption, const std::vector<std::string>& columns);
  ~HtmlTable();
  HtmlTable(const HtmlTable&) = delete;
  HtmlTable& operator=(const HtmlTable&) = delete;

  void Row(const std::vector<std::string>& cells);

 private:
  std::ostream& m_out;
  std::vector<bool> m_isNumber;
};

#endif  // CLIPPARSER_CLIPINFO_HTML_H
