#include <algorithm>
#include <cmath>

#include "clipinfo/Html.h"
#include "clipinfo/Report.h"

namespace {

// The plot, in the units of its viewBox.
constexpr double kLeft = 64;
constexpr double kTop = 16;
constexpr double kWidth = 856;
constexpr double kHeight = 240;
constexpr double kBottom = kTop + kHeight;
constexpr double kTickSize = 5;

// 1, 2 or 5 times a power of ten: a step that makes about `ticks` of a range.
double NiceStep(double range, double ticks) {
  const double rough = range / ticks;
  const double power = std::pow(10, std::floor(std::log10(rough)));
  const double digit = rough / power;
  return (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10) * power;
}

double Mean(const PictureBucket& bucket) {
  return static_cast<double>(bucket.bytes) / static_cast<double>(std::max(1ULL, bucket.count));
}

std::string UnitsText(const PictureBucket& bucket) {
  if (bucket.count == 1) return "Edit unit " + GroupedText(bucket.first);
  return "Edit units " + GroupedText(bucket.first) + " to " + GroupedText(bucket.first + bucket.count - 1);
}

class Plot {
 public:
  Plot(std::ostream& out, const Report& report)
      : m_out(out), m_report(report), m_pictures(report.pictures), m_isBucketed(m_pictures.BucketWidth() > 1) {
    const double largest = std::max(1.0, static_cast<double>(m_pictures.Largest()));
    m_step = NiceStep(largest, 4);
    m_top = std::ceil(largest / m_step) * m_step;
    m_mean = static_cast<double>(m_pictures.Bytes()) / static_cast<double>(m_pictures.Count());
  }

  void Draw() {
    m_out << "<svg class=\"plot\" viewBox=\"0 0 1000 300\" role=\"img\" aria-labelledby=\"plot-title plot-text\">\n"
          << "<title id=\"plot-title\">Picture size per " << (m_isBucketed ? "group of edit units" : "edit unit")
          << "</title>\n<desc id=\"plot-text\">" << Description() << "</desc>\n";
    DrawSizes();
    for (const PictureBucket& bucket : m_pictures.Buckets()) DrawMark(bucket);
    if (!m_isBucketed) DrawKeyFrames();
    DrawUnits();
    DrawMean();
    m_out << "</svg>\n";
  }

  [[nodiscard]] std::string Description() const {
    return GroupedText(m_pictures.Count()) + " pictures of " + SizeText(static_cast<unsigned long long>(m_mean)) +
           " on average; the largest has " + SizeText(m_pictures.Largest()) + ". " +
           (m_isBucketed ? "Each bar is the average of " + GroupedText(m_pictures.BucketWidth()) +
                               " edit units; the pale part above it reaches up to the largest of them."
                         : "Key frames have another colour and a mark below them.") +
           " The table behind the plot has the numbers.";
  }

 private:
  [[nodiscard]] double X(double unit) const { return kLeft + kWidth * unit / static_cast<double>(m_pictures.Count()); }
  [[nodiscard]] double Y(double bytes) const { return kBottom - kHeight * bytes / m_top; }
  [[nodiscard]] double Right(const PictureBucket& bucket) const {
    return X(static_cast<double>(bucket.first + bucket.count));
  }

  void DrawSizes() {
    for (unsigned int i = 0; i * m_step <= m_top; ++i) {
      const double bytes = i * m_step;
      const std::string y = DecimalText(Y(bytes));
      m_out << "<line class=\"grid\" x1=\"" << kLeft << "\" x2=\"" << kLeft + kWidth << "\" y1=\"" << y << "\" y2=\""
            << y << "\"/><text class=\"label end\" x=\"" << kLeft - 8 << "\" y=\"" << DecimalText(Y(bytes) + 4) << "\">"
            << (bytes == 0 ? "0" : SizeText(static_cast<unsigned long long>(bytes))) << "</text>\n";
    }
  }

  void DrawMark(const PictureBucket& bucket) {
    const double left = X(static_cast<double>(bucket.first));
    const double gap = std::min(1.5, (Right(bucket) - left) * 0.15);
    const bool isKeyFrame = !m_isBucketed && bucket.keyFrames != 0;
    m_out << "<g class=\"mark" << (isKeyFrame ? " key" : "") << "\"><title>" << UnitsText(bucket) << ": "
          << MarkText(bucket) << "</title>";
    if (m_isBucketed) DrawRect("largest", left, Right(bucket) - left - gap, static_cast<double>(bucket.largest));
    DrawRect("size", left, Right(bucket) - left - gap, Mean(bucket));
    m_out << "</g>\n";
  }

