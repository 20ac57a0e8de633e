#include "bench/Table.h"

#include <cstdio>
#include <ostream>

namespace bench {
namespace {

struct Scale {
  double size;
  const char* unit;
};

// The largest unit, of those from large to small, that is not larger than the number.
template <class Scales>
std::string Text(double number, const Scales& scales) {
  const Scale* chosen = nullptr;
  for (const Scale& scale : scales) {
    chosen = &scale;
    if (number >= scale.size) break;
  }
  return NumberText(number / chosen->size) + " " + chosen->unit;
}

}  // namespace

Table::Table(std::ostream& out, const std::vector<std::string>& headings) : m_out(out) {
  Row(headings);
  Row(std::vector<std::string>(headings.size(), "---"));
}

void Table::Row(const std::vector<std::string>& cells) {
  for (const std::string& cell : cells) m_out << "| " << cell << ' ';
  m_out << "|\n" << std::flush;
}

std::string SecondsText(double seconds) {
  constexpr Scale kScales[] = {{1, "s"}, {1e-3, "ms"}, {1e-6, "us"}, {1e-9, "ns"}};
  return Text(seconds, kScales);
}

std::string BytesText(double bytes) {
  constexpr Scale kScales[] = {{1024.0 * 1024, "MiB"}, {1024, "KiB"}, {1, "bytes"}};
  return Text(bytes, kScales);
}

std::string NumberText(double number) {
  const int decimals = number < 10 ? 2 : number < 100 ? 1 : 0;
  char text[40];
  static_cast<void>(std::snprintf(text, sizeof text, "%.*f", decimals, number));
  return text;
}

}  // namespace bench
