#include "clipinfo/Html.h"

#include <cmath>
#include <iomanip>
#include <sstream>

#include "clipinfo/Text.h"

std::string HtmlText(std::string_view text) {
  std::string html;
  for (const char letter : Escaped(text)) {
    switch (letter) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += letter;
    }
  }
  return html;
}

std::string GroupedText(unsigned long long number) {
  std::string text = std::to_string(number);
  for (std::size_t place = text.size(); place > 3;) text.insert(place -= 3, 1, ',');
  return text;
}

std::string SizeText(unsigned long long bytes) {
  constexpr const char* kUnits[] = {"kB", "MB", "GB", "TB", "PB", "EB"};
  if (bytes < 1000) return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
  auto size = static_cast<double>(bytes) / 1000;
  std::size_t unit = 0;
  for (; size >= 999.5; ++unit) size /= 1000;
  std::ostringstream text;
  text << std::setprecision(3) << size << ' ' << kUnits[unit];
  return text.str();
}

std::string DecimalText(double number) {
  std::ostringstream text;
  text << std::setprecision(12) << std::round(number * 100) / 100;
  return text.str();
}

HtmlTable::HtmlTable(std::ostream& out, const std::string& caption, const std::vector<std::string>& columns)
    : m_out(out) {
  m_out << "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"" << caption << "\"><table><caption>"
        << caption << "</caption><thead><tr>";
  for (const std::string& column : columns) {
    m_isNumber.push_back(column.front() == '#');
    m_out << "<th scope=\"col\"" << (m_isNumber.back() ? " class=\"number\">" : ">")
          << column.substr(m_isNumber.back() ? 1 : 0) << "</th>";
  }
  m_out << "</tr></thead><tbody>\n";
}

HtmlTable::~HtmlTable() { m_out << "</tbody></table></div>\n"; }

void HtmlTable::Row(const std::vector<std::string>& cells) {
  m_out << "<tr>";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    m_out << (m_isNumber[i] ? "<td class=\"number\">" : "<td>") << cells[i] << "</td>";
  }
  m_out << "</tr>\n";
}