  [[nodiscard]] static std::string MarkText(const PictureBucket& bucket) {
    if (bucket.count == 1) {
      return GroupedText(bucket.bytes) + " bytes" + (bucket.keyFrames != 0 ? ", key frame" : "");
    }
    return GroupedText(static_cast<unsigned long long>(Mean(bucket))) + " bytes on average, at most " +
           GroupedText(bucket.largest) + ", " + GroupedText(bucket.keyFrames) + " key frames";
  }

  void DrawRect(const char* name, double left, double width, double bytes) {
    m_out << "<rect class=\"" << name << "\" x=\"" << DecimalText(left) << "\" y=\"" << DecimalText(Y(bytes))
          << "\" width=\"" << DecimalText(std::max(0.3, width)) << "\" height=\"" << DecimalText(kBottom - Y(bytes))
          << "\"/>";
  }

  // Below the bars, so that colour is not all that tells them.
  void DrawKeyFrames() {
    m_out << "<path class=\"keys\" d=\"";
    for (const PictureBucket& bucket : m_pictures.Buckets()) {
      if (bucket.keyFrames == 0) continue;
      const double middle = (X(static_cast<double>(bucket.first)) + Right(bucket)) / 2;
      m_out << 'M' << DecimalText(middle) << ' ' << kBottom + 3 << "l3 5h-6z";
    }
    m_out << "\"/>\n";
  }

  void DrawUnits() {
    const auto step =
        static_cast<unsigned long long>(std::max(1.0, NiceStep(static_cast<double>(m_pictures.Count()), 8)));
    const Timebase timebase = TimebaseOf(m_report);
    for (unsigned long long unit = 0; unit < m_pictures.Count(); unit += step) {
      const std::string x = DecimalText(X(static_cast<double>(unit)));
      m_out << "<line class=\"tick\" x1=\"" << x << "\" x2=\"" << x << "\" y1=\"" << kBottom << "\" y2=\""
            << kBottom + 2 * kTickSize << "\"/><text class=\"label middle\" x=\"" << x << "\" y=\"" << kBottom + 24
            << "\">" << GroupedText(unit) << "<tspan class=\"time\" x=\"" << x << "\" dy=\"13\">"
            << TimecodeText(static_cast<long long>(unit), timebase) << "</tspan></text>\n";
    }
  }

  void DrawMean() {
    const std::string y = DecimalText(Y(m_mean));
    m_out << "<line class=\"mean\" x1=\"" << kLeft << "\" x2=\"" << kLeft + kWidth << "\" y1=\"" << y << "\" y2=\"" << y
          << "\"/><text class=\"mean-label\" x=\"" << kLeft + kWidth + 8 << "\" y=\"" << DecimalText(Y(m_mean) - 2)
          << "\">average<tspan x=\"" << kLeft + kWidth + 8 << "\" dy=\"14\">"
          << SizeText(static_cast<unsigned long long>(m_mean)) << "</tspan></text>\n";
  }

  std::ostream& m_out;
  const Report& m_report;
  const PictureProfile& m_pictures;
  bool m_isBucketed;
  double m_step = 1;
  double m_top = 1;
  double m_mean = 0;
};

void WriteTable(std::ostream& out, const PictureProfile& pictures) {
  out << "<details><summary>The plot as a table</summary>\n";
  {
    HtmlTable table(out, "Picture sizes in bytes", {"Edit units", "#Average", "#Largest", "#Key frames"});
    for (const PictureBucket& bucket : pictures.Buckets()) {
      const std::string end = bucket.count > 1 ? " – " + GroupedText(bucket.first + bucket.count - 1) : "";
      table.Row({GroupedText(bucket.first) + end, GroupedText(static_cast<unsigned long long>(Mean(bucket))),
                 GroupedText(bucket.largest), GroupedText(bucket.keyFrames)});
    }
  }
  out << "</details>\n";
}

}  // namespace

void WritePictures(std::ostream& out, const Report& report) {
  out << "<section id=\"pictures\" aria-labelledby=\"h-pictures\"><h2 id=\"h-pictures\">Picture sizes</h2>\n";
  if (report.pictures.Count() == 0) {
    out << "<p>There is no picture in the clip's essence.</p></section>\n";
    return;
  }
  Plot plot(out, report);
  out << "<figure><ul class=\"legend\"><li class=\"key-size\">picture</li>"
      << (report.pictures.BucketWidth() > 1 ? "<li class=\"key-largest\">largest of the bar’s pictures</li>"
                                            : "<li class=\"key-key\">key frame</li>")
      << "<li class=\"key-mean\">average</li></ul>\n";
  out << "<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Plot of picture sizes\">\n";
  plot.Draw();
  out << "</div>\n";
  out << "<figcaption>" << plot.Description() << "</figcaption></figure>\n";
  WriteTable(out, report.pictures);
  out << "</section>\n";
}
