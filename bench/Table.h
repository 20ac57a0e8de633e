#ifndef CLIPPARSER_BENCH_TABLE_H
#define CLIPPARSER_BENCH_TABLE_H

#include <iosfwd>
#include <string>
#include <vector>

namespace bench {

// A table in Markdown, a row at a time.
class Table {
 public:
  Table(std::ostream& out, const std::vector<std::string>& headings);
  void Row(const std::vector<std::string>& cells);

 private:
  std::ostream& m_out;
};

// Three digits and a unit.
std::string SecondsText(double seconds);
std::string BytesText(double bytes);
// Three digits.
std::string NumberText(double number);

}  // namespace bench

#endif  // CLIPPARSER_BENCH_TABLE_H
