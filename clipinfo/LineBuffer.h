#ifndef CLIPPARSER_CLIPINFO_LINEBUFFER_H
#define CLIPPARSER_CLIPINFO_LINEBUFFER_H

#include <charconv>
#include <ostream>
#include <string>
#include <string_view>

// Text on its way to a stream, for lists of many rows: fields are put together in memory, without a stream's formatting
// of each, and written out in large pieces.
class LineBuffer {
 public:
  explicit LineBuffer(std::ostream& out) : m_out(out) { m_text.reserve(kSize + kLongestLine); }
  // Writes what is left: the lines before a fault are printed.
  ~LineBuffer() { Flush(); }
  LineBuffer(const LineBuffer&) = delete;
  LineBuffer& operator=(const LineBuffer&) = delete;

  LineBuffer& operator<<(std::string_view text) {
    m_text += text;
    return *this;
  }
  LineBuffer& operator<<(char letter) {
    m_text += letter;
    return *this;
  }
  template <class Integer>
  LineBuffer& Number(Integer number) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return *this << std::string_view(digits, static_cast<std::size_t>(end - digits));
  }
  // Fills the column that began at `begin` with spaces up to `width`, behind what is there or before it.
  [[nodiscard]] std::size_t Mark() const { return m_text.size(); }
  void AlignLeft(std::size_t begin, std::size_t width) { m_text.append(FillOf(begin, width), ' '); }
  void AlignRight(std::size_t begin, std::size_t width) { m_text.insert(begin, FillOf(begin, width), ' '); }

  void EndLine() {
    m_text += '\n';
    if (m_text.size() >= kSize) Flush();
  }
  void Flush() {
    m_out.write(m_text.data(), static_cast<std::streamsize>(m_text.size()));
    m_text.clear();
  }

 private:
  static constexpr std::size_t kSize = 65536;
  static constexpr std::size_t kLongestLine = 4096;  // usually

  [[nodiscard]] std::size_t FillOf(std::size_t begin, std::size_t width) const {
    const std::size_t used = m_text.size() - begin;
    return used < width ? width - used : 0;
  }

  std::ostream& m_out;
  std::string m_text;
};

#endif  // CLIPPARSER_CLIPINFO_LINEBUFFER_H
